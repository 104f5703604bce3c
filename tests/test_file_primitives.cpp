// The typed reads and writes: byte layouts in both byte orders, the reads at
// the limit and at the end, strings and their read options, padded blocks,
// arrays, and the failure texts.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "FileArrayAccess.h"
#include "FileTestSupport.h"
#include "MemTesting.h"

using namespace filetest;

namespace
{
    using Bytes_t = std::vector<unsigned char>;

    /// What `write` puts into a fresh memory file of the given byte order.
    Bytes_t Written(const std::function<void(zunFile &)> & write, zunSystem::Endianness order = zunSystem::Little)
    {
        zunFastMesh<unsigned char> mesh;
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        write(*file);
        file->Close();
        return Contents(mesh);
    }

    /// A cached stream over recorded storage holding `bytes`.
    std::unique_ptr<zunFile> Over(const std::shared_ptr<Storage> & storage, const Bytes_t & bytes)
    {
        storage->bytes = bytes;
        return MakeRecordedFile(storage);
    }

    const char * const kFileSites = "src/File.cpp:";

    void ExpectThrowSite(const zunException & e, const char * debugDescription, const char * signatureStart)
    {
        EXPECT_STREQ(e.GetDebugDescription(), debugDescription);
        ASSERT_NE(e.GetFileAndLine(), nullptr);
        EXPECT_EQ(std::string(e.GetFileAndLine()).rfind(kFileSites, 0), 0u) << e.GetFileAndLine();
        ASSERT_NE(e.GetFunction(), nullptr);
        EXPECT_EQ(std::string(e.GetFunction()).rfind(signatureStart, 0), 0u) << e.GetFunction();
        EXPECT_NE(std::string(e.GetFunction()).find("throw(struct zunException)"), std::string::npos);
        EXPECT_STREQ(e.GetDescription(), "");
    }
}

// ---- On-disk forms.

TEST(FileForms, IntegersInBothOrders)
{
    auto all = [](zunFile & f)
    {
        f.Write_Int16(static_cast<short>(0x0102));
        f.Write_UInt16(0xA1A2);
        f.Write_Int32(0x01020304);
        f.Write_UInt32(0xB1B2B3B4u);
        f.Write_Int64(0x0102030405060708ll);
        f.Write_UInt64(0xC1C2C3C4C5C6C7C8ull);
    };
    EXPECT_EQ(Written(all),
              Bytes({0x02, 0x01, 0xA2, 0xA1, 0x04, 0x03, 0x02, 0x01, 0xB4, 0xB3, 0xB2, 0xB1, 0x08, 0x07,
                     0x06, 0x05, 0x04, 0x03, 0x02, 0x01, 0xC8, 0xC7, 0xC6, 0xC5, 0xC4, 0xC3, 0xC2, 0xC1}));
    EXPECT_EQ(Written(all, zunSystem::Big),
              Bytes({0x01, 0x02, 0xA1, 0xA2, 0x01, 0x02, 0x03, 0x04, 0xB1, 0xB2, 0xB3, 0xB4, 0x01, 0x02,
                     0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8}));
}

TEST(FileForms, BytesAreNeverReordered)
{
    auto all = [](zunFile & f)
    {
        f.Write_Char('A');
        f.Write_Int8(-2);
        f.Write_UInt8(0xFE);
    };
    EXPECT_EQ(Written(all), Bytes({0x41, 0xFE, 0xFE}));
    EXPECT_EQ(Written(all, zunSystem::Big), Bytes({0x41, 0xFE, 0xFE}));
}

TEST(FileForms, LongIsFourBytesOnTheStream)
{
    EXPECT_EQ(Written([](zunFile & f) { f.Write_Int32(-2L); }), Bytes({0xFE, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_UInt32(0x1234567890ul); }), Bytes({0x90, 0x78, 0x56, 0x34}));
    zunFastMesh<unsigned char> mesh = MeshOf(Bytes({0xFE, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF}));
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    long sign = 0;
    unsigned long zero = 0x1234567800000000ul;
    file->Read_Int32(sign);
    file->Read_UInt32(zero);
    EXPECT_EQ(sign, -2L);
    EXPECT_EQ(zero, 0xFFFFFFFEul);
}

