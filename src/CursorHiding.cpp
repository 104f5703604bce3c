// The counted cursor hiding.
#include "CursorHiding.h"

#include "zunException.h"

namespace zunSystemPrivate
{
    void CursorHiding::Hide()
    {
        if (m_hideCount == 0)
        {
            std::uintptr_t cursor = 0;
            unsigned int error = 0;
            if (m_cursor.GetCursor(cursor, error))
                m_savedCursor = cursor;
            else
                zunFixMe("GetCursorInfo failed with error %u", error);
        }
        ++m_hideCount;
        m_cursor.ShowCursor(false);
    }

    void CursorHiding::Restore()
    {
        if (m_hideCount < 1)
        {
            zunFixMe("Unbalanced call to RestoreCursor");
            return;
        }
        --m_hideCount;
        m_cursor.ShowCursor(true);
        if (m_hideCount == 0)
            m_cursor.SetCursor(m_savedCursor);
    }
}
