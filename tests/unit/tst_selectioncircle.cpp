#include "selectioncircle.h"

#include "cputime.h"
#include "rng.h"

#include <QImage>
#include <QRegion>
#include <QtTest>

#include <climits>
#include <cmath>

Q_DECLARE_METATYPE(SelectionCircle)
Q_DECLARE_METATYPE(CircleZone)
Q_DECLARE_METATYPE(std::optional<Qt::CursorShape>)

static bool operator==(const SelectionCircle &a, const SelectionCircle &b)
{
    return a.centerX == b.centerX && a.centerY == b.centerY && a.radius == b.radius;
}

namespace
{

/// The zones as the toolkit's regions give them.
class RegionZones
{
public:
    explicit RegionZones(const SelectionCircle &circle)
        : m_circle(circle)
        , m_handle(square(8), QRegion::Ellipse)
        , m_inner(square(circle.radius - 8), QRegion::Ellipse)
        , m_outer(square(circle.radius + 8), QRegion::Ellipse)
    {
    }

    CircleZone at(QPoint p) const
    {
        if (m_handle.contains(p))
            return CircleZone::CentreHandle;
        if (m_outer.contains(p) && !m_inner.contains(p))
            return CircleZone::Ring;
        if (!square(m_circle.radius + 8).contains(p))
            return CircleZone::Outside;
        return square(m_circle.radius - 8).contains(p) ? CircleZone::Inside : CircleZone::Corner;
    }

private:
    QRect square(int halfSide) const
    {
        return {QPoint(m_circle.centerX - halfSide, m_circle.centerY - halfSide),
                QPoint(m_circle.centerX + halfSide, m_circle.centerY + halfSide)};
    }

    SelectionCircle m_circle;
    QRegion m_handle;
    QRegion m_inner;
    QRegion m_outer;
};

} // namespace

class tst_SelectionCircle : public QObject
{
    Q_OBJECT

private slots:
    void fitsAPhotograph_data();
    void fitsAPhotograph();
    void stepsAndMoves();
    void resizesToTheFartherDistance_data();
    void resizesToTheFartherDistance();
    void drawsANewCircleFromTheLongerSide_data();
    void drawsANewCircleFromTheLongerSide();
    void wrapsInsteadOfOverflowing();

    void namesTheZone_data();
    void namesTheZone();
    void showsTheCursor_data();
    void showsTheCursor();
    void zonesEqualRegionsOnAGrid();
    void zonesEqualRegionsOnLargeRings_data();
    void zonesEqualRegionsOnLargeRings();
    void answersAtOnce_data();
    void answersAtOnce();
};

void tst_SelectionCircle::fitsAPhotograph_data()
{
    QTest::addColumn<QSize>("photograph");
    QTest::addColumn<SelectionCircle>("expected");
    QTest::newRow("landscape: 0.98 of half the height") << QSize(1000, 700) << SelectionCircle{500, 350, 343};
    QTest::newRow("portrait: 0.98 of half the width") << QSize(700, 1000) << SelectionCircle{350, 500, 343};
    QTest::newRow("odd sizes: halves and radius cut off") << QSize(101, 99) << SelectionCircle{50, 49, 48};
    QTest::newRow("1 x 1") << QSize(1, 1) << SelectionCircle{0, 0, 0};
    QTest::newRow("2 x 2: radius 0.98 is 0") << QSize(2, 2) << SelectionCircle{1, 1, 0};
    QTest::newRow("no photograph") << QSize(0, 0) << SelectionCircle{0, 0, 0};
}

void tst_SelectionCircle::fitsAPhotograph()
{
    QFETCH(QSize, photograph);
    QFETCH(SelectionCircle, expected);
    QCOMPARE(defaultCircle(photograph), expected);
}

void tst_SelectionCircle::stepsAndMoves()
{
    const SelectionCircle circle{100, 200, 50};
    QCOMPARE(stepped(circle, -1, 0, 0), (SelectionCircle{99, 200, 50}));
    QCOMPARE(stepped(circle, 0, 1, 0), (SelectionCircle{100, 201, 50}));
    QCOMPARE(stepped({1, 2, 0}, 0, 0, -1), (SelectionCircle{1, 2, -1})); // nothing stops at 0
    QCOMPARE(moved(circle, {10, 10}, {13, 6}), (SelectionCircle{103, 196, 50}));
    QCOMPARE(moved(circle, {500, 500}, {0, 0}), (SelectionCircle{-400, -300, 50}));
}

