// Hardware memory breakpoints: real watchpoints on the calling thread and on
// another one, the four registers per thread, and the record behind a handle.
#include <gtest/gtest.h>

#include <linux/hw_breakpoint.h>
#include <linux/perf_event.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <thread>

#include "DebugRecord.h"
#include "platform/DebugRegisters.h"
#include "platform/Debugger.h"
#include "zunFoundation.h"

namespace Windows = zunDebug::Windows;
using zunDebugPrivate::MemBreakRecord;

namespace
{
    alignas(8) volatile std::uint64_t g_watched[8];

    // Whether this machine lets a process watch its own memory at all; where it
    // does not, every SetMemBreak must give null. Asked before any test runs,
    // while all four registers of the thread are free.
    const bool g_kernelOffersWatchpoints = []
    {
        perf_event_attr attributes;
        std::memset(&attributes, 0, sizeof(attributes));
        attributes.type = PERF_TYPE_BREAKPOINT;
        attributes.size = sizeof(attributes);
        attributes.bp_type = HW_BREAKPOINT_W;
        attributes.bp_addr = reinterpret_cast<std::uintptr_t>(&g_watched[7]);
        attributes.bp_len = HW_BREAKPOINT_LEN_8;
        attributes.exclude_kernel = 1;
        attributes.exclude_hv = 1;
        const long descriptor = syscall(SYS_perf_event_open, &attributes, 0, -1, -1, 0);
        if (descriptor < 0)
            return false;
        close(static_cast<int>(descriptor));
        return true;
    }();

    bool KernelOffersWatchpoints()
    {
        return g_kernelOffersWatchpoints;
    }

    unsigned int SlotOf(void * handle)
    {
        return static_cast<MemBreakRecord *>(handle)->slot;
    }

    std::uint64_t HitsOf(void * handle, long threadId)
    {
        return zunPlatform::CountDebugRegisterHits(threadId, SlotOf(handle));
    }

    void * WatchWrites(void * address, Windows::MemBreak_Size size = Windows::MemBreak_8Bytes)
    {
        return Windows::SetMemBreak(Windows::CurrentThread(), Windows::MemBreak_Write, size, address);
    }

    __attribute__((noinline)) int Watched(int value)
    {
        asm volatile("" ::: "memory");
        return value + 1;
    }
}

TEST(MemBreak, RemoveOfNullIsFalse)
{
    EXPECT_FALSE(Windows::RemoveMemBreak(nullptr));
}

TEST(MemBreak, DebugFlagsAreAlwaysEmpty)
{
    const zunFlags<Windows::DebugFlag, 5> all(0x1Fu);
    EXPECT_EQ(Windows::SetDebugFlags(all, all).GetMask(), 0u);
    EXPECT_EQ(Windows::GetDebugFlags().GetMask(), 0u);
    EXPECT_EQ(Windows::SetDebugFlags(zunFlags<Windows::DebugFlag, 5>(), all).GetMask(), 0u);
    EXPECT_EQ(Windows::GetDebugFlags().GetMask(), 0u);
}

TEST(MemBreak, WriteOnTheCallingThreadIsCounted)
{
    void * handle = WatchWrites(const_cast<std::uint64_t *>(&g_watched[0]));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    const MemBreakRecord * record = static_cast<MemBreakRecord *>(handle);
    EXPECT_EQ(record->slot, 0u);
    EXPECT_EQ(record->thread, Windows::CurrentThread()); // the pseudo-handle is kept
    EXPECT_EQ(record->address, const_cast<std::uint64_t *>(&g_watched[0]));
    EXPECT_EQ(record->done, nullptr);
    EXPECT_TRUE(record->succeeded);

    const long self = zunPlatform::CurrentThreadId();
    EXPECT_EQ(HitsOf(handle, self), 0u);
    g_watched[0] = 1;
    g_watched[0] = 2;
    g_watched[1] = 3; // outside the watched eight bytes
    EXPECT_EQ(HitsOf(handle, self), 2u);
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
    EXPECT_EQ(zunPlatform::CountDebugRegisterHits(self, 0), 0u);
}

