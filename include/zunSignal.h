// zunSignal.h - death notices for objects, and the type-safe signals built on them.
//
// An object derived from zunBaseT<Policy> announces its own death. Its death
// notice is a signal of one argument, the dying object's address, emitted from
// the base destructor. The object pays one pointer (its virtual table) and no
// signal storage: notices live in a process-wide map, made for the objects
// somebody watches, so an unwatched object pays one failed hash look-up when
// it dies.
//
// A signal calls member functions of objects. A receiver derived from
// zunBaseT is tracked: when it dies, its connections leave every signal it was
// connected to; when a signal dies first, the receiver's notice forgets it.
//
//   class View : public zunBaseT<zunSignalPrivate::ThreadSafe>
//   {
//   public:
//       void OnRenamed(const char * name);
//   };
//
//   zunSignal<const char *> renamed;          // ThreadSafe; zunSignalNoThreadSafe locks nothing
//   View * view = new View;
//   renamed.Connect(view, &View::OnRenamed);
//   renamed("draft");                         // view->OnRenamed("draft")
//   delete view;                              // its connection leaves the signal
//   renamed("final");                         // calls nothing
//
//   // Any object can watch another one die; the dying object is good only
//   // as an address by then, its derived parts are gone.
//   document->OnDestroySignalEmitterDestroyed().Connect(view, &View::OnDocumentGone);
//
// Emission rules (both policies):
//  - Handlers run in order of connection, each with the same arguments.
//  - An emission of a blocked signal, or one started from within an emission
//    of the same signal, is dropped without a trace.
//  - The handlers are counted once when the emission starts: a handler that
//    connects another lets it wait for the next emission. A handler that is
//    disconnected during an emission, by itself, by another handler or by the
//    death of its receiver, is not called after that point.
//  - A handler that throws lets the exception out of Emit and leaves the signal
//    silent from then on (m_emitting stays 1; reset it to 0 to revive it).
//  - A handler must not destroy the signal that is calling it. It may destroy
//    receivers and other signals, tracked ones included.
//
// Threads. A ThreadSafe signal holds its own recursive mutex (m_mutex) while it
// emits, connects, disconnects, blocks and dies, so one signal can be emitted
// and connected from several threads; handlers run with that lock held. The
// maps of death notices have no lock in either policy: making a notice (the
// first OnDestroySignalEmitterDestroyed or tracked Connect of an object), the
// death of a watched object and the death of a signal that tracks receivers
// must not overlap with each other on two threads. Call
// OnDestroySignalEmitterDestroyed beforehand to make connecting a pure look-up.
// Lock order: a receiver's notice before the signal (Connect and the
// receiver's death both take them so). A handler that connects a tracked
// receiver takes that receiver's notice under its own signal's lock, the other
// way round: harmless, since nothing may destroy a receiver that is being
// connected, but a lock-order checker may point at it.
// A NoThreadSafe signal locks nothing and belongs to one thread at a time.
#ifndef ZUN_SIGNAL_H
#define ZUN_SIGNAL_H

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "zunConfig.h"

/// The machinery behind zunBaseT, zunSignal and zunSignalNoThreadSafe; use
/// those names rather than this namespace's.
namespace zunSignalPrivate
{
    /// Thread policies, given as template arguments: a ThreadSafe signal locks
    /// its own recursive mutex, a NoThreadSafe one locks nothing.
    struct ZUN_API ThreadSafe
    {
    };
    struct ZUN_API NoThreadSafe
    {
    };

    template <class Policy, class... Args> class Signal;
    template <class Policy, class... Args> class EmitterWatch;

    /// What every object with a death notice is; the argument of a death notice.
    class ZUN_API DestroySignalEmitter
    {
    public:
        virtual ~DestroySignalEmitter() = default;
    };

    /// How DestroySignalEmitterT reaches the map of death notices.
    enum SignalMapAccess
    {
        SignalMapFind = 0,
        SignalMapFindOrCreate = 1,
        SignalMapErase = 2
    };

