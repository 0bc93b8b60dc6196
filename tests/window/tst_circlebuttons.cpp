#include "circlewindow.h"
#include "imagecompare.h"
#include "patience.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <climits>

class tst_CircleButtons;

Q_DECLARE_METATYPE(std::function<void(tst_CircleButtons &)>)
Q_DECLARE_METATYPE(SelectionCircle)

namespace
{

/// The numbers of a debug line such as "name,  1 ,  2", without its name.
QList<int> numbersOf(const QString &line)
{
    QList<int> numbers;
    for (const QString &part : line.split(',').mid(1))
        numbers.append(part.trimmed().toInt());
    return numbers;
}

} // namespace

/// Changing the circle without the mouse over it: line edits, buttons, and when the preview follows.
class tst_CircleButtons : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void returnTakesAllThreeEdits_data();
    void returnTakesAllThreeEdits();
    void textsBecomeNumbers_data();
    void textsBecomeNumbers();
    void typingAloneChangesNothing();
    void screenParametersAreLogged();
    void buttonStepsTickByTick_data();
    void buttonStepsTickByTick();
    void clickMovesByOnePixel_data();
    void clickMovesByOnePixel();
    void heldButtonRepeatsByItself();
    void releaseOutsideKeepsRepeating();
    void pressTurnsTheTimerRepeatingAgain();
    void stepsWrapAround_data();
    void stepsWrapAround();
    void radiusFallsBelowZero();
    void buttonsWorkWithoutAPhotograph();
    void finishedEditsRefreshThePreview_data();
    void finishedEditsRefreshThePreview();
    void previewNeedsAutoPreviewAndItsWindow_data();
    void previewNeedsAutoPreviewAndItsWindow();

private:
    QPushButton *button(const QString &name) const { return m_window->findChild<QPushButton *>(name); }

    std::unique_ptr<CircleWindow> m_window;
};

void tst_CircleButtons::init()
{
    m_window = std::make_unique<CircleWindow>();
}

void tst_CircleButtons::cleanup()
{
    m_window.reset();
}

void tst_CircleButtons::returnTakesAllThreeEdits_data()
{
    QTest::addColumn<QString>("edit");
    for (const char *edit : {"lineCenterX", "lineCenterY", "lineRadius"})
        QTest::newRow(edit) << edit;
}

void tst_CircleButtons::returnTakesAllThreeEdits()
{
    QFETCH(QString, edit);
    m_window->ui->lineCenterX->setText("150");
    m_window->ui->lineCenterY->setText("160");
    m_window->ui->lineRadius->setText("70");
    auto *line = m_window->findChild<QLineEdit *>(edit);
    line->setFocus();
    line->selectAll();
    QTest::keyClicks(line, "90");
    QTest::keyClick(line, Qt::Key_Return);
    SelectionCircle typed{150, 160, 70};
    (edit == "lineCenterX" ? typed.centerX : edit == "lineCenterY" ? typed.centerY : typed.radius) = 90;
    QCOMPARE(circleOf(*m_window), typed);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(typed));
}

void tst_CircleButtons::textsBecomeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("number");
    QTest::newRow("number") << "120" << 120;
    QTest::newRow("blanks around it") << "  120 " << 120;
    QTest::newRow("plus sign") << "+7" << 7;
    QTest::newRow("negative") << "-5" << -5;
    QTest::newRow("leading zeros are decimal") << "010" << 10;
    QTest::newRow("nothing") << "" << 0;
    QTest::newRow("junk") << "abc" << 0;
    QTest::newRow("junk behind a number") << "12px" << 0;
    QTest::newRow("fraction") << "3.7" << 0;
    QTest::newRow("hexadecimal") << "0x10" << 0;
    QTest::newRow("exponent") << "1e3" << 0;
    QTest::newRow("thousands") << "1,000" << 0;
    QTest::newRow("too large") << "99999999999" << 0;
    QTest::newRow("one above the highest") << "2147483648" << 0;
    QTest::newRow("highest") << "2147483647" << INT_MAX;
    QTest::newRow("lowest") << "-2147483648" << INT_MIN;
}

