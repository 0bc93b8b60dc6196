// MainWindow: many photographs in one run.

#include "mainwindow.h"

#include "batchconvertdialog.h"
#include "batchplan.h"
#include "busycursor.h"
#include "mapfile.h"
#include "photographfile.h"
#include "status.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <QMessageBox>

#include <optional>

/// What a run works with from its start to its end.
struct MainWindow::BatchRun {
    QStringList inputs;
    MapParameters parameters;
    QString outputFolder;
    int nameType;
    bool overwrite;
    const char *format;
    int quality;
};

namespace
{

/// While it lives, nothing but the Stop button can be used. Disabling the window disables its child dialog too.
class OnlyStopEnabled
{
public:
    OnlyStopEnabled(QWidget &window, Status &status) : m_window(window)
    {
        m_window.setEnabled(false);
        status.setEnabled(true);
    }
    ~OnlyStopEnabled() { m_window.setEnabled(true); }
    Q_DISABLE_COPY(OnlyStopEnabled)

private:
    QWidget &m_window;
};

} // namespace

void MainWindow::on_actionBatch_Convert_triggered()
{
    configConvert();
}

// Choices made in the dialog are kept even when it is closed without converting.
void MainWindow::configConvert()
{
    BatchConvertDialog dialog(this);
    dialog.langFile = langFile;
    dialog.readShowString();
    dialog.sortType = sortType;
    dialog.nameType = nameType;
    dialog.fileList = fileList;
    dialog.outputFolder = outputFolder;
    dialog.inputFolder = inputFolder;
    dialog.overwrite = overwrite;
    dialog.openFiler = openFiler;
    const int answer = dialog.exec();
    sortType = dialog.sortType;
    nameType = dialog.nameType;
    fileList = dialog.fileList;
    outputFolder = dialog.outputFolder;
    inputFolder = dialog.inputFolder;
    overwrite = dialog.overwrite;
    openFiler = dialog.openFiler;
    if (answer == QDialog::Accepted) {
        updateParameter();
        batchConvert();
    }
}

void MainWindow::batchConvert()
{
    Status status(this);
    qDebug() << "batchConvert";
    status.setMax(fileList.size());
    status.setStop(showString.value("batch_btn_stop"));
    fileList = orderedInputs(fileList, sortType);
    if (sortType == SortByModified) {
        for (const QString &path : qAsConst(fileList))
            qDebug() << path;
    }

    const bool interactive = unattended == 0;
    const bool shown = isVisible();
    if (interactive) {
        status.show();
        clearPicture();
    }
    BatchCount count;
    {
        const OnlyStopEnabled enabled(*this, status);
        count = convertFiles(status);
        image = QImage();
        clearPicture();
    }
    if (!interactive)
        return;

    status.hide();
    if (shown && !isVisible())
        return;
    reportBatch(count);
}

MainWindow::BatchCount MainWindow::convertFiles(Status &status)
{
    const bool interactive = unattended == 0;
    const bool shown = isVisible();
    // Events run during a conversion, and a button that is held goes on stepping: all maps of one run have the
    // circle and the values of its start.
    const BatchRun run = {fileList,  mapParameters(), outputFolder, nameType,
                          overwrite, getFormatChar(), quality};
    const QStringList &inputs = run.inputs;
    BatchCount count;
    count.inputs = inputs.size();
    PixelMemory memory;
    for (int i = 0; i < inputs.size(); ++i) {
        QCoreApplication::processEvents();
        // A window that was closed in the middle of the run has nobody left to run for.
        const bool closed = shown && !isVisible();
        if (status.isStopped() || closed)
            break;
        image = QImage(); // the last photograph goes before the next one comes
        image = loadPhotograph(fileWithSuffix(inputs.at(i)), memory).image;
        if (image.isNull()) {
            ++count.failed;
            continue;
        }
        ++(saveMapOfFile(run, i) ? count.succeeded : count.failed);
        if (interactive)
            status.setCur(i + 1);
    }
    return count;
}

// Converts the photograph just loaded. The numbers of the maps match list positions, not successes.
bool MainWindow::saveMapOfFile(const BatchRun &run, int position)
{
    imageWidth = image.width();
    imageHeight = image.height();
    const QImage map = convertPhotograph(run.parameters, AzimuthStep::EmptiesMap);
    const QString path =
        outputPath(run.outputFolder, run.inputs.at(position), run.nameType, position, run.format);
    const bool refused = !run.overwrite && QFileInfo::exists(path);
    if (refused)
        return false;
    std::optional<BusyCursor> busy;
    if (unattended == 0)
        busy.emplace();
    return saveMap(map, path, run.format, run.quality);
}

void MainWindow::reportBatch(const BatchCount &count)
{
    QMessageBox box(this);
    box.setText(count.succeeded == count.inputs
                    ? showString.value("batch_success")
                    : showString.value("batch_fail1") + QString::number(count.succeeded) +
                          showString.value("batch_fail2") + QString::number(count.failed) +
                          showString.value("batch_fail3"));
    box.setWindowTitle(ui->actionBatch_Convert->text());
    box.setStandardButtons(QMessageBox::Ok);
    box.setDefaultButton(QMessageBox::Ok);
    box.setIcon(QMessageBox::Information);
    box.exec();
}
