// Makes each of the module's heap allocations fail in turn, on an SDK library that does nothing.

#include "module/SPM.h"
#include "tests/support/System.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

std::size_t allocations = 0;
std::size_t firstToFail = SIZE_MAX;

} // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = ++allocations < firstToFail ? std::malloc(size) : nullptr;
    return memory != nullptr ? memory : throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

// The build with the address sanitizer also finds objects leaked by a failed creation.
TEST(Allocation, CreateSurvivesEveryFailure) {
    Settings settings;
    for (const std::uint32_t logging : {0U, 1U}) {
        settings.setNumber("Logging", logging);
        const std::size_t before = allocations;
        SPM_destroy(SPM_create());
        const std::size_t needed = allocations - before;
        ASSERT_GT(needed, 5U);
        for (std::size_t successes = 0; successes < needed; ++successes) {
            firstToFail = allocations + successes + 1;
            SPM_HANDLE handle = SPM_create();
            SPM_destroy(handle);
            firstToFail = SIZE_MAX;
            EXPECT_TRUE(handle == nullptr || successes > 5) << successes;
        }
    }
}
