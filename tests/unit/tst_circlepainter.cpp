#include "circlepainter.h"

#include "cputime.h"
#include "photographs.h"
#include "randomcircles.h"

#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QtTest>

#include <climits>
#include <cmath>

Q_DECLARE_METATYPE(SelectionCircle)

namespace
{

/// The painter's own calls, in ints; for values whose sums are ints.
void drawWithThePainterAlone(QImage &picture, const SelectionCircle &circle, const QColor &penColor,
                             int penSize, Qt::PenStyle square)
{
    const auto [cx, cy, r] = circle;
    QPen pen(QBrush(penColor), penSize, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    QPainter painter(&picture);
    painter.setPen(pen);
    painter.drawEllipse(cx - r, cy - r, 2 * r, 2 * r);
    painter.drawLine(cx, cy - 2 * penSize, cx, cy + 2 * penSize);
    painter.drawLine(cx - 2 * penSize, cy, cx + 2 * penSize, cy);
    pen.setStyle(square);
    painter.setPen(pen);
    painter.drawRect(QRect(QPoint(cx - r, cy - r), QPoint(cx + r, cy + r)));
}

QImage randomPicture(Rng &rng)
{
    const QSize size{rng.between(1, 160), rng.between(1, 160)};
    const Alpha alpha = rng.oneIn(2) ? Alpha::Opaque : Alpha::Random;
    return noisePhotograph(rng, size, alpha).convertToFormat(QImage::Format_ARGB32);
}

QImage transparent(QSize size)
{
    return solidPhotograph(size, Qt::transparent);
}

/// A picture of characters: red '#', untouched '.', anything else '?'.
QStringList charted(const QImage &picture)
{
    QStringList rows;
    for (int y = 0; y < picture.height(); ++y) {
        QString row;
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            row += pixel == qRgb(255, 0, 0) ? '#' : pixel == 0 ? '.' : '?';
        }
        rows.append(row);
    }
    return rows;
}

/// The pixels that are not transparent.
QRect extentOf(const QImage &picture)
{
    QRect extent;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixel(x, y) != 0)
                extent |= QRect(x, y, 1, 1);
    return extent;
}

} // namespace

/// The circle in the picture, and the rectangles that it may change.
class tst_CirclePainter : public QObject
{
    Q_OBJECT

private slots:
    void drawsTheExactPixels_data();
    void drawsTheExactPixels();
    void drawsTheSquareOnePixelWider();
    void drawsTheCrossTwiceAsLongAsThePen();
    void drawsTheSameAsThePainterAlone();
    void neverHangsOnHostileValues_data();
    void neverHangsOnHostileValues();
    void anyValueDoesNotCrash();

    void knowsWhereItDraws();
    void keepsItsRectanglesApartAndInside();
    void keepsItsRectanglesNarrow();
    void admitsWhatItDoesNotKnow_data();
    void admitsWhatItDoesNotKnow();
};

void tst_CirclePainter::drawsTheExactPixels_data()
{
    QTest::addColumn<int>("radius");
    QTest::addColumn<Qt::PenStyle>("square");
    QTest::addColumn<QStringList>("expected");

    // clang-format off
    QTest::newRow("radius 3, dotted square") << 3 << Qt::DotLine << QStringList{
        "...........",
        "...........",
        "..#####..#.",
        "...#.#.#...",
        "..#..#..#..",
        "..########.",
        "..#..#..#..",
        "...#.#.#...",
        "..#.###..#.",
        "....#..#...",
        "..........."};
    QTest::newRow("radius 3, solid square") << 3 << Qt::SolidLine << QStringList{
        "...........",
        "...........",
        "..########.",
        "..##.#.#.#.",
        "..#..#..##.",
        "..########.",
        "..#..#..##.",
        "..##.#.#.#.",
        "..#.###..#.",
        "..########.",
        "..........."};
    QTest::newRow("radius 0: the cross and a square of two pixels") << 0 << Qt::SolidLine << QStringList{
        "...........",
        "...........",
        "...........",
        ".....#.....",
        ".....#.....",
        "...#####...",
        ".....##....",
        ".....#.....",
        "...........",
        "...........",
        "..........."};
    QTest::newRow("radius -3: the ellipse two pixels larger, the square two smaller") << -3 << Qt::SolidLine << QStringList{
        "...........",
        "....###....",
        "...#...#...",
        "..#######..",
        ".#.#.#..##.",
        ".#.#######.",
        ".#.#.#..##.",
        "..##.#..#..",
        "...######..",
        "....###....",
        "..........."};
    // clang-format on
}

