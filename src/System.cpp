// Process and machine services over the platform layer.
#include "zunSystem.h"

#include "CursorHiding.h"
#include "KeyTable.h"
#include "SystemPrivate.h"
#include "platform/Display.h"
#include "platform/Processes.h"
#include "platform/UserFolders.h"
#include "zunDebugLog.h"
#include "zunException.h"

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
    const unsigned int MaxPathLength = 4096;

    zunPath UserFolder(zunPlatform::UserFolder folder)
    {
        // One buffer of the longest path for the three queries, as the
        // system's folder call fills the caller's buffer.
        static char buffer[MaxPathLength];
        std::string path;
        if (!zunPlatform::GetUserFolder(folder, path) || path.size() >= MaxPathLength)
            return zunPath();
        path.copy(buffer, path.size());
        buffer[path.size()] = 0;
        return zunPath(buffer);
    }
}

namespace zunSystemPrivate
{
    zunStringW BuildCommandLine(const zunPath & program, const zunString & arguments)
    {
        zunStringW commandLine(ZUN_W("\""));
        commandLine << program.OSRepresentation16() << ZUN_W("\"");
        if (!arguments.IsEmpty())
            commandLine << ZUN_W(" ") << arguments;
        return commandLine;
    }

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

    unsigned int CreateProcess(const zunPath & program, const zunString & arguments)
    {
        zunString commandLine;
        commandLine = zunSystemPrivate::BuildCommandLine(program, arguments);
        return zunPlatform::StartProcess(commandLine);
    }

    void * DLOpen(const zunPath & library)
    {
        return zunPlatform::OpenLibrary(library.OSRepresentation8());
    }

    void * DLSymbol(void * library, const zunString & name)
    {
        return zunPlatform::FindSymbol(library, name);
    }

    zunString DLError()
    {
        return zunString(zunPlatform::LastErrorText().c_str());
    }

    zunPath GetCurrentProcessPath()
    {
        return GetProcessPath(GetPid());
    }

    zunPath GetProcessPath(unsigned int pid)
    {
        std::string image(MaxPathLength, ' ');
        switch (zunPlatform::ProcessImagePath(pid, image))
        {
        case zunPlatform::ImageFound:
        case zunPlatform::ImageNoProcess:
            break;
        case zunPlatform::ImageQueryFailed:
        {
            const zunString error = DLError();
            if (!error.IsEmpty())
                zunDebugLog("system", "QueryFullProcessImageName failed\n%s", static_cast<const char *>(error));
            zunFixMe("Can not get the current process path");
            break;
        }
        }
        return zunPath(image.c_str());
    }

    zunPath GetUserDesktopFolder()
    {
        return UserFolder(zunPlatform::UserDesktop);
    }

    zunPath GetUserDocumentFolder()
    {
        return UserFolder(zunPlatform::UserDocuments);
    }

    zunPath GetUserHomeFolder()
    {
        return UserFolder(zunPlatform::UserHome);
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
