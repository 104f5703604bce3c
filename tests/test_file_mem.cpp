// Memory streams: the back-end over a byte array, with no cache.
#include <gtest/gtest.h>

#include "FileTestSupport.h"
#include "MemTesting.h"

using namespace filetest;

TEST(FileMem, HasNoCacheAndStartsAtZero)
{
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2, 3}));
    auto file = zunFileMem::Create(mesh);
    EXPECT_EQ(file->GetCacheSize(), 0u);
    EXPECT_EQ(file->GetCurrPos(), 0u);
    EXPECT_FALSE(file->IsEOF());
    EXPECT_EQ(file->SetCurrPos(0, zunFile::FromEnd), 3u);
    EXPECT_TRUE(file->IsEOF());
}

TEST(FileMem, WritesReachTheArrayAtOnce)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    file->Write_Int32(0x0A0B0C0D);
    EXPECT_EQ(Contents(mesh), Bytes({0x0D, 0x0C, 0x0B, 0x0A}));
}

TEST(FileMem, ReadEndingExactlyAtTheEnd)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2, 3, 4, 5, 6}));
    auto file = zunFileMem::Create(mesh);
    file->SetCurrPos(2, zunFile::FromStart);
    unsigned char back[4] = {};
    EXPECT_EQ(file->Read_Block(back, 4), 4u);
    EXPECT_EQ(back[3], 6);
    EXPECT_EQ(file->GetCurrPos(), 6u);
    // Past the end: what is left.
    file->SetCurrPos(4, zunFile::FromStart);
    EXPECT_EQ(file->Read_Block(back, 4), 2u);
    EXPECT_EQ(file->GetCurrPos(), 6u);
    EXPECT_EQ(file->Read_Block(back, 4), 0u);
}

TEST(FileMem, WriteOverTheEndOverwritesThenGrows)
{
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2, 3, 4}));
    auto file = zunFileMem::Create(mesh);
    file->SetCurrPos(2, zunFile::FromStart);
    const unsigned char data[5] = {0xA, 0xB, 0xC, 0xD, 0xE};
    EXPECT_EQ(file->Write_Block(data, 5), 5u);
    EXPECT_EQ(Contents(mesh), Bytes({1, 2, 0xA, 0xB, 0xC, 0xD, 0xE}));
    EXPECT_EQ(file->GetCurrPos(), 7u);
    // Inside only: overwrites, doesn't grow.
    file->SetCurrPos(0, zunFile::FromStart);
    file->Write_UInt8(9);
    EXPECT_EQ(Contents(mesh), Bytes({9, 2, 0xA, 0xB, 0xC, 0xD, 0xE}));
}

TEST(FileMem, SeekPastTheEndLandsAtTheEndBelow)
{
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2, 3, 4}));
    auto file = zunFileMem::Create(mesh);
    // The stream reports what it was asked; the array's pointer is clamped.
    EXPECT_EQ(file->SetCurrPos(100, zunFile::FromStart), 100u);
    EXPECT_EQ(file->GetCurrPos(), 100u);
    file->Write_UInt8(5);
    EXPECT_EQ(Contents(mesh), Bytes({1, 2, 3, 4, 5}));
}

TEST(FileMem, InvalidPositionThrows)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    const zunException e = CaughtFrom([&] { file->SetCurrPos(0xFFFFFFFFll, zunFile::FromStart); });
    EXPECT_STREQ(e.GetDebugDescription(), "SetFilePointer: invalid position");
    EXPECT_EQ(std::string(e.GetFileAndLine()).rfind("src/FileMem.cpp:", 0), 0u);
    EXPECT_STREQ(e.GetFunction(),
                 "unsigned __int64 __cdecl MemCallbacks::SetFilePointer(unsigned __int64) throw(struct zunException)");
    EXPECT_NO_THROW(file->SetCurrPos(0xFFFFFFFEll, zunFile::FromStart));
}

TEST(FileMem, SizeIsTheCountAtCreate)
{
    zunFastMesh<unsigned char> mesh;
    auto file = zunFileMem::Create(mesh);
    file->Write_Int32(42);
    file->SetCurrPos(0, zunFile::FromStart);
    // The stream's size is still 0: the bounded read finds nothing ...
    int value = -1;
    file->Read_Int32(value);
    EXPECT_EQ(value, -1);
    EXPECT_EQ(file->GetCurrPos(), 0u);
    // ... while a block read takes what the array holds.
    unsigned char back[4] = {};
    EXPECT_EQ(file->Read_Block(back, 4), 4u);
    EXPECT_EQ(back[0], 42);
    // A stream for reading is made after the array is filled.
    auto reader = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    reader->Read_Int32(value);
    EXPECT_EQ(value, 42);
}

TEST(FileMem, ReadOnlyStreamWritesNothing)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2}));
    auto file = zunFileMem::Create(mesh);
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Block("xyz", 3); }).GetDebugDescription(), "zunFile::Write_Block failed");
    EXPECT_EQ(Contents(mesh), Bytes({1, 2}));
    // Writing nothing is no failure.
    EXPECT_EQ(file->Write_Block("", 0), 0u);
}

TEST(FileMem, ArrayThatCannotGrowMakesAShortWrite)
{
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2}));
    auto file = zunFileMem::Create(mesh);
    file->SetCurrPos(1, zunFile::FromStart);
    std::vector<unsigned char> data(100, 7);
    zunMemTesting::FailAllocation(1, true);
    const zunException e = CaughtFrom([&] { file->Write_Block(data.data(), data.size()); });
    zunMemTesting::Reset();
    EXPECT_STREQ(e.GetDebugDescription(), "zunFile::Write_Block failed");
    // The byte that fitted went in; the array kept its size.
    EXPECT_EQ(Contents(mesh), Bytes({1, 7}));
    EXPECT_EQ(file->GetCurrPos(), 2u);
}

TEST(FileMem, CloseDoesNothingToTheArray)
{
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2}));
    {
        auto file = zunFileMem::Create(mesh);
        file->Close();
        file->Close();
    }
    EXPECT_EQ(Contents(mesh), Bytes({1, 2}));
}
