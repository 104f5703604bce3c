// UTF-8 -> UTF-16 and back: the library beside ICU (with U+FFFD substitution),
// utfcpp and the C library's iconv, each producing a new text, on ASCII,
// Latin-heavy, CJK, emoji and invalid input. ICU and the library size their
// result exactly; utfcpp grows a string; iconv fills a worst-case block and
// substitutes U+FFFD for each byte it refuses.
//
// Every implementation takes a fresh result block per iteration and frees it.
// The C library serves a block above its mmap threshold with fresh pages and
// raises the threshold to the size of the last such block freed, so a request
// that repeats the size it freed comes from reused heap memory and one that
// doesn't is faulted in page by page: at 10^7 the figures would compare the
// allocator's guess, not the converters (the library, which converts into a
// worst-case block and gives the tail back, loses that guess every time). The
// program therefore keeps every block on the heap, for all implementations.
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <unicode/ustring.h>
#include <utf8.h>

#include <iconv.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "zunUTF.h"

namespace
{
    // Before the first benchmark: blocks up to 1 GiB come from the heap, and
    // the heap keeps its free memory at its top.
    const bool g_heapOnly = mallopt(M_MMAP_THRESHOLD, 1 << 30) == 1 && mallopt(M_TRIM_THRESHOLD, INT_MAX) == 1;

    enum Sample
    {
        Ascii,
        Latin,
        Cjk,
        Emoji,
        Invalid
    };

    std::string MakeText(Sample sample, std::size_t bytes)
    {
        static const char * const pieces[] = {
            "The quick brown fox jumps over the lazy dog. ",
            "Stra\xC3\x9F"
            "e, Gr\xC3\xB6\xC3\x9F"
            "e, caf\xC3\xA9, na\xC3\xAF"
            "ve, \xC3\xA9t\xC3\xA9. ",
            "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE6\x96\x87\xE7\xAB\xA0\xE3\x80\x82",
            "\xF0\x9F\x98\x80\xF0\x9F\x8E\x89 ok \xF0\x9F\x9A\x80",
            "ab\xFF"
            "cd\xE2\x82 ef\xC0\xAF gh\xED\xA0\x80",
        };
        std::string text;
        while (text.size() < bytes)
            text += pieces[sample];
        text.resize(bytes);
        // Cut back to a character boundary so only the Invalid sample is invalid.
        if (sample != Invalid)
            while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
                text.pop_back();
        if (sample != Invalid && !text.empty() && static_cast<unsigned char>(text.back()) >= 0xC0)
            text.pop_back();
        return text;
    }

    std::u16string Widen(const std::string & text)
    {
        zunUTF16 wide(text.data(), static_cast<unsigned int>(text.size()));
        return std::u16string(reinterpret_cast<const char16_t *>(wide.Get16()), wide.Length());
    }

