#pragma once

/// In front of a function: it is compiled for several kinds of vector units too, and the one that
/// the processor has is chosen when the program starts. The results are the same bits: the
/// functions that use this do whole-number arithmetic and single floating-point operations that
/// every processor rounds alike, and the build contracts none of them. Left out where the compiler
/// cannot do it, and under sanitizers, which are not ready when the choice is made.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(_WIN32) && \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define NIMBREL_VECTOR_CLONES __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define NIMBREL_VECTOR_CLONES
#endif
