// The user-data block reader over arbitrary bytes, in both chunk size modes,
// both byte orders, with and without a block cache, with a registry of two
// record types that travel in files and one that does not. The only
// outcomes allowed are a clean read or a zunException; what a clean read
// gives writes, reads back and writes again to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "FuzzStream.h"
#include "zunFeatureID.h"
#include "zunString.h"
#include "zunUserData.h"

namespace
{
    const zunGUID kNoteId("6b29fc40-ca47-1067-b31d-00dd010662da");
    const zunGUID kPathId("0c1d2e3f-4a5b-6c7d-8e9f-a0b1c2d3e4f5");
    const zunGUID kVolatileId("11111111-2222-3333-4444-555555555555");

    /// A number and a text.
    struct Note : zunUserDataManager::UserData
    {
        int number = -1;
        zunString text = "unread";

        bool IsTransferable() const override { return true; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Note>(*this); }
        void Write(zunFile & file) const override
        {
            file.Write_Int32(number);
            file.Write_String(text);
        }
        void Read(zunFile & file) override
        {
            file.Read_Int32(number);
            fuzz::ReadStringGuarded(file, text, [&] { file.Read_String(text); });
        }
    };

    /// A feature path.
    struct FeaturePath : zunUserDataManager::UserData
    {
        zunFeatureID path;

        bool IsTransferable() const override { return false; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<FeaturePath>(*this); }
        void Write(zunFile & file) const override { path.Write(&file); }
        void Read(zunFile & file) override { fuzz::ReadFeatureIDGuarded(file, path); }
    };

    void Register()
    {
        static const bool registered = []
        {
            FUZZ_CHECK(zunUserDataManager::RegisterSerializableUserData(
                           kNoteId, [] { return std::make_unique<Note>(); }) == zunUserDataManager::NoError);
            FUZZ_CHECK(zunUserDataManager::RegisterSerializableUserData(
                           kPathId, [] { return std::make_unique<FeaturePath>(); }) == zunUserDataManager::NoError);
            FUZZ_CHECK(zunUserDataManager::RegisterVolatileUserData(kVolatileId) == zunUserDataManager::NoError);
            return true;
        }();
        (void)registered;
    }

    zunFastMesh<unsigned char> Written(const zunUserDataManager & manager, const zunFile & like)
    {
        zunFastMesh<unsigned char> bytes;
        std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
        file->SetEndianness(like.GetEndianness());
        file->SetChunkSizeBits(const_cast<zunFile &>(like).GetChunkSizeBits());
        manager.Write(*file);
        file->Close();
        return bytes;
    }

    bool Same(const zunFastMesh<unsigned char> & a, const zunFastMesh<unsigned char> & b)
    {
        return a.Count() == b.Count() && (a.Count() == 0 || std::memcmp(a.Data(), b.Data(), a.Count()) == 0);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    Register();
    fuzz::Stream stream(data, size);
    if (!stream.file)
        return 0;
    zunUserDataManager manager;
    try
    {
        manager.Read(*stream.file);
    }
    catch (const zunException &)
    {
        return 0; // a clean refusal: a foreign chunk, a zero id, a storage failure
    }

    const zunFastMesh<unsigned char> first = Written(manager, *stream.file);
    zunUserDataManager again;
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(first);
        file->SetEndianness(stream.file->GetEndianness());
        file->SetChunkSizeBits(stream.file->GetChunkSizeBits());
        again.Read(*file);
    }
    FUZZ_CHECK(Same(Written(again, *stream.file), first));
    return 0;
}
