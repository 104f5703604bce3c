// Double4.h - four doubles as one value, for the matrix code that works on
// whole rows or columns at once.
//
// Each operation acts lane by lane with the plain IEEE operation, so a result
// is the same to the bit whether the compiler maps it onto AVX, onto SSE2 pairs
// or onto scalars. Everything here is inlined into its caller, so values of the
// type never cross a function boundary.
#ifndef ZUN_DOUBLE4_H
#define ZUN_DOUBLE4_H

#include <cstring>

#if defined(__GNUC__)
// Passing a 32-byte vector by value has another ABI with AVX than without; the
// type never crosses a call (everything is forced inline), so the compilers'
// report of it is switched off for the build (cmake/ZunTargets.cmake).

namespace zunDouble4
{
    typedef double Double4 __attribute__((vector_size(32)));

#define ZUN_DOUBLE4_INLINE __attribute__((always_inline)) inline

    ZUN_DOUBLE4_INLINE Double4 Make(double a, double b, double c, double d)
    {
        return Double4{a, b, c, d};
    }

    ZUN_DOUBLE4_INLINE Double4 Load(const double * p)
    {
        Double4 v;
        std::memcpy(&v, p, sizeof(v));
        return v;
    }

    ZUN_DOUBLE4_INLINE void Store(double * p, Double4 v)
    {
        std::memcpy(p, &v, sizeof(v));
    }

    /// (v[A], v[B], v[C], v[D]).
    template <int A, int B, int C, int D> ZUN_DOUBLE4_INLINE Double4 Swizzle(Double4 v)
    {
#if defined(__clang__)
        return __builtin_shufflevector(v, v, A, B, C, D);
#else
        typedef long long Index4 __attribute__((vector_size(32)));
        return __builtin_shuffle(v, Index4{A, B, C, D});
#endif
    }
}

#undef ZUN_DOUBLE4_INLINE

#else
#error "Double4.h needs the vector extensions of GCC or Clang"
#endif

#endif // ZUN_DOUBLE4_H
