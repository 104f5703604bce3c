// Unprivileged.h - permission checks that hold when the tests run as the
// superuser, whom the system lets past every permission bit (as in CI).
#ifndef ZUN_TEST_UNPRIVILEGED_H
#define ZUN_TEST_UNPRIVILEGED_H

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

namespace testsupport
{
    inline bool IsSuperuser()
    {
        return geteuid() == 0;
    }

    /// Runs `check` as the user "nobody" in a child process when this one is
    /// the superuser, else here; true when the check passed. The child must
    /// reach what it checks: see OpenToOthers.
    inline bool AsUnprivilegedUser(const std::function<bool()> & check)
    {
        if (!IsSuperuser())
            return check();
        const pid_t child = fork();
        if (child == 0)
        {
            const uid_t nobody = 65534;
            const bool dropped = setgid(nobody) == 0 && setuid(nobody) == 0;
            _exit(dropped && check() ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    /// Lets every user list and enter `folder` (a private temporary folder is
    /// closed to "nobody"); true on success.
    inline bool OpenToOthers(const std::string & folder)
    {
        return chmod(folder.c_str(), 0755) == 0;
    }
}

#endif // ZUN_TEST_UNPRIVILEGED_H
