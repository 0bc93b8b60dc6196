#include "files.h"
#include "freshwindow.h"
#include "hostilepictures.h"
#include "memorylimit.h"
#include "modaldriver.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QMimeData>
#include <QTextDocument>

#include <sys/stat.h>

namespace
{

QList<QUrl> localUrls(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    return urls;
}

} // namespace

class tst_Loading : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void firstCircleFitsThePhotograph_data();
    void firstCircleFitsThePhotograph();
    void secondPhotographKeepsTheCircle();
    void circleOutsideTheNewPhotographIsKept();
    void oneZeroValueFitsTheCircleAgain_data();
    void oneZeroValueFitsTheCircleAgain();
    void smallestCircleIsShown();
    void negativeValueKeepsTheCircleHidden_data();
    void negativeValueKeepsTheCircleHidden();
    void mapNameIsProposed_data();
    void mapNameIsProposed();
    void lineEditsFollow();
    void loadingLeavesThePreviewAlone();
    void pictureHoldsTheCircle();
    void formatComesFromTheContents();

    void failedLoad_data();
    void failedLoad();
    void failedLoadClearsThePicture();
    void failedLoadStoresNoFileName();
    void warningTitleIsTheButtonsText();
    void fileNameIsShownAsItIs();
    void fileWithoutReadPermissionLosesNothing();

    void whatWouldTakeForEverIsRefused_data();
    void whatWouldTakeForEverIsRefused();
    void textsBeyondTheMemoryAreAFailedLoad();
    void pictureBeyondTheMemoryIsAFailedLoad();
    void colonInFrontIsPartOfTheName();
    void toolTipShowsThePathAsItIs();

    void openDialogAsksForOnePicture();
    void cancelledOpenDialogChangesNothing();

    void dragOfOneImageIsAccepted_data();
    void dragOfOneImageIsAccepted();
    void dropWithoutUrlsIsLeftAlone();
    void droppedPhotographIsLoaded_data();
    void droppedPhotographIsLoaded();
    void dropWhoseSecondIsNoImage();
    void dropOfSeveralOpensTheBatchDialog();

private:
    QString picture(const QString &name, QSize size = {100, 80}, const char *format = "PNG");
    void load(const QString &path);

    std::unique_ptr<InstalledWindow> m_window;
};

void tst_Loading::init()
{
    m_window = std::make_unique<InstalledWindow>();
    m_window->appear();
}

void tst_Loading::cleanup()
{
    m_window.reset();
}

QString tst_Loading::picture(const QString &name, QSize size, const char *format)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    const QString path = m_window->filePath(name);
    if (!image.save(path, format))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void tst_Loading::load(const QString &path)
{
    m_window->loadFileName = path;
    m_window->loadImage();
}

void tst_Loading::firstCircleFitsThePhotograph_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("r");
    QTest::newRow("landscape") << QSize(1000, 700) << 500 << 350 << 343;
    QTest::newRow("portrait") << QSize(700, 1000) << 350 << 500 << 343;
    QTest::newRow("odd size") << QSize(1001, 601) << 500 << 300 << 294;
}

void tst_Loading::firstCircleFitsThePhotograph()
{
    QFETCH(QSize, size);
    load(picture("p.png", size));
    QTEST(m_window->centerX, "x");
    QTEST(m_window->centerY, "y");
    QTEST(m_window->radius, "r");
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->ui->label->selectMode);
    QCOMPARE(m_window->imageWidth, size.width());
    QCOMPARE(m_window->imageHeight, size.height());
}

void tst_Loading::secondPhotographKeepsTheCircle()
{
    load(picture("first.png", {1000, 700}));
    load(picture("second.png", {300, 200}));
    QCOMPARE(m_window->centerX, 500);
    QCOMPARE(m_window->centerY, 350);
    QCOMPARE(m_window->radius, 343);
    QCOMPARE(m_window->imageWidth, 300);
    // The way back to the default fit.
    m_window->ui->actionParam_Reset->trigger();
    QCOMPARE(m_window->centerX, 150);
    QCOMPARE(m_window->centerY, 100);
    QCOMPARE(m_window->radius, 98);
}

void tst_Loading::circleOutsideTheNewPhotographIsKept()
{
    m_window->centerX = 5000;
    m_window->centerY = 4000;
    m_window->radius = 9;
    load(picture("p.png"));
    QCOMPARE(m_window->centerX, 5000);
    QVERIFY(m_window->selectShow);
}

