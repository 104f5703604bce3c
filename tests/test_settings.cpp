// Settings objects and their manager: opening files by path, typed values
// with their statuses and text forms, layout queries and removals, when the
// file is written, and what bad input gives.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "MemTesting.h"
#include "SettingsTestFiles.h"
#include "Unprivileged.h"
#include "zunFoundation.h"

using settingsTest::ReadBytes;
using settingsTest::WriteBytes;
typedef zunSimpleSettingsManager Manager;
typedef zunSimpleSettings::SettingStatus Status;

namespace
{
    const Status kUntouched = static_cast<Status>(77);

    zunFlags<Manager::OpenModeFlag, 2> Flags(unsigned int mask = 0)
    {
        return zunFlags<Manager::OpenModeFlag, 2>(mask);
    }

    std::pair<Manager::SettingsPointer, Manager::Error> Open(const std::string & file, unsigned int flags = 0)
    {
        return Manager::Get().OpenSettings(zunPath(file.c_str()), Flags(flags));
    }

    // A file with the given bytes in a fresh folder, opened through the
    // manager with `flags`.
    struct OpenFile
    {
        settingsTest::TemporaryFolder folder;
        std::string file;
        Manager::SettingsPointer settings;

        explicit OpenFile(const std::string & bytes, unsigned int flags = 0) : file(folder.File("s.ini"))
        {
            WriteBytes(file, bytes);
            auto opened = Open(file, flags);
            EXPECT_EQ(opened.second, Manager::NoError);
            settings = std::move(opened.first);
        }
        zunSimpleSettings * operator->() const { return settings.get(); }
        // Closes the object: the file as the close left it.
        std::string Close()
        {
            settings.reset();
            return ReadBytes(file);
        }
    };

    std::vector<std::string> Texts(const zunStringListT<char> & list)
    {
        std::vector<std::string> texts;
        for (const char * text : list)
            texts.emplace_back(text);
        return texts;
    }
}

// ---------------------------------------------------------------------------
// Opening and closing

TEST(SettingsManager, IsOneObjectForTheProcess)
{
    EXPECT_EQ(&Manager::Get(), &Manager::Get());
}

TEST(SettingsManager, MissingFileIsCreatedEmptyAndGivesAnEmptyModel)
{
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("new.ini");
    auto opened = Open(file);
    ASSERT_EQ(opened.second, Manager::NoError);
    ASSERT_TRUE(opened.first);
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_TRUE(S_ISREG(info.st_mode));
    EXPECT_EQ(info.st_size, 0);
    EXPECT_EQ(opened.first->GetSections().Count(), 0u);
    opened.first.reset();
    EXPECT_EQ(ReadBytes(file), "");
}

TEST(SettingsManager, SecondOpenOfAnOpenPathIsRefusedAndTheFirstStaysUsable)
{
    OpenFile first("[s]\nk=1\n");
    for (unsigned int flags : {0u, 1u, 2u, 3u})
    {
        auto second = Open(first.file, flags);
        EXPECT_EQ(second.second, Manager::AlreadyOpen);
        EXPECT_FALSE(second.first);
    }
    first->SetInt("s", "k", 2);
    EXPECT_EQ(first->GetInt("s", "k", 0, nullptr), 2);
    EXPECT_EQ(first.Close(), "[s]\nk=2\n");
}

TEST(SettingsManager, ReopeningGivesTheKeptObjectWithItsContentAndNotTheFile)
{
    OpenFile file("[s]\nk=1\n");
    zunSimpleSettings * object = file.settings.get();
    file->SetInt("s", "k", 2);
    EXPECT_EQ(file.Close(), "[s]\nk=2\n");

    WriteBytes(file.file, "[s]\nk=99\n[other]\n");
    auto again = Open(file.file);
    ASSERT_EQ(again.second, Manager::NoError);
    EXPECT_EQ(again.first.get(), object);
    EXPECT_EQ(again.first->GetInt("s", "k", 0, nullptr), 2);
    EXPECT_FALSE(again.first->HasSection("other"));
    again.first.reset();
    EXPECT_EQ(ReadBytes(file.file), "[s]\nk=2\n"); // the kept content went back over the file
}

TEST(SettingsManager, UnmanagedOpensReadTheFileEachTime)
{
    OpenFile file("[s]\nk=1\n", Manager::Unmanaged);
    EXPECT_EQ(file->GetInt("s", "k", 0, nullptr), 1);
    EXPECT_EQ(file.Close(), "[s]\nk=1\n");

    WriteBytes(file.file, "[s]\nk=2\n");
    auto again = Open(file.file, Manager::Unmanaged);
    ASSERT_EQ(again.second, Manager::NoError);
    EXPECT_EQ(again.first->GetInt("s", "k", 0, nullptr), 2);
    // Two unmanaged objects of one path are two objects.
    auto other = Open(file.file, Manager::Unmanaged);
    ASSERT_EQ(other.second, Manager::NoError);
    EXPECT_NE(other.first.get(), again.first.get());
    other.first.reset();
    again.first.reset();

    // Nothing was kept: a managed open reads the file too.
    WriteBytes(file.file, "[s]\nk=3\n");
    auto managed = Open(file.file);
    EXPECT_EQ(managed.first->GetInt("s", "k", 0, nullptr), 3);
}

