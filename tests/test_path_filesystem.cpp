// zunPath on the disk: Info, existence, copies, moves, deletes, folder walks,
// folders made, times, attributes, Open and the current and temporary folders.
//
// Every test works in a fresh folder under /tmp and removes it. Where Linux
// lets the super-user past permission bits, the tests check what the library
// decides by itself as root as well, and what the system decides in a child
// process that runs as the unprivileged user "nobody".
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <zunFoundation.h>

#include "ChannelCapture.h"
#include "Unprivileged.h"
#include "platform/FileSystem.h"
#include "platform/NameMask.h"

namespace fs = std::filesystem;

namespace
{
    constexpr std::uint64_t kUnixEpochIn1601Units = 116444736000000000ull;

    std::string Str(const zunString & text)
    {
        return std::string(static_cast<const char *>(text));
    }

    std::string Canon(const zunPath & path)
    {
        zunString text;
        text = path.WinRepresentation();
        return Str(text);
    }

    // Puts the current folder back when it goes.
    class CurrentFolderGuard
    {
    public:
        CurrentFolderGuard() : m_saved(fs::current_path()) {}
        ~CurrentFolderGuard() { fs::current_path(m_saved); }

    private:
        fs::path m_saved;
    };

    class PathDisk : public testing::Test
    {
    protected:
        void SetUp() override { m_native = MakeTemporaryFolder("/tmp"); }

        void TearDown() override { RemoveTree(m_native); }

        static std::string MakeTemporaryFolder(const std::string & in)
        {
            std::string name = in + "/zunPathTest.XXXXXX";
            if (mkdtemp(&name[0]) == nullptr)
                return std::string();
            return name;
        }

        // Write bits back everywhere, so that everything can go.
        static void RemoveTree(const std::string & folder)
        {
            std::error_code error;
            if (folder.empty())
                return;
            chmod(folder.c_str(), 0700);
            for (fs::recursive_directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
                if (!it->is_symlink())
                    chmod(it->path().c_str(), it->is_directory() ? 0700 : 0600);
            fs::remove_all(folder, error);
        }

        zunPath Root() const { return zunPath(m_native.c_str()); }
        zunPath At(const std::string & relative) const { return Root() + zunPath(relative.c_str()); }
        std::string Native(const std::string & relative) const { return m_native + "/" + relative; }

        void MakeFile(const std::string & relative, const std::string & content = "x") const
        {
            std::ofstream out(Native(relative), std::ios::binary);
            out << content;
        }
        void MakeFolder(const std::string & relative) const { fs::create_directories(Native(relative)); }
        bool Exists(const std::string & relative) const
        {
            struct stat status;
            return lstat(Native(relative).c_str(), &status) == 0;
        }
        std::string Content(const std::string & relative) const
        {
            std::ifstream in(Native(relative), std::ios::binary);
            std::ostringstream text;
            text << in.rdbuf();
            return text.str();
        }
        void SetMode(const std::string & relative, mode_t mode) const { chmod(Native(relative).c_str(), mode); }
        mode_t Mode(const std::string & relative) const
        {
            struct stat status;
            stat(Native(relative).c_str(), &status);
            return status.st_mode & 07777;
        }
        void SetWriteTime(const std::string & relative, time_t seconds) const
        {
            const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
            utimensat(AT_FDCWD, Native(relative).c_str(), times, AT_SYMLINK_NOFOLLOW);
        }

        std::string m_native;
    };

    struct Visit
    {
        std::string name;
        int depth;
        bool folder;
    };

    // The walk's visits in order, names relative to `root`.
    std::vector<Visit> Walk(const zunPath & root, const char * mask, zunPath::TraverseMode mode)
    {
        std::vector<Visit> visits;
        root.VisitFolder(zunString(mask), mode,
                         [&](const zunPath & child, const zunPath::Info & info, int depth)
                         {
                             visits.push_back({Canon(child.GetRelativePath(root)), depth,
                                               (info.attributes & zunPath::Info::Folder) != 0});
                             return true;
                         });
        return visits;
    }

    std::set<std::string> Names(const std::vector<Visit> & visits)
    {
        std::set<std::string> names;
        for (const Visit & visit : visits)
            names.insert(visit.name);
        return names;
    }

    std::string LongPath()
    {
        std::string text = "/tmp";
        while (text.size() < 4096)
            text += "/abcdefg";
        text.resize(4096);
        return text;
    }
}

// ---- Info -------------------------------------------------------------------------------

TEST_F(PathDisk, InfoOfAFile)
{
    MakeFile("data.bin", "12345");
    SetWriteTime("data.bin", 0);
    zunPath::Info info;
    ASSERT_TRUE(At("data.bin").GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::Normal));
    EXPECT_EQ(info.size, 5u);
    EXPECT_EQ(info.lastWriteTime, kUnixEpochIn1601Units);
    EXPECT_EQ(info.lastAccessTime, kUnixEpochIn1601Units);
    EXPECT_GT(info.creationTime, kUnixEpochIn1601Units);
}

TEST_F(PathDisk, TimesCountHundredsOfNanoseconds)
{
    MakeFile("a");
    const struct timespec times[2] = {{1700000000, 123456789}, {1700000000, 123456789}};
    utimensat(AT_FDCWD, Native("a").c_str(), times, 0);
    zunPath::Info info;
    ASSERT_TRUE(At("a").GetInfo(info));
    EXPECT_EQ(info.lastWriteTime, kUnixEpochIn1601Units + 1700000000ull * 10000000u + 1234567u);
}

