// The window and ovmic-map save the same bytes for the same photograph and values.

#include "applicationsetup.h"
#include "imagecompare.h"
#include "mapfolder.h"
#include "modaldriver.h"
#include "programfolder.h"
#include "referenceengine.h"
#include "savingwindow.h"

namespace
{

/// Values that both can take.
struct Values {
    double distance = 100.0;
    double latitude = 0.0;
    double longitude = 0.0;
    double azimuth = 0.0;
    QSize size = {1024, 1024};
    int format = 1;
    int quality = 85;
    SelectionCircle circle;
};

QStringList asOptions(const Values &v)
{
    const auto number = [](double value) { return QString::number(value, 'g', 17); };
    const SelectionCircle &c = v.circle;
    const QString circle = QStringLiteral("%1,%2,%3").arg(c.centerX).arg(c.centerY).arg(c.radius);
    return {"--distance",  number(v.distance),
            "--latitude",  number(v.latitude),
            "--longitude", number(v.longitude),
            "--azimuth",   number(v.azimuth),
            "--size",      QStringLiteral("%1x%2").arg(v.size.width()).arg(v.size.height()),
            "--format",    v.format == 1 ? "png" : "jpg",
            "--quality",   QString::number(v.quality),
            "--circle",    c.radius == 0 ? QStringLiteral("fit") : circle};
}

void setValues(TestWindow &window, const Values &v)
{
    window.distance = v.distance;
    window.latitude = v.latitude;
    window.longitude = v.longitude;
    window.azimuth = v.azimuth;
    window.outputSizeX = v.size.width();
    window.outputSizeY = v.size.height();
    window.format = v.format;
    window.quality = v.quality;
    window.centerX = v.circle.centerX;
    window.centerY = v.circle.centerY;
    window.radius = v.circle.radius;
}

} // namespace

Q_DECLARE_METATYPE(Values)

class tst_OvmicMapEquality : public QObject
{
    Q_OBJECT

private slots:
    void sameBytes_data();
    void sameBytes();
    void sameBytesFromTheSettingsFile();
    void sameBytesAsABatch();
    void sameBytesOnAnyDisplay_data();
    void sameBytesOnAnyDisplay();
    void lensNoneIsAnotherMap();
    void savedCircleIsLoaded();
};

void tst_OvmicMapEquality::sameBytes_data()
{
    QTest::addColumn<QString>("photograph");
    QTest::addColumn<Values>("values");
    Values v;
    v.circle = {48, 36, 33};
    QTest::newRow("plain") << "photo.png" << v;
    v.distance = 6.6;
    v.latitude = 35.7;
    v.longitude = 139.69;
    QTest::newRow("another place") << "photo.png" << v;
    v.azimuth = 30.5;
    QTest::newRow("with an azimuth") << "photo.png" << v;
    QTest::newRow("from a JPEG") << "photo.jpg" << v;
    v.format = 0;
    QTest::newRow("to a JPEG") << "photo.png" << v;
    v.quality = 100;
    QTest::newRow("quality 100") << "photo.png" << v;
    v.quality = 1;
    QTest::newRow("quality 1") << "photo.png" << v;
    v.size = {1500, 1111};
    QTest::newRow("an odd height") << "photo.png" << v;
    v.size = {1501, 1024};
    QTest::newRow("an odd width") << "photo.png" << v;
    v.format = 1;
    v.circle = {-10, 90, 60};
    QTest::newRow("a disc beyond the edges") << "photo.png" << v;
    v.latitude = 90;
    QTest::newRow("from above the pole, with an azimuth") << "photo.png" << v;
    v.distance = 1;
    QTest::newRow("from the surface: an empty map") << "photo.png" << v;
    v = Values();
    v.distance = 6.6;
    QTest::newRow("a fitted circle") << "photo.png" << v;
    v.azimuth = 360;
    v.longitude = -180;
    QTest::newRow("at the ends of the ranges") << "photo.png" << v;
}