TEST(SettingsManager, UnmanagedHasNoEffectOnAKeptPath)
{
    OpenFile file("[s]\nk=1\n");
    zunSimpleSettings * object = file.settings.get();
    file->SetInt("s", "k", 5);
    file.Close();
    WriteBytes(file.file, "[s]\nk=1\n");
    {
        auto again = Open(file.file, Manager::Unmanaged);
        EXPECT_EQ(again.first.get(), object);
        EXPECT_EQ(again.first->GetInt("s", "k", 0, nullptr), 5);
    } // not deleted at its close: it is still kept
    auto third = Open(file.file);
    EXPECT_EQ(third.first.get(), object);
    EXPECT_EQ(third.first->GetInt("s", "k", 0, nullptr), 5);
}

TEST(SettingsManager, ClosingSavesUnlessEveryChangeWasSaved)
{
    OpenFile saved("[s]\nk=1\n");
    saved->SetInt("s", "k", 2);
    EXPECT_EQ(ReadBytes(saved.file), "[s]\nk=1\n"); // not before the close
    EXPECT_EQ(saved.Close(), "[s]\nk=2\n");

    OpenFile through("[s]\nk=1\n", Manager::WriteThrough);
    through->SetInt("s", "k", 2);
    EXPECT_EQ(ReadBytes(through.file), "[s]\nk=2\n"); // at once
    WriteBytes(through.file, "changed behind its back\n");
    EXPECT_EQ(through.Close(), "changed behind its back\n"); // and not at the close
}

TEST(SettingsManager, FolderCannotBeOpened)
{
    settingsTest::TemporaryFolder folder;
    for (unsigned int flags : {0u, 1u, 2u, 3u})
    {
        auto opened = Open(folder.path, flags);
        EXPECT_EQ(opened.second, Manager::CannotOpen);
        EXPECT_FALSE(opened.first);
    }
}

TEST(SettingsManager, FileInAMissingFolderCannotBeCreated)
{
    settingsTest::TemporaryFolder folder;
    // The failed create goes through the disk stream, which tells why on the
    // debug print channel.
    const std::string debugFile = folder.File("debug.txt");
    zunSetDprintfFile(zunPath(debugFile.c_str()));
    auto opened = Open(folder.File("missing/s.ini"));
    zunSetDprintfFile(zunPath());
    EXPECT_EQ(opened.second, Manager::CannotOpen);
    EXPECT_FALSE(opened.first);
    const std::string printed = ReadBytes(debugFile);
    EXPECT_NE(printed.find("open failed with error 2 no such file or directory"), std::string::npos) << printed;
}

TEST(SettingsManager, FileWithoutReadPermissionCannotBeOpened)
{
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("locked.ini");
    WriteBytes(file, "[s]\nk=1\n");
    ASSERT_EQ(chmod(file.c_str(), 0200), 0);
    ASSERT_TRUE(testsupport::OpenToOthers(folder.path));
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&]
        {
            auto opened = Open(file, Manager::Unmanaged);
            return opened.second == Manager::CannotOpen && !opened.first;
        }));
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&]
        {
            auto opened = Open(file);
            return opened.second == Manager::CannotOpen && !opened.first;
        }));
}

