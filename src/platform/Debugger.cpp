// The debugger test reads TracerPid from /proc/self/status; the sinks write to
// standard error while a tracer is attached.
#include "Debugger.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "UTFPrivate.h"

namespace zunPlatform
{
    namespace
    {
        int g_forcedAnswer = -1;
        DebuggerCapture * g_capture = nullptr;

        bool ReadTracerPid()
        {
            FILE * status = std::fopen("/proc/self/status", "re");
            if (status == nullptr)
                return false;
            char line[256];
            bool traced = false;
            while (std::fgets(line, sizeof(line), status) != nullptr)
            {
                if (std::strncmp(line, "TracerPid:", 10) == 0)
                {
                    traced = std::strtol(line + 10, nullptr, 10) != 0;
                    break;
                }
            }
            std::fclose(status);
            return traced;
        }

        void WriteToDebugger(const char * text, std::size_t length)
        {
            std::fwrite(text, 1, length, stderr);
            std::fflush(stderr);
        }
    }

    bool IsDebuggerPresent()
    {
        if (g_forcedAnswer >= 0)
            return g_forcedAnswer != 0;
        return ReadTracerPid();
    }

    void OutputDebugText(const char * text)
    {
        if (text == nullptr)
            text = "";
        if (g_capture != nullptr)
            return g_capture->Text(text);
        if (IsDebuggerPresent())
            WriteToDebugger(text, std::strlen(text));
    }

    void OutputDebugTextW(const zunWChar * text)
    {
        static const zunWChar empty[1] = {0};
        if (text == nullptr)
            text = empty;
        if (g_capture != nullptr)
            return g_capture->TextW(text);
        if (!IsDebuggerPresent())
            return;
        const std::size_t units = zunUTFPrivate::WideLength(text);
        std::string utf8(zunUTFPrivate::CountUTF8(text, units), '\0');
        const std::size_t bytes = zunUTFPrivate::ToUTF8(text, units, &utf8[0], utf8.size());
        WriteToDebugger(utf8.data(), bytes);
    }

    void SetDebuggerCapture(DebuggerCapture * capture)
    {
        g_capture = capture;
    }

    void ForceDebuggerPresent(int answer)
    {
        g_forcedAnswer = answer < 0 ? -1 : (answer != 0 ? 1 : 0);
    }
}
