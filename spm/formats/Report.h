#pragma once

#include "spm/formats/Run.h"

#include <string>

namespace spm {

/// A page that shows the run: its conditions, the patches' colours and values, the comparison if there is a reference,
/// and the spectra as curves. It needs no other file and no network. In UTF-8, which the run's texts are to be in too.
/// @throws Error  when no patch was measured, or a value is not finite
std::string htmlReport(const Run& run);

/// The page's template, in Mustache: report.html.
extern const char* const reportTemplate;

} // namespace spm
