// Counts the heap allocations of the module's own code, over an SDK library that does nothing.

#include "module/SPM.h"
#include "tests/support/System.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

constexpr std::size_t never = SIZE_MAX;

std::size_t allocations = 0;
std::size_t failing = never;
bool failsOn = false;

/// Lets allocations fail: the one after that many, or all from there on.
void failAfter(std::size_t successes, bool lasting) {
    failing = successes == never ? never : allocations + successes + 1;
    failsOn = lasting;
}

/// The number of allocations that an operation makes.
template <class Operation>
std::size_t allocationsOf(Operation operation) {
    const std::size_t before = allocations;
    operation();
    return allocations - before;
}

} // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (allocations == failing || (failsOn && allocations > failing)) throw std::bad_alloc();
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

class Allocation : public testing::Test {
protected:
    Settings settings;
};

TEST_F(Allocation, ReadsMakeNone) {
    constexpr std::size_t patches = 24;
    std::array<SPM_LAB, patches> values{};
    std::array<std::array<SPM_REFLECTION, 36>, patches> reflections{};
    std::array<SPM_SPECTRUM, patches> spectra{};
    for (std::size_t i = 0; i < patches; ++i) {
        spectra[i] = {36, reflections[i].data()};
    }
    SPM_HANDLE const handle = SPM_create();
    ASSERT_GT(allocationsOf([&] { SPM_open(handle, "USB"); }), 0U) << "the count counts";
    for (const int32_t wanted : {1, 24}) {
        int32_t count = wanted;
        EXPECT_EQ(allocationsOf([&] { SPM_read(handle, values.data(), &count); }), 0U);
        EXPECT_EQ(count, wanted);
        EXPECT_EQ(allocationsOf([&] { SPM_readSpectrum(handle, spectra.data(), &count); }), 0U);
        EXPECT_EQ(count, wanted);
        EXPECT_EQ(reflections[static_cast<std::size_t>(wanted) - 1][35].wavelength, 730);
    }
    SPM_destroy(handle);
}

// What a failed creation has made must be gone again: the address sanitizer's build looks for leaks.
TEST_F(Allocation, CreationAndDestructionSurviveEachFailure) {
    for (const std::uint32_t logging : {0U, 1U}) {
        settings.setNumber("Logging", logging);
        const std::size_t needed = allocationsOf([] { SPM_destroy(SPM_create()); });
        ASSERT_GT(needed, 5U);
        for (const bool lasting : {false, true}) {
            for (std::size_t successes = 0; successes < needed; ++successes) {
                failAfter(successes, lasting);
                SPM_HANDLE handle = SPM_create();
                SPM_destroy(handle);
                failAfter(never, false);
                if (lasting && successes < 5) {
                    EXPECT_EQ(handle, nullptr) << successes;
                }
            }
        }
    }
}
