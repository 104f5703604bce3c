// Real storage faults under disk streams: a file size limit of the process
// (EFBIG), a full device (ENOSPC), a stream opened for reading and written,
// a file made read-only while a stream writes it, and a folder removed under
// an open stream. The failure reaches the caller as a zunException with the
// system's reason, and what went out before it is on disk as it was written.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "TemporaryFolder.h"
#include "Unprivileged.h"
#include "zunException.h"
#include "zunFileDisk.h"
#include "zunPath.h"

namespace
{
    std::vector<unsigned char> Pattern(std::size_t n)
    {
        std::vector<unsigned char> out(n);
        for (std::size_t i = 0; i < n; ++i)
            out[i] = static_cast<unsigned char>((i * 131 + 7) & 0xFF);
        return out;
    }

    std::vector<unsigned char> BytesOf(const std::string & file)
    {
        std::ifstream stream(file, std::ios::binary);
        return std::vector<unsigned char>(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }

    /// Writes `bytes` in pieces of 1000 and closes; the debug description of
    /// the failure, or the empty text if everything went out.
    std::string WriteAll(zunFile & file, const std::vector<unsigned char> & bytes)
    {
        try
        {
            for (std::size_t at = 0; at < bytes.size(); at += 1000)
                file.Write_Block(bytes.data() + at, std::min<std::size_t>(1000, bytes.size() - at));
            file.Close();
        }
        catch (const zunException & failure)
        {
            return failure.GetDebugDescription();
        }
        return std::string();
    }

    bool Contains(const std::string & text, const char * part)
    {
        return text.find(part) != std::string::npos;
    }
}

// The process may not make files above 100,000 bytes: the block that crosses
// the size fails with EFBIG ("file too large"), and the bytes below the limit
// are on disk as written. Run in a child, so that the limit and the ignored
// SIGXFSZ stay there.
TEST(DiskFaults, FileSizeLimitGivesFileTooLarge)
{
    testsupport::TemporaryFolder folder;
    const std::string name = folder.File("limited.bin");
    const std::vector<unsigned char> bytes = Pattern(300000);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100000, 100000};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            _exit(2);
        int status = 3;
        {
            std::unique_ptr<zunFile> file =
                zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
            if (file)
            {
                const std::string failure = WriteAll(*file, bytes);
                status = Contains(failure, "error 27 file too large") ? 0 : 4;
            }
        } // the stream's destructor silences its own failing flush
        _exit(status);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "the child ended by a signal";
    EXPECT_EQ(WEXITSTATUS(status), 0) << "2: no limit, 3: no stream, 4: no EFBIG failure";
    const std::vector<unsigned char> written = BytesOf(name);
    EXPECT_EQ(written.size(), 100000u);
    EXPECT_TRUE(std::equal(written.begin(), written.end(), bytes.begin()));
}

// A device that is always full: the first block that goes out fails with
// ENOSPC ("no space on device"), at the latest at Close.
TEST(DiskFaults, FullDeviceGivesNoSpace)
{
    ASSERT_EQ(access("/dev/full", W_OK), 0);
    std::unique_ptr<zunFile> file =
        zunFileDisk::Create(zunPath("/dev/full"), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(Contains(WriteAll(*file, Pattern(70000)), "error 28 no space on device"));
}

// A stream opened for reading refuses the writes that reach the file.
TEST(DiskFaults, WritingAStreamOpenedForReading)
{
    testsupport::TemporaryFolder folder;
    const std::string name = folder.File("read.bin");
    std::ofstream(name, std::ios::binary) << "contents";
    std::unique_ptr<zunFile> file =
        zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::Read, zunFileDisk::OpenExisting);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(Contains(WriteAll(*file, Pattern(70000)), "error 9 bad file descriptor"));
    file.reset();
    const std::vector<unsigned char> kept = BytesOf(name);
    EXPECT_EQ(std::string(kept.begin(), kept.end()), "contents");
}

// A file made read-only while a stream writes it: the open descriptor keeps
// the rights it was opened with, so every byte still goes out; a stream
// opened afterwards for writing is refused.
TEST(DiskFaults, FileMadeReadOnlyMidway)
{
    testsupport::TemporaryFolder folder;
    const std::string name = folder.File("midway.bin");
    const std::vector<unsigned char> bytes = Pattern(200000);
    std::unique_ptr<zunFile> file =
        zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
    ASSERT_NE(file, nullptr);
    const std::vector<unsigned char> first(bytes.begin(), bytes.begin() + 100000);
    const std::vector<unsigned char> second(bytes.begin() + 100000, bytes.end());
    for (std::size_t at = 0; at < first.size(); at += 1000)
        file->Write_Block(first.data() + at, 1000);
    ASSERT_EQ(chmod(name.c_str(), 0444), 0);
    EXPECT_EQ(WriteAll(*file, second), "");
    EXPECT_EQ(BytesOf(name), bytes);
    ASSERT_TRUE(testsupport::OpenToOthers(folder.path));
    EXPECT_TRUE(testsupport::AsUnprivilegedUser(
        [&] {
            return zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::OpenExisting) ==
                   nullptr;
        }));
}

// The folder of an open stream removed: the file lives on until the stream
// closes, writing goes on without failure, and the name is gone.
TEST(DiskFaults, FolderRemovedUnderAnOpenStream)
{
    testsupport::TemporaryFolder folder;
    const std::string inner = folder.path + "/inner";
    ASSERT_EQ(mkdir(inner.c_str(), 0700), 0);
    const std::string name = inner + "/doomed.bin";
    std::unique_ptr<zunFile> file =
        zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
    ASSERT_NE(file, nullptr);
    const std::vector<unsigned char> bytes = Pattern(150000);
    file->Write_Block(bytes.data(), 70000);
    ASSERT_EQ(std::system(("rm -rf '" + inner + "'").c_str()), 0);
    std::vector<unsigned char> rest(bytes.begin() + 70000, bytes.end());
    EXPECT_EQ(WriteAll(*file, rest), "");
    EXPECT_NE(access(name.c_str(), F_OK), 0);
    EXPECT_EQ(zunFileDisk::Create(zunPath(name.c_str()), zunFileDisk::ReadWrite, zunFileDisk::CreateAlways), nullptr);
}
