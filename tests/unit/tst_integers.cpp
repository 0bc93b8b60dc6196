#include "integers.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace projection;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();

} // namespace

class tst_Integers : public QObject
{
    Q_OBJECT

private slots:
    void truncatesTowardZero_data();
    void truncatesTowardZero();
    void whatFitsNoIntIsTheSmallest_data();
    void whatFitsNoIntIsTheSmallest();
    void keepsTheLow16BitsWithTheirSign_data();
    void keepsTheLow16BitsWithTheirSign();
    void wrapsByMultiplesOf65536();
};

void tst_Integers::truncatesTowardZero_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("whole");
    QTest::newRow("zero") << 0.0 << 0;
    QTest::newRow("minus zero") << -0.0 << 0;
    QTest::newRow("smallest number above zero") << std::numeric_limits<double>::denorm_min() << 0;
    QTest::newRow("a hair below 1") << std::nextafter(1.0, 0.0) << 0;
    QTest::newRow("1") << 1.0 << 1;
    QTest::newRow("a hair above -1") << std::nextafter(-1.0, 0.0) << 0;
    QTest::newRow("-1") << -1.0 << -1;
    QTest::newRow("1.5") << 1.5 << 1;
    QTest::newRow("-1.5") << -1.5 << -1;
    QTest::newRow("-2.999") << -2.999 << -2;
    QTest::newRow("2^31 - 2") << 2147483646.0 << largest - 1;
    QTest::newRow("2^31 - 1") << 2147483647.0 << largest;
    QTest::newRow("a hair below 2^31") << std::nextafter(2147483648.0, 0.0) << largest;
    QTest::newRow("-2^31 + 1") << -2147483647.0 << smallest + 1;
    QTest::newRow("a hair above -2^31") << std::nextafter(-2147483648.0, 0.0) << smallest + 1;
    QTest::newRow("-2^31") << -2147483648.0 << smallest;
    QTest::newRow("half below -2^31") << -2147483648.5 << smallest;
    QTest::newRow("a hair above -2^31 - 1") << std::nextafter(-2147483649.0, 0.0) << smallest;
}

void tst_Integers::truncatesTowardZero()
{
    QFETCH(double, value);
    QFETCH(int, whole);
    QCOMPARE(truncateToInt(value), whole);
}

void tst_Integers::whatFitsNoIntIsTheSmallest_data()
{
    QTest::addColumn<double>("value");
    QTest::newRow("2^31") << 2147483648.0;
    QTest::newRow("a hair above 2^31") << std::nextafter(2147483648.0, infinity);
    QTest::newRow("2^32, whose low bits are 0") << 4294967296.0;
    QTest::newRow("2^63") << 9223372036854775808.0;
    QTest::newRow("the largest double") << std::numeric_limits<double>::max();
    QTest::newRow("infinity") << infinity;
    QTest::newRow("-2^31 - 1") << -2147483649.0;
    QTest::newRow("a hair below -2^31 - 1") << std::nextafter(-2147483649.0, -infinity);
    QTest::newRow("the lowest double") << std::numeric_limits<double>::lowest();
    QTest::newRow("minus infinity") << -infinity;
    QTest::newRow("no number") << notANumber;
    QTest::newRow("no number, with a sign") << std::copysign(notANumber, -1.0);
}

void tst_Integers::whatFitsNoIntIsTheSmallest()
{
    QFETCH(double, value);
    QCOMPARE(truncateToInt(value), smallest);
}

void tst_Integers::keepsTheLow16BitsWithTheirSign_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("wrapped");
    const QVector<QPair<int, int>> rows = {
        {0, 0},
        {1, 1},
        {-1, -1},
        {32766, 32766},
        {32767, 32767},
        {32768, -32768},
        {32769, -32767},
        {65535, -1},
        {65536, 0},
        {65537, 1},
        {98303, 32767},
        {98304, -32768},
        {-32767, -32767},
        {-32768, -32768},
        {-32769, 32767},
        {-65535, 1},
        {-65536, 0},
        {-65537, -1},
        {largest, -1},
        {largest - 1, -2},
        {smallest, 0},
        {smallest + 1, 1},
        {0x12348765, 0x8765 - 65536},
    };
    for (const auto &[value, wrapped] : rows)
        QTest::addRow("%d", value) << value << wrapped;
}

void tst_Integers::keepsTheLow16BitsWithTheirSign()
{
    QFETCH(int, value);
    QFETCH(int, wrapped);
    QCOMPARE(wrapToInt16(value), wrapped);
}

void tst_Integers::wrapsByMultiplesOf65536()
{
    for (int value = -200000; value <= 200000; ++value) {
        const int wrapped = wrapToInt16(value);
        QVERIFY(wrapped >= -32768 && wrapped <= 32767);
        QCOMPARE((value - wrapped) % 65536, 0);
    }
}

// Both are used in constants.
static_assert(truncateToInt(-7.9) == -7 && wrapToInt16(40000) == 40000 - 65536);

QTEST_GUILESS_MAIN(tst_Integers)
#include "tst_integers.moc"
