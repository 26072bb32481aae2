#include "common/ForeignException.h"

#include <stdexcept>

namespace common {

void throwForeign(const std::string& what) {
    throw std::runtime_error(what);
}

} // namespace common
