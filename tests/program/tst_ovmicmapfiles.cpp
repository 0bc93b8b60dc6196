// Where ovmic-map writes, what it leaves alone, and names of every kind.

#include "mapfolder.h"
#include "patience.h"

class tst_OvmicMapFiles : public QObject
{
    Q_OBJECT

private slots:
    void existingMaps_data();
    void existingMaps();
    void fileForASinglePhotograph();
    void formatFollowsTheFile();
    void folderIsMade();
    void tasksMakeTheFolderAtTheSameTime();
    void shareOfEachTaskMakesAllMaps();
    void interruptedRunIsStartedAgain();
    void threadsMakeTheSameMaps();
    void photographsAreFittedOneByOne();
    void circleFile();
    void unusualNames_data();
    void unusualNames();
    void worldFiles();
    void worldFileIsReadByGdal();
    void worldFileOfSomebodyElseIsLeftAlone();
};

void tst_OvmicMapFiles::existingMaps_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("errors");
    QTest::addColumn<QByteArray>("output");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("left alone") << QStringList() << 1
                                << QByteArray("ovmic-map: a.png: map exists: maps/OV-a.jpg\n")
                                << QByteArray("maps/OV-b.jpg\n") << false;
    QTest::newRow("overwritten") << QStringList{"--overwrite"} << 0 << QByteArray()
                                 << QByteArray("maps/OV-a.jpg\nmaps/OV-b.jpg\n") << true;
    QTest::newRow("passed over") << QStringList{"--skip-existing"} << 0 << QByteArray()
                                 << QByteArray("maps/OV-b.jpg\n") << false;
}

void tst_OvmicMapFiles::existingMaps()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, errors);
    QFETCH(QByteArray, output);
    QFETCH(bool, replaced);
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.writePhotograph("b.png");
    folder.makeFolder("maps");
    folder.write("maps/OV-a.jpg", "the old map");
    const MapFolder::Result result =
        folder.run(QStringList{"-j1", "a.png", "b.png", "-o", "maps"} + folder.smallMaps() + arguments);
    COMPARE_RUN(result, status, errors);
    QCOMPARE(result.output, output);
    QCOMPARE(folder.read("maps/OV-a.jpg") != "the old map", replaced);
    QCOMPARE(folder.namesIn("maps"), (QStringList{"OV-a.jpg", "OV-b.jpg"}));
}

void tst_OvmicMapFiles::fileForASinglePhotograph()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    const MapFolder::Result result = folder.run(QStringList{"a.png", "-o", "map"} + folder.smallMaps());
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray("map\n"));
    QCOMPARE(QImage(folder.filePath("map"), "jpg").size(), QSize(64, 32));
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "missing/map.jpg"}), 1,
                "ovmic-map: a.png: map cannot be written: No such file or directory\n");
}

void tst_OvmicMapFiles::formatFollowsTheFile()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    const QByteArray png("\x89PNG");
    const QByteArray jpeg("\xff\xd8\xff");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "by-extension.PNG"}), 0, "");
    QVERIFY(folder.read("by-extension.PNG").startsWith(png));
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "option-wins.png", "-f", "jpg"}), 0, "");
    QVERIFY(folder.read("option-wins.png").startsWith(jpeg));
    folder.write("jpeg.ini", "[General]\nOutputFormat=0\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "settings-win.png", "--settings", "jpeg.ini"}), 0,
                "");
    QVERIFY(folder.read("settings-win.png").startsWith(jpeg));
    folder.write("png.ini", "[General]\nOutputFormat=1\n");
    const MapFolder::Result result = folder.run({"a.png", "--settings", "png.ini"});
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output, QByteArray("OV-a.png\n"));
    QVERIFY(folder.read("OV-a.png").startsWith(png));
}

void tst_OvmicMapFiles::folderIsMade()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 2);
    COMPARE_RUN(folder.run(photographs + QStringList{"-o", "new/er"} + folder.smallMaps()), 0, "");
    QCOMPARE(folder.namesIn("new/er"), (QStringList{"OV-photo000.jpg", "OV-photo001.jpg"}));
    folder.write("file", "no folder");
    COMPARE_RUN(folder.run(photographs + QStringList{"-o", "file/maps"}), 2,
                "ovmic-map: --output file/maps: the folder cannot be made\n");
}

