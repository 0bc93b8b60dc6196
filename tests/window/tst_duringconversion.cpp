#include "circlewindow.h"
#include "duringconversion.h"
#include "imagecompare.h"
#include "modaldriver.h"
#include "option.h"
#include "patience.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <QFileDialog>
#include <QLineEdit>

using Disturbance = std::function<void(CircleWindow &)>;
Q_DECLARE_METATYPE(Disturbance)

namespace
{

/// The deepest nesting of conversions, by their first and last debug lines.
int deepestNesting(const QStringList &messages)
{
    int depth = 0;
    int deepest = 0;
    for (const QString &message : messages) {
        if (message == "convertImage")
            deepest = std::max(deepest, ++depth);
        else if (message.startsWith("Convert error"))
            --depth;
    }
    return deepest;
}

void answerBox(QMessageBox *box)
{
    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
}

void hostileValues(CircleWindow &window)
{
    window.outputSizeX = -5;
    window.outputSizeY = 2147483647;
    window.centerX = -2147483647;
    window.radius = 2147483647;
    window.distance = qQNaN();
    window.latitude = window.longitude = window.azimuth = 33.0;
}

} // namespace

/// Whatever happens inside an event that a conversion handles: its map is the one of the photograph and the
/// values that it was started with.
class tst_DuringConversion : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void mapIsTheOneOfTheStart_data();
    void mapIsTheOneOfTheStart();
    void previewShowsTheMapOfTheStart_data();
    void previewShowsTheMapOfTheStart();
    void nextPreviewShowsTheNewPhotograph();
    void innerConversionHasItsOwnMap();
    void olderConversionShowsItsMapLast();
    void quickPressesNest();
    void pressedButtonsAreCaughtUp();
    void deepNestsKeepTheirPhotographs();
    void deepNestsShowTheOldestMapLast();
    void closedPreviewGetsNoMap();
    void openedPreviewGetsTheMap();

private:
    QImage convertWith(const std::function<void()> &disturbance);
    void previewWith(const std::function<void()> &disturbance);
    void clickPreview() { QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton); }

    std::unique_ptr<CircleWindow> m_window;
};

void tst_DuringConversion::init()
{
    m_window = std::make_unique<CircleWindow>();
    m_window->longitude = 25.0;
    m_window->azimuth = 40.0;
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionPreview_Window->trigger();
}

void tst_DuringConversion::cleanup()
{
    m_window.reset();
}

QImage tst_DuringConversion::convertWith(const std::function<void()> &disturbance)
{
    QImage map;
    if (!duringConversion(
            m_window.get(), [&] { map = m_window->convertImage(); }, disturbance))
        QTest::qFail("nothing happened during the conversion", __FILE__, __LINE__);
    return map;
}

void tst_DuringConversion::previewWith(const std::function<void()> &disturbance)
{
    QVERIFY(duringConversion(
        m_window.get(), [&] { clickPreview(); }, disturbance));
}

