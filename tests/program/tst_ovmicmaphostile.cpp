// ovmic-map and whatever else can lie in its way: damaged pictures and files, pipes, devices, full disks.

#include "faults.h"
#include "hostilepictures.h"
#include "mapfolder.h"
#include "memorylimit.h"
#include "rng.h"

#include <sys/stat.h>

class tst_OvmicMapHostile : public QObject
{
    Q_OBJECT

private slots:
    void thousandDamagedPictures();
    void pipesFoldersAndDevices();
    void pictureThatUnfoldsWithoutEnd();
    void textsThatUnfoldWithoutEnd();
    void hostileSettings();
    void hostileCircleFiles();
    void brokenLists();
    void longLists_data();
    void longLists();
    void fullDisk_data();
    void fullDisk();
    void readOnlyFolder();
    void littleMemory();
};

/// A third of them cut, all with some bytes changed; every one that loads has a map, every other one a line.
void tst_OvmicMapHostile::thousandDamagedPictures()
{
    constexpr int count = 1000;
    const MapFolder folder;
    folder.makeFolder("in");
    Rng rng(11);
    QList<QByteArray> whole;
    for (const char *name : {"a.png", "a.jpg"}) {
        folder.writePhotograph(name);
        whole.append(folder.read(name));
    }
    QStringList names;
    for (int i = 0; i < count; ++i) {
        QByteArray bytes = whole.at(i % 2);
        if (i % 3 == 0)
            bytes.truncate(rng.between(0, bytes.size() - 1));
        for (int change = i % 7; change > 0 && !bytes.isEmpty(); --change)
            bytes[rng.between(0, bytes.size() - 1)] = char(rng.word());
        names.append(QStringLiteral("in/%1.jpg").arg(i));
        folder.write(names.last(), bytes);
    }
    const MapFolder::Result result =
        folder.run(names + folder.smallMaps() + QStringList{"-o", "maps", "-n", "{number}", "-j2"}, 240000);
    QVERIFY(result.finished);
    QCOMPARE(result.status, 1);
    const int maps = folder.namesIn("maps").size();
    QCOMPARE(result.output.count('\n'), maps);
    QCOMPARE(result.errors.count('\n'), count - maps);
    QVERIFY2(maps > count / 5 && maps < count * 9 / 10, qPrintable(QString::number(maps)));
    for (const QByteArray &line : result.errors.split('\n'))
        QVERIFY2(line.isEmpty() ||
                     (line.startsWith("ovmic-map: in/") &&
                      (line.contains(": cannot be read: ") || line.contains(": not an image: "))),
                 line.constData());
    for (const QString &name : folder.namesIn("maps"))
        QCOMPARE(QImage(folder.filePath("maps/" + name)).size(), QSize(64, 32));
}

void tst_OvmicMapHostile::pipesFoldersAndDevices()
{
    const MapFolder folder;
    QCOMPARE(mkfifo(QFile::encodeName(folder.filePath("pipe.png")).constData(), 0600), 0);
    folder.makeFolder("folder.png");
    QVERIFY(QFile::link("pipe.png", folder.filePath("link.png")));
    QVERIFY(QFile::link("nowhere", folder.filePath("dangling.png")));
    QVERIFY(QFile::link("ring.png", folder.filePath("ring.png")));
    const MapFolder::Result result =
        folder.run({"-j1", "-o", "maps", "-n", "{number}", "pipe.png", "link.png", "folder.png",
                    "dangling.png", "ring.png", "/dev/zero", "/dev/null", "/proc/kmsg", ""});
    QCOMPARE(result.status, 1);
    QCOMPARE(result.errors,
             QByteArray("ovmic-map: pipe.png: cannot be read: Not a regular file\n"
                        "ovmic-map: link.png: cannot be read: Not a regular file\n"
                        "ovmic-map: folder.png: cannot be read: Is a directory\n"
                        "ovmic-map: dangling.png: cannot be read: No such file or directory\n"
                        "ovmic-map: ring.png: cannot be read: Too many levels of symbolic links\n"
                        "ovmic-map: /dev/zero: cannot be read: Not a regular file\n"
                        "ovmic-map: /dev/null: cannot be read: Not a regular file\n"
                        "ovmic-map: /proc/kmsg: not an image: The file is empty\n"
                        "ovmic-map: : cannot be read: No file name specified\n"));
    QCOMPARE(folder.namesIn("maps"), QStringList());
    // The map's own place.
    folder.writePhotograph("a.png");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "pipe.png", "--overwrite"}), 1,
                "ovmic-map: a.png: map cannot be written: Not a regular file\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "ring.png", "--overwrite"}), 1,
                "ovmic-map: a.png: map cannot be written: The link leads nowhere\n");
    COMPARE_RUN(folder.run({"-c", "fit", "a.png", "-o", "/dev/full", "--overwrite"}), 1,
                "ovmic-map: a.png: map cannot be written: Not a regular file\n");
}

