// zunException.h - the library's one exception type and its soft-failure hook.
//
// Hard failures (storage that will not read or write, a malformed chunk,
// exhausted memory in a file reader) are thrown as a zunException by value.
// Soft failures (a value out of range, an unsupported case) call zunFixMe with
// a fixed text and go on with a harmless default.
//
// A zunException is plain data: it never allocates, owns no heap memory, has no
// base and no virtual table, so it cannot fail while a failure is reported.
// Its location and signature are literals of the throw site that it only
// points at; its two texts live in fixed arrays inside the object.
//
//   try { chunk.Descend(file, fcc); }
//   catch (const zunException & e) {
//       log("%s in %s: %s", e.GetFileAndLine(), e.GetFunction(), e.GetDebugDescription());
//   }
#ifndef ZUN_EXCEPTION_H
#define ZUN_EXCEPTION_H

#include <cstdarg>

#include "zunConfig.h"

/// What the library throws: where it was thrown, by which function, and two
/// texts, one for developers and one for the user.
struct ZUN_API zunException
{
    /// Both pointers null, both texts empty.
    zunException();
    /// Keeps the two pointers (not copies of the text): a throw site passes literals.
    zunException(const char * fileAndLine, const char * function);
    /// Copies the pointers and at most 1023 bytes of each text, zero-filled behind
    /// the text; the last byte of each array is not taken from `other`.
    zunException(const zunException & other);
    ~zunException();
    /// Copies the whole object, the bytes behind the terminators included.
    /// The instance counter is left alone.
    zunException & operator=(const zunException & other);

    /// printf-style text for developers, at most 1023 characters. `format` must
    /// not be null.
    zunException & SetDebugDescription(const char * format, ...) ZUN_PRINTF_FORMAT(2, 3);
    /// printf-style text for the user, at most 1022 characters. A null `format`
    /// empties the description. The library's own throw sites never set it.
    zunException & SetDescription(const char * format, ...) ZUN_PRINTF_FORMAT(2, 3);
    /// The same with a started argument list. Pass a va_list variable of the
    /// caller's own (va_start or va_copy): a va_list function parameter has
    /// decayed to a pointer and would select the variadic form above.
    zunException & SetDescription(const char * format, va_list & args);

    /// Never null; valid as long as the object.
    const char * GetDescription() const { return m_szDescription; }
    /// Never null; valid as long as the object.
    const char * GetDebugDescription() const { return m_szDebugDescription; }
    /// "src/File.cpp:412" for every throw of the library; null when default-made.
    const char * GetFileAndLine() const { return m_pszFileAndLine; }
    /// The throwing function's signature; null when default-made.
    const char * GetFunction() const { return m_pszFunction; }

    /// Writes a report through the debug print channel (zunDebugPrint.h), one
    /// zunDprintf per line: two lines of 38 '*', "           zunException dump",
    /// two more lines of stars, an empty line, "Description:", the description
    /// and an empty line, "location: <function> @ <file and line>" and an empty
    /// line, "Debug Information:", the debug description and two empty lines.
    /// Null pointers print as the formatter's "(null)". No lock of its own:
    /// other threads' messages may fall between the lines.
    void Dump() const;

    /// True while any zunException object is alive in the process, in any thread
    /// (a caught one included). A best-effort answer by design: the counter is a
    /// plain integer without atomics.
    static bool IsAnyBeingHandled();

    const char * m_pszFileAndLine;   ///< see GetFileAndLine; not owned
    const char * m_pszFunction;      ///< see GetFunction; not owned
    char m_szDebugDescription[1024]; ///< terminated text for developers
    char m_szDescription[1024];      ///< terminated text for the user

private:
    static unsigned int ms_nExceptionInstances;
};

/// A report point for soft failures. It returns at once: it evaluates neither
/// the format nor the arguments, prints nothing and calls nothing, and a handler
/// set with zunSetFixMeHandler is not invoked by it. Callers must be correct
/// when it does nothing; it marks where a developer build hooks the report.
ZUN_API void zunFixMe(const char * format, ...);

#endif // ZUN_EXCEPTION_H
