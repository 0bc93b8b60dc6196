#include "mapplan.h"

#include "files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class tst_MapPlan : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void maps_data();
    void maps();
    void sharesAreInterleaved();
    void numbersCountTheWholeList();
    void impossiblePlansAreRefused_data();
    void impossiblePlansAreRefused();
    void linkedFoldersAreOneFolder();
    void foldersAreMadeOnlyWhenAsked();
    void aFileIsNoFolder();
    void aHundredThousandPhotographs();

private:
    /// A plan of a command line; its problem in its place.
    std::optional<MapPlan> plan(const QStringList &arguments, QString *problem = nullptr)
    {
        QString found;
        m_options = readOptions(QStringList("ovmic-map") + arguments, found);
        if (!m_options)
            qFatal("%s", qPrintable(found));
        const std::optional<MapPlan> result = MapPlan::made(*m_options, found);
        if (problem)
            *problem = found;
        return result;
    }
    QStringList mapsOf(const QStringList &arguments)
    {
        const std::optional<MapPlan> made = plan(arguments);
        QStringList maps;
        for (int i = 0; made && i < made->count(); ++i)
            maps.append(made->job(i).map);
        return maps;
    }

    QString m_before = QDir::currentPath();
    std::unique_ptr<QTemporaryDir> m_folder;
    std::optional<MapOptions> m_options;
};

void tst_MapPlan::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    QVERIFY(QDir().mkpath("in/deep"));
    QVERIFY(QDir().mkdir("maps"));
    QVERIFY(QFile::link("in", "link"));
    writeFile("file", "no folder");
}

void tst_MapPlan::cleanup()
{
    QVERIFY(QDir::setCurrent(m_before));
}

void tst_MapPlan::maps_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QStringList &arguments, const QStringList &expected) {
        QTest::newRow(name) << arguments << expected;
    };
    row("beside a photograph of this folder", {"a.png"}, {"OV-a.jpg"});
    row("beside each photograph", {"in/a.v2.png", "/tmp/b.gif"}, {"in/OV-a.jpg", "/tmp/OV-b.jpg"});
    row("into a folder that is there", {"in/a.png", "-o", "maps"}, {"maps/OV-a.jpg"});
    row("into a folder by its slash", {"in/a.png", "-o", "new/"}, {"new/OV-a.jpg"});
    row("into a folder that is missing", {"a.png", "b.png", "-o", "new"}, {"new/OV-a.jpg", "new/OV-b.jpg"});
    row("into a file", {"in/a.png", "-o", "new/map.jpg"}, {"new/map.jpg"});
    row("into a file without an extension", {"in/a.png", "-o", "map"}, {"map"});
    row("a name makes it a folder", {"a.png", "-o", "new", "-n", "{name}"}, {"new/a.jpg"});
    row("a list of one makes it a folder", {"--files-from", "one", "-o", "new"}, {"new/OV-a.jpg"});
    row("PNG", {"a.png", "--format", "png"}, {"OV-a.png"});
    row("numbers", {"a.png", "b.png", "-n", "map-{number:3}"}, {"map-000.jpg", "map-001.jpg"});
    row("names and numbers", {"a.png", "b.png", "-n", "{number}-{name}"}, {"0-a.jpg", "1-b.jpg"});
    row("the extension is not doubled", {"a.png", "-n", "{name}.JPG"}, {"a.JPG"});
    row("another extension stays a part of the name", {"a.png", "-n", "{name}.png"}, {"a.png.jpg"});
    row("photographs of one name in two folders", {"in/a.png", "in/deep/a.png"},
        {"in/OV-a.jpg", "in/deep/OV-a.jpg"});
    row("no name", {".png"}, {"OV-.jpg"});
    row("a colon in front", {":a.png", "-n", "{name}"}, {"./:a.jpg"});
}

void tst_MapPlan::maps()
{
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);
    writeFile("one", "in/a.png\n");
    QCOMPARE(mapsOf(arguments), expected);
}

void tst_MapPlan::sharesAreInterleaved()
{
    const QStringList all = {"a.png", "b.png", "c.png", "d.png", "e.png"};
    QCOMPARE(mapsOf(all + QStringList{"--part", "1/2"}), (QStringList{"OV-a.jpg", "OV-c.jpg", "OV-e.jpg"}));
    QCOMPARE(mapsOf(all + QStringList{"--part", "2/2"}), (QStringList{"OV-b.jpg", "OV-d.jpg"}));
    QCOMPARE(mapsOf(all + QStringList{"--part", "5/5"}), (QStringList{"OV-e.jpg"}));
    QCOMPARE(mapsOf(all + QStringList{"--part", "6/6"}), QStringList());
    QCOMPARE(mapsOf(all + QStringList{"--part", "2000000000/2000000001"}), QStringList());
    for (int count = 1; count <= 7; ++count) {
        QStringList maps;
        for (int index = 1; index <= count; ++index)
            maps += mapsOf(all + QStringList{"--part", QStringLiteral("%1/%2").arg(index).arg(count)});
        maps.sort();
        QCOMPARE(maps, mapsOf(all));
    }
}