void tst_Loading::oneZeroValueFitsTheCircleAgain_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("r");
    QTest::newRow("centre x is 0") << 0 << 5 << 5;
    QTest::newRow("centre y is 0") << 5 << 0 << 5;
    QTest::newRow("radius is 0") << 5 << 5 << 0;
}

void tst_Loading::oneZeroValueFitsTheCircleAgain()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, r);
    m_window->centerX = x;
    m_window->centerY = y;
    m_window->radius = r;
    load(picture("p.png"));
    QCOMPARE(m_window->centerX, 50);
    QCOMPARE(m_window->centerY, 40);
    QCOMPARE(m_window->radius, 39);
}

void tst_Loading::smallestCircleIsShown()
{
    m_window->centerX = 1;
    m_window->centerY = 1;
    m_window->radius = 1;
    load(picture("p.png"));
    QCOMPARE(circleOf(*m_window), SelectionCircle({1, 1, 1}));
    QVERIFY(m_window->selectShow);
}

void tst_Loading::negativeValueKeepsTheCircleHidden_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("r");
    QTest::newRow("centre x") << -3 << 10 << 10;
    QTest::newRow("centre y") << 10 << -3 << 10;
    QTest::newRow("radius") << 10 << 10 << -3;
}

void tst_Loading::negativeValueKeepsTheCircleHidden()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, r);
    m_window->centerX = x;
    m_window->centerY = y;
    m_window->radius = r;
    load(picture("p.png"));
    QCOMPARE(circleOf(*m_window), SelectionCircle({x, y, r}));
    QVERIFY(!m_window->selectShow);
    QCOMPARE(m_window->ui->label->pixmap(Qt::ReturnByValue).toImage().pixelColor(10, 0),
             QColor(Qt::darkGreen));
}

void tst_Loading::mapNameIsProposed_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("output");
    QTest::newRow("JPEG") << "photo.png" << 0 << "OV-photo.jpg";
    QTest::newRow("PNG") << "photo.png" << 1 << "OV-photo.png";
    QTest::newRow("any other format is JPEG") << "photo.png" << 7 << "OV-photo.jpg";
    QTest::newRow("up to the first dot") << "img.2020.png" << 0 << "OV-img.jpg";
    QTest::newRow("Japanese") << "地球 𠮷.png" << 0 << "OV-地球 𠮷.jpg";
    QTest::newRow("no name before the dot") << ".hidden.png" << 0 << "OV-.jpg";
}

void tst_Loading::mapNameIsProposed()
{
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(int, format);
    m_window->format = format;
    load(picture(input));
    QCOMPARE(m_window->ui->lineSaveFilename->text(), output);
    QCOMPARE(m_window->saveFileName, m_window->filePath(output));
    QCOMPARE(m_window->ui->lineSaveFilename->toolTip(), m_window->filePath(output));
}

void tst_Loading::lineEditsFollow()
{
    load(picture("p.png", {1000, 700}));
    QCOMPARE(m_window->ui->lineCenterX->text(), QString("500"));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString("350"));
    QCOMPARE(m_window->ui->lineRadius->text(), QString("343"));
}

void tst_Loading::loadingLeavesThePreviewAlone()
{
    m_window->autoPreview = true;
    m_window->ui->btnPreview->click();
    load(picture("p.png"));
    QCOMPARE(m_window->ratioX, 0.0); // no conversion has run
}

void tst_Loading::pictureHoldsTheCircle()
{
    load(picture("p.png", {100, 80}));
    const QImage shown = m_window->ui->label->pixmap(Qt::ReturnByValue).toImage();
    QCOMPARE(shown.size(), QSize(100, 80));
    QCOMPARE(shown.pixelColor(50, 40), QColor(255, 0, 0));      // centre cross
    QCOMPARE(shown.pixelColor(50 + 39, 40), QColor(255, 0, 0)); // on the circle
    QCOMPARE(shown.pixelColor(30, 40), QColor(Qt::darkGreen));
}

void tst_Loading::formatComesFromTheContents()
{
    load(picture("really-a-jpeg.png", {64, 64}, "JPG"));
    QCOMPARE(m_window->image.size(), QSize(64, 64));
}

void tst_Loading::failedLoad_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no image") << "text.png";
    QTest::newRow("missing") << "missing.png";
    QTest::newRow("a folder") << "folder.png";
    QTest::newRow("empty file") << "empty.jpg";
    QTest::newRow("truncated PNG") << "cut.png";
}

