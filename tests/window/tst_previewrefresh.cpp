#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "patience.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <functional>

/// What a user does to the window.
using Deed = std::function<void(TestWindow &)>;
Q_DECLARE_METATYPE(Deed)

namespace
{

// The picture is shown 1:1 in these tests, so widget coordinates are photograph pixels. The photograph is
// 96 x 72, its default circle (48, 36) with radius 35.
void drag(TestWindow &window, QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mousePress(window.ui->label, button, Qt::NoModifier, from);
    QMouseEvent move(QEvent::MouseMove, to, window.ui->label->mapToGlobal(to), button, button,
                     Qt::NoModifier);
    QApplication::sendEvent(window.ui->label, &move);
    QTest::mouseRelease(window.ui->label, button, Qt::NoModifier, to);
}

Deed returnIn(QLineEdit *Ui::MainWindow::*edit, const QString &text)
{
    return [edit, text](TestWindow &window) {
        (window.ui.get()->*edit)->setText(text);
        QTest::keyClick(window.ui.get()->*edit, Qt::Key_Return);
    };
}

// A click moves at once; its only tick refreshes.
Deed clickOf(QPushButton *Ui::MainWindow::*button)
{
    return [button](TestWindow &window) {
        QTest::mouseClick(window.ui.get()->*button, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(!window.clickTimer->isActive(), patienceMs);
    };
}

struct NamedDeed {
    const char *name;
    Deed deed;
};

const QVector<NamedDeed> edits{
    {"Return in the centre's x", returnIn(&Ui::MainWindow::lineCenterX, "50")},
    {"Return in the centre's y", returnIn(&Ui::MainWindow::lineCenterY, "30")},
    {"Return in the radius", returnIn(&Ui::MainWindow::lineRadius, "20")},
    {"circle moved",
     [](TestWindow &window) {
         drag(window, {48, 36}, {53, 40});
     }},
    {"circle resized",
     [](TestWindow &window) {
         drag(window, {83, 71}, {78, 66});
     }},
    {"circle drawn",
     [](TestWindow &window) {
         QTest::mouseClick(window.ui->label, Qt::RightButton); // hides the old one
         drag(window, {40, 40}, {55, 50});
     }},
    {"up", clickOf(&Ui::MainWindow::btnUp)},
    {"down", clickOf(&Ui::MainWindow::btnDown)},
    {"left", clickOf(&Ui::MainWindow::btnLeft)},
    {"right", clickOf(&Ui::MainWindow::btnRight)},
    {"larger", clickOf(&Ui::MainWindow::btnSizeUp)},
    {"smaller", clickOf(&Ui::MainWindow::btnSizeDown)},
};

} // namespace

class tst_PreviewRefresh : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void buttonShowsAndConverts();
    void buttonConvertsAgain();
    void viewActionShowsAndHides();
    void viewActionIsTheButton();

    void editConvertsWhenVisibleAndAuto_data();
    void editConvertsWhenVisibleAndAuto();
    void heldButtonConvertsAtEveryTick();
    void noEditNoConversion_data();
    void noEditNoConversion();
    void autoPreviewOnlyRemembers();

    void titleBarUnchecksTheAction();
    void closedPreviewIsConvertedWhenShownAgain();
    void hidingByTheActionKeepsTheMap();
    void autoSizeLeavesThePreviewAlone();

    void mapIsThatOfTheReference_data();
    void mapIsThatOfTheReference();
    void withoutPhotographTheWindowIsShown();
    void withoutPhotographTheLastMapStays();
    void lastMapStaysUntilAConversion();
    void mapWithoutPixelsEmptiesThePreview();
    void mouseInThePreviewHasNoEffect();
    void startUpPassShowsWithoutConverting();

private:
    QString path(const QString &name) const { return m_window->filePath(name); }

    std::unique_ptr<InstalledWindow> m_window;
};

void tst_PreviewRefresh::init()
{
    m_window = std::make_unique<InstalledWindow>();
    m_window->appear();
    m_window->outputSizeX = 64;
    m_window->outputSizeY = 32;
    m_window->open(colourfulPhotograph(), "planet.png");
    QCOMPARE(m_window->ui->label->hasScaledContents(), false);
}

