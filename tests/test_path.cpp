// zunPath as text: the canonical form, the text forms, the queries, joining,
// going up, extensions, absolute and relative paths, comparison and moves.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <utility>

#include <zunFoundation.h>

#include "MemTesting.h"

namespace
{
    // The canonical text in UTF-8, backslashes and all.
    std::string Canon(const zunPath & path)
    {
        zunString text;
        text = path.WinRepresentation();
        return std::string(static_cast<const char *>(text));
    }

    std::string Str(const zunString & text)
    {
        return std::string(static_cast<const char *>(text));
    }

    std::string Str(const zunStringW & text)
    {
        zunString narrow;
        narrow = text;
        return Str(narrow);
    }

    std::string Up(const char * text, unsigned int levels)
    {
        return Canon(zunPath(text).GoUp(levels));
    }
}

// ---- The canonical form -----------------------------------------------------------------

TEST(PathText, SlashesBecomeBackslashesAndRunsCollapse)
{
    EXPECT_EQ(Canon(zunPath("a/b//c")), R"(a\b\c)");
    EXPECT_EQ(Canon(zunPath(R"(a\\\b//\c)")), R"(a\b\c)");
    EXPECT_EQ(Canon(zunPath("/tmp//x/")), R"(\tmp\x\)");
}

TEST(PathText, ANetworkNameIsLeftWhole)
{
    EXPECT_EQ(Canon(zunPath("//srv//share")), R"(\\srv\\share)");
    EXPECT_EQ(Canon(zunPath(R"(\\srv\s\\\x)")), R"(\\srv\s\\\x)");
    EXPECT_EQ(Canon(zunPath(R"(\\\)")), R"(\\\)");
}

TEST(PathText, TwoSeparatorsAloneBecomeOne)
{
    EXPECT_EQ(Canon(zunPath(R"(\\)")), R"(\)");
    EXPECT_EQ(Canon(zunPath("//")), R"(\)");
}

TEST(PathText, CaseDotsAndATrailingSeparatorAreKept)
{
    EXPECT_EQ(Canon(zunPath("A/./b/../C/")), R"(A\.\b\..\C\)");
    EXPECT_NE(zunPath(R"(a\b)"), zunPath(R"(a\b\)"));
    EXPECT_EQ(Canon(zunPath("c:/Data")), R"(c:\Data)");
}

TEST(PathText, WideAndNarrowInputNormaliseAlike)
{
    EXPECT_EQ(Canon(zunPath(ZUN_W("x//y/z"))), R"(x\y\z)");
    EXPECT_EQ(Canon(zunPath(zunStringW(ZUN_W("x//y")))), R"(x\y)");
    EXPECT_EQ(Canon(zunPath(zunString("x//y"))), R"(x\y)");
    const char * nothing = nullptr;
    const zunWChar * nothingWide = nullptr;
    EXPECT_TRUE(zunPath(nothing).IsEmpty());
    EXPECT_TRUE(zunPath(nothingWide).IsEmpty());
    EXPECT_TRUE(zunPath("").IsEmpty());
}

TEST(PathText, InvalidUTF8IsReplacedNotRefused)
{
    const zunPath path("a/\xC3(b\xFF");
    const zunStringW & text = path.WinRepresentation();
    ASSERT_EQ(text.Length(), 6u);
    EXPECT_EQ(text.GetAt(1), u'\\');
    EXPECT_EQ(text.GetAt(2), 0xFFFD);
    EXPECT_EQ(text.GetAt(3), u'(');
    EXPECT_EQ(text.GetAt(5), 0xFFFD);
}

TEST(PathText, LastComponentOfLongNonAsciiNames)
{
    // 255 units of three UTF-8 bytes each are converted on the stack, 256 on
    // the heap: both give the whole name.
    for (const unsigned int units : {255u, 256u})
    {
        std::string name;
        for (unsigned int i = 0; i < units; ++i)
            name += "\xE6\x97\xA5";
        const zunPath path(("/a/" + name + ".txt").c_str());
        EXPECT_EQ(Str(path.GetLastComponent(zunPath::WithExtension)), name + ".txt");
        EXPECT_EQ(Str(path.GetLastComponent(zunPath::WithoutExtension)), name);
    }
}

