// The executable as a process, without a window: `ovmic /batch image image...`.

#include "hostilepictures.h"
#include "imagecompare.h"
#include "memorylimit.h"
#include "patience.h"
#include "photographs.h"
#include "programfolder.h"
#include "referencemap.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSettings>

#include <sys/stat.h>

namespace
{

const QString samples = QStringLiteral(OVMIC_SAMPLES);

QByteArray settingsText(const QString &outputFolder, const QByteArray &more)
{
    return "[General]\nOutputFolder=\"" + outputFolder.toUtf8() + "\"\n" + more;
}

/// Tiny photographs that differ, in a folder of their own. @return their paths
QStringList writePhotographs(const ProgramFolder &folder, int count)
{
    QDir(folder.filePath(".")).mkdir("in");
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        paths.append(folder.filePath(QStringLiteral("in/photo%1.png").arg(i, 3, 10, QLatin1Char('0'))));
        if (!seriesPhotograph({50, 40}, i).save(paths.last()))
            qFatal("cannot write %s", qPrintable(paths.last()));
    }
    return paths;
}

const QByteArray smallMap =
    "OutputSizeX=64\nOutputSizeY=32\nCenterX=25\nCenterY=20\nRadius=18\nOutputFormat=1\n";

QImage smallReference(const QString &photograph)
{
    return referenceMap(QImage(photograph), mapParameters({{25, 20}, 18}, {64, 32}));
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

} // namespace

class tst_Unattended : public QObject
{
    Q_OBJECT

private slots:
    void sampleSeriesAsANewcomerRunsIt();
    void twoPathsWriteTwoMapsAndTheSettings();
    void relativeAndUnusualPaths();
    void namesOfToolkitOptionsArePhotographs();
    void needsNoDisplay();
    void settingsFileIsNamedUpToTheFirstDot();
    void settingsLieBesideTheLink();
    void fewerThanTwoPathsIsAUsageError_data();
    void fewerThanTwoPathsIsAUsageError();
    void theSwitchIsCaseSensitive();
    void failuresAreSilent();
    void hostilePhotographsFailAlone();
    void fullDiskLeavesNoPartialMap();
    void killedInMidRunLeavesWholeMaps();
    void manyProcessesShareOneProgramFolder();
};

void tst_Unattended::sampleSeriesAsANewcomerRunsIt()
{
    const ProgramFolder folder;
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("ovmic.ini", settingsText(folder.filePath("maps"), "CenterX=640\nCenterY=480\nRadius=440\n"
                                                                    "Distance=6.6\nOutputSizeX=1024\n"
                                                                    "OutputSizeY=512\nOutputFormat=1\n"));
    QStringList arguments{"/batch"};
    for (int i = 1; i <= 4; ++i)
        arguments.append(samples + QStringLiteral("/series-%1.jpg").arg(i));
    const ProgramFolder::Result result = folder.run(arguments);
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 0);
    for (int i = 1; i <= 4; ++i) {
        const MapParameters parameters = mapParameters({{640, 480}, 440, 6.6}, {1024, 512});
        const QImage expected = referenceMap(QImage(arguments.at(i)), parameters);
        COMPARE_IMAGES(QImage(folder.filePath(QStringLiteral("maps/series-%1.png").arg(i))), expected);
    }
}

void tst_Unattended::twoPathsWriteTwoMapsAndTheSettings()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    folder.write("ovmic.ini", settingsText(folder.filePath("."), smallMap));
    const ProgramFolder::Result result = folder.run(QStringList{"/batch"} + photographs);
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 0);
    for (const QString &photograph : photographs)
        COMPARE_IMAGES(QImage(folder.filePath(QFileInfo(photograph).fileName())), smallReference(photograph));
    // Closing the hidden window stores everything, though nobody touched it.
    const QList<QByteArray> stored = folder.read("ovmic.ini").split('\n');
    QVERIFY(stored.contains("Radius=18"));
    QVERIFY(stored.contains("OutputQuality=85"));
    QVERIFY(stored.contains("AutoSize=true"));
    QVERIFY(stored.contains("PreviewWindow=false"));
    QVERIFY(!result.standardError.contains("No matching signal"));
}

void tst_Unattended::relativeAndUnusualPaths()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    folder.write("ovmic.ini", settingsText(folder.filePath("."), smallMap));
    QVERIFY(QFile::copy(photographs.at(1), folder.filePath("in/地球 𠮷 の写真.png")));
    const ProgramFolder::Result result = folder.run({"/batch", "in/photo000.png", "in/地球 𠮷 の写真.png"});
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 0);
    COMPARE_IMAGES(QImage(folder.filePath("photo000.png")), smallReference(photographs.at(0)));
    COMPARE_IMAGES(QImage(folder.filePath("地球 𠮷 の写真.png")), smallReference(photographs.at(1)));
}

