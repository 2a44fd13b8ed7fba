#pragma once

// QUILLET_KERNEL stands before the definition of a plain (non-template, non-inline) function whose
// loops over nodes or cells are worth an AVX2 version: the compiler builds the function twice and
// the program picks the version for its machine at start-up. Inline functions it calls are inlined
// into both versions and need no mark; out-of-line ones are not versioned.
//
// It is a macro because an attribute cannot be a constexpr. It is empty
// - under the address and thread sanitizers: the version is picked while the program is being
//   relocated, before the sanitizer runtime is up;
// - when the whole build already assumes AVX2: there is nothing to pick;
// - off x86-64 GNU/Linux and with other compilers than GCC.
// The results are the same bits in every case, as contraction is off for the whole build.
#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__AVX2__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QUILLET_KERNEL __attribute__((target_clones("avx2", "default")))
#else
#define QUILLET_KERNEL
#endif
