// Debugger.h - is a debugger watching this process, and the sink for its text.
//
// The debug print channel and the debug log send their text to "the debugger".
// Here that is the tracer of the process (TracerPid in /proc/self/status): while
// one is attached the text goes to standard error, where a debugger shows the
// inferior's output; otherwise the sink takes the text and drops it.
#ifndef ZUN_PLATFORM_DEBUGGER_H
#define ZUN_PLATFORM_DEBUGGER_H

#include "zunConfig.h"

namespace zunPlatform
{
    /// True while a tracer is attached to the process. Asked anew at every call.
    ZUN_API bool IsDebuggerPresent();
    /// Hands 8-bit text (UTF-8) to the debugger; dropped when none is attached.
    /// A null text is taken as empty.
    ZUN_API void OutputDebugText(const char * text);
    /// Hands UTF-16 text to the debugger as UTF-8; dropped when none is attached.
    /// A null text is taken as empty.
    ZUN_API void OutputDebugTextW(const zunWChar * text);

    /// Internal, for tests: a receiver of everything given to the two sinks,
    /// attached or not, before the debugger test.
    struct DebuggerCapture
    {
        virtual ~DebuggerCapture() = default;
        virtual void Text(const char * text) = 0;
        virtual void TextW(const zunWChar * text) = 0;
    };
    /// Internal, for tests: installs `capture` (null removes it). While one is
    /// installed the sinks give it the text instead of writing anything.
    ZUN_API void SetDebuggerCapture(DebuggerCapture * capture);
    /// Internal, for tests: -1 asks the system (the default), 0 answers "no
    /// debugger", 1 answers "a debugger is attached".
    ZUN_API void ForceDebuggerPresent(int answer);
}

#endif // ZUN_PLATFORM_DEBUGGER_H
