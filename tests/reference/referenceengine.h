#pragma once

#include <QImage>

/// The reference engine: the formulas of docs/projection.md one after the other, one pixel at a time, shared with
/// nothing that it is compared with. Never make it faster. It handles no events and prints nothing.
namespace reference
{

/// How the photograph shows the globe, and how its pixels relate to those of the map.
struct Globe {
    int centerX = 0;           ///< disc centre, photograph pixels, any int
    int centerY = 0;           ///< disc centre, photograph pixels, downwards, any int
    int radius = 0;            ///< disc radius, photograph pixels, any int
    double distance = 100.0;   ///< viewpoint to globe centre, globe radii; 1 or less and NaN show nothing
    double ratioX = 2.0;       ///< map columns of 360 degrees per photograph column
    double ratioY = 2.0;       ///< map rows of 90 degrees per photograph row
    bool lensCorrected = true; ///< false: the perspective alone, up to the edge of the disc
};

/// Everything that one finished map depends on, apart from the photograph.
struct Conversion {
    int centerX = 0;
    int centerY = 0;
    int radius = 0;
    double distance = 100.0;
    int outputSizeX = 0;          ///< map width, pixels
    int outputSizeY = 0;          ///< map height, pixels
    double latitude = 0.0;        ///< degrees
    double longitude = 0.0;       ///< degrees
    double azimuth = 0.0;         ///< degrees
    bool azimuthHasCanvas = true; ///< false: the azimuth step has nothing to draw on and leaves an empty map
    bool lensCorrected = true;    ///< see Globe
};

/// Paints the visible cap of the globe into the upper half of the map.
/// @return the number of samples that lay above the top of the map
qint64 paintGlobe(const QImage &photograph, QImage &map, const Globe &globe);

/// Rotates the sphere by whole degrees. @param axis  2, 3, or anything else for the remaining one
void rotate(int axis, int angle, const QImage &source, QImage &map);

/// Shifts the columns by an angle in degrees, once round. @param map  transparent, as large as the source
void shift(double angle, const QImage &source, QImage &map);

/// The whole chain. @return null for a null photograph, for sizes of 0 or less, and where the azimuth step
/// has no canvas and no later step brings one
QImage convert(const QImage &photograph, const Conversion &conversion);

} // namespace reference