void tst_MapPlan::numbersCountTheWholeList()
{
    QCOMPARE(mapsOf({"a.png", "b.png", "c.png", "d.png", "--part", "2/2", "-n", "{number}"}),
             (QStringList{"1.jpg", "3.jpg"}));
}

void tst_MapPlan::impossiblePlansAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const QStringList &arguments, const char *problem) {
        QTest::newRow(name) << arguments << QString::fromLatin1(problem);
    };
    row("one name, two extensions", {"a.png", "b.png", "a.jpg"},
        "a.png and a.jpg would both be written to OV-a.jpg");
    row("one name up to the first dot", {"night.1.png", "night.2.png", "-o", "maps"},
        "night.1.png and night.2.png would both be written to maps/OV-night.jpg");
    row("one photograph twice", {"a.png", "a.png"}, "a.png and a.png would both be written to OV-a.jpg");
    row("one photograph by two paths", {"in/a.png", "in/deep/../a.png"},
        "in/a.png and in/deep/../a.png would both be written to in/OV-a.jpg");
    row("one name from two folders", {"in/a.png", "in/deep/a.png", "-o", "new"},
        "in/a.png and in/deep/a.png would both be written to new/OV-a.jpg");
    row("a fixed name", {"a.png", "b.png", "-n", "map"}, "a.png and b.png would both be written to map.jpg");
    row("in another share", {"a.png", "b.png", "a.jpg", "--part", "2/3"},
        "a.png and a.jpg would both be written to OV-a.jpg");
    row("in the place of the photograph", {"a.jpg", "-n", "{name}", "--overwrite"},
        "the map of a.jpg would take the place of the photograph a.jpg");
    row("in the place of another photograph", {"OV-a.jpg", "a.png"},
        "the map of a.png would take the place of the photograph OV-a.jpg");
    row("a file in the place of the folder", {"a.png", "b.png", "-o", "file"},
        "--output file: Not a directory");
}

void tst_MapPlan::impossiblePlansAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, problem);
    QString found;
    QVERIFY(!plan(arguments, &found));
    QCOMPARE(found, problem);
}

void tst_MapPlan::linkedFoldersAreOneFolder()
{
    QString problem;
    QVERIFY(!plan({"in/a.png", "link/a.gif"}, &problem));
    QCOMPARE(problem, QString("in/a.png and link/a.gif would both be written to in/OV-a.jpg"));
}

void tst_MapPlan::foldersAreMadeOnlyWhenAsked()
{
    const std::optional<MapPlan> made = plan({"a.png", "b.png", "-o", "new/er"});
    QVERIFY(made);
    QVERIFY(!QDir("new").exists());
    QCOMPARE(made->prepareFolder(), QString());
    QVERIFY(QDir("new/er").exists());
    QCOMPARE(made->prepareFolder(), QString());
}

void tst_MapPlan::aFileIsNoFolder()
{
    const std::optional<MapPlan> made = plan({"a.png", "b.png", "-o", "file/maps"});
    QVERIFY(made);
    QCOMPARE(made->prepareFolder(), QString("--output file/maps: the folder cannot be made"));
}

void tst_MapPlan::aHundredThousandPhotographs()
{
    QByteArray list;
    constexpr int count = 100000;
    for (int i = 0; i < count; ++i)
        list += "in/photograph-with-a-name-of-usual-length-" + QByteArray::number(i) + ".jpg\n";
    writeFile("list", list);
    QString problem;
    const std::optional<MapPlan> made =
        plan({"--files-from", "list", "-o", "maps", "--part", "2/100"}, &problem);
    QVERIFY2(made, qPrintable(problem));
    QCOMPARE(made->count(), 1000);
    QCOMPARE(made->job(999).photograph, QString("in/photograph-with-a-name-of-usual-length-99901.jpg"));
    writeFile("list", list + "in/deep/photograph-with-a-name-of-usual-length-12345.png\n");
    QVERIFY(!plan({"--files-from", "list", "-o", "maps", "--part", "2/100"}, &problem));
    QVERIFY2(problem.contains("length-12345.jpg and in/deep/"), qPrintable(problem));
}

QTEST_GUILESS_MAIN(tst_MapPlan)
#include "tst_mapplan.moc"
