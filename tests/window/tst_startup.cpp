#include "freshwindow.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "patience.h"
#include "previewwindow.h"

#include <QMetaMethod>
#include <QTimer>

namespace
{

const QStringList slotSignatures{
    "on_btnImageRead_clicked()",
    "on_btnConvert_clicked()",
    "on_btnSizeUp_clicked()",
    "on_btnSizeDown_clicked()",
    "on_btnUp_clicked()",
    "on_btnDown_clicked()",
    "on_btnLeft_clicked()",
    "on_btnRight_clicked()",
    "on_lineCenterX_returnPressed()",
    "on_lineCenterY_returnPressed()",
    "on_lineRadius_returnPressed()",
    "on_label_clicked(int,int)",
    "on_label_size_changed(int,int,int)",
    "on_label_size_changing(int,int,int,int,int,int,int,int)",
    "on_label_mouseleftdown(int,int)",
    "on_label_mouseleftup(int,int)",
    "on_label_mouserightup()",
    "on_label_mouse_move(int,int)",
    "timeout()",
    "click_timer()",
    "on_actionConvert_Save_triggered()",
    "on_actionAuto_Preview_triggered(bool)",
    "on_actionBatch_Convert_triggered()",
    "on_actionAuto_Size_triggered(bool)",
    "on_actionPreview_Window_triggered(bool)",
    "on_actionSave_Param_triggered()",
    "on_actionLoad_Param_triggered()",
    "on_actionSetting_triggered()",
    "on_actionParam_Reset_triggered()",
    "slotPreviewWindowHidden()",
    "on_btnPreview_clicked()",
    "on_btnBrowse_clicked()",
    "on_btnRight_pressed()",
    "on_btnDown_pressed()",
    "on_btnLeft_pressed()",
    "on_btnUp_pressed()",
    "on_btnSizeUp_pressed()",
    "on_btnSizeDown_pressed()",
};

} // namespace

class tst_Startup : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void slotsHaveTheirIndexes();
    void everySlotOfAnObjectIsConnected();
    void noSlotWithoutItsSignal();
    void constructedWindowHasItsDefaults();
    void lineEditsShowZero();
    void pictureHearsMovesWithoutButtons();
    void startUpTimerRunsOnceASecond();
    void repeatTimerWaits();
    void previewIsAWindowOfItsOwn();
    void missingFilesGiveDefaultsAndBuiltInTexts();
    void closingWritesTheSettings();
    void closingFromOutsideLeavesUnattendedMode();
    void closingFromOutsideWhileHiddenWritesNothing();
    void passRestoresTheView_data();
    void passRestoresTheView();
    void passStopsItsTimer();
    void passLoadsTheLastPhotograph();
    void endedProgramBeginsNoBatch();
    void hiddenWindowStaysUnattended();

private:
    std::unique_ptr<InstalledWindow> m_window;
};

void tst_Startup::init()
{
    m_window = std::make_unique<InstalledWindow>();
}

void tst_Startup::cleanup()
{
    m_window.reset();
}

void tst_Startup::slotsHaveTheirIndexes()
{
    const QMetaObject &meta = MainWindow::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), slotSignatures.size());
    for (int i = 0; i < slotSignatures.size(); ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(QString::fromLatin1(method.methodSignature()), slotSignatures.at(i));
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
    }
}

// Every slot called on_<object>_<signal> names an object of the form and one of its signals with these
// arguments.
void tst_Startup::everySlotOfAnObjectIsConnected()
{
    for (const QString &slot : slotSignatures) {
        if (!slot.startsWith("on_"))
            continue;
        const auto children = m_window->findChildren<QObject *>();
        const bool found = std::any_of(children.begin(), children.end(), [&slot](const QObject *child) {
            const QString prefix = "on_" + child->objectName() + '_';
            if (child->objectName().isEmpty() || !slot.startsWith(prefix))
                return false;
            const int index = child->metaObject()->indexOfSignal(slot.mid(prefix.size()).toLatin1());
            return index >= 0;
        });
        QVERIFY2(found, qPrintable(slot));
    }
}

void tst_Startup::noSlotWithoutItsSignal()
{
    const MessageCollector collector;
    const TestWindow window;
    QCOMPARE(collector.messages().filter("No matching signal"), QStringList());
}

