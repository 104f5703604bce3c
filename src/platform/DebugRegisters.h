// DebugRegisters.h - the x86-64 debug registers of a thread, read and written.
//
// The hardware breakpoints of zunDebug::Windows are worked out as the x86-64
// debug registers describe them: four address registers, a status register and
// a control register with a local enable bit, two access bits and two length
// bits per slot. This layer keeps each thread's registers and makes the
// hardware follow them: every enabled slot is one kernel watchpoint
// (perf_event_open, PERF_TYPE_BREAKPOINT) bound to that thread.
//
// A thread is named by its kernel thread id (gettid). Nothing has to be stopped
// for the kernel to change a thread's watchpoints, so there is no suspend step.
#ifndef ZUN_PLATFORM_DEBUG_REGISTERS_H
#define ZUN_PLATFORM_DEBUG_REGISTERS_H

#include <cstdint>

#include "zunConfig.h"

namespace zunPlatform
{
    struct DebugRegisters
    {
        std::uint64_t address[4]; ///< DR0 to DR3
        std::uint64_t status;     ///< DR6
        std::uint64_t control;    ///< DR7
    };

    /// Kernel id of the calling thread.
    ZUN_API long CurrentThreadId();

    /// The registers last written for `threadId` (all zero for a thread never
    /// written). Always succeeds.
    bool GetThreadDebugRegisters(long threadId, DebugRegisters & registers);
    /// Makes the hardware of `threadId` follow `registers`: a slot whose local
    /// enable bit is set watches its address with its access and length bits, a
    /// slot whose bit is clear watches nothing. A slot the kernel refuses to arm
    /// (no such thread, no permission, no free hardware, a misaligned address)
    /// is stored with its enable bit clear, and the result is false.
    bool SetThreadDebugRegisters(long threadId, const DebugRegisters & registers);

    /// Internal, for tests: how often the watchpoint in `slot` of `threadId`
    /// fired since it was armed; 0 when the slot is not armed.
    ZUN_API std::uint64_t CountDebugRegisterHits(long threadId, unsigned int slot);
}

#endif // ZUN_PLATFORM_DEBUG_REGISTERS_H
