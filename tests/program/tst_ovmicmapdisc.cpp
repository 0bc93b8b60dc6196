// ovmic-map looks for the disc: circles of maps, lists of discs, parameter files.

#include "beacons.h"
#include "discfinder.h"
#include "discpictures.h"
#include "mapfolder.h"
#include "parameterfile.h"

#include <cmath>
#include <vector>

namespace
{

QStringList circleOption(const SelectionCircle &circle)
{
    return {"-c", QStringLiteral("%1,%2,%3").arg(circle.centerX).arg(circle.centerY).arg(circle.radius)};
}

/// Small maps whose settings say nothing else.
const QStringList smallPng = {"-s", "1024x1024", "-f", "png"};

/// The fields of each line of --print-circle.
QList<QStringList> printedDiscs(const QByteArray &output)
{
    QList<QStringList> discs;
    for (const QString &line : QString::fromUtf8(output).split('\n', Qt::SkipEmptyParts))
        discs.append(line.split('\t'));
    return discs;
}

} // namespace

class tst_OvmicMapDisc : public QObject
{
    Q_OBJECT

private slots:
    void mapsAreThoseOfTheDiscsFound();
    void photographWithoutADiscFails();
    void leastConfidenceDecides();
    void findOnceTakesTheMedianOfTheFirstTen();
    void findOnceIsTheSameInEveryShare();
    void findOnceWithoutADisc();
    void discsArePrinted();
    void printedWithNulls();
    void eachShareIsPrinted();
    void printingStopsWhenNobodyReads();
    void circleIsSaved();
    void savedCircleLeavesTheRestOfAFile();
    void circleThatCannotBeSaved();
    void landmarksStayInADriftingSeries();
};

void tst_OvmicMapDisc::mapsAreThoseOfTheDiscsFound()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 90.3, 81.8, 60.4);
    folder.writeDisc("b.png", 111, 75, 50);
    for (const char *jobs : {"-j1", "-j2"}) {
        COMPARE_RUN(folder.run(QStringList{"a.png", "b.png", jobs, "-o", jobs} + smallPng), 0, "");
        COMPARE_RUN(
            folder.run(QStringList{"a.png", "b.png", jobs, "-c", "find", "-o", "named", "--overwrite"} +
                       smallPng),
            0, "");
        for (const char *name : {"a", "b"}) {
            const auto disc = findDisc(QImage(folder.filePath(QString(name) + ".png")));
            QVERIFY(disc);
            COMPARE_RUN(folder.run(QStringList{QString(name) + ".png", "--overwrite", "-o", "expected.png"} +
                                   circleOption(selectionCircle(*disc)) + smallPng),
                        0, "");
            const QByteArray expected = folder.read("expected.png");
            QCOMPARE(folder.read(QStringLiteral("%1/OV-%2.png").arg(jobs, name)), expected);
            QCOMPARE(folder.read(QStringLiteral("named/OV-%1.png").arg(name)), expected);
        }
    }
}

void tst_OvmicMapDisc::photographWithoutADiscFails()
{
    const MapFolder folder;
    folder.writePhotograph("none.png");
    folder.writeDisc("disc.png", 100, 80, 60);
    const MapFolder::Result result = folder.run({"none.png", "disc.png", "-o", "maps"});
    COMPARE_RUN(result, 1, "ovmic-map: none.png: no disc found\n");
    QCOMPARE(result.output, QByteArray("maps/OV-disc.jpg\n"));
    QCOMPARE(folder.namesIn("maps"), QStringList{"OV-disc.jpg"});
}

void tst_OvmicMapDisc::leastConfidenceDecides()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 100, 80, 60);
    const QList<QStringList> discs = printedDiscs(folder.run({"--print-circle", "a.png"}).output);
    QCOMPARE(discs.size(), 1);
    const double confidence = discs.at(0).at(4).toDouble();
    QVERIFY(confidence > 0.8 && confidence < 1.0);
    const QString more = QString::number(confidence + 0.001);
    const QString less = QString::number(confidence - 0.001);
    COMPARE_RUN(folder.run({"a.png", "--least-confidence", more}), 1, "ovmic-map: a.png: no disc found\n");
    COMPARE_RUN(folder.run({"a.png", "--least-confidence", less}), 0, "");
    COMPARE_RUN(folder.run({"a.png", "--least-confidence", more, "--print-circle"}), 1,
                "ovmic-map: a.png: no disc found\n");
}