void tst_Startup::constructedWindowHasItsDefaults()
{
    const TestWindow &w = *m_window;
    const TestWindow fresh;
    QCOMPARE(fresh.settingFile, QString());
    QCOMPARE(fresh.langFile, QString());
    QVERIFY(w.image.isNull());
    QCOMPARE(w.centerX, 0);
    QCOMPARE(w.centerY, 0);
    QCOMPARE(w.radius, 0);
    QCOMPARE(w.distance, 100.0);
    QCOMPARE(w.ratioX, 0.0);
    QCOMPARE(w.ratioY, 0.0);
    QCOMPARE(w.imageWidth, 0);
    QCOMPARE(w.imageHeight, 0);
    QCOMPARE(w.unattended, 1);
    QCOMPARE(w.outputSizeX, 2048);
    QCOMPARE(w.outputSizeY, 1024);
    QCOMPARE(w.sortType, 0);
    QCOMPARE(w.nameType, 0);
    QCOMPARE(w.autoPreview, false);
    QCOMPARE(w.autoSize, true);
    QCOMPARE(w.selectShow, false);
    QCOMPARE(w.resizing, false);
    QCOMPARE(w.moving, false);
    QCOMPARE(w.clearPending, false);
    QCOMPARE(w.penSize, 3);
    QCOMPARE(w.penColor, QColor(255, 0, 0, 255));
    QCOMPARE(w.latitude, 0.0);
    QCOMPARE(w.longitude, 0.0);
    QCOMPARE(w.azimuth, 0.0);
    QVERIFY(w.showString.isEmpty());
    QCOMPARE(w.openFiler, true);
    QCOMPARE(w.overwrite, true);
    QVERIFY(w.fileList.isEmpty());
    QCOMPARE(w.inputFolder + w.outputFolder + w.loadFileName + w.saveFileName, QString());
    QCOMPARE(w.previewShow, false);
}

void tst_Startup::lineEditsShowZero()
{
    QCOMPARE(m_window->ui->lineRadius->text(), QString("0"));
    QCOMPARE(m_window->ui->lineCenterX->text(), QString("0"));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString("0"));
}

void tst_Startup::pictureHearsMovesWithoutButtons()
{
    QVERIFY(m_window->ui->label->hasMouseTracking());
}

void tst_Startup::startUpTimerRunsOnceASecond()
{
    QVERIFY(m_window->startTimer->isActive());
    QCOMPARE(m_window->startTimer->interval(), 1000);
    QCOMPARE(m_window->startTimer->parent(), m_window.get());
}

void tst_Startup::repeatTimerWaits()
{
    QVERIFY(!m_window->clickTimer->isActive());
    QVERIFY(!m_window->clickTimer->isSingleShot());
    QCOMPARE(m_window->clickTimer->parent(), m_window.get());
}

void tst_Startup::previewIsAWindowOfItsOwn()
{
    QVERIFY(m_window->previewWindow->isWindow());
    QCOMPARE(m_window->previewWindow->parentWidget(), m_window.get());
    QVERIFY(!m_window->previewWindow->isVisible());
}

void tst_Startup::missingFilesGiveDefaultsAndBuiltInTexts()
{
    m_window->readShowString();
    QCOMPARE(m_window->windowTitle(), QString("Orvane 画像変換ツール 1.02"));
    QCOMPARE(m_window->previewWindow->windowTitle(), QString("Orvane 画像変換ツール（プレビュー）"));
    QCOMPARE(m_window->size(), QSize(655, 606));
    QCOMPARE(m_window->minimumSize(), QSize(600, 550));
    QCOMPARE(m_window->distance, 100.0);
    QCOMPARE(m_window->outputSizeX, 2048);
    QCOMPARE(m_window->outputSizeY, 1024);
    QCOMPARE(m_window->format, 0);
    QCOMPARE(m_window->quality, 85);
    QCOMPARE(m_window->penSize, 3);
    QCOMPARE(m_window->penColor, QColor(255, 0, 0));
    QVERIFY(m_window->autoSize);
    QVERIFY(!m_window->autoPreview);
    QVERIFY(!m_window->previewShow);
    QVERIFY(m_window->overwrite);
    QVERIFY(m_window->openFiler);
    QCOMPARE(m_window->centerX, 0);
    QCOMPARE(m_window->centerY, 0);
    QCOMPARE(m_window->radius, 0);
    QVERIFY(!QFile::exists(m_window->settingFile));
}

