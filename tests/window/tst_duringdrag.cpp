#include "circlewindow.h"
#include "imagecompare.h"
#include "modaldriver.h"

/// The photograph changes in the middle of a drag over it; the picture does not move in memory.
class tst_DuringDrag : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dragGoesOnOnAnotherPhotograph();
    void dragWaitsForAPhotograph();
    void noStepCopiesThePicture();

private:
    std::unique_ptr<CircleWindow> m_window;
};

void tst_DuringDrag::init()
{
    m_window = std::make_unique<CircleWindow>();
}

void tst_DuringDrag::cleanup()
{
    m_window.reset();
}

void tst_DuringDrag::dragGoesOnOnAnotherPhotograph()
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

void tst_DuringDrag::dragWaitsForAPhotograph()
{
    m_window->press({200, 200});
    m_window->moveTo({220, 220});
    ModalDriver driver;
    driver.expect<QMessageBox>(
        [](QMessageBox *box) { QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton); });
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

// From the first step on: a copy of a large photograph takes longer than the rest of a step.
void tst_DuringDrag::noStepCopiesThePicture()
{
    const auto pixels = [this] { return m_window->shownPicture().constBits(); };
    const uchar *const shown = pixels();
    m_window->press({200, 200});
    for (int step = 1; step < 5; ++step) {
        m_window->moveTo({200 + step, 200 + 2 * step});
        QCOMPARE(pixels(), shown);
    }
    m_window->release({205, 210});
    QCOMPARE(pixels(), shown);
    COMPARE_IMAGES(m_window->shownPicture(), m_window->uncached(circleOf(*m_window)));
}

WINDOW_TEST_MAIN(tst_DuringDrag)
#include "tst_duringdrag.moc"