TEST(PathText, LastComponentOfAnEmptyPathIsTheEmptyText)
{
    EXPECT_EQ(zunPath().GetLastComponent16(zunPath::WithExtension).m_pData, nullptr);
    const zunString narrow = zunPath().GetLastComponent(zunPath::WithExtension);
    ASSERT_NE(narrow.m_pData, nullptr);
    EXPECT_EQ(narrow.m_nLength, 0u);
}

TEST(PathText, NonAsciiTextRoundTrips)
{
    const zunPath path("/home/Jos\xC3\xA9/\xE6\x97\xA5\xE6\x9C\xAC.txt");
    EXPECT_EQ(path.WinRepresentation().Length(), 17u);
    EXPECT_EQ(Str(path.OSRepresentation8()), "/home/Jos\xC3\xA9/\xE6\x97\xA5\xE6\x9C\xAC.txt");
    EXPECT_EQ(Str(path.GetLastComponent(zunPath::WithoutExtension)), "\xE6\x97\xA5\xE6\x9C\xAC");
}

TEST(PathText, EmptyIsAnEmptyConstant)
{
    EXPECT_TRUE(zunPath::Empty.IsEmpty());
    EXPECT_FALSE(zunPath::Empty.IsAbsolute());
    EXPECT_FALSE(zunPath::Empty.IsRelative());
    EXPECT_TRUE(zunPath().IsEmpty());
}

// ---- Text forms ---------------------------------------------------------------------------

TEST(PathText, TheCanonicalFormAndThePlatformForm)
{
    const zunPath path("/tmp/x");
    EXPECT_EQ(Canon(path), R"(\tmp\x)");
    EXPECT_TRUE(path.IsAbsolute());
    EXPECT_EQ(Str(path.OSRepresentation8()), "/tmp/x");
    EXPECT_TRUE(path.OSRepresentation16() == ZUN_W("/tmp/x"));
    EXPECT_EQ(Str(path.UnityRepresentation()), "/tmp/x");
    EXPECT_EQ(Str(zunPath(R"(C:\a\b)").UnityRepresentation()), "C:/a/b");
    EXPECT_EQ(Str(zunPath().OSRepresentation8()), "");
}

// ---- Queries -------------------------------------------------------------------------------

TEST(PathText, AbsoluteStartsWithASeparatorOrHoldsColonBackslash)
{
    EXPECT_TRUE(zunPath(R"(\foo)").IsAbsolute());
    EXPECT_TRUE(zunPath(R"(x:\)").IsAbsolute());
    EXPECT_TRUE(zunPath(R"(rel\C:\x)").IsAbsolute());
    EXPECT_FALSE(zunPath("C:").IsAbsolute());
    EXPECT_FALSE(zunPath("a:b").IsAbsolute());
    EXPECT_FALSE(zunPath("a").IsAbsolute());
    EXPECT_TRUE(zunPath("C:").IsRelative());
    EXPECT_FALSE(zunPath(R"(\foo)").IsRelative());
}

TEST(PathText, CColonSlashIsAbsoluteAfterNormalisingAndCColonXIsRelative)
{
    EXPECT_TRUE(zunPath("C:/x").IsAbsolute());
    EXPECT_TRUE(zunPath("C:x").IsRelative());
}

TEST(PathText, OnlyADriveRootIsARoot)
{
    EXPECT_TRUE(zunPath(R"(C:\)").IsRoot());
    EXPECT_TRUE(zunPath("c:/").IsRoot());
    EXPECT_FALSE(zunPath(R"(\)").IsRoot());
    EXPECT_FALSE(zunPath(R"(\\server\)").IsRoot());
    EXPECT_FALSE(zunPath(R"(C:\a)").IsRoot());
    EXPECT_FALSE(zunPath("C:").IsRoot());
    EXPECT_FALSE(zunPath().IsRoot());
    // The second separator of a leading pair is passed over.
    EXPECT_TRUE(zunPath(R"(\\C:\)").IsRoot());
}

