// Chunks: the header forms, patching the size, entering and leaving with the
// limit, nesting, skipping unknown chunks, and the heap handle.
#include <gtest/gtest.h>

#include <functional>

#include "FileTestSupport.h"

using namespace filetest;

namespace
{
    const unsigned int kParent = 0x41424344;
    const unsigned int kChild = 0x45464748;
    const unsigned int kSibling = 0x494A4B4C;

    void WriteWorkedExample(zunFile & file)
    {
        zunChunk parent(&file);
        parent.Create(kParent);
        zunChunk child(&file);
        child.Create(kChild);
        file.Write_Int32(7);
        child.Close();
        parent.Close();
        zunChunk sibling(&file);
        sibling.Create(kSibling);
        sibling.Close();
    }

    std::vector<unsigned char> WrittenToMemory(const std::function<void(zunFile &)> & write,
                                               zunFile::ChunkSizeBits bits = zunFile::ChunkSize32,
                                               zunSystem::Endianness order = zunSystem::Little)
    {
        zunFastMesh<unsigned char> mesh;
        auto file = zunFileMem::Create(mesh);
        file->SetChunkSizeBits(bits);
        file->SetEndianness(order);
        write(*file);
        file->Close();
        return Contents(mesh);
    }

    /// A cached stream over recorded storage holding `bytes`.
    std::unique_ptr<zunFile> CachedReader(const std::shared_ptr<Storage> & storage,
                                          const std::vector<unsigned char> & bytes)
    {
        storage->bytes = bytes;
        return MakeRecordedFile(storage);
    }
}

TEST(ChunkForm, WorkedExample32)
{
    EXPECT_EQ(WrittenToMemory(WriteWorkedExample),
              Bytes({0x44, 0x43, 0x42, 0x41, 0x0C, 0, 0,    0,    0x48, 0x47, 0x46, 0x45, 0x04, 0,
                     0,    0,    0x07, 0,    0,    0, 0x4C, 0x4B, 0x4A, 0x49, 0,    0,    0,    0}));
}

TEST(ChunkForm, WorkedExample64)
{
    EXPECT_EQ(
        WrittenToMemory(WriteWorkedExample, zunFile::ChunkSize64),
        Bytes({0x44, 0x43, 0x42, 0x41, 0x10, 0, 0, 0, 0,    0,    0,    0,    0x48, 0x47, 0x46, 0x45, 0x04, 0, 0, 0,
               0,    0,    0,    0,    0x07, 0, 0, 0, 0x4C, 0x4B, 0x4A, 0x49, 0,    0,    0,    0,    0,    0, 0, 0}));
}

TEST(ChunkForm, WorkedExampleThroughTheCache)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    WriteWorkedExample(*file);
    file->Close();
    EXPECT_EQ(storage->bytes, WrittenToMemory(WriteWorkedExample));
}

TEST(ChunkForm, BigEndianTagIsANumber)
{
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(kParent);
                      f.Write_Int16(1);
                      c.Close();
                  },
                  zunFile::ChunkSize32, zunSystem::Big),
              Bytes({0x41, 0x42, 0x43, 0x44, 0, 0, 0, 2, 0, 1}));
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(kParent);
                      c.Close();
                  },
                  zunFile::ChunkSize64, zunSystem::Big),
              Bytes({0x41, 0x42, 0x43, 0x44, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ChunkForm, EmptyChunkSizes)
{
    auto empty = [](zunFile & f)
    {
        zunChunk c(&f);
        c.Create(1);
        c.Close();
        EXPECT_EQ(c.GetSize(), 0u);
    };
    EXPECT_EQ(WrittenToMemory(empty).size(), 8u);
    EXPECT_EQ(WrittenToMemory(empty, zunFile::ChunkSize64).size(), 12u);
}

TEST(ChunkForm, OneObjectTwoChunksBackToBack)
{
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(1);
                      f.Write_UInt8(9);
                      c.Close();
                      EXPECT_EQ(c.GetSize(), 1u);
                      c.Create(2);
                      c.Close();
                      EXPECT_EQ(c.GetFCC(), 2u);
                  }),
              Bytes({1, 0, 0, 0, 1, 0, 0, 0, 9, 2, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ChunkForm, ReusedChunkIn64BitModeWritesItsStaleSizeAsPlaceholder)
{
    // The placeholder of a reused chunk is its last size; Close writes over it.
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    file->SetChunkSizeBits(zunFile::ChunkSize64);
    zunChunk c(file.get());
    c.Create(1);
    file->Write_Int32(0);
    c.Close();
    c.Create(2);
    EXPECT_EQ(Contents(mesh)[20], 4); // the placeholder of the second chunk
    c.Close();
    EXPECT_EQ(Contents(mesh)[20], 0);
}

TEST(ChunkForm, UnclosedChunkKeepsSizeZero)
{
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(3);
                      f.Write_Int32(5);
                  }),
              Bytes({3, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0}));
}

