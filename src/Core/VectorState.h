// The state of the processor's wide vector registers, which a thread carries along.
#pragma once

/// Clears the upper halves of the vector registers of this thread. As long as some caller before left them in
/// use, each call of a wide function of the C library out of code for every processor, and each return, costs
/// some 70 ns on some machines: twenty times a logarithm. Before loops that call one for every row.
inline void clearUpperVectorHalves() {
#if defined(__x86_64__) && !defined(__AVX__) // code for AVX uses them itself, and clears them itself
    if (__builtin_cpu_supports("avx"))
        asm volatile("vzeroupper" ::: "memory");
#endif
}
