// The stream core: construction, the block cache as storage sees it, positions,
// limits, settings, closing and destruction.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "FileTestSupport.h"
#include "MemTesting.h"

using namespace filetest;

namespace
{
    const std::uint64_t kBlock = 65536;

    void ExpectCalls(const Storage & storage, const std::vector<Call> & expected)
    {
        ASSERT_EQ(storage.calls.size(), expected.size()) << [&]
        {
            std::string all;
            for (const Call & c : storage.calls)
                all += Describe(c) + " ";
            return all;
        }();
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(storage.calls[i], expected[i]) << "call " << i << " is " << Describe(storage.calls[i]);
    }

    std::vector<unsigned char> Pattern(std::size_t n, unsigned seed = 1)
    {
        std::vector<unsigned char> out(n);
        for (std::size_t i = 0; i < n; ++i)
            out[i] = static_cast<unsigned char>((i * 31 + seed) & 0xFF);
        return out;
    }
}

TEST(FileStream, ConstructionAsksPointerThenSize)
{
    auto storage = StorageHolding(Pattern(300));
    auto file = MakeRecordedFile(storage, 7, true);
    ExpectCalls(*storage, {{Op::GetFilePointer, 7, 0}, {Op::GetFileSize, 7, 0}});
    EXPECT_EQ(file->GetCurrPos(), 7u);
    EXPECT_EQ(file->GetCacheSize(), kBlock);
    EXPECT_EQ(file->GetLimit(), zunFile::NoLimit);
    EXPECT_EQ(zunFile::NoLimit, 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(file->GetEndianness(), zunSystem::Little);
    EXPECT_EQ(file->GetChunkSizeBits(), zunFile::ChunkSize32);
    EXPECT_FALSE(file->IsEOF());
    EXPECT_FALSE(file->IsLimitReached());
}

TEST(FileStream, BuildByteOrderIsLittle)
{
    EXPECT_EQ(zunSystem::GetEndianness(), zunSystem::Little);
    EXPECT_EQ(zunSystem::Little, 0);
    EXPECT_EQ(zunSystem::Big, 1);
}

TEST(FileCache, ShortStreamReachesStorageInOneWriteAtClose)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(1000);
    for (int i = 0; i < 10; ++i)
        file->Write_Block(data.data() + i * 100, 100);
    // The first write found a stale block and loaded it; nothing went out.
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Read, 0, kBlock}});
    storage->calls.clear();
    file->Close();
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, 1000}, {Op::Close, 1000, 0}});
    EXPECT_EQ(storage->bytes, data);
}

TEST(FileCache, FullBlockGoesOutWhenItsLastByteGoesIn)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(kBlock);
    file->Write_Block(data.data(), kBlock - 1);
    EXPECT_EQ(storage->CountOf(Op::Write), 0u);
    file->Write_UInt8(data.back());
    EXPECT_EQ(storage->CountOf(Op::Write), 1u);
    EXPECT_EQ(storage->Transfers().back(), (Call{Op::Write, 0, kBlock}));
    storage->calls.clear();
    file->Close();
    ExpectCalls(*storage, {{Op::Close, kBlock, 0}});
    EXPECT_EQ(storage->bytes, data);
}

TEST(FileCache, ReadAfterWriteInsideBlockCostsNoTransfer)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(10);
    file->Write_Block(data.data(), 10);
    storage->calls.clear();
    EXPECT_EQ(file->SetCurrPos(0, zunFile::FromStart), 0u);
    unsigned char back[10] = {};
    EXPECT_EQ(file->Read_Block(back, 10), 10u);
    EXPECT_EQ(std::vector<unsigned char>(back, back + 10), data);
    EXPECT_TRUE(storage->calls.empty());
}

TEST(FileCache, WholeBlockWriteSkipsTheLoad)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(kBlock);
    file->Write_Block(data.data(), kBlock);
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, kBlock}});

    auto storage2 = std::make_shared<Storage>();
    auto file2 = MakeRecordedFile(storage2);
    file2->Write_Block(data.data(), kBlock - 1);
    ExpectCalls(*storage2, {{Op::SetFilePointer, 0, 0}, {Op::Read, 0, kBlock}});
}

