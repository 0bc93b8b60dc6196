#include "circleoverlay.h"

#include "memorylimit.h"
#include "photographs.h"
#include "randomcircles.h"

#include <QtTest>

#include <climits>
#include <utility>

namespace
{

/// The picture as it is drawn anew each time, for circles whose sums are ints.
QPixmap uncachedPicture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                        const CirclePen &pen)
{
    QImage copy = photograph.convertToFormat(QImage::Format_ARGB32);
    if (circle)
        paintCircle(copy, *circle, pen);
    return QPixmap::fromImage(copy);
}

/// Empty when both pixmaps are the same in every respect.
QString difference(const QPixmap &actual, const QPixmap &expected)
{
    const QImage a = actual.toImage();
    const QImage b = expected.toImage();
    if (a.format() != b.format())
        return QString("format %1, not %2").arg(a.format()).arg(b.format());
    if (actual.hasAlphaChannel() != expected.hasAlphaChannel())
        return "alpha channel";
    return a == b ? QString() : "pixels";
}

QImage noise(QSize size, QImage::Format format, Alpha alpha = Alpha::Opaque)
{
    static Rng rng(20);
    return noisePhotograph(rng, size, alpha).convertToFormat(format);
}

const CirclePen redPen{Qt::red, 3, Qt::DotLine};

} // namespace

Q_DECLARE_METATYPE(Alpha)

class tst_CircleOverlay : public QObject
{
    Q_OBJECT

private slots:
    void givesNothingForNoPhotograph();
    void equalsTheUncachedPicture_data();
    void equalsTheUncachedPicture();
    void takesTheOldCircleAwayCompletely();
    void noticesANewPhotograph();
    void noticesAnEditedPhotograph();
    void leavesEarlierPixmapsAlone();
    void changesThePictureThatNobodyHas();
    void leavesThePhotographAlone();
    void keepsOrDropsTheAlphaChannelAsTheUncachedPicture();
    void looksAtPixelsOnly();
    void drawsHostileCirclesToo();
    void startsAfreshWhenCleared();
    void whatFittedIntoTheMemoryOnceFitsAgain();
};

void tst_CircleOverlay::givesNothingForNoPhotograph()
{
    CircleOverlay overlay;
    QVERIFY(overlay.picture(QImage(), std::nullopt, redPen).isNull());
    QVERIFY(overlay.picture(QImage(), SelectionCircle{5, 5, 5}, redPen).isNull());
    const QImage photograph = noise({20, 20}, QImage::Format_RGB32);
    QVERIFY(!overlay.picture(photograph, std::nullopt, redPen).isNull());
    QVERIFY(overlay.picture(QImage(), std::nullopt, redPen).isNull());
}

void tst_CircleOverlay::equalsTheUncachedPicture_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<Alpha>("alpha");

    QTest::newRow("RGB32, a JPEG photograph") << QImage::Format_RGB32 << Alpha::Opaque;
    QTest::newRow("ARGB32, all of it opaque") << QImage::Format_ARGB32 << Alpha::Opaque;
    QTest::newRow("ARGB32, half of it translucent") << QImage::Format_ARGB32 << Alpha::Mixed;
    QTest::newRow("premultiplied") << QImage::Format_ARGB32_Premultiplied << Alpha::Mixed;
    QTest::newRow("RGB888") << QImage::Format_RGB888 << Alpha::Opaque;
    QTest::newRow("RGBA8888") << QImage::Format_RGBA8888 << Alpha::Mixed;
    QTest::newRow("palette, a GIF") << QImage::Format_Indexed8 << Alpha::Opaque;
    QTest::newRow("palette with alpha") << QImage::Format_Indexed8 << Alpha::Mixed;
    QTest::newRow("grey") << QImage::Format_Grayscale8 << Alpha::Opaque;
    QTest::newRow("black and white") << QImage::Format_Mono << Alpha::Opaque;
    QTest::newRow("16 bits a channel: the surplus bits go first") << QImage::Format_RGBA64 << Alpha::Mixed;
    QTest::newRow("16 bits of grey") << QImage::Format_Grayscale16 << Alpha::Opaque;
    QTest::newRow("16 bits altogether") << QImage::Format_RGB16 << Alpha::Opaque;
}

