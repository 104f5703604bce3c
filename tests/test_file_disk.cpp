// Disk streams: opening by mode and access, the failures of a real disk, and
// the texts that name them.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "TemporaryFolder.h"
#include "platform/DiskFile.h"

namespace
{
    using DiskFolder = testsupport::TemporaryFolder;

    std::vector<unsigned char> ReadAll(const std::string & name)
    {
        std::ifstream in(name, std::ios::binary);
        return std::vector<unsigned char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }

    bool Exists(const std::string & name)
    {
        struct stat status;
        return stat(name.c_str(), &status) == 0;
    }

    bool OwnerMayWrite(const std::string & name)
    {
        struct stat status;
        return stat(name.c_str(), &status) == 0 && (status.st_mode & S_IWUSR) != 0;
    }

    mode_t Permissions(const std::string & name)
    {
        struct stat status;
        return stat(name.c_str(), &status) == 0 ? (status.st_mode & 0777) : 0;
    }

    // The debug print channel sent to a file while the test runs.
    class DebugPrintCapture
    {
    public:
        explicit DebugPrintCapture(const DiskFolder & folder) : m_name(folder.File("debug.txt"))
        {
            zunSetDprintfFile(zunPath(m_name.c_str()));
        }
        ~DebugPrintCapture() { zunSetDprintfFile(zunPath()); }
        std::string Text() const
        {
            const auto bytes = ReadAll(m_name);
            return std::string(bytes.begin(), bytes.end());
        }

    private:
        std::string m_name;
    };

    // The file of `folder` whose leaf name `leafMatches` accepts and whose
    // content is `marker`; empty when there is none.
    std::string FindByContent(const std::string & folder, const std::function<bool(const std::string &)> & leafMatches,
                              const std::string & marker)
    {
        std::string found;
        if (DIR * dir = opendir(folder.c_str()))
        {
            while (dirent * entry = readdir(dir))
            {
                const std::string leaf = entry->d_name;
                if (!leafMatches(leaf))
                    continue;
                const auto bytes = ReadAll(folder + leaf);
                if (std::string(bytes.begin(), bytes.end()) == marker)
                    found = folder + leaf;
            }
            closedir(dir);
        }
        return found;
    }

    std::string DebugDescriptionOf(const std::function<void()> & work)
    {
        try
        {
            work();
        }
        catch (const zunException & e)
        {
            return e.GetDebugDescription();
        }
        return "(nothing thrown)";
    }
}

TEST(FileDisk, CreateAlwaysWritesAndReadsBack)
{
    DiskFolder folder;
    const std::string name = folder.File("doc.bin");
    {
        auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
        ASSERT_TRUE(file);
        EXPECT_EQ(file->GetCacheSize(), 65536u);
        file->Write_Int32(0x01020304);
        file->Write_String(zunString("abc"));
        file->Close();
    }
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{4, 3, 2, 1, 3, 0, 0, 0, 'a', 'b', 'c', 0}));
    EXPECT_TRUE(OwnerMayWrite(name));

    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file);
    int value = 0;
    zunString text;
    file->Read_Int32(value);
    file->Read_String(text);
    EXPECT_EQ(value, 0x01020304);
    EXPECT_STREQ(text, "abc");
    EXPECT_TRUE(file->IsEOF());
}

TEST(FileDisk, CreateAlwaysRaisesReadAccessToWriting)
{
    DiskFolder folder;
    const std::string name = folder.File("raised.bin");
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::CreateAlways);
    ASSERT_TRUE(file);
    file->Write_Int32(7);
    file->Close();
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{7, 0, 0, 0}));
}

TEST(FileDisk, TruncateExistingEmptiesAndWrites)
{
    DiskFolder folder;
    const std::string name = folder.File("t.bin");
    testsupport::WriteBytes(name, "0123456789");
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::TruncateExisting);
    ASSERT_TRUE(file);
    EXPECT_TRUE(file->IsEOF());
    file->Write_UInt8(9);
    file->Close();
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{9}));

    EXPECT_FALSE(zunFileDisk::Create(zunPath(folder.File("missing").c_str()), zunFileDisk::ReadWrite,
                                     zunFileDisk::TruncateExisting));
}

TEST(FileDisk, OpenExistingNeedsTheFileAndKeepsIt)
{
    DiskFolder folder;
    const std::string name = folder.File("kept.bin");
    EXPECT_FALSE(zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting));
    EXPECT_FALSE(Exists(name));

    testsupport::WriteBytes(name, "abcdef");
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file);
    file->SetCurrPos(2, zunFile::FromStart);
    file->Write_Char('X');
    file->Close();
    // The changed block goes back up to the end of the file and no further.
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{'a', 'b', 'X', 'd', 'e', 'f'}));
}

TEST(FileDisk, AnyOtherModeActsAsOpenExisting)
{
    DiskFolder folder;
    const std::string name = folder.File("other.bin");
    EXPECT_FALSE(
        zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, static_cast<zunFileDisk::OpenMode>(9)));
    EXPECT_FALSE(Exists(name));
    testsupport::WriteBytes(name, "x");
    EXPECT_TRUE(
        zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, static_cast<zunFileDisk::OpenMode>(9)));
}