TEST(FileCache, LargeWriteGoesOutInWholeBlocksAndKeepsTheTail)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(3 * kBlock + 100);
    EXPECT_EQ(file->Write_Block(data.data(), data.size()), data.size());
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0},
                           {Op::Write, 0, kBlock},
                           {Op::SetFilePointer, kBlock, 0},
                           {Op::Write, kBlock, kBlock},
                           {Op::SetFilePointer, 2 * kBlock, 0},
                           {Op::Write, 2 * kBlock, kBlock},
                           {Op::SetFilePointer, 3 * kBlock, 0},
                           {Op::Read, 3 * kBlock, kBlock}});
    file->Close();
    EXPECT_EQ(storage->bytes, data);
}

TEST(FileCache, WriteFromMidBlockFillsItThenGoesOutWhole)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(2 * kBlock + 10);
    file->Write_Block(data.data(), 10);
    storage->calls.clear();
    file->Write_Block(data.data() + 10, 2 * kBlock);
    // The rest of block 0 fills the buffer, block 1 is replaced whole without
    // a load, and the last 10 bytes need block 2 loaded.
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0},
                           {Op::Write, 0, kBlock},
                           {Op::SetFilePointer, kBlock, 0},
                           {Op::Write, kBlock, kBlock},
                           {Op::SetFilePointer, 2 * kBlock, 0},
                           {Op::Read, 2 * kBlock, kBlock}});
    file->Close();
    EXPECT_EQ(storage->bytes, data);
}

TEST(FileCache, ReadAtTheSizeReturnsZeroAndChangesNothing)
{
    auto storage = StorageHolding(Pattern(20));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(20, zunFile::FromStart);
    unsigned char probe[4] = {9, 9, 9, 9};
    EXPECT_EQ(file->Read_Block(probe, 4), 0u);
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_EQ(probe[0], 9);
    EXPECT_TRUE(storage->Transfers().empty());
    EXPECT_TRUE(file->IsEOF());
}

TEST(FileCache, ReadPastTheSizeReadsNothing)
{
    // Outside the contract of a cached read: made safe, it reads nothing.
    auto storage = StorageHolding(Pattern(20));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(30, zunFile::FromStart);
    unsigned char probe[4] = {9, 9, 9, 9};
    EXPECT_EQ(file->Read_Block(probe, 4), 0u);
    EXPECT_EQ(file->GetCurrPos(), 30u);
    EXPECT_EQ(probe[3], 9);
}

TEST(FileCache, ReadStopsAtTheSizeWithTheShortCount)
{
    auto storage = StorageHolding(Pattern(20));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(15, zunFile::FromStart);
    unsigned char back[10] = {};
    EXPECT_EQ(file->Read_Block(back, 10), 5u);
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_EQ(back[4], storage->bytes[19]);
    EXPECT_EQ(back[5], 0);
}

TEST(FileCache, LargeReadComesInWholeBlocks)
{
    auto storage = StorageHolding(Pattern(2 * kBlock + 50));
    auto file = MakeRecordedFile(storage);
    std::vector<unsigned char> back(storage->bytes.size());
    EXPECT_EQ(file->Read_Block(back.data(), back.size()), back.size());
    EXPECT_EQ(back, storage->bytes);
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0},
                           {Op::Read, 0, kBlock},
                           {Op::SetFilePointer, kBlock, 0},
                           {Op::Read, kBlock, kBlock},
                           {Op::SetFilePointer, 2 * kBlock, 0},
                           {Op::Read, 2 * kBlock, kBlock}});
}

TEST(FileCache, SeekInsideTheBlockCostsNoCall)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(1);
    storage->calls.clear();
    file->SetCurrPos(60000, zunFile::FromStart);
    file->SetCurrPos(0, zunFile::FromStart);
    file->SetCurrPos(kBlock - 1, zunFile::FromStart);
    EXPECT_TRUE(storage->calls.empty());
}

