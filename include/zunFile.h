// zunFile.h - the binary stream every document of the library is written through.
//
// A zunFile is one concrete stream over an abstract back-end (zunFile::CallBacks):
// a file on disk (zunFileDisk) or a byte array (zunFileMem), or any storage a
// caller implements. It owns its back-end. A document is nothing but a sequence
// of the typed primitives below and of chunks (zunChunk.h) that its writer and
// reader agree on: no header, no type tags, no alignment.
//
//   std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
//   file->Write_Int32(7);
//   file->Write_Float(0.5);
//   file->Write_String(name);
//   file->Close();
//
// The rules a caller must know:
//  - Positions, sizes and limits are unsigned 64-bit byte counts from the start.
//  - Reads are forgiving, writes are not. A read that would cross the limit
//    (SetLimit; chunks set it) stops at the limit and leaves its output as it
//    was, so a reader asking for more fields than were written keeps its
//    defaults. A write that fails throws a zunException.
//  - Everything goes through one block cache of 65,536 bytes that reads and
//    writes share: a field costs a copy, and storage sees whole blocks. Written
//    bytes reach the back-end when their block is full or left, and at Close.
//    Call Close to learn of a failure: the destructor flushes and closes too,
//    but reports a failure only to the debug print channel.
//  - The stream's idea of the file size is taken once at construction and
//    raised by cached writes only; with the cache off it stays as it was.
//  - Byte order: values of 2 to 8 bytes are reversed when SetEndianness names
//    the order the build doesn't have. Raw blocks and string bytes never are.
//  - One thread at a time: nothing is locked.
#ifndef ZUN_FILE_H
#define ZUN_FILE_H

#include <cstdint>
#include <memory>

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunString.h"
#include "zunSystem.h"

struct zunFileArrayAccess;
struct zunFileState;

/// A byte stream with a block cache, a read limit, chunks and a byte order,
/// over a back-end given as CallBacks.
struct ZUN_API zunFile
{
    /// The stream's only view of storage. Implement it to put a stream over
    /// storage of your own; back-ends report failures by throwing zunException.
    struct ZUN_API CallBacks
    {
        /// Releases the back-end; does not close it (the stream does that).
        virtual ~CallBacks();
        /// Writes at the back-end's pointer and moves it on; the bytes written.
        virtual std::uint64_t Write(const void * data, std::uint64_t count) const = 0;
        /// Reads at the pointer and moves it on; the bytes read, maybe fewer.
        virtual std::uint64_t Read(void * data, std::uint64_t count) = 0;
        /// Moves the pointer to an absolute position; returns the position.
        virtual std::uint64_t SetFilePointer(std::uint64_t position) = 0;
        /// The pointer's position; the stream asks once, at its construction.
        virtual std::uint64_t GetFilePointer() = 0;
        /// The storage's size in bytes; asked once, at the stream's
        /// construction: from then on the stream keeps the size itself.
        virtual std::uint64_t GetFileSize() = 0;
        /// Ends the use of the storage.
        virtual void Close() = 0;
    };

    /// No limit: the value of GetLimit on a fresh stream.
    static constexpr std::uint64_t NoLimit = 0xFFFFFFFFFFFFFFFFull;

    // The enumerations are 32-bit ints, so that any number a caller passes is
    // defined; each says how numbers outside its list act.

    /// Base of SetCurrPos; any other number acts as FromStart.
    enum PositionRelativeTo : int
    {
        FromStart = 0,
        FromCurrent = 1,
        FromEnd = 2
    };
    /// Base of SetLimit; any number but 0 acts as LimitFromCurrent.
    enum LimitRelativeTo : int
    {
        LimitAbsolute = 0,
        LimitFromCurrent = 1
    };
    /// Width of the size field of chunks created or entered from now on;
    /// anything but ChunkSize64 is 32 bits.
    enum ChunkSizeBits : int
    {
        ChunkSize32 = 0,
        ChunkSize64 = 1
    };
    /// Stored by SetEncodingForStringRead; no read looks at it. Strings are UTF-8.
    enum StringEncoding : int
    {
        StringEncodingUTF8 = 0
    };
    /// The legacy form Read_String expects behind the 32-bit length n.
    enum ReadStringOption : int
    {
        NoTerminator = 0,     ///< n bytes
        Terminated = 1,       ///< n bytes and one skipped byte: what Write_String writes
        TerminatorCounted = 2 ///< n - 1 bytes and one skipped byte
    };
    /// Whether the elements of an array follow the byte order rule.
    enum ByteOrderDifference : int
    {
        SameInAnyByteOrder = 0,
        DiffersByByteOrder = 1
    };

