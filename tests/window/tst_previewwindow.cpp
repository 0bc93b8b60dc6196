#include "previewwindow.h"

#include "picturelabel.h"
#include "picturewidgets.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMetaMethod>
#include <QPainter>
#include <QScrollArea>
#include <QtTest>

using namespace picturewidgets;

namespace
{

QStringList signalsOf(const QMetaObject &meta)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    return signatures;
}

MyImage2 &labelOf(PreviewWindow &window)
{
    return *window.findChild<MyImage2 *>("label2");
}

} // namespace

class tst_PreviewWindow : public QObject
{
    Q_OBJECT

private slots:
    void buildsItsForm();
    void holdsTheObjectsOfItsForm();
    void isAWindowOfItsOwn();
    void declaresItsSignalsInOrder();

    void showsAnImage();
    void setsScalingAndMinimumSizeEveryTime();
    void keepsAnAlphaChannel();
    void takesANullImage();
    void leavesTheCallersImageAlone();
    void ignoresAutoSize();

    void reportsAndHidesWhenClosed();
    void reportsBeforeItHides();
    void acceptsToBeClosed();
    void isNotReportedWhenItIsOnlyHidden();
    void keepsItsMapWhileHidden();

    void reportsGestures();
    void reportsScaledGestures();
    void reportsRightClicks();
    void reportsNothingWithoutAPicture();
    void keepsItsFlagsWhenThePictureVanished();
    void leavesIdleMovesToTheParent();

    void paintsTheWholePictureFitted();
    void paintsThePictureOneToOne();
    void paintsItsFrameAnewToo();
    void paintsNothingWithoutAPicture();
};

void tst_PreviewWindow::buildsItsForm()
{
    PreviewWindow window;
    QCOMPARE(window.objectName(), QString("PreviewWindow"));
    QCOMPARE(window.size(), QSize(640, 480));
    QCOMPARE(window.windowTitle(), QString("Orvane 画像変換ツール（プレビュー）"));

    QCOMPARE(window.centralWidget()->objectName(), QString("centralwidget"));
    QVERIFY(qobject_cast<QHBoxLayout *>(window.centralWidget()->layout()));
    QCOMPARE(window.centralWidget()->layout()->contentsMargins(), QMargins(0, 0, 0, 0));
    auto *scrollArea = window.findChild<QScrollArea *>("scrollArea");
    QVERIFY(scrollArea);
    QVERIFY(scrollArea->widgetResizable());
    QCOMPARE(scrollArea->widget()->objectName(), QString("scrollAreaWidgetContents"));
    QVERIFY(qobject_cast<QHBoxLayout *>(scrollArea->widget()->layout()));
    QCOMPARE(scrollArea->widget()->layout()->contentsMargins(), QMargins(0, 0, 0, 0));

    const MyImage2 &label = labelOf(window);
    QCOMPARE(label.parentWidget(), scrollArea->widget());
    QCOMPARE(label.frameShape(), QFrame::Box);
    QCOMPARE(label.hasScaledContents(), true);
    QCOMPARE(label.alignment(), Qt::AlignLeft | Qt::AlignTop);
    QCOMPARE(label.text(), QString());
    QCOMPARE(label.leftDown, false);
    QCOMPARE(label.rightDown, false);
    QCOMPARE(label.pressPos, QPoint(0, 0));

    QCOMPARE(window.menuBar()->objectName(), QString("menubar"));
    QCOMPARE(window.menuBar()->actions().size(), 0);
}

void tst_PreviewWindow::holdsTheObjectsOfItsForm()
{
    PreviewWindow window;
    for (const char *name : {"centralwidget", "horizontalLayout", "scrollArea", "scrollAreaWidgetContents",
                             "horizontalLayout_2", "label2", "menubar"})
        QCOMPARE(window.findChildren<QObject *>(name).size(), 1);
}

void tst_PreviewWindow::isAWindowOfItsOwn()
{
    QWidget parent;
    auto *window = new PreviewWindow(&parent);
    QVERIFY(window->isWindow());
    QCOMPARE(window->parentWidget(), &parent);
    parent.show();
    QVERIFY(!window->isVisible());
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QVERIFY(window->isVisible());
}

