// External references: ids and the table, the cached resolution and its
// notifications, copies and moves, and the file form.
//
// The delegate cannot be unset, so the tests without one come first; from
// DelegateTest on, one recording delegate is installed for the process.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "IdTestSupport.h"

using idtest::BytesOf;
using idtest::Reader;
using idtest::ReadFenced;
using idtest::Truncated;
using idtest::Written;
using Ref = zunExternalReference;

namespace
{
    const Ref::Type kTexture = Ref::Type(7);
    const Ref::Type kSound = Ref::Type(9);

    std::u16string Text(const zunPath & path)
    {
        return std::u16string(static_cast<const zunWChar *>(path.WinRepresentation()));
    }

    std::vector<std::uint64_t> Ids()
    {
        const zunFastMesh<std::uint64_t> ids = Ref::GetIds();
        return std::vector<std::uint64_t>(ids.Data(), ids.Data() + ids.Count());
    }

    bool Contains(const std::vector<std::uint64_t> & ids, std::uint64_t id)
    {
        for (std::uint64_t each : ids)
            if (each == id)
                return true;
        return false;
    }
}

// ---- Without a delegate

TEST(ExternalReference, IdsCountFromZeroCopiesTakeNewOnesMovesKeepThem)
{
    Ref first(kTexture);
    EXPECT_EQ(first.GetId(), 0u); // the process's first reference
    Ref second(kTexture);
    EXPECT_EQ(second.GetId(), 1u);
    Ref copy(second);
    EXPECT_EQ(copy.GetId(), 2u);
    Ref moved(std::move(second));
    EXPECT_EQ(moved.GetId(), 1u);
    EXPECT_EQ(Ref::GetType(1).first, Ref::IdFound);
}

TEST(ExternalReference, GetIdsAfterTheMiddleOneIsDestroyed)
{
    auto a = std::make_unique<Ref>(kTexture);
    auto b = std::make_unique<Ref>(kTexture);
    auto c = std::make_unique<Ref>(kTexture);
    const std::uint64_t idA = a->GetId(), idB = b->GetId(), idC = c->GetId();
    b.reset();
    const std::vector<std::uint64_t> ids = Ids();
    EXPECT_TRUE(Contains(ids, idA));
    EXPECT_FALSE(Contains(ids, idB));
    EXPECT_TRUE(Contains(ids, idC));
    for (std::size_t i = 1; i < ids.size(); ++i)
        EXPECT_LT(ids[i - 1], ids[i]);
    EXPECT_EQ(Ref::GetType(idB), std::make_pair(Ref::IdNotFound, Ref::Type(0)));
}

TEST(ExternalReference, WithoutADelegateTheActualPathIsTheReferencePath)
{
    Ref ref(kTexture, zunPath("/no/such/file.png"));
    EXPECT_EQ(Text(ref.GetReferencePath()), u"\\no\\such\\file.png");
    EXPECT_EQ(Text(ref.GetActualPath()), u"\\no\\such\\file.png");
    EXPECT_TRUE(ref.IsValid());
    EXPECT_FALSE(ref.IsEmpty());
    EXPECT_EQ(ref.GetType(), kTexture);
}

TEST(ExternalReference, StaticQueriesById)
{
    Ref ref(kSound, zunPath("a/b.wav"));
    const std::uint64_t id = ref.GetId();
    EXPECT_EQ(Ref::GetType(id), std::make_pair(Ref::IdFound, kSound));
    EXPECT_EQ(Ref::IsEmpty(id), std::make_pair(Ref::IdFound, false));
    EXPECT_EQ(Ref::IsValid(id), std::make_pair(Ref::IdFound, true));
    EXPECT_EQ(Ref::GetReferencePath(id).first, Ref::IdFound);
    EXPECT_EQ(Text(Ref::GetReferencePath(id).second), u"a\\b.wav");
    EXPECT_EQ(Text(Ref::GetActualPath(id).second), u"a\\b.wav");
    EXPECT_EQ(Ref::SetReferencePath(id, zunPath("c.wav")), Ref::IdFound);
    EXPECT_EQ(Text(ref.GetReferencePath()), u"c.wav");

    const std::uint64_t unknown = 0xFFFFFFFFFFFFull;
    EXPECT_EQ(Ref::GetActualPath(unknown).first, Ref::IdNotFound);
    EXPECT_TRUE(Ref::GetActualPath(unknown).second.IsEmpty());
    EXPECT_EQ(Ref::GetReferencePath(unknown).first, Ref::IdNotFound);
    EXPECT_EQ(Ref::IsEmpty(unknown), std::make_pair(Ref::IdNotFound, false));
    EXPECT_EQ(Ref::IsValid(unknown), std::make_pair(Ref::IdNotFound, false));
    EXPECT_EQ(Ref::SetReferencePath(unknown, zunPath("x")), Ref::IdNotFound);
}