    /// Adds the death notice. Derive from zunBaseT rather than from this class.
    template <class Policy> class ZUN_API DestroySignalEmitterT : public DestroySignalEmitter
    {
    public:
        DestroySignalEmitterT() = default;
        /// Takes nothing from the source: connections belong to an object's identity.
        DestroySignalEmitterT(const DestroySignalEmitterT &) : DestroySignalEmitter() {}
        /// Keeps this object's own connections; the source's stay with it.
        DestroySignalEmitterT & operator=(const DestroySignalEmitterT &) { return *this; }
        /// Emits the death notice with this object's address, if it has a
        /// notice, then erases the notice.
        ~DestroySignalEmitterT() override;

        /// The object's death notice, made on first use; the same signal on
        /// every call. Throws std::bad_alloc when no notice can be made.
        Signal<Policy, DestroySignalEmitter *> & OnDestroySignalEmitterDestroyed();

    private:
        template <class, class...> friend class Signal;

        /// The notice of `emitter`; with `create` false null if it has none,
        /// with `create` true made if missing.
        static Signal<Policy, DestroySignalEmitter *> * __GetSignal_Private(const DestroySignalEmitterT & emitter,
                                                                            bool create);
        /// Erases the entry of `emitter`, destroying its notice; gives null.
        static Signal<Policy, DestroySignalEmitter *> * __DeleteSignal_Private(const DestroySignalEmitterT & emitter);
        /// The one way into the map of this policy.
        static Signal<Policy, DestroySignalEmitter *> * __AccessSignalMap_Private(const DestroySignalEmitter * emitter,
                                                                                  SignalMapAccess mode);
    };

    /// One connection of a signal. The signal owns it.
    template <class... Args> class ZUN_API Handler
    {
    public:
        virtual ~Handler() = default;
        /// Whether the connection has everything it needs to be invoked.
        virtual bool IsValid() const = 0;
        /// Whether `other`, a connection or a search pattern, designates this
        /// connection; Connect and Disconnect find connections with it.
        virtual bool Equals(Handler * other) const = 0;
        /// Runs the connection with the emitted arguments.
        virtual void Invoke(Args... args) = 0;
        /// The receiver whose death ends this connection, or null.
        virtual DestroySignalEmitter * GetEmitter() const = 0;
    };

    /// A connection to `function` of `object`; `Owner` is the class that
    /// declares the function, `Target` the receiver's class (Owner or derived).
    template <class Target, class Owner, class... Args> class ZUN_API ObjectHandler : public Handler<Args...>
    {
    public:
        /// The member function a connection calls.
        typedef void (Owner::*Function)(Args...);

        /// Count 1. With a null `function` it is a pattern that matches every
        /// handler of its type (see Equals).
        ObjectHandler(Target * object, Function function);

        /// Both the object and the function are set.
        bool IsValid() const override { return m_object != nullptr && m_function != nullptr; }
        /// False unless `other` is an ObjectHandler of this very type. Then: if
        /// `other` has an object and a function, whether object, function and
        /// adjustment all equal this one's; if it has no function, true whatever
        /// its object; if it has a function and no object, whether this one has
        /// no object either.
        bool Equals(Handler<Args...> * other) const override;
        /// Calls the function on the object with the adjustment applied.
        void Invoke(Args... args) override;
        /// The object as a DestroySignalEmitter; null for other targets.
        DestroySignalEmitter * GetEmitter() const override;

        /// How many times the same pair was connected; as many Disconnects remove it.
        unsigned int m_count;
        /// The receiver; null in a pattern that matches any receiver.
        Target * m_object;
        /// The member function called; null in a pattern that matches any connection.
        Function m_function;
        /// Added to the object's address to form the callee's `this`.
        int m_adjustment;
    };

    /// The handler list and flags of a signal. Owns its handlers.
    template <class... Args> class ZUN_API SignalData
    {
    public:
        SignalData() : m_blocked(0), m_emitting(0) {}
        SignalData(const SignalData &) = delete;
        SignalData & operator=(const SignalData &) = delete;
        ~SignalData()
        {
            for (Handler<Args...> * handler : m_handlers)
                delete handler;
        }

        /// Not zero: emissions do nothing.
        unsigned int m_blocked;
        /// 1 while an emission of this signal runs, else 0.
        unsigned int m_emitting;
        /// The connections, in order of connection.
        std::vector<Handler<Args...> *> m_handlers;
    };

