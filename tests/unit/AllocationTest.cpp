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
        SPM_destroy(SPM_create()); // creates the settings' keys, once
        const std::size_t before = allocations;
        SPM_HANDLE const first = SPM_create();
        const std::size_t created = allocations - before;
        SPM_destroy(first);
        const std::size_t destroyed = allocations - before;
        for (std::size_t successes = 0; successes < destroyed; ++successes) {
            firstToFail = allocations + successes + 1;
            SPM_HANDLE const handle = SPM_create();
            SPM_destroy(handle);
            firstToFail = SIZE_MAX;
            EXPECT_EQ(handle == nullptr, successes < created) << successes;
        }
        EXPECT_GT(created, 5U);
    }
}