TEST(FileCache, LeavingADirtyBlockWritesItBackUpToTheSize)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(0x11223344);
    storage->calls.clear();
    file->SetCurrPos(5 * kBlock + 3, zunFile::FromStart);
    // Only the 4 bytes below the size go out; the new block is not loaded yet.
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, 4}});
    storage->calls.clear();
    file->SetCurrPos(0, zunFile::FromStart);
    EXPECT_TRUE(storage->calls.empty()); // the block at 5 * 64 KiB was never loaded or dirtied
    EXPECT_EQ(storage->bytes, Bytes({0x44, 0x33, 0x22, 0x11}));
}

TEST(FileCache, ChangedBlockOfAFileGoesBackUpToTheEndOfTheFile)
{
    auto storage = StorageHolding(Pattern(kBlock + 100));
    auto expected = storage->bytes;
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(kBlock + 10, zunFile::FromStart);
    file->Write_UInt8(0xEE);
    expected[kBlock + 10] = 0xEE;
    file->Close();
    ExpectCalls(*storage, {{Op::SetFilePointer, kBlock, 0},
                           {Op::Read, kBlock, kBlock},
                           {Op::SetFilePointer, kBlock, 0},
                           {Op::Write, kBlock, 100},
                           {Op::Close, kBlock + 100, 0}});
    EXPECT_EQ(storage->bytes, expected);
}

TEST(FileCache, ReadRunningOffADirtyBlockWritesItBackAtTheBoundary)
{
    auto storage = StorageHolding(Pattern(kBlock + 8));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(kBlock - 4, zunFile::FromStart);
    file->Write_UInt8(0xAB); // loads block 0 and dirties it
    storage->calls.clear();
    unsigned char back[6] = {};
    EXPECT_EQ(file->Read_Block(back, 6), 6u);
    EXPECT_EQ(back[0], storage->bytes[kBlock - 3]);
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0},
                           {Op::Write, 0, kBlock},
                           {Op::SetFilePointer, kBlock, 0},
                           {Op::Read, kBlock, kBlock}});
    EXPECT_EQ(storage->bytes[kBlock - 4], 0xAB);
}

TEST(FileCache, WriteAfterReadInsideABlockDirtiesIt)
{
    auto storage = StorageHolding(Pattern(64));
    auto file = MakeRecordedFile(storage);
    int value = 0;
    file->Read_Int32(value);
    file->Write_Int32(-1);
    storage->calls.clear();
    file->Close();
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, 64}, {Op::Close, 64, 0}});
    EXPECT_EQ(storage->bytes[4], 0xFF);
    EXPECT_EQ(storage->bytes[8], Pattern(64)[8]);
}

TEST(FileCache, ZeroByteWriteLoadsAStaleBlockAndDirtiesIt)
{
    auto storage = StorageHolding(Pattern(30));
    auto file = MakeRecordedFile(storage);
    EXPECT_EQ(file->Write_Block(nullptr, 0), 0u);
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Read, 0, kBlock}});
    storage->calls.clear();
    file->Close();
    // The dirty block goes back, unchanged, up to the size.
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, 30}, {Op::Close, 30, 0}});
    EXPECT_EQ(storage->bytes, Pattern(30));
}

TEST(FileCache, ZeroByteWriteFarPastTheSizeSendsNothing)
{
    // A dirty block wholly above the size has no byte below it to write back.
    auto storage = StorageHolding(Pattern(30));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(3 * kBlock, zunFile::FromStart);
    file->Write_Block(nullptr, 0);
    storage->calls.clear();
    file->Close();
    ExpectCalls(*storage,
                {{Op::SetFilePointer, 3 * kBlock, 0}, {Op::Write, 3 * kBlock, 0}, {Op::Close, 3 * kBlock, 0}});
    EXPECT_EQ(storage->bytes, Pattern(30));
}

TEST(FileCache, FlushKeepsTheBlockUsable)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(5);
    file->SetCacheSize(kBlock); // flushes, then a fresh stale block
    EXPECT_EQ(storage->bytes.size(), 4u);
    storage->calls.clear();
    int value = 0;
    file->SetCurrPos(0, zunFile::FromStart);
    file->Read_Int32(value);
    EXPECT_EQ(value, 5);
}

