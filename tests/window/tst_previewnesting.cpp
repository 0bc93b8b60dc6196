#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <QFile>
#include <QTimer>

#include <functional>

/// Windows that are closed, and what else happens in the middle of a conversion.
class tst_PreviewNesting : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void closingTheMainWindowEndsTheProgram();
    void closingThePreviewDoesNot();
    void mainWindowClosedDuringAPreview();
    void mainWindowClosedDuringASave();
    void previewClosedDuringAConversion();
    void previewOpenedDuringAConversion();

    void conversionInsideAConversion();
    void photographLoadedDuringAConversion();
    void photographLostDuringAConversion();
    void settingsChangedDuringAConversion();
    void saveInsideAConversion();
    void manyConversionsInsideEachOther();
    void buttonsPressedDuringAConversion();

private:
    QString path(const QString &name) const { return m_window->filePath(name); }
    int runUntilTheEnd(const std::function<void()> &first);
    void inTheMiddle(const std::function<void()> &act);

    std::unique_ptr<InstalledWindow> m_window;
    int m_acted = 0; // how often inTheMiddle's action ran inside a conversion
};

void tst_PreviewNesting::init()
{
    m_acted = 0;
    m_window = std::make_unique<InstalledWindow>();
    m_window->appear();
    m_window->outputSizeX = 64;
    m_window->outputSizeY = 32;
    m_window->open(colourfulPhotograph(), "planet.png");
    QCOMPARE(m_window->ui->label->hasScaledContents(), false);
}

void tst_PreviewNesting::cleanup()
{
    m_window.reset();
}

// Runs the application's event loop as the program does.
// @return its result, -1 when it did not end by itself
int tst_PreviewNesting::runUntilTheEnd(const std::function<void()> &first)
{
    QTimer guard;
    connect(&guard, &QTimer::timeout, [] { QCoreApplication::exit(-1); });
    guard.start(20000);
    QTimer::singleShot(0, m_window.get(), first);
    return QApplication::exec();
}

// Announces something that happens while the next conversion handles its events.
void tst_PreviewNesting::inTheMiddle(const std::function<void()> &act)
{
    QTimer::singleShot(0, m_window.get(), [this, act] {
        ++m_acted;
        act();
    });
}

void tst_PreviewNesting::closingTheMainWindowEndsTheProgram()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(runUntilTheEnd([this] { m_window->close(); }), 0);
    QVERIFY(!m_window->isVisible());
    QFile file(m_window->settingFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("PreviewWindow=true"));
}

void tst_PreviewNesting::closingThePreviewDoesNot()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    bool goesOn = false;
    QCOMPARE(runUntilTheEnd([&] {
                 m_window->previewWindow->close();
                 QTimer::singleShot(50, m_window.get(), [&] {
                     goesOn = m_window->isVisible();
                     m_window->close();
                 });
             }),
             0);
    QVERIFY(goesOn);
}

void tst_PreviewNesting::mainWindowClosedDuringAPreview()
{
    const MessageCollector collector;
    QCOMPARE(runUntilTheEnd([&] {
                 inTheMiddle([&] {
                     QVERIFY(collector.messages().contains("convertImage"));
                     m_window->close();
                 });
                 QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
             }),
             0);
    QCOMPARE(m_acted, 1);
    QVERIFY(!m_window->isVisible());
    QVERIFY(QFile::exists(m_window->settingFile));
    QCOMPARE(collector.messages().filter("Convert error").size(), 1); // it ran to its end
}

// The map is written; the confirmation of a program that is about to end does not wait for anybody.
void tst_PreviewNesting::mainWindowClosedDuringASave()
{
    m_window->format = 1;
    m_window->ui->lineSaveFilename->setText("map.png");
    const QImage expected = referenceMap(*m_window);
    QCOMPARE(runUntilTheEnd([this] {
                 inTheMiddle([this] { m_window->close(); });
                 QTest::mouseClick(m_window->ui->btnConvert, Qt::LeftButton);
             }),
             0);
    QCOMPARE(m_acted, 1);
    COMPARE_IMAGES(QImage(path("map.png")), expected);
}

void tst_PreviewNesting::previewClosedDuringAConversion()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    const QImage before = shownMap(*m_window);
    m_window->azimuth = 90.0;
    inTheMiddle([this] { m_window->previewWindow->close(); });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, 1);
    QVERIFY(!m_window->previewWindow->isVisible());
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
    COMPARE_IMAGES(shownMap(*m_window), before); // whoever is hidden at the end gets nothing
}

