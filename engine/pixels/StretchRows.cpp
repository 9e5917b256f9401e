// StretchRows.cpp - the four stretching modes.
#include <algorithm>
#include <optional>
#include <utility>

#include "engine/pixels/ColourAdjustment.h"
#include "engine/pixels/Colours.h"
#include "engine/pixels/Formats.h"
#include "engine/pixels/Stretch.h"
#include "engine/pixels/Translation.h"

namespace morvil::engine {

StretchAxis::StretchAxis(LONG targetFrom, LONG targetTo, LONG sourceFrom, LONG sourceTo)
    : m_mirrored(targetTo < targetFrom),
      m_nearest(std::min(targetFrom, targetTo)),
      m_farthest(std::max(targetFrom, targetTo)),
      m_targetCount(m_farthest - m_nearest),
      m_sourceCount(static_cast<std::int64_t>(sourceTo) - sourceFrom),
      m_sourceStart(sourceFrom),
      m_low(static_cast<LONG>(m_nearest)),
      m_high(static_cast<LONG>(m_farthest)) {}

LONG StretchAxis::middle(LONG target) const {
    return static_cast<LONG>(m_sourceStart + (2 * fromStart(target) + 1) * m_sourceCount / (2 * m_targetCount));
}

StretchAxis::Range StretchAxis::share(LONG target) const {
    const std::int64_t k = fromStart(target);
    return {static_cast<LONG>(m_sourceStart + k * m_sourceCount / m_targetCount),
            static_cast<LONG>(m_sourceStart + (k + 1) * m_sourceCount / m_targetCount)};
}

StretchAxis::Range StretchAxis::touched(LONG target) const {
    const std::int64_t k = fromStart(target);
    return {static_cast<LONG>(m_sourceStart + k * m_sourceCount / m_targetCount),
            static_cast<LONG>(m_sourceStart + ((k + 1) * m_sourceCount + m_targetCount - 1) / m_targetCount)};
}

std::int64_t StretchAxis::weight(LONG target, LONG source) const {
    const std::int64_t k = fromStart(target);
    const std::int64_t s = source - m_sourceStart;
    return std::min((k + 1) * m_sourceCount, (s + 1) * m_targetCount) - std::max(k * m_sourceCount, s * m_targetCount);
}

void StretchAxis::limitSource(LONG begin, LONG end) {
    const auto outside = [&](LONG target) { return middle(target) < begin || middle(target) >= end; };
    while (m_low < m_high && outside(m_low)) ++m_low;
    while (m_low < m_high && outside(m_high - 1)) --m_high;
}

namespace {

// Colours of source pixels, row by row.
class ColourRows {
  public:
    ColourRows(const EngineSurface& source, const XLATEOBJ* translation) : m_source(source), m_layout(directLayoutOf(source)) {
        if (translation != nullptr) m_entries = static_cast<const EngineXlate*>(translation)->sourcePalette;
        if (m_entries.empty()) m_entries = entriesOf(source);
    }
    // Columns begin to end - 1 of row y, cut to the source.
    void read(LONG y, LONG begin, LONG end, std::vector<COLORREF>& colours) const {
        colours.resize(static_cast<std::size_t>(end - begin));
        unpackPixels(rowOf(m_source, y), bitsOf(m_source), begin, end - begin, colours.data());
        for (COLORREF& colour : colours) colour = colourOf(colour);
    }
    [[nodiscard]] COLORREF colourOf(ULONG value) const {
        if (m_layout) return m_layout->colourOf(value);
        return m_entries[std::min<std::size_t>(value, m_entries.size() - 1)];
    }
    [[nodiscard]] bool direct() const { return m_layout.has_value(); }

