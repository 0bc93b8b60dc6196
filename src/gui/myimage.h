#pragma once

#include <QLabel>
#include <QPoint>

/// The photograph on the screen. It shows the pixmap that it is given and reports mouse gestures in pixels of
/// that pixmap; what a gesture means is decided by whoever listens.
class MyImage : public QLabel
{
    Q_OBJECT

public:
    explicit MyImage(QWidget *parent = nullptr);

    bool selectMode = false; ///< a circle exists, gestures edit it; written by the owner, never in here
    bool leftDown = false;   ///< the left button went down on a picture and has not been released
    bool rightDown = false;  ///< the right button went down and has not been released
    QPoint pressPos;         ///< where the left button went down last, in widget pixels

signals:
    void mouseleftdown(int x, int y);
    void mouseleftup(int x, int y);
    void mouserightup();
    void clicked(int x, int y);
    void size_changed(int x, int y, int r);
    void size_changing(int cx, int cy, int x1, int y1, int x2, int y2, int x, int y);
    void mouse_move(int x, int y);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
