// User data: the registry, the records a manager owns, copy and move, and the
// file form with its refusals of bad input.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "IdTestSupport.h"

using idtest::BytesOf;
using idtest::Reader;
using idtest::Written;
using Bytes = std::vector<unsigned char>;
using Manager = zunUserDataManager;

namespace
{
    int g_liveRecords = 0;

    /// A record holding one number, written as one 32-bit integer.
    struct Number : Manager::UserData
    {
        explicit Number(int v = 0, bool transferable = true) : value(v), transferable(transferable) { ++g_liveRecords; }
        Number(const Number & other) : Manager::UserData(other), value(other.value), transferable(other.transferable)
        {
            ++g_liveRecords;
        }
        ~Number() override { --g_liveRecords; }
        bool IsTransferable() const override { return transferable; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Number>(*this); }
        void Write(zunFile & file) const override { file.Write_Int32(value); }
        void Read(zunFile & file) override { file.Read_Int32(value); }

        int value;
        bool transferable;
    };

    /// A record of another type, for the typed getter.
    struct Label : Manager::UserData
    {
        bool IsTransferable() const override { return true; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Label>(*this); }
    };

    /// A record whose payload cannot be read.
    struct Broken : Number
    {
        void Read(zunFile &) override
        {
            throw zunException("tests/test_user_data.cpp", "Broken::Read").SetDebugDescription("bad payload");
        }
    };

    Manager::Creator MakeNumber()
    {
        return [] { return std::make_unique<Number>(-1); };
    }

    /// A fresh id, registered as serializable with Number records.
    zunGUID NumberId()
    {
        const zunGUID id;
        EXPECT_EQ(Manager::RegisterSerializableUserData(id, MakeNumber()), Manager::NoError);
        return id;
    }

    zunGUID VolatileId()
    {
        const zunGUID id;
        EXPECT_EQ(Manager::RegisterVolatileUserData(id), Manager::NoError);
        return id;
    }

    int ValueOf(const Manager & manager, const zunGUID & id)
    {
        const Number * number = manager.GetUserData<Number>(id);
        return number != nullptr ? number->value : -100;
    }

    /// One record chunk as Write makes it, with numbers as payload.
    void WriteChunk(zunFile * file, const zunGUID & id, const std::vector<int> & payload,
                    unsigned int fcc = Manager::ChunkFCC)
    {
        zunChunk chunk(file);
        chunk.Create(fcc);
        id.Write(file);
        for (int value : payload)
            file->Write_Int32(value);
        chunk.Close();
    }

    void WriteChunk(zunFile * file, const zunGUID & id, int payload, unsigned int fcc = Manager::ChunkFCC)
    {
        WriteChunk(file, id, std::vector<int>{payload}, fcc);
    }

    /// Reads the user-data block of `mesh` into `manager` from its start; the
    /// reader, standing where the read left it.
    std::unique_ptr<zunFile> ReadInto(Manager & manager, const zunFastMesh<unsigned char> & mesh)
    {
        auto file = Reader(mesh);
        manager.Read(*file);
        return file;
    }

    struct Thrown
    {
        std::string location, function, debugDescription;
    };

    Thrown ReadThrowing(Manager & manager, const zunFastMesh<unsigned char> & mesh)
    {
        auto file = Reader(mesh);
        try
        {
            manager.Read(*file);
        }
        catch (const zunException & e)
        {
            return {e.GetFileAndLine(), e.GetFunction(), e.GetDebugDescription()};
        }
        ADD_FAILURE() << "no exception";
        return {};
    }

    /// A thrown exception from the manager's own throw site in Read.
    void ExpectReadSite(const Thrown & thrown, const char * debugDescription)
    {
        EXPECT_EQ(thrown.debugDescription, debugDescription);
        EXPECT_EQ(thrown.function,
                  "void __cdecl zunUserDataManager::Read(struct zunFile &) throw(struct zunException)");
        EXPECT_EQ(thrown.location.rfind("src/Guid.cpp:", 0), 0u) << thrown.location;
    }

    /// A block claiming `count` chunks: one good record of `id` holding 1, then `tail`.
    zunFastMesh<unsigned char> OneRecordThen(const zunGUID & id, unsigned int count,
                                             const std::function<void(zunFile *)> & tail)
    {
        return Written(
            [&](zunFile * f)
            {
                f->Write_UInt32(count);
                WriteChunk(f, id, 1);
                tail(f);
            });
    }

