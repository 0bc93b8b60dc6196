#include "faults.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "photographs.h"
#include "settingsfolder.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

namespace
{

const QStringList flags{"PreviewWindow", "AutoPreview", "AutoSize", "Overwrite", "OpenFiler"};
const QStringList numbers{"PenSize",      "CenterX",      "CenterY",           "Radius",
                          "OutputSizeX",  "OutputSizeY",  "InputFileSortType", "OutputFileNameType",
                          "OutputFormat", "OutputQuality"};
const QStringList doubles{"Distance", "Latitude", "Longitude", "Azimuth"};
const QStringList names{"LoadFileName", "SaveFileName", "InputFolder", "OutputFolder"};

/// One setting as a hand writes it, and as it arrives.
struct Written {
    const char *key;
    const char *inFile;
    QString arrives;
};

const QVector<Written> written{
    {"PreviewWindow", "true", "true"},
    {"AutoPreview", "true", "true"},
    {"AutoSize", "false", "false"},
    {"PenSize", "7", "7"},
    {"PenColor", "#80FFCC01", "#80ffcc01"},
    {"CenterX", "-12", "-12"},
    {"CenterY", "345", "345"},
    {"Radius", "678", "678"},
    {"Distance", "6.6", bits(6.6)},
    {"OutputSizeX", "100", "100"}, // smaller than the options dialog allows
    {"OutputSizeY", "9999", "9999"},
    {"LoadFileName", "/写真/地球 𠮷田🌏.jpg", "/写真/地球 𠮷田🌏.jpg"},
    {"SaveFileName", "\"/maps/a, b; c.png\"", "/maps/a, b; c.png"},
    {"InputFolder", "C:/in", "C:/in"},
    {"OutputFolder", R"(\\\\server\\out)", R"(\\\\server\\out)"}, // escaped here and in the dump
    {"InputFileSortType", "1", "1"},
    {"OutputFileNameType", "2", "2"},
    {"OutputFormat", "1", "1"},
    {"OutputQuality", "12", "12"},
    {"Latitude", "-500.25", bits(-500.25)},
    {"Longitude", "139.7454321", bits(139.7454321)},
    {"Azimuth", "1e-3", bits(0.001)},
    {"Overwrite", "false", "false"},
    {"OpenFiler", "false", "false"},
};

/// Bytes as the ini format writes them.
QByteArray byteArray(const QByteArray &bytes)
{
    QByteArray text;
    for (const char byte : bytes)
        text += "\\x" + QByteArray::number(static_cast<unsigned char>(byte), 16);
    return "@ByteArray(" + text + ')';
}

QStringList defaultsBut(const QString &key, const QString &value)
{
    QStringList settings = defaultSettings;
    for (QString &setting : settings) {
        if (setting.startsWith(key + '='))
            setting = key + '=' + value;
    }
    return settings;
}

} // namespace

class tst_Settings : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void withoutFileEverythingIsDefault();
    void everyKeyIsRead();
    void oneKeyChangesOneValue_data();
    void oneKeyChangesOneValue();
    void geometriesAreRead();
    void keysOfOtherGroupsAreIgnored();
    void lineEditsShowTheCircle();
    void storedObjectsGiveTheDefaults_data();
    void storedObjectsGiveTheDefaults();
    void numbersAreConverted_data();
    void numbersAreConverted();
    void damagedGeometryStillShowsTheWindow_data();
    void damagedGeometryStillShowsTheWindow();
    void coloursAreReadAndSaved_data();
    void coloursAreReadAndSaved();

    void obstaclesGiveDefaults_data();
    void obstaclesGiveDefaults();
    void hugeFileIsReadWhole_data();
    void hugeFileIsReadWhole();

    void reloadedPhotographProposesItsName();
    void lostPhotographIsForgotten();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<SettingsFolder> m_folder;
    std::unique_ptr<TestWindow> m_window;
};

void tst_Settings::init()
{
    m_folder = std::make_unique<SettingsFolder>();
    m_window = m_folder->window();
}

void tst_Settings::cleanup()
{
    m_window.reset();
}

void tst_Settings::withoutFileEverythingIsDefault()
{
    m_window->readShowString();
    QCOMPARE(settingsOf(*m_window), defaultSettings);
    QCOMPARE(m_folder->loaded(""), defaultSettings);
    QCOMPARE(m_folder->loaded("[General]\n"), defaultSettings);
}

