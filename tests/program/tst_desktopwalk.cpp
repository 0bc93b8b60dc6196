// The program on a real X server with a window manager, from start to end, as a person would use it.

#include "desktop.h"
#include "imagecompare.h"
#include "patience.h"
#include "photographs.h"
#include "referencemap.h"
#include "testwindow.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QUrl>

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
    void windowsHaveTheProgramsIcon();
    void helpOpensTheManual_data();
    void helpOpensTheManual();
    void fromPhotographToMap();
    void markedDiscComesBack();
    void heldButtonsRepeat();
    void savedCircleIsLoadedAgain();
    void previewFollowsOptionsAndCircle();

private:
    void openOwnPhotograph();
    void chooseMenuItem(const char *menu, int downs);
    QVector<int> shownCircle();
    bool atMainWindow();

    QString writePhotograph(const QString &name);

    std::unique_ptr<Desktop> m_desktop;
    std::unique_ptr<Layout> m_layout;
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
    const QString path = m_desktop->folder().filePath(name);
    return colourfulPhotograph({400, 300}).save(path) ? path : QString();
}

// Starts with a photograph on the command line, as a file manager would.
void tst_DesktopWalk::openOwnPhotograph()
{
    const QString photograph = writePhotograph("photo.png");
    if (!m_layout)
        m_layout = std::make_unique<Layout>(photograph);
    QVERIFY(m_layout->isKnown());
    m_desktop->start({photograph});
    QVERIFY(atMainWindow());
    QVERIFY(m_desktop->waitForLine("timeout"));
    QCOMPARE(shownCircle(), (QVector<int>{147, 200, 150}));
}

// Opens a menu by the mouse and picks an item by the keyboard.
void tst_DesktopWalk::chooseMenuItem(const char *menu, int downs)
{
    m_desktop->click((*m_layout)[menu]);
    QStringList keys;
    for (int i = 0; i < downs; ++i)
        keys.append("Down");
    m_desktop->keys(keys + QStringList{"Return"});
}

// Radius, x and y that the program reports next.
QVector<int> tst_DesktopWalk::shownCircle()
{
    return numbersOf(m_desktop->lineStarting("updateScreenParameter"));
}

bool tst_DesktopWalk::atMainWindow()
{
    return !m_desktop->window(mainTitle).isEmpty();
}

void tst_DesktopWalk::windowsHaveTheProgramsIcon()
{
    m_desktop->start();
    const QString window = m_desktop->window(mainTitle);
    QVERIFY(!window.isEmpty());
    QProcess xprop;
    xprop.start("xprop", {"-id", window, "-notype", "_NET_WM_ICON"});
    QVERIFY(xprop.waitForFinished(patienceMs));
    const QByteArray icons = xprop.readAllStandardOutput();
    for (const char *size : {"16 x 16", "32 x 32", "48 x 48", "128 x 128"})
        QVERIFY2(icons.contains(QByteArray("Icon (") + size + ')'), size);
}

void tst_DesktopWalk::helpOpensTheManual_data()
{
    QTest::addColumn<bool>("languageFile");
    QTest::addColumn<QString>("manual");
    QTest::newRow("built-in texts") << false << "docs/manual.ja.md";
    QTest::newRow("language file") << true << "docs/manual.md";
}

