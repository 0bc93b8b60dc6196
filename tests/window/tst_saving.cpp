#include "files.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "previewwindow.h"
#include "savingwindow.h"
#include "windowreference.h"

#include <QFile>
#include <QFileDialog>
#include <QImageReader>
#include <QTextDocument>

class tst_Saving : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formatDecidesTheContents_data();
    void formatDecidesTheContents();
    void mapIsThatOfTheReference_data();
    void mapIsThatOfTheReference();
    void unpaintedAreaIsTransparentInPngAndBlackInJpeg();
    void qualityIsPassedForBothFormats_data();
    void qualityIsPassedForBothFormats();

    void decliningKeepsTheOldFile_data();
    void decliningKeepsTheOldFile();
    void nameIsShownAsItIs();
    void decliningStoresTheNewPath();
    void acceptingReplacesTheOldFile();
    void noQuestionWithoutAnOldFile();
    void boxesCarryTheButtonsCurrentText();
    void boxesCarryTheTextsOfTheLanguageFile();

    void mapIsSavedUnderTheTypedName_data();
    void mapIsSavedUnderTheTypedName();
    void typedFolderBelongsToTheNextSave();
    void emptyNameMeansTheFolder();
    void typedCircleIsTaken();
    void savingFeedsTheVisiblePreview();
    void menuActionDoesTheSame();
    void withoutPhotographNothingHappens_data();
    void withoutPhotographNothingHappens();

    void browseDialog();
    void browseFollowsTheFormat();
    void browsePicksTheTarget();
    void browsedTargetLooksLikeMarkup();
    void browseAddsNoSuffix();
    void browseOverAnExistingFile();
    void cancelledBrowseChangesNothing();

private:
    void save(const QString &name);
    QString path(const QString &name) const { return m_window->filePath(name); }

    std::unique_ptr<SavingWindow> m_window;
};

void tst_Saving::init()
{
    m_window = std::make_unique<SavingWindow>();
    QVERIFY(!m_window->image.isNull());
}

void tst_Saving::cleanup()
{
    m_window.reset();
}

void tst_Saving::formatDecidesTheContents_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QByteArray>("contents");
    QTest::newRow("0 is JPEG") << 0 << QByteArray("jpeg");
    QTest::newRow("1 is PNG") << 1 << QByteArray("png");
    QTest::newRow("2 is JPEG") << 2 << QByteArray("jpeg");
    QTest::newRow("negative is JPEG") << -1 << QByteArray("jpeg");
    QTest::newRow("2147483647 is JPEG") << 2147483647 << QByteArray("jpeg");
}

void tst_Saving::formatDecidesTheContents()
{
    QFETCH(int, format);
    m_window->format = format;
    for (const QString name : {"map.jpg", "map.png", "map.txt", "map"}) {
        m_window->save(name);
        QTEST(QImageReader::imageFormat(path(name)), "contents");
    }
}

void tst_Saving::mapIsThatOfTheReference_data()
{
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("azimuth");
    QTest::newRow("as it comes") << 100.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("seen from near") << 6.6 << 0.0 << 0.0 << 0.0;
    QTest::newRow("no turn at all") << 100.0 << 90.0 << -90.0 << 0.0;
    QTest::newRow("every step") << 40.0 << 35.7 << 139.7 << 25.0;
    QTest::newRow("from the surface nothing is seen") << 1.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("angles far out of range") << 100.0 << 500.0 << -1e6 << 1e6;
}

void tst_Saving::mapIsThatOfTheReference()
{
    QFETCH(double, distance);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, azimuth);
    m_window->distance = distance;
    m_window->latitude = latitude;
    m_window->longitude = longitude;
    m_window->azimuth = azimuth;
    const QImage expected = referenceMap(*m_window);
    QCOMPARE(expected.size(), QSize(64, 32));

    m_window->format = 1;
    m_window->save("map.png");
    COMPARE_IMAGES(QImage(path("map.png")), expected);

    m_window->format = 0;
    m_window->quality = 90;
    m_window->save("map.jpg");
    COMPARE_IMAGES(QImage(path("map.jpg")), QImage::fromData(encoded(expected, "jpg", 90)));
}

void tst_Saving::unpaintedAreaIsTransparentInPngAndBlackInJpeg()
{
    m_window->latitude = 90.0; // the lower half stays as it was prepared
    m_window->longitude = -90.0;
    m_window->quality = 100;
    m_window->format = 1;
    m_window->save("map.png");
    QCOMPARE(QImage(path("map.png")).pixelColor(30, 30), QColor(0, 0, 0, 0));
    m_window->format = 0;
    m_window->save("map.jpg");
    QCOMPARE(QImage(path("map.jpg")).pixelColor(30, 30), QColor(0, 0, 0, 255));
}

