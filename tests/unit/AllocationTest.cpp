// Makes each of the module's heap allocations fail in turn, on an SDK library that does nothing.

#include "i1pro3/I1PRO3_SDK.h"
#include "module/IScmSPM.h"
#include "tests/support/System.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

std::size_t allocations = 0;
std::size_t firstToFail = SIZE_MAX;

} // namespace

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return ++allocations < firstToFail ? std::malloc(size) : nullptr;
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* const memory = operator new(size, std::nothrow);
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

// A read that has no array for its samples fails, logs and allocates; one that succeeds makes no allocation.
TEST(Allocation, OpenAndReadsSurviveEveryFailure) {
    class Listener : public ICAPLoggingListener {
        void HandleMessage(ICAPLoggingSource* /*source*/, const ICAPLoggingMessage& /*message*/) override {}
    } listener;
    Settings settings;
    settings.setNumber("Logging", 1);
    SPM_HANDLE const handle = SPM_create();
    handle->AddListener(&listener);
    std::array<SPM_LAB, 2> values{};
    std::array<std::array<SPM_REFLECTION, I1PRO3_NUMBER_OF_REFLECTIONS>, 2> reflections{};
    std::array<SPM_SPECTRUM, 2> spectra{{{36, reflections[0].data()}, {36, reflections[1].data()}}};
    int32_t count = 0;
    for (int operation = 0; operation < 3; ++operation) {
        std::size_t made = 0;
        for (std::size_t successes = 0; successes == 0 || made >= successes; ++successes) {
            const std::size_t before = allocations;
            firstToFail = before + successes + 1;
            count = 2;
            const bool answer = operation == 0   ? SPM_open(handle, "USB")
                                : operation == 1 ? SPM_read(handle, nullptr, &count)
                                                 : SPM_readSpectrum(handle, nullptr, &count);
            made = allocations - before;
            firstToFail = SIZE_MAX;
            EXPECT_EQ(answer, operation == 0 && made <= successes) << operation << ", " << successes;

            ASSERT_TRUE(SPM_open(handle, "USB"));
            const std::size_t opened = allocations;
            count = 2;
            EXPECT_TRUE(SPM_read(handle, values.data(), &count) && count == 2);
            EXPECT_TRUE(SPM_readSpectrum(handle, spectra.data(), &count) && count == 2);
            EXPECT_EQ(allocations, opened);
        }
        EXPECT_GT(made, 1U);
    }
    SPM_destroy(handle);
}
