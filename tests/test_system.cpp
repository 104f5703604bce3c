// Process and machine services: processes, libraries, user folders, the
// counted cursor hiding and the key table, without a display.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "SystemPrivate.h"
#include "platform/Debugger.h"
#include "platform/Display.h"
#include "platform/Processes.h"
#include "platform/UserFolders.h"
#include "zunFoundation.h"

using zunSystemPrivate::CursorAccess;
using zunSystemPrivate::CursorHiding;
using zunSystemPrivate::KeyboardAccess;
using zunSystemPrivate::KeyTable;

extern char ** environ;

namespace
{
    using Arguments = std::vector<std::string>;

    bool Contains(const zunFastMesh<unsigned int> & ids, unsigned int id)
    {
        for (unsigned int i = 0; i < ids.Count(); ++i)
            if (ids[i] == id)
                return true;
        return false;
    }

    // A child that has ended and is not reaped yet: its /proc entry stays, its
    // executable is gone. Reap it with waitpid.
    pid_t MakeZombie()
    {
        pid_t pid = 0;
        char program[] = "/bin/true";
        char * argv[] = {program, nullptr};
        if (posix_spawn(&pid, program, nullptr, nullptr, argv, environ) != 0)
            return -1;
        siginfo_t info;
        // WNOWAIT leaves the child a zombie.
        if (waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) != 0)
            return -1;
        return pid;
    }

    pid_t SpawnSleep()
    {
        pid_t pid = 0;
        char program[] = "/bin/sleep";
        char seconds[] = "30";
        char * argv[] = {program, seconds, nullptr};
        return posix_spawn(&pid, program, nullptr, nullptr, argv, environ) == 0 ? pid : -1;
    }

    // A fresh temporary folder, removed with its files at the end of a test.
    struct TemporaryFolder
    {
        std::string path;
        TemporaryFolder()
        {
            char pattern[] = "/tmp/zun_system_XXXXXX";
            path = mkdtemp(pattern);
        }
        ~TemporaryFolder() { std::system(("rm -rf '" + path + "'").c_str()); }
        void Write(const std::string & name, const std::string & text) const
        {
            std::system(("mkdir -p \"$(dirname '" + path + "/" + name + "')\"").c_str());
            std::ofstream(path + "/" + name, std::ios::binary) << text;
        }
    };

    std::string Folder(zunPlatform::UserFolder folder)
    {
        std::string path = "unchanged";
        EXPECT_TRUE(zunPlatform::GetUserFolder(folder, path));
        return path;
    }
}

// ---------------------------------------------------------------------------
// Command lines

TEST(CommandLine, ProgramNameRunsToTheFirstBlankOutsideQuotes)
{
    EXPECT_EQ(zunPlatform::SplitCommandLine("\"/usr/bin/my tool\" a"), (Arguments{"/usr/bin/my tool", "a"}));
    EXPECT_EQ(zunPlatform::SplitCommandLine("/bin/sleep\t5"), (Arguments{"/bin/sleep", "5"}));
    // No escapes in the program name: backslashes stay, quotes only group.
    EXPECT_EQ(zunPlatform::SplitCommandLine("\"C:\\dir\\\"x"), (Arguments{"C:\\dir\\x"}));
    EXPECT_EQ(zunPlatform::SplitCommandLine("a\"b c\"d e"), (Arguments{"ab cd", "e"}));
}

TEST(CommandLine, QuotedPathAloneIsOneArgument)
{
    EXPECT_EQ(zunPlatform::SplitCommandLine("\"/bin/true\""), (Arguments{"/bin/true"}));
    EXPECT_EQ(zunPlatform::SplitCommandLine("\"/bin/true\"   "), (Arguments{"/bin/true"}));
    EXPECT_EQ(zunPlatform::SplitCommandLine(""), (Arguments{""}));
    EXPECT_EQ(zunPlatform::SplitCommandLine(nullptr), Arguments{});
}

