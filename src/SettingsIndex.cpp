// The case-insensitive hash index of the settings records.
#include "SettingsIndex.h"

#include <new>

#include "SettingsRecords.h"
#include "platform/Text.h"

namespace zunSettingsPrivate
{
    namespace
    {
        constexpr std::size_t kFirstSize = 32;
    }

    std::uint64_t NameIndex::Hash(const char * text, std::size_t length)
    {
        // FNV-1a over the lowered bytes: names that SameName calls equal
        // hash alike.
        const std::int32_t * lower = zunPlatform::LowerByteTable();
        std::uint64_t hash = 14695981039346656037ull;
        for (std::size_t i = 0; i < length; ++i)
        {
            hash ^= static_cast<unsigned char>(lower[static_cast<unsigned char>(text[i])]);
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

    NameIndex::Lookup NameIndex::Find(const char * text, std::size_t length) const
    {
        const std::uint64_t hash = Hash(text, length);
        const std::size_t slot = Probe(hash, text, length);
        return Lookup{m_slots[slot].record, slot, hash};
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
        if (!IsBuilt() && !Grow())
            return false;
        return Insert(record, Find(record->m_text.data(), record->m_text.size()));
    }

    bool NameIndex::Insert(Data * record, const Lookup & missed)
    {
        if (missed.record != nullptr)
            return true; // the first record of that text stays
        if ((m_count + 1) * 4 <= m_slots.size() * 3)
        {
            m_slots[missed.slot] = Slot{missed.hash, record};
            ++m_count;
            return true;
        }
        if (!Grow())
            return false;
        m_slots[Probe(missed.hash, record->m_text.data(), record->m_text.size())] = Slot{missed.hash, record};
        ++m_count;
        return true;
    }

    void NameIndex::Erase(const char * text, std::size_t length)
    {
        if (!IsBuilt())
            return;
        std::size_t hole = Find(text, length).slot;
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