  private:
    const EngineSurface& m_source;
    std::optional<DirectLayout> m_layout;
    std::vector<COLORREF> m_entries;
};

// The source columns in the middle of target columns x0 to x1 - 1, worked out once for the rows of a rectangle.
class ColumnMap {
  public:
    explicit ColumnMap(const StretchAxis& columns) : m_columns(columns) {}
    void prepare(LONG x0, LONG x1) {
        if (x0 == m_x0 && x1 == m_x1) return;
        m_x0 = x0;
        m_x1 = x1;
        const auto [first, last] = std::minmax({m_columns.middle(x0), m_columns.middle(x1 - 1)});
        m_first = first;
        m_count = last - first + 1;
        m_offsets.clear();
        for (LONG x = x0; x < x1; ++x) m_offsets.push_back(static_cast<std::uint32_t>(m_columns.middle(x) - first));
    }
    [[nodiscard]] LONG first() const { return m_first; }
    [[nodiscard]] LONG count() const { return m_count; }  // from the first to the last source column
    // For each target column the distance of its source column from the first.
    [[nodiscard]] const std::vector<std::uint32_t>& offsets() const { return m_offsets; }

  private:
    const StretchAxis& m_columns;
    LONG m_x0 = 0;
    LONG m_x1 = 0;
    LONG m_first = 0;
    LONG m_count = 0;
    std::vector<std::uint32_t> m_offsets;
};

// Source columns and rows that exist.
StretchAxis::Range cut(StretchAxis::Range range, LONG size) { return {std::max<LONG>(range.begin, 0), std::min(range.end, size)}; }

// COLORONCOLOR, and the modes that combine where nothing shrinks: pixels are dropped or repeated.
class SampledRows : public StretchedRows {
  public:
    explicit SampledRows(const StretchJob& job) : m_job(job), m_translator(job.source, job.target, job.translation), m_map(job.columns) {}

    const std::vector<ULONG>& row(LONG y, LONG x0, LONG x1) override {
        const LONG sourceY = m_job.rows.middle(y);
        if (sourceY == m_lastY && x0 == m_lastX0 && x1 == m_lastX1) return m_row;
        m_lastY = sourceY;
        m_lastX0 = x0;
        m_lastX1 = x1;
        m_map.prepare(x0, x1);
        m_values.resize(static_cast<std::size_t>(m_map.count()));
        unpackPixels(rowOf(m_job.source, sourceY), bitsOf(m_job.source), m_map.first(), m_map.count(), m_values.data());
        m_translator.apply(m_values.data(), m_map.count());
        m_row.resize(m_map.offsets().size());
        for (std::size_t i = 0; i < m_row.size(); ++i) m_row[i] = m_values[m_map.offsets()[i]];
        return m_row;
    }

  private:
    StretchJob m_job;
    PixelTranslator m_translator;
    ColumnMap m_map;
    std::vector<ULONG> m_values;
    std::vector<ULONG> m_row;
    LONG m_lastY = -1;
    LONG m_lastX0 = 0;
    LONG m_lastX1 = 0;
};

// BLACKONWHITE (and) and WHITEONBLACK (or) where pixels are lost: bits of the colours are combined, the result is translated
// like a colour of its own.
class CombinedRows : public StretchedRows {
  public:
    CombinedRows(const StretchJob& job, bool conjunction)
        : m_job(job),
          m_and(conjunction),
          m_colours(job.source, job.translation),
          m_layout(directLayoutOf(job.target)),
          m_nearest(entriesOf(job.target)) {
        if (job.translation == nullptr) return;
        m_mono = (job.translation->flXlate & XO_TO_MONO) != 0;
        m_background = static_cast<const EngineXlate*>(job.translation)->monoBackground;
    }

    const std::vector<ULONG>& row(LONG y, LONG x0, LONG x1) override {
        const std::size_t count = static_cast<std::size_t>(x1 - x0);
        m_row.assign(count, m_and ? 0xFFFFFFU : 0U);
        const StretchAxis& rows = m_job.rows;
        const LONG middle = rows.middle(y);
        const StretchAxis::Range lines =
            rows.shrinks() ? cut(rows.share(y), m_job.source.sizlBitmap.cy) : StretchAxis::Range{middle, middle + 1};
        const StretchAxis::Range a = columnsOf(x0);
        const StretchAxis::Range b = columnsOf(x1 - 1);
        const LONG first = std::min(a.begin, b.begin);
        const LONG last = std::max(a.end, b.end);
        for (LONG line = lines.begin; line < lines.end; ++line) {
            m_colours.read(line, first, last, m_line);
            for (std::size_t i = 0; i < count; ++i) {
                const StretchAxis::Range range = columnsOf(x0 + static_cast<LONG>(i));
                for (LONG x = range.begin; x < range.end; ++x) {
                    const COLORREF colour = m_line[static_cast<std::size_t>(x - first)];
                    m_row[i] = m_and ? m_row[i] & colour : m_row[i] | colour;
                }
            }
        }
        for (ULONG& value : m_row) value = valueOf(value);
        return m_row;
    }

