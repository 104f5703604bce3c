// zunSystem.h - processes, libraries, user folders, cursor and keyboard.
//
// Thin services over the operating system with the library's conventions for
// failure: 0xFFFFFFFF for a process id, null for a library or symbol, false
// for a kill, an empty path for a folder. Nothing here throws.
//
//   zunFastMesh<unsigned int> running = zunSystem::GetRunningProcesses();
//   if (zunSystem::IsKeyPressed_Async(zunSystem::Key_Escape)) ...
//   zunSystem::HideCursor();   ...   zunSystem::RestoreCursor();
//
// Threads. Nothing is locked. The key table, the cursor hiding and the folder
// queries belong to one thread at a time, the user-interface thread.
//
// On Linux. Processes are the kernel's (/proc); "killing" sends SIGKILL. The
// cursor, the pointer and the keys are those of the X display the X library
// opens by default, used when it is there; without one (or without libX11)
// the cursor and pointer calls do nothing and every key reads as released,
// while the hide count and the key table keep working.
#ifndef ZUN_SYSTEM_H
#define ZUN_SYSTEM_H

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunPath.h"
#include "zunString.h"

/// Thin services over the operating system: processes, libraries, user
/// folders, cursor and keyboard.
namespace zunSystem
{
    /// Byte order: Little = 0, Big = 1.
    enum Endianness
    {
        Little = 0,
        Big = 1
    };

    /// The byte order of the build: Little here, a constant.
    ZUN_API Endianness GetEndianness();

    /// A key of IsKeyPressed_Async: a row of the key table, 0 to 140.
    ///
    /// Each row holds a Windows virtual-key code. Rows of characters whose key
    /// depends on the keyboard layout (punctuation, the section sign) get the
    /// code of the key that types the character, worked out again whenever the
    /// layout changes; the others have fixed codes. On Linux a code stands for
    /// X key symbols: letters and digits their own (either case), Return, Tab,
    /// Space, Delete, Backspace, Escape, the navigation, function and keypad
    /// keys their X names, the left and right Windows keys Super_L and Super_R,
    /// Shift, Control and Alt their left and right symbols (right Alt also
    /// ISO_Level3_Shift, the AltGr key), the volume keys XF86AudioRaiseVolume,
    /// XF86AudioLowerVolume and XF86AudioMute, and the punctuation keys of a US
    /// layout their unshifted symbols. A key is pressed when a key carrying one
    /// of its symbols is down. A character typed by a key with none of these
    /// symbols gets no key, and reads as released.
    typedef unsigned int Key;

    /// The rows of the key table by name. Rows 89, 128 and 130 have no key.
    enum KeyName : unsigned int
    {
        Key_None = 0,
        Key_ExclamationMark = 1,
        Key_QuotationMark = 2,
        Key_NumberSign = 3,
        Key_Dollar = 4,
        Key_Percent = 5,
        Key_Ampersand = 6,
        Key_Apostrophe = 7,
        Key_LeftParenthesis = 8,
        Key_RightParenthesis = 9,
        Key_Asterisk = 10,
        Key_Plus = 11,
        Key_Comma = 12,
        Key_Minus = 13,
        Key_Period = 14,
        Key_Slash = 15,
        Key_0 = 16,
        Key_1 = 17,
        Key_2 = 18,
        Key_3 = 19,
        Key_4 = 20,
        Key_5 = 21,
        Key_6 = 22,
        Key_7 = 23,
        Key_8 = 24,
        Key_9 = 25,
        Key_Colon = 26,
        Key_Semicolon = 27,
        Key_Less = 28,
        Key_Equal = 29,
        Key_Greater = 30,
        Key_QuestionMark = 31,
        Key_At = 32,
        Key_A = 33,
        Key_B = 34,
        Key_C = 35,
        Key_D = 36,
        Key_E = 37,
        Key_F = 38,
        Key_G = 39,
        Key_H = 40,
        Key_I = 41,
        Key_J = 42,
        Key_K = 43,
        Key_L = 44,
        Key_M = 45,
        Key_N = 46,
        Key_O = 47,
        Key_P = 48,
        Key_Q = 49,
        Key_R = 50,
        Key_S = 51,
        Key_T = 52,
        Key_U = 53,
        Key_V = 54,
        Key_W = 55,
        Key_X = 56,
        Key_Y = 57,
        Key_Z = 58,
        Key_LeftBracket = 59,
        Key_Backslash = 60,
        Key_RightBracket = 61,
        Key_Circumflex = 62,
        Key_Underscore = 63,
        Key_Grave = 64,
        Key_LeftBrace = 65,
        Key_VerticalBar = 66,
        Key_RightBrace = 67,
        Key_Tilde = 68,
        Key_Section = 69,
        Key_Return = 70,
        Key_Tab = 71,
        Key_Space = 72,
        Key_Delete = 73,
        Key_Backspace = 74,
        Key_Escape = 75,
        Key_LeftWindows = 76,
        Key_LeftShift = 77,
        Key_LeftAlt = 78,
        Key_LeftControl = 79,
        Key_RightWindows = 80,
        Key_RightShift = 81,
        Key_RightAlt = 82,
        Key_RightControl = 83,
        Key_Windows = 84,
        Key_Shift = 85,
        Key_Alt = 86,
        Key_Control = 87,
        Key_CapsLock = 88,
        Key_VolumeUp = 90,
        Key_VolumeDown = 91,
        Key_Mute = 92,
        Key_F1 = 93,
        Key_F2 = 94,
        Key_F3 = 95,
        Key_F4 = 96,
        Key_F5 = 97,
        Key_F6 = 98,
        Key_F7 = 99,
        Key_F8 = 100,
        Key_F9 = 101,
        Key_F10 = 102,
        Key_F11 = 103,
        Key_F12 = 104,
        Key_F13 = 105,
        Key_F14 = 106,
        Key_F15 = 107,
        Key_F16 = 108,
        Key_F17 = 109,
        Key_F18 = 110,
        Key_F19 = 111,
        Key_F20 = 112,
        Key_Insert = 113,
        Key_Help = 114,
        Key_Home = 115,
        Key_PageUp = 116,
        Key_PageDown = 117,
        Key_End = 118,
        Key_Left = 119,
        Key_Right = 120,
        Key_Down = 121,
        Key_Up = 122,
        Key_KeypadDecimal = 123,
        Key_KeypadMultiply = 124,
        Key_KeypadAdd = 125,
        Key_NumLock = 126,
        Key_KeypadDivide = 127,
        Key_KeypadSubtract = 129,
        Key_Keypad0 = 131,
        Key_Keypad1 = 132,
        Key_Keypad2 = 133,
        Key_Keypad3 = 134,
        Key_Keypad4 = 135,
        Key_Keypad5 = 136,
        Key_Keypad6 = 137,
        Key_Keypad7 = 138,
        Key_Keypad8 = 139,
        Key_Keypad9 = 140,
    };