TEST(MemBreak, FourRegistersFirstFreeIsTaken)
{
    void * handles[4];
    for (unsigned int i = 0; i < 4; ++i)
        handles[i] = WatchWrites(const_cast<std::uint64_t *>(&g_watched[i]));
    if (!KernelOffersWatchpoints())
    {
        for (void * handle : handles)
            EXPECT_EQ(handle, nullptr);
        return;
    }
    for (unsigned int i = 0; i < 4; ++i)
    {
        ASSERT_NE(handles[i], nullptr);
        EXPECT_EQ(SlotOf(handles[i]), i);
    }
    EXPECT_EQ(WatchWrites(const_cast<std::uint64_t *>(&g_watched[4])), nullptr);

    EXPECT_TRUE(Windows::RemoveMemBreak(handles[1]));
    handles[1] = WatchWrites(const_cast<std::uint64_t *>(&g_watched[5]));
    ASSERT_NE(handles[1], nullptr);
    EXPECT_EQ(SlotOf(handles[1]), 1u);

    // Slot 1 now watches the new address only.
    const long self = zunPlatform::CurrentThreadId();
    g_watched[1] = 7;
    g_watched[5] = 7;
    EXPECT_EQ(HitsOf(handles[1], self), 1u);
    for (void * handle : handles)
        EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

TEST(MemBreak, AnotherThreadIsWatchedAndHasItsOwnRegisters)
{
    std::mutex lock;
    std::condition_variable changed;
    long threadId = 0;
    bool go = false;
    std::thread other(
        [&]
        {
            {
                std::unique_lock<std::mutex> hold(lock);
                threadId = zunPlatform::CurrentThreadId();
                changed.notify_all();
                changed.wait(hold, [&] { return go; });
            }
            g_watched[6] = 42;
        });
    {
        std::unique_lock<std::mutex> hold(lock);
        changed.wait(hold, [&] { return threadId != 0; });
    }

    // The calling thread's four registers are full, the other's are free.
    void * own[4];
    for (unsigned int i = 0; i < 4; ++i)
        own[i] = WatchWrites(const_cast<std::uint64_t *>(&g_watched[i]));
    void * handle = Windows::SetMemBreak(Windows::ThreadHandle(threadId), Windows::MemBreak_Write,
                                         Windows::MemBreak_8Bytes, const_cast<std::uint64_t *>(&g_watched[6]));
    if (KernelOffersWatchpoints())
    {
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(SlotOf(handle), 0u);
        EXPECT_EQ(static_cast<MemBreakRecord *>(handle)->thread, Windows::ThreadHandle(threadId));
    }
    else
    {
        EXPECT_EQ(handle, nullptr);
    }
    g_watched[6] = 1; // this thread is not watched for this address
    {
        std::lock_guard<std::mutex> hold(lock);
        go = true;
    }
    changed.notify_all();
    other.join();
    if (handle != nullptr)
    {
        EXPECT_EQ(HitsOf(handle, threadId), 1u);
        EXPECT_TRUE(Windows::RemoveMemBreak(handle));
    }
    for (void * record : own)
        Windows::RemoveMemBreak(record);
}

TEST(MemBreak, ReadWriteCatchesReads)
{
    void * handle = Windows::SetMemBreak(Windows::CurrentThread(), Windows::MemBreak_ReadWrite,
                                         Windows::MemBreak_8Bytes, const_cast<std::uint64_t *>(&g_watched[2]));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    const std::uint64_t seen = g_watched[2];
    EXPECT_EQ(HitsOf(handle, zunPlatform::CurrentThreadId()), 1u);
    (void)seen;
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

TEST(MemBreak, WriteDoesNotCatchReads)
{
    void * handle = WatchWrites(const_cast<std::uint64_t *>(&g_watched[2]));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    const std::uint64_t seen = g_watched[2];
    EXPECT_EQ(HitsOf(handle, zunPlatform::CurrentThreadId()), 0u);
    (void)seen;
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

TEST(MemBreak, ExecuteCatchesACall)
{
    void * handle = Windows::SetMemBreak(Windows::CurrentThread(), Windows::MemBreak_Execute, Windows::MemBreak_1Byte,
                                         reinterpret_cast<void *>(&Watched));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(Watched(1), 2);
    EXPECT_EQ(HitsOf(handle, zunPlatform::CurrentThreadId()), 1u);
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

TEST(MemBreak, UnknownTypeActsAsExecute)
{
    void * handle = Windows::SetMemBreak(Windows::CurrentThread(), static_cast<Windows::MemBreak_Type>(7),
                                         Windows::MemBreak_8Bytes, const_cast<std::uint64_t *>(&g_watched[3]));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    g_watched[3] = 9; // a data write is no instruction fetch
    EXPECT_EQ(HitsOf(handle, zunPlatform::CurrentThreadId()), 0u);
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

TEST(MemBreak, SizesCoverTheirBytes)
{
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(WatchWrites(const_cast<std::uint64_t *>(&g_watched[0]), Windows::MemBreak_1Byte),
                  nullptr); // the system refuses: null, as documented
        return;
    }
    volatile unsigned char * bytes = reinterpret_cast<volatile unsigned char *>(&g_watched[0]);
    const long self = zunPlatform::CurrentThreadId();
    const struct
    {
        Windows::MemBreak_Size size;
        unsigned int covered;
    } cases[] = {{Windows::MemBreak_1Byte, 1},
                 {Windows::MemBreak_2Bytes, 2},
                 {Windows::MemBreak_4Bytes, 4},
                 {Windows::MemBreak_8Bytes, 8},
                 {static_cast<Windows::MemBreak_Size>(9), 1}};
    for (const auto & test : cases)
    {
        void * handle = WatchWrites(const_cast<unsigned char *>(bytes), test.size);
        ASSERT_NE(handle, nullptr);
        bytes[test.covered - 1] = 1; // last byte inside
        if (test.covered < 8)
            bytes[test.covered] = 1; // first byte outside
        EXPECT_EQ(HitsOf(handle, self), 1u) << "covering " << test.covered;
        EXPECT_TRUE(Windows::RemoveMemBreak(handle));
    }
}

TEST(MemBreak, RefusedArmingGivesNullAndKeepsTheRegisterFree)
{
    // A four-byte watch must start on a four-byte boundary.
    void * misaligned = WatchWrites(reinterpret_cast<unsigned char *>(const_cast<std::uint64_t *>(&g_watched[0])) + 1,
                                    Windows::MemBreak_4Bytes);
    EXPECT_EQ(misaligned, nullptr);
    // No such thread.
    EXPECT_EQ(Windows::SetMemBreak(Windows::ThreadHandle(0x7FFFFFF0), Windows::MemBreak_Write, Windows::MemBreak_8Bytes,
                                   const_cast<std::uint64_t *>(&g_watched[0])),
              nullptr);
    void * handle = WatchWrites(const_cast<std::uint64_t *>(&g_watched[0]));
    if (!KernelOffersWatchpoints())
    {
        EXPECT_EQ(handle, nullptr); // the system refuses: null, as documented
        return;
    }
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(SlotOf(handle), 0u);
    EXPECT_TRUE(Windows::RemoveMemBreak(handle));
}

namespace
{
    volatile sig_atomic_t g_traps = 0;
    void CountTrap(int, siginfo_t *, void *)
    {
        g_traps = g_traps + 1;
    }
}

TEST(MemBreak, WithADebuggerTheWatchedThreadIsStopped)
{
    // A debugger stops a process at its SIGTRAP; a handler stands in for it.
    struct sigaction trap = {}, previous = {};
    trap.sa_sigaction = CountTrap;
    trap.sa_flags = SA_SIGINFO;
    sigemptyset(&trap.sa_mask);
    ASSERT_EQ(sigaction(SIGTRAP, &trap, &previous), 0);
    zunPlatform::ForceDebuggerPresent(1);
    void * handle = WatchWrites(const_cast<std::uint64_t *>(&g_watched[4]));
    zunPlatform::ForceDebuggerPresent(-1);
    if (KernelOffersWatchpoints())
    {
        ASSERT_NE(handle, nullptr);
        g_watched[4] = 5;
        EXPECT_EQ(g_traps, 1);
        EXPECT_TRUE(Windows::RemoveMemBreak(handle));
        g_watched[4] = 6;
        EXPECT_EQ(g_traps, 1);
    }
    else
    {
        EXPECT_EQ(handle, nullptr);
    }
    sigaction(SIGTRAP, &previous, nullptr);
}