TEST(PathText, ComponentsAreTheNamesBetweenSeparators)
{
    const zunStringList network = zunPath("//srv/s").GetComponents();
    ASSERT_EQ(network.Count(), 2u);
    EXPECT_STREQ(network[0], "srv");
    EXPECT_STREQ(network[1], "s");
    const zunStringList drive = zunPath(R"(C:\a\b\)").GetComponents();
    ASSERT_EQ(drive.Count(), 3u);
    EXPECT_STREQ(drive[0], "C:");
    EXPECT_STREQ(drive[1], "a");
    EXPECT_STREQ(drive[2], "b");
    EXPECT_EQ(zunPath().GetComponents().Count(), 0u);
    EXPECT_EQ(zunPath(R"(\)").GetComponents().Count(), 0u);
    const zunStringList wide = zunPath(ZUN_W("/Jos\u00E9/x")).GetComponents();
    ASSERT_EQ(wide.Count(), 2u);
    EXPECT_STREQ(wide[0], "Jos\xC3\xA9");
}

TEST(PathText, TheLastComponent)
{
    EXPECT_EQ(Str(zunPath(R"(a\b\)").GetLastComponent16(zunPath::WithExtension)), "b");
    EXPECT_EQ(Str(zunPath(R"(a\b.c)").GetLastComponent(zunPath::WithExtension)), "b.c");
    EXPECT_EQ(Str(zunPath(R"(abc\)").GetLastComponent(zunPath::WithExtension)), "abc");
    EXPECT_EQ(Str(zunPath(R"(C:\)").GetLastComponent(zunPath::WithExtension)), "C:");
    EXPECT_EQ(Str(zunPath(R"(\)").GetLastComponent(zunPath::WithExtension)), "");
    EXPECT_EQ(Str(zunPath(R"(\a)").GetLastComponent(zunPath::WithExtension)), "a");
    EXPECT_EQ(Str(zunPath().GetLastComponent(zunPath::WithExtension)), "");
    EXPECT_EQ(Str(zunPath("abc").GetLastComponent(zunPath::WithExtension)), "abc");
}

TEST(PathText, TheLastComponentWithoutItsExtension)
{
    EXPECT_EQ(Str(zunPath(R"(a\b.c.d)").GetLastComponent(zunPath::WithoutExtension)), "b.c");
    EXPECT_EQ(Str(zunPath(R"(a\.profile)").GetLastComponent(zunPath::WithoutExtension)), "");
    EXPECT_EQ(Str(zunPath(R"(a.b\c)").GetLastComponent16(zunPath::WithoutExtension)), "c");
}

TEST(PathText, ExtensionsByLevel)
{
    const zunPath path(R"(x\a.b.c)");
    EXPECT_EQ(Str(path.GetExtension(1)), "c");
    EXPECT_EQ(Str(path.GetExtension(2)), "b.c");
    EXPECT_EQ(Str(path.GetExtension(3)), "b.c");
    EXPECT_EQ(Str(path.GetExtension16(2)), "b.c");
    EXPECT_EQ(Str(zunPath(".profile").GetExtension(1)), "profile");
    EXPECT_EQ(Str(zunPath(R"(a\.profile)").GetExtension(1)), "profile");
    EXPECT_EQ(Str(zunPath("a.").GetExtension(1)), "");
    // A dot in a folder further up is never reached.
    EXPECT_EQ(Str(zunPath(R"(a.b\c)").GetExtension(1)), "");
    EXPECT_EQ(Str(zunPath(R"(a.b\c)").GetExtension(5)), "");
    EXPECT_EQ(Str(zunPath(R"(a\b.c\)").GetExtension(1)), "");
    EXPECT_EQ(Str(zunPath().GetExtension(1)), "");
}

TEST(PathText, LevelZeroHasNoExtension)
{
    for (const char * text : {"a.b", "a.b.c", ".x", "", R"(\a.b)"})
    {
        EXPECT_EQ(Str(zunPath(text).GetExtension(0)), "") << text;
        EXPECT_EQ(Str(zunPath(text).GetExtension16(0)), "") << text;
    }
}

