// ovmic-map as people use it: options, what it says, how it ends.

#include "mapfolder.h"

#include <QRegularExpression>

class tst_OvmicMap : public QObject
{
    Q_OBJECT

private slots:
    void version();
    void helpNamesEveryOptionOnce();
    void examplesOfTheHelpRun_data();
    void examplesOfTheHelpRun();
    void needsNoDisplay();
    void startsQuickly();
    void mapLiesBesideThePhotograph();
    void failuresAreLinesAndTheOthersAreThere();
    void wrongUseDoesNothing_data();
    void wrongUseDoesNothing();
    void dryRunPrintsAndConvertsNothing();
    void nullSeparatesWhatIsReadAndPrinted();
    void listFromStandardInput();
    void listFromAProcess();
    void emptyListAndEmptyShareAreDone();
    void noDebugLines();
};

void tst_OvmicMap::version()
{
    const MapFolder folder;
    const MapFolder::Result result = folder.run({"--version"});
    COMPARE_RUN(result, 0, "");
    QVERIFY(QRegularExpression("^ovmic-map \\d+\\.\\d+\n$").match(result.output).hasMatch());
    QCOMPARE(folder.run({"-v"}).output, result.output);
}

void tst_OvmicMap::helpNamesEveryOptionOnce()
{
    const MapFolder folder;
    const MapFolder::Result result = folder.run({"--help", "--distance", "nonsense"});
    COMPARE_RUN(result, 0, "");
    for (const char *option : {"circle",       "circle-file", "least-confidence",
                               "print-circle", "save-circle", "settings",
                               "distance",     "latitude",    "longitude",
                               "azimuth",      "size",        "format",
                               "quality",      "lens",        "output",
                               "name",         "overwrite",   "skip-existing",
                               "world-file",   "files-from",  "null",
                               "part",         "jobs",        "dry-run",
                               "quiet",        "progress",    "help",
                               "version"}) {
        const QRegularExpression line(QStringLiteral("^  (-., )?--%1( .*)?$").arg(option),
                                      QRegularExpression::MultilineOption);
        auto matches = line.globalMatch(result.output);
        QVERIFY2(matches.hasNext(), option);
        matches.next();
        QVERIFY2(!matches.hasNext(), option);
    }
    for (const char *range : {"1 to 100; default\n        100", "-90 to 90", "-180 to 180", "0 to 360",
                              "1024 to 8192", "default 2048x1024", "default 85"})
        QVERIFY2(result.output.contains(range), range);
    for (const QByteArray &line : result.output.split('\n'))
        QVERIFY2(line.size() <= 80, line.constData());
}

void tst_OvmicMap::examplesOfTheHelpRun_data()
{
    QTest::addColumn<QString>("example");
    QTest::addColumn<QStringList>("maps");
    const MapFolder folder;
    const QString help = folder.run({"--help"}).output;
    QString examples = help.mid(help.indexOf("\nExamples:\n") + 11);
    examples.replace("|\n      ", "| ");
    const QStringList lines = examples.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 3);
    QTest::newRow("one photograph") << lines.at(0) << QStringList{"OV-photograph.jpg"};
    QTest::newRow("a series") << lines.at(1)
                              << QStringList{"maps/OV-a.jgw", "maps/OV-a.jpg", "maps/OV-b.jgw",
                                             "maps/OV-b.jpg"};
    QTest::newRow("a list") << lines.at(2) << QStringList{"maps/OV-a.jpg", "maps/OV-b.jpg"};
}

void tst_OvmicMap::examplesOfTheHelpRun()
{
    QFETCH(QString, example);
    QFETCH(QStringList, maps);
    const MapFolder folder;
    folder.makeFolder("photographs");
    folder.write("ovmic.ini", "[General]\nCenterX=30\nCenterY=20\nRadius=19\n");
    for (const char *name : {"photograph.jpg", "photographs/a.jpg", "photographs/b.jpg"})
        folder.writeDisc(name, 100, 80, 60);
    const MapFolder::Result result = folder.shell("set -o pipefail\n" + example);
    COMPARE_RUN(result, 0, "");
    QStringList printed = maps.filter(".jpg");
    QCOMPARE(sortedLines(QByteArray(result.output).replace('\0', '\n')), printed);
    for (const QString &map : maps)
        QVERIFY2(QFileInfo(folder.filePath(map)).size() > 20, qPrintable(map));
    QCOMPARE(QImage(folder.filePath(printed.first())).size(), QSize(2048, 1024));
}

void tst_OvmicMap::needsNoDisplay()
{
    MapFolder folder;
    for (const char *name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "LC_ALL", "LANG", "HOME"})
        folder.environment().remove(name);
    folder.writePhotograph("a.png");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png"}), 0, "");
    const MapFolder::Result libraries = folder.shell("ldd " + MapFolder::program());
    QVERIFY(libraries.output.contains("libQt5Gui"));
    QVERIFY(!libraries.output.contains("libQt5Widgets"));
}

void tst_OvmicMap::startsQuickly()
{
    // Ten times what it takes on a usual machine, for sanitizers and busy ones: no display, no font is looked for.
    const MapFolder folder;
    const MapFolder::Result result =
        folder.shell("ulimit -t 1; for i in 1 2 3; do ovmic-map --version; done");
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output.count('\n'), 3);
}

void tst_OvmicMap::mapLiesBesideThePhotograph()
{
    const MapFolder folder;
    folder.makeFolder("in");
    folder.writePhotograph("in/a.v2.png");
    const MapFolder::Result result = folder.run({"-c", "fit", "in/a.v2.png"});
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray("in/OV-a.jpg\n"));
    QCOMPARE(folder.namesIn("in"), (QStringList{"OV-a.jpg", "a.v2.png"}));
    QCOMPARE(QImage(folder.filePath("in/OV-a.jpg")).size(), QSize(2048, 1024));
}