  private:
    [[nodiscard]] StretchAxis::Range columnsOf(LONG x) const {
        const LONG middle = m_job.columns.middle(x);
        return m_job.columns.shrinks() ? cut(m_job.columns.share(x), m_job.source.sizlBitmap.cx) : StretchAxis::Range{middle, middle + 1};
    }
    ULONG valueOf(COLORREF colour) {
        if (m_mono) return colour == m_background ? 1U : 0U;
        return m_layout ? m_layout->valueOf(colour) : m_nearest(colour);
    }

    StretchJob m_job;
    bool m_and;
    ColourRows m_colours;
    std::optional<DirectLayout> m_layout;
    NearestColour m_nearest;
    bool m_mono = false;
    COLORREF m_background = 0;
    std::vector<COLORREF> m_line;
    std::vector<ULONG> m_row;
};

// HALFTONE: colours are averaged over the area of the target pixel on axes that shrink, repeated on others, adjusted, and
// dithered where the target's palette lacks them. Targets of direct colour are not dithered.
class HalftonedRows : public StretchedRows {
  public:
    explicit HalftonedRows(const StretchJob& job)
        : m_job(job),
          m_colours(job.source, job.translation),
          m_adjust(job.adjustment),
          m_layout(directLayoutOf(job.target)),
          m_dithered(entriesOf(job.target)),
          m_map(job.columns) {}

    const std::vector<ULONG>& row(LONG y, LONG x0, LONG x1) override {
        const bool averages = m_job.columns.shrinks() || m_job.rows.shrinks();
        if (!averages && !m_colours.direct()) {
            readIndexed(y, x0, x1);
            return m_row;
        }
        if (averages) {
            readAverage(y, x0, x1);
        } else {
            readSampled(y, x0, x1);
        }
        LONG x = x0;
        for (ULONG& value : m_row) {
            const COLORREF colour = m_adjust(value);
            value = m_layout ? m_layout->valueOf(colour) : m_dithered(colour, x - m_job.ditherOrigin.x, y - m_job.ditherOrigin.y);
            ++x;
        }
        return m_row;
    }

  private:
    // What a source value becomes is worked out once for the whole picture.
    struct Answer {
        bool known = false;
        ULONG value = 0;
        DitherCell cell{};
    };

    void readIndexed(LONG y, LONG x0, LONG x1) {
        m_answers.resize(std::size_t{1} << bitsOf(m_job.source));
        m_map.prepare(x0, x1);
        m_line.resize(static_cast<std::size_t>(m_map.count()));
        unpackPixels(rowOf(m_job.source, m_job.rows.middle(y)), bitsOf(m_job.source), m_map.first(), m_map.count(), m_line.data());
        m_row.resize(m_map.offsets().size());
        LONG x = x0;
        for (std::size_t i = 0; i < m_row.size(); ++i, ++x) {
            const Answer& answer = answerFor(m_line[m_map.offsets()[i]]);
            const std::size_t place = DitheredColour::cellPosition(x - m_job.ditherOrigin.x, y - m_job.ditherOrigin.y);
            m_row[i] = m_layout ? answer.value : answer.cell[place];
        }
    }

    const Answer& answerFor(ULONG value) {
        Answer& answer = m_answers[value];
        if (answer.known) return answer;
        const COLORREF colour = m_adjust(m_colours.colourOf(value));
        answer.known = true;
        if (m_layout) {
            answer.value = m_layout->valueOf(colour);
        } else {
            answer.cell = m_dithered.cell(colour);
        }
        return answer;
    }

    void readSampled(LONG y, LONG x0, LONG x1) {
        m_map.prepare(x0, x1);
        m_colours.read(m_job.rows.middle(y), m_map.first(), m_map.first() + m_map.count(), m_line);
        m_row.resize(m_map.offsets().size());
        for (std::size_t i = 0; i < m_row.size(); ++i) m_row[i] = m_line[m_map.offsets()[i]];
    }

