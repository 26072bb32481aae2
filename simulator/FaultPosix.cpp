#include "simulator/Fault.h"

#include <stdexcept>

namespace simulator {

void throwForeign(const std::string& what) {
    throw std::runtime_error(what);
}

} // namespace simulator
