#include "mapoptions.h"
#include "optiontable.h"

#include "files.h"

#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

namespace
{

std::optional<MapOptions> read(const QStringList &arguments, QString *problem = nullptr)
{
    QString found;
    const std::optional<MapOptions> options = readOptions(QStringList("ovmic-map") + arguments, found);
    if (problem)
        *problem = found;
    else if (!options)
        qWarning("%s", qPrintable(found));
    return options;
}

/// What --circle takes.
QString circleText(const MapOptions &options)
{
    if (const auto *circle = std::get_if<SelectionCircle>(&options.circle))
        return QStringLiteral("%1,%2,%3").arg(circle->centerX).arg(circle->centerY).arg(circle->radius);
    if (const auto *sought = std::get_if<SoughtCircle>(&options.circle))
        return sought->once ? QStringLiteral("find-once") : QStringLiteral("find");
    return QStringLiteral("fit");
}

} // namespace

class tst_MapOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaultsAreThoseOfTheWindow();
    void everyValueArrives();
    void formatWinsOverTheSettings();
    void searchInsteadOfMaps();
    void shortNames();
    void limitsAreAllowed_data();
    void limitsAreAllowed();
    void wrongValuesAreRefused_data();
    void wrongValuesAreRefused();
    void circles_data();
    void circles();
    void singleOptionsWinOverSettings();
    void fileFormats_data();
    void fileFormats();
    void listFilesFollowTheArguments();
    void noPhotographIsWrongUse();
    void anEmptyListIsNone();
    void everyOptionIsTaken();
};

void tst_MapOptions::defaultsAreThoseOfTheWindow()
{
    const auto options = read({"a.jpg"});
    QVERIFY(options);
    QVERIFY(options->action == MapOptions::Action::Convert);
    QCOMPARE(circleText(*options), QString("find")); // where the window fits one
    QCOMPARE(options->leastConfidence, 0.8);
    QCOMPARE(options->parameters.distance, 100.0);
    QCOMPARE(options->parameters.outputSizeX, 2048);
    QCOMPARE(options->parameters.outputSizeY, 1024);
    QCOMPARE(options->parameters.latitude, 0.0);
    QCOMPARE(options->parameters.longitude, 0.0);
    QCOMPARE(options->parameters.azimuth, 0.0);
    QVERIFY(options->parameters.lens == projection::Lens::Corrected);
    QCOMPARE(options->quality, 85);
    QCOMPARE(options->format, QString());
    QVERIFY(options->existing == ExistingMap::Fails);
    QCOMPARE(options->jobs, QThread::idealThreadCount());
    QCOMPARE(options->share.index, 0);
    QCOMPARE(options->share.count, 1);
    QCOMPARE(options->photographs.size(), 1);
}

void tst_MapOptions::everyValueArrives()
{
    const auto options = read(
        {"--circle",     "1,-2,3",     "--distance", "6.6",    "--latitude", "-30.5",    "--longitude",
         "-100",         "--azimuth",  "12.25",      "--size", "1024x8192",  "--format", "png",
         "--quality",    "7",          "--lens",     "none",   "--output",   "maps",     "--skip-existing",
         "--world-file", "--null",     "--part",     "3/7",    "--jobs",     "5",        "--dry-run",
         "--quiet",      "--progress", "always",     "a.jpg",  "-",          "--",       "--b.jpg"});
    QVERIFY(options);
    QCOMPARE(circleText(*options), QString("1,-2,3"));
    QCOMPARE(options->parameters.distance, 6.6);
    QCOMPARE(options->parameters.latitude, -30.5);
    QCOMPARE(options->parameters.longitude, -100.0);
    QCOMPARE(options->parameters.azimuth, 12.25);
    QCOMPARE(QSize(options->parameters.outputSizeX, options->parameters.outputSizeY), QSize(1024, 8192));
    QVERIFY(options->parameters.lens == projection::Lens::None);
    QCOMPARE(options->format, QString("png"));
    QCOMPARE(options->quality, 7);
    QCOMPARE(options->output, QString("maps"));
    QVERIFY(options->existing == ExistingMap::IsDone);
    QVERIFY(options->worldFile);
    QVERIFY(options->separator == Separator::Null);
    QCOMPARE(options->share.index, 2);
    QCOMPARE(options->share.count, 7);
    QCOMPARE(options->jobs, 5);
    QVERIFY(options->action == MapOptions::Action::DryRun);
    QVERIFY(options->quiet);
    QVERIFY(options->progressAlways);
    QCOMPARE(options->photographs.size(), 3);
    QCOMPARE(options->photographs.at(1), QString("-"));
    QCOMPARE(options->photographs.at(2), QString("--b.jpg"));
}

