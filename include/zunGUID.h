// zunGUID.h - 128-bit identifiers, the keys of user data and cached data.
//
// A zunGUID is 16 plain bytes laid out as the platform's UUID: a 32-bit word,
// two 16-bit words and 8 bytes. Its text form is five groups of 8, 4, 4, 4 and
// 12 hexadecimal digits joined by hyphens, without braces.
//
//   zunGUID fresh;                                            // a new identifier
//   zunGUID known("6b29fc40-ca47-1067-b31d-00dd010662da");  // parsed
//   if (known == zunGUID::Invalid) { /* the text was no identifier */ }
//   zunString text = known.ToString();                       // lower case
//
// The rules a caller must know:
//  - The default constructor makes a new unique value; it is not Invalid.
//  - Bad text does not throw: it gives Invalid (all zero), which cannot be
//    told from a parsed all-zero text. Digits may be of either case; the
//    empty text and text with braces are refused.
//  - operator< is memcmp order of the 16 stored bytes, so on a little-endian
//    machine it is not the order of the text forms.
//  - File form, 16 bytes: Data1 as a 32-bit integer, Data2 and Data3 as 16-bit
//    integers (all three in the stream's byte order), then Data4 as 8 bytes.
//    A read stopped by a chunk's limit leaves each unread field as it was;
//    the reading constructor therefore takes the default value first.
#ifndef ZUN_GUID_H
#define ZUN_GUID_H

#include "zunConfig.h"
#include "zunString.h"

struct zunFile;

/// A 128-bit identifier, 16 plain bytes in the platform's UUID layout.
struct ZUN_API zunGUID
{
    unsigned int Data1;     ///< the first group of the text form, 8 digits
    unsigned short Data2;   ///< the second group, 4 digits
    unsigned short Data3;   ///< the third group, 4 digits
    unsigned char Data4[8]; ///< the last two groups, 4 and 12 digits, byte by byte

    /// The all-zero value, parsed from "00000000-0000-0000-0000-000000000000"
    /// at library load.
    static const zunGUID Invalid;

    /// A new unique identifier from the platform's UUID service.
    zunGUID();
    /// Parses `text`; a string without a buffer is the empty text. Invalid on failure.
    zunGUID(const zunString & text);
    /// Parses `text` (null is the empty text). Invalid on failure.
    zunGUID(const char * text);
    /// Copy the 16 bytes.
    ///@{
    zunGUID(const zunGUID & other) = default;
    zunGUID & operator=(const zunGUID & other) = default;
    ///@}
    /// `defaultValue`, then Read(file).
    zunGUID(zunFile * file, const zunGUID & defaultValue);

    /// 36 lower-case characters; the empty string if the platform fails.
    zunString ToString() const;
    /// ToString widened unit by unit.
    zunStringW ToString16() const;

    /// All 16 bytes.
    ///@{
    bool operator==(const zunGUID & other) const;
    bool operator!=(const zunGUID & other) const;
    ///@}
    /// memcmp order of the 16 stored bytes.
    bool operator<(const zunGUID & other) const;

    /// Reads the 16-byte file form; a read stopped at the stream's limit
    /// leaves each unread field as it was.
    void Read(zunFile * file);
    /// Writes the 16-byte file form; throws zunException when the bytes
    /// don't go out.
    void Write(zunFile * file) const;
};

#endif // ZUN_GUID_H
