// Process and machine services over the platform layer.
#include "zunSystem.h"

#include "CursorHiding.h"
#include "KeyTable.h"
#include "SystemPrivate.h"
#include "platform/Display.h"
#include "platform/Processes.h"

namespace
{
    class DisplayKeyboard : public zunSystemPrivate::KeyboardAccess
    {
    public:
        std::uintptr_t Layout() override { return zunPlatform::GetKeyboardLayout(); }
        unsigned short ScanCharacter(zunWChar character, std::uintptr_t layout) override
        {
            return zunPlatform::ScanCharacter(character, layout);
        }
        unsigned short KeyState(unsigned int code) override { return zunPlatform::GetAsyncKeyState(code); }
    };

    class DisplayCursor : public zunSystemPrivate::CursorAccess
    {
    public:
        bool GetCursor(std::uintptr_t & cursor, unsigned int & error) override
        {
            return zunPlatform::GetCursorHandle(cursor, error);
        }
        void ShowCursor(bool show) override { zunPlatform::ShowCursor(show); }
        void SetCursor(std::uintptr_t cursor) override { zunPlatform::SetCursor(cursor); }
    };

    const unsigned int MaxProcesses = 8192;
}

namespace zunSystemPrivate
{
    KeyTable & SystemKeyTable()
    {
        static DisplayKeyboard keyboard;
        static KeyTable table(keyboard);
        return table;
    }

    CursorHiding & SystemCursorHiding()
    {
        static DisplayCursor cursor;
        static CursorHiding hiding(cursor);
        return hiding;
    }
}

namespace zunSystem
{
    Endianness GetEndianness()
    {
        return Little;
    }

    unsigned int GetPid()
    {
        return zunPlatform::CurrentProcessId();
    }

    zunFastMesh<unsigned int> GetRunningProcesses()
    {
        zunFastMesh<unsigned int> processes;
        if (!processes.SetCount(MaxProcesses, false))
            return processes;
        const unsigned int count = zunPlatform::EnumerateProcesses(&processes[0], MaxProcesses);
        processes.SetCount(count, false);
        return processes;
    }

    bool KillProcess(unsigned int pid)
    {
        if (pid == 0xFFFFFFFF)
            return false;
        return zunPlatform::TerminateProcess(pid);
    }

    unsigned int GetNumberOfCPUs()
    {
        return zunPlatform::ProcessorCount();
    }

    void HideCursor()
    {
        zunSystemPrivate::SystemCursorHiding().Hide();
    }

    void RestoreCursor()
    {
        zunSystemPrivate::SystemCursorHiding().Restore();
    }

    void WarpMouseCursor(int x, int y)
    {
        zunPlatform::SetCursorPosition(x, y);
    }

    bool IsKeyPressed_Async(Key key)
    {
        return zunSystemPrivate::SystemKeyTable().IsPressed(key);
    }

    void Sleep(unsigned int milliseconds)
    {
        zunPlatform::SleepMilliseconds(milliseconds);
    }
}