void tst_Settings::everyKeyIsRead()
{
    QByteArray file = "[General]\n";
    QStringList expected = defaultSettings.mid(0, 2); // the geometries
    for (const Written &setting : written) {
        file += QByteArray(setting.key) + '=' + setting.inFile + '\n';
        expected.append(QString(setting.key) + '=' + setting.arrives);
    }
    QCOMPARE(expected.size(), 26);
    QCOMPARE(m_folder->loaded(file), expected);
    QCOMPARE(m_folder->loaded(file.mid(10)), expected); // without the name of the group
}

void tst_Settings::oneKeyChangesOneValue_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < written.size(); ++i)
        QTest::newRow(written[i].key) << i;
}

void tst_Settings::oneKeyChangesOneValue()
{
    QFETCH(int, index);
    const Written &setting = written[index];
    const QStringList expected = defaultsBut(setting.key, setting.arrives);
    QVERIFY(expected != defaultSettings);
    QCOMPARE(m_folder->loaded(QByteArray("[General]\n") + setting.key + '=' + setting.inFile + '\n'),
             expected);
}

void tst_Settings::geometriesAreRead()
{
    QWidget model;
    model.setGeometry(30, 40, 700, 650);
    const QByteArray window = byteArray(model.saveGeometry());
    model.setGeometry(60, 20, 333, 222);
    const QByteArray preview = byteArray(model.saveGeometry());
    const QStringList settings =
        m_folder->loaded("[General]\nGeometry=" + window + "\nPreviewGeometry=" + preview + '\n');
    QCOMPARE(settingIn(settings, "Geometry"), QString("700 x 650 at 30, 40"));
    QCOMPARE(settingIn(settings, "PreviewGeometry"), QString("333 x 222 at 60, 20"));
}

void tst_Settings::keysOfOtherGroupsAreIgnored()
{
    QByteArray keys;
    for (const Written &setting : written)
        keys += QByteArray(setting.key) + '=' + setting.inFile + '\n';
    QCOMPARE(m_folder->loaded("[main]\n" + keys), defaultSettings);
    QCOMPARE(m_folder->loaded("[%General]\n" + keys), defaultSettings);
}

void tst_Settings::lineEditsShowTheCircle()
{
    writeFile(path("tool.ini"), "[General]\nCenterX=-1\nCenterY=22\nRadius=2147483647\n");
    m_window->readShowString();
    QCOMPARE(m_window->ui->lineCenterX->text(), QString("-1"));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString("22"));
    QCOMPARE(m_window->ui->lineRadius->text(), QString("2147483647"));
}

