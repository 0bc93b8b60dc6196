#include "faults.h"
#include "files.h"
#include "messagecollector.h"
#include "savingwindow.h"
#include "windowreference.h"

#include <QFile>

#include <sys/stat.h>

namespace
{

void changeMode(const QString &path, int mode)
{
    if (chmod(QFile::encodeName(path).constData(), static_cast<mode_t>(mode)) != 0)
        qFatal("cannot change the mode of %s", qPrintable(path));
}

} // namespace

/// A map that cannot be written: an old file of its name stays whole.
class tst_SavingFaults : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fileSizeLimitKeepsTheOldFile_data();
    void fileSizeLimitKeepsTheOldFile();
    void fullDiskKeepsTheOldFile_data();
    void fullDiskKeepsTheOldFile();
    void folderAsTargetStaysAFolder();
    void missingFolderIsNotMade();
    void permissionsDecideWhetherTheMapIsWritten_data();
    void permissionsDecideWhetherTheMapIsWritten();
    void emptySavePathMeansTheRoot();
    void mapWithoutPixelsWritesNothing_data();
    void mapWithoutPixelsWritesNothing();

private:
    void save(const QString &name);
    QString path(const QString &name) const { return m_window->filePath(name); }

    std::unique_ptr<SavingWindow> m_window;
};

void tst_SavingFaults::init()
{
    m_window = std::make_unique<SavingWindow>();
    QVERIFY(!m_window->image.isNull());
}

void tst_SavingFaults::cleanup()
{
    m_window.reset();
}

void tst_SavingFaults::fileSizeLimitKeepsTheOldFile_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("bytes");
    for (const int bytes : {0, 1, 500}) {
        QTest::addRow("JPEG, %d bytes fit", bytes) << 0 << bytes;
        QTest::addRow("PNG, %d bytes fit", bytes) << 1 << bytes;
    }
}

void tst_SavingFaults::fileSizeLimitKeepsTheOldFile()
{
    QFETCH(int, format);
    QFETCH(int, bytes);
    m_window->format = format;
    writeFile(path("OV-planet.jpg"), oldContents);
    const QStringList names = namesIn(m_window->folder());
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("OV-planet.jpg", QMessageBox::Yes));
    driver.expectMessage(confirmation(path("OV-planet.jpg")));
    {
        const MessageCollector collector; // the log may be a file too
        const FileSizeLimit limit(static_cast<rlim_t>(bytes));
        m_window->clickConvert();
    }
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("OV-planet.jpg")), oldContents);
    QCOMPARE(namesIn(m_window->folder()), names);
}

void tst_SavingFaults::fullDiskKeepsTheOldFile_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QSize>("size");
    QTest::newRow("JPEG smaller than a buffer") << 0 << QSize(64, 32);
    QTest::newRow("PNG smaller than a buffer") << 1 << QSize(64, 32);
    QTest::newRow("PNG larger than the disk") << 1 << QSize(512, 256);
}

void tst_SavingFaults::fullDiskKeepsTheOldFile()
{
    QFETCH(int, format);
    QFETCH(QSize, size);
    QVERIFY(QDir(m_window->folder()).mkdir("disk"));
    const SmallDisk disk(path("disk"), "64k");
    if (!disk.isMounted())
        qInfo("no small disk can be mounted here: the file lies on the ordinary one, under a size limit");
    writeFile(path("disk/map"), oldContents);
    std::unique_ptr<FileSizeLimit> limit;
    if (disk.isMounted())
        disk.fill();
    else
        limit = std::make_unique<FileSizeLimit>(100);
    const QStringList names = namesIn(path("disk"));

    m_window->format = format;
    m_window->quality = 100;
    m_window->outputSizeX = size.width();
    m_window->outputSizeY = size.height();
    m_window->saveFileName = path("disk/any");
    m_window->ui->lineSaveFilename->setText("map");
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("map", QMessageBox::Yes));
    driver.expectMessage(confirmation(path("disk/map")));
    m_window->clickConvert();
    limit.reset();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("disk/map")), oldContents);
    QCOMPARE(namesIn(path("disk")), names);
}

