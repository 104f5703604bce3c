// Identifiers: zunGUID, zunVersion and zunFeatureID, their rules and their
// file forms in both byte orders and at a chunk's limit.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "DebugLogPrivate.h"
#include "IdTestSupport.h"
#include "MemTesting.h"
#include "platform/Debugger.h"

using idtest::BytesOf;
using idtest::Reader;
using idtest::ReadFenced;
using idtest::Truncated;
using idtest::Written;
using Bytes = std::vector<unsigned char>;

namespace
{
    const char * const kSample = "00112233-4455-6677-8899-aabbccddeeff";

    std::string Text(const zunString & text)
    {
        return std::string(static_cast<const char *>(text));
    }

    std::u16string Text16(const zunStringW & text)
    {
        return std::u16string(static_cast<const zunWChar *>(text));
    }
}

// ---- zunGUID

TEST(GUID, IsSixteenBytesInTheUuidLayout)
{
    EXPECT_EQ(sizeof(zunGUID), 16u);
    const zunGUID guid(kSample);
    EXPECT_EQ(guid.Data1, 0x00112233u);
    EXPECT_EQ(guid.Data2, 0x4455u);
    EXPECT_EQ(guid.Data3, 0x6677u);
    const unsigned char data4[8] = {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    EXPECT_EQ(std::memcmp(guid.Data4, data4, 8), 0);
}

TEST(GUID, InvalidIsAllZero)
{
    const unsigned char zero[16] = {};
    EXPECT_EQ(std::memcmp(&zunGUID::Invalid, zero, 16), 0);
    EXPECT_EQ(Text(zunGUID::Invalid.ToString()), "00000000-0000-0000-0000-000000000000");
}

TEST(GUID, DefaultIsNewAndNeverInvalid)
{
    std::set<zunGUID> seen;
    for (int i = 0; i < 100; ++i)
    {
        const zunGUID fresh;
        EXPECT_NE(fresh, zunGUID::Invalid);
        EXPECT_TRUE(seen.insert(fresh).second);
    }
    EXPECT_NE(zunGUID(), zunGUID());
}

TEST(GUID, EmptyOrMalformedTextGivesInvalid)
{
    EXPECT_EQ(zunGUID(""), zunGUID::Invalid);
    EXPECT_EQ(zunGUID(static_cast<const char *>(nullptr)), zunGUID::Invalid);
    EXPECT_EQ(zunGUID(zunString()), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("not a uuid"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("{00112233-4455-6677-8899-aabbccddeeff}"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("00112233-4455-6677-8899-aabbccddeef"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("00112233-4455-6677-8899-aabbccddeeff0"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("0011223304455-6677-8899-aabbccddeeff"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("g0112233-4455-6677-8899-aabbccddeeff"), zunGUID::Invalid);
    EXPECT_EQ(zunGUID("001122334455667788990aabbccddeeff"), zunGUID::Invalid);
}

TEST(GUID, ParsedAllZeroTextCannotBeToldFromFailure)
{
    EXPECT_EQ(zunGUID("00000000-0000-0000-0000-000000000000"), zunGUID("junk"));
}

TEST(GUID, ParsesEitherCaseAndPrintsLowerCase)
{
    const zunGUID upper("6B29FC40-CA47-1067-B31D-00DD010662DA");
    const zunGUID lower("6b29fc40-ca47-1067-b31d-00dd010662da");
    EXPECT_EQ(upper, lower);
    EXPECT_EQ(Text(upper.ToString()), "6b29fc40-ca47-1067-b31d-00dd010662da");
    EXPECT_EQ(Text16(upper.ToString16()), u"6b29fc40-ca47-1067-b31d-00dd010662da");
    EXPECT_EQ(zunGUID(zunString("6B29FC40-CA47-1067-B31D-00DD010662DA")), lower);
}

TEST(GUID, TextRoundTrip)
{
    for (int i = 0; i < 20; ++i)
    {
        const zunGUID fresh;
        const zunString text = fresh.ToString();
        EXPECT_EQ(text.Length(), 36u);
        EXPECT_EQ(zunGUID(text), fresh);
    }
}

TEST(GUID, CopyAndAssignment)
{
    const zunGUID a(kSample);
    zunGUID b(a);
    EXPECT_EQ(b, a);
    zunGUID c;
    c = a;
    EXPECT_EQ(c, a);
    EXPECT_FALSE(c != a);
}

TEST(GUID, OrderIsTheStoredBytesNotTheText)
{
    // On a little-endian machine the high byte of Data1 is stored last of its
    // four, so it counts only after the three lower bytes.
    const zunGUID highByte("01000000-0000-0000-0000-000000000000");
    const zunGUID lowByte("00000001-0000-0000-0000-000000000000");
    EXPECT_TRUE(highByte < lowByte);
    EXPECT_FALSE(lowByte < highByte);
    EXPECT_GT(std::string("01000000"), std::string("00000001"));
    EXPECT_FALSE(highByte < highByte);
    // Data4 is stored in text order.
    EXPECT_TRUE(zunGUID("00000000-0000-0000-0000-000000000001") < zunGUID("00000000-0000-0000-0100-000000000000"));
}

TEST(GUID, FileFormLittleEndian)
{
    const zunGUID guid(kSample);
    const auto mesh = Written([&](zunFile * f) { guid.Write(f); });
    EXPECT_EQ(BytesOf(mesh),
              (Bytes{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
    auto file = Reader(mesh);
    EXPECT_EQ(zunGUID(file.get(), zunGUID::Invalid), guid);
}

TEST(GUID, FileFormBigEndianKeepsData4InTextOrder)
{
    const zunGUID guid(kSample);
    const auto mesh = Written([&](zunFile * f) { guid.Write(f); }, zunSystem::Big);
    EXPECT_EQ(BytesOf(mesh),
              (Bytes{0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF}));
    auto file = Reader(mesh, zunSystem::Big);
    zunGUID read(zunGUID::Invalid);
    read.Read(file.get());
    EXPECT_EQ(read, guid);
}

TEST(GUID, ReadStoppedByAChunkKeepsTheDefault)
{
    const zunGUID written(kSample);
    const zunGUID fallback("ffffffff-ffff-ffff-ffff-ffffffffffff");
    const auto write = [&](zunFile * f) { written.Write(f); };

    zunGUID empty(zunGUID::Invalid);
    EXPECT_TRUE(ReadFenced(Truncated(write, 0), [&](zunFile * f) { empty = zunGUID(f, fallback); }));
    EXPECT_EQ(empty, fallback);

    // Data1 and Data2 fit; Data3 crosses the limit, Data4 stands at it.
    zunGUID part(zunGUID::Invalid);
    EXPECT_TRUE(ReadFenced(Truncated(write, 7), [&](zunFile * f) { part = zunGUID(f, fallback); }));
    EXPECT_EQ(Text(part.ToString()), "00112233-4455-ffff-ffff-ffffffffffff");

    zunGUID whole(zunGUID::Invalid);
    EXPECT_TRUE(ReadFenced(Truncated(write, 16), [&](zunFile * f) { whole = zunGUID(f, fallback); }));
    EXPECT_EQ(whole, written);
}

// ---- zunVersion

TEST(Version, DefaultIsInvalid)
{
    const zunVersion version;
    EXPECT_FALSE(version.IsValid());
    EXPECT_EQ(version, zunVersion::Invalid);
    EXPECT_EQ(version.GetRawValue(), 0u);
    EXPECT_TRUE(zunVersion(1).IsValid());
}

TEST(Version, TheBitLayout)
{
    const zunVersion version(0x15120123);
    EXPECT_EQ(version.GetMajor(), 2021u);
    EXPECT_EQ(version.GetMajorInternal(), 21);
    EXPECT_EQ(version.GetMinor(), 1);
    EXPECT_EQ(version.GetRevision(), 2);
    EXPECT_EQ(version.GetBuild(), 291);

    zunVersion built;
    built.SetMajor(2021);
    built.SetMinor(1);
    built.SetRevision(2);
    built.SetBuild(291);
    EXPECT_EQ(built.GetRawValue(), 0x15120123u);
    built.SetMajorInternal(255);
    EXPECT_EQ(built.GetRawValue(), 0xFF120123u);
    EXPECT_EQ(built.GetMajor(), 2255u);
    built.SetRawValue(7);
    EXPECT_EQ(built.GetRawValue(), 7u);
}

TEST(Version, CheckedSettersRefuseOutOfRange)
{
    zunVersion version(0x15120123);
    version.SetMajor(1999);
    version.SetMajor(2256);
    version.SetMinor(16);
    version.SetRevision(16);
    EXPECT_EQ(version.GetRawValue(), 0x15120123u);
    version.SetMajor(2255);
    EXPECT_EQ(version.GetMajorInternal(), 255);
    version.SetMinor(15);
    version.SetRevision(15);
    EXPECT_EQ(version.GetRawValue(), 0xFFFF0123u);
}

TEST(Version, Major2000AloneIsInvalid)
{
    zunVersion version;
    version.SetMajor(2000);
    EXPECT_EQ(version.GetMajorInternal(), 0);
    EXPECT_FALSE(version.IsValid());
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Short)), "2000");
    EXPECT_EQ(Text(zunVersion(0).GetDescription(zunVersion::Medium)), "2000");
}

TEST(Version, ComparisonsFollowTheRawValue)
{
    const zunVersion older(0x15120123), build(0x15120124), revision(0x15130000), minor(0x15200000), major(0x16000000);
    EXPECT_TRUE(older < build && build < revision && revision < minor && minor < major);
    EXPECT_TRUE(older <= older && older >= older && major > older && !(older > major));
    EXPECT_TRUE(older != build && older == zunVersion(0x15120123));
    EXPECT_TRUE(zunVersion(0xFF000000) > zunVersion(0x7FFFFFFF));
}

TEST(Version, FiveDescriptions)
{
    const zunVersion version(0x15120123);
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Short)), "2021.1");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Medium)), "2021.1.2");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Full)), "2021.1.2.291");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Internal)), "21.1.2.291");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::WithBuild)), "2021.1.2 build 291");
    EXPECT_EQ(Text(version.GetDescription(static_cast<zunVersion::Description>(5))), "");
    EXPECT_EQ(Text(version.GetDescription(static_cast<zunVersion::Description>(-1))), "");
}