    class UserData : public ::testing::Test
    {
    protected:
        void SetUp() override { g_liveRecords = 0; }
        void TearDown() override { EXPECT_EQ(g_liveRecords, 0) << "records leaked or deleted twice"; }
    };
}

TEST_F(UserData, WorkedByteForm)
{
    const zunGUID id("00112233-4455-6677-8899-aabbccddeeff");
    ASSERT_EQ(Manager::RegisterSerializableUserData(id, MakeNumber()), Manager::NoError);
    {
        Manager manager;
        ASSERT_EQ(manager.SetUserData(id, std::make_unique<Number>(7)), Manager::NoError);
        const auto mesh = Written([&](zunFile * f) { manager.Write(*f); });
        EXPECT_EQ(BytesOf(mesh), (Bytes{0x01, 0x00, 0x00, 0x00, 0x64, 0x61, 0x74, 0x61, 0x14, 0x00, 0x00,
                                        0x00, 0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99,
                                        0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 0x07, 0x00, 0x00, 0x00}));
        Manager read;
        auto file = Reader(mesh);
        read.Read(*file);
        EXPECT_EQ(ValueOf(read, id), 7);
        EXPECT_EQ(file->GetCurrPos(), mesh.Count());
    }
}

TEST_F(UserData, BigEndianStreamAndSixtyFourBitChunks)
{
    const zunGUID id = NumberId();
    Manager manager;
    manager.SetUserData(id, std::make_unique<Number>(0x01020304));
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->SetChunkSizeBits(zunFile::ChunkSize64);
            manager.Write(*f);
        },
        zunSystem::Big);
    ASSERT_EQ(mesh.Count(), 4u + 12u + 16u + 4u);
    EXPECT_EQ(Bytes(mesh.Data(), mesh.Data() + 8), (Bytes{0, 0, 0, 1, 0x61, 0x74, 0x61, 0x64}));
    EXPECT_EQ(Bytes(mesh.Data() + 32, mesh.Data() + 36), (Bytes{1, 2, 3, 4}));

    Manager read;
    auto file = Reader(mesh, zunSystem::Big);
    file->SetChunkSizeBits(zunFile::ChunkSize64);
    read.Read(*file);
    EXPECT_EQ(ValueOf(read, id), 0x01020304);
}

TEST_F(UserData, ZeroCountIsFourBytesAndReadingItEmpties)
{
    const zunGUID id = NumberId();
    const auto mesh = Written([](zunFile * f) { Manager().Write(*f); });
    EXPECT_EQ(BytesOf(mesh), (Bytes{0, 0, 0, 0}));
    Manager manager;
    manager.SetUserData(id, std::make_unique<Number>(1));
    ReadInto(manager, mesh);
    EXPECT_EQ(manager.GetUserData<Number>(id), nullptr);
}

TEST_F(UserData, ChunksStandInAscendingIdOrder)
{
    // Stored-byte order, not text order: the high byte of Data1 counts last.
    const zunGUID high("01000000-0000-0000-0000-00000000abcd");
    const zunGUID low("00000001-0000-0000-0000-00000000abcd");
    Manager::RegisterSerializableUserData(high, MakeNumber());
    Manager::RegisterSerializableUserData(low, MakeNumber());
    Manager manager;
    manager.SetUserData(low, std::make_unique<Number>(2));
    manager.SetUserData(high, std::make_unique<Number>(1));
    const auto mesh = Written([&](zunFile * f) { manager.Write(*f); });
    ASSERT_EQ(mesh.Count(), 4u + 2 * 28u);
    EXPECT_EQ(mesh[4 + 8 + 16], 1); // first payload: the record under `high`
    EXPECT_EQ(mesh[4 + 28 + 8 + 16], 2);
}

TEST_F(UserData, UnregisteredIdDeletesTheRecord)
{
    Manager manager;
    EXPECT_EQ(manager.SetUserData(zunGUID(), std::make_unique<Number>(1)), Manager::NotRegistered);
    EXPECT_EQ(g_liveRecords, 0);
    EXPECT_EQ(manager.RemoveUserData(zunGUID()), Manager::NotRegistered);
}

TEST_F(UserData, SettingAgainDeletesTheReplacedRecord)
{
    const zunGUID id = NumberId();
    Manager manager;
    manager.SetUserData(id, std::make_unique<Number>(1));
    manager.SetUserData(id, std::make_unique<Number>(2));
    EXPECT_EQ(g_liveRecords, 1);
    EXPECT_EQ(ValueOf(manager, id), 2);
}