void tst_PreviewRefresh::cleanup()
{
    m_window.reset();
}

void tst_PreviewRefresh::buttonShowsAndConverts()
{
    const MessageCollector collector;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(m_window->ui->actionPreview_Window->isChecked());
    QCOMPARE(collector.messages().filter("onvert").size(), 2);
    QVERIFY(collector.messages().indexOf("on_btnPreview_clicked") <
            collector.messages().indexOf("convertImage"));
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::buttonConvertsAgain()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    m_window->longitude = 77.0;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(m_window->ui->actionPreview_Window->isChecked());
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::viewActionShowsAndHides()
{
    const MessageCollector collector;
    m_window->ui->actionPreview_Window->trigger();
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(m_window->ui->actionPreview_Window->isChecked());
    QCOMPARE(collector.messages().count("convertImage"), 1);
    m_window->ui->actionPreview_Window->trigger();
    QVERIFY(!m_window->previewWindow->isVisible());
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
    QCOMPARE(collector.messages().count("convertImage"), 1);
}

void tst_PreviewRefresh::viewActionIsTheButton()
{
    const MessageCollector collector;
    m_window->ui->actionPreview_Window->trigger();
    QCOMPARE(collector.messages().count("on_btnPreview_clicked"), 1);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::editConvertsWhenVisibleAndAuto_data()
{
    QTest::addColumn<Deed>("edit");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("automatic");
    for (const NamedDeed &edit : edits) {
        for (const bool visible : {false, true}) {
            for (const bool automatic : {false, true})
                QTest::addRow("%s, preview %s, auto %s", edit.name, visible ? "visible" : "hidden",
                              automatic ? "on" : "off")
                    << edit.deed << visible << automatic;
        }
    }
}

void tst_PreviewRefresh::editConvertsWhenVisibleAndAuto()
{
    QFETCH(Deed, edit);
    QFETCH(bool, visible);
    QFETCH(bool, automatic);
    if (automatic)
        m_window->ui->actionAuto_Preview->trigger();
    if (visible)
        m_window->ui->actionPreview_Window->trigger();
    const int before[] = {m_window->centerX, m_window->centerY, m_window->radius};
    const QImage shownBefore = shownMap(*m_window);

    const MessageCollector collector;
    edit(*m_window);
    const int after[] = {m_window->centerX, m_window->centerY, m_window->radius};
    QVERIFY(!std::equal(std::begin(before), std::end(before), std::begin(after)));
    QCOMPARE(collector.messages().count("updatePreview"), 1);
    QCOMPARE(collector.messages().count("convertImage"), visible && automatic ? 1 : 0);
    COMPARE_IMAGES(shownMap(*m_window), visible && automatic ? referenceMap(*m_window) : shownBefore);
}

void tst_PreviewRefresh::heldButtonConvertsAtEveryTick()
{
    m_window->autoPreview = true;
    m_window->previewWindow->setAttribute(Qt::WA_ShowWithoutActivating); // a button without focus goes up
    m_window->previewWindow->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window->previewWindow.get()));
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    const MessageCollector collector;
    QTest::mousePress(m_window->ui->btnLeft, Qt::LeftButton);
    m_window->stepDelay = 1; // the rest of the first second
    QTRY_COMPARE_WITH_TIMEOUT(m_window->centerX, 46, patienceMs);
    QTest::mouseRelease(m_window->ui->btnLeft, Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->clickTimer->isActive(), patienceMs);
    const int ticks = collector.messages().count("click_timer()");
    QVERIFY(ticks >= 4); // one waiting, two stepping, one after the click
    QCOMPARE(collector.messages().count("convertImage"), ticks);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::noEditNoConversion_data()
{
    QTest::addColumn<Deed>("deed");
    QTest::newRow("circle toggled") << Deed(
        [](TestWindow &window) { QTest::mouseClick(window.ui->label, Qt::RightButton); });
    QTest::newRow("circle removed") << Deed([](TestWindow &window) {
        QTest::mouseClick(window.ui->label, Qt::LeftButton, Qt::NoModifier, {95, 3});
        QVERIFY(!window.selectShow);
    });
    QTest::newRow("circle reset") << Deed(
        [](TestWindow &window) { window.ui->actionParam_Reset->trigger(); });
    QTest::newRow("another photograph") << Deed([](TestWindow &window) { window.loadImage(); });
    QTest::newRow("size toggled") << Deed([](TestWindow &window) { window.ui->actionAuto_Size->trigger(); });
    QTest::newRow("mouse moved over the picture") << Deed([](TestWindow &window) {
        QTest::mouseMove(window.ui->label, {48, 36});
    });
    QTest::newRow("text typed without Return")
        << Deed([](TestWindow &window) { QTest::keyClicks(window.ui->lineCenterX, "12"); });
    QTest::newRow("file name typed") << Deed(
        [](TestWindow &window) { QTest::keyClick(window.ui->lineSaveFilename, Qt::Key_Return); });
}

void tst_PreviewRefresh::noEditNoConversion()
{
    QFETCH(Deed, deed);
    m_window->autoPreview = true;
    m_window->ui->actionPreview_Window->trigger();
    const QImage before = shownMap(*m_window);
    const MessageCollector collector;
    deed(*m_window);
    QCOMPARE(collector.messages().count("convertImage"), 0);
    COMPARE_IMAGES(shownMap(*m_window), before);
}

void tst_PreviewRefresh::autoPreviewOnlyRemembers()
{
    m_window->previewWindow->show();
    const MessageCollector collector;
    for (const bool on : {true, false, true}) {
        m_window->ui->actionAuto_Preview->trigger();
        QCOMPARE(m_window->ui->actionAuto_Preview->isChecked(), on);
        QCOMPARE(m_window->autoPreview, on);
    }
    QCOMPARE(collector.messages(), QStringList());
}

void tst_PreviewRefresh::titleBarUnchecksTheAction()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(m_window->previewWindow->close());
    QVERIFY(!m_window->previewWindow->isVisible());
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
    QVERIFY(m_window->isVisible());
}

