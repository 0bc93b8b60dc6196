#include "faults.h"
#include "files.h"
#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "parameterfile.h"
#include "previewwindow.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QSettings>

#include <climits>

Q_DECLARE_METATYPE(SelectionCircle)

namespace
{

constexpr SelectionCircle aCircle{120, 80, 40};

} // namespace

/// The commands that save, load and reset the circle.
class tst_Parameters : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void saveDialog();
    void saveDialogWithoutAPhotograph();
    void savedFileHoldsTheCircle_data();
    void savedFileHoldsTheCircle();
    void fileIsNamedAsTyped_data();
    void fileIsNamedAsTyped();
    void typedRadiusIsSaved();
    void savingLeavesThePictureAlone();
    void savingKeepsTheOtherKeys();
    void decliningToReplaceStaysInTheDialog();
    void cancelledSaveChangesNothing();
    void textsComeFromTheTextMap();
    void saveIntoAFolderThatIsAFile();
    void failedSaveKeepsTheOldFile();

    void loadDialog();
    void loadTakesTheCircle_data();
    void loadTakesTheCircle();
    void loadFromASettingsFile();
    void loadFromAFolder();
    void loadShowsTheCircle();
    void loadLeavesAHiddenCircleHidden();
    void loadWithoutAPhotograph();
    void savedCircleComesBack();
    void cancelledLoadChangesNothing();

    void resetFitsTheCircle_data();
    void resetFitsTheCircle();
    void resetWithoutAPhotograph();
    void resetAfterAFailedLoad();
    void resetShowsAHiddenCircle();

    void noCommandRefreshesThePreview();

private:
    void save(const QString &path, bool replace = false);
    void load(const QString &path);

    std::unique_ptr<FreshWindow> m_window;
};

void tst_Parameters::init()
{
    m_window = std::make_unique<FreshWindow>();
    m_window->open(colourfulPhotograph({240, 160}));
    m_window->setCircle(aCircle);
}

void tst_Parameters::cleanup()
{
    m_window.reset();
}

// Chooses a file in the save dialog, and confirms what follows.
void tst_Parameters::save(const QString &path, bool replace)
{
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        if (replace) {
            driver.expect<QMessageBox>([](QMessageBox *question) {
                QTest::mouseClick(question->button(QMessageBox::Yes), Qt::LeftButton);
            });
        }
        driver.expectMessage({"中心点、半径の保存", path + " へ保存されました", QMessageBox::Information,
                              QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok});
        pickPath(picker, path);
    });
    m_window->ui->actionSave_Param->trigger();
    QVERIFY(driver.done());
}

void tst_Parameters::load(const QString &path)
{
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, path); });
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
}

void tst_Parameters::saveDialog()
{
    QVERIFY(QDir().mkpath(m_window->filePath("photos")));
    m_window->open(colourfulPhotograph({240, 160}), "photos/a.png");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(),
                 QString("中心点、半径をファイルへ保存します、ファイル名を指定して下さい"));
        QCOMPARE(picker->parentWidget(), m_window.get());
        QCOMPARE(picker->acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(picker->fileMode(), QFileDialog::AnyFile);
        QCOMPARE(picker->nameFilters(), QStringList("選択範囲 (*.ini)"));
        QCOMPARE(picker->directory().absolutePath(), m_window->filePath("photos"));
        QCOMPARE(picker->selectedFiles(), QStringList(m_window->filePath("photos/OV_map_param")));
        QCOMPARE(picker->findChild<QLineEdit *>("fileNameEdit")->text(), QString("OV_map_param"));
        QCOMPARE(picker->defaultSuffix(), QString());
        picker->reject();
    });
    m_window->ui->actionSave_Param->trigger();
    QVERIFY(driver.done());
}

void tst_Parameters::saveDialogWithoutAPhotograph()
{
    FreshWindow window;
    ModalDriver driver;
    driver.expect<QFileDialog>([](QFileDialog *picker) {
        QCOMPARE(picker->directory().absolutePath(), QDir::currentPath());
        picker->reject();
    });
    window.ui->actionSave_Param->trigger();
    QVERIFY(driver.done());
}

