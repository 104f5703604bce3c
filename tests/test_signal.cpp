// Death notices and signals, for both thread policies: the notice of an
// object, copies and assignment, allocation functions, emission rules,
// connections, tracking of receivers, the handler matching rules, and the
// cases where objects die while others emit.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <vector>

#include "AllocationProbe.h"
#include "zunSignal.h"

#if defined(__SANITIZE_ADDRESS__)
// The allocation-failure tests ask the heap for more than the address space.
extern "C" const char * __asan_default_options()
{
    return "allocator_may_return_null=1";
}
#endif

using zunSignalPrivate::DestroySignalEmitter;
using zunSignalPrivate::DestroySignalEmitterT;
using zunSignalPrivate::Handler;
using zunSignalPrivate::NoThreadSafe;
using zunSignalPrivate::ObjectHandler;
using zunSignalPrivate::Signal;
using zunSignalPrivate::ThreadSafe;

namespace
{
    /// A receiver with a death notice: records what it was called with.
    template <class P> struct Receiver : zunBaseT<P>
    {
        std::vector<int> calls;
        void OnInt(int value) { calls.push_back(value); }
        void OnIntNegated(int value) { calls.push_back(-value); }
    };

    /// A receiver without a death notice.
    struct PlainReceiver
    {
        std::vector<int> calls;
        void OnInt(int value) { calls.push_back(value); }
    };

    /// Records the deaths it is told of.
    template <class P> struct Watcher : zunBaseT<P>
    {
        std::vector<DestroySignalEmitter *> deaths;
        std::vector<const std::type_info *> typesAtDeath;
        void OnDied(DestroySignalEmitter * emitter)
        {
            deaths.push_back(emitter);
            typesAtDeath.push_back(&typeid(*emitter));
        }
    };

    template <class P> using Notice = Signal<P, DestroySignalEmitter *>;
    template <class P> using IntSignal = Signal<P, int>;
    // The handler a signal keeps on a receiver's notice, and its pattern's type.
    template <class P> using IntTracker = ObjectHandler<IntSignal<P>, IntSignal<P>, DestroySignalEmitter *>;

    template <class P> DestroySignalEmitter * AsEmitter(zunBaseT<P> & object)
    {
        return &object;
    }

    template <class P> std::size_t TrackersOf(Notice<P> & notice)
    {
        std::size_t count = 0;
        for (Handler<DestroySignalEmitter *> * handler : notice.m_handlers)
            count += dynamic_cast<IntTracker<P> *>(handler) != nullptr;
        return count;
    }

    template <class P> struct SignalTest : testing::Test
    {
    };
    using Policies = testing::Types<ThreadSafe, NoThreadSafe>;
    TYPED_TEST_SUITE(SignalTest, Policies);
}

// ---- death notices ----

TYPED_TEST(SignalTest, UnwatchedObjectDiesWithoutAnyEntryMade)
{
    AllocationProbe probe;
    {
        Receiver<TypeParam> unwatched;
        EXPECT_TRUE(unwatched.calls.empty());
    }
    // A notice would be a node of the map: nothing at all was allocated.
    EXPECT_EQ(probe.Count(), 0u);
}

TYPED_TEST(SignalTest, NoticeIsMadeOnceAndIsTheSameOnEveryCall)
{
    Receiver<TypeParam> object;
    AllocationProbe first;
    Notice<TypeParam> * notice = &object.OnDestroySignalEmitterDestroyed();
    EXPECT_GT(first.Count(), 0u);
    AllocationProbe second;
    EXPECT_EQ(&object.OnDestroySignalEmitterDestroyed(), notice);
    EXPECT_EQ(second.Count(), 0u);
    EXPECT_TRUE(notice->m_handlers.empty());
    EXPECT_EQ(notice->m_blocked, 0u);
    EXPECT_EQ(notice->m_emitting, 0u);
}

TYPED_TEST(SignalTest, DeathEmitsTheNoticeWithTheAddressOfTheBaseOnlyObject)
{
    Watcher<TypeParam> watcher;
    auto * object = new Receiver<TypeParam>;
    DestroySignalEmitter * address = AsEmitter<TypeParam>(*object);
    ASSERT_TRUE(object->OnDestroySignalEmitterDestroyed().Connect(&watcher, &Watcher<TypeParam>::OnDied));
    delete object;
    ASSERT_EQ(watcher.deaths.size(), 1u);
    EXPECT_EQ(watcher.deaths[0], address);
    // The derived parts were gone: the object was a DestroySignalEmitterT by then.
    EXPECT_EQ(*watcher.typesAtDeath[0], typeid(DestroySignalEmitterT<TypeParam>));
}

