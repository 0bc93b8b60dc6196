#include "status.h"

#include "integers.h"
#include "ui_status.h"

Status::Status(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::Status>())
{
    ui->setupUi(this);
}

Status::~Status() = default;

void Status::setMax(int n)
{
    maximum = n;
    ui->progStatus->setRange(0, 100);
    ui->progStatus->setValue(0);
}

void Status::setCur(int i)
{
    current = i;
    // Divided first: 29 of 100 are 28.999999999999996, shown as 28 percent.
    ui->progStatus->setValue(projection::truncateToInt(static_cast<double>(current) / maximum * 100));
    ui->lblCount->setText(QString::number(current) + QStringLiteral(" / ") + QString::number(maximum));
}

void Status::setStop(const QString &text)
{
    ui->btnStop->setText(text);
}

void Status::reject()
{
    stop = true;
}

void Status::on_btnStop_clicked()
{
    stop = true;
}
