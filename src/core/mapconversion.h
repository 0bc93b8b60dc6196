#pragma once

#include "conversionlistener.h"
#include "mapvalues.h"
#include "nearsidedview.h"

#include <QImage>

/// Everything that turns a photograph into a finished map. Any value is allowed; none is clamped.
struct MapParameters {
    /// Disc centre and radius, photograph pixels; y grows downwards.
    int centerX = mapvalues::centerX.defaultValue;
    int centerY = mapvalues::centerY.defaultValue;
    int radius = mapvalues::radius.defaultValue;
    /// Viewpoint to globe centre, globe radii.
    double distance = mapvalues::distance.defaultValue;
    /// Width and height of the map, pixels.
    int outputSizeX = mapvalues::outputSizeX.defaultValue;
    int outputSizeY = mapvalues::outputSizeY.defaultValue;
    /// Centre of the finished map, degrees; the latitude counts in whole degrees, truncated.
    double latitude = mapvalues::latitude.defaultValue;
    double longitude = mapvalues::longitude.defaultValue;
    /// Rotation about the disc centre, degrees.
    double azimuth = mapvalues::azimuth.defaultValue;
    projection::Lens lens = projection::Lens::Corrected;
};

/// What the azimuth step does with a map when the azimuth is not 0.
enum class AzimuthStep {
    Rotates,    ///< it rotates the map about the disc centre
    EmptiesMap, ///< it leaves nothing of the map: a batch run gives it no canvas
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
