// Wavefront.h - one band of error diffusion, with a row in each byte of a register. Included by the source of each register width,
// which defines Vector and its operations first. Everything here is local to that source, and nothing of the standard library is
// called: a function compiled for the wider registers must never stand in for one that every processor runs.
//
// Lane l works on row kLanes - 1 - l of the band, so that the last row's results can be stored with the rest of the register behind
// them. In step t the band's row r works on column t - r * kLag. The lag is what the order of the shares demands: a pixel must have
// got everything from the row above before its left neighbours in its own row add to it.
//
// Values are grey less 128 as signed bytes, so that adding with signed saturation is the clamping to 0..255, whatever the sign of
// the share, and being white is being positive.
#pragma once

#include "raster/WideHalftone.h"

namespace morvil {
namespace {

constexpr int kLanes = static_cast<int>(sizeof(Vector));
constexpr int kGroup = 16;  // rows of a half, columns of a block
static_assert(kGroup == static_cast<int>(kBandStep));

// Turns 16 registers of 16 columns of a row each into 16 registers of one column each, or back; in each half of a wider register.
inline void transpose(Vector (&m)[kGroup]) {
    Vector other[kGroup];
    for (int round = 0; round < 2; ++round) {
#pragma GCC unroll 8
        for (int i = 0; i < 8; ++i) {
            other[2 * i] = interleaveLow(m[i], m[i + 8]);
            other[2 * i + 1] = interleaveHigh(m[i], m[i + 8]);
        }
#pragma GCC unroll 8
        for (int i = 0; i < 8; ++i) {
            m[2 * i] = interleaveLow(other[i], other[i + 8]);
            m[2 * i + 1] = interleaveHigh(other[i], other[i + 8]);
        }
    }
}

// floor(m * Weight / Divisor) of every byte m up to 128, by a reciprocal of 16 bits.
template <unsigned Weight, unsigned Divisor>
struct Reciprocal {
    static constexpr unsigned kFactor = (Weight * 65536U + Divisor - 1) / Divisor;
    static constexpr bool isExact() {
        for (unsigned m = 0; m <= 128; ++m) {
            if (m * kFactor >> 16 != m * Weight / Divisor) return false;
        }
        return true;
    }
    static_assert(isExact() && kFactor < 65536U);
};
template <unsigned Weight, unsigned Divisor>
inline Vector scaled(Vector even, Vector oddAbove) {
    const Vector factor = words(Reciprocal<Weight, Divisor>::kFactor);
    return even_or_odd(multiplyHigh(even, factor), multiplyHigh(oddAbove, factor));
}

// The error's size: v where the pixel becomes black, 255 - v where it becomes white.
inline Vector errorOf(Vector value, Vector white) { return exclusive(exclusive(value, bytes(0x80)), white); }

// Each kernel: its shape, and the signed shares by weight. `outside` holds the lanes that stand beside the image; they have no error.
struct FloydSteinbergLanes {
    static constexpr int kReach = 1;
    static constexpr int kBelow = 1;
    static constexpr int kWeights = 4;
    static constexpr int kRow[] = {0};          // weights by dx = 1, ...
    static constexpr int kNext[] = {2, 1, 3};   // 3 5 1, by dx = -1, ...
    static constexpr int kAfter[] = {0, 0, 0};  // not used

    // w * m / 16, digit by digit of w from the lowest: the mean of m or 0 and what there is so far. The mean that processors have
    // rounds up; of complements that is down.
    template <bool Edge>
    static void shares(Vector value, Vector white, Vector outside, Vector (&out)[kWeights]) {
        const Vector none = bytes(0xFF);
        Vector m = exclusive(exclusive(value, bytes(0x7F)), white);  // the error's complement
        if constexpr (Edge) m = either(m, outside);
        const Vector one = mean(m, none);
        const Vector three = mean(one, m);
        const Vector seven = mean(three, m);
        const Vector low = mean(one, none);
        const Vector five = mean(low, m);
        const Vector black = exclusive(white, none);
        out[0] = withSignOfComplement(mean(seven, none), white, black);
        out[1] = withSignOfComplement(mean(five, none), white, black);
        out[2] = withSignOfComplement(mean(mean(three, none), none), white, black);
        out[3] = withSignOfComplement(mean(mean(low, none), none), white, black);
    }