TEST(CommandLine, ArgumentsFollowTheRulesOfBackslashesAndQuotes)
{
    auto split = [](const char * arguments)
    {
        Arguments all = zunPlatform::SplitCommandLine((std::string("p ") + arguments).c_str());
        return Arguments(all.begin() + 1, all.end());
    };
    EXPECT_EQ(split("a  b\t\tc"), (Arguments{"a", "b", "c"}));
    EXPECT_EQ(split("\"a b\" c"), (Arguments{"a b", "c"}));
    EXPECT_EQ(split("a\\\\b"), (Arguments{"a\\\\b"}));          // backslashes before no quote
    EXPECT_EQ(split("a\\\"b"), (Arguments{"a\"b"}));            // 2n+1 before a quote
    EXPECT_EQ(split("a\\\\\"b c\""), (Arguments{"a\\b c"}));    // 2n before a quote
    EXPECT_EQ(split("a\\\\\\\"b"), (Arguments{"a\\\"b"}));      // three: one and a quote
    EXPECT_EQ(split("\"a\"\"b\" c"), (Arguments{"a\"b", "c"})); // "" inside a group
    EXPECT_EQ(split("\"\""), (Arguments{""}));                  // an empty argument
    EXPECT_EQ(split("\"unterminated group"), (Arguments{"unterminated group"}));
    EXPECT_EQ(split("ab\"c d\"e f"), (Arguments{"abc de", "f"}));
    EXPECT_EQ(split("\\\\server\\share"), (Arguments{"\\\\server\\share"}));
    EXPECT_EQ(split("x \"\xC3\xA9t\xC3\xA9\""), (Arguments{"x", "\xC3\xA9t\xC3\xA9"}));
}

// ---------------------------------------------------------------------------
// Processes

TEST(Processes, StartedChildIsListedFoundAndKilled)
{
    const unsigned int pid = zunPlatform::StartProcess("\"/bin/sleep\" 30");
    ASSERT_NE(pid, 0xFFFFFFFFu);
    EXPECT_TRUE(Contains(zunSystem::GetRunningProcesses(), pid));
    std::string path;
    EXPECT_EQ(zunPlatform::ProcessImagePath(pid, path), zunPlatform::ImageFound);
    char resolved[4096];
    ASSERT_NE(realpath("/bin/sleep", resolved), nullptr);
    EXPECT_EQ(path, resolved);

    EXPECT_TRUE(zunSystem::KillProcess(pid));
    int status = 0;
    ASSERT_EQ(waitpid(static_cast<pid_t>(pid), &status, 0), static_cast<pid_t>(pid));
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    EXPECT_FALSE(Contains(zunSystem::GetRunningProcesses(), pid));
    EXPECT_EQ(zunPlatform::ProcessImagePath(pid, path), zunPlatform::ImageNoProcess);
}

TEST(Processes, ChildGetsItsArgumentsSplit)
{
    TemporaryFolder folder;
    const std::string out = folder.path + "/args";
    const std::string command = R"("/bin/sh" -c "printf '%s|' \"$@\" > )" + out + R"(" sh "a b" c\"d)";
    const unsigned int pid = zunPlatform::StartProcess(command.c_str());
    ASSERT_NE(pid, 0xFFFFFFFFu);
    int status = 0;
    ASSERT_EQ(waitpid(static_cast<pid_t>(pid), &status, 0), static_cast<pid_t>(pid));
    std::ifstream file(out);
    std::string text;
    std::getline(file, text);
    EXPECT_EQ(text, "a b|c\"d|");
}

TEST(Processes, MissingProgramGivesAllOnesAndAnError)
{
    EXPECT_EQ(zunPlatform::StartProcess("\"/no/such/program\" x"), 0xFFFFFFFFu);
    EXPECT_FALSE(zunPlatform::LastErrorText().empty());
    EXPECT_EQ(zunPlatform::StartProcess("\"\""), 0xFFFFFFFFu);
}

TEST(Processes, OwnProcessIsListedAndItsPathIsThisProgram)
{
    EXPECT_EQ(zunSystem::GetPid(), static_cast<unsigned int>(getpid()));
    const zunFastMesh<unsigned int> running = zunSystem::GetRunningProcesses();
    EXPECT_TRUE(Contains(running, zunSystem::GetPid()));
    EXPECT_LE(running.Count(), 8192u);
    std::string path;
    EXPECT_EQ(zunPlatform::ProcessImagePath(zunSystem::GetPid(), path), zunPlatform::ImageFound);
    EXPECT_NE(path.find("test_system"), std::string::npos) << path;
}