void tst_OvmicMapHostile::pictureThatUnfoldsWithoutEnd()
{
    const MapFolder folder;
    folder.write("a.jpg", jpegOfSize(65500, 65500));
    const MapFolder::Result result = folder.run({"-c", "fit", "a.jpg"});
    QCOMPARE(result.status, 1);
    QVERIFY2(result.errors.startsWith("ovmic-map: a.jpg: cannot be read: "), result.errors.constData());
    QCOMPARE(result.errors.count('\n'), 1);
}

void tst_OvmicMapHostile::textsThatUnfoldWithoutEnd()
{
    // Compressed texts beside the picture, 2 GB of them if nothing stops it: within the memory that there is, each
    // of them ends in one line or in a map.
    const MapFolder folder;
    folder.write("a.png", pngWithTexts(addressSpaceCanBeLimited ? 136 : 10));
    folder.writePhotograph("b.png");
    const MapFolder::Result result =
        folder.shell(QStringLiteral("ulimit -v %1; ovmic-map -c fit -j1 -o maps a.png b.png")
                         .arg(addressSpaceCanBeLimited ? "4000000" : "unlimited"));
    QVERIFY(result.finished);
    QVERIFY2(result.output.endsWith("maps/OV-b.jpg\n"), result.output.constData());
    QVERIFY2(result.status == 0 || result.errors.startsWith("ovmic-map: a.png: cannot be read: "),
             result.errors.constData());
}

void tst_OvmicMapHostile::hostileSettings()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    Rng rng(13);
    const QList<QByteArray> values = {"@Variant(\\0\\0\\0G\\x10\\0\\0\\0)",
                                      "\\x40Variant(\\0\\0\\0G\\x10\\0\\0\\0)",
                                      "@DateTime(\\0\\0\\0\\x10)",
                                      "nan",
                                      "-inf",
                                      "1e308",
                                      "99999999999",
                                      "-1",
                                      "0",
                                      "\"",
                                      "\\",
                                      "a,b",
                                      "@ByteArray(7)",
                                      "\xff\xfe",
                                      QByteArray(100000, 'x'),
                                      "3.7"};
    const QList<QByteArray> keys = {"CenterX",     "CenterY",     "Radius",       "Distance",
                                    "OutputSizeX", "OutputSizeY", "OutputFormat", "OutputQuality",
                                    "Latitude",    "Longitude",   "Azimuth",      "PenColor"};
    int refused = 0;
    int converted = 0;
    for (int i = 0; i < 60; ++i) {
        QByteArray settings = "[General]\nOutputSizeX=64\nOutputSizeY=32\n";
        for (int line = 0; line < 2; ++line)
            settings += keys.at(rng.between(0, keys.size() - 1)) + '=' +
                        values.at(rng.between(0, values.size() - 1)) + '\n';
        folder.write("hostile.ini", settings);
        const MapFolder::Result result = folder.run({"a.png", "--settings", "hostile.ini", "--overwrite"});
        QVERIFY2(result.finished, settings.constData());
        QVERIFY2(result.status == 0 || result.status == 2, settings.constData());
        QCOMPARE(result.errors.count('\n'), result.status == 0 ? 0 : 1);
        ++(result.status == 0 ? converted : refused);
    }
    QVERIFY2(refused > 10 && converted > 5, qPrintable(QString::number(refused)));
}

