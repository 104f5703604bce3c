// Name masks: the shell's matching of "*", "?" and ";"-separated patterns.
#include "NameMask.h"

#include "Text.h"

namespace zunPlatform
{
    namespace
    {
        bool SameUnit(zunWChar a, zunWChar b)
        {
            return a == b || LowerWide(a) == LowerWide(b);
        }

        // Glob match of `name` against the pattern [pattern, patternEnd). A
        // star remembers where it stood; a mismatch later retries it one unit
        // further on, so the cost stays at length times length.
        bool MatchesPattern(const zunWChar * name, const zunWChar * pattern, const zunWChar * patternEnd)
        {
            const zunWChar * star = nullptr;
            const zunWChar * retry = nullptr;
            while (*name != 0)
            {
                if (pattern != patternEnd && *pattern == u'*')
                {
                    star = pattern++;
                    retry = name;
                }
                else if (pattern != patternEnd && (*pattern == u'?' || SameUnit(*pattern, *name)))
                {
                    ++pattern;
                    ++name;
                }
                else if (star != nullptr)
                {
                    pattern = star + 1;
                    name = ++retry;
                }
                else
                    return false;
            }
            while (pattern != patternEnd && *pattern == u'*')
                ++pattern;
            return pattern == patternEnd;
        }

        bool IsEveryName(const zunWChar * pattern, const zunWChar * patternEnd)
        {
            return patternEnd - pattern == 3 && pattern[0] == u'*' && pattern[1] == u'.' && pattern[2] == u'*';
        }
    }

    bool MatchesNameMask(const zunWChar * name, const zunWChar * mask)
    {
        const zunWChar * pattern = mask;
        for (;;)
        {
            while (*pattern == u' ')
                ++pattern;
            const zunWChar * end = pattern;
            while (*end != 0 && *end != u';')
                ++end;
            if (end != pattern && (IsEveryName(pattern, end) || MatchesPattern(name, pattern, end)))
                return true;
            if (*end == 0)
                return false;
            pattern = end + 1;
        }
    }
}
