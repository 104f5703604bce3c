// zunDebugPrint.h - the debug print channel, where the library's own reports land.
//
// A message goes out exactly as the caller formatted it: no level, no time
// stamp, no prefix, no line end of its own. Its target:
//  - the debugger, while one is attached (on Linux: a tracer of the process,
//    which receives the text on standard error);
//  - else the file set with zunSetDprintfFile, opened in append mode and
//    closed again for every message, so the file is whole after each call and
//    several processes may append to it;
//  - else nowhere.
//
//   zunSetDprintfFile(zunPath::GetTemporaryPath() + zunPath("kelp_debug.txt"));
//   zunDprintf("loaded %u meshes\n", count);
//
// The first message a process writes to a file is preceded by a banner: four
// empty lines, two rules of 119 '=', an empty line, the local date and time as
// asctime gives them ("Mon Jan  5 09:30:00 2026\n"), an empty line and two
// rules. The banner comes once per process, with the first message actually
// written, however often the file is changed.
//
// Threads: one mutex serialises the channel, from the debugger test to the
// close of the file. zunSetDprintfFile takes no lock: do not call it while
// another thread prints.
//
// A failure to open the file is logged by zunPath::Open through this very
// channel, from inside the call that holds the lock. That inner message is
// dropped (the file it would go to is the one that would not open), and the
// outer call returns 0 without throwing: a report never aborts its reporter,
// not even from a destructor.
#ifndef ZUN_DEBUG_PRINT_H
#define ZUN_DEBUG_PRINT_H

#include <cstdarg>
#include <functional>

#include "zunConfig.h"

class zunPath;

/// zunDvprintf with the arguments.
ZUN_API int zunDprintf(const char * format, ...) ZUN_PRINTF_FORMAT(1, 2);
/// Writes a printf-formatted message to the channel. The result is what the
/// file write returned (the bytes written); 0 for the debugger, for no
/// target, and when the file will not open. A null format writes nothing.
ZUN_API int zunDvprintf(const char * format, va_list args);
/// The file of the channel when no debugger is attached; an empty path
/// switches the file off.
ZUN_API void zunSetDprintfFile(const zunPath & path);

/// Replaces the process's fix-me handler; an empty function installs the
/// default one, which prints the text and a line end through zunDprintf. The
/// handler is kept until it is replaced or the process ends, and zunFixMe
/// never calls it: the library's soft-failure reports stay silent.
ZUN_API void zunSetFixMeHandler(std::function<void(const char *)> handler);

#endif // ZUN_DEBUG_PRINT_H