    // ---- Life cycle.

    /// Takes the back-end (not null), makes the 65,536-byte cache, then asks the
    /// back-end for its pointer (the stream's position) and its size, in that
    /// order. If the heap can't give the cache the stream runs without one.
    explicit zunFile(std::unique_ptr<CallBacks> callBacks);
    /// Closes the stream if Close hasn't run: flushes the cache and closes the
    /// back-end. A zunException from that work is written to the debug print
    /// channel ("Silencing an exception originally thrown by ...") and dropped.
    virtual ~zunFile() noexcept(false);
    zunFile(const zunFile &) = delete;
    zunFile & operator=(const zunFile &) = delete;

    /// Flushes the cache and closes the back-end, once; a second call does
    /// nothing. The object stays usable, but what is done later reaches a
    /// closed back-end (and cached writes after it are never flushed).
    void Close();

    // ---- Position, cache and limit.

    /// The stream's position, which may lie past the end.
    std::uint64_t GetCurrPos() const;
    /// Moves to `offset` from the start, the current position or the size, in
    /// wrapping unsigned arithmetic; returns the new position. Nothing is
    /// checked: a position past the end is taken as it stands. A move inside
    /// the cached block costs no back-end call.
    std::uint64_t SetCurrPos(std::int64_t offset, PositionRelativeTo relativeTo = FromStart);
    /// The cache's block size; 0 means no cache.
    std::uint64_t GetCacheSize();
    /// Flushes, then resizes the cache (0 turns it off). The next block is
    /// taken at position / size, the integer quotient, which equals the
    /// aligned block at position 0. After turning the cache off in mid-stream
    /// call SetCurrPos: the back-end's pointer stands where the last block
    /// transfer left it. A size the heap can't give leaves the size as it was.
    void SetCacheSize(std::uint64_t size);
    /// The position reads must not cross: `value`, or the position + `value`.
    /// Moves nothing and doesn't look at any enclosing limit.
    void SetLimit(std::uint64_t value, LimitRelativeTo relativeTo = LimitAbsolute);
    /// The limit as stored; NoLimit when none is set.
    std::uint64_t GetLimit();
    /// Position >= limit.
    bool IsLimitReached();
    /// Moves to the limit; with no limit, stays.
    void ReachLimit();
    /// Position >= the stream's idea of the size.
    bool IsEOF();

    // ---- Stored settings.

    /// The width of the size field of new chunks, ChunkSize32 at first; the
    /// number is stored as given.
    ///@{
    ChunkSizeBits GetChunkSizeBits();
    void SetChunkSizeBits(ChunkSizeBits bits);
    ///@}
    /// The stream's byte order, Little at first. Applies to what follows;
    /// nothing already written is converted.
    ///@{
    zunSystem::Endianness GetEndianness() const;
    void SetEndianness(zunSystem::Endianness endianness);
    ///@}
    /// Stores the encoding; strings are read as UTF-8 whatever it says.
    void SetEncodingForStringRead(StringEncoding encoding);

    // ---- Typed writes. Each throws a zunException when the bytes don't go out.

    /// 4 bytes, ordered: 0 or 1.
    void Write_Bool(bool value);
    /// 1 byte each.
    ///@{
    void Write_Char(char value);
    void Write_Int8(signed char value);
    void Write_UInt8(unsigned char value);
    ///@}
    /// 2 bytes, ordered.
    ///@{
    void Write_Int16(short value);
    void Write_UInt16(unsigned short value);
    ///@}
    /// 4 bytes, ordered. A long is written as its low 32 bits.
    ///@{
    void Write_Int32(int value);
    void Write_Int32(long value);
    void Write_UInt32(unsigned int value);
    void Write_UInt32(unsigned long value);
    ///@}
    /// 8 bytes, ordered.
    ///@{
    void Write_Int64(std::int64_t value);
    void Write_UInt64(std::uint64_t value);
    ///@}
    /// A double: 8 bytes, ordered.
    void Write_Float(double value);
    /// A float: 4 bytes, ordered.
    void Write_FloatSP(float value);
    /// 32-bit ordered length n (bytes, no terminator), then, if n isn't 0, the
    /// n bytes and a zero byte. "abc" is 03 00 00 00 61 62 63 00.
    void Write_String(const zunString & text);
    /// The UTF-8 form of `text`, written as Write_String writes it.
    void Write_String16(const zunStringW & text);
    /// The characters alone; null or empty text writes nothing.
    void Write_CString(const char * text);
    /// The bytes as they stand; returns `count`.
    std::uint64_t Write_Block(const void * data, std::uint64_t count);
    /// The bytes, then zero bytes up to a multiple of 4 of `count`.
    void Write_BlockPadding(const void * data, std::uint64_t count);
    /// Formats like zunString::Printf and writes the result as Write_String
    /// does. A failure to write is swallowed: nothing is reported.
    void Printf(const char * format, ...) ZUN_PRINTF_FORMAT(2, 3);