void tst_MapOptions::formatWinsOverTheSettings()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("settings.ini");
    writeFile(path, "[General]\nOutputFormat=1\n");
    for (const char *format : {"jpg", "png"}) {
        const auto options = read({"--settings", path, "--format", format, "a.jpg"});
        QVERIFY(options);
        QCOMPARE(options->format, QString(format));
    }
    const auto options = read({"--settings", path, "a.jpg"});
    QVERIFY(options);
    QCOMPARE(options->format, QString("png"));
}

void tst_MapOptions::searchInsteadOfMaps()
{
    auto options = read({"--print-circle", "a.jpg", "--least-confidence", "0.25"});
    QVERIFY(options);
    QVERIFY(options->action == MapOptions::Action::FindCircles);
    QVERIFY(options->printCircles);
    QCOMPARE(options->circleFile, QString());
    QCOMPARE(options->leastConfidence, 0.25);
    options = read({"--save-circle", "camera.ini", "a.jpg", "--dry-run"});
    QVERIFY(options);
    QVERIFY(options->action == MapOptions::Action::FindCircles);
    QVERIFY(!options->printCircles);
    QCOMPARE(options->circleFile, QString("camera.ini"));
}

void tst_MapOptions::shortNames()
{
    const auto options = read({"-c", "4,5,6", "-d6.6", "-s", "1024x1024", "-fpng", "-o", "out", "-n",
                               "{number}", "-0q", "-j2", "a.jpg"});
    QVERIFY(options);
    QCOMPARE(circleText(*options), QString("4,5,6"));
    QCOMPARE(options->parameters.distance, 6.6);
    QCOMPARE(options->parameters.outputSizeX, 1024);
    QCOMPARE(options->format, QString("png"));
    QCOMPARE(options->output, QString("out"));
    QVERIFY(options->hasName);
    QVERIFY(options->separator == Separator::Null);
    QVERIFY(options->quiet);
    QCOMPARE(options->jobs, 2);
}

void tst_MapOptions::limitsAreAllowed_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("distance") << QStringList{"--distance=1"};
    QTest::newRow("distance, highest") << QStringList{"--distance=100"};
    QTest::newRow("latitude") << QStringList{"--latitude=-90"};
    QTest::newRow("latitude, highest") << QStringList{"--latitude=90"};
    QTest::newRow("longitude") << QStringList{"--longitude=-180"};
    QTest::newRow("longitude, highest") << QStringList{"--longitude=180"};
    QTest::newRow("azimuth") << QStringList{"--azimuth=0"};
    QTest::newRow("azimuth, highest") << QStringList{"--azimuth=360"};
    QTest::newRow("size") << QStringList{"--size=1024x1024"};
    QTest::newRow("size, highest") << QStringList{"--size=8192x8192"};
    QTest::newRow("quality") << QStringList{"--quality=1"};
    QTest::newRow("quality, highest") << QStringList{"--quality=100"};
    QTest::newRow("jobs") << QStringList{"--jobs=1"};
    QTest::newRow("jobs, highest") << QStringList{"--jobs=256"};
    QTest::newRow("part") << QStringList{"--part=1/1"};
    QTest::newRow("confidence") << QStringList{"--least-confidence=0"};
    QTest::newRow("confidence, highest") << QStringList{"--least-confidence=1"};
    QTest::newRow("circle") << QStringList{"--circle=-2147483648,2147483647,-1"};
}