TEST(FileDisk, OpenAlwaysCreatesOrKeeps)
{
    DiskFolder folder;
    const std::string name = folder.File("always.bin");
    {
        auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenAlways);
        ASSERT_TRUE(file);
        file->Write_Block("hello", 5);
    }
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenAlways);
    ASSERT_TRUE(file);
    char text[6] = {};
    EXPECT_EQ(file->Read_Block(text, 5), 5u);
    EXPECT_STREQ(text, "hello");
}

TEST(FileDisk, ReadAccessCreatesAReadOnlyFile)
{
    DiskFolder folder;
    const std::string name = folder.File("readonly.bin");
    ASSERT_TRUE(zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::CreateNew));
    EXPECT_TRUE(Exists(name));
    EXPECT_EQ(Permissions(name) & 0222u, 0u);
    // Any access number but ReadWrite opens for reading: this one creates a
    // read-only file too.
    const std::string other = folder.File("other.bin");
    ASSERT_TRUE(
        zunFileDisk::Create(zunPath(other.c_str()), static_cast<zunFileDisk::Access>(5), zunFileDisk::OpenAlways));
    EXPECT_EQ(Permissions(other) & 0222u, 0u);
}

TEST(FileDisk, OpeningForReadingClearsTheReadOnlyAttribute)
{
    DiskFolder folder;
    const std::string name = folder.File("locked.bin");
    testsupport::WriteBytes(name, "data");
    ASSERT_EQ(chmod(name.c_str(), 0444), 0);
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file);
    EXPECT_TRUE(OwnerMayWrite(name));
}

TEST(FileDisk, ReadOnlyFileOpenedForWritingIsMadeWriteable)
{
    DiskFolder folder;
    const std::string name = folder.File("locked.bin");
    testsupport::WriteBytes(name, "data");
    ASSERT_EQ(chmod(name.c_str(), 0444), 0);
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file);
    file->Write_Block("DA", 2);
    file->Close();
    EXPECT_TRUE(OwnerMayWrite(name));
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{'D', 'A', 't', 'a'}));
}

TEST(FileDisk, CreateNewOverAnExistingFileLogsFileExists)
{
    DiskFolder folder;
    const std::string name = folder.File("exists.bin");
    testsupport::WriteBytes(name, "keep me");
    DebugPrintCapture capture(folder);
    EXPECT_FALSE(zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateNew));
    EXPECT_NE(capture.Text().find("open failed with error 17 file exists"), std::string::npos) << capture.Text();
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{'k', 'e', 'e', 'p', ' ', 'm', 'e'}));
}

TEST(FileDisk, FolderThatIsGoneGivesNull)
{
    DiskFolder folder;
    const std::string gone = folder.File("gone");
    ASSERT_EQ(mkdir(gone.c_str(), 0777), 0);
    ASSERT_EQ(rmdir(gone.c_str()), 0);
    DebugPrintCapture capture(folder);
    EXPECT_FALSE(
        zunFileDisk::Create(zunPath((gone + "/doc.bin").c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways));
    EXPECT_NE(capture.Text().find("open failed with error 2 no such file or directory"), std::string::npos);
}

TEST(FileDisk, EmptyPathGivesNullSilently)
{
    DiskFolder folder;
    DebugPrintCapture capture(folder);
    EXPECT_FALSE(zunFileDisk::Create(zunPath(), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways));
    EXPECT_EQ(capture.Text().find("open failed"), std::string::npos);
}

TEST(FileDisk, FileOpenedFromAnUnlinkedFolderKeepsWorking)
{
    DiskFolder folder;
    const std::string sub = folder.File("sub");
    ASSERT_EQ(mkdir(sub.c_str(), 0777), 0);
    const std::string name = sub + "/doc.bin";
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
    ASSERT_TRUE(file);
    file->Write_Int32(1);
    ASSERT_EQ(unlink(name.c_str()), 0);
    ASSERT_EQ(rmdir(sub.c_str()), 0);
    // The descriptor outlives its name: writing and closing still succeed, and
    // a new stream for the same path finds nothing.
    file->Write_Int32(2);
    EXPECT_NO_THROW(file->Close());
    EXPECT_FALSE(zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting));
}

TEST(FileDisk, WritingThroughAReadStreamFailsAtTheFlush)
{
    DiskFolder folder;
    const std::string name = folder.File("ro.bin");
    testsupport::WriteBytes(name, "abcd");
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file);
    file->Write_Int32(5); // lands in the block
    EXPECT_EQ(DebugDescriptionOf([&] { file->Close(); }), "write failed with error 9 bad file descriptor");
    EXPECT_EQ(ReadAll(name), (std::vector<unsigned char>{'a', 'b', 'c', 'd'}));
}

