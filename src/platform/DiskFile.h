// DiskFile.h - the descriptor calls beneath the disk streams (zunFileDisk).
//
// Each call reports failure as the runtime does: -1 (or non-zero for close and
// unlink) with errno set; ErrorNumber reads errno and ErrorText names it.
#ifndef ZUN_PLATFORM_DISK_FILE_H
#define ZUN_PLATFORM_DISK_FILE_H

#include <cstdint>

#include "zunConfig.h"

namespace zunPlatform
{
    /// Open flags of a disk stream, with the numbers of the target runtime's
    /// low-level open; OpenDescriptor maps them to the system's.
    enum DiskOpenFlag : int
    {
        DiskOpenReadOnly = 0x0000,
        DiskOpenReadWrite = 0x0002,
        DiskOpenCreate = 0x0100,
        DiskOpenTruncate = 0x0200,
        DiskOpenExclusive = 0x0400,
        DiskOpenBinary = 0x8000
    };
    /// Permissions of a file that the open creates.
    constexpr int kDiskPermissionReadWrite = 0666;
    constexpr int kDiskPermissionRead = 0444;

    /// Where SeekDescriptor counts from.
    enum DiskSeekBase : int
    {
        DiskSeekSet = 0,
        DiskSeekCurrent = 1,
        DiskSeekEnd = 2
    };

    /// Opens `path` (the platform form of a path, UTF-16) with DiskOpenFlag
    /// bits, sharing it with other openers; the descriptor or -1.
    int OpenDescriptor(const zunWChar * path, int flags, int permission);
    /// The bytes read (0 at the end) or -1. Interrupted calls are retried.
    std::int64_t ReadDescriptor(int descriptor, void * data, unsigned int count);
    /// The bytes written, or -1; fewer than `count` only when a call failed,
    /// errno telling why.
    std::int64_t WriteDescriptor(int descriptor, const void * data, unsigned int count);
    /// The new position or -1.
    std::int64_t SeekDescriptor(int descriptor, std::int64_t offset, DiskSeekBase base);
    /// 0 or non-zero.
    int CloseDescriptor(int descriptor);
    /// Removes the file `path` (platform form, UTF-16); 0 or non-zero.
    int UnlinkFile(const zunWChar * path);

    /// The errno of the last failed call.
    int ErrorNumber();
    /// The library's text of an errno value; "unknown" for a number it lacks.
    /// Exported for tests.
    ZUN_API const char * ErrorText(int number);
}

#endif // ZUN_PLATFORM_DISK_FILE_H