TEST(FileForms, Floats)
{
    EXPECT_EQ(Written([](zunFile & f) { f.Write_Float(1.0); }), Bytes({0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_Float(1.0); }, zunSystem::Big), Bytes({0x3F, 0xF0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_FloatSP(-2.0f); }), Bytes({0, 0, 0, 0xC0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_FloatSP(-2.0f); }, zunSystem::Big), Bytes({0xC0, 0, 0, 0}));
}

TEST(FileForms, BoolIsAFourByteNumber)
{
    EXPECT_EQ(Written(
                  [](zunFile & f)
                  {
                      f.Write_Bool(true);
                      f.Write_Bool(false);
                  }),
              Bytes({1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_Bool(true); }, zunSystem::Big), Bytes({0, 0, 0, 1}));
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({2, 0, 0, 0, 0, 0, 0, 0}));
    auto file = zunFileMem::Create(mesh);
    bool a = false, b = true;
    file->Read_Bool(a);
    file->Read_Bool(b);
    EXPECT_TRUE(a); // any non-zero number
    EXPECT_FALSE(b);
}

TEST(FileForms, StringsWithLengthAndTerminator)
{
    EXPECT_EQ(Written([](zunFile & f) { f.Write_String(zunString("abc")); }), Bytes({3, 0, 0, 0, 0x61, 0x62, 0x63, 0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_String(zunString("abc")); }, zunSystem::Big),
              Bytes({0, 0, 0, 3, 0x61, 0x62, 0x63, 0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_String(zunString()); }), Bytes({0, 0, 0, 0}));
    EXPECT_EQ(Written([](zunFile & f) { f.Write_String(zunString("")); }), Bytes({0, 0, 0, 0}));
    // The wide string goes as its UTF-8 form; the length counts UTF-8 bytes.
    EXPECT_EQ(Written([](zunFile & f) { f.Write_String16(zunStringW(ZUN_W("a\u00E9"))); }),
              Bytes({3, 0, 0, 0, 0x61, 0xC3, 0xA9, 0}));
    EXPECT_EQ(Written([](zunFile & f) { zunString("xy").Write(&f); }), Bytes({2, 0, 0, 0, 'x', 'y', 0}));
    EXPECT_EQ(Written([](zunFile & f) { zunStringW(ZUN_W("xy")).Write(&f); }), Bytes({2, 0, 0, 0, 'x', 'y', 0}));
}

TEST(FileForms, CStringIsTheCharactersAlone)
{
    EXPECT_EQ(Written([](zunFile & f) { f.Write_CString("abc"); }), Bytes({0x61, 0x62, 0x63}));
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->Write_CString("");
    file->Write_CString(nullptr);
    EXPECT_TRUE(storage->calls.empty());
    EXPECT_EQ(file->GetCurrPos(), 0u);
}

