// How ovmic-map ends before its time, and what it shows on a terminal.

#include "mapfolder.h"
#include "patience.h"

#include <csignal>

#include <unistd.h>

namespace
{

const QStringList slowMaps = {"-c", "fit", "-s", "2048x2048", "-f", "png", "-o", "maps"};

/// Sends a signal to a process that is still there: the number 0 would mean this test and all around it.
bool send(const QProcess &process, int signal)
{
    const auto number = static_cast<pid_t>(process.processId());
    return number > 0 && ::kill(number, signal) == 0;
}

/// Processor time that a process has used, seconds.
double secondsUsed(const QProcess &process)
{
    QFile file(QStringLiteral("/proc/%1/stat").arg(process.processId()));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = file.readAll();
    const QList<QByteArray> fields = line.mid(line.indexOf(") ") + 2).split(' ');
    constexpr int userTime = 11;
    return fields.size() > userTime ? fields.at(userTime).toDouble() / double(sysconf(_SC_CLK_TCK)) : 0;
}

/// Whether every signal that was sent to a process has reached it: a second one of the same number is lost before.
bool hasTakenSignals(const QProcess &process)
{
    QFile file(QStringLiteral("/proc/%1/status").arg(process.processId()));
    return file.open(QIODevice::ReadOnly) && file.readAll().contains("\nShdPnd:\t0000000000000000\n");
}

/// The screen of a terminal after these bytes: its lines, blanks at their ends left out.
QList<QByteArray> screenAfter(const QByteArray &bytes)
{
    QList<QByteArray> lines = {QByteArray()};
    int column = 0;
    for (const char byte : bytes) {
        if (byte == '\r') {
            column = 0;
        } else if (byte == '\n') {
            lines.append(QByteArray());
            column = 0;
        } else {
            QByteArray &line = lines.last();
            if (column < line.size())
                line[column] = byte;
            else
                line += byte;
            ++column;
        }
    }
    for (QByteArray &line : lines)
        while (line.endsWith(' '))
            line.chop(1);
    return lines;
}

} // namespace

class tst_OvmicMapSignals : public QObject
{
    Q_OBJECT

private slots:
    void firstSignalFinishesWhatIsInWork_data();
    void firstSignalFinishesWhatIsInWork();
    void secondSignalEndsAtOnce_data();
    void secondSignalEndsAtOnce();
    void ignoredSignalStaysIgnored();
    void nobodyReadsTheOutput();
    void outputThatCannotBeWritten();
    void noProgressInALog();
    void progressInALog();
    void progressOnATerminal();
    void quietOnATerminal();
};

void tst_OvmicMapSignals::firstSignalFinishesWhatIsInWork_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void tst_OvmicMapSignals::firstSignalFinishesWhatIsInWork()
{
    QFETCH(int, signal);
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 600); // many, for a signal that comes late
    QProcess process;
    folder.start(process, MapFolder::program(), QStringList{"--jobs", "2"} + slowMaps + photographs);
    QVERIFY(process.waitForReadyRead(patienceMs));
    QVERIFY(send(process, signal));
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 128 + signal);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QStringList finished = sortedLines(process.readAllStandardOutput());
    QVERIFY2(finished.size() >= 1 && finished.size() < 600, qPrintable(finished.join(' ')));
    finished.replaceInStrings("maps/", QString());
    QCOMPARE(folder.namesIn("maps"), finished); // nothing else, and no temporary file
    for (const QString &name : finished)
        QCOMPARE(QImage(folder.filePath("maps/" + name)).size(), QSize(2048, 2048));
}

void tst_OvmicMapSignals::secondSignalEndsAtOnce_data()
{
    firstSignalFinishesWhatIsInWork_data();
}

void tst_OvmicMapSignals::secondSignalEndsAtOnce()
{
    QFETCH(int, signal);
    const MapFolder folder;
    folder.writePhotograph("a.png");
    // Large: encoding takes seconds, in which both signals come.
    QProcess process;
    folder.start(process, MapFolder::program(),
                 {"-c", "fit", "a.png", "-s", "8192x8192", "-f", "png", "-o", "maps/"});
    QTRY_VERIFY_WITH_TIMEOUT(secondsUsed(process) > 0.3, patienceMs); // starting takes a small part of that
    QVERIFY(send(process, SIGTERM));
    QTRY_VERIFY_WITH_TIMEOUT(hasTakenSignals(process), patienceMs);
    QVERIFY(send(process, signal));
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitCode(), 128 + signal);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(folder.namesIn("maps"), QStringList());
}

