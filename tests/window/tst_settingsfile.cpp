#include "faults.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "settingsfolder.h"

#include <QFile>
#include <QFileInfo>

#include <limits>

namespace
{

const QStringList names{"LoadFileName", "SaveFileName", "InputFolder", "OutputFolder"};

} // namespace

/// What the window leaves in its settings file, and what it leaves alone.
class tst_SettingsFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void onlyClosingWrites();
    void closingHiddenWrites();
    void fileNamesArePlainText_data();
    void fileNamesArePlainText();
    void valuesComeBack_data();
    void valuesComeBack();
    void keysInTheFile();
    void unknownKeysStay();
    void previewFlagIsItsVisibility_data();
    void previewFlagIsItsVisibility();
    void invalidColourIsSavedAsBlack();

    void oldFileSurvivesAFullDisk_data();
    void oldFileSurvivesAFullDisk();
    void oldFileSurvivesASizeLimit();
    void readOnlyFolderKeepsTheOldFile();
    void unreadableFileIsKept();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<SettingsFolder> m_folder;
    std::unique_ptr<TestWindow> m_window;
};

void tst_SettingsFile::init()
{
    m_folder = std::make_unique<SettingsFolder>();
    m_window = m_folder->window();
}

void tst_SettingsFile::cleanup()
{
    m_window.reset();
}

void tst_SettingsFile::onlyClosingWrites()
{
    m_window->readShowString();
    m_window->show();
    m_window->slot("timeout");
    m_window->penSize = 8;
    QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return);
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionParam_Reset->trigger();
    QVERIFY(!QFile::exists(m_window->settingFile));
    QVERIFY(m_window->close());
    QCOMPARE(valueIn(contentsOf(m_window->settingFile), "PenSize"), QByteArray("8"));
    QCOMPARE(valueIn(contentsOf(m_window->settingFile), "AutoPreview"), QByteArray("true"));
}

void tst_SettingsFile::closingHiddenWrites()
{
    m_window->readShowString();
    m_window->close();
    QCOMPARE(valueIn(contentsOf(m_window->settingFile), "OutputQuality"), QByteArray("85"));
}

void tst_SettingsFile::fileNamesArePlainText_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("inFile");
    QTest::newRow("Japanese") << "/写真/地球.jpg" << QByteArray("/写真/地球.jpg");
    QTest::newRow("beyond the basic plane") << "/𠮷田.jpg" << QByteArray("/𠮷田.jpg");
    QTest::newRow("emoji") << "/🌏👩‍🚀🇯🇵.png" << QByteArray("/🌏👩‍🚀🇯🇵.png");
    QTest::newRow("accents") << "/é è ñ.jpg" << QByteArray("/é è ñ.jpg");
    QTest::newRow("comma") << "/a, b.jpg" << QByteArray("\"/a, b.jpg\"");
    QTest::newRow("at sign first") << "@home" << QByteArray("@@home");
}

void tst_SettingsFile::fileNamesArePlainText()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, inFile);
    m_window->readShowString();
    m_window->loadFileName = m_window->saveFileName = m_window->inputFolder = m_window->outputFolder = name;
    const QByteArray file = saved(*m_window);
    for (const QString &key : names)
        QCOMPARE(valueIn(file, key.toLatin1()), inFile);
    const QStringList settings = m_folder->loaded(file);
    for (const QString &key : names)
        QCOMPARE(settingIn(settings, key), name);
}

void tst_SettingsFile::valuesComeBack_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<double>("real");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<QString>("text");
    QTest::newRow("ordinary") << 1234 << 139.7454321 << true << "/a/b.jpg";
    QTest::newRow("largest") << 2147483647 << 1.7976931348623157e308 << false
                             << R"("quoted" \ back;slash, comma)";
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << 4.9406564584124654e-324 << true
                              << " outer blanks ";
    QTest::newRow("zero") << 0 << 0.0 << false << "";
    QTest::newRow("a third") << -1 << 1.0 / 3 << true << "line\nbreak\ttab";
    QTest::newRow("a tenth and a bit") << 1 << 0.1 + 0.2 << true << "@ByteArray(x) @Invalid()";
    QTest::newRow("infinite") << 1 << std::numeric_limits<double>::infinity() << true << "%20 %1 %%";
    QTest::newRow("long") << 1 << -1e300 << true << QString(100000, QChar(0x5730));
}

