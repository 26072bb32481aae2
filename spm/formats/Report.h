#pragma once

#include "spm/run/Run.h"

#include <string>

namespace spm {

/// A self-contained HTML page with the run's conditions, the colours and values of the patches, the comparison with the
/// reference if there is one, and the spectra as curves. The run's strings must be UTF-8.
std::string htmlReport(const Run& run);

/// The page's Mustache template, generated from report.html.
extern const char* const reportTemplate;

} // namespace spm