    /// Adds the policy's lock: none for NoThreadSafe.
    template <class Policy, class... Args> class ZUN_API SignalBase : public SignalData<Args...>
    {
        static_assert(std::is_same<Policy, NoThreadSafe>::value, "the thread policy is ThreadSafe or NoThreadSafe");

    public:
        /// Calls every handler with `args`; see Signal::Emit.
        virtual void Emit(Args... args) = 0;
        virtual ~SignalBase() = default;
    };

    /// Adds the policy's lock: a recursive mutex for ThreadSafe.
    template <class... Args> class ZUN_API SignalBase<ThreadSafe, Args...> : public SignalData<Args...>
    {
    public:
        /// Calls every handler with `args`; see Signal::Emit.
        virtual void Emit(Args... args) = 0;
        virtual ~SignalBase() = default;

        /// Held while the signal emits, connects, disconnects, blocks and
        /// dies; recursive, so handlers may call back into the same signal.
        mutable std::recursive_mutex m_mutex;
    };

    /// Holds a signal's mutex for one scope; under NoThreadSafe, nothing.
    template <class Policy> class SignalLock
    {
    public:
        /// Locks nothing.
        template <class AnySignal> explicit SignalLock(const AnySignal &) {}
    };

    /// Holds the recursive mutex of a ThreadSafe signal for one scope.
    template <> class SignalLock<ThreadSafe>
    {
    public:
        /// Locks `signal`'s m_mutex until the lock goes out of scope; throws
        /// std::system_error when the mutex cannot be locked.
        template <class AnySignal> explicit SignalLock(const AnySignal & signal) : m_guard(signal.m_mutex) {}

    private:
        std::lock_guard<std::recursive_mutex> m_guard;
    };

    /// Whether `Target` has DestroySignalEmitter as a plain (non-virtual,
    /// unambiguous) base, so that its address can be told at its death.
    template <class Target, class = void> struct HasPlainEmitterBase : std::false_type
    {
    };
    template <class Target>
    struct HasPlainEmitterBase<Target, decltype(void(static_cast<Target *>(std::declval<DestroySignalEmitter *>())))>
        : std::true_type
    {
    };

    /// A signal of any argument list. Use it through zunSignal<Args...> and
    /// zunSignalNoThreadSafe<Args...> below.
    template <class Policy, class... Args> class ZUN_API Signal : public SignalBase<Policy, Args...>
    {
    public:
        Signal() : m_runningLoops(0), m_slotsCleared(false) {}
        /// Takes nothing from the source: connections belong to a signal's
        /// identity, so a copy starts with none, and assignment keeps the
        /// target's own. Classes that hold signals stay copyable.
        Signal(const Signal &) : SignalBase<Policy, Args...>(), m_runningLoops(0), m_slotsCleared(false) {}
        /// Keeps this signal's own connections; the source's stay with it.
        Signal & operator=(const Signal &) { return *this; }

        /// Calls every handler with `args` (see the emission rules above).
        /// Under ThreadSafe, throws std::system_error when the lock fails and
        /// std::bad_alloc when its guard cannot be made.
        void Emit(Args... args) override;
        /// Leaves the death notice of every tracked receiver, then deletes the
        /// handlers.
        ~Signal() override;

        /// Emit(args...).
        void operator()(Args... args) { Emit(args...); }

        /// Connects `function` of `object`. Connecting the same pair again
        /// counts the connection up, and it then takes as many Disconnects. A
        /// receiver derived from zunBaseT is tracked through its death notice.
        /// False (nothing changed) for a null object or function, a receiver
        /// that is dying, or an exhausted heap.
        template <class Target, class Owner> bool Connect(Target * object, void (Owner::*function)(Args...));
        /// Counts the connection of `function` of `object` down and removes it
        /// at zero. False if there was none.
        template <class Target, class Owner> bool Disconnect(Target * object, void (Owner::*function)(Args...));
        /// Removes every connection.
        void DisconnectAll();
        /// Blocks emissions; blocks nest and need as many Unblocks.
        void Block();
        /// Takes back one Block; does nothing on a signal that is not blocked.
        void Unblock();
        /// Whether more Blocks than Unblocks were called, so emissions are dropped.
        bool IsBlocked() const;

        /// The receivers on whose death notice this signal has a handler of its own.
        std::unordered_set<DestroySignalEmitter *> m_emitters;

    private:
        template <class, class...> friend class Signal;
        friend class EmitterWatch<Policy, Args...>;

        // The handler this signal keeps on a tracked receiver's notice, and the
        // type of the pattern it removes that handler with.
        typedef ObjectHandler<Signal, Signal, DestroySignalEmitter *> Tracker;

        void EmitLocked(Args &... args);
        /// Connect with the locks held; a tracked receiver comes with its notice.
        template <class Target, class Owner>
        bool AddConnection(Target * object, void (Owner::*function)(Args...),
                           Signal<Policy, DestroySignalEmitter *> * notice);
        /// The tracker's function: the receiver died, its handlers go.
        void OnReceiverDestroyed(DestroySignalEmitter * receiver);
        /// Removes this signal's handlers from the notice of `emitter`.
        void LeaveNotice(DestroySignalEmitter * emitter);
        /// Gives each handler to `visit`, which returns the handler to keep it,
        /// null to remove it or another handler to take its place.
        template <class Visit> void ReplaceHandlers(Visit visit);
        void SweepClearedSlots();

        // Bookkeeping of a running emission, which counts its handlers once:
        // while one runs, removed handlers leave null slots rather than moving
        // the others, and the emission sweeps them when it ends.
        unsigned int m_runningLoops;
        bool m_slotsCleared;
    };

