#include "circlewindow.h"
#include "imagecompare.h"
#include "modaldriver.h"
#include "option.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>

using Disturbance = std::function<void(CircleWindow &)>;
Q_DECLARE_METATYPE(Disturbance)

namespace
{

/// Does something from an event that the next conversion handles.
class InTheMiddle
{
public:
    InTheMiddle(QObject *context, const std::function<void()> &action)
    {
        QTimer::singleShot(0, context, [this, action] {
            if (!converting)
                return;
            action();
            done = true;
        });
    }

    bool converting = false; ///< the conversion runs
    bool done = false;       ///< the action was through before the conversion was
};

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

} // namespace

/// Whatever happens inside an event that a conversion handles: its map is the one of the photograph and the
/// values that it was started with.
class tst_Reentrancy : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void mapIsTheOneOfTheStart_data();
    void mapIsTheOneOfTheStart();
    void innerConversionHasItsOwnMap();
    void olderConversionShowsItsMapLast();
    void quickPressesNest();
    void conversionsNestDeeply();
    void savedMapIsTheOneOfTheStart();
    void savingGoesToThePathOfTheStart();
    void closingInTheMiddleOfASave();
    void closedPreviewGetsNoMap();
    void photographChangesDuringADrag();
    void photographVanishesDuringADrag();

private:
    QImage convertWith(const std::function<void()> &disturbance);

    std::unique_ptr<CircleWindow> m_window;
};

void tst_Reentrancy::init()
{
    m_window = std::make_unique<CircleWindow>();
    m_window->longitude = 25.0;
    m_window->azimuth = 40.0;
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionPreview_Window->trigger();
}

void tst_Reentrancy::cleanup()
{
    m_window.reset();
}

QImage tst_Reentrancy::convertWith(const std::function<void()> &disturbance)
{
    InTheMiddle middle(m_window.get(), disturbance);
    middle.converting = true;
    const QImage map = m_window->convertImage();
    middle.converting = false;
    if (!middle.done)
        QTest::qFail("nothing happened in the middle", __FILE__, __LINE__);
    return map;
}

void tst_Reentrancy::mapIsTheOneOfTheStart_data()
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

void tst_Reentrancy::mapIsTheOneOfTheStart()
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

void tst_Reentrancy::innerConversionHasItsOwnMap()
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

void tst_Reentrancy::olderConversionShowsItsMapLast()
{
    const QImage outer = referenceMap(*m_window);
    convertWith([&] {
        m_window->setCircle({100, 150, 60});
        m_window->ui->btnPreview->click();
        QVERIFY(shownMap(*m_window) != outer);
    });
    COMPARE_IMAGES(shownMap(*m_window), outer);
}

// Every press gives the timer a new id, so its tick comes although the last one has not returned.
void tst_Reentrancy::quickPressesNest()
{
    const QImage first = referenceMap(*m_window);
    const MessageCollector collector;
    int presses = 0;
    QTimer hand; // comes after the tick that it has caused, in the middle of that tick's conversion
    hand.setSingleShot(true);
    const auto press = [&] {
        m_window->clickTimer->stop();
        if (presses == 5)
            return;
        ++presses;
        emit m_window->ui->btnRight->pressed();
        m_window->stepDelay = 0;
        m_window->clickTimer->start(0);
        hand.start(0);
    };
    connect(&hand, &QTimer::timeout, this, press);
    const QImage map = convertWith(press);
    QCOMPARE(presses, 5);
    QCOMPARE(deepestNesting(collector.messages()), 6);
    QCOMPARE(circleOf(*m_window), SelectionCircle({205, 200, 100}));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{205, 200, 100}));
    COMPARE_IMAGES(map, first);
    COMPARE_IMAGES(shownMap(*m_window), first);
}

void tst_Reentrancy::conversionsNestDeeply()
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

