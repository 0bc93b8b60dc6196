#pragma once

#include "sphererotation.h"

#include <vector>

namespace projection
{

/// The columns of a rotated map in pairs: column x and its mirror W/2 - x share Y and Z, only X changes its
/// sign, so that one approximation serves both.
class MirroredColumns
{
public:
    /// What a vector may read beyond the last cosine and sine, in floats.
    static constexpr int padding = 64;

    /// Whether a rotation has such pairs: about axis 3, even width, 2 .. 32767 pixels a side.
    static bool cover(int axis, int width, int height);

    explicit MirroredColumns(SphereRotation rotation);

    const SphereRotation &rotation() const { return m_rotation; }

    /// Number of column pairs; their longitudes rise from about -90 to 90 degrees.
    int count() const { return m_count; }
    /// The two map columns of a pair; 0 .. W - 1.
    int column(int pair) const { return wrapped(m_first + pair); }
    int mirroredColumn(int pair) const { return wrapped(m_rotation.width() / 2 - m_first - pair); }
    /// Of the longitudes of column(); the cosines are not negative. Readable for `padding` more.
    const float *cosines() const { return m_cosines.data(); }
    const float *sines() const { return m_sines.data(); }

private:
    int wrapped(int x) const
    {
        return x < 0 ? x + m_rotation.width() : x >= m_rotation.width() ? x - m_rotation.width() : x;
    }

    SphereRotation m_rotation;
    int m_first; ///< column of the first pair; negative: counted from the right
    int m_count;
    std::vector<float> m_cosines;
    std::vector<float> m_sines;
};

} // namespace projection
