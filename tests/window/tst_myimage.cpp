#include "myimage.h"

#include "picturewidgets.h"

#include <QMetaMethod>
#include <QPainter>
#include <QtTest>

#include <climits>

using namespace picturewidgets;

namespace
{

class Reports : public GestureReports
{
public:
    explicit Reports(MyImage &label) : GestureReports(label)
    {
        note(label, "mouse_move", &MyImage::mouse_move);
    }
};

} // namespace

class tst_MyImage : public QObject
{
    Q_OBJECT

private slots:
    void declaresItsSignalsInOrder();
    void startsIdle();

    void reportsNothingWithoutAPicture_data();
    void reportsNothingWithoutAPicture();
    void hoversSilentlyWithoutAPicture();
    void reportsTheRightClickWithoutAPicture();

    void reportsThePressInPicturePixels_data();
    void reportsThePressInPicturePixels();
    void beginsAnewWhenTheRightButtonJoins();
    void ignoresTheRightButtonOfALeftPressWithoutAPicture();
    void ignoresTheMiddleButton();

    void reportsEveryMoveOfADrag_data();
    void reportsEveryMoveOfADrag();
    void reportsAHorizontalDragWithLevelCorners();
    void keepsAOnePixelBackwardDragAsItIs();
    void dragsInCircleModeToo();

    void reportsANewCircleOnRelease_data();
    void reportsANewCircleOnRelease();
    void reportsTheReleaseInCircleMode();
    void looksAtTheModeOnceWhenReleased();
    void keepsTheDragWhileTheLeftButtonIsHeld();
    void keepsItsFlagsWhenThePictureVanished();

    void reportsARightClickAlone();
    void reportsBothButtonsReleasedAtOnce();

    void hoversOnlyInCircleMode();
    void passesIdleMovesOn();
    void neverReportsAClick();
    void farPositionsAreReported();

    void paintsTheWholePictureFitted_data();
    void paintsTheWholePictureFitted();
    void paintsThePictureOneToOne();
    void paintsItsFrameAnewToo();
    void paintsNothingWithoutAPicture_data();
    void paintsNothingWithoutAPicture();
};

void tst_MyImage::declaresItsSignalsInOrder()
{
    const QMetaObject &meta = MyImage::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Signal);
        signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    }
    QCOMPARE(signatures,
             QStringList({"mouseleftdown(int,int)", "mouseleftup(int,int)", "mouserightup()",
                          "clicked(int,int)", "size_changed(int,int,int)",
                          "size_changing(int,int,int,int,int,int,int,int)", "mouse_move(int,int)"}));
    QCOMPARE(meta.superClass(), &QLabel::staticMetaObject);
}

void tst_MyImage::startsIdle()
{
    QWidget parent;
    const MyImage label(&parent);
    QCOMPARE(label.parentWidget(), &parent);
    QCOMPARE(label.selectMode, false);
    QCOMPARE(label.leftDown, false);
    QCOMPARE(label.rightDown, false);
    QCOMPARE(label.pressPos, QPoint(0, 0));
}

void tst_MyImage::reportsNothingWithoutAPicture_data()
{
    QTest::addColumn<bool>("wasCleared");
    QTest::addColumn<bool>("selectMode");
    QTest::newRow("never had one") << false << false;
    QTest::newRow("never had one, circle mode") << false << true;
    QTest::newRow("given a null one") << true << false;
    QTest::newRow("given a null one, circle mode") << true << true;
}

void tst_MyImage::reportsNothingWithoutAPicture()
{
    QFETCH(bool, wasCleared);
    QFETCH(bool, selectMode);
    MyImage label;
    label.selectMode = selectMode;
    if (wasCleared) {
        label.setPixmap(pattern(10, 10));
        label.setPixmap(QPixmap());
    }
    Reports reports(label);

    press(label, {5, 5});
    QCOMPARE(label.leftDown, false);
    QCOMPARE(label.pressPos, QPoint(0, 0));
    move(label, {9, 9}, leftButton);
    release(label, {9, 9});
    QCOMPARE(reports.take(), QStringList());
}

