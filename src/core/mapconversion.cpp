#include "mapconversion.h"

#include "canvaspages.h"
#include "composedmap.h"
#include "convertimage.h"
#include "integers.h"
#include "qimageview.h"
#include "vectorstate.h"

#include <cstdlib>
#include <limits>
#include <optional>

OutputRatio outputRatio(QSize photographSize, QSize outputSize)
{
    return {static_cast<double>(outputSize.width()) / photographSize.width(),
            outputSize.height() * 0.5 / photographSize.height()};
}

projection::PerspectiveParameters perspectiveParameters(const MapParameters &parameters, QSize photographSize)
{
    const OutputRatio ratio = outputRatio(photographSize, {parameters.outputSizeX, parameters.outputSizeY});
    projection::PerspectiveParameters result;
    result.centerX = parameters.centerX;
    result.centerY = parameters.centerY;
    result.radius = parameters.radius;
    result.distance = parameters.distance;
    result.ratioX = ratio.x;
    result.ratioY = ratio.y;
    result.photographWidth = photographSize.width();
    result.photographHeight = photographSize.height();
    result.lens = parameters.lens;
    return result;
}

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

/// The number of columns that a rotation by this angle moves the map, as the operations do it; nothing where
/// they draw an empty or an incomplete map.
std::optional<int> cyclicShift(double angleDeg, int width)
{
    if (angleDeg == 0.0)
        return 0;
    const int shift = projection::columnShift(angleDeg, width);
    if (shift == 0 || shift > width || shift < -width)
        return {};
    return shift < 0 ? shift + width : shift % width;
}

/// How the chain rotates its map; nothing where only the operations do it right.
std::optional<projection::MapRotation> composedRotation(const MapParameters &parameters)
{
    const std::optional<int> azimuthShift = cyclicShift(-parameters.azimuth, parameters.outputSizeX);
    const std::optional<int> longitudeShift = cyclicShift(parameters.longitude + 90, parameters.outputSizeX);
    if (!azimuthShift || !longitudeShift || 90 - parameters.latitude == 0.0)
        return {};
    return projection::MapRotation{*azimuthShift, projection::truncateToInt(90 - parameters.latitude),
                                   *longitudeShift};
}

/// The whole chain in one pass. The listener hears between the rows of the map of as many rows as the projection
/// step would have.
/// @return nothing where this way does not cover the parameters; a null image when there is no memory
std::optional<QImage> composedMap(const QImage &photograph, const MapParameters &parameters,
                                  const ConversionListener &listener)
{
    const std::optional<projection::MapRotation> rotation = composedRotation(parameters);
    if (!rotation)
        return {};
    QImage map = transparentCanvas({parameters.outputSizeX, parameters.outputSizeY});
    if (map.isNull())
        return map;
    int told = 0;
    const auto tellRows = [&](int projectedRows) {
        for (; listener.rowDone && told < projectedRows; ++told)
            listener.rowDone();
    };
    const projection::NearSidedPerspective perspective(perspectiveParameters(parameters, photograph.size()));
    const CanvasPages pages(size_t(map.sizeInBytes()));
    projection::PaintListener painting;
    painting.rowsDone = tellRows;
    if (pages.isLarge()) {
        painting.mapBegins = [&](const projection::PixelRanges &pixels) { pages.mapBegins(pixels); };
        painting.bandBegins = [&](const projection::PixelRanges &pixels) { pages.bandBegins(pixels); };
    }
    if (!paintComposedMap(perspective, photographView(photograph), *rotation, canvasView(map), painting))
        return {};
    if (listener.samplesCounted)
        listener.samplesCounted(0); // no row of the chain lies above its map
    return map;
}

/// The whole chain, one operation after the other: right for everything.
QImage chainedMap(QImage source, const MapParameters &parameters, AzimuthStep azimuthStep,
                  const ConversionListener &listener)
{
    const QSize size(parameters.outputSizeX, parameters.outputSizeY);
    QImage map = transparentCanvas(size);
    if (map.isNull())
        return {};
    ConvertImage engine(perspectiveParameters(parameters, source.size()), listener);
    engine.convertImage(source, map);

    if (parameters.azimuth != 0.0) {
        QImage rotated;
        if (azimuthStep == AzimuthStep::Rotates) {
            rotated = transparentCanvas(size);
            if (rotated.isNull())
                return {};
        }
        engine.moveImage(-parameters.azimuth, map, rotated);
        map = rotated;
    }
    // Whether the step runs depends on the exact latitude, how far it rotates only on whole degrees.
    if (90 - parameters.latitude != 0.0) {
        QImage tilted = transparentCanvas(size);
        if (tilted.isNull())
            return {};
        engine.rotateImage(3, projection::truncateToInt(90 - parameters.latitude), map, tilted);
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

} // namespace

QImage convertToMap(const QImage &photograph, MapParameters parameters, AzimuthStep azimuthStep,
                    const ConversionListener &listener)
{
    if (photograph.isNull())
        return {};
    const QImage source = argbPhotograph(photograph);
    if (source.isNull())
        return {};
    projection::clearUpperHalves();
    if (parameters.azimuth == 0.0 || azimuthStep == AzimuthStep::Rotates) {
        if (const std::optional<QImage> map = composedMap(source, parameters, listener))
            return *map;
    }
    return chainedMap(source, parameters, azimuthStep, listener);
}