TEST(ChunkForm, ModeChangeWhileOpenDoesNotTearTheChunk)
{
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(3);
                      f.SetChunkSizeBits(zunFile::ChunkSize64);
                      f.Write_UInt8(1);
                      c.Close();
                  }),
              Bytes({3, 0, 0, 0, 1, 0, 0, 0, 1}));
    // Any number but ChunkSize64 is 32 bits.
    EXPECT_EQ(WrittenToMemory(
                  [](zunFile & f)
                  {
                      zunChunk c(&f);
                      c.Create(3);
                      c.Close();
                  },
                  static_cast<zunFile::ChunkSizeBits>(5))
                  .size(),
              8u);
}

TEST(ChunkForm, CreateAndCloseInsideTheBlockCostNoStorageCall)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(0); // loads the first block
    storage->calls.clear();
    for (int i = 0; i < 1000; ++i)
    {
        zunChunk c(file.get());
        c.Create(5);
        file->Write_Float(i);
        c.Close();
    }
    EXPECT_TRUE(storage->calls.empty());
}

TEST(ChunkForm, CloseReachingBackIntoAnEarlierBlock)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    zunChunk c(file.get());
    c.Create(5);
    std::vector<unsigned char> payload(100000, 0x5A);
    file->Write_Block(payload.data(), payload.size());
    c.Close();
    file->Close();
    ASSERT_EQ(storage->bytes.size(), 100008u);
    EXPECT_EQ(storage->bytes[4], 0xA0);
    EXPECT_EQ(storage->bytes[5], 0x86);
    EXPECT_EQ(storage->bytes[6], 0x01);
    EXPECT_EQ(storage->bytes[100007], 0x5A);
}

TEST(ChunkRead, DescendReadAscend)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(
        [](zunFile & f)
        {
            zunChunk c(&f);
            c.Create(9);
            for (int i = 0; i < 25; ++i)
                f.Write_Int32(i);
            c.Close();
            f.Write_Int32(-7);
        }));
    auto file = zunFileMem::Create(mesh);
    file->SetLimit(104 + 4, zunFile::LimitAbsolute);
    zunChunk c(file.get());
    c.Descend();
    EXPECT_EQ(c.GetFCC(), 9u);
    EXPECT_EQ(c.GetSize(), 100u);
    EXPECT_EQ(file->GetLimit(), 108u);
    int value = 0;
    file->Read_Int32(value);
    c.Ascend();
    EXPECT_EQ(file->GetCurrPos(), 108u);
    EXPECT_EQ(file->GetLimit(), 108u); // what it was before
    file->SetLimit(zunFile::NoLimit, zunFile::LimitAbsolute);
    file->Read_Int32(value);
    EXPECT_EQ(value, -7);
}

TEST(ChunkRead, UnDescendGoesBackToTheTag)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(WriteWorkedExample));
    auto file = zunFileMem::Create(mesh);
    zunChunk first(file.get());
    first.Descend();
    file->SetCurrPos(3, zunFile::FromCurrent);
    first.UnDescend();
    EXPECT_EQ(file->GetCurrPos(), 0u);
    EXPECT_EQ(file->GetLimit(), zunFile::NoLimit);
    zunChunk again(file.get());
    again.Descend();
    EXPECT_EQ(again.GetFCC(), first.GetFCC());
    EXPECT_EQ(again.GetSize(), first.GetSize());
}

TEST(ChunkRead, FieldMissingAtTheEndKeepsTheDefault)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(WriteWorkedExample));
    auto file = zunFileMem::Create(mesh);
    zunChunk parent(file.get());
    parent.Descend();
    zunChunk child(file.get());
    child.Descend();
    int seven = 0, missing = 99;
    file->Read_Int32(seven);
    file->Read_Int32(missing);
    EXPECT_EQ(seven, 7);
    EXPECT_EQ(missing, 99);
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_TRUE(file->IsLimitReached());
    child.Ascend();
    parent.Ascend();
    zunChunk sibling(file.get());
    sibling.Descend();
    EXPECT_EQ(sibling.GetFCC(), kSibling);
    EXPECT_EQ(sibling.GetSize(), 0u);
}