TEST_F(PathDisk, InfoAttributes)
{
    MakeFolder("sub");
    MakeFile(".hidden");
    MakeFile("locked");
    SetMode("locked", 0444);
    zunPath::Info info;
    ASSERT_TRUE(At("sub").GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::Folder));
    EXPECT_EQ(info.size, 0u);
    ASSERT_TRUE(At(".hidden").GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::Hidden));
    ASSERT_TRUE(At("locked").GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::ReadOnly));
    ASSERT_TRUE(zunPath((m_native + "/sub/.").c_str()).GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::Folder)); // "." is not hidden
}

TEST_F(PathDisk, InfoFailsForWhatIsNotThere)
{
    zunPath::Info info;
    EXPECT_FALSE(At("missing").GetInfo(info));
    EXPECT_FALSE(At(R"(missing\deeper)").GetInfo(info));
    EXPECT_FALSE(zunPath().GetInfo(info));
    EXPECT_FALSE(zunPath(LongPath().c_str()).GetInfo(info));
}

TEST_F(PathDisk, InfoNeedsAFileThatCanBeRead)
{
    MakeFile("secret");
    SetMode("secret", 0200);
    chmod(m_native.c_str(), 0755);
    const zunPath secret = At("secret");
    // The system decides: an unprivileged user cannot read it, so there is no
    // Info; the super-user can.
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&]
        {
            zunPath::Info info;
            return !secret.GetInfo(info) && !secret.ExistsAs(zunPath::AnyObject);
        }));
    zunPath::Info info;
    EXPECT_EQ(secret.GetInfo(info), testsupport::IsSuperuser());
}

TEST_F(PathDisk, ExistsAs)
{
    MakeFolder("sub");
    MakeFile("file");
    EXPECT_FALSE(At("sub").ExistsAs(zunPath::File));
    EXPECT_TRUE(At("sub").ExistsAs(zunPath::AnyObject));
    EXPECT_TRUE(At("sub").ExistsAs(zunPath::Folder));
    EXPECT_TRUE(At("file").ExistsAs(zunPath::File));
    EXPECT_FALSE(At("file").ExistsAs(zunPath::Folder));
    EXPECT_TRUE(At("file").ExistsAs(zunPath::AnyObject));
    EXPECT_FALSE(At("missing").ExistsAs(zunPath::AnyObject));
    EXPECT_FALSE(At("file").ExistsAs(static_cast<zunPath::Object>(7))); // reported, false
}

TEST_F(PathDisk, IsNewerThan)
{
    MakeFile("old");
    MakeFile("new");
    SetWriteTime("old", 1000);
    SetWriteTime("new", 2000);
    EXPECT_FALSE(At("missing").IsNewerThan(At("old")));
    EXPECT_FALSE(At("missing").IsNewerThan(At("missing too")));
    EXPECT_TRUE(At("old").IsNewerThan(At("missing")));
    EXPECT_FALSE(At("old").IsNewerThan(At("old")));
    EXPECT_TRUE(At("new").IsNewerThan(At("old")));
    EXPECT_FALSE(At("old").IsNewerThan(At("new")));
}

// ---- CreateFolder ------------------------------------------------------------------------