// ---- Changes -----------------------------------------------------------------------------

TEST(PathText, SetExtension)
{
    EXPECT_EQ(Canon(zunPath("a.b.c").SetExtension(zunString(""), 1)), "a.b");
    EXPECT_EQ(Canon(zunPath("a").SetExtension(zunString("txt"), 1)), "a.txt");
    EXPECT_EQ(Canon(zunPath("a").SetExtension(zunString(".txt"), 1)), "a.txt");
    EXPECT_EQ(Canon(zunPath("a.b.c").SetExtension(zunStringW(ZUN_W("x")), 2)), "a.x");
    EXPECT_EQ(Canon(zunPath(R"(d.e\a)").SetExtension(zunString("txt"), 1)), R"(d.e\a.txt)");
    // Level 0 finds no dot, so nothing is cut and the extension is added.
    EXPECT_EQ(Canon(zunPath("a.b").SetExtension(zunString("c"), 0)), "a.b.c");
}

TEST(PathText, AppendingPutsOneSeparatorBetween)
{
    zunPath path("a");
    path += zunPath("b");
    EXPECT_EQ(Canon(path), R"(a\b)");
    path += zunPath(R"(c\)");
    EXPECT_EQ(Canon(path), R"(a\b\c\)");
    path += zunPath("d");
    EXPECT_EQ(Canon(path), R"(a\b\c\d)");
    path += path;
    EXPECT_EQ(Canon(path), R"(a\b\c\d\a\b\c\d)");
}

TEST(PathText, AnAbsolutePathIsNotAppended)
{
    zunPath path("a");
    path += zunPath(R"(\b)");
    EXPECT_EQ(Canon(path), "a");
    path += zunPath(R"(C:\b)");
    EXPECT_EQ(Canon(path), "a");
    zunPath empty;
    empty += zunPath(R"(C:\b)");
    EXPECT_EQ(Canon(empty), R"(C:\b)");
}

TEST(PathText, PlusWithAnEmptySide)
{
    const zunPath left(R"(a\b)");
    EXPECT_EQ(Canon(left + zunPath()), R"(a\b)");
    EXPECT_EQ(Canon(zunPath() + zunPath(R"(\abs)")), R"(\abs)");
    EXPECT_EQ(Canon(left), R"(a\b)");
}

TEST(PathText, SetLastComponentReplacesTheLastName)
{
    zunPath path(R"(a\b)");
    path.SetLastComponent(zunString("c"));
    EXPECT_EQ(Canon(path), R"(a\c)");
    zunPath trailing(R"(a\b\)");
    trailing.SetLastComponent(zunStringW(ZUN_W("c")));
    EXPECT_EQ(Canon(trailing), R"(a\b\c)");
    zunPath normalised(R"(a\b)");
    normalised.SetLastComponent(zunString("x/y"));
    EXPECT_EQ(Canon(normalised), R"(a\x\y)");
}

TEST(PathText, SetLastComponentAppendsWithoutAnInnerSeparator)
{
    zunPath bare("abc");
    bare.SetLastComponent(zunString("x"));
    EXPECT_EQ(Canon(bare), R"(abc\x)");
    zunPath rooted(R"(\abc)");
    rooted.SetLastComponent(zunString("x"));
    EXPECT_EQ(Canon(rooted), R"(\abc\x)");
    zunPath empty;
    empty.SetLastComponent(zunString(R"(\x)"));
    EXPECT_EQ(Canon(empty), R"(\x)");
}

TEST(PathText, SetLastComponentRefusesAnAbsoluteNameAfterTheCut)
{
    zunPath path(R"(a\b)");
    path.SetLastComponent(zunString(R"(\x)"));
    EXPECT_EQ(Canon(path), "a");
    zunPath cutOnly(R"(a\b)");
    cutOnly.SetLastComponent(zunString(""));
    EXPECT_EQ(Canon(cutOnly), "a");
}