TEST(ChunkRead, DescendAtTheLimitFindsNoChunk)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(WriteWorkedExample));
    auto file = zunFileMem::Create(mesh);
    zunChunk parent(file.get());
    parent.Descend();
    zunChunk child(file.get());
    child.Descend();
    child.Ascend();
    ASSERT_TRUE(file->IsLimitReached());
    zunChunk none(file.get());
    none.Descend();
    EXPECT_EQ(none.GetFCC(), 0u);
    EXPECT_EQ(none.GetSize(), 0u);
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_EQ(file->GetLimit(), 20u);
    none.UnDescend();
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_EQ(file->GetLimit(), 20u);
    // Ascend from there would land past the limit, behind an 8-byte header.
    none.Descend();
    none.Ascend();
    EXPECT_EQ(file->GetCurrPos(), 28u);
    EXPECT_EQ(file->GetLimit(), 20u);
}

TEST(ChunkRead, DescendAtTheEndOfTheFile)
{
    auto storage = std::make_shared<Storage>();
    auto file = CachedReader(storage, WrittenToMemory(WriteWorkedExample));
    file->SetCurrPos(28, zunFile::FromStart);
    zunChunk none(file.get());
    none.Descend();
    EXPECT_EQ(none.GetFCC(), 0u);
    EXPECT_EQ(file->GetCurrPos(), 28u);
    EXPECT_EQ(file->GetLimit(), 28u);
}

TEST(ChunkRead, ChildClaimingMoreThanItsParentIsReadToItsOwnEnd)
{
    std::vector<unsigned char> bytes = WrittenToMemory(
        [](zunFile & f)
        {
            zunChunk parent(&f);
            parent.Create(1);
            zunChunk child(&f);
            child.Create(2);
            f.Write_Int32(10);
            child.Close();
            parent.Close();
            f.Write_Int32(20);
        });
    bytes[12] = 8; // the child now claims 8 bytes, 4 of them behind its parent
    const zunFastMesh<unsigned char> mesh = MeshOf(bytes);
    auto file = zunFileMem::Create(mesh);
    zunChunk parent(file.get());
    parent.Descend();
    zunChunk child(file.get());
    child.Descend();
    EXPECT_EQ(file->GetLimit(), 24u);
    int a = 0, b = 0;
    file->Read_Int32(a);
    file->Read_Int32(b);
    EXPECT_EQ(a, 10);
    EXPECT_EQ(b, 20);
    child.Ascend();
    EXPECT_EQ(file->GetLimit(), 20u);
    parent.Ascend();
    EXPECT_EQ(file->GetCurrPos(), 20u);
}

TEST(ChunkRead, ThreeDeepInBothModes)
{
    for (zunFile::ChunkSizeBits bits : {zunFile::ChunkSize32, zunFile::ChunkSize64})
    {
        for (zunSystem::Endianness order : {zunSystem::Little, zunSystem::Big})
        {
            const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(
                [](zunFile & f)
                {
                    zunChunk a(&f), b(&f), c(&f);
                    a.Create(0xA);
                    f.Write_Int32(1);
                    b.Create(0xB);
                    f.Write_Int32(2);
                    c.Create(0xC);
                    f.Write_String(zunString("deep"));
                    c.Close();
                    f.Write_Int32(3);
                    b.Close();
                    f.Write_Int32(4);
                    a.Close();
                },
                bits, order));
            auto file = zunFileMem::Create(mesh);
            file->SetChunkSizeBits(bits);
            file->SetEndianness(order);
            const std::uint64_t header = bits == zunFile::ChunkSize64 ? 12 : 8;
            zunChunk a(file.get()), b(file.get()), c(file.get());
            int v1 = 0, v2 = 0, v3 = 0, v4 = 0;
            zunString text;
            a.Descend();
            EXPECT_EQ(a.GetSize(), 4 + header + 4 + header + 9 + 4 + 4);
            file->Read_Int32(v1);
            b.Descend();
            file->Read_Int32(v2);
            c.Descend();
            EXPECT_EQ(c.GetFCC(), 0xCu);
            text.Read(file.get());
            int beyond = -1;
            file->Read_Int32(beyond);
            EXPECT_EQ(beyond, -1);
            c.Ascend();
            file->Read_Int32(v3);
            b.Ascend();
            file->Read_Int32(v4);
            a.Ascend();
            EXPECT_EQ(v1 + v2 * 10 + v3 * 100 + v4 * 1000, 4321);
            EXPECT_TRUE(text == "deep");
            EXPECT_EQ(file->GetLimit(), zunFile::NoLimit);
            EXPECT_TRUE(file->IsEOF());
        }
    }
}