TEST(ExternalReference, EqualityAndItsTwin)
{
    const Ref a(kTexture, zunPath("wood.png"));
    const Ref same(kTexture, zunPath("WOOD.png")); // paths compare without case
    const Ref otherType(kSound, zunPath("wood.png"));
    const Ref otherPath(kTexture, zunPath("oak.png"));
    EXPECT_TRUE(a == same);
    EXPECT_TRUE(a != same); // the same test, the same result
    EXPECT_FALSE(a == otherType);
    EXPECT_FALSE(a != otherType);
    EXPECT_FALSE(a == otherPath);
    EXPECT_FALSE(a != otherPath);
}

TEST(ExternalReference, CopyAssignmentKeepsTheId)
{
    Ref source(kSound, zunPath("s.wav"));
    source.GetActualPath();
    Ref target(kTexture);
    const std::uint64_t id = target.GetId();
    target = source;
    EXPECT_EQ(target.GetId(), id);
    EXPECT_EQ(target.GetType(), kSound);
    EXPECT_EQ(Text(target.GetReferencePath()), u"s.wav");
    EXPECT_EQ(Text(target.GetActualPath()), u"s.wav");
    target = zunPath("t.wav");
    EXPECT_EQ(Text(target.GetReferencePath()), u"t.wav");
}

TEST(ExternalReference, CopyConstructionStartsUnresolved)
{
    Ref source(kTexture, zunPath("a.png"));
    source.GetActualPath();
    const Ref copy(source);
    EXPECT_NE(copy.GetId(), source.GetId());
    EXPECT_EQ(copy, source);
    EXPECT_EQ(Text(copy.GetActualPath()), u"a.png");
}

TEST(ExternalReference, MoveAssignmentExchangesRecordsOfOneType)
{
    Ref a(kTexture, zunPath("a.png"));
    Ref b(kTexture, zunPath("b.png"));
    const std::uint64_t idA = a.GetId(), idB = b.GetId();
    a = std::move(b);
    EXPECT_EQ(a.GetId(), idB);
    EXPECT_EQ(Text(a.GetReferencePath()), u"b.png");
    EXPECT_EQ(b.GetId(), idA);
    EXPECT_EQ(Text(Ref::GetReferencePath(idA).second), u"a.png");
}

TEST(ExternalReference, MoveAssignmentBetweenTypesChangesNeither)
{
    Ref texture(kTexture, zunPath("a.png"));
    Ref sound(kSound, zunPath("b.wav"));
    const std::uint64_t idTexture = texture.GetId(), idSound = sound.GetId();
    texture = std::move(sound);
    EXPECT_EQ(texture.GetId(), idTexture);
    EXPECT_EQ(Text(texture.GetReferencePath()), u"a.png");
    EXPECT_EQ(sound.GetId(), idSound);
    EXPECT_EQ(Text(sound.GetReferencePath()), u"b.wav");
}

TEST(ExternalReference, ClearEmptiesTheReferencePathOnly)
{
    Ref ref(kSound, zunPath("x.wav"));
    ref.Clear();
    EXPECT_TRUE(ref.IsEmpty());
    EXPECT_EQ(ref.GetType(), kSound);
    EXPECT_TRUE(ref.IsValid());
}

TEST(ExternalReference, FileFormWithTypeInBothByteOrders)
{
    const Ref ref(kTexture, zunPath("a/b"));
    const auto little = Written([&](zunFile * f) { ref.Write(f); });
    EXPECT_EQ(BytesOf(little), (std::vector<unsigned char>{7, 0, 0, 0, 3, 0, 0, 0, 'a', '\\', 'b', 0}));
    const auto big = Written([&](zunFile * f) { ref.Write(f); }, zunSystem::Big);
    EXPECT_EQ(BytesOf(big), (std::vector<unsigned char>{0, 0, 0, 7, 0, 0, 0, 3, 'a', '\\', 'b', 0}));

    auto file = Reader(big, zunSystem::Big);
    const Ref read(file.get());
    EXPECT_EQ(read, ref);
    EXPECT_EQ(read.GetType(), kTexture);
    EXPECT_EQ(Text(read.GetReferencePath()), u"a\\b");
}