void tst_Loading::failedLoad()
{
    writeFile(m_window->filePath("text.png"), "not an image at all");
    writeFile(m_window->filePath("empty.jpg"), "");
    QVERIFY(QDir(m_window->folder()).mkdir("folder.png"));
    QFile whole(picture("whole.png", {300, 300}));
    QVERIFY(whole.open(QIODevice::ReadOnly));
    writeFile(m_window->filePath("cut.png"), whole.readAll().left(60));

    QFETCH(QString, name);
    load(picture("good.png"));
    m_window->centerX = 11;
    m_window->centerY = 12;
    m_window->radius = 13;
    const QString path = m_window->filePath(name);
    ModalDriver driver;
    driver.expectMessage({"開く", path + " は開けませんでした", QMessageBox::Warning});
    load(path);
    QVERIFY(driver.done());
    QVERIFY(m_window->image.isNull());
    QCOMPARE(m_window->loadFileName, QString());
    QVERIFY(!m_window->selectShow);
    QCOMPARE(m_window->centerX, 11);
    QCOMPARE(m_window->centerY, 12);
    QCOMPARE(m_window->radius, 13);
    QCOMPARE(m_window->imageWidth, 100); // of the last photograph that loaded
    QCOMPARE(m_window->imageHeight, 80);
    QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("OV-good.jpg"));
}

void tst_Loading::failedLoadClearsThePicture()
{
    load(picture("good.png"));
    QVERIFY(!m_window->ui->label->pixmap(Qt::ReturnByValue).isNull());
    ModalDriver driver;
    driver.expectMessage(
        {"開く", m_window->filePath("none.png") + " は開けませんでした", QMessageBox::Warning});
    load(m_window->filePath("none.png"));
    QVERIFY(driver.done());
    const QPixmap pixmap = m_window->ui->label->pixmap(Qt::ReturnByValue);
    QVERIFY(pixmap.isNull());
}

void tst_Loading::failedLoadStoresNoFileName()
{
    ModalDriver driver;
    driver.expectMessage(
        {"開く", m_window->filePath("none.png") + " は開けませんでした", QMessageBox::Warning});
    load(m_window->filePath("none.png"));
    QVERIFY(driver.done());
    m_window->close();
    QFile file(m_window->settingFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().split('\n').contains("LoadFileName="));
}

void tst_Loading::warningTitleIsTheButtonsText()
{
    m_window->ui->btnImageRead->setText("Open");
    ModalDriver driver;
    driver.expectMessage(
        {"Open", m_window->filePath("none.png") + " は開けませんでした", QMessageBox::Warning});
    load(m_window->filePath("none.png"));
    QVERIFY(driver.done());
}

// Even one that looks like markup.
void tst_Loading::fileNameIsShownAsItIs()
{
    const QString path = m_window->filePath("<b>missing</b>.png");
    ModalDriver driver;
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        QCOMPARE(box->text(), path + " は開けませんでした");
        QCOMPARE(box->textFormat(), Qt::PlainText);
        box->accept();
    });
    load(path);
    QVERIFY(driver.done());
}

// A file that may not be read fails to load for an ordinary user and loads for root; either way nothing is
// lost.
void tst_Loading::fileWithoutReadPermissionLosesNothing()
{
    const QString path = picture("locked.png");
    QVERIFY(QFile::setPermissions(path, QFileDevice::WriteOwner));
    const bool readable = QFile(path).open(QIODevice::ReadOnly);
    ModalDriver driver;
    if (!readable)
        driver.expectMessage({"開く", path + " は開けませんでした", QMessageBox::Warning});
    load(path);
    QVERIFY(driver.done());
    QCOMPARE(m_window->image.isNull(), !readable);
}

void tst_Loading::whatWouldTakeForEverIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a pipe that nobody writes to") << "pipe.png";
    QTest::newRow("a link to it") << "link.png";
    QTest::newRow("a file of the system that waits") << "/proc/kmsg";
    QTest::newRow("a device without end") << "/dev/zero";
    QTest::newRow("65500 x 65500 pixels in a small file") << "large.jpg";
}

