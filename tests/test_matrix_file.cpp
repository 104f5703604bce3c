// The file form of zunMatrix44: sixteen doubles in storage order, 128 bytes.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{
    zunMatrix44 Sample()
    {
        zunMatrix44 matrix;
        for (int i = 0; i < 16; ++i)
            matrix.m[i] = 0.5 + i;
        return matrix;
    }

    std::vector<unsigned char> DoubleBytes(double value, bool reversed)
    {
        std::vector<unsigned char> bytes(8);
        std::memcpy(bytes.data(), &value, 8);
        if (reversed)
            std::reverse(bytes.begin(), bytes.end());
        return bytes;
    }
}

TEST(MatrixFile, SixteenDoublesInStorageOrder)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    Sample().Write(file.get());
    ASSERT_EQ(mesh.Count(), 128u);
    for (int i = 0; i < 16; ++i)
    {
        const auto expected = DoubleBytes(0.5 + i, false);
        EXPECT_EQ(std::vector<unsigned char>(mesh.Data() + 8 * i, mesh.Data() + 8 * i + 8), expected) << i;
    }
}

TEST(MatrixFile, BigEndianReversesEachDouble)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    file->SetEndianness(zunSystem::Big);
    Sample().Write(file.get());
    ASSERT_EQ(mesh.Count(), 128u);
    for (int i = 0; i < 16; ++i)
    {
        const auto expected = DoubleBytes(0.5 + i, true);
        EXPECT_EQ(std::vector<unsigned char>(mesh.Data() + 8 * i, mesh.Data() + 8 * i + 8), expected) << i;
    }

    auto reader = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    reader->SetEndianness(zunSystem::Big);
    zunMatrix44 read;
    read.Read(reader.get());
    EXPECT_TRUE(read == Sample());
    EXPECT_EQ(reader->GetCurrPos(), 128u);
}

TEST(MatrixFile, ReadingConstructorReadsOverItsDefault)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        Sample().Write(file.get());
    }
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    const zunMatrix44 read(file.get(), zunMatrix44::Identity);
    EXPECT_TRUE(read == Sample());
}

TEST(MatrixFile, ChunkTooShortKeepsTheDefault)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        zunChunk chunk(file.get());
        chunk.Create(0x5854524D);
        file->Write_Float(1.0); // an older writer: not a whole matrix
        chunk.Close();
        file->Write_Int32(42);
    }
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    zunChunk chunk(file.get());
    chunk.Descend();
    zunMatrix44 fallback;
    fallback.m[12] = 3.0;
    const zunMatrix44 read(file.get(), fallback);
    EXPECT_TRUE(read == fallback);
    EXPECT_TRUE(file->IsLimitReached());
    chunk.Ascend();
    int next = 0;
    file->Read_Int32(next);
    EXPECT_EQ(next, 42);
}

TEST(MatrixFile, RoundTripThroughADiskSizedCache)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    file->SetCacheSize(64); // a matrix spans two blocks
    file->Write_Int32(1);
    Sample().Write(file.get());
    file->SetCurrPos(4, zunFile::FromStart);
    zunMatrix44 read;
    read.Read(file.get());
    EXPECT_TRUE(read == Sample());
}
