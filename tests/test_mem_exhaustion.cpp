// An exhausted heap at every allocation of an operation, once and for good:
// strings, arrays, string lists and the file reader each end either with the
// complete result or with their object exactly as it was (the file reader
// with "Not enough memory"), never with anything in between.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "MemTesting.h"
#include "zunException.h"
#include "zunFastMesh.h"
#include "zunFile.h"
#include "zunString.h"
#include "zunStringList.h"

namespace
{
    template <typename C> std::string Units(const C * text, std::size_t length)
    {
        return std::string(reinterpret_cast<const char *>(text), length * sizeof(C));
    }

    template <typename C> std::string Describe(const zunStringT<C, zunCharHelper<C>> & s)
    {
        // The layout: null block or not, length, checksum, units and terminator.
        std::string out = s.m_pData == nullptr ? "null" : Units(s.m_pData, s.m_nLength + 1);
        return out + "|" + std::to_string(s.m_nLength) + "|" + std::to_string(s.m_nChecksum);
    }

    template <typename T> std::string Describe(const zunFastMesh<T> & mesh)
    {
        return std::to_string(mesh.Count()) + "|" + Units(mesh.Data(), mesh.Count());
    }

    template <typename C> std::string Describe(const zunStringListT<C> & list)
    {
        std::string out = std::to_string(list.Count()) + "|" + std::to_string(list.FlaggedCount());
        for (unsigned int i = 0; i < list.Count(); ++i)
            out += "|" + Units(list[i], std::char_traits<C>::length(list[i])) + "/" + std::to_string(list.GetFlag(i));
        return out;
    }

    struct Tally
    {
        unsigned int runs = 0;
        unsigned int failed = 0; ///< runs in which an injected failure struck
    };

    /// Runs `operation` on a copy of `start` with the nth heap request failing,
    /// for n = 1, 2, ... until the operation makes fewer requests than n,
    /// once and persistently. The object must end as the clean run leaves
    /// it, or as it was (or in one of `alsoAllowed`).
    template <typename Object>
    Tally ExhaustEvery(const Object & start, const std::function<void(Object &)> & operation,
                       const std::vector<std::string> & alsoAllowed = {})
    {
        Object clean(start);
        operation(clean);
        const std::string before = Describe(start);
        const std::string after = Describe(clean);
        Tally tally;
        for (bool persistent : {false, true})
            for (unsigned int n = 1;; ++n)
            {
                Object object(start);
                zunMemTesting::FailAllocation(n, persistent);
                operation(object);
                const zunMemTesting::Counters counters = zunMemTesting::GetCounters();
                zunMemTesting::Reset();
                ++tally.runs;
                if (counters.failures == 0)
                    break;
                ++tally.failed;
                const std::string state = Describe(object);
                const bool allowed = state == before || state == after ||
                                     std::find(alsoAllowed.begin(), alsoAllowed.end(), state) != alsoAllowed.end();
                EXPECT_TRUE(allowed) << "request " << n << (persistent ? " and later" : " once")
                                     << " failed; before: " << ::testing::PrintToString(before)
                                     << "\nafter: " << ::testing::PrintToString(after)
                                     << "\ngot: " << ::testing::PrintToString(state);
                if (!allowed)
                    break;
            }
        return tally;
    }

    /// The file reader: the string read from a stream, or "Not enough memory"
    /// with the string as it was.
    template <typename Text> std::function<void(Text &)> ReadFrom(const zunFastMesh<unsigned char> & bytes)
    {
        return [&bytes](Text & text)
        {
            std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
            if (!file)
                return; // the stream could not be made: nothing was read
            try
            {
                text.Read(file.get());
            }
            catch (const zunException & failure)
            {
                EXPECT_STREQ(failure.GetDebugDescription(), "Not enough memory");
            }
        };
    }

    void Report(const char * what, const Tally & tally)
    {
        std::printf("%s: %u runs, %u with an exhausted heap\n", what, tally.runs, tally.failed);
        EXPECT_GT(tally.failed, 0u) << what << " never allocated";
    }
}

TEST(MemExhaustion, NarrowStrings)
{
    using S = zunString;
    const S start("some text");
    Report("assign", ExhaustEvery<S>(start, [](S & s) { s = "another, longer text"; }));
    Report("assign wide", ExhaustEvery<S>(start, [](S & s) { s = ZUN_W("gr\u00FC\u00DFe \U0001F600"); }));
    Report("append", ExhaustEvery<S>(start, [](S & s) { s << " and more"; }));
    Report("append self", ExhaustEvery<S>(start, [](S & s) { s << s; }));
    Report("insert", ExhaustEvery<S>(start, [](S & s) { s.Insert(4, "thing", 0xFFFFFFFFu); }));
    Report("printf", ExhaustEvery<S>(start, [](S & s) { s.Printf("%s %d %f", "formatted", 42, 1.5); }));
    // Cutting works in place: no request to fail.
    EXPECT_EQ(ExhaustEvery<S>(start, [](S & s) { s.Keep(2, 5).Remove(0, 1); }).failed, 0u);
    Report("null form", ExhaustEvery<S>(S(), [](S & s) { s.Insert(0, "", 0); }));
}

