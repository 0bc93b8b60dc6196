#include "discsampler.h"

#include "rng.h"

#include <QPoint>
#include <QSize>
#include <QtTest>

#include <cmath>
#include <limits>
#include <vector>

using namespace projection;

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int largest = std::numeric_limits<int>::max();
constexpr int smallest = std::numeric_limits<int>::min();
constexpr uint32_t untouched = 0x12345678;

PerspectiveParameters centred(int x, int y)
{
    PerspectiveParameters parameters;
    parameters.centerX = x;
    parameters.centerY = y;
    return parameters;
}

/// A photograph without pixels, where only its size matters.
ConstImageView sized(int width, int height)
{
    return {nullptr, width, width, height, 0};
}

std::vector<CosineSine> directionsRoundTheDisc(int count)
{
    std::vector<CosineSine> directions(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        directions[size_t(i)] = cosineSine(2 * pi * i / count);
    return directions;
}

bool isInside(SamplePosition sample, const ConstImageView &photograph)
{
    return sample.x >= 0 && sample.x < photograph.width && sample.y >= 0 && sample.y < photograph.height;
}

} // namespace

Q_DECLARE_METATYPE(projection::SampleBounds)

class tst_DiscSampler : public QObject
{
    Q_OBJECT

private slots:
    void offsetsWrapAt16Bits_data();
    void offsetsWrapAt16Bits();
    void centreIsAddedInMoreThan32Bits();
    void boundsTellWhatSamplesCanDo_data();
    void boundsTellWhatSamplesCanDo();
    void boundsNeedDirectionsThatAreNumbers();
    void boundedSamplersAgreeWithTheGeneralOne_data();
    void boundedSamplersAgreeWithTheGeneralOne();
    void clippedGivesNoneOutside();
    void finishKnowsOpaquePhotographs();
    void rowIsPaintedSampleBySample_data();
    void rowIsPaintedSampleBySample();
    void columnBesideThePhotographCounts_data();
    void columnBesideThePhotographCounts();
};

void tst_DiscSampler::offsetsWrapAt16Bits_data()
{
    QTest::addColumn<double>("radius");
    QTest::addColumn<int>("offset");
    QTest::newRow("truncated") << 1.99 << 1;
    QTest::newRow("truncated toward zero") << -1.99 << -1;
    QTest::newRow("32767 stays") << 32767.9 << 32767;
    QTest::newRow("32768 becomes -32768") << 32768.0 << -32768;
    QTest::newRow("-32768 stays") << -32768.9 << -32768;
    QTest::newRow("-32769 becomes 32767") << -32769.0 << 32767;
    QTest::newRow("65536 becomes 0") << 65536.0 << 0;
    QTest::newRow("more than any int: 0") << 1e300 << 0;
    QTest::newRow("infinity: 0") << infinity << 0;
    QTest::newRow("no number: 0") << notANumber << 0;
}

void tst_DiscSampler::offsetsWrapAt16Bits()
{
    QFETCH(double, radius);
    QFETCH(int, offset);
    const SamplePosition right = sampleAnywhere(centred(10, 20), {1, 0}, radius);
    QCOMPARE(right.x, int64_t(10 + offset));
    QCOMPARE(right.y, int64_t(20));
    const SamplePosition below = sampleAnywhere(centred(10, 20), {0, 1}, radius);
    QCOMPARE(below.x, int64_t(10));
    QCOMPARE(below.y, int64_t(20 + offset));
}

void tst_DiscSampler::centreIsAddedInMoreThan32Bits()
{
    const SamplePosition sample = sampleAnywhere(centred(largest, smallest), {1, -1}, 32767);
    QCOMPARE(sample.x, int64_t(largest) + 32767);
    QCOMPARE(sample.y, int64_t(smallest) - 32767);
}

