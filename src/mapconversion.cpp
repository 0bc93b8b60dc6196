#include "mapconversion.h"

#include "composedmap.h"
#include "convertimage.h"
#include "imagepixels.h"
#include "truncation.h"

#include <QCoreApplication>
#include <QDebug>

#include <cstdlib>
#include <limits>
#include <optional>

namespace
{

/// From calloc, so that rows which nothing is painted in cost no time and no memory.
QImage transparentCanvas(QSize size)
{
    constexpr qint64 bytesPerPixel = 4;
    const qint64 bytesPerLine = size.width() * bytesPerPixel;
    if (size.isEmpty() || bytesPerLine > std::numeric_limits<int>::max())
        return {};
    void *pixels = std::calloc(size_t(size.height()), size_t(bytesPerLine));
    if (!pixels)
        return {};
    return {static_cast<uchar *>(pixels),        size.width(), size.height(), int(bytesPerLine),
            QImage::Format_ARGB32_Premultiplied, std::free,    pixels};
}

/// The photograph with straight 32-bit colours, as it is if it has them.
QImage argbPhotograph(const QImage &photograph)
{
    if (photograph.format() == QImage::Format_ARGB32)
        return photograph;
    return photograph.convertToFormat(photograph.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                   : QImage::Format_RGB32);
}

/// The number of columns that a turn by this angle moves the map, as the operations do it; nothing where they
/// draw an empty or an incomplete map.
std::optional<int> cyclicShift(double angleDeg, int width)
{
    if (angleDeg == 0.0)
        return 0;
    const int shift = columnShift(angleDeg, width);
    if (shift == 0 || shift > width || shift < -width)
        return {};
    return shift < 0 ? shift + width : shift % width;
}

/// Handles events as often as the globe stage has rows, spread evenly over the rows of the finished map.
class EventHandling
{
public:
    EventHandling(const GlobeKernel &globe, int height) : m_height(height)
    {
        for (qint64 k = globe.firstRow(); globe.hasRow(k) && k < height; ++k)
            ++m_globeRows;
    }

    void rowsDone(int rows)
    {
        for (; m_handled * m_height < rows * m_globeRows; ++m_handled)
            QCoreApplication::processEvents();
    }

private:
    qint64 m_height;
    qint64 m_globeRows = 0;
    qint64 m_handled = 0;
};

/// The whole chain in one pass.
/// @return null where the kernels do not cover it
QImage composedMap(const QImage &photograph, const MapParameters &parameters)
{
    const int width = parameters.outputSizeX;
    const int height = parameters.outputSizeY;
    const std::optional<int> azimuthShift = cyclicShift(-parameters.azimuth, width);
    const std::optional<int> longitudeShift = cyclicShift(parameters.longitude + 90, width);
    if (!azimuthShift || !longitudeShift || 90 - parameters.latitude == 0.0)
        return {};

    const OutputRatio ratio = outputRatio(photograph.size(), {width, height});
    GlobeView view;
    view.centerX = parameters.centerX;
    view.centerY = parameters.centerY;
    view.radius = parameters.radius;
    view.distance = parameters.distance;
    view.ratioX = ratio.x;
    view.ratioY = ratio.y;
    view.photographWidth = photograph.width();
    view.photographHeight = photograph.height();
    const GlobeKernel globe(view);

    const MapTurns turns = {*azimuthShift, truncated(90 - parameters.latitude), *longitudeShift};
    QImage map = transparentCanvas({width, height});
    if (map.isNull())
        return {};
    EventHandling events(globe, height);
    if (!paintComposedMap(globe, argbPixels(photograph), turns, width, height,
                          reinterpret_cast<uint32_t *>(map.bits()), map.bytesPerLine() / 4,
                          [&](int rows) { events.rowsDone(rows); }))
        return {};
    qDebug() << "Convert error " << qint64(0); // no row of the chain lies above its map
    return map;
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
    QImage source = argbPhotograph(photograph);
    if (source.isNull())
        return {};
    if (parameters.azimuth == 0.0 || azimuthCanvas == AzimuthCanvas::Transparent) {
        const QImage composed = composedMap(source, parameters);
        if (!composed.isNull())
            return composed;
    }
    source = source.convertToFormat(QImage::Format_ARGB32);
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