void tst_MyImage::hoversSilentlyWithoutAPicture()
{
    MyImage label;
    label.setMouseTracking(true); // as its owner does: without it no hover arrives
    label.selectMode = true;
    Reports reports(label);
    QVERIFY(move(label, {5, 5}, noButton));
    QCOMPARE(reports.take(), QStringList());
}

void tst_MyImage::reportsTheRightClickWithoutAPicture()
{
    MyImage label;
    Reports reports(label);
    press(label, {5, 5}, Qt::RightButton, rightButton);
    QCOMPARE(label.rightDown, true);
    release(label, {5, 5}, Qt::RightButton, noButton);
    QCOMPARE(label.rightDown, false);
    QCOMPARE(reports.take(), QStringList({"mouserightup"}));
}

void tst_MyImage::reportsThePressInPicturePixels_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<bool>("scaled");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QString>("expected");

    QTest::newRow("1:1") << QSize(400, 300) << false << QPoint(10, 20) << "mouseleftdown 10 20";
    QTest::newRow("1:1, beside the picture")
        << QSize(5, 5) << false << QPoint(10, 20) << "mouseleftdown 10 20";
    QTest::newRow("twice the widget, scaled")
        << QSize(400, 300) << true << QPoint(10, 10) << "mouseleftdown 20 20";
    QTest::newRow("tall, scaled: its height decides for both")
        << QSize(100, 600) << true << QPoint(10, 10) << "mouseleftdown 40 40";
    QTest::newRow("enlarged") << QSize(20, 15) << true << QPoint(19, 10) << "mouseleftdown 1 1";
    QTest::newRow("negative, cut off toward zero")
        << QSize(300, 225) << true << QPoint(-1, -3) << "mouseleftdown -1 -4";
}

void tst_MyImage::reportsThePressInPicturePixels()
{
    QFETCH(QSize, picture);
    QFETCH(bool, scaled);
    QFETCH(QPoint, position);
    QFETCH(QString, expected);
    MyImage label;
    label.resize(200, 150);
    label.setScaledContents(scaled);
    label.setPixmap(pattern(picture.width(), picture.height()));
    Reports reports(label);

    press(label, position);
    QCOMPARE(reports.take(), QStringList({expected}));
    QCOMPARE(label.leftDown, true);
    QCOMPARE(label.rightDown, false);
    QCOMPARE(label.pressPos, position);
}

void tst_MyImage::beginsAnewWhenTheRightButtonJoins()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    Reports reports(label);
    press(label, {1, 2});
    press(label, {30, 40}, Qt::RightButton, bothButtons);
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 1 2", "mouseleftdown 30 40"}));
    QCOMPARE(label.pressPos, QPoint(30, 40));
    QCOMPARE(label.rightDown, true);
}

void tst_MyImage::ignoresTheRightButtonOfALeftPressWithoutAPicture()
{
    MyImage label;
    Reports reports(label);
    press(label, {1, 2}, Qt::RightButton, bothButtons);
    QCOMPARE(label.rightDown, false);
    release(label, {1, 2}, Qt::RightButton, leftButton);
    QCOMPARE(reports.take(), QStringList());
}

void tst_MyImage::ignoresTheMiddleButton()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    Reports reports(label);
    press(label, {1, 2}, Qt::MiddleButton, Qt::MiddleButton);
    move(label, {3, 4}, Qt::MiddleButton);
    release(label, {3, 4}, Qt::MiddleButton, noButton);
    QCOMPARE(reports.take(), QStringList());
    QCOMPARE(label.leftDown, false);
}

void tst_MyImage::reportsEveryMoveOfADrag_data()
{
    QTest::addColumn<bool>("scaled");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QString>("expected");

    // press point, corners of the rectangle, position
    QTest::newRow("to the lower right") << false << QPoint(40, 50) << "size_changing 30 20 30 20 40 50 40 50";
    QTest::newRow("to the upper left") << false << QPoint(10, 5) << "size_changing 30 20 10 5 30 20 10 5";
    QTest::newRow("to the upper right") << false << QPoint(40, 5) << "size_changing 30 20 30 5 40 20 40 5";
    QTest::newRow("out of the widget")
        << false << QPoint(-7, 500) << "size_changing 30 20 -7 20 30 500 -7 500";
    QTest::newRow("scaled to the lower right")
        << true << QPoint(41, 51) << "size_changing 75 50 75 50 102 127 102 127";
    QTest::newRow("scaled out of the widget")
        << true << QPoint(-1, -3) << "size_changing 75 50 -2 -7 75 50 -2 -7";
}