void tst_Parameters::savedFileHoldsTheCircle_data()
{
    QTest::addColumn<SelectionCircle>("circle");
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("inside the picture")
        << aCircle << QByteArray("[General]\nCenterX=120\nCenterY=80\nRadius=40\n");
    QTest::newRow("nothing but zeros")
        << SelectionCircle() << QByteArray("[General]\nCenterX=0\nCenterY=0\nRadius=0\n");
    QTest::newRow("the ends of the numbers")
        << SelectionCircle{INT_MIN, INT_MAX, -1}
        << QByteArray("[General]\nCenterX=-2147483648\nCenterY=2147483647\nRadius=-1\n");
}

void tst_Parameters::savedFileHoldsTheCircle()
{
    QFETCH(SelectionCircle, circle);
    QFETCH(QByteArray, contents);
    m_window->setCircle(circle);
    const QString path = m_window->filePath("circle.ini");
    save(path);
    QCOMPARE(contentsOf(path), contents);
}

void tst_Parameters::fileIsNamedAsTyped_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("without a suffix") << "OV_map_param";
    QTest::newRow("another suffix") << "circle.txt";
    QTest::newRow("Japanese, with a character beyond the basic plane") << "円𠮷.ini";
}

void tst_Parameters::fileIsNamedAsTyped()
{
    QFETCH(QString, name);
    const QStringList before = namesIn(m_window->folder());
    save(m_window->filePath(name));
    QStringList after = namesIn(m_window->folder());
    for (const QString &old : before)
        after.removeAll(old);
    QCOMPARE(after, QStringList(name));
}

void tst_Parameters::typedRadiusIsSaved()
{
    m_window->ui->lineRadius->clear();
    QTest::keyClicks(m_window->ui->lineRadius, "55"); // no Return
    QCOMPARE(m_window->radius, 40);
    const QString path = m_window->filePath("circle.ini");
    save(path);
    QVERIFY(contentsOf(path).contains("\nRadius=55\n"));
    QCOMPARE(circleOf(*m_window), SelectionCircle({120, 80, 55}));
}

void tst_Parameters::savingLeavesThePictureAlone()
{
    const QImage before = m_window->shownPicture();
    m_window->ui->lineRadius->setText("55");
    save(m_window->filePath("circle.ini"));
    COMPARE_IMAGES(m_window->shownPicture(), before);
}

void tst_Parameters::savingKeepsTheOtherKeys()
{
    const QString path = m_window->filePath("circle.ini");
    writeFile(path, "[General]\nCenterX=1\nNote=keep me\nRadius=2\n\n[Other]\nKey=7\n");
    save(path, true);
    QCOMPARE(contentsOf(path), QByteArray("[General]\nCenterX=120\nCenterY=80\nNote=keep me\nRadius=40\n"
                                          "\n[Other]\nKey=7\n"));
}

void tst_Parameters::decliningToReplaceStaysInTheDialog()
{
    const QString path = m_window->filePath("circle.ini");
    writeFile(path, "old");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        driver.expect<QMessageBox>([](QMessageBox *question) {
            QTest::mouseClick(question->button(QMessageBox::No), Qt::LeftButton);
        });
        pickPath(picker, path);
        QVERIFY(picker->isVisible());
        picker->reject();
    });
    m_window->ui->actionSave_Param->trigger();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path), QByteArray("old"));
}

void tst_Parameters::cancelledSaveChangesNothing()
{
    m_window->ui->lineRadius->setText("55");
    const QStringList before = namesIn(m_window->folder());
    ModalDriver driver; // no confirmation either
    driver.expect<QFileDialog>([](QFileDialog *picker) { picker->reject(); });
    m_window->ui->actionSave_Param->trigger();
    QVERIFY(driver.done());
    QCOMPARE(circleOf(*m_window), aCircle); // not even the line edits were read
    QCOMPARE(namesIn(m_window->folder()), before);
}

