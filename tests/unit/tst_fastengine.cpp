#include "arctangent.h"
#include "composedmap.h"
#include "convertimage.h"
#include "mapconversion.h"
#include "premultiply.h"
#include "qimageview.h"
#include "rotatedmap.h"

#include "imagecompare.h"
#include "messagecollector.h"
#include "photographs.h"
#include "referenceengine.h"
#include "rng.h"

#include <QMap>
#include <QPair>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#ifdef OVMIC_HIGHWAY
#include <hwy/targets.h>
#endif

using namespace projection;

namespace
{

/// One way in which the engine can run on this machine: scalar C++, or one of the vector instruction sets.
struct Way {
    QString name;
    qint64 target; ///< 0: scalar C++
};

/// The first one is scalar C++; convertToMap() then takes the best that the build has.
QVector<Way> ways()
{
    QVector<Way> result = {{QStringLiteral("scalar C++"), 0}};
#ifdef OVMIC_HIGHWAY
    for (const int64_t target : hwy::SupportedAndGeneratedTargets())
        result.append({QString::fromLatin1(hwy::TargetName(target)), target});
#endif
    return result;
}

/// While it lives, approximateSources() uses one instruction set only.
class ForcedWay
{
public:
    explicit ForcedWay(const Way &way) : m_scalar(way.target == 0)
    {
#ifdef OVMIC_HIGHWAY
        hwy::SetSupportedTargetsForTest(way.target);
#endif
    }
    ~ForcedWay()
    {
#ifdef OVMIC_HIGHWAY
        hwy::SetSupportedTargetsForTest(0);
#endif
    }
    Q_DISABLE_COPY_MOVE(ForcedWay)

    ApproximateSources approximate() const
    {
        return m_scalar ? approximateSourcesScalar : approximateSources;
    }

private:
    bool m_scalar;
};

struct Case {
    QImage photograph;
    MapParameters parameters;
};

QImage expectedMap(const Case &c)
{
    const MapParameters &p = c.parameters;
    return reference::convert(c.photograph, {p.centerX, p.centerY, p.radius, p.distance, p.outputSizeX,
                                             p.outputSizeY, p.latitude, p.longitude, p.azimuth, true});
}

/// The chain in one pass with scalar approximations, where the kernels cover it; null elsewhere.
QImage composedWithScalars(const Case &c)
{
    const MapParameters &p = c.parameters;
    const int width = p.outputSizeX;
    const int azimuthShift = columnShift(-p.azimuth, width);
    const int longitudeShift = columnShift(p.longitude + 90, width);
    const bool azimuthDraws = p.azimuth == 0 || (azimuthShift != 0 && qAbs(azimuthShift) <= width);
    const bool longitudeDraws = p.longitude == -90 || (longitudeShift != 0 && qAbs(longitudeShift) <= width);
    if (!azimuthDraws || !longitudeDraws || p.latitude == 90)
        return {};
    const QImage photograph = c.photograph;
    QImage map(width, p.outputSizeY, QImage::Format_ARGB32_Premultiplied);
    map.fill(Qt::transparent);
    const MapRotation mapRotation = {(azimuthShift + width) % width, int(90 - p.latitude),
                                     (longitudeShift + width) % width};
    const bool covered = paintComposedMap(
        NearSidedPerspective(perspectiveParameters(p, photograph.size())), photographView(photograph),
        mapRotation, canvasView(map), [](int) {}, approximateSourcesScalar);
    return covered ? map : QImage();
}

/// Tries the whole chain on every way in turn.
/// @return what differs from the reference engine, empty if nothing does
QString difference(const Case &c)
{
    const MessageCollector silent;
    const QImage expected = expectedMap(c);
    const QImage scalar = composedWithScalars(c);
    if (!scalar.isNull()) {
        const QString found = imageDifference(scalar, expected);
        if (!found.isEmpty())
            return "scalar C++: " + found;
    }
    for (const Way &way : ways()) {
        const ForcedWay forced(way);
        const QString found = imageDifference(convertToMap(c.photograph, c.parameters), expected);
        if (!found.isEmpty())
            return way.name + ": " + found;
    }
    return {};
}

/// A disc that may lie anywhere, on a map of even width that is tilted: what the fast path is for.
Case anyCase(Rng &rng, int photographSide, QSize largestMap)
{
    const QSize size{rng.between(1, photographSide), rng.between(1, photographSide)};
    Case c;
    c.photograph = noisePhotograph(rng, size, rng.of({Alpha::Opaque, Alpha::Random, Alpha::Extreme}));
    MapParameters &p = c.parameters;
    const bool inside = rng.oneIn(2);
    const int reach = std::min(size.width(), size.height()) / 2;
    p.centerX = inside ? size.width() / 2 : rng.between(-size.width(), 2 * size.width());
    p.centerY = inside ? size.height() / 2 : rng.between(-size.height(), 2 * size.height());
    p.radius = inside ? rng.between(0, reach) : rng.between(-10, 2 * photographSide);
    p.distance = rng.oneIn(2) ? rng.real(1.01, 12) : rng.real(12, 200);
    p.outputSizeX =
        rng.oneIn(8) ? rng.between(1, largestMap.width()) : 2 * rng.between(1, largestMap.width() / 2);
    p.outputSizeY = rng.between(1, largestMap.height());
    p.latitude = rng.oneIn(4) ? rng.real(-400, 400) : rng.between(-180, 180);
    p.longitude = rng.oneIn(4) ? rng.real(-720, 720) : rng.between(-180, 180);
    p.azimuth = rng.oneIn(3) ? 0 : rng.oneIn(2) ? rng.real(-400, 400) : rng.between(-180, 180);
    return c;
}

/// What became of the approximation of some rows of a rotated map.
struct Tally {
    qint64 pairs = 0;
    qint64 uncertain = 0;
    qint64 wrong = 0; ///< neither uncertain nor what exact arithmetic says

