#include "option.h"

#include "mapvalues.h"
#include "ui_option.h"
#include "uitexts.h"

#include <QEvent>
#include <QMessageBox>
#include <QTimer>

namespace
{

/// Whether the value of a field lies in its range.
struct RangeCheck {
    bool passes;
    QLineEdit *field;
};

template <typename T>
QString defaultText(const MapValue<T> &value)
{
    return QString::number(value.defaultValue);
}

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
    // For screen readers; the other fields are the buddies of their labels.
    ui->lineOutputSizeX->setAccessibleName(ui->label_2->text() + " ↔");
    ui->lineOutputSizeY->setAccessibleName(ui->label_2->text() + " ↕");
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

/// The fields whose values are out of range, in the order of the checks.
QVector<QLineEdit *> Option::fieldsOutOfRange() const
{
    const RangeCheck checks[] = {
        {mapvalues::distance.allows(distance), ui->lineDistance},
        {mapvalues::outputSizeX.allows(outputSizeX), ui->lineOutputSizeX},
        {mapvalues::outputSizeY.allows(outputSizeY), ui->lineOutputSizeY},
        {mapvalues::quality.allows(quality), ui->lineQuality},
        {penSize >= 1 && penSize <= 32, ui->lineSize},
        {mapvalues::latitude.allows(latitude), ui->lineLatitude},
        {mapvalues::longitude.allows(longitude), ui->lineLongitude},
        {mapvalues::azimuth.allows(azimuth), ui->lineAzimuth},
    };
    QVector<QLineEdit *> fields;
    for (const RangeCheck &check : checks) {
        if (!check.passes)
            fields.append(check.field);
    }
    return fields;
}

bool Option::event(QEvent *event)
{
    // In a window that becomes active, as this one does when the warning is closed, the toolkit drops the
    // selection of every field but the focused one: each field sets up a timer of no time for that. A second such
    // timer, started when the first one fires, comes after all of them.
    if (event->type() == QEvent::WindowActivate && !m_refused.isEmpty())
        QTimer::singleShot(0, this, [this] { QTimer::singleShot(0, this, &Option::selectRefusedAgain); });
    return QDialog::event(event);
}

void Option::selectRefusedAgain()
{
    for (QLineEdit *field : qAsConst(m_refused)) {
        if (!field->hasFocus())
            field->selectAll();
    }
    m_refused.clear();
}

void Option::on_btnOk_clicked()
{
    readFields();
    m_refused = fieldsOutOfRange();
    if (m_refused.isEmpty()) {
        accept();
        return;
    }
    for (QLineEdit *field : qAsConst(m_refused))
        field->setFocus(Qt::OtherFocusReason);
    for (QLineEdit *field : qAsConst(m_refused)) // a field drops its selection when the focus moves on
        field->selectAll();
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
    ui->lineDistance->setText(defaultText(mapvalues::distance));
    ui->lineOutputSizeX->setText(defaultText(mapvalues::outputSizeX));
    ui->lineOutputSizeY->setText(defaultText(mapvalues::outputSizeY));
    ui->lineQuality->setText(defaultText(mapvalues::quality));
    ui->cbFormat->setCurrentIndex(mapvalues::format.defaultValue);
    ui->lineSize->setText(QStringLiteral("3"));
    ui->lineColor->setText(QStringLiteral("#FFFF0000"));
    ui->lineLatitude->setText(defaultText(mapvalues::latitude));
    ui->lineLongitude->setText(defaultText(mapvalues::longitude));
    ui->lineAzimuth->setText(defaultText(mapvalues::azimuth));
    repaint();
}