TEST_F(PathDisk, CreateFolderRecursiveMakesEveryLevel)
{
    const fs::path before = fs::current_path();
    EXPECT_TRUE(At(R"(a\b\c)").CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    EXPECT_TRUE(fs::is_directory(Native("a/b/c")));
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(PathDisk, CreateFolderWithATrailingSeparatorFindsTheTargetMade)
{
    EXPECT_TRUE(At(R"(a\b\c\)").CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    EXPECT_TRUE(fs::is_directory(Native("a/b/c")));
    // Made already: the last step finds it.
    EXPECT_TRUE(At(R"(a\b\c\)").CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
}

TEST_F(PathDisk, CreateFolderTopLevelOnlyNeedsTheParent)
{
    EXPECT_FALSE(At(R"(missing\child)").CreateFolder(zunPath::TopLevelOnly, zunPath::PathIsFolder));
    EXPECT_FALSE(Exists("missing"));
    EXPECT_TRUE(At("child").CreateFolder(zunPath::TopLevelOnly, zunPath::PathIsFolder));
    EXPECT_TRUE(fs::is_directory(Native("child")));
    EXPECT_TRUE(At("child").CreateFolder(static_cast<zunPath::TraverseMode>(5), zunPath::PathIsFolder));
}

TEST_F(PathDisk, CreateFolderForAFileMakesItsParentOnly)
{
    EXPECT_TRUE(At(R"(a\b.txt)").CreateFolder(zunPath::Recursive, zunPath::PathIsFile));
    EXPECT_TRUE(fs::is_directory(Native("a")));
    EXPECT_FALSE(Exists("a/b.txt"));
}

TEST_F(PathDisk, CreateFolderOfARelativePathStartsWhereTheCallerStands)
{
    CurrentFolderGuard guard;
    fs::current_path(m_native);
    MakeFolder("x");
    EXPECT_TRUE(zunPath(R"(x\y\z)").CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    EXPECT_TRUE(fs::is_directory(Native("x/y/z")));
    EXPECT_FALSE(Exists("x/x"));
    EXPECT_EQ(fs::current_path(), fs::path(m_native));
}

TEST_F(PathDisk, CreateFolderFailsWithoutAPlaceToMakeIt)
{
    MakeFile("file");
    EXPECT_FALSE(zunPath().CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    EXPECT_FALSE(At(R"(file\sub)").CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    EXPECT_FALSE(zunPath(LongPath().c_str()).CreateFolder(zunPath::Recursive, zunPath::PathIsFolder));
    MakeFolder("locked");
    SetMode("locked", 0555);
    chmod(m_native.c_str(), 0755);
    const zunPath inLocked = At(R"(locked\sub)");
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&] { return !inLocked.CreateFolder(zunPath::Recursive, zunPath::PathIsFolder); }));
}

// ---- VisitFolder ---------------------------------------------------------------------------

TEST_F(PathDisk, VisitFolderStopsAtTheFirstFalse)
{
    MakeFile("a");
    MakeFile("b");
    int calls = 0;
    EXPECT_FALSE(Root().VisitFolder(zunString("*.*"), zunPath::TopLevelOnly,
                                    [&](const zunPath &, const zunPath::Info &, int)
                                    {
                                        ++calls;
                                        return false;
                                    }));
    EXPECT_EQ(calls, 1);
}

TEST_F(PathDisk, VisitFolderOfAMissingFolderIsTrueAndSilent)
{
    int calls = 0;
    const auto count = [&](const zunPath &, const zunPath::Info &, int)
    {
        ++calls;
        return true;
    };
    EXPECT_TRUE(At("missing").VisitFolder(zunString("*.*"), zunPath::Recursive, count));
    MakeFolder("empty");
    EXPECT_TRUE(At("empty").VisitFolder(zunString(""), zunPath::Recursive, count));
    EXPECT_EQ(calls, 0);
}

TEST_F(PathDisk, VisitFolderGivesTheChildPathAndItsInfo)
{
    MakeFile("one.txt", "123");
    std::vector<std::string> children;
    EXPECT_TRUE(Root().VisitFolder(zunString(), zunPath::TopLevelOnly,
                                   [&](const zunPath & child, const zunPath::Info & info, int depth)
                                   {
                                       children.push_back(Canon(child));
                                       EXPECT_EQ(info.size, 3u);
                                       EXPECT_EQ(depth, 0);
                                       return true;
                                   }));
    EXPECT_EQ(children, std::vector<std::string>{Canon(At("one.txt"))});
}

TEST_F(PathDisk, MasksMatchAsTheShellDoes)
{
    MakeFile("a.txt");
    MakeFile("B.TXT");
    MakeFile("noext");
    MakeFile("c.md");
    EXPECT_EQ(Names(Walk(Root(), "*.txt", zunPath::TopLevelOnly)), (std::set<std::string>{"a.txt", "B.TXT"}));
    EXPECT_EQ(Names(Walk(Root(), "*.*", zunPath::TopLevelOnly)),
              (std::set<std::string>{"a.txt", "B.TXT", "noext", "c.md"}));
    EXPECT_EQ(Names(Walk(Root(), "", zunPath::TopLevelOnly)).size(), 4u);
    EXPECT_EQ(Names(Walk(Root(), "?.md; *.TxT", zunPath::TopLevelOnly)),
              (std::set<std::string>{"a.txt", "B.TXT", "c.md"}));
    EXPECT_EQ(Names(Walk(Root(), "no*", zunPath::TopLevelOnly)), (std::set<std::string>{"noext"}));
}

TEST_F(PathDisk, TheNameMaskRules)
{
    using zunPlatform::MatchesNameMask;
    EXPECT_TRUE(MatchesNameMask(ZUN_W("README"), ZUN_W("*.*")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W(".profile"), ZUN_W("*.*")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("Scene.KELP"), ZUN_W("*.kelp")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("a.b.c"), ZUN_W("*.c")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("abc"), ZUN_W("a?c")));
    EXPECT_FALSE(MatchesNameMask(ZUN_W("ac"), ZUN_W("a?c")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("abc"), ZUN_W("*")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("abc"), ZUN_W("a**c")));
    EXPECT_FALSE(MatchesNameMask(ZUN_W("abc"), ZUN_W("*.txt")));
    EXPECT_FALSE(MatchesNameMask(ZUN_W("abc"), ZUN_W("")));
    EXPECT_TRUE(MatchesNameMask(ZUN_W("x.md"), ZUN_W("*.txt;  *.md")));
    EXPECT_FALSE(MatchesNameMask(ZUN_W("x.md"), ZUN_W("*.txt;;")));
}

TEST_F(PathDisk, RecursiveWalksEnterEveryFolderAndShowItFirst)
{
    MakeFolder("docs/deep");
    MakeFile("docs/deep/n.txt");
    MakeFile("docs/m.txt");
    MakeFile("docs/skip.bin");
    MakeFile("top.txt");
    const std::vector<Visit> visits = Walk(Root(), "*.txt", zunPath::Recursive);
    EXPECT_EQ(Names(visits),
              (std::set<std::string>{"docs", R"(docs\deep)", R"(docs\deep\n.txt)", R"(docs\m.txt)", "top.txt"}));
    const auto position = [&](const std::string & name)
    {
        return std::find_if(visits.begin(), visits.end(), [&](const Visit & v) { return v.name == name; }) -
               visits.begin();
    };
    EXPECT_LT(position("docs"), position(R"(docs\m.txt)"));
    EXPECT_LT(position(R"(docs\deep)"), position(R"(docs\deep\n.txt)"));
    for (const Visit & visit : visits)
        EXPECT_EQ(visit.depth, static_cast<int>(std::count(visit.name.begin(), visit.name.end(), '\\'))) << visit.name;
    // Top level only: the mask decides for folders too.
    EXPECT_EQ(Names(Walk(Root(), "*.txt", zunPath::TopLevelOnly)), (std::set<std::string>{"top.txt"}));
}

TEST_F(PathDisk, AFalseDeepInARecursiveWalkEndsAllOfIt)
{
    MakeFolder("a/b");
    MakeFile("a/b/c");
    MakeFile("z");
    std::vector<std::string> seen;
    EXPECT_FALSE(Root().VisitFolder(zunString(), zunPath::Recursive,
                                    [&](const zunPath & child, const zunPath::Info &, int)
                                    {
                                        seen.push_back(Str(child.GetLastComponent(zunPath::WithExtension)));
                                        return seen.back() != "c";
                                    }));
    // Whatever the order of the entries, nothing is visited after `c`.
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), "c");
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "c"), 1);
}

