// The debug print channel: debugger, else a file with its banner, else nowhere;
// the fix-me handler slot; and the exception report that writes through it.
#include "zunDebugPrint.h"

#include <atomic>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <thread>
#include <utility>

#include "DebugPrintTesting.h"
#include "platform/Debugger.h"
#include "zunException.h"
#include "zunPath.h"
#include "zunString.h"

namespace
{
    // The channel's mutex, plain and not recursive, which knows the thread
    // that holds it: the one nested use of the channel (zunPath::Open
    // reporting that the channel's own file will not open) is told apart from
    // a wait for another thread, instead of locking the thread against itself.
    class ChannelLock
    {
    public:
        /// False, without locking, when this thread holds the lock already.
        bool TryEnter()
        {
            if (m_owner.load(std::memory_order_relaxed) == std::this_thread::get_id())
                return false;
            m_mutex.lock();
            m_owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
            return true;
        }
        void Leave()
        {
            m_owner.store(std::thread::id(), std::memory_order_relaxed);
            m_mutex.unlock();
        }

    private:
        std::mutex m_mutex;
        std::atomic<std::thread::id> m_owner{std::thread::id()};
    };

    class HeldChannel
    {
    public:
        explicit HeldChannel(ChannelLock & lock) : m_lock(lock), m_held(lock.TryEnter()) {}
        ~HeldChannel()
        {
            if (m_held)
                m_lock.Leave();
        }
        HeldChannel(const HeldChannel &) = delete;
        HeldChannel & operator=(const HeldChannel &) = delete;
        bool Held() const { return m_held; }

    private:
        ChannelLock & m_lock;
        bool m_held;
    };

    ChannelLock & TheLock()
    {
        static ChannelLock lock; // made at first use; thread-safe
        return lock;
    }

    // Made at first use and gone with the process's exit handlers. A message
    // printed after that finds an empty path (see ~zunPath) and goes nowhere.
    zunPath & PrintFile()
    {
        static zunPath file;
        return file;
    }

    std::function<void(const char *)> & FixMeHandler()
    {
        static std::function<void(const char *)> handler;
        return handler;
    }

    bool g_firstPrint = true;

    // "================" seven times, then seven more, and a line end.
    const char kRule[] = "================"
                         "================"
                         "================"
                         "================"
                         "================"
                         "================"
                         "================"
                         "======="
                         "\n";
    static_assert(sizeof(kRule) == 119 + 2, "a rule is 119 equals signs and a line end");

    void WriteBanner(FILE * file)
    {
        std::fputs("\n\n\n\n", file);
        std::fputs(kRule, file);
        std::fputs(kRule, file);
        std::fputs("\n", file);
        const std::time_t now = std::time(nullptr);
        const std::tm * local = std::localtime(&now); // under the channel's lock
        const char * date = local != nullptr ? std::asctime(local) : nullptr;
        if (date != nullptr)
            std::fputs(date, file);
        std::fputs("\n", file);
        std::fputs(kRule, file);
        std::fputs(kRule, file);
    }

    void PrintLine(const char * text)
    {
        zunDprintf("%s\n", text);
    }
}

int zunDprintf(const char * format, ...)
{
    va_list args;
    va_start(args, format);
    const int written = zunDvprintf(format, args);
    va_end(args);
    return written;
}

int zunDvprintf(const char * format, va_list args)
{
    if (format == nullptr)
        return 0;
    HeldChannel channel(TheLock());
    if (!channel.Held())
        return 0; // the nested report of a file that will not open
    if (zunPlatform::IsDebuggerPresent())
    {
        zunString text;
        text.VPrintf(format, args);
        zunPlatform::OutputDebugText(text);
        return 0;
    }
    const zunPath & path = PrintFile();
    if (path.IsEmpty())
        return 0;
    FILE * file = path.Open("a");
    if (file == nullptr)
        return 0;
    if (g_firstPrint)
    {
        g_firstPrint = false;
        WriteBanner(file);
    }
    const int written = std::vfprintf(file, format, args);
    std::fclose(file);
    return written;
}

void zunSetDprintfFile(const zunPath & path)
{
    PrintFile() = path;
}

void zunSetFixMeHandler(std::function<void(const char *)> handler)
{
    if (!handler)
        handler = PrintLine;
    FixMeHandler() = std::move(handler);
}

void zunException::Dump() const
{
    zunDprintf("**************************************\n");
    zunDprintf("**************************************\n");
    zunDprintf("           zunException dump\n");
    zunDprintf("**************************************\n");
    zunDprintf("**************************************\n");
    zunDprintf("\n");
    zunDprintf("Description:\n");
    zunDprintf("%s\n\n", m_szDescription);
    zunDprintf("location: %s @ %s\n\n", m_pszFunction, m_pszFileAndLine);
    zunDprintf("Debug Information:\n");
    zunDprintf("%s\n\n\n", m_szDebugDescription);
}

namespace zunDebugPrintTesting
{
    void RestartBanner()
    {
        g_firstPrint = true;
    }

    bool IsBannerPending()
    {
        return g_firstPrint;
    }

    bool CallFixMeHandler(const char * text)
    {
        const std::function<void(const char *)> & handler = FixMeHandler();
        if (!handler)
            return false;
        handler(text);
        return true;
    }
}