void tst_MyImage::reportsEveryMoveOfADrag()
{
    QFETCH(bool, scaled);
    QFETCH(QPoint, position);
    QFETCH(QString, expected);
    MyImage label;
    label.resize(100, 60);
    label.setScaledContents(scaled);
    label.setPixmap(pattern(250, 150));
    press(label, {30, 20});
    Reports reports(label);

    move(label, position, leftButton);
    move(label, position, leftButton);
    QCOMPARE(reports.take(), QStringList({expected, expected}));
}

void tst_MyImage::reportsAHorizontalDragWithLevelCorners()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    press(label, {10, 10});
    Reports reports(label);
    move(label, {40, 10}, leftButton);
    QCOMPARE(reports.take(), QStringList({"size_changing 10 10 10 10 40 10 40 10"}));
}

void tst_MyImage::keepsAOnePixelBackwardDragAsItIs()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    press(label, {10, 10});
    Reports reports(label);
    move(label, {9, 8}, leftButton);
    release(label, {9, 9});
    QCOMPARE(reports.take(), QStringList({"size_changing 10 10 10 8 9 10 9 8", "size_changed 10 10 0"}));
}

void tst_MyImage::dragsInCircleModeToo()
{
    MyImage label;
    label.selectMode = true;
    label.setPixmap(pattern(50, 50));
    Reports reports(label);
    press(label, {10, 10});
    move(label, {12, 13}, leftButton);
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 10 10", "size_changing 10 10 10 10 12 13 12 13"}));
}

void tst_MyImage::reportsANewCircleOnRelease_data()
{
    QTest::addColumn<bool>("scaled");
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<QString>("expected");

    QTest::newRow("click: radius 1") << false << QPoint(31, 21) << "size_changed 31 21 1";
    QTest::newRow("to the right: both columns count") << false << QPoint(41, 21) << "size_changed 31 21 11";
    QTest::newRow("the longer side") << false << QPoint(36, 41) << "size_changed 31 21 21";
    QTest::newRow("to the upper left") << false << QPoint(11, 11) << "size_changed 31 21 21";
    QTest::newRow("scaled click: the factor, truncated") << true << QPoint(31, 21) << "size_changed 77 52 2";
    QTest::newRow("scaled: extent times factor, truncated")
        << true << QPoint(41, 21) << "size_changed 77 52 27";
}

void tst_MyImage::reportsANewCircleOnRelease()
{
    QFETCH(bool, scaled);
    QFETCH(QPoint, position);
    QFETCH(QString, expected);
    MyImage label;
    label.resize(100, 60);
    label.setScaledContents(scaled);
    label.setPixmap(pattern(250, 150));
    press(label, {31, 21});
    Reports reports(label);

    release(label, position);
    QCOMPARE(reports.take(), QStringList({expected}));
    QCOMPARE(label.leftDown, false);
    QCOMPARE(label.selectMode, false);
}

void tst_MyImage::reportsTheReleaseInCircleMode()
{
    MyImage label;
    label.resize(100, 60);
    label.setScaledContents(true);
    label.setPixmap(pattern(200, 120));
    label.selectMode = true;
    press(label, {10, 10});
    Reports reports(label);
    release(label, {20, 7});
    QCOMPARE(reports.take(), QStringList({"mouseleftup 40 14"}));
    QCOMPARE(label.leftDown, false);
}

