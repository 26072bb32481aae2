// Counts the heap allocations of the module's own code, over an SDK library that does nothing.

#include "module/SPM.h"

#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

namespace {

constexpr std::size_t unlimited = SIZE_MAX;

std::size_t allocations = 0;
std::size_t remaining = unlimited;

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
    if (remaining == 0) throw std::bad_alloc();
    if (remaining != unlimited) --remaining;
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

TEST(Allocation, ReadsMakeNone) {
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
TEST(Allocation, CreateGivesNullWhenMemoryRunsOut) {
    const std::size_t needed = allocationsOf([] { SPM_destroy(SPM_create()); });
    ASSERT_GT(needed, 3U);
    for (std::size_t successes = 0; successes < needed; ++successes) {
        SPM_HANDLE handle = nullptr;
        remaining = successes;
        handle = SPM_create();
        remaining = unlimited;
        EXPECT_EQ(handle, nullptr) << successes;
    }
    SPM_HANDLE const handle = SPM_create();
    EXPECT_NE(handle, nullptr);
    SPM_destroy(handle);
}