    void operator+=(const Tally &other)
    {
        pairs += other.pairs;
        uncertain += other.uncertain;
        wrong += other.wrong;
    }
};

/// A rotated map, and what exact arithmetic says about one of its rows.
class ExactRows
{
public:
    ExactRows(int angle, QSize size) : m_mirror(SphereRotation(3, angle, size.width(), size.height())) {}
    Q_DISABLE_COPY_MOVE(ExactRows)

    void moveTo(int y)
    {
        m_row = rotatedRow(m_rotation, y);
        m_positions.clear();
        for (int pair = 0; pair < m_mirror.count(); ++pair)
            m_positions.append({m_rotation.source(m_mirror.column(pair), y),
                                m_rotation.source(m_mirror.mirroredColumn(pair), y)});
    }

    /// Approximates the row in pieces.
    /// @param boundFactor  on all error bounds
    Tally tally(ApproximateSources approximate, double boundFactor = 1) const
    {
        ApproxScale scale(m_rotation.width(), m_rotation.height());
        scale.columnErrorBound *= float(boundFactor);
        scale.rowErrorBound *= float(boundFactor);
        scale.relativeErrorBound *= float(boundFactor);
        const auto out = std::make_unique<ApproxSources>();
        Tally tally;
        for (int begin = 0; begin < m_mirror.count(); begin += ApproxSources::capacity) {
            const int count = std::min(ApproxSources::capacity, m_mirror.count() - begin);
            approximate(scale, m_row, m_mirror.cosines() + begin, m_mirror.sines() + begin, count, *out);
            tally.pairs += count;
            tally.uncertain += out->uncertainCount;
            const int32_t *nextUncertain = out->uncertain;
            for (int i = 0; i < count; ++i) {
                const bool uncertain =
                    nextUncertain < out->uncertain + out->uncertainCount && *nextUncertain == i;
                nextUncertain += uncertain;
                const MapPosition direct = {out->columns[i], out->rows[i]};
                const MapPosition mirrored = {out->mirroredColumns[i], out->rows[i]};
                const auto &exact = m_positions[begin + i];
                const bool right = uncertain ? isInside(direct) && isInside(mirrored)
                                             : same(direct, exact.first) && same(mirrored, exact.second);
                tally.wrong += right ? 0 : 1;
            }
        }
        return tally;
    }

private:
    bool isInside(MapPosition p) const
    {
        return p.column >= 0 && p.column < m_rotation.width() && p.row >= 0 && p.row < m_rotation.height();
    }
    static bool same(MapPosition a, MapPosition b) { return a.column == b.column && a.row == b.row; }

