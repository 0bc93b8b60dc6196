#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// A profile across a limb: samples at equal steps, from inside the disc (first) to the sky (last), the middle
/// one half a step before the position 0.
constexpr std::size_t profileSamples = 40;
using LimbProfile = std::array<float, profileSamples>;

/// Offsets of the limb from position 0 that are tried: half a step apart, the middle one is 0.
constexpr std::size_t limbOffsets = 49;

/// What is left of a profile, as a sum of squares, when the best limb at each of the offsets is taken away.
using LimbRest = std::array<float, limbOffsets>;

/// The limb of a globe as a profile shows it: a sky that may slope; at the offset a step, and inside it a light
/// that grows as the globe turns towards the viewer (with the cosine mu, which leaves the limb upright, so that
/// a darkened limb is not mistaken for one further in) and with the depth (texture); all of it blurred.
///
///     light |        ______-----   inside: step + a mu + b depth
///           |       /
///           |  ____/               sky: 1 + c position
///           +-------|-----------
///                offset
///
/// Every shape is a polynomial or a square root of one, so that the bits are the same everywhere.
class LimbModel
{
public:
    /// @param radius  of the disc, in steps of the profile
    /// @param blur    standard deviation of the blur, in steps
    LimbModel(double radius, double blur);

    /// @param calm  a profile from which level and slope were taken away (calmed())
    LimbRest rest(const LimbProfile &calm) const;

private:
    using Shape = LimbProfile;
    struct Limb {
        std::array<Shape, 3> shapes; ///< at right angles to each other and to level and slope, of length 1
    };
    std::vector<Limb> m_limbs; ///< one for each offset
};

/// A profile without its level and slope.
LimbProfile calmed(const LimbProfile &profile);

/// What is left of a calmed profile when a parabola is taken away too: no limb at all.
float restWithoutLimb(const LimbProfile &calm);

float sumOfSquares(const LimbProfile &profile);