  private:
    static Vector withSignOfComplement(Vector share, Vector white, Vector black) { return subtract(exclusive(share, black), white); }
};

struct FiveColumns {
    static constexpr int kReach = 2;
};

struct BurkesLanes : FiveColumns {
    static constexpr int kBelow = 1;
    static constexpr int kWeights = 3;  // 8 4 2
    static constexpr int kRow[] = {0, 1};
    static constexpr int kNext[] = {2, 1, 0, 1, 2};
    static constexpr int kAfter[] = {0, 0, 0, 0, 0};

    template <bool Edge>
    static void shares(Vector value, Vector white, Vector outside, Vector (&out)[kWeights]) {
        Vector m = errorOf(value, white);
        if constexpr (Edge) m = without(m, outside);
        const Vector sign = signOf(white);
        out[0] = withSign(shiftedRight<2>(m), sign);
        out[1] = withSign(shiftedRight<3>(m), sign);
        out[2] = withSign(shiftedRight<4>(m), sign);
    }
};

struct StuckiLanes : FiveColumns {
    static constexpr int kBelow = 2;
    static constexpr int kWeights = 4;  // 8 4 2 1
    static constexpr int kRow[] = {0, 1};
    static constexpr int kNext[] = {2, 1, 0, 1, 2};
    static constexpr int kAfter[] = {3, 2, 1, 2, 3};

    // Half of a share that was cut is the cut half.
    template <bool Edge>
    static void shares(Vector value, Vector white, Vector outside, Vector (&out)[kWeights]) {
        Vector m = errorOf(value, white);
        if constexpr (Edge) m = without(m, outside);
        const Vector eight = scaled<8, 42>(evenBytes(m), oddBytes(m));
        const Vector sign = signOf(white);
        out[0] = withSign(eight, sign);
        out[1] = withSign(shiftedRight<1>(eight), sign);
        out[2] = withSign(shiftedRight<2>(eight), sign);
        out[3] = withSign(shiftedRight<3>(eight), sign);
    }
};

struct JarvisLanes : FiveColumns {
    static constexpr int kBelow = 2;
    static constexpr int kWeights = 4;  // 7 5 3 1
    static constexpr int kRow[] = {0, 1};
    static constexpr int kNext[] = {2, 1, 0, 1, 2};
    static constexpr int kAfter[] = {3, 2, 1, 2, 3};

    template <bool Edge>
    static void shares(Vector value, Vector white, Vector outside, Vector (&out)[kWeights]) {
        Vector m = errorOf(value, white);
        if constexpr (Edge) m = without(m, outside);
        const Vector even = evenBytes(m);
        const Vector odd = oddBytes(m);
        const Vector sign = signOf(white);
        out[0] = withSign(scaled<7, 48>(even, odd), sign);
        out[1] = withSign(scaled<5, 48>(even, odd), sign);
        out[2] = withSign(shiftedRight<4>(m), sign);
        out[3] = withSign(scaled<1, 48>(even, odd), sign);
    }
};

// kLanes rows that run together.
template <class Kernel>
class Stream {
  public:
    static constexpr int kReach = Kernel::kReach;
    static constexpr int kLag = 2 * kReach + 1;
    static constexpr int kDelay = kLag * (kLanes - 1);  // of the last row