TEST_F(PathDisk, WalksDoNotFollowLinks)
{
    MakeFolder("real");
    MakeFile("real/inside");
    ASSERT_EQ(symlink(Native("real").c_str(), Native("link").c_str()), 0);
    ASSERT_EQ(symlink(m_native.c_str(), Native("real/loop").c_str()), 0);
    const std::vector<Visit> visits = Walk(Root(), "", zunPath::Recursive);
    EXPECT_EQ(Names(visits), (std::set<std::string>{"real", R"(real\inside)", R"(real\loop)", "link"}));
    for (const Visit & visit : visits)
        EXPECT_EQ(visit.folder, visit.name == "real") << visit.name;
}

TEST_F(PathDisk, ANameThatIsNotUTF8IsVisitedButCannotBeReached)
{
    MakeFile("bad\xFFname");
    const std::vector<Visit> visits = Walk(Root(), "", zunPath::TopLevelOnly);
    ASSERT_EQ(visits.size(), 1u);
    EXPECT_EQ(visits[0].name, "bad\xEF\xBF\xBDname");
    EXPECT_FALSE(At(visits[0].name).ExistsAs(zunPath::AnyObject));
    EXPECT_FALSE(At(visits[0].name).Delete(zunPath::OverrideReadOnly));
    EXPECT_TRUE(Exists("bad\xFFname"));
}

// ---- Delete -----------------------------------------------------------------------------

TEST_F(PathDisk, DeleteAFileAndAnEmptyFolder)
{
    MakeFile("file");
    MakeFolder("empty");
    EXPECT_TRUE(At("file").Delete(zunPath::KeepReadOnly));
    EXPECT_FALSE(Exists("file"));
    EXPECT_TRUE(At("empty").Delete(zunPath::KeepReadOnly));
    EXPECT_FALSE(Exists("empty"));
    EXPECT_FALSE(At("missing").Delete(zunPath::OverrideReadOnly));
    EXPECT_FALSE(zunPath().Delete(zunPath::OverrideReadOnly));
    EXPECT_FALSE(zunPath().Delete(zunString("*.*"), zunPath::OverrideReadOnly));
}

TEST_F(PathDisk, DeletingANonEmptyFolderFailsAndRemovesNothing)
{
    MakeFolder("full/sub");
    MakeFile("full/file");
    EXPECT_FALSE(At("full").Delete(zunPath::OverrideReadOnly));
    EXPECT_TRUE(Exists("full/file"));
    EXPECT_TRUE(Exists("full/sub"));
}

TEST_F(PathDisk, AReadOnlyFileIsDeletedOnlyWhenOverridden)
{
    // The library decides this, for the super-user as well.
    MakeFile("locked");
    SetMode("locked", 0444);
    EXPECT_FALSE(At("locked").Delete(zunPath::KeepReadOnly));
    EXPECT_TRUE(Exists("locked"));
    EXPECT_TRUE(At("locked").Delete(zunPath::OverrideReadOnly));
    EXPECT_FALSE(Exists("locked"));
}

TEST_F(PathDisk, DeleteWithAMaskTakesMatchingFilesAndLeavesFolders)
{
    MakeFolder("sub.txt");
    MakeFile("a.txt");
    MakeFile("b.TXT");
    MakeFile("keep.md");
    EXPECT_TRUE(Root().Delete(zunString("*.txt"), zunPath::KeepReadOnly));
    EXPECT_FALSE(Exists("a.txt"));
    EXPECT_FALSE(Exists("b.TXT"));
    EXPECT_TRUE(Exists("keep.md"));
    EXPECT_TRUE(Exists("sub.txt"));
}

TEST_F(PathDisk, AReadOnlyFileStopsAMaskedDeleteWhateverTheAction)
{
    MakeFolder("folder");
    MakeFile("folder/locked.txt");
    SetMode("folder/locked.txt", 0444);
    SetMode("folder", 0555);
    EXPECT_FALSE(At("folder").Delete(zunString("*.txt"), zunPath::OverrideReadOnly));
    EXPECT_TRUE(Exists("folder/locked.txt"));
    // The override cleared the folder's read-only attribute, not the file's.
    EXPECT_EQ(Mode("folder") & S_IWUSR, static_cast<mode_t>(S_IWUSR));
    EXPECT_EQ(Mode("folder/locked.txt"), static_cast<mode_t>(0444));
}