void tst_Saving::qualityIsPassedForBothFormats_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("quality");
    for (const int quality : {0, 1, 50, 85, 100}) {
        QTest::addRow("JPEG with quality %d", quality) << 0 << quality;
        QTest::addRow("PNG with quality %d", quality) << 1 << quality;
    }
    QTest::newRow("JPEG beyond 100") << 0 << 2147483647;
    QTest::newRow("PNG below -1") << 1 << -2147483647;
}

void tst_Saving::qualityIsPassedForBothFormats()
{
    QFETCH(int, format);
    QFETCH(int, quality);
    m_window->format = format;
    m_window->quality = quality;
    m_window->save("map");
    const QImage expected = referenceMap(*m_window);
    QCOMPARE(contentsOf(path("map")), encoded(expected, format == 1 ? "png" : "jpg", quality));
    if (format == 1 && quality == 100) // stored, not compressed
        QVERIFY(contentsOf(path("map")).size() > 64 * 32 * 4);
}

void tst_Saving::decliningKeepsTheOldFile_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("key");
    QTest::newRow("No is pressed") << int(QMessageBox::No) << 0;
    QTest::newRow("the box is closed by its title bar") << int(QMessageBox::NoButton) << 0;
    QTest::newRow("Return presses the default button") << int(QMessageBox::NoButton) << int(Qt::Key_Return);
    QTest::newRow("Esc") << int(QMessageBox::NoButton) << int(Qt::Key_Escape);
}

void tst_Saving::decliningKeepsTheOldFile()
{
    QFETCH(int, button);
    QFETCH(int, key);
    writeFile(path("OV-planet.jpg"), oldContents);
    const QStringList names = namesIn(m_window->folder());
    const MessageCollector collector;
    ModalDriver driver;
    if (key == 0)
        driver.expectMessage(overwriteQuestion("OV-planet.jpg", QMessageBox::StandardButton(button)));
    else
        driver.expect<QMessageBox>([key](QMessageBox *box) { QTest::keyClick(box, Qt::Key(key)); });
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("OV-planet.jpg")), oldContents);
    QCOMPARE(namesIn(m_window->folder()), names);
    QVERIFY(!collector.messages().contains("convertImage"));
    QCOMPARE(m_window->saveFileName, path("OV-planet.jpg"));
}

void tst_Saving::nameIsShownAsItIs()
{
    const QString name = "<b>bold.jpg";
    writeFile(path(name), oldContents);
    m_window->ui->lineSaveFilename->setText(name);
    ModalDriver driver;
    for (const auto button : {QMessageBox::Yes, QMessageBox::Ok}) // the question, and the confirmation
        driver.expect<QMessageBox>([&, button](QMessageBox *box) {
            QVERIFY(box->text().contains(name));
            QCOMPARE(box->textFormat(), Qt::PlainText);
            box->button(button)->click();
        });
    m_window->clickConvert();
    QVERIFY(driver.done());
}

void tst_Saving::decliningStoresTheNewPath()
{
    writeFile(path("other.jpg"), oldContents);
    m_window->ui->lineSaveFilename->setText("other.jpg");
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        QCOMPARE(m_window->saveFileName, path("other.jpg")); // before the answer
        box->button(QMessageBox::No)->click();
    });
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(m_window->saveFileName, path("other.jpg"));
    m_window->close();
    QVERIFY(contentsOf(m_window->settingFile).contains(("SaveFileName=" + path("other.jpg")).toUtf8()));
}

void tst_Saving::acceptingReplacesTheOldFile()
{
    writeFile(path("OV-planet.jpg"), oldContents);
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("OV-planet.jpg", QMessageBox::Yes));
    driver.expectMessage(confirmation(path("OV-planet.jpg")));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("OV-planet.jpg")), encoded(referenceMap(*m_window), "jpg", m_window->quality));
}

void tst_Saving::noQuestionWithoutAnOldFile()
{
    m_window->save("OV-planet.jpg");
    QCOMPARE(namesIn(m_window->folder()), (QStringList{"OV-planet.jpg", "planet.png"}));
}

void tst_Saving::boxesCarryTheButtonsCurrentText()
{
    m_window->ui->btnConvert->setText("Go");
    writeFile(path("OV-planet.jpg"), oldContents);
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        QCOMPARE(box->windowTitle(), QString("Go"));
        m_window->ui->btnConvert->setText("Gone");
        box->button(QMessageBox::Yes)->click();
    });
    ModalDriver::Message confirmed = confirmation(path("OV-planet.jpg"));
    confirmed.title = "Gone";
    driver.expectMessage(confirmed);
    m_window->clickConvert();
    QVERIFY(driver.done());
}

