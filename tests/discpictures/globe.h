#pragma once

#include "lightplane.h"

#include <array>
#include <cstdint>
#include <vector>

class Draws;

/// Smooth random values in space, the same for the same seed: clouds, continents, mottled ground.
class Cloudiness
{
public:
    explicit Cloudiness(Draws &draws);
    /// About -1 .. 1, mean near 0. Each octave has double the frequency and half the height of the last.
    double at(double x, double y, double z, int octaves) const;

private:
    double lattice(double x, double y, double z) const;

    static constexpr int side = 32;
    std::vector<float> m_values;
};

/// What covers a globe.
enum class Surface { Plain, Mottled, Continents, Bands, Craters };

/// How a globe throws light back.
enum class Shading {
    Darkening, ///< 1 - u (1 - mu): a disc that shines by itself or is seen from the sun
    Lambert,   ///< the cosine of the sun's height, to a power
    LunarDust, ///< mu0 / (mu0 + mu): flat when full
    Minnaert,  ///< mu0^k mu^(k - 1)
};

/// A globe as a disc in a picture, drawn from afar so that its limb is a circle.
struct Globe {
    double centerX = 0.0; ///< picture pixels, the corner of the first one is 0
    double centerY = 0.0;
    double radius = 1.0;
    double phaseDeg = 0.0;    ///< the angle between the sun and the viewer: 0 is full, 90 half
    double sunAngleDeg = 0.0; ///< where in the picture the sun stands, clockwise from the right
    Surface surface = Surface::Plain;
    Shading shading = Shading::Darkening;
    double darkening = 0.5;    ///< u, or the power, of the shading
    double brightness = 200.0; ///< of the middle of a full disc
    double gamma = 1.0;        ///< the camera shows light to the power of this
    double nightLight = 0.0;   ///< share of the brightness that the dark side keeps
    double texture = 0.5;      ///< 0 none .. 1 strong
    double limbGlow = 0.0;     ///< a rim that is brighter than the rest by this share
    Light color = {1.0F, 1.0F, 1.0F};
    Light second = {0.6F, 0.6F, 0.6F};
};

/// Draws a globe onto a picture, with partly covered pixels at its limb.
class GlobePainter
{
public:
    GlobePainter(const Globe &globe, Draws &draws);
    /// @param halo      the brightness of a glow around the limb, 0 none
    /// @param haloDepth how far it reaches, in radii (it falls to 1/e)
    void paint(LightPlane &plane, double halo, double haloDepth) const;
    /// The light of the point at these coordinates in radii from the centre, inside the disc.
    Light lightAt(double x, double y) const;

private:
    double shade(double x, double y, double z) const;
    Light ground(double x, double y, double z) const;
    Light cratered(double x, double y, double z) const;
    double coverage(int column, int row) const;

    struct Crater {
        std::array<double, 3> middle;
        double cosine;
        double depth;
    };

    Globe m_globe;
    std::array<double, 3> m_sun;
    std::array<double, 3> m_pole;
    Cloudiness m_clouds;
    std::vector<Crater> m_craters;
    double m_frequency;
    double m_cover;
};