TEST(ChunkRead, DescendAndAscendInsideTheBlockCostNoStorageCall)
{
    std::vector<unsigned char> bytes = WrittenToMemory(
        [](zunFile & f)
        {
            for (int i = 0; i < 500; ++i)
            {
                zunChunk c(&f);
                c.Create(static_cast<unsigned int>(i));
                f.Write_Float(i);
                c.Close();
            }
        });
    auto storage = std::make_shared<Storage>();
    auto file = CachedReader(storage, bytes);
    int known = 0;
    {
        zunChunk first(file.get());
        first.Descend(); // loads the block
        first.Ascend();
    }
    storage->calls.clear();
    while (!file->IsLimitReached() && !file->IsEOF())
    {
        zunChunk c(file.get());
        c.Descend();
        if (c.GetFCC() % 2 == 0)
        {
            double d = 0;
            file->Read_Float(d);
            known += d == c.GetFCC();
        }
        c.Ascend();
    }
    EXPECT_EQ(known, 249);
    EXPECT_TRUE(storage->calls.empty());
}

// ---- Old and new readers.

namespace
{
    const unsigned int kName = 0x454D414E;
    const unsigned int kSize = 0x455A4953;
    const unsigned int kExtra = 0x41545845;

    /// A newer writer: the name chunk has a second field, and there is a chunk
    /// of a kind the older reader doesn't know.
    std::vector<unsigned char> NewerDocument()
    {
        return WrittenToMemory(
            [](zunFile & f)
            {
                zunChunk name(&f);
                name.Create(kName);
                f.Write_String(zunString("hull"));
                f.Write_Int32(2);
                name.Close();
                zunChunk extra(&f);
                extra.Create(kExtra);
                f.Write_Float(1.5);
                zunChunk inner(&f);
                inner.Create(1);
                inner.Close();
                extra.Close();
                zunChunk size(&f);
                size.Create(kSize);
                f.Write_Float(12.5);
                size.Close();
            });
    }

    std::vector<unsigned char> OlderDocument()
    {
        return WrittenToMemory(
            [](zunFile & f)
            {
                zunChunk name(&f);
                name.Create(kName);
                f.Write_String(zunString("keel"));
                name.Close();
            });
    }

    struct Reading
    {
        zunString name;
        int revision = -1;
        double size = -1;
        int unknownChunks = 0;
    };

    Reading ReadDocument(const std::vector<unsigned char> & bytes, bool readsRevision)
    {
        const zunFastMesh<unsigned char> mesh = MeshOf(bytes);
        auto file = zunFileMem::Create(mesh);
        file->SetLimit(bytes.size(), zunFile::LimitAbsolute);
        Reading out;
        while (!file->IsLimitReached())
        {
            zunChunk c(file.get());
            c.Descend();
            if (c.GetFCC() == kName)
            {
                out.name.Read(file.get());
                if (readsRevision)
                    file->Read_Int32(out.revision);
            }
            else if (c.GetFCC() == kSize)
                file->Read_Float(out.size);
            else
                ++out.unknownChunks;
            c.Ascend();
        }
        return out;
    }
}

TEST(ChunkReaders, OldReaderSkipsWhatItDoesNotKnow)
{
    const Reading r = ReadDocument(NewerDocument(), false);
    EXPECT_TRUE(r.name == "hull");
    EXPECT_EQ(r.revision, -1);
    EXPECT_EQ(r.size, 12.5);
    EXPECT_EQ(r.unknownChunks, 1);
}

TEST(ChunkReaders, NewReaderOfAnOldDocumentKeepsItsDefaults)
{
    const Reading r = ReadDocument(OlderDocument(), true);
    EXPECT_TRUE(r.name == "keel");
    EXPECT_EQ(r.revision, -1);
    EXPECT_EQ(r.size, -1);
    EXPECT_EQ(r.unknownChunks, 0);
    const Reading n = ReadDocument(NewerDocument(), true);
    EXPECT_EQ(n.revision, 2);
}

// ---- The heap handle.