void tst_DiscSampler::boundsTellWhatSamplesCanDo_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QSize>("photograph");
    QTest::addColumn<SampleBounds>("bounds");
    const QSize square(100, 100);
    const auto inside = SampleBounds::Inside;
    const auto clipped = SampleBounds::Clipped;
    const auto unknown = SampleBounds::Unknown;
    QTest::newRow("up to the last column and row") << QPoint(50, 50) << 49.99 << square << inside;
    QTest::newRow("one beyond the last column and row") << QPoint(50, 50) << 50.0 << square << clipped;
    QTest::newRow("up to the first column and row") << QPoint(49, 49) << 49.99 << square << inside;
    QTest::newRow("one beyond the first column") << QPoint(48, 49) << 49.0 << square << clipped;
    QTest::newRow("one beyond the first row") << QPoint(49, 48) << 49.0 << square << clipped;
    QTest::newRow("beyond the last column alone") << QPoint(51, 50) << 49.0 << square << clipped;
    QTest::newRow("beyond the last row alone") << QPoint(50, 51) << 49.0 << square << clipped;
    QTest::newRow("one pixel") << QPoint(0, 0) << 0.99 << QSize(1, 1) << inside;
    QTest::newRow("the largest offset") << QPoint(50, 50) << 32767.0 << square << clipped;
    QTest::newRow("an offset that may wrap") << QPoint(50, 50) << 32767.01 << square << unknown;
    QTest::newRow("infinite radius") << QPoint(50, 50) << infinity << square << unknown;
    QTest::newRow("radius that is no number") << QPoint(50, 50) << notANumber << square << unknown;
    QTest::newRow("the farthest centre") << QPoint(1 << 30, -(1 << 30)) << 9.0 << square << clipped;
    QTest::newRow("too far right") << QPoint((1 << 30) + 1, 0) << 9.0 << square << unknown;
    QTest::newRow("too far left") << QPoint(-(1 << 30) - 1, 0) << 9.0 << square << unknown;
    QTest::newRow("too far down") << QPoint(0, largest) << 9.0 << square << unknown;
    QTest::newRow("too far up") << QPoint(0, smallest) << 9.0 << square << unknown;
    QTest::newRow("as many pixels as an index counts")
        << QPoint(50, 50) << 9.0 << QSize(largest, 1) << clipped;
    QTest::newRow("more pixels than an index counts")
        << QPoint(50, 50) << 9.0 << QSize(65536, 32768) << unknown;
}

void tst_DiscSampler::boundsTellWhatSamplesCanDo()
{
    QFETCH(QPoint, center);
    QFETCH(double, radius);
    QFETCH(QSize, photograph);
    QFETCH(SampleBounds, bounds);
    QCOMPARE(boundsOfSamples(centred(center.x(), center.y()), sized(photograph.width(), photograph.height()),
                             directionsRoundTheDisc(8), radius),
             bounds);
}

void tst_DiscSampler::boundsNeedDirectionsThatAreNumbers()
{
    const auto boundsWith = [](const std::vector<CosineSine> &directions) {
        return boundsOfSamples(centred(50, 50), sized(100, 100), directions, 9);
    };
    QCOMPARE(boundsWith({{1, 0}}), SampleBounds::Inside);
    QCOMPARE(boundsWith({}), SampleBounds::Unknown);
    QCOMPARE(boundsWith({{notANumber, notANumber}, {1, 0}}), SampleBounds::Unknown);
}

void tst_DiscSampler::boundedSamplersAgreeWithTheGeneralOne_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::newRow("inside") << QPoint(50, 40);
    QTest::newRow("leaving on the right and below") << QPoint(90, 75);
    QTest::newRow("leaving on the left and above") << QPoint(2, 1);
    QTest::newRow("outside") << QPoint(-20, 130);
    QTest::newRow("far outside") << QPoint(1 << 30, -(1 << 30));
}

void tst_DiscSampler::boundedSamplersAgreeWithTheGeneralOne()
{
    QFETCH(QPoint, center);
    const PerspectiveParameters parameters = centred(center.x(), center.y());
    // Rows are longer than the photograph is wide.
    const ConstImageView photograph = {nullptr, 107, 100, 80, 0};
    const BoundedSampler<true> clipped(parameters, photograph);
    const std::vector<CosineSine> directions = directionsRoundTheDisc(97);
    Rng rng(41);
    for (int i = 0; i < 500; ++i) {
        const double radius = rng.real(0, 60);
        const bool inside =
            boundsOfSamples(parameters, photograph, directions, radius) == SampleBounds::Inside;
        for (const CosineSine &direction : directions) {
            const SamplePosition sample = sampleAnywhere(parameters, direction, radius);
            const int index =
                isInside(sample, photograph) ? int(sample.y * 107 + sample.x) : int(GatherBatch::none);
            QCOMPARE(clipped(direction, radius), index);
            if (inside)
                QCOMPARE(BoundedSampler<false>(parameters, photograph)(direction, radius), index);
        }
    }
}

