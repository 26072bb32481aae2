#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A buffer for the texts that the vendor's library hands out: zeroed, of the size that the library is told.
class SdkTextBuffer {
public:
    char* data() { return buffer.data(); }
    /// The size variable of a query. It starts as the buffer's size; the library may change it.
    std::uint32_t* size() { return &sizeVariable; }
    /// The text up to its first NUL, or the whole buffer where there is none.
    std::string text() const;

private:
    static constexpr std::uint32_t capacity = 65'000;

    std::vector<char> buffer = std::vector<char>(capacity);
    std::uint32_t sizeVariable = capacity;
};

[[noreturn]] void throwSdkError();

/// The module's one way of turning a failure of the vendor's library into an error.
/// @param result  what a call of the library answered; 0 is success
/// @throws SPMException  with the library's last error text and number, when the result is not 0
inline void checkSdkResult(std::int32_t result) {
    if (result != 0) throwSdkError();
}
