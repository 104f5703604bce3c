// zunFastMesh.h - the library's growable array of plain elements.
//
// zunFastMesh<T> keeps its elements in one contiguous block from zunMemAlloc,
// grows by doubling, gives memory back by halving, and moves elements as raw
// bytes. It never runs a constructor or destructor of T, so T must be copyable,
// movable and zero-fillable as bytes (char, unsigned int, double,
// zunVector4T<double>, ...).
//
//   zunFastMesh<double> values;
//   if (!values.Add(1.5)) return false;              // heap exhausted: unchanged
//   double * block = values.Extend(1000, true);      // 1000 zeros at the end
//   for (double & v : values) v *= 2;                // iterators survive growth
//
// Capacity. A non-empty array holds at least m_nMinCapacity (16) elements. A
// growing operation asks for the capacity plus what it needs, so the block
// doubles (16, 32, 64, ...) unless one request is larger than twice the
// capacity, which is then taken as it stands. A removal that leaves fewer than
// half the capacity halves the block as often as the remaining count allows
// (never below 16); removing the last element frees it. No block holds more
// than MaxCapacity = 0xFFFFF000 / sizeof(T) elements, so its byte size always
// fits zunMemAlloc's 32-bit size.
//
// Indices. An inserting operation given an index behind the end (0xFFFFFFFF
// included) appends; Remove ignores an index behind the end; operator[] does
// not check.
//
// Failures. Nothing throws. An exhausted heap (or a request beyond
// MaxCapacity) gives false or null and leaves the array as it was, except for
// Remove, whose elements are gone by then and only the block stays large.
//
// Iterators hold the address of the array's block pointer and an index, so
// they stay valid when the block is replaced (zunIndexIterator.h). ForEach,
// FindIf and CircularFindIf are the older walking family, kept for existing
// callers.
//
// An array has no lock: share it read-only, or lock outside.
//
// The class lives wholly in this header and no instantiation is exported:
// every program compiles the element types it uses, so that the compiler can
// inline (and devirtualize) the append path wherever the array is used.
#ifndef ZUN_FAST_MESH_H
#define ZUN_FAST_MESH_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "zunConfig.h"
#include "zunIndexIterator.h"
#include "zunMem.h"
#include "zunTypes.h"