TEST(Processes, ProcessThatCannotBeReadIsTold)
{
    std::string path = "kept";
    EXPECT_EQ(zunPlatform::ProcessImagePath(0x7FFFFFF0, path), zunPlatform::ImageNoProcess);
    EXPECT_EQ(zunPlatform::ProcessImagePath(0, path), zunPlatform::ImageNoProcess);
    EXPECT_EQ(path, "kept");
    // An ended child not yet reaped: the process is there, its image is not.
    const pid_t zombie = MakeZombie();
    ASSERT_GT(zombie, 0);
    EXPECT_EQ(zunPlatform::ProcessImagePath(static_cast<unsigned int>(zombie), path), zunPlatform::ImageQueryFailed);
    EXPECT_FALSE(zunPlatform::LastErrorText().empty());
    EXPECT_EQ(path, "kept");
    waitpid(zombie, nullptr, 0);
}

TEST(Processes, KillRefusesIdsOfNoSingleProcess)
{
    EXPECT_FALSE(zunSystem::KillProcess(0xFFFFFFFF));
    EXPECT_FALSE(zunSystem::KillProcess(0));          // would be our own process group
    EXPECT_FALSE(zunSystem::KillProcess(0x80000001)); // would be a process group
    EXPECT_FALSE(zunSystem::KillProcess(0x7FFFFFF0)); // no such process
}

TEST(Processes, KillOfAnotherChild)
{
    const pid_t child = SpawnSleep();
    ASSERT_GT(child, 0);
    EXPECT_TRUE(zunSystem::KillProcess(static_cast<unsigned int>(child)));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
}

// ---------------------------------------------------------------------------
// Libraries

TEST(Libraries, OpenLibmAndFindASymbol)
{
    void * libm = zunPlatform::OpenLibrary("libm.so.6");
    ASSERT_NE(libm, nullptr);
    auto cosine = reinterpret_cast<double (*)(double)>(zunPlatform::FindSymbol(libm, "cos"));
    ASSERT_NE(cosine, nullptr);
    EXPECT_EQ(cosine(0.0), 1.0);
    EXPECT_EQ(zunPlatform::FindSymbol(libm, "no_such_symbol_here"), nullptr);
    EXPECT_NE(zunPlatform::LastErrorText().find("no_such_symbol_here"), std::string::npos);
}

TEST(Libraries, MissingLibraryGivesNullAndItsText)
{
    EXPECT_EQ(zunPlatform::OpenLibrary("/no/such/libthing.so"), nullptr);
    EXPECT_NE(zunPlatform::LastErrorText().find("/no/such/libthing.so"), std::string::npos);
    EXPECT_EQ(zunPlatform::OpenLibrary(""), nullptr); // not the program itself
    EXPECT_EQ(zunPlatform::FindSymbol(nullptr, "cos"), nullptr);
    EXPECT_FALSE(zunPlatform::LastErrorText().empty());
}

// ---------------------------------------------------------------------------
// Machine

TEST(Machine, CpuCountIsTheProcessorsOnline)
{
    EXPECT_EQ(zunSystem::GetNumberOfCPUs(), static_cast<unsigned int>(sysconf(_SC_NPROCESSORS_ONLN)));
    EXPECT_GE(zunSystem::GetNumberOfCPUs(), 1u);
}

TEST(Machine, SleepWaitsAtLeastItsTime)
{
    timespec start, end;
    clock_gettime(CLOCK_MONOTONIC, &start);
    zunSystem::Sleep(30);
    clock_gettime(CLOCK_MONOTONIC, &end);
    const double elapsed =
        static_cast<double>(end.tv_sec - start.tv_sec) * 1e3 + static_cast<double>(end.tv_nsec - start.tv_nsec) / 1e6;
    EXPECT_GE(elapsed, 30.0);
    zunSystem::Sleep(0);
}

TEST(Machine, EndiannessIsLittle)
{
    EXPECT_EQ(zunSystem::GetEndianness(), zunSystem::Little);
    EXPECT_EQ(static_cast<int>(zunSystem::Little), 0);
    EXPECT_EQ(static_cast<int>(zunSystem::Big), 1);
}