void tst_PreviewRefresh::closedPreviewIsConvertedWhenShownAgain()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    m_window->previewWindow->close();
    m_window->azimuth = 90.0;
    m_window->ui->actionPreview_Window->trigger();
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(m_window->ui->actionPreview_Window->isChecked());
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::hidingByTheActionKeepsTheMap()
{
    m_window->ui->actionPreview_Window->trigger();
    const QImage before = shownMap(*m_window);
    m_window->ui->actionPreview_Window->trigger();
    m_window->azimuth = 90.0;
    m_window->convertImage(); // not shown
    COMPARE_IMAGES(shownMap(*m_window), before);
}

void tst_PreviewRefresh::autoSizeLeavesThePreviewAlone()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    const auto *preview = m_window->previewWindow->findChild<QLabel *>("label2");
    const QImage before = m_window->previewWindow->grab().toImage();
    for (const bool on : {true, false, true}) {
        m_window->ui->actionAuto_Size->trigger();
        QCOMPARE(m_window->autoSize, on);
        QCOMPARE(m_window->ui->label->hasScaledContents(), on);
        QCOMPARE(m_window->ui->label->minimumSize(), on ? QSize(320, 240) : QSize(0, 0));
        QVERIFY(preview->hasScaledContents());
        QCOMPARE(preview->minimumSize(), QSize(320, 240));
        COMPARE_IMAGES(m_window->previewWindow->grab().toImage(), before);
    }
}

void tst_PreviewRefresh::mapIsThatOfTheReference_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("azimuth");
    QTest::newRow("as it comes") << QSize(64, 32) << 100.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("odd size") << QSize(101, 51) << 6.6 << 35.7 << 139.7 << 25.0;
    QTest::newRow("one pixel") << QSize(1, 1) << 100.0 << 0.0 << 0.0 << 0.0;
    QTest::newRow("one row") << QSize(64, 1) << 100.0 << 10.0 << 20.0 << 30.0;
    QTest::newRow("shift smaller than a pixel") << QSize(64, 32) << 100.0 << 0.0 << -89.9 << 0.0;
    QTest::newRow("nothing is seen") << QSize(64, 32) << 0.5 << 0.0 << 0.0 << 0.0;
    QTest::newRow("no numbers") << QSize(64, 32) << qQNaN() << qQNaN() << qQNaN() << qQNaN();
    QTest::newRow("without end") << QSize(64, 32) << qInf() << qInf() << -qInf() << qInf();
}

