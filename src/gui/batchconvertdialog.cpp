#include "batchconvertdialog.h"

#include "ui_batchconvertdialog.h"
#include "uitexts.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace
{

/// Where to look for photographs while no folder is known: an empty one would show the list of drives.
QString picturesFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QFileInfo::exists(pictures) ? pictures : QDir::homePath();
}

} // namespace

BatchConvertDialog::BatchConvertDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::BatchConvertDialog>())
{
    ui->setupUi(this);
}

BatchConvertDialog::~BatchConvertDialog() = default;

void BatchConvertDialog::readShowString()
{
    UiTexts texts(langFile, QStringLiteral("batch_convert"), showString);
    texts.caption("lbl_1", ui->label_1, &QLabel::setText);
    texts.caption("lbl_2", ui->label_2, &QLabel::setText);
    texts.caption("lbl_3", ui->label_3, &QLabel::setText);
    texts.caption("lbl_4", ui->label_4, &QLabel::setText);
    texts.caption("lbl_5", ui->label_5, &QLabel::setText);
    texts.caption("btn_file", ui->btnSelectFiles, &QPushButton::setText);
    texts.caption("btn_folder", ui->btnSelectFolder, &QPushButton::setText);
    texts.caption("btn_output", ui->btnOutputFolder, &QPushButton::setText);
    texts.caption("btn_convert", ui->btnConvert, &QPushButton::setText);
    texts.caption("btn_cancel", ui->btnClose, &QPushButton::setText);
    texts.caption("btn_sort1", ui->radioSortType1, &QRadioButton::setText);
    texts.caption("btn_sort2", ui->radioSortType2, &QRadioButton::setText);
    texts.caption("btn_filename1", ui->radioFilename1, &QRadioButton::setText);
    texts.caption("btn_filename2", ui->radioFilename2, &QRadioButton::setText);
    texts.message("file_filter", "画像ファイル (*.gif *.png *.jpg)");
    texts.message("file_open_title", "変換するファイルを選択して下さい");
    texts.message("file_selected", " 個のファイルが選択されました");
    texts.message("folder_open_title", "変換するファイルが含まれるフォルダを選択して下さい");
    texts.message("output_open_title", "変換後のファイルを保存するフォルダを選択して下さい");
    texts.caption("title", this, &QDialog::setWindowTitle);
    texts.caption("chk_overwrite", ui->checkOverwrite, &QCheckBox::setText);
    texts.caption("chk_open_filer", ui->checkOpenFiler, &QCheckBox::setText);
}

int BatchConvertDialog::exec()
{
    showFileCount();
    ui->labelOutputFolder->setText(outputFolder);
    if (sortType == 0)
        ui->radioSortType1->setChecked(true);
    else if (sortType == 1)
        ui->radioSortType2->setChecked(true);
    if (nameType == 0)
        ui->radioFilename1->setChecked(true);
    else if (nameType == 1)
        ui->radioFilename2->setChecked(true);
    ui->checkOverwrite->setChecked(overwrite);
    ui->checkOpenFiler->setChecked(openFiler);
    // Return closes without a run, whichever button has the focus: in the form no other one is auto-default.
    ui->btnClose->setDefault(true);
    return QDialog::exec();
}

void BatchConvertDialog::prepare(QFileDialog &picker, QFileDialog::FileMode mode, const QString &folder,
                                 const char *titleKey)
{
    picker.setFileMode(mode);
    picker.setDirectory(folder.isEmpty() ? picturesFolder() : folder);
    picker.setWindowTitle(showString.value(QString::fromLatin1(titleKey)));
}

void BatchConvertDialog::showFileCount()
{
    ui->labelSelectCount->setText(QString::number(fileList.size()) +
                                  showString.value(QStringLiteral("file_selected")));
}

void BatchConvertDialog::on_btnSelectFiles_clicked()
{
    QFileDialog picker(this);
    prepare(picker, QFileDialog::ExistingFiles, inputFolder, "file_open_title");
    picker.setNameFilter(showString.value(QStringLiteral("file_filter")));
    if (picker.exec() != QDialog::Accepted)
        return;
    fileList = picker.selectedFiles();
    if (!fileList.isEmpty())
        inputFolder = QFileInfo(fileList.first()).absolutePath();
    showFileCount();
}

void BatchConvertDialog::on_btnSelectFolder_clicked()
{
    QFileDialog picker(this);
    prepare(picker, QFileDialog::Directory, inputFolder, "folder_open_title");
    if (picker.exec() != QDialog::Accepted)
        return;
    inputFolder = picker.selectedFiles().value(0);
    const QStringList names =
        QDir(inputFolder)
            .entryList({QStringLiteral("*.png"), QStringLiteral("*.jpg"), QStringLiteral("*.gif")},
                       QDir::Files, QDir::NoSort);
    fileList.clear();
    for (const QString &name : names)
        fileList.append(inputFolder + QLatin1Char('/') + name);
    showFileCount();
}

void BatchConvertDialog::on_btnOutputFolder_clicked()
{
    QFileDialog picker(this);
    prepare(picker, QFileDialog::Directory, outputFolder, "output_open_title");
    if (picker.exec() != QDialog::Accepted || picker.selectedFiles().isEmpty())
        return;
    outputFolder = picker.selectedFiles().first();
    ui->labelOutputFolder->setText(outputFolder);
}

void BatchConvertDialog::readChoices()
{
    if (ui->radioSortType1->isChecked())
        sortType = 0;
    if (ui->radioSortType2->isChecked())
        sortType = 1;
    if (ui->radioFilename1->isChecked())
        nameType = 0;
    if (ui->radioFilename2->isChecked())
        nameType = 1;
    overwrite = ui->checkOverwrite->isChecked();
    openFiler = ui->checkOpenFiler->isChecked();
}

void BatchConvertDialog::on_btnConvert_clicked()
{
    readChoices();
    accept();
}

void BatchConvertDialog::on_btnClose_clicked()
{
    readChoices();
    reject();
}
