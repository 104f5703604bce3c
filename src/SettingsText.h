// SettingsText.h - the texts of the settings records.
//
// Internal. A record's text is a run of bytes with a length and a terminator
// behind it (so it can go to sscanf as it stands). Texts read from a file are
// copied into the file's arena and never freed one by one; a text set later
// has a heap block of its own, freed with the text. The empty text needs no
// memory at all. Texts may hold zero bytes; the terminator is extra.
#ifndef ZUN_SETTINGS_TEXT_H
#define ZUN_SETTINGS_TEXT_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "SettingsArena.h"
#include "zunConfig.h"

namespace zunSettingsPrivate
{
    class ZUN_API RecordText
    {
    public:
        RecordText() = default;
        ~RecordText()
        {
            if ((m_nLength & kOwnedBit) != 0)
                FreeBlock();
        }
        RecordText(const RecordText &) = delete;
        RecordText & operator=(const RecordText &) = delete;

        /// Never null; terminated behind size() bytes.
        const char * data() const { return m_pData; }
        const char * c_str() const { return m_pData; }
        std::size_t size() const { return static_cast<std::size_t>(m_nLength & ~kOwnedBit); }
        bool empty() const { return size() == 0; }
        std::string_view View() const { return std::string_view(m_pData, size()); }

        /// Makes the text a copy of `length` bytes of `text`, in `arena` or,
        /// when that is null, in a heap block of its own. False, with the
        /// text as it was, when memory is exhausted.
        bool Assign(const char * text, std::size_t length, RecordArena * arena) noexcept;
        /// Makes the text the `length` bytes at `text`, which must be
        /// followed by a terminator and outlive the text (the bytes of an
        /// arena, or of the record's own block).
        void Refer(const char * text, std::size_t length) noexcept
        {
            if ((m_nLength & kOwnedBit) != 0)
                FreeBlock();
            m_pData = text;
            m_nLength = length;
        }
        /// The empty text; a heap block goes back.
        void Clear() noexcept;
        void Swap(RecordText & other) noexcept;

    private:
        static constexpr std::uint64_t kOwnedBit = std::uint64_t(1) << 63;

        void FreeBlock() noexcept;

        const char * m_pData = "";
        std::uint64_t m_nLength = 0; ///< the length; the top bit: the block is the text's own
    };

    inline bool operator==(const RecordText & text, std::string_view other)
    {
        return text.View() == other;
    }
    inline bool operator!=(const RecordText & text, std::string_view other)
    {
        return text.View() != other;
    }
    ZUN_API std::ostream & operator<<(std::ostream & stream, const RecordText & text);
}

#endif // ZUN_SETTINGS_TEXT_H