TEST(SettingsManager, SaveThatCannotWriteIsSilent)
{
    OpenFile file("[s]\nk=1\n");
    file->SetInt("s", "k", 2);
    const std::string gone = file.folder.File("s.ini");
    ASSERT_EQ(std::remove(gone.c_str()), 0);
    ASSERT_EQ(mkdir(gone.c_str(), 0755), 0); // a folder where the file was
    file->Save();
    file.settings.reset();
    struct stat info;
    ASSERT_EQ(stat(gone.c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
}

TEST(SettingsManager, ExhaustedHeapGivesOutOfMemoryOrReadFailedAndKeepsNothing)
{
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("s.ini");
    std::string bytes;
    for (int i = 0; i < 200; ++i)
        bytes += "[section " + std::to_string(i) + "]\nkey=value\n; comment\n";
    WriteBytes(file, bytes);

    // The nth heap request of an open fails, for each n in turn, until the
    // open needs fewer requests than that.
    std::set<Manager::Error> seen;
    for (unsigned int nth = 1;; ++nth)
    {
        zunMemTesting::FailAllocation(nth);
        auto opened = Open(file, Manager::Unmanaged);
        const bool failed = zunMemTesting::GetCounters().failures != 0;
        zunMemTesting::Reset();
        seen.insert(opened.second);
        if (!failed)
        {
            ASSERT_EQ(opened.second, Manager::NoError);
            break;
        }
        EXPECT_TRUE(opened.second == Manager::OutOfMemory || opened.second == Manager::ReadFailed ||
                    opened.second == Manager::CannotOpen)
            << "request " << nth << " gave " << opened.second;
        EXPECT_EQ(opened.first, nullptr);
        ASSERT_LT(nth, 100000u);
    }
    EXPECT_EQ(seen.count(Manager::OutOfMemory), 1u);
    EXPECT_EQ(seen.count(Manager::ReadFailed), 1u);

    // A failed open keeps nothing: the next one reads the file.
    auto opened = Open(file);
    ASSERT_EQ(opened.second, Manager::NoError);
    EXPECT_EQ(opened.first->GetSections().Count(), 200u);
    EXPECT_EQ(ReadBytes(file), bytes);
}

TEST(SettingsManager, FirstHeapRequestIsTheObject)
{
    settingsTest::TemporaryFolder folder;
    const zunPath path(folder.File("s.ini").c_str());
    zunMemTesting::FailAllocation(1);
    auto opened = Manager::Get().OpenSettings(path, Flags());
    zunMemTesting::Reset();
    EXPECT_EQ(opened.second, Manager::OutOfMemory);
    EXPECT_FALSE(opened.first);
}

TEST(SettingsManager, ObjectOpenWhenTheManagerGoesIsSavedAndDeletedByItsClose)
{
    // The manager goes at library unload; an object the caller still holds
    // then closes as usual, saving and freeing itself (the leak checker of a
    // sanitized build would report it otherwise). The child is a fresh run of
    // this test, so that its manager is made inside it; it finds the file by
    // its parent's process id.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const bool child = testing::internal::InDeathTestChild();
    const std::string file = "/tmp/zun_settings_orphan_" + std::to_string(child ? getppid() : getpid()) + ".ini";
    if (!child)
        WriteBytes(file, "[s]\nk=1\n");
    EXPECT_EXIT(
        {
            static Manager::SettingsPointer held; // made before the manager: it goes after it
            held = Open(file).first;
            if (held)
                held->SetInt("s", "k", 2);
            std::exit(held ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(ReadBytes(file), "[s]\nk=2\n");
    std::remove(file.c_str());
}

TEST(SettingsManager, WorkedExampleThroughTheInterface)
{
    OpenFile file(settingsTest::kWorkedExample);
    EXPECT_EQ(Texts(file->GetSections()), (std::vector<std::string>{"View"}));
    EXPECT_EQ(Texts(file->GetKeys("VIEW")), (std::vector<std::string>{"Width", "Title", "Path"})); // not the empty key
    EXPECT_EQ(file->GetInt("View", "Width", 0, nullptr), 1024);
    EXPECT_STREQ(file->GetString("View", "", "", nullptr), "600");
    EXPECT_STREQ(file->GetString("View", "Title", "", nullptr), "My App");
    EXPECT_STREQ(file->GetString("View", "Path", "", nullptr), "'C:\\x");
    EXPECT_FALSE(file->HasKey("View", "Height"));
    EXPECT_FALSE(file->HasKey("View", "noequals"));
    EXPECT_EQ(file.Close(), settingsTest::kWorkedExampleWritten);
}

// ---------------------------------------------------------------------------
// Setters

TEST(SettingsSetters, ValueForms)
{
    OpenFile file("");
    file->SetBool("s", "yes", true);
    file->SetBool("s", "no", false);
    file->SetInt("s", "int", -2147483647 - 1);
    file->SetUInt("s", "uint", 4294967295u);
    file->SetDouble("s", "half", 0.5);
    file->SetDouble("s", "third", 1.0 / 3.0);
    file->SetDouble("s", "big", 1e20);
    file->SetString("s", "text", "hello world");
    EXPECT_EQ(file.Close(), "[s]\nyes=1\nno=0\nint=-2147483648\nuint=4294967295\nhalf=0.5000000000000000\n"
                            "third=0.3333333333333333\nbig=100000000000000000000.0000000000000000\n"
                            "text=hello world\n");
}

TEST(SettingsSetters, LargestDoubleIsWrittenWhole)
{
    OpenFile file("");
    file->SetDouble("s", "max", 1.7976931348623157e308);
    file->SetDouble("s", "min", -1.7976931348623157e308);
    EXPECT_DOUBLE_EQ(file->GetDouble("s", "max", 0, nullptr), 1.7976931348623157e308);
    EXPECT_DOUBLE_EQ(file->GetDouble("s", "min", 0, nullptr), -1.7976931348623157e308);
    EXPECT_EQ(file->GetString("s", "max", "", nullptr).Length(), 309u + 1 + 16);
}

TEST(SettingsSetters, NewSectionGoesToTheEndOfTheFile)
{
    OpenFile file("; head\ntop=1\n[a]\nk=1\n; tail of a\n");
    file->SetInt("b", "n", 2);
    EXPECT_EQ(file.Close(), "; head\ntop=1\n[a]\nk=1\n; tail of a\n[b]\nn=2\n");
}

TEST(SettingsSetters, NewKeyGoesBehindTheCommentsThatEndItsSection)
{
    OpenFile file("[a]\nk=1\n; end of a\n\n[b]\nx=1\n");
    file->SetInt("A", "n", 2);
    EXPECT_EQ(file.Close(), "[a]\nk=1\n; end of a\n\nn=2\n[b]\nx=1\n");
}

TEST(SettingsSetters, ExistingKeyKeepsTheCaseOfItsKeyAndSection)
{
    OpenFile file("[View]\nWidth=800\n");
    file->SetInt("view", "WIDTH", 1024);
    EXPECT_EQ(file.Close(), "[View]\nWidth=1024\n");
}

TEST(SettingsSetters, NumericSettersKeepQuotesAndTrailingText)
{
    OpenFile file("[s]\na='5' ; five\nb=\"x\"\nc=7 ; seven\n");
    file->SetInt("s", "a", 6);
    file->SetBool("s", "b", true);
    file->SetDouble("s", "c", 0.25);
    EXPECT_EQ(file.Close(), "[s]\na='6' ; five\nb=\"1\"\nc=0.2500000000000000\n");
}

TEST(SettingsSetters, SetStringGoesThroughTheValueParsing)
{
    OpenFile file("[s]\na='old' tail\nb=plain\nc='q'\n");
    file->SetString("s", "a", "new");               // the quote and tail go: the text has none
    file->SetString("s", "b", "  \"quoted\" rest"); // blanks skipped, quote and text behind kept
    file->SetString("s", "c", "'open");             // no closing quote: in the value
    file->SetString("s", "d", "'x'y");
    Status status = kUntouched;
    EXPECT_STREQ(file->GetString("s", "b", "", &status), "quoted");
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file.Close(), "[s]\na=new\nb=\"quoted\" rest\nc='open\nd='x'y\n");
}

TEST(SettingsSetters, NullTextClearsValueQuoteAndTrailingText)
{
    OpenFile file("[s]\nk='v' tail\n");
    file->SetString("s", "k", nullptr);
    EXPECT_STREQ(file->GetString("s", "k", "default", nullptr), "");
    EXPECT_EQ(file.Close(), "[s]\nk=\n");
}

TEST(SettingsSetters, TrueOverTheTextTrueIsStoredAsOneAndIsAChange)
{
    OpenFile file("[s]\nk=true\n", Manager::WriteThrough);
    WriteBytes(file.file, "marker\n");
    file->SetBool("s", "k", true);
    EXPECT_EQ(ReadBytes(file.file), "[s]\nk=1\n");
}

TEST(SettingsSetters, WriteThroughWritesNothingWhenTheTextStaysTheSame)
{
    OpenFile file("[s]\ni=5\nd=0.5000000000000000\nb=1\nt='x' tail\n", Manager::WriteThrough);
    WriteBytes(file.file, "marker\n");
    file->SetInt("s", "i", 5);
    file->SetDouble("s", "d", 0.5);
    file->SetBool("s", "b", true);
    file->SetString("s", "t", "x");   // quote and tail change, the value does not: stored, not saved
    file->SetString("S", "T", "'x'"); // the same again, any case
    EXPECT_EQ(ReadBytes(file.file), "marker\n");
    file->SetInt("s", "i", 6);
    EXPECT_EQ(ReadBytes(file.file), "[s]\ni=6\nd=0.5000000000000000\nb=1\nt='x'\n");
}

TEST(SettingsSetters, WriteThroughSavesANewKeyAndSection)
{
    OpenFile file("", Manager::WriteThrough);
    file->SetInt("s", "k", 0);
    EXPECT_EQ(ReadBytes(file.file), "[s]\nk=0\n");
}

TEST(SettingsSetters, NewLinesTakeTheLineEndOfTheLineBefore)
{
    OpenFile file("[a]\r\nk=1\r\n");
    file->SetInt("a", "n", 2);
    file->SetInt("b", "x", 3);
    EXPECT_EQ(file.Close(), "[a]\r\nk=1\r\nn=2\r\n[b]\r\nx=3\r\n");

    OpenFile empty("[a]\r\n");
    empty->SetInt("a", "n", 2);
    EXPECT_EQ(empty.Close(), "[a]\r\nn=2\r\n");
}

TEST(SettingsSetters, NullSectionOrKeyStoresNothing)
{
    OpenFile file("[s]\nk=1\n", Manager::WriteThrough);
    file->SetInt(nullptr, "k", 2);
    file->SetInt("s", nullptr, 2);
    file->SetString(nullptr, nullptr, "x");
    EXPECT_EQ(file.Close(), "[s]\nk=1\n");
}

TEST(SettingsSetters, ExhaustedHeapLeavesTheFileAsItWas)
{
    OpenFile file("[s]\nk=1\n");
    for (unsigned int nth = 1; nth <= 3; ++nth)
    {
        zunMemTesting::FailAllocation(nth);
        file->SetString("new", "key", "value");
        file->SetString("s", "k", "changed");
        file->SetInt("s", "other", 3);
        zunMemTesting::Reset();
        // Whatever went in went in whole.
        if (file->HasSection("new"))
        {
            EXPECT_STREQ(file->GetString("new", "key", "", nullptr), "value");
        }
        if (file->HasKey("s", "other"))
        {
            EXPECT_EQ(file->GetInt("s", "other", 0, nullptr), 3);
        }
        const std::string k = static_cast<const char *>(file->GetString("s", "k", "", nullptr));
        EXPECT_TRUE(k == "1" || k == "changed");
        file->RemoveSection("new");
        file->RemoveKey("s", "other");
        file->SetString("s", "k", "1");
    }
    EXPECT_EQ(file.Close(), "[s]\nk=1\n");
}

// ---------------------------------------------------------------------------
// Getters

TEST(SettingsGetters, Bool)
{
    OpenFile file("[s]\nt=1\nf=0\nT=TRUE\nF=FALSE\nmixed=tRuE\nyes=YES\ntwo=2\nempty=\nspaced= 1 \n");
    Status status = kUntouched;
    EXPECT_TRUE(file->GetBool("s", "t", false, &status));
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_FALSE(file->GetBool("s", "f", true, &status));
    EXPECT_EQ(status, zunSimpleSettings::Found);
    // Keys match ignoring case: "T" is "t", read first.
    EXPECT_FALSE(file->GetBool("s", "F", true, &status));
    EXPECT_TRUE(file->GetBool("s", "mixed", false, &status));
    EXPECT_EQ(status, zunSimpleSettings::Found);
    for (const char * bad : {"yes", "two", "empty", "spaced"})
    {
        status = kUntouched;
        EXPECT_TRUE(file->GetBool("s", bad, true, &status)) << bad;
        EXPECT_EQ(status, zunSimpleSettings::BadValue) << bad;
        EXPECT_FALSE(file->GetBool("s", bad, false, &status)) << bad;
    }
    status = kUntouched;
    EXPECT_TRUE(file->GetBool("s", "missing", true, &status));
    EXPECT_EQ(status, zunSimpleSettings::NoKey);
    status = kUntouched;
    EXPECT_TRUE(file->GetBool("missing", "t", true, &status));
    EXPECT_EQ(status, kUntouched);
    EXPECT_TRUE(file->GetBool("s", "t", false, nullptr));
}

TEST(SettingsGetters, BoolReadsTheWordsInAnyCase)
{
    OpenFile file("[s]\na=FALSE\nb=False\nc=TRUE\nd=True\n");
    EXPECT_FALSE(file->GetBool("s", "a", true, nullptr));
    EXPECT_FALSE(file->GetBool("s", "b", true, nullptr));
    EXPECT_TRUE(file->GetBool("s", "c", false, nullptr));
    EXPECT_TRUE(file->GetBool("s", "d", false, nullptr));
}

TEST(SettingsGetters, NumbersAsSscanfReadsThem)
{
    OpenFile file("[s]\nint=-42\nlead=   7\ntail=12abc\nquoted='34' note\nbad=abc\nempty=\n"
                  "neg=-1\nbig=4294967295\nhalf=0.5\nexp=1e3\nnum=3.25xyz\n");
    Status status = kUntouched;
    EXPECT_EQ(file->GetInt("s", "int", 0, &status), -42);
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file->GetInt("s", "lead", 0, &status), 7);
    EXPECT_EQ(file->GetInt("s", "tail", 0, &status), 12);
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file->GetInt("s", "quoted", 0, &status), 34); // the quotes are not part of the value
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file->GetInt("s", "bad", 9, &status), 9);
    EXPECT_EQ(status, zunSimpleSettings::BadValue);
    status = kUntouched;
    EXPECT_EQ(file->GetInt("s", "empty", 9, &status), 9);
    EXPECT_EQ(status, zunSimpleSettings::BadValue);

    EXPECT_EQ(file->GetUInt("s", "neg", 0, &status), 4294967295u); // wraps
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file->GetUInt("s", "big", 0, &status), 4294967295u);
    EXPECT_EQ(file->GetUInt("s", "bad", 3, &status), 3u);
    EXPECT_EQ(status, zunSimpleSettings::BadValue);

    EXPECT_EQ(file->GetDouble("s", "half", 0, &status), 0.5);
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_EQ(file->GetDouble("s", "exp", 0, &status), 1000.0);
    EXPECT_EQ(file->GetDouble("s", "num", 0, &status), 3.25);
    EXPECT_EQ(file->GetDouble("s", "int", 0, &status), -42.0);
    EXPECT_EQ(file->GetDouble("s", "bad", 1.5, &status), 1.5);
    EXPECT_EQ(status, zunSimpleSettings::BadValue);

    status = kUntouched;
    EXPECT_EQ(file->GetInt("s", "missing", 5, &status), 5);
    EXPECT_EQ(status, zunSimpleSettings::NoKey);
    status = kUntouched;
    EXPECT_EQ(file->GetUInt("missing", "int", 5, &status), 5u);
    EXPECT_EQ(status, kUntouched);
    EXPECT_EQ(file->GetDouble("missing", "half", 2.5, &status), 2.5);
    EXPECT_EQ(status, kUntouched);
    EXPECT_EQ(file->GetInt("s", "int", 0, nullptr), -42);
}

