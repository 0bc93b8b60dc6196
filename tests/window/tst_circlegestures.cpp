#include "circlewindow.h"
#include "imagecompare.h"

#include <QGuiApplication>

#include <climits>

Q_DECLARE_METATYPE(QImage::Format)

/// Marking the disc with the mouse: events of the window system over the shown picture.
class tst_CircleGestures : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void typedCircleIsDrawn_data();
    void typedCircleIsDrawn();
    void everyPhotographIsShownAsArgb32_data();
    void everyPhotographIsShownAsArgb32();
    void hiddenCircleLeavesThePhotograph();
    void penIsTheWindowsPen();
    void drawANewCircle_data();
    void drawANewCircle();
    void drawingShowsASolidSquare();
    void dragAlongOneAxisDrawsNoFeedback_data();
    void dragAlongOneAxisDrawsNoFeedback();
    void circlesBelowFivePixelsAreDropped_data();
    void circlesBelowFivePixelsAreDropped();
    void dragAtAHandleMoves_data();
    void dragAtAHandleMoves();
    void centreHandleComesFirst();
    void dragAtACornerResizes_data();
    void dragAtACornerResizes();
    void pressInsideDoesNothing();
    void pressOutsideRemovesTheCircle();
    void removalStaysArmed();
    void pressDecidesInOrder_data();
    void pressDecidesInOrder();
    void resizingGoesBeforeMoving();
    void rightClickToggles();
    void rightClickWithoutARadiusShowsNothing_data();
    void rightClickWithoutARadiusShowsNothing();
    void rightClickWithoutAPhotographToggles();
    void rightClickDuringADragEndsIt();
    void gesturesWithoutAPhotographDoNothing();
    void clickedDoesNothing();
    void everySignalOfThePictureReachesItsSlot();

private:
    std::unique_ptr<CircleWindow> m_window;
};

void tst_CircleGestures::init()
{
    m_window = std::make_unique<CircleWindow>();
}

void tst_CircleGestures::cleanup()
{
    m_window.reset();
}

void tst_CircleGestures::typedCircleIsDrawn_data()
{
    QTest::addColumn<int>("centerX");
    QTest::addColumn<int>("centerY");
    QTest::addColumn<int>("radius");
    QTest::newRow("inside the picture") << 200 << 200 << 100;
    QTest::newRow("radius 3, smaller than the mouse can draw") << 50 << 60 << 3;
    QTest::newRow("radius 0") << 50 << 60 << 0;
    QTest::newRow("negative radius") << 200 << 200 << -40;
    QTest::newRow("beyond every edge") << 200 << 200 << 1000;
    QTest::newRow("centre left of and above the picture") << -50 << -20 << 120;
    QTest::newRow("nothing in the picture") << 5000 << 5000 << 10;
}

void tst_CircleGestures::typedCircleIsDrawn()
{
    QFETCH(int, centerX);
    QFETCH(int, centerY);
    QFETCH(int, radius);
    m_window->ui->lineCenterX->setText(QString::number(centerX));
    m_window->ui->lineCenterY->setText(QString::number(centerY));
    m_window->ui->lineRadius->setText(QString::number(radius));
    QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return);
    const SelectionCircle typed{centerX, centerY, radius};
    QCOMPARE(circleOf(*m_window), typed);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(typed));
}

void tst_CircleGestures::everyPhotographIsShownAsArgb32_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("opaque") << QImage::Format_RGB32;
    QTest::newRow("with alpha") << QImage::Format_ARGB32;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("palette") << QImage::Format_Indexed8;
}

void tst_CircleGestures::everyPhotographIsShownAsArgb32()
{
    QFETCH(QImage::Format, format);
    const QImage photograph = colourfulPhotograph({300, 280}, format);
    m_window->open(photograph);
    QCOMPARE(m_window->image.format(), format);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
    COMPARE_IMAGES(m_window->image, photograph);
}

