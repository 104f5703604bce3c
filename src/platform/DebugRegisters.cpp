// Debug registers kept per thread and carried out by kernel watchpoints.
//
// The kernel hands out at most four breakpoints per thread, like the hardware;
// each enabled slot owns one perf event descriptor. While a debugger is
// attached at arming time the watchpoint also raises SIGTRAP in the thread that
// touched the address, which stops the process in the debugger; otherwise hits
// are only counted.
#include "DebugRegisters.h"

#include <linux/hw_breakpoint.h>
#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstring>
#include <map>
#include <mutex>

#include "Debugger.h"

namespace zunPlatform
{
    namespace
    {
        struct ThreadWatch
        {
            DebugRegisters registers = {};
            int descriptors[4] = {-1, -1, -1, -1};
            std::uint64_t armedAs[4] = {}; // address and kind each descriptor was opened with
        };

        // The registers stand in for state the hardware keeps per thread; the
        // table is shared by all threads of the process, hence the lock.
        std::mutex & TableLock()
        {
            static std::mutex lock;
            return lock;
        }
        std::map<long, ThreadWatch> & Table()
        {
            static std::map<long, ThreadWatch> table;
            return table;
        }

        bool IsEnabled(std::uint64_t control, unsigned int slot)
        {
            return ((control >> (2 * slot)) & 1) != 0;
        }
        unsigned int AccessBits(std::uint64_t control, unsigned int slot)
        {
            return static_cast<unsigned int>((control >> (16 + 4 * slot)) & 3);
        }
        unsigned int LengthBits(std::uint64_t control, unsigned int slot)
        {
            return static_cast<unsigned int>((control >> (18 + 4 * slot)) & 3);
        }
        // What an armed slot watches, to tell whether a write changed it.
        std::uint64_t Signature(const DebugRegisters & registers, unsigned int slot)
        {
            return registers.address[slot] ^ (static_cast<std::uint64_t>(AccessBits(registers.control, slot)) << 60) ^
                   (static_cast<std::uint64_t>(LengthBits(registers.control, slot)) << 62);
        }

        int OpenWatchpoint(long threadId, std::uint64_t address, unsigned int access, unsigned int length)
        {
            if (threadId <= 0)
                return -1; // 0 would name the calling thread to the kernel, below 0 nothing
            perf_event_attr attributes;
            std::memset(&attributes, 0, sizeof(attributes));
            attributes.type = PERF_TYPE_BREAKPOINT;
            attributes.size = sizeof(attributes);
            attributes.bp_addr = address;
            switch (access)
            {
            case 0:
                // Instruction breakpoints cover one instruction; the kernel
                // wants the length of a long for them.
                attributes.bp_type = HW_BREAKPOINT_X;
                attributes.bp_len = sizeof(long);
                break;
            case 1:
                attributes.bp_type = HW_BREAKPOINT_W;
                break;
            case 3:
                attributes.bp_type = HW_BREAKPOINT_RW;
                break;
            default:
                return -1; // I/O breakpoints do not exist in user space
            }
            if (access != 0)
            {
                static const std::uint64_t bytes[4] = {HW_BREAKPOINT_LEN_1, HW_BREAKPOINT_LEN_2, HW_BREAKPOINT_LEN_8,
                                                       HW_BREAKPOINT_LEN_4};
                attributes.bp_len = bytes[length];
            }
            attributes.sample_period = 1;
            attributes.exclude_kernel = 1;
            attributes.exclude_hv = 1;
            if (IsDebuggerPresent())
            {
                attributes.sigtrap = 1;
                attributes.remove_on_exec = 1;
                attributes.sig_data = address;
                const long descriptor =
                    syscall(SYS_perf_event_open, &attributes, threadId, -1, -1, PERF_FLAG_FD_CLOEXEC);
                if (descriptor >= 0)
                    return static_cast<int>(descriptor);
                // Kernels before 5.13 know no signal on hit: count only.
                attributes.sigtrap = 0;
                attributes.remove_on_exec = 0;
                attributes.sig_data = 0;
            }
            return static_cast<int>(syscall(SYS_perf_event_open, &attributes, threadId, -1, -1, PERF_FLAG_FD_CLOEXEC));
        }
    }

    long CurrentThreadId()
    {
        return static_cast<long>(syscall(SYS_gettid));
    }

    bool GetThreadDebugRegisters(long threadId, DebugRegisters & registers)
    {
        std::lock_guard<std::mutex> hold(TableLock());
        auto found = Table().find(threadId);
        registers = found != Table().end() ? found->second.registers : DebugRegisters{};
        return true;
    }

    bool SetThreadDebugRegisters(long threadId, const DebugRegisters & registers)
    {
        std::lock_guard<std::mutex> hold(TableLock());
        ThreadWatch & watch = Table()[threadId];
        DebugRegisters stored = registers;
        bool armedAll = true;
        for (unsigned int slot = 0; slot < 4; ++slot)
        {
            const bool wanted = IsEnabled(registers.control, slot);
            int & descriptor = watch.descriptors[slot];
            if (descriptor >= 0 && (!wanted || watch.armedAs[slot] != Signature(registers, slot)))
            {
                close(descriptor);
                descriptor = -1;
            }
            if (wanted && descriptor < 0)
            {
                descriptor = OpenWatchpoint(threadId, registers.address[slot], AccessBits(registers.control, slot),
                                            LengthBits(registers.control, slot));
                if (descriptor < 0)
                {
                    stored.control &= ~(std::uint64_t(1) << (2 * slot));
                    armedAll = false;
                }
                watch.armedAs[slot] = Signature(registers, slot);
            }
        }
        watch.registers = stored;
        return armedAll;
    }

    std::uint64_t CountDebugRegisterHits(long threadId, unsigned int slot)
    {
        std::lock_guard<std::mutex> hold(TableLock());
        auto found = Table().find(threadId);
        if (slot > 3 || found == Table().end() || found->second.descriptors[slot] < 0)
            return 0;
        std::uint64_t count = 0;
        if (read(found->second.descriptors[slot], &count, sizeof(count)) != sizeof(count))
            return 0;
        return count;
    }
}
