#pragma once

#include "photographs.h"
#include "previewwindow.h"
#include "testwindow.h"

#include <QLabel>
#include <QPainter>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>

/// The main window of a fresh installation in a folder of its own, as it is before it has read anything.
class InstalledWindow : public TestWindow
{
public:
    InstalledWindow()
    {
        settingFile = filePath("tool.ini");
        langFile = filePath("tool_lang.ini");
    }
    ~InstalledWindow() override
    {
        while (QGuiApplication::overrideCursor()) // each hover over the circle leaves one behind
            QGuiApplication::restoreOverrideCursor();
    }
    Q_DISABLE_COPY_MOVE(InstalledWindow)

    QString folder() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

    /// Reads texts and settings and appears, with the start-up pass still to come: it has to be called.
    void appear()
    {
        readShowString();
        show();
        startTimer->stop();
    }

    /// Opens a photograph from a file, without loss. The circle is the default one while the old one has a
    /// zero.
    void open(const QImage &photograph, const QString &name = QStringLiteral("photo.png"))
    {
        if (!photograph.save(filePath(name)))
            qFatal("cannot write the photograph");
        loadFileName = filePath(name);
        loadImage();
    }

private:
    QTemporaryDir m_folder;
};

/// The same, shown, with the start-up pass behind it. Maps are small, so that conversions take no time.
class FreshWindow : public InstalledWindow
{
public:
    FreshWindow()
    {
        QApplication::setQuitOnLastWindowClosed(false); // a closed window must not end the other tests
        appear();
        outputSizeX = 64;
        outputSizeY = 32;
        slot("timeout");
        QCoreApplication::processEvents();
    }

    /// Shows a circle, as if it had been drawn.
    void setCircle(const SelectionCircle &circle)
    {
        centerX = circle.centerX;
        centerY = circle.centerY;
        radius = circle.radius;
        selectShow = true;
        ui->label->selectMode = true;
        updateScreenParameter();
        updateSelect();
    }

    /// What the picture widget shows; null without a picture.
    QImage shownPicture() const { return ui->label->pixmap(Qt::ReturnByValue).toImage(); }

    /// A mouse event from the window system at a position of one of the window's widgets.
    void mouse(QTest::MouseAction action, const QWidget *widget, QPoint position,
               Qt::MouseButton button = Qt::LeftButton)
    {
        const QPoint inWindow = widget->mapTo(this, position);
        QTest::mouseEvent(action, windowHandle(), button, Qt::NoModifier, inWindow);
    }
};

inline bool operator==(const SelectionCircle &a, const SelectionCircle &b)
{
    return a.centerX == b.centerX && a.centerY == b.centerY && a.radius == b.radius;
}

/// For QCOMPARE's messages.
inline char *toString(const SelectionCircle &circle)
{
    return qstrdup(
        qPrintable(QString("(%1, %2) %3").arg(circle.centerX).arg(circle.centerY).arg(circle.radius)));
}

inline SelectionCircle circleOf(const TestWindow &window)
{
    return {window.centerX, window.centerY, window.radius};
}

/// The map in the preview window; null while there is none.
inline QImage shownMap(const TestWindow &window)
{
    return window.previewWindow->findChild<QLabel *>("label2")->pixmap(Qt::ReturnByValue).toImage();
}

/// The photograph with a circle without any cache: a fresh ARGB32 copy, painted on, made a pixmap.
inline QImage uncachedPicture(const QImage &photograph, const std::optional<SelectionCircle> &circle,
                              const QColor &color = Qt::red, int penSize = 3,
                              Qt::PenStyle square = Qt::DotLine)
{
    QImage copy = photograph.convertToFormat(QImage::Format_ARGB32);
    if (circle) {
        const auto [cx, cy, r] = *circle;
        QPen pen(QBrush(color), static_cast<qreal>(penSize), Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
        QPainter painter(&copy);
        painter.setPen(pen);
        painter.drawEllipse(QRect(cx - r, cy - r, 2 * r, 2 * r));
        painter.drawLine(cx, cy - 2 * penSize, cx, cy + 2 * penSize);
        painter.drawLine(cx - 2 * penSize, cy, cx + 2 * penSize, cy);
        pen.setStyle(square);
        painter.setPen(pen);
        painter.drawRect(QRect(QPoint(cx - r, cy - r), QPoint(cx + r, cy + r)));
    }
    return QPixmap::fromImage(copy).toImage();
}