void tst_MapOptions::limitsAreAllowed()
{
    QFETCH(QStringList, arguments);
    QVERIFY(read(arguments + QStringList("a.jpg")));
}

void tst_MapOptions::wrongValuesAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QStringList &arguments, const char *problem) {
        QTest::newRow(name) << arguments << QString::fromLatin1(problem);
    };
    row("distance too small", {"-d", "0.99"}, "--distance 0.99: a number from 1 to 100 is needed");
    row("distance too large", {"-d", "100.1"}, "--distance 100.1: a number from 1 to 100 is needed");
    row("distance no number", {"-d", "far"}, "--distance far: a number from 1 to 100 is needed");
    row("distance with a comma", {"-d", "6,6"}, "--distance 6,6: a number from 1 to 100 is needed");
    row("distance empty", {"--distance="}, "--distance : a number from 1 to 100 is needed");
    row("NaN", {"--latitude", "nan"}, "--latitude nan: a number from -90 to 90 is needed");
    row("infinite", {"--longitude", "inf"}, "--longitude inf: a number from -180 to 180 is needed");
    row("negative azimuth", {"--azimuth", "-1"}, "--azimuth -1: a number from 0 to 360 is needed");
    row("quality", {"--quality", "101"}, "--quality 101: a whole number from 1 to 100 is needed");
    row("quality, a fraction", {"--quality", "8.5"}, "--quality 8.5: a whole number from 1 to 100 is needed");
    row("width", {"--size", "1023x1024"},
        "--size 1023x1024: WIDTHxHEIGHT, each from 1024 to 8192, is needed");
    row("height", {"--size", "1024x8193"},
        "--size 1024x8193: WIDTHxHEIGHT, each from 1024 to 8192, is needed");
    row("one side", {"--size", "2048"}, "--size 2048: WIDTHxHEIGHT, each from 1024 to 8192, is needed");
    row("three sides", {"--size", "2048x1x1024"},
        "--size 2048x1x1024: WIDTHxHEIGHT, each from 1024 to 8192, is needed");
    row("format", {"--format", "gif"}, "--format gif: jpg or png is needed");
    row("lens", {"--lens", "fish"}, "--lens fish: corrected or none is needed");
    row("progress", {"--progress", "no"}, "--progress no: auto or always is needed");
    row("jobs", {"--jobs", "0"}, "--jobs 0: a whole number from 1 to 256 is needed");
    row("two numbers for a circle", {"-c", "1,2"},
        "--circle 1,2: \"find\", \"find-once\", \"fit\" or three whole numbers X,Y,RADIUS from -2147483648 "
        "to 2147483647 are needed");
    row("too large a circle", {"-c", "1,2,2147483648"},
        "--circle 1,2,2147483648: \"find\", \"find-once\", \"fit\" or three whole numbers X,Y,RADIUS from "
        "-2147483648 to 2147483647 "
        "are "
        "needed");
    row("confidence", {"--least-confidence", "1.01"},
        "--least-confidence 1.01: a number from 0 to 1 is needed");
    row("no path for a circle", {"--save-circle", ""}, "--save-circle : a path is needed");
    row("part 0", {"--part", "0/4"}, "--part 0/4: I/N, two whole numbers with 1 <= I <= N, is needed");
    row("part beyond", {"--part", "5/4"}, "--part 5/4: I/N, two whole numbers with 1 <= I <= N, is needed");
    row("part without a slash", {"--part", "5"},
        "--part 5: I/N, two whole numbers with 1 <= I <= N, is needed");
    row("unknown option", {"--fast"}, "Unknown option 'fast'.");
    row("two circles", {"-c", "fit", "--circle-file", "x"},
        "--circle and --circle-file: only one of them can be given");
    row("replace and pass over", {"--overwrite", "--skip-existing"},
        "--overwrite and --skip-existing: only one of them can be given");
    row("no circle file", {"--circle-file", "/missing"}, "--circle-file /missing: No such file or directory");
    row("no settings file", {"--settings", "/missing"}, "--settings /missing: No such file or directory");
    row("no list", {"--files-from", "/missing"}, "--files-from /missing: No such file or directory");
    row("a list that is a folder", {"--files-from", "/"}, "--files-from /: file to open is a directory");
    row("an endless list", {"--files-from", "/dev/zero"},
        "--files-from /dev/zero: holds NUL bytes: --null is needed for such a list");
    row("unknown placeholder", {"--name", "{title}"},
        "--name {title}: {name}, {number} and {number:WIDTH}, WIDTH from 1 to 99, can stand in a name");
    row("empty name", {"--name", ""},
        "--name : {name}, {number} and {number:WIDTH}, WIDTH from 1 to 99, can stand in a name");
    row("a folder in a name", {"--name", "a/{name}"},
        "--name a/{name}: a name has no slash; --output names the folder");
    row("empty output", {"--output", ""}, "--output : a path is needed");
    row("the first of two problems", {"-d", "0", "--latitude", "100"},
        "--distance 0: a number from 1 to 100 is needed");
}

