// The cursor, the pointer and the keys on a real X display: each test starts
// its own virtual server (Xvfb) on a free display and stops it at the end.
#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/keysym.h>
#include <dlfcn.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "SystemPrivate.h"
#include "platform/Display.h"
#include "zunFoundation.h"

extern char ** environ;

namespace
{
    using FakeKeyEvent = int (*)(Display *, unsigned int, Bool, unsigned long);

    class VirtualDisplay : public ::testing::Test
    {
    protected:
        void SetUp() override
        {
            int pipe[2];
            ASSERT_EQ(::pipe(pipe), 0);
            posix_spawn_file_actions_t actions;
            posix_spawn_file_actions_init(&actions);
            posix_spawn_file_actions_addclose(&actions, pipe[0]);
            const std::string fd = std::to_string(pipe[1]);
            const char * argv[] = {"Xvfb",       "-displayfd", fd.c_str(), "-screen", "0",
                                   "800x600x24", "-nolisten",  "tcp",      nullptr};
            const int spawned = posix_spawnp(&m_server, "Xvfb", &actions, nullptr, const_cast<char **>(argv), environ);
            posix_spawn_file_actions_destroy(&actions);
            close(pipe[1]);
            ASSERT_EQ(spawned, 0) << "Xvfb is missing (scripts/install-deps installs it)";
            // The server writes its display number once it accepts clients.
            std::string number;
            pollfd ready = {pipe[0], POLLIN, 0};
            char c;
            while (poll(&ready, 1, 20000) == 1 && read(pipe[0], &c, 1) == 1 && c != '\n')
                number += c;
            close(pipe[0]);
            ASSERT_FALSE(number.empty()) << "Xvfb did not start";
            m_name = ":" + number;
            m_display = XOpenDisplay(m_name.c_str());
            ASSERT_NE(m_display, nullptr);
            ASSERT_TRUE(zunPlatform::UseDisplay(m_name.c_str()));
            m_xtest = dlopen("libXtst.so.6", RTLD_NOW | RTLD_LOCAL);
            ASSERT_NE(m_xtest, nullptr);
            m_fakeKey = reinterpret_cast<FakeKeyEvent>(dlsym(m_xtest, "XTestFakeKeyEvent"));
            ASSERT_NE(m_fakeKey, nullptr);
        }

        void TearDown() override
        {
            // The X library ends a process whose connection breaks: close first.
            zunPlatform::UseDisplay("");
            if (m_display != nullptr)
                XCloseDisplay(m_display);
            if (m_xtest != nullptr)
                dlclose(m_xtest);
            if (m_server > 0)
            {
                kill(m_server, SIGTERM);
                waitpid(m_server, nullptr, 0);
            }
        }

        KeyCode CodeOf(KeySym symbol) { return XKeysymToKeycode(m_display, symbol); }

        void Press(KeySym symbol, bool down)
        {
            const KeyCode code = CodeOf(symbol);
            ASSERT_NE(code, 0);
            m_fakeKey(m_display, code, down ? True : False, 0);
            XSync(m_display, False);
        }

        pid_t m_server = 0;
        std::string m_name;
        Display * m_display = nullptr;
        void * m_xtest = nullptr;
        FakeKeyEvent m_fakeKey = nullptr;
    };

    unsigned int CodeOfRow(zunSystem::Key key)
    {
        return zunSystemPrivate::SystemKeyTable().WorkingRow(key).code;
    }
}

TEST_F(VirtualDisplay, WarpedPointerReadsBack)
{
    zunSystem::WarpMouseCursor(123, 45);
    int x = 0, y = 0;
    ASSERT_TRUE(zunPlatform::GetCursorPosition(x, y));
    EXPECT_EQ(x, 123);
    EXPECT_EQ(y, 45);

    Window root, child;
    int rootX = 0, rootY = 0, windowX, windowY;
    unsigned int buttons;
    XQueryPointer(m_display, DefaultRootWindow(m_display), &root, &child, &rootX, &rootY, &windowX, &windowY, &buttons);
    EXPECT_EQ(rootX, 123);
    EXPECT_EQ(rootY, 45);
}

TEST_F(VirtualDisplay, HidingCountsAndSavesTheCursor)
{
    zunSystemPrivate::CursorHiding & hiding = zunSystemPrivate::SystemCursorHiding();
    zunSystem::HideCursor();
    const std::uintptr_t saved = hiding.GetSavedCursor();
    EXPECT_NE(saved, 0u);
    zunSystem::HideCursor();
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 1u);
    EXPECT_EQ(hiding.GetSavedCursor(), saved);
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
    zunSystem::RestoreCursor();
    EXPECT_EQ(hiding.GetHideCount(), 0u);
}

TEST_F(VirtualDisplay, TableTakesTheCodesOfTheLayout)
{
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_A));
    // The US layout of the virtual server: punctuation on the keys of a US keyboard.
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Semicolon), 0xBAu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Colon), 0xBAu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_ExclamationMark), 0x31u);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Comma), 0xBCu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Minus), 0xBDu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_QuestionMark), 0xBFu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Tilde), 0xC0u);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_LeftBrace), 0xDBu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_QuotationMark), 0xDEu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Section), 0xFFu); // no key types it
    EXPECT_EQ(CodeOfRow(zunSystem::Key_A), 0x41u);
}

TEST_F(VirtualDisplay, PressedKeysReadAsDown)
{
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_A));
    Press(XK_a, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_A));
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_B));
    Press(XK_a, false);
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_A));

    Press(XK_Shift_L, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_LeftShift));
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Shift));
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_RightShift));
    Press(XK_Shift_L, false);

    Press(XK_Super_R, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Windows));
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_RightWindows));
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_LeftWindows));
    Press(XK_Super_R, false);
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Windows));

    Press(XK_semicolon, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Semicolon));
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Colon)); // the same key
    Press(XK_semicolon, false);

    Press(XK_F5, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_F5));
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_F6));
    Press(XK_F5, false);

    Press(XK_KP_1, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Keypad1));
    Press(XK_KP_1, false);

    Press(XK_Return, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Return));
    Press(XK_Return, false);
    EXPECT_FALSE(zunSystem::IsKeyPressed_Async(zunSystem::Key_None));
}

TEST_F(VirtualDisplay, ChangedLayoutRebuildsTheTable)
{
    zunSystem::IsKeyPressed_Async(zunSystem::Key_A);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Semicolon), 0xBAu);

    // The semicolon key now types an apostrophe and, shifted, the section sign.
    const KeyCode key = CodeOf(XK_semicolon);
    int perKeycode = 0;
    KeySym * old = XGetKeyboardMapping(m_display, key, 1, &perKeycode);
    ASSERT_NE(old, nullptr);
    KeySym changed[16] = {};
    ASSERT_LE(perKeycode, 16);
    changed[0] = XK_apostrophe;
    changed[1] = XK_section;
    XChangeKeyboardMapping(m_display, key, perKeycode, changed, 1);
    XSync(m_display, False);

    zunSystem::IsKeyPressed_Async(zunSystem::Key_A);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Section), 0xDEu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Semicolon), 0xFFu);
    Press(XK_apostrophe, true);
    EXPECT_TRUE(zunSystem::IsKeyPressed_Async(zunSystem::Key_Section));
    Press(XK_apostrophe, false);

    XChangeKeyboardMapping(m_display, key, perKeycode, old, 1);
    XSync(m_display, False);
    XFree(old);
    zunSystem::IsKeyPressed_Async(zunSystem::Key_A);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Semicolon), 0xBAu);
    EXPECT_EQ(CodeOfRow(zunSystem::Key_Section), 0xFFu);
}