void tst_SelectionCircle::resizesToTheFartherDistance_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("expected");
    QTest::newRow("right") << QPoint(130, 210) << 30;
    QTest::newRow("left") << QPoint(70, 210) << 30;
    QTest::newRow("below") << QPoint(110, 240) << 40;
    QTest::newRow("above") << QPoint(110, 160) << 40;
    QTest::newRow("corner") << QPoint(60, 160) << 40;
    QTest::newRow("on the centre") << QPoint(100, 200) << 0;
}

void tst_SelectionCircle::resizesToTheFartherDistance()
{
    QFETCH(QPoint, position);
    QFETCH(int, expected);
    QCOMPARE(resized({100, 200, 7}, position), (SelectionCircle{100, 200, expected}));
}

void tst_SelectionCircle::drawsANewCircleFromTheLongerSide_data()
{
    QTest::addColumn<QPoint>("first");
    QTest::addColumn<QPoint>("last");
    QTest::addColumn<int>("radius"); // 0: no feedback

    QTest::newRow("wide") << QPoint(10, 10) << QPoint(30, 15) << 20;
    QTest::newRow("tall") << QPoint(10, 10) << QPoint(15, 30) << 20;
    QTest::newRow("one pixel each way") << QPoint(10, 10) << QPoint(11, 11) << 1;
    QTest::newRow("horizontal: none") << QPoint(10, 10) << QPoint(30, 10) << 0;
    QTest::newRow("vertical: none") << QPoint(10, 10) << QPoint(10, 30) << 0;
    QTest::newRow("no drag: none") << QPoint(10, 10) << QPoint(10, 10) << 0;
    QTest::newRow("one pixel backwards: none") << QPoint(10, 10) << QPoint(9, 30) << 0;
}

void tst_SelectionCircle::drawsANewCircleFromTheLongerSide()
{
    QFETCH(QPoint, first);
    QFETCH(QPoint, last);
    QFETCH(int, radius);
    const std::optional<SelectionCircle> circle = newCircle({3, 4}, first, last);
    QCOMPARE(circle.has_value(), radius != 0);
    if (circle)
        QCOMPARE(*circle, (SelectionCircle{3, 4, radius}));
}

void tst_SelectionCircle::wrapsInsteadOfOverflowing()
{
    QCOMPARE(stepped({INT_MAX, INT_MIN, INT_MAX}, 1, -1, 1), (SelectionCircle{INT_MIN, INT_MAX, INT_MIN}));
    QCOMPARE(moved({INT_MAX, 0, 1}, {-1, INT_MAX}, {0, INT_MIN}), (SelectionCircle{INT_MIN, 1, 1}));
    QCOMPARE(resized({INT_MIN, 0, 1}, {INT_MAX, 0}).radius, -1);
    QCOMPARE(resized({INT_MIN, 0, 1}, {0, 0}).radius, INT_MIN);
    QVERIFY(!newCircle({0, 0}, {INT_MIN, 0}, {INT_MAX, 5})); // the width wraps to -1
    QCOMPARE(newCircle({0, 0}, {-1, 0}, {INT_MAX - 1, 5})->radius, INT_MAX);
}

