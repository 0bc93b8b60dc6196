#include "tiledremap.h"

#include <QtTest>

#include <algorithm>
#include <vector>

using namespace projection;

namespace
{

constexpr uint32_t untouched = 0xffffffffU;

int gathered = 0; ///< pixels since the newest source was made

/// A map whose pixels are their numbers, and a record of what is asked of it.
class NumberedSource
{
public:
    NumberedSource(int angle, QSize size) : m_mirror(SphereRotation(3, angle, size.width(), size.height()))
    {
        gathered = 0;
        shown = {0, m_mirror.count()};
        for (int i = 0; i < size.width() * size.height(); ++i)
            m_numbers.push_back(uint32_t(i));
    }
    Q_DISABLE_COPY_MOVE(NumberedSource)

    const MirroredColumns &mirror() const { return m_mirror; }
    const uint32_t *pixels() const { return m_numbers.data(); }
    auto finish() const
    {
        return [](uint32_t pixel) {
            ++gathered;
            return pixel;
        };
    }
    Span pairs(int /*y*/) const { return shown; }
    int topRow() const { return top; }
    int32_t index(int column, int row) const { return row * m_mirror.rotation().width() + column; }
    int32_t exactIndex(MapPosition position) const
    {
        ++exact;
        const SphereRotation &rotation = m_mirror.rotation();
        const bool inside = position.column >= 0 && position.column < rotation.width() &&
                            position.row >= top && position.row < rotation.height();
        return inside ? index(position.column, position.row) : GatherBatch::none;
    }

    Span shown{};
    int top = 0;
    mutable int exact = 0;

private:
    MirroredColumns m_mirror;
    std::vector<uint32_t> m_numbers;
};

/// A canvas with a column of its own on the right of the map and a row below it, which must stay as they are.
class Canvas
{
public:
    explicit Canvas(QSize map)
        : m_map(map), m_pixels(size_t(map.width() + 1) * size_t(map.height() + 1), untouched)
    {
    }

    ImageView view() { return {m_pixels.data(), m_map.width() + 1, m_map.width(), m_map.height()}; }
    uint32_t at(int x, int y) const { return m_pixels[size_t(y) * size_t(m_map.width() + 1) + size_t(x)]; }
    bool keptItsMargin() const
    {
        for (int y = 0; y <= m_map.height(); ++y)
            if (at(m_map.width(), y) != untouched)
                return false;
        for (int x = 0; x <= m_map.width(); ++x)
            if (at(x, m_map.height()) != untouched)
                return false;
        return true;
    }

private:
    QSize m_map;
    std::vector<uint32_t> m_pixels;
};

void allUncertain(const ApproxScale & /*scale*/, const RotatedRow & /*row*/, const float * /*cosines*/,
                  const float * /*sines*/, int count, ApproxSources &out)
{
    out.uncertainCount = count;
    for (int i = 0; i < count; ++i) {
        out.columns[i] = out.mirroredColumns[i] = out.rows[i] = 0;
        out.uncertain[i] = i;
    }
}

/// Everything reads (1, 2), every mirror (3, 2), and that is certain.
void certainOfOnePlace(const ApproxScale & /*scale*/, const RotatedRow & /*row*/, const float * /*cosines*/,
                       const float * /*sines*/, int count, ApproxSources &out)
{
    out.uncertainCount = 0;
    std::fill_n(out.columns, count, 1);
    std::fill_n(out.mirroredColumns, count, 3);
    std::fill_n(out.rows, count, 2);
}

} // namespace

Q_DECLARE_METATYPE(projection::ApproximateSources)

class tst_TiledRemap : public QObject
{
    Q_OBJECT

private slots:
    void everyPixelIsPaintedOnce_data();
    void everyPixelIsPaintedOnce();
    void certainPositionsAreTaken();
    void pairsOutsideTheSpanStay();
    void positionsOutsideTheSourceStay();
    void rowsAreToldBandByBand();
    void paintedPixelsAreToldBefore();
};

void tst_TiledRemap::everyPixelIsPaintedOnce_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<ApproximateSources>("approximate");
    // 512 pairs fill a tile: 1022 columns have 511 of them, 1026 have 513.
    for (const QSize &size : {QSize(2, 2), QSize(4, 3), QSize(6, 2), QSize(8, 5), QSize(10, 33),
                              QSize(1022, 3), QSize(1026, 3), QSize(2050, 2), QSize(2052, 2)}) {
        QTest::addRow("%d x %d, all uncertain", size.width(), size.height()) << size << &allUncertain;
        QTest::addRow("%d x %d, scalar", size.width(), size.height()) << size << &approximateSourcesScalar;
        QTest::addRow("%d x %d, vectors", size.width(), size.height()) << size << &approximateSources;
    }
}

// Each column but the two that are their own mirrors belongs to one pair. Those are gathered twice, with the same
// pixel.
void tst_TiledRemap::everyPixelIsPaintedOnce()
{
    QFETCH(QSize, size);
    QFETCH(ApproximateSources, approximate);
    const int width = size.width();
    const int height = size.height();
    const int ownMirrors = width % 4 == 0 ? 2 : 0;
    for (const int shift : {0, 1, width / 4, width / 2, width / 2 + 1, width - 1}) {
        const NumberedSource source(55, size);
        Canvas canvas(size);
        TiledRemap(source, shift, canvas.view(), approximate).paint([](int) {});
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const MapPosition from = source.mirror().rotation().source(x, y);
                QCOMPARE(canvas.at((x + shift) % width, y), uint32_t(source.index(from.column, from.row)));
            }
        QVERIFY(canvas.keptItsMargin());
        QCOMPARE(gathered, (width + ownMirrors) * height);
        if (approximate == &allUncertain)
            QCOMPARE(source.exact, gathered);
    }
}

