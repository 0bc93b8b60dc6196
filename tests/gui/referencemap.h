#pragma once

#include "referenceengine.h"
#include "testwindow.h"

#include <QImage>
#include <QLabel>

/// A photograph in which every pixel has a colour of its own, so that no wrong sample goes unnoticed.
inline QImage colourfulPhotograph(QSize size = {96, 72})
{
    QImage photograph(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            photograph.setPixel(x, y, qRgb(2 * x % 256, 3 * y % 256, (x * 7 + y * 13) % 256));
    }
    return photograph;
}

/// The map that the slow engine makes of a window's photograph with the window's values.
inline QImage referenceMap(const TestWindow &window)
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
    return reference::convert(window.image, conversion);
}
