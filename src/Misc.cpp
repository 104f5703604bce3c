// The library's self-test of its container walks (zunSelfTest.h).
#include <algorithm>
#include <cstdio>

#include "SelfTestReport.h"
#include "zunFastMesh.h"
#include "zunSelfTest.h"
#include "zunStringList.h"

namespace
{
    constexpr unsigned int kNone = 0xFFFFFFFFu;

    struct RangeCheck
    {
        unsigned int first, last;
        const char * expected;
    };

    const RangeCheck kUpward[] = {
        {0, kNone, "01234"}, {0, 4, "01234"}, {1, 3, "123"}, {1, 7, ""}, {5, 7, ""}, {5, kNone, ""},
    };
    const RangeCheck kDownward[] = {
        {kNone, 0, "43210"}, {4, 0, "43210"}, {3, 1, "321"}, {7, 1, ""}, {7, 5, ""}, {kNone, 5, ""},
    };

    struct CircleCheck
    {
        unsigned int start;
        bool reverse, skipStart;
        const char * expected;
    };

    const CircleCheck kCircles[] = {
        {0, false, false, "01234"},    {0, false, true, "1234"},       {0, true, false, "04321"},
        {0, true, true, "4321"},       {kNone, false, false, "01234"}, {kNone, false, true, "01234"},
        {kNone, true, false, "43210"}, {kNone, true, true, "43210"},   {2, false, false, "23401"},
        {2, false, true, "3401"},      {2, true, false, "21043"},      {2, true, true, "1043"},
    };

    void Collect(zunString & text, char c)
    {
        text.Insert(kNone, &c, 1);
    }

    void Collect(zunString & text, const char * entry)
    {
        text << entry;
    }

    // Runs `walk`, which collects what it visits, on `container` and then
    // through a const reference, and reports each pass.
    template <typename Container, typename Walk>
    void CheckTwice(Container & container, const char * name, const char * expected, Walk walk)
    {
        zunString visited;
        walk(container, visited);
        zunSelfTestReport::Check(name, expected, visited, false);
        zunString visitedConst;
        walk(static_cast<const Container &>(container), visitedConst);
        zunSelfTestReport::Check(name, expected, visitedConst, true);
    }

    // One heading and the six range checks of ForEach or FindIf.
    template <typename Walk>
    void CheckRanges(zunFastMesh<char> & mesh, const char * heading, const char * checkName,
                     const RangeCheck (&checks)[6], Walk walk)
    {
        std::puts(heading);
        for (unsigned int i = 0; i < 6; ++i)
        {
            char name[64];
            std::snprintf(name, sizeof name, "%s %u", checkName, i + 1);
            const RangeCheck & check = checks[i];
            CheckTwice(mesh, name, check.expected,
                       [&](auto & walked, zunString & visited) { walk(walked, check, visited); });
        }
    }

    void CheckDeprecatedWalks()
    {
        std::puts("\nDeprecated_FastMesh\n");
        zunFastMesh<char> mesh;
        for (char c = '0'; c <= '4'; ++c)
            mesh.Add(c);

        auto forEach = [](auto & walked, const RangeCheck & check, zunString & visited)
        { walked.ForEach(check.first, check.last, [&](char c) { Collect(visited, c); }); };
        auto findIf = [](auto & walked, const RangeCheck & check, zunString & visited)
        {
            walked.FindIf(check.first, check.last,
                          [&](char c)
                          {
                              Collect(visited, c);
                              return false;
                          });
        };
        CheckRanges(mesh, "Test ForEach", "ForEach test", kUpward, forEach);
        CheckRanges(mesh, "Test Reverse ForEach", "Reverse ForEach test", kDownward, forEach);
        CheckRanges(mesh, "Test FindIf", "FindIf test", kUpward, findIf);
        CheckRanges(mesh, "Test Reverse FindIf", "Reverse FindIf test", kDownward, findIf);

        std::puts("Test CircularFindIf");
        for (unsigned int i = 0; i < 12; ++i)
        {
            char name[64];
            std::snprintf(name, sizeof name, "CircularFindIf test %u", i + 1);
            const CircleCheck & check = kCircles[i];
            CheckTwice(mesh, name, check.expected,
                       [&](auto & walked, zunString & visited)
                       {
                           walked.CircularFindIf(check.start, check.reverse, check.skipStart,
                                                 [&](char c)
                                                 {
                                                     Collect(visited, c);
                                                     return false;
                                                 });
                       });
        }
    }

    // The iterator checks, the same for the array and the list.
    template <typename Container> void CheckIteratorWalks(Container & container)
    {
        std::puts("Test for loop and for_each");
        CheckTwice(container, "ForLoop", "01234",
                   [](auto & walked, zunString & visited)
                   {
                       for (unsigned int i = 0; i < walked.Count(); ++i)
                           Collect(visited, walked[i]);
                   });
        CheckTwice(container, "For_Each", "01234",
                   [](auto & walked, zunString & visited)
                   { std::for_each(walked.begin(), walked.end(), [&](auto element) { Collect(visited, element); }); });
        std::puts("Test Reverse ForEach");
        CheckTwice(container, "For_Each_Reverse", "43210",
                   [](auto & walked, zunString & visited) {
                       std::for_each(walked.rbegin(), walked.rend(), [&](auto element) { Collect(visited, element); });
                   });
    }
}

void zunFoundation_UnitTest()
{
    CheckDeprecatedWalks();

    std::puts("\nSTD_FastMesh\n");
    zunFastMesh<char> mesh;
    for (char c = '0'; c <= '4'; ++c)
        mesh.Add(c);
    CheckIteratorWalks(mesh);

    std::puts("\nSTD_StringList\n");
    zunStringListT<char> list{"0", "1", "2", "3", "4"};
    CheckIteratorWalks(list);
}
