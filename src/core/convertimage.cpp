#include "convertimage.h"

#include "discsampler.h"
#include "qimageview.h"
#include "rotatedmap.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#include <utility>

using namespace projection;

namespace
{

/// Copies one pixel if both ends exist; a sample outside its image leaves the map as it is.
void copyPixel(const QImage &src, qint64 sx, qint64 sy, QImage &dst, int x, int y)
{
    if (sx >= 0 && sx < src.width() && sy >= 0 && sy < src.height() && dst.valid(x, y))
        dst.setPixelColor(x, y, src.pixelColor(int(sx), int(sy)));
}

/// Paints one row of the projection step. The pixels are looked up anew for each row: an event in between may
/// have made somebody share them.
/// @param directions  of all columns, or none if there are too many
void paintRow(const NearSidedPerspective &perspective, const QImage &src,
              const std::vector<CosineSine> &directions, double rho, QImage &dst, int y)
{
    const bool straight = src.format() == QImage::Format_ARGB32 || src.format() == QImage::Format_RGB32;
    if (straight && dst.format() == QImage::Format_ARGB32_Premultiplied && !directions.empty()) {
        auto *line = reinterpret_cast<uint32_t *>(dst.scanLine(y));
        paintMapRow(perspective.parameters(), photographView(src), directions, rho, line);
        return;
    }
    for (int x = 0; x < dst.width(); ++x) {
        const SamplePosition sample =
            sampleAnywhere(perspective.parameters(), perspective.direction(x, dst.width()), rho);
        copyPixel(src, sample.x, sample.y, dst, x, y);
    }
}

} // namespace

ConvertImage::ConvertImage(const projection::PerspectiveParameters &parameters, ConversionListener listener)
    : m_parameters(parameters), m_listener(std::move(listener))
{
}

void ConvertImage::setCenter(int x, int y)
{
    m_parameters.centerX = x;
    m_parameters.centerY = y;
}

void ConvertImage::setRadius(int r)
{
    m_parameters.radius = r;
}

void ConvertImage::setDistance(double d)
{
    m_parameters.distance = d;
}

void ConvertImage::setOutputRatio(double rx, double ry)
{
    m_parameters.ratioX = rx;
    m_parameters.ratioY = ry;
}

void ConvertImage::setLens(Lens lens)
{
    m_parameters.lens = lens;
}

void ConvertImage::convertImage(QImage &src, QImage &dst)
{
    PerspectiveParameters parameters = m_parameters;
    parameters.photographWidth = src.width();
    parameters.photographHeight = src.height();
    const NearSidedPerspective perspective(parameters);
    const std::vector<CosineSine> directions = perspective.directions(dst.width());
    const int half = dst.height() / 2;
    qint64 errors = 0;
    for (qint64 k = perspective.edgeRow(); perspective.hasRow(k); ++k) {
        const double rho = perspective.radius(k);
        if (half <= k)
            errors += countRowSamples(perspective, rho, dst.width());
        else if (half - 1 - k < dst.height())
            paintRow(perspective, src, directions, rho, dst, int(half - 1 - k));
        if (m_listener.rowDone)
            m_listener.rowDone();
    }
    if (m_listener.samplesCounted)
        m_listener.samplesCounted(errors);
}

void ConvertImage::rotateImage(int axis, int angle, QImage &src, QImage &dst)
{
    const int width = src.width();
    const int height = src.height();
    if (height <= 0)
        return;
    const SphereRotation rotation(axis, angle, width, height);
    const bool premultiplied =
        src.format() == QImage::Format_ARGB32_Premultiplied && src.format() == dst.format();
    if (premultiplied && dst.width() >= width && dst.height() >= height && &src != &dst) {
        paintRotatedMap(rotation, mapView(src), canvasView(dst));
        return;
    }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const MapPosition source = rotation.source(x, y);
            copyPixel(src, source.column, source.row, dst, x, y);
        }
}

void ConvertImage::moveImage(double angle, QImage &src, QImage &dst)
{
    if (dst.isNull())
        return;
    const int width = src.width();
    const int height = src.height();
    QPainter painter(&dst);
    const qint64 shift = columnShift(angle, width);
    // Two widths or more put both parts beyond the edges, at coordinates that a painter need not bear.
    if (shift == 0 || qAbs(shift) >= 2 * qint64(width))
        return;
    const auto draw = [&](qint64 x, qint64 firstColumn, qint64 columns) {
        painter.drawImage(int(x), 0, src, int(firstColumn), 0, int(columns), height);
    };
    if (shift > 0) {
        draw(shift, 0, width - shift);
        draw(0, width - shift, shift);
    } else {
        draw(0, -shift, width + shift);
        draw(width + shift, 0, -shift);
    }
}