TYPED_TEST(SignalTest, DeathErasesTheNotice)
{
    Watcher<TypeParam> watcher;
    {
        Receiver<TypeParam> object;
        object.OnDestroySignalEmitterDestroyed().Connect(&watcher, &Watcher<TypeParam>::OnDied);
        // The notice tracks the watcher: its handler stands on the watcher's notice.
        EXPECT_EQ(watcher.OnDestroySignalEmitterDestroyed().m_handlers.size(), 1u);
    }
    EXPECT_EQ(watcher.deaths.size(), 1u);
    // The destroyed notice left the watcher's notice.
    EXPECT_TRUE(watcher.OnDestroySignalEmitterDestroyed().m_handlers.empty());
}

TYPED_TEST(SignalTest, WatcherDyingFirstLeavesTheNotice)
{
    Receiver<TypeParam> object;
    Notice<TypeParam> & notice = object.OnDestroySignalEmitterDestroyed();
    {
        Watcher<TypeParam> watcher;
        notice.Connect(&watcher, &Watcher<TypeParam>::OnDied);
        EXPECT_EQ(notice.m_handlers.size(), 1u);
        EXPECT_EQ(notice.m_emitters.size(), 1u);
    }
    EXPECT_TRUE(notice.m_handlers.empty());
    EXPECT_TRUE(notice.m_emitters.empty());
}

TYPED_TEST(SignalTest, CopyHasNoneOfTheSourceConnections)
{
    IntSignal<TypeParam> signal;
    Watcher<TypeParam> watcher;
    auto * source = new Receiver<TypeParam>;
    signal.Connect(source, &Receiver<TypeParam>::OnInt);
    source->OnDestroySignalEmitterDestroyed().Connect(&watcher, &Watcher<TypeParam>::OnDied);

    auto * copy = new Receiver<TypeParam>(*source);
    auto * moved = new Receiver<TypeParam>(std::move(*copy));
    signal(7);
    EXPECT_EQ(source->calls, std::vector<int>({7}));
    EXPECT_TRUE(copy->calls.empty());
    EXPECT_TRUE(moved->calls.empty());
    EXPECT_EQ(signal.m_emitters.size(), 1u);
    delete copy;
    delete moved;
    EXPECT_TRUE(watcher.deaths.empty()); // neither copy has the source's notice
    EXPECT_EQ(signal.m_handlers.size(), 1u);
    delete source;
    EXPECT_EQ(watcher.deaths.size(), 1u);
    EXPECT_TRUE(signal.m_handlers.empty());
}

TYPED_TEST(SignalTest, AssignmentKeepsTheTargetsOwnConnections)
{
    IntSignal<TypeParam> toSource, toTarget;
    Receiver<TypeParam> source, target;
    toSource.Connect(&source, &Receiver<TypeParam>::OnInt);
    toTarget.Connect(&target, &Receiver<TypeParam>::OnInt);

    zunBaseT<TypeParam> & base = target;
    EXPECT_EQ(&(base = source), &base);
    EXPECT_EQ(&(base = std::move(source)), &base);
    target = source;
    toSource(1);
    toTarget(2);
    EXPECT_EQ(source.calls, std::vector<int>({1}));
    EXPECT_EQ(target.calls, std::vector<int>({2}));
    EXPECT_EQ(toTarget.m_emitters.count(AsEmitter<TypeParam>(target)), 1u);
}

// ---- allocation functions of zunBaseT ----

namespace
{
    template <class P> struct alignas(128) OverAligned : zunBaseT<P>
    {
        char bytes[200];
    };

    template <class P> struct Enormous : zunBaseT<P>
    {
        Enormous() { constructed = true; }
        static bool constructed;
        // Larger than the address space: no heap can give it.
        char bytes[std::size_t(1) << 47];
    };
    template <class P> bool Enormous<P>::constructed = false;
}

TYPED_TEST(SignalTest, ObjectsComeFromTheClassAllocationFunctions)
{
    AllocationProbe probe;
    auto * one = new Receiver<TypeParam>;
    auto * many = new Receiver<TypeParam>[3];
    one->OnInt(1);
    many[2].OnInt(2);
    delete one;
    delete[] many;
    // malloc and free, not the global operator new.
    EXPECT_EQ(probe.Count(), 2u); // the two calls vectors only
}

TYPED_TEST(SignalTest, PlacementNewGivesThePlace)
{
    alignas(Receiver<TypeParam>) unsigned char storage[sizeof(Receiver<TypeParam>)];
    auto * object = new (storage) Receiver<TypeParam>;
    EXPECT_EQ(static_cast<void *>(object), static_cast<void *>(storage));
    object->~Receiver<TypeParam>();
}

TYPED_TEST(SignalTest, OverAlignedObjectsAreAligned)
{
    // The class's malloc-based allocation alone would give 16-byte alignment.
    auto * object = new OverAligned<TypeParam>;
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object) % 128, 0u);
    delete object;
    auto * objects = new OverAligned<TypeParam>[2];
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects) % 128, 0u);
    delete[] objects;
}

TYPED_TEST(SignalTest, FailedNewGivesNullAndConstructsNothing)
{
    Enormous<TypeParam> * object = nullptr;
    EXPECT_NO_THROW(object = new Enormous<TypeParam>);
    EXPECT_EQ(object, nullptr);
    EXPECT_FALSE(Enormous<TypeParam>::constructed);
    delete object;
}