void tst_MapOptions::wrongValuesAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, problem);
    QString found;
    QVERIFY(!read(arguments + QStringList("a.jpg"), &found));
    QCOMPARE(found, problem);
}

void tst_MapOptions::circles_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("expected");
    const QByteArray whole = "[General]\nCenterX=11\nCenterY=12\nRadius=13\n";
    QTest::newRow("that of the settings") << whole << QStringList() << "11,12,13";
    QTest::newRow("settings with a zero: fitted, as the window does")
        << QByteArray("[General]\nCenterX=0\nCenterY=12\nRadius=13\n") << QStringList() << "fit";
    QTest::newRow("settings with a zero radius: the same")
        << QByteArray("[General]\nCenterX=11\nCenterY=12\nRadius=0\n") << QStringList() << "fit";
    QTest::newRow("settings without a circle")
        << QByteArray("[General]\nDistance=6\n") << QStringList() << "fit";
    QTest::newRow("an option wins") << whole << QStringList{"-c", "1,2,3"} << "1,2,3";
    QTest::newRow("fit wins") << whole << QStringList{"-c", "fit"} << "fit";
    QTest::newRow("find wins") << whole << QStringList{"-c", "find"} << "find";
    QTest::newRow("find-once wins") << whole << QStringList{"-c", "find-once"} << "find-once";
    QTest::newRow("zeros of an option count") << whole << QStringList{"-c", "0,0,0"} << "0,0,0";
}

void tst_MapOptions::circles()
{
    QFETCH(QByteArray, settings);
    QFETCH(QStringList, arguments);
    QFETCH(QString, expected);
    const QTemporaryDir folder;
    writeFile(folder.filePath("settings.ini"), settings);
    writeFile(folder.filePath("circle.ini"), "[General]\nCenterX=0\nCenterY=21\nRadius=22\n");
    const QStringList withSettings =
        QStringList{"--settings", folder.filePath("settings.ini"), "a.jpg"} + arguments;
    auto options = read(withSettings);
    QVERIFY(options);
    QCOMPARE(circleText(*options), expected);
    if (arguments.isEmpty()) {
        options = read(withSettings + QStringList{"--circle-file", folder.filePath("circle.ini")});
        QVERIFY(options);
        QCOMPARE(circleText(*options), QString("0,21,22"));
    }
}

void tst_MapOptions::singleOptionsWinOverSettings()
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("settings.ini"),
              "[General]\nDistance=6.6\nOutputSizeX=64\nOutputSizeY=32\nOutputFormat=1\nOutputQuality=50\n"
              "Latitude=10\nLongitude=20\nAzimuth=30\nOutputFolder=elsewhere\nOutputFileNameType=1\n");
    const auto options =
        read({"a.jpg", "--latitude", "-5", "--settings", folder.filePath("settings.ini"), "--quality", "60"});
    QVERIFY(options);
    QCOMPARE(options->parameters.distance, 6.6);
    QCOMPARE(options->parameters.outputSizeX, 64);
    QCOMPARE(options->parameters.outputSizeY, 32);
    QCOMPARE(options->parameters.latitude, -5.0);
    QCOMPARE(options->parameters.longitude, 20.0);
    QCOMPARE(options->parameters.azimuth, 30.0);
    QCOMPARE(options->format, QString("png"));
    QCOMPARE(options->quality, 60);
    QCOMPARE(options->output, QString());
    QVERIFY(!options->hasName);
}

