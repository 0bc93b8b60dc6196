#pragma once

#include "disccircle.h"
#include "limbmodel.h"

#include <cstddef>
#include <vector>

/// Where profiles read their light from.
class LimbSource
{
public:
    virtual ~LimbSource() = default;
    /// At least 2 pixels.
    virtual int width() const = 0;
    virtual int height() const = 0;
    /// The light of a pixel inside.
    virtual float at(int x, int y) = 0;
};

/// How finely the blur is searched: a coarse search takes half the time, to compare circles with each other.
enum class LimbEffort { Coarse, Fine };

/// A sixtieth of a circle's line: the mean profile across it, and what limbs at all offsets leave of it. Offsets
/// are steps of the profile, outward.
struct LimbSector {
    std::size_t number = 0; ///< 0 .. 59, clockwise from the right
    DiscDirection direction{};
    LimbProfile profile{};
    LimbRest rest{};
    float least = 0.0F;   ///< the smallest rest
    float without = 0.0F; ///< the rest without a limb
    double own = 0.0;     ///< where this sector alone would have its limb
    double weight = 1.0;  ///< of its word on where the circle lies

    /// How much worse a limb at this offset explains the profile than the best one does: a difference of
    /// chi-squares for that many independent samples.
    double cost(double offset, double samples) const;
    /// How much better the best limb explains it than none, likewise.
    double gain(double samples) const;
    /// The light inside minus that outside of a limb at this offset, means over this share of the profile on
    /// either side; and the light outside.
    double contrast(double offset, double depth, double &sky) const;
};

constexpr std::size_t limbSectorCount = 60;

/// The sectors of a circle's line that lie inside the frame, and how they were read.
struct LimbSectors {
    std::vector<LimbSector> sectors;
    double step = 1.0;    ///< between the samples, pixels of the source
    double samples = 8.0; ///< of a profile that are independent of each other
    double blur = 0.0;    ///< standard deviation of the blur that explains the sectors best, steps
};

/// Reads the profiles across a circle, this far to either side of it (pixels of the source, more than 0).
LimbSectors readSectors(LimbSource &source, const DiscCircle &circle, double halfWidth, LimbEffort effort);