// The program asks the desktop to open it. What does that on a desktop only notes the path here.
void tst_DesktopWalk::helpOpensTheManual()
{
    QFETCH(bool, languageFile);
    QFETCH(QString, manual);
    const ProgramFolder &folder = m_desktop->folder();
    QVERIFY(QDir(folder.filePath(".")).mkdir("docs"));
    for (const char *document : {"docs/manual.md", "docs/manual.ja.md"})
        folder.write(document, "a manual");
    if (languageFile)
        folder.write("ovmic_lang.ini", "[main]\n");
    folder.write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" >opened.part && mv opened.part opened\n");
    QVERIFY(QFile::setPermissions(folder.filePath("xdg-open"), QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.filePath(".").toUtf8() + ':' + path);
    m_desktop->start();
    qputenv("PATH", path);

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->keys({"F1"});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(folder.filePath("opened")), patienceMs);
    QCOMPARE(QUrl(QString::fromUtf8(folder.read("opened"))).toLocalFile(), folder.filePath(manual));
    QVERIFY(m_desktop->closeMainWindow());
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
    QVERIFY(m_desktop->answer("画像変換", "Return"));
    const MapParameters parameters = mapParameters({{200, 150}, 147, 6.6}, {256, 128}, {35, 139});
    const QImage expected = referenceMap(QImage(photograph), parameters);
    COMPARE_IMAGES(QImage(map), expected);

    // The answer No is the default; the file stays as it is.
    m_desktop->folder().write("OV-photo.png", "precious");
    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->click(layout["btnConvert"]);
    QVERIFY(m_desktop->answer("画像変換", "Return"));
    QCOMPARE(m_desktop->folder().read("OV-photo.png"), QByteArray("precious"));

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    m_desktop->click(layout["btnConvert"]);
    QVERIFY(!m_desktop->window("画像変換").isEmpty());
    m_desktop->keys({"alt+y"});
    QVERIFY(m_desktop->waitForLine("Convert error"));
    QVERIFY(m_desktop->answer("画像変換", "Return"));
    COMPARE_IMAGES(QImage(map), expected);

    QVERIFY(!m_desktop->window(mainTitle).isEmpty());
    QVERIFY(m_desktop->closeMainWindow());
    const QByteArray settings = m_desktop->folder().read("ovmic.ini");
    QVERIFY(settings.contains("LoadFileName=" + photograph.toUtf8()));
    QVERIFY(settings.contains("Radius=147"));
}

// Draw a circle by mouse, move it by its line, resize it at a corner, remove it and draw it anew, then close and
// start again: the circle comes back.
void tst_DesktopWalk::markedDiscComesBack()
{
    openOwnPhotograph();
    if (QTest::currentTestFailed())
        return;
    const Layout &layout = *m_layout;
    m_desktop->click(layout.pixel(200, 150), 3); // the default circle goes
    m_desktop->drag(layout.pixel(180, 140), layout.pixel(240, 190));
    const QVector<int> drawn = shownCircle();
    QVERIFY2(qAbs(drawn.at(0) - 60) <= 3, qPrintable(QString::number(drawn.at(0))));
    QVERIFY(qAbs(drawn.at(1) - 180) <= 1 && qAbs(drawn.at(2) - 140) <= 1);

    const int r = drawn.at(0);
    m_desktop->drag(layout.pixel(180 + r, 140), layout.pixel(180 + r + 30, 140 + 20));
    const QVector<int> moved = shownCircle();
    QCOMPARE(moved.at(0), r);
    QVERIFY(qAbs(moved.at(1) - 210) <= 2 && qAbs(moved.at(2) - 160) <= 2);

    m_desktop->drag(layout.pixel(moved.at(1) + r + 4, moved.at(2) + r + 4),
                    layout.pixel(moved.at(1) + 90, moved.at(2) + 90));
    const QVector<int> resized = shownCircle();
    QVERIFY(qAbs(resized.at(0) - 90) <= 2);
    QCOMPARE(resized.mid(1), moved.mid(1));

    // A click far outside removes it; the right button brings it back.
    m_desktop->click(layout.pixel(20, 280));
    m_desktop->click(layout.pixel(20, 280), 3);
    m_desktop->drag(layout.pixel(moved.at(1), moved.at(2)), layout.pixel(moved.at(1) - 50, moved.at(2)));
    const QVector<int> centred = shownCircle();
    QCOMPARE(centred.at(0), resized.at(0));
    QVERIFY(qAbs(centred.at(1) - (moved.at(1) - 50)) <= 1);

    QVERIFY(atMainWindow());
    QVERIFY(m_desktop->closeMainWindow());
    m_desktop->start();
    QCOMPARE(shownCircle(), centred);
    QVERIFY(m_desktop->waitForLine("timeout"));
    QCOMPARE(shownCircle(), centred); // the photograph came back, and kept the circle
}

void tst_DesktopWalk::heldButtonsRepeat()
{
    openOwnPhotograph();
    if (QTest::currentTestFailed())
        return;
    const Layout &layout = *m_layout;
    m_desktop->click(layout["btnRight"]);
    QVector<int> circle = shownCircle();
    while (circle == QVector<int>{147, 200, 150}) // ticks between a slow press and its release
        circle = shownCircle();
    QCOMPARE(circle, (QVector<int>{147, 201, 150}));

    m_desktop->buttonDown(layout["btnSizeUp"]);
    for (int tick = 0; tick < 10; ++tick) {
        QVERIFY(m_desktop->waitForLine("click_timer()"));
        QCOMPARE(shownCircle(), (QVector<int>{147, 201, 150}));
    }
    QCOMPARE(shownCircle(), (QVector<int>{148, 201, 150}));
    QVERIFY(shownCircle().at(0) >= 149);
    m_desktop->buttonUp();
}