void tst_CircleGestures::hiddenCircleLeavesThePhotograph()
{
    m_window->selectShow = false;
    m_window->updateSelect();
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
}

void tst_CircleGestures::penIsTheWindowsPen()
{
    m_window->penColor = QColor(0, 40, 200, 120);
    m_window->penSize = 9;
    m_window->updateSelect();
    COMPARE_IMAGES(m_window->shownPicture(),
                   uncachedPicture(m_window->image, CircleWindow::firstCircle, QColor(0, 40, 200, 120), 9));
}

void tst_CircleGestures::drawANewCircle_data()
{
    QTest::addColumn<bool>("fitted");
    QTest::newRow("picture at 1:1") << false;
    QTest::newRow("picture fitted to half its size") << true;
}

void tst_CircleGestures::drawANewCircle()
{
    QFETCH(bool, fitted);
    if (fitted)
        m_window->fitHalved();
    m_window->click({40, 40}, Qt::RightButton); // no circle: a drag draws one
    QVERIFY(!m_window->selectShow);

    m_window->press({100, 120});
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
    QCOMPARE(conversionsDuring([&] { m_window->moveTo({160, 140}); }), 0);
    COMPARE_IMAGES(m_window->shownPicture(),
                   m_window->uncached(SelectionCircle{100, 120, 60}, Qt::SolidLine));
    m_window->moveTo({90, 60}); // back over the press point, further up than left
    COMPARE_IMAGES(m_window->shownPicture(),
                   m_window->uncached(SelectionCircle{100, 120, 60}, Qt::SolidLine));
    m_window->moveTo({140, 200});
    COMPARE_IMAGES(m_window->shownPicture(),
                   m_window->uncached(SelectionCircle{100, 120, 80}, Qt::SolidLine));
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle); // feedback only
    QCOMPARE(m_window->typedCircle(), CircleWindow::firstCircle);
    QVERIFY(!m_window->selectShow);

    m_window->release({140, 200});
    const SelectionCircle drawn{100, 120, 80 + m_window->scale()}; // a release counts both of its edge pixels
    QCOMPARE(circleOf(*m_window), drawn);
    QCOMPARE(m_window->typedCircle(), SelectionCircle({100, 120, drawn.radius}));
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->ui->label->selectMode);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(drawn));
}

void tst_CircleGestures::drawingShowsASolidSquare()
{
    const SelectionCircle circle{100, 100, 40};
    const QImage dotted = m_window->uncached(circle, Qt::DotLine);
    const QImage solid = m_window->uncached(circle, Qt::SolidLine);
    QVERIFY(dotted != solid);
    m_window->click({40, 40}, Qt::RightButton);
    m_window->press({100, 100});
    m_window->moveTo({140, 140});
    COMPARE_IMAGES(m_window->shownPicture(), solid);
    m_window->release({139, 139});
    COMPARE_IMAGES(m_window->shownPicture(), dotted);
}

void tst_CircleGestures::dragAlongOneAxisDrawsNoFeedback_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::newRow("to the right") << QPoint(180, 120);
    QTest::newRow("to the left") << QPoint(20, 120);
    QTest::newRow("up") << QPoint(100, 20);
    QTest::newRow("down") << QPoint(100, 220);
    QTest::newRow("nowhere") << QPoint(100, 120);
}

void tst_CircleGestures::dragAlongOneAxisDrawsNoFeedback()
{
    QFETCH(QPoint, position);
    m_window->click({40, 40}, Qt::RightButton);
    m_window->press({100, 120});
    m_window->moveTo(position);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
    m_window->moveTo({130, 160});
    m_window->moveTo(position); // the last feedback stays
    COMPARE_IMAGES(m_window->shownPicture(),
                   m_window->uncached(SelectionCircle{100, 120, 40}, Qt::SolidLine));
}

