// Four floats that the processor handles at once.
#pragma once

#include <cstdint>
#include <cstring>

#ifdef __SSE__
#include <xmmintrin.h>
#endif

using FloatQuad = float __attribute__((vector_size(4 * sizeof(float))));
using IntQuad = std::int32_t __attribute__((vector_size(4 * sizeof(std::int32_t))));

inline FloatQuad quadOf(float value) {
    return FloatQuad{value, value, value, value};
}

inline FloatQuad quadAt(const float* values) {
    FloatQuad quad;
    std::memcpy(&quad, values, sizeof quad);
    return quad;
}

inline void store(FloatQuad quad, float* values) {
    std::memcpy(values, &quad, sizeof quad);
}

/// Each a < b ? a : b, hence that of `b` where one is NaN. The compiler does not see that the processor has
/// it.
inline FloatQuad least(FloatQuad a, FloatQuad b) {
#ifdef __SSE__
    return _mm_min_ps(a, b);
#else
    return a < b ? a : b;
#endif
}

/// Each a > b ? a : b.
inline FloatQuad greatest(FloatQuad a, FloatQuad b) {
#ifdef __SSE__
    return _mm_max_ps(a, b);
#else
    return a > b ? a : b;
#endif
}

/// Towards zero; within the range of an int.
inline IntQuad truncated(FloatQuad values) {
    return __builtin_convertvector(values, IntQuad);
}

inline FloatQuad asFloats(IntQuad values) {
    return __builtin_convertvector(values, FloatQuad);
}

/// The first of each becomes the first four, and so on.
inline void transpose(FloatQuad& a, FloatQuad& b, FloatQuad& c, FloatQuad& d) {
    const FloatQuad lowerOfAB = __builtin_shufflevector(a, b, 0, 4, 1, 5);
    const FloatQuad upperOfAB = __builtin_shufflevector(a, b, 2, 6, 3, 7);
    const FloatQuad lowerOfCD = __builtin_shufflevector(c, d, 0, 4, 1, 5);
    const FloatQuad upperOfCD = __builtin_shufflevector(c, d, 2, 6, 3, 7);
    a = __builtin_shufflevector(lowerOfAB, lowerOfCD, 0, 1, 4, 5);
    b = __builtin_shufflevector(lowerOfAB, lowerOfCD, 2, 3, 6, 7);
    c = __builtin_shufflevector(upperOfAB, upperOfCD, 0, 1, 4, 5);
    d = __builtin_shufflevector(upperOfAB, upperOfCD, 2, 3, 6, 7);
}
