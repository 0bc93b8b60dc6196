#include "limbsectors.h"

#include <QtTest>

#include <cmath>

/// What a sector says about limbs at any offset.
class tst_LimbSectors : public QObject
{
    Q_OBJECT

private slots:
    void costLiesBetweenTheRests_data();
    void costLiesBetweenTheRests();
    void gainComparesWithNoLimb();
    void contrastIsInsideMinusOutside_data();
    void contrastIsInsideMinusOutside();
};

namespace
{

/// The k-th rest is (k - 24)^2, so that the offset 0 leaves nothing.
LimbSector parabola()
{
    LimbSector sector;
    for (std::size_t i = 0; i < limbOffsets; ++i) {
        const float fromMiddle = static_cast<float>(i) - 24.0F;
        sector.rest[i] = fromMiddle * fromMiddle;
    }
    sector.without = 1000.0F;
    return sector;
}

} // namespace

void tst_LimbSectors::costLiesBetweenTheRests_data()
{
    QTest::addColumn<double>("offset"); // samples
    QTest::addColumn<double>("rest");
    QTest::newRow("the best offset") << 0.0 << 0.0;
    QTest::newRow("one step further out") << 0.5 << 1.0;
    QTest::newRow("one step further in") << -0.5 << 1.0;
    QTest::newRow("between two steps") << 0.625 << 1.75; // a quarter of the way from 1 to 4
    QTest::newRow("the first") << -12.0 << 576.0;
    QTest::newRow("before the first") << -13.0 << 576.0;
    QTest::newRow("far before the first") << -1e300 << 576.0;
    QTest::newRow("the last but one") << 11.5 << 529.0;
    QTest::newRow("the last") << 12.0 << 575.953; // a thousandth of a step before it
    QTest::newRow("behind the last") << 12.5 << 575.953;
    QTest::newRow("far behind the last") << 1e300 << 575.953;
}

void tst_LimbSectors::costLiesBetweenTheRests()
{
    QFETCH(double, offset);
    QFETCH(double, rest);
    LimbSector sector = parabola();
    const double unit = sector.cost(0.5, 1.0); // of a rest of 1
    QVERIFY(unit > 0.0);
    QVERIFY(std::abs(sector.cost(offset, 1.0) - rest * unit) <= 1e-9 * rest * unit);
    QVERIFY(std::abs(sector.cost(offset, 8.0) - 8.0 * rest * unit) <= 1e-9 * rest * unit);
    // Against the best rest, and the smaller the larger that is.
    sector.least = 1.0F;
    sector.rest[24] = 1.0F;
    if (offset == 0.5)
        QCOMPARE(sector.cost(offset, 1.0), 0.0);
    else if (rest > 1.0)
        QVERIFY(sector.cost(offset, 1.0) < (rest - 1.0) * unit);
}

void tst_LimbSectors::gainComparesWithNoLimb()
{
    const LimbSector sector = parabola();
    const double unit = sector.cost(0.5, 1.0);
    QVERIFY(std::abs(sector.gain(2.0) - 2000.0 * unit) <= 1e-6 * unit);
}

void tst_LimbSectors::contrastIsInsideMinusOutside_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("depth");
    QTest::addColumn<double>("contrast");
    QTest::addColumn<double>("sky");
    // Sample i has the light i; the limb lies at 19.5, and two samples on either side of it show neither.
    QTest::newRow("half the profile") << 0.0 << 0.5 << 8.5 - 30.5 << 30.5;
    QTest::newRow("a tenth of it") << 0.0 << 0.1 << 16.5 - 22.5 << 22.5;
    QTest::newRow("one sample on either side") << 0.0 << 0.0625 << 17.0 - 22.0 << 22.0;
    QTest::newRow("no sample is far enough") << 0.0 << 0.05 << 0.0 << 0.0;
    QTest::newRow("nothing outside") << 19.0 << 0.25 << 0.0 << 0.0;
    QTest::newRow("nothing inside") << -19.0 << 0.25 << 0.0 << 6.5;
    QTest::newRow("three samples further out") << 3.0 << 0.1 << 19.5 - 25.5 << 25.5;
}

void tst_LimbSectors::contrastIsInsideMinusOutside()
{
    QFETCH(double, offset);
    QFETCH(double, depth);
    QFETCH(double, contrast);
    QFETCH(double, sky);
    LimbSector sector;
    for (std::size_t i = 0; i < profileSamples; ++i)
        sector.profile[i] = static_cast<float>(i);
    double seen = -1.0;
    QCOMPARE(sector.contrast(offset, depth, seen), contrast);
    QCOMPARE(seen, sky);
}

QTEST_APPLESS_MAIN(tst_LimbSectors)
#include "tst_limbsectors.moc"