void tst_CircleGestures::circlesBelowFivePixelsAreDropped_data()
{
    QTest::addColumn<bool>("fitted");
    QTest::addColumn<QPoint>("release");
    QTest::addColumn<int>("radius"); // 0: dropped
    QTest::newRow("a click") << false << QPoint(100, 120) << 0;
    QTest::newRow("4 pixels, both ends counted") << false << QPoint(103, 123) << 0;
    QTest::newRow("5 pixels, both ends counted") << false << QPoint(104, 124) << 5;
    QTest::newRow("5 pixels in one direction only") << false << QPoint(101, 124) << 5;
    QTest::newRow("5 pixels along an axis") << false << QPoint(104, 120) << 5;
    QTest::newRow("4 pixels backwards") << false << QPoint(97, 117) << 0;
    QTest::newRow("5 pixels backwards") << false << QPoint(96, 116) << 5;
    QTest::newRow("fitted, 2 pixels of the screen") << true << QPoint(102, 122) << 0;
    QTest::newRow("fitted, 3 pixels of the screen") << true << QPoint(104, 124) << 6;
}

void tst_CircleGestures::circlesBelowFivePixelsAreDropped()
{
    QFETCH(bool, fitted);
    QFETCH(QPoint, release);
    QFETCH(int, radius);
    if (fitted)
        m_window->fitHalved();
    m_window->click({40, 40}, Qt::RightButton);
    m_window->press({100, 120});
    m_window->moveTo({150, 160});
    m_window->moveTo(release);
    QVERIFY(m_window->shownPicture() != m_window->uncached(std::nullopt)); // some feedback to erase
    m_window->release(release);
    const bool dropped = radius == 0;
    QCOMPARE(m_window->selectShow, !dropped);
    QCOMPARE(m_window->ui->label->selectMode, !dropped);
    QCOMPARE(circleOf(*m_window), dropped ? CircleWindow::firstCircle : SelectionCircle({100, 120, radius}));
    if (dropped)
        COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
    else
        COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{100, 120, radius}));
}

void tst_CircleGestures::dragAtAHandleMoves_data()
{
    QTest::addColumn<bool>("fitted");
    QTest::addColumn<QPoint>("handle");
    for (const bool fitted : {false, true}) {
        const char *how = fitted ? "fitted" : "1:1";
        QTest::addRow("%s, centre", how) << fitted << QPoint(200, 200);
        QTest::addRow("%s, beside the centre", how) << fitted << QPoint(206, 196);
        QTest::addRow("%s, line at the right", how) << fitted << QPoint(300, 200);
        QTest::addRow("%s, line at the top", how) << fitted << QPoint(200, 100);
        QTest::addRow("%s, inner side of the line", how) << fitted << QPoint(106, 200);
        QTest::addRow("%s, outer side of the line", how) << fitted << QPoint(200, 306);
        QTest::addRow("%s, line between two corners", how) << fitted << QPoint(270, 270);
    }
    QTest::addRow("1:1, 105 pixels from the centre at the right") << false << QPoint(305, 200);
}

void tst_CircleGestures::dragAtAHandleMoves()
{
    QFETCH(bool, fitted);
    QFETCH(QPoint, handle);
    if (fitted)
        m_window->fitHalved();
    m_window->press(handle);
    QVERIFY(m_window->moving);
    QVERIFY(!m_window->resizing);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));

    QCOMPARE(conversionsDuring([&] { m_window->moveTo(handle + QPoint(30, -20)); }), 0);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{230, 180, 100}));
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle); // feedback only
    QCOMPARE(m_window->typedCircle(), CircleWindow::firstCircle);

    m_window->moveTo(handle + QPoint(-40, 10));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{160, 210, 100}));
    m_window->release(handle + QPoint(-60, 20));
    const SelectionCircle moved{140, 220, 100};
    QCOMPARE(circleOf(*m_window), moved);
    QCOMPARE(m_window->typedCircle(), SelectionCircle({140, 220, 100}));
    QVERIFY(!m_window->moving);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(moved));
}

