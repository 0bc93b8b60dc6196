#pragma once

#include "approxrotation.h"
#include "gather.h"
#include "imageview.h"

#include <algorithm>
#include <cstdint>
#include <vector>

/// Column pairs from `begin` to before `end`; none when they are equal.
struct Span {
    int begin;
    int end;
};

/// Paints the rows of a rotated map. A kernel answers which pixel each position of the map that is rotated
/// shows; that map itself need not exist.
/// @tparam Kernel
///     int32_t index(int column, int row) const      of a position that the approximation is certain of
///     int32_t exactIndex(MapPosition) const         of any position; GatherBatch::none outside
///     Span pairs(int y) const                that can show anything at all
///     int firstRow() const                          first row that index() may be asked for
template <typename Kernel, typename Finish>
class TiledRemap
{
public:
    /// @param columnShift  the finished map is moved this far to the right, cyclically; 0 .. W - 1
    /// @param pixels       what the indexes of the kernel count
    /// @param canvas       the finished map
    TiledRemap(const SphereRotation &rotation, const MirroredColumns &mirror, int columnShift,
               const Kernel &kernel, const uint32_t *pixels, Finish finish, const ImageView &canvas,
               ApproximateSources *approximate)
        : m_rotation(rotation)
        , m_mirror(mirror)
        , m_columnShift(columnShift)
        , m_kernel(kernel)
        , m_scale(rotation.width(), rotation.height())
        , m_gather(pixels, finish)
        , m_canvas(canvas)
        , m_approximate(approximate)
        , m_tiles(tiles())
    {
        m_scale.firstRow = static_cast<float>(kernel.firstRow());
    }

    /// Paints rows top to before bottom, in bands, tile by tile: neighbouring rows read neighbouring pixels.
    /// @param rowsDone  told after each band how many rows of the map are finished
    template <typename RowsDone>
    void paint(RowsDone rowsDone)
    {
        constexpr int bandRows = 32; // with tiles of 512 columns: what the nearest cache holds
        for (int top = 0; top < m_rotation.height(); top += bandRows) {
            const int bottom = std::min(top + bandRows, m_rotation.height());
            paintBand(top, bottom);
            rowsDone(bottom);
        }
    }

private:
    void paintBand(int top, int bottom)
    {
        for (const Span &tile : m_tiles)
            for (int y = top; y < bottom; ++y) {
                const Span pairs = m_kernel.pairs(y);
                const int begin = std::max(tile.begin, pairs.begin);
                const int end = std::min(tile.end, pairs.end);
                if (begin < end)
                    paintPairs(y, begin, end);
            }
        m_gather.flush();
    }

    int canvasColumn(int mapColumn) const
    {
        const int x = mapColumn + m_columnShift;
        return x < m_rotation.width() ? x : x - m_rotation.width();
    }

    /// Pieces of at most GatherBatch::capacity pairs in which neither the columns nor their mirrors pass the
    /// edge.
    std::vector<Span> tiles() const
    {
        std::vector<Span> result;
        for (int begin = 0; begin < m_mirror.count();) {
            const int toRightEdge = m_rotation.width() - canvasColumn(m_mirror.column(begin));
            const int toLeftEdge = canvasColumn(m_mirror.mirroredColumn(begin)) + 1;
            const int end = std::min(
                {begin + GatherBatch::capacity, begin + toRightEdge, begin + toLeftEdge, m_mirror.count()});
            result.push_back({begin, end});
            begin = end;
        }
        return result;
    }

    void paintPairs(int y, int begin, int end)
    {
        m_approximate(m_scale, rotatedRow(m_rotation, y), m_mirror.cosines() + begin,
                      m_mirror.sines() + begin, end - begin, m_approx);
        uint32_t *line = m_canvas.pixels + y * m_canvas.stride;
        paintBatch(y, begin, end, m_approx.columns, line + canvasColumn(m_mirror.column(begin)), 1,
                   [&](int pair) { return m_mirror.column(pair); });
        paintBatch(y, begin, end, m_approx.mirroredColumns,
                   line + canvasColumn(m_mirror.mirroredColumn(begin)), -1,
                   [&](int pair) { return m_mirror.mirroredColumn(pair); });
    }

    template <typename ColumnOf>
    void paintBatch(int y, int begin, int end, const int32_t *columns, uint32_t *out, std::ptrdiff_t step,
                    ColumnOf columnOf)
    {
        GatherBatch &batch = m_gather.next();
        batch.count = end - begin;
        batch.out = out;
        batch.step = step;
        for (int i = 0; i < batch.count; ++i)
            batch.indexes[i] = m_kernel.index(columns[i], m_approx.rows[i]);
        for (int i = 0; i < m_approx.uncertainCount; ++i) {
            const int pair = m_approx.uncertain[i];
            batch.indexes[pair] = m_kernel.exactIndex(m_rotation.source(columnOf(begin + pair), y));
        }
        m_gather.submit();
    }

    const SphereRotation &m_rotation;
    const MirroredColumns &m_mirror;
    int m_columnShift;
    const Kernel &m_kernel;
    ApproxScale m_scale;
    ApproxSources m_approx;
    GatherQueue<Finish> m_gather;
    ImageView m_canvas;
    ApproximateSources *m_approximate;
    std::vector<Span> m_tiles;
};