TEST(FileForms, RawBlocksAreNeverReordered)
{
    const Bytes_t raw = Bytes({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_EQ(Written([&](zunFile & f) { EXPECT_EQ(f.Write_Block(raw.data(), 8), 8u); }, zunSystem::Big), raw);
}

TEST(FileForms, PaddedBlocks)
{
    const Bytes_t raw = Bytes({9, 8, 7, 6, 5});
    EXPECT_TRUE(Written([&](zunFile & f) { f.Write_BlockPadding(raw.data(), 0); }).empty());
    EXPECT_EQ(Written([&](zunFile & f) { f.Write_BlockPadding(raw.data(), 1); }), Bytes({9, 0, 0, 0}));
    EXPECT_EQ(Written([&](zunFile & f) { f.Write_BlockPadding(raw.data(), 4); }), Bytes({9, 8, 7, 6}));
    EXPECT_EQ(Written([&](zunFile & f) { f.Write_BlockPadding(raw.data(), 5); }), Bytes({9, 8, 7, 6, 5, 0, 0, 0}));
    // The pad depends on the block's own length, not on where it stands.
    EXPECT_EQ(Written(
                  [&](zunFile & f)
                  {
                      f.Write_UInt8(1);
                      f.Write_BlockPadding(raw.data(), 2);
                  }),
              Bytes({1, 9, 8, 0, 0}));

    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({9, 8, 7, 6, 5, 0, 0, 0, 0x2A, 0, 0, 0}));
    auto file = zunFileMem::Create(mesh);
    unsigned char back[5] = {};
    file->Read_BlockPadded(back, 5);
    EXPECT_EQ(file->GetCurrPos(), 8u);
    EXPECT_EQ(back[4], 5);
    int next = 0;
    file->Read_Int32(next);
    EXPECT_EQ(next, 42);
}

TEST(FileForms, PrintfWritesAString)
{
    EXPECT_EQ(Written([](zunFile & f) { f.Printf("%d-%s", 7, "x"); }), Bytes({3, 0, 0, 0, '7', '-', 'x', 0}));
}

TEST(FileForms, ReadsGiveBackWhatWasWrittenInBothOrders)
{
    for (zunSystem::Endianness order : {zunSystem::Little, zunSystem::Big})
    {
        const Bytes_t bytes = Written(
            [](zunFile & f)
            {
                f.Write_Bool(true);
                f.Write_Char('q');
                f.Write_Int8(-100);
                f.Write_UInt8(200);
                f.Write_Int16(-12345);
                f.Write_UInt16(54321);
                f.Write_Int32(-123456789);
                f.Write_UInt32(3000000000u);
                f.Write_Int64(-1234567890123ll);
                f.Write_UInt64(18000000000000000000ull);
                f.Write_Float(3.25);
                f.Write_FloatSP(-0.5f);
                f.Write_String(zunString("hello"));
                f.Write_String16(zunStringW(ZUN_W("w\u00F6rld")));
            },
            order);
        const zunFastMesh<unsigned char> mesh = MeshOf(bytes);
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        bool b = false;
        char c = 0;
        signed char i8 = 0;
        unsigned char u8 = 0;
        short i16 = 0;
        unsigned short u16 = 0;
        int i32 = 0;
        unsigned int u32 = 0;
        std::int64_t i64 = 0;
        std::uint64_t u64 = 0;
        double d = 0;
        float f = 0;
        zunString s;
        zunStringW w;
        file->Read_Bool(b);
        file->Read_Char(c);
        file->Read_Int8(i8);
        file->Read_UInt8(u8);
        file->Read_Int16(i16);
        file->Read_UInt16(u16);
        file->Read_Int32(i32);
        file->Read_UInt32(u32);
        file->Read_Int64(i64);
        file->Read_UInt64(u64);
        file->Read_Float(d);
        file->Read_FloatSP(f);
        file->Read_String(s, zunFile::Terminated);
        file->Read_String16(w, zunFile::Terminated);
        EXPECT_TRUE(b);
        EXPECT_EQ(c, 'q');
        EXPECT_EQ(i8, -100);
        EXPECT_EQ(u8, 200);
        EXPECT_EQ(i16, -12345);
        EXPECT_EQ(u16, 54321);
        EXPECT_EQ(i32, -123456789);
        EXPECT_EQ(u32, 3000000000u);
        EXPECT_EQ(i64, -1234567890123ll);
        EXPECT_EQ(u64, 18000000000000000000ull);
        EXPECT_EQ(d, 3.25);
        EXPECT_EQ(f, -0.5f);
        EXPECT_TRUE(s == "hello");
        EXPECT_EQ(s.m_nChecksum, zunString("hello").m_nChecksum);
        EXPECT_TRUE(w == ZUN_W("w\u00F6rld"));
        EXPECT_TRUE(file->IsEOF());
    }
}

TEST(FileForms, BigEndianValueAndRawGuidBytes)
{
    const Bytes_t guid = Bytes({0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE});
    EXPECT_EQ(Written(
                  [&](zunFile & f)
                  {
                      f.Write_Int32(0x01020304);
                      zunFileArrayAccess::Write_Array(&f, guid.data(), 1, 8, zunFile::SameInAnyByteOrder);
                  },
                  zunSystem::Big),
              Bytes({1, 2, 3, 4, 0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}));
}

// ---- Arrays.

TEST(FileArrays, OrderedElementsAreReversedOneByOne)
{
    const int values[3] = {1, 0x0A0B0C0D, -1};
    EXPECT_EQ(Written([&](zunFile & f)
                      { zunFileArrayAccess::Write_Array(&f, values, 4, 3, zunFile::DiffersByByteOrder); },
                      zunSystem::Big),
              Bytes({0, 0, 0, 1, 0x0A, 0x0B, 0x0C, 0x0D, 0xFF, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(
        Written([&](zunFile & f) { zunFileArrayAccess::Write_Array(&f, values, 4, 3, zunFile::DiffersByByteOrder); }),
        Bytes({1, 0, 0, 0, 0x0D, 0x0C, 0x0B, 0x0A, 0xFF, 0xFF, 0xFF, 0xFF}));
    // The same ints taken as they stand.
    EXPECT_EQ(Written([&](zunFile & f)
                      { zunFileArrayAccess::Write_Array(&f, values, 4, 3, zunFile::SameInAnyByteOrder); },
                      zunSystem::Big),
              Bytes({1, 0, 0, 0, 0x0D, 0x0C, 0x0B, 0x0A, 0xFF, 0xFF, 0xFF, 0xFF}));
    // Elements wider than 8 bytes are never reordered.
    const unsigned char wide[10] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(Written([&](zunFile & f)
                      { zunFileArrayAccess::Write_Array(&f, wide, 10, 1, zunFile::DiffersByByteOrder); },
                      zunSystem::Big),
              Bytes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_TRUE(Written([&](zunFile & f)
                        { zunFileArrayAccess::Write_Array(&f, values, 4, 0, zunFile::DiffersByByteOrder); },
                        zunSystem::Big)
                    .empty());
}

TEST(FileArrays, ReadBackInBothOrders)
{
    const double values[4] = {1.5, -2.25, 1e300, 0.0};
    for (zunSystem::Endianness order : {zunSystem::Little, zunSystem::Big})
    {
        const zunFastMesh<unsigned char> mesh = MeshOf(Written(
            [&](zunFile & f) { zunFileArrayAccess::Write_Array(&f, values, 8, 4, zunFile::DiffersByByteOrder); },
            order));
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        double back[4] = {};
        zunFileArrayAccess::Read_Array(file.get(), back, 8, 4, zunFile::DiffersByByteOrder);
        EXPECT_EQ(back[1], -2.25);
        EXPECT_EQ(back[2], 1e300);
    }
}

TEST(FileArrays, ArrayCrossingTheLimitMovesThereUntouched)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes_t(64, 0x11));
    file->SetLimit(10, zunFile::LimitAbsolute);
    int out[3] = {5, 5, 5};
    zunFileArrayAccess::Read_Array(file.get(), out, 4, 3, zunFile::DiffersByByteOrder);
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(file->GetCurrPos(), 10u);
}

TEST(FileArrays, PlainArrayPastTheEndThrows)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes_t(10, 0x11));
    int out[3] = {5, 5, 5};
    const zunException e =
        CaughtFrom([&] { zunFileArrayAccess::Read_Array(file.get(), out, 4, 3, zunFile::SameInAnyByteOrder); });
    ExpectThrowSite(e, "zunFile::Read_Array failed", "void __cdecl zunFile::Read_Array(");
}

TEST(FileArrays, ElementLoopStopsSilentlyAtTheEnd)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({0, 0, 0, 1, 0, 0, 0, 2, 0, 0}));
    file->SetEndianness(zunSystem::Big);
    int out[3] = {5, 5, 5};
    zunFileArrayAccess::Read_Array(file.get(), out, 4, 3, zunFile::DiffersByByteOrder);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(out[1], 2);
    EXPECT_EQ(out[2], 5);
    EXPECT_EQ(file->GetCurrPos(), 10u);
}