// ---------------------------------------------------------------------------
// User folders

TEST(UserFolders, HomeIsThePasswordDatabaseEntry)
{
    zunPlatform::OverrideUserHome(nullptr);
    std::string home;
    ASSERT_TRUE(zunPlatform::GetUserFolder(zunPlatform::UserHome, home));
    struct stat info;
    EXPECT_EQ(stat(home.c_str(), &info), 0) << home;
    EXPECT_EQ(home[0], '/');
}

TEST(UserFolders, WithoutUserDirsFileDesktopAndDocumentsAreInHome)
{
    TemporaryFolder home;
    zunPlatform::OverrideUserHome((home.path + "/").c_str());
    EXPECT_EQ(Folder(zunPlatform::UserHome), home.path);
    EXPECT_EQ(Folder(zunPlatform::UserDesktop), home.path + "/Desktop");
    EXPECT_EQ(Folder(zunPlatform::UserDocuments), home.path + "/Documents");
    zunPlatform::OverrideUserHome(nullptr);
}

TEST(UserFolders, UserDirsFileNamesTheFolders)
{
    TemporaryFolder home;
    home.Write(".config/user-dirs.dirs", "# written by a tool\n"
                                         "XDG_DESKTOP_DIR=\"$HOME/Schreib tisch\"\n"
                                         "  XDG_DOCUMENTS_DIR=\"/data/Dok\\\"umente/\"\n"
                                         "XDG_DESKTOP_DIRX=\"$HOME/wrong\"\n"
                                         "XDG_MUSIC_DIR=\"$HOME/Music\"\n");
    zunPlatform::OverrideUserHome(home.path.c_str());
    EXPECT_EQ(Folder(zunPlatform::UserDesktop), home.path + "/Schreib tisch");
    EXPECT_EQ(Folder(zunPlatform::UserDocuments), "/data/Dok\"umente");
    zunPlatform::OverrideUserHome(nullptr);
}

TEST(UserFolders, UnusableLinesAreSkippedAndTheLastWins)
{
    TemporaryFolder home;
    home.Write(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=relative/path\n"
                                         "XDG_DESKTOP_DIR=\"$HOMEWORK/x\"\n"
                                         "XDG_DOCUMENTS_DIR=\"$HOME/first\"\n"
                                         "XDG_DOCUMENTS_DIR=\"$HOME\"\n"
                                         "XDG_DOCUMENTS_DIR=\"$HOME/unterminated\n");
    zunPlatform::OverrideUserHome(home.path.c_str());
    EXPECT_EQ(Folder(zunPlatform::UserDesktop), home.path + "/Desktop");
    EXPECT_EQ(Folder(zunPlatform::UserDocuments), home.path);
    zunPlatform::OverrideUserHome("/");
    EXPECT_EQ(Folder(zunPlatform::UserDesktop), "/Desktop");
    zunPlatform::OverrideUserHome("");
    std::string path = "x";
    EXPECT_FALSE(zunPlatform::GetUserFolder(zunPlatform::UserDesktop, path));
    EXPECT_EQ(path, "");
    zunPlatform::OverrideUserHome(nullptr);
}

// ---------------------------------------------------------------------------
// Cursor hiding

namespace
{
    struct FakeCursor : CursorAccess
    {
        bool readable = true;
        std::uintptr_t current = 11;
        std::vector<std::string> calls;
        bool GetCursor(std::uintptr_t & cursor, unsigned int & error) override
        {
            calls.emplace_back("get");
            if (!readable)
            {
                error = 5;
                return false;
            }
            cursor = current;
            return true;
        }
        void ShowCursor(bool show) override { calls.emplace_back(show ? "show" : "hide"); }
        void SetCursor(std::uintptr_t cursor) override { calls.push_back("set " + std::to_string(cursor)); }
    };
}

TEST(CursorHiding, RestoreWithNothingHiddenDoesNothing)
{
    FakeCursor cursor;
    CursorHiding hiding(cursor);
    hiding.Restore();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    EXPECT_TRUE(cursor.calls.empty());
}