// Found by fuzzing: nothing is normalised after the cut, so cutting the last
// name of a network text can leave just its leading pair.
TEST(PathText, SetLastComponentCutOfANetworkNameKeepsTheLeadingPair)
{
    zunPath network(R"(\\\C')");
    ASSERT_EQ(Canon(network), R"(\\\C')");
    network.SetLastComponent(zunString(""));
    EXPECT_EQ(Canon(network), R"(\\)");
    network.SetLastComponent(zunString("srv"));
    EXPECT_EQ(Canon(network), R"(\srv)"); // the cut at index 1 leaves one separator
}

TEST(PathText, NarrowNamesAndExtensionsAreReadAsUTF8)
{
    zunPath path(R"(a\b.txt)");
    path.SetExtension(zunString("r\xC3\xA9s"), 1);
    EXPECT_EQ(path.GetExtension16(1), zunStringW(ZUN_W("r\u00E9s")));
    path.SetLastComponent(zunString("Jos\xC3\xA9.obj"));
    EXPECT_EQ(path.GetLastComponent16(zunPath::WithExtension), zunStringW(ZUN_W("Jos\u00E9.obj")));
    EXPECT_EQ(Str(path.GetLastComponent(zunPath::WithoutExtension)), "Jos\xC3\xA9");
    EXPECT_EQ(path.WinRepresentation().Length(), 10u); // units, not bytes
}

TEST(PathText, TheLastComponentOfTextsWithoutAnInnerSeparator)
{
    EXPECT_EQ(Str(zunPath(R"(abc\)").GetLastComponent(zunPath::WithExtension)), "abc");
    EXPECT_EQ(Str(zunPath(R"(C:\)").GetLastComponent(zunPath::WithExtension)), "C:");
    EXPECT_EQ(Str(zunPath(R"(\)").GetLastComponent(zunPath::WithExtension)), "");
    EXPECT_EQ(Str(zunPath().GetLastComponent16(zunPath::WithoutExtension)), "");
    EXPECT_EQ(Str(zunPath(".profile").GetLastComponent(zunPath::WithoutExtension)), "");
    EXPECT_EQ(Str(zunPath(R"(a.b\c.d.e)").GetLastComponent(zunPath::WithoutExtension)), "c.d");
}

TEST(PathText, GetAbsolutePathOfAnEmptyPathIsTheBaseWithASeparator)
{
    EXPECT_EQ(Canon(zunPath().GetAbsolutePath(zunPath(R"(C:\a\)"))), R"(C:\a\)");
    EXPECT_EQ(Canon(zunPath().GetAbsolutePath(zunPath(R"(/tmp)"))), R"(\tmp\)");
    EXPECT_EQ(Canon(zunPath().GetAbsolutePath(zunPath())), "");
}

// ---- GoUp ----------------------------------------------------------------------------------

TEST(PathText, GoUpClimbsAndLeavesASeparator)
{
    EXPECT_EQ(Up(R"(C:\a\b)", 1), R"(C:\a\)");
    EXPECT_EQ(Up(R"(a\b)", 1), R"(a\)");
    EXPECT_EQ(Up("a", 1), "");
    EXPECT_EQ(Up(R"(a\b\..)", 1), "");
    EXPECT_EQ(Up(R"(\a)", 1), R"(\)");
    EXPECT_EQ(Up(R"(\a\)", 1), R"(\)");
    EXPECT_EQ(Up(R"(a\b\c\)", 1), R"(a\b\)");
    EXPECT_EQ(Up(R"(\\srv\share)", 1), R"(\\srv\)");
}

TEST(PathText, GoUpOfTwoAndOfFive)
{
    EXPECT_EQ(Up(R"(a\b\c)", 2), R"(a\)");
    EXPECT_EQ(Up(R"(a\b\c)", 5), "");
    EXPECT_EQ(Up(R"(C:\a\b\c)", 9), R"(\)");
}

TEST(PathText, GoingUpFromADriveRootLeavesTheSeparator)
{
    EXPECT_EQ(Up(R"(C:\)", 1), R"(\)");
    EXPECT_EQ(Up(R"(\)", 1), R"(\)");
}