TEST(FileCache, CacheOffWritesLeaveTheSizeAlone)
{
    auto storage = StorageHolding(Pattern(10));
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    EXPECT_EQ(file->GetCacheSize(), 0u);
    file->SetCurrPos(10, zunFile::FromStart);
    storage->calls.clear();
    file->Write_Int32(1);
    file->Write_Int32(2);
    ExpectCalls(*storage, {{Op::Write, 10, 4}, {Op::Write, 14, 4}});
    EXPECT_EQ(file->GetCurrPos(), 18u);
    EXPECT_TRUE(file->IsEOF()); // still judged against the size of 10
    EXPECT_EQ(file->SetCurrPos(-2, zunFile::FromEnd), 8u);
    EXPECT_EQ(storage->bytes.size(), 18u);
}

TEST(FileCache, CacheOffEveryOperationReachesStorage)
{
    auto storage = StorageHolding(Pattern(10));
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    storage->calls.clear();
    file->SetCurrPos(2, zunFile::FromStart);
    unsigned char back[3] = {};
    EXPECT_EQ(file->Read_Block(back, 3), 3u);
    ExpectCalls(*storage, {{Op::SetFilePointer, 2, 0}, {Op::Read, 2, 3}});
    EXPECT_EQ(back[0], Pattern(10)[2]);
    // A cache-off read takes no notice of the size.
    storage->bytes.resize(40, 7);
    file->SetCurrPos(30, zunFile::FromStart);
    EXPECT_EQ(file->Read_Block(back, 3), 3u);
    EXPECT_EQ(back[2], 7);
}

TEST(FileCache, TurningTheCacheOffLeavesTheBackEndPointerWhereItWas)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(kBlock + 4);
    file->Write_Block(data.data(), kBlock + 4);
    file->SetCacheSize(0);
    // The flush wrote the 4 bytes at 64 KiB; the back-end stands behind them.
    storage->calls.clear();
    file->Write_UInt8(1);
    ExpectCalls(*storage, {{Op::Write, kBlock + 4, 1}});
    EXPECT_EQ(file->GetCurrPos(), kBlock + 5);
}

TEST(FileCache, SetCacheSizeAtZeroGivesAStaleBlockAtZero)
{
    auto storage = StorageHolding(Pattern(10000));
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(4096);
    EXPECT_EQ(file->GetCacheSize(), 4096u);
    storage->calls.clear();
    unsigned char b = 0;
    file->Read_UInt8(b);
    ExpectCalls(*storage, {{Op::SetFilePointer, 0, 0}, {Op::Read, 0, 4096}});
    EXPECT_EQ(b, storage->bytes[0]);
}

TEST(FileCache, SetCacheSizeTakesTheQuotientAsBlockStart)
{
    auto storage = StorageHolding(Pattern(20000));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(10000, zunFile::FromStart);
    file->SetCacheSize(4096);
    storage->calls.clear();
    // The block starts at 10000 / 4096 = 2. A seek that stays inside it keeps
    // it, and reads come from the block at 2 like any other.
    file->SetCurrPos(100, zunFile::FromStart);
    unsigned char b = 0;
    file->Read_UInt8(b);
    ExpectCalls(*storage, {{Op::SetFilePointer, 2, 0}, {Op::Read, 2, 4096}});
    EXPECT_EQ(b, storage->bytes[100]);
    // Running off the end of that block goes on at 2 + 4096.
    file->SetCurrPos(4097, zunFile::FromStart);
    std::vector<unsigned char> back(2);
    file->Read_Block(back.data(), 2);
    EXPECT_EQ(back[0], storage->bytes[4097]);
    EXPECT_EQ(back[1], storage->bytes[4098]);
    EXPECT_EQ(storage->Transfers().back(), (Call{Op::Read, 4098, 4096}));
}