TEST(CursorHiding, HidesNestAndTheFirstSavesTheCursor)
{
    FakeCursor cursor;
    CursorHiding hiding(cursor);
    hiding.Hide();
    cursor.current = 22;
    hiding.Hide();
    hiding.Restore();
    EXPECT_EQ(hiding.GetHideCount(), 1u);
    EXPECT_EQ(hiding.GetSavedCursor(), 11u);
    EXPECT_EQ(cursor.calls, (std::vector<std::string>{"get", "hide", "hide", "show"}));
    hiding.Restore();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    EXPECT_EQ(cursor.calls.back(), "set 11");
    hiding.Restore();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    EXPECT_EQ(cursor.calls.size(), 6u);
}

TEST(CursorHiding, UnreadableCursorStillHides)
{
    FakeCursor cursor;
    cursor.readable = false;
    CursorHiding hiding(cursor);
    hiding.Hide();
    EXPECT_EQ(hiding.GetHideCount(), 1u);
    EXPECT_EQ(hiding.GetSavedCursor(), 0u);
    hiding.Restore();
    EXPECT_EQ(cursor.calls, (std::vector<std::string>{"get", "hide", "show", "set 0"}));
}

TEST(CursorHiding, PublicCallsCountWithoutADisplay)
{
    zunPlatform::UseDisplay("");
    CursorHiding & hiding = zunSystemPrivate::SystemCursorHiding();
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    zunSystem::HideCursor();
    zunSystem::HideCursor();
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 1u);
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    zunSystem::WarpMouseCursor(10, 10);
    int x = 0, y = 0;
    EXPECT_FALSE(zunPlatform::GetCursorPosition(x, y));
}

// ---------------------------------------------------------------------------
// Key table

namespace
{
    struct FakeKeyboard : KeyboardAccess
    {
        std::uintptr_t layout = 0;
        unsigned int scans = 0;
        unsigned short scanOffset = 0;
        std::vector<unsigned int> asked;
        std::vector<unsigned int> down;
        unsigned short lowBitOnly = 0;
        std::uintptr_t Layout() override { return layout; }
        unsigned short ScanCharacter(zunWChar character, std::uintptr_t) override
        {
            ++scans;
            return static_cast<unsigned short>(0x0100 | ((character + scanOffset) & 0xFF));
        }
        unsigned short KeyState(unsigned int code) override
        {
            asked.push_back(code);
            if (code == lowBitOnly)
                return 1;
            return std::find(down.begin(), down.end(), code) != down.end() ? 0x8000 : 0;
        }
    };

    struct Row
    {
        unsigned int first, last;
        unsigned int code; // 255: by character
        unsigned int step; // code increment per row
    };
}