// One written value, read as each of the four types. Nothing is checked or clamped.
void tst_Settings::numbersAreConverted_data()
{
    QTest::addColumn<QByteArray>("inFile");
    QTest::addColumn<int>("number");
    QTest::addColumn<double>("real");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<QString>("text");
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("largest int") << QByteArray("2147483647") << 2147483647 << 2147483647.0 << true
                                 << "2147483647";
    QTest::newRow("one more wraps") << QByteArray("2147483648") << std::numeric_limits<int>::min()
                                    << 2147483648.0 << true << "2147483648";
    QTest::newRow("smallest int") << QByteArray("-2147483648") << std::numeric_limits<int>::min()
                                  << -2147483648.0 << true << "-2147483648";
    QTest::newRow("huge wraps") << QByteArray("99999999999") << 1215752191 << 99999999999.0 << true
                                << "99999999999";
    QTest::newRow("negative") << QByteArray("-5") << -5 << -5.0 << true << "-5";
    QTest::newRow("a fraction is no int") << QByteArray("3.7") << 0 << 3.7 << true << "3.7";
    QTest::newRow("an exponent is no int") << QByteArray("1e2") << 0 << 100.0 << true << "1e2";
    QTest::newRow("no number") << QByteArray("nan") << 0 << nan << true << "nan";
    QTest::newRow("infinite") << QByteArray("inf") << 0 << inf << true << "inf";
    QTest::newRow("infinite downwards") << QByteArray("-inf") << 0 << -inf << true << "-inf";
    QTest::newRow("too large for a double") << QByteArray("1e400") << 0 << inf << true << "1e400";
    QTest::newRow("largest double") << QByteArray("1.7976931348623157e308") << 0 << 1.7976931348623157e308
                                    << true << "1.7976931348623157e308";
    QTest::newRow("smallest double") << QByteArray("4.9406564584124654e-324") << 0 << 4.9406564584124654e-324
                                     << true << "4.9406564584124654e-324";
    QTest::newRow("a list") << QByteArray("6,6") << 0 << 0.0 << false << "";
    QTest::newRow("a long list") << QByteArray(100000, ',') << 0 << 0.0 << false << "";
    QTest::newRow("empty") << QByteArray("") << 0 << 0.0 << false << "";
    QTest::newRow("text") << QByteArray("yes") << 0 << 0.0 << true << "yes";
    QTest::newRow("false") << QByteArray("false") << 0 << 0.0 << false << "false";
    QTest::newRow("FALSE") << QByteArray("FALSE") << 0 << 0.0 << false << "FALSE";
    QTest::newRow("0") << QByteArray("0") << 0 << 0.0 << false << "0";
    QTest::newRow("0.0 is true") << QByteArray("0.0") << 0 << 0.0 << true << "0.0";
    QTest::newRow("hexadecimal") << QByteArray("0x10") << 0 << 0.0 << true << "0x10";
    QTest::newRow("digits of full width") << QByteArray("１２") << 0 << 0.0 << true << "１２";
    QTest::newRow("blanks around") << QByteArray("\" 5 \"") << 5 << 5.0 << true << " 5 ";
    QTest::newRow("bytes") << QByteArray("@ByteArray(5)") << 5 << 5.0 << true << "5";
    QTest::newRow("a size") << QByteArray("@Size(3 4)") << 0 << 0.0 << false << "";
    QTest::newRow("nothing") << QByteArray("@Invalid()") << 0 << 0.0 << false << "";
    QTest::newRow("a stored value cut off") << QByteArray("@Variant(") << 0 << 0.0 << true << "@Variant(";
    QTest::newRow("binary noise") << QByteArray("\x1f\xff\xfe\x7f\x80") << 0 << 0.0 << true
                                  << QString("\x1f\ufffd\ufffd\x7f\ufffd");
    QTest::newRow("very long") << QByteArray(1000000, '9') << 0 << inf << true << QString(1000000, '9');
}

// They are not even decoded: damaged ones crash the toolkit.
void tst_Settings::storedObjectsGiveTheDefaults_data()
{
    QTest::addColumn<QByteArray>("inFile");
    QTest::newRow("an int") << QByteArray(R"(@Variant(\0\0\0\x2\0\0\0\x7))");
    QTest::newRow("a value of no type") << QByteArray(R"(@Variant(\xff\xff\xff\x7f))");
    QTest::newRow("a map that lies about its size") << QByteArray(R"(@Variant(\0\0\0\x8\x7f\xff\xff\xff))");
    QTest::newRow("a polygon of nothing") << QByteArray(R"(@Variant(\0\0\0G\x10\0\0\0))");
}

void tst_Settings::storedObjectsGiveTheDefaults()
{
    QFETCH(QByteArray, inFile);
    QByteArray file = "[General]\n";
    for (const QString &key : flags + numbers + doubles + names + QStringList{"PenColor", "Geometry"})
        file += key.toUtf8() + '=' + inFile + '\n';
    QCOMPARE(m_folder->loaded(file), m_folder->loaded("[General]\n"));
}

void tst_Settings::numbersAreConverted()
{
    QFETCH(QByteArray, inFile);
    QFETCH(int, number);
    QFETCH(double, real);
    QFETCH(bool, flag);
    QFETCH(QString, text);
    QByteArray file = "[General]\n";
    for (const QString &key : flags + numbers + doubles + names)
        file += key.toUtf8() + '=' + inFile + '\n';
    const MessageCollector collector; // the toolkit grumbles about some
    const QStringList settings = m_folder->loaded(file);
    for (const QString &key : flags)
        QCOMPARE(key + settingIn(settings, key), key + (flag ? "true" : "false"));
    for (const QString &key : numbers)
        QCOMPARE(key + settingIn(settings, key), key + QString::number(number));
    for (const QString &key : doubles)
        QCOMPARE(key + settingIn(settings, key), key + bits(real));
    for (const QString &key : names)
        QCOMPARE(key + settingIn(settings, key), key + text);

    // Whatever came in, the window starts, shows itself and closes.
    m_window->readShowString();
    m_window->loadFileName.clear();
    m_window->show();
    m_window->slot("timeout");
    QVERIFY(!m_window->grab().isNull());
    QVERIFY(m_window->close());
}