void tst_CircleGestures::centreHandleComesFirst()
{
    m_window->setCircle({200, 200, 2});
    m_window->press({203, 200});
    QVERIFY(m_window->moving);
    m_window->release({213, 190});
    QCOMPARE(circleOf(*m_window), SelectionCircle({210, 190, 2}));
}

void tst_CircleGestures::dragAtACornerResizes_data()
{
    QTest::addColumn<bool>("fitted");
    QTest::addColumn<QPoint>("corner");
    for (const bool fitted : {false, true}) {
        const char *how = fitted ? "fitted" : "1:1";
        QTest::addRow("%s, lower right", how) << fitted << QPoint(300, 300);
        QTest::addRow("%s, lower left", how) << fitted << QPoint(100, 300);
        QTest::addRow("%s, upper left", how) << fitted << QPoint(100, 100);
        QTest::addRow("%s, upper right", how) << fitted << QPoint(300, 100);
        QTest::addRow("%s, outer edge", how) << fitted << QPoint(308, 308);
    }
    QTest::addRow("1:1, 105 pixels from the centre both ways") << false << QPoint(305, 305);
}

void tst_CircleGestures::dragAtACornerResizes()
{
    QFETCH(bool, fitted);
    QFETCH(QPoint, corner);
    if (fitted)
        m_window->fitHalved();
    m_window->press(corner);
    QVERIFY(m_window->resizing);
    QVERIFY(!m_window->moving);
    const int pressed = std::max(qAbs(corner.x() - 200), qAbs(corner.y() - 200));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{200, 200, pressed}));

    QCOMPARE(conversionsDuring([&] { m_window->moveTo({240, 130}); }), 0);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{200, 200, 70}));
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle); // feedback only
    QCOMPARE(m_window->typedCircle(), CircleWindow::firstCircle);

    m_window->moveTo({200, 200});
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{200, 200, 0}));
    m_window->release({80, 210});
    const SelectionCircle resized{200, 200, 120};
    QCOMPARE(circleOf(*m_window), resized);
    QCOMPARE(m_window->typedCircle(), SelectionCircle({200, 200, 120}));
    QVERIFY(!m_window->resizing);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(resized));
}

void tst_CircleGestures::pressInsideDoesNothing()
{
    const QPoint inside(240, 240);
    QCOMPARE(conversionsDuring([&] {
                 m_window->press(inside);
                 m_window->moveTo(inside + QPoint(20, 30));
             }),
             0);
    QVERIFY(!m_window->moving);
    QVERIFY(!m_window->resizing);
    QVERIFY(!m_window->clearPending);
    m_window->release(inside + QPoint(20, 30));
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    QVERIFY(m_window->selectShow);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
}

void tst_CircleGestures::pressOutsideRemovesTheCircle()
{
    const QPoint outside(309, 200);
    m_window->press(outside);
    QVERIFY(m_window->clearPending);
    QVERIFY(m_window->selectShow);
    m_window->moveTo(outside + QPoint(10, 20));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
    m_window->release(outside + QPoint(10, 20));
    QVERIFY(!m_window->selectShow);
    QVERIFY(!m_window->ui->label->selectMode);
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle); // the values stay
    QCOMPARE(m_window->typedCircle(), CircleWindow::firstCircle);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
}

void tst_CircleGestures::removalStaysArmed()
{
    m_window->click({309, 200});
    QVERIFY(!m_window->selectShow);
    QVERIFY(m_window->clearPending);
    m_window->click({200, 200}, Qt::RightButton);
    QVERIFY(m_window->selectShow);

    m_window->press({200, 200}); // a move is no removal
    m_window->release({210, 210});
    QVERIFY(m_window->selectShow);
    m_window->press({310, 310}); // nor is resizing
    m_window->release({310, 310});
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->clearPending);

    m_window->click({250, 250}); // inside, away from the handles
    QVERIFY(!m_window->selectShow);
    QVERIFY(m_window->clearPending);
}

