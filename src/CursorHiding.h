// CursorHiding.h - the counted hiding of the mouse cursor.
//
// Internal. Hides nest: the first hide saves the cursor, each hide hides once
// more, each restore shows once more, and the outermost restore puts the saved
// cursor back. A restore with nothing hidden is reported and does nothing.
// The cursor device is reached through CursorAccess, so the counting runs
// (and is tested) without a display.
#ifndef ZUN_CURSOR_HIDING_H
#define ZUN_CURSOR_HIDING_H

#include <cstdint>

#include "zunConfig.h"

namespace zunSystemPrivate
{
    class CursorAccess
    {
    public:
        virtual ~CursorAccess() = default;
        /// The current cursor; false, with an error code, when it cannot be read.
        virtual bool GetCursor(std::uintptr_t & cursor, unsigned int & error) = 0;
        virtual void ShowCursor(bool show) = 0;
        virtual void SetCursor(std::uintptr_t cursor) = 0;
    };

    class ZUN_API CursorHiding
    {
    public:
        explicit CursorHiding(CursorAccess & cursor) : m_cursor(cursor), m_hideCount(0), m_savedCursor(0) {}

        void Hide();
        void Restore();

        unsigned int GetHideCount() const { return m_hideCount; }
        std::uintptr_t GetSavedCursor() const { return m_savedCursor; }

    private:
        CursorAccess & m_cursor;
        unsigned int m_hideCount;
        std::uintptr_t m_savedCursor;
    };
}

#endif // ZUN_CURSOR_HIDING_H
