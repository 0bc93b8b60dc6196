#pragma once

#include "mapconversion.h"
#include "referenceengine.h"

#include <QPoint>
#include <QSize>

/// A disc in a photograph.
struct Disc {
    QPoint center;           ///< photograph pixels
    int radius = 0;          ///< photograph pixels
    double distance = 100.0; ///< viewpoint to globe centre, globe radii
};

/// How the finished map is turned, degrees.
struct View {
    double latitude = 0.0;
    double longitude = 0.0;
    double azimuth = 0.0;
};

inline MapParameters mapParameters(const Disc &disc, QSize map, const View &view = {})
{
    MapParameters parameters;
    parameters.centerX = disc.center.x();
    parameters.centerY = disc.center.y();
    parameters.radius = disc.radius;
    parameters.distance = disc.distance;
    parameters.outputSizeX = map.width();
    parameters.outputSizeY = map.height();
    parameters.latitude = view.latitude;
    parameters.longitude = view.longitude;
    parameters.azimuth = view.azimuth;
    return parameters;
}

/// The map that the reference engine makes of a photograph.
inline QImage referenceMap(const QImage &photograph, const MapParameters &parameters,
                           AzimuthStep azimuthStep = AzimuthStep::Rotates)
{
    reference::Conversion conversion;
    conversion.centerX = parameters.centerX;
    conversion.centerY = parameters.centerY;
    conversion.radius = parameters.radius;
    conversion.distance = parameters.distance;
    conversion.outputSizeX = parameters.outputSizeX;
    conversion.outputSizeY = parameters.outputSizeY;
    conversion.latitude = parameters.latitude;
    conversion.longitude = parameters.longitude;
    conversion.azimuth = parameters.azimuth;
    conversion.azimuthHasCanvas = azimuthStep == AzimuthStep::Rotates;
    conversion.lensCorrected = parameters.lens == projection::Lens::Corrected;
    return reference::convert(photograph, conversion);
}