void tst_CircleOverlay::equalsTheUncachedPicture()
{
    QFETCH(QImage::Format, format);
    QFETCH(Alpha, alpha);
    Rng rng(20);
    for (int photographs = 0; photographs < 12; ++photographs) {
        const QImage photograph = noise(QSize{rng.between(1, 180), rng.between(1, 180)}, format, alpha);
        CircleOverlay overlay;
        for (int step = 0; step < 12; ++step) {
            std::optional<SelectionCircle> circle;
            if (!rng.oneIn(8))
                circle = SelectionCircle{rng.between(-40, 219), rng.between(-40, 219), rng.between(-30, 129)};
            CirclePen pen;
            pen.color = randomColor(rng);
            pen.size = rng.oneIn(8) ? rng.between(0, 64) : rng.between(0, 9);
            pen.square = rng.oneIn(3) ? Qt::SolidLine : Qt::DotLine;
            QCOMPARE(difference(overlay.picture(photograph, circle, pen),
                                uncachedPicture(photograph, circle, pen)),
                     QString());
        }
    }
}

void tst_CircleOverlay::takesTheOldCircleAwayCompletely()
{
    const QImage photograph = noise({300, 200}, QImage::Format_RGB32);
    CircleOverlay overlay;
    for (int i = 0; i < 6; ++i) {
        // Twice each: the overlay keeps two pictures, and the circle must leave either.
        overlay.picture(photograph, SelectionCircle{100 + i, 90, 80 + i}, redPen);
        overlay.picture(photograph, SelectionCircle{200 - i, 90, 60 - i}, redPen);
        for (int picture = 0; picture < 2; ++picture)
            QCOMPARE(
                difference(overlay.picture(photograph, std::nullopt, redPen), QPixmap::fromImage(photograph)),
                QString());
    }
}

void tst_CircleOverlay::noticesANewPhotograph()
{
    CircleOverlay overlay;
    const SelectionCircle circle{50, 50, 30};
    for (const QSize size : {QSize(100, 100), QSize(100, 100), QSize(90, 120)}) {
        const QImage photograph = noise(size, QImage::Format_RGB32);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(difference(overlay.picture(photograph, circle, redPen),
                                uncachedPicture(photograph, circle, redPen)),
                     QString());
    }
}

void tst_CircleOverlay::noticesAnEditedPhotograph()
{
    QImage photograph = noise({100, 100}, QImage::Format_RGB32);
    CircleOverlay overlay;
    overlay.picture(photograph, std::nullopt, redPen);
    photograph.fill(Qt::blue);
    QCOMPARE(difference(overlay.picture(photograph, std::nullopt, redPen), QPixmap::fromImage(photograph)),
             QString());
}

void tst_CircleOverlay::leavesEarlierPixmapsAlone()
{
    // The label keeps only the newest pixmap, but whoever keeps an older one must not see it change.
    const QImage photograph = noise({100, 100}, QImage::Format_RGB32);
    CircleOverlay overlay;
    QVector<QPixmap> pixmaps;
    for (int radius = 10; radius < 20; ++radius)
        pixmaps.append(overlay.picture(photograph, SelectionCircle{50, 50, radius}, redPen));
    for (int radius = 10; radius < 20; ++radius)
        QCOMPARE(difference(pixmaps[radius - 10],
                            uncachedPicture(photograph, SelectionCircle{50, 50, radius}, redPen)),
                 QString());
}

void tst_CircleOverlay::changesThePictureThatNobodyHas()
{
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_RGB888}) {
        const QImage photograph = noise({100, 100}, format);
        CircleOverlay overlay;
        const uchar *pixels = nullptr;
        for (int radius = 10; radius < 20; ++radius) {
            const QImage picture =
                overlay.picture(photograph, SelectionCircle{50, 50, radius}, redPen).toImage();
            QVERIFY(!pixels || picture.constBits() == pixels);
            pixels = picture.constBits();
        }
    }
}

void tst_CircleOverlay::leavesThePhotographAlone()
{
    for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
        const QImage photograph = noise({100, 100}, format, Alpha::Mixed);
        const QImage before = photograph.copy();
        CircleOverlay overlay;
        for (int radius = 10; radius < 14; ++radius)
            overlay.picture(photograph, SelectionCircle{50, 50, radius}, redPen);
        QCOMPARE(photograph, before);
    }
}

