// IdTestSupport.h - memory streams and chunk fences for the file-form tests
// of identifiers, user data and external references.
#ifndef ZUN_ID_TEST_SUPPORT_H
#define ZUN_ID_TEST_SUPPORT_H

#include <zunFoundation.h>

#include <functional>
#include <memory>
#include <vector>

namespace idtest
{
    constexpr unsigned int kFenceFCC = 0x636E6566; // "fenc"

    inline std::vector<unsigned char> BytesOf(const zunFastMesh<unsigned char> & mesh)
    {
        return std::vector<unsigned char>(mesh.Data(), mesh.Data() + mesh.Count());
    }

    /// What `write` puts into a fresh memory stream of byte order `order`.
    inline zunFastMesh<unsigned char> Written(const std::function<void(zunFile *)> & write,
                                              zunSystem::Endianness order = zunSystem::Little)
    {
        zunFastMesh<unsigned char> mesh;
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        write(file.get());
        file->Close();
        return mesh;
    }

    inline std::unique_ptr<zunFile> Reader(const zunFastMesh<unsigned char> & mesh,
                                           zunSystem::Endianness order = zunSystem::Little)
    {
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        return file;
    }

    /// A stream must not outlive its array.
    std::unique_ptr<zunFile> Reader(zunFastMesh<unsigned char> && mesh,
                                    zunSystem::Endianness order = zunSystem::Little) = delete;

    /// A chunk whose contents are the first `kept` bytes `write` produces:
    /// a writer that stopped early.
    inline zunFastMesh<unsigned char> Truncated(const std::function<void(zunFile *)> & write, unsigned int kept)
    {
        const zunFastMesh<unsigned char> full = Written(write);
        return Written(
            [&](zunFile * file)
            {
                zunChunk chunk(file);
                chunk.Create(kFenceFCC);
                file->Write_Block(full.Data(), kept);
                chunk.Close();
            });
    }

    /// Runs `read` inside the chunk made by Truncated; true if the reader
    /// landed behind the chunk.
    inline bool ReadFenced(const zunFastMesh<unsigned char> & mesh, const std::function<void(zunFile *)> & read)
    {
        auto file = Reader(mesh);
        zunChunk chunk(file.get());
        chunk.Descend();
        read(file.get());
        chunk.Ascend();
        return file->GetCurrPos() == mesh.Count();
    }
}

#endif // ZUN_ID_TEST_SUPPORT_H