TEST(KeyTable, PristineRowsAreTheLibraryKeys)
{
    const Row rows[] = {
        {0, 0, 0, 0},        {1, 15, 255, 0},     {16, 25, 0x30, 1},   {26, 32, 255, 0},    {33, 58, 0x41, 1},
        {59, 69, 255, 0},    {70, 70, 0x0D, 0},   {71, 71, 0x09, 0},   {72, 72, 0x20, 0},   {73, 73, 0x2E, 0},
        {74, 74, 0x08, 0},   {75, 75, 0x1B, 0},   {76, 76, 0x5B, 0},   {77, 77, 0xA0, 0},   {78, 78, 0xA4, 0},
        {79, 79, 0xA2, 0},   {80, 80, 0x5C, 0},   {81, 81, 0xA1, 0},   {82, 82, 0xA5, 0},   {83, 83, 0xA3, 0},
        {84, 84, 0, 0},      {85, 85, 0x10, 0},   {86, 86, 0x12, 0},   {87, 87, 0x11, 0},   {88, 88, 0x14, 0},
        {89, 89, 0, 0},      {90, 90, 0xAF, 0},   {91, 91, 0xAE, 0},   {92, 92, 0xAD, 0},   {93, 112, 0x70, 1},
        {113, 113, 0x2D, 0}, {114, 114, 0x2F, 0}, {115, 115, 0x24, 0}, {116, 116, 0x21, 0}, {117, 117, 0x22, 0},
        {118, 118, 0x23, 0}, {119, 119, 0x25, 0}, {120, 120, 0x27, 0}, {121, 121, 0x28, 0}, {122, 122, 0x26, 0},
        {123, 123, 0x6E, 0}, {124, 124, 0x6A, 0}, {125, 125, 0x6B, 0}, {126, 126, 0x90, 0}, {127, 127, 0x6F, 0},
        {128, 128, 0, 0},    {129, 129, 0x6D, 0}, {130, 130, 0, 0},    {131, 140, 0x60, 1},
    };
    unsigned int next = 0;
    for (const Row & row : rows)
    {
        ASSERT_EQ(row.first, next);
        for (unsigned int key = row.first; key <= row.last; ++key)
            EXPECT_EQ(KeyTable::PristineRow(key).code, row.code + (key - row.first) * row.step) << "row " << key;
        next = row.last + 1;
    }
    EXPECT_EQ(next, KeyTable::RowCount);
    EXPECT_EQ(KeyTable::RowCount, 141u);

    const std::u16string characters = u"!\"#$%&'()*+,-./";
    for (unsigned int i = 0; i < characters.size(); ++i)
        EXPECT_EQ(KeyTable::PristineRow(1 + i).character, characters[i]);
    const std::u16string more = u":;<=>?@";
    for (unsigned int i = 0; i < more.size(); ++i)
        EXPECT_EQ(KeyTable::PristineRow(26 + i).character, more[i]);
    const std::u16string brackets = u"[\\]^_`{|}~\u00A7";
    for (unsigned int i = 0; i < brackets.size(); ++i)
        EXPECT_EQ(KeyTable::PristineRow(59 + i).character, brackets[i]);
    EXPECT_EQ(KeyTable::PristineRow(zunSystem::Key_Section).character, 0x00A7);
    EXPECT_EQ(zunSystem::Key_CapsLock, 88u);
    EXPECT_EQ(zunSystem::Key_KeypadSubtract, 129u);
    EXPECT_EQ(zunSystem::Key_Keypad9, 140u);
    EXPECT_EQ(zunSystem::Key_Windows, KeyTable::EitherWindowsKey);
}

TEST(KeyTable, WithoutAKeyboardTheTableStaysPristine)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    EXPECT_FALSE(table.IsPressed(zunSystem::Key_Comma));
    EXPECT_EQ(keyboard.scans, 0u);
    EXPECT_EQ(table.WorkingRow(zunSystem::Key_Comma).code, 255);
    EXPECT_EQ(keyboard.asked, (std::vector<unsigned int>{255}));
}

TEST(KeyTable, LayoutChangeRebuildsFromCharacters)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    keyboard.layout = 0x409;
    table.IsPressed(zunSystem::Key_A);
    // 33 rows go by their character; the shift state in the high byte is dropped.
    EXPECT_EQ(keyboard.scans, 33u);
    EXPECT_EQ(table.WorkingRow(zunSystem::Key_Comma).code, ',');
    EXPECT_EQ(table.WorkingRow(zunSystem::Key_Section).code, 0xA7);
    EXPECT_EQ(table.WorkingRow(zunSystem::Key_A).code, 0x41);
    for (unsigned int key = 0; key < KeyTable::RowCount; ++key)
    {
        if (KeyTable::PristineRow(key).code != 255)
        {
            EXPECT_EQ(table.WorkingRow(key).code, KeyTable::PristineRow(key).code);
        }
    }

    table.IsPressed(zunSystem::Key_A); // same layout: no rebuild
    EXPECT_EQ(keyboard.scans, 33u);

    keyboard.layout = 0x407;
    keyboard.scanOffset = 1;
    table.IsPressed(zunSystem::Key_A);
    EXPECT_EQ(keyboard.scans, 66u);
    EXPECT_EQ(table.WorkingRow(zunSystem::Key_Comma).code, ',' + 1);

    keyboard.layout = 0; // the keyboard went away: the table is rebuilt once more
    table.IsPressed(zunSystem::Key_A);
    EXPECT_EQ(keyboard.scans, 99u);
}

TEST(KeyTable, HighBitMeansDown)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    keyboard.down = {0x41};
    keyboard.lowBitOnly = 0x42;
    EXPECT_TRUE(table.IsPressed(zunSystem::Key_A));
    EXPECT_FALSE(table.IsPressed(zunSystem::Key_B)); // pressed since the last call, not now
    EXPECT_FALSE(table.IsPressed(zunSystem::Key_C));
}

