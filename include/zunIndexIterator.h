// zunIndexIterator.h - the iterator shape of the library's containers.
//
// An iterator of zunFastMesh or zunStringListT is an owner's address and an
// unsigned int index; Access::Get(owner, index) reads the element. Because it
// holds no element address, it stays valid when the container replaces its
// block. Reverse iterators are std::reverse_iterator over it: they start at
// the count and lower the index before each read.
#ifndef ZUN_INDEX_ITERATOR_H
#define ZUN_INDEX_ITERATOR_H

#include <cstddef>
#include <iterator>
#include <memory>
#include <type_traits>
#include <utility>

/// A random-access iterator made of an owner's address and an index; reads go
/// through Access::Get(owner, index) at the moment of each access.
template <typename Owner, typename Access> class zunIndexIteratorT
{
public:
    /// The standard iterator traits: random access, elements as Access::Get
    /// gives them.
    ///@{
    using iterator_category = std::random_access_iterator_tag;
    using reference = decltype(Access::Get(std::declval<Owner *>(), 0u));
    using value_type = std::remove_cv_t<std::remove_reference_t<reference>>;
    using difference_type = std::ptrdiff_t;
    using pointer = std::add_pointer_t<std::remove_reference_t<reference>>;
    ///@}

    /// A singular iterator: no owner, index 0. Only assign or compare it.
    zunIndexIteratorT() = default;
    /// Stands at `index` of the element sequence read through `owner`.
    zunIndexIteratorT(Owner * owner, unsigned int index) : m_pOwner(owner), m_nIndex(index) {}
    /// An iterator converts to one of the same owner whose elements it can
    /// bind (an iterator to a const iterator, not the other way).
    template <typename OtherAccess, typename = std::enable_if_t<std::is_convertible<
                                        typename zunIndexIteratorT<Owner, OtherAccess>::reference, reference>::value>>
    zunIndexIteratorT(const zunIndexIteratorT<Owner, OtherAccess> & other)
        : m_pOwner(other.Source()), m_nIndex(other.Index())
    {
    }

    /// The element at the index, or at index + `offset`; nothing is checked
    /// against the owner's count.
    ///@{
    reference operator*() const { return Access::Get(m_pOwner, m_nIndex); }
    pointer operator->() const { return std::addressof(**this); }
    reference operator[](difference_type offset) const
    {
        return Access::Get(m_pOwner, static_cast<unsigned int>(m_nIndex + offset));
    }
    ///@}
    /// The index this iterator stands at.
    unsigned int Index() const { return m_nIndex; }
    /// The address it reads through.
    Owner * Source() const { return m_pOwner; }

    /// Index arithmetic, wrapping as unsigned int does; the owner stays.
    ///@{
    zunIndexIteratorT & operator++()
    {
        ++m_nIndex;
        return *this;
    }
    zunIndexIteratorT operator++(int)
    {
        zunIndexIteratorT before = *this;
        ++m_nIndex;
        return before;
    }
    zunIndexIteratorT & operator--()
    {
        --m_nIndex;
        return *this;
    }
    zunIndexIteratorT operator--(int)
    {
        zunIndexIteratorT before = *this;
        --m_nIndex;
        return before;
    }
    zunIndexIteratorT & operator+=(difference_type offset)
    {
        m_nIndex = static_cast<unsigned int>(m_nIndex + offset);
        return *this;
    }
    zunIndexIteratorT & operator-=(difference_type offset)
    {
        m_nIndex = static_cast<unsigned int>(m_nIndex - offset);
        return *this;
    }
    friend zunIndexIteratorT operator+(zunIndexIteratorT it, difference_type offset) { return it += offset; }
    friend zunIndexIteratorT operator+(difference_type offset, zunIndexIteratorT it) { return it += offset; }
    friend zunIndexIteratorT operator-(zunIndexIteratorT it, difference_type offset) { return it -= offset; }
    ///@}
    /// The distance a.Index() - b.Index(), signed; the owners are not compared.
    friend difference_type operator-(const zunIndexIteratorT & a, const zunIndexIteratorT & b)
    {
        return static_cast<difference_type>(a.m_nIndex) - static_cast<difference_type>(b.m_nIndex);
    }

    /// Equal when both the index and the owner are the same.
    ///@{
    friend bool operator==(const zunIndexIteratorT & a, const zunIndexIteratorT & b)
    {
        return a.m_nIndex == b.m_nIndex && a.m_pOwner == b.m_pOwner;
    }
    friend bool operator!=(const zunIndexIteratorT & a, const zunIndexIteratorT & b) { return !(a == b); }
    ///@}
    /// Order by index alone; the owners are not compared.
    ///@{
    friend bool operator<(const zunIndexIteratorT & a, const zunIndexIteratorT & b) { return a.m_nIndex < b.m_nIndex; }
    friend bool operator>(const zunIndexIteratorT & a, const zunIndexIteratorT & b) { return b < a; }
    friend bool operator<=(const zunIndexIteratorT & a, const zunIndexIteratorT & b) { return !(b < a); }
    friend bool operator>=(const zunIndexIteratorT & a, const zunIndexIteratorT & b) { return !(a < b); }
    ///@}

private:
    Owner * m_pOwner = nullptr;
    unsigned int m_nIndex = 0;
};

#endif // ZUN_INDEX_ITERATOR_H