void tst_OvmicMapEquality::sameBytes()
{
    QFETCH(QString, photograph);
    QFETCH(Values, values);
    const MapFolder folder;
    QVERIFY(colourfulPhotograph().save(folder.filePath(photograph)));

    SavingWindow window;
    setValues(window, values);
    window.loadFileName = folder.filePath(photograph);
    window.loadImage();
    const QString proposed = window.ui->lineSaveFilename->text();
    ModalDriver driver;
    driver.expectMessage(confirmation(folder.filePath(proposed)));
    window.clickConvert();
    QVERIFY(driver.done());

    COMPARE_RUN(folder.run(QStringList{photograph, "-o", "maps/"} + asOptions(values)), 0, "");
    QCOMPARE(folder.namesIn("maps"), QStringList{proposed});
    const QByteArray saved = folder.read(proposed);
    QVERIFY(saved.size() > 500);
    QVERIFY(saved == folder.read("maps/" + proposed));
}

void tst_OvmicMapEquality::sameBytesFromTheSettingsFile()
{
    // What a window leaves behind is taken by the other program, map for map.
    const MapFolder folder;
    QVERIFY(colourfulPhotograph().save(folder.filePath("photo.png")));
    Values values;
    values.circle = {45, 30, 28};
    values.distance = 7.123456789012345;
    values.latitude = -20;
    values.longitude = 33.3;
    values.azimuth = 77.7;
    values.size = {64, 32}; // smaller than the dialog takes
    QString proposed;
    {
        SavingWindow window;
        setValues(window, values);
        window.settingFile = folder.filePath("ovmic.ini");
        window.loadFileName = folder.filePath("photo.png");
        window.loadImage();
        proposed = window.ui->lineSaveFilename->text();
        ModalDriver driver;
        driver.expectMessage(confirmation(folder.filePath(proposed)));
        window.clickConvert();
        QVERIFY(driver.done());
        window.close();
    }
    COMPARE_RUN(folder.run({"photo.png", "--settings", "ovmic.ini", "-o", "maps/"}), 0, "");
    QCOMPARE(folder.namesIn("maps"), QStringList{proposed});
    QVERIFY(folder.read(proposed) == folder.read("maps/" + proposed));
}

void tst_OvmicMapEquality::sameBytesAsABatch()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 4);
    folder.makeFolder("batch");
    Values values;
    values.circle = {30, 20, 19};
    values.longitude = 50;
    TestWindow window;
    window.startTimer->stop();
    setValues(window, values);
    for (const QString &photograph : photographs)
        window.fileList.append(folder.filePath(photograph));
    window.outputFolder = folder.filePath("batch");
    window.batchConvert();
    COMPARE_RUN(folder.run(photographs + QStringList{"-o", "maps", "-n", "{name}"} + asOptions(values)), 0,
                "");
    QCOMPARE(folder.namesIn("maps").size(), 4);
    QCOMPARE(folder.namesIn("maps"), folder.namesIn("batch"));
    for (const QString &name : folder.namesIn("maps"))
        QVERIFY(folder.read("maps/" + name) == folder.read("batch/" + name));
}

void tst_OvmicMapEquality::sameBytesOnAnyDisplay_data()
{
    // Both formats have a field for the size of a pixel, which the toolkit takes from the display.
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("format");
    for (const char *format : {"jpg", "png"}) {
        QTest::addRow("%s, as it is", format) << QByteArray("LC_ALL=C.UTF-8") << QByteArray(format);
        QTest::addRow("%s, large type", format) << QByteArray("QT_FONT_DPI=144") << QByteArray(format);
        QTest::addRow("%s, scaled", format) << QByteArray("QT_SCALE_FACTOR=2") << QByteArray(format);
    }
}

