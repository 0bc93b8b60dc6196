// A batch from the menu to the last message, on a real X server: the files and folders are picked in the real
// dialogs, the run is stopped in the middle, and the message is read.

#include "batchconvertdialog.h"
#include "freshwindow.h"
#include "imagecompare.h"
#include "modaldriver.h"
#include "patience.h"
#include "referencemap.h"
#include "status.h"

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>

class tst_BatchWalk : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void pickStartStopRead();
    void wholeFolderIsConverted();

private:
    void click(QWidget *window, const char *button);
    void openFromTheMenu();
    QString map(int i) const { return m_window->filePath(QStringLiteral("maps/photo%1.png").arg(i)); }

    std::unique_ptr<InstalledWindow> m_window;
};

void tst_BatchWalk::init()
{
    m_window = std::make_unique<InstalledWindow>();
    QVERIFY(QDir(m_window->folder()).mkdir("maps"));
    QVERIFY(QDir(m_window->folder()).mkdir("in"));
    for (int i = 0; i < 6; ++i) {
        QVERIFY(
            seriesPhotograph({80, 60}, i).save(m_window->filePath(QStringLiteral("in/photo%1.png").arg(i))));
    }
    m_window->readShowString();
    m_window->outputSizeX = 128;
    m_window->outputSizeY = 64;
    m_window->format = 1;
    m_window->inputFolder = m_window->filePath("in");
    m_window->outputFolder = m_window->folder();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_COMPARE_WITH_TIMEOUT(m_window->unattended, 0, patienceMs);
    m_window->ui->lineCenterX->setText("40");
    m_window->ui->lineCenterY->setText("30");
    m_window->ui->lineRadius->setText("28");
}

void tst_BatchWalk::cleanup()
{
    m_window.reset();
}

void tst_BatchWalk::click(QWidget *window, const char *button)
{
    auto *found = window->findChild<QAbstractButton *>(QString::fromLatin1(button));
    QVERIFY2(found && found->isVisible(), button);
    QTest::mouseClick(found, Qt::LeftButton);
}

// Clicks the title of the file menu and walks down to the item.
void tst_BatchWalk::openFromTheMenu()
{
    QMenuBar *bar = m_window->ui->menuBar;
    QMenu *menu = m_window->ui->menuFile;
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(menu->menuAction()).center());
    QTRY_VERIFY_WITH_TIMEOUT(menu->isVisible(), patienceMs);
    const QRect item = menu->actionGeometry(m_window->ui->actionBatch_Convert);
    QTest::mouseClick(menu, Qt::LeftButton, {}, item.center());
}

void tst_BatchWalk::pickStartStopRead()
{
    QStringList inputs;
    for (int i = 0; i < 6; ++i)
        inputs.append(m_window->filePath(QStringLiteral("in/photo%1.png").arg(i)));

    ModalDriver driver;
    driver.expect<BatchConvertDialog>([&](BatchConvertDialog *dialog) {
        click(dialog, "btnSelectFiles");
        QCOMPARE(dialog->findChild<QLabel *>("labelSelectCount")->text(),
                 QString("6 個のファイルが選択されました"));
        click(dialog, "btnOutputFolder");
        QCOMPARE(dialog->findChild<QLabel *>("labelOutputFolder")->text(), m_window->filePath("maps"));
        click(dialog, "btnConvert");
    });
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(), QString("変換するファイルを選択して下さい"));
        pickPaths(picker, inputs);
    });
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(), QString("変換後のファイルを保存するフォルダを選択して下さい"));
        pickPath(picker, m_window->filePath("maps"));
    });
    driver.expectMessage({"複数画像ファイル変換", "複数画像ファイル変換は失敗しました\n(3個成功, 0個失敗)"});

    // Press Stop in the middle of the third photograph.
    const QImage third(inputs.at(2));
    bool progressShown = false;
    QTimer stop;
    connect(&stop, &QTimer::timeout, this, [&] {
        auto *status = m_window->findChild<Status *>();
        if (!status || m_window->image != third)
            return;
        stop.stop();
        progressShown = status->isVisible() && status->findChild<QLabel *>("lblCount")->text() == "2 / 6";
        click(status, "btnStop");
    });
    stop.start(0);
    openFromTheMenu();
    QVERIFY(driver.done());
    QVERIFY(progressShown);
    QVERIFY(m_window->isEnabled());
    QCOMPARE(QDir(m_window->filePath("maps")).entryList(QDir::Files).size(), 3);
    for (int i = 0; i < 3; ++i) {
        const MapParameters parameters = mapParameters({{40, 30}, 28}, {128, 64});
        COMPARE_IMAGES(QImage(map(i)), referenceMap(QImage(inputs.at(i)), parameters));
    }
}

void tst_BatchWalk::wholeFolderIsConverted()
{
    ModalDriver driver;
    driver.expect<BatchConvertDialog>([&](BatchConvertDialog *dialog) {
        click(dialog, "btnSelectFolder");
        QCOMPARE(dialog->findChild<QLabel *>("labelSelectCount")->text(),
                 QString("6 個のファイルが選択されました"));
        click(dialog, "radioFilename2");
        click(dialog, "btnConvert");
    });
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(), QString("変換するファイルが含まれるフォルダを選択して下さい"));
        pickPath(picker, m_window->filePath("in"));
    });
    driver.expectMessage({"複数画像ファイル変換", "複数画像ファイル変換が終了しました"});
    m_window->outputFolder = m_window->filePath("maps");
    openFromTheMenu();
    QVERIFY(driver.done());
    QCOMPARE(QDir(m_window->filePath("maps")).entryList(QDir::Files, QDir::Name),
             (QStringList{"map_0.png", "map_1.png", "map_2.png", "map_3.png", "map_4.png", "map_5.png"}));
}

WINDOW_TEST_MAIN(tst_BatchWalk)
#include "tst_batchwalk.moc"
