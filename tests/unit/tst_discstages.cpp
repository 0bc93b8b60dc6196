#include "disccandidates.h"
#include "discedges.h"
#include "disclimb.h"
#include "discpictures.h"
#include "discpixels.h"
#include "discverdict.h"
#include "discview.h"

#include <QtTest>

#include <cmath>

/// What each stage of the disc finder makes of some drawn photographs, held to the numbers that it made before. Most
/// of the finder is tuned: a stage that became worse still finds most discs, and no rule is broken. Whoever changes an
/// answer on purpose measures it with bench_disc, and puts the new numbers into discstages.txt.

namespace
{

constexpr quint32 firstSeed = 4000000;
constexpr quint32 picturesOfAKind = 2;
constexpr int longestSide = 700; // more than a view takes, so that some are reduced

class PlaneSource : public LimbSource
{
public:
    explicit PlaneSource(const DiscPlane &plane) : m_plane(plane) {}
    int width() const override { return m_plane.width; }
    int height() const override { return m_plane.height; }
    float at(int x, int y) override { return m_plane.at(x, y); }

private:
    const DiscPlane &m_plane;
};

/// A line of a name and numbers.
QString line(const QString &name, std::initializer_list<double> numbers)
{
    QString result = name;
    for (const double number : numbers)
        result += ' ' + QString::number(number, 'f', 4);
    return result;
}

QString line(const QString &name, const DiscCircle &circle)
{
    return line(name, {circle.x, circle.y, circle.radius});
}

QStringList linesOf(const QString &name, const LimbFit &fit)
{
    return {line(name, fit.circle), line(name + " lies", {fit.visible, fit.backed, fit.oneWay, fit.clear}),
            line(name + " shows", {fit.contrast, fit.skyScatter, fit.blur}),
            line(name + " errs by", {fit.scatter, fit.error}),
            line(name + " is worth", {discMerit(fit), isDisc(fit) ? 1.0 : 0.0, discConfidence(fit)})};
}

QStringList linesOf(const DiscEdges &edges)
{
    double x = 0.0, y = 0.0, towardsRight = 0.0, towardsBottom = 0.0;
    for (const EdgePoint &point : edges.points) {
        x += double(point.x) / double(edges.points.size());
        y += double(point.y) / double(edges.points.size());
        towardsRight += double(point.normalX);
        towardsBottom += double(point.normalY);
    }
    QStringList lines = {line("edges", {double(edges.points.size()), double(edges.chainStarts.size())}),
                         line("edges about", {x, y}), line("edges towards", {towardsRight, towardsBottom})};
    for (std::size_t i = 1; i < std::min<std::size_t>(edges.chainStarts.size(), 4); ++i)
        lines += line("chain", {double(edges.chainStarts[i])});
    return lines;
}

QStringList stagesOf(const DiscPicture &picture)
{
    DiscPixels pixels(picture.image);
    const DiscView view = reducedView(pixels);
    QStringList lines = {line("view", {double(view.left), double(view.top), double(view.plane.width),
                                       double(view.plane.height), view.scale}),
                         line("axis", {double(view.axis[0]), double(view.axis[1]), double(view.axis[2])})};
    const DiscEdges edges = findEdges(view.plane);
    lines += linesOf(edges);
    PlaneSource source(view.plane);
    const std::vector<DiscCircle> candidates = candidateCircles(edges);
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const DiscCircle &circle = candidates[i];
        lines += line("candidate", circle);
        if (i < 3)
            lines += linesOf("coarse fit",
                             fitLimb(source, circle, 4.0 + 0.05 * circle.radius, LimbEffort::Coarse));
    }
    if (!candidates.empty()) {
        const DiscCircle &best = candidates.front();
        lines += linesOf("fine fit", fitLimb(source, best, 3.0 + 0.03 * best.radius, LimbEffort::Fine));
    }
    return lines;
}

/// The same words, and numbers that agree but for what another mathematical library draws.
bool areAlike(const QString &a, const QString &b)
{
    const QStringList left = a.split(' ');
    const QStringList right = b.split(' ');
    return std::equal(
        left.begin(), left.end(), right.begin(), right.end(), [](const QString &l, const QString &r) {
            bool isNumber = false;
            const double number = l.toDouble(&isNumber);
            return isNumber ? std::abs(number - r.toDouble()) <= 0.0005 + 0.0001 * std::abs(number) : l == r;
        });
}

} // namespace

class tst_DiscStages : public QObject
{
    Q_OBJECT

private slots:
    void numbersStayTheSame();
    void shortestSideIsSearched();
};

void tst_DiscStages::numbersStayTheSame()
{
    QStringList lines;
    for (const PictureKind kind : everyPictureKind) {
        for (quint32 i = 0; i < picturesOfAKind; ++i) {
            lines += "# " + nameOf(kind);
            lines += stagesOf(discPicture(kind, firstSeed + i, longestSide));
        }
    }
    QFile file(OVMIC_DISC_STAGES);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const QStringList known = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    int first = 0;
    while (first < lines.size() && first < known.size() && areAlike(lines.at(first), known.at(first)))
        ++first;
    if (first == lines.size() && first == known.size())
        return;
    QFile now("discstages.txt");
    QVERIFY(now.open(QIODevice::WriteOnly) && now.write(lines.join('\n').toUtf8() + '\n') > 0);
    QFAIL(qPrintable(QString("line %1 is \"%2\" and was \"%3\"; all lines as they are now: %4")
                         .arg(first + 1)
                         .arg(lines.value(first), known.value(first), QFileInfo(now).absoluteFilePath())));
}

void tst_DiscStages::shortestSideIsSearched()
{
    const auto isSearched = [](int width, int height) {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::gray);
        DiscPixels pixels(image);
        return !reducedView(pixels).plane.values.empty();
    };
    QVERIFY(isSearched(24, 24));
    QVERIFY(!isSearched(23, 24));
    QVERIFY(!isSearched(24, 23));
}

QTEST_GUILESS_MAIN(tst_DiscStages)
#include "tst_discstages.moc"