/// A growable array of trivially copyable elements in one zunMemAlloc block;
/// failures give false or null and leave the array as it was.
template <typename T> class zunFastMesh
{
    static_assert(std::is_trivially_copyable<T>::value, "zunFastMesh moves its elements as bytes");

public:
    /// The largest capacity: the block's byte size must fit 32 bits.
    static constexpr unsigned int MaxCapacity = static_cast<unsigned int>(0xFFFFF000u / sizeof(T));

private:
    // Iterators read through the address of m_pData (see zunIndexIterator.h).
    struct ElementAccess
    {
        static T & Get(T * const * block, unsigned int index) { return (*block)[index]; }
    };
    struct ConstElementAccess
    {
        static const T & Get(T * const * block, unsigned int index) { return (*block)[index]; }
    };

public:
    /// The element type and the iterators: random access, holding the address
    /// of the block pointer and an index, so they survive the block's growth.
    ///@{
    using value_type = T;
    using iterator = zunIndexIteratorT<T * const, ElementAccess>;
    using const_iterator = zunIndexIteratorT<T * const, ConstElementAccess>;
    using reverse_iterator = std::reverse_iterator<iterator>;
    using const_reverse_iterator = std::reverse_iterator<const_iterator>;
    ///@}

    /// An empty array with no block; allocates nothing.
    zunFastMesh() noexcept : m_nMinCapacity(16), m_nCount(0), m_nCapacity(0), m_pData(nullptr), m_nShrinkBelow(0) {}
    /// An empty array, then Copy(other); if the heap is exhausted the copy stays empty.
    zunFastMesh(const zunFastMesh & other) : zunFastMesh() { Copy(other); }
    /// Takes the block and the whole state; `other` keeps its m_nMinCapacity
    /// and is left empty with no block.
    zunFastMesh(zunFastMesh && other) noexcept
        : m_nMinCapacity(other.m_nMinCapacity), m_nCount(other.m_nCount), m_nCapacity(other.m_nCapacity),
          m_pData(other.m_pData), m_nShrinkBelow(other.m_nShrinkBelow)
    {
        other.m_pData = nullptr;
        other.m_nCount = 0;
        other.m_nCapacity = 0;
    }

    /// Frees the block.
    virtual ~zunFastMesh()
    {
        FreeBlock();
        m_nCount = 0;
        m_nMinCapacity = 16;
    }

    /// Frees the block: count and capacity 0, m_nMinCapacity back to 16.
    virtual void Clear()
    {
        FreeBlock();
        m_nCount = 0;
        m_nCapacity = 0;
        m_nMinCapacity = 16;
    }

    /// Opens `count` elements at `index` and copies `items` into them; with a
    /// null `items` the gap keeps whatever bytes it holds. `items` may point
    /// into this array.
    virtual bool InsertRange(unsigned int index, const T * items, unsigned int count)
    {
        // A source inside our own block moves when the block is replaced and
        // when the gap opens; remember it by index.
        const bool fromOwnBlock = items != nullptr && IsInBlock(items);
        const std::size_t ownIndex = fromOwnBlock ? static_cast<std::size_t>(items - m_pData) : 0;
        if (std::uint64_t(m_nCount) + count > m_nCapacity && !SetCapacity(std::uint64_t(m_nCapacity) + count, false))
            return false;
        index = ClampToEnd(index);
        OpenGap(index, count);
        if (fromOwnBlock)
            CopyShiftedOwnElements(index, static_cast<unsigned int>(ownIndex), count);
        else if (items != nullptr)
            zunMemCopy(m_pData + index, items, Bytes(count));
        m_nCount += count;
        return true;
    }

    /// Opens one element at `index`; its content is not set.
    virtual bool InsertEmpty(unsigned int index)
    {
        if (!GrowForOne())
            return false;
        index = ClampToEnd(index);
        OpenGap(index, 1);
        ++m_nCount;
        return true;
    }

    /// Opens one element at `index` and stores `item` (which may be an element
    /// of this array).
    virtual bool Insert(unsigned int index, const T & item)
    {
        const T value = item;
        if (!GrowForOne())
            return false;
        index = ClampToEnd(index);
        OpenGap(index, 1);
        m_pData[index] = value;
        ++m_nCount;
        return true;
    }

    /// Appends `item` (which may be an element of this array).
    virtual bool Add(const T & item)
    {
        if (m_nCount == m_nCapacity)
            return AddGrowing(item);
        m_pData[m_nCount++] = item;
        return true;
    }

    /// Appends `count` elements, zero-filled if `zero`, and returns the address
    /// of the first new one; null on failure. With a `count` of 0 the result is
    /// the end of the block, which is null while the array has none.
    virtual T * Extend(unsigned int count, bool zero)
    {
        if (std::uint64_t(m_nCount) + count > m_nCapacity && !SetCapacity(std::uint64_t(m_nCapacity) + count, false))
            return nullptr;
        if (m_pData == nullptr)
            return nullptr;
        T * first = m_pData + m_nCount;
        if (zero)
            zunMemZero(first, Bytes(count));
        m_nCount += count;
        return first;
    }

    /// Removes up to `count` elements from `index` (to the end if fewer
    /// remain). An index behind the end does nothing and gives true. False only
    /// if giving memory back failed: the elements are removed all the same.
    virtual bool Remove(unsigned int index, unsigned int count)
    {
        if (index >= m_nCount)
            return true;
        const unsigned int tail = m_nCount - index;
        if (count > tail)
            count = tail;
        if (count < tail)
            zunMemMove(m_pData + index, m_pData + index + count, Bytes(tail - count));
        m_nCount -= count;
        if (m_nCount >= m_nShrinkBelow)
            return true;
        return SetCapacity(m_nCount, false);
    }

    /// Makes the array exactly `count` elements long; with `zero`, the
    /// elements above the old count are zero. May give memory back; a `count`
    /// of 0 frees the block.
    virtual bool SetCount(unsigned int count, bool zero)
    {
        if (!SetCapacity(count, zero))
            return false;
        m_nCount = count;
        return true;
    }

    /// Makes this array a copy of `other`, taking its m_nMinCapacity; an empty
    /// `other` clears this one (m_nMinCapacity 16). Self-copy is a no-op. False
    /// if the heap is exhausted, with this array as it was.
    bool Copy(const zunFastMesh & other)
    {
        if (&other == this)
            return true;
        if (other.m_nCount == 0)
        {
            Clear();
            return true;
        }
        const unsigned int ownMinCapacity = m_nMinCapacity;
        m_nMinCapacity = other.m_nMinCapacity;
        if (!SetCount(other.m_nCount, false))
        {
            m_nMinCapacity = ownMinCapacity;
            return false;
        }
        zunMemMove(m_pData, other.m_pData, Bytes(m_nCount));
        return true;
    }

    /// Copy(other); a failure leaves this array as it was.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Copy of the array itself does nothing.
    zunFastMesh & operator=(const zunFastMesh & other)
    {
        Copy(other);
        return *this;
    }

    /// Frees this array's block and takes `other`'s, as the move constructor.
    zunFastMesh & operator=(zunFastMesh && other) noexcept
    {
        if (&other != this)
        {
            FreeBlock();
            m_nMinCapacity = other.m_nMinCapacity;
            m_nCount = other.m_nCount;
            m_nCapacity = other.m_nCapacity;
            m_pData = other.m_pData;
            m_nShrinkBelow = other.m_nShrinkBelow;
            other.m_pData = nullptr;
            other.m_nCount = 0;
            other.m_nCapacity = 0;
        }
        return *this;
    }

    /// The number of elements.
    unsigned int Count() const { return m_nCount; }
    /// The number of elements the block has room for.
    unsigned int Capacity() const { return m_nCapacity; }
    /// Direct access; the index is not checked.
    ///@{
    T & operator[](unsigned int index) { return m_pData[index]; }
    const T & operator[](unsigned int index) const { return m_pData[index]; }
    ///@}
    /// The block; null while the capacity is 0.
    ///@{
    T * Data() { return m_pData; }
    const T * Data() const { return m_pData; }
    ///@}

    /// Iterators over indices 0 to Count(); the reverse ones run from Count()
    /// down. They stay valid when the block is replaced; an index past the
    /// count after a removal is not checked.
    ///@{
    iterator begin() { return iterator(&m_pData, 0); }
    iterator end() { return iterator(&m_pData, m_nCount); }
    const_iterator begin() const { return const_iterator(&m_pData, 0); }
    const_iterator end() const { return const_iterator(&m_pData, m_nCount); }
    const_iterator cbegin() const { return begin(); }
    const_iterator cend() const { return end(); }
    reverse_iterator rbegin() { return reverse_iterator(end()); }
    reverse_iterator rend() { return reverse_iterator(begin()); }
    const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
    const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }
    const_reverse_iterator crbegin() const { return rbegin(); }
    const_reverse_iterator crend() const { return rend(); }
    ///@}

    /// Calls `action(element)` for the elements `first` to `last`, both
    /// included; 0xFFFFFFFF stands for the last element. The walk goes down when
    /// `first` is above `last`. Nothing is visited when the array is empty,
    /// when both are 0xFFFFFFFF, or when a real index is not below Count(). The
    /// action must not change the count.
    ///@{
    template <typename Action> void ForEach(unsigned int first, unsigned int last, Action && action)
    {
        WalkRange(*this, first, last,
                  [&](T & element)
                  {
                      action(element);
                      return false;
                  });
    }
    template <typename Action> void ForEach(unsigned int first, unsigned int last, Action && action) const
    {
        WalkRange(*this, first, last,
                  [&](const T & element)
                  {
                      action(element);
                      return false;
                  });
    }
    ///@}

    /// Walks as ForEach and returns the index of the first element for which
    /// `predicate(element)` is true, or 0xFFFFFFFF.
    ///@{
    template <typename Predicate> unsigned int FindIf(unsigned int first, unsigned int last, Predicate && predicate)
    {
        return WalkRange(*this, first, last, predicate);
    }
    template <typename Predicate>
    unsigned int FindIf(unsigned int first, unsigned int last, Predicate && predicate) const
    {
        return WalkRange(*this, first, last, predicate);
    }
    ///@}

    /// Visits every element once, from `start` on, wrapping at the end of the
    /// array (downward and wrapping at the front when `reverse`), and returns
    /// the index of the first element for which `predicate(element)` is true,
    /// or 0xFFFFFFFF. `skipStart` leaves `start` itself out. A `start` of 0xFFFFFFFF (or
    /// any not below Count()) means the first element going forward and the
    /// last going back, and then `skipStart` is ignored.
    ///@{
    template <typename Predicate>
    unsigned int CircularFindIf(unsigned int start, bool reverse, bool skipStart, Predicate && predicate)
    {
        return WalkCircle(*this, start, reverse, skipStart, predicate);
    }
    template <typename Predicate>
    unsigned int CircularFindIf(unsigned int start, bool reverse, bool skipStart, Predicate && predicate) const
    {
        return WalkCircle(*this, start, reverse, skipStart, predicate);
    }
    ///@}