void tst_CircleButtons::textsBecomeNumbers()
{
    QFETCH(QString, text);
    QFETCH(int, number);
    for (QLineEdit *line : {m_window->ui->lineCenterX, m_window->ui->lineCenterY, m_window->ui->lineRadius}) {
        line->clear();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
        QCOMPARE(line->text(), text); // as typed
    }
    QCOMPARE(circleOf(*m_window), SelectionCircle({number, number, number}));
}

void tst_CircleButtons::typingAloneChangesNothing()
{
    QLineEdit *line = m_window->ui->lineRadius;
    line->clear();
    QTest::keyClicks(line, "33");
    m_window->ui->lineCenterX->setFocus();
    QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(CircleWindow::firstCircle));
    m_window->slot("click_timer"); // a tick overwrites what was typed
    QCOMPARE(line->text(), QString::number(100 + m_window->stepR));
}

void tst_CircleButtons::screenParametersAreLogged()
{
    m_window->radius = -3;
    m_window->centerX = 12;
    m_window->centerY = INT_MAX;
    const MessageCollector collector;
    m_window->updateScreenParameter();
    const QStringList lines = collector.messages();
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.at(0).startsWith("updateScreenParameter, "));
    QCOMPARE(numbersOf(lines.at(0)), QList<int>({-3, 12, INT_MAX}));
    QVERIFY(lines.at(1).startsWith("SetScreenParameter, "));
    QCOMPARE(numbersOf(lines.at(1)), QList<int>({-3, 12, INT_MAX}));
    QCOMPARE(m_window->ui->lineRadius->text(), QString("-3"));
    QCOMPARE(m_window->ui->lineCenterX->text(), QString("12"));
    QCOMPARE(m_window->ui->lineCenterY->text(), QString("2147483647"));
}

void tst_CircleButtons::buttonStepsTickByTick_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("dx");
    QTest::addColumn<int>("dy");
    QTest::addColumn<int>("dr");
    QTest::newRow("up") << "btnUp" << 0 << -1 << 0;
    QTest::newRow("down") << "btnDown" << 0 << 1 << 0;
    QTest::newRow("left") << "btnLeft" << -1 << 0 << 0;
    QTest::newRow("right") << "btnRight" << 1 << 0 << 0;
    QTest::newRow("larger") << "btnSizeUp" << 0 << 0 << 1;
    QTest::newRow("smaller") << "btnSizeDown" << 0 << 0 << -1;
}

void tst_CircleButtons::buttonStepsTickByTick()
{
    QFETCH(QString, name);
    QFETCH(int, dx);
    QFETCH(int, dy);
    QFETCH(int, dr);
    const auto after = [&](int steps) {
        return SelectionCircle{200 + steps * dx, 200 + steps * dy, 100 + steps * dr};
    };
    m_window->previewWindow->show();
    // A button that loses the focus is not held any longer: the windows have to come to rest first.
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), m_window->previewWindow.get(), patienceMs);
    m_window->activateWindow();
    QTRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), m_window.get(), patienceMs);
    m_window->autoPreview = true;
    m_window->clickTimer->blockSignals(true); // the ticks are given by hand
    const auto tick = [&] { return conversionsDuring([&] { m_window->slot("click_timer"); }); };

    m_window->mouse(QTest::MousePress, button(name), {10, 10});
    QVERIFY(m_window->clickTimer->isActive());
    QVERIFY(!m_window->clickTimer->isSingleShot());
    QCOMPARE(m_window->clickTimer->interval(), 100);
    QCOMPARE(m_window->stepDelay, 10);
    for (int left = 9; left >= 0; --left) {
        m_window->ui->lineRadius->setText("typed");
        QCOMPARE(tick(), 1); // waiting ticks refresh everything, too
        QCOMPARE(m_window->stepDelay, left);
        QCOMPARE(m_window->ui->lineRadius->text(), QString("100"));
        QCOMPARE(circleOf(*m_window), CircleWindow::firstCircle);
    }
    for (int steps = 1; steps <= 3; ++steps) {
        QCOMPARE(tick(), 1);
        QCOMPARE(circleOf(*m_window), after(steps));
        QCOMPARE(m_window->typedCircle(), after(steps));
        COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(after(steps)));
    }

    QCOMPARE(conversionsDuring([&] { m_window->mouse(QTest::MouseRelease, button(name), {10, 10}); }), 0);
    QCOMPARE(circleOf(*m_window), after(4));
    QCOMPARE(m_window->stepDelay, 1);
    QVERIFY(m_window->clickTimer->isSingleShot());
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(after(3))); // shown with the tick
    QCOMPARE(tick(), 1);
    QCOMPARE(m_window->stepDelay, 0);
    QCOMPARE(circleOf(*m_window), after(4));
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(after(4)));
}