// ---- DeleteFolderRecursive -----------------------------------------------------------

TEST_F(PathDisk, DeleteFolderRecursiveTakesTheWholeTree)
{
    MakeFolder("tree/a/b");
    MakeFile("tree/a/b/locked");
    SetMode("tree/a/b/locked", 0444);
    MakeFile("tree/.hidden");
    MakeFile("tree/a/file");
    EXPECT_TRUE(At("tree").DeleteFolderRecursive());
    EXPECT_FALSE(Exists("tree"));
}

TEST_F(PathDisk, DeleteFolderRecursiveOnAFileIsFalseAndLeavesIt)
{
    MakeFile("file");
    EXPECT_FALSE(At("file").DeleteFolderRecursive());
    EXPECT_TRUE(Exists("file"));
    EXPECT_FALSE(At("missing").DeleteFolderRecursive());
    EXPECT_FALSE(zunPath().DeleteFolderRecursive());
}

TEST_F(PathDisk, DeleteFolderRecursiveIsTrueWhenAFileWillNotGo)
{
    // A name that no path reaches stays, and so does its folder.
    MakeFolder("tree/sub");
    MakeFile("tree/sub/bad\xFFname");
    MakeFile("tree/other");
    EXPECT_TRUE(At("tree").DeleteFolderRecursive());
    EXPECT_TRUE(Exists("tree/sub/bad\xFFname"));
    EXPECT_FALSE(Exists("tree/other"));
    EXPECT_TRUE(At("tree").ExistsAs(zunPath::Folder));
}

TEST_F(PathDisk, DeleteFolderRecursiveIsTrueWhenTheSystemRefuses)
{
    MakeFolder("tree/closed");
    MakeFile("tree/closed/file");
    MakeFile("tree/open");
    SetMode("tree/closed", 0555);
    chmod(m_native.c_str(), 0777);
    chmod(Native("tree").c_str(), 0777);
    const zunPath tree = At("tree");
    // The file in the closed folder stays, with its folders, and the walk
    // still says true.
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&] { return tree.DeleteFolderRecursive() && tree.ExistsAs(zunPath::Folder); }));
    EXPECT_TRUE(Exists("tree/closed/file"));
    EXPECT_FALSE(Exists("tree/open"));
}

// ---- Touch and attributes --------------------------------------------------------------------

TEST_F(PathDisk, TouchSetsTheTimesToNow)
{
    MakeFile("file");
    SetWriteTime("file", 1000);
    EXPECT_TRUE(At("file").Touch(zunPath::KeepReadOnly));
    zunPath::Info info;
    ASSERT_TRUE(At("file").GetInfo(info));
    const std::uint64_t now = kUnixEpochIn1601Units + static_cast<std::uint64_t>(time(nullptr)) * 10000000u;
    EXPECT_GT(info.lastWriteTime, now - 600000000u);
    EXPECT_GT(info.lastAccessTime, now - 600000000u);
}

TEST_F(PathDisk, TouchOverridingReadOnlyKeepsTheFileReadOnly)
{
    MakeFile("locked");
    SetWriteTime("locked", 1000);
    SetMode("locked", 0444);
    EXPECT_FALSE(At("locked").Touch(zunPath::KeepReadOnly)); // the library refuses, for root too
    zunPath::Info info;
    ASSERT_TRUE(At("locked").GetInfo(info));
    EXPECT_EQ(info.lastWriteTime, kUnixEpochIn1601Units + 1000ull * 10000000u);
    EXPECT_TRUE(At("locked").Touch(zunPath::OverrideReadOnly));
    ASSERT_TRUE(At("locked").GetInfo(info));
    EXPECT_GT(info.lastWriteTime, kUnixEpochIn1601Units + 1000ull * 10000000u);
    EXPECT_TRUE((info.attributes & zunPath::Info::ReadOnly) != 0);
    EXPECT_EQ(Mode("locked"), static_cast<mode_t>(0444));
}

TEST_F(PathDisk, TouchFailsOnAFolderAndOnNothing)
{
    MakeFolder("sub");
    EXPECT_FALSE(At("sub").Touch(zunPath::OverrideReadOnly));
    EXPECT_FALSE(At("missing").Touch(zunPath::OverrideReadOnly));
    EXPECT_FALSE(zunPath().Touch(zunPath::KeepReadOnly));
}

TEST_F(PathDisk, MakeWriteableSwitchesTheReadOnlyBit)
{
    MakeFile("file");
    SetMode("file", 0664);
    EXPECT_TRUE(At("file").MakeWriteable(false));
    EXPECT_EQ(Mode("file"), static_cast<mode_t>(0444));
    zunPath::Info info;
    ASSERT_TRUE(At("file").GetInfo(info));
    EXPECT_EQ(info.attributes, static_cast<unsigned int>(zunPath::Info::ReadOnly));
    EXPECT_TRUE(At("file").MakeWriteable(true));
    EXPECT_EQ(Mode("file"), static_cast<mode_t>(0644));
    EXPECT_FALSE(At("missing").MakeWriteable(true));
}