TYPED_TEST(SignalTest, ExceptionOutOfADeathNoticeEndsTheProcess)
{
    struct Thrower : zunBaseT<TypeParam>
    {
        void OnDied(DestroySignalEmitter *) { throw std::runtime_error("handler failed"); }
    };
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            Thrower thrower;
            auto * object = new Receiver<TypeParam>;
            object->OnDestroySignalEmitterDestroyed().Connect(&thrower, &Thrower::OnDied);
            delete object;
        },
        "");
}

// ---- emission ----

TYPED_TEST(SignalTest, EmissionCallsHandlersInOrderWithTheSameArguments)
{
    Receiver<TypeParam> first, second;
    PlainReceiver plain;
    IntSignal<TypeParam> signal;
    EXPECT_TRUE(signal.Connect(&first, &Receiver<TypeParam>::OnInt));
    EXPECT_TRUE(signal.Connect(&plain, &PlainReceiver::OnInt));
    EXPECT_TRUE(signal.Connect(&second, &Receiver<TypeParam>::OnIntNegated));
    std::vector<int> order;
    signal.Emit(5);
    signal(6);
    EXPECT_EQ(first.calls, std::vector<int>({5, 6}));
    EXPECT_EQ(plain.calls, std::vector<int>({5, 6}));
    EXPECT_EQ(second.calls, std::vector<int>({-5, -6}));
    EXPECT_EQ(signal.m_emitting, 0u);
}

TYPED_TEST(SignalTest, HandlersRunInOrderOfConnection)
{
    struct Log : zunBaseT<TypeParam>
    {
        std::string * text;
        void A(int) { *text += "a"; }
        void B(int) { *text += "b"; }
        void C(int) { *text += "c"; }
    };
    std::string text;
    Log log;
    log.text = &text;
    IntSignal<TypeParam> signal;
    signal.Connect(&log, &Log::C);
    signal.Connect(&log, &Log::A);
    signal.Connect(&log, &Log::B);
    signal(0);
    EXPECT_EQ(text, "cab");
}

TYPED_TEST(SignalTest, SignalsOfAnyArgumentList)
{
    struct Sink : zunBaseT<TypeParam>
    {
        std::string got;
        void None() { got += "none;"; }
        void Three(const std::string & name, int count, double scale)
        {
            got += name + ":" + std::to_string(count) + ":" + std::to_string(scale) + ";";
        }
        void Out(int & value) { value *= 2; }
    };
    Sink sink;
    Signal<TypeParam> nothing;
    Signal<TypeParam, const std::string &, int, double> three;
    Signal<TypeParam, int &> out;
    nothing.Connect(&sink, &Sink::None);
    three.Connect(&sink, &Sink::Three);
    out.Connect(&sink, &Sink::Out);
    nothing();
    three(std::string("mesh"), 3, 0.5);
    int value = 21;
    out(value);
    EXPECT_EQ(sink.got, "none;mesh:3:0.500000;");
    EXPECT_EQ(value, 42);
}

TYPED_TEST(SignalTest, BlockedSignalCallsNothingAndStaysNotEmitting)
{
    struct Probe : zunBaseT<TypeParam>
    {
        int calls = 0;
        void On(int) { ++calls; }
    };
    Probe probe;
    IntSignal<TypeParam> signal;
    signal.Connect(&probe, &Probe::On);
    signal.Block();
    signal.Block();
    EXPECT_TRUE(signal.IsBlocked());
    signal(1);
    EXPECT_EQ(probe.calls, 0);
    EXPECT_EQ(signal.m_emitting, 0u);
    signal.Unblock();
    signal(1);
    EXPECT_EQ(probe.calls, 0); // blocks nest
    signal.Unblock();
    signal.Unblock(); // one too many does no harm
    EXPECT_FALSE(signal.IsBlocked());
    signal(1);
    EXPECT_EQ(probe.calls, 1);

    signal.m_blocked = 7; // any value but zero blocks
    signal(1);
    EXPECT_EQ(probe.calls, 1);
    EXPECT_EQ(signal.m_emitting, 0u);
}

TYPED_TEST(SignalTest, HandlerEmittingItsOwnSignalMakesNoNestedCall)
{
    struct Echo : zunBaseT<TypeParam>
    {
        IntSignal<TypeParam> * signal = nullptr;
        std::vector<int> calls;
        std::vector<unsigned int> emittingSeen;
        void On(int value)
        {
            calls.push_back(value);
            emittingSeen.push_back(signal->m_emitting);
            signal->Emit(value + 1);
        }
    };
    Echo echo;
    IntSignal<TypeParam> signal;
    echo.signal = &signal;
    signal.Connect(&echo, &Echo::On);
    signal(1);
    EXPECT_EQ(echo.calls, std::vector<int>({1}));
    EXPECT_EQ(echo.emittingSeen, std::vector<unsigned int>({1}));
    EXPECT_EQ(signal.m_emitting, 0u);
    signal(5);
    EXPECT_EQ(echo.calls, std::vector<int>({1, 5}));
}

