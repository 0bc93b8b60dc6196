#include "approxrotation.h"

#include "sets.h"
#include "vectortargets.h"

#include <QMap>
#include <QPair>
#include <QSize>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace projection;

namespace
{

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

/// Adds up the approximations of every so many rows of a rotated map, on each target.
void tallyRows(int angle, QSize size, int rowStep, QMap<QString, Tally> &tallies)
{
    ExactRows rows(angle, size);
    for (int y = 0; y < size.height(); y += rowStep) {
        rows.moveTo(y);
        for (const Target &target : targets()) {
            const ForcedTarget forced(target);
            tallies[target.name] += rows.tally(forced.approximate());
        }
    }
}

} // namespace

class tst_ApproxRotation : public QObject
{
    Q_OBJECT

private slots:
    void approximationsAreExactOrUncertain_data();
    void approximationsAreExactOrUncertain();
    void approximationsAreExactAtEveryWholeDegree();
    void fewApproximationsAreUncertain();
    void errorBoundsHaveAMargin();
};

void tst_ApproxRotation::approximationsAreExactOrUncertain_data()
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

void tst_ApproxRotation::approximationsAreExactOrUncertain()
{
    QFETCH(QSize, size);
    QFETCH(int, rowStep);
    QMap<QString, Tally> tallies;
    for (const int angle : {0, 55, -30})
        for (int height = size.height() ? size.height() : 2; height <= qMax(40, size.height()); ++height)
            tallyRows(angle, {size.width(), height}, rowStep, tallies);
    for (const QString &target : tallies.keys()) {
        QVERIFY2(tallies[target].wrong == 0, qPrintable(target));
        QVERIFY2(tallies[target].uncertain < tallies[target].pairs, qPrintable(target));
    }
}

void tst_ApproxRotation::approximationsAreExactAtEveryWholeDegree()
{
    for (int angle = -360; angle <= 360; ++angle) {
        QMap<QString, Tally> tallies;
        tallyRows(angle, {66, 67}, 9, tallies);
        for (const QString &target : tallies.keys())
            QVERIFY2(tallies[target].wrong == 0,
                     qPrintable(QStringLiteral("%1, %2 degrees").arg(target).arg(angle)));
    }
}

void tst_ApproxRotation::fewApproximationsAreUncertain()
{
    QMap<QString, Tally> small;
    tallyRows(55, {2048, 1024}, 61, small);
    QMap<QString, Tally> large;
    tallyRows(55, {8192, 4096}, 997, large);
    for (const Target &target : targets()) {
        QVERIFY2(small[target.name].uncertain * 200 < small[target.name].pairs, qPrintable(target.name));
        QVERIFY2(large[target.name].uncertain * 50 < large[target.name].pairs, qPrintable(target.name));
    }
}

/// Searches for the worst error: without an error bound some approximations go wrong, with half of it none must. The
/// largest map has the most whole numbers to come near to; errors and their bounds grow with the map alike.
void tst_ApproxRotation::errorBoundsHaveAMargin()
{
    const bool thoroughly = searchesThoroughly();
    const QVector<double> factors =
        thoroughly ? QVector<double>{0.0, 0.1, 0.2, 0.3, 0.5} : QVector<double>{0.0, 0.5};
    QMap<QString, QVector<qint64>> wrong;
    for (const int angle : {1, 35, 55, 90, 125}) {
        ExactRows rows(angle, {32766, 32767});
        for (int y = 1777; y < 32767; y += thoroughly ? 37 : 7919) {
            rows.moveTo(y);
            for (const Target &target : targets()) {
                const ForcedTarget forced(target);
                wrong[target.name].resize(factors.size());
                for (int i = 0; i < factors.size(); ++i)
                    wrong[target.name][i] += rows.tally(forced.approximate(), factors[i]).wrong;
            }
        }
    }
    for (const QString &target : wrong.keys()) {
        QStringList counts;
        for (int i = 0; i < factors.size(); ++i)
            counts += QStringLiteral("%1: %2").arg(factors[i]).arg(wrong[target][i]);
        qInfo().noquote() << target << "- wrong approximations by factor on the error bounds -"
                          << counts.join(", ");
        QVERIFY(wrong[target].first() > 0);
        QVERIFY(wrong[target].last() == 0);
    }
}

QTEST_GUILESS_MAIN(tst_ApproxRotation)
#include "tst_approxrotation.moc"