    // The band's rows from `firstRow` on.
    Stream(const DiffusionBand& band, int firstRow)
        : m_fresh(band.fresh + firstRow),
          m_carried(band.carried),
          m_carriedBelow(band.carriedBelow),
          m_skewed(band.skewed + firstRow * static_cast<std::ptrdiff_t>(band.skewedBytes)),
          m_skewedEnd(m_skewed),
          m_stagedBytes(static_cast<std::ptrdiff_t>(band.stagedBytes)),
          m_bits(band.bits + firstRow * m_stagedBytes),
          m_width(static_cast<int>(band.width)) {
        unsigned char lags[kLanes];
        for (int lane = 0; lane < kLanes; ++lane) lags[lane] = static_cast<unsigned char>(kLag * rowOf(lane));
        m_lags = load(lags);
    }

    // Steps run from one block before the first column, so that what enters the rows has passed through the registers by then, until
    // the last row has given its last share.
    [[nodiscard]] int end() const { return m_width + kReach + kDelay; }
    [[nodiscard]] bool isActive(int step) const { return step >= -kGroup && step < end(); }
    [[nodiscard]] bool isInside(int step) const { return step >= kDelay && step + kGroup - 1 + kReach < m_width; }

    void block(int step) {
        if (!isActive(step)) return;
        if (isInside(step)) blockAlone<false>(step);
        else blockAlone<true>(step);
    }

    // The same block of two streams that do not wait for each other: while one register waits for its sum the other gets its own.
    [[gnu::noinline]] static void blockOfBoth(Stream& one, int stepOfOne, Stream& other, int stepOfOther) {
        Vector freshOfOne[kGroup];
        Vector freshOfOther[kGroup];
        one.loadFresh(stepOfOne, freshOfOne);
        transpose(freshOfOne);
        other.loadFresh(stepOfOther, freshOfOther);
        transpose(freshOfOther);
        for (int i = 0; i < kGroup; i += kTurn) {
            one.turn<false>(stepOfOne + i, freshOfOne + i);
            other.turn<false>(stepOfOther + i, freshOfOther + i);
            if (i % 8 == 8 - kTurn) {
                one.putBits();
                other.putBits();
            }
        }
    }

    // The bits were gathered by step. A row's byte begins kLag * row steps later, which is some bytes and some bits: the bits are
    // shifted in each lane, the bytes by where the row is written.
    [[gnu::noinline]] void unskew() {
        store(zero(), m_skewedEnd);
        const int count = static_cast<int>((m_skewedEnd - m_skewed) / kLanes);
        short factors[kLanes];
        for (int lane = 0; lane < kLanes; ++lane) factors[lane] = static_cast<short>(1 << (kLag * rowOf(lane) % 8));
        for (int first = 0; first < count; first += kGroup) {
            Vector column[kGroup];
            for (int i = 0; i < kGroup; ++i) {
                const int at = first + i;
                column[i] = at < count ? shiftedLeft(load(m_skewed + at * kLanes), load(m_skewed + (at + 1) * kLanes), factors) : zero();
            }
            transpose(column);
            for (int i = 0; i < kGroup; ++i) storeHalves(column[i], staged(rowOf(i), first), staged(rowOf(i) % kGroup, first));
        }
    }

  private:
    static constexpr int kAhead = 2 * kReach;  // columns whose shares are not complete
    static constexpr int kCacheLine = 64;
    static constexpr int kPrefetch = 1024;     // columns: so many rows at once are more than processors watch by themselves
    static constexpr int kTurn = 2;            // steps of one stream before the other's turn
    static_assert(kDelay + kGroup + kReach < static_cast<int>(kCarryBefore) && kDelay <= 255);
    static_assert(kDelay + 2 * kGroup + kReach + kLanes < static_cast<int>(kCarryBehind));

    static constexpr int rowOf(int lane) { return kLanes - 1 - lane; }

    // What the rows hold ahead of and below the pixel at work.
    struct Pending {
        Vector right[kReach];  // from the pixel on: those that the row above is done with
        Vector below[kAhead];  // next row, from column -kReach on
        Vector after[kAhead];  // the row after it
        Vector done;           // of the next row, the column that just got its last share
        Vector doneAfter;
        Vector bits;

