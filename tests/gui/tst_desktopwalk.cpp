// The program on a real X server with a window manager, from start to end, as a person would use it.

#include "desktop.h"
#include "imagecompare.h"
#include "referenceengine.h"
#include "testwindow.h"

#include <QBuffer>
#include <QFileInfo>
#include <QTemporaryDir>

namespace
{

const QString mainTitle = QStringLiteral("Orvane 画像変換ツール 1.02");

/// Where the widgets lie in a main window that shows a photograph of this size, learned from a window of our own.
class Layout
{
public:
    explicit Layout(const QString &photograph)
    {
        QTemporaryDir folder;
        TestWindow window;
        window.settingFile = folder.filePath("layout.ini");
        window.readShowString();
        window.show();
        window.slot("timeout");
        window.loadFileName = photograph;
        window.loadImage();
        m_known = QTest::qWaitForWindowExposed(&window);
        const auto note = [&](QWidget *widget) {
            m_centres[widget->objectName()] = widget->mapTo(&window, widget->rect().center());
        };
        for (QWidget *widget : window.ui->widget->findChildren<QWidget *>())
            note(widget);
        for (const QMenu *menu : {window.ui->menuFile, window.ui->menuView}) {
            const QRect item = window.ui->menuBar->actionGeometry(menu->menuAction());
            m_centres[menu->objectName()] = window.ui->menuBar->mapTo(&window, item.center());
        }
        m_pictureOrigin = window.ui->label->mapTo(&window, QPoint(0, 0));
        const double columns = static_cast<double>(window.ui->label->width()) / window.image.width();
        const double rows = static_cast<double>(window.ui->label->height()) / window.image.height();
        m_pictureScale = std::min(columns, rows);
    }

    bool isKnown() const { return m_known; }
    /// The middle of a widget or of a menu's title.
    QPoint operator[](const char *name) const { return m_centres.value(QString::fromLatin1(name), {-1, -1}); }
    /// Where a photograph pixel is shown.
    QPoint pixel(double x, double y) const
    {
        return m_pictureOrigin + QPointF((x + 0.5) * m_pictureScale, (y + 0.5) * m_pictureScale).toPoint();
    }

private:
    QMap<QString, QPoint> m_centres;
    QPoint m_pictureOrigin;
    double m_pictureScale = 1.0;
    bool m_known = false;
};

/// The numbers of a debug line like "updateScreenParameter,  39 ,  50 ,  40": radius, x, y.
QVector<int> numbersOf(const QString &line)
{
    QVector<int> numbers;
    for (const QString &part : line.section(',', 1).split(','))
        numbers.append(part.trimmed().toInt());
    return numbers;
}

} // namespace

class tst_DesktopWalk : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void fromPhotographToMap();

private:
    QString writePhotograph(const QString &name);

    std::unique_ptr<Desktop> m_desktop;
};

void tst_DesktopWalk::init()
{
    m_desktop = std::make_unique<Desktop>();
}

void tst_DesktopWalk::cleanup()
{
    m_desktop.reset();
}

QString tst_DesktopWalk::writePhotograph(const QString &name)
{
    QImage photograph(400, 300, QImage::Format_RGB32);
    for (int y = 0; y < photograph.height(); ++y) {
        for (int x = 0; x < photograph.width(); ++x)
            photograph.setPixel(x, y, qRgb(x % 256, y % 256, (x * 7 + y * 13) % 256));
    }
    const QString path = m_desktop->folder().filePath(name);
    return photograph.save(path) ? path : QString();
}

// Open through the dialog, convert, decline the overwrite, accept it, and find the map on the disk.
void tst_DesktopWalk::fromPhotographToMap()
{
    const QString photograph = writePhotograph("photo.png");
    const QString map = m_desktop->folder().filePath("OV-photo.png");
    const Layout layout(photograph);
    QVERIFY(layout.isKnown());
    m_desktop->folder().write("ovmic.ini", "[General]\nOutputSizeX=256\nOutputSizeY=128\nOutputFormat=1\n"
                                           "Distance=6.6\nLatitude=35\nLongitude=139\n");
    m_desktop->start();
    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    QVERIFY(m_desktop->waitForLine("timeout"));
    QVERIFY(!m_desktop->hasLine("No matching signal"));

    m_desktop->click(layout["btnImageRead"]);
    QVERIFY(!m_desktop->window("表示したい画像ファイルを選択して下さい").isEmpty());
    m_desktop->type(photograph);
    m_desktop->keys({"Return"});
    QCOMPARE(numbersOf(m_desktop->lineStarting("updateScreenParameter")), (QVector<int>{147, 200, 150}));

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->click(layout["btnConvert"]);
    QVERIFY(m_desktop->waitForLine("Convert error"));
    QVERIFY(!m_desktop->window("画像変換").isEmpty());
    m_desktop->keys({"Return"});
    QVERIFY(m_desktop->waitUntilGone("画像変換"));
    const QImage source = QImage(photograph).convertToFormat(QImage::Format_ARGB32);
    const QImage expected = reference::convert(source, {200, 150, 147, 6.6, 256, 128, 35, 139, 0});
    COMPARE_IMAGES(QImage(map), expected);

    // The answer No is the default; the file stays as it is.
    m_desktop->folder().write("OV-photo.png", "precious");
    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->click(layout["btnConvert"]);
    QVERIFY(!m_desktop->window("画像変換").isEmpty());
    m_desktop->keys({"Return"});
    QVERIFY(m_desktop->waitUntilGone("画像変換"));
    QCOMPARE(m_desktop->folder().read("OV-photo.png"), QByteArray("precious"));

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->click(layout["btnConvert"]);
    QVERIFY(!m_desktop->window("画像変換").isEmpty());
    m_desktop->keys({"alt+y"});
    QVERIFY(m_desktop->waitForLine("Convert error"));
    QVERIFY(!m_desktop->window("画像変換").isEmpty());
    m_desktop->keys({"Return"});
    QVERIFY(m_desktop->waitUntilGone("画像変換"));
    COMPARE_IMAGES(QImage(map), expected);

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    QVERIFY(m_desktop->closeMainWindow());
    const QByteArray settings = m_desktop->folder().read("ovmic.ini");
    QVERIFY(settings.contains("LoadFileName=" + photograph.toUtf8()));
    QVERIFY(settings.contains("Radius=147"));
}

WINDOW_TEST_MAIN(tst_DesktopWalk)
#include "tst_desktopwalk.moc"
