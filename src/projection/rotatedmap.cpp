#include "rotatedmap.h"

#include "tiledremap.h"

#include <limits>

namespace
{

/// Answers with the pixels of the map that is rotated.
class MapSource
{
public:
    MapSource(const SphereRotation &rotation, const MirroredColumns &mirror, std::ptrdiff_t stride)
        : m_width(rotation.width())
        , m_height(rotation.height())
        , m_pairs{0, mirror.count()}
        , m_stride(static_cast<int32_t>(stride))
    {
    }

    int firstRow() const { return 0; }
    int32_t index(int column, int row) const { return row * m_stride + column; }
    int32_t exactIndex(MapPosition position) const
    {
        const bool inside =
            position.column >= 0 && position.column < m_width && position.row >= 0 && position.row < m_height;
        return inside ? index(position.column, position.row) : GatherBatch::none;
    }
    Span pairs(int) const { return m_pairs; }

private:
    int m_width;
    int m_height;
    Span m_pairs;
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
                     ApproximateSources *approximate)
{
    const bool covered = MirroredColumns::cover(rotation.axis(), rotation.width(), rotation.height()) &&
                         map.stride * rotation.height() <= std::numeric_limits<int32_t>::max();
    if (!covered)
        return paintExactly(rotation, map, canvas);

    const MirroredColumns mirror(rotation);
    const MapSource kernel(rotation, mirror, map.stride);
    const auto copied = [](uint32_t pixel) { return pixel; };
    TiledRemap remap(rotation, mirror, 0, kernel, map.pixels, copied, canvas, approximate);
    remap.paint([](int) {});
}