TEST(Version, ZeroComponents)
{
    // Minor 0, revision 3: the second base writes the zero minor.
    const zunVersion version(0x15030000);
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Short)), "2021");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::Medium)), "2021.0.3");
    EXPECT_EQ(Text(version.GetDescription(zunVersion::WithBuild)), "2021.0.3 build 0");
    const zunVersion bare(0x15000000);
    EXPECT_EQ(Text(bare.GetDescription(zunVersion::Medium)), "2021");
    EXPECT_EQ(Text(bare.GetDescription(zunVersion::Full)), "2021.0.0.0");
    EXPECT_EQ(Text(bare.GetDescription(zunVersion::Internal)), "21.0.0.0");
    EXPECT_EQ(Text(bare.GetDescription(zunVersion::WithBuild)), "2021 build 0");
    EXPECT_EQ(Text(zunVersion(0x1510FFFF).GetDescription(zunVersion::Full)), "2021.1.0.65535");
}

TEST(Version, FileFormBothByteOrders)
{
    const zunVersion version(0x15120123);
    const auto little = Written([&](zunFile * f) { version.Write(f); });
    EXPECT_EQ(BytesOf(little), (Bytes{0x23, 0x01, 0x12, 0x15}));
    const auto big = Written([&](zunFile * f) { version.Write(f); }, zunSystem::Big);
    EXPECT_EQ(BytesOf(big), (Bytes{0x15, 0x12, 0x01, 0x23}));
    auto file = Reader(big, zunSystem::Big);
    EXPECT_EQ(zunVersion(file.get(), zunVersion::Invalid), version);
}

