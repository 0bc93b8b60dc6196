#include "duringconversion.h"
#include "imagecompare.h"
#include "previewwindow.h"
#include "savingwindow.h"
#include "windowreference.h"

#include <QFile>

/// What happens while a map is made for a file: the file gets the map, and the name, of the start.
class tst_DuringSaving : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void savedMapIsTheOneOfTheStart();
    void savingGoesToThePathOfTheStart();
    void closedWindowsSaveTheMapAllTheSame();
    void savingDuringAPreviewWritesItsOwnMap();

private:
    QString path(const QString &name) const { return m_window->filePath(name); }
    /// Saves under a name that no file has, with something else in the middle.
    void saveWith(const QString &name, const std::function<void()> &disturbance);

    std::unique_ptr<SavingWindow> m_window;
};

void tst_DuringSaving::init()
{
    m_window = std::make_unique<SavingWindow>();
    m_window->format = 1;
}

void tst_DuringSaving::cleanup()
{
    m_window.reset();
}

void tst_DuringSaving::saveWith(const QString &name, const std::function<void()> &disturbance)
{
    m_window->ui->lineSaveFilename->setText(name);
    ModalDriver driver;
    driver.expectMessage(confirmation(path(name)));
    QVERIFY(duringConversion(
        m_window.get(), [this] { m_window->clickConvert(); }, disturbance));
    QVERIFY(driver.done());
}

void tst_DuringSaving::savedMapIsTheOneOfTheStart()
{
    const QImage expected = referenceMap(*m_window);
    saveWith("map.png", [this] { m_window->open(colourfulPhotograph({64, 48})); });
    COMPARE_IMAGES(QImage(path("map.png")), expected);
}

void tst_DuringSaving::savingGoesToThePathOfTheStart()
{
    saveWith("first.png", [this] {
        m_window->ui->lineSaveFilename->setText("second.png");
        m_window->saveFileName = path("second.png");
    });
    QVERIFY(QFile::exists(path("first.png")));
    QVERIFY(!QFile::exists(path("second.png")));
}

void tst_DuringSaving::closedWindowsSaveTheMapAllTheSame()
{
    m_window->ui->actionPreview_Window->trigger();
    const QImage expected = referenceMap(*m_window);
    saveWith("map.png", [this] {
        m_window->close();
        m_window->previewWindow->close();
    });
    QVERIFY(QFile::exists(m_window->settingFile));
    COMPARE_IMAGES(QImage(path("map.png")), expected);
}

void tst_DuringSaving::savingDuringAPreviewWritesItsOwnMap()
{
    const QImage expected = referenceMap(*m_window);
    m_window->ui->lineSaveFilename->setText("map.png");
    ModalDriver driver;
    driver.expectMessage(confirmation(path("map.png")));
    const auto preview = [this] { QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton); };
    QVERIFY(duringConversion(m_window.get(), preview, [this] { m_window->clickConvert(); }));
    QVERIFY(driver.done());
    COMPARE_IMAGES(shownMap(*m_window), expected);
    COMPARE_IMAGES(QImage(path("map.png")), expected);
}

WINDOW_TEST_MAIN(tst_DuringSaving)
#include "tst_duringsaving.moc"