TYPED_TEST(SignalTest, ThrowingHandlerLeavesTheSignalSilent)
{
    struct Thrower : zunBaseT<TypeParam>
    {
        int calls = 0;
        void On(int value)
        {
            ++calls;
            if (value < 0)
                throw std::runtime_error("negative");
        }
    };
    Thrower thrower;
    Receiver<TypeParam> after;
    IntSignal<TypeParam> signal;
    signal.Connect(&thrower, &Thrower::On);
    signal.Connect(&after, &Receiver<TypeParam>::OnInt);
    EXPECT_THROW(signal(-1), std::runtime_error);
    EXPECT_EQ(signal.m_emitting, 1u);
    EXPECT_TRUE(after.calls.empty());
    signal(2);
    EXPECT_EQ(thrower.calls, 1);
    // Connecting and disconnecting still work on a silent signal.
    EXPECT_TRUE(signal.Disconnect(&after, &Receiver<TypeParam>::OnInt));
    EXPECT_EQ(signal.m_handlers.size(), 1u);
    // The caller may revive it.
    signal.m_emitting = 0;
    signal(3);
    EXPECT_EQ(thrower.calls, 2);
}

TEST(ThreadSafeSignal, EmissionWithoutMemoryForItsGuardChangesNothing)
{
    Receiver<ThreadSafe> receiver;
    IntSignal<ThreadSafe> signal;
    signal.Connect(&receiver, &Receiver<ThreadSafe>::OnInt);
    receiver.calls.reserve(4);
    AllocationProbe probe;
    AllocationProbe::FailNth(1);
    EXPECT_THROW(signal(1), std::bad_alloc);
    EXPECT_EQ(signal.m_emitting, 0u);
    EXPECT_TRUE(receiver.calls.empty());
    signal(2);
    EXPECT_EQ(receiver.calls, std::vector<int>({2}));
}

// ---- connections ----

TYPED_TEST(SignalTest, SignalCopyStartsWithoutConnectionsAndAssignmentKeepsThem)
{
    struct Holder
    {
        IntSignal<TypeParam> changed;
    };
    Receiver<TypeParam> first, second;
    Holder original;
    original.changed.Connect(&first, &Receiver<TypeParam>::OnInt);
    original.changed.Block();
    Holder copy = original;
    EXPECT_TRUE(copy.changed.m_handlers.empty());
    EXPECT_TRUE(copy.changed.m_emitters.empty());
    EXPECT_FALSE(copy.changed.IsBlocked());
    copy.changed.Connect(&second, &Receiver<TypeParam>::OnInt);
    copy = original;
    copy.changed(4);
    EXPECT_EQ(second.calls, std::vector<int>({4}));
    EXPECT_TRUE(first.calls.empty());
    EXPECT_EQ(original.changed.m_handlers.size(), 1u);
}

TYPED_TEST(SignalTest, RepeatedConnectionCountsUpAndDisconnectCountsDown)
{
    Receiver<TypeParam> receiver;
    IntSignal<TypeParam> signal;
    EXPECT_TRUE(signal.Connect(&receiver, &Receiver<TypeParam>::OnInt));
    EXPECT_TRUE(signal.Connect(&receiver, &Receiver<TypeParam>::OnInt));
    EXPECT_TRUE(signal.Connect(&receiver, &Receiver<TypeParam>::OnInt));
    ASSERT_EQ(signal.m_handlers.size(), 1u);
    auto * handler = dynamic_cast<ObjectHandler<Receiver<TypeParam>, Receiver<TypeParam>, int> *>(signal.m_handlers[0]);
    ASSERT_NE(handler, nullptr);
    EXPECT_EQ(handler->m_count, 3u);
    signal(1);
    EXPECT_EQ(receiver.calls, std::vector<int>({1})); // one handler, called once

    EXPECT_TRUE(signal.Disconnect(&receiver, &Receiver<TypeParam>::OnInt));
    EXPECT_EQ(handler->m_count, 2u);
    EXPECT_TRUE(signal.Disconnect(&receiver, &Receiver<TypeParam>::OnInt));
    EXPECT_EQ(handler->m_count, 1u);
    EXPECT_TRUE(signal.Disconnect(&receiver, &Receiver<TypeParam>::OnInt));
    EXPECT_TRUE(signal.m_handlers.empty());
    EXPECT_FALSE(signal.Disconnect(&receiver, &Receiver<TypeParam>::OnInt));
    signal(2);
    EXPECT_EQ(receiver.calls, std::vector<int>({1}));
}

