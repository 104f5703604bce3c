// zunFile: the typed reads and writes, the library's file format at the level
// of single fields, and the file forms of the strings.
//
// Every ordered value goes through WriteOrdered/ReadOrdered below, with its
// width known at compile time, so that a field costs a test, a copy into the
// cached block and, in a stream of the other byte order, one swap.
#include <cstdarg>
#include <cstring>

#include "FileState.h"
#include "ThrowSite.h"
#include "zunException.h"
#include "zunPath.h"

namespace
{
    using State = zunFileState;

    [[noreturn]] void ThrowWriteBlockFailed()
    {
        throw ZUN_EXCEPTION("unsigned __int64 __cdecl zunFile::Write_Block(const void *,unsigned __int64) "
                            "throw(struct zunException)")
            .SetDebugDescription("zunFile::Write_Block failed");
    }

    [[noreturn]] void ThrowWriteBlockEndiannessFailed()
    {
        throw ZUN_EXCEPTION("void __cdecl zunFile::Write_BlockEndianness(const void *,unsigned __int64) "
                            "throw(struct zunException)")
            .SetDebugDescription("zunFile::Write_BlockEndianness failed");
    }

    [[noreturn]] void ThrowWriteArrayFailed()
    {
        throw ZUN_EXCEPTION("void __cdecl zunFile::Write_Array(const void *,unsigned __int64,unsigned int,enum "
                            "zunFile::ByteOrderDifference) throw(struct zunException)")
            .SetDebugDescription("zunFile::Write_Array failed");
    }

    [[noreturn]] void ThrowReadBlockEndiannessFailed()
    {
        throw ZUN_EXCEPTION("void __cdecl zunFile::Read_BlockEndianness(void *,unsigned __int64) "
                            "throw(struct zunException)")
            .SetDebugDescription("zunFile::Read_BlockEndianness failed");
    }

    [[noreturn]] void ThrowReadArrayFailed()
    {
        throw ZUN_EXCEPTION("void __cdecl zunFile::Read_Array(void *,unsigned __int64,unsigned int,enum "
                            "zunFile::ByteOrderDifference) throw(struct zunException)")
            .SetDebugDescription("zunFile::Read_Array failed");
    }

    [[noreturn]] void ThrowReadStringNoMemory()
    {
        throw ZUN_EXCEPTION("void __cdecl zunFile::Read_String(struct zunStringT<char,struct zunCharHelper<char> > "
                            "&,enum zunFile::ReadStringOption) throw(struct zunException)")
            .SetDebugDescription("Not enough memory");
    }

    const char * const kWideBlockReport = "endianness not considered on block larger than 8 bytes";

    /// Values of 2 to 8 bytes follow the byte order rule; others never do.
    bool IsOrderedWidth(std::uint64_t size)
    {
        return size >= 2 && size <= 8;
    }

    void CopyReversed(unsigned char * to, const void * from, std::uint64_t size)
    {
        const auto * bytes = static_cast<const unsigned char *>(from);
        for (std::uint64_t i = 0; i < size; ++i)
            to[i] = bytes[size - 1 - i];
    }

    /// (n + 3) with its low two bits cleared: from the block's own length,
    /// whatever the position.
    std::uint64_t PaddedSize(std::uint64_t size)
    {
        return (size + 3) & ~std::uint64_t(3);
    }

    /// True when `count` bytes from the position would pass `bound`.
    bool Crosses(const State & state, std::uint64_t count, std::uint64_t bound)
    {
        return state.position > bound || count > bound - state.position;
    }

    std::uint64_t ReadBound(const State & state)
    {
        return state.fileSize < state.limit ? state.fileSize : state.limit;
    }

    template <std::uint64_t N> void WriteOrdered(State & state, const void * value)
    {
        static_assert(N >= 2 && N <= 8, "an ordered value has 2 to 8 bytes");
        std::uint64_t written;
        if (state.SwapsBytes())
        {
            unsigned char reversed[8];
            CopyReversed(reversed, value, N);
            written = state.CacheWrite(reversed, N);
        }
        else
            written = state.CacheWrite(value, N);
        if (written != N)
            ThrowWriteBlockEndiannessFailed();
    }

