// Hardware memory breakpoints: the debug registers of a thread are changed by a
// short-lived worker thread, as a thread cannot change its own while it runs.
#include "zunDebug.h"

#include <cstdint>
#include <new>
#include <system_error>
#include <thread>

#include "DebugRecord.h"
#include "platform/DebugRegisters.h"

using zunDebugPrivate::MemBreakRecord;
namespace Windows = zunDebug::Windows;

namespace
{
    unsigned int AccessBitsOf(Windows::MemBreak_Type type)
    {
        switch (type)
        {
        case Windows::MemBreak_ReadWrite:
            return 3;
        case Windows::MemBreak_Write:
            return 1;
        default:
            return 0;
        }
    }

    unsigned int LengthBitsOf(Windows::MemBreak_Size size)
    {
        switch (size)
        {
        case Windows::MemBreak_2Bytes:
            return 1;
        case Windows::MemBreak_4Bytes:
            return 3;
        case Windows::MemBreak_8Bytes:
            return 2;
        default:
            return 0;
        }
    }

    long ThreadIdOf(void * thread)
    {
        return static_cast<long>(reinterpret_cast<std::intptr_t>(thread));
    }

    void SetOrRemove(MemBreakRecord * record)
    {
        const long threadId = ThreadIdOf(record->thread);
        zunPlatform::DebugRegisters registers;
        zunPlatform::GetThreadDebugRegisters(threadId, registers);
        const unsigned int slot = record->slot;
        if (record->remove == 0)
        {
            unsigned int free = 0;
            while (free < 4 && (registers.control & (std::uint64_t(1) << (2 * free))) != 0)
                ++free;
            if (free == 4)
            {
                record->succeeded = false;
                return;
            }
            record->slot = free;
            registers.address[free] = reinterpret_cast<std::uintptr_t>(record->address);
            registers.status = 0;
            registers.control &= ~(std::uint64_t(0xF) << (16 + 4 * free));
            registers.control |= std::uint64_t(AccessBitsOf(record->type)) << (16 + 4 * free);
            registers.control |= std::uint64_t(LengthBitsOf(record->size)) << (18 + 4 * free);
            registers.control |= std::uint64_t(1) << (2 * free);
        }
        else
        {
            // The access and length bits of the slot and the status stay as they are.
            registers.address[slot] = 0;
            registers.control &= ~(std::uint64_t(1) << (2 * slot));
        }
        const bool written = zunPlatform::SetThreadDebugRegisters(threadId, registers);
        zunPlatform::GetThreadDebugRegisters(threadId, registers);
        // The system may refuse to arm a watchpoint; a removal always frees its slot.
        record->succeeded = written || record->remove != 0;
    }

    // Runs one set or remove on a worker thread and waits for it.
    void RunWorker(MemBreakRecord * record)
    {
        void * const callerThread = record->thread;
        if (callerThread == Windows::CurrentThread())
            record->thread = Windows::ThreadHandle(zunPlatform::CurrentThreadId());
        try
        {
            std::thread worker(SetOrRemove, record);
            record->done = &worker;
            worker.join();
        }
        catch (const std::system_error &)
        {
            // No thread to spare: the kernel changes a running thread's
            // watchpoints as well, so the caller does the work itself.
            SetOrRemove(record);
        }
        record->done = nullptr;
        record->thread = callerThread;
    }
}

namespace zunDebug
{
    namespace Windows
    {
        void * SetMemBreak(void * thread, MemBreak_Type type, MemBreak_Size size, void * address)
        {
            MemBreakRecord * record =
                new (std::nothrow) MemBreakRecord{address, thread, type, size, nullptr, 0, 0, false};
            if (record == nullptr)
                return nullptr;
            RunWorker(record);
            if (record->succeeded)
                return record;
            delete record;
            return nullptr;
        }

        bool RemoveMemBreak(void * handle)
        {
            if (handle == nullptr)
                return false;
            MemBreakRecord * record = static_cast<MemBreakRecord *>(handle);
            record->remove = 1;
            RunWorker(record);
            delete record;
            return true;
        }

        zunFlags<DebugFlag, 5> GetDebugFlags()
        {
            return zunFlags<DebugFlag, 5>();
        }

        zunFlags<DebugFlag, 5> SetDebugFlags(const zunFlags<DebugFlag, 5> &, const zunFlags<DebugFlag, 5> &)
        {
            return zunFlags<DebugFlag, 5>();
        }
    }
}