TEST_F(PathDisk, MakeHiddenOnLinuxOnlyConfirmsTheName)
{
    MakeFile(".dot");
    MakeFile("plain");
    EXPECT_TRUE(At(".dot").MakeHidden(true));
    EXPECT_FALSE(At(".dot").MakeHidden(false));
    EXPECT_FALSE(At("plain").MakeHidden(true));
    EXPECT_TRUE(At("plain").MakeHidden(false));
    EXPECT_TRUE(Exists(".dot"));
    EXPECT_TRUE(Exists("plain"));
    EXPECT_FALSE(At(".missing").MakeHidden(true));
}

TEST_F(PathDisk, AnUnknownAttributeIsRefused)
{
    MakeFile("file");
    EXPECT_FALSE(zunPlatform::ChangeAttribute(At("file").WinRepresentation(), 2, true));
    EXPECT_TRUE(zunPlatform::ChangeAttribute(At("file").WinRepresentation(), zunPlatform::AttributeWriteable, true));
}

// ---- CopyTo ----------------------------------------------------------------------------------

TEST_F(PathDisk, CopyAFileKeepsItsBytesTimeAndMode)
{
    MakeFile("source", "content");
    SetMode("source", 0640);
    SetWriteTime("source", 5000);
    EXPECT_TRUE(At("source").CopyTo(At("copy"), zunPath::CopyDefault));
    EXPECT_EQ(Content("copy"), "content");
    EXPECT_EQ(Mode("copy"), static_cast<mode_t>(0640));
    EXPECT_FALSE(At("source").IsNewerThan(At("copy")));
    EXPECT_FALSE(At("copy").IsNewerThan(At("source")));
    EXPECT_EQ(Content("source"), "content");
}

TEST_F(PathDisk, CopyIntoAnExistingFolderAndMakeMissingOnes)
{
    MakeFile("source", "s");
    MakeFolder("target");
    EXPECT_TRUE(At("source").CopyTo(At("target"), zunPath::CopyDefault));
    EXPECT_EQ(Content("target/source"), "s");
    EXPECT_TRUE(At("source").CopyTo(At(R"(new\deeper\name)"), zunPath::CopyDefault));
    EXPECT_EQ(Content("new/deeper/name"), "s");
}

TEST_F(PathDisk, CopyReplacesAnExistingFileButNotAReadOnlyOne)
{
    MakeFile("source", "new");
    MakeFile("target", "old");
    EXPECT_TRUE(At("source").CopyTo(At("target"), zunPath::CopyDefault));
    EXPECT_EQ(Content("target"), "new");
    MakeFile("locked", "old");
    SetMode("locked", 0444);
    EXPECT_FALSE(At("source").CopyTo(At("locked"), zunPath::CopyDefault));
    EXPECT_EQ(Content("locked"), "old");
    EXPECT_FALSE(At("source").CopyTo(At("source"), zunPath::CopyDefault));
    EXPECT_EQ(Content("source"), "new");
}

TEST_F(PathDisk, CopyAWholeFolder)
{
    MakeFolder("tree/sub");
    MakeFile("tree/sub/a", "a");
    MakeFile("tree/b", "b");
    SetMode("tree/sub", 0555);
    EXPECT_TRUE(At("tree").CopyTo(At("copy"), zunPath::CopyDefault));
    EXPECT_EQ(Content("copy/sub/a"), "a");
    EXPECT_EQ(Content("copy/b"), "b");
    EXPECT_EQ(Mode("copy/sub"), static_cast<mode_t>(0555));
    MakeFolder("into");
    EXPECT_TRUE(At(R"(tree\)").CopyTo(At("into"), zunPath::CopyDefault));
    EXPECT_EQ(Content("into/tree/sub/a"), "a");
}

TEST_F(PathDisk, AFolderIsNeverCopiedIntoItself)
{
    MakeFolder("tree");
    MakeFile("tree/a");
    EXPECT_FALSE(At("tree").CopyTo(At(R"(tree\inner)"), zunPath::CopyDefault));
    EXPECT_FALSE(At("tree").CopyTo(At("tree"), zunPath::CopyDefault));
    EXPECT_FALSE(Exists("tree/inner"));
    EXPECT_FALSE(Exists("tree/tree"));
}

TEST_F(PathDisk, CopyOfNothingFails)
{
    EXPECT_FALSE(At("missing").CopyTo(At("target"), zunPath::CopyDefault));
    MakeFile("source");
    EXPECT_FALSE(At("source").CopyTo(zunPath(), zunPath::CopyDefault));
    EXPECT_FALSE(zunPath().CopyTo(At("target"), zunPath::CopyDefault));
    EXPECT_FALSE(Exists("target"));
}

// ---- MoveTo ----------------------------------------------------------------------------------

TEST_F(PathDisk, MoveRenames)
{
    MakeFile("a", "a");
    MakeFolder("folder");
    EXPECT_TRUE(At("a").MoveTo(At("b"), zunFlags<zunPath::MoveFlag, 2>()));
    EXPECT_FALSE(Exists("a"));
    EXPECT_EQ(Content("b"), "a");
    EXPECT_TRUE(At("folder").MoveTo(At("moved"), zunFlags<zunPath::MoveFlag, 2>()));
    EXPECT_TRUE(fs::is_directory(Native("moved")));
    EXPECT_FALSE(At("missing").MoveTo(At("c"), zunPath::MoveAllowCopy));
}