TEST(KeyTable, KeyZeroAsksCodeZero)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    EXPECT_FALSE(table.IsPressed(zunSystem::Key_None));
    EXPECT_EQ(keyboard.asked, (std::vector<unsigned int>{0}));
}

TEST(KeyTable, EitherWindowsKeyAsksBoth)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    EXPECT_FALSE(table.IsPressed(zunSystem::Key_Windows));
    EXPECT_EQ(keyboard.asked, (std::vector<unsigned int>{0x5B, 0x5C}));
    keyboard.down = {0x5C};
    EXPECT_TRUE(table.IsPressed(zunSystem::Key_Windows));
    keyboard.down = {0x5B};
    keyboard.asked.clear();
    EXPECT_TRUE(table.IsPressed(zunSystem::Key_Windows));
    EXPECT_EQ(keyboard.asked, (std::vector<unsigned int>{0x5B}));
}

TEST(KeyTable, RowPastTheTableIsReleased)
{
    FakeKeyboard keyboard;
    KeyTable table(keyboard);
    keyboard.down = {0, 255};
    EXPECT_FALSE(table.IsPressed(KeyTable::RowCount));
    EXPECT_FALSE(table.IsPressed(0xFFFFFFFF));
    EXPECT_TRUE(keyboard.asked.empty());
}

TEST(KeyTable, PublicCallWithoutADisplayIsReleased)
{
    zunPlatform::UseDisplay("");
    for (zunSystem::Key key = 0; key <= KeyTable::RowCount; ++key)
        EXPECT_FALSE(zunSystem::IsKeyPressed_Async(key));
    EXPECT_EQ(zunSystemPrivate::SystemKeyTable().WorkingRow(zunSystem::Key_Comma).code, 255);
}

// ---------------------------------------------------------------------------
// The public services typed with paths and strings

namespace
{
    struct WideCapture : zunPlatform::DebuggerCapture
    {
        std::vector<std::u16string> wide;
        void Text(const char *) override {}
        void TextW(const zunWChar * text) override { wide.emplace_back(reinterpret_cast<const char16_t *>(text)); }
    };

    std::string Resolved(const char * path)
    {
        char resolved[4096];
        return realpath(path, resolved) != nullptr ? resolved : "";
    }
}

TEST(SystemServices, ChildIsStartedListedFoundAndKilled)
{
    const unsigned int pid = zunSystem::CreateProcess(zunPath("/bin/sleep"), zunString("30"));
    ASSERT_NE(pid, 0xFFFFFFFFu);
    EXPECT_TRUE(Contains(zunSystem::GetRunningProcesses(), pid));
    EXPECT_EQ(std::string(zunSystem::GetProcessPath(pid).OSRepresentation8()), Resolved("/bin/sleep"));
    EXPECT_TRUE(zunSystem::KillProcess(pid));
    int status = 0;
    ASSERT_EQ(waitpid(static_cast<pid_t>(pid), &status, 0), static_cast<pid_t>(pid));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
}

TEST(SystemServices, CommandLineIsTheQuotedPathAndTheArguments)
{
    const zunStringW alone = zunSystemPrivate::BuildCommandLine(zunPath("/bin/true"), zunString());
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t *>(static_cast<const zunWChar *>(alone))),
              u"\"/bin/true\"");
    const zunStringW both = zunSystemPrivate::BuildCommandLine(zunPath("/bin/echo"), zunString("a \xC3\xA9"));
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t *>(static_cast<const zunWChar *>(both))),
              u"\"/bin/echo\" a \u00E9");
}

TEST(SystemServices, MissingProgramGivesAllOnes)
{
    EXPECT_EQ(zunSystem::CreateProcess(zunPath("/no/such/program"), zunString()), 0xFFFFFFFFu);
    EXPECT_FALSE(zunSystem::DLError().IsEmpty());
}

TEST(SystemServices, ProcessThatCannotBeAskedGivesSpaces)
{
    const zunPath path = zunSystem::GetProcessPath(0x7FFFFFF0);
    const zunStringW & text = path.WinRepresentation();
    ASSERT_EQ(text.Length(), 4096u);
    for (unsigned int i = 0; i < text.Length(); ++i)
        ASSERT_EQ(text.GetAt(i), u' ');
}