void tst_Loading::whatWouldTakeForEverIsRefused()
{
    QFETCH(QString, name);
    QCOMPARE(mkfifo(QFile::encodeName(m_window->filePath("pipe.png")).constData(), 0600), 0);
    QVERIFY(QFile::link("pipe.png", m_window->filePath("link.png")));
    writeFile(m_window->filePath("large.jpg"), jpegOfSize(65500, 65500));
    const QString path = name.startsWith('/') ? name : m_window->filePath(name);
    ModalDriver driver;
    driver.expectMessage({"開く", path + " は開けませんでした", QMessageBox::Warning});
    load(path);
    QVERIFY(driver.done());
    QVERIFY(m_window->image.isNull());
}

void tst_Loading::textsBeyondTheMemoryAreAFailedLoad()
{
    const QString path = m_window->filePath("texts.png");
    writeFile(path, pngWithTexts(addressSpaceCanBeLimited ? 136 : 10));
    ModalDriver driver;
    if (addressSpaceCanBeLimited)
        driver.expectMessage({"開く", path + " は開けませんでした", QMessageBox::Warning});
    {
        const MemoryLimit limit(unlessSanitized(200 * mebibyte));
        load(path);
    }
    QVERIFY(driver.done());
}

// There is memory for the photograph, with one byte a pixel, but none for the picture on the screen, with four.
void tst_Loading::pictureBeyondTheMemoryIsAFailedLoad()
{
    load(picture("good.png"));
    const SelectionCircle circle{m_window->centerX, m_window->centerY, m_window->radius};
    QImage large(10000, 10000, QImage::Format_Grayscale8);
    large.fill(Qt::gray);
    const QString path = m_window->filePath("large.bmp");
    QVERIFY(large.save(path));
    large = QImage();
    if (addressSpaceCanBeLimited) {
        ModalDriver driver;
        driver.expectMessage({"開く", path + " は開けませんでした", QMessageBox::Warning});
        {
            const MemoryLimit limit(250 * mebibyte);
            QVERIFY(!QImage(path).isNull());
            load(path);
        }
        QVERIFY(driver.done());
        QVERIFY(m_window->image.isNull());
        QCOMPARE(m_window->loadFileName, QString());
        QVERIFY(!m_window->selectShow);
        QVERIFY(m_window->ui->label->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(m_window->centerX, circle.centerX);
        QCOMPARE(m_window->radius, circle.radius);
        QCOMPARE(m_window->imageWidth, 100);
        QCOMPARE(m_window->ui->lineSaveFilename->text(), QString("OV-good.jpg"));
    }
    load(path); // now there is enough
    QCOMPARE(m_window->ui->label->pixmap(Qt::ReturnByValue).size(), QSize(10000, 10000));
}

// The toolkit would look among the pictures that are compiled in, and find this one.
void tst_Loading::colonInFrontIsPartOfTheName()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_window->folder()));
    QVERIFY(QFile::exists(":/up.png"));
    ModalDriver driver;
    driver.expectMessage({"開く", ":/up.png は開けませんでした", QMessageBox::Warning});
    load(":/up.png");
    QVERIFY(driver.done());
    QVERIFY(QFile::rename(picture("colon.png"), "./:photo.png"));
    load(":photo.png");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(m_window->image.size(), QSize(100, 80));
    QCOMPARE(m_window->saveFileName, m_window->folder() + "/OV-:photo.jpg");
}

void tst_Loading::toolTipShowsThePathAsItIs()
{
    for (const char *fileName : {"<b>world.png", "&lt;x&gt;.png", "a & b.png", "two  blanks <i>.png"}) {
        const QString name = QString::fromLatin1(fileName);
        load(picture(name));
        const QString path = m_window->saveFileName;
        QVERIFY(path.endsWith(QFileInfo(name).baseName() + ".jpg"));
        const QString toolTip = m_window->ui->lineSaveFilename->toolTip();
        QTextDocument shown; // decides as a tool tip does
        if (Qt::mightBeRichText(toolTip))
            shown.setHtml(toolTip);
        else
            shown.setPlainText(toolTip);
        QCOMPARE(shown.toPlainText(), path);
    }
}

void tst_Loading::openDialogAsksForOnePicture()
{
    const QString path = picture("p.png");
    m_window->loadFileName = m_window->filePath("earlier.png");
    ModalDriver driver;
    driver.expect<QFileDialog>([&](QFileDialog *dialog) {
        QCOMPARE(dialog->windowTitle(), QString("表示したい画像ファイルを選択して下さい"));
        QCOMPARE(dialog->nameFilters(), QStringList{"画像ファイル (*.gif *.png *.jpg)"});
        QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFile);
        QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptOpen);
        QCOMPARE(dialog->directory().absolutePath(), m_window->folder());
        pickPath(dialog, path);
    });
    QTest::mouseClick(m_window->ui->btnImageRead, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_window->loadFileName, path);
    QCOMPARE(m_window->image.size(), QSize(100, 80));
}

