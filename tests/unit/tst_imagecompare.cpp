#include "imagecompare.h"
#include "photographs.h"

#include <QColor>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

QImage solid(QSize size, const QColor &color)
{
    return solidPhotograph(size, color, QImage::Format_ARGB32_Premultiplied);
}

} // namespace

class tst_ImageCompare : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void findsNothingInEqualPictures_data();
    void findsNothingInEqualPictures();
    void namesTheFirstPixelAndTheNumber();
    void namesBothSizes();
    void seesAlphaAlone();
    void seesColoursThatLookTheSame();
    void savesBothPictures();
    void blankIsTransparentBlackAlone();

private:
    QTemporaryDir m_folder;
};

void tst_ImageCompare::initTestCase()
{
    QVERIFY(m_folder.isValid());
    qputenv("OVMIC_TEST_OUTPUT", m_folder.path().toUtf8());
}

void tst_ImageCompare::findsNothingInEqualPictures_data()
{
    QTest::addColumn<QImage>("actual");
    QTest::addColumn<QImage>("expected");
    const QImage red = solid({3, 2}, Qt::red);
    QTest::newRow("the same picture") << red << red;
    QTest::newRow("a copy") << red << red.copy();
    QTest::newRow("another format, the same colours") << red << red.convertToFormat(QImage::Format_RGB888);
    QTest::newRow("two null images") << QImage() << QImage();
}

void tst_ImageCompare::findsNothingInEqualPictures()
{
    QFETCH(QImage, actual);
    QFETCH(QImage, expected);
    QCOMPARE(imageDifference(actual, expected), QString());
}

void tst_ImageCompare::namesTheFirstPixelAndTheNumber()
{
    const QImage expected = solid({4, 3}, Qt::red);
    QImage actual = expected;
    actual.setPixelColor(3, 1, Qt::blue);
    actual.setPixelColor(0, 2, Qt::green);
    const QString difference = imageDifference(actual, expected);
    QVERIFY2(difference.startsWith(QStringLiteral(
                 "2 of 12 pixels differ (4 x 3), the first at (3, 1): #ff0000ff, expected #ffff0000.")),
             qPrintable(difference));
}

void tst_ImageCompare::namesBothSizes()
{
    const QImage expected = solid({4, 3}, Qt::red);
    QVERIFY(imageDifference(solid({3, 4}, Qt::red), expected)
                .startsWith(QStringLiteral("The picture is 3 x 4, expected 4 x 3.")));
    QVERIFY(imageDifference(QImage(), expected)
                .startsWith(QStringLiteral("The picture is 0 x 0, expected 4 x 3.")));
}

void tst_ImageCompare::seesAlphaAlone()
{
    QVERIFY(!imageDifference(solid({1, 1}, QColor(0, 0, 0, 0)), solid({1, 1}, QColor(0, 0, 0, 1))).isEmpty());
}

void tst_ImageCompare::seesColoursThatLookTheSame()
{
    // No colour has more of a channel than of alpha; to QColor both are the brightest red.
    QImage actual = solid({1, 1}, Qt::transparent);
    QImage expected = actual;
    *reinterpret_cast<QRgb *>(actual.bits()) = qRgba(100, 0, 0, 50);
    *reinterpret_cast<QRgb *>(expected.bits()) = qRgba(50, 0, 0, 50);
    QVERIFY(!imageDifference(actual, expected).isEmpty());
}

void tst_ImageCompare::savesBothPictures()
{
    const QImage actual = solid({4, 3}, QColor(200, 100, 50, 255));
    const QImage expected = solid({4, 3}, Qt::green);
    const QString difference = imageDifference(actual, expected);
    for (const auto &[role, image] :
         {qMakePair(QStringLiteral("actual"), actual), qMakePair(QStringLiteral("expected"), expected)}) {
        const QString path =
            m_folder.filePath(QStringLiteral("tst_imagecompare-savesBothPictures-%1.png").arg(role));
        QVERIFY2(difference.contains(path), qPrintable(difference));
        QCOMPARE(imageDifference(QImage(path), image), QString());
    }
}

void tst_ImageCompare::blankIsTransparentBlackAlone()
{
    QImage map = solid({3, 2}, Qt::transparent);
    QVERIFY(isBlank(map));
    map.setPixel(2, 1, qRgba(0, 0, 0, 1));
    QVERIFY(!isBlank(map));
}

QTEST_GUILESS_MAIN(tst_ImageCompare)
#include "tst_imagecompare.moc"