    MirroredColumns m_mirror;
    const SphereRotation &m_rotation = m_mirror.rotation();
    RotatedRow m_row{};
    QVector<QPair<MapPosition, MapPosition>> m_positions;
};

/// Adds up the approximations of every so many rows of a rotated map, on each way.
void tallyRows(int angle, QSize size, int rowStep, QMap<QString, Tally> &tallies)
{
    ExactRows rows(angle, size);
    for (int y = 0; y < size.height(); y += rowStep) {
        rows.moveTo(y);
        for (const Way &way : ways()) {
            const ForcedWay forced(way);
            tallies[way.name] += rows.tally(forced.approximate());
        }
    }
}

int setsToTry(int usually)
{
    const int asked = qEnvironmentVariableIntValue("OVMIC_SETS");
    return asked > 0 ? asked : usually;
}

} // namespace

class tst_FastEngine : public QObject
{
    Q_OBJECT

private slots:
    void premultipliesAsThePictureClassDoes();
    void arcTangentKeepsItsError();
    void mirrorsCoverEveryColumnOnce_data();
    void mirrorsCoverEveryColumnOnce();
    void approximationsAreExactOrUncertain_data();
    void approximationsAreExactOrUncertain();
    void approximationsAreExactAtEveryWholeDegree();
    void fewApproximationsAreUncertain();
    void errorBoundsHaveAMargin();
    void agreesForRandomSets();
    void agreesForEverySmallSize();
    void agreesForLargeAndOddSizes_data();
    void agreesForLargeAndOddSizes();
    void agreesAtEveryWholeDegree();
    void agreesWhereCoordinatesAreWhole_data();
    void agreesWhereCoordinatesAreWhole();
    void agreesForCirclesThatLeaveThePhotograph_data();
    void agreesForCirclesThatLeaveThePhotograph();
    void agreesWhereTheTopRowIsLost();
    void ignoresTheUnusedBitsOfOpaquePhotographs();
    void rotatesAsTheReference_data();
    void rotatesAsTheReference();
    void leavesWhatItDoesNotCover();
    void tellsEveryRowOnceAndInOrder();
};

void tst_FastEngine::premultipliesAsThePictureClassDoes()
{
    QImage source(256, 256, QImage::Format_ARGB32);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value)
            source.setPixel(value, alpha, qRgba(value, 255 - value, value ^ 0x5a, alpha));
    QImage canvas(source.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            canvas.setPixelColor(x, y, source.pixelColor(x, y));
            QCOMPARE(premultiplied(source.pixel(x, y)),
                     reinterpret_cast<const QRgb *>(canvas.constScanLine(y))[x]);
        }
}

void tst_FastEngine::arcTangentKeepsItsError()
{
    // Numbers from 1 down to 2^-32 by a walk over their bits; below, t and its arc tangent are the same
    // float.
    const int step = qEnvironmentVariableIsSet("OVMIC_SETS") ? 1 : 101;
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

void tst_FastEngine::mirrorsCoverEveryColumnOnce_data()
{
    QTest::addColumn<int>("width");
    for (const int width : {2, 4, 6, 8, 10, 12, 254, 1000, 2048, 32766})
        QTest::addRow("%d columns", width) << width;
}

void tst_FastEngine::mirrorsCoverEveryColumnOnce()
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

void tst_FastEngine::approximationsAreExactOrUncertain_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("rowStep");
    for (const int width : {2, 4, 6, 8, 10, 14, 20, 26, 32, 38, 40})
        QTest::addRow("%d columns, all heights to 40", width) << QSize(width, 0) << 1;
    QTest::newRow("64 x 32") << QSize(64, 32) << 1;
    QTest::newRow("1026 x 511") << QSize(1026, 511) << 37;
    QTest::newRow("2048 x 1024") << QSize(2048, 1024) << 101;
    QTest::newRow("8192 x 4096") << QSize(8192, 4096) << 997;
    QTest::newRow("32766 x 32767") << QSize(32766, 32767) << 16001;
}

void tst_FastEngine::approximationsAreExactOrUncertain()
{
    QFETCH(QSize, size);
    QFETCH(int, rowStep);
    QMap<QString, Tally> tallies;
    for (const int angle : {0, 55, -30})
        for (int height = size.height() ? size.height() : 2; height <= qMax(40, size.height()); ++height)
            tallyRows(angle, {size.width(), height}, rowStep, tallies);
    for (const QString &way : tallies.keys()) {
        QVERIFY2(tallies[way].wrong == 0, qPrintable(way));
        QVERIFY2(tallies[way].uncertain < tallies[way].pairs, qPrintable(way));
    }
}

