#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "option.h"
#include "previewwindow.h"

#include <QComboBox>
#include <QDialog>
#include <QFile>
#include <QLineEdit>

#include <functional>
#include <limits>

Q_DECLARE_METATYPE(std::function<void(Option *)>)

namespace
{

constexpr SelectionCircle aCircle{120, 80, 40};

QString textOf(const Option *option, const char *edit)
{
    return option->findChild<QLineEdit *>(edit)->text();
}

void type(const Option *option, const char *edit, const QString &text)
{
    option->findChild<QLineEdit *>(edit)->setText(text);
}

void press(const Option *option, const char *button)
{
    QTest::mouseClick(option->findChild<QPushButton *>(button), Qt::LeftButton);
}

/// Everything that the dialog edits.
struct Values {
    double distance = 6.6;
    int outputSizeX = 1536;
    int outputSizeY = 1100;
    int quality = 70;
    int format = 1;
    double latitude = -12.5;
    double longitude = 140.25;
    double azimuth = 33.0;
    int penSize = 5;
    QColor penColor = QColor(0x12, 0xab, 0x34, 0x80);

    friend bool operator==(const Values &a, const Values &b)
    {
        return a.distance == b.distance && a.outputSizeX == b.outputSizeX && a.outputSizeY == b.outputSizeY &&
               a.quality == b.quality && a.format == b.format && a.latitude == b.latitude &&
               a.longitude == b.longitude && a.azimuth == b.azimuth && a.penSize == b.penSize &&
               a.penColor == b.penColor;
    }
};

Values valuesOf(const TestWindow &w)
{
    return {w.distance, w.outputSizeX, w.outputSizeY, w.quality, w.format,
            w.latitude, w.longitude,   w.azimuth,     w.penSize, w.penColor};
}

void setValues(TestWindow &w, const Values &v)
{
    w.distance = v.distance;
    w.outputSizeX = v.outputSizeX;
    w.outputSizeY = v.outputSizeY;
    w.quality = v.quality;
    w.format = v.format;
    w.latitude = v.latitude;
    w.longitude = v.longitude;
    w.azimuth = v.azimuth;
    w.penSize = v.penSize;
    w.penColor = v.penColor;
}

void typeOtherValues(const Option *option)
{
    type(option, "lineDistance", "42.5");
    type(option, "lineOutputSizeX", "4096");
    type(option, "lineOutputSizeY", "8192");
    option->findChild<QComboBox *>("cbFormat")->setCurrentIndex(0);
    type(option, "lineQuality", "100");
    type(option, "lineSize", "32");
    type(option, "lineColor", "#400000FF");
    type(option, "lineLatitude", "90");
    type(option, "lineLongitude", "-180");
    type(option, "lineAzimuth", "359.25");
}

const Values otherValues{42.5, 4096, 8192, 100, 0, 90.0, -180.0, 359.25, 32, QColor(0, 0, 255, 0x40)};

} // namespace

/// The options dialog as the main window opens it.
class tst_WindowOptions : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dialogShowsTheWindowsValues();
    void dialogBelongsToTheWindow();
    void textsComeFromTheLanguageFile();
    void okTakesEveryValue();
    void rejectionLeavesEveryValue_data();
    void rejectionLeavesEveryValue();
    void refusedValuesNeverArrive();
    void cancelAfterDefaultsKeepsEveryValue();
    void okAfterDefaultsTakesThem();
    void sixDigitsAreWhatComesBack();
    void hostileValuesAreShown();
    void circleIsDrawnWithTheNewPen();
    void hiddenCircleStaysHidden();
    void unparsableColourMakesThePenInvalid_data();
    void unparsableColourMakesThePenInvalid();
    void nothingElseIsUpdated();
    void valuesAreTakenWithoutAPhotograph();

private:
    void withDialog(const std::function<void(Option *)> &act);

    std::unique_ptr<FreshWindow> m_window;
};

void tst_WindowOptions::init()
{
    m_window = std::make_unique<FreshWindow>();
    m_window->open(colourfulPhotograph({240, 160}));
    setValues(*m_window, Values());
    m_window->setCircle(aCircle);
}

void tst_WindowOptions::cleanup()
{
    m_window.reset();
}

void tst_WindowOptions::withDialog(const std::function<void(Option *)> &act)
{
    ModalDriver driver;
    driver.expect<Option>(act);
    m_window->ui->actionSetting->trigger();
    QVERIFY(driver.done());
}