TEST_F(PathDisk, AnExistingTargetIsReplacedOnlyWhenAsked)
{
    MakeFile("a", "a");
    MakeFile("b", "b");
    EXPECT_FALSE(At("a").MoveTo(At("b"), zunPath::MoveAllowCopy));
    EXPECT_EQ(Content("a"), "a");
    EXPECT_EQ(Content("b"), "b");
    EXPECT_TRUE(At("a").MoveTo(At("b"), zunPath::MoveReplaceExisting));
    EXPECT_FALSE(Exists("a"));
    EXPECT_EQ(Content("b"), "a");
    // A read-only target is not replaced, whoever asks.
    MakeFile("c", "c");
    SetMode("b", 0444);
    EXPECT_FALSE(At("c").MoveTo(At("b"), zunPath::MoveReplaceExisting | zunPath::MoveAllowCopy));
    EXPECT_EQ(Content("b"), "a");
}

TEST_F(PathDisk, MovesAcrossFileSystemsNeedTheCopyFlag)
{
    // /dev/shm is a memory file system of its own.
    struct stat here, there;
    ASSERT_EQ(stat(m_native.c_str(), &here), 0);
    ASSERT_EQ(stat("/dev/shm", &there), 0);
    ASSERT_NE(here.st_dev, there.st_dev);
    const std::string other = MakeTemporaryFolder("/dev/shm");
    ASSERT_FALSE(other.empty());
    MakeFile("file", "bytes");
    MakeFolder("folder");
    const zunPath away = zunPath(other.c_str()) + zunPath("file");
    EXPECT_FALSE(At("file").MoveTo(away, zunPath::MoveReplaceExisting));
    EXPECT_TRUE(Exists("file"));
    EXPECT_TRUE(At("file").MoveTo(away, zunPath::MoveAllowCopy));
    EXPECT_FALSE(Exists("file"));
    EXPECT_TRUE(away.ExistsAs(zunPath::File));
    // A folder does not move across file systems.
    EXPECT_FALSE(At("folder").MoveTo(zunPath(other.c_str()) + zunPath("folder"), zunPath::MoveAllowCopy));
    EXPECT_TRUE(Exists("folder"));
    RemoveTree(other);
}

TEST_F(PathDisk, ACopyingMoveReplacesOnlyWhenAsked)
{
    MakeFile("a", "a");
    MakeFile("b", "b");
    zunPlatform::ForceCrossDeviceMoves(true);
    EXPECT_FALSE(At("a").MoveTo(At("b"), zunPath::MoveAllowCopy));
    EXPECT_EQ(Content("b"), "b");
    EXPECT_TRUE(At("a").MoveTo(At("b"), zunPath::MoveAllowCopy | zunPath::MoveReplaceExisting));
    EXPECT_FALSE(At("b").MoveTo(At("c"), zunPath::MoveReplaceExisting));
    zunPlatform::ForceCrossDeviceMoves(false);
    EXPECT_FALSE(Exists("a"));
    EXPECT_EQ(Content("b"), "a");
    EXPECT_FALSE(Exists("c"));
}

// ---- Open --------------------------------------------------------------------------------

TEST_F(PathDisk, OpenGivesAStreamOnThePlatformForm)
{
    FILE * file = At("new.txt").Open("w");
    ASSERT_NE(file, nullptr);
    std::fputs("hello", file);
    std::fclose(file);
    EXPECT_EQ(Content("new.txt"), "hello");
}

TEST_F(PathDisk, AFailedOpenLogsAndGivesNull)
{
    ChannelCapture channel;
    const zunPath missing = At(R"(missing\file.txt)");
    EXPECT_EQ(missing.Open("r"), nullptr);
    EXPECT_EQ(channel.Text(), "[zunPath::Open] _wfopen(" + m_native +
                                  "/missing/file.txt, r) falied! errno=2, 'No such file or directory'\n");
}

TEST_F(PathDisk, OpenWithoutAModeOrAPathGivesNull)
{
    ChannelCapture channel;
    EXPECT_EQ(At("x").Open(nullptr), nullptr);
    EXPECT_EQ(zunPath().Open("r"), nullptr);
    EXPECT_EQ(zunPath(LongPath().c_str()).Open("r"), nullptr);
    const std::string text = channel.Text();
    EXPECT_NE(text.find("x, (null)) falied! errno=22, 'Invalid argument'\n"), std::string::npos);
    EXPECT_NE(text.find("[zunPath::Open] _wfopen(, r) falied! errno=2, "), std::string::npos);
    EXPECT_NE(text.find("errno=36, 'File name too long'"), std::string::npos);
}

// ---- FindExtension --------------------------------------------------------------------------

TEST_F(PathDisk, FindExtensionTriesEachInTurn)
{
    MakeFolder("model.kelp"); // a folder is passed over
    MakeFile("model.obj");
    zunPath path = At("model");
    EXPECT_EQ(path.FindExtension(zunStringList{"kelp", "obj", "ply"}), 1u);
    EXPECT_EQ(Canon(path), Canon(At("model.obj")));
    zunPath wide = At("model");
    EXPECT_EQ(wide.FindExtension(zunStringListW{ZUN_W(".obj")}), 0u);
    EXPECT_EQ(Canon(wide), Canon(At("model.obj")));
}

TEST_F(PathDisk, FindExtensionLeavesAPathWithAnExtension)
{
    MakeFile("model.obj");
    zunPath path = At("model.x");
    EXPECT_EQ(path.FindExtension(zunStringList{"obj"}), 0xFFFFFFFFu);
    EXPECT_EQ(Canon(path), Canon(At("model.x")));
}

