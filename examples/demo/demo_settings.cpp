// Demo section of the settings files: a file with comments opened through the
// manager, values read and changed, and the file before and after.
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "DemoSection.h"

namespace
{
    void PrintFile(const char * title, const std::string & file)
    {
        std::ifstream in(file, std::ios::binary);
        std::stringstream text;
        text << in.rdbuf();
        std::printf("%s\n%s", title, text.str().c_str());
    }
}

ZUN_DEMO_SECTION(150, "Settings files keep their comments")
{
    char folder[] = "/tmp/zun_demo_settings_XXXXXX";
    if (mkdtemp(folder) == nullptr)
        return;
    const std::string file = std::string(folder) + "/viewer.ini";
    std::ofstream(file) << "; Viewer settings, edited by hand too\n"
                           "[View] ; the main window\n"
                           "Width = 800\n"
                           "Title='My Scene' ; shown in the title bar\n"
                           "\n"
                           "# colors are 0..255\n"
                           "[Colors]\n"
                           "Background=\"32\"\n"
                           "[view]\n"
                           "Width=1024\n";
    PrintFile("before:", file);

    auto opened = zunSimpleSettingsManager::Get().OpenSettings(zunPath(file.c_str()));
    if (opened.second != zunSimpleSettingsManager::NoError)
        return;
    zunSimpleSettings & settings = *opened.first;
    zunSimpleSettings::SettingStatus status = zunSimpleSettings::Found;
    std::printf("\nView/Width %d (the repeated section's value), View/Title \"%s\"\n",
                settings.GetInt("view", "WIDTH", 0, nullptr),
                static_cast<const char *>(settings.GetString("View", "Title", "", nullptr)));
    settings.GetBool("View", "Fullscreen", false, &status);
    std::printf("View/Fullscreen: status %d (2 = no such key)\n", static_cast<int>(status));

    settings.SetInt("View", "Width", 1280);
    settings.SetString("View", "Title", "'Ship' ; shown in the title bar"); // quotes and text behind come with it
    settings.SetInt("Colors", "Background", 64);                            // keeps its quotes
    settings.SetDouble("Render", "Exposure", 0.5);
    settings.SetBool("Render", "Shadows", true);
    opened.first.reset(); // closing writes the file back
    PrintFile("\nafter (comments, order and quotes kept; the repeated header folded into the first):", file);

    std::remove(file.c_str());
    std::remove(folder);
}
