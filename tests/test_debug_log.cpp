// The debug log and the release log: the tag file and its rules, the UTF-16
// debugger text, the switch to the debug print channel, and the release log
// files, byte for byte, in a home folder of the test's own.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "DebugLogPrivate.h"
#include "MemTesting.h"
#include "platform/Debugger.h"
#include "platform/UserFolders.h"
#include "zunFoundation.h"

namespace
{
    std::string ReadAll(const std::string & path)
    {
        std::ifstream file(path, std::ios::binary);
        std::stringstream text;
        text << file.rdbuf();
        return text.str();
    }

    bool Exists(const std::string & path)
    {
        struct stat info;
        return stat(path.c_str(), &info) == 0;
    }

    struct Capture : zunPlatform::DebuggerCapture
    {
        std::vector<std::u16string> wide;
        std::vector<std::string> narrow;
        void Text(const char * text) override { narrow.emplace_back(text); }
        void TextW(const zunWChar * text) override { wide.emplace_back(reinterpret_cast<const char16_t *>(text)); }
    };

    class LogTest : public ::testing::Test
    {
    protected:
        void SetUp() override
        {
            char pattern[] = "/tmp/zun_log_XXXXXX";
            ASSERT_NE(mkdtemp(pattern), nullptr);
            m_home = pattern;
            zunPlatform::OverrideUserHome(m_home.c_str());
            zunPlatform::ForceDebuggerPresent(0);
            zunPlatform::SetDebuggerCapture(&m_debugger);
            zunDebugLogPrivate::ResetForTests();
        }
        void TearDown() override
        {
            zunDebugLogPrivate::ResetForTests();
            zunPlatform::SetDebuggerCapture(nullptr);
            zunPlatform::ForceDebuggerPresent(-1);
            zunPlatform::OverrideUserHome(nullptr);
            std::system(("rm -rf '" + m_home + "'").c_str());
        }

        void WriteTags(const std::string & text)
        {
            std::ofstream(m_home + "/zunDebugLogTags.txt", std::ios::binary) << text;
        }

        // Whether a message with `tag` reaches the debugger.
        bool Passes(const char * tag)
        {
            const std::size_t before = m_debugger.wide.size();
            zunDebugLog(tag, "m\n");
            return m_debugger.wide.size() == before + 1;
        }

        std::string ReleaseLogPath() const
        {
            return m_home + "/Desktop/OrreryLogs/test_debug_log_" + std::to_string(getpid()) + ".log";
        }

        std::string m_home;
        Capture m_debugger;
    };
}

TEST_F(LogTest, NullTagAlwaysGoesOutAsUtf16)
{
    zunDebugLog(nullptr, "x=%d\n", 1);
    zunDebugLog(nullptr, "\xC3\xA9t\xC3\xA9 %s\n", "\xE2\x82\xAC");
    ASSERT_EQ(m_debugger.wide.size(), 2u);
    EXPECT_EQ(m_debugger.wide[0], u"x=1\n");
    EXPECT_EQ(m_debugger.wide[1], u"\u00E9t\u00E9 \u20AC\n");
    EXPECT_TRUE(m_debugger.narrow.empty());
}

TEST_F(LogTest, EmptyMessageGoesOutAsTheEmptyText)
{
    zunDebugLog(nullptr, "%s", "");
    ASSERT_EQ(m_debugger.wide.size(), 1u);
    EXPECT_EQ(m_debugger.wide[0], u"");
}

TEST_F(LogTest, InvalidUtf8IsReplacedNotDropped)
{
    zunDebugLog(nullptr, "a\xFF"
                         "b\n");
    ASSERT_EQ(m_debugger.wide.size(), 1u);
    EXPECT_EQ(m_debugger.wide[0], u"a\uFFFDb\n");
}

TEST_F(LogTest, WithoutTagFileOnlyNullTagsPass)
{
    EXPECT_FALSE(Passes("render"));
    EXPECT_FALSE(Passes("all"));
    EXPECT_TRUE(Passes(nullptr));
}

TEST_F(LogTest, TagFileRules)
{
    WriteTags("# comment\na\nRender\n");
    EXPECT_TRUE(Passes("render"));
    EXPECT_TRUE(Passes("RENDER"));
    EXPECT_TRUE(Passes("rEnDeR"));
    EXPECT_FALSE(Passes("a")); // a one-character line is no tag
    EXPECT_TRUE(Passes("x,render"));
    EXPECT_TRUE(Passes("render,x"));
    EXPECT_FALSE(Passes("x,y"));
    EXPECT_FALSE(Passes("# comment"));
    EXPECT_FALSE(Passes(""));
}

TEST_F(LogTest, EmptyPiecesOfATagAreSkipped)
{
    WriteTags("render\nio\n");
    EXPECT_TRUE(Passes(",,render"));
    EXPECT_TRUE(Passes("x,,IO,"));
    EXPECT_FALSE(Passes(",,,"));
    EXPECT_FALSE(Passes("x,render2,"));
    // A tag is not changed by the test: the caller's text stays as it was.
    char tag[] = "X,Render";
    EXPECT_TRUE(Passes(tag));
    EXPECT_STREQ(tag, "X,Render");
}