void tst_OvmicMapFiles::tasksMakeTheFolderAtTheSameTime()
{
    const MapFolder folder;
    folder.writePhotographs("in", 1);
    const QString run =
        "ovmic-map in/photo000.png --part $task/4 -o made/$round/maps/ " + folder.smallMaps().join(' ');
    const MapFolder::Result result =
        folder.shell("for round in $(seq 40); do tasks=(); for task in 1 2 3 4; do " + run +
                     " & tasks+=($!); done; for task in ${tasks[*]}; do wait $task || exit; done; done");
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output.count('\n'), 40);
}

void tst_OvmicMapFiles::shareOfEachTaskMakesAllMaps()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 10);
    for (int task = 1; task <= 4; ++task) {
        const MapFolder::Result result = folder.run(
            QStringList{"--part", QStringLiteral("%1/4").arg(task), "-o", "maps", "-n", "{number:2}"} +
            photographs + folder.smallMaps());
        COMPARE_RUN(result, 0, "");
    }
    COMPARE_RUN(folder.run(QStringList{"-o", "whole", "-n", "{number:2}"} + photographs + folder.smallMaps()),
                0, "");
    QCOMPARE(folder.namesIn("maps").size(), 10);
    QCOMPARE(folder.namesIn("maps"), folder.namesIn("whole"));
    for (const QString &name : folder.namesIn("maps"))
        QCOMPARE(folder.read("maps/" + name), folder.read("whole/" + name));
}

void tst_OvmicMapFiles::interruptedRunIsStartedAgain()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 60);
    const QStringList arguments = photographs + QStringList{"-c", "fit", "-o", "maps", "--skip-existing"};
    QProcess process;
    folder.start(process, MapFolder::program(), arguments);
    QVERIFY(process.waitForReadyRead(patienceMs));
    process.kill();
    QVERIFY(process.waitForFinished(patienceMs));
    const int before = QDir(folder.filePath("maps")).entryList({"*.jpg"}).size();
    QVERIFY(before > 0 && before < 60);
    const MapFolder::Result result = folder.run(arguments);
    COMPARE_RUN(result, 0, "");
    QCOMPARE(result.output.count('\n'), 60 - before);
    COMPARE_RUN(folder.run(photographs + QStringList{"-c", "fit", "-o", "whole"}), 0, "");
    QCOMPARE(folder.namesIn("whole").size(), 60);
    for (const QString &name : folder.namesIn("whole"))
        QCOMPARE(folder.read("maps/" + name), folder.read("whole/" + name));
}

void tst_OvmicMapFiles::threadsMakeTheSameMaps()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 40);
    for (const char *jobs : {"1", "4"})
        COMPARE_RUN(folder.run(photographs +
                               QStringList{"-j", jobs, "-o", jobs, "-f", "png", "--azimuth", "30"} +
                               folder.smallMaps()),
                    0, "");
    QCOMPARE(folder.namesIn("1").size(), 40);
    for (const QString &name : folder.namesIn("1"))
        QCOMPARE(folder.read("1/" + name), folder.read("4/" + name));
}

void tst_OvmicMapFiles::photographsAreFittedOneByOne()
{
    const MapFolder folder;
    folder.writePhotograph("wide.png", 2, {100, 50});
    folder.writePhotograph("high.png", 3, {60, 120});
    COMPARE_RUN(folder.run({"wide.png", "high.png", "-c", "fit", "-f", "png", "-o", "fit"}), 0, "");
    COMPARE_RUN(folder.run({"wide.png", "-c", "50,25,24", "-f", "png", "-o", "expected/"}), 0, "");
    COMPARE_RUN(folder.run({"high.png", "-c", "30,60,29", "-f", "png", "-o", "expected/"}), 0, "");
    for (const char *name : {"OV-wide.png", "OV-high.png"})
        QCOMPARE(folder.read(QString("fit/") + name), folder.read(QString("expected/") + name));
}

void tst_OvmicMapFiles::circleFile()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.write("OV_map_param", "[General]\nCenterX=31\nCenterY=19\nRadius=17\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "OV_map_param", "-o", "one.png"}), 0, "");
    COMPARE_RUN(folder.run({"a.png", "--circle", "31,19,17", "-o", "two.png"}), 0, "");
    QCOMPARE(folder.read("one.png"), folder.read("two.png"));
}

