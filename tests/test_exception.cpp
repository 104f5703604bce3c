// zunException: construction, texts and their bounds, copy vs assignment, the
// instance counter, throw sites and zunFixMe.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "ThrowSite.h"
#include "zunException.h"

namespace
{
    const char * const kSignature = "void __cdecl zunTest::Throw(void) throw(struct zunException)";

    void ThrowWithDescription()
    {
        throw ZUN_EXCEPTION(kSignature).SetDebugDescription("code %d %s", 17, "file exists");
    }

    // Builds the description from an argument list of its own, the way the
    // va_list form is meant to be called.
    void DescribeWith(zunException & e, const char * format, ...)
    {
        va_list args;
        va_start(args, format);
        e.SetDescription(format, args);
        va_end(args);
    }
}

TEST(Exception, DefaultConstructedHasNullPointersAndEmptyTexts)
{
    zunException e;
    EXPECT_EQ(e.GetFileAndLine(), nullptr);
    EXPECT_EQ(e.GetFunction(), nullptr);
    ASSERT_NE(e.GetDescription(), nullptr);
    ASSERT_NE(e.GetDebugDescription(), nullptr);
    EXPECT_STREQ(e.GetDescription(), "");
    EXPECT_STREQ(e.GetDebugDescription(), "");
}

TEST(Exception, KeepsThePointersItWasGiven)
{
    static const char location[] = "src/File.cpp:1";
    zunException e(location, kSignature);
    EXPECT_EQ(e.GetFileAndLine(), location);
    EXPECT_EQ(e.GetFunction(), kSignature);
}

TEST(Exception, FieldsStandInTheirOrder)
{
    EXPECT_EQ(offsetof(zunException, m_pszFileAndLine), 0u);
    EXPECT_LT(offsetof(zunException, m_pszFileAndLine), offsetof(zunException, m_pszFunction));
    EXPECT_LT(offsetof(zunException, m_pszFunction), offsetof(zunException, m_szDebugDescription));
    EXPECT_LT(offsetof(zunException, m_szDebugDescription), offsetof(zunException, m_szDescription));
    EXPECT_EQ(sizeof(zunException().m_szDescription), 1024u);
    EXPECT_EQ(sizeof(zunException().m_szDebugDescription), 1024u);
}

TEST(Exception, SetDescriptionNullEmptiesAndReturnsTheObject)
{
    zunException e;
    e.SetDescription("user text %d", 5);
    EXPECT_STREQ(e.GetDescription(), "user text 5");
    const char * nullFormat = nullptr;
    zunException & same = e.SetDescription(nullFormat);
    EXPECT_EQ(&same, &e);
    EXPECT_STREQ(e.GetDescription(), "");
}

TEST(Exception, LongTextsAreCutAtTheirBounds)
{
    const std::string longText(5000, 'x');
    zunException e;
    e.SetDescription("%s", longText.c_str());
    e.SetDebugDescription("%s", longText.c_str());
    EXPECT_EQ(std::strlen(e.GetDescription()), 1022u);
    EXPECT_EQ(std::strlen(e.GetDebugDescription()), 1023u);
    EXPECT_EQ(std::string(e.GetDescription()), longText.substr(0, 1022));
    EXPECT_EQ(std::string(e.GetDebugDescription()), longText.substr(0, 1023));
}

TEST(Exception, DescriptionFromAStartedArgumentList)
{
    zunException e;
    DescribeWith(e, "%s=%d", "answer", 42);
    EXPECT_STREQ(e.GetDescription(), "answer=42");
    DescribeWith(e, nullptr);
    EXPECT_STREQ(e.GetDescription(), "");
}

TEST(Exception, CopyTakesTextsWholeUpTo1022Characters)
{
    const std::string text(1022, 'd');
    zunException original("src/a.cpp:1", kSignature);
    original.SetDebugDescription("%s", text.c_str());
    original.SetDescription("%s", "short");
    zunException copy(original);
    EXPECT_EQ(copy.GetFileAndLine(), original.GetFileAndLine());
    EXPECT_EQ(copy.GetFunction(), original.GetFunction());
    EXPECT_EQ(std::string(copy.GetDebugDescription()), text);
    EXPECT_STREQ(copy.GetDescription(), "short");
}