TEST(FileCache, PositionOutsideTheQuotientBlockReadsItsOwnBlock)
{
    // Reading at 10000 right after the resize: the block at 2 doesn't hold the
    // position, so after loading it the stream takes the position's own block
    // rather than reading outside its buffer.
    auto storage = StorageHolding(Pattern(20000));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(10000, zunFile::FromStart);
    file->SetCacheSize(4096);
    storage->calls.clear();
    int value = 0;
    file->Read_Int32(value);
    ExpectCalls(
        *storage,
        {{Op::SetFilePointer, 2, 0}, {Op::Read, 2, 4096}, {Op::SetFilePointer, 8192, 0}, {Op::Read, 8192, 4096}});
    int expected = 0;
    std::memcpy(&expected, storage->bytes.data() + 10000, 4);
    EXPECT_EQ(value, expected);

    file->SetCurrPos(12000, zunFile::FromStart);
    file->SetCacheSize(4096);
    file->Write_Int32(-1);
    file->Close();
    EXPECT_EQ(storage->bytes[12000], 0xFF);
    EXPECT_EQ(storage->bytes[12004], Pattern(20000)[12004]);
    EXPECT_EQ(storage->bytes.size(), 20000u);
}

TEST(FileCache, BackEndStartingFarOutIsServedFromItsOwnBlock)
{
    auto storage = StorageHolding(Pattern(3 * kBlock));
    auto file = MakeRecordedFile(storage, 2 * kBlock + 6);
    EXPECT_EQ(file->GetCurrPos(), 2 * kBlock + 6);
    unsigned char b = 0;
    file->Read_UInt8(b);
    EXPECT_EQ(b, storage->bytes[2 * kBlock + 6]);
}

TEST(FileCache, SetCacheSizeTheHeapCannotGiveKeepsTheSize)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(3);
    zunMemTesting::FailAllocation(1, true);
    file->SetCacheSize(1 << 20);
    zunMemTesting::Reset();
    EXPECT_EQ(file->GetCacheSize(), kBlock);
    EXPECT_EQ(storage->bytes.size(), 4u); // flushed all the same
    file->Write_Int32(4);
    file->Close();
    EXPECT_EQ(storage->bytes, Bytes({3, 0, 0, 0, 4, 0, 0, 0}));
}

TEST(FileCache, NoHeapForTheCacheGivesAnUncachedStream)
{
    auto storage = std::make_shared<Storage>();
    zunMemTesting::FailAllocation(1, true);
    auto file = MakeRecordedFile(storage);
    zunMemTesting::Reset();
    EXPECT_EQ(file->GetCacheSize(), 0u);
    file->Write_Int32(9);
    EXPECT_EQ(storage->bytes, Bytes({9, 0, 0, 0}));
}

TEST(FileCache, WritesAndReadsMeetInTheSameBuffer)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    for (int i = 0; i < 30000; ++i)
        file->Write_Int32(i);
    file->SetCurrPos(4 * 1000, zunFile::FromStart);
    file->Write_Int32(-5);
    file->SetCurrPos(4 * 999, zunFile::FromStart);
    int a = 0, b = 0, c = 0;
    file->Read_Int32(a);
    file->Read_Int32(b);
    file->Read_Int32(c);
    EXPECT_EQ(a, 999);
    EXPECT_EQ(b, -5);
    EXPECT_EQ(c, 1001);
    file->SetCurrPos(4 * 29999, zunFile::FromStart);
    file->Read_Int32(a);
    EXPECT_EQ(a, 29999);
    file->Close();
    ASSERT_EQ(storage->bytes.size(), 120000u);
    int stored = 0;
    std::memcpy(&stored, storage->bytes.data() + 4000, 4);
    EXPECT_EQ(stored, -5);
    std::memcpy(&stored, storage->bytes.data() + 4 * 20000, 4);
    EXPECT_EQ(stored, 20000);
}

