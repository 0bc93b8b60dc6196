#include "freshwindow.h"
#include "modaldriver.h"

#include <optional>

namespace
{

/// The pointer at the moment when the encoder complained, if it did.
std::optional<Qt::CursorShape> pointerWhileEncoding;
bool encoderComplained = false;

void notePointer(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtWarningMsg || !message.contains("65500"))
        return;
    encoderComplained = true;
    if (const QCursor *cursor = QGuiApplication::overrideCursor())
        pointerWhileEncoding = cursor->shape();
}

} // namespace

/// The pointer while a map is encoded. No event is handled then, so that it is looked at when the JPEG encoder says that
/// a map of 65501 columns is too wide for it.
class tst_BusyCursor : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_window = std::make_unique<FreshWindow>();
        m_window->open(colourfulPhotograph());
        m_window->outputSizeX = 65501;
        m_window->outputSizeY = 2;
        m_window->outputFolder = m_window->folder();
        pointerWhileEncoding.reset();
        encoderComplained = false;
        m_previous = qInstallMessageHandler(notePointer);
    }

    void cleanup()
    {
        qInstallMessageHandler(m_previous);
        QVERIFY(!QGuiApplication::overrideCursor()); // none is left behind
        m_window.reset();
    }

    void isBusyWhenAMapIsSaved()
    {
        ModalDriver driver;
        driver.expect<QMessageBox>([](QMessageBox *box) {
            QVERIFY(!QGuiApplication::overrideCursor());
            box->accept();
        });
        QTest::mouseClick(m_window->ui->btnConvert, Qt::LeftButton);
        QVERIFY(driver.done());
        QVERIFY(encoderComplained);
        QCOMPARE(pointerWhileEncoding, std::optional(Qt::WaitCursor));
    }

    void isBusyInABatch()
    {
        m_window->fileList = QStringList{m_window->loadFileName};
        ModalDriver driver;
        driver.expect<QMessageBox>([](QMessageBox *box) { box->accept(); });
        m_window->batchConvert();
        QVERIFY(driver.done());
        QVERIFY(encoderComplained);
        QCOMPARE(pointerWhileEncoding, std::optional(Qt::WaitCursor));
    }

    void isLeftAloneInABatchWithoutAWindow()
    {
        m_window->hide();
        m_window->unattended = 1;
        m_window->fileList = QStringList{m_window->loadFileName};
        m_window->batchConvert();
        QVERIFY(encoderComplained);
        QVERIFY(!pointerWhileEncoding);
    }

private:
    std::unique_ptr<FreshWindow> m_window;
    QtMessageHandler m_previous = nullptr;
};

WINDOW_TEST_MAIN(tst_BusyCursor)
#include "tst_busycursor.moc"
