// The case-insensitive hash index of the settings records.
#include "SettingsIndex.h"

#include <cctype>
#include <new>

#include "SettingsRecords.h"

namespace zunSettingsPrivate
{
    namespace
    {
        constexpr std::size_t kFirstSize = 64;
    }

    std::uint64_t NameIndex::Hash(const char * text, std::size_t length)
    {
        // FNV-1a over the lowered bytes: names that SameName calls equal
        // hash alike.
        std::uint64_t hash = 14695981039346656037ull;
        for (std::size_t i = 0; i < length; ++i)
        {
            hash ^= static_cast<unsigned char>(std::tolower(static_cast<unsigned char>(text[i])));
            hash *= 1099511628211ull;
        }
        return hash;
    }

    std::size_t NameIndex::Probe(std::uint64_t hash, const char * text, std::size_t length) const
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = static_cast<std::size_t>(hash) & mask;
        for (;;)
        {
            const Slot & slot = m_slots[i];
            if (slot.record == nullptr ||
                (slot.hash == hash && SameName(slot.record->m_text.data(), slot.record->m_text.size(), text, length)))
                return i;
            i = (i + 1) & mask;
        }
    }

    Data * NameIndex::Find(const char * text, std::size_t length) const
    {
        if (m_slots.empty())
            return nullptr;
        return m_slots[Probe(Hash(text, length), text, length)].record;
    }

    bool NameIndex::Grow()
    {
        std::vector<Slot> old;
        old.swap(m_slots);
        try
        {
            m_slots.assign(old.empty() ? kFirstSize : old.size() * 2, Slot{0, nullptr});
        }
        catch (const std::bad_alloc &)
        {
            Clear();
            return false;
        }
        const std::size_t mask = m_slots.size() - 1;
        for (const Slot & slot : old)
        {
            if (slot.record == nullptr)
                continue;
            std::size_t i = static_cast<std::size_t>(slot.hash) & mask;
            while (m_slots[i].record != nullptr)
                i = (i + 1) & mask;
            m_slots[i] = slot;
        }
        return true;
    }

    bool NameIndex::Insert(Data * record)
    {
        if ((m_count + 1) * 2 > m_slots.size() && !Grow())
            return false;
        const std::uint64_t hash = Hash(record->m_text.data(), record->m_text.size());
        Slot & slot = m_slots[Probe(hash, record->m_text.data(), record->m_text.size())];
        if (slot.record == nullptr)
        {
            slot = Slot{hash, record};
            ++m_count;
        }
        return true;
    }

    void NameIndex::Erase(const char * text, std::size_t length)
    {
        if (m_slots.empty())
            return;
        std::size_t hole = Probe(Hash(text, length), text, length);
        if (m_slots[hole].record == nullptr)
            return;
        // Backward shift: pull later entries of the probe run into the hole
        // unless that would put one in front of its home slot.
        const std::size_t mask = m_slots.size() - 1;
        std::size_t next = (hole + 1) & mask;
        while (m_slots[next].record != nullptr)
        {
            const std::size_t home = static_cast<std::size_t>(m_slots[next].hash) & mask;
            if (((next - home) & mask) >= ((next - hole) & mask))
            {
                m_slots[hole] = m_slots[next];
                hole = next;
            }
            next = (next + 1) & mask;
        }
        m_slots[hole] = Slot{0, nullptr};
        --m_count;
    }

    void NameIndex::Clear()
    {
        std::vector<Slot>().swap(m_slots);
        m_count = 0;
    }
}