void tst_MyImage::looksAtTheModeOnceWhenReleased()
{
    // The owner sets the mode when it accepts the new circle; the same release must not edit it at once.
    MyImage label;
    label.setPixmap(pattern(50, 50));
    Reports reports(label);
    connect(&label, &MyImage::size_changed, &label, [&label] { label.selectMode = true; });
    press(label, {10, 10});
    release(label, {30, 10});
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 10 10", "size_changed 10 10 21"}));

    connect(&label, &MyImage::mouseleftup, &label, [&label] { label.selectMode = false; });
    press(label, {40, 40});
    release(label, {40, 40});
    QCOMPARE(reports.take(), QStringList({"mouseleftdown 40 40", "mouseleftup 40 40"}));
}

void tst_MyImage::keepsTheDragWhileTheLeftButtonIsHeld()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    press(label, {10, 10});
    press(label, {10, 10}, Qt::RightButton, bothButtons);
    Reports reports(label);
    release(label, {20, 20}, Qt::RightButton, leftButton);
    QCOMPARE(reports.take(), QStringList({"mouserightup"}));
    QCOMPARE(label.leftDown, true);
    QCOMPARE(label.rightDown, false);
    release(label, {20, 20});
    QCOMPARE(reports.take(), QStringList({"size_changed 10 10 11"}));
}

void tst_MyImage::keepsItsFlagsWhenThePictureVanished()
{
    MyImage label;
    for (const bool selectMode : {false, true}) {
        label.selectMode = selectMode;
        label.setPixmap(pattern(50, 50));
        press(label, {10, 10}, Qt::RightButton, bothButtons);
        label.setPixmap(QPixmap());
        Reports reports(label);
        move(label, {20, 20}, bothButtons);
        release(label, {20, 20}, Qt::LeftButton, noButton);
        QCOMPARE(reports.take(), QStringList());
        QCOMPARE(label.leftDown, true);
        QCOMPARE(label.rightDown, true);

        label.setPixmap(pattern(50, 50));
        release(label, {20, 20}, Qt::RightButton, noButton);
        QCOMPARE(reports.take(),
                 QStringList({selectMode ? "mouseleftup 20 20" : "size_changed 10 10 11", "mouserightup"}));
        QCOMPARE(label.leftDown, false);
        QCOMPARE(label.rightDown, false);
    }
}

void tst_MyImage::reportsARightClickAlone()
{
    for (const bool selectMode : {false, true}) {
        MyImage label;
        label.selectMode = selectMode;
        label.setPixmap(pattern(50, 50));
        Reports reports(label);
        QTest::mouseClick(&label, Qt::RightButton, Qt::NoModifier, {10, 10});
        QCOMPARE(reports.take(), QStringList({"mouserightup"}));
        QCOMPARE(label.leftDown, false);
        QCOMPARE(label.rightDown, false);
    }
}

void tst_MyImage::reportsBothButtonsReleasedAtOnce()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    press(label, {10, 10}, Qt::RightButton, bothButtons);
    Reports reports(label);
    release(label, {12, 10}, Qt::LeftButton, noButton);
    QCOMPARE(reports.take(), QStringList({"size_changed 10 10 3", "mouserightup"}));
}

void tst_MyImage::hoversOnlyInCircleMode()
{
    MyImage label;
    label.setMouseTracking(true); // as its owner does: without it no hover arrives
    label.resize(100, 60);
    label.setScaledContents(true);
    label.setPixmap(pattern(200, 120));
    Reports reports(label);
    move(label, {10, 11}, noButton);
    QCOMPARE(reports.take(), QStringList());
    label.selectMode = true;
    move(label, {10, 11}, noButton);
    move(label, {10, 12}, rightButton);
    QCOMPARE(reports.take(), QStringList({"mouse_move 20 22", "mouse_move 20 24"}));
}

void tst_MyImage::passesIdleMovesOn()
{
    // The base class leaves a move to the parent; a move that is used stays here.
    MyImage label;
    label.setMouseTracking(true); // as its owner does: without it no hover arrives
    label.setPixmap(pattern(50, 50));
    QVERIFY(!move(label, {1, 1}, noButton));
    label.selectMode = true;
    QVERIFY(move(label, {1, 1}, noButton));
}

