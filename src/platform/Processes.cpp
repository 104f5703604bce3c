// Processes through posix_spawn, /proc and kill; libraries through dlopen.
#include "Processes.h"

#include <dirent.h>
#include <dlfcn.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

extern char ** environ;

namespace zunPlatform
{
    namespace
    {
        thread_local std::string t_lastError;

        void RecordError(int error)
        {
            t_lastError = std::strerror(error);
        }

        void RecordError(const char * text)
        {
            t_lastError = text != nullptr ? text : "";
        }

        bool IsBlank(char c)
        {
            return c == ' ' || c == '\t';
        }

        // The program name: no escapes, quotes toggle grouping and are dropped.
        const char * SplitProgramName(const char * p, std::vector<std::string> & arguments)
        {
            std::string name;
            bool quoted = false;
            for (; *p != 0 && (quoted || !IsBlank(*p)); ++p)
            {
                if (*p == '"')
                    quoted = !quoted;
                else
                    name += *p;
            }
            arguments.push_back(name);
            return p;
        }
    }

    std::string LastErrorText()
    {
        return t_lastError;
    }

    std::vector<std::string> SplitCommandLine(const char * commandLine)
    {
        std::vector<std::string> arguments;
        if (commandLine == nullptr)
            return arguments;
        const char * p = SplitProgramName(commandLine, arguments);
        bool quoted = false;
        for (;;)
        {
            while (IsBlank(*p))
                ++p;
            if (*p == 0)
                break;
            std::string argument;
            for (;;)
            {
                bool copy = true;
                unsigned int slashes = 0;
                while (*p == '\\')
                {
                    ++p;
                    ++slashes;
                }
                if (*p == '"')
                {
                    if (slashes % 2 == 0)
                    {
                        if (quoted && p[1] == '"')
                            ++p; // "" inside a group: one literal quote
                        else
                        {
                            copy = false;
                            quoted = !quoted;
                        }
                    }
                    slashes /= 2;
                }
                argument.append(slashes, '\\');
                if (*p == 0 || (!quoted && IsBlank(*p)))
                    break;
                if (copy)
                    argument += *p;
                ++p;
            }
            arguments.push_back(argument);
        }
        return arguments;
    }

    unsigned int StartProcess(const char * commandLine)
    {
        const std::vector<std::string> arguments = SplitCommandLine(commandLine);
        if (arguments.empty() || arguments[0].empty())
        {
            RecordError(ENOENT);
            return 0xFFFFFFFF;
        }
        std::vector<char *> argv;
        argv.reserve(arguments.size() + 1);
        for (const std::string & argument : arguments)
            argv.push_back(const_cast<char *>(argument.c_str()));
        argv.push_back(nullptr);
        pid_t pid = 0;
        const int error = posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ);
        if (error != 0)
        {
            RecordError(error);
            return 0xFFFFFFFF;
        }
        return static_cast<unsigned int>(pid);
    }

    ImageQuery ProcessImagePath(unsigned int pid, std::string & path)
    {
        const std::string folder = "/proc/" + std::to_string(pid);
        struct stat info;
        if (pid == 0 || pid > INT_MAX || stat(folder.c_str(), &info) != 0)
        {
            RecordError(pid == 0 || pid > INT_MAX ? EINVAL : errno);
            return ImageNoProcess;
        }
        char buffer[PATH_MAX];
        const ssize_t length = readlink((folder + "/exe").c_str(), buffer, sizeof(buffer));
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof(buffer))
        {
            RecordError(length < 0 ? errno : ENAMETOOLONG);
            return ImageQueryFailed;
        }
        path.assign(buffer, static_cast<std::size_t>(length));
        return ImageFound;
    }

    unsigned int CurrentProcessId()
    {
        return static_cast<unsigned int>(getpid());
    }

    unsigned int EnumerateProcesses(unsigned int * ids, unsigned int capacity)
    {
        DIR * proc = opendir("/proc");
        if (proc == nullptr)
        {
            RecordError(errno);
            return 0;
        }
        unsigned int count = 0;
        while (count < capacity)
        {
            const dirent * entry = readdir(proc);
            if (entry == nullptr)
                break;
            char * end = nullptr;
            const unsigned long id = std::strtoul(entry->d_name, &end, 10);
            if (end != entry->d_name && *end == 0 && entry->d_name[0] != '0' && id <= UINT_MAX)
                ids[count++] = static_cast<unsigned int>(id);
        }
        closedir(proc);
        return count;
    }

    bool TerminateProcess(unsigned int pid)
    {
        // 0 would signal our own process group and ids past INT_MAX turn into
        // group ids: neither names one process.
        if (pid == 0 || pid > INT_MAX)
        {
            RecordError(EINVAL);
            return false;
        }
        if (kill(static_cast<pid_t>(pid), SIGKILL) != 0)
        {
            RecordError(errno);
            return false;
        }
        return true;
    }

    void * OpenLibrary(const char * path)
    {
        // dlopen takes an empty name for the program itself; a library needs a name.
        if (path == nullptr || *path == 0)
        {
            RecordError(ENOENT);
            return nullptr;
        }
        dlerror();
        void * library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            RecordError(dlerror());
        return library;
    }

    void * FindSymbol(void * library, const char * name)
    {
        // A null handle would search every loaded object, not one library.
        if (library == nullptr || name == nullptr)
        {
            RecordError(EINVAL);
            return nullptr;
        }
        dlerror();
        void * symbol = dlsym(library, name);
        if (symbol == nullptr)
        {
            const char * text = dlerror();
            RecordError(text != nullptr ? text : "symbol has the address 0");
        }
        return symbol;
    }

    unsigned int ProcessorCount()
    {
        const long count = sysconf(_SC_NPROCESSORS_ONLN);
        return count > 0 ? static_cast<unsigned int>(count) : 1;
    }

    void SleepMilliseconds(unsigned int milliseconds)
    {
        timespec remaining;
        remaining.tv_sec = static_cast<time_t>(milliseconds / 1000);
        remaining.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000;
        while (nanosleep(&remaining, &remaining) != 0 && errno == EINTR)
        {
        }
    }
}