TEST(FileDisk, FileTooLargeThrowsAndLosesNothingWritten)
{
    DiskFolder folder;
    const std::string name = folder.File("big.bin");
    auto file = zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
    ASSERT_TRUE(file);

    // The first block goes out whole; a limit below it makes the write fail.
    std::vector<unsigned char> data(65536 + 100);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned char>(i * 7);
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = saved;
    small.rlim_cur = 1000;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const std::string description = DebugDescriptionOf([&] { file->Write_Block(data.data(), data.size()); });
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_EQ(description, "write failed with error 27 file too large");

    // The block that failed stays in the cache, and Close writes it again.
    EXPECT_NO_THROW(file->Close());
    const auto stored = ReadAll(name);
    ASSERT_EQ(stored.size(), 65536u);
    EXPECT_TRUE(std::equal(stored.begin(), stored.end(), data.begin()));
}

TEST(FileDisk, TemporaryStreamLandsInTheTemporaryFolderUnderTheStem)
{
    const std::string temporary = static_cast<const char *>(zunPath::GetTemporaryPath().OSRepresentation8());
    auto file = zunFileDisk::Create(zunPath("/somewhere/else/report.tmp"), zunFileDisk::ReadWrite,
                                    zunFileDisk::CreateNew, zunFileDisk::Temporary);
    ASSERT_TRUE(file);
    const std::string marker = "temporary stream " + std::to_string(getpid());
    file->Write_CString(marker.c_str());
    file->Close();
    file.reset();

    // The file stays: find it by its content among report<digits>.tmp names.
    const std::string found = FindByContent(
        temporary,
        [](const std::string & leaf)
        {
            return leaf.size() > 10 && leaf.compare(0, 6, "report") == 0 &&
                   leaf.compare(leaf.size() - 4, 4, ".tmp") == 0 &&
                   leaf.find_first_not_of("0123456789", 6) == leaf.size() - 4;
        },
        marker);
    ASSERT_FALSE(found.empty());
    std::remove(found.c_str());
}

TEST(FileDisk, TemporaryStreamFromAnEmptyPathHasADigitName)
{
    const std::string temporary = static_cast<const char *>(zunPath::GetTemporaryPath().OSRepresentation8());
    auto file = zunFileDisk::Create(zunPath(), zunFileDisk::ReadWrite, zunFileDisk::CreateNew, zunFileDisk::Temporary);
    ASSERT_TRUE(file);
    const std::string marker = "empty stem " + std::to_string(getpid());
    file->Write_CString(marker.c_str());
    file->Close();

    const std::string found = FindByContent(
        temporary,
        [](const std::string & leaf)
        { return !leaf.empty() && leaf.find_first_not_of("0123456789") == std::string::npos; },
        marker);
    ASSERT_FALSE(found.empty());
    std::remove(found.c_str());
}

TEST(FileDisk, FileThatCannotSeekThrowsFromCreate)
{
    DiskFolder folder;
    const std::string name = folder.File("pipe");
    ASSERT_EQ(mkfifo(name.c_str(), 0666), 0);
    // Opened for reading and writing, a pipe opens at once, and the stream's
    // first question, its position, fails.
    EXPECT_EQ(DebugDescriptionOf(
                  [&]
                  { zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting); }),
              "GetFilePointer failed with error 29 invalid seek");
}

TEST(FileDisk, ReadingAFolderThrows)
{
    DiskFolder folder;
    auto file = zunFileDisk::Create(zunPath(folder.path.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    ASSERT_TRUE(file); // a descriptor of a folder opens for reading
    int value = 0;
    file->SetCacheSize(0);
    file->SetCurrPos(0, zunFile::FromStart);
    EXPECT_EQ(DebugDescriptionOf([&] { file->Read_Block(&value, 4); }), "read failed with error 21 is a directory");
}

TEST(FileDisk, ErrorTexts)
{
    using zunPlatform::ErrorText;
    EXPECT_STREQ(ErrorText(EPERM), "operation not permitted");
    EXPECT_STREQ(ErrorText(ENOENT), "no such file or directory");
    EXPECT_STREQ(ErrorText(EEXIST), "file exists");
    EXPECT_STREQ(ErrorText(EFBIG), "file too large");
    EXPECT_STREQ(ErrorText(ENOSPC), "no space on device");
    EXPECT_STREQ(ErrorText(ENAMETOOLONG), "filename too long");
    EXPECT_STREQ(ErrorText(EILSEQ), "illegal byte sequence");
    EXPECT_STREQ(ErrorText(EADDRINUSE), "address in use");
    EXPECT_STREQ(ErrorText(ELOOP), "too many synbolic link levels");
    EXPECT_STREQ(ErrorText(ETIME), "stream timeout");
    EXPECT_STREQ(ErrorText(ETXTBSY), "text file busy");
    // Codes that two names share here take the first name's text.
    EXPECT_STREQ(ErrorText(EWOULDBLOCK), "resource unavailable try again");
    EXPECT_STREQ(ErrorText(EOPNOTSUPP), "not supported");
    EXPECT_STREQ(ErrorText(0), "unknown");
    EXPECT_STREQ(ErrorText(-1), "unknown");
    EXPECT_STREQ(ErrorText(141), "unknown");
    EXPECT_STREQ(ErrorText(EHWPOISON), "unknown");
}
