// The recipes of docs/batch.md, as they stand there: they share a list of photographs out to several processes and
// lose none, however many there are.

#include "photographs.h"
#include "programfolder.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <vector>

namespace
{

/// The recipe of the guide that holds this word; nothing, unless there is exactly one.
QString recipeWith(const QString &word)
{
    QFile guide(QStringLiteral(OVMIC_BATCH_GUIDE));
    if (!guide.open(QIODevice::ReadOnly))
        return {};
    const QStringList parts = QString::fromUtf8(guide.readAll()).split("```");
    QStringList found;
    for (int i = 1; i < parts.size(); i += 2) {
        if (parts.at(i).startsWith("sh\n") && parts.at(i).contains(word))
            found.append(parts.at(i).mid(3));
    }
    return found.size() == 1 ? found.first() : QString();
}

/// An installation in a folder of its own, a link to one copy of the program: the settings lie beside the link.
class Installation
{
public:
    Installation(const ProgramFolder &shared, const QString &name, int photographs)
        : m_folder(shared.filePath(name))
    {
        m_folder.mkpath("photographs");
        m_folder.mkpath("maps");
        QFile::link(shared.program(), m_folder.filePath("ovmic"));
        write("ovmic.ini", "[General]\nOutputFolder=maps\nOutputSizeX=16\nOutputSizeY=8\nRadius=3\n");
        const QImage picture = solidPhotograph({8, 8}, Qt::green);
        for (int i = 0; i < photographs; ++i) {
            m_names.append(QStringLiteral("photo %1").arg(i, 2, 10, QLatin1Char('0')));
            picture.save(m_folder.filePath("photographs/" + m_names.last() + ".png"));
        }
    }

    /// Runs a recipe in the program folder, beside those that run already.
    void start(const QString &recipe, const QStringList &environment = {})
    {
        m_shells.push_back(std::make_unique<QProcess>());
        QProcess &shell = *m_shells.back();
        shell.setWorkingDirectory(m_folder.path());
        shell.setEnvironment(QProcess::systemEnvironment() + environment +
                             QStringList{"QT_QPA_PLATFORM=offscreen"});
        shell.start("bash", {"-c", recipe});
    }
    /// Waits for all that was started. @return whether each ended with status 0
    bool succeeds()
    {
        return std::all_of(m_shells.begin(), m_shells.end(), [](const std::unique_ptr<QProcess> &shell) {
            return (shell->state() == QProcess::NotRunning || shell->waitForFinished(60000)) &&
                   shell->exitStatus() == QProcess::NormalExit && shell->exitCode() == 0;
        });
    }
    /// What the last recipe wrote.
    QByteArray output() { return m_shells.back()->readAllStandardOutput(); }

    void write(const QString &name, const QByteArray &contents) const
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
            qFatal("cannot write %s", qPrintable(name));
    }
    QStringList names() const { return m_names; }
    QStringList maps() const
    {
        QStringList names;
        for (const QFileInfo &map : QDir(m_folder.filePath("maps")).entryInfoList(QDir::Files, QDir::Name))
            names.append(map.completeBaseName());
        return names;
    }

private:
    QDir m_folder;
    QStringList m_names;
    std::vector<std::unique_ptr<QProcess>> m_shells;
};

} // namespace

class tst_BatchRecipes : public QObject
{
    Q_OBJECT

private slots:
    void xargsLosesNoPhotographOfOneToTwenty();
    void clusterTasksLoseNoPhotographOfOneToTwelve();
    void photographsWithoutAMapAreNamed();
};

void tst_BatchRecipes::xargsLosesNoPhotographOfOneToTwenty()
{
    QString recipe = recipeWith("xargs");
    QCOMPARE(recipe.count("-n 20 "), 1);
    recipe.replace("-n 20 ", "-n 6 "); // so that lists of 1, 7, 13 and 19 leave one over

    const ProgramFolder shared;
    std::vector<std::unique_ptr<Installation>> installations;
    for (int count = 1; count <= 20; ++count) {
        installations.push_back(std::make_unique<Installation>(shared, QString::number(count), count));
        installations.back()->start(recipe);
    }
    for (const auto &installation : installations) {
        QVERIFY(installation->succeeds());
        QCOMPARE(installation->maps(), installation->names());
    }
}

void tst_BatchRecipes::clusterTasksLoseNoPhotographOfOneToTwelve()
{
    const QString recipe = recipeWith("SLURM_ARRAY_TASK_ID");
    QVERIFY(!recipe.isEmpty());
    constexpr int tasks = 4; // some have nothing to do, some one photograph

    const ProgramFolder shared;
    std::vector<std::unique_ptr<Installation>> installations;
    for (int count = 1; count <= 12; ++count) {
        installations.push_back(std::make_unique<Installation>(shared, QString::number(count), count));
        Installation &installation = *installations.back();
        QByteArray list;
        for (const QString &name : installation.names())
            list += "photographs/" + name.toUtf8() + ".png\n";
        installation.write("photographs.txt", list);
        for (int task = 0; task < tasks; ++task) {
            installation.start(recipe, {QStringLiteral("SLURM_ARRAY_TASK_ID=%1").arg(task),
                                        QStringLiteral("SLURM_ARRAY_TASK_COUNT=%1").arg(tasks)});
        }
    }
    for (const auto &installation : installations) {
        QVERIFY(installation->succeeds());
        QCOMPARE(installation->maps(), installation->names());
    }
}

void tst_BatchRecipes::photographsWithoutAMapAreNamed()
{
    const ProgramFolder shared;
    Installation installation(shared, "program", 3);
    installation.write("photographs/photo 01.png", "no image");
    installation.start(recipeWith("xargs"));
    QVERIFY(installation.succeeds());
    installation.start(recipeWith("[ -s "));
    QVERIFY(installation.succeeds());
    QCOMPARE(installation.output(), QByteArray("photographs/photo 01.png\n"));
}

QTEST_GUILESS_MAIN(tst_BatchRecipes)
#include "tst_batchrecipes.moc"