void tst_FastEngine::approximationsAreExactAtEveryWholeDegree()
{
    for (int angle = -360; angle <= 360; ++angle) {
        QMap<QString, Tally> tallies;
        tallyRows(angle, {66, 67}, 9, tallies);
        for (const QString &way : tallies.keys())
            QVERIFY2(tallies[way].wrong == 0,
                     qPrintable(QStringLiteral("%1, %2 degrees").arg(way).arg(angle)));
    }
}

void tst_FastEngine::fewApproximationsAreUncertain()
{
    QMap<QString, Tally> small;
    tallyRows(55, {2048, 1024}, 61, small);
    QMap<QString, Tally> large;
    tallyRows(55, {8192, 4096}, 997, large);
    for (const Way &way : ways()) {
        QVERIFY2(small[way.name].uncertain * 200 < small[way.name].pairs, qPrintable(way.name));
        QVERIFY2(large[way.name].uncertain * 50 < large[way.name].pairs, qPrintable(way.name));
    }
}

/// Searches for the worst error: without an error bound some approximations go wrong, with half of it none must. The
/// largest map has the most whole numbers to come near to; errors and their bounds grow with the map alike.
void tst_FastEngine::errorBoundsHaveAMargin()
{
    const bool thoroughly = qEnvironmentVariableIsSet("OVMIC_SETS");
    const QVector<double> factors =
        thoroughly ? QVector<double>{0.0, 0.1, 0.2, 0.3, 0.5} : QVector<double>{0.0, 0.5};
    QMap<QString, QVector<qint64>> wrong;
    for (const int angle : {1, 35, 55, 90, 125}) {
        ExactRows rows(angle, {32766, 32767});
        for (int y = 1777; y < 32767; y += thoroughly ? 37 : 7919) {
            rows.moveTo(y);
            for (const Way &way : ways()) {
                const ForcedWay forced(way);
                wrong[way.name].resize(factors.size());
                for (int i = 0; i < factors.size(); ++i)
                    wrong[way.name][i] += rows.tally(forced.approximate(), factors[i]).wrong;
            }
        }
    }
    for (const QString &way : wrong.keys()) {
        QStringList counts;
        for (int i = 0; i < factors.size(); ++i)
            counts += QStringLiteral("%1: %2").arg(factors[i]).arg(wrong[way][i]);
        qInfo().noquote() << way << "- wrong approximations by factor on the error bounds -"
                          << counts.join(", ");
        QVERIFY(wrong[way].first() > 0);
        QVERIFY(wrong[way].last() == 0);
    }
}

void tst_FastEngine::agreesForRandomSets()
{
    int painted = 0;
    int composed = 0;
    const int sets = setsToTry(2000);
    for (int set = 0; set < sets; ++set) {
        Rng rng{quint32(set)};
        const bool large = set % 50 == 0;
        const Case c = anyCase(rng, large ? 300 : 60, large ? QSize(300, 200) : QSize(64, 40));
        const QString found = difference(c);
        if (!found.isEmpty())
            QFAIL(qPrintable(QStringLiteral("Set %1: %2").arg(set).arg(found)));
        if (set < 2000)
            painted += isBlank(expectedMap(c)) ? 0 : 1;
        composed += composedWithScalars(c).isNull() ? 0 : 1;
    }
    // Most sets must be such that the fast way is taken and something is to be seen.
    QVERIFY2(painted > 1000 || sets < 2000, qPrintable(QString::number(painted)));
    QVERIFY2(composed > sets / 2, qPrintable(QString::number(composed)));
}

void tst_FastEngine::agreesForEverySmallSize()
{
    Rng rng(7);
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 40; ++height) {
            Case c = anyCase(rng, 30, {40, 40});
            c.parameters.outputSizeX = width;
            c.parameters.outputSizeY = height;
            const QString found = difference(c);
            if (!found.isEmpty())
                QFAIL(qPrintable(QStringLiteral("%1 x %2: %3").arg(width).arg(height).arg(found)));
        }
}