void tst_Saving::boxesCarryTheTextsOfTheLanguageFile()
{
    writeFile(m_window->langFile, "[main]\nbtn_conv=Convert\noverwrite_question=\" is there.\\nReplace?\"\n"
                                  "saved_file=\" is saved\"\n");
    m_window->readShowString();
    m_window->outputSizeX = 64;
    m_window->outputSizeY = 32;
    m_window->saveFileName = path("any");
    writeFile(path("OV-planet.jpg"), oldContents);
    ModalDriver driver;
    driver.expectMessage({"Convert", "OV-planet.jpg is there.\nReplace?", QMessageBox::Warning,
                          QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No});
    driver.expectMessage({"Convert", path("OV-planet.jpg") + " is saved"});
    m_window->clickConvert();
    QVERIFY(driver.done());
}

void tst_Saving::mapIsSavedUnderTheTypedName_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("Japanese and beyond the basic plane") << "地球 𠮷田 🌏.jpg";
    QTest::newRow("in a folder below") << "sub/map.jpg";
    QTest::newRow("in the folder above a folder below") << "sub/../map.jpg";
    QTest::newRow("several dots") << "a.b.c";
    QTest::newRow("looks like markup") << "<b>map & more.jpg";
    QTest::newRow("outer blanks") << " map ";
    QTest::newRow("place holders") << "%1%2%n.jpg";
}

void tst_Saving::mapIsSavedUnderTheTypedName()
{
    QFETCH(QString, name);
    QVERIFY(QDir(m_window->folder()).mkdir("sub"));
    m_window->format = 1;
    m_window->save(name);
    QCOMPARE(m_window->saveFileName, path(name));
    COMPARE_IMAGES(QImage(path(name)), referenceMap(*m_window));
    // The second time the file is there.
    if (!name.contains("sub/")) {
        ModalDriver driver;
        driver.expectMessage(overwriteQuestion(name, QMessageBox::No));
        m_window->clickConvert();
        QVERIFY(driver.done());
    }
}

// The directory part of the path that was saved last leads, so a folder typed once counts again.
void tst_Saving::typedFolderBelongsToTheNextSave()
{
    QVERIFY(QDir(m_window->folder()).mkpath("sub/sub"));
    m_window->save("sub/map.jpg");
    QVERIFY(QFile::exists(path("sub/map.jpg")));
    ModalDriver driver;
    driver.expectMessage(confirmation(path("sub/sub/map.jpg")));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QVERIFY(QFile::exists(path("sub/sub/map.jpg")));
    QCOMPARE(m_window->saveFileName, path("sub/sub/map.jpg"));
}

void tst_Saving::emptyNameMeansTheFolder()
{
    m_window->ui->lineSaveFilename->clear();
    const QStringList names = namesIn(m_window->folder());
    ModalDriver driver;
    driver.expectMessage(overwriteQuestion("", QMessageBox::Yes));
    driver.expectMessage(confirmation(m_window->folder() + '/'));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(namesIn(m_window->folder()), names);
    QCOMPARE(m_window->saveFileName, m_window->folder() + '/');
}

void tst_Saving::typedCircleIsTaken()
{
    m_window->format = 1;
    m_window->ui->lineCenterX->setText("40");
    m_window->ui->lineCenterY->setText(" 30 ");
    m_window->ui->lineRadius->setText("21");
    m_window->save("typed.png");
    QCOMPARE(m_window->centerX, 40);
    QCOMPARE(m_window->centerY, 30);
    QCOMPARE(m_window->radius, 21);
    COMPARE_IMAGES(QImage(path("typed.png")), referenceMap(*m_window));

    m_window->ui->lineCenterX->setText("forty");
    m_window->ui->lineCenterY->setText("");
    m_window->ui->lineRadius->setText("99999999999");
    m_window->save("zero.png");
    QCOMPARE(m_window->centerX, 0);
    QCOMPARE(m_window->centerY, 0);
    QCOMPARE(m_window->radius, 0);
    COMPARE_IMAGES(QImage(path("zero.png")), referenceMap(*m_window));
    QCOMPARE(m_window->ui->lineCenterX->text(), QString("forty")); // nothing rewrites what was typed
}

void tst_Saving::savingFeedsTheVisiblePreview()
{
    auto *shown = m_window->previewWindow->findChild<QLabel *>("label2");
    m_window->save("hidden.jpg");
    QVERIFY(shown->pixmap(Qt::ReturnByValue).isNull());
    m_window->previewWindow->show();
    m_window->save("visible.jpg");
    COMPARE_IMAGES(shown->pixmap(Qt::ReturnByValue).toImage(), referenceMap(*m_window));
}

