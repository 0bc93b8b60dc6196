#pragma once

#include "picturelabel.h"

/// The photograph on the screen. It shows the pixmap that it is given and reports mouse gestures in pixels of
/// that pixmap; what a gesture means is decided by whoever listens.
class MyImage : public PictureLabel
{
    Q_OBJECT

public:
    explicit MyImage(QWidget *parent = nullptr);

    bool selectMode = false; ///< a circle exists, gestures edit it; written by the owner, never in here

signals:
    void mouseleftdown(int x, int y);
    void mouseleftup(int x, int y);
    void mouserightup();
    void clicked(int x, int y);
    void size_changed(int x, int y, int r);
    void size_changing(int cx, int cy, int x1, int y1, int x2, int y2, int x, int y);
    void mouse_move(int x, int y);

protected:
    bool followsHover() const override;
    void leftPressed(QPoint position) override;
    void dragged(const PictureDrag &drag) override;
    void hovered(QPoint position) override;
    void dragEnded(const PictureDrag &drag) override;
    void rightReleased() override;
};
