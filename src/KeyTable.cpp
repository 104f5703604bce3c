// The key table and its rebuild from characters at each change of layout.
#include "KeyTable.h"

#include <cstring>

#include "zunException.h"

namespace zunSystemPrivate
{
    namespace
    {
        const unsigned char ByCharacter = 255;

        // clang-format off
        const KeyRow g_pristine[KeyTable::RowCount] = {
            {0, 0},
            // 1 to 15: ! " # $ % & ' ( ) * + , - . /
            {ByCharacter, u'!'}, {ByCharacter, u'"'}, {ByCharacter, u'#'}, {ByCharacter, u'$'},
            {ByCharacter, u'%'}, {ByCharacter, u'&'}, {ByCharacter, u'\''}, {ByCharacter, u'('},
            {ByCharacter, u')'}, {ByCharacter, u'*'}, {ByCharacter, u'+'}, {ByCharacter, u','},
            {ByCharacter, u'-'}, {ByCharacter, u'.'}, {ByCharacter, u'/'},
            // 16 to 25: digits
            {0x30, u'0'}, {0x31, u'1'}, {0x32, u'2'}, {0x33, u'3'}, {0x34, u'4'},
            {0x35, u'5'}, {0x36, u'6'}, {0x37, u'7'}, {0x38, u'8'}, {0x39, u'9'},
            // 26 to 32: : ; < = > ? @
            {ByCharacter, u':'}, {ByCharacter, u';'}, {ByCharacter, u'<'}, {ByCharacter, u'='},
            {ByCharacter, u'>'}, {ByCharacter, u'?'}, {ByCharacter, u'@'},
            // 33 to 58: letters
            {0x41, u'A'}, {0x42, u'B'}, {0x43, u'C'}, {0x44, u'D'}, {0x45, u'E'}, {0x46, u'F'},
            {0x47, u'G'}, {0x48, u'H'}, {0x49, u'I'}, {0x4A, u'J'}, {0x4B, u'K'}, {0x4C, u'L'},
            {0x4D, u'M'}, {0x4E, u'N'}, {0x4F, u'O'}, {0x50, u'P'}, {0x51, u'Q'}, {0x52, u'R'},
            {0x53, u'S'}, {0x54, u'T'}, {0x55, u'U'}, {0x56, u'V'}, {0x57, u'W'}, {0x58, u'X'},
            {0x59, u'Y'}, {0x5A, u'Z'},
            // 59 to 64: [ \ ] ^ _ `
            {ByCharacter, u'['}, {ByCharacter, u'\\'}, {ByCharacter, u']'}, {ByCharacter, u'^'},
            {ByCharacter, u'_'}, {ByCharacter, u'`'},
            // 65 to 69: { | } ~ and the section sign
            {ByCharacter, u'{'}, {ByCharacter, u'|'}, {ByCharacter, u'}'}, {ByCharacter, u'~'},
            {ByCharacter, 0x00A7},
            // 70 to 75: Return, Tab, Space, Delete, Backspace, Escape
            {0x0D, u'\r'}, {0x09, u'\t'}, {0x20, u' '}, {0x2E, 0x7F}, {0x08, 0x08}, {0x1B, 0x1B},
            // 76 to 83: left and right Windows key, Shift, Alt, Control
            {0x5B, 0}, {0xA0, 0}, {0xA4, 0}, {0xA2, 0},
            {0x5C, 0}, {0xA1, 0}, {0xA5, 0}, {0xA3, 0},
            // 84: either Windows key; 85 to 88: Shift, Alt, Control, Caps Lock; 89: none
            {0, 0}, {0x10, 0}, {0x12, 0}, {0x11, 0}, {0x14, 0}, {0, 0},
            // 90 to 92: volume up, volume down, mute
            {0xAF, 0}, {0xAE, 0}, {0xAD, 0},
            // 93 to 112: F1 to F20
            {0x70, 0}, {0x71, 0}, {0x72, 0}, {0x73, 0}, {0x74, 0}, {0x75, 0}, {0x76, 0},
            {0x77, 0}, {0x78, 0}, {0x79, 0}, {0x7A, 0}, {0x7B, 0}, {0x7C, 0}, {0x7D, 0},
            {0x7E, 0}, {0x7F, 0}, {0x80, 0}, {0x81, 0}, {0x82, 0}, {0x83, 0},
            // 113 to 122: Insert, Help, Home, Page Up, Page Down, End, Left, Right, Down, Up
            {0x2D, 0}, {0x2F, 0}, {0x24, 0}, {0x21, 0}, {0x22, 0},
            {0x23, 0}, {0x25, 0}, {0x27, 0}, {0x28, 0}, {0x26, 0},
            // 123 to 127: keypad decimal, multiply, add, Num Lock, divide
            {0x6E, 0}, {0x6A, 0}, {0x6B, 0}, {0x90, 0}, {0x6F, 0},
            // 128: none; 129: keypad subtract; 130: none
            {0, 0}, {0x6D, 0}, {0, 0},
            // 131 to 140: keypad 0 to 9
            {0x60, 0}, {0x61, 0}, {0x62, 0}, {0x63, 0}, {0x64, 0},
            {0x65, 0}, {0x66, 0}, {0x67, 0}, {0x68, 0}, {0x69, 0},
        };
        // clang-format on
    }

    KeyTable::KeyTable(KeyboardAccess & keyboard) : m_keyboard(keyboard), m_lastLayout(0)
    {
        std::memcpy(m_rows, g_pristine, sizeof(m_rows));
    }

    const KeyRow & KeyTable::PristineRow(unsigned int key)
    {
        return g_pristine[key];
    }

    void KeyTable::Rebuild(std::uintptr_t layout)
    {
        std::memcpy(m_rows, g_pristine, sizeof(m_rows));
        for (KeyRow & row : m_rows)
        {
            if (row.code != ByCharacter)
                continue;
            if (row.character == 0)
                zunFixMe("without a valid character it is not possible to find a virtual key");
            row.code = static_cast<unsigned char>(m_keyboard.ScanCharacter(row.character, layout) & 0xFF);
        }
    }

    bool KeyTable::IsPressed(unsigned int key)
    {
        const std::uintptr_t layout = m_keyboard.Layout();
        if (layout != m_lastLayout)
        {
            m_lastLayout = layout;
            Rebuild(layout);
        }
        // A row past the table names no key; reading it would leave the table.
        if (key >= RowCount)
            return false;
        if (key == EitherWindowsKey)
            return IsPressed(76) || IsPressed(80);
        return (m_keyboard.KeyState(m_rows[key].code) & 0x8000) != 0;
    }
}