void tst_CircleButtons::clickMovesByOnePixel_data()
{
    buttonStepsTickByTick_data();
}

void tst_CircleButtons::clickMovesByOnePixel()
{
    QFETCH(QString, name);
    QFETCH(int, dx);
    QFETCH(int, dy);
    QFETCH(int, dr);
    const MessageCollector collector;
    const SelectionCircle next{200 + dx, 200 + dy, 100 + dr};
    m_window->mouse(QTest::MouseClick, button(name), {10, 10});
    QCOMPARE(circleOf(*m_window), next);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->clickTimer->isActive(), patienceMs); // its single tick has come
    QCOMPARE(countOf(collector.messages(), "click_timer()"), 1);
    QCOMPARE(circleOf(*m_window), next);
    QCOMPARE(m_window->typedCircle(), next);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(next));
}

void tst_CircleButtons::heldButtonRepeatsByItself()
{
    const MessageCollector collector;
    QElapsedTimer held;
    held.start();
    m_window->mouse(QTest::MousePress, m_window->ui->btnRight, {10, 10});
    QTRY_VERIFY_WITH_TIMEOUT(m_window->centerX >= 202, patienceMs);
    QVERIFY(held.elapsed() >= 1100); // ten ticks of waiting, then two steps
    QCOMPARE(countOf(collector.messages(), "click_timer()"), 10 + m_window->centerX - 200);
    const int stepped = m_window->centerX;
    m_window->clickTimer->blockSignals(true);
    m_window->mouse(QTest::MouseRelease, m_window->ui->btnRight, {10, 10});
    QCOMPARE(m_window->centerX, stepped + 1);
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->clickTimer->isActive(), patienceMs);
}

void tst_CircleButtons::releaseOutsideKeepsRepeating()
{
    m_window->clickTimer->blockSignals(true);
    m_window->mouse(QTest::MousePress, m_window->ui->btnUp, {10, 10});
    m_window->mouse(QTest::MouseMove, m_window->ui->widget, {150, 320});
    m_window->mouse(QTest::MouseRelease, m_window->ui->widget, {150, 320});
    QVERIFY(!m_window->ui->btnUp->isDown());
    QVERIFY(m_window->clickTimer->isActive());
    QVERIFY(!m_window->clickTimer->isSingleShot());
    for (int ticks = 0; ticks < 15; ++ticks)
        m_window->slot("click_timer");
    QCOMPARE(circleOf(*m_window), SelectionCircle({200, 195, 100}));

    m_window->mouse(QTest::MouseClick, m_window->ui->btnSizeUp, {10, 10});
    QVERIFY(m_window->clickTimer->isSingleShot());
    m_window->slot("click_timer");
    QCOMPARE(circleOf(*m_window), SelectionCircle({200, 195, 101}));
    QTRY_VERIFY_WITH_TIMEOUT(!m_window->clickTimer->isActive(), patienceMs);
}