void tst_CircleOverlay::keepsOrDropsTheAlphaChannelAsTheUncachedPicture()
{
    // One pixel that is not opaque, off the circle at first, then painted over, then free again.
    QImage photograph(100, 100, QImage::Format_ARGB32);
    photograph.fill(Qt::gray);
    photograph.setPixel(70, 40, qRgba(1, 2, 3, 128));
    CircleOverlay overlay;
    for (const int x : {30, 50, 30, 50, 50, 10}) {
        const SelectionCircle circle{x, 40, 20};
        const QPixmap picture = overlay.picture(photograph, circle, redPen);
        QCOMPARE(picture.hasAlphaChannel(), x != 50);
        QCOMPARE(difference(picture, uncachedPicture(photograph, circle, redPen)), QString());
    }
}

void tst_CircleOverlay::looksAtPixelsOnly()
{
    // A file called photo@2x.jpg loads with a device pixel ratio of 2; the circle counts in its pixels all
    // the same.
    QImage photograph = noise({100, 100}, QImage::Format_RGB32);
    const QPixmap expected = uncachedPicture(photograph, SelectionCircle{50, 50, 30}, redPen);
    photograph.setDevicePixelRatio(2.0);
    CircleOverlay overlay;
    for (int i = 0; i < 3; ++i) {
        const QPixmap picture = overlay.picture(photograph, SelectionCircle{50, 50, 30}, redPen);
        QCOMPARE(picture.devicePixelRatio(), 1.0);
        QCOMPARE(difference(picture, expected), QString());
    }
}

void tst_CircleOverlay::drawsHostileCirclesToo()
{
    const QImage photograph = noise({60, 50}, QImage::Format_ARGB32, Alpha::Mixed);
    CircleOverlay overlay;
    Rng rng(20);
    const auto anyInt = [&rng] {
        const int number = static_cast<int>(rng.word());
        return number >> rng.between(0, 30);
    };
    for (int i = 0; i < 500; ++i) {
        const SelectionCircle circle{anyInt(), anyInt(), anyInt()};
        const CirclePen pen{Qt::red, anyInt(), Qt::DotLine};
        QCOMPARE(
            difference(overlay.picture(photograph, circle, pen), uncachedPicture(photograph, circle, pen)),
            QString());
    }
    for (const int value : {INT_MIN, INT_MAX})
        QCOMPARE(overlay.picture(photograph, SelectionCircle{value, value, value}, {Qt::red, value}).size(),
                 photograph.size());
}

void tst_CircleOverlay::startsAfreshWhenCleared()
{
    const QImage photograph = noise({60, 50}, QImage::Format_RGB32);
    CircleOverlay overlay;
    for (int i = 0; i < 3; ++i) {
        overlay.picture(photograph, SelectionCircle{30, 25, 20 + i}, redPen);
        overlay.clear();
        QCOMPARE(
            difference(overlay.picture(photograph, std::nullopt, redPen), QPixmap::fromImage(photograph)),
            QString());
    }
}

// A label keeps the last picture while it asks for the next one, and there is no memory for a third.
void tst_CircleOverlay::whatFittedIntoTheMemoryOnceFitsAgain()
{
    QImage photograph(5000, 4000, QImage::Format_Grayscale8);
    photograph.fill(Qt::gray);
    const auto circle = [](int step) { return SelectionCircle{2500, 2000, 1000 + step}; };
    QPixmap shown;
    {
        const MemoryLimit limit(unlessSanitized(200 * mebibyte)); // one picture of 4 bytes a pixel takes 76
        CircleOverlay overlay;
        for (int step = 0; step < 5; ++step) {
            shown = overlay.picture(photograph, circle(step), redPen);
            QVERIFY2(!shown.isNull(), qPrintable(QString::number(step)));
        }
    }
    QCOMPARE(difference(shown, uncachedPicture(photograph, circle(4), redPen)), QString());
}

QTEST_MAIN(tst_CircleOverlay)
#include "tst_circleoverlay.moc"