void tst_FastEngine::agreesForLargeAndOddSizes_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize &size :
         {QSize(1026, 133), QSize(1023, 111), QSize(8190, 31), QSize(8192, 2), QSize(2, 4096),
          QSize(32766, 3), QSize(32768, 2), QSize(4, 32767), QSize(40000, 1), QSize(1, 40000)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_FastEngine::agreesForLargeAndOddSizes()
{
    QFETCH(QSize, size);
    for (const Alpha alpha : {Alpha::Opaque, Alpha::Random}) {
        Rng rng(11);
        Case c;
        c.photograph = noisePhotograph(rng, {200, 200}, alpha);
        c.parameters = {100, 100, 98, 6.6, size.width(), size.height(), 35, 45, 30};
        // The shift of the operations ends at 32767 columns.
        if (size.width() > 32767 || size.height() > 32767) {
            c.parameters.longitude = -90;
            c.parameters.azimuth = 0;
        }
        QCOMPARE(difference(c), QString());
    }
}

void tst_FastEngine::agreesAtEveryWholeDegree()
{
    Rng rng(13);
    Case c;
    c.photograph = noisePhotograph(rng, {60, 60}, Alpha::Random);
    c.parameters = {30, 30, 29, 6.6, 36, 18, 0, 0, 0};
    for (int degree = -360; degree <= 360; ++degree) {
        c.parameters.latitude = degree;
        c.parameters.longitude = 2 * degree;
        c.parameters.azimuth = -degree;
        const QString found = difference(c);
        if (!found.isEmpty())
            QFAIL(qPrintable(QStringLiteral("%1 degrees: %2").arg(degree).arg(found)));
    }
}

void tst_FastEngine::agreesWhereCoordinatesAreWhole_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("latitude");
    // 45 columns more than one, or 90 rows: many whole degrees fall on a pixel.
    for (const QSize &size : {QSize(46, 46), QSize(180, 91), QSize(4, 3)})
        for (const double latitude : {89.5, 45.0, 0.0, -45.0, -90.0, -180.0, 60.0})
            QTest::addRow("%d x %d, latitude %g", size.width(), size.height(), latitude) << size << latitude;
}

void tst_FastEngine::agreesWhereCoordinatesAreWhole()
{
    QFETCH(QSize, size);
    QFETCH(double, latitude);
    Rng rng(17);
    Case c;
    c.photograph = noisePhotograph(rng, {101, 101}, Alpha::Opaque);
    for (const double azimuth : {0.0, 90.0, 45.0})
        for (const double longitude : {-90.0, 0.0, 270.0}) {
            c.parameters = {50, 50, 50, 100, size.width(), size.height(), latitude, longitude, azimuth};
            QCOMPARE(difference(c), QString());
        }
}

void tst_FastEngine::agreesForCirclesThatLeaveThePhotograph_data()
{
    QTest::addColumn<QPoint>("center");
    QTest::newRow("left") << QPoint(20, 50);
    QTest::newRow("right") << QPoint(80, 50);
    QTest::newRow("up") << QPoint(50, 20);
    QTest::newRow("down") << QPoint(50, 80);
    QTest::newRow("corner") << QPoint(0, 0);
    QTest::newRow("centre outside") << QPoint(-10, 110);
    QTest::newRow("touching the last column and row") << QPoint(60, 60);
    QTest::newRow("one beyond the last column and row") << QPoint(61, 61);
    QTest::newRow("touching the first column and row") << QPoint(39, 39);
    QTest::newRow("one before the first column and row") << QPoint(38, 38);
    QTest::newRow("far away") << QPoint(100000, -100000);
    QTest::newRow("at the end of the numbers")
        << QPoint(std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
}

void tst_FastEngine::agreesForCirclesThatLeaveThePhotograph()
{
    QFETCH(QPoint, center);
    for (const Alpha alpha : {Alpha::Opaque, Alpha::Random, Alpha::Extreme})
        for (const int radius : {39, 40, 41, -39, 500, 40000}) {
            Rng rng(19);
            Case c;
            c.photograph = noisePhotograph(rng, {100, 100}, alpha);
            c.parameters = {center.x(), center.y(), radius, 100, 96, 48, 35, 139, 30};
            QCOMPARE(difference(c), QString());
        }
}

void tst_FastEngine::agreesWhereTheTopRowIsLost()
{
    for (const int photographHeight : {161, 103, 107, 187}) {
        Rng rng(23);
        Case c;
        c.photograph = noisePhotograph(rng, {21, photographHeight}, Alpha::Random);
        c.parameters = {10, photographHeight / 2, 10, 6.6, 32, 1024, 35, 139, 0};
        QCOMPARE(difference(c), QString());
    }
}

void tst_FastEngine::ignoresTheUnusedBitsOfOpaquePhotographs()
{
    Rng rng(37);
    Case c;
    c.photograph = noisePhotograph(rng, {60, 60}, Alpha::Opaque);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            reinterpret_cast<QRgb *>(c.photograph.scanLine(y))[x] &= 0x00ffffffU | rng.word();
    for (const int width : {64, 63})
        for (const double latitude : {35.0, 90.0}) {
            c.parameters = {30, 30, 29, 6.6, width, 32, latitude, 139, 30};
            QCOMPARE(difference(c), QString());
        }
}

void tst_FastEngine::rotatesAsTheReference_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<QSize>("size");
    for (const int axis : {1, 2, 3})
        for (const QSize &size :
             {QSize(64, 32), QSize(62, 33), QSize(63, 32), QSize(2, 2), QSize(1, 1), QSize(1030, 40)})
            QTest::addRow("axis %d, %d x %d", axis, size.width(), size.height()) << axis << size;
}

