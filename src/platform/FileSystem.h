// FileSystem.h - the file and folder calls beneath zunPath.
//
// Every function takes the canonical text of a path (backslashes, UTF-16) and
// makes the platform's form of it: UTF-8 with forward slashes here. An empty
// text names nothing, so every call on it fails. True means that the system
// did what was asked. Where Linux and the library's rules differ, the rule is
// kept here: a file without its owner write bit is read-only, and a read-only
// file is neither deleted, touched nor replaced, whoever asks.
#ifndef ZUN_PLATFORM_FILE_SYSTEM_H
#define ZUN_PLATFORM_FILE_SYSTEM_H

#include <cstdio>

#include "zunPath.h"

namespace zunPlatform
{
    /// The separator of the platform's form of a path.
    constexpr zunWChar kNativeSeparator = u'/';

    /// stat of the path (links followed) and a test that it can be read.
    bool QueryInfo(const zunWChar * path, zunPath::Info & info);
    /// mkdir with the default permissions; the parent must exist.
    bool MakeFolder(const zunWChar * path);
    /// unlink of anything but a folder; a read-only file is refused.
    bool DeleteFile(const zunWChar * path);
    /// rmdir: the folder must be empty.
    bool DeleteFolder(const zunWChar * path);
    /// chdir.
    bool SetCurrentFolder(const zunWChar * path);
    /// getcwd as UTF-16; empty on failure.
    zunStringW GetCurrentFolder();
    /// The folder for temporary files with a trailing separator: "/tmp/".
    zunStringW GetTemporaryFolder();

    /// The attributes ChangeAttribute knows.
    enum FileAttribute
    {
        AttributeWriteable = 0,
        AttributeHidden = 1
    };
    /// Writeable: `value` true adds the owner write bit, false removes all
    /// write bits. Hidden: Linux keeps it in the name, which is never
    /// changed here; true when the name already is as asked. Any other
    /// attribute is reported with zunFixMe("Unsupported attribute") and
    /// fails. A missing path fails. Exported for tests.
    ZUN_API bool ChangeAttribute(const zunWChar * path, unsigned int attribute, bool value);

    /// Copies a file or a folder tree as a shell copy does: into `to` when
    /// that is an existing folder, else as `to`, making missing folders.
    bool Copy(const zunWChar * from, const zunWChar * to);
    /// rename; across file systems a file is copied and its source deleted
    /// when `allowCopy` is set. An existing target only with `replace`.
    bool Move(const zunWChar * from, const zunWChar * to, bool allowCopy, bool replace);
    /// Sets the access and write times of a file to now; fails for a folder
    /// and for a read-only file.
    bool SetTimesToNow(const zunWChar * path);
    /// fopen of the platform form; errno tells a failure.
    FILE * OpenStream(const zunWChar * path, const char * mode);
    /// Whether names differ by case on the file system of `path`: false, as
    /// the library treats every file system.
    bool IsCaseSensitive(const zunWChar * path);

    /// A running folder search; FindNext goes on with it, deleting it ends it.
    struct FindHandle
    {
        virtual ~FindHandle() = default;
    };
    /// Starts a search. `search` is a folder and a name mask behind its last
    /// separator (a text without one is a mask for the current folder). The
    /// first entry that the mask accepts (in `mode` 1 a folder always
    /// matches) fills `name` and `info`. Null when the folder cannot be read
    /// or nothing matches. "." and ".." come as entries like any other.
    FindHandle * FindFirst(const zunWChar * search, zunPath::Info & info, zunStringW & name, int mode);
    /// The next matching entry; false when none is left.
    bool FindNext(FindHandle * handle, zunPath::Info & info, zunStringW & name);

    /// Internal, for tests: while set, every rename across folders reports
    /// that source and target lie on different file systems.
    ZUN_API void ForceCrossDeviceMoves(bool force);
}

#endif // ZUN_PLATFORM_FILE_SYSTEM_H
