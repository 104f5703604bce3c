// SettingsTestFiles.h - files on disk for the settings tests.
#ifndef ZUN_SETTINGS_TEST_FILES_H
#define ZUN_SETTINGS_TEST_FILES_H

#include "TemporaryFolder.h"

namespace settingsTest
{
    using testsupport::ReadBytes;
    using testsupport::TemporaryFolder;
    using testsupport::WriteBytes;

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
}

#endif // ZUN_SETTINGS_TEST_FILES_H
