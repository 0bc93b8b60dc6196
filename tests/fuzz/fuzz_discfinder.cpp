// The input is a picture: its format, two sides, how often each pixel is repeated, its device pixel ratio, and the bytes
// of its lines, over and over. As many colours as it needs are taken from the same bytes.

#include "discfinder.h"
#include "fuzzinput.h"

#include <QImage>

#include <cmath>

namespace
{

QImage pictureOf(FuzzInput &input)
{
    constexpr int largestSide = 48;
    const auto format = static_cast<QImage::Format>(input.takeBetween(1, QImage::NImageFormats - 1));
    const int width = input.takeBetween(1, largestSide);
    const int height = input.takeBetween(1, largestSide);
    const int scale = input.takeBetween(1, 2);
    const int pixelRatio = input.take<quint8>();
    const QByteArray bytes = input.rest().isEmpty() ? QByteArray(1, '\0') : input.rest();

    QImage picture(width, height, format);
    int at = 0;
    for (int y = 0; y < height; ++y) {
        uchar *line = picture.scanLine(y);
        for (int i = 0; i < picture.bytesPerLine(); ++i)
            line[i] = static_cast<uchar>(bytes[at++ % bytes.size()]);
    }
    if (format == QImage::Format_Indexed8 || format == QImage::Format_Mono ||
        format == QImage::Format_MonoLSB) {
        QVector<QRgb> colours(pixelRatio); // often fewer than the pixels name
        for (int i = 0; i < colours.size(); ++i)
            colours[i] = static_cast<QRgb>(bytes[i % bytes.size()]) * 0x01010101U;
        picture.setColorTable(colours);
    }
    picture = picture.scaled(width * scale, height * scale);
    picture.setDevicePixelRatio(pixelRatio == 0 ? 1.0 : pixelRatio / 16.0);
    return picture;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    FuzzInput input(data, size);
    const QImage picture = pictureOf(input);
    if (picture.isNull())
        return 0;
    const QByteArray before(reinterpret_cast<const char *>(picture.constBits()),
                            static_cast<int>(picture.sizeInBytes()));
    const std::optional<FoundDisc> disc = findDisc(picture);
    require(std::memcmp(before.constData(), picture.constBits(), static_cast<size_t>(before.size())) == 0,
            "the picture stays");
    const std::optional<FoundDisc> again = findDisc(picture);
    require(disc.has_value() == again.has_value(), "the answer is always the same");
    if (!disc)
        return 0;
    require(disc->centerX == again->centerX && disc->centerY == again->centerY &&
                disc->radius == again->radius && disc->confidence == again->confidence,
            "the disc is always the same");
    require(std::min(picture.width(), picture.height()) >= 24, "small pictures have no disc");
    const double longest = std::max(picture.width(), picture.height());
    require(std::abs(disc->centerX) < 3 * longest && std::abs(disc->centerY) < 3 * longest,
            "the centre is near the picture");
    require(disc->radius > 0.0 && disc->radius < 3 * longest, "the radius is one of a disc");
    require(disc->confidence >= 0.0 && disc->confidence <= 1.0, "the confidence is in its range");
    const SelectionCircle circle = selectionCircle(*disc);
    require(std::abs(circle.radius - disc->radius) <= 0.5, "the circle has the disc's radius");
    return 0;
}
