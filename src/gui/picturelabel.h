#pragma once

#include "picturescale.h"

#include <QMouseEvent>
#include <QPixmap>

class QLabel;

/// What the two picture widgets, MyImage and MyImage2, have in common: a label that shows its pixmap at the
/// top-left corner, fitted to the widget while its contents are scaled and 1:1 otherwise.

/// The label's picture; null when none was set, and when a null one was.
QPixmap pictureOf(const QLabel &label);

/// How that picture lies in the label now.
PictureScale pictureScaleOf(const QLabel &label, const QPixmap &picture);

/// Paints the picture and nothing else: no frame, no text, and nothing at all without a picture.
void paintPicture(QLabel &label);

// The parts of the mouse handlers that are the same. Each widget declares the signals that they emit.

/// A press: begins a drag if the left button is held. All buttons that are held count, not the one that changed:
/// a right press during a left drag begins it anew.
template <typename Widget>
void pressPicture(Widget &widget, const QMouseEvent &event)
{
    if (event.buttons() & Qt::LeftButton) {
        const QPixmap picture = pictureOf(widget);
        if (picture.isNull())
            return;
        widget.leftDown = true;
        widget.pressPos = event.pos();
        const QPoint p = pictureScaleOf(widget, picture).toPicture(widget.pressPos);
        emit widget.mouseleftdown(p.x(), p.y());
    }
    if (event.buttons() & Qt::RightButton)
        widget.rightDown = true;
}

/// Reports a move with the left button held.
template <typename Widget>
void reportDrag(Widget &widget, const PictureDrag &drag)
{
    emit widget.size_changing(drag.press.x(), drag.press.y(), drag.first.x(), drag.first.y(), drag.last.x(),
                              drag.last.y(), drag.position.x(), drag.position.y());
}

/// The end of every release: reports the right button and forgets those that are up.
template <typename Widget>
void forgetReleased(Widget &widget, Qt::MouseButtons held)
{
    if (widget.rightDown && !(held & Qt::RightButton))
        emit widget.mouserightup();
    if (!(held & Qt::LeftButton))
        widget.leftDown = false;
    if (!(held & Qt::RightButton))
        widget.rightDown = false;
}
