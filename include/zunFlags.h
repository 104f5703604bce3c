// zunFlags.h - a set of enumeration bits read as one 32-bit mask.
//
//   zunFlags<zunPath::MoveFlag, 2> flags = zunPath::MoveReplaceExisting;
//   flags = flags | zunPath::MoveAllowCopy;
//   if (flags.IsSet(zunPath::MoveAllowCopy)) ...
//
// Each enumerator's value is its own mask bit. N is the number of flags the
// enumeration defines; it documents the set and has no code of its own.
#ifndef ZUN_FLAGS_H
#define ZUN_FLAGS_H

#include "zunConfig.h"

/// A set of the bits of enumeration E (N flags), held as one 32-bit mask.
template <typename E, unsigned int N> class zunFlags
{
public:
    /// The empty set.
    constexpr zunFlags() : m_nMask(0) {}
    /// The set holding one enumerator; its value is its mask.
    constexpr zunFlags(E flag) : m_nMask(static_cast<unsigned int>(flag)) {}
    /// A set from a raw mask, for masks read from elsewhere.
    constexpr explicit zunFlags(unsigned int mask) : m_nMask(mask) {}

    /// The union with another set or one enumerator.
    ///@{
    constexpr zunFlags operator|(zunFlags other) const { return zunFlags(m_nMask | other.m_nMask); }
    constexpr zunFlags operator|(E flag) const { return zunFlags(m_nMask | static_cast<unsigned int>(flag)); }
    zunFlags & operator|=(zunFlags other)
    {
        m_nMask |= other.m_nMask;
        return *this;
    }
    ///@}

    /// True when the bit of `flag` is in the set.
    constexpr bool IsSet(E flag) const { return (m_nMask & static_cast<unsigned int>(flag)) != 0; }
    /// The raw 32-bit mask, bits outside the enumeration included.
    constexpr unsigned int GetMask() const { return m_nMask; }

    /// Compare the raw masks.
    ///@{
    constexpr bool operator==(zunFlags other) const { return m_nMask == other.m_nMask; }
    constexpr bool operator!=(zunFlags other) const { return m_nMask != other.m_nMask; }
    ///@}

private:
    unsigned int m_nMask;
};

#endif // ZUN_FLAGS_H
