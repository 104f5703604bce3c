// Settings with comments: a hand-edited viewer configuration read, changed
// through typed values and written back, with every comment, blank line and
// quote the user wrote still in place.
//
// Build and run:   cmake --build build --target example_settings_with_comments
//                  build/examples/settings_with_comments
#include <zunFoundation.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

namespace
{
    const char * const kFileName = "viewer.ini";

    std::string ReadWhole(const char * name)
    {
        std::ifstream in(name, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }
}

int main()
{
    // What a user might have written by hand.
    std::ofstream(kFileName, std::ios::binary) << "; Viewer settings - edited by hand, keep the notes!\n"
                                                  "\n"
                                                  "[View]\n"
                                                  "# pixels\n"
                                                  "Width = 800\n"
                                                  "Title='Harbour scene'\n"
                                                  "\n"
                                                  "[Render]\n"
                                                  "Shadows=1\n";
    std::printf("before:\n%s\n", ReadWhole(kFileName).c_str());

    const zunPath path = zunPath::GetCurrentPath() + zunPath(kFileName);
    {
        // Unmanaged: the file is read now and the object goes at close; the
        // default keeps it for the next open of the same path in this process.
        auto opened = zunSimpleSettingsManager::Get().OpenSettings(path, zunSimpleSettingsManager::Unmanaged);
        if (opened.second != zunSimpleSettingsManager::NoError)
        {
            std::fprintf(stderr, "cannot open %s (error %d)\n", kFileName, static_cast<int>(opened.second));
            return 1;
        }
        zunSimpleSettings & settings = *opened.first;

        // Sections and keys match ignoring case; the status tells a missing
        // key from a value that does not parse.
        zunSimpleSettings::SettingStatus status = zunSimpleSettings::Found;
        const int width = settings.GetInt("view", "WIDTH", 640, &status);
        const bool shadows = settings.GetBool("Render", "Shadows", false);
        const double zoom = settings.GetDouble("View", "Zoom", 1.0, &status);
        std::printf("width %d, shadows %s, zoom %.2f (%s)\n\n", width, shadows ? "on" : "off", zoom,
                    status == zunSimpleSettings::NoKey ? "not set, the default" : "from the file");

        settings.SetInt("View", "Width", width * 2); // changes the line in place
        settings.SetDouble("View", "Zoom", 1.5);     // appended to its section
        settings.SetBool("Render", "Shadows", false);
        settings.SetString("Export", "Folder", "renders"); // a new section at the end
    }                                                      // letting the pointer go writes the file

    const std::string after = ReadWhole(kFileName);
    std::printf("after:\n%s", after.c_str());

    // The notes, the blank lines and the quotes are still there.
    const bool kept = after.find("; Viewer settings - edited by hand, keep the notes!\n\n[View]\n# pixels\n") == 0 &&
                      after.find("Title='Harbour scene'") != std::string::npos &&
                      after.find("Width=1600") != std::string::npos;
    path.Delete();
    return kept ? 0 : 1;
}
