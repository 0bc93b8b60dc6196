// One call fails, or the process is killed at one call, in every program of ours that writes files: at whichever it is,
// each file is the whole old one or the whole new one afterwards.
//
// OVMIC_FAULTS is the number of calls tried in each row, 0 for every one; without it, some.

#include "files.h"
#include "patience.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <memory>
#include <vector>

namespace
{

const QByteArray oldContents = "the old contents";

/// What is run, in a fresh folder.
struct Scenario {
    QString program; // as it is linked into the folder
    QStringList arguments;
    QStringList files; // what it replaces, by names in the folder
    QString firstFile; // what it opens first; empty: before that, nothing happens
};

/// The programs and their files. The folder holds two photographs, a settings file and old maps.
Scenario scenarioOf(const QString &name)
{
    const QStringList photographs{"in/a.png", "in/b.png"};
    if (name == "batch")
        return {OVMIC_PROGRAM,
                QStringList{"/batch"} + photographs,
                {"maps/a.png", "maps/b.png", "ovmic.ini"},
                "in/a.png"};
    if (name == "ovmic-map")
        return {OVMIC_MAP_PROGRAM,
                QStringList{"-j1", "--overwrite", "--world-file", "--settings", "ovmic.ini", "-o", "maps",
                            "-n", "{name}"} +
                    photographs,
                {"maps/a.png", "maps/a.pgw", "maps/b.png", "maps/b.pgw"},
                "in/a.png"};
    return {OVMIC_FILE_WRITER, {name, "ovmic.ini"}, {"ovmic.ini"}, name == "map" ? "" : "ovmic.ini"};
}

/// Which call, and what happens to it.
struct Fault {
    QString kind; // "files", "large blocks" of memory, "blocks" of any size
    QString how;
    int at = 0;
};

/// One run of a program in a folder of its own, with a fault in it.
class FaultyRun
{
public:
    FaultyRun(const Scenario &scenario, const Fault &fault) : m_scenario(scenario)
    {
        for (const char *folder : {"in", "maps"})
            QDir(m_folder.path()).mkdir(folder);
        QImage photograph(60, 40, QImage::Format_RGB32);
        photograph.fill(Qt::darkGreen);
        if (!photograph.save(in("in/a.png")) || !photograph.save(in("in/b.png")))
            qFatal("cannot write the photographs");
        for (const char *name : {"maps/a.png", "maps/a.pgw", "maps/b.png", "maps/b.pgw"})
            writeFile(in(name), oldContents);
        writeFile(in("ovmic.ini"), oldSettings());
        if (!QFile::link(scenario.program, in("ovmic")))
            qFatal("cannot link the program");

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LD_PRELOAD", OVMIC_FAULTY_CALLS);
        environment.insert("OVMIC_FAULT_KIND", fault.kind == "files" ? "files" : "memory");
        environment.insert("OVMIC_FAULT_HOW", fault.how);
        environment.insert("OVMIC_FAULT_AT", QString::number(fault.at));
        environment.insert("OVMIC_FAULT_FOLDER", m_folder.path());
        environment.insert("OVMIC_FAULT_BYTES", fault.kind == "blocks" ? "1" : "32768");
        if (fault.kind != "files") // before that the toolkit starts, which cannot bear any failure
            environment.insert("OVMIC_FAULT_FROM", scenario.firstFile);
        environment.insert("OVMIC_FAULT_COUNT", m_folder.path() + "/count");
        m_process.setProcessEnvironment(environment);
        m_process.setWorkingDirectory(m_folder.path());
        m_process.start(in("ovmic"), scenario.arguments);
    }

    /// @return whether it came to its end
    bool wait() { return m_process.waitForFinished(patienceMs); }

    QProcess &process() { return m_process; }
    int calls() const { return contentsOf(in("count")).toInt(); }
    QByteArray read(const QString &name) const { return contentsOf(in(name)); }
    QStringList names() const { return namesIn(m_folder.path()) + namesIn(in("maps")); }
    static QByteArray oldOf(const QString &name) { return name == "ovmic.ini" ? oldSettings() : oldContents; }

private:
    // The folder is relative, so that all runs store the same.
    static QByteArray oldSettings()
    {
        return "[General]\nOutputFolder=maps\nOutputSizeX=128\nOutputSizeY=64\nOutputFormat=1\nCenterX=30\n"
               "CenterY=20\nRadius=18\n\n[Other]\nKey=stays\n";
    }
    QString in(const QString &name) const { return m_folder.filePath(name); }

