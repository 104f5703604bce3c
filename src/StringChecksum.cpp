// The checksum pass of the strings in four widths: plain units, SSE2 (every
// x86-64 processor), AVX2 and AVX-512, chosen once at load. Each vector step
// adds the bytes of a block with a sum of absolute differences against zero,
// which gives 64-bit partial sums directly; wide units mask their high bytes
// first.
#include "StringChecksum.h"

#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#include <immintrin.h>
#define ZUN_CHECKSUM_X86 1
#endif

namespace
{
    template <typename C> std::uint64_t PlainSum(const C * text, std::size_t units)
    {
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < units; ++i)
            sum += static_cast<std::uint64_t>(text[i]) & 0xFF;
        return sum;
    }

#if defined(ZUN_CHECKSUM_X86)
    // A byte address as the vector pointer of the unaligned loads and stores.
    template <typename V> V * VectorAt(void * at)
    {
        return static_cast<V *>(at);
    }
    template <typename V> const V * VectorAt(const void * at)
    {
        return static_cast<const V *>(at);
    }

    // Every width is a function of its own target, and the intrinsics of a
    // wider target cannot be reached through a template shared with the
    // narrower ones, so one macro writes the three functions from the width's
    // intrinsics. Each gives the sum of the whole pairs of vectors among
    // `bytes` bytes of `source` (and with Copy copies them to `target`), and
    // how many bytes it took through `done`. Two sums run side by side, so
    // that the adds do not wait on each other.
#define ZUN_CHECKSUM_WIDTH(NAME, TARGET, VECTOR, LOAD, STORE, AND, SAD, ADD, ZERO, LOW_BYTES, LEAVE)                   \
    template <typename C, bool Copy>                                                                                   \
    TARGET std::uint64_t NAME(unsigned char * target, const unsigned char * source, std::size_t bytes,                 \
                              std::size_t & done)                                                                      \
    {                                                                                                                  \
        const VECTOR zero = ZERO();                                                                                    \
        VECTOR total0 = zero, total1 = zero;                                                                           \
        std::size_t i = 0;                                                                                             \
        for (; i + 2 * sizeof(VECTOR) <= bytes; i += 2 * sizeof(VECTOR))                                               \
        {                                                                                                              \
            VECTOR a = LOAD(VectorAt<VECTOR>(source + i));                                                             \
            VECTOR b = LOAD(VectorAt<VECTOR>(source + i + sizeof(VECTOR)));                                            \
            if constexpr (Copy)                                                                                        \
            {                                                                                                          \
                STORE(VectorAt<VECTOR>(target + i), a);                                                                \
                STORE(VectorAt<VECTOR>(target + i + sizeof(VECTOR)), b);                                               \
            }                                                                                                          \
            if constexpr (sizeof(C) == 2)                                                                              \
            {                                                                                                          \
                a = AND(a, LOW_BYTES);                                                                                 \
                b = AND(b, LOW_BYTES);                                                                                 \
            }                                                                                                          \
            total0 = ADD(total0, SAD(a, zero));                                                                        \
            total1 = ADD(total1, SAD(b, zero));                                                                        \
        }                                                                                                              \
        std::uint64_t lanes[sizeof(VECTOR) / 8];                                                                       \
        STORE(VectorAt<VECTOR>(lanes), ADD(total0, total1));                                                           \
        LEAVE;                                                                                                         \
        done = i;                                                                                                      \
        std::uint64_t sum = 0;                                                                                         \
        for (std::uint64_t lane : lanes)                                                                               \
            sum += lane;                                                                                               \
        return sum;                                                                                                    \
    }

    ZUN_CHECKSUM_WIDTH(Sse2Pairs, , __m128i, _mm_loadu_si128, _mm_storeu_si128, _mm_and_si128, _mm_sad_epu8,
                       _mm_add_epi64, _mm_setzero_si128, _mm_set1_epi16(0x00FF), (void)0)
    ZUN_CHECKSUM_WIDTH(Avx2Pairs, __attribute__((target("avx2"))), __m256i, _mm256_loadu_si256, _mm256_storeu_si256,
                       _mm256_and_si256, _mm256_sad_epu8, _mm256_add_epi64, _mm256_setzero_si256,
                       _mm256_set1_epi16(0x00FF), _mm256_zeroupper())
    ZUN_CHECKSUM_WIDTH(Avx512Pairs, __attribute__((target("avx512bw"))), __m512i, _mm512_loadu_si512,
                       _mm512_storeu_si512, _mm512_and_si512, _mm512_sad_epu8, _mm512_add_epi64, _mm512_setzero_si512,
                       _mm512_set1_epi16(0x00FF), _mm256_zeroupper())
#undef ZUN_CHECKSUM_WIDTH

    enum VectorWidth
    {
        Sse2,
        Avx2,
        Avx512
    };

    // Read at load. Strings made by other constructors before this runs find
    // Sse2 and take the narrowest pass, which gives the same sums.
    const VectorWidth g_width = []
    {
        __builtin_cpu_init();
        if (__builtin_cpu_supports("avx512bw"))
            return Avx512;
        return __builtin_cpu_supports("avx2") ? Avx2 : Sse2;
    }();
#endif

    template <typename C, bool Copy> std::uint64_t Sum(C * target, const C * source, std::size_t units)
    {
        std::size_t doneBytes = 0;
        std::uint64_t sum = 0;
#if defined(ZUN_CHECKSUM_X86)
        auto * out = reinterpret_cast<unsigned char *>(target);
        const auto * in = reinterpret_cast<const unsigned char *>(source);
        const std::size_t bytes = units * sizeof(C);
        // A wide pass pays for itself from a few of its own pairs on; the
        // 16-byte pass takes what it leaves.
        if (g_width == Avx512 && bytes >= 256)
            sum = Avx512Pairs<C, Copy>(out, in, bytes, doneBytes);
        else if (g_width != Sse2 && bytes >= 128)
            sum = Avx2Pairs<C, Copy>(out, in, bytes, doneBytes);
        std::size_t rest = 0;
        sum += Sse2Pairs<C, Copy>(Copy ? out + doneBytes : nullptr, in + doneBytes, bytes - doneBytes, rest);
        doneBytes += rest;
#endif
        const std::size_t done = doneBytes / sizeof(C);
        if constexpr (Copy)
            if (units != done)
                std::memcpy(target + done, source + done, (units - done) * sizeof(C));
        return sum + PlainSum(source + done, units - done);
    }
}

namespace zunStringChecksum
{
    std::uint64_t SumLowBytes(const char * text, std::size_t units)
    {
        return Sum<char, false>(nullptr, text, units);
    }

    std::uint64_t SumLowBytes(const zunWChar * text, std::size_t units)
    {
        return Sum<zunWChar, false>(nullptr, text, units);
    }

    std::uint64_t CopySumLowBytes(char * target, const char * source, std::size_t units)
    {
        return Sum<char, true>(target, source, units);
    }

    std::uint64_t CopySumLowBytes(zunWChar * target, const zunWChar * source, std::size_t units)
    {
        return Sum<zunWChar, true>(target, source, units);
    }
}