TEST(FilePosition, SetCurrPosBases)
{
    auto storage = StorageHolding(Pattern(100));
    auto file = MakeRecordedFile(storage);
    EXPECT_EQ(file->SetCurrPos(40, zunFile::FromStart), 40u);
    EXPECT_EQ(file->SetCurrPos(-10, zunFile::FromCurrent), 30u);
    EXPECT_EQ(file->SetCurrPos(-1, zunFile::FromEnd), 99u);
    EXPECT_EQ(file->SetCurrPos(5, static_cast<zunFile::PositionRelativeTo>(7)), 5u);
    // Nothing is checked: past the end, and a wrapped negative position.
    EXPECT_EQ(file->SetCurrPos(1000, zunFile::FromStart), 1000u);
    EXPECT_EQ(file->SetCurrPos(-1, zunFile::FromStart), 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(file->GetCurrPos(), 0xFFFFFFFFFFFFFFFFull);
    EXPECT_EQ(file->SetCurrPos(1, zunFile::FromCurrent), 0u);
}

TEST(FileLimit, LimitFromCurrentAndItsEdge)
{
    auto storage = StorageHolding(Pattern(200));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(100, zunFile::FromStart);
    file->SetLimit(10, zunFile::LimitFromCurrent);
    EXPECT_EQ(file->GetLimit(), 110u);
    EXPECT_EQ(file->GetCurrPos(), 100u);
    file->SetCurrPos(109, zunFile::FromStart);
    EXPECT_FALSE(file->IsLimitReached());
    file->SetCurrPos(110, zunFile::FromStart);
    EXPECT_TRUE(file->IsLimitReached());
    file->SetLimit(50, zunFile::LimitAbsolute);
    EXPECT_EQ(file->GetLimit(), 50u);
    file->SetLimit(5, static_cast<zunFile::LimitRelativeTo>(9)); // any non-zero: from current
    EXPECT_EQ(file->GetLimit(), 115u);
}

TEST(FileLimit, ReachLimit)
{
    auto storage = StorageHolding(Pattern(200));
    auto file = MakeRecordedFile(storage);
    file->SetCurrPos(33, zunFile::FromStart);
    file->ReachLimit();
    EXPECT_EQ(file->GetCurrPos(), 33u);
    file->SetLimit(150, zunFile::LimitAbsolute);
    file->ReachLimit();
    EXPECT_EQ(file->GetCurrPos(), 150u);
    // A limit below the position moves back to it: nothing is validated.
    file->SetLimit(20, zunFile::LimitAbsolute);
    file->ReachLimit();
    EXPECT_EQ(file->GetCurrPos(), 20u);
}

TEST(FileSettings, StoredSettings)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->SetChunkSizeBits(zunFile::ChunkSize64);
    EXPECT_EQ(file->GetChunkSizeBits(), zunFile::ChunkSize64);
    file->SetEndianness(zunSystem::Big);
    EXPECT_EQ(file->GetEndianness(), zunSystem::Big);
    file->SetEncodingForStringRead(static_cast<zunFile::StringEncoding>(3));
    // Stored only: a string still reads as UTF-8.
    file->SetEndianness(zunSystem::Little);
    file->Write_String(zunString("\xC3\xA9"));
    file->SetCurrPos(0, zunFile::FromStart);
    zunString back;
    file->Read_String(back, zunFile::Terminated);
    EXPECT_TRUE(back == "\xC3\xA9");
    EXPECT_TRUE(storage->calls.size() <= 2u);
}

TEST(FileLifeCycle, CloseRunsOnce)
{
    auto storage = std::make_shared<Storage>();
    {
        auto file = MakeRecordedFile(storage);
        file->Write_Int32(1);
        file->Close();
        file->Close();
        EXPECT_EQ(storage->CountOf(Op::Close), 1u);
        EXPECT_FALSE(storage->destroyed);
    }
    EXPECT_EQ(storage->CountOf(Op::Close), 1u);
    EXPECT_TRUE(storage->destroyed);
}

TEST(FileLifeCycle, DestructionFlushesAndCloses)
{
    auto storage = std::make_shared<Storage>();
    {
        auto file = MakeRecordedFile(storage);
        file->Write_Int32(0x01020304);
    }
    EXPECT_EQ(storage->bytes, Bytes({4, 3, 2, 1}));
    EXPECT_EQ(storage->CountOf(Op::Close), 1u);
    EXPECT_TRUE(storage->destroyed);
}