        // Member by member, from registers to registers: a copy of the whole would go through memory.
        inline void become(const Pending& other) {
#pragma GCC unroll 2
            for (int i = 0; i < kReach; ++i) right[i] = other.right[i];
#pragma GCC unroll 4
            for (int i = 0; i < kAhead; ++i) below[i] = other.below[i];
            done = other.done;
            bits = other.bits;
            if constexpr (Kernel::kBelow == 1) return;
#pragma GCC unroll 4
            for (int i = 0; i < kAhead; ++i) after[i] = other.after[i];
            doneAfter = other.doneAfter;
        }
    };

    template <bool Edge>
    [[gnu::noinline]] void blockAlone(int step) {
        Vector fresh[kGroup];
        if constexpr (Edge) loadExisting(step, fresh);
        else loadFresh(step, fresh);
        transpose(fresh);
        for (int i = 0; i < kGroup; i += kTurn) {
            turn<Edge>(step + i, fresh + i);
            if (i % 8 == 8 - kTurn) putBits();
        }
    }

    template <bool Edge>
    inline void turn(int step, const Vector* fresh) {
        Pending p;
        p.become(m_pending);
        unsigned char* const carried = m_carried + step;  // here, since stored bytes might be any member
        unsigned char* const carriedBelow = m_carriedBelow + step;
#pragma GCC unroll 4
        for (int i = 0; i < kTurn; ++i) {
            const Vector white = advance<Edge>(p, exclusive(fresh[i], bytes(0x80)), carried + i, carriedBelow + i, step + i);
            p.bits = subtract(add(p.bits, p.bits), white);
        }
        m_pending.become(p);
    }

    inline void putBits() {
        store(m_pending.bits, m_skewedEnd);
        m_skewedEnd += kLanes;
    }

    template <bool Edge>
    inline Vector advance(Pending& p, Vector fresh, unsigned char* carried, unsigned char* carriedBelow, int t) {
        const Vector white = greater(p.right[0], zero());
        Vector share[Kernel::kWeights];
        Kernel::template shares<Edge>(p.right[0], white, Edge ? outside(t) : white, share);

        const Vector entering = passedDown(p.done, carried + kReach);
        for (int i = 0; i + 1 < kReach; ++i) p.right[i] = addClamped(p.right[i + 1], share[Kernel::kRow[i]]);
        p.right[kReach - 1] = addClamped(entering, share[Kernel::kRow[kReach - 1]]);

        Vector enteringBelow = fresh;
        if constexpr (Kernel::kBelow == 2) {
            enteringBelow = passedDown(p.doneAfter, carriedBelow + kReach);
            p.doneAfter = distribute(p.after, fresh, Kernel::kAfter, share);
            store(p.doneAfter, carriedBelow - kDelay - kReach);
        }
        p.done = distribute(p.below, enteringBelow, Kernel::kNext, share);
        store(p.done, carried - kDelay - kReach);
        return white;
    }

    // Gives a row below its shares and moves on by a column; the column that is left behind.
    static inline Vector distribute(Vector (&row)[kAhead], Vector entering, const int (&weights)[kAhead + 1],
                                    const Vector (&share)[Kernel::kWeights]) {
        const Vector done = addClamped(row[0], share[weights[0]]);
        for (int i = 0; i + 1 < kAhead; ++i) row[i] = addClamped(row[i + 1], share[weights[i + 1]]);
        row[kAhead - 1] = addClamped(entering, share[weights[kAhead]]);
        return done;
    }

