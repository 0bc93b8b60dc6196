#include "picturescale.h"

#include <QtTest>

#include <climits>

namespace
{

constexpr bool fitted = true;
constexpr bool oneToOne = false;

} // namespace

Q_DECLARE_METATYPE(PictureDrag)

class tst_PictureScale : public QObject
{
    Q_OBJECT

private slots:
    void mapsPositions_data();
    void mapsPositions();
    void mapsEachCoordinateByItself();
    void fitsThePicture_data();
    void fitsThePicture();
    void coversThePixelUnderTheMouse();
    void mapsDrags_data();
    void mapsDrags();
    void answersForSizesWithoutExtent();
    void answersForHugeValues();
    void measuresDragsAcrossTheWholeRange();
};

void tst_PictureScale::mapsPositions_data()
{
    QTest::addColumn<QSize>("widget");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<bool>("isFitted");
    QTest::addColumn<int>("coordinate");
    QTest::addColumn<int>("expected");

    const QSize widget(400, 300);
    QTest::newRow("picture twice the widget: twice the coordinate")
        << widget << QSize(800, 600) << fitted << 10 << 20;
    QTest::newRow("same picture at 1:1: unchanged") << widget << QSize(800, 600) << oneToOne << 10 << 10;
    QTest::newRow("same size: unchanged") << widget << widget << fitted << 123 << 123;
    QTest::newRow("picture smaller than the widget") << widget << QSize(200, 150) << fitted << 11 << 5;
    QTest::newRow("wide picture: its width decides") << widget << QSize(1200, 300) << fitted << 7 << 21;
    QTest::newRow("tall picture: its height decides") << widget << QSize(400, 1200) << fitted << 7 << 28;
    QTest::newRow("fraction cut off") << QSize(300, 300) << QSize(1000, 1000) << fitted << 2 << 6;
    QTest::newRow("fraction of a negative cut off toward zero")
        << QSize(300, 300) << QSize(1000, 1000) << fitted << -2 << -6;
    QTest::newRow("just left of the widget: still column 0")
        << QSize(300, 300) << QSize(200, 200) << fitted << -1 << 0;
    QTest::newRow("zero stays") << QSize(7, 9) << QSize(4000, 3000) << fitted << 0 << 0;
    QTest::newRow("beyond the widget: not clamped") << widget << QSize(800, 600) << fitted << 5000 << 10000;
    QTest::newRow("negative at 1:1: unchanged") << widget << QSize(800, 600) << oneToOne << -17 << -17;
    // The quotient is rounded before it is multiplied: 49 * (1 / 49) is less than 1 in double.
    QTest::newRow("a quotient that was rounded down") << QSize(49, 49) << QSize(1, 1) << fitted << 49 << 0;
    QTest::newRow("a quotient whose product is whole again")
        << QSize(3, 3) << QSize(1, 1) << fitted << 3 << 1;
}

void tst_PictureScale::mapsPositions()
{
    QFETCH(QSize, widget);
    QFETCH(QSize, picture);
    QFETCH(bool, isFitted);
    QFETCH(int, coordinate);
    QFETCH(int, expected);

    const PictureScale scale(widget, picture, isFitted);
    QCOMPARE(scale.toPicture(coordinate), expected);
    QCOMPARE(scale.toPicture(QPoint(coordinate, coordinate)), QPoint(expected, expected));
}

void tst_PictureScale::mapsEachCoordinateByItself()
{
    const PictureScale scale(QSize(200, 100), QSize(500, 250), fitted);
    QCOMPARE(scale.toPicture(QPoint(3, -5)), QPoint(7, -12));
}

void tst_PictureScale::fitsThePicture_data()
{
    QTest::addColumn<QSize>("widget");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("expected");

    QTest::newRow("same aspect: the whole widget") << QSize(400, 300) << QSize(4000, 3000) << QSize(400, 300);
    QTest::newRow("wide picture: empty below") << QSize(400, 300) << QSize(800, 200) << QSize(400, 100);
    QTest::newRow("tall picture: empty on the right") << QSize(400, 300) << QSize(100, 600) << QSize(50, 300);
    QTest::newRow("small picture is enlarged") << QSize(400, 300) << QSize(4, 2) << QSize(400, 200);
    QTest::newRow("fraction of a pixel cut off") << QSize(400, 300) << QSize(1000, 333) << QSize(400, 133);
    QTest::newRow("one row is left of a thin picture, or none")
        << QSize(100, 100) << QSize(1000, 9) << QSize(100, 0);
}

void tst_PictureScale::fitsThePicture()
{
    QFETCH(QSize, widget);
    QFETCH(QSize, picture);
    QFETCH(QSize, expected);

    QCOMPARE(PictureScale(widget, picture, fitted).fittedRectangle(), QRectF(QPointF(0, 0), expected));
}

void tst_PictureScale::coversThePixelUnderTheMouse()
{
    // Whatever is painted can be pointed at: the last widget pixel of the picture maps inside it.
    for (int width = 1; width <= 60; ++width) {
        for (int height = 1; height <= 60; ++height) {
            const QSize picture(97, 61);
            const PictureScale scale(QSize(width, height), picture, fitted);
            const QSize covered = scale.fittedRectangle().size().toSize();
            if (covered.isEmpty())
                continue;
            const QPoint last = scale.toPicture(QPoint(covered.width() - 1, covered.height() - 1));
            QVERIFY2(QRect(QPoint(0, 0), picture).contains(last),
                     qPrintable(QString("%1 x %2").arg(width).arg(height)));
        }
    }
}