TEST(SettingsGetters, WrittenNumbersReadBack)
{
    OpenFile file("");
    file->SetDouble("s", "d", 0.1);
    file->SetInt("s", "i", -7);
    file->SetUInt("s", "u", 3000000000u);
    file->SetBool("s", "b", false);
    EXPECT_DOUBLE_EQ(file->GetDouble("s", "d", 0, nullptr), 0.1);
    EXPECT_EQ(file->GetInt("s", "i", 0, nullptr), -7);
    EXPECT_EQ(file->GetUInt("s", "u", 0, nullptr), 3000000000u);
    EXPECT_FALSE(file->GetBool("s", "b", true, nullptr));
}

TEST(SettingsGetters, String)
{
    OpenFile file("[s]\nq='My App' ; shown\nplain=a b ; c\nempty=\nopen='x\n");
    Status status = kUntouched;
    EXPECT_STREQ(file->GetString("s", "q", "", &status), "My App");
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_STREQ(file->GetString("s", "plain", "", &status), "a b ; c");
    EXPECT_STREQ(file->GetString("s", "open", "", &status), "'x");
    status = kUntouched;
    EXPECT_STREQ(file->GetString("s", "empty", "default", &status), ""); // the empty value is a value
    EXPECT_EQ(status, zunSimpleSettings::Found);
    EXPECT_STREQ(file->GetString("s", "missing", "default", &status), "default");
    EXPECT_EQ(status, zunSimpleSettings::NoKey);
    status = kUntouched;
    EXPECT_STREQ(file->GetString("missing", "q", "default", &status), "default");
    EXPECT_EQ(status, kUntouched); // a missing section leaves the status alone
    EXPECT_TRUE(file->GetString("missing", "q", nullptr, &status).IsEmpty());
}

