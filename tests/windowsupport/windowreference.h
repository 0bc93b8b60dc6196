#pragma once

#include "referencemap.h"
#include "testwindow.h"

/// What a window makes a map with.
inline MapParameters mapParametersOf(const TestWindow &window)
{
    return {window.centerX,     window.centerY,  window.radius,    window.distance, window.outputSizeX,
            window.outputSizeY, window.latitude, window.longitude, window.azimuth};
}

/// The map that the reference engine makes of a window's photograph.
inline QImage referenceMap(const TestWindow &window)
{
    return referenceMap(window.image, mapParametersOf(window));
}
