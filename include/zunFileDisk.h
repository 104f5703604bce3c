// zunFileDisk.h - streams over files on disk.
//
//   std::unique_ptr<zunFile> file =
//       zunFileDisk::Create(zunPath("scene.kelp"), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
//   if (!file) ...                       // the reason went to the debug print channel
//   file->Write_Int32(7);
//   file->Close();                       // flushes; throws if the disk refuses
//
// The rules a caller must know:
//  - Create reports a file it can't open by a null stream, never by throwing;
//    the text "open failed with error <errno> <text>" goes to the debug print
//    channel. Only a file that opens but can't seek (a pipe) throws, from the
//    stream's first look at its position.
//  - Opening a file, even for reading, first clears its read-only attribute.
//  - CreateAlways and TruncateExisting always open for writing. A file that
//    Read access creates (CreateNew, OpenAlways) is created read-only.
//  - Once open, every failure of the disk throws a zunException whose debug
//    description is "<call> failed with error <errno> <text>", and it reaches
//    the caller of the read, write, seek or Close that met it. The stream's
//    destructor only logs it: call Close to learn of it.
//  - A temporary stream (flag Temporary) opens a fresh name in the temporary
//    folder, made from the last component of the path given, and stays on disk
//    after Close: removing it is the caller's business.
//  - Other openers are not locked out.
#ifndef ZUN_FILE_DISK_H
#define ZUN_FILE_DISK_H

#include <memory>

#include "zunConfig.h"
#include "zunFile.h"
#include "zunFlags.h"
#include "zunPath.h"

/// Makes zunFile streams over files on disk.
struct ZUN_API zunFileDisk
{
    /// What the stream may do; any other number opens as Read.
    enum Access : int
    {
        Read = 0,
        ReadWrite = 1
    };
    /// How the file is found or made; any other number acts as OpenExisting.
    enum OpenMode : int
    {
        CreateNew = 0,        ///< fails if the file exists
        CreateAlways = 1,     ///< creates or empties it; opens for writing
        OpenExisting = 2,     ///< fails if the file is missing
        OpenAlways = 3,       ///< creates it if missing
        TruncateExisting = 4, ///< empties an existing file; opens for writing
    };
    /// Bits of Create's flags. The bit of mask 1 is ignored.
    enum Flag : int
    {
        Temporary = 2 ///< open a fresh name in the temporary folder
    };

    /// Opens `path` and builds a stream over it with the default cache; null
    /// when the file can't be opened, when the path is empty, or when no
    /// temporary name could be found.
    static std::unique_ptr<zunFile>
    Create(zunPath path, zunFileDisk::Access access, zunFileDisk::OpenMode mode,
           const zunFlags<zunFileDisk::Flag, 2> & flags = zunFlags<zunFileDisk::Flag, 2>());
};

#endif // ZUN_FILE_DISK_H