TEST(FileArrays, WideValuesAreReportedAndCarryOn)
{
    const unsigned char wide[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Bytes_t bytes =
        Written([&](zunFile & f) { zunFileArrayAccess::Write_BlockEndianness(&f, wide, 12); }, zunSystem::Big);
    EXPECT_EQ(bytes, Bytes_t(wide, wide + 12));
    const zunFastMesh<unsigned char> mesh = MeshOf(bytes);
    auto file = zunFileMem::Create(mesh);
    file->SetEndianness(zunSystem::Big);
    unsigned char back[12] = {};
    zunFileArrayAccess::Read_BlockEndianness(file.get(), back, 12);
    EXPECT_EQ(Bytes_t(back, back + 12), bytes);
    // Odd widths between 2 and 8 are reversed too.
    const unsigned char three[3] = {1, 2, 3};
    EXPECT_EQ(Written([&](zunFile & f) { zunFileArrayAccess::Write_BlockEndianness(&f, three, 3); }, zunSystem::Big),
              Bytes({3, 2, 1}));
}

// ---- Reads at the limit and at the end.

TEST(FileBounds, NumberAtTheLimitKeepsTheDefault)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({1, 0, 0, 0, 2, 0, 0, 0}));
    file->SetLimit(6, zunFile::LimitAbsolute);
    int a = -1, b = -1;
    file->Read_Int32(a);
    file->Read_Int32(b);
    EXPECT_EQ(a, 1);
    EXPECT_EQ(b, -1);
    EXPECT_EQ(file->GetCurrPos(), 6u);
    EXPECT_TRUE(file->IsLimitReached());
    double d = 0.5;
    float f = 0.25f;
    long l = 1L << 40;
    unsigned long ul = 1ul << 40;
    bool t = true;
    file->Read_Float(d);
    file->Read_FloatSP(f);
    file->Read_Int32(l);
    file->Read_UInt32(ul);
    file->Read_Bool(t);
    EXPECT_EQ(d, 0.5);
    EXPECT_EQ(f, 0.25f);
    EXPECT_EQ(l, 1L << 40);
    EXPECT_EQ(ul, 1ul << 40);
    EXPECT_TRUE(t);
}

