#pragma once

#include "approxrotation.h"
#include "gather.h"
#include "imageview.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace projection
{

/// Column pairs from `begin` to before `end`; none when they are equal.
struct Span {
    int begin;
    int end;
};

/// What TiledRemap asks of the map that a rotation reads; that map itself need not exist.
///
///     const MirroredColumns &mirror() const         the rotation and its column pairs
///     const uint32_t *pixels() const                what the indexes count
///     auto finish() const                           a function from a pixel read to the map pixel
///     Span pairs(int y) const                       pairs of a row of the rotated map that can show anything
///     int topRow() const                            row of the map read, below which index() may be asked for
///     int32_t index(int column, int row) const      of a position that the approximation is certain of
///     int32_t exactIndex(MapPosition) const         of any position; GatherBatch::none outside
template <typename Source>
constexpr bool isRemapSource =
    std::is_same_v<decltype(std::declval<const Source &>().mirror()), const MirroredColumns &>
        &&std::is_same_v<decltype(std::declval<const Source &>().pixels()), const uint32_t *>
            &&std::is_same_v<decltype(std::declval<const Source &>().finish()(0U)), uint32_t>
                &&std::is_same_v<decltype(std::declval<const Source &>().pairs(0)), Span>
                    &&std::is_same_v<decltype(std::declval<const Source &>().topRow()), int>
                        &&std::is_same_v<decltype(std::declval<const Source &>().index(0, 0)), int32_t> &&
                            std::is_same_v<decltype(std::declval<const Source &>().exactIndex(MapPosition{})),
                                           int32_t>;

/// Paints a rotated map: approximate positions where they are certain, exact ones elsewhere.
template <typename Source>
class TiledRemap
{
    static_assert(isRemapSource<Source>);
    static_assert(GatherBatch::capacity <= ApproxSources::capacity, "a tile has to fit into both");

public:
    /// @param source       outlives this
    /// @param columnShift  the finished map is moved this far to the right, cyclically; 0 .. W - 1
    /// @param canvas       the finished map, at least of the size of the rotation
    TiledRemap(const Source &source, int columnShift, const ImageView &canvas, ApproximateSources approximate)
        : m_source(source)
        , m_mirror(source.mirror())
        , m_rotation(m_mirror.rotation())
        , m_columnShift(columnShift)
        , m_canvas(canvas)
        , m_approximate(approximate)
        , m_scale(m_rotation.width(), m_rotation.height())
        , m_gather(source.pixels(), source.finish())
        , m_tiles(tiles())
    {
        m_scale.leastPoleRow = static_cast<float>(source.topRow());
    }

    /// Paints from the top downwards in bands, each tile by tile: neighbouring rows read neighbouring pixels.
    /// @param bandBegins  told before each band its first row, and the one behind its last
    /// @param rowsDone    told after each band how many rows of the map are finished
    template <typename BandBegins, typename RowsDone>
    void paint(BandBegins bandBegins, RowsDone rowsDone)
    {
        for (int top = 0; top < m_rotation.height(); top += bandRows) {
            const int bottom = std::min(top + bandRows, m_rotation.height());
            bandBegins(top, bottom);
            paintBand(top, bottom);
            rowsDone(bottom);
        }
    }
    template <typename RowsDone>
    void paint(RowsDone rowsDone)
    {
        paint([](int, int) {}, rowsDone);
    }

    /// The pixels of the canvas that are painted in rows from `top` to before `bottom`.
    const PixelRanges &painted(int top, int bottom)
    {
        m_painted.clear();
        for (int y = top; y < bottom; ++y) {
            const Span pairs = m_source.pairs(y);
            if (pairs.begin >= pairs.end)
                continue;
            std::array<PixelRange, 4> ofRow;
            const int count = rangesOfRow(y, pairs, ofRow);
            for (int i = 0; i < count; ++i) {
                const PixelRange &range = ofRow[size_t(i)];
                if (!m_painted.empty() && range.begin <= m_painted.back().end)
                    m_painted.back().end = std::max(m_painted.back().end, range.end);
                else
                    m_painted.push_back(range);
            }
        }
        return m_painted;
    }

private:
    static constexpr int bandRows = 32; // with tiles of 512 columns: what the nearest cache holds

    void paintBand(int top, int bottom)
    {
        std::array<Span, bandRows> shown;
        for (int y = top; y < bottom; ++y)
            shown[size_t(y - top)] = m_source.pairs(y);
        for (const Span &tile : m_tiles)
            for (int y = top; y < bottom; ++y) {
                const Span pairs = shown[size_t(y - top)];
                const int begin = std::max(tile.begin, pairs.begin);
                const int end = std::min(tile.end, pairs.end);
                if (begin < end)
                    paintPairs(y, begin, end);
            }
        m_gather.flush();
    }

    /// The columns of the pairs and those of their mirrors, by their addresses; either may pass the edge.
    /// @return how many ranges there are
    int rangesOfRow(int y, Span pairs, std::array<PixelRange, 4> &ranges) const
    {
        uint32_t *const line = m_canvas.pixels + y * m_canvas.stride;
        const int width = m_rotation.width();
        const int columns = pairs.end - pairs.begin;
        int count = 0;
        for (const int first : {canvasColumn(m_mirror.column(pairs.begin)),
                                canvasColumn(m_mirror.mirroredColumn(pairs.end - 1))}) {
            const int toEdge = std::min(columns, width - first);
            ranges[size_t(count++)] = {line + first, line + first + toEdge};
            if (toEdge < columns)
                ranges[size_t(count++)] = {line, line + columns - toEdge};
        }
        std::sort(ranges.begin(), ranges.begin() + count,
                  [](const PixelRange &a, const PixelRange &b) { return a.begin < b.begin; });
        return count;
    }

    int canvasColumn(int mapColumn) const
    {
        const int x = mapColumn + m_columnShift;
        return x < m_rotation.width() ? x : x - m_rotation.width();
    }

    /// Spans of at most GatherBatch::capacity pairs in which neither the columns nor their mirrors pass the
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
                   [this](int pair) { return m_mirror.column(pair); });
        paintBatch(y, begin, end, m_approx.mirroredColumns,
                   line + canvasColumn(m_mirror.mirroredColumn(begin)), -1,
                   [this](int pair) { return m_mirror.mirroredColumn(pair); });
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
            batch.indexes[i] = m_source.index(columns[i], m_approx.rows[i]);
        for (int i = 0; i < m_approx.uncertainCount; ++i) {
            const int at = m_approx.uncertain[i];
            batch.indexes[at] = m_source.exactIndex(m_rotation.source(columnOf(begin + at), y));
        }
        m_gather.submit();
    }

    const Source &m_source;
    const MirroredColumns &m_mirror;
    const SphereRotation &m_rotation;
    int m_columnShift;
    ImageView m_canvas;
    ApproximateSources m_approximate;
    ApproxScale m_scale;
    ApproxSources m_approx;
    GatherQueue<decltype(std::declval<const Source &>().finish())> m_gather;
    std::vector<Span> m_tiles;
    PixelRanges m_painted;
};

} // namespace projection