void tst_Settings::damagedGeometryStillShowsTheWindow_data()
{
    QWidget model;
    model.setGeometry(30, 40, 700, 650);
    const QByteArray valid = model.saveGeometry();
    QTest::addColumn<QByteArray>("inFile");
    QTest::addColumn<bool>("asBuilt");
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("a number") << QByteArray("5") << true;
    QTest::newRow("a list") << QByteArray("1, 2, 3") << true;
    QTest::newRow("empty bytes") << QByteArray("@ByteArray()") << true;
    QTest::newRow("noise") << byteArray("\x12\x34\xff\x7f noise") << true;
    for (const int bytes : {3, 4, 8, 20, 40})
        QTest::addRow("cut after %d bytes", bytes) << byteArray(valid.left(bytes)) << (bytes < 4);
    for (const char byte : {'\x00', '\x7f', '\x80', '\xff'}) {
        const QByteArray lies(valid.size() - 8, byte);
        QTest::addRow("numbers of bytes %02x", static_cast<unsigned char>(byte))
            << byteArray(valid.left(8) + lies) << false;
    }
}

void tst_Settings::damagedGeometryStillShowsTheWindow()
{
    QFETCH(QByteArray, inFile);
    QFETCH(bool, asBuilt);
    const QStringList settings =
        m_folder->loaded("[General]\nGeometry=" + inFile + "\nPreviewGeometry=" + inFile + "\nPenSize=9\n");
    if (asBuilt)
        QCOMPARE(settings, defaultsBut("PenSize", "9"));
    m_window->readShowString();
    m_window->show();
    m_window->previewWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QVERIFY(m_window->width() >= 600);
    QVERIFY(m_window->height() >= 550);
    QCOMPARE(m_window->penSize, 9);
    QVERIFY(m_window->close());
}

void tst_Settings::coloursAreReadAndSaved_data()
{
    QTest::addColumn<QByteArray>("inFile");
    QTest::addColumn<QString>("colour");
    QTest::newRow("alpha first") << QByteArray("#80010203") << "#80010203";
    QTest::newRow("upper case") << QByteArray("#FFABCDEF") << "#ffabcdef";
    QTest::newRow("without alpha") << QByteArray("#123456") << "#ff123456";
    QTest::newRow("short") << QByteArray("#f80") << "#ffff8800";
    QTest::newRow("a name") << QByteArray("blue") << "#ff0000ff";
    QTest::newRow("transparent") << QByteArray("transparent") << "#00000000";
    QTest::newRow("unknown name") << QByteArray("aka") << "invalid";
    QTest::newRow("too many digits") << QByteArray("#1234567890abcdef") << "invalid";
    QTest::newRow("empty") << QByteArray() << "invalid";
    QTest::newRow("a list") << QByteArray("255, 0, 0") << "invalid";
    QTest::newRow("bytes") << QByteArray("@ByteArray(#ff010203)") << "#ff010203";
}

void tst_Settings::coloursAreReadAndSaved()
{
    QFETCH(QByteArray, inFile);
    QFETCH(QString, colour);
    const QStringList settings = m_folder->loaded("[General]\nPenColor=" + inFile + '\n');
    QCOMPARE(settings, defaultsBut("PenColor", colour));
    m_window->readShowString();
    const QByteArray file = saved(*m_window);
    QCOMPARE(valueIn(file, "PenColor"), colour == "invalid" ? QByteArray("#ff000000") : colour.toLatin1());
    QCOMPARE(settingIn(m_folder->loaded(file), "PenColor"),
             colour == "invalid" ? QString("#ff000000") : colour);
}

void tst_Settings::obstaclesGiveDefaults_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("a folder in its place") << "folder";
    QTest::newRow("no permission") << "permission";
    QTest::newRow("a link to nowhere") << "link";
    QTest::newRow("a link to itself") << "ring";
    QTest::newRow("binary noise") << "noise";
    QTest::newRow("a device without end") << "device";
}

