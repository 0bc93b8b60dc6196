// The recipes of docs/batch.md, as they stand there: they convert a list and share it out, and lose no photograph.

#include "mapfolder.h"

namespace
{

/// The recipe of the guide that holds these words; nothing, unless there is exactly one.
QString recipeWith(const QString &words)
{
    QFile guide(QStringLiteral(OVMIC_BATCH_GUIDE));
    if (!guide.open(QIODevice::ReadOnly))
        return {};
    const QStringList parts = QString::fromUtf8(guide.readAll()).split("```");
    QStringList found;
    for (int i = 1; i < parts.size(); i += 2) {
        if (parts.at(i).startsWith("sh\n") && parts.at(i).contains(words))
            found.append(parts.at(i).mid(3));
    }
    return found.size() == 1 ? found.first() : QString();
}

/// A folder with photographs, settings and a list of them, as the guide supposes.
class GuideFolder : public MapFolder
{
public:
    explicit GuideFolder(int photographs)
    {
        makeFolder("photographs");
        QByteArray list;
        for (int i = 0; i < photographs; ++i) {
            const QString name = QStringLiteral("photographs/photo %1.jpg").arg(i, 2, 10, QLatin1Char('0'));
            writePhotograph(name, i + 1);
            list += name.toUtf8() + '\n';
            maps.append(QStringLiteral("OV-photo %1.jpg").arg(i, 2, 10, QLatin1Char('0')));
        }
        write("list.txt", list);
        write("show.ini", "[General]\nOutputSizeX=16\nOutputSizeY=8\nRadius=3\nCenterX=30\nCenterY=20\n");
    }

    QStringList maps; ///< their names, in order
};

} // namespace

class tst_BatchRecipes : public QObject
{
    Q_OBJECT

private slots:
    void oneMachineConvertsAll();
    void listIsWrittenAndConverted();
    void severalMachinesShareAList();
    void clusterTasksLoseNoPhotographOfNoneToTwelve();
};

void tst_BatchRecipes::oneMachineConvertsAll()
{
    const GuideFolder folder(5);
    COMPARE_RUN(folder.shell(recipeWith("maps photographs/*.jpg")), 0, "");
    QCOMPARE(folder.namesIn("maps"), folder.maps);
}

void tst_BatchRecipes::listIsWrittenAndConverted()
{
    const GuideFolder folder(5);
    const QByteArray list = folder.read("list.txt");
    folder.write("list.txt", "");
    COMPARE_RUN(folder.shell(recipeWith("| sort >list.txt")), 0, "");
    QCOMPARE(folder.read("list.txt"), list);
    QCOMPARE(folder.namesIn("maps"), folder.maps);
}

void tst_BatchRecipes::severalMachinesShareAList()
{
    const GuideFolder folder(9);
    QString recipe = recipeWith("parallel");
    QCOMPARE(recipe.count("--sshlogin node1,node2,node3,node4"), 1);
    recipe.replace("--sshlogin node1,node2,node3,node4", "--sshlogin 4/:"); // this machine in their place
    // Where GNU parallel is not installed, its place is taken by what it does here.
    const QString standIn = "command -v parallel >/dev/null || parallel() { shift 6; while read -r part; do "
                            "\"${@//\\{\\}/$part}\" || return; done; }\n";
    const MapFolder::Result result = folder.shell(standIn + recipe);
    QVERIFY2(result.finished && result.status == 0, result.errors.constData());
    QCOMPARE(folder.namesIn("maps"), folder.maps);
    QCOMPARE(result.output.count('\n'), 9);
}

void tst_BatchRecipes::clusterTasksLoseNoPhotographOfNoneToTwelve()
{
    const QString recipe = recipeWith("SLURM_ARRAY_TASK_ID");
    QVERIFY(!recipe.isEmpty());
    constexpr int tasks = 4; // some have nothing to do
    for (int count = 0; count <= 12; ++count) {
        GuideFolder folder(count);
        folder.environment().insert("SLURM_ARRAY_TASK_COUNT", QString::number(tasks));
        for (int task = 0; task < tasks; ++task) {
            folder.environment().insert("SLURM_ARRAY_TASK_ID", QString::number(task));
            COMPARE_RUN(folder.shell(recipe), 0, "");
        }
        QCOMPARE(folder.namesIn("maps"), folder.maps);
        // Submitted once more, nothing is left to do.
        const MapFolder::Result again = folder.shell(recipe);
        COMPARE_RUN(again, 0, "");
        QCOMPARE(again.output, QByteArray());
    }
}

QTEST_GUILESS_MAIN(tst_BatchRecipes)
#include "tst_batchrecipes.moc"
