#pragma once

#include "picturescale.h"

#include <QLabel>
#include <QPixmap>
#include <QPoint>

/// A label that shows its pixmap at the top-left corner, fitted to the widget while its contents are scaled and
/// 1:1 otherwise, and that knows mouse gestures in pixels of that pixmap. What is reported about a gesture is
/// left to the widgets made from it, each of which has signals of its own.
/// It has no Q_OBJECT: with one, the widgets' meta-objects would have this class between them and QLabel's, and
/// their signals other numbers.
class PictureLabel : public QLabel
{
public:
    using QLabel::QLabel;

    /// Shows a picture. The whole widget is painted anew, its frame too, over which the picture reaches: QLabel
    /// leaves that out.
    void setPixmap(const QPixmap &picture);

    /// The picture; null when none was set, and when a null one was.
    QPixmap picture() const;

    bool leftDown = false;  ///< the left button went down on a picture and has not been released
    bool rightDown = false; ///< the right button went down and has not been released
    QPoint pressPos;        ///< where the left button went down last, in widget pixels

protected:
    /// All buttons that are held count, not the one that changed: a right press during a left drag begins the
    /// drag anew.
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    /// Paints the picture and nothing else: no frame, no text, and nothing at all without a picture.
    void paintEvent(QPaintEvent *event) override;

    /// Whether moves without the left button are gestures too.
    virtual bool followsHover() const { return false; }

    // The gestures, in picture pixels. Each but the last one needs a picture.
    virtual void leftPressed(QPoint position) = 0;
    virtual void dragged(const PictureDrag &drag) = 0;
    virtual void hovered(QPoint /*position*/) {}
    virtual void dragEnded(const PictureDrag &drag) = 0;
    virtual void rightReleased() = 0;

private:
    PictureScale scaleOf(QSize picture) const;
};