void tst_WindowOptions::dialogShowsTheWindowsValues()
{
    withDialog([](Option *option) {
        QCOMPARE(textOf(option, "lineDistance"), QString("6.6"));
        QCOMPARE(textOf(option, "lineOutputSizeX"), QString("1536"));
        QCOMPARE(textOf(option, "lineOutputSizeY"), QString("1100"));
        QCOMPARE(textOf(option, "lineQuality"), QString("70"));
        QCOMPARE(option->findChild<QComboBox *>("cbFormat")->currentText(), QString("PNG"));
        QCOMPARE(textOf(option, "lineSize"), QString("5"));
        QCOMPARE(option->penColor, QString("#8012ab34"));
        QCOMPARE(textOf(option, "lineColor"), QString("#8012AB34"));
        QCOMPARE(textOf(option, "lineLatitude"), QString("-12.5"));
        QCOMPARE(textOf(option, "lineLongitude"), QString("140.25"));
        QCOMPARE(textOf(option, "lineAzimuth"), QString("33"));
        option->reject();
    });
}

void tst_WindowOptions::dialogBelongsToTheWindow()
{
    withDialog([this](Option *option) {
        QCOMPARE(option->parentWidget(), m_window.get());
        QCOMPARE(option->langFile, m_window->langFile);
        option->reject();
    });
    QVERIFY(!m_window->findChild<Option *>());
}

void tst_WindowOptions::textsComeFromTheLanguageFile()
{
    QFile file(m_window->langFile);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[config]\ntitle=\"Options\"\nbtn_cancel=\"Back\"\nerror_mess=\"Out of range\"\n");
    file.close();
    ModalDriver driver;
    driver.expect<Option>([&](Option *option) {
        QCOMPARE(option->windowTitle(), QString("Options"));
        QCOMPARE(option->findChild<QPushButton *>("btnCancel")->text(), QString("Back"));
        type(option, "lineQuality", "0");
        driver.expectMessage({"Options", "Out of range", QMessageBox::Warning});
        press(option, "btnOk");
        option->reject();
    });
    m_window->ui->actionSetting->trigger();
    QVERIFY(driver.done());
}

void tst_WindowOptions::okTakesEveryValue()
{
    withDialog([](Option *option) {
        typeOtherValues(option);
        press(option, "btnOk");
    });
    QVERIFY(valuesOf(*m_window) == otherValues);
}

void tst_WindowOptions::rejectionLeavesEveryValue_data()
{
    using Rejection = std::function<void(Option *)>;
    QTest::addColumn<Rejection>("reject");
    QTest::newRow("Cancel") << Rejection([](Option *option) { press(option, "btnCancel"); });
    QTest::newRow("Esc") << Rejection([](Option *option) { QTest::keyClick(option, Qt::Key_Escape); });
    QTest::newRow("title bar") << Rejection([](Option *option) { option->close(); });
    QTest::newRow("Return in a field") << Rejection(
        [](Option *option) { QTest::keyClick(option->findChild<QLineEdit *>("lineSize"), Qt::Key_Return); });
}

void tst_WindowOptions::rejectionLeavesEveryValue()
{
    QFETCH(std::function<void(Option *)>, reject);
    const QImage before = m_window->shownPicture();
    withDialog([&](Option *option) {
        typeOtherValues(option);
        reject(option);
    });
    QVERIFY(valuesOf(*m_window) == Values());
    COMPARE_IMAGES(m_window->shownPicture(), before);
}

void tst_WindowOptions::refusedValuesNeverArrive()
{
    ModalDriver driver;
    driver.expect<Option>([&](Option *option) {
        typeOtherValues(option);
        type(option, "lineAzimuth", "360.5");
        driver.expectMessage(
            {"Orvane 画像変換ツール（設定）", "範囲内で入力して下さい", QMessageBox::Warning});
        press(option, "btnOk");
        QVERIFY(option->isVisible());
        press(option, "btnCancel");
    });
    m_window->ui->actionSetting->trigger();
    QVERIFY(driver.done());
    QVERIFY(valuesOf(*m_window) == Values());
}

void tst_WindowOptions::cancelAfterDefaultsKeepsEveryValue()
{
    withDialog([](Option *option) {
        press(option, "btnDefault");
        press(option, "btnCancel");
    });
    QVERIFY(valuesOf(*m_window) == Values());
}

void tst_WindowOptions::okAfterDefaultsTakesThem()
{
    withDialog([](Option *option) {
        press(option, "btnDefault");
        press(option, "btnOk");
    });
    const Values defaults{100.0, 2048, 1024, 85, 0, 0.0, 0.0, 0.0, 3, QColor(255, 0, 0)};
    QVERIFY(valuesOf(*m_window) == defaults);
}

