#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class Status;
}

/// Progress of a batch run and the user's wish to stop it. Shown non-modally; whoever runs the batch asks
/// isStopped() between two files and takes the dialog away at the end.
class Status : public QDialog
{
    Q_OBJECT

public:
    explicit Status(QWidget *parent = nullptr);
    ~Status() override;

    /// Total number of files. Puts the bar back to 0 percent.
    void setMax(int n);
    /// Number of the file just dealt with, 1 .. the total. Shows "i / total" and the percentage, truncated; a
    /// percentage that is no number of 0 .. 100 (a total of 0, say) leaves the bar where it is.
    void setCur(int i);
    /// Caption of the Stop button.
    void setStop(const QString &text);

    /// Whether the user has asked to stop. Never taken back.
    bool isStopped() const { return stop; }

public slots:
    /// Esc and the title bar mean Stop as well; the dialog stays until the run has ended.
    void reject() override;

private slots:
    void on_btnStop_clicked();

private:
    std::unique_ptr<Ui::Status> ui;
    int maximum = 0;
    int current = 0;
    bool stop = false;
};