    // All ones in the lanes whose column is left or right of the image: those with lag > t or lag < t - width + 1.
    [[nodiscard]] inline Vector outside(int t) const {
        if (t < 0) return bytes(0xFF);
        const Vector inside = both(notAbove(m_lags, bytes(limited(t))), notAbove(bytes(limited(t - m_width + 1)), m_lags));
        return exclusive(inside, bytes(0xFF));
    }
    static inline int limited(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

    // A block of each row, of those in a register's upper half as well, where it has one. Each begins kLag columns left of the one above.
    inline void loadFresh(int step, Vector (&fresh)[kGroup]) const {
#pragma GCC unroll 16
        for (int i = 0; i < kGroup; ++i) {
            const unsigned char* const lower = m_fresh[rowOf(i)] + columnOf(rowOf(i), step);
            const unsigned char* const upper = m_fresh[upperRowOf(i)] + columnOf(upperRowOf(i), step);
            fresh[i] = loadHalves(lower, upper);
            if (step % kCacheLine != 0) continue;
            __builtin_prefetch(lower + kPrefetch);
            if constexpr (kLanes > kGroup) __builtin_prefetch(upper + kPrefetch);
        }
    }
    // The same where not all columns exist.
    void loadExisting(int step, Vector (&fresh)[kGroup]) const {
#pragma GCC unroll 1
        for (int i = 0; i < kGroup; ++i) {
            unsigned char lower[kGroup] = {};
            unsigned char upper[kGroup] = {};
            fresh[i] = loadHalves(existing(rowOf(i), step, lower), existing(upperRowOf(i), step, upper));
        }
    }
    [[gnu::noinline]] const unsigned char* existing(int row, int step, unsigned char (&room)[kGroup]) const {
        const int column = columnOf(row, step);
        if (column >= 0 && column + kGroup <= m_width) return m_fresh[row] + column;
        const int end = column + kGroup <= m_width ? kGroup : m_width - column;
        for (int i = column < 0 ? -column : 0; i < end; ++i) room[i] = m_fresh[row][column + i];
        return room;
    }
    static constexpr int columnOf(int row, int step) { return step + kReach - kLag * row; }
    static constexpr int upperRowOf(int lane) { return rowOf(lane) % kGroup; }

    [[nodiscard]] unsigned char* staged(int row, int column) const {
        return m_bits + row * m_stagedBytes + static_cast<std::ptrdiff_t>(kStagedBefore) + column - kGroup / 8 - kLag * row / 8;
    }

    const unsigned char* const* m_fresh;
    unsigned char* m_carried;
    unsigned char* m_carriedBelow;
    unsigned char* m_skewed;
    unsigned char* m_skewedEnd;
    std::ptrdiff_t m_stagedBytes;
    unsigned char* m_bits;
    int m_width;
    Vector m_lags;
    Pending m_pending{};
};

// Two streams, the second so far behind the first that what it takes over has left the processor's store queue.
template <class Kernel>
void diffuseBand(const DiffusionBand& band) {
    constexpr int kBehind = (Stream<Kernel>::kDelay + 2 * Stream<Kernel>::kReach + 4 * kGroup) / kGroup * kGroup;
    Stream<Kernel> upper(band, 0);
    Stream<Kernel> lower(band, kLanes);
    for (int step = -kGroup; step - kBehind < lower.end(); step += kGroup) {
        if (upper.isInside(step) && lower.isInside(step - kBehind)) {
            Stream<Kernel>::blockOfBoth(upper, step, lower, step - kBehind);
            continue;
        }
        upper.block(step);
        lower.block(step - kBehind);
    }
    upper.unskew();
    lower.unskew();
}

constexpr WideHalftone routinesWith(void (*orderedRow)(const unsigned char*, std::uint32_t, const unsigned char*, unsigned char*)) {
    return {2 * kLanes,
            {&diffuseBand<FloydSteinbergLanes>, &diffuseBand<JarvisLanes>, &diffuseBand<StuckiLanes>, &diffuseBand<BurkesLanes>},
            orderedRow};
}

}  // namespace
}  // namespace morvil
