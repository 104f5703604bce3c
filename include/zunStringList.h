// zunStringList.h - an ordered list of texts packed in one array.
//
// zunStringListT<C> (zunStringList for UTF-8, zunStringListW for UTF-16)
// keeps all its texts one after the other, each with its terminator, in a
// single zunFastMesh<C>, with a second array of where each begins and a third
// of one flag byte per entry. A list of any length costs three blocks.
//
//   zunStringList parts = zunString("usr/local//lib/").Split("/", 0);  // usr, local, lib
//   parts.Insert("opt", 0);
//   for (const char * part : parts) std::puts(part);
//   if (parts.Find("lib") != 0xFFFFFFFF) ...
//
// Rules a caller must know:
//  - Empty texts are never stored: adding one returns true and adds nothing.
//  - An index of 0xFFFFFFFF (or any at or behind the end) appends when
//    inserting; Remove and Truncate refuse it with false.
//  - operator[] gives the text inside the list's own array: valid until the
//    next edit, index not checked, null while the list has no texts.
//  - Find compares unit by unit (case-sensitive).
//  - Nothing throws. An exhausted heap gives false with the list unchanged,
//    with two documented exceptions: Copy clears the list, and InsertList, if
//    the heap runs out after the texts went in, takes back as many units as it
//    inserted but counts them from the entry index instead of the text
//    position, which can garble the texts (they stay terminated and in bounds).
//  - Flags: each entry carries one byte that the caller owns (GetFlag,
//    SetFlag). The library stores 0 for every new entry, never reads the byte,
//    and carries it through every edit. FlaggedCount() counts the non-zero
//    bytes, except that InsertList leaves it as it was (so it runs low by the
//    flagged entries of the inserted list until the next Truncate recounts).
//  - No lock: read from several threads only while nobody edits.
#ifndef ZUN_STRING_LIST_H
#define ZUN_STRING_LIST_H

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <string>
#include <utility>

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunIndexIterator.h"
#include "zunString.h"

