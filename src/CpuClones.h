// CpuClones.h - several compilations of one hot function, picked at load.
//
// A function marked ZUN_CPU_CLONES is compiled for AVX-512, for AVX2 and for
// the base x86-64 instruction set; the dynamic loader binds the callers to the
// one the processor runs. The library stays loadable on any x86-64 processor,
// and wide vector registers serve where they exist. The clones compute the
// same operations in the same order (the library is built without fused
// multiply-adds), so every clone gives the same bits.
#ifndef ZUN_CPU_CLONES_H
#define ZUN_CPU_CLONES_H

// Not under ThreadSanitizer: the loader runs the clones' resolvers while it
// relocates the library, before the sanitizer's runtime is ready, and their
// instrumentation would crash every program at load.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__linux__) &&                           \
    !defined(__SANITIZE_THREAD__)
#define ZUN_CPU_CLONES __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define ZUN_CPU_CLONES
#endif

#endif // ZUN_CPU_CLONES_H