void tst_CirclePainter::drawsTheExactPixels()
{
    QFETCH(int, radius);
    QFETCH(Qt::PenStyle, square);
    QFETCH(QStringList, expected);
    QImage picture = transparent({11, 11});
    paintCircle(picture, {5, 5, radius}, {Qt::red, 1, square});
    QCOMPARE(charted(picture), expected);
}

void tst_CirclePainter::drawsTheSquareOnePixelWider()
{
    QImage picture = transparent({60, 60});
    paintCircle(picture, {30, 30, 20}, {Qt::red, 1, Qt::SolidLine});
    QCOMPARE(extentOf(picture), QRect(QPoint(10, 10), QPoint(51, 51)));
}

void tst_CirclePainter::drawsTheCrossTwiceAsLongAsThePen()
{
    for (const int penSize : {1, 2, 3, 8}) {
        QImage picture = transparent({200, 200});
        paintCircle(picture, {100, 100, 10000}, {Qt::red, penSize, Qt::DotLine});
        // Two arms and a square cap at either end.
        const QRect extent = extentOf(picture);
        QCOMPARE(extent.width(), 5 * penSize);
        QCOMPARE(extent.height(), 5 * penSize);
        QVERIFY(extent.contains(100, 100));
    }
}

void tst_CirclePainter::drawsTheSameAsThePainterAlone()
{
    Rng rng(20);
    for (int i = 0; i < 1500; ++i) {
        QImage expected = randomPicture(rng);
        QImage actual = expected.copy();
        const SelectionCircle circle = randomCircle(rng, actual.size(), rng.oneIn(4) ? 3000 : 120);
        const QColor color = randomColor(rng);
        const int penSize = rng.oneIn(3) ? rng.between(0, 64) : rng.between(0, 9);
        const Qt::PenStyle square = rng.oneIn(3) ? Qt::SolidLine : Qt::DotLine;
        drawWithThePainterAlone(expected, circle, color, penSize, square);
        paintCircle(actual, circle, {color, penSize, square});
        QVERIFY2(actual == expected, qPrintable(QString("(%1, %2) radius %3 pen %4")
                                                    .arg(circle.centerX)
                                                    .arg(circle.centerY)
                                                    .arg(circle.radius)
                                                    .arg(penSize)));
    }
}

void tst_CirclePainter::neverHangsOnHostileValues_data()
{
    QTest::addColumn<SelectionCircle>("circle");
    QTest::addColumn<int>("penSize");

    QTest::newRow("largest radius") << SelectionCircle{3000, 2000, INT_MAX} << 3;
    QTest::newRow("smallest radius") << SelectionCircle{3000, 2000, INT_MIN} << 3;
    QTest::newRow("largest of everything") << SelectionCircle{INT_MAX, INT_MAX, INT_MAX} << INT_MAX;
    QTest::newRow("smallest of everything") << SelectionCircle{INT_MIN, INT_MIN, INT_MIN} << INT_MIN;
    QTest::newRow("a dotted side of 2^31 through the picture")
        << SelectionCircle{INT_MAX - 100, 2000, INT_MAX - 3000} << 1;
    QTest::newRow("all four sides far away") << SelectionCircle{3000, 2000, 1 << 30} << 1;
    QTest::newRow("a side of two million dots") << SelectionCircle{1000100, 2000, 1000000} << 1;
    QTest::newRow("centre far away") << SelectionCircle{2000000000, -2000000000, 100} << 3;
    QTest::newRow("pen of a thousand million") << SelectionCircle{3000, 2000, 1960} << 1000000000;
    QTest::newRow("negative pen") << SelectionCircle{3000, 2000, 1960} << -1000000000;
    QTest::newRow("pen and circle of the same size") << SelectionCircle{30000, -20000, 40000} << 40000;
}

void tst_CirclePainter::neverHangsOnHostileValues()
{
    QFETCH(SelectionCircle, circle);
    QFETCH(int, penSize);
    QImage picture(6000, 4000, QImage::Format_ARGB32);
    picture.fill(Qt::gray);
    const qint64 before = cpuMilliseconds();
    paintCircle(picture, circle, {QColor(255, 0, 0), penSize, Qt::DotLine});
    const qint64 taken = cpuMilliseconds() - before; // a few, without sanitizers
    QVERIFY2(taken < 1000, qPrintable(QString("%1 ms").arg(taken)));
}