TEST(Version, ReadStoppedByAChunkKeepsTheDefault)
{
    const zunVersion fallback(0x16000001);
    zunVersion read;
    EXPECT_TRUE(ReadFenced(Truncated([](zunFile * f) { zunVersion(0x15120123).Write(f); }, 3),
                           [&](zunFile * f) { read = zunVersion(f, fallback); }));
    EXPECT_EQ(read, fallback);
}

// ---- zunFeatureID

namespace
{
    zunFeatureID Ids(std::initializer_list<unsigned int> ids)
    {
        return zunFeatureID(ids.begin(), static_cast<unsigned int>(ids.size()));
    }

    std::vector<unsigned int> IdsOf(const zunFeatureID & id)
    {
        return std::vector<unsigned int>(id.DataPtrGet(), id.DataPtrGet() + id.DataCountGet());
    }
}

TEST(FeatureID, EmptyAtConstruction)
{
    const zunFeatureID id;
    EXPECT_TRUE(id.IsEmpty());
    EXPECT_EQ(id.DataCountGet(), 0u);
    EXPECT_EQ(id.DataPtrGet(), nullptr);
    EXPECT_TRUE(zunFeatureID::Empty.IsEmpty());
    EXPECT_EQ(zunFeatureID::Empty, id);
}

TEST(FeatureID, PushForms)
{
    zunFeatureID id;
    EXPECT_TRUE(id.Push(1u));
    const unsigned int more[] = {2, 3};
    EXPECT_TRUE(id.Push(more, 2));
    EXPECT_TRUE(id.Push(Ids({4, 5})));
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{1, 2, 3, 4, 5}));

    const zunGUID guid(kSample);
    zunFeatureID fromGuid;
    EXPECT_TRUE(fromGuid.Push(guid));
    unsigned int words[4];
    std::memcpy(words, &guid, 16);
    EXPECT_EQ(IdsOf(fromGuid), (std::vector<unsigned int>{words[0], words[1], words[2], words[3]}));
    EXPECT_EQ(words[0], 0x00112233u);
    EXPECT_EQ(words[1], 0x66774455u);
}

