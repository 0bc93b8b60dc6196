#include "mirroredcolumns.h"

#include <QtTest>

#include <cmath>

using namespace projection;

class tst_MirroredColumns : public QObject
{
    Q_OBJECT

private slots:
    void pairsCoverEveryColumnOnce_data();
    void pairsCoverEveryColumnOnce();
    void vectorsMayReadBeyondTheLastPair();
    void onlyEvenMapsAboutAxis3HavePairs_data();
    void onlyEvenMapsAboutAxis3HavePairs();
};

void tst_MirroredColumns::pairsCoverEveryColumnOnce_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {2, 4, 6, 8, 10, 12, 254, 1000, 2048, 32766})
        QTest::addRow("%d columns", width) << width;
}

void tst_MirroredColumns::pairsCoverEveryColumnOnce()
{
    QFETCH(int, width);
    const SphereRotation rotation(3, 55, width, 2);
    const MirroredColumns mirror(rotation);
    QVector<int> seen(width);
    for (int pair = 0; pair < mirror.count(); ++pair) {
        const int column = mirror.column(pair);
        const int mirrored = mirror.mirroredColumn(pair);
        ++seen[column];
        // Longitudes 90 and 270 are their own mirrors.
        if (mirrored != column)
            ++seen[mirrored];
        QVERIFY(mirror.cosines()[pair] >= 0);
        QVERIFY(pair == 0 || mirror.sines()[pair] > mirror.sines()[pair - 1]);
        QVERIFY(std::abs(rotation.column(column).sine - rotation.column(mirrored).sine) < 1e-14);
        QVERIFY(std::abs(rotation.column(column).cosine + rotation.column(mirrored).cosine) < 1e-14);
    }
    QCOMPARE(seen, QVector<int>(width, 1));
}

void tst_MirroredColumns::vectorsMayReadBeyondTheLastPair()
{
    for (const int width : {2, 1000, 32766}) {
        const MirroredColumns mirror(SphereRotation(3, 55, width, 2));
        for (int i = mirror.count(); i < mirror.count() + MirroredColumns::padding; ++i)
            QVERIFY(std::isfinite(mirror.cosines()[i]) && std::isfinite(mirror.sines()[i]));
    }
}

void tst_MirroredColumns::onlyEvenMapsAboutAxis3HavePairs_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("covered");
    QTest::newRow("the smallest") << 3 << 2 << 2 << true;
    QTest::newRow("the largest") << 3 << 32766 << 32767 << true;
    QTest::newRow("an odd height") << 3 << 64 << 33 << true;
    QTest::newRow("another axis") << 2 << 64 << 32 << false;
    QTest::newRow("the first axis") << 1 << 64 << 32 << false;
    QTest::newRow("an odd width") << 3 << 63 << 32 << false;
    QTest::newRow("no column") << 3 << 0 << 32 << false;
    QTest::newRow("less than no column") << 3 << -2 << 32 << false;
    QTest::newRow("one row") << 3 << 64 << 1 << false;
    QTest::newRow("less than no row") << 3 << 64 << -2 << false;
    QTest::newRow("too wide") << 3 << 32768 << 2 << false;
    QTest::newRow("too high") << 3 << 2 << 32768 << false;
}

void tst_MirroredColumns::onlyEvenMapsAboutAxis3HavePairs()
{
    QFETCH(int, axis);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(bool, covered);
    QCOMPARE(MirroredColumns::cover(axis, width, height), covered);
}

QTEST_GUILESS_MAIN(tst_MirroredColumns)
#include "tst_mirroredcolumns.moc"