TEST(PathText, GoUpZeroOnlyTidiesTheEnd)
{
    EXPECT_EQ(Up(R"(a\b\.)", 0), R"(a\b\)");
    EXPECT_EQ(Up(R"(a\b)", 0), R"(a\b\)");
    EXPECT_EQ(Up(R"(a\b\)", 0), R"(a\b\)");
    EXPECT_EQ(Up(R"(a\b\..)", 0), R"(a\)");
    EXPECT_EQ(Up(R"(a\b\..\..)", 0), "");
    EXPECT_EQ(Up("", 0), "");
}

TEST(PathText, GoUpDisposesOfDotTextsOfOneOrTwoUnits)
{
    EXPECT_EQ(Up(".", 0), "");
    EXPECT_EQ(Up("..", 0), "");
    EXPECT_EQ(Up(R"(.\)", 0), "");
    EXPECT_EQ(Up(".x", 0), "");
    EXPECT_EQ(Up(".", 1), "");
    // `..\` is not caught by the trim: with no level it keeps its text, with
    // one it goes to the walk, which finds no separator before it.
    EXPECT_EQ(Up(R"(..\)", 0), R"(..\)");
    EXPECT_EQ(Up(R"(..\)", 1), "");
    EXPECT_EQ(Up(".ab", 0), R"(.ab\)");
}

TEST(PathText, GoUpDoesNotResolveADotDotInTheMiddle)
{
    // One might expect `a\..\` here; the steps of the walk, which decide,
    // give the empty text: the walk cuts at the separator before `b`, and its
    // trim then takes `\..` off as one more level to climb.
    EXPECT_EQ(Up(R"(a\..\b)", 1), "");
    // A ".." in the middle is kept as text when it is not at the end of a cut.
    EXPECT_EQ(Up(R"(a\..\b\c)", 1), R"(a\..\b\)");
}

TEST(PathText, GoUpOnAOneUnitNameWithATrailingSeparatorEnds)
{
    // The walk by its steps never ends here; it stops with what the same path
    // without its separator gives.
    EXPECT_EQ(Up(R"(a\)", 1), "");
    EXPECT_EQ(Up("a", 1), "");
    EXPECT_EQ(Up(R"(a\b\)", 2), "");
    EXPECT_EQ(Up(R"(a\b)", 2), "");
    EXPECT_EQ(Up(R"(a\)", 0), R"(a\)");
}

TEST(PathText, GetParentWorksOnACopy)
{
    const zunPath path(R"(C:\a\b)");
    EXPECT_EQ(Canon(path.GetParent(1)), R"(C:\a\)");
    EXPECT_EQ(Canon(path.GetParent(2)), R"(C:\)");
    EXPECT_EQ(Canon(path), R"(C:\a\b)");
}

// ---- Absolute and relative -----------------------------------------------------------------

TEST(PathText, MakeAbsolutePutsTheBaseInFront)
{
    EXPECT_EQ(Canon(zunPath(R"(b\c)").MakeAbsolutePath(zunPath(R"(C:\a)"))), R"(C:\a\b\c)");
    EXPECT_EQ(Canon(zunPath(R"(b\c)").MakeAbsolutePath(zunPath(R"(C:\a\)"))), R"(C:\a\b\c)");
    EXPECT_EQ(Canon(zunPath().MakeAbsolutePath(zunPath(R"(C:\a)"))), R"(C:\a\)");
    EXPECT_EQ(Canon(zunPath(R"(\x)").MakeAbsolutePath(zunPath(R"(C:\a)"))), R"(\x)");
    EXPECT_EQ(Canon(zunPath("b").MakeAbsolutePath(zunPath("rel"))), "b");
    EXPECT_EQ(Canon(zunPath("b").MakeAbsolutePath(zunPath())), "b");
    EXPECT_EQ(Canon(zunPath("b").MakeAbsolutePath(zunPath(R"(\\srv\s)"))), R"(\\srv\s\b)");
    const zunPath relative("b");
    EXPECT_EQ(Canon(relative.GetAbsolutePath(zunPath("/tmp"))), R"(\tmp\b)");
    EXPECT_EQ(Canon(relative), "b");
}

