// SettingsTestFiles.h - files on disk for the settings tests.
#ifndef ZUN_SETTINGS_TEST_FILES_H
#define ZUN_SETTINGS_TEST_FILES_H

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <unistd.h>

namespace settingsTest
{
    /// A fresh temporary folder, removed with everything in it at the end.
    struct TemporaryFolder
    {
        std::string path;
        TemporaryFolder()
        {
            char pattern[] = "/tmp/zun_settings_XXXXXX";
            path = mkdtemp(pattern);
        }
        ~TemporaryFolder()
        {
            const std::string command = "chmod -R u+rwx '" + path + "' && rm -rf '" + path + "'";
            if (std::system(command.c_str()) != 0)
                std::abort();
        }
        std::string File(const std::string & name) const { return path + "/" + name; }
    };

    /// Writes `bytes` as they stand.
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

#endif // ZUN_SETTINGS_TEST_FILES_H
