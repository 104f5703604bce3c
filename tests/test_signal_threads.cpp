// ThreadSafe signals used from several threads at once: emissions while
// handlers connect and disconnect under the signal's lock, and signals dying
// while others connect to the same receiver. The notice maps have no lock, so
// every notice these tests use is made on the main thread first: the threads
// only look notices up.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "zunSignal.h"

using zunSignalPrivate::ThreadSafe;

namespace
{
    constexpr int kThreads = 4;
    constexpr int kRounds = 400;

    struct Counter : zunBaseT<ThreadSafe>
    {
        // Atomic: the signals of several threads may call one counter.
        std::atomic<long> calls{0};
        void On(int) { ++calls; }
    };

    /// A receiver without a death notice.
    struct PlainCounter
    {
        long calls = 0;
        void On(int) { ++calls; }
    };

    /// Connects and disconnects a spare receiver from within the emission,
    /// through the signal's recursive lock. The spare has no notice: a tracked
    /// one would take its notice's lock under the signal's, against the order
    /// of its death.
    struct Juggler : zunBaseT<ThreadSafe>
    {
        zunSignal<int> * signal = nullptr;
        PlainCounter * spare = nullptr;
        long calls = 0;
        void On(int)
        {
            ++calls;
            signal->Connect(spare, &PlainCounter::On);
            signal->Disconnect(spare, &PlainCounter::On);
        }
    };

    void RunTogether(std::vector<std::thread> & threads)
    {
        for (std::thread & thread : threads)
            thread.join();
    }
}

TEST(SignalThreads, EmissionsWhileHandlersConnectAndDisconnect)
{
    zunSignal<int> signal;
    Counter sentinel;
    PlainCounter spare;
    Juggler juggler;
    std::vector<std::unique_ptr<Counter>> pool(8);
    for (auto & counter : pool)
    {
        counter = std::make_unique<Counter>();
        counter->OnDestroySignalEmitterDestroyed(); // made here: the threads only look it up
    }
    sentinel.OnDestroySignalEmitterDestroyed();
    juggler.signal = &signal;
    juggler.spare = &spare;
    ASSERT_TRUE(signal.Connect(&sentinel, &Counter::On));
    ASSERT_TRUE(signal.Connect(&juggler, &Juggler::On));

    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(
            [&]
            {
                while (!go)
                    std::this_thread::yield();
                for (int i = 0; i < kRounds; ++i)
                    signal(i);
            });
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(
            [&, t]
            {
                while (!go)
                    std::this_thread::yield();
                for (int i = 0; i < kRounds; ++i)
                {
                    Counter * counter = pool[(t * 3 + i) % pool.size()].get();
                    EXPECT_TRUE(signal.Connect(counter, &Counter::On));
                    EXPECT_TRUE(signal.Disconnect(counter, &Counter::On));
                }
            });
    go = true;
    RunTogether(threads);

    EXPECT_EQ(sentinel.calls.load(), long(kThreads) * kRounds);
    EXPECT_EQ(juggler.calls, long(kThreads) * kRounds);
    EXPECT_EQ(spare.calls, 0); // connected during emissions only, so never called
    EXPECT_EQ(signal.m_handlers.size(), 2u);
    EXPECT_EQ(signal.m_emitting, 0u);
    pool.clear(); // the tracked receivers die before the signal
    EXPECT_EQ(signal.m_handlers.size(), 2u);
}

TEST(SignalThreads, SignalsDieWhileOthersConnectToTheSameReceiver)
{
    // Each dying signal takes its receiver's notice lock, and its pattern also
    // matches the trackers of the other threads' signals, which must go on to
    // hear of the receiver's death.
    std::vector<std::unique_ptr<Counter>> receivers(3);
    for (auto & receiver : receivers)
    {
        receiver = std::make_unique<Counter>();
        receiver->OnDestroySignalEmitterDestroyed();
    }
    zunSignal<int> longLived;
    for (auto & receiver : receivers)
        longLived.Connect(receiver.get(), &Counter::On);

    std::atomic<bool> go{false};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(
            [&, t]
            {
                while (!go)
                    std::this_thread::yield();
                for (int i = 0; i < kRounds / 4; ++i)
                {
                    auto signal = std::make_unique<zunSignal<int>>();
                    for (auto & receiver : receivers)
                        EXPECT_TRUE(signal->Connect(receiver.get(), &Counter::On));
                    (*signal)(t);
                }
            });
    go = true;
    RunTogether(threads);

    for (auto & receiver : receivers)
    {
        // Only the long-lived signal still stands on each notice.
        EXPECT_EQ(receiver->OnDestroySignalEmitterDestroyed().m_handlers.size(), 1u);
        EXPECT_EQ(receiver->calls.load(), long(kThreads) * (kRounds / 4));
    }
    receivers.clear();
    EXPECT_TRUE(longLived.m_handlers.empty());
    EXPECT_TRUE(longLived.m_emitters.empty());
    longLived(1);
}

TEST(SignalThreads, BlockingFromSeveralThreadsWhileOthersEmit)
{
    zunSignal<int> signal;
    Counter counter;
    signal.Connect(&counter, &Counter::On);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back(
            [&, t]
            {
                for (int i = 0; i < kRounds; ++i)
                {
                    if (t % 2 == 0)
                        signal(i);
                    else
                    {
                        signal.Block();
                        EXPECT_TRUE(signal.IsBlocked());
                        signal.Unblock();
                    }
                }
            });
    RunTogether(threads);
    EXPECT_FALSE(signal.IsBlocked());
    EXPECT_LE(counter.calls.load(), long(kThreads / 2) * kRounds); // blocked emissions were dropped
    signal(0);
    EXPECT_LE(counter.calls.load(), long(kThreads / 2) * kRounds + 1);
}

TEST(SignalThreads, ThrowingHandlerStillUnlocks)
{
    struct Thrower : zunBaseT<ThreadSafe>
    {
        void On(int) { throw std::runtime_error("fails"); }
    };
    Thrower thrower;
    zunSignal<int> signal;
    signal.Connect(&thrower, &Thrower::On);
    EXPECT_THROW(signal(1), std::runtime_error);
    bool locked = false;
    std::thread other(
        [&]
        {
            locked = signal.m_mutex.try_lock();
            if (locked)
                signal.m_mutex.unlock();
        });
    other.join();
    EXPECT_TRUE(locked);
    EXPECT_EQ(signal.m_emitting, 1u);
}

TEST(SignalThreads, EmissionOnAnotherThreadWaitsInsteadOfBeingDropped)
{
    // Only an emission from within the same thread's emission is dropped.
    struct Slow : zunBaseT<ThreadSafe>
    {
        std::atomic<bool> * entered = nullptr;
        std::atomic<bool> * release = nullptr;
        long calls = 0;
        void On(int value)
        {
            ++calls;
            if (value == 0)
            {
                *entered = true;
                while (!*release)
                    std::this_thread::yield();
            }
        }
    };
    std::atomic<bool> entered{false}, release{false};
    Slow slow;
    slow.entered = &entered;
    slow.release = &release;
    zunSignal<int> signal;
    signal.Connect(&slow, &Slow::On);
    std::thread first([&] { signal(0); });
    while (!entered)
        std::this_thread::yield();
    std::thread second([&] { signal(1); });
    release = true;
    first.join();
    second.join();
    EXPECT_EQ(slow.calls, 2);
}
