// User folders from the password database and the user-dirs file.
#include "UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

namespace zunPlatform
{
    namespace
    {
        bool g_homeOverridden = false;
        std::string g_homeOverride;

        bool HomeFromPasswordDatabase(std::string & home)
        {
            long size = sysconf(_SC_GETPW_R_SIZE_MAX);
            std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
            passwd entry;
            passwd * found = nullptr;
            int error;
            while ((error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE)
                buffer.resize(buffer.size() * 2);
            if (error != 0 || found == nullptr || found->pw_dir == nullptr || found->pw_dir[0] == 0)
                return false;
            home = found->pw_dir;
            return true;
        }

        void DropTrailingSlashes(std::string & path)
        {
            while (path.size() > 1 && path.back() == '/')
                path.pop_back();
        }

        // `home` followed by `rest`, which is empty or starts with a slash.
        std::string InHome(const std::string & home, const std::string & rest)
        {
            std::string path = (home == "/" ? std::string() : home) + rest;
            return path.empty() ? "/" : path;
        }

        // One value of the user-dirs file: `"$HOME/Desk top"` or `"/abs"`, with
        // backslash escapes inside the quotes. False for any other form.
        bool ParseUserDirValue(const std::string & text, const std::string & home, std::string & path)
        {
            if (text.size() < 2 || text.front() != '"')
                return false;
            std::string value;
            std::size_t i = 1;
            for (; i < text.size() && text[i] != '"'; ++i)
            {
                if (text[i] == '\\' && i + 1 < text.size())
                    ++i;
                value += text[i];
            }
            if (i >= text.size())
                return false;
            if (value.compare(0, 5, "$HOME") == 0 && (value.size() == 5 || value[5] == '/'))
                path = InHome(home, value.substr(5));
            else if (!value.empty() && value[0] == '/')
                path = value;
            else
                return false;
            DropTrailingSlashes(path);
            return true;
        }

        bool FolderFromUserDirs(const std::string & home, const char * key, std::string & path)
        {
            std::ifstream file(home + "/.config/user-dirs.dirs");
            std::string line;
            bool found = false;
            const std::size_t keyLength = std::strlen(key);
            while (std::getline(file, line))
            {
                std::size_t start = line.find_first_not_of(" \t");
                if (start == std::string::npos || line[start] == '#')
                    continue;
                if (line.compare(start, keyLength, key) != 0 || line.compare(start + keyLength, 1, "=") != 0)
                    continue;
                std::string value;
                // The last valid line of a key wins, as the shell that sources the file sees it.
                if (ParseUserDirValue(line.substr(start + keyLength + 1), home, value))
                {
                    path = value;
                    found = true;
                }
            }
            return found;
        }
    }

    bool GetUserFolder(UserFolder folder, std::string & path)
    {
        path.clear();
        std::string home;
        if (g_homeOverridden)
            home = g_homeOverride;
        else if (!HomeFromPasswordDatabase(home))
            return false;
        if (home.empty())
            return false;
        DropTrailingSlashes(home);
        switch (folder)
        {
        case UserHome:
            path = home;
            return true;
        case UserDesktop:
            if (!FolderFromUserDirs(home, "XDG_DESKTOP_DIR", path))
                path = InHome(home, "/Desktop");
            return true;
        case UserDocuments:
            if (!FolderFromUserDirs(home, "XDG_DOCUMENTS_DIR", path))
                path = InHome(home, "/Documents");
            return true;
        }
        return false;
    }

    void OverrideUserHome(const char * home)
    {
        g_homeOverridden = home != nullptr;
        g_homeOverride = home != nullptr ? home : "";
    }
}