void tst_PreviewWindow::declaresItsSignalsInOrder()
{
    QCOMPARE(signalsOf(PreviewWindow::staticMetaObject), QStringList({"hidden()"}));
    QCOMPARE(
        signalsOf(MyImage2::staticMetaObject),
        QStringList({"mouseleftdown(int,int)", "mouseleftup(int,int)", "mouserightup()", "clicked(int,int)",
                     "size_changed(int,int,int)", "size_changing(int,int,int,int,int,int,int,int)"}));
    QCOMPARE(MyImage2::staticMetaObject.superClass(), &QLabel::staticMetaObject);
}

void tst_PreviewWindow::showsAnImage()
{
    PreviewWindow window;
    const QImage map = pattern(64, 32).toImage();
    window.setImage(map);
    QCOMPARE(labelOf(window).picture().toImage(), map);
    window.setImage(map.mirrored());
    QCOMPARE(labelOf(window).picture().toImage(), map.mirrored());
}

void tst_PreviewWindow::setsScalingAndMinimumSizeEveryTime()
{
    PreviewWindow window;
    MyImage2 &label = labelOf(window);
    QCOMPARE(label.minimumSize(), QSize(0, 0));
    for (int i = 0; i < 2; ++i) {
        label.setMinimumSize(1, 1);
        label.setScaledContents(false);
        window.setImage(pattern(64, 32).toImage());
        QCOMPARE(label.minimumSize(), QSize(320, 240));
        QCOMPARE(label.hasScaledContents(), true);
    }
}

void tst_PreviewWindow::keepsAnAlphaChannel()
{
    QImage map(8, 4, QImage::Format_ARGB32_Premultiplied);
    map.fill(Qt::transparent);
    map.setPixelColor(3, 2, QColor(200, 100, 50, 128));
    PreviewWindow window;
    window.setImage(map);
    QCOMPARE(labelOf(window).picture().toImage(), map);
    QVERIFY(labelOf(window).picture().hasAlphaChannel());
}

void tst_PreviewWindow::takesANullImage()
{
    PreviewWindow window;
    window.setImage(pattern(64, 32).toImage());
    window.setImage(QImage());
    QVERIFY(labelOf(window).picture().isNull());
    QCOMPARE(labelOf(window).minimumSize(), QSize(320, 240));
}

void tst_PreviewWindow::leavesTheCallersImageAlone()
{
    QImage map(8, 4, QImage::Format_ARGB32);
    map.fill(QColor(10, 20, 30, 40));
    const QImage before = map.copy();
    PreviewWindow window;
    window.setImage(map);
    QCOMPARE(map, before);
    map.fill(Qt::white);
    QCOMPARE(labelOf(window).picture().toImage().pixelColor(0, 0).alpha(), 40);
}

void tst_PreviewWindow::ignoresAutoSize()
{
    PreviewWindow window;
    window.setImage(pattern(64, 32).toImage());
    for (const bool on : {true, false}) {
        window.setAutoSize(on);
        QCOMPARE(labelOf(window).hasScaledContents(), true);
        QCOMPARE(labelOf(window).minimumSize(), QSize(320, 240));
    }
}

void tst_PreviewWindow::reportsAndHidesWhenClosed()
{
    PreviewWindow window;
    QSignalSpy hidden(&window, &PreviewWindow::hidden);
    window.show();
    QVERIFY(window.close());
    QCOMPARE(hidden.count(), 1);
    QVERIFY(!window.isVisible());
}

void tst_PreviewWindow::reportsBeforeItHides()
{
    PreviewWindow window;
    bool visibleWhenReported = false;
    connect(&window, &PreviewWindow::hidden, &window, [&] { visibleWhenReported = window.isVisible(); });
    window.show();
    window.close();
    QVERIFY(visibleWhenReported);
}

void tst_PreviewWindow::acceptsToBeClosed()
{
    // One window that refuses keeps the whole program from ending.
    PreviewWindow window;
    QCloseEvent event;
    QApplication::sendEvent(&window, &event);
    QVERIFY(event.isAccepted());
}

void tst_PreviewWindow::isNotReportedWhenItIsOnlyHidden()
{
    PreviewWindow window;
    QSignalSpy hidden(&window, &PreviewWindow::hidden);
    window.show();
    window.hide();
    QCOMPARE(hidden.count(), 0);
}

void tst_PreviewWindow::keepsItsMapWhileHidden()
{
    PreviewWindow window;
    const QImage map = pattern(64, 32).toImage();
    window.setImage(map);
    window.show();
    window.close();
    window.show();
    QVERIFY(window.isVisible());
    QCOMPARE(labelOf(window).picture().toImage(), map);
}

