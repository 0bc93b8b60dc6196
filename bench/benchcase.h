#pragma once

#include "convertimage.h"
#include "mapconversion.h"
#include "referenceengine.h"

#include <QImage>
#include <QRandomGenerator>

/// A photograph of 2048 x 2048 pixels and what is made of it: latitude 35, longitude 139.
class BenchCase
{
public:
    enum class Kind {
        Inside,  ///< opaque, the disc inside the photograph; every pixel's colour is its number
        Leaving, ///< the same, but the disc leaves the photograph to the right and below
        Alpha    ///< noise with every alpha, the disc inside
    };

    BenchCase(QSize mapSize, double azimuth, double distance, Kind kind = Kind::Inside)
        : photograph(kind == Kind::Alpha ? noise() : numbers()), m_kind(kind)
    {
        const bool leaving = kind == Kind::Leaving;
        parameters = {leaving ? 1400 : 1024,
                      leaving ? 1200 : 1024,
                      1003,
                      distance,
                      mapSize.width(),
                      mapSize.height(),
                      35,
                      139,
                      azimuth};
        name = QString("%1 x %2, azimuth %3, distance %4%5")
                   .arg(mapSize.width())
                   .arg(mapSize.height())
                   .arg(azimuth)
                   .arg(distance)
                   .arg(leaving               ? ", disc leaving"
                        : kind == Kind::Alpha ? ", with alpha"
                                              : "");
    }

    bool isNumbered() const { return m_kind != Kind::Alpha; }
    QSize mapSize() const { return {parameters.outputSizeX, parameters.outputSizeY}; }
    OutputRatio ratio() const { return outputRatio(photograph.size(), mapSize()); }

    ConvertImage engine() const { return ConvertImage(perspectiveParameters(parameters, photograph.size())); }
    reference::Globe globe() const
    {
        const MapParameters &p = parameters;
        return {p.centerX, p.centerY, p.radius, p.distance, ratio().x, ratio().y};
    }
    QImage referenceMap() const
    {
        const MapParameters &p = parameters;
        return reference::convert(photograph, {p.centerX, p.centerY, p.radius, p.distance, p.outputSizeX,
                                               p.outputSizeY, p.latitude, p.longitude, p.azimuth, true});
    }

    QString name;
    QImage photograph;
    MapParameters parameters;

private:
    static constexpr int side = 2048;

    static QImage numbers()
    {
        QImage image(side, side, QImage::Format_RGB32);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                reinterpret_cast<quint32 *>(image.scanLine(y))[x] = 0xff000000U | quint32(y * side + x);
        return image;
    }
    static QImage noise()
    {
        QImage image(side, side, QImage::Format_ARGB32);
        QRandomGenerator random(20); // any seed will do
        for (int y = 0; y < side; ++y)
            random.fillRange(reinterpret_cast<quint32 *>(image.scanLine(y)), side);
        return image;
    }

    Kind m_kind;
};
