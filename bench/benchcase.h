#pragma once

#include "convertimage.h"
#include "mapconversion.h"
#include "photographs.h"
#include "referenceengine.h"
#include "referencemap.h"

#include <QImage>

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
        const QPoint center = leaving ? QPoint(1400, 1200) : QPoint(1024, 1024);
        parameters = mapParameters({center, 1003, distance}, mapSize, {35, 139, azimuth});
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
    QImage expectedMap() const { return referenceMap(photograph, parameters); }

    QString name;
    QImage photograph;
    MapParameters parameters;

private:
    static constexpr int side = 2048;

    static QImage numbers() { return numberedPhotograph({side, side}); }
    static QImage noise()
    {
        Rng rng(20); // any seed will do
        return noisePhotograph(rng, {side, side}, Alpha::Random);
    }

    Kind m_kind;
};