    /// False, with the output untouched, when the value would cross the limit
    /// or the stream's size: the position then moves to the smaller of them.
    template <std::uint64_t N> bool ReadOrdered(State & state, void * value)
    {
        static_assert(N >= 2 && N <= 8, "an ordered value has 2 to 8 bytes");
        const std::uint64_t bound = ReadBound(state);
        if (Crosses(state, N, bound))
        {
            state.CacheSeek(bound);
            return false;
        }
        if (state.SwapsBytes())
        {
            unsigned char stored[8];
            if (state.CacheRead(stored, N) != N)
                ThrowReadBlockEndiannessFailed();
            unsigned char reversed[8];
            CopyReversed(reversed, stored, N);
            std::memcpy(value, reversed, N);
        }
        else if (state.CacheRead(value, N) != N)
            ThrowReadBlockEndiannessFailed();
        return true;
    }

    std::uint64_t WriteBlock(State & state, const void * data, std::uint64_t count)
    {
        const std::uint64_t written = state.CacheWrite(data, count);
        if (written < count)
            ThrowWriteBlockFailed();
        return written;
    }

    std::uint64_t ReadBlock(State & state, void * data, std::uint64_t count)
    {
        if (Crosses(state, count, state.limit))
        {
            state.CacheSeek(state.limit);
            return 0;
        }
        return state.CacheRead(data, count);
    }

    /// The sum of the bytes, a string's checksum.
    std::uint64_t SumBytes(const char * text, unsigned int length)
    {
        std::uint64_t sum = 0;
        for (unsigned int i = 0; i < length; ++i)
            sum += static_cast<unsigned char>(text[i]);
        return sum;
    }
}

// ---- Writes.

void zunFile::Write_Bool(bool value)
{
    const std::int32_t widened = value ? 1 : 0;
    WriteOrdered<4>(*m_pState, &widened);
}

void zunFile::Write_Char(char value)
{
    WriteBlock(*m_pState, &value, 1);
}

void zunFile::Write_Int8(signed char value)
{
    WriteBlock(*m_pState, &value, 1);
}

void zunFile::Write_UInt8(unsigned char value)
{
    WriteBlock(*m_pState, &value, 1);
}

void zunFile::Write_Int16(short value)
{
    WriteOrdered<2>(*m_pState, &value);
}

void zunFile::Write_UInt16(unsigned short value)
{
    WriteOrdered<2>(*m_pState, &value);
}

void zunFile::Write_Int32(int value)
{
    WriteOrdered<4>(*m_pState, &value);
}

void zunFile::Write_Int32(long value)
{
    const std::int32_t low = static_cast<std::int32_t>(value);
    WriteOrdered<4>(*m_pState, &low);
}

void zunFile::Write_UInt32(unsigned int value)
{
    WriteOrdered<4>(*m_pState, &value);
}

void zunFile::Write_UInt32(unsigned long value)
{
    const std::uint32_t low = static_cast<std::uint32_t>(value);
    WriteOrdered<4>(*m_pState, &low);
}

void zunFile::Write_Int64(std::int64_t value)
{
    WriteOrdered<8>(*m_pState, &value);
}

void zunFile::Write_UInt64(std::uint64_t value)
{
    WriteOrdered<8>(*m_pState, &value);
}

void zunFile::Write_Float(double value)
{
    WriteOrdered<8>(*m_pState, &value);
}

void zunFile::Write_FloatSP(float value)
{
    WriteOrdered<4>(*m_pState, &value);
}

void zunFile::Write_String(const zunString & text)
{
    const std::uint32_t length = text.Length();
    WriteOrdered<4>(*m_pState, &length);
    if (length == 0)
        return;
    // The text and its terminator, as an array of bytes.
    const std::uint64_t bytes = std::uint64_t(length) + 1;
    if (m_pState->CacheWrite(text.m_pData, bytes) != bytes)
        ThrowWriteArrayFailed();
}

void zunFile::Write_String16(const zunStringW & text)
{
    zunString narrow;
    narrow = text;
    Write_String(narrow);
}

void zunFile::Write_CString(const char * text)
{
    if (text == nullptr || *text == '\0')
        return;
    WriteBlock(*m_pState, text, std::strlen(text));
}

std::uint64_t zunFile::Write_Block(const void * data, std::uint64_t count)
{
    return WriteBlock(*m_pState, data, count);
}