TEST(PathText, MakeRelativeTakesTheBaseOffWithoutCase)
{
    EXPECT_EQ(Canon(zunPath(R"(C:\a\b\c)").MakeRelativePath(zunPath(R"(C:\A\)"))), R"(b\c)");
    EXPECT_EQ(Canon(zunPath(R"(C:\a\b\c)").MakeRelativePath(zunPath(R"(C:\A)"))), R"(b\c)");
    EXPECT_EQ(Canon(zunPath(R"(C:\a\)").MakeRelativePath(zunPath(R"(C:\a)"))), "");
    const zunPath absolute(R"(\tmp\x\y)");
    EXPECT_EQ(Canon(absolute.GetRelativePath(zunPath(R"(\TMP)"))), R"(x\y)");
    EXPECT_EQ(Canon(absolute), R"(\tmp\x\y)");
}

// Found by fuzzing: the tail of a network text is collapsed again once the
// base is taken off, so its inner doubled separators go.
TEST(PathText, MakeRelativeCollapsesTheTailOfANetworkText)
{
    const zunPath network(R"(\\a\\b)");
    ASSERT_EQ(Canon(network), R"(\\a\\b)");
    EXPECT_EQ(Canon(network.GetRelativePath(zunPath(R"(\)"))), R"(\a\b)");
}

TEST(PathText, MakeRelativeNeedsNoHeap)
{
    zunPath path(R"(C:\Data\Scenes\forest.kelp)");
    const zunPath base(R"(c:\data)");
    zunMemTesting::FailAllocation(1, true);
    path.MakeRelativePath(base);
    zunMemTesting::Reset();
    EXPECT_EQ(Canon(path), R"(Scenes\forest.kelp)");
}

TEST(PathText, MakeRelativeWithSurrogatePairsInThePath)
{
    // U+1F332 as a pair of units, in the base and behind it.
    const std::string tree = "\xF0\x9F\x8C\xB2";
    zunPath path(("/Trees/" + tree + "/" + tree + ".kelp").c_str());
    path.MakeRelativePath(zunPath(("/trees/" + tree).c_str()));
    EXPECT_EQ(Str(path.OSRepresentation8()), tree + ".kelp");
    zunPath outside(("/trees/" + tree + "x/a").c_str());
    outside.MakeRelativePath(zunPath(("/trees/" + tree).c_str()));
    EXPECT_EQ(Canon(outside), "\\trees\\" + tree + "x\\a");
}

TEST(PathText, MakeRelativeLeavesAPathOutsideTheBase)
{
    EXPECT_EQ(Canon(zunPath(R"(C:\a)").MakeRelativePath(zunPath(R"(C:\a)"))), R"(C:\a)");
    EXPECT_EQ(Canon(zunPath(R"(C:\ab\c)").MakeRelativePath(zunPath(R"(C:\a)"))), R"(C:\ab\c)");
    EXPECT_EQ(Canon(zunPath(R"(D:\a\b)").MakeRelativePath(zunPath(R"(C:\a)"))), R"(D:\a\b)");
    EXPECT_EQ(Canon(zunPath(R"(C:\)").MakeRelativePath(zunPath(R"(C:\a\b)"))), R"(C:\)");
    EXPECT_EQ(Canon(zunPath().MakeRelativePath(zunPath(R"(C:\a)"))), "");
}

TEST(PathText, MakeRelativeClearsOnARelativePathOrBase)
{
    EXPECT_TRUE(zunPath(R"(a\b)").MakeRelativePath(zunPath(R"(C:\a)")).IsEmpty());
    EXPECT_TRUE(zunPath(R"(C:\a\b)").MakeRelativePath(zunPath()).IsEmpty());
    EXPECT_TRUE(zunPath(R"(C:\a\b)").MakeRelativePath(zunPath("a")).IsEmpty());
}

// ---- Comparison -----------------------------------------------------------------------------

