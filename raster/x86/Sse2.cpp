// Sse2.cpp - halftoning with registers of 128 bits, which every 64-bit processor of this family has.
#include <emmintrin.h>

#include "raster/x86/Levels.h"

namespace morvil {
namespace {

struct Vector {
    __m128i v;
};

inline Vector zero() { return {_mm_setzero_si128()}; }
inline Vector bytes(int value) { return {_mm_set1_epi8(static_cast<char>(value))}; }
inline Vector words(unsigned value) { return {_mm_set1_epi16(static_cast<short>(value))}; }
inline Vector load(const void* from) { return {_mm_loadu_si128(static_cast<const __m128i*>(from))}; }
inline void store(Vector a, void* to) { _mm_storeu_si128(static_cast<__m128i*>(to), a.v); }
inline Vector loadHalves(const void* from, const void* /*upper*/) { return load(from); }
inline void storeHalves(Vector a, void* to, void* /*upper*/) { store(a, to); }

inline Vector add(Vector a, Vector b) { return {_mm_add_epi8(a.v, b.v)}; }
inline Vector addClamped(Vector a, Vector b) { return {_mm_adds_epi8(a.v, b.v)}; }
inline Vector subtract(Vector a, Vector b) { return {_mm_sub_epi8(a.v, b.v)}; }
inline Vector exclusive(Vector a, Vector b) { return {_mm_xor_si128(a.v, b.v)}; }
inline Vector either(Vector a, Vector b) { return {_mm_or_si128(a.v, b.v)}; }
inline Vector both(Vector a, Vector b) { return {_mm_and_si128(a.v, b.v)}; }
inline Vector without(Vector a, Vector mask) { return {_mm_andnot_si128(mask.v, a.v)}; }
inline Vector greater(Vector a, Vector b) { return {_mm_cmpgt_epi8(a.v, b.v)}; }
inline Vector notAbove(Vector a, Vector b) { return {_mm_cmpeq_epi8(_mm_min_epu8(a.v, b.v), a.v)}; }
inline Vector mean(Vector a, Vector b) { return {_mm_avg_epu8(a.v, b.v)}; }
inline Vector multiplyHigh(Vector a, Vector b) { return {_mm_mulhi_epu16(a.v, b.v)}; }

// Shares of white pixels, whose error is negative, change their sign.
inline Vector signOf(Vector white) { return white; }
inline Vector withSign(Vector share, Vector sign) { return subtract(exclusive(share, sign), sign); }

template <int Bits>
inline Vector shiftedRight(Vector a) {
    return {_mm_and_si128(_mm_srli_epi16(a.v, Bits), bytes(0xFF >> Bits).v)};
}

// Bytes as words: the lower of each pair by itself, the upper in its place.
inline Vector evenBytes(Vector a) { return {_mm_and_si128(a.v, words(0x00FF).v)}; }
inline Vector oddBytes(Vector a) { return {_mm_and_si128(a.v, words(0xFF00).v)}; }
inline Vector even_or_odd(Vector even, Vector odd) { return either(even, oddBytes(odd)); }
inline Vector interleaveLow(Vector a, Vector b) { return {_mm_unpacklo_epi8(a.v, b.v)}; }
inline Vector interleaveHigh(Vector a, Vector b) { return {_mm_unpackhi_epi8(a.v, b.v)}; }

// Each lane's value to the lane of the row below it; the first row's comes from `first`.
inline Vector passedDown(Vector a, const unsigned char* first) {
    return {_mm_or_si128(_mm_srli_si128(a.v, 1), _mm_slli_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first)), 15))};
}

// The upper bytes of (a * 256 + b) * factor, lane by lane.
inline Vector shiftedLeft(Vector a, Vector b, const short* factors) {
    const __m128i low = _mm_mullo_epi16(_mm_unpacklo_epi8(b.v, a.v), load(factors).v);
    const __m128i high = _mm_mullo_epi16(_mm_unpackhi_epi8(b.v, a.v), load(factors + 8).v);
    return {_mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8))};
}

}  // namespace
}  // namespace morvil

#include "raster/x86/Wavefront.h"

namespace morvil {
namespace {

// Two bytes of bits, in the lowest byte of each half: every white pixel brings its own bit, and the sum of the eight is the byte.
inline __m128i whiteBits(const unsigned char* grey, __m128i thresholds) {
    const __m128i value = _mm_loadu_si128(reinterpret_cast<const __m128i*>(grey));
    const __m128i white = _mm_cmpeq_epi8(_mm_max_epu8(value, thresholds), value);
    const __m128i weights = _mm_set1_epi64x(0x0102040810204080);
    return _mm_sad_epu8(_mm_and_si128(white, weights), _mm_setzero_si128());
}

inline unsigned fourBytes(const unsigned char* grey, __m128i even, __m128i odd) {
    const __m128i words = _mm_packs_epi32(whiteBits(grey, even), whiteBits(grey + 16, odd));  // each value and a zero
    return static_cast<unsigned>(_mm_cvtsi128_si32(_mm_packus_epi16(_mm_packs_epi32(words, words), words)));
}

void orderedRow(const unsigned char* grey, std::uint32_t width, const unsigned char* thresholds, unsigned char* bits) {
    const __m128i even = load(thresholds).v;
    const __m128i odd = load(thresholds + 16).v;
    std::uint32_t x = 0;
    for (; x + 128 <= width; x += 128) {
        __m128i pair[4];
        for (int i = 0; i < 4; ++i) pair[i] = _mm_packs_epi32(whiteBits(grey + x + 32 * i, even), whiteBits(grey + x + 32 * i + 16, odd));
        store({_mm_packus_epi16(_mm_packs_epi32(pair[0], pair[1]), _mm_packs_epi32(pair[2], pair[3]))}, bits + x / 8);
    }
    for (; x < width; x += 32) {
        unsigned char rest[32] = {};  // grey 0 is black
        const unsigned char* from = grey + x;
        if (x + 32 > width) from = static_cast<const unsigned char*>(__builtin_memcpy(rest, from, width - x));
        const unsigned four = fourBytes(from, even, odd);
        __builtin_memcpy(bits + x / 8, &four, sizeof four);
    }
}

}  // namespace

const WideHalftone kSse2Halftone = routinesWith(&orderedRow);

}  // namespace morvil