void tst_SettingsFile::valuesComeBack()
{
    QFETCH(int, number);
    QFETCH(double, real);
    QFETCH(bool, flag);
    QFETCH(QString, text);
    m_window->readShowString();
    for (int TestWindow::*member :
         {&TestWindow::penSize, &TestWindow::centerX, &TestWindow::centerY, &TestWindow::radius,
          &TestWindow::outputSizeX, &TestWindow::outputSizeY, &TestWindow::sortType, &TestWindow::nameType,
          &TestWindow::format, &TestWindow::quality})
        m_window.get()->*member = number;
    for (double TestWindow::*member :
         {&TestWindow::distance, &TestWindow::latitude, &TestWindow::longitude, &TestWindow::azimuth})
        m_window.get()->*member = real;
    for (bool TestWindow::*member :
         {&TestWindow::autoPreview, &TestWindow::autoSize, &TestWindow::overwrite, &TestWindow::openFiler})
        m_window.get()->*member = flag;
    for (QString TestWindow::*member : {&TestWindow::loadFileName, &TestWindow::saveFileName,
                                        &TestWindow::inputFolder, &TestWindow::outputFolder})
        m_window.get()->*member = text;
    m_window->setGeometry(50, 60, 700, 650);
    m_window->previewWindow->setGeometry(100, 120, 500, 400);
    const QStringList before = settingsOf(*m_window);
    m_window->close();
    const auto next = m_folder->window();
    next->readShowString();
    QCOMPARE(settingsOf(*next), before);
}

void tst_SettingsFile::keysInTheFile()
{
    m_window->readShowString();
    QStringList expected;
    for (const QString &setting : defaultSettings)
        expected.append(setting.section('=', 0, 0));
    expected.sort();
    QStringList keys;
    const QByteArray file = saved(*m_window);
    QVERIFY(file.startsWith("[General]\n"));
    for (const QByteArray &line : file.mid(10).split('\n')) {
        if (!line.isEmpty())
            keys.append(QString::fromUtf8(line).section('=', 0, 0));
    }
    QCOMPARE(keys, expected);
    QCOMPARE(expected.size(), 26);
}

void tst_SettingsFile::unknownKeysStay()
{
    writeFile(m_window->settingFile, "[General]\nMine=1\nPenSize=4\n\n[later version]\nPenSize=5\nNew=新\n");
    m_window->readShowString();
    m_window->penSize = 6;
    const QByteArray file = saved(*m_window);
    QCOMPARE(valueIn(file, "Mine"), QByteArray("1"));
    QCOMPARE(valueIn(file, "PenSize"), QByteArray("6"));
    const QByteArray later = file.mid(file.indexOf("[later version]"));
    QCOMPARE(valueIn(later, "PenSize"), QByteArray("5"));
    QCOMPARE(valueIn(later, "New"), QByteArray("新"));
}

void tst_SettingsFile::previewFlagIsItsVisibility_data()
{
    QTest::addColumn<bool>("flag");
    QTest::addColumn<bool>("visible");
    QTest::newRow("flag set, window hidden") << true << false;
    QTest::newRow("flag clear, window visible") << false << true;
    QTest::newRow("both clear") << false << false;
    QTest::newRow("both set") << true << true;
}

void tst_SettingsFile::previewFlagIsItsVisibility()
{
    QFETCH(bool, flag);
    QFETCH(bool, visible);
    m_window->readShowString();
    m_window->previewShow = flag;
    m_window->show();
    m_window->previewWindow->setVisible(visible);
    QCOMPARE(valueIn(saved(*m_window), "PreviewWindow"), QByteArray(visible ? "true" : "false"));
}