TEST(FileBounds, NumberCrossingTheEndMovesToTheEnd)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({1, 0, 0, 0, 2, 0}));
    file->SetLimit(100, zunFile::LimitAbsolute);
    int a = -1, b = -1;
    file->Read_Int32(a);
    file->Read_Int32(b);
    EXPECT_EQ(b, -1);
    EXPECT_EQ(file->GetCurrPos(), 6u); // the smaller of the limit and the size
    bool kept = false;
    file->Read_Bool(kept);
    EXPECT_FALSE(kept);
}

TEST(FileBounds, BlockCrossingTheLimitLosesTheBytesBeforeIt)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes_t(40, 0x33));
    file->SetCurrPos(11, zunFile::FromStart);
    file->SetLimit(20, zunFile::LimitAbsolute);
    unsigned char out[10] = {};
    EXPECT_EQ(file->Read_Block(out, 10), 0u);
    EXPECT_EQ(file->GetCurrPos(), 20u);
    EXPECT_EQ(out[0], 0);
    char c = 'k';
    file->Read_Char(c);
    EXPECT_EQ(c, 'k');
    signed char s = 3;
    unsigned char u = 4;
    file->Read_Int8(s);
    file->Read_UInt8(u);
    EXPECT_EQ(s, 3);
    EXPECT_EQ(u, 4);
}

TEST(FileBounds, SingleBytesStopAtTheEnd)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({7}));
    char a = 0, b = 'z';
    file->Read_Char(a);
    file->Read_Char(b);
    EXPECT_EQ(a, 7);
    EXPECT_EQ(b, 'z');
    EXPECT_EQ(file->GetCurrPos(), 1u);
}

TEST(FileBounds, ShortReadWithTheCacheOffThrows)
{
    // A back-end whose size claims more than it holds, read without a cache.
    auto storage = StorageHolding(Bytes({1, 2}));
    storage->reportedSize = 100;
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    file->SetCurrPos(0, zunFile::FromStart);
    int value = 0;
    ExpectThrowSite(CaughtFrom([&] { file->Read_Int32(value); }), "zunFile::Read_BlockEndianness failed",
                    "void __cdecl zunFile::Read_BlockEndianness(");
}

// ---- Strings.

TEST(FileStrings, ReadOptions)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({3, 0, 0, 0, 'a', 'b', 'c', 0, 0x2A, 0, 0, 0}));
    {
        auto file = zunFileMem::Create(mesh);
        zunString s;
        file->Read_String(s, zunFile::NoTerminator);
        EXPECT_TRUE(s == "abc");
        EXPECT_EQ(file->GetCurrPos(), 7u); // on the terminator
    }
    {
        auto file = zunFileMem::Create(mesh);
        zunString s;
        file->Read_String(s, zunFile::Terminated);
        EXPECT_TRUE(s == "abc");
        EXPECT_EQ(file->GetCurrPos(), 8u);
        int next = 0;
        file->Read_Int32(next);
        EXPECT_EQ(next, 42);
    }
    {
        auto file = zunFileMem::Create(mesh);
        zunString s;
        file->Read_String(s, zunFile::TerminatorCounted);
        EXPECT_TRUE(s == "ab");
        EXPECT_EQ(s.Length(), 2u);
        EXPECT_EQ(file->GetCurrPos(), 7u);
    }
    {
        // The terminator is skipped without a look at it.
        const zunFastMesh<unsigned char> odd = MeshOf(Bytes({1, 0, 0, 0, 'x', '!'}));
        auto file = zunFileMem::Create(odd);
        zunString s;
        s.Read(file.get());
        EXPECT_TRUE(s == "x");
        EXPECT_EQ(file->GetCurrPos(), 6u);
    }
}

