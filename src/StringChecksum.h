// StringChecksum.h - the running checksum of zunString and zunStringW: the sum
// of the low byte of every unit, as an unsigned 64-bit sum.
//
// Every mutator pays one pass for it, so the pass runs on the widest vector
// registers the processor has (picked once at load), and the copies that
// assignment makes take the sum on the way.
#ifndef ZUN_STRING_CHECKSUM_H
#define ZUN_STRING_CHECKSUM_H

#include <cstddef>
#include <cstdint>

#include "zunConfig.h"

namespace zunStringChecksum
{
    /// The sum of the low bytes of `units` units of `text`.
    std::uint64_t SumLowBytes(const char * text, std::size_t units);
    std::uint64_t SumLowBytes(const zunWChar * text, std::size_t units);

    /// Copies `units` units from `source` to `target` (which must not overlap)
    /// and gives the sum of their low bytes.
    std::uint64_t CopySumLowBytes(char * target, const char * source, std::size_t units);
    std::uint64_t CopySumLowBytes(zunWChar * target, const zunWChar * source, std::size_t units);
}

#endif // ZUN_STRING_CHECKSUM_H