TEST_F(LogTest, TagThatCannotBeLoweredForWantOfMemoryLetsNothingPass)
{
    WriteTags("render\n");
    EXPECT_TRUE(Passes("render"));    // the tag file is read here, not below
    zunMemTesting::FailAllocation(1); // the block the tag is lowered into
    EXPECT_FALSE(Passes("render"));
    zunMemTesting::Reset();
    EXPECT_TRUE(Passes("render"));
}

TEST_F(LogTest, AllPassesEveryTag)
{
    WriteTags("ALL\n");
    EXPECT_TRUE(Passes("anything"));
    EXPECT_TRUE(Passes(""));
    EXPECT_TRUE(Passes("x,y"));
}

TEST_F(LogTest, SpacesArePartOfTheTag)
{
    WriteTags("render \n io\n");
    EXPECT_FALSE(Passes("render"));
    EXPECT_TRUE(Passes("render "));
    EXPECT_FALSE(Passes("io"));
    EXPECT_TRUE(Passes("x, io"));
}

TEST_F(LogTest, CarriageReturnsEndLines)
{
    WriteTags("render\r\n#x\r\nio\r\n");
    EXPECT_TRUE(Passes("render"));
    EXPECT_TRUE(Passes("io"));
}

TEST_F(LogTest, TagFileIsReadOnceAtTheFirstMessage)
{
    WriteTags("render\n");
    EXPECT_TRUE(Passes("render"));
    WriteTags("io\n");
    EXPECT_TRUE(Passes("render"));
    EXPECT_FALSE(Passes("io"));
}

TEST_F(LogTest, MissingTagFileIsNotAskedForAgain)
{
    EXPECT_FALSE(Passes("render"));
    WriteTags("render\n");
    EXPECT_FALSE(Passes("render"));
}

TEST_F(LogTest, TagFileThatIsAFolderGivesNoTags)
{
    ASSERT_EQ(mkdir((m_home + "/zunDebugLogTags.txt").c_str(), 0755), 0);
    EXPECT_FALSE(Passes("render"));
    EXPECT_TRUE(Passes(nullptr));
}

TEST_F(LogTest, SwitchSendsEverythingToTheDebugPrintChannel)
{
    WriteTags("render\n");
    const std::string printFile = m_home + "/print.txt";
    zunSetDprintfFile(zunPath(printFile.c_str()));
    zunEnableDebugLog(true);
    zunDebugLog("io", "x=%d\n", 1);
    zunDebugLog(nullptr, "y=%d\n", 2);
    EXPECT_TRUE(m_debugger.wide.empty());
    const std::string text = ReadAll(printFile);
    ASSERT_GE(text.size(), 8u);
    EXPECT_EQ(text.substr(text.size() - 8), "x=1\ny=2\n");
    zunEnableDebugLog(false);
    zunSetDprintfFile(zunPath());
    EXPECT_TRUE(Passes("render"));
}

TEST_F(LogTest, SwitchWithADebuggerGivesItTheBytesAsDebugPrintDoes)
{
    zunPlatform::ForceDebuggerPresent(1);
    zunEnableDebugLog(true);
    zunDebugLog("not listed", "x=%d\n", 1);
    zunEnableDebugLog(false);
    EXPECT_EQ(m_debugger.narrow, std::vector<std::string>{"x=1\n"});
    EXPECT_TRUE(m_debugger.wide.empty());
}

TEST_F(LogTest, SwitchLeavesTheTagFileUnread)
{
    zunEnableDebugLog(true);
    zunDebugLog("render", "m\n");
    zunEnableDebugLog(false);
    WriteTags("render\n");
    EXPECT_TRUE(Passes("render")); // read now, at the first message with the switch off
}

TEST_F(LogTest, ReleaseLogAppendsToOneFilePerProcess)
{
    zunReleaseLog("x=%d\n", 1);
    EXPECT_EQ(ReadAll(ReleaseLogPath()), "x=1\n");
    zunReleaseLog("%s", "no line end");
    zunReleaseLog("\xC3\xA9\n");
    EXPECT_EQ(ReadAll(ReleaseLogPath()), "x=1\nno line end\xC3\xA9\n");
}

TEST_F(LogTest, ReleaseLogFolderIsMadeAtEveryMessage)
{
    zunReleaseLog("one\n");
    std::system(("rm -rf '" + m_home + "/Desktop'").c_str());
    zunReleaseLog("two\n");
    EXPECT_EQ(ReadAll(ReleaseLogPath()), "two\n");
}

TEST_F(LogTest, GivenReleaseLogFileLeavesTheDesktopAlone)
{
    const std::string file = m_home + "/logs/deep/mine.log";
    zunSetReleaseLogFile(zunPath(file.c_str()));
    zunReleaseLog("x=%d\n", 1);
    EXPECT_EQ(ReadAll(file), "x=1\n");
    EXPECT_FALSE(Exists(m_home + "/Desktop"));
}

TEST_F(LogTest, ReleaseLogNameKeepsTheProgramExtension)
{
    const unsigned int pid = zunSystem::CreateProcess(zunPath(ZUN_RELEASE_LOG_CHILD), zunString(m_home.c_str()));
    ASSERT_NE(pid, 0xFFFFFFFFu);
    int status = 0;
    ASSERT_EQ(waitpid(static_cast<pid_t>(pid), &status, 0), static_cast<pid_t>(pid));
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(ReadAll(m_home + "/Desktop/OrreryLogs/release_log_child.exe_" + std::to_string(pid) + ".log"),
              "child 7\n");
}
