#pragma once

#include <QCommandLineOption>
#include <QString>
#include <QVector>

/// Options that belong together, under one heading of the help.
struct OptionGroup {
    QString title;
    QVector<QCommandLineOption> options;
};

/// Every option of the program, in the order of the help. Names, values, ranges and defaults stand here alone:
/// both the parser and the help are made from this.
QVector<OptionGroup> optionGroups();

/// The jobs that --jobs allows.
constexpr int mostJobs = 256;
