// The debug log, filtered by the tag file in the home folder, and the release
// log, one file per process on the desktop.
#include "zunDebugLog.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "DebugLogPrivate.h"
#include "UTFPrivate.h"
#include "platform/Debugger.h"
#include "zunDebugPrint.h"
#include "zunException.h"
#include "zunString.h"
#include "zunStringList.h"
#include "zunSystem.h"

namespace
{
    struct DebugLogState
    {
        bool enabled = false; // the debug log switch
        zunPath tagsFile;
        zunStringListT<char> tags;
        std::uint64_t tagsTime = 0;
    };

    DebugLogState & DebugLog()
    {
        static DebugLogState state;
        return state;
    }

    zunPath & ReleaseLogFile()
    {
        static zunPath file;
        return file;
    }

    void ReadTagFile(DebugLogState & state)
    {
        if (!state.tagsFile.ExistsAs(zunPath::File))
            return;
        zunPath::Info info;
        state.tagsFile.GetInfo(info);
        if (info.lastWriteTime <= state.tagsTime)
            return;
        state.tagsTime = info.lastWriteTime;
        state.tags.Clear();
        const zunString osPath = state.tagsFile.OSRepresentation8();
        std::ifstream file(static_cast<const char *>(osPath));
        if (!file)
            zunFixMe("not readable %s", static_cast<const char *>(osPath));
        std::string line;
        while (std::getline(file, line))
        {
            // A text stream of the library's home platform reads CR LF as one line end.
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            for (char & c : line)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (line.size() <= 1 || line[0] == '#')
                continue;
            state.tags.Insert(zunString(line.c_str()), 0xFFFFFFFF);
        }
    }

    // The tag that lets a message pass, or the empty text. The tag is lowered
    // into one block and its pieces between commas are looked up where they
    // stand, cut off by a terminator in turn: the same pieces, in the same
    // order, as splitting the lowered tag into a list (empty ones dropped),
    // but a filtered-out message costs one block instead of five.
    zunString MatchTag(const zunStringListT<char> & tags, const char * tag)
    {
        if (tags.Find("all") != 0xFFFFFFFF)
            return zunString("all");
        char * lower = zunCharHelper<char>::ChangeStringCase(tag, true);
        if (lower == nullptr)
            return zunString::Empty; // no memory to lower the tag: nothing passes
        zunString passed;
        char * piece = lower;
        while (true)
        {
            char * end = std::strchr(piece, ',');
            const bool last = end == nullptr;
            if (!last)
                *end = 0;
            if (*piece != 0 && tags.Find(piece) != 0xFFFFFFFF)
            {
                passed = zunString(piece);
                break;
            }
            if (last)
                break;
            piece = end + 1;
        }
        void * block = lower;
        zunMemFree(block);
        return passed;
    }
}

namespace zunDebugLogPrivate
{
    void ResetForTests()
    {
        DebugLogState & state = DebugLog();
        state.enabled = false;
        state.tagsFile.Clear();
        state.tags.Clear();
        state.tagsTime = 0;
        ReleaseLogFile().Clear();
    }
}

void zunDebugLog(const char * tag, const char * format, ...)
{
    va_list args;
    va_start(args, format);
    zunDebugLogv(tag, format, args);
    va_end(args);
}

void zunDebugLogv(const char * tag, const char * format, va_list args)
{
    DebugLogState & state = DebugLog();
    if (state.enabled)
    {
        zunDvprintf(format, args);
        return;
    }
    if (state.tagsFile.IsEmpty())
    {
        state.tagsFile = zunSystem::GetUserHomeFolder();
        state.tagsFile += zunPath("zunDebugLogTags.txt");
        ReadTagFile(state);
    }
    const zunString passed = tag == nullptr ? zunString("all") : MatchTag(state.tags, tag);
    if (passed.IsEmpty())
        return;
    zunString message;
    message.VPrintf(format, args);
    zunStringW wide;
    wide = message;
    // The conversion fails only for want of memory, and then nothing is sent;
    // an empty message converts to the empty text and goes out as that.
    if (wide.IsEmpty() && !message.IsEmpty())
        return;
    zunPlatform::OutputDebugTextW(wide);
}

void zunEnableDebugLog(bool enable)
{
    DebugLog().enabled = enable;
}

void zunReleaseLog(const char * format, ...)
{
    va_list args;
    va_start(args, format);
    zunReleaseLogv(format, args);
    va_end(args);
}

void zunReleaseLogv(const char * format, va_list args)
{
    zunPath & file = ReleaseLogFile();
    if (file.IsEmpty())
    {
        zunString name = zunSystem::GetCurrentProcessPath().GetLastComponent(zunPath::WithExtension);
        zunString pid;
        pid.Printf("_%u.log", zunSystem::GetPid());
        name << pid;
        file = zunSystem::GetUserDesktopFolder();
        file += zunPath("OrreryLogs");
        file += zunPath(name);
    }
    file.CreateFolder(zunPath::Recursive, zunPath::PathIsFile);
    FILE * stream = file.Open("a+");
    // The release log needs a place it can write to; a file that does not open
    // loses the message.
    if (stream == nullptr)
        return;
    std::vfprintf(stream, format, args);
    std::fclose(stream);
}

void zunSetReleaseLogFile(const zunPath & path)
{
    ReleaseLogFile() = path;
}