void tst_TiledRemap::certainPositionsAreTaken()
{
    const QSize size(12, 5);
    const NumberedSource source(55, size);
    Canvas canvas(size);
    TiledRemap(source, 0, canvas.view(), certainOfOnePlace).paint([](int) {});
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 12; ++x) {
            const bool mirrored = x >= 3 && x <= 9; // where the longitude is 90 to 270
            QCOMPARE(canvas.at(x, y), uint32_t(source.index(mirrored ? 3 : 1, 2)));
        }
    QCOMPARE(source.exact, 0);
}

void tst_TiledRemap::pairsOutsideTheSpanStay()
{
    const QSize size(12, 4);
    for (const Span span : {Span{0, 0}, Span{0, 3}, Span{2, 5}, Span{3, 7}, Span{7, 7}}) {
        NumberedSource source(55, size);
        source.shown = span;
        Canvas canvas(size);
        TiledRemap(source, 5, canvas.view(), allUncertain).paint([](int) {});
        QCOMPARE(gathered, 2 * (span.end - span.begin) * 4);
        for (int pair = 0; pair < source.mirror().count(); ++pair)
            for (const int x : {source.mirror().column(pair), source.mirror().mirroredColumn(pair)}) {
                const bool painted = canvas.at((x + 5) % 12, 1) != untouched;
                QCOMPARE(painted, pair >= span.begin && pair < span.end);
            }
    }
}

void tst_TiledRemap::positionsOutsideTheSourceStay()
{
    const QSize size(40, 20);
    NumberedSource source(30, size);
    source.top = 8;
    Canvas canvas(size);
    TiledRemap(source, 0, canvas.view(), approximateSourcesScalar).paint([](int) {});
    int kept = 0;
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 40; ++x) {
            const MapPosition from = source.mirror().rotation().source(x, y);
            // Rows nearer to either pole than the top row are uncertain: exact arithmetic decides.
            if (from.row < 8) {
                QCOMPARE(canvas.at(x, y), untouched);
                ++kept;
            } else {
                QCOMPARE(canvas.at(x, y), uint32_t(source.index(from.column, from.row)));
            }
        }
    QVERIFY(kept > 100);
}

void tst_TiledRemap::rowsAreToldBandByBand()
{
    const auto toldFor = [](int height) {
        const NumberedSource source(55, {4, height});
        Canvas canvas({4, height});
        QVector<int> told;
        TiledRemap(source, 0, canvas.view(), approximateSources).paint([&](int rows) {
            told.append(rows);
            // Nothing above is still to come, nothing below has been painted.
            QVERIFY(canvas.at(0, rows - 1) != untouched && canvas.at(3, rows - 1) != untouched);
            QCOMPARE(canvas.at(0, rows), untouched);
        });
        return told;
    };
    QCOMPARE(toldFor(2), QVector<int>{2});
    QCOMPARE(toldFor(32), QVector<int>{32});
    QCOMPARE(toldFor(33), (QVector<int>{32, 33}));
    QCOMPARE(toldFor(70), (QVector<int>{32, 64, 70}));
}

// Of each band exactly the pixels that it then paints, in ranges that lie apart and in order.
void tst_TiledRemap::paintedPixelsAreToldBefore()
{
    for (const QSize &size : {QSize(12, 4), QSize(1026, 40), QSize(4, 33)}) {
        for (const int shift : {0, 1, 3, size.width() - 1}) {
            for (const double share : {0.0, 0.3, 1.0}) {
                NumberedSource source(55, size);
                const int count = source.mirror().count();
                source.shown = {int(count * (1.0 - share) / 2.0), int(count * (1.0 + share) / 2.0)};
                Canvas canvas(size);
                QVector<uint32_t *> announced;
                TiledRemap remap(source, shift, canvas.view(), &allUncertain);
                const auto bandBegins = [&](int top, int bottom) {
                    for (const PixelRange &range : remap.painted(top, bottom)) {
                        QVERIFY(range.begin < range.end);
                        QVERIFY(announced.isEmpty() || announced.last() < range.begin);
                        for (uint32_t *pixel = range.begin; pixel != range.end; ++pixel) {
                            QCOMPARE(*pixel, untouched);
                            announced.append(pixel);
                        }
                    }
                };
                remap.paint(bandBegins, [](int) {});
                int painted = 0;
                for (int y = 0; y < size.height(); ++y)
                    for (int x = 0; x < size.width(); ++x)
                        painted += canvas.at(x, y) != untouched ? 1 : 0;
                QCOMPARE(announced.size(), painted);
                for (const uint32_t *pixel : announced)
                    QVERIFY(*pixel != untouched);
                QVERIFY(share < 1.0 || painted == size.width() * size.height());
            }
        }
    }
}

QTEST_GUILESS_MAIN(tst_TiledRemap)
#include "tst_tiledremap.moc"
