// UUIDs through libuuid. libuuid keeps the 16 bytes in text order (every
// field big-endian); zunGUID keeps its first three fields as native words,
// so the conversion swaps them on a little-endian machine.
#include "Uuid.h"

#include <cstring>

#include <uuid/uuid.h>

namespace zunPlatform
{
    namespace
    {
        // Text order <-> native layout; the same reordering both ways.
        void SwapFields(const unsigned char (&from)[16], unsigned char (&to)[16])
        {
            std::memcpy(to, from, 16);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
            const unsigned char order[8] = {3, 2, 1, 0, 5, 4, 7, 6};
            for (int i = 0; i < 8; ++i)
                to[i] = from[order[i]];
#endif
        }
    }

    void CreateUuid(unsigned char (&value)[16])
    {
        uuid_t raw;
        uuid_generate(raw);
        SwapFields(raw, value);
    }

    bool ParseUuid(const char * text, unsigned char (&value)[16])
    {
        uuid_t raw;
        if (text == nullptr || std::strlen(text) != 36 || uuid_parse(text, raw) != 0)
            return false;
        SwapFields(raw, value);
        return true;
    }

    bool FormatUuid(const unsigned char (&value)[16], char (&text)[37])
    {
        uuid_t raw;
        SwapFields(value, raw);
        uuid_unparse_lower(raw, text);
        return true;
    }
}