TYPED_TEST(SignalTest, DisconnectTouchesOnlyItsOwnPair)
{
    Receiver<TypeParam> a, b;
    IntSignal<TypeParam> signal;
    signal.Connect(&a, &Receiver<TypeParam>::OnInt);
    signal.Connect(&a, &Receiver<TypeParam>::OnIntNegated);
    signal.Connect(&b, &Receiver<TypeParam>::OnInt);
    EXPECT_FALSE(signal.Disconnect(&b, &Receiver<TypeParam>::OnIntNegated));
    EXPECT_TRUE(signal.Disconnect(&a, &Receiver<TypeParam>::OnInt));
    signal(3);
    EXPECT_EQ(a.calls, std::vector<int>({-3}));
    EXPECT_EQ(b.calls, std::vector<int>({3}));
    signal.DisconnectAll();
    signal(4);
    EXPECT_TRUE(signal.m_handlers.empty());
    EXPECT_EQ(a.calls.size(), 1u);
}

TYPED_TEST(SignalTest, NullObjectOrFunctionConnectsNothing)
{
    Receiver<TypeParam> receiver;
    IntSignal<TypeParam> signal;
    EXPECT_FALSE(signal.Connect(static_cast<Receiver<TypeParam> *>(nullptr), &Receiver<TypeParam>::OnInt));
    EXPECT_FALSE(signal.Connect(&receiver, static_cast<void (Receiver<TypeParam>::*)(int)>(nullptr)));
    EXPECT_FALSE(signal.Disconnect(static_cast<Receiver<TypeParam> *>(nullptr), &Receiver<TypeParam>::OnInt));
    EXPECT_TRUE(signal.m_handlers.empty());
    EXPECT_TRUE(signal.m_emitters.empty());
}

TYPED_TEST(SignalTest, TrackedReceiverGetsTheSignalsOwnHandlerOnItsNotice)
{
    Receiver<TypeParam> receiver;
    PlainReceiver plain;
    IntSignal<TypeParam> signal;
    signal.Connect(&receiver, &Receiver<TypeParam>::OnInt);
    signal.Connect(&receiver, &Receiver<TypeParam>::OnIntNegated);
    signal.Connect(&plain, &PlainReceiver::OnInt);
    ASSERT_EQ(signal.m_emitters.size(), 1u); // the plain receiver cannot be tracked
    EXPECT_EQ(signal.m_emitters.count(AsEmitter<TypeParam>(receiver)), 1u);

    Notice<TypeParam> & notice = receiver.OnDestroySignalEmitterDestroyed();
    ASSERT_EQ(notice.m_handlers.size(), 1u); // one tracker for both connections
    auto * tracker = dynamic_cast<IntTracker<TypeParam> *>(notice.m_handlers[0]);
    ASSERT_NE(tracker, nullptr);
    EXPECT_EQ(tracker->m_object, &signal);
    EXPECT_NE(tracker->m_function, nullptr);
    EXPECT_EQ(tracker->m_count, 1u);
    EXPECT_EQ(tracker->GetEmitter(), nullptr); // a signal is no emitter

    // Disconnecting keeps the tracking; the receiver's death still finds the signal.
    signal.Disconnect(&receiver, &Receiver<TypeParam>::OnInt);
    EXPECT_EQ(notice.m_handlers.size(), 1u);
}

TYPED_TEST(SignalTest, ReceiverDyingBeforeItsSignal)
{
    IntSignal<TypeParam> signal;
    Receiver<TypeParam> stays;
    auto * dies = new Receiver<TypeParam>;
    signal.Connect(dies, &Receiver<TypeParam>::OnInt);
    signal.Connect(&stays, &Receiver<TypeParam>::OnInt);
    signal.Connect(dies, &Receiver<TypeParam>::OnIntNegated);
    delete dies;
    EXPECT_EQ(signal.m_handlers.size(), 1u);
    EXPECT_EQ(signal.m_emitters.size(), 1u);
    signal(8); // would reach freed memory if the dead receiver's handlers stayed
    EXPECT_EQ(stays.calls, std::vector<int>({8}));
}

TYPED_TEST(SignalTest, SignalDyingBeforeItsReceiver)
{
    Receiver<TypeParam> receiver;
    {
        IntSignal<TypeParam> signal;
        signal.Connect(&receiver, &Receiver<TypeParam>::OnInt);
        EXPECT_EQ(receiver.OnDestroySignalEmitterDestroyed().m_handlers.size(), 1u);
    }
    // The notice forgot the signal: the receiver's death calls nothing freed.
    EXPECT_TRUE(receiver.OnDestroySignalEmitterDestroyed().m_handlers.empty());
}

TYPED_TEST(SignalTest, ConnectionWithoutMemoryChangesNothing)
{
    Receiver<TypeParam> receiver, other;
    IntSignal<TypeParam> signal;
    signal.Connect(&other, &Receiver<TypeParam>::OnInt);
    for (unsigned long nth = 1;; ++nth)
    {
        AllocationProbe::FailNth(nth);
        bool connected = signal.Connect(&receiver, &Receiver<TypeParam>::OnInt);
        bool failed = AllocationProbe::FailureSpent();
        AllocationProbe::FailNth(0);
        if (!failed)
        {
            EXPECT_TRUE(connected);
            break;
        }
        SCOPED_TRACE(nth);
        EXPECT_FALSE(connected);
        EXPECT_EQ(signal.m_handlers.size(), 1u);
        EXPECT_EQ(signal.m_emitters.size(), 1u);
        EXPECT_TRUE(receiver.OnDestroySignalEmitterDestroyed().m_handlers.empty());
    }
    EXPECT_EQ(signal.m_handlers.size(), 2u);
    EXPECT_EQ(receiver.OnDestroySignalEmitterDestroyed().m_handlers.size(), 1u);
    signal(1);
    EXPECT_EQ(receiver.calls, std::vector<int>({1}));
}