void tst_OvmicMap::failuresAreLinesAndTheOthersAreThere()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 2);
    folder.write("text.png", "no image");
    folder.makeFolder("folder.png");
    folder.write("OV-old.jpg", "the old map");
    folder.writePhotograph("old.png");
    const MapFolder::Result result =
        folder.run(QStringList{"--jobs", "1", "missing.png", "text.png", photographs.at(0), "folder.png",
                               "old.png", photographs.at(1)} +
                   folder.smallMaps());
    COMPARE_RUN(result, 1,
                "ovmic-map: missing.png: cannot be read: No such file or directory\n"
                "ovmic-map: text.png: not an image: Unsupported image format\n"
                "ovmic-map: folder.png: cannot be read: Is a directory\n"
                "ovmic-map: old.png: map exists: OV-old.jpg\n");
    QCOMPARE(result.output, QByteArray("in/OV-photo000.jpg\nin/OV-photo001.jpg\n"));
    QCOMPARE(folder.read("OV-old.jpg"), QByteArray("the old map"));
    QCOMPARE(folder.namesIn("in").size(), 4);
}

void tst_OvmicMap::wrongUseDoesNothing_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("no photograph") << QStringList()
                                   << QByteArray("no photograph is named; --help shows the use");
    QTest::newRow("a value out of range") << QStringList{"a.png", "-d", "101"}
                                          << QByteArray("--distance 101: a number from 1 to 100 is needed");
    QTest::newRow("an unknown option")
        << QStringList{"a.png", "--fast"} << QByteArray("Unknown option 'fast'.");
    QTest::newRow("a missing value") << QStringList{"a.png", "--distance"}
                                     << QByteArray("Missing value after '--distance'.");
    QTest::newRow("two photographs, one map")
        << QStringList{"a.png", "a.jpg", "-o", "new"}
        << QByteArray("a.png and a.jpg would both be written to new/OV-a.jpg");
    QTest::newRow("a file in the place of the folder")
        << QStringList{"a.png", "b.png", "-o", "b.png"} << QByteArray("--output b.png: Not a directory");
}

void tst_OvmicMap::wrongUseDoesNothing()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, line);
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.writePhotograph("a.jpg");
    folder.writePhotograph("b.png");
    const MapFolder::Result result = folder.run(arguments);
    COMPARE_RUN(result, 2, "ovmic-map: " + line + "\n");
    QCOMPARE(result.output, QByteArray());
    QCOMPARE(folder.namesIn("."), (QStringList{"a.jpg", "a.png", "b.png"}));
}

void tst_OvmicMap::dryRunPrintsAndConvertsNothing()
{
    const MapFolder folder;
    const MapFolder::Result result = folder.run({"--dry-run", "in/a.png", "b.png", "c.png", "--part", "1/2",
                                                 "-o", "maps", "-n", "{number:2}", "-f", "png"});
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray("in/a.png\tmaps/00.png\nc.png\tmaps/02.png\n"));
    QCOMPARE(folder.namesIn("."), QStringList());
    QCOMPARE(folder.run({"--dry-run", "a.png", "-0"}).output, QByteArray("a.png\0OV-a.jpg\0", 15));
}

void tst_OvmicMap::nullSeparatesWhatIsReadAndPrinted()
{
    const MapFolder folder;
    folder.writePhotograph("a\nb.png");
    folder.writePhotograph("c.png");
    const MapFolder::Result result = folder.shell("printf '%s\\0' *.png | ovmic-map -j1 -0 --files-from - " +
                                                  folder.smallMaps().join(' '));
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray("OV-a\nb.jpg\0OV-c.jpg\0", 20));
}

void tst_OvmicMap::listFromStandardInput()
{
    const MapFolder folder;
    folder.writePhotographs("in", 3);
    const MapFolder::Result result =
        folder.shell("ls in/* | ovmic-map --files-from - -o maps " + folder.smallMaps().join(' '));
    COMPARE_RUN(result, 0, "");
    QCOMPARE(folder.namesIn("maps"), (QStringList{"OV-photo000.jpg", "OV-photo001.jpg", "OV-photo002.jpg"}));
}

void tst_OvmicMap::listFromAProcess()
{
    const MapFolder folder;
    folder.writePhotographs("in", 3);
    const MapFolder::Result result =
        folder.shell("ovmic-map --files-from <(ls in/*) -o maps " + folder.smallMaps().join(' '));
    COMPARE_RUN(result, 0, "");
    QCOMPARE(folder.namesIn("maps").size(), 3);
}

void tst_OvmicMap::emptyListAndEmptyShareAreDone()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    COMPARE_RUN(folder.run({"--files-from", "/dev/null"}), 0, "");
    COMPARE_RUN(folder.run({"a.png", "--part", "2/2"}), 0, "");
    QCOMPARE(folder.namesIn("."), QStringList{"a.png"});
}

void tst_OvmicMap::noDebugLines()
{
    // A cut JPEG is converted, with a warning of the decoder's that nobody wants to read.
    const MapFolder folder;
    folder.writePhotograph("whole.jpg", 3, {300, 200});
    const QByteArray bytes = folder.read("whole.jpg");
    folder.write("cut.jpg", bytes.left(bytes.size() * 2 / 3));
    COMPARE_RUN(folder.run({"cut.jpg", "-c", "fit", "--azimuth", "30", "--latitude", "90"}), 0, "");
}

QTEST_GUILESS_MAIN(tst_OvmicMap)
#include "tst_ovmicmap.moc"