// The toolkit would take them for its own, and end the program over the second one.
void tst_Unattended::namesOfToolkitOptionsArePhotographs()
{
    const ProgramFolder folder;
    const QStringList names{"-style=x.png", "-platform", "-reverse", "-stylesheet"};
    const QStringList photographs = writePhotographs(folder, names.size());
    for (int i = 0; i < names.size(); ++i)
        QVERIFY(QFile::rename(photographs.at(i), folder.filePath(names.at(i))));
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("ovmic.ini", settingsText(folder.filePath("maps"), smallMap));
    const ProgramFolder::Result result = folder.run(QStringList{"/batch"} + names);
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 0);
    QStringList maps = QDir(folder.filePath("maps")).entryList(QDir::Files);
    maps.sort();
    QCOMPARE(maps, (QStringList{"-platform.png", "-reverse.png", "-style=x.png", "-stylesheet.png"}));
}

void tst_Unattended::needsNoDisplay()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("ovmic.ini", settingsText(folder.filePath("maps"), smallMap));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    process.setProcessEnvironment(environment);
    folder.start(process, QStringList{"/batch"} + photographs);
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(QDir(folder.filePath("maps")).entryList(QDir::Files).size(), 2);
}

void tst_Unattended::settingsFileIsNamedUpToTheFirstDot()
{
    const ProgramFolder folder("globe.v2.program");
    const QStringList photographs = writePhotographs(folder, 2);
    folder.write("globe.ini", settingsText(folder.filePath("."), smallMap));
    const ProgramFolder::Result result = folder.run(QStringList{"/batch"} + photographs);
    QVERIFY(result.finished);
    QVERIFY(QFile::exists(folder.filePath("photo000.png"))); // the output folder came from globe.ini
    QVERIFY(!QFile::exists(folder.filePath("globe.v2.ini")));
}

// Started through a link, the settings lie beside the link.
void tst_Unattended::settingsLieBesideTheLink()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    QVERIFY(QDir(folder.filePath(".")).mkdir("elsewhere"));
    const QString link = folder.filePath("elsewhere/maps");
    QVERIFY(QFile::link(folder.program(), link));
    QProcess process;
    process.start(link, QStringList{"/batch"} + photographs);
    QVERIFY(process.waitForFinished(patienceMs));
    QVERIFY(QFile::exists(folder.filePath("elsewhere/maps.ini")));
    QVERIFY(!QFile::exists(folder.filePath("ovmic.ini")));
}

void tst_Unattended::fewerThanTwoPathsIsAUsageError_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QByteArray>("settings");
    QTest::newRow("no path") << QStringList() << QByteArray();
    QTest::newRow("one path") << QStringList{"one.png"} << QByteArray();
    QTest::newRow("no path, and the last photograph is gone: a warning is open")
        << QStringList() << QByteArray("[General]\nLoadFileName=gone.png\n");
}

void tst_Unattended::fewerThanTwoPathsIsAUsageError()
{
    QFETCH(QStringList, paths);
    QFETCH(QByteArray, settings);
    const ProgramFolder folder;
    if (!settings.isEmpty())
        folder.write("ovmic.ini", settings);
    const ProgramFolder::Result result = folder.run(QStringList{"/batch"} + paths);
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 2);
    QCOMPARE(result.standardError.count("usage: "), 1);
    // Only after the start-up pass.
    QVERIFY(result.standardError.indexOf("timeout\n") < result.standardError.indexOf("usage: "));
    QVERIFY(result.standardError.contains("timeout\n"));
}

// In any other case it is a file name: the window is shown and stays.
void tst_Unattended::theSwitchIsCaseSensitive()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    folder.write("ovmic.ini", settingsText(folder.filePath("."), smallMap));
    QProcess process;
    folder.start(process, QStringList{"/Batch"} + photographs);
    QByteArray output;
    QTRY_VERIFY_WITH_TIMEOUT((output += process.readAllStandardError()).contains("photo001.png"), patienceMs);
    QCOMPARE(process.state(), QProcess::Running); // the batch dialog waits for an answer
    QVERIFY(!output.contains("batchConvert"));
    process.kill();
    QVERIFY(process.waitForFinished(patienceMs));
    QVERIFY(!QFile::exists(folder.filePath("photo000.png")));
}

void tst_Unattended::failuresAreSilent()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 1);
    folder.write("text.png", "no image");
    folder.write("ovmic.ini", settingsText(folder.filePath("missing"), smallMap));
    const ProgramFolder::Result result =
        folder.run({"/batch", photographs.first(), "text.png", folder.filePath("in")});
    QVERIFY(result.finished);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(!QFile::exists(folder.filePath("missing")));
}

