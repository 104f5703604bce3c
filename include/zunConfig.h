// zunConfig.h - build-wide definitions every public header starts from.
//
// ZUN_API      marks the exported interface of libKelp_Foundation. The library
//              is built with hidden visibility, so whatever lacks it stays inside.
// zunWChar     the 16-bit unit of UTF-16 text: wchar_t where wchar_t is 16 bits
//              wide (Windows), char16_t elsewhere.
// ZUN_W("..")  a zunWChar string literal.
#ifndef ZUN_CONFIG_H
#define ZUN_CONFIG_H

#include <cstdint>
#include <cwchar>

/// \def ZUN_API
/// Marks a class or function as part of the exported interface; whatever
/// lacks it stays inside the library.
#if defined(_WIN32)
#if defined(ZUN_BUILDING_LIBRARY)
#define ZUN_API __declspec(dllexport)
#else
#define ZUN_API __declspec(dllimport)
#endif
#else
#define ZUN_API __attribute__((visibility("default")))
#endif

// Lets the compiler check printf-style arguments of members (the object is 1).
/// \def ZUN_PRINTF_FORMAT(formatIndex, firstArg)
/// Has the compiler check the printf-style arguments of a function: the
/// format is argument `formatIndex`, the values start at `firstArg` (counting
/// from 1, with the object as 1 in a member). Empty for other compilers.
#if defined(__GNUC__)
#define ZUN_PRINTF_FORMAT(formatIndex, firstArg) __attribute__((format(printf, formatIndex, firstArg)))
#else
#define ZUN_PRINTF_FORMAT(formatIndex, firstArg)
#endif

/// \typedef zunWChar
/// The 16-bit unit of UTF-16 text: wchar_t where wchar_t is 16 bits wide,
/// char16_t elsewhere.
/// \def ZUN_W_PREFIX_(text)
/// The literal prefix of zunWChar text, behind ZUN_W; write ZUN_W instead.
#if WCHAR_MAX == 0xFFFF || WCHAR_MAX == 0x7FFF
typedef wchar_t zunWChar;
#define ZUN_W_PREFIX_(text) L##text
#else
typedef char16_t zunWChar;
#define ZUN_W_PREFIX_(text) u##text
#endif

/// A zunWChar literal: ZUN_W("text") is u"text" on Linux, L"text" on Windows.
#define ZUN_W(text) ZUN_W_PREFIX_(text)

static_assert(sizeof(zunWChar) == 2, "zunWChar must be a 16-bit unit");

#endif // ZUN_CONFIG_H
