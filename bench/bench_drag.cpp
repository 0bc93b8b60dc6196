// Times what a hand feels: one step of a drag that moves the circle, from the mouse event to the painted
// widget. The uncached way (convert the whole photograph, draw, make a pixmap) and the overlay take turns in
// every round, so that a busy machine slows both alike; medians are printed. Before anything is timed, the
// picture and the widget of both ways are compared pixel by pixel. Then what comes before and after a drag: opening a
// photograph, and a preview. Run it with QT_QPA_PLATFORM=offscreen.
#include "circleoverlay.h"
#include "mainwindow.h"
#include "myimage.h"
#include "previewwindow.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <vector>

namespace
{

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

using Way = std::function<QPixmap(const SelectionCircle &)>;

/// A picture on the screen whose circle is dragged about by its centre.
class Drag
{
public:
    Drag(QSize photograph, Way way) : m_circle(defaultCircle(photograph)), m_way(std::move(way))
    {
        m_label.setScaledContents(true);
        m_label.setMinimumSize(320, 240);
        m_label.resize(900, 700);
        m_label.selectMode = true;
        m_label.setPixmap(m_way(m_circle));
        QObject::connect(&m_label, &MyImage::mouseleftdown, [this](int x, int y) { m_start = {x, y}; });
        QObject::connect(&m_label, &MyImage::size_changing,
                         [this](int, int, int, int, int, int, int x, int y) {
                             m_label.setPixmap(QPixmap());
                             m_label.setPixmap(m_way(moved(m_circle, m_start, {x, y})));
                         });
        m_label.show();
        QApplication::processEvents();
        send(QEvent::MouseButtonPress, {300, 200}, Qt::LeftButton);
    }

    /// Milliseconds of one step.
    double step(int number)
    {
        const auto start = std::chrono::steady_clock::now();
        send(QEvent::MouseMove, QPoint(300, 200) + QPoint(number % 40, number % 23), Qt::NoButton);
        m_label.repaint();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

    QImage picture() const { return m_label.pixmap(Qt::ReturnByValue).toImage(); }
    QImage widget() { return m_label.grab().toImage(); }

private:
    void send(QEvent::Type type, QPoint position, Qt::MouseButton changed)
    {
        QMouseEvent event(type, position, changed, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_label, &event);
    }

    SelectionCircle m_circle;
    Way m_way;
    MyImage m_label;
    QPoint m_start;
};

QImage photograph(QSize size, bool withAlpha)
{
    QImage image(size, withAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            line[x] = qRgba(x * 7 % 256, y * 3 % 256, (x ^ y) % 256, withAlpha && x < 100 ? x : 255);
    }
    return image;
}

double median(std::vector<double> times)
{
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

bool measure(const QString &name, const QImage &image)
{
    const CirclePen pen{Qt::red, 3, Qt::DotLine};
    CircleOverlay overlay;
    Drag uncached(image.size(), [&](const SelectionCircle &circle) {
        QImage copy = image.convertToFormat(QImage::Format_ARGB32);
        paintCircle(copy, circle, pen);
        return QPixmap::fromImage(copy);
    });
    Drag fast(image.size(),
              [&](const SelectionCircle &circle) { return overlay.picture(image, circle, pen); });

    constexpr int comparedSteps = 5;
    for (int i = 0; i < comparedSteps; ++i) {
        uncached.step(i);
        fast.step(i);
        if (uncached.picture() != fast.picture() || uncached.picture().format() != fast.picture().format() ||
            uncached.widget() != fast.widget()) {
            out() << name << ": FAILED, step " << i << " differs\n";
            return false;
        }
    }
    std::vector<double> uncachedTimes;
    std::vector<double> fastTimes;
    constexpr int rounds = 25;
    for (int i = 0; i < rounds; ++i) {
        uncachedTimes.push_back(uncached.step(i));
        fastTimes.push_back(fast.step(i));
    }
    // The first steps after a photograph has been shown, which find nothing prepared but its picture.
    std::vector<double> firstTimes;
    std::vector<double> secondTimes;
    for (int i = 0; i < 7; ++i) {
        CircleOverlay fresh;
        Drag drag(image.size(),
                  [&](const SelectionCircle &circle) { return fresh.picture(image, circle, pen); });
        firstTimes.push_back(drag.step(1));
        secondTimes.push_back(drag.step(2));
    }
    const double before = median(uncachedTimes);
    const double after = median(fastTimes);
    out() << QString("%1  uncached %2 ms  overlay %3 ms  factor %4  first steps %5, %6 ms\n")
                 .arg(name, -34)
                 .arg(before, 6, 'f', 1)
                 .arg(after, 5, 'f', 1)
                 .arg(before / after, 5, 'f', 1)
                 .arg(median(firstTimes), 5, 'f', 1)
                 .arg(median(secondTimes), 5, 'f', 1);
    return true;
}

double milliseconds(const std::function<void()> &job)
{
    const auto start = std::chrono::steady_clock::now();
    job();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The window, whose commands are called as its slots call them.
class Window : public MainWindow
{
public:
    void open(const QString &path)
    {
        loadFileName = path;
        loadImage();
        ui->label->repaint();
    }
    void preview()
    {
        convertImage();
        previewWindow->repaint();
    }
    void preparePreview(QSize map)
    {
        outputSizeX = map.width();
        outputSizeY = map.height();
        distance = 6.6;
        latitude = 35;
        previewWindow->show();
    }
};

void measureWindow()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("photo.jpg"));
    photograph({6000, 4000}, false).save(path, nullptr, 90);
    Window window;
    window.show();
    std::vector<double> decoding;
    std::vector<double> opening;
    for (int i = 0; i < 9; ++i) {
        decoding.push_back(milliseconds([&] { QImage image(path); }));
        opening.push_back(milliseconds([&] { window.open(path); }));
    }
    out() << QString("24 megapixels, a JPEG: decoded in %1 ms, opened and painted in %2 ms\n")
                 .arg(median(decoding), 0, 'f', 1)
                 .arg(median(opening), 0, 'f', 1);
    window.preparePreview({8192, 4096});
    std::vector<double> previews;
    for (int i = 0; i < 9; ++i)
        previews.push_back(milliseconds([&] { window.preview(); }));
    out() << QString("Preview of 8192 x 4096, converted and painted in %1 ms\n")
                 .arg(median(previews), 0, 'f', 1);
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QApplication application(argc, argv);
    bool ok = true;
    ok = measure("12 megapixels", photograph({4000, 3000}, false)) && ok;
    ok = measure("24 megapixels", photograph({6000, 4000}, false)) && ok;
    ok = measure("12 megapixels with alpha", photograph({4000, 3000}, true)) && ok;
    ok = measure("24 megapixels with alpha", photograph({6000, 4000}, true)) && ok;
    measureWindow();
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
