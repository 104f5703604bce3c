// ChannelCapture.h - points the debug print channel at a fresh file for one
// test, and reads back what reached it.
//
//   ChannelCapture channel;
//   zunDprintf("x=%d\n", 3);
//   EXPECT_EQ(channel.Text(), "x=3\n");
//
// The debugger test is forced to "none" meanwhile, so a test run under a
// debugger still writes to the file. The banner that the first message of a
// process brings is taken off by Text(); Raw() keeps it.
#ifndef ZUN_TESTS_CHANNEL_CAPTURE_H
#define ZUN_TESTS_CHANNEL_CAPTURE_H

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include <zunFoundation.h>

#include "platform/Debugger.h"

class ChannelCapture
{
public:
    ChannelCapture()
    {
        char name[] = "/tmp/zunChannelXXXXXX";
        const int file = mkstemp(name);
        if (file >= 0)
            close(file);
        unlink(name); // the channel makes the file with its first message
        m_fileName = name;
        zunPlatform::ForceDebuggerPresent(0);
        zunSetDprintfFile(zunPath(name));
    }
    ~ChannelCapture()
    {
        zunSetDprintfFile(zunPath());
        zunPlatform::ForceDebuggerPresent(-1);
        unlink(m_fileName.c_str());
    }
    ChannelCapture(const ChannelCapture &) = delete;
    ChannelCapture & operator=(const ChannelCapture &) = delete;

    /// The file's whole content; empty when nothing was written.
    std::string Raw() const
    {
        std::ifstream in(m_fileName, std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }

    /// The messages, without the banner if the file starts with one.
    std::string Text() const { return StripBanner(Raw()); }

    const std::string & FileName() const { return m_fileName; }

    /// The banner's lines of 119 '=' with a line end.
    static std::string Rule() { return std::string(119, '=') + "\n"; }

    /// `text` without a leading banner: four line ends, two rules, a line
    /// end, a date line, a line end, two rules.
    static std::string StripBanner(const std::string & text)
    {
        const std::string head = "\n\n\n\n" + Rule() + Rule() + "\n";
        if (text.compare(0, head.size(), head) != 0)
            return text;
        const std::string tail = "\n" + Rule() + Rule();
        const std::string::size_type end = text.find(tail, head.size());
        return end == std::string::npos ? text : text.substr(end + tail.size());
    }

private:
    std::string m_fileName;
};

#endif // ZUN_TESTS_CHANNEL_CAPTURE_H
