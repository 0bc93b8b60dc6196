#include "referenceengine.h"

#include <QColor>

#include <cmath>
#include <cstring>

namespace
{

constexpr double pi = 3.141592653589793;
constexpr double degree = pi / 180;
constexpr qint64 smallestInt = -2147483648LL;
constexpr qint64 largestInt = 2147483647LL;

/// Whether the integer part of a number is one of the 32-bit integers.
bool hasIntegerPart(double value)
{
    const double whole = std::trunc(value);
    return whole >= static_cast<double>(smallestInt) && whole <= static_cast<double>(largestInt);
}

/// The integer part; the smallest integer stands for everything that has none.
qint64 integerPart(double value)
{
    return hasIntegerPart(value) ? static_cast<qint64>(value) : smallestInt;
}

/// The integer from -32768 to 32767 that differs from this one by a multiple of 65536.
qint64 wrapped16(qint64 value)
{
    qint64 rest = value % 65536;
    if (rest >= 32768)
        rest -= 65536;
    if (rest < -32768)
        rest += 65536;
    return rest;
}

bool contains(const QImage &image, qint64 x, qint64 y)
{
    return x >= 0 && y >= 0 && x < image.width() && y < image.height();
}

void copyPixel(const QImage &source, qint64 sx, qint64 sy, QImage &map, qint64 x, qint64 y)
{
    if (!contains(source, sx, sy) || !contains(map, x, y))
        return;
    map.setPixelColor(static_cast<int>(x), static_cast<int>(y),
                      source.pixelColor(static_cast<int>(sx), static_cast<int>(sy)));
}

QImage transparentMap(int width, int height)
{
    QImage map(width, height, QImage::Format_ARGB32_Premultiplied);
    // Not filled by the toolkit, whose vector code makes every sine that follows slow on some processors.
    std::memset(map.bits(), 0, static_cast<std::size_t>(map.sizeInBytes()));
    return map;
}

} // namespace

qint64 reference::paintGlobe(const QImage &photograph, QImage &map, const Globe &globe)
{
    if (!(globe.distance > 1))
        return 0;

    const double sw = photograph.width();
    const double sh = photograph.height();
    const int dw = map.width();
    const int half = map.height() / 2;
    const double d = globe.distance;
    const double RY = globe.ratioY * sh;
    const double RX = globe.ratioX * sw;

    const double alpha = std::asin(1 / d);
    const double alphaDeg = alpha * 180 / pi;
    const double edgeRows = alphaDeg / (90 / sh) * globe.ratioY;
    const double K = globe.radius / std::tan(alpha);
    const double A = 0.1 * K;
    const double B = 0.114 * K;
    const double C = (B - A) * 0.09999999999999998;

    const double margin = 0.01;
    const double firstRow = static_cast<double>(wrapped16(integerPart(margin * RY))) + edgeRows;
    if (!hasIntegerPart(firstRow))
        return 0;

    qint64 errors = 0;
    for (qint64 k = integerPart(firstRow); RY - 1 >= static_cast<double>(k); ++k) {
        const double phi = (90 - static_cast<double>(k) * 90 / RY) * degree;
        const double t = std::tan(std::atan(std::sin(phi) / (d - std::cos(phi))));
        const double rho = t * K;
        double rho2 = 0;
        if (rho < A || !globe.lensCorrected)
            rho2 = rho;
        else if (rho < B)
            rho2 = (rho - A) * 0.9 + A;
        else
            rho2 = rho - C;

        int x = dw - 1;
        for (qint64 c = 0; c < dw; ++c, --x) {
            const double lambda = (static_cast<double>(c) * 360 / RX + (-180)) * degree;
            const qint64 sx = wrapped16(integerPart(std::cos(lambda) * rho2)) + globe.centerX;
            const qint64 sy = wrapped16(integerPart(std::sin(lambda) * rho2)) + globe.centerY;
            // One column more than there is passes here and is counted, but copies nothing.
            if (sx < 0 || static_cast<double>(sx) > sw)
                continue;
            if (sy < 0 || static_cast<double>(sy) >= sh)
                continue;
            if (half > k)
                copyPixel(photograph, sx, sy, map, x, half - 1 - k);
            else
                ++errors;
        }
    }
    return errors;
}