void tst_OvmicMapHostile::hostileCircleFiles()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    QCOMPARE(mkfifo(QFile::encodeName(folder.filePath("pipe")).constData(), 0600), 0);
    folder.write("serialized",
                 "[General]\nCenterX=@Variant(\\0\\0\\0G\\x10\\0\\0\\0)\nCenterY=1\nRadius=1\n");
    folder.write("binary", QByteArray("\0\1\2[General]\xff\n", 14));
    folder.write("extreme", "[General]\nCenterX=2147483647\nCenterY=-2147483648\nRadius=2147483647\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "pipe"}), 2,
                "ovmic-map: --circle-file pipe: Not a regular file\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "binary"}), 2,
                "ovmic-map: --circle-file binary: CenterX is missing\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "/dev/zero"}), 2,
                "ovmic-map: --circle-file /dev/zero: Not a regular file\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "serialized"}), 2,
                "ovmic-map: --circle-file serialized: CenterX is missing\n");
    COMPARE_RUN(folder.run({"a.png", "--circle-file", "extreme"}), 0, "");
}

/// A list that turns out to be none after its first photographs: none of them is converted.
void tst_OvmicMapHostile::brokenLists()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.write("list", QByteArray("a.png\nb\0.png\na.png\n", 19));
    COMPARE_RUN(folder.run({"--files-from", "list", "-o", "maps"}), 2,
                "ovmic-map: --files-from list: holds NUL bytes: --null is needed for such a list\n");
    COMPARE_RUN(folder.run({"a.png", "--files-from", "/proc/self/mem", "-o", "maps"}), 2,
                "ovmic-map: --files-from /proc/self/mem: Input/output error\n");
    QVERIFY(!QFile::exists(folder.filePath("maps")));
}

void tst_OvmicMapHostile::longLists_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("error");
    constexpr int size = 100000000;
    QTest::newRow("100 MB of long paths") << 4000 << QByteArray() << 0 << QByteArray();
    QTest::newRow("100 MB without an end of a line")
        << 0 << QByteArray(size, 'x') << 2
        << QByteArray("ovmic-map: --files-from list: holds a path of more than 4096 bytes\n");
    QTest::newRow("100 MB of NUL bytes")
        << 0 << QByteArray(size, '\0') << 2
        << QByteArray("ovmic-map: --files-from list: holds NUL bytes: --null is needed for such a list\n");
    QTest::newRow("100 MB of empty lines") << 0 << QByteArray(size, '\n') << 0 << QByteArray();
}

void tst_OvmicMapHostile::longLists()
{
    QFETCH(int, length);
    QFETCH(QByteArray, list);
    QFETCH(int, status);
    QFETCH(QByteArray, error);
    const MapFolder folder;
    if (length > 0) {
        const QByteArray path(length - 10, 'x');
        for (int i = 0; list.size() < 100000000; ++i)
            list += path + '-' + QByteArray::number(i).rightJustified(8, '0') + '\n';
    }
    folder.write("list", list);
    const MapFolder::Result result =
        folder.run({"--files-from", "list", "--part", "25000/25000", "--dry-run", "-o", "maps"});
    COMPARE_RUN(result, status, error);
    QCOMPARE(result.output.size(), length > 0 ? 2 * length + 12 : 0);
}

void tst_OvmicMapHostile::fullDisk_data()
{
    QTest::addColumn<QString>("limit");
    QTest::newRow("nothing can be written") << "0";
    QTest::newRow("some kilobytes") << "2";
}