void tst_SelectionCircle::namesTheZone_data()
{
    QTest::addColumn<SelectionCircle>("circle");
    QTest::addColumn<QPoint>("offset"); // from the centre
    QTest::addColumn<CircleZone>("expected");

    const SelectionCircle circle{1000, 800, 100};
    QTest::newRow("on the centre") << circle << QPoint(0, 0) << CircleZone::CentreHandle;
    QTest::newRow("7 px to the left of the centre") << circle << QPoint(-7, 0) << CircleZone::CentreHandle;
    QTest::newRow("8 px to the left: the region's vertex lies a row lower")
        << circle << QPoint(-8, 0) << CircleZone::Inside;
    QTest::newRow("8 px to the right of the centre") << circle << QPoint(8, 0) << CircleZone::CentreHandle;
    QTest::newRow("9 px from the centre") << circle << QPoint(9, 0) << CircleZone::Inside;
    QTest::newRow("8 px both ways: not in the disc") << circle << QPoint(8, 8) << CircleZone::Inside;
    QTest::newRow("on the line, right") << circle << QPoint(100, 0) << CircleZone::Ring;
    QTest::newRow("on the line, slanting") << circle << QPoint(-71, 71) << CircleZone::Ring;
    QTest::newRow("105 right: beside the line") << circle << QPoint(105, 0) << CircleZone::Ring;
    QTest::newRow("108 right: the last of the ring") << circle << QPoint(108, 0) << CircleZone::Ring;
    QTest::newRow("109 right: outside") << circle << QPoint(109, 0) << CircleZone::Outside;
    QTest::newRow("93 right: the first of the ring") << circle << QPoint(93, 0) << CircleZone::Ring;
    QTest::newRow("92 right: inside") << circle << QPoint(92, 0) << CircleZone::Inside;
    QTest::newRow("105 right and down: corner") << circle << QPoint(105, 105) << CircleZone::Corner;
    QTest::newRow("the outer corner itself") << circle << QPoint(108, -108) << CircleZone::Corner;
    QTest::newRow("one beyond the outer corner") << circle << QPoint(109, 108) << CircleZone::Outside;
    QTest::newRow("the inner corner itself") << circle << QPoint(92, 92) << CircleZone::Inside;
    QTest::newRow("one beyond the inner corner") << circle << QPoint(93, 92) << CircleZone::Corner;
    QTest::newRow("in the inner square, beyond the ring") << circle << QPoint(85, 85) << CircleZone::Inside;

    QTest::newRow("3 px from the centre, radius 2")
        << SelectionCircle{50, 60, 2} << QPoint(3, 0) << CircleZone::CentreHandle;
    QTest::newRow("radius 2: all round the handle is ring")
        << SelectionCircle{50, 60, 2} << QPoint(9, 0) << CircleZone::Ring;
    QTest::newRow("radius 2: corner of the outer square")
        << SelectionCircle{50, 60, 2} << QPoint(10, 10) << CircleZone::Corner;
    QTest::newRow("radius 2: 6 px is in the inner square turned round, but the handle comes first")
        << SelectionCircle{50, 60, 2} << QPoint(6, 0) << CircleZone::CentreHandle;
    QTest::newRow("radius 0: ring up to 8, all of it handle")
        << SelectionCircle{50, 60, 0} << QPoint(8, 0) << CircleZone::CentreHandle;
    QTest::newRow("radius -8: no ring") << SelectionCircle{50, 60, -9} << QPoint(9, 0) << CircleZone::Outside;
    QTest::newRow("radius -20: the outer square is the smaller one")
        << SelectionCircle{50, 60, -20} << QPoint(12, 12) << CircleZone::Inside;
    QTest::newRow("radius -20: in the inner square but beyond the outer one")
        << SelectionCircle{50, 60, -20} << QPoint(13, 0) << CircleZone::Outside;

    QTest::newRow("largest radius: inside")
        << SelectionCircle{0, 0, INT_MAX} << QPoint(4000, 3000) << CircleZone::Inside;
    QTest::newRow("largest radius: on its line")
        << SelectionCircle{0, 0, INT_MAX} << QPoint(INT_MAX, 0) << CircleZone::Ring;
    QTest::newRow("largest radius: in its corner")
        << SelectionCircle{0, 0, INT_MAX} << QPoint(INT_MAX, INT_MAX) << CircleZone::Corner;
    QTest::newRow("smallest radius") << SelectionCircle{0, 0, INT_MIN} << QPoint(4000, 3000)
                                     << CircleZone::Inside;
}

void tst_SelectionCircle::namesTheZone()
{
    QFETCH(SelectionCircle, circle);
    QFETCH(QPoint, offset);
    QFETCH(CircleZone, expected);
    QCOMPARE(static_cast<int>(zoneAt(circle, QPoint(circle.centerX, circle.centerY) + offset)),
             static_cast<int>(expected));
}

