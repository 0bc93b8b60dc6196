#include "mapconversion.h"

#include "convertimage.h"
#include "truncation.h"

namespace
{

QImage transparentCanvas(QSize size)
{
    QImage canvas(size, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    return canvas;
}

} // namespace

OutputRatio outputRatio(QSize photographSize, QSize outputSize)
{
    return {static_cast<double>(outputSize.width()) / photographSize.width(),
            outputSize.height() * 0.5 / photographSize.height()};
}

QImage convertToMap(const QImage &photograph, MapParameters parameters, AzimuthCanvas azimuthCanvas)
{
    if (photograph.isNull())
        return {};
    const QSize size(parameters.outputSizeX, parameters.outputSizeY);
    QImage source = photograph.convertToFormat(QImage::Format_ARGB32);
    QImage map = transparentCanvas(size);
    if (source.isNull() || map.isNull())
        return {};

    const OutputRatio ratio = outputRatio(source.size(), size);
    ConvertImage engine;
    engine.setCenter(parameters.centerX, parameters.centerY);
    engine.setRadius(parameters.radius);
    engine.setDistance(parameters.distance);
    engine.setOutputRatio(ratio.x, ratio.y);
    engine.convertImage(source, map);

    if (parameters.azimuth != 0.0) {
        QImage turned;
        if (azimuthCanvas == AzimuthCanvas::Transparent) {
            turned = transparentCanvas(size);
            if (turned.isNull())
                return {};
        }
        engine.moveImage(-parameters.azimuth, map, turned);
        map = turned;
    }
    // Whether the step runs depends on the exact latitude, how far it turns only on whole degrees.
    if (90 - parameters.latitude != 0.0) {
        QImage tilted = transparentCanvas(size);
        if (tilted.isNull())
            return {};
        engine.rotateImage(3, truncated(90 - parameters.latitude), map, tilted);
        map = tilted;
    }
    if (parameters.longitude + 90 != 0.0) {
        QImage centred = transparentCanvas(size);
        if (centred.isNull())
            return {};
        engine.moveImage(parameters.longitude + 90, map, centred);
        map = centred;
    }
    return map;
}
