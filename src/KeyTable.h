// KeyTable.h - the table from the library's keys to the platform's key codes.
//
// Internal. A key is a row number, 0 to 140; each row holds a virtual-key code
// and a character. A code of 255 depends on the keyboard layout: when the
// layout changes the working copy is refilled from the constant pristine
// table and each such row gets the code of the key that types its character.
// The keyboard itself is reached through KeyboardAccess, so the logic runs
// (and is tested) without one.
#ifndef ZUN_KEY_TABLE_H
#define ZUN_KEY_TABLE_H

#include <cstdint>

#include "zunConfig.h"

namespace zunSystemPrivate
{
    struct KeyRow
    {
        unsigned char code; ///< virtual-key code; 255: from the character
        zunWChar character; ///< the character of the key, 0 for none
    };

    /// The keyboard as the table needs it.
    class KeyboardAccess
    {
    public:
        virtual ~KeyboardAccess() = default;
        /// An identity of the layout in force; 0 when there is no keyboard.
        virtual std::uintptr_t Layout() = 0;
        /// Shift state and code of the key typing `character` (low byte: code).
        virtual unsigned short ScanCharacter(zunWChar character, std::uintptr_t layout) = 0;
        /// Key state of `code`: the high bit is set while the key is down.
        virtual unsigned short KeyState(unsigned int code) = 0;
    };

    class ZUN_API KeyTable
    {
    public:
        static constexpr unsigned int RowCount = 141;
        /// Row 84, either Windows key: asks rows 76 and 80.
        static constexpr unsigned int EitherWindowsKey = 84;

        /// The working copy starts as the pristine table; no layout seen yet.
        explicit KeyTable(KeyboardAccess & keyboard);

        /// Rebuilds the working copy if the layout changed, then tells whether
        /// the key of row `key` is down now. A row past the table is false.
        bool IsPressed(unsigned int key);

        /// The constant table, for rows below RowCount.
        static const KeyRow & PristineRow(unsigned int key);
        /// The working copy, for rows below RowCount.
        const KeyRow & WorkingRow(unsigned int key) const { return m_rows[key]; }

    private:
        void Rebuild(std::uintptr_t layout);

        KeyboardAccess & m_keyboard;
        std::uintptr_t m_lastLayout;
        KeyRow m_rows[RowCount];
    };
}

#endif // ZUN_KEY_TABLE_H
