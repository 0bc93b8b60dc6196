#include "premultiply.h"

#include <QImage>
#include <QtTest>

using namespace projection;

class tst_Premultiply : public QObject
{
    Q_OBJECT

private slots:
    void premultipliesAsThePictureClassDoes();
    void everyChannelIsRoundedToNearest();
    void alphaOfTheEndsIsExact();
};

void tst_Premultiply::premultipliesAsThePictureClassDoes()
{
    QImage source(256, 256, QImage::Format_ARGB32);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value)
            source.setPixel(value, alpha, qRgba(value, 255 - value, value ^ 0x5a, alpha));
    QImage canvas(source.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            canvas.setPixelColor(x, y, source.pixelColor(x, y));
            QCOMPARE(premultiplied(source.pixel(x, y)),
                     reinterpret_cast<const QRgb *>(canvas.constScanLine(y))[x]);
        }
}

void tst_Premultiply::everyChannelIsRoundedToNearest()
{
    for (uint32_t alpha = 0; alpha < 256; ++alpha)
        for (uint32_t value = 0; value < 256; ++value) {
            const uint32_t rounded = (2 * value * alpha + 255) / 510;
            QCOMPARE(premultiplied(alpha << 24 | value << 16), alpha << 24 | rounded << 16);
            QCOMPARE(premultiplied(alpha << 24 | value << 8), alpha << 24 | rounded << 8);
            QCOMPARE(premultiplied(alpha << 24 | value), alpha << 24 | rounded);
        }
}

void tst_Premultiply::alphaOfTheEndsIsExact()
{
    QCOMPARE(premultiplied(0xff123456U), 0xff123456U);
    QCOMPARE(premultiplied(0xffffffffU), 0xffffffffU);
    QCOMPARE(premultiplied(0x00ffffffU), 0U);
}

QTEST_GUILESS_MAIN(tst_Premultiply)
#include "tst_premultiply.moc"