void tst_OvmicMapFiles::unusualNames_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("locale");
    for (const char *locale : {"C", "C.UTF-8"}) {
        const auto row = [&](const char *what, const QByteArray &name) {
            QTest::addRow("%s, locale %s", what, locale) << name << QByteArray(locale);
        };
        row("Japanese, beyond the basic plane", "地球 𠮷");
        row("Latin-1", "caf\xe9");
        row("Shift JIS", "\x92\x6e\x8b\x85");
        row("a line break", "a\nb");
        row("blanks and quotes", " a 'b\" ");
        row("a colon in front", ":photo");
        row("a hyphen in front", "-photo");
        row("letters for a shell", "$(rm);&|<>*?[]");
        row("long", QByteArray(240, 'x'));
    }
}

void tst_OvmicMapFiles::unusualNames()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, locale);
    MapFolder folder;
    folder.environment().insert("LC_ALL", locale);
    folder.writePhotograph("a.png");
    folder.smallMaps();
    // The name goes through a file, so that this test's own toolkit has no part in it.
    folder.write("list", name + ".png" + '\0');
    const QByteArray setUp = "IFS= read -r -d '' photo <list; mv a.png \"./$photo\"; ";
    const MapFolder::Result result =
        folder.shell(setUp + "ovmic-map -0 --files-from list --settings small.ini -o maps >out && "
                             "ovmic-map -n '{number}' --settings small.ini -- \"$photo\" >/dev/null && "
                             "cmp -- maps/\"OV-${photo%.png}.jpg\" 0.jpg && "
                             "printf 'maps/OV-%s.jpg\\0' \"${photo%.png}\" | cmp - out");
    COMPARE_RUN(result, 0, "");
    const MapFolder::Result failure =
        folder.shell("IFS= read -r -d '' photo <list; ovmic-map -- \"./$photo.missing\" 2>&1; status=$?; rm "
                     "-r -- *; exit $status");
    QCOMPARE(failure.status, 1);
    QCOMPARE(failure.output.count('\n'), 1);
    QVERIFY(failure.output.endsWith(".png.missing: cannot be read: No such file or directory\n"));
}

void tst_OvmicMapFiles::worldFiles()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file"}), 0, "");
    QCOMPARE(folder.read("OV-a.jgw"), QByteArray("0.17578125\n0\n0\n-0.17578125\n-180\n90\n"));
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file", "-f", "png", "-s", "1024x2048"}), 0, "");
    QCOMPARE(folder.read("OV-a.pgw"), QByteArray("0.3515625\n0\n0\n-0.087890625\n-180\n90\n"));
    QCOMPARE(folder.namesIn("."), (QStringList{"OV-a.jgw", "OV-a.jpg", "OV-a.pgw", "OV-a.png", "a.png"}));
}

void tst_OvmicMapFiles::worldFileIsReadByGdal()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file", "-f", "png"}), 0, "");
    const MapFolder::Result installed = folder.shell("command -v gdalinfo");
    if (installed.status != 0)
        return; // what stands in the file has been compared above
    const MapFolder::Result info = folder.shell("gdalinfo OV-a.png");
    QCOMPARE(info.status, 0);
    QVERIFY(info.output.contains("Pixel Size = (0.175781250000000,-0.175781250000000)"));
    // The corner of the first pixel, whose centre is the pole on the date line.
    QVERIFY(info.output.contains("Upper Left  (-180.0878906,  90.0878906)"));
    QVERIFY(info.output.contains("Center      (  -0.0878906,   0.0878906)"));
}

void tst_OvmicMapFiles::worldFileOfSomebodyElseIsLeftAlone()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.write("OV-a.jgw", "somebody's\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file"}), 1,
                "ovmic-map: a.png: world file exists: OV-a.jgw\n");
    QCOMPARE(folder.namesIn("."), (QStringList{"OV-a.jgw", "a.png"}));
    // One that a killed run of the same command left is no obstacle.
    folder.write("OV-a.jgw", "0.17578125\n0\n0\n-0.17578125\n-180\n90\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file"}), 0, "");
    folder.write("OV-a.jgw", "somebody's\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "--world-file", "--overwrite"}), 0, "");
    QCOMPARE(folder.read("OV-a.jgw"), QByteArray("0.17578125\n0\n0\n-0.17578125\n-180\n90\n"));
}

QTEST_GUILESS_MAIN(tst_OvmicMapFiles)
#include "tst_ovmicmapfiles.moc"
