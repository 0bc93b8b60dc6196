#include "convertimage.h"

#include "truncation.h"

#include <QColor>
#include <QCoreApplication>
#include <QDebug>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <limits>

namespace
{

/// The lens compression near the disc edge: radii beyond the breakpoints are drawn inwards.
struct RadialCorrection {
    explicit RadialCorrection(double tangentToPixels)
        : begin(0.1 * tangentToPixels)
        , end(0.114 * tangentToPixels)
        , offset((end - begin) * 0.09999999999999998) // 1 - 0.9 as a double computes it
    {
    }

    double operator()(double rho) const
    {
        if (rho < begin)
            return rho;
        if (rho < end)
            return (rho - begin) * 0.9 + begin;
        return rho - offset;
    }

    double begin;
    double end;
    double offset;
};

/// Copies one pixel if both ends exist; a sample outside its image leaves the map as it is.
void copyPixel(const QImage &src, int sx, int sy, QImage &dst, int x, int y)
{
    if (src.valid(sx, sy) && dst.valid(x, y))
        dst.setPixelColor(x, y, src.pixelColor(sx, sy));
}

} // namespace

void ConvertImage::setCenter(int x, int y)
{
    centerX = x;
    centerY = y;
}

void ConvertImage::setRadius(int r)
{
    radius = r;
}

void ConvertImage::setDistance(double d)
{
    distance = d;
}

void ConvertImage::setOutputRatio(double rx, double ry)
{
    ratioX = rx;
    ratioY = ry;
}

void ConvertImage::convertImage(QImage &src, QImage &dst)
{
    const int sourceWidth = src.width();
    const int sourceHeight = src.height();
    const int width = dst.width();
    const int half = dst.height() / 2;
    const double rad = pi / 180;

    const double alpha = std::asin(1 / distance); // apparent angular radius of the globe
    const double alphaDeg = alpha * 180 / pi;
    const double edgeRows = alphaDeg / (90.0 / sourceHeight) * ratioY;
    const double tangentToPixels = radius / std::tan(alpha);
    const RadialCorrection corrected(tangentToPixels);

    const int marginRows = low16(truncated(margin * (ratioY * sourceHeight)));
    const double firstRow = marginRows + edgeRows;
    // From the surface, from inside and from behind nothing is seen, whatever the arc sine makes of it. A
    // first row that is no number, or beyond every number of a row, lies beyond the last one.
    const bool anyRow = distance > 1 && std::abs(firstRow) <= std::numeric_limits<int>::max();
    qint64 errors = 0;
    for (qint64 k = anyRow ? truncated(firstRow) : 0;
         anyRow && k < std::numeric_limits<int>::max() && ratioY * sourceHeight - 1 >= static_cast<double>(k);
         ++k) {
        const double rows = ratioY * sourceHeight;
        const double phi = (90 - static_cast<double>(k) * 90 / rows) * rad;
        const double tangent = std::tan(std::atan(std::sin(phi) / (distance - std::cos(phi))));
        const double rho = corrected(tangent * tangentToPixels);
        const double columns = ratioX * sourceWidth;
        for (int x = width - 1; x >= 0; --x) {
            const int c = width - 1 - x;
            const double lambda = (c * 360.0 / columns + (-180)) * rad;
            const qint64 sx = qint64(low16(truncated(std::cos(lambda) * rho))) + centerX;
            if (sx < 0 || sx > sourceWidth)
                continue;
            const qint64 sy = qint64(low16(truncated(std::sin(lambda) * rho))) + centerY;
            if (sy < 0 || sy >= sourceHeight)
                continue;
            if (half > k)
                copyPixel(src, int(sx), int(sy), dst, x, int(half - 1 - k));
            else
                ++errors;
        }
        QCoreApplication::processEvents();
    }
    qDebug() << "Convert error " << errors;
}

void ConvertImage::rotateImage(int axis, int angle, QImage &src, QImage &dst)
{
    const int width = src.width();
    const int height = src.height();
    if (height <= 0)
        return;
    const double rad = pi / 180;
    const double a = angle * rad;
    const double sa = std::sin(a);
    const double ca = std::cos(a);
    for (int y = 0; y < height; ++y) {
        const double theta = (y * 180.0 / height + (-90)) * rad;
        for (int x = 0; x < width; ++x) {
            const double lambda = x * 360.0 / width * rad;
            const double X = std::cos(lambda) * std::cos(theta);
            const double Y = std::sin(lambda) * std::cos(theta);
            const double Z = std::sin(theta);
            double turnedX = X;
            double turnedY = Y;
            double turnedZ = Z;
            if (axis == 2) {
                turnedX = ca * X + sa * Y;
                turnedY = ca * Y - sa * X;
            } else if (axis == 3) {
                turnedY = ca * Y + sa * Z;
                turnedZ = ca * Z - sa * Y;
            } else {
                turnedX = ca * X + sa * Z;
                turnedZ = ca * Z - sa * X;
            }
            double longitude = std::atan(turnedY / turnedX) / rad;
            if (turnedX < 0)
                longitude += 180;
            if (longitude < 0)
                longitude += 360;
            if (longitude > 360)
                longitude -= 360;
            const double colatitude =
                std::atan(turnedZ / std::sqrt(turnedX * turnedX + turnedY * turnedY)) / rad + 90;
            // A direction on the axis has no longitude: NaN, which truncates to a column outside the map.
            copyPixel(src, truncated(longitude * (width - 1) / 360),
                      truncated(colatitude * (height - 1) / 180), dst, x, y);
        }
    }
}

void ConvertImage::moveImage(double angle, QImage &src, QImage &dst)
{
    if (dst.isNull())
        return;
    const int width = src.width();
    const int height = src.height();
    QPainter painter(&dst);
    if (angle > 360)
        angle -= 360;
    if (angle < -360)
        angle += 360;
    const qint64 shift = truncated(static_cast<double>(width) / 360 * angle);
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
