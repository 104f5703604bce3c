// Process and machine services seen from more than one thread.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "platform/Processes.h"

TEST(Libraries, LastErrorBelongsToTheThread)
{
    EXPECT_EQ(zunPlatform::OpenLibrary("/no/such/libone.so"), nullptr);
    std::string seenByOther = "unset";
    std::thread([&] { seenByOther = zunPlatform::LastErrorText(); }).join();
    EXPECT_EQ(seenByOther, "");
    EXPECT_NE(zunPlatform::LastErrorText().find("libone"), std::string::npos);
}
