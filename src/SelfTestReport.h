// SelfTestReport.h - how the self-test tells one check's outcome.
//
// Internal: the self-test of Misc.cpp reports through it, and the tests drive
// it directly to see the failure line that a correct library never prints.
#ifndef ZUN_SELF_TEST_REPORT_H
#define ZUN_SELF_TEST_REPORT_H

#include <cstdio>

#include "zunString.h"

namespace zunSelfTestReport
{
    /// Silent when `collected` equals `expected`; otherwise prints the failure
    /// line of check `name`, preceded by "const " in the const pass.
    inline void Check(const char * name, const char * expected, const zunString & collected, bool constPass)
    {
        if (collected == expected)
            return;
        if (constPass)
            std::printf("%s ", "const");
        std::printf("%s failed. Expected \"%s\" got \"%s\"\n", name, expected, static_cast<const char *>(collected));
    }
}

#endif // ZUN_SELF_TEST_REPORT_H
