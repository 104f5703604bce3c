// FileArrayAccess.h - the library's way to the private array operations of
// zunFile, through which its persisted classes store their fields.
//
//   zunFileArrayAccess::Write_Array(file, m, 8, 16, zunFile::DiffersByByteOrder);
//
// Element size 1 with SameInAnyByteOrder for raw bytes, 4 or 8 with
// DiffersByByteOrder for arrays of 32-bit integers or doubles.
#ifndef ZUN_FILE_ARRAY_ACCESS_H
#define ZUN_FILE_ARRAY_ACCESS_H

#include "zunFile.h"

struct zunFileArrayAccess
{
    /// Crossing the limit: moves to it, `data` untouched. Otherwise all the
    /// bytes, or (ordered elements in a stream of the other byte order) the
    /// elements one by one, each stopping silently at the end of the file. A
    /// plain array that runs past the end of the file throws.
    static void Read_Array(zunFile * file, void * data, std::uint64_t elementSize, unsigned int count,
                           zunFile::ByteOrderDifference difference)
    {
        file->Read_Array(data, elementSize, count, difference);
    }
    /// Throws when the bytes don't go out.
    static void Write_Array(zunFile * file, const void * data, std::uint64_t elementSize, unsigned int count,
                            zunFile::ByteOrderDifference difference)
    {
        file->Write_Array(data, elementSize, count, difference);
    }
    /// One value of `size` bytes, reversed between byte orders when 2 to 8 bytes.
    static void Read_BlockEndianness(zunFile * file, void * data, std::uint64_t size)
    {
        file->Read_BlockEndianness(data, size);
    }
    static void Write_BlockEndianness(zunFile * file, const void * data, std::uint64_t size)
    {
        file->Write_BlockEndianness(data, size);
    }
};

#endif // ZUN_FILE_ARRAY_ACCESS_H