void tst_SettingsFile::invalidColourIsSavedAsBlack()
{
    m_window->readShowString();
    m_window->penColor = QColor();
    QCOMPARE(valueIn(saved(*m_window), "PenColor"), QByteArray("#ff000000"));
}

void tst_SettingsFile::oldFileSurvivesAFullDisk_data()
{
    QTest::addColumn<int>("freeBytes");
    QTest::newRow("no room at all") << 0;
    QTest::newRow("room for the beginning") << 4096;
}

void tst_SettingsFile::oldFileSurvivesAFullDisk()
{
    QFETCH(int, freeBytes);
    QVERIFY(QDir().mkdir(path("disk")));
    const SmallDisk disk(path("disk"), "64k");
    if (!disk.isMounted()) {
        qInfo("no small disk can be mounted here; the size limit stands in for it");
        return;
    }
    m_window->settingFile = path("disk/tool.ini");
    m_window->readShowString();
    m_window->saveSetting();
    const QByteArray before = contentsOf(m_window->settingFile);
    QVERIFY(before.size() > 500);
    disk.fill();
    QVERIFY(QFile::resize(path("disk/filler"), QFileInfo(path("disk/filler")).size() - freeBytes));
    m_window->loadFileName = QString(10000, 'x');
    QVERIFY(m_window->close());
    QCOMPARE(contentsOf(m_window->settingFile), before);
    QCOMPARE(QDir(path("disk")).entryList(QDir::Files | QDir::Hidden), (QStringList{"filler", "tool.ini"}));
}

void tst_SettingsFile::oldFileSurvivesASizeLimit()
{
    m_window->readShowString();
    m_window->saveSetting();
    const QByteArray before = contentsOf(m_window->settingFile);
    m_window->loadFileName = QString(10000, 'x');
    for (const rlim_t bytes : {rlim_t{0}, rlim_t{1}, rlim_t{500}, rlim_t{4096}}) {
        const MessageCollector collector; // the log may be a file too
        const FileSizeLimit limit(bytes);
        m_window->saveSetting();
    }
    QCOMPARE(contentsOf(m_window->settingFile), before);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"tool.ini"});
}

void tst_SettingsFile::readOnlyFolderKeepsTheOldFile()
{
    QVERIFY(QDir().mkdir(path("folder")));
    m_window->settingFile = path("folder/tool.ini");
    m_window->readShowString();
    m_window->saveSetting();
    const QByteArray before = contentsOf(m_window->settingFile);
    handOver({m_folder->path()});
    handOver({path("folder")});
    handOver({m_window->settingFile});
    const QFileDevice::Permissions enter = QFileDevice::ReadOwner | QFileDevice::ExeOwner;
    QVERIFY(QFile::setPermissions(path("folder"), enter));
    m_window->penSize = 9;
    {
        const OrdinaryUser user;
        ModalDriver driver; // nothing is reported
        m_window->show();
        QVERIFY(m_window->close());
        QVERIFY(driver.done());
    }
    QVERIFY(QFile::setPermissions(path("folder"), enter | QFileDevice::WriteOwner));
    QCOMPARE(contentsOf(m_window->settingFile), before);
}

// What cannot be read cannot be merged with, so it is not replaced either.
void tst_SettingsFile::unreadableFileIsKept()
{
    writeFile(m_window->settingFile, "[General]\nMine=1\n");
    handOver({m_folder->path()});
    handOver({m_window->settingFile});
    QVERIFY(QFile::setPermissions(m_window->settingFile, QFileDevice::WriteOwner));
    {
        const OrdinaryUser user;
        m_window->readShowString();
        QVERIFY(m_window->close());
    }
    QVERIFY(QFile::setPermissions(m_window->settingFile, QFileDevice::ReadOwner));
    QCOMPARE(contentsOf(m_window->settingFile), QByteArray("[General]\nMine=1\n"));
}

WINDOW_TEST_MAIN(tst_SettingsFile)
#include "tst_settingsfile.moc"