// ---- handlers that change the signal during an emission ----

TYPED_TEST(SignalTest, HandlerConnectedDuringAnEmissionWaitsForTheNext)
{
    struct Connector : zunBaseT<TypeParam>
    {
        IntSignal<TypeParam> * signal = nullptr;
        Receiver<TypeParam> * late = nullptr;
        void On(int) { signal->Connect(late, &Receiver<TypeParam>::OnInt); }
    };
    Receiver<TypeParam> late;
    Connector connector;
    IntSignal<TypeParam> signal;
    connector.signal = &signal;
    connector.late = &late;
    signal.Connect(&connector, &Connector::On);
    for (int i = 0; i < 40; ++i) // enough to make the handler vector move
        signal.Connect(&connector, &Connector::On);
    signal(1);
    EXPECT_TRUE(late.calls.empty());
    signal(2);
    EXPECT_EQ(late.calls, std::vector<int>({2}));
}

TYPED_TEST(SignalTest, HandlerDisconnectedDuringAnEmissionIsNotCalledAfterwards)
{
    struct Remover : zunBaseT<TypeParam>
    {
        IntSignal<TypeParam> * signal = nullptr;
        Receiver<TypeParam> * victim = nullptr;
        int calls = 0;
        void On(int)
        {
            ++calls;
            signal->Disconnect(this, &Remover::On); // itself
            signal->Disconnect(victim, &Receiver<TypeParam>::OnInt);
        }
    };
    Receiver<TypeParam> before, victim, after;
    Remover remover;
    IntSignal<TypeParam> signal;
    remover.signal = &signal;
    remover.victim = &victim;
    signal.Connect(&before, &Receiver<TypeParam>::OnInt);
    signal.Connect(&remover, &Remover::On);
    signal.Connect(&victim, &Receiver<TypeParam>::OnInt);
    signal.Connect(&after, &Receiver<TypeParam>::OnInt);
    signal(1);
    EXPECT_EQ(before.calls, std::vector<int>({1}));
    EXPECT_EQ(remover.calls, 1);
    EXPECT_TRUE(victim.calls.empty());
    EXPECT_EQ(after.calls, std::vector<int>({1}));
    ASSERT_EQ(signal.m_handlers.size(), 2u); // the emptied places were swept
    for (auto * handler : signal.m_handlers)
        EXPECT_NE(handler, nullptr);
    signal(2);
    EXPECT_EQ(after.calls, std::vector<int>({1, 2}));
}

TYPED_TEST(SignalTest, ReceiverDeletedByAHandlerIsNotCalledAfterwards)
{
    struct Killer : zunBaseT<TypeParam>
    {
        Receiver<TypeParam> * victim = nullptr;
        void On(int)
        {
            delete victim;
            victim = nullptr;
        }
    };
    Killer killer;
    Receiver<TypeParam> after;
    IntSignal<TypeParam> signal;
    killer.victim = new Receiver<TypeParam>;
    signal.Connect(&killer, &Killer::On);
    signal.Connect(killer.victim, &Receiver<TypeParam>::OnInt);
    signal.Connect(&after, &Receiver<TypeParam>::OnInt);
    signal(1); // the victim's handler would call freed memory
    EXPECT_EQ(after.calls, std::vector<int>({1}));
    EXPECT_EQ(signal.m_handlers.size(), 2u);
    EXPECT_TRUE(signal.m_emitters.size() == 2u);
}

TYPED_TEST(SignalTest, ConnectingToADyingReceiverIsRefused)
{
    struct Reconnector : zunBaseT<TypeParam>
    {
        IntSignal<TypeParam> * signal = nullptr;
        Receiver<TypeParam> * dying = nullptr;
        bool connected = true;
        void OnDied(DestroySignalEmitter *) { connected = signal->Connect(dying, &Receiver<TypeParam>::OnInt); }
    };
    IntSignal<TypeParam> signal;
    Reconnector reconnector;
    auto * dying = new Receiver<TypeParam>;
    reconnector.signal = &signal;
    reconnector.dying = dying;
    dying->OnDestroySignalEmitterDestroyed().Connect(&reconnector, &Reconnector::OnDied);
    delete dying;
    EXPECT_FALSE(reconnector.connected);
    EXPECT_TRUE(signal.m_handlers.empty());
    EXPECT_TRUE(signal.m_emitters.empty());
}

// ---- the death of a signal ----

