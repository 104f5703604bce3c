// zunDebugLog.h - the debug log and the release log.
//
// Two of the library's three text channels (the third is the debug print
// channel). Neither adds anything to a message: no level, no time, no line
// end; the caller writes its own "\n".
//
// The debug log passes a message only if its tag is listed in the tag file
// "zunDebugLogTags.txt" in the user's home folder, and sends it as UTF-16 to
// the debugger (standard error while a debugger is attached, else nowhere).
//
//   zunDebugLog("render", "frame %u took %.1f ms\n", frame, ms);
//   zunDebugLog("io,render", "...");   // passes if either tag is listed
//   zunDebugLog(nullptr, "...");       // always passes
//
// The tag file is read once, at the first debug log message of the process
// while the switch is off; a later change of the file, or a file made later,
// has no effect. One tag per line in any case (compared in lower case), "#" in
// the first column starts a comment, a line of one character (or none) is no
// tag, spaces are part of the tag, and the line "all" passes every tag. Lines
// end with LF or CR LF. A file that is missing or will not open gives no tags:
// then only messages with a null tag pass. zunEnableDebugLog(true) sends every
// message, tags ignored, to the debug print channel instead.
//
// The release log appends each message to "<program file name>_<pid>.log" in
// the folder "OrreryLogs" on the user's desktop (the executable's name with
// its extension: "app.exe_4242.log"), or to the file given to
// zunSetReleaseLogFile. The file's folder is made at every message, and the
// file is opened and closed for every message; one that will not open loses
// the message. Unlike the debug print channel it writes no banner.
//
// Nothing reports a failure. No channel here takes a lock: the tag list is
// filled at the first message without one, so let one thread write first.
#ifndef ZUN_DEBUG_LOG_H
#define ZUN_DEBUG_LOG_H

#include <cstdarg>

#include "zunConfig.h"
#include "zunPath.h"

/// zunDebugLogv with the arguments.
ZUN_API void zunDebugLog(const char * tag, const char * format, ...) ZUN_PRINTF_FORMAT(2, 3);
/// Writes `format` with `args` to the debug log when `tag` (a comma-separated
/// list, or null for "always") passes the tag file. A message that does not
/// pass is not formatted. The debugger gets the message in UTF-16 (invalid
/// UTF-8 replaced); an empty message goes out as the empty text.
ZUN_API void zunDebugLogv(const char * tag, const char * format, va_list args);
/// true: all debug log messages go to the debug print channel, tags ignored.
ZUN_API void zunEnableDebugLog(bool enable);

/// zunReleaseLogv with the arguments.
ZUN_API void zunReleaseLog(const char * format, ...) ZUN_PRINTF_FORMAT(1, 2);
/// Appends the message to the release log file.
ZUN_API void zunReleaseLogv(const char * format, va_list args);
/// Sets the release log file; before the first message, the desktop folder is
/// then never touched. The file's folder is made at every message all the same.
ZUN_API void zunSetReleaseLogFile(const zunPath & path);

#endif // ZUN_DEBUG_LOG_H
