// SettingsIndex.h - a case-insensitive hash index over the records of a list.
//
// Internal. A settings section or file can hold many thousands of lines, and
// every key read from a file is first looked up among the keys before it;
// without an index that is quadratic. The index maps a record's text, lowered
// byte by byte as tolower does, to the first record of that text, in open
// addressing with linear probing. It is only an accelerator: its owner can
// drop it at any time and fall back to a scan, and it never owns records.
//
// The hash lowers bytes in the C locale current at the moment of hashing, so
// a program that changes LC_CTYPE should do so before opening settings.
#ifndef ZUN_SETTINGS_INDEX_H
#define ZUN_SETTINGS_INDEX_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zunSettingsPrivate
{
    struct Data;

    class NameIndex
    {
    public:
        /// Where a text was looked for: the record found, or the free slot
        /// where a record of that text would go. Valid until the next change.
        struct Lookup
        {
            Data * record;
            std::size_t slot;
            std::uint64_t hash;
        };

        bool IsBuilt() const { return !m_slots.empty(); }
        /// Looks `text` up, ignoring case. The index must be built.
        Lookup Find(const char * text, std::size_t length) const;
        /// Enters `record` under its m_text unless a record of that text is
        /// there already. False when memory is exhausted; the index is then
        /// dropped.
        bool Insert(Data * record);
        /// Insert, for a record whose text `missed` was looked up for and not
        /// found, with no change since.
        bool Insert(Data * record, const Lookup & missed);
        /// Takes out the record entered under `text`, if any.
        void Erase(const char * text, std::size_t length);
        /// Drops the index and its memory.
        void Clear();

    private:
        struct Slot
        {
            std::uint64_t hash;
            Data * record; ///< null: free
        };

        static std::uint64_t Hash(const char * text, std::size_t length);
        std::size_t Probe(std::uint64_t hash, const char * text, std::size_t length) const;
        bool Grow();

        std::vector<Slot> m_slots; ///< power-of-two size, at most three quarters full
        std::size_t m_count = 0;
    };
}

#endif // ZUN_SETTINGS_INDEX_H