TEST(FileLifeCycle, FailureWhileDestroyingIsSilenced)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(1);
    storage->throwOnWrite = true;
    EXPECT_NO_THROW(file.reset());
    EXPECT_TRUE(storage->destroyed);
    EXPECT_EQ(storage->CountOf(Op::Close), 0u); // the flush threw before the close
    EXPECT_FALSE(zunException::IsAnyBeingHandled());

    auto storage2 = std::make_shared<Storage>();
    auto file2 = MakeRecordedFile(storage2);
    storage2->throwOnClose = true;
    EXPECT_NO_THROW(file2.reset());
    EXPECT_EQ(storage2->CountOf(Op::Close), 1u);
    EXPECT_TRUE(storage2->destroyed);
}

TEST(FileLifeCycle, SilencedFailureIsWrittenToTheDebugPrintChannel)
{
    char folder[] = "/tmp/zun_file_silence_XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const std::string log = std::string(folder) + "/debug.txt";
    zunSetDprintfFile(zunPath(log.c_str()));
    {
        auto storage = std::make_shared<Storage>();
        auto file = MakeRecordedFile(storage);
        file->Write_Int32(1);
        storage->throwOnWrite = true;
    }
    zunSetDprintfFile(zunPath());
    std::ifstream in(log);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::remove(log.c_str());
    rmdir(folder);
    EXPECT_NE(text.find("Silencing an exception originally thrown by tests/FileTestSupport.h.\nDescription: "),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("\nDebug description: write refused\n"), std::string::npos) << text;
}

TEST(FileLifeCycle, CloseReportsWhatDestructionWouldSilence)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(1);
    storage->throwOnWrite = true;
    const zunException e = CaughtFrom([&] { file->Close(); });
    EXPECT_STREQ(e.GetDebugDescription(), "write refused");
    // Closed all the same: destruction does no more.
    storage->calls.clear();
    file.reset();
    EXPECT_TRUE(storage->calls.empty());
}

TEST(FileLifeCycle, FailedWriteBackKeepsTheBlockDirtyForALaterFlush)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(77);
    storage->throwOnWrite = true;
    const zunException e = CaughtFrom([&] { file->SetCurrPos(3 * kBlock, zunFile::FromStart); });
    EXPECT_STREQ(e.GetDebugDescription(), "write refused");
    EXPECT_EQ(file->GetCurrPos(), 3 * kBlock); // the position had already changed
    storage->throwOnWrite = false;
    file->Close();
    EXPECT_EQ(storage->bytes, Bytes({77, 0, 0, 0}));
}

TEST(FileLifeCycle, FailedWholeBlockWriteLosesNothing)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    const auto data = Pattern(kBlock);
    storage->throwOnWrite = true;
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Block(data.data(), kBlock); }).GetDebugDescription(), "write refused");
    storage->throwOnWrite = false;
    file->Close();
    EXPECT_EQ(storage->bytes, data);
}

TEST(FileLifeCycle, WorkAfterCloseReachesTheClosedBackEnd)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    file->Close();
    storage->calls.clear();
    file->Write_Int32(1);
    ExpectCalls(*storage, {{Op::Write, 0, 4}});
}

TEST(FileLifeCycle, WorkAfterAFailedSeekRetriesTheBlockFirst)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_Int32(77);
    storage->throwOnWrite = true;
    CaughtFrom([&] { file->SetCurrPos(kBlock + 8, zunFile::FromStart); });
    storage->throwOnWrite = false;
    storage->calls.clear();
    file->Write_Int32(5);
    // The dirty block at 0 goes out before the block of the position is loaded.
    ExpectCalls(
        *storage,
        {{Op::SetFilePointer, 0, 0}, {Op::Write, 0, 4}, {Op::SetFilePointer, kBlock, 0}, {Op::Read, kBlock, kBlock}});
    file->Close();
    ASSERT_EQ(storage->bytes.size(), kBlock + 12);
    EXPECT_EQ(storage->bytes[0], 77);
    EXPECT_EQ(storage->bytes[kBlock + 8], 5);
}