TEST(FileStrings, ZeroLengthIsEmptyUnderEveryOption)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({0, 0, 0, 0, 9}));
    for (zunFile::ReadStringOption option : {zunFile::NoTerminator, zunFile::Terminated, zunFile::TerminatorCounted})
    {
        auto file = zunFileMem::Create(mesh);
        zunString s("old");
        file->Read_String(s, option);
        EXPECT_TRUE(s.IsEmpty());
        EXPECT_EQ(file->GetCurrPos(), 4u);
        auto wideFile = zunFileMem::Create(mesh);
        zunStringW w(ZUN_W("old"));
        wideFile->Read_String16(w, option);
        EXPECT_TRUE(w.IsEmpty());
        EXPECT_EQ(wideFile->GetCurrPos(), 4u);
    }
}

TEST(FileStrings, WideReadIgnoresItsOption)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({2, 0, 0, 0, 0xC3, 0xA9, 0, 7}));
    auto file = zunFileMem::Create(mesh);
    zunStringW w;
    file->Read_String16(w, zunFile::NoTerminator);
    EXPECT_TRUE(w == ZUN_W("\u00E9"));
    EXPECT_EQ(file->GetCurrPos(), 7u);
}

TEST(FileStrings, StringAtTheLimitBecomesEmpty)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({3, 0, 0, 0, 'a', 'b', 'c', 0}));
    file->SetLimit(2, zunFile::LimitAbsolute);
    zunString s("kept?");
    file->Read_String(s, zunFile::Terminated);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(file->GetCurrPos(), 2u);
    zunStringW w(ZUN_W("kept?"));
    w.Read(file.get());
    EXPECT_TRUE(w.IsEmpty());
}

TEST(FileStrings, CharactersPastTheLimitGiveZeros)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({3, 0, 0, 0, 'a', 'b', 'c', 0, 5}));
    file->SetLimit(6, zunFile::LimitAbsolute);
    zunString s("old");
    file->Read_String(s, zunFile::Terminated);
    EXPECT_EQ(s.Length(), 3u);
    EXPECT_EQ(s.m_pData[0], 0);
    EXPECT_EQ(s.m_pData[2], 0);
    EXPECT_EQ(s.m_nChecksum, 0u);
    EXPECT_EQ(file->GetCurrPos(), 7u); // the limit, then past it by the terminator
}

TEST(FileStrings, CharactersPastTheEndThrow)
{
    auto storage = std::make_shared<Storage>();
    auto file = Over(storage, Bytes({30, 0, 0, 0, 'a', 'b'}));
    zunString s("old");
    ExpectThrowSite(CaughtFrom([&] { file->Read_String(s, zunFile::Terminated); }), "zunFile::Read_Array failed",
                    "void __cdecl zunFile::Read_Array(");
}

TEST(FileStrings, NoMemoryForTheTextThrowsAndKeepsTheString)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({40, 0, 0, 0}));
    auto file = zunFileMem::Create(mesh);
    zunString s("before");
    zunMemTesting::FailAllocation(1, true);
    const zunException e = CaughtFrom([&] { file->Read_String(s, zunFile::Terminated); });
    zunMemTesting::Reset();
    ExpectThrowSite(e, "Not enough memory", "void __cdecl zunFile::Read_String(");
    EXPECT_TRUE(s == "before");
    EXPECT_EQ(s.m_nChecksum, zunString("before").m_nChecksum);

    // A length with no room for its terminator can't be held either.
    const zunFastMesh<unsigned char> huge = MeshOf(Bytes({0xFF, 0xFF, 0xFF, 0xFF}));
    auto file2 = zunFileMem::Create(huge);
    EXPECT_STREQ(CaughtFrom([&] { file2->Read_String(s, zunFile::Terminated); }).GetDebugDescription(),
                 "Not enough memory");
    EXPECT_TRUE(s == "before");
}