void tst_CircleButtons::pressTurnsTheTimerRepeatingAgain()
{
    m_window->clickTimer->blockSignals(true);
    m_window->mouse(QTest::MouseClick, m_window->ui->btnLeft, {10, 10});
    QVERIFY(m_window->clickTimer->isSingleShot());
    m_window->mouse(QTest::MousePress, m_window->ui->btnLeft, {10, 10});
    QVERIFY(!m_window->clickTimer->isSingleShot());
    QCOMPARE(m_window->stepDelay, 10);
    QVERIFY(m_window->clickTimer->isActive());
}

void tst_CircleButtons::stepsWrapAround_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<SelectionCircle>("from");
    QTest::addColumn<SelectionCircle>("to");
    QTest::newRow("right of the highest")
        << "btnRight" << SelectionCircle{INT_MAX, 0, 0} << SelectionCircle{INT_MIN, 0, 0};
    QTest::newRow("left of the lowest")
        << "btnLeft" << SelectionCircle{INT_MIN, 0, 0} << SelectionCircle{INT_MAX, 0, 0};
    QTest::newRow("below the highest")
        << "btnDown" << SelectionCircle{0, INT_MAX, 0} << SelectionCircle{0, INT_MIN, 0};
    QTest::newRow("above the lowest")
        << "btnUp" << SelectionCircle{0, INT_MIN, 0} << SelectionCircle{0, INT_MAX, 0};
    QTest::newRow("larger than the largest")
        << "btnSizeUp" << SelectionCircle{0, 0, INT_MAX} << SelectionCircle{0, 0, INT_MIN};
    QTest::newRow("smaller than the smallest")
        << "btnSizeDown" << SelectionCircle{0, 0, INT_MIN} << SelectionCircle{0, 0, INT_MAX};
}

void tst_CircleButtons::stepsWrapAround()
{
    QFETCH(QString, name);
    QFETCH(SelectionCircle, from);
    QFETCH(SelectionCircle, to);
    m_window->clickTimer->blockSignals(true);
    m_window->setCircle(from);
    m_window->mouse(QTest::MouseClick, button(name), {10, 10});
    QCOMPARE(circleOf(*m_window), to);
    m_window->setCircle(from);
    m_window->stepDelay = 0;
    m_window->slot("click_timer");
    QCOMPARE(circleOf(*m_window), to);
}

void tst_CircleButtons::radiusFallsBelowZero()
{
    m_window->clickTimer->blockSignals(true);
    m_window->setCircle({200, 200, 2});
    m_window->mouse(QTest::MousePress, m_window->ui->btnSizeDown, {10, 10});
    for (int ticks = 0; ticks < 10; ++ticks)
        m_window->slot("click_timer");
    for (int radius = 1; radius >= -20; --radius) {
        m_window->slot("click_timer");
        QCOMPARE(m_window->radius, radius);
        COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(SelectionCircle{200, 200, radius}));
    }
}

void tst_CircleButtons::buttonsWorkWithoutAPhotograph()
{
    FreshWindow window;
    window.mouse(QTest::MouseClick, window.ui->btnLeft, {10, 10});
    QCOMPARE(circleOf(window), SelectionCircle({-1, 0, 0}));
    QTRY_COMPARE_WITH_TIMEOUT(window.ui->lineCenterX->text(), QString("-1"), patienceMs);
    QVERIFY(window.shownPicture().isNull());
}