void tst_OvmicMapSignals::ignoredSignalStaysIgnored()
{
    // As in the background of a script, where Ctrl-C is for somebody else.
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 6);
    QProcess process;
    folder.start(process, "bash",
                 QStringList{"-c", "trap '' INT; exec \"$@\"", "bash", MapFolder::program()} + slowMaps +
                     photographs);
    QVERIFY(process.waitForReadyRead(patienceMs));
    QVERIFY(send(process, SIGINT));
    QVERIFY(process.waitForFinished(patienceMs));
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(folder.namesIn("maps").size(), 6);
}

void tst_OvmicMapSignals::nobodyReadsTheOutput()
{
    const MapFolder folder;
    folder.writePhotographs("in", 60);
    const MapFolder::Result result =
        folder.shell("ovmic-map -j2 " + slowMaps.join(' ') + " in/* | head -n 1; echo ${PIPESTATUS[*]}");
    COMPARE_RUN(result, 0, "");
    QVERIFY2(result.output.endsWith("\n141 0\n"), result.output.constData());
    QVERIFY(folder.namesIn("maps").size() < 60);
    for (const QString &name : folder.namesIn("maps"))
        QVERIFY(name.endsWith(".png"));
}

void tst_OvmicMapSignals::outputThatCannotBeWritten()
{
    const MapFolder folder;
    folder.writePhotographs("in", 3);
    const MapFolder::Result result =
        folder.shell("ovmic-map -o maps in/* >/dev/full " + folder.smallMaps().join(' '));
    COMPARE_RUN(result, 1, "ovmic-map: standard output: No space left on device\n");
    QCOMPARE(folder.namesIn("maps").size(), 3);
    QCOMPARE(folder.shell("ovmic-map --help >/dev/full").status, 1);
}

void tst_OvmicMapSignals::noProgressInALog()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 3);
    COMPARE_RUN(folder.run(photographs + folder.smallMaps()), 0, "");
}

void tst_OvmicMapSignals::progressInALog()
{
    const MapFolder folder;
    const QStringList photographs = folder.writePhotographs("in", 3);
    folder.write("bad.png", "no image");
    const MapFolder::Result result =
        folder.run(photographs + QStringList{"bad.png", "--progress", "always"} + folder.smallMaps());
    QCOMPARE(result.status, 1);
    const QList<QByteArray> lines = result.errors.split('\n');
    QVERIFY(lines.contains("ovmic-map: bad.png: not an image: Unsupported image format"));
    QVERIFY2(lines.at(lines.size() - 2).startsWith("ovmic-map: 4 of 4, 1 failed, "),
             result.errors.constData());
    QVERIFY(!result.errors.contains('\r'));
}

void tst_OvmicMapSignals::progressOnATerminal()
{
    const MapFolder folder;
    folder.writePhotographs("in", 5);
    folder.write("in/bad.png", "no image");
    folder.smallMaps();
    const MapFolder::Result result = folder.shell("script -qefc 'stty cols 40; ovmic-map --settings "
                                                  "small.ini -o maps in/* >/dev/null' /dev/null </dev/null");
    QVERIFY(result.finished);
    QCOMPARE(result.status, 1);
    QVERIFY2(result.output.contains(" of 6"), result.output.constData());
    for (const QByteArray &part : result.output.split('\r'))
        QVERIFY2(!part.contains(" of 6") || part.size() < 40, part.constData());
    // The failure alone is left on the screen.
    QCOMPARE(screenAfter(result.output),
             (QList<QByteArray>{"ovmic-map: in/bad.png: not an image: Unsupported image format", ""}));
}

void tst_OvmicMapSignals::quietOnATerminal()
{
    const MapFolder folder;
    folder.writePhotographs("in", 5);
    folder.smallMaps();
    const MapFolder::Result result = folder.shell(
        "script -qefc 'ovmic-map --quiet --settings small.ini -o maps in/* >/dev/null' /dev/null </dev/null");
    QVERIFY(result.finished);
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QByteArray());
}

QTEST_GUILESS_MAIN(tst_OvmicMapSignals)
#include "tst_ovmicmapsignals.moc"
