#include "option.h"

#include "ui_option.h"
#include "uitexts.h"

#include <QMessageBox>
#include <QVector>

namespace
{

/// A value and the closed range that it must lie in.
struct RangeCheck {
    double value;
    double lowest;
    double highest;
    QLineEdit *field;

    /// Also true for NaN, which no comparison holds for.
    bool fails() const { return !(value >= lowest && value <= highest); }
};

} // namespace

Option::Option(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::Option>())
{
    ui->setupUi(this);
}

Option::~Option() = default;

void Option::readShowString()
{
    UiTexts texts(langFile, QStringLiteral("config"), showString);
    texts.caption("lbl_1", ui->label_1, &QLabel::setText);
    texts.caption("lbl_1_2", ui->label_1_2, &QLabel::setText);
    texts.caption("lbl_2", ui->label_2, &QLabel::setText);
    texts.caption("lbl_3", ui->label_3, &QLabel::setText);
    texts.caption("lbl_3_2", ui->label_3_2, &QLabel::setText);
    texts.caption("lbl_4", ui->label_4, &QLabel::setText);
    texts.caption("lbl_4_2", ui->label_4_2, &QLabel::setText);
    texts.caption("lbl_5", ui->label_5, &QLabel::setText);
    texts.caption("lbl_5_2", ui->label_5_2, &QLabel::setText);
    texts.caption("lbl_5_3", ui->label_5_3, &QLabel::setText);
    texts.caption("btn_default", ui->btnDefault, &QPushButton::setText);
    texts.caption("btn_cancel", ui->btnCancel, &QPushButton::setText);
    texts.caption("title", this, &QDialog::setWindowTitle);
    texts.message("error_mess", "範囲内で入力して下さい");
}

int Option::exec()
{
    showMembers();
    ui->btnCancel->setDefault(true); // Return in a field must not take over half-typed values
    return QDialog::exec();
}

void Option::showMembers()
{
    ui->lineDistance->setText(QString::number(distance, 'g', 6));
    ui->lineOutputSizeX->setText(QString::number(outputSizeX));
    ui->lineOutputSizeY->setText(QString::number(outputSizeY));
    ui->lineQuality->setText(QString::number(quality));
    ui->cbFormat->setCurrentIndex(format);
    ui->lineSize->setText(QString::number(penSize));
    ui->lineColor->setText(penColor.toUpper());
    ui->lineLatitude->setText(QString::number(latitude, 'g', 6));
    ui->lineLongitude->setText(QString::number(longitude, 'g', 6));
    ui->lineAzimuth->setText(QString::number(azimuth, 'g', 6));
}

void Option::readFields()
{
    distance = ui->lineDistance->text().toDouble();
    outputSizeX = ui->lineOutputSizeX->text().toInt();
    outputSizeY = ui->lineOutputSizeY->text().toInt();
    format = ui->cbFormat->currentIndex();
    quality = ui->lineQuality->text().toInt();
    penSize = ui->lineSize->text().toInt();
    penColor = ui->lineColor->text();
    latitude = ui->lineLatitude->text().toDouble();
    longitude = ui->lineLongitude->text().toDouble();
    azimuth = ui->lineAzimuth->text().toDouble();
}

/// Selects every field whose value is out of range; the last one gets the focus.
/// @return whether there was any
bool Option::selectFieldsOutOfRange()
{
    const RangeCheck checks[] = {
        {distance, 1.0, 100.0, ui->lineDistance},
        {double(outputSizeX), 1024, 8192, ui->lineOutputSizeX},
        {double(outputSizeY), 1024, 8192, ui->lineOutputSizeY},
        {double(quality), 1, 100, ui->lineQuality},
        {double(penSize), 1, 32, ui->lineSize},
        {latitude, -90.0, 90.0, ui->lineLatitude},
        {longitude, -180.0, 180.0, ui->lineLongitude},
        {azimuth, 0.0, 360.0, ui->lineAzimuth},
    };
    QVector<QLineEdit *> failing;
    for (const RangeCheck &check : checks) {
        if (check.fails()) {
            failing.append(check.field);
            check.field->setFocus(Qt::OtherFocusReason);
        }
    }
    // A field drops its selection when the focus moves on, so they are selected once it has come to rest.
    for (QLineEdit *field : qAsConst(failing))
        field->selectAll();
    return !failing.isEmpty();
}

void Option::on_btnOk_clicked()
{
    readFields();
    if (!selectFieldsOutOfRange()) {
        accept();
        return;
    }
    QMessageBox box(this);
    box.setText(showString.value(QStringLiteral("error_mess")));
    box.setWindowTitle(windowTitle());
    box.setStandardButtons(QMessageBox::Ok);
    box.setIcon(QMessageBox::Warning);
    box.exec();
}

void Option::on_btnCancel_clicked()
{
    reject();
}

void Option::on_btnDefault_clicked()
{
    ui->lineDistance->setText(QStringLiteral("100"));
    ui->lineOutputSizeX->setText(QStringLiteral("2048"));
    ui->lineOutputSizeY->setText(QStringLiteral("1024"));
    ui->lineQuality->setText(QStringLiteral("85"));
    ui->cbFormat->setCurrentIndex(0);
    ui->lineSize->setText(QStringLiteral("3"));
    ui->lineColor->setText(QStringLiteral("#FFFF0000"));
    ui->lineLatitude->setText(QStringLiteral("0"));
    ui->lineLongitude->setText(QStringLiteral("0"));
    ui->lineAzimuth->setText(QStringLiteral("0"));
    repaint();
}