void tst_PreviewRefresh::mapIsThatOfTheReference()
{
    QFETCH(QSize, size);
    QFETCH(double, distance);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, azimuth);
    m_window->outputSizeX = size.width();
    m_window->outputSizeY = size.height();
    m_window->distance = distance;
    m_window->latitude = latitude;
    m_window->longitude = longitude;
    m_window->azimuth = azimuth;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QCOMPARE(shownMap(*m_window).size(), size);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
    QCOMPARE(m_window->ratioX, size.width() / 96.0);
    QCOMPARE(m_window->ratioY, size.height() * 0.5 / 72);
}

void tst_PreviewRefresh::withoutPhotographTheWindowIsShown()
{
    m_window->image = QImage();
    const MessageCollector collector;
    ModalDriver driver;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(driver.done());
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(m_window->ui->actionPreview_Window->isChecked());
    QVERIFY(shownMap(*m_window).isNull());
    QVERIFY(m_window->convertImage().isNull());
    QCOMPARE(collector.messages().count("convertImage"), 2);
    QVERIFY(!m_window->previewWindow->grab().isNull());
}

void tst_PreviewRefresh::withoutPhotographTheLastMapStays()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    const QImage before = shownMap(*m_window);
    m_window->image = QImage();
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    COMPARE_IMAGES(shownMap(*m_window), before);
}

void tst_PreviewRefresh::lastMapStaysUntilAConversion()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    const QImage before = shownMap(*m_window);
    m_window->open(colourfulPhotograph({50, 40}), "other.png");
    m_window->latitude = 12.0;
    QApplication::processEvents();
    COMPARE_IMAGES(shownMap(*m_window), before);
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

void tst_PreviewRefresh::mapWithoutPixelsEmptiesThePreview()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    m_window->outputSizeX = 0;
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    QVERIFY(shownMap(*m_window).isNull());
    QVERIFY(!m_window->previewWindow->grab().isNull());
    QTest::mouseClick(m_window->previewWindow->findChild<QLabel *>("label2"), Qt::LeftButton);
}

void tst_PreviewRefresh::mouseInThePreviewHasNoEffect()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    auto *preview = m_window->previewWindow->findChild<QLabel *>("label2");
    const QImage before = shownMap(*m_window);
    const MessageCollector collector;
    QTest::mousePress(preview, Qt::LeftButton, Qt::NoModifier, {10, 10});
    QTest::mouseMove(preview, {40, 40});
    QTest::mouseRelease(preview, Qt::LeftButton, Qt::NoModifier, {40, 40});
    QTest::mouseClick(preview, Qt::RightButton);
    QCOMPARE(collector.messages(), QStringList());
    QVERIFY(m_window->selectShow);
    QCOMPARE(m_window->centerX, 48);
    COMPARE_IMAGES(shownMap(*m_window), before);
}

void tst_PreviewRefresh::startUpPassShowsWithoutConverting()
{
    m_window->previewShow = true;
    m_window->autoPreview = true;
    const MessageCollector collector;
    m_window->slot("timeout");
    QVERIFY(m_window->previewWindow->isVisible());
    QVERIFY(!m_window->image.isNull());
    QCOMPARE(collector.messages().count("convertImage"), 0);
    QVERIFY(shownMap(*m_window).isNull());
    edits.first().deed(*m_window);
    QCOMPARE(collector.messages().count("convertImage"), 1);
    COMPARE_IMAGES(shownMap(*m_window), referenceMap(*m_window));
}

WINDOW_TEST_MAIN(tst_PreviewRefresh)
#include "tst_previewrefresh.moc"