void tst_CircleGestures::pressDecidesInOrder_data()
{
    QTest::addColumn<int>("radius");
    QTest::addColumn<QPoint>("offset");
    QTest::addColumn<bool>("wasResizing");
    QTest::addColumn<bool>("moving");
    QTest::addColumn<bool>("resizing");
    QTest::addColumn<bool>("clearPending");
    const QPoint centre(0, 0);
    QTest::newRow("centre") << 100 << centre << false << true << false << false;
    QTest::newRow("centre leaves a resize that never ended")
        << 100 << centre << true << true << true << false;
    QTest::newRow("line") << 100 << QPoint(-100, 0) << false << true << false << false;
    QTest::newRow("corner") << 100 << QPoint(100, -100) << false << false << true << false;
    QTest::newRow("inside ends a resize") << 100 << QPoint(40, 40) << true << false << false << false;
    QTest::newRow("outside ends a resize") << 100 << QPoint(-109, 0) << true << false << false << true;
    QTest::newRow("just outside a corner") << 100 << QPoint(109, 109) << false << false << false << true;
    QTest::newRow("radius 0: centre") << 0 << QPoint(3, 3) << false << true << false << false;
    QTest::newRow("radius 0: the square around the centre is inside, turned round")
        << 0 << QPoint(8, 8) << false << false << false << false;
    QTest::newRow("radius 8: corner") << 8 << QPoint(14, 14) << false << false << true << false;
    QTest::newRow("radius 4: line around the centre handle")
        << 4 << QPoint(10, 0) << false << true << false << false;
    QTest::newRow("radius -30: only the centre can be held")
        << -30 << centre << false << true << false << false;
}

void tst_CircleGestures::pressDecidesInOrder()
{
    QFETCH(int, radius);
    QFETCH(QPoint, offset);
    QFETCH(bool, wasResizing);
    m_window->setCircle({200, 200, radius});
    m_window->moving = true;
    m_window->resizing = wasResizing;
    m_window->moveStartX = m_window->moveStartY = 7;
    m_window->press(QPoint(200, 200) + offset);
    QTEST(m_window->moving, "moving");
    QTEST(m_window->resizing, "resizing");
    QTEST(m_window->clearPending, "clearPending");
    const QPoint start(m_window->moveStartX, m_window->moveStartY);
    QCOMPARE(start, m_window->moving ? QPoint(200, 200) + offset : QPoint(7, 7));
    QCOMPARE(circleOf(*m_window), SelectionCircle({200, 200, radius}));
}

void tst_CircleGestures::resizingGoesBeforeMoving()
{
    m_window->resizing = true; // left over from a drag whose picture vanished
    m_window->press({200, 200});
    QVERIFY(m_window->moving);
    m_window->moveTo({230, 200});
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{200, 200, 30}));
    m_window->release({250, 200});
    QCOMPARE(circleOf(*m_window), SelectionCircle({200, 200, 50}));
    QVERIFY(!m_window->resizing);
    QVERIFY(m_window->moving);
}

void tst_CircleGestures::rightClickToggles()
{
    QCOMPARE(conversionsDuring([&] { m_window->press({10, 10}, Qt::RightButton); }), 0);
    QVERIFY(m_window->selectShow); // the release decides
    m_window->release({400, 30}, Qt::RightButton);
    QVERIFY(!m_window->selectShow);
    QVERIFY(!m_window->ui->label->selectMode);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    m_window->click({200, 200}, Qt::RightButton);
    QVERIFY(m_window->selectShow);
    QVERIFY(m_window->ui->label->selectMode);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
}

void tst_CircleGestures::rightClickWithoutARadiusShowsNothing_data()
{
    QTest::addColumn<int>("radius");
    QTest::newRow("radius 0") << 0;
    QTest::newRow("negative radius") << -1;
    QTest::newRow("lowest radius") << INT_MIN;
}

