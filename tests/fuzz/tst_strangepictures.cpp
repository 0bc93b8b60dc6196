// Pictures that nobody would photograph, in every format and of every shape: the disc finder ends, says nothing that
// is no circle, says the same again, and leaves them alone.

#include "discfinder.h"
#include "rng.h"

#include <QImage>
#include <QtTest>

#include <cmath>

namespace
{

unsigned numberFrom(const char *variable, unsigned otherwise)
{
    bool given = false;
    const unsigned number = qEnvironmentVariable(variable).toUInt(&given);
    return given ? number : otherwise;
}

int anySide(Rng &rng)
{
    return rng.oneIn(4) ? rng.between(1, 40) : rng.between(1, 400);
}

/// Rings of light around any place: parts of circles, often none that fits into the picture.
void drawRings(QImage &picture, Rng &rng)
{
    const double x0 = rng.real(-500, 900);
    const double y0 = rng.real(-500, 900);
    const double width = rng.real(0.5, 200);
    const QRgb light = rng.word();
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (std::fmod(std::hypot(x - x0, y - y0), 2.0 * width) < width)
                picture.setPixel(x, y, picture.pixel(x, y) ^ light);
}

/// One disc, so that a search comes to its end.
void drawDisc(QImage &picture, Rng &rng)
{
    const double x0 = picture.width() * rng.real(0.3, 0.7);
    const double y0 = picture.height() * rng.real(0.3, 0.7);
    const double radius = rng.real(0, 0.6 * std::min(picture.width(), picture.height()));
    const QRgb light = rng.word();
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (std::hypot(x - x0, y - y0) < radius)
                picture.setPixel(x, y, light);
}

void drawLines(QImage &picture, Rng &rng)
{
    const int step = rng.between(1, 60);
    const bool upright = rng.oneIn(2);
    const QRgb light = rng.word();
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if ((upright ? x : y) % step == 0)
                picture.setPixel(x, y, light);
}

void drawNoise(QImage &picture, Rng &rng)
{
    const QRgb mask = rng.word() | 0xff000000U;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, picture.pixel(x, y) ^ (rng.word() & mask));
}

QImage strangePicture(Rng &rng)
{
    QImage picture(anySide(rng), anySide(rng), QImage::Format_ARGB32);
    picture.fill(rng.word());
    if (rng.oneIn(2))
        drawDisc(picture, rng);
    for (int layer = rng.between(-2, 3); layer > 0; --layer) {
        switch (rng.between(0, 3)) {
        case 0:
            drawLines(picture, rng);
            break;
        case 1:
            drawNoise(picture, rng);
            break;
        default:
            drawRings(picture, rng);
        }
    }
    const auto format = static_cast<QImage::Format>(rng.between(1, QImage::NImageFormats - 1));
    picture = picture.convertToFormat(format);
    if (rng.oneIn(8))
        picture.setDevicePixelRatio(rng.real(0.001, 1000));
    if (rng.oneIn(8) && picture.colorCount() > 0)
        picture.setColorTable({}); // indexes without colours
    return picture;
}

} // namespace

class tst_StrangePictures : public QObject
{
    Q_OBJECT

private slots:
    void everySearchEndsWell();
};

void tst_StrangePictures::everySearchEndsWell()
{
    const unsigned count = numberFrom("OVMIC_STRANGE_COUNT", 40);
    const unsigned seed = numberFrom("OVMIC_STRANGE_SEED", 20261122);
    qInfo("seed %u, %u pictures", seed, count);
    int found = 0;
    for (unsigned i = 0; i < count; ++i) {
        Rng rng(seed + i);
        const QImage picture = strangePicture(rng);
        const QImage before = picture.copy();
        const auto disc = findDisc(picture);
        const QByteArray name = QStringLiteral("seed %1").arg(seed + i).toLatin1();
        QVERIFY2(picture == before, name);
        const auto again = findDisc(picture);
        QVERIFY2(disc.has_value() == again.has_value(), name);
        if (!disc)
            continue;
        ++found;
        QVERIFY2(disc->centerX == again->centerX && disc->centerY == again->centerY &&
                     disc->radius == again->radius && disc->confidence == again->confidence,
                 name);
        const double longest = std::max(picture.width(), picture.height());
        QVERIFY2(std::abs(disc->centerX) < 3 * longest && std::abs(disc->centerY) < 3 * longest, name);
        QVERIFY2(disc->radius > 0.0 && disc->radius < 3 * longest, name);
        QVERIFY2(disc->confidence >= 0.0 && disc->confidence <= 1.0, name);
    }
    qInfo("%d with an answer", found);
    QVERIFY(found > 0); // otherwise half of the search was never tried
}

QTEST_GUILESS_MAIN(tst_StrangePictures)
#include "tst_strangepictures.moc"
