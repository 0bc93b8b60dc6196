#include "circlewindow.h"

#include <QGuiApplication>
#include <QRegion>

namespace
{

/// The zones as the toolkit's own rectangles and ellipse regions draw them.
struct Zones {
    explicit Zones(const SelectionCircle &circle) : m_circle(circle) {}

    QRect square(int half) const
    {
        return {QPoint(m_circle.centerX - half, m_circle.centerY - half),
                QPoint(m_circle.centerX + half, m_circle.centerY + half)};
    }
    bool inDisc(int half, QPoint p) const { return QRegion(square(half), QRegion::Ellipse).contains(p); }
    bool movable(QPoint p) const
    {
        const int r = m_circle.radius;
        return inDisc(8, p) || (inDisc(r + 8, p) && !inDisc(r - 8, p));
    }
    std::optional<Qt::CursorShape> cursor(QPoint p) const
    {
        if (movable(p))
            return Qt::SizeAllCursor;
        if (square(m_circle.radius - 8).contains(p) || !square(m_circle.radius + 8).contains(p))
            return std::nullopt;
        const bool falling = (p.x() > m_circle.centerX && p.y() > m_circle.centerY) ||
                             (p.x() < m_circle.centerX && p.y() < m_circle.centerY);
        return falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor;
    }

private:
    SelectionCircle m_circle;
};

std::optional<Qt::CursorShape> shownCursor()
{
    const QCursor *cursor = QGuiApplication::overrideCursor();
    return cursor ? std::optional<Qt::CursorShape>(cursor->shape()) : std::nullopt;
}

} // namespace

/// The mouse cursor over the parts of the circle.
class tst_CircleCursor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void hoverShowsTheCursorOfTheZone_data();
    void hoverShowsTheCursorOfTheZone();
    void hoverZonesAreTheToolkitsRegions_data();
    void hoverZonesAreTheToolkitsRegions();
    void cursorsAreNotPaired();
    void hoverWithoutACirclePopsACursor();

private:
    std::unique_ptr<CircleWindow> m_window;
};

void tst_CircleCursor::init()
{
    m_window = std::make_unique<CircleWindow>();
}

void tst_CircleCursor::cleanup()
{
    m_window.reset();
}

void tst_CircleCursor::hoverShowsTheCursorOfTheZone_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<int>("shape"); // -1: none
    QTest::newRow("centre") << QPoint(200, 200) << int(Qt::SizeAllCursor);
    QTest::newRow("line") << QPoint(100, 200) << int(Qt::SizeAllCursor);
    QTest::newRow("upper left corner") << QPoint(100, 100) << int(Qt::SizeFDiagCursor);
    QTest::newRow("lower right corner") << QPoint(300, 300) << int(Qt::SizeFDiagCursor);
    QTest::newRow("upper right corner") << QPoint(300, 100) << int(Qt::SizeBDiagCursor);
    QTest::newRow("lower left corner") << QPoint(100, 300) << int(Qt::SizeBDiagCursor);
    QTest::newRow("inside") << QPoint(240, 240) << -1;
    QTest::newRow("outside") << QPoint(320, 240) << -1;
}

void tst_CircleCursor::hoverShowsTheCursorOfTheZone()
{
    QFETCH(QPoint, position);
    QFETCH(int, shape);
    for (const bool fitted : {false, true}) {
        if (fitted)
            m_window->fitHalved();
        m_window->mouse(QTest::MouseMove, m_window->ui->btnConvert, {5, 5});
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
        m_window->moveTo(position);
        const QCursor *cursor = QGuiApplication::overrideCursor();
        QCOMPARE(cursor ? int(cursor->shape()) : -1, shape);
    }
}

void tst_CircleCursor::hoverZonesAreTheToolkitsRegions_data()
{
    QTest::addColumn<int>("radius");
    QTest::newRow("radius 100") << 100;
    QTest::newRow("radius 17") << 17;
    QTest::newRow("radius 9") << 9;
    QTest::newRow("radius 8: an inner disc of a pixel") << 8;
    QTest::newRow("radius 5: no inner disc") << 5;
    QTest::newRow("radius 0") << 0;
}

void tst_CircleCursor::hoverZonesAreTheToolkitsRegions()
{
    QFETCH(int, radius);
    const SelectionCircle circle{200, 200, radius};
    m_window->setCircle(circle);
    const Zones zones(circle);
    const int reach = radius + 12;
    for (int along = -reach; along <= reach; ++along) {
        for (const QPoint offset :
             {QPoint(along, 0), QPoint(0, along), QPoint(along, along), QPoint(along, -along),
              QPoint(along, radius + 8), QPoint(radius + 8, along), QPoint(along, -radius),
              QPoint(8 - radius, along)}) {
            while (QGuiApplication::overrideCursor())
                QGuiApplication::restoreOverrideCursor();
            const QPoint p = QPoint(200, 200) + offset;
            emit m_window->ui->label->mouse_move(p.x(), p.y());
            if (shownCursor() != zones.cursor(p))
                QFAIL(qPrintable(QString("at %1, %2").arg(offset.x()).arg(offset.y())));
        }
    }
}

void tst_CircleCursor::cursorsAreNotPaired()
{
    for (const int x : {200, 201, 202})
        m_window->moveTo({x, 200});
    m_window->moveTo({300, 300});
    QCOMPARE(shownCursor(), std::make_optional(Qt::SizeFDiagCursor));
    for (const int x : {240, 241, 242}) {
        m_window->moveTo({x, 240});
        QCOMPARE(shownCursor(), std::make_optional(Qt::SizeAllCursor));
    }
    m_window->moveTo({243, 240});
    QCOMPARE(shownCursor(), std::nullopt);
    m_window->moveTo({244, 240}); // one pop too many does no harm
    QCOMPARE(shownCursor(), std::nullopt);
}

void tst_CircleCursor::hoverWithoutACirclePopsACursor()
{
    m_window->moveTo({200, 200});
    m_window->moveTo({201, 200});
    m_window->click({201, 200}, Qt::RightButton);
    m_window->moveTo({202, 200}); // outside circle mode nothing is reported
    QCOMPARE(shownCursor(), std::make_optional(Qt::SizeAllCursor));
    emit m_window->ui->label->mouse_move(200, 200);
    QCOMPARE(shownCursor(), std::make_optional(Qt::SizeAllCursor));
    emit m_window->ui->label->mouse_move(200, 200);
    QCOMPARE(shownCursor(), std::nullopt);
}

WINDOW_TEST_MAIN(tst_CircleCursor)
#include "tst_circlecursor.moc"
