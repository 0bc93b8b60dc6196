#include "picturelabel.h"

#include <QMouseEvent>
#include <QPainter>

void PictureLabel::setPixmap(const QPixmap &picture)
{
    QLabel::setPixmap(picture);
    update();
}

QPixmap PictureLabel::picture() const
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    return pixmap(Qt::ReturnByValue);
#else
    const QPixmap *picture = pixmap();
    return picture ? *picture : QPixmap();
#endif
}

PictureScale PictureLabel::scaleOf(QSize picture) const
{
    return {size(), picture, hasScaledContents()};
}

// The handlers keep the size of the picture only: who hears of a gesture changes the pixels of the next picture in
// place, unless somebody has the last one still.

void PictureLabel::mousePressEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton) {
        const QSize shown = picture().size();
        if (shown.isEmpty())
            return;
        leftDown = true;
        pressPos = event->pos();
        leftPressed(scaleOf(shown).toPicture(pressPos));
    }
    if (event->buttons() & Qt::RightButton)
        rightDown = true;
}

void PictureLabel::mouseMoveEvent(QMouseEvent *event)
{
    if (!leftDown && !followsHover()) {
        QLabel::mouseMoveEvent(event);
        return;
    }
    const QSize shown = picture().size();
    if (shown.isEmpty())
        return;
    if (leftDown)
        dragged(scaleOf(shown).drag(pressPos, event->pos()));
    else
        hovered(scaleOf(shown).toPicture(event->pos()));
}

void PictureLabel::mouseReleaseEvent(QMouseEvent *event)
{
    const bool leftHeld = event->buttons() & Qt::LeftButton;
    const bool rightHeld = event->buttons() & Qt::RightButton;
    if (leftDown && !leftHeld) {
        const QSize shown = picture().size();
        if (shown.isEmpty())
            return; // the picture vanished in mid-drag: the flags wait for the next release
        dragEnded(scaleOf(shown).drag(pressPos, event->pos()));
    }
    if (rightDown && !rightHeld)
        rightReleased();
    if (!leftHeld)
        leftDown = false;
    if (!rightHeld)
        rightDown = false;
}

void PictureLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QPixmap shown = picture();
    if (shown.isNull())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, hasScaledContents());
    if (hasScaledContents())
        painter.drawPixmap(scaleOf(shown.size()).fittedRectangle(), shown, QRectF(QPointF(), shown.size()));
    else
        painter.drawPixmap(0, 0, shown);
}
