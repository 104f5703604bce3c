// zunDebug.h - hardware memory breakpoints for developers.
//
// zunDebug::Windows arms the processor's debug registers of one thread so that
// a read, a write or an instruction fetch at an address is caught: a debugger
// attached at the time stops there. Each thread has four such registers; a
// breakpoint takes the first free one and keeps it until it is removed.
//
//   void * watch = zunDebug::Windows::SetMemBreak(zunDebug::Windows::CurrentThread(),
//                                                 zunDebug::Windows::MemBreak_Write,
//                                                 zunDebug::Windows::MemBreak_4Bytes, &counter);
//   ...
//   zunDebug::Windows::RemoveMemBreak(watch);
//
// Threads are named by handles. On Linux a handle is the kernel thread id
// (gettid) cast to a pointer, see ThreadHandle; CurrentThread is a constant that
// names the calling thread wherever it is used. A watched address must be
// aligned to the watched length. Two calls for the same thread at once race on
// its registers: callers serialise them.
#ifndef ZUN_DEBUG_H
#define ZUN_DEBUG_H

#include <cstdint>

#include "zunConfig.h"
#include "zunFlags.h"

/// Developer aids that reach into the processor.
namespace zunDebug
{
    /// Hardware memory breakpoints through the debug registers of a thread.
    namespace Windows
    {
        /// What touching the address means: fetching an instruction there,
        /// reading or writing it, or writing it. Any other value acts as
        /// MemBreak_Execute. Both enumerations are 32-bit ints, so any value
        /// may be passed.
        enum MemBreak_Type : int
        {
            MemBreak_Execute = 0,
            MemBreak_ReadWrite = 1,
            MemBreak_Write = 2
        };

        /// How many bytes from the address are watched. Any other value acts as
        /// MemBreak_1Byte. Instruction breakpoints always cover one instruction.
        enum MemBreak_Size : int
        {
            MemBreak_1Byte = 0,
            MemBreak_2Bytes = 1,
            MemBreak_4Bytes = 2,
            MemBreak_8Bytes = 3
        };

        /// Switches of the debug aids. None is defined yet: the sets are always
        /// empty.
        enum DebugFlag
        {
            DebugFlag_None = 0
        };

        /// The handle that names the calling thread (the same constant in every
        /// thread). A record made with it keeps it.
        inline void * CurrentThread()
        {
            return reinterpret_cast<void *>(static_cast<std::intptr_t>(-2));
        }
        /// The handle of the thread with kernel id `threadId` (gettid()).
        inline void * ThreadHandle(long threadId)
        {
            return reinterpret_cast<void *>(static_cast<std::intptr_t>(threadId));
        }

        /// Arms a breakpoint in `thread` and returns its record, an opaque handle
        /// for RemoveMemBreak. Null when the four registers of the thread are
        /// taken, or when the system refuses to arm it (no such thread, an
        /// address not aligned to its length, no hardware breakpoints offered).
        /// Hits are counted by the system; with a debugger attached at the time
        /// of arming, the thread that touches the address is stopped in it.
        ZUN_API void * SetMemBreak(void * thread, MemBreak_Type type, MemBreak_Size size, void * address);
        /// Disarms the breakpoint, frees its register and its record. False for a
        /// null handle, true otherwise.
        ZUN_API bool RemoveMemBreak(void * handle);
        /// The empty set.
        ZUN_API zunFlags<DebugFlag, 5> GetDebugFlags();
        /// Ignores both sets and returns the empty set.
        ZUN_API zunFlags<DebugFlag, 5> SetDebugFlags(const zunFlags<DebugFlag, 5> & set,
                                                     const zunFlags<DebugFlag, 5> & mask);
    }
}

#endif // ZUN_DEBUG_H