/// An ordered list of non-empty texts of units C, packed one after the other
/// in one array, with a caller-owned flag byte per entry.
template <typename C> class zunStringListT
{
public:
    /// The string type of the list's units.
    using String = zunStringT<C, zunCharHelper<C>>;

private:
    // Iterators read entry texts through operator[] (see zunIndexIterator.h).
    struct TextAccess
    {
        static const C * Get(const zunStringListT * list, unsigned int index) { return (*list)[index]; }
    };

public:
    /// The texts cannot be changed through an iterator: every iterator reads
    /// `const C *` entry texts, as operator[] gives them.
    ///@{
    using const_iterator = zunIndexIteratorT<const zunStringListT, TextAccess>;
    using iterator = const_iterator;
    using reverse_iterator = std::reverse_iterator<const_iterator>;
    using const_reverse_iterator = reverse_iterator;
    ///@}

    /// An empty list; allocates nothing.
    zunStringListT() : m_nFlagged(0) {}
    /// Appends each text in turn; null and empty texts are skipped, and a text
    /// the heap has no room for is left out.
    zunStringListT(std::initializer_list<const C *> texts);
    /// Copy(other); an exhausted heap leaves the copy empty.
    zunStringListT(const zunStringListT & other) : m_nFlagged(0) { Copy(other); }
    /// Takes the three arrays; `other` is left empty.
    zunStringListT(zunStringListT && other) noexcept;
    /// Copy(other); an exhausted heap leaves this list cleared.
    zunStringListT & operator=(const zunStringListT & other)
    {
        Copy(other);
        return *this;
    }
    /// Takes the three arrays and the flagged count; `other` is left empty.
    zunStringListT & operator=(zunStringListT && other) noexcept;

    /// Destroys the flags, the offsets and the texts, in that order.
    virtual ~zunStringListT() = default;

    /// Empties the list and frees its blocks.
    virtual void Clear();
    /// Makes this list a copy of `other`, flags and FlaggedCount() included.
    /// If the heap runs out the list is cleared and the result is false.
    virtual bool Copy(const zunStringListT & other);
    /// Inserts all entries of `other`, in order, before entry `index` (at or
    /// behind the end: appends). `other` is consumed; see the header notes for
    /// its failure path and for FlaggedCount().
    virtual bool InsertList(zunStringListT other, unsigned int index);
    /// Inserts `text` before entry `index` (at or behind the end: appends),
    /// with a flag of 0. An empty text adds nothing and gives true.
    virtual bool Insert(const String & text, unsigned int index);
    /// Removes entry `index`; false (and nothing changes) if there is none.
    virtual bool Remove(unsigned int index);
    /// Removes entry `index` and all behind it; false if there is no such entry.
    virtual bool Truncate(unsigned int index);

    /// The number of entries.
    unsigned int Count() const { return m_Offsets.Count(); }
    /// The text of entry `index` inside the list's array (valid until the next
    /// edit); null while the list holds no texts. The index is not checked.
    const C * operator[](unsigned int index) const
    {
        const C * units = m_Chars.Data();
        return units != nullptr ? units + m_Offsets[index] : nullptr;
    }
    /// Index of the first entry equal to `text`, unit by unit, or 0xFFFFFFFF.
    /// A null or empty `text` is never found, since no entry is empty.
    unsigned int Find(const C * text) const;

    /// The caller's flag byte of entry `index`; 0 for an index not below Count().
    unsigned char GetFlag(unsigned int index) const { return index < Count() ? m_Flags[index] : 0; }
    /// Sets the flag byte of entry `index` and keeps FlaggedCount() in step.
    /// False (nothing changes) for an index not below Count().
    bool SetFlag(unsigned int index, unsigned char flag);
    /// The number of entries with a non-zero flag byte, as counted by the list
    /// (InsertList does not add the flags it brings in; Truncate recounts).
    unsigned int FlaggedCount() const { return m_nFlagged; }

    /// Iterators over the entry texts, first to last (reverse: last to
    /// first). They hold the list's address and an index, so edits don't
    /// invalidate them; an index past Count() after a removal is not checked.
    ///@{
    const_iterator begin() const { return const_iterator(this, 0); }
    const_iterator end() const { return const_iterator(this, Count()); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    reverse_iterator rbegin() const { return reverse_iterator(end()); }
    reverse_iterator rend() const { return reverse_iterator(begin()); }
    reverse_iterator crbegin() const { return rbegin(); }
    reverse_iterator crend() const { return rend(); }
    ///@}

protected:
    zunFastMesh<C> m_Chars;              ///< the texts, each with its terminator
    zunFastMesh<unsigned int> m_Offsets; ///< where each entry begins in m_Chars
    zunFastMesh<unsigned char> m_Flags;  ///< one caller-owned byte per entry
    unsigned int m_nFlagged;             ///< non-zero bytes in m_Flags

private:
    template <typename, typename> friend struct zunStringT;

    // Appends `length` units and a terminator as a new last entry: the append
    // path of Insert, also used by Split for the pieces of a text.
    bool AppendUnits(const C * units, unsigned int length);
    // SetCount(count, false) on one of the arrays; should the heap refuse the
    // smaller block, Remove still brings the count down, so no stale entry or
    // unit stays behind.
    template <typename T> static void CutTo(zunFastMesh<T> & mesh, unsigned int count)
    {
        if (!mesh.SetCount(count, false))
            mesh.Remove(count, 0xFFFFFFFFu);
    }
    // Raises (or, with a negative `delta`, lowers) the offsets of the entries
    // from `first` to `last` - 1.
    void ShiftOffsets(unsigned int first, unsigned int last, long long delta);
};

/// A list of UTF-8 texts.
typedef zunStringListT<char> zunStringList;
/// A list of UTF-16 texts.
typedef zunStringListT<zunWChar> zunStringListW;

extern template class ZUN_API zunStringListT<char>;
extern template class ZUN_API zunStringListT<zunWChar>;

// ---- The operations behind the exported instantiations ------------------------

template <typename C> zunStringListT<C>::zunStringListT(std::initializer_list<const C *> texts) : m_nFlagged(0)
{
    for (const C * text : texts)
        if (text != nullptr && text[0] != 0)
            Insert(String(text), 0xFFFFFFFFu);
}

template <typename C>
zunStringListT<C>::zunStringListT(zunStringListT && other) noexcept
    : m_Chars(std::move(other.m_Chars)), m_Offsets(std::move(other.m_Offsets)), m_Flags(std::move(other.m_Flags)),
      m_nFlagged(other.m_nFlagged)
{
    other.m_nFlagged = 0;
}

template <typename C> zunStringListT<C> & zunStringListT<C>::operator=(zunStringListT && other) noexcept
{
    if (&other != this)
    {
        m_Chars = std::move(other.m_Chars);
        m_Offsets = std::move(other.m_Offsets);
        m_Flags = std::move(other.m_Flags);
        m_nFlagged = other.m_nFlagged;
        other.m_nFlagged = 0;
    }
    return *this;
}

template <typename C> void zunStringListT<C>::Clear()
{
    m_Chars.Clear();
    m_Offsets.Clear();
    m_Flags.Clear();
    m_nFlagged = 0;
}

template <typename C> bool zunStringListT<C>::Copy(const zunStringListT & other)
{
    if (&other == this)
        return true;
    if (!m_Chars.SetCount(other.m_Chars.Count(), false) || !m_Offsets.SetCount(other.m_Offsets.Count(), false) ||
        !m_Flags.SetCount(other.m_Flags.Count(), false))
    {
        Clear();
        return false;
    }
    zunMemCopy(m_Chars.Data(), other.m_Chars.Data(), m_Chars.Count() * sizeof(C));
    zunMemCopy(m_Offsets.Data(), other.m_Offsets.Data(), m_Offsets.Count() * sizeof(unsigned int));
    zunMemCopy(m_Flags.Data(), other.m_Flags.Data(), m_Flags.Count());
    m_nFlagged = other.m_nFlagged;
    return true;
}

template <typename C> bool zunStringListT<C>::InsertList(zunStringListT other, unsigned int index)
{
    const unsigned int count = Count();
    const unsigned int entry = index < count ? index : count;
    const unsigned int at = index < count ? m_Offsets[index] : m_Chars.Count();
    const unsigned int units = other.m_Chars.Count();
    const unsigned int entries = other.Count();

    if (!m_Chars.InsertRange(at, other.m_Chars.Data(), units))
        return false;
    // Both rollbacks take the units back from the entry index, not from `at`:
    // that is the list's documented behaviour on this path, which only an
    // exhausted heap reaches. m_Chars keeps its count and its final
    // terminator, so every read stays in bounds.
    if (!m_Offsets.InsertRange(entry, other.m_Offsets.Data(), entries))
    {
        m_Chars.Remove(entry, units);
        return false;
    }
    if (!m_Flags.InsertRange(entry, other.m_Flags.Data(), entries))
    {
        m_Chars.Remove(entry, units);
        m_Offsets.Remove(entry, entries);
        return false;
    }
    if (entry != 0)
        ShiftOffsets(entry, entry + entries, at);
    ShiftOffsets(entry + entries, Count(), units);
    return true;
}

template <typename C> bool zunStringListT<C>::Insert(const String & text, unsigned int index)
{
    const unsigned int length = text.Length();
    if (length == 0)
        return true;
    if (index >= Count())
        return AppendUnits(text, length);

    const unsigned int size = length + 1;
    const unsigned int old = m_Chars.Count();
    if (static_cast<unsigned long long>(old) + size > 0xFFFFFFFFull || !m_Chars.SetCount(old + size, false))
        return false;
    const unsigned int at = m_Offsets[index];
    if (!m_Offsets.Insert(index, at))
    {
        CutTo(m_Chars, old);
        return false;
    }
    if (!m_Flags.Insert(index, 0))
    {
        CutTo(m_Chars, old);
        m_Offsets.Remove(index, 1);
        return false;
    }
    ShiftOffsets(index + 1, Count(), size);
    C * units = m_Chars.Data();
    zunMemMove(units + at + size, units + at, (old - at) * sizeof(C));
    zunMemCopy(units + at, static_cast<const C *>(text), size * sizeof(C));
    return true;
}

// Inline, so that it is no exported function the dynamic linker could
// replace: Insert and Split then call it directly instead of through the
// procedure linkage table, once per appended text.
template <typename C> inline bool zunStringListT<C>::AppendUnits(const C * units, unsigned int length)
{
    const unsigned int size = length + 1;
    const unsigned int old = m_Chars.Count();
    if (static_cast<unsigned long long>(old) + size > 0xFFFFFFFFull || !m_Chars.SetCount(old + size, false))
        return false;
    if (!m_Offsets.Add(old))
    {
        CutTo(m_Chars, old);
        return false;
    }
    if (!m_Flags.Add(0))
    {
        CutTo(m_Chars, old);
        CutTo(m_Offsets, m_Offsets.Count() - 1);
        return false;
    }
    // The units come from another block (a string or the text being split),
    // so a plain copy will do: zunMemCopy allows overlap and is one more call.
    C * end = m_Chars.Data() + old;
    std::memcpy(end, units, length * sizeof(C));
    end[length] = 0;
    return true;
}

template <typename C> bool zunStringListT<C>::Remove(unsigned int index)
{
    if (index >= Count())
        return false;
    const unsigned int at = m_Offsets[index];
    const unsigned int old = m_Chars.Count();
    C * units = m_Chars.Data();
    unsigned int size = 1;
    while (units[at + size - 1] != 0)
        ++size;
    if (at + size < old)
        zunMemMove(units + at, units + at + size, (old - at - size) * sizeof(C));
    ShiftOffsets(index + 1, Count(), -static_cast<long long>(size));
    m_Offsets.Remove(index, 1);
    CutTo(m_Chars, old - size);
    if (m_Flags[index] != 0)
        --m_nFlagged;
    m_Flags.Remove(index, 1);
    return true;
}

template <typename C> bool zunStringListT<C>::Truncate(unsigned int index)
{
    if (index >= Count())
        return false;
    CutTo(m_Chars, m_Offsets[index]);
    CutTo(m_Offsets, index);
    CutTo(m_Flags, index);
    m_nFlagged = 0;
    for (unsigned char flag : m_Flags)
        if (flag != 0)
            ++m_nFlagged;
    return true;
}

template <typename C> unsigned int zunStringListT<C>::Find(const C * text) const
{
    // Equal unit by unit up to the terminator, as a case-sensitive Compare
    // says, but one block compare per entry: the text with its terminator
    // against as many units of the entry. No entry is empty, so neither null
    // nor an empty text can match.
    if (text == nullptr || text[0] == 0)
        return 0xFFFFFFFFu;
    const std::size_t size = std::char_traits<C>::length(text) + 1;
    const C * units = m_Chars.Data();
    const unsigned int total = m_Chars.Count();
    for (unsigned int i = 0; i < Count(); ++i)
    {
        const unsigned int at = m_Offsets[i];
        if (units[at] == text[0] && size <= total - at && std::memcmp(units + at, text, size * sizeof(C)) == 0)
            return i;
    }
    return 0xFFFFFFFFu;
}

template <typename C> bool zunStringListT<C>::SetFlag(unsigned int index, unsigned char flag)
{
    if (index >= Count())
        return false;
    m_nFlagged = m_nFlagged - (m_Flags[index] != 0) + (flag != 0);
    m_Flags[index] = flag;
    return true;
}

template <typename C> void zunStringListT<C>::ShiftOffsets(unsigned int first, unsigned int last, long long delta)
{
    unsigned int * offsets = m_Offsets.Data();
    for (unsigned int i = first; i < last; ++i)
        offsets[i] = static_cast<unsigned int>(offsets[i] + delta);
}

// ---- Split, the string's producer of lists ------------------------------------------

template <typename C, typename H>
zunStringListT<C> zunStringT<C, H>::Split(const C * separators, unsigned int start) const
{
    zunStringListT<C> pieces;
    if (m_pData == nullptr)
        return pieces;
    unsigned int pos = start;
    for (;;)
    {
        unsigned int found = 0xFFFFFFFFu;
        if (separators != nullptr)
            for (unsigned int i = pos; i < m_nLength && found == 0xFFFFFFFFu; ++i)
                for (const C * s = separators; *s != 0; ++s)
                    if (m_pData[i] == *s)
                    {
                        found = i;
                        break;
                    }
        // A start behind the end has no rest: it gives no piece.
        const unsigned int end = found != 0xFFFFFFFFu ? found : m_nLength;
        if (pos < end)
            pieces.AppendUnits(m_pData + pos, end - pos);
        if (found == 0xFFFFFFFFu)
            return pieces;
        pos = found + 1;
    }
}

#endif // ZUN_STRING_LIST_H