void tst_Reentrancy::savedMapIsTheOneOfTheStart()
{
    m_window->format = 1;
    m_window->ui->lineSaveFilename->setText("map.png");
    const QImage expected = referenceMap(*m_window);
    ModalDriver driver;
    driver.expectMessage(
        {m_window->ui->btnConvert->text(), m_window->filePath("map.png") + " へ保存されました"});
    InTheMiddle middle(m_window.get(), [&] { m_window->open(colourfulPhotograph({64, 48})); });
    middle.converting = true;
    m_window->ui->btnConvert->click();
    QVERIFY(driver.done());
    QVERIFY(middle.done);
    COMPARE_IMAGES(QImage(m_window->filePath("map.png")), expected);
}

void tst_Reentrancy::savingGoesToThePathOfTheStart()
{
    m_window->ui->lineSaveFilename->setText("first.jpg");
    ModalDriver driver;
    driver.expectMessage(
        {m_window->ui->btnConvert->text(), m_window->filePath("first.jpg") + " へ保存されました"});
    InTheMiddle middle(m_window.get(), [&] {
        m_window->ui->lineSaveFilename->setText("second.jpg");
        m_window->saveFileName = m_window->filePath("second.jpg");
    });
    middle.converting = true;
    m_window->ui->btnConvert->click();
    QVERIFY(driver.done());
    QVERIFY(middle.done);
    QVERIFY(QFile::exists(m_window->filePath("first.jpg")));
    QVERIFY(!QFile::exists(m_window->filePath("second.jpg")));
}

void tst_Reentrancy::closingInTheMiddleOfASave()
{
    m_window->format = 1;
    m_window->ui->lineSaveFilename->setText("map.png");
    const QImage expected = referenceMap(*m_window);
    ModalDriver driver;
    driver.expect<QMessageBox>(answerBox);
    InTheMiddle middle(m_window.get(), [&] {
        m_window->close();
        m_window->previewWindow->close();
    });
    middle.converting = true;
    m_window->ui->btnConvert->click();
    QVERIFY(driver.done());
    QVERIFY(middle.done);
    QVERIFY(QFile::exists(m_window->settingFile));
    COMPARE_IMAGES(QImage(m_window->filePath("map.png")), expected);
}

void tst_Reentrancy::closedPreviewGetsNoMap()
{
    const QImage before = shownMap(*m_window);
    m_window->longitude = 90;
    const QImage map = convertWith([&] { m_window->previewWindow->close(); });
    QVERIFY(map != before);
    COMPARE_IMAGES(shownMap(*m_window), before);
    QVERIFY(!m_window->ui->actionPreview_Window->isChecked());
}

void tst_Reentrancy::photographChangesDuringADrag()
{
    m_window->press({200, 200});
    m_window->moveTo({220, 220});
    m_window->open(colourfulPhotograph({150, 90}));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
    m_window->moveTo({230, 240});
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{230, 240, 100}));
    m_window->release({210, 205});
    QCOMPARE(circleOf(*m_window), SelectionCircle({210, 205, 100}));
}

void tst_Reentrancy::photographVanishesDuringADrag()
{
    m_window->press({200, 200});
    m_window->moveTo({220, 220});
    ModalDriver driver;
    driver.expect<QMessageBox>(answerBox);
    m_window->loadFileName = m_window->filePath("missing.png");
    m_window->loadImage();
    QVERIFY(driver.done());
    m_window->moveTo({230, 240});
    m_window->release({230, 240});
    QVERIFY(m_window->ui->label->leftDown); // the flags wait for the next release
    QVERIFY(m_window->moving);
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    QVERIFY(m_window->shownPicture().isNull());

    m_window->open(colourfulPhotograph({420, 410}));
    m_window->moveTo({210, 205}); // the drag goes on without a button
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{210, 205, 100}));
    m_window->click({200, 200});
    QVERIFY(!m_window->ui->label->leftDown);
    QVERIFY(!m_window->moving);
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
}

WINDOW_TEST_MAIN(tst_Reentrancy)
#include "tst_reentrancy.moc"
