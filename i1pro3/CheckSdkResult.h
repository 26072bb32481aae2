#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A zeroed buffer for a text that the vendor's library writes, and the size variable to pass with it.
class SdkTextBuffer {
public:
    char* data() { return buffer.data(); }
    /// The size variable: initially the buffer's size; the library may change it.
    std::uint32_t* size() { return &sizeVariable; }
    /// Returns the text up to its first NUL, or the whole buffer if there is none.
    std::string text() const;

private:
    static constexpr std::uint32_t capacity = 65'000;

    std::vector<char> buffer = std::vector<char>(capacity);
    std::uint32_t sizeVariable = capacity;
};

/// @throws SPMException  with the vendor's library's last error text and number
[[noreturn]] void throwSdkError();

/// Converts a failure of the vendor's library to an exception.
/// @param result  the result of a call of the library; 0 is success
/// @throws SPMException  if the result is not 0, with the library's last error text and number
inline void checkSdkResult(std::int32_t result) {
    if (result != 0) throwSdkError();
}
