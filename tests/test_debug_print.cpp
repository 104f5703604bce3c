// The debug print channel: its three targets, the banner byte for byte, the
// file opened and closed per message, the nested report of a file that will
// not open, the fix-me handler slot and the exception report.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdarg>
#include <regex>
#include <string>
#include <vector>

#include <zunFoundation.h>

#include "ChannelCapture.h"
#include "DebugPrintTesting.h"
#include "platform/Debugger.h"

namespace
{
    // Collects what the channel hands to the debugger.
    struct DebuggerText : zunPlatform::DebuggerCapture
    {
        DebuggerText()
        {
            zunPlatform::SetDebuggerCapture(this);
            zunPlatform::ForceDebuggerPresent(1);
        }
        ~DebuggerText() override
        {
            zunPlatform::ForceDebuggerPresent(-1);
            zunPlatform::SetDebuggerCapture(nullptr);
        }
        void Text(const char * text) override { texts.emplace_back(text); }
        void TextW(const zunWChar *) override { ++wideTexts; }

        std::vector<std::string> texts;
        int wideTexts = 0;
    };

    int PrintThroughList(const char * format, ...)
    {
        va_list args;
        va_start(args, format);
        const int written = zunDvprintf(format, args);
        va_end(args);
        return written;
    }

    const std::string kStars = "**************************************\n";
}

TEST(DebugPrint, WithNoDebuggerAndNoFileNothingIsWritten)
{
    zunPlatform::ForceDebuggerPresent(0);
    zunDebugPrintTesting::RestartBanner();
    zunSetDprintfFile(zunPath());
    EXPECT_EQ(zunDprintf("lost %d\n", 1), 0);
    EXPECT_TRUE(zunDebugPrintTesting::IsBannerPending());
    zunPlatform::ForceDebuggerPresent(-1);
    // The banner comes with the first real write.
    ChannelCapture channel;
    EXPECT_EQ(zunDprintf("kept\n"), 5);
    EXPECT_FALSE(zunDebugPrintTesting::IsBannerPending());
    EXPECT_NE(channel.Raw(), "kept\n");
    EXPECT_EQ(channel.Text(), "kept\n");
}

TEST(DebugPrint, TheBannerByteForByte)
{
    ChannelCapture channel;
    zunDebugPrintTesting::RestartBanner();
    const int written = zunDprintf("first %s\n", "message");
    EXPECT_EQ(written, 14);
    const std::string rule = std::string(119, '=') + "\n";
    const std::string raw = channel.Raw();
    const std::string head = "\n\n\n\n" + rule + rule + "\n";
    ASSERT_EQ(raw.compare(0, head.size(), head), 0) << raw;
    const std::string::size_type dateEnd = raw.find('\n', head.size());
    ASSERT_NE(dateEnd, std::string::npos);
    const std::string date = raw.substr(head.size(), dateEnd + 1 - head.size());
    EXPECT_TRUE(std::regex_match(date, std::regex("[A-Z][a-z]{2} [A-Z][a-z]{2} [ 123][0-9] "
                                                  "[0-2][0-9]:[0-5][0-9]:[0-6][0-9] [0-9]{4}\n")))
        << date;
    EXPECT_EQ(raw.substr(dateEnd + 1), "\n" + rule + rule + "first message\n");
}

TEST(DebugPrint, TheBannerComesOncePerProcess)
{
    zunDebugPrintTesting::RestartBanner();
    ChannelCapture first;
    zunDprintf("one\n");
    ChannelCapture second; // the second file set after the first
    zunDprintf("two\n");
    EXPECT_EQ(first.Text(), "one\n");
    EXPECT_NE(first.Raw(), "one\n");
    EXPECT_EQ(second.Raw(), "two\n");
}

TEST(DebugPrint, TheFileIsWholeAfterEachMessage)
{
    ChannelCapture channel;
    zunDprintf("a=%d\n", 1);
    EXPECT_EQ(channel.Text(), "a=1\n");
    EXPECT_EQ(PrintThroughList("b=%s\n", "two"), 6);
    EXPECT_EQ(channel.Text(), "a=1\nb=two\n");
    // Closed after each message: a file removed in between is made anew.
    unlink(channel.FileName().c_str());
    zunDprintf("c\n");
    EXPECT_EQ(channel.Raw(), "c\n");
}

TEST(DebugPrint, NothingIsAddedToAMessage)
{
    ChannelCapture channel;
    zunDprintf("no line end");
    zunDprintf("%s", "");
    zunDprintf(" and more\n");
    EXPECT_EQ(channel.Text(), "no line end and more\n");
}

