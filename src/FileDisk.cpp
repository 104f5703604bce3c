// zunFileDisk: streams over files on disk, through the platform's descriptor
// calls.
#include "zunFileDisk.h"

#include "ThrowSite.h"
#include "platform/DiskFile.h"
#include "zunDebugPrint.h"
#include "zunException.h"

namespace
{
    using namespace zunPlatform;

    // Fills "<call> failed with error %d %s" with errno and its text.
    zunException & WithErrno(zunException & e, const char * format)
    {
        const int number = ErrorNumber();
        return e.SetDebugDescription(format, number, ErrorText(number));
    }

    // The back-end over one descriptor. It never closes in its destructor:
    // closing is the stream's duty.
    class DiskCallbacks : public zunFile::CallBacks
    {
    public:
        DiskCallbacks(int descriptor, const zunPath & openedPath)
            : fileDescriptor(descriptor), path(openedPath), deleteOnClose(false)
        {
        }

        std::uint64_t Write(const void * data, std::uint64_t count) const override
        {
            // The count is narrowed to 32 bits, as the runtime's call takes it.
            const unsigned int narrowed = static_cast<unsigned int>(count);
            const std::int64_t written = WriteDescriptor(fileDescriptor, data, narrowed);
            if (written < 0 || static_cast<std::uint64_t>(written) < count)
            {
                zunException e = ZUN_EXCEPTION("unsigned __int64 __cdecl DiskCallbacks::Write(const void *,unsigned "
                                               "__int64) const throw(struct zunException)");
                throw WithErrno(e, "write failed with error %d %s");
            }
            return static_cast<std::uint64_t>(written);
        }

        std::uint64_t Read(void * data, std::uint64_t count) override
        {
            const std::int64_t read = ReadDescriptor(fileDescriptor, data, static_cast<unsigned int>(count));
            if (read == -1)
            {
                zunException e = ZUN_EXCEPTION(
                    "unsigned __int64 __cdecl DiskCallbacks::Read(void *,unsigned __int64) throw(struct zunException)");
                throw WithErrno(e, "read failed with error %d %s");
            }
            return static_cast<std::uint64_t>(read);
        }

        std::uint64_t SetFilePointer(std::uint64_t position) override
        {
            const std::int64_t at = SeekDescriptor(fileDescriptor, static_cast<std::int64_t>(position), DiskSeekSet);
            if (at == -1)
            {
                zunException e = ZUN_EXCEPTION("unsigned __int64 __cdecl DiskCallbacks::SetFilePointer(unsigned "
                                               "__int64) throw(struct zunException)");
                throw WithErrno(e, "SetFilePointer failed with error %d %s");
            }
            return static_cast<std::uint64_t>(at);
        }

        std::uint64_t GetFilePointer() override
        {
            const std::int64_t at = SeekDescriptor(fileDescriptor, 0, DiskSeekCurrent);
            if (at == -1)
            {
                zunException e = ZUN_EXCEPTION(
                    "unsigned __int64 __cdecl DiskCallbacks::GetFilePointer(void) throw(struct zunException)");
                throw WithErrno(e, "GetFilePointer failed with error %d %s");
            }
            return static_cast<std::uint64_t>(at);
        }

        std::uint64_t GetFileSize() override
        {
            const std::uint64_t saved = GetFilePointer();
            const std::int64_t end = SeekDescriptor(fileDescriptor, 0, DiskSeekEnd);
            if (end == -1)
            {
                zunException e = ZUN_EXCEPTION(
                    "unsigned __int64 __cdecl DiskCallbacks::GetFileSize(void) throw(struct zunException)");
                throw WithErrno(e, "GetFileSize failed with error %d %s");
            }
            SetFilePointer(saved);
            return static_cast<std::uint64_t>(end);
        }

        void Close() override
        {
            if (fileDescriptor == -1)
                return;
            if (CloseDescriptor(fileDescriptor) != 0)
            {
                zunException e = ZUN_EXCEPTION("void __cdecl DiskCallbacks::Close(void) throw(struct zunException)");
                throw WithErrno(e, "close failed with error %d %s");
            }
            if (deleteOnClose)
            {
                if (UnlinkFile(path.OSRepresentation16()) != 0)
                {
                    zunException e =
                        ZUN_EXCEPTION("void __cdecl DiskCallbacks::Close(void) throw(struct zunException)");
                    throw WithErrno(e, "unlink failed with error %d %s");
                }
                fileDescriptor = -1;
            }
        }

    private:
        int fileDescriptor;
        zunPath path;
        // No stream of this library sets it; the unlink stays for back-ends
        // that would.
        bool deleteOnClose;
    };

    // The open flags of each mode, and whether it raises Read to ReadWrite.
    int ModeFlags(zunFileDisk::OpenMode mode, bool & raisesAccess)
    {
        raisesAccess = false;
        switch (mode)
        {
        case zunFileDisk::CreateNew:
            return DiskOpenCreate | DiskOpenExclusive;
        case zunFileDisk::CreateAlways:
            raisesAccess = true;
            return DiskOpenCreate | DiskOpenTruncate;
        case zunFileDisk::OpenAlways:
            return DiskOpenCreate;
        case zunFileDisk::TruncateExisting:
            raisesAccess = true;
            return DiskOpenTruncate;
        default: // OpenExisting, and any other number
            return 0;
        }
    }
}

std::unique_ptr<zunFile> zunFileDisk::Create(zunPath path, zunFileDisk::Access access, zunFileDisk::OpenMode mode,
                                             const zunFlags<zunFileDisk::Flag, 2> & flags)
{
    if (flags.IsSet(Temporary))
        path =
            zunPath::GetTemporaryFilename(path.GetLastComponent(zunPath::WithExtension), zunPath::GetTemporaryPath());
    else
        path.MakeWriteable(true); // even for reading; a missing file is no error here
    if (path.IsEmpty())
        return nullptr;

    bool raisesAccess = false;
    int openFlags = ModeFlags(mode, raisesAccess);
    const bool writes = access == ReadWrite || raisesAccess;
    if (writes)
        openFlags |= DiskOpenReadWrite;
    openFlags |= DiskOpenBinary;
    const int permission = writes ? kDiskPermissionReadWrite : kDiskPermissionRead;

    const int descriptor = OpenDescriptor(path.OSRepresentation16(), openFlags, permission);
    if (descriptor == -1)
    {
        const int number = ErrorNumber();
        zunDprintf("open failed with error %d %s", number, ErrorText(number));
        return nullptr;
    }
    try
    {
        return std::make_unique<zunFile>(std::make_unique<DiskCallbacks>(descriptor, path));
    }
    catch (...)
    {
        // A descriptor that can't seek (a pipe) fails the stream's first
        // questions; it is not left open behind the failure.
        CloseDescriptor(descriptor);
        throw;
    }
}