TEST(ExternalReference, ReadReferenceIsNotInTheTable)
{
    const auto mesh = Written([](zunFile * f) { Ref(kSound, zunPath("s.wav")).Write(f); });
    auto file = Reader(mesh);
    const Ref read(file.get());
    EXPECT_EQ(Ref::GetType(read.GetId()).first, Ref::IdNotFound);
    EXPECT_FALSE(Contains(Ids(), read.GetId()));
    EXPECT_EQ(read.GetType(), kSound);
    EXPECT_TRUE(read.IsValid());
}

TEST(ExternalReference, ReadPathOnlyKeepsTheType)
{
    const auto mesh = Written([](zunFile * f) { f->Write_String16(zunStringW(u"p.png")); });
    Ref ref(kSound);
    auto file = Reader(mesh);
    ref.Read(file.get(), Ref::VersionPathOnly);
    EXPECT_EQ(ref.GetType(), kSound);
    EXPECT_EQ(Text(ref.GetReferencePath()), u"p.png");
    // Any number but 1 reads the path alone.
    auto again = Reader(mesh);
    ref.Read(again.get(), Ref::Version(5));
    EXPECT_EQ(Text(ref.GetReferencePath()), u"p.png");
}

TEST(ExternalReference, ReadStoppedByAChunkKeepsTheTypeAndEmptiesThePath)
{
    // A number keeps its value at a limit; a string read there becomes empty.
    const auto write = [](zunFile * f) { Ref(kTexture, zunPath("new.png")).Write(f); };
    Ref ref(kSound, zunPath("old.wav"));
    EXPECT_TRUE(ReadFenced(Truncated(write, 2), [&](zunFile * f) { ref.Read(f, Ref::VersionWithType); }));
    EXPECT_EQ(ref.GetType(), kSound);
    EXPECT_TRUE(ref.IsEmpty());
    Ref other(kSound, zunPath("old.wav"));
    EXPECT_TRUE(ReadFenced(Truncated(write, 6), [&](zunFile * f) { other.Read(f, Ref::VersionWithType); }));
    EXPECT_EQ(other.GetType(), kTexture);
    EXPECT_TRUE(other.IsEmpty());
}

// ---- With the delegate installed (it stays for the rest of the process)

namespace
{
    struct Recorder : Ref::Delegate
    {
        std::vector<std::pair<std::uint64_t, unsigned int>> changes;
        std::vector<std::uint64_t> removed;
        int actualAsked = 0;
        bool findNothing = false;

        zunPath ToActualPath(Ref::Type, const zunPath & referencePath) override
        {
            ++actualAsked;
            return findNothing ? zunPath() : zunPath(zunStringW(u"/assets/") << referencePath.WinRepresentation());
        }
        zunPath ToReferencePath(Ref::Type, const zunPath & path) override
        {
            return zunPath(zunStringW(u"ref:") << path.WinRepresentation());
        }
        void OnStateChanged(std::uint64_t id, unsigned int state) override { changes.emplace_back(id, state); }
        void OnRemoved(std::uint64_t id) override { removed.push_back(id); }
        void Reset()
        {
            changes.clear();
            removed.clear();
            actualAsked = 0;
            findNothing = false;
        }
    };

    Recorder g_recorder;

    class DelegateTest : public ::testing::Test
    {
    protected:
        void SetUp() override { g_recorder.Reset(); }
    };
}

TEST_F(DelegateTest, SetDelegateInvalidatesTheTableInIdOrder)
{
    Ref resolved(kTexture, zunPath("a.png"));
    Ref unresolved(kTexture, zunPath("b.png"));
    Ref later(kTexture, zunPath("c.png"));
    resolved.GetActualPath();
    later.GetActualPath();
    Ref::SetDelegate(g_recorder);
    using Change = std::pair<std::uint64_t, unsigned int>;
    EXPECT_EQ(g_recorder.changes, (std::vector<Change>{{resolved.GetId(), 0u}, {later.GetId(), 0u}}));
    EXPECT_EQ(g_recorder.actualAsked, 0);
}