TEST(FileStrings, TerminatorCountedOfOneIsEmpty)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 0, 0, 0, 0, 8}));
    auto file = zunFileMem::Create(mesh);
    zunString s("x");
    file->Read_String(s, zunFile::TerminatorCounted);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(file->GetCurrPos(), 5u);
}

// ---- Write failures.

TEST(FileWriteFailures, ReadOnlyMemoryFileRefusesEveryWrite)
{
    const zunFastMesh<unsigned char> mesh = MeshOf(Bytes({1, 2, 3, 4}));
    auto file = zunFileMem::Create(mesh);
    ExpectThrowSite(CaughtFrom([&] { file->Write_Int32(1); }), "zunFile::Write_BlockEndianness failed",
                    "void __cdecl zunFile::Write_BlockEndianness(");
    ExpectThrowSite(CaughtFrom([&] { file->Write_Char('a'); }), "zunFile::Write_Block failed",
                    "unsigned __int64 __cdecl zunFile::Write_Block(");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Int8(1); }).GetDebugDescription(), "zunFile::Write_Block failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_UInt8(1); }).GetDebugDescription(), "zunFile::Write_Block failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Block("ab", 2); }).GetDebugDescription(), "zunFile::Write_Block failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_BlockPadding("ab", 2); }).GetDebugDescription(),
                 "zunFile::Write_Block failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_CString("ab"); }).GetDebugDescription(), "zunFile::Write_Block failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Float(1); }).GetDebugDescription(),
                 "zunFile::Write_BlockEndianness failed");
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Bool(true); }).GetDebugDescription(),
                 "zunFile::Write_BlockEndianness failed");
    const int values[2] = {1, 2};
    ExpectThrowSite(
        CaughtFrom([&] { zunFileArrayAccess::Write_Array(file.get(), values, 4, 2, zunFile::DiffersByByteOrder); }),
        "zunFile::Write_Array failed", "void __cdecl zunFile::Write_Array(");
    // Nothing got in.
    EXPECT_EQ(Contents(mesh), Bytes({1, 2, 3, 4}));
    // Printf reports nothing.
    EXPECT_NO_THROW(file->Printf("%s", "lost"));
}

TEST(FileWriteFailures, StringWhoseCharactersDontGoOut)
{
    // Storage that takes 6 bytes: the length goes out, the characters don't.
    auto storage = std::make_shared<Storage>();
    storage->writeCapacity = 6;
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    ExpectThrowSite(CaughtFrom([&] { file->Write_String(zunString("abc")); }), "zunFile::Write_Array failed",
                    "void __cdecl zunFile::Write_Array(");
    auto storage2 = std::make_shared<Storage>();
    storage2->writeCapacity = 6;
    auto file2 = MakeRecordedFile(storage2);
    file2->SetCacheSize(0);
    EXPECT_STREQ(CaughtFrom([&] { file2->Write_String16(zunStringW(ZUN_W("abc"))); }).GetDebugDescription(),
                 "zunFile::Write_Array failed");
    // The padding of a padded block counts as the block.
    auto storage3 = std::make_shared<Storage>();
    storage3->writeCapacity = 6;
    auto file3 = MakeRecordedFile(storage3);
    file3->SetCacheSize(0);
    EXPECT_STREQ(CaughtFrom([&] { file3->Write_BlockPadding("abcde", 5); }).GetDebugDescription(),
                 "zunFile::Write_Block failed");
}

TEST(FileWriteFailures, PrintfSwallowsAStorageFailure)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    storage->throwOnWrite = true;
    EXPECT_NO_THROW(file->Printf("%d", 5));
    EXPECT_FALSE(zunException::IsAnyBeingHandled());
}

TEST(FileWriteFailures, StorageFailurePassesThroughTheTypedWrite)
{
    auto storage = std::make_shared<Storage>();
    auto file = MakeRecordedFile(storage);
    file->SetCacheSize(0);
    storage->throwOnWrite = true;
    EXPECT_STREQ(CaughtFrom([&] { file->Write_Int32(1); }).GetDebugDescription(), "write refused");
}