void tst_PreviewWindow::reportsGestures()
{
    MyImage2 label;
    label.setPixmap(pattern(50, 50));
    GestureReports reports(label);
    press(label, {10, 12});
    QCOMPARE(label.leftDown, true);
    QCOMPARE(label.pressPos, QPoint(10, 12));
    move(label, {20, 5}, leftButton);
    release(label, {21, 6});
    QCOMPARE(label.leftDown, false);
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 10 12", "size_changing 10 12 10 5 20 12 20 5",
                                          "mouseleftup 21 6", "size_changed 10 12 12"}));
}

void tst_PreviewWindow::reportsScaledGestures()
{
    MyImage2 label;
    label.resize(100, 60);
    label.setScaledContents(true);
    label.setPixmap(pattern(250, 150));
    GestureReports reports(label);
    press(label, {31, 21});
    move(label, {41, 31}, leftButton);
    release(label, {41, 21});
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 77 52", "size_changing 77 52 77 52 102 77 102 77",
                                          "mouseleftup 102 52", "size_changed 77 52 27"}));
}

void tst_PreviewWindow::reportsRightClicks()
{
    MyImage2 label;
    GestureReports reports(label);
    QTest::mouseClick(&label, Qt::RightButton);
    QCOMPARE(reports.take(), QStringList({"mouserightup"}));
    label.setPixmap(pattern(50, 50));
    QTest::mouseClick(&label, Qt::RightButton);
    QCOMPARE(reports.take(), QStringList({"mouserightup"}));
    QCOMPARE(label.rightDown, false);
}

void tst_PreviewWindow::reportsNothingWithoutAPicture()
{
    MyImage2 label;
    label.setPixmap(QPixmap());
    GestureReports reports(label);
    press(label, {10, 12}, Qt::LeftButton, bothButtons);
    QCOMPARE(label.leftDown, false);
    QCOMPARE(label.rightDown, false);
    QCOMPARE(label.pressPos, QPoint(0, 0));
    move(label, {20, 5}, leftButton);
    release(label, {21, 6});
    QCOMPARE(reports.take(), QStringList());
}

void tst_PreviewWindow::keepsItsFlagsWhenThePictureVanished()
{
    MyImage2 label;
    label.setPixmap(pattern(50, 50));
    press(label, {10, 12}, Qt::RightButton, bothButtons);
    label.setPixmap(QPixmap());
    GestureReports reports(label);
    move(label, {20, 5}, bothButtons);
    release(label, {21, 6});
    QCOMPARE(reports.take(), QStringList());
    QCOMPARE(label.leftDown, true);
    QCOMPARE(label.rightDown, true);
}

void tst_PreviewWindow::leavesIdleMovesToTheParent()
{
    MyImage2 label;
    label.setMouseTracking(true);
    label.setPixmap(pattern(50, 50));
    GestureReports reports(label);
    QVERIFY(!move(label, {20, 5}, noButton));
    QCOMPARE(reports.take(), QStringList());
}

void tst_PreviewWindow::paintsTheWholePictureFitted()
{
    MyImage2 label;
    label.setFrameShape(QFrame::Box);
    label.resize(100, 90);
    label.setScaledContents(true);
    const QPixmap map = pattern(333, 111);
    label.setPixmap(map);

    QImage expected(100, 90, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(0, 0, 100, 33), map, QRectF(map.rect()));
    painter.end();
    QCOMPARE(painted(label), expected);
}

void tst_PreviewWindow::paintsThePictureOneToOne()
{
    MyImage2 label;
    label.setFrameShape(QFrame::Box);
    label.resize(100, 90);
    const QPixmap map = pattern(60, 120);
    label.setPixmap(map);

    QImage expected(100, 90, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QPainter painter(&expected);
    painter.drawPixmap(0, 0, map);
    painter.end();
    QCOMPARE(painted(label), expected);
}

void tst_PreviewWindow::paintsItsFrameAnewToo()
{
    MyImage2 label;
    QCOMPARE(repaintedBySecondPicture(label), QRegion(0, 0, 100, 90));
}

void tst_PreviewWindow::paintsNothingWithoutAPicture()
{
    MyImage2 label;
    label.setFrameShape(QFrame::Box);
    label.setScaledContents(true);
    label.setText("text");
    label.resize(40, 30);
    QImage expected(40, 30, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QCOMPARE(painted(label), expected);
    label.setPixmap(QPixmap());
    QCOMPARE(painted(label), expected);
}

QTEST_MAIN(tst_PreviewWindow)
#include "tst_previewwindow.moc"
