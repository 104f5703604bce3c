// Uuid.h - the platform's UUID service under zunGUID.
//
// Values cross this layer as 16 bytes in the layout of zunGUID: a native
// 32-bit word, two native 16-bit words, then 8 bytes in text order.
#ifndef ZUN_PLATFORM_UUID_H
#define ZUN_PLATFORM_UUID_H

namespace zunPlatform
{
    /// Fills `value` with a new identifier that no other call gives.
    void CreateUuid(unsigned char (&value)[16]);
    /// Parses the 36-character form (groups of 8, 4, 4, 4 and 12 hexadecimal
    /// digits of either case, joined by hyphens, no braces). False for any
    /// other text, the empty one included, with `value` left alone.
    bool ParseUuid(const char * text, unsigned char (&value)[16]);
    /// Writes the 36-character lower-case form and its terminator; false if
    /// the platform cannot, with `text` left alone.
    bool FormatUuid(const unsigned char (&value)[16], char (&text)[37]);
}

#endif // ZUN_PLATFORM_UUID_H