TEST(SettingsGetters, NullSectionIsMissingAndNullKeyIsNoKey)
{
    OpenFile file("[s]\nk=1\n");
    Status status = kUntouched;
    EXPECT_EQ(file->GetInt(nullptr, "k", 4, &status), 4);
    EXPECT_EQ(status, kUntouched);
    EXPECT_EQ(file->GetInt("s", nullptr, 4, &status), 4);
    EXPECT_EQ(status, zunSimpleSettings::NoKey);
    EXPECT_EQ(file->GetKeys(nullptr).Count(), 0u);
    EXPECT_FALSE(file->HasSection(nullptr));
    EXPECT_FALSE(file->HasKey(nullptr, "k"));
    EXPECT_FALSE(file->HasKey("s", nullptr));
}

// ---------------------------------------------------------------------------
// Layout, removal, save and dump

TEST(SettingsLayout, SectionsAndKeysInFileOrderWithoutEmptyNames)
{
    OpenFile file("top=1\n[b]\nz=1\n=empty\n x=lost\ny=2\n; c\n[]\nk=1\n[a]\n[B]\nw=3\n");
    EXPECT_EQ(Texts(file->GetSections()), (std::vector<std::string>{"b", "a"}));
    EXPECT_EQ(Texts(file->GetKeys("B")), (std::vector<std::string>{"z", "y", "w"}));
    EXPECT_EQ(file->GetKeys("a").Count(), 0u);
    EXPECT_EQ(file->GetKeys("missing").Count(), 0u);
    // The keys in front of the first header are not reachable, but kept.
    EXPECT_FALSE(file->HasKey("", "top"));
    // "[B]" went and its line joined b; the repeated empty key kept its place.
    EXPECT_EQ(file.Close(), "top=1\n[b]\nz=1\n=lost\ny=2\n; c\nw=3\n[]\nk=1\n[a]\n");
}

