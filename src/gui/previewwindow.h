#pragma once

#include "picturelabel.h"

#include <QImage>
#include <QMainWindow>

#include <memory>

namespace Ui
{
class PreviewWindow;
}

/// Shows the finished map of the current parameters: a window of its own, even when it has a parent.
class PreviewWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit PreviewWindow(QWidget *parent = nullptr);
    ~PreviewWindow() override;

    /// Shows a map, fitted to the window. A null map leaves the window empty.
    void setImage(QImage image);
    /// Has no effect, on purpose: the preview always fits its map to the window.
    void setAutoSize(bool on);

signals:
    /// The window was closed by the user or the window system, and is about to hide.
    void hidden();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    std::unique_ptr<Ui::PreviewWindow> ui;
};

/// The map in the preview window. Reports mouse gestures like the photograph's widget, but knows no circle
/// and reports no moves without a button; nobody listens yet.
class MyImage2 : public PictureLabel
{
    Q_OBJECT

public:
    explicit MyImage2(QWidget *parent = nullptr);

signals:
    void mouseleftdown(int x, int y);
    void mouseleftup(int x, int y);
    void mouserightup();
    void clicked(int x, int y);
    void size_changed(int x, int y, int r);
    void size_changing(int cx, int cy, int x1, int y1, int x2, int y2, int x, int y);

protected:
    void leftPressed(QPoint position) override;
    void dragged(const PictureDrag &drag) override;
    void dragEnded(const PictureDrag &drag) override;
    void rightReleased() override;
};