protected:
    /// The smallest capacity of a non-empty array, 16; Copy takes the source's.
    unsigned int m_nMinCapacity;
    /// The number of elements in use.
    unsigned int m_nCount;
    /// The number of elements the block has room for; 0 with no block.
    unsigned int m_nCapacity;
    /// The block from zunMemAlloc; null while the capacity is 0.
    T * m_pData;
    /// Half the capacity: a removal that leaves fewer elements gives memory back.
    unsigned int m_nShrinkBelow;

private:
    // 0xFFFFFFFF: "nothing found" as a result, "the last element" as an argument.
    static constexpr unsigned int kNoIndex = 0xFFFFFFFFu;

    static unsigned int Bytes(std::uint64_t count) { return static_cast<unsigned int>(count * sizeof(T)); }

    unsigned int ClampToEnd(unsigned int index) const { return index < m_nCount ? index : m_nCount; }

    bool IsInBlock(const T * item) const
    {
        const auto address = reinterpret_cast<std::uintptr_t>(item);
        const auto block = reinterpret_cast<std::uintptr_t>(m_pData);
        return m_pData != nullptr && address >= block && address < block + Bytes(m_nCapacity);
    }

    void FreeBlock()
    {
        void * block = m_pData;
        zunMemFree(block);
        m_pData = nullptr;
    }

    // Growth asks for the capacity plus one, not the count: that is what
    // makes the capacity rule double the block.
    bool GrowForOne() { return m_nCount < m_nCapacity || SetCapacity(std::uint64_t(m_nCapacity) + 1, false); }

    // The append path when the block is full, out of line so that Add stays
    // small. The item is saved first: it may live in the block being replaced.
    bool AddGrowing(const T & item)
    {
        const T value = item;
        if (!SetCapacity(std::uint64_t(m_nCapacity) + 1, false))
            return false;
        m_pData[m_nCount++] = value;
        return true;
    }

    // Moves the elements from `index` on up by `count`; the room is there.
    void OpenGap(unsigned int index, unsigned int count)
    {
        if (index < m_nCount && count != 0)
            zunMemMove(m_pData + index + count, m_pData + index, Bytes(m_nCount - index));
    }

    // Fills the gap at `index` from the `count` elements that stood at
    // `source` before the gap opened: those at or behind `index` now stand
    // `count` places higher.
    void CopyShiftedOwnElements(unsigned int index, unsigned int source, unsigned int count)
    {
        unsigned int belowGap = 0;
        if (source < index)
            belowGap = index - source < count ? index - source : count;
        zunMemMove(m_pData + index, m_pData + source, Bytes(belowGap));
        zunMemMove(m_pData + index + belowGap, m_pData + source + belowGap + count, Bytes(count - belowGap));
    }

    // The capacity operation, in 64 bits so that doubling cannot wrap. Fails
    // (without changing the block) when the heap is exhausted or when `n` is
    // above MaxCapacity.
    bool SetCapacity(std::uint64_t n, bool zero)
    {
        const std::uint64_t zeroEnd = n < m_nCapacity ? n : m_nCapacity;
        if (zero && zeroEnd > m_nCount)
            zunMemZero(m_pData + m_nCount, Bytes(zeroEnd - m_nCount));

        std::uint64_t capacity = 0;
        if (n != 0)
        {
            const std::uint64_t base = m_nCapacity > m_nMinCapacity ? m_nCapacity : m_nMinCapacity;
            if (base < n)
                capacity = 2 * base > n ? 2 * base : n;
            else if (base > 2 * n)
            {
                std::uint64_t half = base / 2;
                while (half > n)
                    half /= 2;
                capacity = 2 * half > m_nMinCapacity ? 2 * half : m_nMinCapacity;
            }
            else
                capacity = base;
            if (capacity > MaxCapacity)
                capacity = MaxCapacity;
            // A capacity cut to the limit cannot hold `n`; taking it would
            // leave the count above the block.
            if (capacity < n)
                return false;
        }

        if (capacity != m_nCapacity)
        {
            void * block = m_pData;
            if (!zunMemAlloc(block, Bytes(capacity), zero))
                return false;
            m_pData = static_cast<T *>(block);
        }
        m_nCapacity = static_cast<unsigned int>(capacity);
        m_nShrinkBelow = m_nCapacity / 2;
        return true;
    }

    // The range walk of ForEach and FindIf; Self is this class, const or not.
    template <typename Self, typename Predicate>
    static unsigned int WalkRange(Self & self, unsigned int first, unsigned int last, Predicate && predicate)
    {
        const unsigned int n = self.m_nCount;
        if (n == 0 || (first != kNoIndex && first >= n) || (first == kNoIndex && last == kNoIndex) ||
            (last != kNoIndex && last >= n))
            return kNoIndex;
        if (first == kNoIndex)
            first = n - 1;
        if (last == kNoIndex)
            last = n - 1;
        return WalkSpan(self, first, last, first > last, predicate);
    }

    // Visits [from, to] upward (or downward when `down`); empty when the
    // bounds are crossed for that direction.
    template <typename Self, typename Predicate>
    static unsigned int WalkSpan(Self & self, std::int64_t from, std::int64_t to, bool down, Predicate && predicate)
    {
        if (down)
        {
            for (std::int64_t i = from; i >= to; --i)
                if (predicate(self.m_pData[i]))
                    return static_cast<unsigned int>(i);
        }
        else
        {
            for (std::int64_t i = from; i <= to; ++i)
                if (predicate(self.m_pData[i]))
                    return static_cast<unsigned int>(i);
        }
        return kNoIndex;
    }

    template <typename Self, typename Predicate>
    static unsigned int WalkCircle(Self & self, unsigned int start, bool reverse, bool skipStart,
                                   Predicate && predicate)
    {
        const std::int64_t n = self.m_nCount;
        if (n == 0)
            return kNoIndex;
        // A start behind the end would walk outside the block; it is read as
        // 0xFFFFFFFF, which visits every element once all the same.
        if (start == kNoIndex || start >= n)
        {
            start = reverse ? static_cast<unsigned int>(n - 1) : 0;
            skipStart = false;
        }
        const std::int64_t s = start;
        const std::int64_t skip = skipStart ? 1 : 0;
        unsigned int found;
        if (reverse)
        {
            found = WalkSpan(self, s - skip, 0, true, predicate);
            if (found == kNoIndex)
                found = WalkSpan(self, n - 1, s + 1, true, predicate);
        }
        else
        {
            found = WalkSpan(self, s + skip, n - 1, false, predicate);
            if (found == kNoIndex)
                found = WalkSpan(self, 0, s - 1, false, predicate);
        }
        return found;
    }
};

#endif // ZUN_FAST_MESH_H
