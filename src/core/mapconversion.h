#pragma once

#include "conversionlistener.h"
#include "nearsidedperspective.h"

#include <QImage>

/// Everything that turns a photograph into a finished map. Any value is allowed; none is clamped.
struct MapParameters {
    int centerX = 0;         ///< disc centre, photograph pixels
    int centerY = 0;         ///< disc centre, photograph pixels, downwards
    int radius = 0;          ///< disc radius, photograph pixels
    double distance = 100.0; ///< viewpoint to globe centre, globe radii
    int outputSizeX = 2048;  ///< map width, pixels
    int outputSizeY = 1024;  ///< map height, pixels
    double latitude = 0.0;   ///< centre of the finished map, degrees; used in whole degrees, truncated
    double longitude = 0.0;  ///< centre of the finished map, degrees
    double azimuth = 0.0;    ///< rotation about the disc centre, degrees
    projection::Lens lens = projection::Lens::Corrected;
};

/// What the azimuth step does with a map when the azimuth is not 0.
enum class AzimuthStep {
    Rotates,    ///< it rotates the map about the disc centre
    EmptiesMap, ///< it leaves nothing of the map, as it always was in a batch run
};

/// Map columns per photograph column, and map rows of one hemisphere per photograph row.
struct OutputRatio {
    double x = 0.0;
    double y = 0.0;
};

/// @param photographSize  at least 1 x 1
OutputRatio outputRatio(QSize photographSize, QSize outputSize);

/// The parameters of the projection step: where the disc lies, and the output ratios of the sizes.
/// @param photographSize  at least 1 x 1
projection::PerspectiveParameters perspectiveParameters(const MapParameters &parameters,
                                                        QSize photographSize);

/// The whole chain: globe to map, azimuth, latitude, longitude. Reads nothing but its own copies of its
/// arguments, so whatever an event that the listener handles changes does no harm. Any number of threads may
/// convert at the same time, with listeners that bear it.
/// @param photograph  any format; null gives a null map; not read any more once the listener is called
/// @param parameters  any values; an azimuth or a longitude that is no number leaves the map blank
/// @return a map of the output size, premultiplied 32 bits, transparent where nothing was painted; null
///         when a canvas cannot be allocated (also for sizes of 0 or less), or when the azimuth step emptied the map
///         and no later step brings a canvas
QImage convertToMap(const QImage &photograph, MapParameters parameters,
                    AzimuthStep azimuthStep = AzimuthStep::Rotates,
                    const ConversionListener &listener = windowListener());
