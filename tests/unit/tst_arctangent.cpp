#include "arctangent.h"

#include "sets.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace projection;

class tst_ArcTangent : public QObject
{
    Q_OBJECT

private slots:
    void keepsItsError();
    void meetsBothEnds();
};

void tst_ArcTangent::keepsItsError()
{
    // Numbers from 1 down to 2^-32 by a walk over their bits; below, t and its arc tangent are the same
    // float.
    const int step = searchesThoroughly() ? 1 : 101;
    const auto bitsOf = [](float f) {
        quint32 bits = 0;
        std::memcpy(&bits, &f, sizeof bits);
        return bits;
    };
    double worst = 0;
    for (quint32 bits = bitsOf(1.0F); bits >= bitsOf(0x1p-32F); bits -= quint32(step)) {
        float t = 0;
        std::memcpy(&t, &bits, sizeof t);
        const double exact = std::atan(double(t));
        worst = std::max(worst, std::abs(double(arcTangent(t)) - exact) / exact);
    }
    QVERIFY2(worst * (1 << 24) < 4, qPrintable(QString::number(worst * (1 << 24))));
    QVERIFY(worst * (1 << 24) > 0.5); // a float cannot do better: the walk has measured something
}

void tst_ArcTangent::meetsBothEnds()
{
    QCOMPARE(arcTangent(0.0F), 0.0F);
    constexpr double eighthOfATurn = 0.785398163397448;
    QVERIFY(std::abs(double(arcTangent(1.0F)) - eighthOfATurn) <= 4 * eighthOfATurn / (1 << 24));
}

QTEST_GUILESS_MAIN(tst_ArcTangent)
#include "tst_arctangent.moc"