void tst_CirclePainter::anyValueDoesNotCrash()
{
    Rng rng(20);
    const auto anyInt = [&rng] {
        const int number = static_cast<int>(rng.word());
        return number >> rng.between(0, 30);
    };
    for (int i = 0; i < 1500; ++i) {
        QImage picture = transparent({50, 40});
        const SelectionCircle circle{anyInt(), anyInt(), anyInt()};
        const QPoint position{anyInt(), anyInt()};
        paintCircle(picture, circle, {Qt::red, anyInt(), Qt::DotLine});
        zoneAt(circle, position);
        QCOMPARE(picture.size(), QSize(50, 40));
    }
}

void tst_CirclePainter::knowsWhereItDraws()
{
    Rng rng(20);
    for (int i = 0; i < 1500; ++i) {
        QImage picture = transparent(QSize{rng.between(1, 200), rng.between(1, 200)});
        const SelectionCircle circle = randomCircle(rng, picture.size(), rng.oneIn(4) ? 3000 : 120);
        const int penSize = rng.oneIn(3) ? rng.between(-64, 64) : rng.between(0, 9);
        paintCircle(picture, circle, {Qt::red, penSize, rng.oneIn(3) ? Qt::SolidLine : Qt::DotLine});
        const std::optional<QVector<QRect>> rectangles = paintedRectangles(picture.size(), circle, penSize);
        QVERIFY(rectangles);
        for (const QRect &rectangle : *rectangles)
            for (int y = rectangle.top(); y <= rectangle.bottom(); ++y)
                for (int x = rectangle.left(); x <= rectangle.right(); ++x)
                    picture.setPixel(x, y, 0);
        QVERIFY2(extentOf(picture).isNull(), qPrintable(QString("(%1, %2) radius %3 pen %4")
                                                            .arg(circle.centerX)
                                                            .arg(circle.centerY)
                                                            .arg(circle.radius)
                                                            .arg(penSize)));
    }
}

void tst_CirclePainter::keepsItsRectanglesApartAndInside()
{
    Rng rng(20);
    for (int i = 0; i < 300; ++i) {
        const QSize size{rng.between(1, 300), rng.between(1, 300)};
        const SelectionCircle circle = randomCircle(rng, size, 400);
        const std::optional<QVector<QRect>> rectangles =
            paintedRectangles(size, circle, rng.between(-20, 20));
        QVERIFY(rectangles);
        QRegion covered;
        for (const QRect &rectangle : *rectangles) {
            QVERIFY(!rectangle.isEmpty());
            QVERIFY(QRect(QPoint(0, 0), size).contains(rectangle));
            QVERIFY(!covered.intersects(rectangle));
            covered += rectangle;
        }
    }
}

void tst_CirclePainter::keepsItsRectanglesNarrow()
{
    const QSize photograph(6000, 4000);
    const std::optional<QVector<QRect>> rectangles =
        paintedRectangles(photograph, defaultCircle(photograph), 3);
    QVERIFY(rectangles);
    qint64 pixels = 0;
    for (const QRect &rectangle : *rectangles)
        pixels += qint64{rectangle.width()} * rectangle.height();
    QVERIFY2(pixels < 24000000 / 40, qPrintable(QString::number(pixels)));
}

void tst_CirclePainter::admitsWhatItDoesNotKnow_data()
{
    QTest::addColumn<SelectionCircle>("circle");
    QTest::addColumn<int>("penSize");
    QTest::addColumn<bool>("known");

    QTest::newRow("largest known values") << SelectionCircle{32767, -32767, 32767} << 1024 << true;
    QTest::newRow("smallest known values") << SelectionCircle{-32767, 32767, -32767} << -1024 << true;
    QTest::newRow("column too large") << SelectionCircle{32768, 0, 10} << 3 << false;
    QTest::newRow("row too small") << SelectionCircle{0, INT_MIN, 10} << 3 << false;
    QTest::newRow("radius too large") << SelectionCircle{0, 0, INT_MAX} << 3 << false;
    QTest::newRow("pen too wide") << SelectionCircle{0, 0, 10} << 1025 << false;
    QTest::newRow("pen of the smallest int") << SelectionCircle{0, 0, 10} << INT_MIN << false;
}

void tst_CirclePainter::admitsWhatItDoesNotKnow()
{
    QFETCH(SelectionCircle, circle);
    QFETCH(int, penSize);
    QFETCH(bool, known);
    QCOMPARE(paintedRectangles(QSize(100, 100), circle, penSize).has_value(), known);
}

QTEST_GUILESS_MAIN(tst_CirclePainter)
#include "tst_circlepainter.moc"