void tst_PreviewNesting::previewOpenedDuringAConversion()
{
    const QImage expected = referenceMap(*m_window);
    inTheMiddle([this] { m_window->previewWindow->show(); });
    COMPARE_IMAGES(m_window->convertImage(), expected);
    QCOMPARE(m_acted, 1);
    COMPARE_IMAGES(shownMap(*m_window), expected);
}

// The newer conversion ends first; the older one hands over its map last.
void tst_PreviewNesting::conversionInsideAConversion()
{
    const QImage older = referenceMap(*m_window);
    QImage newer;
    QImage newerShown;
    const MessageCollector collector;
    inTheMiddle([&] {
        m_window->latitude = 45.0;
        newer = referenceMap(*m_window);
        QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
        newerShown = shownMap(*m_window);
    });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, 1);
    QCOMPARE(collector.messages().count("convertImage"), 2);
    QVERIFY(newer != older);
    COMPARE_IMAGES(newerShown, newer);
    COMPARE_IMAGES(shownMap(*m_window), older);
}

void tst_PreviewNesting::photographLoadedDuringAConversion()
{
    const QImage expected = referenceMap(*m_window);
    inTheMiddle([this] { m_window->open(colourfulPhotograph({3, 2}), "tiny.png"); });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, 1);
    COMPARE_IMAGES(shownMap(*m_window), expected);
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewNesting::photographLostDuringAConversion()
{
    const QImage expected = referenceMap(*m_window);
    inTheMiddle([this] {
        ModalDriver driver;
        driver.expectMessage({"開く", path("none.png") + " は開けませんでした", QMessageBox::Warning});
        m_window->loadFileName = path("none.png");
        m_window->loadImage();
        QVERIFY(driver.done());
    });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, 1);
    QVERIFY(m_window->image.isNull());
    COMPARE_IMAGES(shownMap(*m_window), expected);
}

void tst_PreviewNesting::settingsChangedDuringAConversion()
{
    const QImage expected = referenceMap(*m_window);
    inTheMiddle([this] {
        m_window->outputSizeX = -5;
        m_window->outputSizeY = 2147483647;
        m_window->centerX = -2147483647;
        m_window->radius = 2147483647;
        m_window->distance = qQNaN();
        m_window->latitude = m_window->longitude = m_window->azimuth = 33.0;
    });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, 1);
    COMPARE_IMAGES(shownMap(*m_window), expected);
}

void tst_PreviewNesting::saveInsideAConversion()
{
    m_window->format = 1;
    m_window->ui->lineSaveFilename->setText("map.png");
    const QImage expected = referenceMap(*m_window);
    ModalDriver driver;
    driver.expectMessage({"画像変換", path("map.png") + " へ保存されました"});
    inTheMiddle([this] { QTest::mouseClick(m_window->ui->btnConvert, Qt::LeftButton); });
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(driver.done());
    QCOMPARE(m_acted, 1);
    COMPARE_IMAGES(shownMap(*m_window), expected);
    COMPARE_IMAGES(QImage(path("map.png")), expected);
}

void tst_PreviewNesting::manyConversionsInsideEachOther()
{
    constexpr int deepest = 30;
    m_window->azimuth = 0.0;
    const QImage oldest = referenceMap(*m_window);
    const std::function<void()> nest = [&] {
        if (m_acted < deepest)
            inTheMiddle(nest);
        m_window->azimuth += 10.0;
        QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    };
    inTheMiddle(nest);
    const MessageCollector collector;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(m_acted, deepest);
    QCOMPARE(collector.messages().count("convertImage"), deepest + 1);
    COMPARE_IMAGES(shownMap(*m_window), oldest);
}

void tst_PreviewNesting::buttonsPressedDuringAConversion()
{
    m_window->autoPreview = true;
    m_window->ui->actionPreview_Window->trigger();
    inTheMiddle([this] {
        for (int i = 0; i < 5; ++i)
            QTest::mouseClick(m_window->ui->btnUp, Qt::LeftButton);
    });
    QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return);
    QCOMPARE(m_acted, 1);
    QTRY_VERIFY(!m_window->clickTimer->isActive());
    QCOMPARE(m_window->centerY, 31);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

WINDOW_TEST_MAIN(tst_PreviewNesting)
#include "tst_previewnesting.moc"