void tst_SelectionCircle::showsTheCursor_data()
{
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<std::optional<Qt::CursorShape>>("expected");

    using Cursor = std::optional<Qt::CursorShape>;
    QTest::newRow("centre handle") << QPoint(3, 3) << Cursor(Qt::SizeAllCursor);
    QTest::newRow("line") << QPoint(0, -100) << Cursor(Qt::SizeAllCursor);
    QTest::newRow("inside") << QPoint(40, 40) << Cursor();
    QTest::newRow("outside") << QPoint(200, 0) << Cursor();
    QTest::newRow("lower right corner") << QPoint(105, 105) << Cursor(Qt::SizeFDiagCursor);
    QTest::newRow("upper left corner") << QPoint(-105, -105) << Cursor(Qt::SizeFDiagCursor);
    QTest::newRow("upper right corner") << QPoint(105, -105) << Cursor(Qt::SizeBDiagCursor);
    QTest::newRow("lower left corner") << QPoint(-105, 105) << Cursor(Qt::SizeBDiagCursor);
}

void tst_SelectionCircle::showsTheCursor()
{
    QFETCH(QPoint, offset);
    QFETCH(std::optional<Qt::CursorShape>, expected);
    const SelectionCircle circle{1000, 800, 100};
    QVERIFY(cursorAt(circle, QPoint(1000, 800) + offset) == expected);
}

void tst_SelectionCircle::zonesEqualRegionsOnAGrid()
{
    Rng rng(20);
    const auto compare = [](const SelectionCircle &circle, int step) {
        const RegionZones expected(circle);
        const int edge = qAbs(circle.radius) + 20;
        for (int y = -edge; y <= edge; y += step) {
            for (int x = -edge; x <= edge; x += step) {
                const QPoint p(circle.centerX + x, circle.centerY + y);
                if (zoneAt(circle, p) != expected.at(p))
                    return QString("radius %1, centre (%2, %3), offset (%4, %5)")
                        .arg(circle.radius)
                        .arg(circle.centerX)
                        .arg(circle.centerY)
                        .arg(x)
                        .arg(y);
            }
        }
        return QString();
    };
    for (int radius = -24; radius <= 40; ++radius)
        QCOMPARE(compare({rng.between(-900, 900), rng.between(-900, 900), radius}, 1), QString());
    for (int radius = 41; radius <= 900; radius += 43)
        QCOMPARE(compare({rng.between(-900, 900), rng.between(-900, 900), radius}, 2 + radius / 20),
                 QString());
}

void tst_SelectionCircle::zonesEqualRegionsOnLargeRings_data()
{
    QTest::addColumn<SelectionCircle>("circle");
    for (const int radius : {1234, 1961, 4000})
        QTest::addRow("radius %d", radius) << SelectionCircle{radius / 3, -radius / 7, radius};
}

void tst_SelectionCircle::zonesEqualRegionsOnLargeRings()
{
    QFETCH(SelectionCircle, circle);
    const RegionZones expected(circle);
    Rng rng(20);
    for (int i = 0; i < 1500; ++i) {
        const double angle = i * 0.00418879;
        const double distance = circle.radius + rng.between(-12, 12);
        const QPoint p(circle.centerX + qRound(distance * std::cos(angle)),
                       circle.centerY + qRound(distance * std::sin(angle)));
        QVERIFY2(zoneAt(circle, p) == expected.at(p), qPrintable(QString("(%1, %2)").arg(p.x()).arg(p.y())));
    }
}

void tst_SelectionCircle::answersAtOnce_data()
{
    QTest::addColumn<int>("radius");
    for (const int radius : {100, 32000, 65536, 1 << 30, INT_MAX, -1, -65536, INT_MIN})
        QTest::addRow("radius %d", radius) << radius;
}

void tst_SelectionCircle::answersAtOnce()
{
    QFETCH(int, radius);
    constexpr qint64 hovers = 200;
    const qint64 before = cpuMilliseconds();
    for (int i = 0; i < hovers; ++i)
        for (const int centre : {0, INT_MIN, INT_MAX})
            cursorAt({centre, i, radius}, {17 * i, 19 * i});
    QVERIFY2(cpuMilliseconds() - before < 3 * hovers, "a hover takes longer than a millisecond");
}

QTEST_GUILESS_MAIN(tst_SelectionCircle)
#include "tst_selectioncircle.moc"
