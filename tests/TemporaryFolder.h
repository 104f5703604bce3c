// TemporaryFolder.h - files on disk for the tests that need a real file
// system: a private folder per test and whole-file reads and writes.
#ifndef ZUN_TEST_TEMPORARY_FOLDER_H
#define ZUN_TEST_TEMPORARY_FOLDER_H

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <unistd.h>

namespace testsupport
{
    /// A fresh folder under /tmp, removed at the end with everything in it,
    /// whatever permissions the test left on it.
    struct TemporaryFolder
    {
        std::string path;

        TemporaryFolder()
        {
            char pattern[] = "/tmp/zun_test_XXXXXX";
            if (mkdtemp(pattern) == nullptr)
                std::abort(); // no test can stand without its folder
            path = pattern;
        }
        ~TemporaryFolder()
        {
            const std::string command = "chmod -R u+rwx '" + path + "' 2>/dev/null; rm -rf '" + path + "'";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        TemporaryFolder(const TemporaryFolder &) = delete;
        TemporaryFolder & operator=(const TemporaryFolder &) = delete;

        /// The path of `leaf` inside the folder.
        std::string File(const std::string & leaf) const { return path + "/" + leaf; }
    };

    /// Writes `bytes` as they stand, replacing the file.
    inline void WriteBytes(const std::string & file, const std::string & bytes)
    {
        std::ofstream(file, std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    /// The bytes of a file; empty when it does not open.
    inline std::string ReadBytes(const std::string & file)
    {
        std::ifstream stream(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
}

#endif // ZUN_TEST_TEMPORARY_FOLDER_H
