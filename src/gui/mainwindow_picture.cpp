// MainWindow: the photograph, opened or dropped.

#include "mainwindow.h"

#include "batchplan.h"
#include "photographfile.h"
#include "plainpath.h"
#include "ui_mainwindow.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace
{

/// The local path of a dropped image, or an empty text if it is not local or no image by its suffix.
QString imagePath(const QUrl &url)
{
    static const QStringList suffixes{"jpg", "png", "gif"};
    const QString path = url.toLocalFile();
    return suffixes.contains(QFileInfo(path).suffix().toLower()) ? path : QString();
}

} // namespace

void MainWindow::on_btnImageRead_clicked()
{
    QFileDialog dialog(this);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(showString.value("file_filter"));
    dialog.setDirectory(QFileInfo(loadFileName).absolutePath());
    dialog.setWindowTitle(showString.value("open_file"));
    if (dialog.exec() == 0 || dialog.selectedFiles().isEmpty())
        return;
    loadFileName = dialog.selectedFiles().first();
    loadImage();
}

void MainWindow::loadImage()
{
    image = loadPhotograph(fileWithSuffix(loadFileName)).image;
    clearPicture();
    selectShow = false;
    if (!showPhotograph()) {
        image = QImage();
        clearPicture();
        QMessageBox box(this);
        box.setText(loadFileName + showString.value("open_error"));
        box.setWindowTitle(ui->btnImageRead->text());
        box.setStandardButtons(QMessageBox::Ok);
        box.setTextFormat(Qt::PlainText);
        box.setIcon(QMessageBox::Warning);
        // A path that failed is neither offered again nor stored at exit.
        loadFileName.clear();
        box.exec();
        return;
    }

    loadFileName = plainPath(loadFileName); // also for the dialogs that open in its folder
    setSaveFileName(QFileInfo(loadFileName).absolutePath() + '/' + proposedName(loadFileName, getFormat()));
}

// Fits a circle if there was none. Without a photograph, and without the memory for its picture, nothing changes.
bool MainWindow::showPhotograph()
{
    // A known circle is kept, even beyond the new picture: photographs of one camera set-up share it.
    const bool known = centerX != 0 && centerY != 0 && radius != 0;
    const SelectionCircle fitted = known ? circle() : defaultCircle(image.size());
    const bool shown = fitted.centerX > 0 && fitted.centerY > 0 && fitted.radius > 0;
    showCircle(shown ? std::make_optional(fitted) : std::nullopt, Qt::DotLine);
    if (ui->label->picture().isNull())
        return false;
    imageWidth = image.width();
    imageHeight = image.height();
    setCircle(fitted);
    if (shown)
        setCircleShown(true);
    updateScreenParameter();
    return true;
}

// Also lets go of the memory behind the picture.
void MainWindow::clearPicture()
{
    ui->label->setPixmap(QPixmap());
    circleOverlay.clear();
}

// Entry refuses several images; the drop handles them all the same.
void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QMimeData *dropped = event->mimeData();
    if (!dropped->hasUrls()) {
        event->accept();
        return;
    }
    const QList<QUrl> urls = dropped->urls();
    const bool allImages =
        std::none_of(urls.begin(), urls.end(), [](const QUrl &url) { return imagePath(url).isEmpty(); });
    event->setAccepted(allImages && urls.size() < 2);
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QMimeData *dropped = event->mimeData();
    if (!dropped->hasUrls())
        return;
    const QList<QUrl> urls = dropped->urls();
    for (const QUrl &url : urls) {
        const QString path = imagePath(url);
        if (path.isEmpty()) {
            event->ignore();
            return;
        }
        if (urls.size() == 1) {
            loadFileName = path;
            loadImage();
        } else {
            fileList.append(path);
        }
    }
    event->accept();
    if (urls.size() >= 2)
        configConvert();
}