// The fields show six digits; a value that nobody touched is rounded to them by OK.
void tst_WindowOptions::sixDigitsAreWhatComesBack()
{
    m_window->longitude = 139.7671248;
    m_window->latitude = 35.681236;
    withDialog([](Option *option) { press(option, "btnOk"); });
    QCOMPARE(m_window->longitude, 139.767);
    QCOMPARE(m_window->latitude, 35.6812);
}

void tst_WindowOptions::hostileValuesAreShown()
{
    Values hostile;
    hostile.distance = std::numeric_limits<double>::quiet_NaN();
    hostile.outputSizeX = std::numeric_limits<int>::max();
    hostile.outputSizeY = std::numeric_limits<int>::min();
    hostile.format = 77;
    hostile.latitude = std::numeric_limits<double>::infinity();
    hostile.longitude = 1e300;
    hostile.penSize = -5;
    hostile.penColor = QColor();
    setValues(*m_window, hostile);
    withDialog([](Option *option) {
        QCOMPARE(textOf(option, "lineDistance"), QString("nan"));
        QCOMPARE(textOf(option, "lineOutputSizeX"), QString("2147483647"));
        QCOMPARE(textOf(option, "lineOutputSizeY"), QString("-2147483648"));
        QCOMPARE(textOf(option, "lineLatitude"), QString("inf"));
        QCOMPARE(textOf(option, "lineLongitude"), QString("1e+300"));
        QCOMPARE(textOf(option, "lineSize"), QString("-5"));
        QCOMPARE(textOf(option, "lineColor"), QString("#FF000000"));
        press(option, "btnCancel");
    });
    QVERIFY(!m_window->penColor.isValid());
    QCOMPARE(m_window->format, 77);
}

void tst_WindowOptions::circleIsDrawnWithTheNewPen()
{
    COMPARE_IMAGES(m_window->shownPicture(),
                   uncachedPicture(m_window->image, aCircle, Values().penColor, Values().penSize));
    withDialog([](Option *option) {
        type(option, "lineColor", "#ff0000ff");
        type(option, "lineSize", "9");
        press(option, "btnOk");
    });
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, aCircle, Qt::blue, 9));
}

void tst_WindowOptions::hiddenCircleStaysHidden()
{
    m_window->selectShow = false;
    withDialog([](Option *option) { press(option, "btnOk"); });
    QVERIFY(!m_window->selectShow);
    COMPARE_IMAGES(m_window->shownPicture(), uncachedPicture(m_window->image, std::nullopt));
}

void tst_WindowOptions::unparsableColourMakesThePenInvalid_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("a word that is no colour") << "reddish";
    QTest::newRow("digits that are none") << "#FFGG0000";
    QTest::newRow("nothing") << "";
}

void tst_WindowOptions::unparsableColourMakesThePenInvalid()
{
    QFETCH(QString, text);
    withDialog([&](Option *option) {
        type(option, "lineColor", text);
        press(option, "btnOk"); // no message
    });
    QVERIFY(!m_window->penColor.isValid());
    COMPARE_IMAGES(m_window->shownPicture(),
                   uncachedPicture(m_window->image, aCircle, QColor(), Values().penSize));
    m_window->saveSetting();
    QFile file(m_window->settingFile);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QVERIFY(file.readAll().contains("\nPenColor=#ff000000\n"));
}

void tst_WindowOptions::nothingElseIsUpdated()
{
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionPreview_Window->trigger();
    m_window->ui->lineRadius->setText("typed");
    const QString name = m_window->ui->lineSaveFilename->text();
    const MessageCollector collector;
    withDialog([](Option *option) {
        typeOtherValues(option);
        press(option, "btnOk");
    });
    QCOMPARE(collector.messages().filter("convertImage"), QStringList()); // the preview keeps the old map
    QCOMPARE(collector.messages().filter("updatePreview"), QStringList());
    QCOMPARE(m_window->ui->lineRadius->text(), QString("typed"));
    QCOMPARE(m_window->ui->lineSaveFilename->text(), name);
    QCOMPARE(circleOf(*m_window), aCircle);
    QVERIFY(!QFile::exists(m_window->settingFile));
}

void tst_WindowOptions::valuesAreTakenWithoutAPhotograph()
{
    m_window = std::make_unique<FreshWindow>();
    withDialog([](Option *option) {
        typeOtherValues(option);
        press(option, "btnOk");
    });
    QVERIFY(valuesOf(*m_window) == otherValues);
    QVERIFY(m_window->shownPicture().isNull());
}

WINDOW_TEST_MAIN(tst_WindowOptions)
#include "tst_windowoptions.moc"
