#include "programfolder.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

ProgramFolder::ProgramFolder(QString programName) : m_programName(std::move(programName))
{
    if (!QFile::copy(QStringLiteral(OVMIC_PROGRAM), program()))
        qFatal("cannot copy the program to %s", qPrintable(program()));
}

QString ProgramFolder::filePath(const QString &name) const
{
    return m_folder.filePath(name);
}

QString ProgramFolder::program() const
{
    return filePath(m_programName);
}

QString ProgramFolder::settingFile() const
{
    return filePath(QFileInfo(m_programName).baseName() + ".ini");
}

QByteArray ProgramFolder::read(const QString &name) const
{
    QFile file(filePath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ProgramFolder::write(const QString &name, const QByteArray &contents) const
{
    QFile file(filePath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

void ProgramFolder::start(QProcess &process, const QStringList &arguments) const
{
    process.setWorkingDirectory(m_folder.path());
    process.start(program(), arguments);
}

ProgramFolder::Result ProgramFolder::run(const QStringList &arguments, int timeoutMs) const
{
    QProcess process;
    start(process, arguments);
    Result result;
    result.finished = process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit;
    result.exitCode = process.exitCode();
    result.standardError = process.readAllStandardError();
    return result;
}