TEST_F(DelegateTest, PathsGoThroughTheDelegateAndAreResolvedOnce)
{
    Ref::SetDelegate(g_recorder);
    Ref ref(kTexture, zunPath("a.png"));
    EXPECT_EQ(Text(ref.GetReferencePath()), u"ref:a.png");
    EXPECT_TRUE(g_recorder.changes.empty()); // set while unresolved: no notice
    EXPECT_EQ(Text(ref.GetActualPath()), u"\\assets\\ref:a.png");
    EXPECT_EQ(Text(ref.GetActualPath()), u"\\assets\\ref:a.png");
    EXPECT_EQ(g_recorder.actualAsked, 1);
    using Change = std::pair<std::uint64_t, unsigned int>;
    EXPECT_EQ(g_recorder.changes, (std::vector<Change>{{ref.GetId(), 1u}}));
}

TEST_F(DelegateTest, NothingFoundIsUnresolvableAndCached)
{
    Ref::SetDelegate(g_recorder);
    g_recorder.findNothing = true;
    Ref ref(kTexture, zunPath("gone.png"));
    EXPECT_FALSE(ref.IsValid());
    EXPECT_TRUE(ref.GetActualPath().IsEmpty());
    EXPECT_FALSE(ref.IsValid());
    EXPECT_EQ(g_recorder.actualAsked, 1);
    using Change = std::pair<std::uint64_t, unsigned int>;
    EXPECT_EQ(g_recorder.changes, (std::vector<Change>{{ref.GetId(), 2u}}));
    EXPECT_EQ(Ref::IsValid(ref.GetId()), std::make_pair(Ref::IdFound, false));
}

TEST_F(DelegateTest, SettingAResolvedPathNotifiesOnceWithZero)
{
    Ref::SetDelegate(g_recorder);
    Ref ref(kTexture, zunPath("a.png"));
    ref.GetActualPath();
    g_recorder.changes.clear();
    ref.SetReferencePath(zunPath("b.png"));
    using Change = std::pair<std::uint64_t, unsigned int>;
    EXPECT_EQ(g_recorder.changes, (std::vector<Change>{{ref.GetId(), 0u}}));
    ref.SetReferencePath(zunPath("c.png"));
    EXPECT_EQ(g_recorder.changes.size(), 1u);
}

TEST_F(DelegateTest, EmptyReferenceResolvesWithoutMakingItInvalid)
{
    Ref::SetDelegate(g_recorder);
    Ref empty(kTexture);
    EXPECT_TRUE(empty.IsValid());
    EXPECT_EQ(g_recorder.actualAsked, 0); // IsValid doesn't ask for an empty path
    g_recorder.findNothing = true;
    EXPECT_TRUE(empty.GetActualPath().IsEmpty());
    EXPECT_EQ(g_recorder.actualAsked, 1); // GetActualPath does, and the state is Resolved
    using Change = std::pair<std::uint64_t, unsigned int>;
    EXPECT_EQ(g_recorder.changes, (std::vector<Change>{{empty.GetId(), 1u}}));
    EXPECT_TRUE(empty.IsValid());
}

TEST_F(DelegateTest, DestructionReportsTheIdFirst)
{
    Ref::SetDelegate(g_recorder);
    std::uint64_t id;
    {
        Ref ref(kTexture);
        id = ref.GetId();
        Ref moved(std::move(ref)); // the moved-from one reports nothing
    }
    EXPECT_EQ(g_recorder.removed, (std::vector<std::uint64_t>{id}));
    EXPECT_EQ(Ref::GetType(id).first, Ref::IdNotFound);
}

TEST_F(DelegateTest, ReadInvalidatesWithoutTranslating)
{
    Ref::SetDelegate(g_recorder);
    const auto mesh = Written(
        [](zunFile * f)
        {
            f->Write_Int32(3);
            f->Write_String16(zunStringW(u"stored.png"));
        });
    Ref ref(kTexture, zunPath("a.png"));
    ref.GetActualPath();
    g_recorder.changes.clear();
    auto file = Reader(mesh);
    ref.Read(file.get(), Ref::VersionWithType);
    EXPECT_EQ(Text(ref.GetReferencePath()), u"stored.png");
    EXPECT_EQ(ref.GetType(), Ref::Type(3));
    EXPECT_EQ(g_recorder.changes.size(), 1u);
}