    // ---- Typed reads. A value that would cross the limit, or the stream's
    // ---- size, is not read: the position moves to the smaller of the two and
    // ---- the output keeps its value.

    /// Any non-zero number reads as true.
    void Read_Bool(bool & value);
    /// 1 byte each.
    ///@{
    void Read_Char(char & value);
    void Read_Int8(signed char & value);
    void Read_UInt8(unsigned char & value);
    ///@}
    /// 2 bytes, ordered.
    ///@{
    void Read_Int16(short & value);
    void Read_UInt16(unsigned short & value);
    ///@}
    /// 4 bytes, ordered; a long is sign-extended from them, an unsigned long
    /// zero-extended.
    ///@{
    void Read_Int32(int & value);
    void Read_Int32(long & value);
    void Read_UInt32(unsigned int & value);
    void Read_UInt32(unsigned long & value);
    ///@}
    /// 8 bytes, ordered.
    ///@{
    void Read_Int64(std::int64_t & value);
    void Read_UInt64(std::uint64_t & value);
    ///@}
    /// A double from 8 bytes, ordered.
    void Read_Float(double & value);
    /// A float from 4 bytes, ordered.
    void Read_FloatSP(float & value);
    /// Unlike a number, a string read at the limit becomes empty (its length
    /// reads as 0). With the length inside the limit and the characters not,
    /// the string holds that many zero characters. Characters past the end of
    /// the file, inside the limit, throw. Throws "Not enough memory" when the
    /// heap can't hold the text; the string then keeps its value.
    void Read_String(zunString & text, ReadStringOption option = Terminated);
    /// Reads a narrow Terminated string, whatever `option` says, and converts it.
    void Read_String16(zunStringW & text, ReadStringOption option = Terminated);
    /// Crossing the limit: moves to it, reads nothing at all and returns 0.
    /// Otherwise the bytes read, fewer at the end of the file.
    std::uint64_t Read_Block(void * data, std::uint64_t count);
    /// Read_Block, then skips the pad to a multiple of 4 of `count`.
    void Read_BlockPadded(void * data, std::uint64_t count);

private:
    friend struct zunFileArrayAccess;

    // Arrays of `count` elements of `elementSize` bytes; the library's
    // persisted classes store their fields through these.
    void Read_Array(void * data, std::uint64_t elementSize, unsigned int count, ByteOrderDifference difference);
    void Write_Array(const void * data, std::uint64_t elementSize, unsigned int count, ByteOrderDifference difference);
    // One value of `size` bytes under the byte order rule.
    void Read_BlockEndianness(void * data, std::uint64_t size);
    void Write_BlockEndianness(const void * data, std::uint64_t size);

    // The private state: position, limit, cache and back-end.
    zunFileState * m_pState;
};

/// Streams over a byte array, without a cache: every operation reaches the
/// array at once. The array must outlive the stream and must not change
/// behind its back. A memory file holds less than 4 GiB.
struct ZUN_API zunFileMem
{
    /// A stream that reads and writes `mesh` from its start. Writing past the
    /// end grows the array. The stream's size (for IsEOF and the bounded reads)
    /// is the count at this call: make a stream for reading after filling it.
    static std::unique_ptr<zunFile> Create(zunFastMesh<unsigned char> & mesh);
    /// A stream that reads `mesh`; a write reports a soft failure and writes
    /// nothing, so the typed write throws.
    static std::unique_ptr<zunFile> Create(const zunFastMesh<unsigned char> & mesh);
};

#endif // ZUN_FILE_H