void tst_OvmicMapEquality::sameBytesOnAnyDisplay()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, format);
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 2);
    folder.makeFolder("batch");
    const ProgramFolder installation;
    installation.write("ovmic.ini",
                       "[General]\nOutputSizeX=64\nOutputSizeY=32\nCenterX=30\nCenterY=20\nRadius=19\n"
                       "OutputFormat=" +
                           QByteArray(format == "png" ? "1" : "0") + "\nOutputFolder=\"" +
                           folder.filePath("batch").toUtf8() + "\"\n");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const int equals = variable.indexOf('=');
    environment.insert(variable.left(equals), variable.mid(equals + 1));
    QProcess process;
    process.setProcessEnvironment(environment);
    installation.start(process, {"/batch", folder.filePath(photographs[0]), folder.filePath(photographs[1])});
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitCode(), 0);

    COMPARE_RUN(folder.run(photographs + QStringList{"-o", "maps", "-n", "{name}", "--settings",
                                                     installation.settingFile()}),
                0, "");
    QCOMPARE(folder.namesIn("maps").size(), 2);
    QCOMPARE(folder.namesIn("maps"), folder.namesIn("batch"));
    for (const QString &name : folder.namesIn("maps")) {
        QVERIFY(name.endsWith(format));
        QVERIFY(folder.read("maps/" + name) == folder.read("batch/" + name));
        const QImage map(folder.filePath("maps/" + name));
        QCOMPARE(qRound(map.dotsPerMeterX() * 0.0254), 96);
        QCOMPARE(qRound(map.dotsPerMeterY() * 0.0254), 96);
    }
}

void tst_OvmicMapEquality::lensNoneIsAnotherMap()
{
    const MapFolder folder;
    QVERIFY(colourfulPhotograph().save(folder.filePath("photo.png")));
    const QStringList near = {"photo.png", "-c", "fit", "-d", "6.6"};
    COMPARE_RUN(folder.run(near + QStringList{"-o", "default.png"}), 0, "");
    COMPARE_RUN(folder.run(near + QStringList{"-o", "corrected.png", "--lens", "corrected"}), 0, "");
    COMPARE_RUN(folder.run(near + QStringList{"-o", "none.png", "--lens", "none"}), 0, "");
    QVERIFY(folder.read("default.png") == folder.read("corrected.png"));
    QVERIFY(folder.read("default.png") != folder.read("none.png"));
    reference::Conversion conversion{48, 36, 35, 6.6, 2048, 1024};
    const QImage photograph(folder.filePath("photo.png"));
    COMPARE_IMAGES(QImage(folder.filePath("default.png")), reference::convert(photograph, conversion));
    conversion.lensCorrected = false;
    COMPARE_IMAGES(QImage(folder.filePath("none.png")), reference::convert(photograph, conversion));
    // Far away the correction does nothing.
    COMPARE_RUN(folder.run({"photo.png", "-c", "fit", "-d", "60", "-o", "far.png"}), 0, "");
    COMPARE_RUN(folder.run({"photo.png", "-c", "fit", "-d", "60", "-o", "far-none.png", "--lens", "none"}), 0,
                "");
    QVERIFY(folder.read("far.png") == folder.read("far-none.png"));
}

void tst_OvmicMapEquality::savedCircleIsLoaded()
{
    const MapFolder folder;
    folder.writeDisc("photo.png", 90.3, 81.8, 60.4);
    COMPARE_RUN(folder.run({"--save-circle", "camera", "photo.png"}), 0, "");
    FreshWindow window;
    window.open(QImage(folder.filePath("photo.png")));
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, folder.filePath("camera")); });
    window.ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
    QCOMPARE(window.centerX, 90);
    QCOMPARE(window.centerY, 81);
    QCOMPARE(window.radius, 60);
}

int main(int argc, char *argv[])
{
    followDisplayScale(); // as the program does: the display's resolution stands in the maps' files
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    int applicationArgc = 1;
    QApplication application(applicationArgc, argv);
    tst_OvmicMapEquality test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ovmicmapequality.moc"