void tst_DuringConversion::mapIsTheOneOfTheStart_data()
{
    QTest::addColumn<Disturbance>("disturbance");
    const auto row = [](const char *name, const Disturbance &disturbance) {
        QTest::newRow(name) << disturbance;
    };
    row("another photograph", [](CircleWindow &w) {
        w.open(QImage(colourfulPhotograph({64, 48})).mirrored());
    });
    row("a photograph that cannot be loaded", [](CircleWindow &w) {
        ModalDriver driver;
        driver.expect<QMessageBox>(answerBox);
        w.loadFileName = w.filePath("missing.png");
        w.loadImage();
        QVERIFY(driver.done());
        QVERIFY(w.image.isNull());
    });
    row("no photograph any more", [](CircleWindow &w) { w.image = QImage(); });
    row("typed circle", [](CircleWindow &w) {
        w.ui->lineRadius->setText("2147483647");
        QTest::keyClick(w.ui->lineRadius, Qt::Key_Return);
    });
    row("moved circle", [](CircleWindow &w) {
        w.press({200, 200});
        w.moveTo({230, 220});
        w.release({230, 220});
    });
    row("resized circle", [](CircleWindow &w) {
        w.press({300, 300});
        w.moveTo({250, 250});
        w.release({250, 250});
    });
    row("toggled circle", [](CircleWindow &w) { w.click({50, 50}, Qt::RightButton); });
    row("removed circle, new circle", [](CircleWindow &w) {
        w.click({350, 350});
        w.press({100, 100});
        w.moveTo({150, 150});
        w.release({150, 150});
    });
    row("reset circle", [](CircleWindow &w) { w.ui->actionParam_Reset->trigger(); });
    row("buttons", [](CircleWindow &w) {
        for (const QPushButton *button : {w.ui->btnUp, w.ui->btnLeft, w.ui->btnSizeDown})
            w.mouse(QTest::MouseClick, button, {10, 10});
        w.slot("click_timer");
    });
    row("parameter file", [](CircleWindow &w) {
        w.saveSetting();
        w.radius = 3;
        ModalDriver driver;
        driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, w.settingFile); });
        w.ui->actionLoad_Param->trigger();
        QVERIFY(driver.done());
    });
    row("options", [](CircleWindow &w) {
        ModalDriver driver;
        driver.expect<Option>([](Option *option) {
            QTest::mouseClick(option->findChild<QPushButton *>("btnDefault"), Qt::LeftButton);
            QTest::mouseClick(option->findChild<QPushButton *>("btnOk"), Qt::LeftButton);
        });
        w.ui->actionSetting->trigger();
        QVERIFY(driver.done());
        QCOMPARE(w.outputSizeX, 2048);
    });
    row("other size of the picture", [](CircleWindow &w) {
        w.ui->actionAuto_Size->trigger();
        w.resize(800, 700);
        w.repaint();
    });
    row("preview closed", [](CircleWindow &w) { w.previewWindow->close(); });
    row("preview closed and opened", [](CircleWindow &w) {
        w.previewWindow->close();
        w.ui->actionPreview_Window->trigger();
    });
    row("window closed", [](CircleWindow &w) { w.close(); });
    row("window closed and shown", [](CircleWindow &w) {
        w.close();
        w.show();
    });
    row("values of every kind", hostileValues);
    row("batch run", [](CircleWindow &w) {
        w.fileList = QStringList{w.filePath("photo.png"), w.filePath("missing.png"), w.filePath("photo.png")};
        w.outputFolder = w.filePath("");
        ModalDriver driver;
        driver.expect<QMessageBox>(answerBox);
        w.batchConvert();
        QVERIFY(driver.done());
        QVERIFY(w.image.isNull());
    });
}

void tst_DuringConversion::mapIsTheOneOfTheStart()
{
    QFETCH(Disturbance, disturbance);
    const QImage expected = referenceMap(*m_window);
    COMPARE_IMAGES(convertWith([&] { disturbance(*m_window); }), expected);
    // Nothing of it is left behind.
    m_window->outputSizeX = 64;
    m_window->outputSizeY = 32;
    COMPARE_IMAGES(m_window->convertImage(), referenceMap(*m_window));
    m_window->open(colourfulPhotograph({420, 410}));
    m_window->setCircle(CircleWindow::firstCircle);
    COMPARE_IMAGES(m_window->convertImage(), referenceMap(*m_window));
}

void tst_DuringConversion::previewShowsTheMapOfTheStart_data()
{
    QTest::addColumn<Disturbance>("disturbance");
    QTest::newRow("another photograph") << Disturbance([](CircleWindow &w) {
        w.open(colourfulPhotograph({3, 2}), "tiny.png");
    });
    QTest::newRow("a photograph that cannot be loaded") << Disturbance([](CircleWindow &w) {
        ModalDriver driver;
        driver.expectMessage({"開く", w.filePath("none.png") + " は開けませんでした", QMessageBox::Warning});
        w.loadFileName = w.filePath("none.png");
        w.loadImage();
        QVERIFY(driver.done());
        QVERIFY(w.image.isNull());
    });
    QTest::newRow("values of every kind") << Disturbance(hostileValues);
}

void tst_DuringConversion::previewShowsTheMapOfTheStart()
{
    QFETCH(Disturbance, disturbance);
    const QImage expected = referenceMap(*m_window);
    previewWith([&] { disturbance(*m_window); });
    COMPARE_IMAGES(shownMap(*m_window), expected);
}

