#include "angles.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace projection;

class tst_Angles : public QObject
{
    Q_OBJECT

private slots:
    void piIsTheNearestDouble();
    void halfATurnIs180Degrees();
    void cosineAndSineAreTheLibrarys_data();
    void cosineAndSineAreTheLibrarys();
    void directionsThatAreNoNumbers_data();
    void directionsThatAreNoNumbers();
};

void tst_Angles::piIsTheNearestDouble()
{
    QVERIFY(pi == std::acos(-1.0));
}

void tst_Angles::halfATurnIs180Degrees()
{
    QVERIFY(180 * radiansPerDegree == pi);
    QVERIFY(90 * radiansPerDegree == pi / 2);
}

void tst_Angles::cosineAndSineAreTheLibrarys_data()
{
    QTest::addColumn<double>("angleRad");
    for (const double angle : {0.0, 0.1, -0.1, 1.0, pi / 2, -pi / 2, pi, -pi, 100.0, 1e22})
        QTest::addRow("%g", angle) << angle;
}

void tst_Angles::cosineAndSineAreTheLibrarys()
{
    QFETCH(double, angleRad);
    const CosineSine direction = cosineSine(angleRad);
    QVERIFY(direction.cosine == std::cos(angleRad));
    QVERIFY(direction.sine == std::sin(angleRad));
}

void tst_Angles::directionsThatAreNoNumbers_data()
{
    QTest::addColumn<double>("angleRad");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("minus infinity") << -std::numeric_limits<double>::infinity();
}

void tst_Angles::directionsThatAreNoNumbers()
{
    QFETCH(double, angleRad);
    QVERIFY(std::isnan(cosineSine(angleRad).cosine));
    QVERIFY(std::isnan(cosineSine(angleRad).sine));
}

QTEST_GUILESS_MAIN(tst_Angles)
#include "tst_angles.moc"