    void SetBytes(benchmark::State & state, std::size_t bytes)
    {
        state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes));
    }

    // --- UTF-8 -> UTF-16 ---------------------------------------------------

    void Zun_8to16(benchmark::State & state, Sample sample)
    {
        const std::string text = MakeText(sample, static_cast<std::size_t>(state.range(0)));
        for (auto _ : state)
        {
            zunUTF16 wide(text.data(), static_cast<unsigned int>(text.size()));
            benchmark::DoNotOptimize(wide.Get16());
        }
        SetBytes(state, text.size());
    }

    void Icu_8to16(benchmark::State & state, Sample sample)
    {
        const std::string text = MakeText(sample, static_cast<std::size_t>(state.range(0)));
        const auto size = static_cast<int32_t>(text.size());
        for (auto _ : state)
        {
            UErrorCode error = U_ZERO_ERROR;
            int32_t length = 0;
            u_strFromUTF8WithSub(nullptr, 0, &length, text.data(), size, 0xFFFD, nullptr, &error);
            auto * out = static_cast<UChar *>(std::malloc(2 * (static_cast<std::size_t>(length) + 1)));
            error = U_ZERO_ERROR;
            u_strFromUTF8WithSub(out, length + 1, &length, text.data(), size, 0xFFFD, nullptr, &error);
            benchmark::DoNotOptimize(out);
            std::free(out);
        }
        SetBytes(state, text.size());
    }

    void Utfcpp_8to16(benchmark::State & state, Sample sample)
    {
        const std::string text = MakeText(sample, static_cast<std::size_t>(state.range(0)));
        for (auto _ : state)
        {
            std::string valid;
            utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid), 0xFFFD);
            std::u16string wide;
            wide.reserve(valid.size());
            utf8::unchecked::utf8to16(valid.begin(), valid.end(), std::back_inserter(wide));
            benchmark::DoNotOptimize(wide.data());
        }
        SetBytes(state, text.size());
    }

    // Converts with iconv into a block of `capacity` bytes, putting
    // `replacement` in place of each unit of `unit` bytes that it refuses.
    std::size_t IconvConvert(iconv_t converter, const char * in, std::size_t inBytes, char * out, std::size_t capacity,
                             const char * replacement, std::size_t replacementBytes, std::size_t unit)
    {
        iconv(converter, nullptr, nullptr, nullptr, nullptr);
        char * source = const_cast<char *>(in);
        char * target = out;
        std::size_t left = capacity;
        while (inBytes > 0)
        {
            if (iconv(converter, &source, &inBytes, &target, &left) != static_cast<std::size_t>(-1))
                break;
            if (errno == E2BIG || left < replacementBytes)
                break;
            const std::size_t skip = inBytes < unit ? inBytes : unit;
            source += skip;
            inBytes -= skip;
            for (std::size_t i = 0; i < replacementBytes; ++i)
                *target++ = replacement[i];
            left -= replacementBytes;
        }
        return capacity - left;
    }

    void Iconv_8to16(benchmark::State & state, Sample sample)
    {
        const std::string text = MakeText(sample, static_cast<std::size_t>(state.range(0)));
        iconv_t converter = iconv_open("UTF-16LE", "UTF-8");
        const char replacement[2] = {'\xFD', '\xFF'};
        for (auto _ : state)
        {
            const std::size_t capacity = 2 * text.size() + 2;
            auto * out = static_cast<char *>(std::malloc(capacity));
            benchmark::DoNotOptimize(
                IconvConvert(converter, text.data(), text.size(), out, capacity, replacement, 2, 1));
            benchmark::DoNotOptimize(out);
            std::free(out);
        }
        iconv_close(converter);
        SetBytes(state, text.size());
    }

    // --- UTF-16 -> UTF-8 ---------------------------------------------------

    void Zun_16to8(benchmark::State & state, Sample sample)
    {
        const std::u16string wide = Widen(MakeText(sample, static_cast<std::size_t>(state.range(0))));
        for (auto _ : state)
        {
            zunUTF8 narrow(reinterpret_cast<const zunWChar *>(wide.data()), static_cast<unsigned int>(wide.size()));
            benchmark::DoNotOptimize(narrow.Get8());
        }
        SetBytes(state, wide.size() * 2);
    }

    void Icu_16to8(benchmark::State & state, Sample sample)
    {
        const std::u16string wide = Widen(MakeText(sample, static_cast<std::size_t>(state.range(0))));
        const auto size = static_cast<int32_t>(wide.size());
        for (auto _ : state)
        {
            UErrorCode error = U_ZERO_ERROR;
            int32_t length = 0;
            u_strToUTF8WithSub(nullptr, 0, &length, wide.data(), size, 0xFFFD, nullptr, &error);
            auto * out = static_cast<char *>(std::malloc(static_cast<std::size_t>(length) + 1));
            error = U_ZERO_ERROR;
            u_strToUTF8WithSub(out, length + 1, &length, wide.data(), size, 0xFFFD, nullptr, &error);
            benchmark::DoNotOptimize(out);
            std::free(out);
        }
        SetBytes(state, wide.size() * 2);
    }

    void Utfcpp_16to8(benchmark::State & state, Sample sample)
    {
        const std::u16string wide = Widen(MakeText(sample, static_cast<std::size_t>(state.range(0))));
        for (auto _ : state)
        {
            std::string narrow;
            narrow.reserve(wide.size() * 3);
            utf8::unchecked::utf16to8(wide.begin(), wide.end(), std::back_inserter(narrow));
            benchmark::DoNotOptimize(narrow.data());
        }
        SetBytes(state, wide.size() * 2);
    }

    void Iconv_16to8(benchmark::State & state, Sample sample)
    {
        const std::u16string wide = Widen(MakeText(sample, static_cast<std::size_t>(state.range(0))));
        iconv_t converter = iconv_open("UTF-8", "UTF-16LE");
        const char replacement[3] = {'\xEF', '\xBF', '\xBD'};
        for (auto _ : state)
        {
            const std::size_t capacity = 3 * wide.size() + 1;
            auto * out = static_cast<char *>(std::malloc(capacity));
            benchmark::DoNotOptimize(IconvConvert(converter, reinterpret_cast<const char *>(wide.data()),
                                                  2 * wide.size(), out, capacity, replacement, 3, 2));
            benchmark::DoNotOptimize(out);
            std::free(out);
        }
        iconv_close(converter);
        SetBytes(state, wide.size() * 2);
    }
}