void tst_DuringConversion::nextPreviewShowsTheNewPhotograph()
{
    previewWith([this] { m_window->open(colourfulPhotograph({3, 2}), "tiny.png"); });
    clickPreview();
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_DuringConversion::innerConversionHasItsOwnMap()
{
    const QImage outer = referenceMap(*m_window);
    const QImage map = convertWith([&] {
        m_window->open(colourfulPhotograph({300, 200}).mirrored());
        m_window->setCircle({150, 100, 90});
        m_window->latitude = 60;
        m_window->outputSizeX = 80;
        const QImage inner = m_window->convertImage();
        COMPARE_IMAGES(inner, referenceMap(*m_window));
        COMPARE_IMAGES(shownMap(*m_window), inner);
    });
    COMPARE_IMAGES(map, outer);
}

// The newer conversion ends first; the older one hands over its map last.
void tst_DuringConversion::olderConversionShowsItsMapLast()
{
    const QImage older = referenceMap(*m_window);
    QImage newer;
    QImage newerShown;
    const MessageCollector collector;
    previewWith([&] {
        m_window->setCircle({100, 150, 60});
        m_window->latitude = 45.0;
        newer = referenceMap(*m_window);
        clickPreview();
        newerShown = shownMap(*m_window);
    });
    QCOMPARE(collector.messages().count("convertImage"), 2);
    QVERIFY(newer != older);
    COMPARE_IMAGES(newerShown, newer);
    COMPARE_IMAGES(shownMap(*m_window), older);
}

// Every press gives the timer a new id, so its tick comes although the last one has not returned.
void tst_DuringConversion::quickPressesNest()
{
    const QImage first = referenceMap(*m_window);
    const MessageCollector collector;
    int presses = 0;
    QTimer next; // comes after the tick that it has caused, in the middle of that tick's conversion
    next.setSingleShot(true);
    const auto press = [&] {
        m_window->clickTimer->stop();
        if (presses == 5)
            return;
        ++presses;
        emit m_window->ui->btnRight->pressed();
        m_window->stepDelay = 0;
        m_window->clickTimer->start(0);
        next.start(0);
    };
    connect(&next, &QTimer::timeout, this, press);
    const QImage map = convertWith(press);
    QCOMPARE(presses, 5);
    QCOMPARE(deepestNesting(collector.messages()), 6);
    QCOMPARE(circleOf(*m_window), SelectionCircle({205, 200, 100}));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{205, 200, 100}));
    COMPARE_IMAGES(map, first);
    COMPARE_IMAGES(shownMap(*m_window), first);
}

void tst_DuringConversion::pressedButtonsAreCaughtUp()
{
    const auto convert = [this] { QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return); };
    QVERIFY(duringConversion(m_window.get(), convert, [this] {
        for (int i = 0; i < 5; ++i)
            QTest::mouseClick(m_window->ui->btnUp, Qt::LeftButton);
    }));
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->clickTimer->isActive(), patienceMs);
    QCOMPARE(m_window->centerY, 195);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_DuringConversion::deepNestsKeepTheirPhotographs()
{
    const QImage first = referenceMap(*m_window);
    int depth = 0;
    std::function<void()> convertAgain = [&] {
        if (++depth == 60)
            return;
        m_window->open(colourfulPhotograph({40 + depth, 30}));
        const QImage expected = referenceMap(*m_window);
        QTimer::singleShot(0, m_window.get(), [&] { convertAgain(); });
        COMPARE_IMAGES(m_window->convertImage(), expected);
    };
    COMPARE_IMAGES(convertWith(convertAgain), first);
    QCOMPARE(depth, 60);
}

void tst_DuringConversion::deepNestsShowTheOldestMapLast()
{
    constexpr int deepest = 30;
    m_window->azimuth = 0.0;
    const QImage oldest = referenceMap(*m_window);
    const MessageCollector collector;
    int depth = 0;
    const std::function<void()> nest = [&] {
        ++depth;
        m_window->azimuth += 10.0;
        if (depth < deepest)
            previewWith(nest);
        else
            clickPreview();
    };
    previewWith(nest);
    QCOMPARE(depth, deepest);
    QCOMPARE(collector.messages().count("convertImage"), deepest + 1);
    COMPARE_IMAGES(shownMap(*m_window), oldest);
}

// Whoever is hidden at the end gets nothing.
void tst_DuringConversion::closedPreviewGetsNoMap()
{
    const QImage before = shownMap(*m_window);
    m_window->longitude = 90;
    const QImage map = convertWith([&] { m_window->previewWindow->close(); });
    QVERIFY(map != before);
    QVERIFY(!m_window->previewWindow->isVisible());
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
    COMPARE_IMAGES(shownMap(*m_window), before);

    m_window->ui->actionPreview_Window->trigger();
    const QImage again = shownMap(*m_window);
    m_window->azimuth = 90.0;
    previewWith([&] { m_window->previewWindow->close(); });
    QVERIFY(!m_window->previewWindow->isVisible());
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
    COMPARE_IMAGES(shownMap(*m_window), again);
}

void tst_DuringConversion::openedPreviewGetsTheMap()
{
    m_window->previewWindow->close();
    m_window->longitude = 90;
    const QImage expected = referenceMap(*m_window);
    QVERIFY(shownMap(*m_window) != expected);
    COMPARE_IMAGES(convertWith([&] { m_window->previewWindow->show(); }), expected);
    COMPARE_IMAGES(shownMap(*m_window), expected);
}

WINDOW_TEST_MAIN(tst_DuringConversion)
#include "tst_duringconversion.moc"