TEST(MemExhaustion, WideStrings)
{
    using W = zunStringW;
    const W start(ZUN_W("wide text"));
    Report("assign", ExhaustEvery<W>(start, [](W & s) { s = ZUN_W("another, longer text"); }));
    Report("assign narrow", ExhaustEvery<W>(start,
                                            [](W & s)
                                            {
                                                s = "gr\xC3\xBC\xC3\x9F"
                                                    "e";
                                            }));
    Report("append", ExhaustEvery<W>(start, [](W & s) { s << "narrow tail"; }));
    Report("printf", ExhaustEvery<W>(start, [](W & s) { s.Printf(ZUN_W("%s and %S"), ZUN_W("wide"), "narrow"); }));
}

TEST(MemExhaustion, Arrays)
{
    using M = zunFastMesh<int>;
    M start;
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(start.Add(i * 3));
    const int more[] = {7, 8, 9, 10, 11};
    Report("add", ExhaustEvery<M>(start, [](M & m) { m.Add(-1); }));
    Report("insert range", ExhaustEvery<M>(start, [&](M & m) { m.InsertRange(3, more, 5); }));
    Report("insert own element", ExhaustEvery<M>(start, [](M & m) { m.Insert(0, m[39]); }));
    Report("grow", ExhaustEvery<M>(start, [](M & m) { m.SetCount(1000, true); }));
    Report("shrink", ExhaustEvery<M>(start, [](M & m) { m.SetCount(2, false); }));
    Report("remove", ExhaustEvery<M>(start, [](M & m) { m.Remove(0, 35); }));
    M other;
    for (int i = 0; i < 100; ++i)
        ASSERT_TRUE(other.Add(-i));
    Report("copy", ExhaustEvery<M>(start, [&](M & m) { m.Copy(other); }));
}

TEST(MemExhaustion, StringLists)
{
    using L = zunStringListT<char>;
    L start{"alpha", "beta", "gamma", "delta"};
    ASSERT_TRUE(start.SetFlag(1, 5));
    Report("insert", ExhaustEvery<L>(start, [](L & l) { l.Insert(zunString("epsilon"), 2); }));
    Report("append", ExhaustEvery<L>(start, [](L & l) { l.Insert(zunString("zeta"), 0xFFFFFFFFu); }));
    // Removing an entry moves the texts behind it in place.
    EXPECT_EQ(ExhaustEvery<L>(start, [](L & l) { l.Remove(1); }).failed, 0u);
    Report("truncate", ExhaustEvery<L>(start, [](L & l) { l.Truncate(1); }));
    const L other{"one", "two", "three"};
    Report("insert list", ExhaustEvery<L>(start, [&](L & l) { l.InsertList(other, 1); }));
    // A copy that runs out of memory leaves the list empty, as documented.
    Report("copy", ExhaustEvery<L>(start, [&](L & l) { l.Copy(other); }, {Describe(L())}));
    // Split drops a piece the heap has no room for and goes on with the next.
    std::vector<std::string> someOfThePieces;
    for (unsigned int kept = 0; kept < 8; ++kept)
    {
        L pieces;
        for (unsigned int i = 0; i < 3; ++i)
        {
            if ((kept & (1u << i)) != 0)
            {
                ASSERT_TRUE(pieces.Insert(zunString(i == 0 ? "a" : i == 1 ? "b" : "c"), 0xFFFFFFFFu));
            }
        }
        someOfThePieces.push_back(Describe(pieces));
    }
    Report("split", ExhaustEvery<L>(
                        L(), [](L & l) { l = zunString("a,b,,c").Split(",", 0); }, someOfThePieces));
}

TEST(MemExhaustion, FileReader)
{
    zunFastMesh<unsigned char> bytes;
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
        file->Write_String(zunString("a text read from a stream"));
        file->Close();
    }
    Report("read string", ExhaustEvery<zunString>(zunString("kept"), ReadFrom<zunString>(bytes)));
    // The wide read clears the string before it converts into it: a failed
    // conversion leaves it empty.
    Report("read wide string",
           ExhaustEvery<zunStringW>(zunStringW(ZUN_W("kept")), ReadFrom<zunStringW>(bytes), {Describe(zunStringW())}));
    Report("read into the null form", ExhaustEvery<zunString>(zunString(), ReadFrom<zunString>(bytes)));
}