void tst_PictureScale::mapsDrags_data()
{
    QTest::addColumn<bool>("isFitted");
    QTest::addColumn<QPoint>("press");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<PictureDrag>("expected");

    using P = QPoint;
    QTest::newRow("to the lower right, 1:1")
        << oneToOne << P(10, 20) << P(13, 30) << PictureDrag{P(10, 20), P(10, 20), P(13, 30), P(13, 30), 11};
    QTest::newRow("to the upper left: corners swapped, ends not")
        << oneToOne << P(13, 30) << P(10, 20) << PictureDrag{P(13, 30), P(10, 20), P(13, 30), P(10, 20), 11};
    QTest::newRow("a click: one pixel")
        << oneToOne << P(5, 6) << P(5, 6) << PictureDrag{P(5, 6), P(5, 6), P(5, 6), P(5, 6), 1};
    QTest::newRow("level: first and last row are the same")
        << oneToOne << P(5, 6) << P(25, 6) << PictureDrag{P(5, 6), P(5, 6), P(25, 6), P(25, 6), 21};
    QTest::newRow("one pixel back: not swapped, no extent")
        << oneToOne << P(5, 6) << P(4, 5) << PictureDrag{P(5, 6), P(5, 6), P(4, 5), P(4, 5), 0};
    QTest::newRow("two pixels back: swapped")
        << oneToOne << P(5, 6) << P(3, 4) << PictureDrag{P(5, 6), P(3, 4), P(5, 6), P(3, 4), 3};
    QTest::newRow("fitted: corners mapped one by one, the radius from the extent")
        << fitted << P(10, 10) << P(13, 12) << PictureDrag{P(25, 25), P(25, 25), P(32, 30), P(32, 30), 10};
    QTest::newRow("fitted, a click") << fitted << P(3, 3) << P(3, 3)
                                     << PictureDrag{P(7, 7), P(7, 7), P(7, 7), P(7, 7), 2};
    QTest::newRow("fitted, out of the widget to the upper left")
        << fitted << P(1, 1) << P(-3, -5) << PictureDrag{P(2, 2), P(-7, -12), P(2, 2), P(-7, -12), 17};
}

void tst_PictureScale::mapsDrags()
{
    QFETCH(bool, isFitted);
    QFETCH(QPoint, press);
    QFETCH(QPoint, position);
    QFETCH(PictureDrag, expected);

    const PictureDrag drag = PictureScale(QSize(200, 100), QSize(500, 250), isFitted).drag(press, position);
    QCOMPARE(drag.press, expected.press);
    QCOMPARE(drag.first, expected.first);
    QCOMPARE(drag.last, expected.last);
    QCOMPARE(drag.position, expected.position);
    QCOMPARE(drag.radius, expected.radius);
}

void tst_PictureScale::answersForSizesWithoutExtent()
{
    const PictureScale noWidget(QSize(0, 0), QSize(800, 600), fitted);
    QCOMPARE(noWidget.toPicture(1), INT_MIN); // infinite
    QCOMPARE(noWidget.toPicture(0), INT_MIN); // not a number
    QCOMPARE(noWidget.fittedRectangle(), QRectF(0, 0, 0, 0));

    const PictureScale noPicture(QSize(400, 300), QSize(0, 0), fitted);
    QCOMPARE(noPicture.toPicture(17), 0);
    QCOMPARE(noPicture.fittedRectangle().width(), double(INT_MIN));

    const PictureScale nothing(QSize(), QSize(), oneToOne);
    QCOMPARE(nothing.toPicture(17), 17);
}

void tst_PictureScale::answersForHugeValues()
{
    const PictureScale scale(QSize(100, 100), QSize(30000, 30000), fitted);
    QCOMPARE(scale.toPicture(INT_MAX), INT_MIN);
    QCOMPARE(scale.toPicture(INT_MIN), INT_MIN);
    QCOMPARE(scale.toPicture(7158278), 2147483400);
    QCOMPARE(scale.toPicture(7158279), INT_MIN);

    const PictureScale unscaled(QSize(100, 100), QSize(30000, 30000), oneToOne);
    QCOMPARE(unscaled.toPicture(INT_MAX), INT_MAX);
    QCOMPARE(unscaled.toPicture(INT_MIN), INT_MIN);
}

void tst_PictureScale::measuresDragsAcrossTheWholeRange()
{
    const PictureScale scale(QSize(100, 100), QSize(100, 100), oneToOne);
    const PictureDrag drag = scale.drag(QPoint(-1, 0), QPoint(INT_MAX, 0));
    QCOMPARE(drag.last, QPoint(INT_MAX, 0));
    QCOMPARE(drag.radius, 1); // the width, 2147483649, wraps to a negative number; the height is 1
    QCOMPARE(scale.drag(QPoint(0, 0), QPoint(INT_MAX - 1, 0)).radius, INT_MAX);
}

QTEST_GUILESS_MAIN(tst_PictureScale)
#include "tst_picturescale.moc"