TEST_F(PathDisk, FindExtensionWithoutAFindRemovesTheExtension)
{
    zunPath path = At("model");
    EXPECT_EQ(path.FindExtension(zunStringList{"a", "b"}), 0xFFFFFFFFu);
    EXPECT_EQ(Canon(path), Canon(At("model")));
    EXPECT_EQ(path.FindExtension(zunStringList()), 0xFFFFFFFFu);
    EXPECT_EQ(Canon(path), Canon(At("model")));
    // Each entry replaces what follows the last dot: the front of an entry
    // with a dot of its own stays for the next ones and after the search.
    MakeFile("model.tar.zip");
    EXPECT_EQ(path.FindExtension(zunStringList{"tar.gz", "zip"}), 1u);
    EXPECT_EQ(Canon(path), Canon(At("model.tar.zip")));
    zunPath missing = At("model");
    EXPECT_EQ(missing.FindExtension(zunStringList{"tar.gz", "7z"}), 0xFFFFFFFFu);
    EXPECT_EQ(Canon(missing), Canon(At("model.tar")));
}

TEST_F(PathDisk, FindExtensionReadsANarrowListAsUTF8)
{
    MakeFile("model.r\xC3\xA9s");
    zunPath path = At("model");
    EXPECT_EQ(path.FindExtension(zunStringList{"res", "r\xC3\xA9s"}), 1u);
    EXPECT_EQ(path.GetExtension16(1), zunStringW(ZUN_W("r\u00E9s")));
    EXPECT_TRUE(path.ExistsAs(zunPath::File));
}

TEST_F(PathDisk, EmptyTooLongAndMissingPathsGiveFalseOrNull)
{
    MakeFile("present");
    const zunPath bad[] = {zunPath(), zunPath(LongPath().c_str()), At("missing/deeper/file")};
    for (const zunPath & path : bad)
    {
        SCOPED_TRACE(Canon(path).substr(0, 40));
        zunPath::Info info;
        EXPECT_FALSE(path.GetInfo(info));
        EXPECT_FALSE(path.ExistsAs(zunPath::AnyObject));
        EXPECT_FALSE(path.IsNewerThan(At("present")));
        EXPECT_FALSE(path.CopyTo(At("copy"), zunPath::CopyDefault));
        EXPECT_FALSE(path.MoveTo(At("moved"), zunPath::MoveAllowCopy | zunPath::MoveReplaceExisting));
        EXPECT_FALSE(path.Delete(zunPath::OverrideReadOnly));
        EXPECT_FALSE(path.DeleteFolderRecursive());
        EXPECT_FALSE(path.Touch(zunPath::OverrideReadOnly));
        EXPECT_FALSE(path.MakeHidden(true));
        EXPECT_FALSE(path.MakeWriteable(true));
        EXPECT_FALSE(path.SetCurrentPath());
        EXPECT_EQ(path.Open("r"), nullptr);
    }
    // What is not there is walked without a visit, and found by no extension.
    for (const zunPath & path : {bad[1], bad[2]})
    {
        int visits = 0;
        EXPECT_TRUE(path.VisitFolder(zunString(), zunPath::Recursive,
                                     [&](const zunPath &, const zunPath::Info &, int) { return ++visits, true; }));
        EXPECT_EQ(visits, 0);
        zunPath probe(path);
        EXPECT_EQ(probe.FindExtension(zunStringList{"a", "b"}), 0xFFFFFFFFu);
        EXPECT_EQ(probe, path);
    }
    EXPECT_FALSE(At("copy").ExistsAs(zunPath::AnyObject));
    EXPECT_FALSE(At("moved").ExistsAs(zunPath::AnyObject));
    EXPECT_TRUE(At("present").ExistsAs(zunPath::File));
}

// ---- Current and temporary folders ------------------------------------------------------------

TEST_F(PathDisk, TheCurrentFolderGoesAndComesBack)
{
    CurrentFolderGuard guard;
    const zunPath before = zunPath::GetCurrentPath();
    EXPECT_TRUE(before.IsAbsolute());
    EXPECT_TRUE(Root().SetCurrentPath());
    EXPECT_EQ(zunPath::GetCurrentPath(), Root());
    EXPECT_EQ(fs::current_path(), fs::path(m_native));
    EXPECT_FALSE(At("missing").SetCurrentPath());
    EXPECT_FALSE(zunPath().SetCurrentPath());
    EXPECT_EQ(zunPath::GetCurrentPath(), Root());
    EXPECT_TRUE(before.SetCurrentPath());
    EXPECT_EQ(zunPath::GetCurrentPath(), before);
}

TEST_F(PathDisk, TheCurrentPathIsNormalisedAsAnyText)
{
    CurrentFolderGuard guard;
    fs::current_path("/");
    EXPECT_EQ(Canon(zunPath::GetCurrentPath()), R"(\)");
    fs::current_path(m_native);
    zunString expected(m_native.c_str());
    EXPECT_EQ(Canon(zunPath::GetCurrentPath()), Canon(zunPath(expected)));
}

TEST_F(PathDisk, TheTemporaryFolderHasItsTrailingSeparator)
{
    const zunPath temporary = zunPath::GetTemporaryPath();
    EXPECT_EQ(Canon(temporary), R"(\tmp\)");
    EXPECT_TRUE(temporary.IsAbsolute());
    EXPECT_TRUE(temporary.ExistsAs(zunPath::Folder));
}