TEST(FeatureID, PushOfItselfDoublesIt)
{
    zunFeatureID id = Ids({1, 2});
    EXPECT_TRUE(id.Push(id));
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{1, 2, 1, 2}));
}

TEST(FeatureID, SetForms)
{
    zunFeatureID id = Ids({9, 9, 9});
    unsigned int two[] = {1, 2};
    EXPECT_TRUE(id.Set(two, 2));
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{1, 2}));
    EXPECT_TRUE(id.Set(nullptr, 5));
    EXPECT_TRUE(id.IsEmpty());
    EXPECT_EQ(id.DataPtrGet(), nullptr);
    id = Ids({7});
    EXPECT_TRUE(id.Set(two, 0));
    EXPECT_TRUE(id.IsEmpty());

    EXPECT_TRUE(id.Set(zunGUID(kSample)));
    EXPECT_EQ(id.DataCountGet(), 4u);
    EXPECT_EQ(id.DataPtrGet()[0], 0x00112233u);

    EXPECT_TRUE(id.Set(Ids({5, 6})));
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{5, 6}));
    EXPECT_TRUE(id.New());
    EXPECT_TRUE(id.IsEmpty());
}

TEST(FeatureID, SetToItselfEmptiesWhileAssignmentKeeps)
{
    zunFeatureID id = Ids({1, 2, 3});
    zunFeatureID & alias = id;
    id = alias;
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{1, 2, 3}));
    EXPECT_TRUE(id.Set(alias));
    EXPECT_TRUE(id.IsEmpty());
}

TEST(FeatureID, ExhaustedHeapGivesFalseAndKeepsTheIds)
{
    zunFeatureID id = Ids({1, 2});
    zunFeatureID big;
    for (unsigned int i = 0; i < 40; ++i)
        big.Push(i);
    unsigned int many[40] = {};
    zunMemTesting::FailAllocation(1, true);
    EXPECT_FALSE(id.Push(big));
    EXPECT_FALSE(id.Push(many, 40));
    EXPECT_FALSE(id.Set(many, 40));
    zunMemTesting::Reset();
    EXPECT_EQ(IdsOf(id), (std::vector<unsigned int>{1, 2}));
}

TEST(FeatureID, ToStringInBothBases)
{
    const zunFeatureID id = Ids({1, 255, 0x80000000u});
    EXPECT_EQ(Text(id.ToString(true)), "{ 1, ff, 80000000 }");
    EXPECT_EQ(Text(id.ToString(false)), "{ 1, 255, -2147483648 }");
    EXPECT_EQ(Text(zunFeatureID().ToString(true)), "{  }");
    EXPECT_EQ(Text(zunFeatureID().ToString(false)), "{  }");
}

TEST(FeatureID, EqualityAndOrder)
{
    EXPECT_EQ(Ids({1, 2}), Ids({1, 2}));
    EXPECT_NE(Ids({1, 2}), Ids({1, 3}));
    EXPECT_NE(Ids({1, 2}), Ids({1, 2, 0}));
    EXPECT_TRUE(Ids({1, 2}) < Ids({1, 2, 0}));
    EXPECT_FALSE(Ids({1, 2, 0}) < Ids({1, 2}));
    EXPECT_TRUE(Ids({1, 1, 9}) < Ids({1, 2}));
    EXPECT_FALSE(Ids({1, 2}) < Ids({1, 1, 9}));
    EXPECT_TRUE(Ids({0x7FFFFFFF}) < Ids({0x80000000u}));
    EXPECT_TRUE(zunFeatureID() < Ids({0}));
    EXPECT_FALSE(Ids({1, 2}) < Ids({1, 2}));
}

TEST(FeatureID, CopyTakesTheIds)
{
    const zunFeatureID source = Ids({4, 5, 6});
    zunFeatureID copy(source);
    EXPECT_EQ(copy, source);
    zunFeatureID target = Ids({1});
    target = zunFeatureID();
    EXPECT_TRUE(target.IsEmpty());
}