void tst_CircleButtons::finishedEditsRefreshThePreview_data()
{
    using Edit = std::function<void(tst_CircleButtons &)>;
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<int>("conversions");
    const auto row = [](const char *name, int conversions, const Edit &edit) {
        QTest::newRow(name) << edit << conversions;
    };
    row("Return in a line edit", 1,
        [](tst_CircleButtons &t) { QTest::keyClick(t.m_window->ui->lineCenterX, Qt::Key_Return); });
    row("a move, on its release", 1, [](tst_CircleButtons &t) {
        t.m_window->press({200, 200});
        t.m_window->moveTo({210, 200});
        t.m_window->release({220, 200});
    });
    row("a resize, on its release", 1, [](tst_CircleButtons &t) {
        t.m_window->press({300, 300});
        t.m_window->moveTo({310, 310});
        t.m_window->release({320, 320});
    });
    row("a new circle, on its release; not the toggle before it", 1, [](tst_CircleButtons &t) {
        t.m_window->click({5, 5}, Qt::RightButton);
        t.m_window->press({100, 100});
        t.m_window->moveTo({150, 150});
        t.m_window->release({150, 150});
    });
    row("a dropped circle", 1, [](tst_CircleButtons &t) {
        t.m_window->click({5, 5}, Qt::RightButton);
        t.m_window->click({100, 100});
    });
    row("a tick", 1, [](tst_CircleButtons &t) { t.m_window->slot("click_timer"); });
    row("a click inside", 0, [](tst_CircleButtons &t) { t.m_window->click({240, 240}); });
    row("removing the circle", 0, [](tst_CircleButtons &t) {
        t.m_window->click({320, 320});
        QVERIFY(!t.m_window->selectShow);
    });
    row("toggling the circle twice", 0, [](tst_CircleButtons &t) {
        t.m_window->click({240, 240}, Qt::RightButton);
        t.m_window->click({240, 240}, Qt::RightButton);
    });
    row("hovering", 0, [](tst_CircleButtons &t) { t.m_window->moveTo({200, 200}); });
    row("pressing and releasing a button, before their ticks", 0, [](tst_CircleButtons &t) {
        t.m_window->clickTimer->blockSignals(true);
        t.m_window->mouse(QTest::MouseClick, t.m_window->ui->btnUp, {10, 10});
    });
    row("resetting the circle", 0,
        [](tst_CircleButtons &t) { t.m_window->ui->actionParam_Reset->trigger(); });
    row("opening a photograph", 0, [](tst_CircleButtons &t) {
        t.m_window->open(colourfulPhotograph({300, 300}));
    });
}

void tst_CircleButtons::finishedEditsRefreshThePreview()
{
    QFETCH(std::function<void(tst_CircleButtons &)>, edit);
    QFETCH(int, conversions);
    m_window->ui->actionAuto_Preview->trigger();
    m_window->ui->actionPreview_Window->trigger();
    const QImage before = shownMap(*m_window);
    QCOMPARE(before.size(), QSize(64, 32));
    m_window->longitude = 30; // shows whether the map is a new one

    QCOMPARE(conversionsDuring([&] { edit(*this); }), conversions);
    COMPARE_IMAGES(shownMap(*m_window), conversions > 0 ? referenceMap(*m_window) : before);
}

void tst_CircleButtons::previewNeedsAutoPreviewAndItsWindow_data()
{
    QTest::addColumn<bool>("autoPreview");
    QTest::addColumn<bool>("window");
    QTest::newRow("neither") << false << false;
    QTest::newRow("auto preview, window hidden") << true << false;
    QTest::newRow("window, no auto preview") << false << true;
    QTest::newRow("both") << true << true;
}

void tst_CircleButtons::previewNeedsAutoPreviewAndItsWindow()
{
    QFETCH(bool, autoPreview);
    QFETCH(bool, window);
    if (autoPreview)
        m_window->ui->actionAuto_Preview->trigger();
    if (window)
        m_window->ui->actionPreview_Window->trigger();
    QCOMPARE(conversionsDuring([&] { QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return); }),
             autoPreview && window ? 1 : 0);
}

WINDOW_TEST_MAIN(tst_CircleButtons)
#include "tst_circlebuttons.moc"