TEST_F(UserData, RegistrationRules)
{
    const zunGUID id;
    EXPECT_EQ(Manager::RegisterSerializableUserData(id, Manager::Creator()), Manager::NoCreator);
    EXPECT_EQ(Manager::RegisterSerializableUserData(id, [] { return std::make_unique<Number>(11); }), Manager::NoError);
    EXPECT_EQ(Manager::RegisterSerializableUserData(id, [] { return std::make_unique<Number>(22); }),
              Manager::AlreadyRegistered);
    EXPECT_EQ(Manager::RegisterVolatileUserData(id), Manager::AlreadyRegistered);
    // The empty function is refused before the registry is looked at.
    EXPECT_EQ(Manager::RegisterSerializableUserData(id, Manager::Creator()), Manager::NoCreator);

    // The first creator stands: a record whose payload is cut short keeps
    // the value the creator gave it.
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(1u);
            WriteChunk(f, id, std::vector<int>{});
        });
    Manager manager;
    ReadInto(manager, mesh);
    EXPECT_EQ(ValueOf(manager, id), 11);

    const zunGUID volatileId = VolatileId();
    EXPECT_EQ(Manager::RegisterVolatileUserData(volatileId), Manager::AlreadyRegistered);
    EXPECT_EQ(Manager::RegisterSerializableUserData(volatileId, MakeNumber()), Manager::AlreadyRegistered);
}

TEST_F(UserData, TheZeroIdIsAcceptedEverywhereButInFiles)
{
    // Neither registration nor SetUserData compares with Invalid.
    const zunGUID zero = zunGUID::Invalid;
    Manager::RegisterSerializableUserData(zero, MakeNumber());
    Manager manager;
    EXPECT_EQ(manager.SetUserData(zero, std::make_unique<Number>(5)), Manager::NoError);
    const auto mesh = Written([&](zunFile * f) { manager.Write(*f); });
    Manager read;
    ExpectReadSite(ReadThrowing(read, mesh), "Invalid Id");
}

TEST_F(UserData, VolatileRecordsStayInMemory)
{
    const zunGUID volatileId = VolatileId();
    const zunGUID numberId = NumberId();
    Manager manager;
    EXPECT_EQ(manager.SetUserData(volatileId, std::make_unique<Number>(3)), Manager::NoError);
    EXPECT_EQ(ValueOf(manager, volatileId), 3);

    Manager copy;
    copy = manager;
    EXPECT_EQ(ValueOf(copy, volatileId), 3);

    manager.SetUserData(numberId, std::make_unique<Number>(4));
    const auto mesh = Written([&](zunFile * f) { manager.Write(*f); });
    EXPECT_EQ(mesh.Count(), 4u + 28u);
    EXPECT_EQ(mesh[0], 1);
}

TEST_F(UserData, ReadingSkipsUnknownAndVolatileIds)
{
    const zunGUID first = NumberId();
    const zunGUID last = NumberId();
    const zunGUID volatileId = VolatileId();
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(4u);
            WriteChunk(f, first, 1);
            WriteChunk(f, zunGUID(), 2); // never registered
            WriteChunk(f, volatileId, 3);
            WriteChunk(f, last, 4);
        });
    Manager manager;
    auto file = ReadInto(manager, mesh);
    EXPECT_EQ(ValueOf(manager, first), 1);
    EXPECT_EQ(ValueOf(manager, last), 4);
    EXPECT_EQ(manager.GetUserData<Number>(volatileId), nullptr);
    EXPECT_EQ(file->GetCurrPos(), mesh.Count());
    EXPECT_EQ(g_liveRecords, 2);
}

TEST_F(UserData, TheFirstChunkOfAnIdWins)
{
    const zunGUID id = NumberId();
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(2u);
            WriteChunk(f, id, 1);
            WriteChunk(f, id, 2);
        });
    Manager manager;
    ReadInto(manager, mesh);
    EXPECT_EQ(ValueOf(manager, id), 1);
    EXPECT_EQ(g_liveRecords, 1);
}

TEST_F(UserData, PayloadIsFencedByItsChunk)
{
    // A longer payload than the record reads is stepped over.
    const zunGUID id = NumberId();
    const zunGUID next = NumberId();
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(2u);
            WriteChunk(f, id, {8, 99, 99});
            WriteChunk(f, next, 9);
        });
    Manager manager;
    ReadInto(manager, mesh);
    EXPECT_EQ(ValueOf(manager, id), 8);
    EXPECT_EQ(ValueOf(manager, next), 9);
}