void tst_FastEngine::rotatesAsTheReference()
{
    QFETCH(int, axis);
    QFETCH(QSize, size);
    Rng rng(29);
    QImage map =
        noisePhotograph(rng, size, Alpha::Random).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (const Way &way : ways()) {
        const ForcedWay forced(way);
        for (const int angle : {0, 35, 90, -90, 180, 359}) {
            // A canvas that is larger and not empty shows what is left alone.
            QImage expected(size + QSize(3, 2), QImage::Format_ARGB32_Premultiplied);
            expected.fill(0xff123456);
            QImage actual = expected;
            reference::rotate(axis, angle, map, expected);
            ConvertImage().rotateImage(axis, angle, map, actual);
            COMPARE_IMAGES(actual, expected);

            QImage direct = expected;
            direct.fill(0xff123456);
            paintRotatedMap(SphereRotation(axis, angle, size.width(), size.height()), mapView(map),
                            canvasView(direct), forced.approximate());
            COMPARE_IMAGES(direct, expected);
        }
    }
}

void tst_FastEngine::leavesWhatItDoesNotCover()
{
    PerspectiveParameters parameters;
    parameters.radius = 10;
    parameters.photographWidth = 20;
    parameters.photographHeight = 20;
    Rng rng(31);
    const QImage photograph = noisePhotograph(rng, {20, 20}, Alpha::Opaque);
    const ConstImageView pixels = {reinterpret_cast<const quint32 *>(photograph.constBits()), 20, 20, 20,
                                   0xff000000U};
    const auto covers = [&](QSize size, int radius) {
        parameters.radius = radius;
        parameters.ratioX = size.width() / 20.0;
        parameters.ratioY = size.height() / 40.0;
        QVector<quint32> canvas(size.width() * size.height());
        const bool covered =
            paintComposedMap(NearSidedPerspective(parameters), pixels, {0, 55, 0},
                             {canvas.data(), size.width(), size.width(), size.height()}, [](int) {});
        return covered || std::count(canvas.begin(), canvas.end(), 0U) != canvas.size();
    };
    QVERIFY(covers({64, 32}, 10));
    QVERIFY(covers({64, 32}, 32767));
    QVERIFY(!covers({64, 32}, 40000));
    QVERIFY(!covers({63, 32}, 10));
    QVERIFY(!covers({64, 1}, 10));
    QVERIFY(!covers({32768, 2}, 10));
}

void tst_FastEngine::tellsEveryRowOnceAndInOrder()
{
    PerspectiveParameters parameters;
    parameters.radius = 10;
    parameters.centerX = parameters.centerY = 10;
    parameters.photographWidth = parameters.photographHeight = 20;
    parameters.ratioX = 64 / 20.0;
    parameters.ratioY = 100 / 40.0;
    const NearSidedPerspective perspective(parameters);
    QVector<quint32> photograph(400, 0xffffffffU);
    QVector<quint32> canvas(64 * 100);
    QVector<int> told;
    const auto rowsOnceTold = [&](int rows) {
        told.append(rows);
        canvas.fill(0xff00ff00U); // what an event does to the canvas must not be read again
    };
    QVERIFY(paintComposedMap(perspective, {photograph.data(), 20, 20, 20, 0xff000000U}, {0, 55, 0},
                             {canvas.data(), 64, 64, 100}, rowsOnceTold));
    QVERIFY(told.size() > 1);
    QVERIFY(std::is_sorted(told.begin(), told.end()));
    QCOMPARE(told.last(), 50 - int(perspective.edgeRow()));
    QCOMPARE(canvas.count(0xff00ff00U), canvas.size());
}

QTEST_GUILESS_MAIN(tst_FastEngine)
#include "tst_fastengine.moc"