TYPED_TEST(SignalTest, DyingSignalRemovesEveryObjectHandlerOfItsTypeFromTheNotice)
{
    Receiver<TypeParam> receiver;
    IntSignal<TypeParam> stranger; // a signal of the same type that tracks nothing
    Watcher<TypeParam> watcher;
    Notice<TypeParam> & notice = receiver.OnDestroySignalEmitterDestroyed();
    auto * dying = new IntSignal<TypeParam>;
    dying->Connect(&receiver, &Receiver<TypeParam>::OnInt);
    // A handler of that type put there by hand, for another signal, and one of another type.
    notice.m_handlers.push_back(new IntTracker<TypeParam>(&stranger, nullptr));
    notice.Connect(&watcher, &Watcher<TypeParam>::OnDied);
    ASSERT_EQ(TrackersOf<TypeParam>(notice), 2u);
    delete dying;
    EXPECT_EQ(TrackersOf<TypeParam>(notice), 0u);
    ASSERT_EQ(notice.m_handlers.size(), 1u);
    EXPECT_EQ(notice.m_handlers[0]->GetEmitter(), AsEmitter<TypeParam>(watcher));
}

TYPED_TEST(SignalTest, DyingSignalMakesTheNoticeOfAnEmitterThatHadNone)
{
    auto * emitter = new Receiver<TypeParam>;
    {
        IntSignal<TypeParam> signal;
        signal.m_emitters.insert(emitter); // tracked by hand, without a notice
    }
    AllocationProbe probe;
    EXPECT_TRUE(emitter->OnDestroySignalEmitterDestroyed().m_handlers.empty());
    EXPECT_EQ(probe.Count(), 0u); // it was there already
    delete emitter;
}

TYPED_TEST(SignalTest, OtherSignalsOfTheSameTypeStillHearOfTheReceiversDeath)
{
    // The dying signal's pattern takes the trackers of the others too; each
    // of them must still drop its handlers when the receiver dies.
    auto * receiver = new Receiver<TypeParam>;
    IntSignal<TypeParam> first, third;
    first.Connect(receiver, &Receiver<TypeParam>::OnInt);
    auto * second = new IntSignal<TypeParam>;
    second->Connect(receiver, &Receiver<TypeParam>::OnInt);
    third.Connect(receiver, &Receiver<TypeParam>::OnInt);
    delete second;
    Notice<TypeParam> & notice = receiver->OnDestroySignalEmitterDestroyed();
    EXPECT_EQ(TrackersOf<TypeParam>(notice), 0u);
    EXPECT_EQ(notice.m_handlers.size(), 2u); // what stands in for the first and the third

    // Another death of the same type leaves the stand-ins of the others alone.
    {
        IntSignal<TypeParam> fourth;
        fourth.Connect(receiver, &Receiver<TypeParam>::OnInt);
    }
    EXPECT_EQ(notice.m_handlers.size(), 2u);

    delete receiver;
    EXPECT_TRUE(first.m_handlers.empty());
    EXPECT_TRUE(first.m_emitters.empty());
    EXPECT_TRUE(third.m_handlers.empty());
    first(1); // would call the dead receiver otherwise
    third(1);
}

TYPED_TEST(SignalTest, StandInLeavesTheNoticeWithItsSignal)
{
    Receiver<TypeParam> receiver;
    auto * first = new IntSignal<TypeParam>;
    auto * second = new IntSignal<TypeParam>;
    first->Connect(&receiver, &Receiver<TypeParam>::OnInt);
    second->Connect(&receiver, &Receiver<TypeParam>::OnInt);
    delete second; // the first one's tracker becomes a stand-in
    EXPECT_EQ(receiver.OnDestroySignalEmitterDestroyed().m_handlers.size(), 1u);
    delete first;
    EXPECT_TRUE(receiver.OnDestroySignalEmitterDestroyed().m_handlers.empty());
}

TYPED_TEST(SignalTest, HandlerOfANoticeMayDestroyAnotherTrackedSignalOfIt)
{
    // During the receiver's death, a handler of its notice destroys a signal
    // that tracks the same receiver: that signal's handler leaves the running
    // emission of the notice, which must neither skip nor call a freed handler.
    struct Owner : zunBaseT<TypeParam>
    {
        IntSignal<TypeParam> * owned = nullptr;
        void OnDied(DestroySignalEmitter *)
        {
            delete owned;
            owned = nullptr;
        }
    };
    Owner owner;
    Watcher<TypeParam> watcher;
    IntSignal<TypeParam> survivor;
    auto * receiver = new Receiver<TypeParam>;
    owner.owned = new IntSignal<TypeParam>;
    receiver->OnDestroySignalEmitterDestroyed().Connect(&owner, &Owner::OnDied);
    owner.owned->Connect(receiver, &Receiver<TypeParam>::OnInt);
    survivor.Connect(receiver, &Receiver<TypeParam>::OnInt);
    receiver->OnDestroySignalEmitterDestroyed().Connect(&watcher, &Watcher<TypeParam>::OnDied);
    delete receiver;
    EXPECT_EQ(owner.owned, nullptr);
    EXPECT_EQ(watcher.deaths.size(), 1u);
    EXPECT_TRUE(survivor.m_handlers.empty());
    EXPECT_TRUE(survivor.m_emitters.empty());
}