void tst_Parameters::textsComeFromTheTextMap()
{
    m_window->showString["inifile_filter"] = "Circles (*.circle)";
    m_window->showString["save_inifile"] = "Where to?";
    m_window->showString["load_inifile"] = "Where from?";
    m_window->showString["saved_file"] = ": done";
    m_window->showString["save_inifile_title"] = "Saved";
    const QString path = m_window->filePath("circle.ini");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(), QString("Where to?"));
        QCOMPARE(picker->nameFilters(), QStringList("Circles (*.circle)"));
        pickPath(picker, path);
    });
    driver.expectMessage({"Saved", path + ": done"});
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(), QString("Where from?"));
        QCOMPARE(picker->nameFilters(), QStringList("Circles (*.circle)"));
        picker->reject();
    });
    m_window->ui->actionSave_Param->trigger();
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
}

// The confirmation comes whether or not the file could be written.
void tst_Parameters::saveIntoAFolderThatIsAFile()
{
    writeFile(m_window->filePath("file"), "no folder");
    save(m_window->filePath("file/circle.ini"));
    QCOMPARE(contentsOf(m_window->filePath("file")), QByteArray("no folder"));
    QCOMPARE(circleOf(*m_window), aCircle);
}

void tst_Parameters::failedSaveKeepsTheOldFile()
{
    const QString path = m_window->filePath("circle.ini");
    const QByteArray old = "[General]\nCenterX=1\nCenterY=2\nRadius=3\n";
    writeFile(path, old);
    {
        const FileSizeLimit fullDisk(0);
        save(path, true);
    }
    QCOMPARE(contentsOf(path), old);
    save(path, true);
    QCOMPARE(contentsOf(path), QByteArray("[General]\nCenterX=120\nCenterY=80\nRadius=40\n"));
}

void tst_Parameters::loadDialog()
{
    QVERIFY(QDir().mkpath(m_window->filePath("photos")));
    m_window->open(colourfulPhotograph({240, 160}), "photos/a.png");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        QCOMPARE(picker->windowTitle(),
                 QString("中心点、半径をファイルから読込ます、ファイル名を指定して下さい"));
        QCOMPARE(picker->parentWidget(), m_window.get());
        QCOMPARE(picker->acceptMode(), QFileDialog::AcceptOpen);
        QCOMPARE(picker->fileMode(), QFileDialog::ExistingFile);
        QCOMPARE(picker->nameFilters(), QStringList("選択範囲 (*.ini)"));
        QCOMPARE(picker->directory().absolutePath(), m_window->filePath("photos"));
        QCOMPARE(picker->findChild<QLineEdit *>("fileNameEdit")->text(), QString());
        picker->reject();
    });
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
}

void tst_Parameters::loadTakesTheCircle_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<SelectionCircle>("circle");
    const SelectionCircle none;
    QTest::newRow("parameter file") << QByteArray("[General]\nCenterX=11\nCenterY=22\nRadius=33\n")
                                    << SelectionCircle{11, 22, 33};
    QTest::newRow("without the section's name")
        << QByteArray("CenterX=11\nCenterY=22\nRadius=33\n") << SelectionCircle{11, 22, 33};
    QTest::newRow("no circle at all") << QByteArray("[General]\nNote=nothing\n") << none;
    QTest::newRow("a key is missing")
        << QByteArray("[General]\nCenterX=11\nRadius=33\n") << SelectionCircle{11, 0, 33};
    QTest::newRow("keys of another section")
        << QByteArray("[Circle]\nCenterX=11\nCenterY=22\nRadius=33\n") << none;
    QTest::newRow("beyond the picture") << QByteArray("[General]\nCenterX=-500\nCenterY=9999\nRadius=-7\n")
                                        << SelectionCircle{-500, 9999, -7};
    QTest::newRow("the ends of the numbers")
        << QByteArray("[General]\nCenterX=2147483647\nCenterY=-2147483648\nRadius=2147483647\n")
        << SelectionCircle{INT_MAX, INT_MIN, INT_MAX};
    QTest::newRow("words and fractions")
        << QByteArray("[General]\nCenterX=eleven\nCenterY=3.7\nRadius=\n") << none;
    QTest::newRow("beyond 32 bits, cut off")
        << QByteArray("[General]\nCenterX=99999999999\nCenterY=1\nRadius=1\n")
        << SelectionCircle{1215752191, 1, 1};
    QTest::newRow("empty file") << QByteArray() << none;
    QByteArray noise;
    for (int i = 0; i < 3000; ++i)
        noise.append(static_cast<char>((i * 7919 + i / 13) % 256));
    QTest::newRow("noise") << noise << none;
}

