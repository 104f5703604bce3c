// UserFolders.h - the user's home, desktop and documents folders.
//
// The home folder is the password database's entry of the user (getpwuid_r).
// Desktop and documents come from the user-dirs file, ".config/user-dirs.dirs"
// in the home folder (its XDG_DESKTOP_DIR and XDG_DOCUMENTS_DIR lines, values
// "$HOME/..." or absolute), else "Desktop" and "Documents" in the home folder.
// No environment variable is read. The folders are not required to exist.
#ifndef ZUN_PLATFORM_USER_FOLDERS_H
#define ZUN_PLATFORM_USER_FOLDERS_H

#include <string>

#include "zunConfig.h"

namespace zunPlatform
{
    enum UserFolder
    {
        UserHome,
        UserDesktop,
        UserDocuments
    };

    /// The absolute path of `folder`, without a trailing slash. False, with
    /// `path` emptied, when the user has no home folder. Exported for tests.
    ZUN_API bool GetUserFolder(UserFolder folder, std::string & path);

    /// Internal, for tests: takes `home` in place of the password database's
    /// home folder (user-dirs file included); null returns to the database.
    ZUN_API void OverrideUserHome(const char * home);
}

#endif // ZUN_PLATFORM_USER_FOLDERS_H