#define ZUN_UTF_BENCH(function, sample)                                                                                \
    BENCHMARK_CAPTURE(function, sample, sample)->RangeMultiplier(10)->Range(100, 10000000)

ZUN_UTF_BENCH(Zun_8to16, Ascii);
ZUN_UTF_BENCH(Icu_8to16, Ascii);
ZUN_UTF_BENCH(Utfcpp_8to16, Ascii);
ZUN_UTF_BENCH(Iconv_8to16, Ascii);
ZUN_UTF_BENCH(Zun_8to16, Latin);
ZUN_UTF_BENCH(Icu_8to16, Latin);
ZUN_UTF_BENCH(Utfcpp_8to16, Latin);
ZUN_UTF_BENCH(Iconv_8to16, Latin);
ZUN_UTF_BENCH(Zun_8to16, Cjk);
ZUN_UTF_BENCH(Icu_8to16, Cjk);
ZUN_UTF_BENCH(Utfcpp_8to16, Cjk);
ZUN_UTF_BENCH(Iconv_8to16, Cjk);
ZUN_UTF_BENCH(Zun_8to16, Emoji);
ZUN_UTF_BENCH(Icu_8to16, Emoji);
ZUN_UTF_BENCH(Utfcpp_8to16, Emoji);
ZUN_UTF_BENCH(Iconv_8to16, Emoji);
ZUN_UTF_BENCH(Zun_8to16, Invalid);
ZUN_UTF_BENCH(Icu_8to16, Invalid);
ZUN_UTF_BENCH(Utfcpp_8to16, Invalid);
ZUN_UTF_BENCH(Iconv_8to16, Invalid);

ZUN_UTF_BENCH(Zun_16to8, Ascii);
ZUN_UTF_BENCH(Icu_16to8, Ascii);
ZUN_UTF_BENCH(Utfcpp_16to8, Ascii);
ZUN_UTF_BENCH(Iconv_16to8, Ascii);
ZUN_UTF_BENCH(Zun_16to8, Latin);
ZUN_UTF_BENCH(Icu_16to8, Latin);
ZUN_UTF_BENCH(Utfcpp_16to8, Latin);
ZUN_UTF_BENCH(Iconv_16to8, Latin);
ZUN_UTF_BENCH(Zun_16to8, Cjk);
ZUN_UTF_BENCH(Icu_16to8, Cjk);
ZUN_UTF_BENCH(Utfcpp_16to8, Cjk);
ZUN_UTF_BENCH(Iconv_16to8, Cjk);
ZUN_UTF_BENCH(Zun_16to8, Emoji);
ZUN_UTF_BENCH(Icu_16to8, Emoji);
ZUN_UTF_BENCH(Utfcpp_16to8, Emoji);
ZUN_UTF_BENCH(Iconv_16to8, Emoji);