void reference::rotate(int axis, int angle, const QImage &source, QImage &map)
{
    const double W = source.width();
    const double H = source.height();
    const double a = angle * degree;
    const double sa = std::sin(a);
    const double ca = std::cos(a);
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x) {
            const double theta = (y * 180.0 / H + (-90)) * degree;
            const double lambda = x * 360.0 / W * degree;
            const double X = std::cos(lambda) * std::cos(theta);
            const double Y = std::sin(lambda) * std::cos(theta);
            const double Z = std::sin(theta);

            double X2 = 0;
            double Y2 = 0;
            double Z2 = 0;
            switch (axis) {
            case 2:
                X2 = ca * X + sa * Y;
                Y2 = ca * Y - sa * X;
                Z2 = Z;
                break;
            case 3:
                X2 = X;
                Y2 = ca * Y + sa * Z;
                Z2 = ca * Z - sa * Y;
                break;
            default:
                X2 = ca * X + sa * Z;
                Y2 = Y;
                Z2 = ca * Z - sa * X;
                break;
            }
            if (X2 == 0 && Y2 == 0)
                continue;

            double L = std::atan(Y2 / X2) / degree;
            if (X2 < 0)
                L = L + 180;
            if (L < 0)
                L = L + 360;
            if (L > 360)
                L = L - 360;
            const double T = std::atan(Z2 / std::sqrt(X2 * X2 + Y2 * Y2)) / degree + 90;
            copyPixel(source, integerPart(L * (W - 1) / 360), integerPart(T * (H - 1) / 180), map, x, y);
        }
    }
}

void reference::shift(double angle, const QImage &source, QImage &map)
{
    const qint64 W = source.width();
    if (angle > 360)
        angle = angle - 360;
    if (angle < -360)
        angle = angle + 360;
    const double columns = static_cast<double>(W) / 360 * angle;
    const qint64 s = integerPart(columns);
    if (s == 0 || !hasIntegerPart(columns))
        return;
    // Every column moves by s and comes back once at the other edge; beyond that it is lost.
    for (int y = 0; y < source.height(); ++y) {
        for (qint64 x = 0; x < W; ++x) {
            qint64 target = x + s;
            if (target >= W)
                target -= W;
            else if (target < 0)
                target += W;
            copyPixel(source, x, y, map, target, y);
        }
    }
}

QImage reference::convert(const QImage &photograph, const Conversion &conversion)
{
    const int width = conversion.outputSizeX;
    const int height = conversion.outputSizeY;
    if (photograph.isNull() || width <= 0 || height <= 0)
        return {};

    const QImage source = photograph.convertToFormat(QImage::Format_ARGB32);
    Globe globe;
    globe.centerX = conversion.centerX;
    globe.centerY = conversion.centerY;
    globe.radius = conversion.radius;
    globe.distance = conversion.distance;
    globe.lensCorrected = conversion.lensCorrected;
    globe.ratioX = static_cast<double>(width) / photograph.width();
    globe.ratioY = height * 0.5 / photograph.height();

    QImage a = transparentMap(width, height);
    QImage b = transparentMap(width, height);
    paintGlobe(source, a, globe);

    if (conversion.azimuth != 0) {
        if (conversion.azimuthHasCanvas)
            shift(-conversion.azimuth, a, b);
        else
            b = QImage();
        a = b;
    } else {
        b = a;
    }
    if (90 - conversion.latitude != 0) {
        b = transparentMap(width, height);
        rotate(3, static_cast<int>(integerPart(90 - conversion.latitude)), a, b);
        a = b;
    }
    if (conversion.longitude + 90 != 0) {
        b = transparentMap(width, height);
        shift(conversion.longitude + 90, a, b);
    }
    return b;
}