TEST_F(UserData, CreatorGivingNoRecordIsSkipped)
{
    const zunGUID id;
    Manager::RegisterSerializableUserData(id, [] { return std::unique_ptr<Manager::UserData>(); });
    const zunGUID next = NumberId();
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(2u);
            WriteChunk(f, id, 1);
            WriteChunk(f, next, 2);
        });
    Manager manager;
    ReadInto(manager, mesh);
    EXPECT_EQ(manager.GetUserData<Number>(id), nullptr);
    EXPECT_EQ(ValueOf(manager, next), 2);
}

TEST_F(UserData, RemoveUserData)
{
    const zunGUID id = NumberId();
    Manager manager;
    EXPECT_EQ(manager.RemoveUserData(id), Manager::NoError);
    manager.SetUserData(id, std::make_unique<Number>(1));
    EXPECT_EQ(manager.RemoveUserData(id), Manager::NoError);
    EXPECT_EQ(g_liveRecords, 0);
    EXPECT_EQ(manager.GetUserData<Number>(id), nullptr);
    EXPECT_EQ(manager.RemoveUserData(id), Manager::NoError);
}

TEST_F(UserData, TypedGetterChecksTheType)
{
    const zunGUID id = NumberId();
    Manager manager;
    manager.SetUserData(id, std::make_unique<Number>(5));
    EXPECT_EQ(manager.GetUserData<Label>(id), nullptr);
    ASSERT_NE(manager.GetUserData<Manager::UserData>(id), nullptr);
    EXPECT_EQ(manager.GetUserData<Number>(id)->value, 5);
}

TEST_F(UserData, CopyClonesTheTransferable)
{
    const zunGUID kept = NumberId();
    const zunGUID local = NumberId();
    Manager source;
    source.SetUserData(kept, std::make_unique<Number>(1));
    source.SetUserData(local, std::make_unique<Number>(2, false));
    Manager target;
    target.SetUserData(local, std::make_unique<Number>(3));
    target = source;
    EXPECT_EQ(ValueOf(target, kept), 1);
    EXPECT_EQ(target.GetUserData<Number>(local), nullptr);
    EXPECT_NE(target.GetUserData<Number>(kept), source.GetUserData<Number>(kept));
    const Manager constructed(source);
    EXPECT_EQ(ValueOf(constructed, kept), 1);
    EXPECT_EQ(constructed.GetUserData<Number>(local), nullptr);
    EXPECT_EQ(g_liveRecords, 4);
}

TEST_F(UserData, CopyToItselfEmpties)
{
    const zunGUID id = NumberId();
    Manager manager;
    manager.SetUserData(id, std::make_unique<Number>(1));
    Manager & alias = manager;
    manager = alias;
    EXPECT_EQ(manager.GetUserData<Number>(id), nullptr);
}

TEST_F(UserData, MoveSwapsThenDropsTheNonTransferable)
{
    const zunGUID a = NumberId();
    const zunGUID b = NumberId();
    Manager source;
    source.SetUserData(a, std::make_unique<Number>(1));
    source.SetUserData(b, std::make_unique<Number>(2, false));
    Manager target;
    target.SetUserData(a, std::make_unique<Number>(3, false));
    target = std::move(source);
    EXPECT_EQ(ValueOf(target, a), 1);
    EXPECT_EQ(target.GetUserData<Number>(b), nullptr);
    // The source holds what the target held, unfiltered.
    EXPECT_EQ(ValueOf(source, a), 3);
    EXPECT_EQ(g_liveRecords, 2);
}

TEST_F(UserData, MoveToItselfDropsTheNonTransferable)
{
    const zunGUID a = NumberId();
    const zunGUID b = NumberId();
    Manager manager;
    manager.SetUserData(a, std::make_unique<Number>(1));
    manager.SetUserData(b, std::make_unique<Number>(2, false));
    Manager & alias = manager;
    manager = std::move(alias);
    EXPECT_EQ(ValueOf(manager, a), 1);
    EXPECT_EQ(manager.GetUserData<Number>(b), nullptr);
}

TEST_F(UserData, MoveConstructorLeavesTheSourceEmpty)
{
    const zunGUID a = NumberId();
    const zunGUID b = NumberId();
    Manager source;
    source.SetUserData(a, std::make_unique<Number>(1));
    source.SetUserData(b, std::make_unique<Number>(2, false));
    Manager moved(std::move(source));
    EXPECT_EQ(ValueOf(moved, a), 1);
    EXPECT_EQ(moved.GetUserData<Number>(b), nullptr);
    EXPECT_EQ(source.GetUserData<Number>(a), nullptr);
    EXPECT_EQ(source.GetUserData<Number>(b), nullptr);
    EXPECT_EQ(g_liveRecords, 1);
}