TEST(PathText, EqualityIgnoresCaseAndOrderDoesNot)
{
    EXPECT_TRUE(zunPath(R"(A\B)") == zunPath(R"(a\b)"));
    EXPECT_FALSE(zunPath(R"(A\B)") != zunPath(R"(a\b)"));
    EXPECT_TRUE(zunPath("A") == zunPath("a"));
    EXPECT_TRUE(zunPath("A") < zunPath("a"));
    EXPECT_FALSE(zunPath("a") < zunPath("A"));
    EXPECT_FALSE(zunPath("a") < zunPath("a"));
    EXPECT_TRUE(zunPath() < zunPath("a"));
    EXPECT_TRUE(zunPath() == zunPath(""));
    EXPECT_FALSE(zunPath::IsFSCaseSensitive(zunPath("/tmp")));
    EXPECT_FALSE(zunPath::IsFSCaseSensitive(zunPath()));
}

TEST(PathText, OrderKeepsPathsThatAreEqualApartInAMap)
{
    std::map<zunPath, int> byPath;
    byPath[zunPath("A")] = 1;
    byPath[zunPath("a")] = 2;
    EXPECT_EQ(byPath.size(), 2u);
}

// ---- Copies and moves -------------------------------------------------------------------

TEST(PathText, CopiesOwnTheirText)
{
    zunPath original(R"(a\b)");
    zunPath copy(original);
    original += zunPath("c");
    EXPECT_EQ(Canon(copy), R"(a\b)");
    copy = original;
    EXPECT_EQ(Canon(copy), R"(a\b\c)");
    copy = copy;
    EXPECT_EQ(Canon(copy), R"(a\b\c)");
    copy.Clear();
    EXPECT_TRUE(copy.IsEmpty());
    EXPECT_EQ(Canon(original), R"(a\b\c)");
}

TEST(PathText, MovingTakesTheStorageAndLeavesAnAssignableShell)
{
    zunPath source(R"(a\b)");
    zunPath target(std::move(source));
    EXPECT_EQ(Canon(target), R"(a\b)");
    // The moved-from path reads as empty and can be given a text again.
    EXPECT_TRUE(source.IsEmpty());
    source = zunPath("x");
    EXPECT_EQ(Canon(source), "x");
    zunPath shell(std::move(source));
    source += zunPath("y");
    EXPECT_EQ(Canon(source), "y");
}

TEST(PathText, MoveAssignmentExchanges)
{
    zunPath a("first");
    zunPath b("second");
    a = std::move(b);
    EXPECT_EQ(Canon(a), "second");
    EXPECT_EQ(Canon(b), "first");
}

// ---- Bad input and an exhausted heap ------------------------------------------------------

TEST(PathText, APathOf4096UnitsWorksAsAnyOther)
{
    std::string text;
    for (int i = 0; i < 1024; ++i)
        text += "/abc";
    const zunPath path(text.c_str());
    EXPECT_EQ(path.WinRepresentation().Length(), 4096u);
    EXPECT_TRUE(path.IsAbsolute());
    EXPECT_EQ(Str(path.GetLastComponent(zunPath::WithExtension)), "abc");
    EXPECT_EQ(path.GetParent(1).WinRepresentation().Length(), 4093u);
    EXPECT_EQ((path + path.GetRelativePath(zunPath("/abc"))).WinRepresentation().Length(), 8188u);
    EXPECT_EQ(Canon(path.GetRelativePath(path.GetParent(1))), "abc");
}

TEST(PathText, AnExhaustedHeapLeavesThePathAsItWas)
{
    zunPath path(R"(a\b)");
    zunMemTesting::FailAllocation(1, true);
    path += zunPath();
    path += path;
    path.SetExtension(zunStringW(ZUN_W("txt")), 1);
    path.GoUp(0);
    const zunPath other(path);
    zunMemTesting::Reset();
    EXPECT_EQ(Canon(path), R"(a\b)");
    EXPECT_TRUE(other.IsEmpty()); // the copy could not get its text
}

TEST(PathText, ANameLongerThanTheStackBufferJoinsOnTheHeap)
{
    const std::string name(3000, 'n');
    zunPath path("/base");
    path += zunPath(name.c_str());
    EXPECT_EQ(path.WinRepresentation().Length(), 3006u);
    zunMemTesting::FailAllocation(1);
    path += zunPath("x");
    zunMemTesting::Reset();
    EXPECT_EQ(path.WinRepresentation().Length(), 3006u);
}
