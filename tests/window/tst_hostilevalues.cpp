#include "cputime.h"
#include "freshwindow.h"
#include "imagecompare.h"
#include "messagecollector.h"
#include "modaldriver.h"
#include "previewwindow.h"
#include "windowreference.h"

#include <QFile>

#include <limits>

namespace
{

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

const QVector<int> hostileInts{smallest, smallest + 1, -65536, -32769, -1,    0,       1,
                               32767,    32768,        65535,  65536,  70000, 1 << 30, largest};

const double inf = std::numeric_limits<double>::infinity();
const QVector<double> hostileDoubles{-inf,
                                     std::numeric_limits<double>::lowest(),
                                     -2147483649.0,
                                     -1.0,
                                     -0.0,
                                     4.9406564584124654e-324,
                                     0.5,
                                     1.0,
                                     1.0000000000000002,
                                     1e10,
                                     std::numeric_limits<double>::max(),
                                     inf,
                                     std::numeric_limits<double>::quiet_NaN()};

QString named(double value)
{
    return QString::number(value, 'g', 17);
}

} // namespace

/// Values that no dialog lets in but a settings file does: nothing may crash, hang or be undefined, and the map
/// is still that of the formulas.
class tst_HostileValues : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void hostileCirclesGiveTheReferenceMap_data();
    void hostileCirclesGiveTheReferenceMap();
    void hostilePensNeitherCrashNorHang_data();
    void hostilePensNeitherCrashNorHang();
    void hostileDoublesGiveTheReferenceMap_data();
    void hostileDoublesGiveTheReferenceMap();
    void sizesWithoutPixelsGiveNoMap_data();
    void sizesWithoutPixelsGiveNoMap();
    void slimMapsEqualTheReference_data();
    void slimMapsEqualTheReference();
    void photographsOfOnePixel_data();
    void photographsOfOnePixel();

private:
    QImage previewed();

    std::unique_ptr<FreshWindow> m_window;
};

void tst_HostileValues::init()
{
    m_window = std::make_unique<FreshWindow>();
    m_window->outputSizeX = 32;
    m_window->outputSizeY = 16;
    m_window->open(colourfulPhotograph(), "planet.png");
    QVERIFY(!m_window->image.isNull());
}

void tst_HostileValues::cleanup()
{
    m_window.reset();
}

// The map that the preview shows after its button was pressed.
QImage tst_HostileValues::previewed()
{
    QTest::mouseClick(m_window->ui->btnPreview, Qt::LeftButton);
    m_window->previewWindow->grab();
    return shownMap(*m_window);
}

void tst_HostileValues::hostileCirclesGiveTheReferenceMap_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("r");
    for (const int value : hostileInts) {
        QTest::addRow("centre x %d", value) << value << 36 << 35;
        QTest::addRow("centre y %d", value) << 48 << value << 35;
        QTest::addRow("radius %d", value) << 48 << 36 << value;
        QTest::addRow("all three %d", value) << value << value << value;
    }
    QTest::newRow("far left above, huge") << smallest << smallest << largest;
    QTest::newRow("far right below, negative") << largest << largest << smallest;
}

// Shown, moved, resized, stepped and converted.
void tst_HostileValues::hostileCirclesGiveTheReferenceMap()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, r);
    m_window->ui->lineCenterX->setText(QString::number(x));
    m_window->ui->lineCenterY->setText(QString::number(y));
    m_window->ui->lineRadius->setText(QString::number(r));
    QTest::keyClick(m_window->ui->lineRadius, Qt::Key_Return);
    QCOMPARE(m_window->centerX, x);
    QCOMPARE(m_window->centerY, y);
    QCOMPARE(m_window->radius, r);
    COMPARE_IMAGES(previewed(), referenceMap(*m_window));

    auto *picture = m_window->ui->label;
    for (const QPoint target : {QPoint(5, 5), QPoint(90, 70), QPoint(48, 36)}) {
        QTest::mouseMove(picture, target);
        QTest::mousePress(picture, Qt::LeftButton, Qt::NoModifier, target);
        QMouseEvent move(QEvent::MouseMove, target / 2, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(picture, &move);
        QTest::mouseRelease(picture, Qt::LeftButton, Qt::NoModifier, target / 2);
        QTest::mouseClick(picture, Qt::RightButton, Qt::NoModifier, target);
    }
    for (QPushButton *button : {m_window->ui->btnUp, m_window->ui->btnDown, m_window->ui->btnLeft,
                                m_window->ui->btnRight, m_window->ui->btnSizeUp, m_window->ui->btnSizeDown})
        QTest::mouseClick(button, Qt::LeftButton);
    m_window->slot("click_timer");
    COMPARE_IMAGES(previewed(), referenceMap(*m_window));
    QVERIFY(!m_window->grab().isNull());
    QVERIFY(m_window->close());
}