TEST(SettingsLayout, HasSectionAndHasKeyIgnoreCase)
{
    OpenFile file("[View]\nWidth=1\n; Height=2\n");
    EXPECT_TRUE(file->HasSection("view"));
    EXPECT_FALSE(file->HasSection("vie"));
    EXPECT_TRUE(file->HasKey("VIEW", "width"));
    EXPECT_FALSE(file->HasKey("View", "Height"));
    EXPECT_FALSE(file->HasKey("Missing", "Width")); // a missing section holds nothing
}

TEST(SettingsLayout, RemoveSectionTakesEverySectionOfThatNameAndSavesWithWriteThrough)
{
    OpenFile file("; top\n[a]\nk=1\n[b]\nk=2\n", Manager::WriteThrough);
    file->SetString("A ", "x", "1"); // another name: "A " is not "a"
    file->RemoveSection("A");
    EXPECT_EQ(ReadBytes(file.file), "; top\n[b]\nk=2\n[A ]\nx=1\n");
    WriteBytes(file.file, "marker\n");
    file->RemoveSection("nothing here"); // saved whether or not something went
    EXPECT_EQ(ReadBytes(file.file), "; top\n[b]\nk=2\n[A ]\nx=1\n");
}

TEST(SettingsLayout, RemoveSectionWithNullEmptiesAFileOfComments)
{
    OpenFile file("; one\n# two\n\n; three\n");
    file->RemoveSection(nullptr);
    EXPECT_EQ(ReadBytes(file.file), "; one\n# two\n\n; three\n");
    EXPECT_EQ(file.Close(), "");
}