    /// Stands on a receiver's notice for a signal whose tracker another signal
    /// of the same type removed when it died (see ~Signal): it tells that
    /// signal of the receiver's death, and only that signal's own death removes it.
    template <class Policy, class... Args> class ZUN_API EmitterWatch : public Handler<DestroySignalEmitter *>
    {
    public:
        /// Watches the receiver's death on behalf of `signal`.
        explicit EmitterWatch(Signal<Policy, Args...> * signal) : m_signal(signal) {}

        /// Whether a signal is watched.
        bool IsValid() const override { return m_signal != nullptr; }
        /// True for the pattern of the watched signal only.
        bool Equals(Handler<DestroySignalEmitter *> * other) const override;
        /// The receiver died: removes its connections from the watched signal.
        void Invoke(DestroySignalEmitter * emitter) override { m_signal->OnReceiverDestroyed(emitter); }
        DestroySignalEmitter * GetEmitter() const override { return nullptr; }

        /// The signal told of the receiver's death.
        Signal<Policy, Args...> * m_signal;
    };

    // ---- ObjectHandler ----

    template <class Target, class Owner, class... Args>
    ObjectHandler<Target, Owner, Args...>::ObjectHandler(Target * object, Function function)
        : m_count(1), m_object(object), m_function(function), m_adjustment(0)
    {
        static_assert(std::is_base_of<Owner, Target>::value,
                      "the member function must belong to the receiver's class or to one of its bases");
        if (object != nullptr)
            m_adjustment = static_cast<int>(reinterpret_cast<char *>(static_cast<Owner *>(object)) -
                                            reinterpret_cast<char *>(object));
    }

    template <class Target, class Owner, class... Args>
    bool ObjectHandler<Target, Owner, Args...>::Equals(Handler<Args...> * other) const
    {
        const ObjectHandler * that = dynamic_cast<const ObjectHandler *>(other);
        if (that == nullptr)
            return false;
        if (that->m_object != nullptr && that->m_function != nullptr)
            return m_object == that->m_object && m_function == that->m_function && m_adjustment == that->m_adjustment;
        // A pattern without a function matches every handler of this type, of
        // any object: a dying signal removes all of them from a notice.
        if (that->m_function == nullptr)
            return true;
        return m_object == nullptr;
    }

    template <class Target, class Owner, class... Args> void ObjectHandler<Target, Owner, Args...>::Invoke(Args... args)
    {
        if (!IsValid())
            return; // a pattern has nothing to call
        Owner * callee = reinterpret_cast<Owner *>(reinterpret_cast<char *>(m_object) + m_adjustment);
        (callee->*m_function)(args...);
    }

    template <class Target, class Owner, class... Args>
    DestroySignalEmitter * ObjectHandler<Target, Owner, Args...>::GetEmitter() const
    {
        if constexpr (HasPlainEmitterBase<Target>::value)
            return m_object;
        else
            return nullptr;
    }

    // ---- Signal ----