    Scenario m_scenario;
    QTemporaryDir m_folder;
    QProcess m_process;
};

/// The calls to try, out of so many: a number of them, evenly over all.
QList<int> chosenCalls(int all, int fewer)
{
    const int count = fewer == 0 ? all : qMin(all, fewer);
    QList<int> chosen;
    for (int i = 0; i < count; ++i)
        chosen.append(1 + i * (all - 1) / qMax(count - 1, 1));
    return chosen;
}

} // namespace

class tst_Faults : public QObject
{
    Q_OBJECT

private slots:
    void eachFileIsTheOldOrTheNewOne_data();
    void eachFileIsTheOldOrTheNewOne();
};

void tst_Faults::eachFileIsTheOldOrTheNewOne_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("how");
    for (const char *name : {"settings", "parameters", "map", "batch", "ovmic-map"}) {
        QTest::addRow("%s, a file call fails", name) << QString(name) << "files"
                                                     << "fail";
        QTest::addRow("%s, killed at a file call", name) << QString(name) << "files"
                                                         << "kill";
        // A photograph is read by the toolkit, where a lock stays locked after the failure of a small block; a map is
        // encoded by it, and has no file that would mark the end of the toolkit's start.
        const bool isIniFile = qstrcmp(name, "settings") == 0 || qstrcmp(name, "parameters") == 0;
        QTest::addRow("%s, a block of memory is refused", name)
            << QString(name) << (isIniFile ? "blocks" : "large blocks") << "fail";
    }
}

void tst_Faults::eachFileIsTheOldOrTheNewOne()
{
    QFETCH(QString, name);
    QFETCH(QString, kind);
    QFETCH(QString, how);
    const Scenario scenario = scenarioOf(name);
    FaultyRun whole(scenario, {kind, how, 0});
    QVERIFY(whole.wait());
    QCOMPARE(whole.process().exitCode(), 0);
    for (const QString &file : scenario.files)
        QVERIFY(whole.read(file) != FaultyRun::oldOf(file));
    const int all = whole.calls();
    QVERIFY2(all >= 2, qPrintable(QString::number(all)));

    constexpr int atOnce = 6;
    const QList<int> calls = chosenCalls(all, qEnvironmentVariable("OVMIC_FAULTS", "6").toInt());
    int untouched = 0;
    for (int first = 0; first < calls.size(); first += atOnce) {
        std::vector<std::unique_ptr<FaultyRun>> runs;
        for (const int call : calls.mid(first, atOnce))
            runs.push_back(std::make_unique<FaultyRun>(scenario, Fault{kind, how, call}));
        for (std::size_t i = 0; i < runs.size(); ++i) {
            FaultyRun &run = *runs[i];
            const QByteArray call = QByteArray::number(calls.at(first + static_cast<int>(i)));
            QVERIFY2(run.wait(), call.constData());
            bool complete = true;
            for (const QString &file : scenario.files) {
                const QByteArray contents = run.read(file);
                const bool isNew = contents == whole.read(file);
                QVERIFY2(isNew || contents == FaultyRun::oldOf(file), qPrintable(call + ' ' + file.toUtf8()));
                complete = complete && isNew;
            }
            untouched += complete ? 0 : 1;
            const bool crashed = run.process().exitStatus() == QProcess::CrashExit;
            if (how == "kill") {
                QVERIFY2(crashed && run.process().exitCode() == SIGKILL, call.constData());
                continue;
            }
            if (crashed && kind == "blocks")
                continue; // the toolkit cannot do without
            QVERIFY2(!crashed, (call + '\n' + run.process().readAllStandardError()).constData());
            const bool success = run.process().exitCode() == 0;
            QVERIFY2(complete || !success || name == "batch", call.constData()); // a batch tells nobody
            if (kind != "blocks") // then the temporary file may stay
                QCOMPARE(run.names(), whole.names());
        }
    }
    qInfo("%d of %d calls; %d runs left a file as it was", calls.size(), all, untouched);
    QVERIFY(untouched > 0);
}

QTEST_GUILESS_MAIN(tst_Faults)
#include "tst_faults.moc"