TEST(Exception, CopyOfA1023CharacterTextIsCutSafely)
{
    // Only 1023 bytes travel with a copy; the 1024th byte of the copy is not
    // the source's. The library makes it a terminator, so the copy reads as
    // the first 1023 characters and never runs past its array.
    const std::string text(5000, 'q');
    zunException original;
    original.SetDebugDescription("%s", text.c_str());
    zunException copy(original);
    EXPECT_EQ(std::memcmp(copy.m_szDebugDescription, text.data(), 1023), 0);
    EXPECT_EQ(copy.m_szDebugDescription[1023], 0);
}

TEST(Exception, CopyZeroFillsBehindTheText)
{
    zunException original;
    std::memset(original.m_szDescription, 'z', sizeof(original.m_szDescription));
    original.m_szDescription[3] = 0; // "zzz" with stale bytes behind it
    zunException copy(original);
    EXPECT_STREQ(copy.GetDescription(), "zzz");
    for (std::size_t i = 3; i < 1023; ++i)
        ASSERT_EQ(copy.m_szDescription[i], 0) << "at " << i;
}

TEST(Exception, AssignmentCopiesTheWholeObject)
{
    zunException source("src/b.cpp:2", kSignature);
    std::memset(source.m_szDescription, 'w', sizeof(source.m_szDescription));
    source.m_szDescription[1] = 0; // bytes behind the terminator travel too
    source.SetDebugDescription("dbg");
    zunException target;
    target = source;
    EXPECT_EQ(target.GetFileAndLine(), source.GetFileAndLine());
    EXPECT_EQ(target.GetFunction(), source.GetFunction());
    EXPECT_EQ(std::memcmp(target.m_szDescription, source.m_szDescription, 1024), 0);
    EXPECT_EQ(std::memcmp(target.m_szDebugDescription, source.m_szDebugDescription, 1024), 0);
}

TEST(Exception, SelfAssignmentKeepsEverything)
{
    zunException e("src/d.cpp:4", kSignature);
    e.SetDebugDescription("dbg %d", 4);
    const zunException & alias = e;
    e = alias;
    EXPECT_STREQ(e.GetFileAndLine(), "src/d.cpp:4");
    EXPECT_STREQ(e.GetFunction(), kSignature);
    EXPECT_STREQ(e.GetDebugDescription(), "dbg 4");
}

TEST(Exception, CounterAtRestAndWhileOneExists)
{
    EXPECT_FALSE(zunException::IsAnyBeingHandled());
    {
        zunException local;
        EXPECT_TRUE(zunException::IsAnyBeingHandled());
    }
    EXPECT_FALSE(zunException::IsAnyBeingHandled());
}

TEST(Exception, AssignmentLeavesTheCounterAlone)
{
    {
        zunException a;
        zunException b("src/c.cpp:3", kSignature);
        a = b;
        b = a;
        EXPECT_TRUE(zunException::IsAnyBeingHandled());
    }
    EXPECT_FALSE(zunException::IsAnyBeingHandled());
}

TEST(Exception, CounterIncludesTheCaughtException)
{
    bool insideHandler = false;
    try
    {
        ThrowWithDescription();
    }
    catch (const zunException &)
    {
        insideHandler = zunException::IsAnyBeingHandled();
    }
    EXPECT_TRUE(insideHandler);
    EXPECT_FALSE(zunException::IsAnyBeingHandled());
}

TEST(Exception, ThrowSiteCarriesLocationSignatureAndDescription)
{
    try
    {
        ThrowWithDescription();
        FAIL() << "no exception";
    }
    catch (const zunException & e)
    {
        EXPECT_STREQ(e.GetFunction(), kSignature);
        const std::string location = e.GetFileAndLine();
        EXPECT_EQ(location.rfind("tests/test_exception.cpp:", 0), 0u) << location;
        EXPECT_STREQ(e.GetDebugDescription(), "code 17 file exists");
        EXPECT_STREQ(e.GetDescription(), "");
    }
}

TEST(Exception, FixMeReturnsAtOnceAndPrintsNothing)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    zunFixMe("invalid value");
    zunFixMe("GetCursorInfo failed with error %u", 5u);
    zunFixMe(nullptr);    // the format is never read
    zunFixMe("%s %s %s"); // nor are arguments it would need
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
