#pragma once

#include "files.h"
#include "patience.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

/// A folder of its own, in which tests run ovmic-map as people do.
class MapFolder
{
public:
    /// How a run went.
    struct Result {
        bool finished = false; ///< it ended by itself within the time, without a crash
        int status = -1;
        QByteArray output;
        QByteArray errors;
    };

    MapFolder() : m_environment(QProcessEnvironment::systemEnvironment())
    {
        m_environment.insert("PATH", QFileInfo(program()).path() + ':' + m_environment.value("PATH"));
    }

    static QString program() { return QStringLiteral(OVMIC_MAP_PROGRAM); }
    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }
    QProcessEnvironment &environment() { return m_environment; }

    void makeFolder(const QString &name) const { QDir(m_folder.path()).mkpath(name); }
    QStringList namesIn(const QString &name) const { return ::namesIn(filePath(name)); }
    QByteArray read(const QString &name) const { return contentsOf(filePath(name)); }
    void write(const QString &name, const QByteArray &contents) const { writeFile(filePath(name), contents); }

    /// A photograph whose colours depend on where they stand and on the seed. The name decides the format.
    void writePhotograph(const QString &name, int seed = 1, QSize size = {60, 40}) const
    {
        QImage picture(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                picture.setPixel(x, y, qRgb((x * 4 * seed) % 256, (y * 6) % 256, (seed * 37 + x + y) % 256));
        if (!picture.save(filePath(name), nullptr, 90))
            qFatal("cannot write %s", qPrintable(name));
    }
    /// A photograph of 200 x 160 pixels with a bright disc.
    void writeDisc(const QString &name, double centerX, double centerY, double radius) const
    {
        QImage picture(200, 160, QImage::Format_RGB32);
        picture.fill(qRgb(8, 8, 12));
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(180, 170, 150));
        painter.drawEllipse(QPointF(centerX, centerY), radius, radius);
        painter.end();
        if (!picture.save(filePath(name), nullptr, 95))
            qFatal("cannot write %s", qPrintable(name));
    }
    /// Several of them. @return their names
    QStringList writePhotographs(const QString &folder, int count) const
    {
        makeFolder(folder);
        QStringList names;
        for (int i = 0; i < count; ++i) {
            names.append(folder + QStringLiteral("/photo%1.png").arg(i, 3, 10, QLatin1Char('0')));
            writePhotograph(names.last(), i + 1);
        }
        return names;
    }
    /// Settings that make maps of 64 x 32 pixels, so that a test of many takes no time.
    QStringList smallMaps() const
    {
        write("small.ini", "[General]\nOutputSizeX=64\nOutputSizeY=32\nCenterX=30\nCenterY=20\nRadius=19\n");
        return {"--settings", "small.ini"};
    }

    void start(QProcess &process, const QString &command, const QStringList &arguments) const
    {
        process.setWorkingDirectory(m_folder.path());
        process.setProcessEnvironment(m_environment);
        process.start(command, arguments);
    }
    Result run(const QStringList &arguments, int timeoutMs = patienceMs) const
    {
        return ended(program(), arguments, timeoutMs);
    }
    /// Runs a script of bash, for which ovmic-map is in the path.
    Result shell(const QString &script, int timeoutMs = patienceMs) const
    {
        return ended("bash", {"-c", script}, timeoutMs);
    }

private:
    Result ended(const QString &command, const QStringList &arguments, int timeoutMs) const
    {
        QProcess process;
        start(process, command, arguments);
        process.closeWriteChannel();
        Result result;
        result.finished = process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit;
        result.status = process.exitCode();
        result.output = process.readAllStandardOutput();
        result.errors = process.readAllStandardError();
        return result;
    }

    QTemporaryDir m_folder;
    QProcessEnvironment m_environment;
};

/// The lines of an output, sorted: threads finish in any order.
inline QStringList sortedLines(const QByteArray &output)
{
    QStringList lines = QString::fromUtf8(output).split('\n', Qt::SkipEmptyParts);
    lines.sort();
    return lines;
}

/// Fails the running test function unless a run ended with a status and these lines on the standard error.
#define COMPARE_RUN(result, expectedStatus, expectedErrors)                                                  \
    do {                                                                                                     \
        const MapFolder::Result &compared = (result);                                                        \
        QVERIFY(compared.finished);                                                                          \
        QCOMPARE(compared.errors, QByteArray(expectedErrors));                                               \
        QCOMPARE(compared.status, (expectedStatus));                                                         \
    } while (false)
