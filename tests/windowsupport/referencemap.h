#pragma once

#include "referenceengine.h"
#include "testwindow.h"

#include <QImage>

/// The map that the reference engine makes of a photograph with a window's values.
inline QImage referenceMap(const TestWindow &window, const QImage &photograph)
{
    reference::Conversion conversion;
    conversion.centerX = window.centerX;
    conversion.centerY = window.centerY;
    conversion.radius = window.radius;
    conversion.distance = window.distance;
    conversion.outputSizeX = window.outputSizeX;
    conversion.outputSizeY = window.outputSizeY;
    conversion.latitude = window.latitude;
    conversion.longitude = window.longitude;
    conversion.azimuth = window.azimuth;
    return reference::convert(photograph, conversion);
}

/// The same of the window's own photograph.
inline QImage referenceMap(const TestWindow &window)
{
    return referenceMap(window, window.image);
}
