#include "jobfile/BorderCompletion.h"

#include <algorithm>
#include <stdexcept>

#include "driver/log/Log.h"

namespace morvil {

namespace {

constexpr std::uint32_t kLightGrey = 0xE8E8E8;
constexpr std::uint32_t kBlockBytes = 1U << 20;

void logRows(const std::vector<std::uint32_t>& rows) {
    for (const std::uint32_t row : rows) logMorvil(1, kInformation, TEXT("Border detected, row=%d"), row, kLogEnd);
}

}  // namespace

BorderCompletion::BorderCompletion(CBM& store) : m_store(store), m_grey(store.colourTable().getNearestIndex(kLightGrey)) {
    const std::span<const std::uint32_t> entries = store.colourTable().entries();
    for (std::size_t value = 0; value < m_isGrey.size() && !entries.empty(); ++value) {
        const std::uint32_t colour = entries[std::min(value, entries.size() - 1)];
        m_isGrey[value] = colour == kLightGrey;
        m_isWhite[value] = colour == kWhite;
    }
}

bool BorderCompletion::complete(std::uint8_t& edge, std::uint8_t inner) const {
    if (!m_isGrey[inner] || !m_isWhite[edge]) return false;
    edge = m_grey;
    return true;
}

void BorderCompletion::read(std::span<std::uint8_t> rows, std::uint32_t first) {
    if (!m_store.ReadRows(rows, first)) throw std::runtime_error("bitmap section cannot be read");
}

void BorderCompletion::write(std::span<const std::uint8_t> rows, std::uint32_t first) {
    m_spoiled = !m_store.WriteRows(rows, first);
    if (m_spoiled) throw std::runtime_error("bitmap section cannot be written");
}

void BorderCompletion::run() {
    if (m_store.bitsPerPixel() != 8 || m_store.width() < 2 || m_store.height() < 2) return;
    completeSides();
    completeEdge(0, 1);
    completeEdge(m_store.height() - 1, m_store.height() - 2);
}

// Both sides of a row are done while it is at hand; the lines in the log come side by side, all of the left edge first.
void BorderCompletion::completeSides() {
    const std::uint32_t stride = m_store.stride();
    const std::uint32_t last = m_store.width() - 1;
    const std::uint32_t blockRows = std::clamp(kBlockBytes / stride, 1U, m_store.height());
    std::vector<std::uint8_t> block(std::size_t{blockRows} * stride);
    std::vector<std::uint32_t> left;
    std::vector<std::uint32_t> right;
    for (std::uint32_t first = 0; first < m_store.height();) {
        const std::uint32_t rows = std::min(blockRows, m_store.height() - first);
        const std::span<std::uint8_t> stored = std::span(block).first(std::size_t{rows} * stride);
        const std::size_t before = left.size() + right.size();
        read(stored, first);
        for (std::uint32_t i = 0; i < rows; ++i) {
            std::uint8_t* const row = stored.data() + std::size_t{i} * stride;
            if (complete(row[0], row[1])) left.push_back(first + i);
            if (complete(row[last], row[last - 1])) right.push_back(first + i);
        }
        if (left.size() + right.size() != before) write(stored, first);
        first += rows;
    }
    logRows(left);
    logRows(right);
}

void BorderCompletion::completeEdge(std::uint32_t edgeRow, std::uint32_t innerRow) {
    std::vector<std::uint8_t> edge(m_store.stride());
    std::vector<std::uint8_t> inner(m_store.stride());
    read(edge, edgeRow);
    read(inner, innerRow);
    bool changed = false;
    for (std::uint32_t x = 0; x < m_store.width(); ++x) {
        if (!complete(edge[x], inner[x])) continue;
        logMorvil(1, kInformation, TEXT("Border detected, col=%d"), x, kLogEnd);
        changed = true;
    }
    if (changed) write(edge, edgeRow);
}

}  // namespace morvil