// Type a radius without Return, save the circle, reset it, and load it again.
void tst_DesktopWalk::savedCircleIsLoadedAgain()
{
    openOwnPhotograph();
    if (QTest::currentTestFailed())
        return;
    const Layout &layout = *m_layout;
    const QString file = m_desktop->folder().filePath("circle.ini");
    m_desktop->click(layout["lineRadius"]);
    m_desktop->keys({"ctrl+a"});
    m_desktop->type("77");

    chooseMenuItem("menuFile", 2);
    QVERIFY(!m_desktop->window("中心点、半径をファイルへ保存します、ファイル名を指定して下さい").isEmpty());
    m_desktop->keys({"ctrl+a"});
    m_desktop->type(file);
    m_desktop->keys({"Return"});
    QVERIFY(m_desktop->answer("中心点、半径の保存", "Return"));
    QCOMPARE(m_desktop->folder().read("circle.ini"),
             QByteArray("[General]\nCenterX=200\nCenterY=150\nRadius=77\n"));

    QVERIFY(atMainWindow());
    chooseMenuItem("menuFile", 3);
    QCOMPARE(shownCircle(), (QVector<int>{147, 200, 150}));

    chooseMenuItem("menuFile", 1);
    QVERIFY(!m_desktop->window("中心点、半径をファイルから読込ます、ファイル名を指定して下さい").isEmpty());
    m_desktop->type(file);
    m_desktop->keys({"Return"});
    QCOMPARE(shownCircle(), (QVector<int>{77, 200, 150}));
}

// Change the distance in the options, open the preview, and see it follow an edit of the circle.
void tst_DesktopWalk::previewFollowsOptionsAndCircle()
{
    openOwnPhotograph();
    if (QTest::currentTestFailed())
        return;
    const Layout &layout = *m_layout;
    const QString optionTitle = QStringLiteral("Orvane 画像変換ツール（設定）");
    const QString previewTitle = QStringLiteral("Orvane 画像変換ツール（プレビュー）");

    chooseMenuItem("menuFile", 5);
    QVERIFY(!m_desktop->window(optionTitle).isEmpty());
    m_desktop->keys({"ctrl+a"}); // the distance has the focus
    m_desktop->type("6.6");
    m_desktop->keys({"shift+Tab", "shift+Tab", "space"}); // backwards over Cancel to OK
    QVERIFY(m_desktop->waitUntilGone(optionTitle));

    QVERIFY(atMainWindow());
    m_desktop->click(layout["btnPreview"]);
    QVERIFY(m_desktop->waitForLine("Convert error"));
    QVERIFY(!m_desktop->window(previewTitle).isEmpty());
    QVERIFY(atMainWindow());
    chooseMenuItem("menuView", 2); // auto preview
    m_desktop->click(layout["lineRadius"]);
    m_desktop->keys({"ctrl+a"});
    m_desktop->type("90");
    m_desktop->keys({"Return"});
    QVERIFY(m_desktop->waitForLine("updatePreview"));
    QVERIFY(m_desktop->waitForLine("Convert error"));

    // Closing the preview by its title bar leaves the program running; the setting is stored at the end.
    QVERIFY(!m_desktop->window(previewTitle).isEmpty());
    m_desktop->keys({"alt+F4"});
    QVERIFY(m_desktop->waitUntilGone(previewTitle));
    QVERIFY(atMainWindow());
    QVERIFY(m_desktop->closeMainWindow());
    const QList<QByteArray> settings = m_desktop->folder().read("ovmic.ini").split('\n');
    QVERIFY(settings.contains("Distance=6.6"));
    QVERIFY(settings.contains("Radius=90"));
    QVERIFY(settings.contains("AutoPreview=true"));
    QVERIFY(settings.contains("PreviewWindow=false"));
}

WINDOW_TEST_MAIN(tst_DesktopWalk)
#include "tst_desktopwalk.moc"