void tst_Startup::closingWritesTheSettings()
{
    m_window->readShowString();
    m_window->show();
    m_window->close();
    QVERIFY(QFile::exists(m_window->settingFile));
    QVERIFY(!m_window->isVisible());
}

void tst_Startup::closingFromOutsideLeavesUnattendedMode()
{
    m_window->readShowString();
    m_window->show();
    m_window->closeApplication();
    QCOMPARE(m_window->unattended, 0);
    QVERIFY(!m_window->isVisible());
    QVERIFY(QFile::exists(m_window->settingFile));
}

void tst_Startup::closingFromOutsideWhileHiddenWritesNothing()
{
    m_window->readShowString();
    m_window->closeApplication();
    QCOMPARE(m_window->unattended, 0);
    QVERIFY(!QFile::exists(m_window->settingFile));
}

void tst_Startup::passRestoresTheView_data()
{
    QTest::addColumn<bool>("autoSize");
    QTest::addColumn<bool>("preview");
    QTest::addColumn<bool>("autoPreview");
    QTest::newRow("everything off") << false << false << false;
    QTest::newRow("fitted picture only") << true << false << false;
    QTest::newRow("preview window only") << false << true << false;
    QTest::newRow("auto preview only") << false << false << true;
    QTest::newRow("everything on") << true << true << true;
}

void tst_Startup::passRestoresTheView()
{
    QFETCH(bool, autoSize);
    QFETCH(bool, preview);
    QFETCH(bool, autoPreview);
    m_window->readShowString();
    m_window->autoSize = autoSize;
    m_window->previewShow = preview;
    m_window->autoPreview = autoPreview;
    m_window->show();
    m_window->slot("timeout");
    QCOMPARE(m_window->ui->label->hasScaledContents(), autoSize);
    QCOMPARE(m_window->ui->label->minimumSize(), autoSize ? QSize(320, 240) : QSize(0, 0));
    QCOMPARE(m_window->ui->actionAuto_Size->isChecked(), autoSize);
    QCOMPARE(m_window->ui->actionPreview_Window->isChecked(), preview);
    QCOMPARE(m_window->previewWindow->isVisible(), preview);
    QCOMPARE(m_window->ui->actionAuto_Preview->isChecked(), autoPreview);
    QCOMPARE(m_window->unattended, 0);
}

void tst_Startup::passStopsItsTimer()
{
    m_window->readShowString();
    m_window->show();
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->startTimer->isActive(), patienceMs);
    QCOMPARE(m_window->unattended, 0);
}

void tst_Startup::passLoadsTheLastPhotograph()
{
    const QString path = m_window->filePath("写真.png");
    QVERIFY(solidPhotograph({40, 30}, Qt::blue).save(path));
    m_window->readShowString();
    m_window->loadFileName = path;
    m_window->show();
    m_window->slot("timeout");
    QCOMPARE(m_window->image.size(), QSize(40, 30));
    QCOMPARE(m_window->saveFileName, m_window->filePath("OV-写真.jpg"));
}

void tst_Startup::endedProgramBeginsNoBatch()
{
    m_window->readShowString();
    m_window->outputFolder = m_window->filePath("");
    m_window->arguments = QStringList{"ovmic", "/batch"};
    for (const char *name : {"a.png", "b.png"}) {
        const QString path = m_window->filePath(name);
        QVERIFY(solidPhotograph({40, 30}, Qt::blue).save(path));
        m_window->arguments.append(path);
    }
    m_window->closeApplication(); // before the pass
    ModalDriver driver;
    m_window->slot("timeout");
    QVERIFY(driver.done()); // nor does it say anything
    QCOMPARE(m_window->fileList, m_window->arguments.mid(2));
    QCOMPARE(QDir(m_window->filePath("")).entryList({"*.jpg", "OV-*"}), QStringList());
}

void tst_Startup::hiddenWindowStaysUnattended()
{
    m_window->readShowString();
    m_window->slot("timeout");
    QCOMPARE(m_window->unattended, 1);
    QVERIFY(!m_window->ui->actionAuto_Size->isChecked());
}

WINDOW_TEST_MAIN(tst_Startup)
#include "tst_startup.moc"