void tst_Loading::cancelledOpenDialogChangesNothing()
{
    load(picture("p.png"));
    const qint64 before = m_window->image.cacheKey();
    ModalDriver driver;
    driver.expect<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
    QTest::mouseClick(m_window->ui->btnImageRead, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_window->image.cacheKey(), before);
    QCOMPARE(m_window->loadFileName, m_window->filePath("p.png"));
}

void tst_Loading::dragOfOneImageIsAccepted_data()
{
    QTest::addColumn<QList<QUrl>>("urls");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("no URLs") << QList<QUrl>() << true;
    QTest::newRow("one jpg") << localUrls({"/a/b.jpg"}) << true;
    QTest::newRow("one png") << localUrls({"/a/b.png"}) << true;
    QTest::newRow("one gif") << localUrls({"/a/b.gif"}) << true;
    QTest::newRow("capitals") << localUrls({"/a/b.JPG"}) << true;
    QTest::newRow("jpeg") << localUrls({"/a/b.jpeg"}) << false;
    QTest::newRow("text") << localUrls({"/a/b.txt"}) << false;
    QTest::newRow("no suffix") << localUrls({"/a/jpg"}) << false;
    QTest::newRow("two images") << localUrls({"/a/b.jpg", "/a/c.jpg"}) << false;
    QTest::newRow("not local") << QList<QUrl>{QUrl("http://example.org/b.jpg")} << false;
}

void tst_Loading::dragOfOneImageIsAccepted()
{
    QFETCH(QList<QUrl>, urls);
    QMimeData data;
    if (!urls.isEmpty())
        data.setUrls(urls);
    QDragEnterEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(m_window.get(), &event);
    QTEST(event.isAccepted(), "accepted");
}

void tst_Loading::dropWithoutUrlsIsLeftAlone()
{
    QMimeData data;
    data.setText("hello");
    for (const bool accepted : {true, false}) {
        QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        event.setAccepted(accepted);
        m_window->dropEvent(&event);
        QCOMPARE(event.isAccepted(), accepted);
    }
}

void tst_Loading::droppedPhotographIsLoaded_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("loads");
    QTest::newRow("png") << "one.png" << true;
    QTest::newRow("capitals") << "ONE.JPG" << true;
    QTest::newRow("jpeg") << "one.jpeg" << false;
}

void tst_Loading::droppedPhotographIsLoaded()
{
    QFETCH(QString, name);
    QFETCH(bool, loads);
    const QString path = picture(name);
    QMimeData data;
    data.setUrls(localUrls({path}));
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    m_window->dropEvent(&event);
    QCOMPARE(event.isAccepted(), loads);
    QCOMPARE(!m_window->image.isNull(), loads);
    QCOMPARE(m_window->loadFileName, loads ? path : QString());
    QVERIFY(m_window->fileList.isEmpty());
}

void tst_Loading::dropWhoseSecondIsNoImage()
{
    QMimeData data;
    data.setUrls(localUrls({"/a/one.png", "/a/notes.txt", "/a/three.png"}));
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    ModalDriver driver; // nothing may open
    m_window->dropEvent(&event);
    QVERIFY(driver.done());
    QVERIFY(!event.isAccepted());
    QCOMPARE(m_window->fileList, QStringList{"/a/one.png"});
}

void tst_Loading::dropOfSeveralOpensTheBatchDialog()
{
    m_window->fileList = QStringList{"/a/earlier.png"};
    QMimeData data;
    data.setUrls(localUrls({"/a/one.png", "/a/TWO.gif"}));
    QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    ModalDriver driver;
    driver.expect<QDialog>([&](QDialog *dialog) {
        QVERIFY(event.isAccepted());
        QCOMPARE(dialog->windowTitle(), QString("Orvane 画像変換ツール（複数画像ファイル変換）"));
        dialog->reject();
    });
    m_window->dropEvent(&event);
    QVERIFY(driver.done());
    QCOMPARE(m_window->fileList, (QStringList{"/a/earlier.png", "/a/one.png", "/a/TWO.gif"}));
}

WINDOW_TEST_MAIN(tst_Loading)
#include "tst_loading.moc"