void tst_SavingFaults::folderAsTargetStaysAFolder()
{
    QVERIFY(QDir(m_window->folder()).mkpath("map.jpg/inside"));
    const QStringList names = namesIn(m_window->folder());
    m_window->ui->lineSaveFilename->setText("map.jpg");
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("map.jpg", QMessageBox::Yes));
    driver.expectMessage(confirmation(path("map.jpg")));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QVERIFY(QFileInfo(path("map.jpg/inside")).isDir());
    QCOMPARE(namesIn(m_window->folder()), names);
}

void tst_SavingFaults::missingFolderIsNotMade()
{
    m_window->save("not/there/map.jpg");
    QCOMPARE(namesIn(m_window->folder()), QStringList{"planet.png"});
}

void tst_SavingFaults::permissionsDecideWhetherTheMapIsWritten_data()
{
    QTest::addColumn<int>("fileMode");
    QTest::addColumn<int>("folderMode");
    QTest::addColumn<bool>("written");
    QTest::newRow("new file, the folder is read-only") << 0 << 0555 << false;
    QTest::newRow("both are read-only") << 0444 << 0555 << false;
    QTest::newRow("the file is read-only") << 0444 << 0755 << false;
    QTest::newRow("the folder is read-only") << 0644 << 0555 << true;
    QTest::newRow("both are writable") << 0644 << 0755 << true;
}

void tst_SavingFaults::permissionsDecideWhetherTheMapIsWritten()
{
    QFETCH(int, fileMode);
    QFETCH(int, folderMode);
    QFETCH(bool, written);
    const bool oldFile = fileMode != 0;
    const QString folder = path("folder");
    const QString file = folder + "/map.jpg";
    QVERIFY(QDir(m_window->folder()).mkdir("folder"));
    handOver({folder});
    handOver({m_window->folder()});
    if (oldFile) {
        writeFile(file, oldContents);
        handOver({file});
        changeMode(file, fileMode);
    }
    changeMode(folder, folderMode);
    const QStringList names = namesIn(folder);

    m_window->saveFileName = folder + "/any";
    m_window->ui->lineSaveFilename->setText("map.jpg");
    ModalDriver driver;
    if (oldFile)
        driver.expectMessage(overwriteQuestion("map.jpg", QMessageBox::Yes));
    driver.expectMessage(confirmation(file));
    {
        const OrdinaryUser user;
        m_window->clickConvert();
    }
    QVERIFY(driver.done());
    changeMode(folder, 0755); // so that it can be removed
    QCOMPARE(namesIn(folder), names);
    const QByteArray expected = encoded(referenceMap(*m_window), "jpg", m_window->quality);
    QCOMPARE(contentsOf(file), written ? expected : oldFile ? oldContents : contentsOf(path("nowhere")));
}

// An empty path has an empty directory part, so the typed name goes to the root folder; nobody may write
// there.
void tst_SavingFaults::emptySavePathMeansTheRoot()
{
    const QString name = "ovmic-test-" + QFileInfo(m_window->folder()).fileName() + ".jpg";
    m_window->saveFileName.clear();
    m_window->ui->lineSaveFilename->setText(name);
    ModalDriver driver;
    driver.expectMessage(confirmation('/' + name));
    {
        const OrdinaryUser user;
        m_window->clickConvert();
    }
    QVERIFY(driver.done());
    QCOMPARE(m_window->saveFileName, '/' + name);
    QVERIFY(!QFile::exists('/' + name));
}

void tst_SavingFaults::mapWithoutPixelsWritesNothing_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("0 x 0") << QSize(0, 0);
    QTest::newRow("no width") << QSize(0, 32);
    QTest::newRow("no height") << QSize(64, 0);
    QTest::newRow("negative") << QSize(-64, -32);
    QTest::newRow("more pixels than an image can hold") << QSize(2147483647, 2147483647);
}

void tst_SavingFaults::mapWithoutPixelsWritesNothing()
{
    QFETCH(QSize, size);
    m_window->outputSizeX = size.width();
    m_window->outputSizeY = size.height();
    writeFile(path("OV-planet.jpg"), oldContents);
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("OV-planet.jpg", QMessageBox::Yes));
    driver.expectMessage(confirmation(path("OV-planet.jpg")));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("OV-planet.jpg")), oldContents);
}

WINDOW_TEST_MAIN(tst_SavingFaults)
#include "tst_savingfaults.moc"
