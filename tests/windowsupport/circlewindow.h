#pragma once

#include "freshwindow.h"
#include "messagecollector.h"
#include "patience.h"

#include <algorithm>
#include <functional>

/// A window with a photograph and a circle on it, and a mouse over the picture.
class CircleWindow : public FreshWindow
{
public:
    static constexpr SelectionCircle firstCircle{200, 200, 100};

    /// Shows the photograph at 1:1.
    CircleWindow()
    {
        ui->actionAuto_Size->trigger();
        open(colourfulPhotograph({420, 410}));
        setCircle(firstCircle);
        QCoreApplication::processEvents();
    }

    /// Shows a photograph that is twice as large as its widget, fitted. Positions in the picture stay as they
    /// were, if they are even.
    void fitHalved()
    {
        if (!ui->actionAuto_Size->isChecked())
            ui->actionAuto_Size->trigger();
        open(colourfulPhotograph({40, 40}));
        const bool settled = QTest::qWaitFor(
            [this] { return ui->label->size() == ui->scrollArea->viewport()->size(); }, patienceMs);
        const QSize label = ui->label->size();
        open(colourfulPhotograph(2 * label));
        setCircle(firstCircle);
        QCoreApplication::processEvents();
        if (!settled || ui->label->size() != label)
            qFatal("the picture's widget has not come to rest");
    }

    /// Picture pixels per pixel of the screen.
    int scale() const { return ui->label->hasScaledContents() ? 2 : 1; }

    void mouseAt(QTest::MouseAction action, QPoint inPicture, Qt::MouseButton button = Qt::LeftButton)
    {
        mouse(action, ui->label, inPicture / scale(), button);
    }
    void press(QPoint inPicture, Qt::MouseButton button = Qt::LeftButton)
    {
        mouseAt(QTest::MousePress, inPicture, button);
    }
    void moveTo(QPoint inPicture) { mouseAt(QTest::MouseMove, inPicture); }
    void release(QPoint inPicture, Qt::MouseButton button = Qt::LeftButton)
    {
        mouseAt(QTest::MouseRelease, inPicture, button);
    }
    void click(QPoint inPicture, Qt::MouseButton button = Qt::LeftButton)
    {
        press(inPicture, button);
        release(inPicture, button);
    }

    /// The circle that the line edits show.
    SelectionCircle typedCircle() const
    {
        return {ui->lineCenterX->text().toInt(), ui->lineCenterY->text().toInt(),
                ui->lineRadius->text().toInt()};
    }

    /// The photograph with a circle in the window's pen, painted anew on a copy.
    QImage uncached(const std::optional<SelectionCircle> &shown, Qt::PenStyle square = Qt::DotLine) const
    {
        return uncachedPicture(image, shown, penColor, penSize, square);
    }
};

inline int countOf(const QStringList &messages, const QString &line)
{
    return static_cast<int>(std::count(messages.begin(), messages.end(), line));
}

/// How often a map is computed for the preview or a file while something is done.
inline int conversionsDuring(const std::function<void()> &action)
{
    const MessageCollector collector;
    action();
    return countOf(collector.messages(), "convertImage");
}
