#include "mirroredcolumns.h"

#include <algorithm>
#include <utility>

namespace projection
{

bool MirroredColumns::cover(int axis, int width, int height)
{
    return axis == 3 && width >= 2 && width <= longestAngleTable && width % 2 == 0 && height >= 2 &&
           height <= longestAngleTable;
}

MirroredColumns::MirroredColumns(SphereRotation rotation)
    : m_rotation(std::move(rotation))
    , m_first(-(m_rotation.width() / 4))
    , m_count(2 * (m_rotation.width() / 4) + 1)
{
    const size_t size = size_t(m_count) + padding;
    m_cosines.resize(size);
    m_sines.resize(size);
    for (int pair = 0; pair < m_count; ++pair) {
        // A cosine at 90 degrees may be a hair below zero.
        const CosineSine lambda = m_rotation.column(column(pair));
        m_cosines[size_t(pair)] = std::max(static_cast<float>(lambda.cosine), 0.0F);
        m_sines[size_t(pair)] = static_cast<float>(lambda.sine);
    }
}

} // namespace projection
