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

    /// The example file of the format, line by line what reading makes of
    /// it, and what writing it back gives.
    const char kWorkedExample[] = "; global note\n"
                                  "top=1\n"
                                  "[View] first\n"
                                  "Width = 800\n"
                                  " Height=600\n"
                                  "Title='My App' ; shown\n"
                                  "Path='C:\\x\n"
                                  "; note\n"
                                  "\n"
                                  "[view]\n"
                                  "Width=1024\n"
                                  "noequals\n";
    const char kWorkedExampleWritten[] = "; global note\n"
                                         "top=1\n"
                                         "[View] first\n"
                                         "Width=1024\n"
                                         "=600\n"
                                         "Title='My App' ; shown\n"
                                         "Path='C:\\x\n"
                                         "; note\n"
                                         "\n"
                                         "noequals\n";

    /// The bytes of a file; empty when it does not open.
    inline std::string ReadBytes(const std::string & file)
    {
        std::ifstream stream(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
}

#endif // ZUN_SETTINGS_TEST_FILES_H