void tst_Settings::obstaclesGiveDefaults()
{
    QFETCH(QString, obstacle);
    const QString file = m_window->settingFile;
    if (obstacle == "folder") {
        QVERIFY(QDir().mkdir(file));
    } else if (obstacle == "permission") {
        writeFile(file, "[General]\nPenSize=9\n");
        handOver({file});
        QVERIFY(QFile::setPermissions(file, {}));
    } else if (obstacle == "link") {
        QVERIFY(QFile::link(path("nowhere"), file));
    } else if (obstacle == "ring") {
        QVERIFY(QFile::link(file, file));
    } else if (obstacle == "device") {
        QVERIFY(QFile::link("/dev/zero", file));
    } else {
        QByteArray noise;
        for (unsigned i = 0, value = 1; i < 100000; ++i, value = value * 1103515245 + 12345)
            noise.append(static_cast<char>(value >> 16));
        writeFile(file, noise);
    }
    handOver({m_folder->path()});
    const OrdinaryUser user;
    ModalDriver driver; // nothing is reported
    m_window->readShowString();
    QCOMPARE(settingsOf(*m_window), defaultSettings);
    m_window->show();
    QVERIFY(m_window->close());
    QVERIFY(driver.done());
    if (obstacle == "folder")
        QVERIFY(QFileInfo(file).isDir());
}

void tst_Settings::hugeFileIsReadWhole_data()
{
    QTest::addColumn<QByteArray>("filler");
    QTest::newRow("one value of 10 MB") << "Filler=" + QByteArray(10 << 20, 'x') + '\n';
    QTest::newRow("10 MB without a line break") << QByteArray(10 << 20, 'x') + '\n';
    QTest::newRow("10 MB of line breaks") << QByteArray(10 << 20, '\n');
    QTest::newRow("10 MB of remarks") << QByteArray("; a remark without any sense\n").repeated(360000);
    QTest::newRow("10 MB of keys") << [] {
        QByteArray keys;
        for (int i = 0; keys.size() < 10 << 20; ++i)
            keys += "UnknownKeyNumber" + QByteArray::number(i) + "=some value that nobody asked for\n";
        return keys;
    }();
}

void tst_Settings::hugeFileIsReadWhole()
{
    QFETCH(QByteArray, filler);
    QCOMPARE(m_folder->loaded("[General]\nPenSize=9\n" + filler + "CenterX=77\n"),
             defaultsBut("PenSize", "9").replaceInStrings("CenterX=0", "CenterX=77"));
}

void tst_Settings::reloadedPhotographProposesItsName()
{
    QVERIFY(solidPhotograph({40, 30}, Qt::blue).save(path("地球.png")));
    writeFile(
        m_window->settingFile,
        QString("[General]\nLoadFileName=%1\nSaveFileName=/else/where.jpg\n").arg(path("地球.png")).toUtf8());
    m_window->readShowString();
    QCOMPARE(m_window->saveFileName, QString("/else/where.jpg"));
    m_window->show();
    m_window->slot("timeout");
    QCOMPARE(m_window->saveFileName, path("OV-地球.jpg"));
    QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("OV-地球.jpg"));
    QCOMPARE(valueIn(saved(*m_window), "SaveFileName"), path("OV-地球.jpg").toUtf8());
}

void tst_Settings::lostPhotographIsForgotten()
{
    writeFile(
        m_window->settingFile,
        QString("[General]\nLoadFileName=%1\nSaveFileName=/else/where.jpg\n").arg(path("gone.png")).toUtf8());
    m_window->readShowString();
    m_window->show();
    ModalDriver driver;
    driver.expectMessage({"開く", path("gone.png") + " は開けませんでした", QMessageBox::Warning});
    m_window->slot("timeout");
    QVERIFY(driver.done());
    const QByteArray file = saved(*m_window);
    QCOMPARE(valueIn(file, "LoadFileName"), QByteArray());
    QCOMPARE(valueIn(file, "SaveFileName"), QByteArray("/else/where.jpg"));
}

WINDOW_TEST_MAIN(tst_Settings)
#include "tst_settings.moc"