void tst_OvmicMapDisc::findOnceTakesTheMedianOfTheFirstTen()
{
    // Ten that count, two of them far from the rest and two without a disc, and two more that do not.
    const MapFolder folder;
    folder.makeFolder("in");
    QStringList names;
    QList<double> xs;
    for (int i = 0; i < 12; ++i) {
        names.append(QStringLiteral("in/%1.png").arg(i, 2, 10, QLatin1Char('0')));
        if (i == 3 || i == 4)
            folder.writePhotograph(names.last(), i, {200, 160});
        else if (i >= 10 || i == 0 || i == 1)
            folder.writeDisc(names.last(), 70, 70, 45);
        else
            folder.writeDisc(names.last(), 100 + 3 * i, 80, 60);
        if (const auto disc = findDisc(QImage(folder.filePath(names.last()))); disc && i < 10)
            xs.append(disc->centerX);
    }
    QCOMPARE(xs.size(), 8);
    std::sort(xs.begin(), xs.end());
    const SelectionCircle median = {int(std::floor((xs.at(3) + xs.at(4)) / 2)), 80, 60};
    COMPARE_RUN(folder.run(QStringList{"--circle", "find-once", "-o", "once"} + names + smallPng), 0, "");
    COMPARE_RUN(folder.run(QStringList{"-o", "median"} + circleOption(median) + names + smallPng), 0, "");
    const QStringList maps = folder.namesIn("median");
    QCOMPARE(maps.size(), 12);
    for (const QString &map : maps)
        QCOMPARE(folder.read("once/" + map), folder.read("median/" + map));
}

void tst_OvmicMapDisc::findOnceIsTheSameInEveryShare()
{
    const MapFolder folder;
    for (int i = 0; i < 4; ++i)
        folder.writeDisc(QStringLiteral("%1.png").arg(i), 80 + 10 * i, 80, 60);
    const QStringList all = QStringList{"0.png", "1.png", "2.png", "3.png", "-c", "find-once"} + smallPng;
    COMPARE_RUN(folder.run(all + QStringList{"-o", "whole"}), 0, "");
    COMPARE_RUN(folder.run(all + QStringList{"-o", "shares", "--part", "1/2"}), 0, "");
    COMPARE_RUN(folder.run(all + QStringList{"-o", "shares", "--part", "2/2"}), 0, "");
    QCOMPARE(folder.namesIn("shares"), folder.namesIn("whole"));
    for (const QString &map : folder.namesIn("whole"))
        QCOMPARE(folder.read("shares/" + map), folder.read("whole/" + map));
}

void tst_OvmicMapDisc::findOnceWithoutADisc()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 3);
    const MapFolder::Result result =
        folder.run(photographs + QStringList{"missing.png", "-c", "find-once", "-o", "maps"});
    COMPARE_RUN(result, 1, "ovmic-map: no disc found on any of the first 10 photographs\n");
    QCOMPARE(result.output, QByteArray());
    QVERIFY(!QFileInfo::exists(folder.filePath("maps")));
    COMPARE_RUN(folder.run({"--files-from", "/dev/null", "-c", "find-once"}), 0, "");
}

void tst_OvmicMapDisc::discsArePrinted()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 90.3, 81.8, 60.4);
    folder.writeDisc("b c.png", 111, 75, 50);
    folder.writePhotograph("none.png");
    const MapFolder::Result result =
        folder.run({"--print-circle", "a.png", "none.png", "b c.png", "missing.png"});
    COMPARE_RUN(result, 1,
                "ovmic-map: none.png: no disc found\n"
                "ovmic-map: missing.png: cannot be read: No such file or directory\n");
    const QList<QStringList> discs = printedDiscs(result.output);
    QCOMPARE(discs.size(), 2);
    const double truth[2][3] = {{90.3, 81.8, 60.4}, {111, 75, 50}};
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(discs.at(i).size(), 5);
        QCOMPARE(discs.at(i).at(0), QString(i == 0 ? "a.png" : "b c.png"));
        for (int value = 0; value < 3; ++value)
            QVERIFY2(std::abs(discs.at(i).at(value + 1).toDouble() - truth[i][value]) < 0.5,
                     qPrintable(discs.at(i).join(' ')));
        const double confidence = discs.at(i).at(4).toDouble();
        QVERIFY(confidence >= 0.8 && confidence <= 1.0);
    }
    QCOMPARE(folder.namesIn("."), (QStringList{"a.png", "b c.png", "none.png"}));
}

void tst_OvmicMapDisc::printedWithNulls()
{
    const MapFolder folder;
    folder.writeDisc("a\nb.png", 100, 80, 60);
    const MapFolder::Result result = folder.run({"--print-circle", "--null", "a\nb.png"});
    COMPARE_RUN(result, 0, "");
    QVERIFY(result.output.startsWith("a\nb.png\t"));
    QVERIFY(result.output.endsWith('\0'));
    QCOMPARE(result.output.count('\0'), 1);
}

void tst_OvmicMapDisc::eachShareIsPrinted()
{
    const MapFolder folder;
    const QStringList names = {"0.png", "1.png", "2.png"};
    for (const QString &name : names)
        folder.writeDisc(name, 100, 80, 60);
    const QList<QStringList> first =
        printedDiscs(folder.run(QStringList{"--print-circle", "--part", "1/2"} + names).output);
    QCOMPARE(first.size(), 2);
    QCOMPARE(first.at(0).at(0), names.at(0));
    QCOMPARE(first.at(1).at(0), names.at(2));
    const QList<QStringList> second =
        printedDiscs(folder.run(QStringList{"--print-circle", "--part", "2/2"} + names).output);
    QCOMPARE(second.size(), 1);
    QCOMPARE(second.at(0).at(0), names.at(1));
}