void tst_CircleGestures::rightClickWithoutARadiusShowsNothing()
{
    QFETCH(int, radius);
    m_window->click({10, 10}, Qt::RightButton);
    m_window->radius = radius;
    m_window->click({10, 10}, Qt::RightButton);
    QVERIFY(!m_window->selectShow);
    QVERIFY(!m_window->ui->label->selectMode);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
}

void tst_CircleGestures::rightClickWithoutAPhotographToggles()
{
    FreshWindow window;
    window.radius = 10;
    window.mouse(QTest::MouseClick, window.ui->label, {30, 30}, Qt::RightButton);
    QVERIFY(window.selectShow);
    QVERIFY(window.ui->label->selectMode);
    QVERIFY(window.shownPicture().isNull());
    window.mouse(QTest::MouseClick, window.ui->label, {30, 30}, Qt::RightButton);
    QVERIFY(!window.selectShow);
    QVERIFY(!window.ui->label->selectMode);
}

void tst_CircleGestures::rightClickDuringADragEndsIt()
{
    m_window->press({200, 200});
    m_window->moveTo({220, 220});
    m_window->press({220, 220}, Qt::RightButton);
    m_window->release({220, 220}, Qt::RightButton);
    QVERIFY(!m_window->moving);
    QVERIFY(!m_window->selectShow);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(std::nullopt));
    // The left button goes on drawing a new circle, from where the right one was pressed.
    m_window->moveTo({240, 230});
    COMPARE_IMAGES(m_window->shownPicture(),
                   m_window->uncached(SelectionCircle{220, 220, 20}, Qt::SolidLine));
    m_window->release({240, 230});
    QCOMPARE(circleOf(*m_window), SelectionCircle({220, 220, 21}));
    QVERIFY(m_window->selectShow);
}

void tst_CircleGestures::gesturesWithoutAPhotographDoNothing()
{
    FreshWindow window;
    MyImage *label = window.ui->label;
    window.mouse(QTest::MousePress, label, {100, 100});
    QVERIFY(!label->leftDown);
    window.mouse(QTest::MouseMove, label, {180, 190});
    window.mouse(QTest::MouseRelease, label, {180, 190});
    QCOMPARE(circleOf(window), SelectionCircle());
    QVERIFY(!window.selectShow);
    QVERIFY(window.shownPicture().isNull());

    // Nor do the reports of a drag whose photograph has gone.
    emit label->size_changing(50, 50, 50, 50, 90, 90, 90, 90);
    QVERIFY(window.shownPicture().isNull());
    emit label->size_changed(50, 50, 40);
    QCOMPARE(circleOf(window), SelectionCircle());
    QVERIFY(!window.selectShow);
}

void tst_CircleGestures::clickedDoesNothing()
{
    const MessageCollector collector;
    emit m_window->ui->label->clicked(200, 200);
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    QVERIFY(m_window->selectShow && !m_window->moving && !m_window->resizing && !m_window->clearPending);
    QCOMPARE(collector.messages(), QStringList());
}

void tst_CircleGestures::everySignalOfThePictureReachesItsSlot()
{
    MyImage *label = m_window->ui->label;
    emit label->mouseleftdown(200, 200);
    QVERIFY(m_window->moving);
    emit label->size_changing(0, 0, 0, 0, 0, 0, 210, 205);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{210, 205, 100}));
    emit label->mouseleftup(220, 210);
    QCOMPARE(circleOf(*m_window), SelectionCircle({220, 210, 100}));
    emit label->mouse_move(220, 210);
    QVERIFY(QGuiApplication::overrideCursor());
    emit label->mouserightup();
    QVERIFY(!m_window->selectShow);
    emit label->size_changed(50, 60, 5);
    QCOMPARE(circleOf(*m_window), SelectionCircle({50, 60, 5}));
}

WINDOW_TEST_MAIN(tst_CircleGestures)
#include "tst_circlegestures.moc"
