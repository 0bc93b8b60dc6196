#pragma once

#include "photographs.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPixmap>
#include <QStringList>
#include <QWidget>
#include <QtTest>

#include <utility>

/// What the tests of the two picture widgets share.
namespace picturewidgets
{

constexpr Qt::MouseButtons noButton = Qt::NoButton;
constexpr Qt::MouseButtons leftButton = Qt::LeftButton;
constexpr Qt::MouseButtons rightButton = Qt::RightButton;
constexpr Qt::MouseButtons bothButtons = Qt::LeftButton | Qt::RightButton;

/// A picture in which no two neighbours are alike.
inline QPixmap pattern(int width, int height)
{
    return QPixmap::fromImage(colourfulPhotograph({width, height}));
}

/// Everything that a picture widget reports, in order and as text: "size_changed 10 20 1".
class GestureReports
{
public:
    template <typename Widget>
    explicit GestureReports(Widget &widget)
    {
        note(widget, "mouseleftdown", &Widget::mouseleftdown);
        note(widget, "mouseleftup", &Widget::mouseleftup);
        note(widget, "mouserightup", &Widget::mouserightup);
        note(widget, "clicked", &Widget::clicked);
        note(widget, "size_changed", &Widget::size_changed);
        note(widget, "size_changing", &Widget::size_changing);
    }

    template <typename Widget, typename... Numbers>
    void note(Widget &widget, const QString &name, void (Widget::*signal)(Numbers...))
    {
        QObject::connect(&widget, signal, &m_receiver, [this, name](Numbers... numbers) {
            QStringList line{name};
            (line.append(QString::number(numbers)), ...);
            m_lines.append(line.join(' '));
        });
    }

    /// What was reported since the last call.
    QStringList take() { return std::exchange(m_lines, {}); }

private:
    QStringList m_lines;
    QObject m_receiver;
};

/// Sends one mouse event.
/// @param held  the buttons that are down after it
/// @return whether the widget accepted it
inline bool send(QWidget &widget, QEvent::Type type, QPoint position, Qt::MouseButton changed,
                 Qt::MouseButtons held)
{
    QMouseEvent event(type, position, changed, held, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

inline void press(QWidget &widget, QPoint position, Qt::MouseButton changed = Qt::LeftButton,
                  Qt::MouseButtons held = leftButton)
{
    send(widget, QEvent::MouseButtonPress, position, changed, held);
}

inline bool move(QWidget &widget, QPoint position, Qt::MouseButtons held)
{
    return send(widget, QEvent::MouseMove, position, Qt::NoButton, held);
}

inline void release(QWidget &widget, QPoint position, Qt::MouseButton changed = Qt::LeftButton,
                    Qt::MouseButtons held = noButton)
{
    send(widget, QEvent::MouseButtonRelease, position, changed, held);
}

/// What the widget itself paints over a green background.
inline QImage painted(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

/// What a widget paints on the screen when a picture is set over another one of the same size.
template <typename Widget>
QRegion repaintedBySecondPicture(Widget &label)
{
    class PaintedRegion : public QObject
    {
    public:
        QRegion region;

    protected:
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                region += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
    };
    label.setFrameShape(QFrame::Box);
    label.setScaledContents(true);
    label.setPixmap(pattern(100, 90));
    label.resize(100, 90);
    label.show();
    if (!QTest::qWaitForWindowExposed(&label))
        return {};
    QApplication::processEvents();
    PaintedRegion painted;
    label.installEventFilter(&painted);
    QPixmap other(100, 90);
    other.fill(Qt::white);
    label.setPixmap(other);
    QApplication::processEvents();
    label.removeEventFilter(&painted);
    return painted.region;
}

} // namespace picturewidgets