void tst_DiscSampler::clippedGivesNoneOutside()
{
    const BoundedSampler<true> sample(centred(3, 2), sized(5, 4));
    QCOMPARE(sample({1, 0}, 1), 2 * 5 + 4);
    QCOMPARE(sample({1, 0}, 2), GatherBatch::none);
    QCOMPARE(sample({-1, 0}, 3), 2 * 5);
    QCOMPARE(sample({-1, 0}, 4), GatherBatch::none);
    QCOMPARE(sample({0, 1}, 1), 3 * 5 + 3);
    QCOMPARE(sample({0, 1}, 2), GatherBatch::none);
    QCOMPARE(sample({0, -1}, 2), 3);
    QCOMPARE(sample({0, -1}, 3), GatherBatch::none);
}

void tst_DiscSampler::finishKnowsOpaquePhotographs()
{
    ConstImageView photograph = sized(1, 1);
    uint32_t straight = 0;
    withPixelFinish(photograph, [&](auto finish) { straight = finish(0x80ff0080U); });
    QCOMPARE(straight, 0x80800040U);
    photograph.opaqueBits = 0xff000000U;
    uint32_t opaque = 0;
    withPixelFinish(photograph, [&](auto finish) { opaque = finish(0x80ff0080U); });
    QCOMPARE(opaque, 0xffff0080U);
}

void tst_DiscSampler::rowIsPaintedSampleBySample_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::addColumn<double>("radius");
    QTest::newRow("inside") << QPoint(20, 15) << 14.5;
    QTest::newRow("inside, negative radius") << QPoint(20, 15) << -14.5;
    QTest::newRow("clipped") << QPoint(30, 2) << 14.5;
    QTest::newRow("offsets that wrap onto the photograph") << QPoint(20, 15) << 65546.0;
    QTest::newRow("far outside") << QPoint(largest, smallest) << 14.5;
    QTest::newRow("radius that is no number: the centre") << QPoint(20, 15) << notANumber;
}

void tst_DiscSampler::rowIsPaintedSampleBySample()
{
    QFETCH(QPoint, center);
    QFETCH(double, radius);
    Rng rng(43);
    std::vector<uint32_t> pixels(size_t{43} * 30);
    for (uint32_t &pixel : pixels)
        pixel = rng.word();
    const PerspectiveParameters parameters = centred(center.x(), center.y());
    for (const uint32_t opaqueBits : {0U, 0xff000000U}) {
        const ConstImageView photograph = {pixels.data(), 43, 40, 30, opaqueBits};
        for (const int columns : {1, 3, GatherBatch::capacity, 2 * GatherBatch::capacity + 5}) {
            const std::vector<CosineSine> directions = directionsRoundTheDisc(columns);
            std::vector<uint32_t> expected(directions.size(), untouched);
            for (size_t x = 0; x < directions.size(); ++x) {
                const SamplePosition sample = sampleAnywhere(parameters, directions[x], radius);
                if (!isInside(sample, photograph))
                    continue;
                const uint32_t pixel = pixels[size_t(sample.y * 43 + sample.x)];
                expected[x] = opaqueBits ? pixel | opaqueBits : premultiplied(pixel);
            }
            std::vector<uint32_t> line(directions.size(), untouched);
            paintMapRow(parameters, photograph, directions, radius, line.data());
            QVERIFY(line == expected);
        }
    }
}

void tst_DiscSampler::columnBesideThePhotographCounts_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::addColumn<int>("count");
    QTest::newRow("on the only pixel") << QPoint(0, 0) << 5;
    QTest::newRow("one column beyond the right edge") << QPoint(1, 0) << 5;
    QTest::newRow("two columns beyond it") << QPoint(2, 0) << 0;
    QTest::newRow("one column beyond the left edge") << QPoint(-1, 0) << 0;
    QTest::newRow("one row below") << QPoint(0, 1) << 0;
    QTest::newRow("one row above") << QPoint(0, -1) << 0;
}

void tst_DiscSampler::columnBesideThePhotographCounts()
{
    QFETCH(QPoint, center);
    QFETCH(int, count);
    PerspectiveParameters parameters = centred(center.x(), center.y());
    parameters.photographWidth = parameters.photographHeight = 1;
    const NearSidedPerspective perspective(parameters);
    QCOMPARE(countRowSamples(perspective, 0.9, 5), int64_t(count));
}

QTEST_GUILESS_MAIN(tst_DiscSampler)
#include "tst_discsampler.moc"