    struct Weights {
        StretchAxis::Range range{};
        std::vector<std::int64_t> lengths;
    };
    // An axis that does not shrink gives its middle pixel all the weight.
    static Weights weightsOf(const StretchAxis& axis, LONG target, LONG sourceSize) {
        if (!axis.shrinks()) return {{axis.middle(target), axis.middle(target) + 1}, {1}};
        Weights weights{cut(axis.touched(target), sourceSize), {}};
        for (LONG source = weights.range.begin; source < weights.range.end; ++source)
            weights.lengths.push_back(axis.weight(target, source));
        return weights;
    }

    void prepareColumns(LONG x0, LONG x1) {
        if (x0 == m_lastX0 && x1 == m_lastX1) return;
        m_lastX0 = x0;
        m_lastX1 = x1;
        m_columnWeights.clear();
        for (LONG x = x0; x < x1; ++x) m_columnWeights.push_back(weightsOf(m_job.columns, x, m_job.source.sizlBitmap.cx));
    }

    void readAverage(LONG y, LONG x0, LONG x1) {
        prepareColumns(x0, x1);
        const Weights lines = weightsOf(m_job.rows, y, m_job.source.sizlBitmap.cy);
        const LONG first = std::min(m_columnWeights.front().range.begin, m_columnWeights.back().range.begin);
        const LONG end = std::max(m_columnWeights.front().range.end, m_columnWeights.back().range.end);
        m_sums.assign(static_cast<std::size_t>(x1 - x0), Sums{});
        for (LONG line = lines.range.begin; line < lines.range.end; ++line) {
            const std::int64_t lineWeight = lines.lengths[static_cast<std::size_t>(line - lines.range.begin)];
            m_colours.read(line, first, end, m_line);
            for (std::size_t i = 0; i < m_sums.size(); ++i) {
                const Weights& column = m_columnWeights[i];
                const COLORREF* colour = m_line.data() + (column.range.begin - first);
                for (const std::int64_t length : column.lengths) m_sums[i].add(*colour++, length * lineWeight);
            }
        }
        m_row.clear();
        for (const Sums& sums : m_sums) m_row.push_back(sums.mean());
    }

    struct Sums {
        std::int64_t red = 0;
        std::int64_t green = 0;
        std::int64_t blue = 0;
        std::int64_t weight = 0;
        void add(COLORREF colour, std::int64_t share) {
            red += GetRValue(colour) * share;
            green += GetGValue(colour) * share;
            blue += GetBValue(colour) * share;
            weight += share;
        }
        [[nodiscard]] COLORREF mean() const {
            if (weight == 0) return 0;
            const auto rounded = [this](std::int64_t sum) { return static_cast<unsigned>((sum + weight / 2) / weight); };
            return RGB(rounded(red), rounded(green), rounded(blue));
        }
    };

    StretchJob m_job;
    ColourRows m_colours;
    ColourAdjuster m_adjust;
    std::optional<DirectLayout> m_layout;
    DitheredColour m_dithered;
    ColumnMap m_map;
    std::vector<Answer> m_answers;
    std::vector<Weights> m_columnWeights;
    LONG m_lastX0 = 0;
    LONG m_lastX1 = 0;
    std::vector<Sums> m_sums;
    std::vector<COLORREF> m_line;
    std::vector<ULONG> m_row;
};

}  // namespace

std::unique_ptr<StretchedRows> makeStretchedRows(const StretchJob& job, ULONG mode) {
    const bool shrinks = job.columns.shrinks() || job.rows.shrinks();
    // Where nothing changes a colour every pixel value stays what it is, also one whose colour the palette holds twice.
    const bool sameValues = job.translation != nullptr && (job.translation->flXlate & XO_TRIVIAL) != 0;
    const bool keepsValues = !shrinks && sameValues && ColourAdjuster(job.adjustment).neutral();
    if (mode == HALFTONE && !keepsValues) return std::make_unique<HalftonedRows>(job);
    if (mode == COLORONCOLOR || mode == HALFTONE || !shrinks) return std::make_unique<SampledRows>(job);
    return std::make_unique<CombinedRows>(job, mode == BLACKONWHITE);
}

}  // namespace morvil::engine
