// MainWindow: from the circle to the file: preview, conversion, saving, and the parameter files.

#include "mainwindow.h"

#include "busycursor.h"
#include "inifile.h"
#include "mapfile.h"
#include "parameterfile.h"
#include "plaintooltip.h"
#include "previewwindow.h"
#include "ui_mainwindow.h"

#include <QDebug>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QShortcut>

namespace
{

/// While it lives, no shortcut works.
class NoShortcuts
{
public:
    explicit NoShortcuts(const QList<QShortcut *> &shortcuts)
    {
        for (QShortcut *shortcut : shortcuts) {
            if (shortcut->isEnabled()) // else a conversion runs already, and ends later
                m_disabled.append(shortcut);
            shortcut->setEnabled(false);
        }
    }
    ~NoShortcuts()
    {
        for (QShortcut *shortcut : qAsConst(m_disabled))
            shortcut->setEnabled(true);
    }
    Q_DISABLE_COPY(NoShortcuts)

private:
    QList<QShortcut *> m_disabled;
};

} // namespace

MapParameters MainWindow::mapParameters() const
{
    MapParameters parameters;
    parameters.centerX = centerX;
    parameters.centerY = centerY;
    parameters.radius = radius;
    parameters.distance = distance;
    parameters.outputSizeX = outputSizeX;
    parameters.outputSizeY = outputSizeY;
    parameters.latitude = latitude;
    parameters.longitude = longitude;
    parameters.azimuth = azimuth;
    return parameters;
}

QString MainWindow::getFormat() const
{
    return QString::fromLatin1(getFormatChar());
}

const char *MainWindow::getFormatChar() const
{
    return mapFormat(format);
}

// Events run while the chain does: a slot may load another photograph or start a conversion on top of this
// one.
QImage MainWindow::convertPhotograph(const MapParameters &parameters, AzimuthStep azimuthStep)
{
    const QImage photograph = image;
    const NoShortcuts busy(shortcuts);
    const OutputRatio ratio =
        outputRatio(photograph.size(), {parameters.outputSizeX, parameters.outputSizeY});
    ratioX = ratio.x;
    ratioY = ratio.y;
    return convertToMap(photograph, parameters, azimuthStep);
}

QImage MainWindow::convertImage()
{
    qDebug() << "convertImage";
    if (image.isNull())
        return {};
    const QImage map = convertPhotograph(mapParameters(), AzimuthStep::Rotates);
    if (previewWindow->isVisible())
        previewWindow->setImage(map);
    return map;
}

void MainWindow::updatePreview()
{
    qDebug() << "updatePreview";
    if (previewWindow->isVisible() && autoPreview)
        convertImage();
}

void MainWindow::on_btnPreview_clicked()
{
    ui->actionPreview_Window->setChecked(true);
    previewWindow->show();
    qDebug() << "on_btnPreview_clicked";
    convertImage();
}

void MainWindow::on_actionConvert_Save_triggered()
{
    on_btnConvert_clicked();
}

void MainWindow::on_btnConvert_clicked()
{
    qDebug() << "on_btnConvert_clicked";
    if (image.isNull())
        return;
    updateParameter();
    const QString name = ui->lineSaveFilename->text();
    const QString path = QFileInfo(saveFileName).absolutePath() + '/' + name;
    saveFileName = path;

    if (QFileInfo::exists(path)) {
        QMessageBox box(this);
        box.setTextFormat(Qt::PlainText);
        box.setText(name + showString.value("overwrite_question"));
        box.setWindowTitle(ui->btnConvert->text());
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::No);
        box.setIcon(QMessageBox::Warning);
        if (box.exec() != QMessageBox::Yes)
            return;
    }

    const QImage map = convertImage();
    {
        const BusyCursor busy;
        saveMap(map, path, getFormatChar(), quality);
    }
    confirmSaved(ui->btnConvert->text(), path);
}

// Shown whether or not the file could be written.
void MainWindow::confirmSaved(const QString &title, const QString &path)
{
    QMessageBox box(this);
    box.setTextFormat(Qt::PlainText);
    box.setText(path + showString.value("saved_file"));
    box.setWindowTitle(title);
    box.setStandardButtons(QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.setIcon(QMessageBox::Information);
    box.exec();
}

void MainWindow::on_btnBrowse_clicked()
{
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(showString.value("save_image_filter") + getFormat() + ')');
    dialog.setDirectory(QFileInfo(saveFileName).absolutePath());
    dialog.setWindowTitle(showString.value("save_image_title"));
    if (dialog.exec() == 0 || dialog.selectedFiles().isEmpty())
        return;
    setSaveFileName(dialog.selectedFiles().first());
}

void MainWindow::setSaveFileName(const QString &path)
{
    saveFileName = path;
    ui->lineSaveFilename->setText(QFileInfo(path).fileName());
    ui->lineSaveFilename->setToolTip(plainToolTip(path));
}

void MainWindow::on_actionSave_Param_triggered()
{
    writeParam();
}

void MainWindow::on_actionLoad_Param_triggered()
{
    readParam();
}

void MainWindow::writeParam()
{
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilter(showString.value("inifile_filter"));
    dialog.setDirectory(QFileInfo(loadFileName).absolutePath());
    dialog.selectFile("OV_map_param");
    dialog.setWindowTitle(showString.value("save_inifile"));
    if (dialog.exec() == 0 || dialog.selectedFiles().isEmpty())
        return;
    const QString path = dialog.selectedFiles().first();
    updateParameter(); // values that were typed but not yet applied
    writeCircleFile(path, circle());
    confirmSaved(showString.value("save_inifile_title"), path);
}

void MainWindow::readParam()
{
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilter(showString.value("inifile_filter"));
    dialog.setDirectory(QFileInfo(loadFileName).absolutePath());
    dialog.setWindowTitle(showString.value("load_inifile"));
    if (dialog.exec() == 0 || dialog.selectedFiles().isEmpty())
        return;
    setCircle(readCircleFile(dialog.selectedFiles().first()).circle);
    updateScreenParameter();
    updateSelect();
}
