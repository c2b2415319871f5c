// The sweeps over the columns of pixels that turn sums into coverages.
#include "Core/CoverageSums.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

constexpr double fullCoverage = 0.999; ///< painted as 1, and it only grows

/// Two columns at once.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

} // namespace

void CoverageSums::findFull(FullBlocks& blocks) const {
    constexpr int mostPairs = 4; // a sum waits for the one before, but not for those of other columns
    for (int stack = 0; stack < blocks.stacks(); ++stack) {
        FullBlocks::Bands open = 0;
        FullBlocks::Bands unknown = blocks.allBands() & ~blocks.full(stack);
        const PixelRange columns = blocks.columns(stack);
        for (int column = columns.first; column < columns.end && unknown != 0; column += 2 * mostPairs) {
            const PixelRange some{column, std::min(column + 2 * mostPairs, columns.end)};
            const FullBlocks::Bands found = some.count() <= 2 ? leftOpen<1>(some, blocks, unknown)
                                                              : leftOpen<mostPairs>(some, blocks, unknown);
            open |= found;
            unknown &= ~found;
        }
        blocks.setFull(stack, blocks.allBands() & ~open);
    }
}

/// Those of the bands in question in which a pixel of the columns, at most two for each pair, is not full.
template <int pairs>
FullBlocks::Bands CoverageSums::leftOpen(PixelRange columns, const FullBlocks& blocks,
                                         FullBlocks::Bands unknown) const {
    struct Columns {
        const double* evenEdges;
        const double* oddEdges;
        const float* evenStrips;
        const float* oddStrips;
    };
    std::array<Columns, pairs> at;
    for (int i = 0; i < pairs; ++i) {
        const int even = std::min(columns.first + 2 * i, columns.end - 1);
        const int odd = std::min(even + 1, columns.end - 1);
        at[static_cast<std::size_t>(i)] = {m_edges.column(even), m_edges.column(odd), m_strips.column(even),
                                           m_strips.column(odd)};
    }
    FullBlocks::Bands open = 0;
    std::array<Pair, pairs> slopes{};
    std::array<Pair, pairs> coverages{};
    for (int band = 0; band < blocks.bands(); ++band) {
        const FullBlocks::Bands bit = FullBlocks::Bands{1} << static_cast<unsigned>(band);
        const auto sumRows = [&](auto see) {
            const PixelRange rows = blocks.rows(band);
            for (int row = rows.first; row < rows.end; ++row) {
                for (std::size_t i = 0; i < pairs; ++i) {
                    slopes[i] += Pair{at[i].evenEdges[row], at[i].oddEdges[row]};
                    coverages[i] += slopes[i];
                    see(coverages[i], at[i].evenStrips + row, at[i].oddStrips + row);
                }
            }
        };
        if ((unknown & bit) == 0) {
            sumRows([](Pair, const float*, const float*) {});
            continue;
        }
        Pair least{1, 1};
        sumRows([&](Pair edges, const float* even, const float* odd) {
            const Pair all = edges + Pair{*even, *odd};
            least = all < least ? all : least;
        });
        if (std::min(least[0], least[1]) < fullCoverage)
            open |= bit;
    }
    return open;
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