void tst_OvmicMapDisc::printingStopsWhenNobodyReads()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 100, 80, 60);
    const MapFolder::Result result =
        folder.shell("ovmic-map --print-circle a.png >/dev/full; echo $?; "
                     "ovmic-map --print-circle a.png a.png a.png | true; echo ${PIPESTATUS[0]}");
    QVERIFY(result.finished);
    QCOMPARE(result.output, QByteArray("1\n141\n"));
}

void tst_OvmicMapDisc::circleIsSaved()
{
    const MapFolder folder;
    for (int i = 0; i < 3; ++i)
        folder.writeDisc(QStringLiteral("%1.png").arg(i), 100 + 10 * i, 80, 60);
    const MapFolder::Result result = folder.run({"--save-circle", "camera", "0.png", "1.png", "2.png"});
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(folder.namesIn("."), (QStringList{"0.png", "1.png", "2.png", "camera"}));
    const auto disc = findDisc(QImage(folder.filePath("1.png")));
    QVERIFY(disc);
    const SelectionCircle expected = selectionCircle(*disc);
    const CircleFile file = readCircleFile(folder.filePath("camera"));
    QCOMPARE(file.problem, QString());
    QCOMPARE(file.circle.centerX, expected.centerX);
    QCOMPARE(file.circle.centerY, expected.centerY);
    QCOMPARE(file.circle.radius, expected.radius);
    QCOMPARE(folder.read("camera"), QByteArray("[General]\nCenterX=%1\nCenterY=%2\nRadius=%3\n")
                                        .replace("%1", QByteArray::number(expected.centerX))
                                        .replace("%2", QByteArray::number(expected.centerY))
                                        .replace("%3", QByteArray::number(expected.radius)));
    // Both at once: a line for each, and the same file.
    const MapFolder::Result both =
        folder.run({"--print-circle", "--save-circle", "again", "0.png", "1.png", "2.png"});
    COMPARE_RUN(both, 0, "");
    QCOMPARE(printedDiscs(both.output).size(), 3);
    QCOMPARE(folder.read("again"), folder.read("camera"));
}

void tst_OvmicMapDisc::savedCircleLeavesTheRestOfAFile()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 100, 80, 60);
    const QByteArray old = "[General]\nCenterX=1\nDistance=6.6\n";
    folder.write("ovmic.ini", old);
    COMPARE_RUN(folder.run({"--save-circle", "ovmic.ini", "a.png"}), 1,
                "ovmic-map: file exists: ovmic.ini\n");
    QCOMPARE(folder.read("ovmic.ini"), old);
    COMPARE_RUN(folder.run({"--save-circle", "ovmic.ini", "a.png", "--overwrite"}), 0, "");
    QVERIFY(folder.read("ovmic.ini").contains("Distance=6.6\n"));
    const CircleFile file = readCircleFile(folder.filePath("ovmic.ini"));
    QCOMPARE(file.circle.radius, 60);
}

void tst_OvmicMapDisc::circleThatCannotBeSaved()
{
    const MapFolder folder;
    folder.writeDisc("a.png", 100, 80, 60);
    folder.writePhotograph("none.png");
    COMPARE_RUN(folder.run({"--save-circle", "a.png/camera", "a.png"}), 1,
                "ovmic-map: file cannot be written: a.png/camera\n");
    COMPARE_RUN(folder.run({"--save-circle", "camera", "none.png"}), 1,
                "ovmic-map: none.png: no disc found\n");
    QCOMPARE(folder.namesIn("."), (QStringList{"a.png", "none.png"}));
}

void tst_OvmicMapDisc::landmarksStayInADriftingSeries()
{
    const MapFolder folder;
    folder.makeFolder("in");
    const DiscSeries series(7);
    constexpr int step = 6; // bench_disc --series measures all frames
    for (int i = 0; i < DiscSeries::frameCount; i += step)
        QVERIFY(series.frame(i).image.save(folder.filePath(QStringLiteral("in/%1.png").arg(i))));
    COMPARE_RUN(folder.shell("ovmic-map --circle find -f png -o maps in/*.png", 120000), 0, "");
    const QStringList maps = folder.namesIn("maps");
    QCOMPARE(maps.size(), DiscSeries::frameCount / step);
    std::vector<std::vector<QPointF>> beacons;
    for (const QString &name : maps) {
        const QImage map(folder.filePath("maps/" + name));
        QCOMPARE(map.size(), QSize(2048, 1024));
        beacons.push_back(beaconsOn(map));
    }
    for (std::size_t i = 0; i < beacons.front().size(); ++i) {
        QPointF mean;
        for (const auto &onMap : beacons)
            mean += onMap.at(i) / double(beacons.size());
        for (const auto &onMap : beacons) {
            const QPointF shift = onMap.at(i) - mean;
            QVERIFY2(std::hypot(shift.x(), shift.y()) <= 3.0,
                     qPrintable(QStringLiteral("%1, %2").arg(shift.x()).arg(shift.y())));
        }
    }
}

QTEST_GUILESS_MAIN(tst_OvmicMapDisc)
#include "tst_ovmicmapdisc.moc"