void zunFile::Write_BlockPadding(const void * data, std::uint64_t count)
{
    WriteBlock(*m_pState, data, count);
    static const unsigned char zeros[3] = {0, 0, 0};
    const std::uint64_t pad = PaddedSize(count) - count;
    if (pad != 0)
        WriteBlock(*m_pState, zeros, pad);
}

void zunFile::Printf(const char * format, ...)
{
    zunString text;
    va_list args;
    va_start(args, format);
    text.VPrintf(format, args);
    va_end(args);
    try
    {
        Write_String(text);
    }
    catch (const zunException &)
    {
        // Printf reports no write failure: the text is dropped.
    }
}

void zunFile::Write_BlockEndianness(const void * data, std::uint64_t size)
{
    if (size > 8)
        zunFixMe(kWideBlockReport);
    std::uint64_t written;
    if (IsOrderedWidth(size) && m_pState->SwapsBytes())
    {
        unsigned char reversed[8];
        CopyReversed(reversed, data, size);
        written = m_pState->CacheWrite(reversed, size);
    }
    else
        written = m_pState->CacheWrite(data, size);
    if (written != size)
        ThrowWriteBlockEndiannessFailed();
}

void zunFile::Write_Array(const void * data, std::uint64_t elementSize, unsigned int count,
                          ByteOrderDifference difference)
{
    if (difference == DiffersByByteOrder && m_pState->SwapsBytes() && IsOrderedWidth(elementSize))
    {
        const auto * element = static_cast<const unsigned char *>(data);
        for (unsigned int i = 0; i < count; ++i, element += elementSize)
            Write_BlockEndianness(element, elementSize);
        return;
    }
    const std::uint64_t bytes = elementSize * count;
    if (m_pState->CacheWrite(data, bytes) != bytes)
        ThrowWriteArrayFailed();
}

// ---- Reads.

void zunFile::Read_Bool(bool & value)
{
    // Starts from the present value, so that at a limit the bool keeps it.
    std::int32_t stored = value ? 1 : 0;
    ReadOrdered<4>(*m_pState, &stored);
    value = stored != 0;
}

void zunFile::Read_Char(char & value)
{
    ReadBlock(*m_pState, &value, 1);
}

void zunFile::Read_Int8(signed char & value)
{
    ReadBlock(*m_pState, &value, 1);
}

void zunFile::Read_UInt8(unsigned char & value)
{
    ReadBlock(*m_pState, &value, 1);
}

void zunFile::Read_Int16(short & value)
{
    ReadOrdered<2>(*m_pState, &value);
}

void zunFile::Read_UInt16(unsigned short & value)
{
    ReadOrdered<2>(*m_pState, &value);
}

void zunFile::Read_Int32(int & value)
{
    ReadOrdered<4>(*m_pState, &value);
}

void zunFile::Read_Int32(long & value)
{
    std::int32_t stored;
    if (ReadOrdered<4>(*m_pState, &stored))
        value = stored;
}

void zunFile::Read_UInt32(unsigned int & value)
{
    ReadOrdered<4>(*m_pState, &value);
}

void zunFile::Read_UInt32(unsigned long & value)
{
    std::uint32_t stored;
    if (ReadOrdered<4>(*m_pState, &stored))
        value = stored;
}

void zunFile::Read_Int64(std::int64_t & value)
{
    ReadOrdered<8>(*m_pState, &value);
}

void zunFile::Read_UInt64(std::uint64_t & value)
{
    ReadOrdered<8>(*m_pState, &value);
}

void zunFile::Read_Float(double & value)
{
    ReadOrdered<8>(*m_pState, &value);
}

void zunFile::Read_FloatSP(float & value)
{
    ReadOrdered<4>(*m_pState, &value);
}