/// No file can grow beyond a number of kilobytes: the rest of a write fails, as on a full disk.
void tst_OvmicMapHostile::fullDisk()
{
    QFETCH(QString, limit);
    MapFolder folder;
    folder.writePhotographs("in", 2);
    folder.smallMaps();
    folder.makeFolder("maps");
    folder.write("maps/OV-photo000.jpg", "the old map");
    // What scripts/coverage counts would be cut off as well.
    folder.environment().insert("GCOV_PREFIX", folder.filePath("counts"));
    const MapFolder::Result result =
        folder.shell("trap '' XFSZ; ulimit -f " + limit +
                     "; ovmic-map -j1 --overwrite --world-file --quality 100 -f jpg -s 1024x1024 "
                     "--settings small.ini -o maps in/* 2>&1 | cat");
    QVERIFY(result.finished);
    const QByteArray reason = limit == "0" ? "world file cannot be written: File too large\n"
                                           : "map cannot be written: File too large\n";
    QCOMPARE(result.output,
             QByteArray("ovmic-map: in/photo000.png: " + reason + "ovmic-map: in/photo001.png: " + reason));
    QCOMPARE(folder.read("maps/OV-photo000.jpg"), QByteArray("the old map"));
    QCOMPARE(folder.namesIn("maps"), QStringList{"OV-photo000.jpg"});
}

void tst_OvmicMapHostile::readOnlyFolder()
{
    const MapFolder folder;
    folder.writePhotograph("a.png");
    folder.makeFolder("maps");
    folder.write("maps/OV-a.jpg", "the old map");
    handOver(
        {folder.path(), folder.filePath("a.png"), folder.filePath("maps"), folder.filePath("maps/OV-a.jpg")});
    QVERIFY(QFile::setPermissions(folder.filePath("maps"), QFile::ReadOwner | QFile::ExeOwner));
    MapFolder::Result result;
    QCOMPARE(asOrdinaryUser([&] {
                 result = folder.run({"-c", "fit", "a.png", "--overwrite", "-o", "maps"});
                 return result.status == 1 &&
                        result.errors == "ovmic-map: a.png: map cannot be written: Permission denied\n";
             }),
             Answer::Yes);
    QCOMPARE(folder.read("maps/OV-a.jpg"), QByteArray("the old map"));
    QVERIFY(QFile::setPermissions(folder.filePath("maps"),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

/// With less and less memory: a map, or one line that says why not, and nothing half done.
void tst_OvmicMapHostile::littleMemory()
{
    const MapFolder folder;
    folder.writePhotograph("a.png", 1, {500, 500});
    int failures = 0;
    int maps = 0;
    for (int megabytes = 50; addressSpaceCanBeLimited && megabytes <= 350; megabytes += 15) {
        const QString limit = QStringLiteral("ulimit -v %1; ").arg(megabytes * 1000);
        if (folder.shell(limit + "ovmic-map --version").status != 0)
            continue; // the libraries alone need more
        // The system may refuse the threads too, so the run itself has to see to its end.
        const MapFolder::Result result = folder.shell(
            limit + "ovmic-map -c fit -j4 -s 4096x2048 -n '{number}' -o maps a.png a.png a.png a.png");
        QVERIFY2(result.finished, qPrintable(QString::number(megabytes)));
        const int made = result.output.count('\n');
        QCOMPARE(result.errors.count('\n'), 4 - made);
        QCOMPARE(result.status, made < 4 ? 1 : 0);
        for (const QByteArray &line : result.errors.split('\n'))
            QVERIFY2(line.isEmpty() || line.startsWith("ovmic-map: a.png: "), line.constData());
        QCOMPARE(folder.namesIn("maps").size(), made);
        QDir(folder.filePath("maps")).removeRecursively();
        maps += made;
        failures += 4 - made;
    }
    QVERIFY(!addressSpaceCanBeLimited || (maps > 0 && failures > 0));
}

QTEST_GUILESS_MAIN(tst_OvmicMapHostile)
#include "tst_ovmicmaphostile.moc"