TEST(SystemServices, UnreadableImageIsLogged)
{
    const pid_t zombie = MakeZombie();
    ASSERT_GT(zombie, 0);
    TemporaryFolder home;
    home.Write("zunDebugLogTags.txt", "system\n");
    zunPlatform::OverrideUserHome(home.path.c_str());
    WideCapture debugger;
    zunPlatform::SetDebuggerCapture(&debugger);
    const zunPath path = zunSystem::GetProcessPath(static_cast<unsigned int>(zombie));
    waitpid(zombie, nullptr, 0);
    zunPlatform::SetDebuggerCapture(nullptr);
    zunPlatform::OverrideUserHome(nullptr);
    EXPECT_EQ(path.WinRepresentation().Length(), 4096u);
    ASSERT_EQ(debugger.wide.size(), 1u);
    EXPECT_EQ(debugger.wide[0].rfind(u"QueryFullProcessImageName failed\n", 0), 0u);
    EXPECT_GT(debugger.wide[0].size(), 33u);
}

TEST(SystemServices, CurrentProcessPathIsThisProgram)
{
    EXPECT_EQ(std::string(zunSystem::GetCurrentProcessPath().OSRepresentation8()), Resolved("/proc/self/exe"));
}

TEST(SystemServices, LibrariesOpenAndTheirSymbolsAreFound)
{
    void * libm = zunSystem::DLOpen(zunPath("libm.so.6"));
    ASSERT_NE(libm, nullptr);
    EXPECT_NE(zunSystem::DLSymbol(libm, zunString("cos")), nullptr);
    EXPECT_EQ(zunSystem::DLSymbol(libm, zunString("no_such_symbol")), nullptr);
    EXPECT_FALSE(zunSystem::DLError().IsEmpty());

    Dl_info self;
    ASSERT_NE(dladdr(reinterpret_cast<void *>(&zunSystem::GetPid), &self), 0);
    void * library = zunSystem::DLOpen(zunPath(self.dli_fname));
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(zunSystem::DLSymbol(library, zunString("_ZN9zunSystem6GetPidEv")),
              reinterpret_cast<void *>(&zunSystem::GetPid));
}

TEST(SystemServices, MissingLibraryGivesNullAndAText)
{
    EXPECT_EQ(zunSystem::DLOpen(zunPath("/no/such/libthing.so")), nullptr);
    EXPECT_NE(std::string(zunSystem::DLError()).find("libthing"), std::string::npos);
    EXPECT_EQ(zunSystem::DLSymbol(nullptr, zunString("cos")), nullptr);
}

TEST(SystemServices, UserFoldersComeFromHome)
{
    TemporaryFolder home;
    home.Write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
    zunPlatform::OverrideUserHome(home.path.c_str());
    EXPECT_EQ(std::string(zunSystem::GetUserHomeFolder().OSRepresentation8()), home.path);
    EXPECT_EQ(std::string(zunSystem::GetUserDesktopFolder().OSRepresentation8()), home.path + "/Desktop");
    EXPECT_EQ(std::string(zunSystem::GetUserDocumentFolder().OSRepresentation8()), home.path + "/Papers");
    zunPlatform::OverrideUserHome("");
    EXPECT_TRUE(zunSystem::GetUserHomeFolder().IsEmpty());
    EXPECT_TRUE(zunSystem::GetUserDesktopFolder().IsEmpty());
    zunPlatform::OverrideUserHome(nullptr);
}

TEST(SystemServices, KillOfAllOnesAsksNothingOfTheSystem)
{
    ASSERT_EQ(zunSystem::DLOpen(zunPath("/no/such/libmarker.so")), nullptr);
    const std::string before(zunSystem::DLError());
    EXPECT_FALSE(zunSystem::KillProcess(0xFFFFFFFF));
    EXPECT_EQ(std::string(zunSystem::DLError()), before); // a refused system call would have replaced it
    EXPECT_FALSE(zunSystem::KillProcess(0));
    EXPECT_NE(std::string(zunSystem::DLError()), before);
}
