// Death notices: the process-wide map of each thread policy, the death of an
// emitter, the allocation functions of zunBaseT, and the instantiations the
// library exports.
#include "zunSignal.h"

#include <cstdlib>
#include <unordered_map>

namespace
{
    // Set while the map of a policy is torn down at unload and ever after.
    // Objects with static storage that die later (built before the first
    // notice, so destroyed after the map) then find no notice instead of
    // reaching into a destroyed map. A plain flag: it is constant-initialised
    // and never destroyed itself.
    template <class Policy> bool g_noticeMapGone = false;

    template <class Policy> class NoticeMap
    {
    public:
        typedef zunSignalPrivate::Signal<Policy, zunSignalPrivate::DestroySignalEmitter *> Notice;

        ~NoticeMap()
        {
            // Before the entries go: a dying notice leaves the notices of the
            // receivers it tracks, and those live in this very map.
            g_noticeMapGone<Policy> = true;
        }

        Notice * Find(const zunSignalPrivate::DestroySignalEmitter * emitter)
        {
            auto found = m_notices.find(emitter);
            return found == m_notices.end() ? nullptr : &found->second;
        }

        Notice * FindOrCreate(const zunSignalPrivate::DestroySignalEmitter * emitter)
        {
            return &m_notices.try_emplace(emitter).first->second;
        }

        void Erase(const zunSignalPrivate::DestroySignalEmitter * emitter)
        {
            // The entry leaves the map before its notice is destroyed, because
            // the notice's destructor looks up other entries of this map.
            auto entry = m_notices.extract(emitter);
        }

    private:
        // Entries are nodes: a notice keeps its address while others come and go.
        std::unordered_map<const zunSignalPrivate::DestroySignalEmitter *, Notice> m_notices;
    };
}

namespace zunSignalPrivate
{
    template <class Policy>
    Signal<Policy, DestroySignalEmitter *> *
    DestroySignalEmitterT<Policy>::__AccessSignalMap_Private(const DestroySignalEmitter * emitter, SignalMapAccess mode)
    {
        // Built on first use; the language makes that once-only across threads.
        // The map itself has no lock.
        static NoticeMap<Policy> map;
        if (g_noticeMapGone<Policy>)
            return nullptr;
        switch (mode)
        {
        case SignalMapFind:
            return map.Find(emitter);
        case SignalMapFindOrCreate:
            return map.FindOrCreate(emitter);
        case SignalMapErase:
            map.Erase(emitter);
            return nullptr;
        }
        return nullptr;
    }

    template <class Policy>
    Signal<Policy, DestroySignalEmitter *> *
    DestroySignalEmitterT<Policy>::__GetSignal_Private(const DestroySignalEmitterT & emitter, bool create)
    {
        return __AccessSignalMap_Private(&emitter, create ? SignalMapFindOrCreate : SignalMapFind);
    }

    template <class Policy>
    Signal<Policy, DestroySignalEmitter *> *
    DestroySignalEmitterT<Policy>::__DeleteSignal_Private(const DestroySignalEmitterT & emitter)
    {
        return __AccessSignalMap_Private(&emitter, SignalMapErase);
    }

    template <class Policy>
    Signal<Policy, DestroySignalEmitter *> & DestroySignalEmitterT<Policy>::OnDestroySignalEmitterDestroyed()
    {
        Signal<Policy, DestroySignalEmitter *> * notice = __GetSignal_Private(*this, true);
        if (notice == nullptr)
            throw std::bad_alloc(); // past the map's teardown at unload: no notice can be made
        return *notice;
    }

    template <class Policy> DestroySignalEmitterT<Policy>::~DestroySignalEmitterT()
    {
        // The derived parts are gone: handlers get this address as an identity only.
        Signal<Policy, DestroySignalEmitter *> * notice = __GetSignal_Private(*this, false);
        if (notice == nullptr)
            return;
        notice->Emit(this);
        __DeleteSignal_Private(*this);
    }

    template class DestroySignalEmitterT<ThreadSafe>;
    template class DestroySignalEmitterT<NoThreadSafe>;
    template class Handler<DestroySignalEmitter *>;
    template class SignalData<DestroySignalEmitter *>;
    template class SignalBase<ThreadSafe, DestroySignalEmitter *>;
    template class SignalBase<NoThreadSafe, DestroySignalEmitter *>;
    template class Signal<ThreadSafe, DestroySignalEmitter *>;
    template class Signal<NoThreadSafe, DestroySignalEmitter *>;
}

template <class Policy> zunBaseT<Policy>::~zunBaseT() = default;

template <class Policy> void * zunBaseT<Policy>::operator new(std::size_t size) noexcept
{
    return std::malloc(size);
}

template <class Policy> void * zunBaseT<Policy>::operator new[](std::size_t size) noexcept
{
    return std::malloc(size);
}

namespace
{
    void * AlignedMalloc(std::size_t size, std::align_val_t alignment)
    {
        // aligned_alloc wants a size that is a multiple of the alignment.
        const std::size_t align = static_cast<std::size_t>(alignment);
        const std::size_t rounded = (size + align - 1) / align * align;
        if (rounded < size)
            return nullptr;
        return std::aligned_alloc(align, rounded);
    }
}

template <class Policy> void * zunBaseT<Policy>::operator new(std::size_t size, std::align_val_t alignment) noexcept
{
    return AlignedMalloc(size, alignment);
}

template <class Policy> void * zunBaseT<Policy>::operator new[](std::size_t size, std::align_val_t alignment) noexcept
{
    return AlignedMalloc(size, alignment);
}

template <class Policy> void * zunBaseT<Policy>::operator new(std::size_t, void * place) noexcept
{
    return place;
}

template <class Policy> void * zunBaseT<Policy>::operator new[](std::size_t, void * place) noexcept
{
    return place;
}

template <class Policy> void zunBaseT<Policy>::operator delete(void * block) noexcept
{
    std::free(block);
}

template <class Policy> void zunBaseT<Policy>::operator delete[](void * block) noexcept
{
    std::free(block);
}

template <class Policy> void zunBaseT<Policy>::operator delete(void * block, std::align_val_t) noexcept
{
    std::free(block);
}

template <class Policy> void zunBaseT<Policy>::operator delete[](void * block, std::align_val_t) noexcept
{
    std::free(block);
}

template <class Policy> void zunBaseT<Policy>::operator delete(void *, void *) noexcept {}

template <class Policy> void zunBaseT<Policy>::operator delete[](void *, void *) noexcept {}

template class zunBaseT<zunSignalPrivate::ThreadSafe>;
template class zunBaseT<zunSignalPrivate::NoThreadSafe>;
