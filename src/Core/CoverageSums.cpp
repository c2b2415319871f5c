// The sweeps over the columns of pixels that turn sums into coverages.
#include "Core/CoverageSums.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

constexpr double fullCoverage = 0.999; ///< painted as 1, and but for rounding it only grows

/// Two columns at once.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));
constexpr int pairs = FullPixels::stackWidth / 2;

/// A bit for each that is full.
unsigned fullBits(Pair coverages) {
    const auto isFull = coverages >= Pair{fullCoverage, fullCoverage};
#ifdef __SSE2__
    return static_cast<unsigned>(_mm_movemask_pd(reinterpret_cast<__m128d>(isFull)));
#else
    return (isFull[0] != 0 ? 1U : 0U) | (isFull[1] != 0 ? 2U : 0U);
#endif
}

} // namespace

void CoverageSums::findFull(FullPixels& pixels) const {
    for (int stack = 0; stack < pixels.stacks(); ++stack) {
        if (!pixels.isStackFull(stack))
            findFullOfStack(pixels, stack);
    }
}

/// All columns at once: a sum waits for the one before, but not for those of other columns.
void CoverageSums::findFullOfStack(FullPixels& pixels, int stack) const {
    struct Columns {
        const double* evenEdges;
        const double* oddEdges;
        const float* evenStrips;
        const float* oddStrips;
    };
    const PixelRange columns = pixels.columns(stack);
    std::array<Columns, pairs> at;
    for (int i = 0; i < pairs; ++i) {
        const int even = std::min(columns.first + 2 * i, columns.end - 1);
        const int odd = std::min(even + 1, columns.end - 1);
        at[static_cast<std::size_t>(i)] = {m_edges.column(even), m_edges.column(odd), m_strips.column(even),
                                           m_strips.column(odd)};
    }
    const std::span<FullPixels::RowBits> bits = pixels.rowBits(stack);
    std::array<Pair, pairs> slopes{};
    std::array<Pair, pairs> coverages{};
    const auto sumRow = [&](int row) {
        for (std::size_t i = 0; i < pairs; ++i) {
            slopes[i] += Pair{at[i].evenEdges[row], at[i].oddEdges[row]};
            coverages[i] += slopes[i];
        }
    };
    for (int band = 0; band < pixels.bands(); ++band) {
        const PixelRange rows = pixels.rows(band);
        const bool isKnown = pixels.isBandFull(stack, band);
        for (int row = rows.first; row < rows.end; ++row) {
            sumRow(row);
            if (isKnown)
                continue;
            unsigned full = 0;
            for (std::size_t i = 0; i < pairs; ++i) {
                const Pair strips{at[i].evenStrips[row], at[i].oddStrips[row]};
                full |= fullBits(coverages[i] + strips) << 2 * i;
            }
            bits[static_cast<std::size_t>(row)] = static_cast<FullPixels::RowBits>(full);
        }
    }
    pixels.update(stack);
}

void CoverageSums::paint(PixelGrid image, const CoverageRamp& colors) {
    const PixelRange touched = m_edges.touchedColumns().unitedWith(m_strips.touchedColumns());
    for (int column = touched.first; column < touched.end; ++column) {
        paintColumn(column, image, colors);
        m_edges.clear(column);
        m_strips.clear(column);
    }
    m_edges.clearTouchedColumns();
    m_strips.clearTouchedColumns();
}

void CoverageSums::paintColumn(int column, PixelGrid image, const CoverageRamp& colors) const {
    const PixelRange stripRows = m_strips.touchedRows(column);
    const PixelRange touched = m_edges.touchedRows(column).unitedWith(stripRows);
    const PixelRange rows{std::max(touched.first, 0), std::min(touched.end, m_height)};
    if (rows.isEmpty())
        return;
    const auto sweep = [&](auto stripsAt) {
        const double* const edges = m_edges.column(column);
        double slope = 0;
        double coverage = 0;
        std::uint32_t* pixel = image.pixels + (m_height - 1 - rows.first) * image.stride + column;
        for (int row = rows.first; row < rows.end; ++row, pixel -= image.stride) {
            slope += edges[row];
            coverage += slope;
            const double all = coverage + stripsAt(row);
            const auto level = static_cast<std::size_t>(std::clamp(all * 255 + 0.5, 0.0, 255.0));
            if (level == 0)
                continue;
            // Mostly nothing is below, which saves the arithmetic. Shapes cannot foretell it and are faster
            // without.
            *pixel = *pixel == 0 ? colors[level] : composed(colors[level], *pixel);
        }
    };
    if (stripRows.isEmpty())
        sweep([](int) { return 0.0; });
    else
        sweep([strips = m_strips.column(column)](int row) { return double{strips[row]}; });
}