TEST(SettingsLayout, RemoveSectionWithNullTakesTopLevelKeysToo)
{
    OpenFile file("top=1\n; c\n[s]\nk=1\n", Manager::WriteThrough);
    file->RemoveSection(nullptr);
    EXPECT_EQ(ReadBytes(file.file), "");
    EXPECT_EQ(file->GetSections().Count(), 0u);
}

TEST(SettingsLayout, RemoveKeyTakesTheKeyAndWaitsForTheNextSave)
{
    OpenFile file("[s]\na=1\n; c\nb=2\n[t]\na=3\n", Manager::WriteThrough);
    file->RemoveKey("S", "A");
    EXPECT_FALSE(file->HasKey("s", "a"));
    EXPECT_TRUE(file->HasKey("t", "a"));
    EXPECT_EQ(ReadBytes(file.file), "[s]\na=1\n; c\nb=2\n[t]\na=3\n"); // no save of its own
    file->RemoveKey("missing", "a");
    file->RemoveKey("s", nullptr);
    file->SetInt("t", "a", 4);
    EXPECT_EQ(ReadBytes(file.file), "[s]\n; c\nb=2\n[t]\na=4\n");
}

TEST(SettingsLayout, RemoveKeyAfterRemoveSectionOfAnotherName)
{
    OpenFile file("[s]\nk=1\n");
    file->RemoveKey("s", "k");
    file->RemoveSection("s");
    EXPECT_FALSE(file->HasSection("s"));
    file->SetInt("s", "k", 2);
    EXPECT_EQ(file.Close(), "[s]\nk=2\n");
}

TEST(SettingsLayout, SaveWritesTheFileNow)
{
    OpenFile file("[s]\nk=1\n");
    file->SetInt("s", "k", 2);
    file->Save();
    EXPECT_EQ(ReadBytes(file.file), "[s]\nk=2\n");
}

TEST(SettingsLayout, DumpWritesTheTextToStandardOutput)
{
    OpenFile file("; note\n[s]\nk='v' tail\n");
    testing::internal::CaptureStdout();
    file->Dump();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "; note\n[s]\nk='v' tail\n");
}

TEST(SettingsInterface, CopiesAndAssignsNothing)
{
    struct Probe : zunSimpleSettings
    {
        int marker = 0;
        void SetBool(const char *, const char *, bool) override {}
        void SetInt(const char *, const char *, int) override {}
        void SetUInt(const char *, const char *, unsigned int) override {}
        void SetDouble(const char *, const char *, double) override {}
        void SetString(const char *, const char *, const char *) override {}
        bool GetBool(const char *, const char *, bool d, SettingStatus *) override { return d; }
        int GetInt(const char *, const char *, int d, SettingStatus *) override { return d; }
        unsigned int GetUInt(const char *, const char *, unsigned int d, SettingStatus *) override { return d; }
        double GetDouble(const char *, const char *, double d, SettingStatus *) override { return d; }
        zunString GetString(const char *, const char *, const char * d, SettingStatus *) override { return d; }
        zunStringListT<char> GetSections() override { return {}; }
        zunStringListT<char> GetKeys(const char *) override { return {}; }
        void RemoveSection(const char *) override {}
        void RemoveKey(const char *, const char *) override {}
        bool HasSection(const char *) override { return false; }
        bool HasKey(const char *, const char *) override { return false; }
        void Save() override {}
        void Dump() override {}
    };
    Probe a, b;
    a.marker = 1;
    zunSimpleSettings & base = b;
    base = a; // the interface's part copies nothing
    EXPECT_EQ(b.marker, 0);
    EXPECT_EQ(sizeof(zunSimpleSettings), sizeof(void *)); // no fields beside the table
    EXPECT_EQ(static_cast<int>(zunSimpleSettings::Found), 0);
    EXPECT_EQ(static_cast<int>(zunSimpleSettings::NoKey), 2);
    EXPECT_EQ(static_cast<int>(zunSimpleSettings::BadValue), 3);
    EXPECT_EQ(sizeof(zunSimpleSettings::SettingStatus), 4u);
}

