#include "rotatedmap.h"

#include "tiledremap.h"

#include <limits>

namespace projection
{

namespace
{

/// Answers with the pixels of the map that is rotated.
class MapSource
{
public:
    MapSource(const SphereRotation &rotation, const ConstImageView &map)
        : m_mirror(rotation), m_map(map), m_stride(static_cast<int32_t>(map.stride))
    {
    }

    const MirroredColumns &mirror() const { return m_mirror; }
    const uint32_t *pixels() const { return m_map.pixels; }
    auto finish() const
    {
        return [](uint32_t pixel) { return pixel; };
    }
    Span pairs(int /*y*/) const { return {0, m_mirror.count()}; }
    int topRow() const { return 0; }
    int32_t index(int column, int row) const { return row * m_stride + column; }
    int32_t exactIndex(MapPosition position) const
    {
        const SphereRotation &rotation = m_mirror.rotation();
        const bool inside = position.column >= 0 && position.column < rotation.width() && position.row >= 0 &&
                            position.row < rotation.height();
        return inside ? index(position.column, position.row) : GatherBatch::none;
    }

private:
    MirroredColumns m_mirror;
    ConstImageView m_map;
    int32_t m_stride;
};

void paintExactly(const SphereRotation &rotation, const ConstImageView &map, const ImageView &canvas)
{
    for (int y = 0; y < rotation.height(); ++y)
        for (int x = 0; x < rotation.width(); ++x) {
            const MapPosition from = rotation.source(x, y);
            if (from.column >= 0 && from.column < rotation.width() && from.row >= 0 &&
                from.row < rotation.height())
                canvas.pixels[y * canvas.stride + x] = map.pixels[from.row * map.stride + from.column];
        }
}

} // namespace

void paintRotatedMap(const SphereRotation &rotation, const ConstImageView &map, const ImageView &canvas,
                     ApproximateSources approximate)
{
    const bool covered = MirroredColumns::cover(rotation.axis(), rotation.width(), rotation.height()) &&
                         map.stride * rotation.height() <= std::numeric_limits<int32_t>::max();
    if (!covered)
        return paintExactly(rotation, map, canvas);
    const MapSource source(rotation, map);
    TiledRemap(source, 0, canvas, approximate).paint([](int) {});
}

} // namespace projection
