// The exported self-test: its whole output on a correct library, that it
// keeps nothing behind, and the failure line it prints for a check that fails.
#include <gtest/gtest.h>

#include "MemTesting.h"
#include "SelfTestReport.h"
#include "zunSelfTest.h"

namespace
{
    const char * const kHeadingsOnly = "\n"
                                       "Deprecated_FastMesh\n"
                                       "\n"
                                       "Test ForEach\n"
                                       "Test Reverse ForEach\n"
                                       "Test FindIf\n"
                                       "Test Reverse FindIf\n"
                                       "Test CircularFindIf\n"
                                       "\n"
                                       "STD_FastMesh\n"
                                       "\n"
                                       "Test for loop and for_each\n"
                                       "Test Reverse ForEach\n"
                                       "\n"
                                       "STD_StringList\n"
                                       "\n"
                                       "Test for loop and for_each\n"
                                       "Test Reverse ForEach\n";

    std::string Output(void (*run)())
    {
        testing::internal::CaptureStdout();
        run();
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }
}

TEST(SelfTest, ACorrectLibraryPrintsTheHeadingsAndNothingElse)
{
    EXPECT_EQ(Output(zunFoundation_UnitTest), kHeadingsOnly);
}

TEST(SelfTest, LeavesNoStateBehind)
{
    zunMemTesting::Reset();
    zunMemTesting::StartCounting();
    const std::string first = Output(zunFoundation_UnitTest);
    const zunMemTesting::Counters counters = zunMemTesting::GetCounters();
    zunMemTesting::Reset();
    EXPECT_GT(counters.allocations, 0u);
    EXPECT_EQ(counters.allocations, counters.frees) << "every block it took is freed";
    EXPECT_EQ(Output(zunFoundation_UnitTest), first);
}

TEST(SelfTest, AMatchingCheckPrintsNothing)
{
    EXPECT_EQ(Output([] { zunSelfTestReport::Check("ForEach test 1", "01234", zunString("01234"), false); }), "");
    EXPECT_EQ(Output([] { zunSelfTestReport::Check("ForEach test 4", "", zunString(), true); }), "");
}

TEST(SelfTest, AFailingCheckPrintsItsNameExpectedAndCollectedText)
{
    EXPECT_EQ(Output([] { zunSelfTestReport::Check("ForEach test 3", "123", zunString("12"), false); }),
              "ForEach test 3 failed. Expected \"123\" got \"12\"\n");
    EXPECT_EQ(Output([] { zunSelfTestReport::Check("For_Each_Reverse", "43210", zunString(), false); }),
              "For_Each_Reverse failed. Expected \"43210\" got \"\"\n");
}

TEST(SelfTest, AFailureInTheConstPassIsMarkedConst)
{
    EXPECT_EQ(Output([] { zunSelfTestReport::Check("CircularFindIf test 12", "1043", zunString("10432"), true); }),
              "const CircularFindIf test 12 failed. Expected \"1043\" got \"10432\"\n");
}
