#include "duringconversion.h"
#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <QFile>
#include <QTimer>

#include <functional>

/// Which closed window ends the program, and what is finished before.
class tst_Closing : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void closingTheMainWindowEndsTheProgram();
    void closingThePreviewDoesNotEndIt();
    void closingDuringAPreviewFinishesTheMap();
    void closingDuringASaveWritesTheMap();

private:
    int runUntilTheEnd(const std::function<void()> &first);

    std::unique_ptr<InstalledWindow> m_window;
};

void tst_Closing::init()
{
    m_window = std::make_unique<InstalledWindow>();
    m_window->appear();
    m_window->outputSizeX = 64;
    m_window->outputSizeY = 32;
    m_window->open(colourfulPhotograph(), "planet.png");
    QCOMPARE(m_window->ui->label->hasScaledContents(), false);
}

void tst_Closing::cleanup()
{
    m_window.reset();
}

// Runs the application's event loop as the program does.
// @return its result, -1 when it did not end by itself
int tst_Closing::runUntilTheEnd(const std::function<void()> &first)
{
    QTimer guard;
    connect(&guard, &QTimer::timeout, [] { QCoreApplication::exit(-1); });
    guard.start(20000);
    QTimer::singleShot(0, m_window.get(), first);
    return QApplication::exec();
}

void tst_Closing::closingTheMainWindowEndsTheProgram()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(runUntilTheEnd([this] { m_window->close(); }), 0);
    QVERIFY(!m_window->isVisible());
    QFile file(m_window->settingFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("PreviewWindow=true"));
}

void tst_Closing::closingThePreviewDoesNotEndIt()
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

void tst_Closing::closingDuringAPreviewFinishesTheMap()
{
    const MessageCollector collector;
    bool closed = false;
    const auto preview = [this] { QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton); };
    const auto close = [&] {
        QVERIFY(collector.messages().contains("convertImage"));
        m_window->close();
    };
    QCOMPARE(runUntilTheEnd([&] { closed = duringConversion(m_window.get(), preview, close); }), 0);
    QVERIFY(closed);
    QVERIFY(!m_window->isVisible());
    QVERIFY(QFile::exists(m_window->settingFile));
    QCOMPARE(collector.messages().filter("Convert error").size(), 1); // it ran to its end
}

// The map is written; the confirmation of a program that is about to end does not wait for anybody.
void tst_Closing::closingDuringASaveWritesTheMap()
{
    m_window->format = 1;
    m_window->ui->lineSaveFilename->setText("map.png");
    const QImage expected = referenceMap(*m_window);
    bool closed = false;
    const auto save = [this] { QTest::mouseClick(m_window->ui->btnConvert, Qt::LeftButton); };
    QCOMPARE(runUntilTheEnd(
                 [&] { closed = duringConversion(m_window.get(), save, [this] { m_window->close(); }); }),
             0);
    QVERIFY(closed);
    COMPARE_IMAGES(QImage(m_window->filePath("map.png")), expected);
}

WINDOW_TEST_MAIN(tst_Closing)
#include "tst_closing.moc"