TEST(DebugPrint, ANullFormatWritesNothing)
{
    ChannelCapture channel;
    zunDprintf("x");
    va_list none{};
    EXPECT_EQ(zunDvprintf(nullptr, none), 0);
    EXPECT_EQ(channel.Text(), "x");
}

TEST(DebugPrint, WithADebuggerTheFileIsNotTouched)
{
    ChannelCapture channel;
    {
        DebuggerText debugger;
        EXPECT_EQ(zunDprintf("to the debugger %d\n", 7), 0);
        EXPECT_EQ(zunDprintf("%s", ""), 0);
        EXPECT_EQ(debugger.texts, (std::vector<std::string>{"to the debugger 7\n", ""}));
        EXPECT_EQ(debugger.wideTexts, 0);
    }
    EXPECT_EQ(channel.Raw(), "");
}

TEST(DebugPrint, AFileThatWillNotOpenNeitherDeadlocksNorThrows)
{
    // Opening the channel's file fails, and zunPath::Open reports that
    // through the channel from inside the call that holds its lock. The inner
    // report is dropped, the outer call returns 0 normally, and the channel
    // works afterwards.
    zunPlatform::ForceDebuggerPresent(0);
    zunSetDprintfFile(zunPath("/nonexistent-folder/for/the/channel.txt"));
    int written = -1;
    EXPECT_NO_THROW(written = zunDprintf("lost\n"));
    EXPECT_EQ(written, 0);
    EXPECT_NO_THROW(written = zunDprintf("lost again\n"));
    EXPECT_EQ(written, 0);
    zunPlatform::ForceDebuggerPresent(-1);
    ChannelCapture channel;
    EXPECT_EQ(zunDprintf("back\n"), 5);
    EXPECT_EQ(channel.Text(), "back\n");
}

TEST(DebugPrint, ADefaultExceptionDumpsWithEmptyTextsAndNullPointers)
{
    ChannelCapture channel;
    const zunException e;
    EXPECT_EQ(e.GetFunction(), nullptr);
    EXPECT_EQ(e.GetFileAndLine(), nullptr);
    e.Dump();
    EXPECT_EQ(channel.Text(), kStars + kStars + "           zunException dump\n" + kStars + kStars +
                                  "\nDescription:\n\n\nlocation: (null) @ (null)\n\nDebug Information:\n\n\n\n");
}

TEST(DebugPrint, AnExceptionDumpsItsTexts)
{
    ChannelCapture channel;
    zunException e("src/File.cpp:12", "void __cdecl zunTest::Run(void) throw(struct zunException)");
    e.SetDescription("for %s", "users");
    e.SetDebugDescription("for %s", "developers");
    e.Dump();
    EXPECT_EQ(channel.Text(), kStars + kStars + "           zunException dump\n" + kStars + kStars +
                                  "\nDescription:\nfor users\n\n"
                                  "location: void __cdecl zunTest::Run(void) throw(struct zunException) @ "
                                  "src/File.cpp:12\n\n"
                                  "Debug Information:\nfor developers\n\n\n");
}

TEST(DebugPrint, AnExceptionDumpIsOneMessagePerLine)
{
    DebuggerText debugger;
    zunException().Dump();
    EXPECT_EQ(debugger.texts.size(), 11u);
    EXPECT_EQ(debugger.texts[2], "           zunException dump\n");
    EXPECT_EQ(debugger.texts[8], "location: (null) @ (null)\n\n");
}

TEST(DebugPrint, AFixMeHandlerIsKeptButNeverCalledByTheLibrary)
{
    std::vector<std::string> seen;
    EXPECT_NO_THROW(zunSetFixMeHandler([&](const char * text) { seen.emplace_back(text); }));
    zunFixMe("You can not append an absolute path");
    zunPath relative("a");
    relative += zunPath("/absolute"); // a library site of that report
    EXPECT_TRUE(seen.empty());
    // The slot holds it: a developer's hook reaches it.
    EXPECT_TRUE(zunDebugPrintTesting::CallFixMeHandler("hooked"));
    EXPECT_EQ(seen, std::vector<std::string>{"hooked"});
    zunSetFixMeHandler(nullptr);
}

TEST(DebugPrint, AnEmptyHandlerInstallsTheDefaultThatPrintsALine)
{
    ChannelCapture channel;
    EXPECT_NO_THROW(zunSetFixMeHandler(std::function<void(const char *)>()));
    zunFixMe("invalid value");
    EXPECT_EQ(channel.Text(), "");
    EXPECT_TRUE(zunDebugPrintTesting::CallFixMeHandler("invalid value"));
    EXPECT_EQ(channel.Text(), "invalid value\n");
}