TEST(ChunkHandle, NeverUsed)
{
    zunChunkHF handle;
    EXPECT_EQ(handle.GetFCC(), 0u);
    EXPECT_EQ(handle.GetSize(), 0u);
    // Comparing an unrealized handle is made safe: it has the tag 0.
    EXPECT_TRUE(handle == 0u);
    EXPECT_TRUE(handle != 5u);
}

TEST(ChunkHandle, WritesAndReadsLikeTheChunk)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        zunChunkHF parent(file.get(), kParent);
        zunChunkHF child;
        child.Create(file.get(), kChild);
        file->Write_Int32(7);
        child.Close(file.get());
        parent.Close(file.get());
        zunChunkHF sibling(file.get(), kSibling);
        sibling.Close(nullptr); // later streams are ignored
    }
    EXPECT_EQ(Contents(mesh), WrittenToMemory(WriteWorkedExample));

    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    zunChunkHF parent;
    parent.Descend(file.get());
    EXPECT_TRUE(parent == kParent);
    EXPECT_FALSE(parent != kParent);
    EXPECT_EQ(parent.GetSize(), 12u);
    parent.UnDescend(file.get());
    EXPECT_EQ(file->GetCurrPos(), 0u);
    parent.Descend(file.get());
    parent.Ascend(file.get());
    EXPECT_EQ(file->GetCurrPos(), 20u);
}

TEST(ChunkHandle, DescendReadAscendIntoABuffer)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(WriteWorkedExample));
    auto file = zunFileMem::Create(mesh);
    zunChunkHF parent;
    std::unique_ptr<unsigned char[]> contents(parent.DescendReadAscend(file.get()));
    EXPECT_EQ(parent.GetFCC(), kParent);
    EXPECT_EQ(std::vector<unsigned char>(contents.get(), contents.get() + 12),
              Bytes({0x48, 0x47, 0x46, 0x45, 4, 0, 0, 0, 7, 0, 0, 0}));
    EXPECT_EQ(file->GetCurrPos(), 20u);
    zunChunkHF sibling;
    std::unique_ptr<unsigned char[]> nothing(sibling.DescendReadAscend(file.get()));
    EXPECT_NE(nothing, nullptr);
    EXPECT_EQ(file->GetCurrPos(), 28u);
}

TEST(ChunkHandle, DescendReadAscendIntoAMesh)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(WrittenToMemory(WriteWorkedExample));
    auto file = zunFileMem::Create(mesh);
    zunChunkHF parent, sibling;
    zunFastMesh<unsigned char> contents;
    parent.DescendReadAscend(file.get(), contents);
    EXPECT_EQ(Contents(contents), Bytes({0x48, 0x47, 0x46, 0x45, 4, 0, 0, 0, 7, 0, 0, 0}));
    sibling.DescendReadAscend(file.get(), contents);
    EXPECT_EQ(contents.Count(), 0u);
    EXPECT_EQ(file->GetCurrPos(), 28u);
}

TEST(ChunkHandle, SizeBeyond32BitsReadsNothingIntoTheMesh)
{
    // A 64-bit header claiming 4 GiB + 4 bytes: the mesh's count can't say
    // that, so nothing is read past it; Ascend still goes behind the chunk.
    auto storage = std::make_shared<Storage>();
    auto file = CachedReader(storage, Bytes({1, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0, 9, 9, 9, 9}));
    file->SetChunkSizeBits(zunFile::ChunkSize64);
    zunChunkHF big;
    zunFastMesh<unsigned char> contents = MeshOf(Bytes({5}));
    big.DescendReadAscend(file.get(), contents);
    EXPECT_EQ(big.GetSize(), 4u); // narrowed
    EXPECT_EQ(contents.Count(), 4u);
    EXPECT_EQ(file->GetCurrPos(), 0x100000000ull + 16);
}

TEST(ChunkHandle, CopiesShareOneChunk)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    auto original = std::make_unique<zunChunkHF>(file.get(), 3u);
    zunChunkHF copy;
    copy = *original;
    zunChunkHF constructed(*original);
    file->Write_Int32(1);
    original.reset(); // each handle frees the shared chunk only when it is the last
    copy.Close(nullptr);
    EXPECT_EQ(constructed.GetSize(), 4u);
    EXPECT_EQ(Contents(mesh), Bytes({3, 0, 0, 0, 4, 0, 0, 0, 1, 0, 0, 0}));
    copy = copy;
    zunChunkHF other(file.get(), 4u);
    other = constructed; // gives up its own chunk
    EXPECT_EQ(other.GetFCC(), 3u);
}