TEST(FeatureID, FileFormBothByteOrders)
{
    const zunFeatureID id = Ids({1, 0x01020304});
    const auto little = Written([&](zunFile * f) { id.Write(f); });
    EXPECT_EQ(BytesOf(little), (Bytes{2, 0, 0, 0, 1, 0, 0, 0, 4, 3, 2, 1}));
    const auto big = Written([&](zunFile * f) { id.Write(f); }, zunSystem::Big);
    EXPECT_EQ(BytesOf(big), (Bytes{0, 0, 0, 2, 0, 0, 0, 1, 1, 2, 3, 4}));
    auto file = Reader(big, zunSystem::Big);
    EXPECT_EQ(zunFeatureID(file.get(), zunFeatureID()), id);
    auto littleFile = Reader(little);
    EXPECT_EQ(zunFeatureID(littleFile.get(), zunFeatureID()), id);
}

TEST(FeatureID, NoIdsWriteFourBytesAndReadBackEmpty)
{
    const auto mesh = Written([](zunFile * f) { zunFeatureID().Write(f); });
    EXPECT_EQ(BytesOf(mesh), (Bytes{0, 0, 0, 0}));
    auto file = Reader(mesh);
    const zunFeatureID read(file.get(), Ids({1, 2}));
    EXPECT_TRUE(read.IsEmpty());
    EXPECT_EQ(read.DataPtrGet(), nullptr);
}

TEST(FeatureID, ReadAtAChunksLimit)
{
    const auto write = [](zunFile * f) { Ids({7, 8, 9}).Write(f); };
    // The count cannot be read: empty, whatever the default.
    zunFeatureID none = Ids({1});
    EXPECT_TRUE(ReadFenced(Truncated(write, 2), [&](zunFile * f) { none = zunFeatureID(f, Ids({5, 5})); }));
    EXPECT_TRUE(none.IsEmpty());
    // The count is read, the ids cross the limit: as many ids, all zero.
    zunFeatureID cut;
    EXPECT_TRUE(ReadFenced(Truncated(write, 10), [&](zunFile * f) { cut = zunFeatureID(f, zunFeatureID()); }));
    EXPECT_EQ(IdsOf(cut), (std::vector<unsigned int>{0, 0, 0}));
    zunFeatureID whole;
    EXPECT_TRUE(ReadFenced(Truncated(write, 16), [&](zunFile * f) { whole = zunFeatureID(f, zunFeatureID()); }));
    EXPECT_EQ(whole, Ids({7, 8, 9}));
}

TEST(FeatureID, ReadThrowsWhenTheHeapCannotHoldTheCount)
{
    const auto mesh = Written([](zunFile * f) { f->Write_UInt32(0xFFFFFFFFu); });
    auto file = Reader(mesh);
    zunFeatureID id = Ids({1});
    try
    {
        id.Read(file.get());
        FAIL() << "no exception";
    }
    catch (const zunException & e)
    {
        EXPECT_EQ(std::string(e.GetFileAndLine()).rfind("src/Misc.cpp:", 0), 0u);
        EXPECT_STREQ(e.GetFunction(), "void __cdecl zunFeatureID::Read(struct zunFile *) throw(struct zunException)");
        EXPECT_STREQ(e.GetDescription(), "");
        EXPECT_STREQ(e.GetDebugDescription(), "");
    }
    EXPECT_TRUE(id.IsEmpty());

    const auto four = Written([](zunFile * f) { f->Write_UInt32(4u); });
    auto again = Reader(four);
    zunMemTesting::FailAllocation(1, false);
    EXPECT_THROW(id.Read(again.get()), zunException);
    zunMemTesting::Reset();
}

// ---- zunFeatureID::Dump, caught where the debug log sends it

namespace
{
    struct DebuggerText : zunPlatform::DebuggerCapture
    {
        std::string narrow;
        std::u16string wide;
        void Text(const char * text) override { narrow += text; }
        void TextW(const zunWChar * text) override { wide += reinterpret_cast<const char16_t *>(text); }
    };
}

TEST(FeatureID, DumpLogsToStringAndALineEnd)
{
    DebuggerText debugger;
    zunPlatform::ForceDebuggerPresent(1);
    zunPlatform::SetDebuggerCapture(&debugger);
    zunDebugLogPrivate::ResetForTests();
    // Switched on, the debug log sends every message, tags ignored, to the
    // debug print channel, which a debugger receives.
    zunEnableDebugLog(true);
    Ids({1, 255}).Dump("ids", true);
    zunFeatureID().Dump("ids", false);
    Ids({0xFFFFFFFFu}).Dump(zunString(), false);
    zunDebugLogPrivate::ResetForTests();
    zunPlatform::SetDebuggerCapture(nullptr);
    zunPlatform::ForceDebuggerPresent(-1);
    EXPECT_EQ(debugger.narrow + std::string(debugger.wide.begin(), debugger.wide.end()), "{ 1, ff }\n{  }\n{ -1 }\n");
}