void zunFile::Read_String(zunString & text, ReadStringOption option)
{
    std::uint32_t length = 0;
    ReadOrdered<4>(*m_pState, &length);
    // A length of 0, read or stopped at a limit, empties the string: unlike a
    // number, a string doesn't keep its value at a limit.
    if (length == 0)
    {
        text = nullptr;
        return;
    }
    if (option == TerminatorCounted)
        --length;
    // The block has room for the terminator. A stored length of 0xFFFFFFFF
    // leaves no room in 32 bits, which the heap couldn't give anyway. The
    // block is resized in place, so that a failure keeps the string.
    void * block = text.m_pData;
    if (length == 0xFFFFFFFFu || !zunMemAlloc(block, length + 1, false))
        ThrowReadStringNoMemory();
    std::memset(block, 0, std::uint64_t(length) + 1);
    text.m_pData = static_cast<char *>(block);
    text.m_nLength = length;
    text.m_nChecksum = 0;
    Read_Array(block, 1, length, SameInAnyByteOrder);
    text.m_nChecksum = SumBytes(text.m_pData, length);
    if (option != NoTerminator)
        m_pState->CacheSeek(m_pState->position + 1);
}

void zunFile::Read_String16(zunStringW & text, ReadStringOption)
{
    zunString narrow;
    Read_String(narrow, Terminated);
    text = nullptr;
    text = narrow;
}

std::uint64_t zunFile::Read_Block(void * data, std::uint64_t count)
{
    return ReadBlock(*m_pState, data, count);
}

void zunFile::Read_BlockPadded(void * data, std::uint64_t count)
{
    ReadBlock(*m_pState, data, count);
    // The pad is skipped unread, without a look at the limit.
    m_pState->CacheSeek(m_pState->position + PaddedSize(count) - count);
}

void zunFile::Read_BlockEndianness(void * data, std::uint64_t size)
{
    if (size > 8)
        zunFixMe(kWideBlockReport);
    const std::uint64_t bound = ReadBound(*m_pState);
    if (Crosses(*m_pState, size, bound))
    {
        m_pState->CacheSeek(bound);
        return;
    }
    if (IsOrderedWidth(size) && m_pState->SwapsBytes())
    {
        unsigned char stored[8];
        if (m_pState->CacheRead(stored, size) != size)
            ThrowReadBlockEndiannessFailed();
        CopyReversed(static_cast<unsigned char *>(data), stored, size);
    }
    else if (m_pState->CacheRead(data, size) != size)
        ThrowReadBlockEndiannessFailed();
}

void zunFile::Read_Array(void * data, std::uint64_t elementSize, unsigned int count, ByteOrderDifference difference)
{
    const std::uint64_t bytes = elementSize * count;
    if (Crosses(*m_pState, bytes, m_pState->limit))
    {
        m_pState->CacheSeek(m_pState->limit);
        return;
    }
    if (difference == DiffersByByteOrder && m_pState->SwapsBytes() && IsOrderedWidth(elementSize))
    {
        // Element by element, each stopping silently at the end of the file.
        auto * element = static_cast<unsigned char *>(data);
        for (unsigned int i = 0; i < count; ++i, element += elementSize)
            Read_BlockEndianness(element, elementSize);
        return;
    }
    // Unlike a single value, a plain array running past the end of the file
    // inside the limit is an error.
    if (m_pState->CacheRead(data, bytes) != bytes)
        ThrowReadArrayFailed();
}

// ---- The strings' file forms: one string primitive each.

template <typename C, typename H> void zunStringT<C, H>::Read(zunFile * file)
{
    if constexpr (std::is_same<C, char>::value)
        file->Read_String(*this, zunFile::Terminated);
    else
        file->Read_String16(*this, zunFile::Terminated);
}

template <typename C, typename H> void zunStringT<C, H>::Write(zunFile * file) const
{
    if constexpr (std::is_same<C, char>::value)
        file->Write_String(*this);
    else
        file->Write_String16(*this);
}

template void zunStringT<char, zunCharHelper<char>>::Read(zunFile *);
template void zunStringT<char, zunCharHelper<char>>::Write(zunFile *) const;
template void zunStringT<zunWChar, zunCharHelper<zunWChar>>::Read(zunFile *);
template void zunStringT<zunWChar, zunCharHelper<zunWChar>>::Write(zunFile *) const;

// ---- The path's file form: its canonical text as a wide string.

zunPath::zunPath(zunFile * file, const zunPath & defaultValue) : zunPath(defaultValue)
{
    Read(file);
}

void zunPath::Read(zunFile * file)
{
    // Straight into the stored text: what was written is what the path holds.
    file->Read_String16(MutableText(), zunFile::Terminated);
}

void zunPath::Write(zunFile * file) const
{
    file->Write_String16(Text());
}
