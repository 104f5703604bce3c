// AllocationProbe.h - counts and fails the program's calls of the global
// operator new (the library's standard containers allocate through it).
//
// Include it in exactly one file of a test program: it replaces the global
// operator new and delete of that program.
//
//   AllocationProbe probe;                 // starts counting from zero
//   ...                                    // code under test
//   EXPECT_EQ(probe.Count(), 0u);          // nothing was allocated
//
//   AllocationProbe::FailNth(2);           // the second allocation from now throws std::bad_alloc
#ifndef ZUN_TEST_ALLOCATION_PROBE_H
#define ZUN_TEST_ALLOCATION_PROBE_H

#include <atomic>
#include <cstdlib>
#include <new>

namespace allocation_probe_detail
{
    inline std::atomic<unsigned long> g_calls{0};
    inline std::atomic<unsigned long> g_failCountdown{0};
}

class AllocationProbe
{
public:
    AllocationProbe() : m_start(allocation_probe_detail::g_calls.load()) {}
    ~AllocationProbe() { allocation_probe_detail::g_failCountdown = 0; }

    /// Allocations since this probe was made.
    unsigned long Count() const { return allocation_probe_detail::g_calls.load() - m_start; }
    /// Makes the `nth` allocation from now throw std::bad_alloc; 0 switches it off.
    static void FailNth(unsigned long nth) { allocation_probe_detail::g_failCountdown = nth; }
    /// Whether the failure asked for has happened.
    static bool FailureSpent() { return allocation_probe_detail::g_failCountdown.load() == 0; }

private:
    unsigned long m_start;
};

// Kept out of line: inlined, the free below would meet the compiler's check
// that a block from operator new is not given to free.
__attribute__((noinline)) void * operator new(std::size_t size)
{
    using namespace allocation_probe_detail;
    unsigned long countdown = g_failCountdown.load();
    if (countdown != 0 && g_failCountdown.exchange(countdown - 1) == 1)
        throw std::bad_alloc();
    ++g_calls;
    if (void * block = std::malloc(size != 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}

__attribute__((noinline)) void operator delete(void * block) noexcept
{
    std::free(block);
}

__attribute__((noinline)) void operator delete(void * block, std::size_t) noexcept
{
    std::free(block);
}

#endif // ZUN_TEST_ALLOCATION_PROBE_H