void tst_Saving::menuActionDoesTheSame()
{
    ModalDriver driver;
    driver.expectMessage(confirmation(path("OV-planet.jpg")));
    m_window->ui->actionConvert_Save->trigger();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("OV-planet.jpg")), encoded(referenceMap(*m_window), "jpg", 85));
}

void tst_Saving::withoutPhotographNothingHappens_data()
{
    QTest::addColumn<bool>("byMenu");
    QTest::newRow("button") << false;
    QTest::newRow("menu action") << true;
}

void tst_Saving::withoutPhotographNothingHappens()
{
    QFETCH(bool, byMenu);
    m_window->image = QImage();
    m_window->ui->lineCenterX->setText("7");
    m_window->ui->lineRadius->setText("7");
    m_window->ui->lineSaveFilename->setText("new.jpg");
    const QStringList names = namesIn(m_window->folder());
    const MessageCollector collector;
    ModalDriver driver;
    if (byMenu)
        m_window->ui->actionConvert_Save->trigger();
    else
        m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(m_window->centerX, 48);
    QCOMPARE(m_window->radius, 35);
    QCOMPARE(m_window->saveFileName, path("OV-planet.jpg"));
    QCOMPARE(namesIn(m_window->folder()), names);
    QCOMPARE(collector.messages(), QStringList{"on_btnConvert_clicked"});
}

void tst_Saving::browseDialog()
{
    QVERIFY(QDir(m_window->folder()).mkdir("maps"));
    m_window->saveFileName = path("maps/earlier.jpg");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QString("画像変換後のファイル名を指定して下さい"));
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog->fileMode(), QFileDialog::AnyFile);
        QCOMPARE(dialog->directory().absolutePath(), path("maps"));
        QCOMPARE(dialog->parentWidget(), m_window.get());
        QCOMPARE(dialog->defaultSuffix(), QString());
        dialog->reject();
    });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
}

void tst_Saving::browseFollowsTheFormat()
{
    const QMap<int, QString> filters{
        {0, "画像ファイル (*.jpg)"}, {1, "画像ファイル (*.png)"}, {5, "画像ファイル (*.jpg)"}};
    for (auto filter = filters.begin(); filter != filters.end(); ++filter) {
        m_window->format = filter.key();
        ModalDriver driver;
        driver.expect<QFileDialog>([&](QFileDialog *dialog) {
            QCOMPARE(dialog->nameFilters(), QStringList{filter.value()});
            dialog->reject();
        });
        QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
        QVERIFY(driver.done());
    }
}

void tst_Saving::browsePicksTheTarget()
{
    QVERIFY(QDir(m_window->folder()).mkdir("地図"));
    const QString target = path("地図/世界.jpg");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) { pickPath(dialog, target); });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_window->saveFileName, target);
    QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("世界.jpg"));
    QCOMPARE(m_window->ui->lineSaveFilename->toolTip(), target);
    QVERIFY(!QFile::exists(target)); // choosing writes nothing

    driver.expectMessage(confirmation(target));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(QImageReader::imageFormat(target), QByteArray("jpeg"));
}

void tst_Saving::browsedTargetLooksLikeMarkup()
{
    const QString target = path("<b>world.jpg");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) { pickPath(dialog, target); });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
    QTextDocument shown;
    shown.setHtml(m_window->ui->lineSaveFilename->toolTip());
    QCOMPARE(shown.toPlainText(), target);
}

void tst_Saving::browseAddsNoSuffix()
{
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) { pickPath(dialog, path("plain")); });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_window->saveFileName, path("plain"));
    QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("plain"));
}

// The dialog asks its own question; the save asks again.
void tst_Saving::browseOverAnExistingFile()
{
    writeFile(path("there.jpg"), oldContents);
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) { pickPath(dialog, path("there.jpg")); });
    driver.expect<QMessageBox>([](QMessageBox *box) { box->button(QMessageBox::Yes)->click(); });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("there.jpg")), oldContents);
    driver.expectMessage(overwriteQuestion("there.jpg", QMessageBox::No));
    m_window->clickConvert();
    QVERIFY(driver.done());
    QCOMPARE(contentsOf(path("there.jpg")), oldContents);
}

void tst_Saving::cancelledBrowseChangesNothing()
{
    m_window->ui->lineSaveFilename->setText("typed.jpg");
    const QString toolTip = m_window->ui->lineSaveFilename->toolTip();
    ModalDriver driver;
    driver.expect<QFileDialog>([](QFileDialog *dialog) { dialog->close(); });
    QTest::mouseClick(m_window->ui->btnBrowse, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_window->saveFileName, path("OV-planet.jpg"));
    QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("typed.jpg"));
    QCOMPARE(m_window->ui->lineSaveFilename->toolTip(), toolTip);
}

WINDOW_TEST_MAIN(tst_Saving)
#include "tst_saving.moc"