void tst_HostileValues::hostilePensNeitherCrashNorHang_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("radius");
    for (const int size : hostileInts) {
        for (const int radius : {35, 1 << 30, largest, smallest})
            QTest::addRow("pen %d, radius %d", size, radius) << size << radius;
    }
}

void tst_HostileValues::hostilePensNeitherCrashNorHang()
{
    QFETCH(int, size);
    QFETCH(int, radius);
    m_window->penSize = size;
    m_window->radius = radius;
    const qint64 before = cpuMilliseconds();
    m_window->updateSelect();
    m_window->penColor = QColor();
    m_window->updateSelect();
    QVERIFY2(cpuMilliseconds() - before < 5000, "painting the circle takes seconds");
    QCOMPARE(m_window->ui->label->pixmap(Qt::ReturnByValue).size(), QSize(96, 72));
    QVERIFY(!m_window->grab().isNull());
}

void tst_HostileValues::hostileDoublesGiveTheReferenceMap_data()
{
    QTest::addColumn<double>("distance");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("azimuth");
    for (const double value : hostileDoubles) {
        const QByteArray name = named(value).toLatin1();
        QTest::addRow("distance %s", name.constData()) << value << 0.0 << 0.0 << 0.0;
        QTest::addRow("latitude %s", name.constData()) << 100.0 << value << 0.0 << 0.0;
        QTest::addRow("longitude %s", name.constData()) << 100.0 << 0.0 << value << 0.0;
        QTest::addRow("azimuth %s", name.constData()) << 100.0 << 0.0 << 0.0 << value;
        QTest::addRow("all four %s", name.constData()) << value << value << value << value;
    }
}

void tst_HostileValues::hostileDoublesGiveTheReferenceMap()
{
    QFETCH(double, distance);
    QFETCH(double, latitude);
    QFETCH(double, longitude);
    QFETCH(double, azimuth);
    m_window->distance = distance;
    m_window->latitude = latitude;
    m_window->longitude = longitude;
    m_window->azimuth = azimuth;
    const QImage map = previewed();
    QCOMPARE(map.size(), QSize(32, 16));
    COMPARE_IMAGES(map, referenceMap(*m_window));
}

void tst_HostileValues::sizesWithoutPixelsGiveNoMap_data()
{
    QTest::addColumn<QSize>("size");
    for (const int value : {smallest, -1, 0}) {
        QTest::addRow("width %d", value) << QSize(value, 16);
        QTest::addRow("height %d", value) << QSize(32, value);
        QTest::addRow("both %d", value) << QSize(value, value);
    }
    QTest::newRow("more pixels than can be counted") << QSize(largest, largest);
    QTest::newRow("a row longer than can be counted") << QSize(largest, 1);
}

void tst_HostileValues::sizesWithoutPixelsGiveNoMap()
{
    QFETCH(QSize, size);
    m_window->outputSizeX = size.width();
    m_window->outputSizeY = size.height();
    m_window->azimuth = 30.0;
    const MessageCollector collector;
    QVERIFY(previewed().isNull());
    QCOMPARE(collector.messages().filter("Convert error"), QStringList()); // at once
}

void tst_HostileValues::slimMapsEqualTheReference_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(1, 1), QSize(1, 2), QSize(2, 1), QSize(1, 500), QSize(500, 1),
                             QSize(32767, 2), QSize(2, 32767), QSize(3, 3)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_HostileValues::slimMapsEqualTheReference()
{
    QFETCH(QSize, size);
    m_window->outputSizeX = size.width();
    m_window->outputSizeY = size.height();
    m_window->azimuth = 30.0;
    const QImage map = previewed();
    QCOMPARE(map.size(), size);
    COMPARE_IMAGES(map, referenceMap(*m_window));
}

void tst_HostileValues::photographsOfOnePixel_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize size : {QSize(1, 1), QSize(1, 300), QSize(300, 1), QSize(2, 2)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void tst_HostileValues::photographsOfOnePixel()
{
    QFETCH(QSize, size);
    QVERIFY(colourfulPhotograph(size).save(m_window->filePath("tiny.png")));
    m_window->ui->actionAuto_Size->trigger(); // fitted, which divides by the picture's size
    m_window->centerX = 0;
    m_window->loadFileName = m_window->filePath("tiny.png");
    m_window->loadImage();
    QVERIFY(!m_window->grab().isNull());
    QTest::mouseClick(m_window->ui->label, Qt::LeftButton);
    QTest::mouseClick(m_window->ui->label, Qt::RightButton);
    COMPARE_IMAGES(previewed(), referenceMap(*m_window));
}

WINDOW_TEST_MAIN(tst_HostileValues)
#include "tst_hostilevalues.moc"
