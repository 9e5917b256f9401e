// Avx2.cpp - halftoning with registers of 256 bits. The only source that is compiled for them; run where the processor has them.
#include <immintrin.h>

#include "raster/x86/Levels.h"

namespace morvil {
namespace {

struct Vector {
    __m256i v;
};

inline Vector zero() { return {_mm256_setzero_si256()}; }
inline Vector bytes(int value) { return {_mm256_set1_epi8(static_cast<char>(value))}; }
inline Vector words(unsigned value) { return {_mm256_set1_epi16(static_cast<short>(value))}; }
inline Vector load(const void* from) { return {_mm256_loadu_si256(static_cast<const __m256i*>(from))}; }
inline void store(Vector a, void* to) { _mm256_storeu_si256(static_cast<__m256i*>(to), a.v); }
inline Vector loadHalves(const void* lower, const void* upper) {
    const __m128i low = _mm_loadu_si128(static_cast<const __m128i*>(lower));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(low), _mm_loadu_si128(static_cast<const __m128i*>(upper)), 1)};
}
inline void storeHalves(Vector a, void* lower, void* upper) {
    _mm_storeu_si128(static_cast<__m128i*>(lower), _mm256_castsi256_si128(a.v));
    _mm_storeu_si128(static_cast<__m128i*>(upper), _mm256_extracti128_si256(a.v, 1));
}

inline Vector add(Vector a, Vector b) { return {_mm256_add_epi8(a.v, b.v)}; }
inline Vector addClamped(Vector a, Vector b) { return {_mm256_adds_epi8(a.v, b.v)}; }
inline Vector subtract(Vector a, Vector b) { return {_mm256_sub_epi8(a.v, b.v)}; }
inline Vector exclusive(Vector a, Vector b) { return {_mm256_xor_si256(a.v, b.v)}; }
inline Vector either(Vector a, Vector b) { return {_mm256_or_si256(a.v, b.v)}; }
inline Vector both(Vector a, Vector b) { return {_mm256_and_si256(a.v, b.v)}; }
inline Vector without(Vector a, Vector mask) { return {_mm256_andnot_si256(mask.v, a.v)}; }
inline Vector greater(Vector a, Vector b) { return {_mm256_cmpgt_epi8(a.v, b.v)}; }
inline Vector notAbove(Vector a, Vector b) { return {_mm256_cmpeq_epi8(_mm256_min_epu8(a.v, b.v), a.v)}; }
inline Vector mean(Vector a, Vector b) { return {_mm256_avg_epu8(a.v, b.v)}; }
inline Vector multiplyHigh(Vector a, Vector b) { return {_mm256_mulhi_epu16(a.v, b.v)}; }

// Shares of white pixels, whose error is negative, change their sign.
inline Vector signOf(Vector white) { return either(white, bytes(1)); }
inline Vector withSign(Vector share, Vector sign) { return {_mm256_sign_epi8(share.v, sign.v)}; }

template <int Bits>
inline Vector shiftedRight(Vector a) {
    return {_mm256_and_si256(_mm256_srli_epi16(a.v, Bits), bytes(0xFF >> Bits).v)};
}

// Bytes as words: the lower of each pair by itself, the upper in its place.
inline Vector evenBytes(Vector a) { return {_mm256_and_si256(a.v, words(0x00FF).v)}; }
inline Vector oddBytes(Vector a) { return {_mm256_and_si256(a.v, words(0xFF00).v)}; }
inline Vector even_or_odd(Vector even, Vector odd) { return either(even, oddBytes(odd)); }
inline Vector interleaveLow(Vector a, Vector b) { return {_mm256_unpacklo_epi8(a.v, b.v)}; }
inline Vector interleaveHigh(Vector a, Vector b) { return {_mm256_unpackhi_epi8(a.v, b.v)}; }

// Each lane's value to the lane of the row below it; the first row's comes from `first`.
inline Vector passedDown(Vector a, const unsigned char* first) {
    const __m256i entering = _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first)));
    const __m256i upper = _mm256_permute2x128_si256(a.v, entering, 0x21);  // the upper half of a, then what enters
    return {_mm256_alignr_epi8(upper, a.v, 1)};
}

// The upper bytes of (a * 256 + b) * factor, lane by lane.
inline Vector shiftedLeft(Vector a, Vector b, const short* factors) {
    const __m256i low = _mm256_mullo_epi16(_mm256_unpacklo_epi8(b.v, a.v), loadHalves(factors, factors + 16).v);
    const __m256i high = _mm256_mullo_epi16(_mm256_unpackhi_epi8(b.v, a.v), loadHalves(factors + 8, factors + 24).v);
    return {_mm256_packus_epi16(_mm256_srli_epi16(low, 8), _mm256_srli_epi16(high, 8))};
}

}  // namespace
}  // namespace morvil

#include "raster/x86/Wavefront.h"

namespace morvil {
namespace {

inline unsigned fourBytes(const unsigned char* grey, Vector thresholds) {
    const __m256i value = load(grey).v;
    const __m256i white = _mm256_cmpeq_epi8(_mm256_max_epu8(value, thresholds.v), value);
    const __m256i leftFirst = _mm256_set_epi64x(0x08090A0B0C0D0E0F, 0x0001020304050607, 0x08090A0B0C0D0E0F, 0x0001020304050607);
    return static_cast<unsigned>(_mm256_movemask_epi8(_mm256_shuffle_epi8(white, leftFirst)));
}

void orderedRow(const unsigned char* grey, std::uint32_t width, const unsigned char* thresholds, unsigned char* bits) {
    const Vector row = load(thresholds);
    std::uint32_t x = 0;
    for (; x + 32 <= width; x += 32) {
        const unsigned four = fourBytes(grey + x, row);
        __builtin_memcpy(bits + x / 8, &four, sizeof four);
    }
    if (x == width) return;
    unsigned char rest[32] = {};  // grey 0 is black
    __builtin_memcpy(rest, grey + x, width - x);
    const unsigned four = fourBytes(rest, row);
    __builtin_memcpy(bits + x / 8, &four, sizeof four);
}

}  // namespace

const WideHalftone kAvx2Halftone = routinesWith(&orderedRow);

}  // namespace morvil