// Each of them would end the run, or hold it up for ever, and the two behind them would have no maps.
void tst_Unattended::hostilePhotographsFailAlone()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    folder.write("texts.png", pngWithTexts(addressSpaceCanBeLimited ? 136 : 10));
    folder.write("large.jpg", jpegOfSize(65500, 65500));
    QCOMPARE(mkfifo(QFile::encodeName(folder.filePath("pipe.png")).constData(), 0600), 0);
    QVERIFY(QFile::rename(photographs.at(1), folder.filePath("./:colon.png")));
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("ovmic.ini", settingsText(folder.filePath("maps"), smallMap + "InputFileSortType=2\n"
                                                                               "OutputFileNameType=1\n"));
    QProcess shell;
    shell.setWorkingDirectory(folder.filePath("."));
    const QString limit = addressSpaceCanBeLimited ? "ulimit -v 2000000; " : "";
    shell.start("bash", {"-c", limit + "exec \"$@\"", "bash", folder.program(), "/batch", "texts.png",
                         "large.jpg", "pipe.png", "/proc/kmsg", ":/up.png", ":colon.png", photographs.at(0)});
    QVERIFY(shell.waitForFinished(patienceMs));
    QCOMPARE(shell.exitStatus(), QProcess::NormalExit);
    QCOMPARE(shell.exitCode(), 0);
    QStringList maps = filesIn(folder.filePath("maps"));
    maps.removeOne("map_0.png"); // only the texts may find the memory that they want
    QCOMPARE(maps, (QStringList{"map_5.png", "map_6.png"}));
}

// The disk is full after the first few kilobytes of each file: small maps are written, the large one is not, and
// the old file of its name stays whole.
void tst_Unattended::fullDiskLeavesNoPartialMap()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 2);
    Rng rng(1);
    const QImage noise = noisePhotograph(rng, {400, 400}, Alpha::Opaque);
    QVERIFY(noise.save(folder.filePath("in/large.png")));
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("maps/large.png", "the old map");
    folder.write("ovmic.ini",
                 settingsText(folder.filePath("maps"), "OutputSizeX=512\nOutputSizeY=256\nCenterX=200\n"
                                                       "CenterY=200\nRadius=195\nOutputFormat=1\n"));
    QProcess shell;
    shell.start("bash", QStringList{"-c", "trap '' XFSZ; ulimit -f 64; exec \"$@\"", "bash", folder.program(),
                                    "/batch", folder.filePath("in/large.png")} +
                            photographs);
    QVERIFY(shell.waitForFinished(patienceMs));
    QCOMPARE(shell.exitCode(), 0);
    QCOMPARE(folder.read("maps/large.png"), QByteArray("the old map"));
    QCOMPARE(filesIn(folder.filePath("maps")), (QStringList{"large.png", "photo000.png", "photo001.png"}));
    QCOMPARE(QImage(folder.filePath("maps/photo001.png")).size(), QSize(512, 256));
}

void tst_Unattended::killedInMidRunLeavesWholeMaps()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 60);
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    const QByteArray settings = settingsText(folder.filePath("maps"),
                                             "OutputSizeX=256\nOutputSizeY=128\nOutputFormat=1\nRadius=18\n");
    folder.write("ovmic.ini", settings);
    QStringList arguments{"/batch"};
    for (int i = 0; i < 20; ++i) // far more than a machine can do before the kill, however late that comes
        arguments += photographs;
    QProcess process;
    folder.start(process, arguments);
    QTRY_VERIFY_WITH_TIMEOUT(filesIn(folder.filePath("maps")).size() >= 5, patienceMs);
    process.kill();
    QVERIFY(process.waitForFinished(patienceMs));
    // Only the file that was being written may be left, under a name of its own.
    for (const QString &name : filesIn(folder.filePath("maps"))) {
        if (name.endsWith(".png"))
            QCOMPARE(QImage(folder.filePath("maps/" + name)).size(), QSize(256, 128));
    }
    QCOMPARE(folder.read("ovmic.ini"), settings);
}

// The way to use more than one core: xargs deals the photographs out to several processes.
void tst_Unattended::manyProcessesShareOneProgramFolder()
{
    const ProgramFolder folder;
    const QStringList photographs = writePhotographs(folder, 24);
    QVERIFY(QDir(folder.filePath(".")).mkdir("maps"));
    folder.write("ovmic.ini", settingsText(folder.filePath("maps"), smallMap));
    QProcess shell;
    shell.setWorkingDirectory(folder.filePath("in"));
    shell.start("bash", {"-c", "printf '%s\\0' *.png | xargs -0 -n 6 -P 4 ../ovmic /batch"});
    QVERIFY(shell.waitForFinished(patienceMs));
    QCOMPARE(shell.exitCode(), 0);
    QCOMPARE(filesIn(folder.filePath("maps")).size(), photographs.size());
    for (const QString &photograph : photographs)
        COMPARE_IMAGES(QImage(folder.filePath("maps/" + QFileInfo(photograph).fileName())),
                       smallReference(photograph));
    const QSettings stored(folder.settingFile(), QSettings::IniFormat);
    QCOMPARE(stored.allKeys().size(), 26);
    QCOMPARE(stored.value("Radius").toInt(), 18);
    QCOMPARE(stored.value("OutputFolder").toString(), folder.filePath("maps"));
}

QTEST_MAIN(tst_Unattended)
#include "tst_unattended.moc"