void tst_MapOptions::fileFormats_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("problem");
    const char *tooLarge = ": a map of %1 pixels cannot be made; 1 to 32767 are possible";
    QTest::newRow("no width") << QByteArray("[General]\nOutputSizeX=0\n")
                              << QString(tooLarge).arg("0 x 1024");
    QTest::newRow("no height") << QByteArray("[General]\nOutputSizeY=0\n")
                               << QString(tooLarge).arg("2048 x 0");
    QTest::newRow("a map that is too wide by one")
        << QByteArray("[General]\nOutputSizeX=32768\n") << QString(tooLarge).arg("32768 x 1024");
    QTest::newRow("a huge map") << QByteArray("[General]\nOutputSizeX=1\nOutputSizeY=2147483647\n")
                                << QString(tooLarge).arg("1 x 2147483647");
    QTest::newRow("no number") << QByteArray("[General]\nDistance=\"6,6\"\n")
                               << ": Distance=6,6 is no number";
    QTest::newRow("another file") << QByteArray("hello\n") << ": holds no settings of a map";
    QTest::newRow("nothing") << QByteArray() << ": holds no settings of a map";
}

void tst_MapOptions::fileFormats()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, problem);
    const QTemporaryDir folder;
    const QString path = folder.filePath("settings.ini");
    writeFile(path, settings);
    QString found;
    QVERIFY(!read({"--settings", path, "a.jpg"}, &found));
    QCOMPARE(found, "--settings " + path + problem);
}

void tst_MapOptions::listFilesFollowTheArguments()
{
    const QTemporaryDir folder;
    writeFile(folder.filePath("list"), "b.jpg\n\nc d.jpg\n e.jpg ");
    writeFile(folder.filePath("more"), "f.jpg\n");
    const auto options =
        read({"--files-from", folder.filePath("list"), "a.jpg", "--files-from", folder.filePath("more")});
    QVERIFY(options);
    QVERIFY(options->hasListFile);
    QStringList paths;
    for (int i = 0; i < options->photographs.size(); ++i)
        paths.append(options->photographs.at(i));
    QCOMPARE(paths, (QStringList{"a.jpg", "b.jpg", "c d.jpg", " e.jpg ", "f.jpg"}));
}

void tst_MapOptions::noPhotographIsWrongUse()
{
    QString problem;
    QVERIFY(!read({"--distance", "6.6"}, &problem));
    QCOMPARE(problem, QString("no photograph is named; --help shows the use"));
}

void tst_MapOptions::anEmptyListIsNone()
{
    const auto options = read({"--files-from", "/dev/null"});
    QVERIFY(options);
    QCOMPARE(options->photographs.size(), 0);
}

/// The table of options and what is read from it cannot drift apart: each option changes or refuses something.
void tst_MapOptions::everyOptionIsTaken()
{
    int count = 0;
    for (const OptionGroup &group : optionGroups()) {
        QVERIFY(!group.title.isEmpty());
        for (const QCommandLineOption &option : group.options) {
            ++count;
            QVERIFY(!option.description().isEmpty());
            if (option.valueName().isEmpty())
                continue;
            QString problem;
            const QString name = "--" + option.names().last();
            const bool refused = !read({name, "/", "a.jpg"}, &problem);
            QVERIFY2(refused == (name != "--output" && name != "--save-circle"), qPrintable(name));
            QVERIFY2(!refused || problem.startsWith(name + " /: "), qPrintable(problem));
        }
    }
    QCOMPARE(count, 28);
}

QTEST_GUILESS_MAIN(tst_MapOptions)
#include "tst_mapoptions.moc"
