#pragma once

#include "host/Run.h"

#include <string>

namespace host {

/// A page that shows the run: its conditions, the patches' colours and values, and the spectra as curves. It needs no
/// other file and no network. In UTF-8, which the run's texts are to be in too.
std::string htmlReport(const Run& run);

} // namespace host