    template <class Policy, class... Args> void Signal<Policy, Args...>::Emit(Args... args)
    {
        if constexpr (std::is_same<Policy, ThreadSafe>::value)
        {
            // The guard lives on the heap and holds the mutex's address; its
            // clean-up unlocks even when a handler throws.
            std::unique_ptr<std::lock_guard<std::recursive_mutex>> guard(
                new std::lock_guard<std::recursive_mutex>(this->m_mutex));
            EmitLocked(args...);
        }
        else
            EmitLocked(args...);
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::EmitLocked(Args &... args)
    {
        // Two separate reads: the compiler would otherwise merge them into one
        // wide read, which waits for the narrow store of the previous
        // emission's m_emitting to retire instead of taking it from the store
        // buffer, and that stall cost more than the rest of a short emission.
        if (this->m_blocked != 0)
            return;
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (this->m_emitting != 0)
            return;
        this->m_emitting = 1;
        {
            struct Loop
            {
                Signal & signal;
                explicit Loop(Signal & s) : signal(s) { ++signal.m_runningLoops; }
                ~Loop()
                {
                    if (--signal.m_runningLoops == 0 && signal.m_slotsCleared)
                        signal.SweepClearedSlots();
                }
            } loop(*this);
            // Counted once, and read by index: a handler may connect or remove
            // handlers of this signal without upsetting the loop.
            const std::size_t count = this->m_handlers.size();
            for (std::size_t i = 0; i < count; ++i)
                if (Handler<Args...> * handler = this->m_handlers[i])
                    handler->Invoke(args...);
        }
        this->m_emitting = 0; // not reached when a handler throws: the signal stays silent
    }

    template <class Policy, class... Args> Signal<Policy, Args...>::~Signal()
    {
        for (DestroySignalEmitter * emitter : m_emitters)
            LeaveNotice(emitter);
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::LeaveNotice(DestroySignalEmitter * emitter)
    {
        Signal<Policy, DestroySignalEmitter *> * notice =
            DestroySignalEmitterT<Policy>::__AccessSignalMap_Private(emitter, SignalMapFindOrCreate);
        if (notice == nullptr)
            return; // the maps are gone: the process is past its static destruction
        std::unique_ptr<Tracker> pattern(new Tracker(this, nullptr));
        SignalLock<Policy> lock(*notice);
        notice->ReplaceHandlers(
            [this, &pattern](Handler<DestroySignalEmitter *> * handler) -> Handler<DestroySignalEmitter *> *
            {
                if (!handler->Equals(pattern.get()))
                    return handler;
                // The pattern also matches the trackers of other signals of this
                // type on the same notice. Such a signal still follows the receiver
                // and would never hear of its death: a watch takes the tracker's
                // place, so that signal drops its handlers when the receiver dies.
                Tracker * tracker = dynamic_cast<Tracker *>(handler);
                if (tracker != nullptr && tracker->m_object != nullptr && tracker->m_object != this &&
                    tracker->m_function == &Signal::OnReceiverDestroyed)
                    return new EmitterWatch<Policy, Args...>(tracker->m_object);
                return nullptr;
            });
    }

    template <class Policy, class... Args>
    template <class Target, class Owner>
    bool Signal<Policy, Args...>::Connect(Target * object, void (Owner::*function)(Args...))
    {
        static_assert(!std::is_base_of<DestroySignalEmitter, Target>::value ||
                          std::is_base_of<DestroySignalEmitterT<Policy>, Target>::value,
                      "a receiver derived from zunBaseT must have the signal's thread policy");
        static_assert(!std::is_base_of<DestroySignalEmitter, Target>::value || HasPlainEmitterBase<Target>::value,
                      "a receiver must derive from zunBaseT once and not virtually");
        if (object == nullptr || function == nullptr)
            return false;
        try
        {
            if constexpr (HasPlainEmitterBase<Target>::value)
            {
                // The receiver's notice is locked before this signal, in the
                // order of the receiver's death, which calls this signal from
                // within its notice's emission.
                Signal<Policy, DestroySignalEmitter *> & notice =
                    static_cast<DestroySignalEmitterT<Policy> *>(object)->OnDestroySignalEmitterDestroyed();
                SignalLock<Policy> noticeLock(notice);
                if (notice.m_emitting != 0)
                    return false; // its notice is being emitted: the receiver is dying
                SignalLock<Policy> lock(*this);
                return AddConnection(object, function, &notice);
            }
            else
            {
                SignalLock<Policy> lock(*this);
                return AddConnection(object, function, nullptr);
            }
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
    }

    template <class Policy, class... Args>
    template <class Target, class Owner>
    bool Signal<Policy, Args...>::AddConnection(Target * object, void (Owner::*function)(Args...),
                                                Signal<Policy, DestroySignalEmitter *> * notice)
    {
        typedef ObjectHandler<Target, Owner, Args...> Connection;
        Connection probe(object, function);
        for (Handler<Args...> * handler : this->m_handlers)
            if (handler != nullptr && handler->Equals(&probe))
                if (Connection * same = dynamic_cast<Connection *>(handler))
                {
                    if (same->m_count == ~0u)
                        return false;
                    ++same->m_count;
                    return true;
                }
        std::unique_ptr<Connection> connection(new Connection(object, function));
        // Room for the tracker too, for an object's notice connected to the object itself.
        this->m_handlers.reserve(this->m_handlers.size() + 2);
        DestroySignalEmitter * receiver = connection->GetEmitter();
        if (notice != nullptr && m_emitters.count(receiver) == 0)
        {
            std::unique_ptr<Tracker> tracker(new Tracker(this, &Signal::OnReceiverDestroyed));
            m_emitters.insert(receiver);
            try
            {
                notice->m_handlers.push_back(tracker.get());
            }
            catch (...)
            {
                m_emitters.erase(receiver);
                throw;
            }
            static_cast<void>(tracker.release()); // the notice's handler list owns it now
        }
        this->m_handlers.push_back(connection.release());
        return true;
    }

    template <class Policy, class... Args>
    template <class Target, class Owner>
    bool Signal<Policy, Args...>::Disconnect(Target * object, void (Owner::*function)(Args...))
    {
        typedef ObjectHandler<Target, Owner, Args...> Connection;
        if (object == nullptr || function == nullptr)
            return false;
        SignalLock<Policy> lock(*this);
        Connection probe(object, function);
        bool found = false;
        ReplaceHandlers(
            [&probe, &found](Handler<Args...> * handler) -> Handler<Args...> *
            {
                if (!handler->Equals(&probe))
                    return handler;
                found = true;
                Connection * same = dynamic_cast<Connection *>(handler);
                if (same != nullptr && same->m_count > 1)
                {
                    --same->m_count;
                    return handler;
                }
                return nullptr;
            });
        return found;
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::DisconnectAll()
    {
        SignalLock<Policy> lock(*this);
        ReplaceHandlers([](Handler<Args...> *) -> Handler<Args...> * { return nullptr; });
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::Block()
    {
        SignalLock<Policy> lock(*this);
        ++this->m_blocked;
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::Unblock()
    {
        SignalLock<Policy> lock(*this);
        if (this->m_blocked != 0)
            --this->m_blocked;
    }

    template <class Policy, class... Args> bool Signal<Policy, Args...>::IsBlocked() const
    {
        SignalLock<Policy> lock(*this);
        return this->m_blocked != 0;
    }

    template <class Policy, class... Args>
    void Signal<Policy, Args...>::OnReceiverDestroyed(DestroySignalEmitter * receiver)
    {
        SignalLock<Policy> lock(*this);
        m_emitters.erase(receiver);
        ReplaceHandlers([receiver](Handler<Args...> * handler) -> Handler<Args...> *
                        { return handler->GetEmitter() == receiver ? nullptr : handler; });
    }

    template <class Policy, class... Args>
    template <class Visit>
    void Signal<Policy, Args...>::ReplaceHandlers(Visit visit)
    {
        bool cleared = false;
        for (Handler<Args...> *& slot : this->m_handlers)
        {
            if (slot == nullptr)
                continue;
            Handler<Args...> * next = visit(slot);
            if (next == slot)
                continue;
            Handler<Args...> * old = slot;
            slot = next;
            delete old;
            cleared = cleared || next == nullptr;
        }
        if (!cleared)
            return;
        if (m_runningLoops != 0)
            m_slotsCleared = true;
        else
            SweepClearedSlots();
    }

    template <class Policy, class... Args> void Signal<Policy, Args...>::SweepClearedSlots()
    {
        auto & handlers = this->m_handlers;
        handlers.erase(std::remove(handlers.begin(), handlers.end(), nullptr), handlers.end());
        m_slotsCleared = false;
    }

    // ---- EmitterWatch ----

    template <class Policy, class... Args>
    bool EmitterWatch<Policy, Args...>::Equals(Handler<DestroySignalEmitter *> * other) const
    {
        auto * pattern = dynamic_cast<typename Signal<Policy, Args...>::Tracker *>(other);
        return pattern != nullptr && pattern->m_object == m_signal;
    }
}

/// What callers derive from to give their objects a death notice. It carries
/// no fields: an object pays its virtual table and nothing else.
///
/// Copies and moves take nothing from the source: a copy starts with no
/// connections, and assignment keeps the target's own. Objects are allocated
/// with malloc and released with free; a failed `new` gives null and throws
/// nothing. The destructor must not let an exception out of a handler of the
/// death notice: one ends the process.
template <class Policy> class ZUN_API zunBaseT : public zunSignalPrivate::DestroySignalEmitterT<Policy>
{
public:
    zunBaseT() = default;
    /// Copies and moves start the target with no connections of its own
    /// and leave the source's connections where they are.
    ///@{
    zunBaseT(const zunBaseT &) : zunSignalPrivate::DestroySignalEmitterT<Policy>() {}
    zunBaseT(zunBaseT &&) noexcept : zunSignalPrivate::DestroySignalEmitterT<Policy>() {}
    ///@}
    /// Assignments keep the target's own connections.
    ///@{
    zunBaseT & operator=(const zunBaseT &) { return *this; }
    zunBaseT & operator=(zunBaseT &&) noexcept { return *this; }
    ///@}
    ~zunBaseT() override;

    /// Objects and arrays come from malloc; null when it fails, nothing thrown.
    ///@{
    static void * operator new(std::size_t size) noexcept;
    static void * operator new[](std::size_t size) noexcept;
    ///@}
    /// Over-aligned classes get memory of their alignment, still freed by free.
    ///@{
    static void * operator new(std::size_t size, std::align_val_t alignment) noexcept;
    static void * operator new[](std::size_t size, std::align_val_t alignment) noexcept;
    ///@}
    /// Placement forms: construct at `place`, allocate nothing.
    ///@{
    static void * operator new(std::size_t size, void * place) noexcept;
    static void * operator new[](std::size_t size, void * place) noexcept;
    ///@}
    /// Release with free, whatever the alignment.
    ///@{
    static void operator delete(void * block) noexcept;
    static void operator delete[](void * block) noexcept;
    static void operator delete(void * block, std::align_val_t alignment) noexcept;
    static void operator delete[](void * block, std::align_val_t alignment) noexcept;
    ///@}
    /// Placement forms: free nothing.
    ///@{
    static void operator delete(void * block, void * place) noexcept;
    static void operator delete[](void * block, void * place) noexcept;
    ///@}
};

/// Signals for everyday use: zunSignal<Args...> locks its own recursive mutex,
/// zunSignalNoThreadSafe<Args...> locks nothing.
template <class... Args> using zunSignal = zunSignalPrivate::Signal<zunSignalPrivate::ThreadSafe, Args...>;
/// A signal that locks nothing and belongs to one thread at a time.
template <class... Args>
using zunSignalNoThreadSafe = zunSignalPrivate::Signal<zunSignalPrivate::NoThreadSafe, Args...>;

// The death notices of both policies live in the library (the templates
// themselves carry ZUN_API, so these instantiations are exported).
namespace zunSignalPrivate
{
    extern template class DestroySignalEmitterT<ThreadSafe>;
    extern template class DestroySignalEmitterT<NoThreadSafe>;
    extern template class Handler<DestroySignalEmitter *>;
    extern template class SignalData<DestroySignalEmitter *>;
    extern template class SignalBase<ThreadSafe, DestroySignalEmitter *>;
    extern template class SignalBase<NoThreadSafe, DestroySignalEmitter *>;
    extern template class Signal<ThreadSafe, DestroySignalEmitter *>;
    extern template class Signal<NoThreadSafe, DestroySignalEmitter *>;
}
extern template class zunBaseT<zunSignalPrivate::ThreadSafe>;
extern template class zunBaseT<zunSignalPrivate::NoThreadSafe>;

#endif // ZUN_SIGNAL_H
