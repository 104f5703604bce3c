// Record texts in an arena or in blocks of their own.
#include "SettingsText.h"

#include <climits>
#include <cstring>
#include <ostream>
#include <utility>

#include "zunMem.h"

namespace zunSettingsPrivate
{
    bool RecordText::Assign(const char * text, std::size_t length, RecordArena * arena) noexcept
    {
        if (length == 0)
        {
            Clear();
            return true;
        }
        void * block = nullptr;
        if (arena != nullptr)
            block = arena->Allocate(length + 1, 1);
        else if (length >= UINT_MAX || !zunMemAlloc(block, static_cast<unsigned int>(length + 1), false))
            block = nullptr;
        if (block == nullptr)
            return false;
        char * copy = static_cast<char *>(block);
        std::memcpy(copy, text, length); // `text` may lie in the old block: copy first
        copy[length] = 0;
        Clear();
        m_pData = copy;
        m_nLength = length | (arena == nullptr ? kOwnedBit : 0);
        return true;
    }

    void RecordText::FreeBlock() noexcept
    {
        void * block = const_cast<char *>(m_pData);
        zunMemFree(block);
    }

    void RecordText::Clear() noexcept
    {
        if ((m_nLength & kOwnedBit) != 0)
            FreeBlock();
        m_pData = "";
        m_nLength = 0;
    }

    void RecordText::Swap(RecordText & other) noexcept
    {
        std::swap(m_pData, other.m_pData);
        std::swap(m_nLength, other.m_nLength);
    }

    std::ostream & operator<<(std::ostream & stream, const RecordText & text)
    {
        return stream << text.View();
    }
}