void tst_Parameters::loadTakesTheCircle()
{
    QFETCH(QByteArray, contents);
    QFETCH(SelectionCircle, circle);
    const QString path = m_window->filePath("circle.ini");
    writeFile(path, contents);
    load(path);
    QCOMPARE(circleOf(*m_window), circle);
    QCOMPARE(m_window->ui->lineCenterX->text(), QString::number(circle.centerX));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString::number(circle.centerY));
    QCOMPARE(m_window->ui->lineRadius->text(), QString::number(circle.radius));
}

void tst_Parameters::loadFromASettingsFile()
{
    m_window->saveSetting();
    m_window->setCircle({1, 2, 3});
    load(m_window->settingFile);
    QCOMPARE(circleOf(*m_window), aCircle);
}

// The dialog enters a folder that is typed, but another kind of dialog may hand one over.
void tst_Parameters::loadFromAFolder()
{
    QVERIFY(QDir().mkpath(m_window->filePath("folder")));
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        picker->findChild<QLineEdit *>("fileNameEdit")->setText(m_window->filePath("folder"));
        static_cast<QDialog *>(picker)->done(QDialog::Accepted);
    });
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
    QCOMPARE(circleOf(*m_window), SelectionCircle());
}

void tst_Parameters::loadShowsTheCircle()
{
    writeFile(m_window->filePath("circle.ini"), "[General]\nCenterX=100\nCenterY=70\nRadius=30\n");
    load(m_window->filePath("circle.ini"));
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, SelectionCircle{100, 70, 30}));
}

void tst_Parameters::loadLeavesAHiddenCircleHidden()
{
    m_window->selectShow = false;
    writeFile(m_window->filePath("circle.ini"), "[General]\nCenterX=100\nCenterY=70\nRadius=30\n");
    load(m_window->filePath("circle.ini"));
    QVERIFY(!m_window->selectShow);
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, std::nullopt));
}

void tst_Parameters::loadWithoutAPhotograph()
{
    m_window = std::make_unique<FreshWindow>();
    writeFile(m_window->filePath("circle.ini"), "[General]\nCenterX=100\nCenterY=70\nRadius=30\n");
    load(m_window->filePath("circle.ini"));
    QCOMPARE(circleOf(*m_window), SelectionCircle({100, 70, 30}));
    QVERIFY(m_window->shownPicture().isNull());
}

void tst_Parameters::savedCircleComesBack()
{
    const QString path = m_window->filePath("円.ini");
    save(path);
    m_window->setCircle({1, 2, 3});
    load(path);
    QCOMPARE(circleOf(*m_window), aCircle);
    m_window->setCircle({7, 8, 9});
    save(path, true);
    m_window->setCircle({1, 2, 3});
    load(path);
    QCOMPARE(circleOf(*m_window), SelectionCircle({7, 8, 9}));
}

