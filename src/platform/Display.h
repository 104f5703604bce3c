// Display.h - the mouse cursor, the pointer and the keyboard of the display.
//
// The X11 client library (libX11, and libXfixes for the cursor) is loaded with
// dlopen when the library first needs it, and the display named by the X
// library's own default is opened once. Without a display, or without the
// libraries, every call here does nothing and the queries fail or answer
// "not pressed".
//
// Keys are named by Windows virtual-key codes, mapped to X keysyms: letters and
// digits by their symbols, the punctuation codes of a US layout (0xBA to 0xC0,
// 0xDB to 0xDE, 0xE2) by the symbols of their unshifted keys, modifiers, editing,
// navigation, function and keypad keys and the volume keys by their X names. A
// key is down when any key code that carries one of the code's symbols is
// down in the server's keymap.
//
// One thread at a time: the display connection is not locked.
#ifndef ZUN_PLATFORM_DISPLAY_H
#define ZUN_PLATFORM_DISPLAY_H

#include <cstdint>

#include "zunConfig.h"

namespace zunPlatform
{
    /// The current cursor's identity (its XFixes serial). False without a
    /// display or without the XFixes extension, `error` then being an errno code.
    bool GetCursorHandle(std::uintptr_t & cursor, unsigned int & error);
    /// One more hide (false) or one less (true), counted by the X server.
    void ShowCursor(bool show);
    /// Restores a saved cursor. X keeps each window's cursor with the window, so
    /// there is nothing to restore: the shown cursor is the window's own again
    /// when the hides are undone.
    void SetCursor(std::uintptr_t cursor);
    /// Moves the pointer to (x, y) of the root window.
    void SetCursorPosition(int x, int y);
    /// The pointer's position on the root window; false without a display.
    /// Internal, exported for tests.
    ZUN_API bool GetCursorPosition(int & x, int & y);

    /// An identity of the keyboard mapping now in force (active group and key
    /// symbols); 0 without a display. Fetches the mapping that ScanCharacter
    /// and GetAsyncKeyState use.
    std::uintptr_t GetKeyboardLayout();
    /// The key that types `character` in the mapping last fetched: the shift
    /// state in the high byte (1 = Shift), the virtual-key code in the low byte.
    /// 0xFFFF when no key types it or its key has no virtual-key code.
    unsigned short ScanCharacter(zunWChar character, std::uintptr_t layout);
    /// 0x8000 set when the key of `virtualKey` is down now, else 0.
    unsigned short GetAsyncKeyState(unsigned int virtualKey);

    /// Internal, for tests: closes the display in use and opens the one named
    /// (":99"), true if it opened. An empty name leaves the process without a
    /// display; null returns to the default display, opened at the next call.
    /// Close before the server goes away: the X library ends the process when
    /// its connection breaks.
    ZUN_API bool UseDisplay(const char * name);
}

#endif // ZUN_PLATFORM_DISPLAY_H
