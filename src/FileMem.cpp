// zunFileMem: streams over a byte array, without a cache.
#include <cstring>

#include "ThrowSite.h"
#include "zunException.h"
#include "zunFile.h"

namespace
{
    // The back-end over a zunFastMesh<unsigned char> it doesn't own. The size
    // of the file is the array's count, a 32-bit number.
    class MemCallbacks : public zunFile::CallBacks
    {
    public:
        MemCallbacks(zunFastMesh<unsigned char> * storage, bool readOnlyStorage)
            : mesh(storage), filePointer(0), readOnly(readOnlyStorage)
        {
        }

        std::uint64_t Write(const void * data, std::uint64_t count) const override
        {
            if (readOnly)
            {
                zunFixMe("Write not available on read only file");
                return 0;
            }
            if (count == 0)
                return 0;
            const std::uint64_t size = mesh->Count();
            const auto * bytes = static_cast<const unsigned char *>(data);
            // Bytes before the end overwrite in place; the rest is appended.
            const std::uint64_t inside =
                filePointer < size ? (count < size - filePointer ? count : size - filePointer) : 0;
            if (inside != 0)
                std::memcpy(mesh->Data() + filePointer, bytes, inside);
            std::uint64_t written = inside;
            const std::uint64_t rest = count - inside;
            // An array that can't grow makes a short write, so the typed
            // write above reports it instead of the bytes being lost unseen.
            if (rest != 0 && rest <= 0xFFFFFFFFu &&
                mesh->InsertRange(0xFFFFFFFFu, bytes + inside, static_cast<unsigned int>(rest)))
                written = count;
            filePointer += written;
            return written;
        }

        std::uint64_t Read(void * data, std::uint64_t count) override
        {
            if (count == 0)
                return 0;
            const std::uint64_t size = mesh->Count();
            const std::uint64_t available = filePointer < size ? size - filePointer : 0;
            if (count < available)
            {
                std::memcpy(data, mesh->Data() + filePointer, count);
                filePointer += count;
                return count;
            }
            // Reaching or passing the end: what is left, and the pointer at the end.
            if (available != 0)
                std::memcpy(data, mesh->Data() + filePointer, available);
            filePointer = size;
            return available;
        }

        std::uint64_t SetFilePointer(std::uint64_t position) override
        {
            if (position >= 0xFFFFFFFFu)
                throw ZUN_EXCEPTION("unsigned __int64 __cdecl MemCallbacks::SetFilePointer(unsigned __int64) "
                                    "throw(struct zunException)")
                    .SetDebugDescription("SetFilePointer: invalid position");
            const std::uint64_t size = mesh->Count();
            // A position past the end is clamped without complaint.
            filePointer = position < size ? position : size;
            return filePointer;
        }

        std::uint64_t GetFilePointer() override { return filePointer; }
        std::uint64_t GetFileSize() override { return mesh->Count(); }
        void Close() override {}

    private:
        zunFastMesh<unsigned char> * mesh;
        mutable std::uint64_t filePointer;
        bool readOnly;
    };

    std::unique_ptr<zunFile> MakeMemoryFile(zunFastMesh<unsigned char> * mesh, bool readOnly)
    {
        auto file = std::make_unique<zunFile>(std::make_unique<MemCallbacks>(mesh, readOnly));
        // A memory stream has no cache: every operation reaches the array.
        file->SetCacheSize(0);
        return file;
    }
}

std::unique_ptr<zunFile> zunFileMem::Create(zunFastMesh<unsigned char> & mesh)
{
    return MakeMemoryFile(&mesh, false);
}

std::unique_ptr<zunFile> zunFileMem::Create(const zunFastMesh<unsigned char> & mesh)
{
    // Never written through: readOnly turns every write away.
    return MakeMemoryFile(const_cast<zunFastMesh<unsigned char> *>(&mesh), true);
}