void tst_MyImage::neverReportsAClick()
{
    MyImage label;
    label.setPixmap(pattern(50, 50));
    QSignalSpy clicks(&label, &MyImage::clicked);
    for (const bool selectMode : {false, true}) {
        label.selectMode = selectMode;
        QTest::mouseClick(&label, Qt::LeftButton, Qt::NoModifier, {10, 10});
        QTest::mouseDClick(&label, Qt::LeftButton, Qt::NoModifier, {10, 10});
        QTest::mouseClick(&label, Qt::RightButton, Qt::NoModifier, {10, 10});
    }
    QCOMPARE(clicks.count(), 0);
}

void tst_MyImage::farPositionsAreReported()
{
    MyImage label;
    label.resize(100, 60);
    label.setPixmap(pattern(200, 120));
    for (const bool scaled : {false, true}) {
        label.setScaledContents(scaled);
        // Beyond an int after scaling: the one value that stands for it.
        const QString edge = QString::number(scaled ? INT_MIN : INT_MAX);
        Reports reports(label);
        press(label, {INT_MAX, INT_MIN});
        move(label, {INT_MIN, INT_MAX}, leftButton);
        QCOMPARE(reports.take().first(), QString("mouseleftdown %1 -2147483648").arg(edge));
        release(label, {INT_MIN, INT_MAX});
        QCOMPARE(reports.take().size(), 1);
    }
}

void tst_MyImage::paintsTheWholePictureFitted_data()
{
    QTest::addColumn<QSize>("widget");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("covered");
    QTest::newRow("reduced, wide: empty below") << QSize(100, 90) << QSize(333, 111) << QSize(100, 33);
    QTest::newRow("reduced, tall: empty on the right") << QSize(100, 90) << QSize(111, 333) << QSize(30, 90);
    QTest::newRow("enlarged") << QSize(100, 90) << QSize(7, 5) << QSize(100, 71);
    QTest::newRow("same size") << QSize(100, 90) << QSize(100, 90) << QSize(100, 90);
}

void tst_MyImage::paintsTheWholePictureFitted()
{
    QFETCH(QSize, widget);
    QFETCH(QSize, picture);
    QFETCH(QSize, covered);
    MyImage label;
    label.setFrameShape(QFrame::Box);
    label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label.resize(widget);
    label.setScaledContents(true);
    const QPixmap pixmap = pattern(picture.width(), picture.height());
    label.setPixmap(pixmap);

    QImage expected(widget, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(QPointF(0, 0), covered), pixmap, QRectF(pixmap.rect()));
    painter.end();
    QCOMPARE(painted(label), expected);
}

void tst_MyImage::paintsThePictureOneToOne()
{
    MyImage label;
    label.setFrameShape(QFrame::Box);
    label.setAlignment(Qt::AlignCenter);
    label.resize(100, 90);
    const QPixmap pixmap = pattern(60, 120);
    label.setPixmap(pixmap);

    QImage expected(100, 90, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QPainter painter(&expected);
    painter.drawPixmap(0, 0, pixmap);
    painter.end();
    QCOMPARE(painted(label), expected);
}

// The picture reaches over the frame, so that an old one would keep a border there.
void tst_MyImage::paintsItsFrameAnewToo()
{
    MyImage label;
    QCOMPARE(repaintedBySecondPicture(label), QRegion(0, 0, 100, 90));
}

void tst_MyImage::paintsNothingWithoutAPicture_data()
{
    QTest::addColumn<bool>("wasCleared");
    QTest::addColumn<bool>("scaled");
    QTest::newRow("never had one") << false << false;
    QTest::newRow("never had one, scaled") << false << true;
    QTest::newRow("given a null one") << true << false;
    QTest::newRow("given a null one, scaled") << true << true;
}

void tst_MyImage::paintsNothingWithoutAPicture()
{
    QFETCH(bool, wasCleared);
    QFETCH(bool, scaled);
    MyImage label;
    label.setFrameShape(QFrame::Box);
    label.setScaledContents(scaled);
    label.setText("text");
    label.resize(40, 30);
    if (wasCleared) {
        label.setPixmap(pattern(10, 10));
        label.setPixmap(QPixmap());
    }
    QImage expected(40, 30, QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::green);
    QCOMPARE(painted(label), expected);
}

QTEST_MAIN(tst_MyImage)
#include "tst_myimage.moc"
