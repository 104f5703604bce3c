// NameMask.h - file name masks as the Windows shell matches them.
//
// A mask is one pattern or several separated by ";", each with its leading
// spaces ignored. In a pattern `*` stands for any run of units (none too) and
// `?` for exactly one; every other unit matches itself without regard to
// case (towlower of each 16-bit unit). The pattern `*.*` matches every name,
// a name without a dot too. An empty mask matches nothing.
#ifndef ZUN_PLATFORM_NAME_MASK_H
#define ZUN_PLATFORM_NAME_MASK_H

#include "zunConfig.h"

namespace zunPlatform
{
    /// True when `name` matches one of the patterns of `mask`. Neither may be
    /// null. Exported for tests.
    ZUN_API bool MatchesNameMask(const zunWChar * name, const zunWChar * mask);
}

#endif // ZUN_PLATFORM_NAME_MASK_H
