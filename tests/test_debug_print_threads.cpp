// The debug print channel from several threads at once: one lock serialises
// every message, so each arrives whole, and the banner comes once.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <zunFoundation.h>

#include "ChannelCapture.h"
#include "DebugPrintTesting.h"

TEST(DebugPrintThreads, EveryMessageArrivesWholeAndTheBannerOnce)
{
    constexpr int kThreads = 4;
    constexpr int kMessages = 200;
    ChannelCapture channel;
    zunDebugPrintTesting::RestartBanner();
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(
            [t]
            {
                for (int i = 0; i < kMessages; ++i)
                    zunDprintf("thread %d message %d %s\n", t, i, "with a tail long enough to be cut if it could be");
            });
    for (std::thread & thread : threads)
        thread.join();

    const std::string raw = channel.Raw();
    const std::string rule = std::string(119, '=') + "\n";
    EXPECT_EQ(raw.compare(0, 4, "\n\n\n\n"), 0);
    std::string::size_type rules = 0;
    for (std::string::size_type at = raw.find(rule); at != std::string::npos; at = raw.find(rule, at + 1))
        ++rules;
    EXPECT_EQ(rules, 4u);

    std::istringstream lines(channel.Text());
    std::map<int, int> next;
    std::string line;
    int count = 0;
    while (std::getline(lines, line))
    {
        int thread = -1, message = -1;
        char tail[64] = {};
        ASSERT_EQ(std::sscanf(line.c_str(), "thread %d message %d %63[^\n]", &thread, &message, tail), 3) << line;
        EXPECT_STREQ(tail, "with a tail long enough to be cut if it could be");
        EXPECT_EQ(message, next[thread]++) << "thread " << thread; // each thread's order is kept
        ++count;
    }
    EXPECT_EQ(count, kThreads * kMessages);
}

TEST(DebugPrintThreads, ANestedFailureInOneThreadDoesNotStopTheOthers)
{
    zunPlatform::ForceDebuggerPresent(0);
    zunSetDprintfFile(zunPath("/nonexistent-folder/channel.txt"));
    std::vector<std::thread> threads;
    threads.reserve(4);
    std::vector<int> results(4, -1);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(
            [t, &results]
            {
                int sum = 0;
                for (int i = 0; i < 50; ++i)
                    sum += zunDprintf("%d\n", i);
                results[t] = sum;
            });
    for (std::thread & thread : threads)
        thread.join();
    EXPECT_EQ(results, std::vector<int>(4, 0));
    zunSetDprintfFile(zunPath());
    zunPlatform::ForceDebuggerPresent(-1);
}