TEST(SettingsInterface, ManagerNumbers)
{
    EXPECT_EQ(static_cast<int>(Manager::WriteThrough), 1);
    EXPECT_EQ(static_cast<int>(Manager::Unmanaged), 2);
    EXPECT_EQ(static_cast<int>(Manager::NoError), 0);
    EXPECT_EQ(static_cast<int>(Manager::AlreadyOpen), 1);
    EXPECT_EQ(static_cast<int>(Manager::CannotOpen), 2);
    EXPECT_EQ(static_cast<int>(Manager::OutOfMemory), 3);
    EXPECT_EQ(static_cast<int>(Manager::ReadFailed), 4);
    EXPECT_EQ(static_cast<int>(Manager::Unhandled), 5);
}

// ---------------------------------------------------------------------------
// Bad input

namespace
{
    // Opens `file` on its own, closes it, and gives what the close wrote.
    std::string OpenAndClose(const std::string & file, Manager::Error & error)
    {
        auto opened = Open(file, Manager::Unmanaged);
        error = opened.second;
        opened.first.reset();
        return ReadBytes(file);
    }
}

TEST(SettingsBadInput, BinaryFileReadsAsLinesAndSettlesAfterOneRewrite)
{
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("binary.ini");
    std::string bytes;
    std::mt19937 random(7);
    for (int i = 0; i < 256 * 1024; ++i)
        bytes += static_cast<char>(random() & 0xFF);
    bytes += std::string(1000, '\0'); // and a run of zero bytes at the end, without a newline
    WriteBytes(file, bytes);

    Manager::Error error = Manager::Unhandled;
    const std::string once = OpenAndClose(file, error);
    ASSERT_EQ(error, Manager::NoError);
    EXPECT_LE(once.size(), bytes.size() + 1); // a rewrite only drops text, and ends the last line
    EXPECT_EQ(once.back(), '\n');
    const std::string twice = OpenAndClose(file, error);
    ASSERT_EQ(error, Manager::NoError);
    EXPECT_EQ(twice, once);
}

TEST(SettingsBadInput, FiftyMegabyteFileReadsChangesAndWritesBack)
{
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("large.ini");
    std::string bytes;
    bytes.reserve(52u << 20);
    for (unsigned int i = 0; bytes.size() < (50u << 20); ++i)
    {
        bytes += "; section " + std::to_string(i) + " of the large file\n[Section" + std::to_string(i) + "]\n";
        for (int k = 0; k < 8; ++k)
            bytes += "Key" + std::to_string(k) + " = 'value " + std::to_string(i * 8 + k) + "' ; note\n";
    }
    WriteBytes(file, bytes);

    auto opened = Open(file, Manager::Unmanaged);
    ASSERT_EQ(opened.second, Manager::NoError);
    const unsigned int sections = opened.first->GetSections().Count();
    EXPECT_GT(sections, 100000u);
    const std::string last = "Section" + std::to_string(sections - 1);
    EXPECT_STREQ(opened.first->GetString(last.c_str(), "KEY7", "", nullptr),
                 ("value " + std::to_string((sections - 1) * 8 + 7)).c_str());
    opened.first->SetInt("Section0", "Key0", 1);
    opened.first.reset();

    // Blanks around "=" go, and the one value changed; nothing else.
    std::string expected;
    expected.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size();)
    {
        const std::size_t found = bytes.find(" = ", at);
        const std::size_t end = found == std::string::npos ? bytes.size() : found;
        expected.append(bytes, at, end - at);
        if (found == std::string::npos)
            break;
        expected += '=';
        at = found + 3;
    }
    const std::string first = "Key0='value 0'";
    ASSERT_EQ(expected.find(first), expected.find("[Section0]\n") + 11);
    expected.replace(expected.find(first), first.size(), "Key0='1'");
    const std::string written = ReadBytes(file);
    EXPECT_EQ(written.size(), expected.size());
    EXPECT_TRUE(written == expected);
}