TEST_F(UserData, EntryWithoutARecordIsNeverCalledInto)
{
    const zunGUID empty = NumberId();
    const zunGUID full = NumberId();
    Manager manager;
    EXPECT_EQ(manager.SetUserData(empty, nullptr), Manager::NoError);
    manager.SetUserData(full, std::make_unique<Number>(1));
    EXPECT_EQ(manager.GetUserData<Number>(empty), nullptr);

    const auto mesh = Written([&](zunFile * f) { manager.Write(*f); });
    EXPECT_EQ(mesh.Count(), 4u + 28u);
    EXPECT_EQ(mesh[0], 1);

    Manager copy(manager);
    EXPECT_EQ(ValueOf(copy, full), 1);
    Manager moved(std::move(manager));
    EXPECT_EQ(ValueOf(moved, full), 1);
    EXPECT_EQ(moved.GetUserData<Number>(empty), nullptr);
}

// ---- Bad input: each ends in the documented exception, keeps what was read,
// ---- and leaks nothing.

TEST_F(UserData, CountClaimingMoreChunksThanTheFileHolds)
{
    // Behind the last chunk Descend reads a tag of 0.
    const zunGUID id = NumberId();
    Manager manager;
    ExpectReadSite(ReadThrowing(manager, OneRecordThen(id, 3, [](zunFile *) {})), "Unexpected chunk");
    EXPECT_EQ(ValueOf(manager, id), 1);
}

TEST_F(UserData, ForeignChunk)
{
    const zunGUID id = NumberId();
    Manager manager;
    manager.SetUserData(NumberId(), std::make_unique<Number>(7));
    const auto mesh = OneRecordThen(id, 2, [&](zunFile * f) { WriteChunk(f, id, 2, 0x61746165); });
    ExpectReadSite(ReadThrowing(manager, mesh), "Unexpected chunk");
    EXPECT_EQ(ValueOf(manager, id), 1);
    EXPECT_EQ(g_liveRecords, 1);
}

TEST_F(UserData, ChunkShorterThanAnId)
{
    // An empty chunk leaves the id Invalid.
    const zunGUID id = NumberId();
    Manager manager;
    const auto mesh = OneRecordThen(id, 2,
                                    [](zunFile * f)
                                    {
                                        zunChunk chunk(f);
                                        chunk.Create(Manager::ChunkFCC);
                                        chunk.Close();
                                    });
    ExpectReadSite(ReadThrowing(manager, mesh), "Invalid Id");
    EXPECT_EQ(ValueOf(manager, id), 1);
}

TEST_F(UserData, ChunkWithPartOfAnIdNamesAnUnknownId)
{
    // Data1 is read, the rest stays zero: an id nobody registered, skipped.
    const zunGUID id = NumberId();
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(2u);
            zunChunk chunk(f);
            chunk.Create(Manager::ChunkFCC);
            f->Write_Int32(0x12345678);
            chunk.Close();
            WriteChunk(f, id, 1);
        });
    Manager manager;
    ReadInto(manager, mesh);
    EXPECT_EQ(ValueOf(manager, id), 1);
    EXPECT_EQ(g_liveRecords, 1);
}

TEST_F(UserData, ZeroIdFailsEvenWhereItWouldBeSkipped)
{
    const auto mesh = Written(
        [&](zunFile * f)
        {
            f->Write_UInt32(1u);
            WriteChunk(f, zunGUID::Invalid, 1);
        });
    Manager manager;
    ExpectReadSite(ReadThrowing(manager, mesh), "Invalid Id");
}

TEST_F(UserData, RecordWhoseReadThrows)
{
    const zunGUID good = NumberId();
    const zunGUID broken;
    Manager::RegisterSerializableUserData(broken, [] { return std::make_unique<Broken>(); });
    Manager manager;
    const Thrown thrown = ReadThrowing(manager, OneRecordThen(good, 2, [&](zunFile * f) { WriteChunk(f, broken, 2); }));
    EXPECT_EQ(thrown.debugDescription, "bad payload");
    EXPECT_EQ(ValueOf(manager, good), 1);
    EXPECT_EQ(g_liveRecords, 1);
}