    /// Starts `program` with `arguments` (UTF-8) and returns its process id, or
    /// 0xFFFFFFFF. The command line is the program's path in double quotes,
    /// then a space and `arguments` unless they are empty; it is split into
    /// the child's arguments by the rules of a started program's runtime:
    /// blanks separate, double quotes group, 2n backslashes before a quote
    /// give n and the quote groups, 2n+1 give n and a literal quote. The child
    /// inherits the environment and the current folder; its exit status waits
    /// for the caller's waitpid.
    ZUN_API unsigned int CreateProcess(const zunPath & program, const zunString & arguments);
    /// Loads a dynamic library (dlopen, every symbol bound at once); null on
    /// failure. A name without a folder is searched as the system searches.
    ZUN_API void * DLOpen(const zunPath & library);
    /// The address of `name` in `library`; null on failure or a null library.
    ZUN_API void * DLSymbol(void * library, const zunString & name);
    /// The system's text for the last failure of this family in the calling
    /// thread (a library, a symbol, a process); empty if there was none.
    ZUN_API zunString DLError();

    /// GetProcessPath of this process.
    ZUN_API zunPath GetCurrentProcessPath();
    /// The path of the executable of process `pid`. A process that cannot be
    /// asked gives a path of 4,096 spaces, not an empty path; one that is there
    /// but whose executable cannot be read (a kernel thread) also logs the
    /// reason with the tag "system" of the debug log.
    ZUN_API zunPath GetProcessPath(unsigned int pid);
    /// This process's id.
    ZUN_API unsigned int GetPid();
    /// The ids of the running processes, at most 8,192 of them; empty on failure.
    ZUN_API zunFastMesh<unsigned int> GetRunningProcesses();
    /// Ends the process at once (SIGKILL). False for 0xFFFFFFFF (without asking
    /// the system), for ids that name no single process (0, above INT_MAX) and
    /// when the system refuses.
    ZUN_API bool KillProcess(unsigned int pid);
    /// The processors online.
    ZUN_API unsigned int GetNumberOfCPUs();

    /// The user's folders, without a trailing separator; an empty path when the
    /// user has none. Home is the password database's home folder; desktop
    /// and documents are XDG_DESKTOP_DIR and XDG_DOCUMENTS_DIR of the home
    /// folder's ".config/user-dirs.dirs", else its "Desktop" and "Documents".
    /// No environment variable is read; the folders need not exist.
    ///@{
    ZUN_API zunPath GetUserDesktopFolder();
    ZUN_API zunPath GetUserDocumentFolder();
    ZUN_API zunPath GetUserHomeFolder();
    ///@}

    /// Hides the mouse cursor. Hides nest: the first saves the current cursor,
    /// each one must be balanced by a RestoreCursor.
    ZUN_API void HideCursor();
    /// Undoes one HideCursor; the outermost one puts the saved cursor back. Does
    /// nothing (and reports it as a soft failure) when nothing is hidden.
    ZUN_API void RestoreCursor();
    /// Moves the mouse pointer to (x, y) in screen coordinates.
    ZUN_API void WarpMouseCursor(int x, int y);
    /// True while the key is down now. Key_Windows asks both Windows keys. The
    /// first call, and the first after a change of keyboard layout, rebuild the
    /// table. A key past the table reads as released.
    ZUN_API bool IsKeyPressed_Async(Key key);

    /// Suspends the calling thread for at least `milliseconds`.
    ZUN_API void Sleep(unsigned int milliseconds);
}

#endif // ZUN_SYSTEM_H
