#pragma once

#include "patience.h"
#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A temporary folder with a copy of the program in it, for tests that run it as a process: settings and
/// language file lie beside that copy, so every folder is a fresh installation.
class ProgramFolder
{
public:
    /// @param programName  file name of the copy; the settings file is named after it, up to its first dot
    explicit ProgramFolder(QString programName = QStringLiteral("ovmic"));

    QString filePath(const QString &name) const;
    QString program() const;
    QString settingFile() const;

    QByteArray read(const QString &name) const;
    void write(const QString &name, const QByteArray &contents) const;

    /// Starts the copy, with the folder as its current one and the test's own platform.
    void start(QProcess &process, const QStringList &arguments) const;

    /// How a run to the end went.
    struct Result {
        bool finished = false; ///< it ended by itself within the time, without a crash
        int exitCode = -1;
        QByteArray standardError;
    };
    Result run(const QStringList &arguments, int timeoutMs = patienceMs) const;

private:
    QTemporaryDir m_folder;
    QString m_programName;
};
