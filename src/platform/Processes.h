// Processes.h - processes, dynamic libraries and the machine.
//
// Entry points marked ZUN_API are exported for the tests only; they are not
// part of the public interface.
//
// Each call that fails records the system's text for the failure as the
// calling thread's last error, which LastErrorText gives back until the next
// failure. Success leaves it as it was.
#ifndef ZUN_PLATFORM_PROCESSES_H
#define ZUN_PLATFORM_PROCESSES_H

#include <string>
#include <vector>

#include "zunConfig.h"

namespace zunPlatform
{
    /// The text of the calling thread's last failure; empty if none was recorded.
    ZUN_API std::string LastErrorText();

    /// Splits a command line (UTF-8) into its arguments as a started C or C++
    /// program would: the program name runs to the next space or tab, quotes
    /// group and are dropped; in the other arguments spaces and tabs separate,
    /// quotes group, 2n backslashes before a quote give n and the quote groups,
    /// 2n+1 give n and a literal quote, "" inside a group gives a quote, other
    /// backslashes are literal. Internal, exported for tests.
    ZUN_API std::vector<std::string> SplitCommandLine(const char * commandLine);
    /// Starts the program named by the first argument of `commandLine` with all
    /// its arguments, the environment of this process and its current folder
    /// (posix_spawnp). The process id, or 0xFFFFFFFF. The child is not reaped:
    /// its exit status waits for the caller's waitpid.
    ZUN_API unsigned int StartProcess(const char * commandLine);

    /// Outcome of ProcessImagePath.
    enum ImageQuery
    {
        ImageNoProcess,   ///< no process to ask (the process could not be opened)
        ImageQueryFailed, ///< the process is there but its image cannot be read
        ImageFound
    };
    /// The absolute path of the executable of `pid` (/proc/<pid>/exe).
    ZUN_API ImageQuery ProcessImagePath(unsigned int pid, std::string & path);
    unsigned int CurrentProcessId();
    /// Writes at most `capacity` process ids (a walk of /proc) and returns the
    /// count; 0 when /proc cannot be read.
    unsigned int EnumerateProcesses(unsigned int * ids, unsigned int capacity);
    /// Ends `pid` at once (SIGKILL). False for ids the system does not give to
    /// one process (0, above INT_MAX), and when the signal cannot be sent.
    bool TerminateProcess(unsigned int pid);

    /// dlopen with every symbol bound now; null on failure.
    ZUN_API void * OpenLibrary(const char * path);
    /// dlsym in `library`; null on failure, a null library or a null name.
    ZUN_API void * FindSymbol(void * library, const char * name);

    /// Processors online.
    unsigned int ProcessorCount();
    /// Sleeps the calling thread, resuming after signals until the time is up.
    void SleepMilliseconds(unsigned int milliseconds);
}

#endif // ZUN_PLATFORM_PROCESSES_H