// ---- handlers ----

namespace
{
    struct First
    {
        int first = 1;
    };
    struct Second
    {
        int seen = 0;
        void Take(int value) { seen = value; }
        void Other(int value) { seen = -value; }
    };
    struct Both : First, Second
    {
    };
}

TEST(ObjectHandler, InvokeAppliesTheAdjustment)
{
    Both both;
    ObjectHandler<Both, Second, int> handler(&both, &Second::Take);
    EXPECT_EQ(handler.m_count, 1u);
    EXPECT_EQ(handler.m_object, &both);
    EXPECT_EQ(handler.m_adjustment,
              reinterpret_cast<char *>(static_cast<Second *>(&both)) - reinterpret_cast<char *>(&both));
    EXPECT_NE(handler.m_adjustment, 0);
    EXPECT_TRUE(handler.IsValid());
    handler.Invoke(9);
    EXPECT_EQ(both.seen, 9);
}

TEST(ObjectHandler, IsValidWantsObjectAndFunction)
{
    Second second;
    EXPECT_FALSE((ObjectHandler<Second, Second, int>(nullptr, &Second::Take).IsValid()));
    EXPECT_FALSE((ObjectHandler<Second, Second, int>(&second, nullptr).IsValid()));
    ObjectHandler<Second, Second, int> pattern(&second, nullptr);
    pattern.Invoke(3); // calls nothing
    EXPECT_EQ(second.seen, 0);
}

TEST(ObjectHandler, EqualsFollowsItsRulesInOrder)
{
    Second a, b;
    using H = ObjectHandler<Second, Second, int>;
    H handler(&a, &Second::Take);
    H nullObject(nullptr, &Second::Take);

    // 1. Another instantiation never matches, not even a pattern.
    ObjectHandler<Both, Second, int> otherType(nullptr, nullptr);
    EXPECT_FALSE(handler.Equals(&otherType));
    EXPECT_FALSE(handler.Equals(nullptr));
    // 2. Object and function: all three must be equal.
    H same(&a, &Second::Take), otherObject(&b, &Second::Take), otherFunction(&a, &Second::Other);
    EXPECT_TRUE(handler.Equals(&same));
    EXPECT_FALSE(handler.Equals(&otherObject));
    EXPECT_FALSE(handler.Equals(&otherFunction));
    H shifted(&a, &Second::Take);
    shifted.m_adjustment = 4;
    EXPECT_FALSE(handler.Equals(&shifted));
    // 3. No function: matches whatever its object.
    H patternOfB(&b, nullptr), patternOfNothing(nullptr, nullptr);
    EXPECT_TRUE(handler.Equals(&patternOfB));
    EXPECT_TRUE(handler.Equals(&patternOfNothing));
    EXPECT_TRUE(nullObject.Equals(&patternOfB));
    // 4. A function and no object: only a handler without an object matches.
    EXPECT_FALSE(handler.Equals(&nullObject));
    EXPECT_TRUE(nullObject.Equals(&nullObject));
}

TEST(ObjectHandler, GetEmitterNamesOnlyObjectsWithANotice)
{
    Receiver<ThreadSafe> receiver;
    Second plain;
    IntSignal<ThreadSafe> signal;
    ObjectHandler<Receiver<ThreadSafe>, Receiver<ThreadSafe>, int> toReceiver(&receiver, &Receiver<ThreadSafe>::OnInt);
    ObjectHandler<Second, Second, int> toPlain(&plain, &Second::Take);
    IntTracker<ThreadSafe> toSignal(&signal, nullptr);
    EXPECT_EQ(toReceiver.GetEmitter(), static_cast<DestroySignalEmitter *>(&receiver));
    EXPECT_EQ(toPlain.GetEmitter(), nullptr);
    EXPECT_EQ(toSignal.GetEmitter(), nullptr);
}

// ---- objects that outlive the notice maps ----

namespace
{
    // Built before main, so destroyed after the notice maps, which are built
    // on first use during the test. Their deaths must find no map rather than
    // a destroyed one; a sanitizer build fails the program otherwise.
    Receiver<NoThreadSafe> g_lateReceiver;
    IntSignal<NoThreadSafe> g_lateSignal;
}

TEST(StaticObjects, OutliveTheNoticeMapsSafely)
{
    Watcher<NoThreadSafe> * watcher = new Watcher<NoThreadSafe>;
    g_lateSignal.Connect(&g_lateReceiver, &Receiver<NoThreadSafe>::OnInt);
    g_lateReceiver.OnDestroySignalEmitterDestroyed().Connect(watcher, &Watcher<NoThreadSafe>::OnDied);
    delete watcher;
    g_lateSignal(1);
    EXPECT_EQ(g_lateReceiver.calls, std::vector<int>({1}));
}
