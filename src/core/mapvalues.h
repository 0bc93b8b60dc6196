#pragma once

#include <limits>

/// One value of a map as people set it: its key in the settings file, its default, and the closed range that
/// may be entered. A settings file is not bound to the range: see there.
template <typename T>
struct MapValue {
    const char *key;
    T defaultValue;
    T lowest;
    T highest;

    /// Also false for NaN, which no comparison holds for.
    constexpr bool allows(double value) const { return value >= lowest && value <= highest; }
};

/// All of them; what they mean: MapParameters.
namespace mapvalues
{

constexpr int anyLowest = std::numeric_limits<int>::min();
constexpr int anyHighest = std::numeric_limits<int>::max();

inline constexpr MapValue<int> centerX = {"CenterX", 0, anyLowest, anyHighest};
inline constexpr MapValue<int> centerY = {"CenterY", 0, anyLowest, anyHighest};
inline constexpr MapValue<int> radius = {"Radius", 0, anyLowest, anyHighest};
inline constexpr MapValue<double> distance = {"Distance", 100.0, 1.0, 100.0};
inline constexpr MapValue<int> outputSizeX = {"OutputSizeX", 2048, 1024, 8192};
inline constexpr MapValue<int> outputSizeY = {"OutputSizeY", 1024, 1024, 8192};
inline constexpr MapValue<int> format = {"OutputFormat", 0, 0, 1};
inline constexpr MapValue<int> quality = {"OutputQuality", 85, 1, 100};
inline constexpr MapValue<double> latitude = {"Latitude", 0.0, -90.0, 90.0};
inline constexpr MapValue<double> longitude = {"Longitude", 0.0, -180.0, 180.0};
inline constexpr MapValue<double> azimuth = {"Azimuth", 0.0, 0.0, 360.0};

} // namespace mapvalues