void tst_Parameters::cancelledLoadChangesNothing()
{
    m_window->ui->lineRadius->setText("55");
    ModalDriver driver;
    driver.expect<QFileDialog>([](QFileDialog *picker) { picker->reject(); });
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
    // A file that was chosen before the dialog was cancelled is not read either.
    const QString file = m_window->filePath("other.ini");
    writeCircleFile(file, {1, 2, 3});
    driver.expect<QFileDialog>([&](QFileDialog *picker) {
        picker->findChild<QLineEdit *>("fileNameEdit")->setText(file);
        QCOMPARE(picker->selectedFiles(), QStringList{file});
        picker->reject();
    });
    m_window->ui->actionLoad_Param->trigger();
    QVERIFY(driver.done());
    QCOMPARE(circleOf(*m_window), aCircle);
    QCOMPARE(m_window->ui->lineRadius->text(), QString("55"));
}

void tst_Parameters::resetFitsTheCircle_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<SelectionCircle>("circle");
    QTest::newRow("1000 x 600") << QSize(1000, 600) << SelectionCircle{500, 300, 294};
    QTest::newRow("1001 x 601, halves rounded down") << QSize(1001, 601) << SelectionCircle{500, 300, 294};
    QTest::newRow("portrait") << QSize(60, 100) << SelectionCircle{30, 50, 29};
    QTest::newRow("a single pixel") << QSize(1, 1) << SelectionCircle{0, 0, 0};
}

void tst_Parameters::resetFitsTheCircle()
{
    QFETCH(QSize, size);
    QFETCH(SelectionCircle, circle);
    m_window->open(QImage(colourfulPhotograph({16, 16})).scaled(size));
    QCOMPARE(circleOf(*m_window), aCircle);
    m_window->ui->actionParam_Reset->trigger();
    QCOMPARE(circleOf(*m_window), circle);
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->ui->label->selectMode);
    QCOMPARE(m_window->ui->lineCenterX->text(), QString::number(circle.centerX));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString::number(circle.centerY));
    QCOMPARE(m_window->ui->lineRadius->text(), QString::number(circle.radius));
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, circle));
}

void tst_Parameters::resetWithoutAPhotograph()
{
    m_window = std::make_unique<FreshWindow>();
    m_window->setCircle(aCircle);
    m_window->ui->actionParam_Reset->trigger();
    QCOMPARE(circleOf(*m_window), SelectionCircle());
    QVERIFY(!m_window->selectShow);
    QVERIFY(!m_window->ui->label->selectMode);
    QCOMPARE(m_window->ui->lineRadius->text(), QString("0"));
    QVERIFY(m_window->shownPicture().isNull());
}

void tst_Parameters::resetAfterAFailedLoad()
{
    ModalDriver driver;
    driver.expect<QMessageBox>(
        [](QMessageBox *box) { QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton); });
    m_window->loadFileName = m_window->filePath("missing.png");
    m_window->loadImage();
    QVERIFY(driver.done());
    QCOMPARE(m_window->imageWidth, 240); // of the photograph before
    m_window->ui->actionParam_Reset->trigger();
    QCOMPARE(circleOf(*m_window), SelectionCircle());
    QVERIFY(!m_window->selectShow);
    QVERIFY(!m_window->ui->label->selectMode);
    QVERIFY(m_window->shownPicture().isNull());
}

void tst_Parameters::resetShowsAHiddenCircle()
{
    m_window->mouse(QTest::MouseClick, m_window->ui->label, {20, 20}, Qt::RightButton);
    QVERIFY(!m_window->selectShow);
    m_window->ui->actionParam_Reset->trigger();
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->ui->label->selectMode);
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, SelectionCircle{120, 80, 78}));
}

void tst_Parameters::noCommandRefreshesThePreview()
{
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionPreview_Window->trigger();
    const QString path = m_window->filePath("circle.ini");
    const MessageCollector collector;
    save(path);
    load(path);
    m_window->ui->actionParam_Reset->trigger();
    QVERIFY(!collector.messages().contains("convertImage"));
    QVERIFY(!collector.messages().contains("updatePreview"));
}

WINDOW_TEST_MAIN(tst_Parameters)
#include "tst_parameters.moc"
