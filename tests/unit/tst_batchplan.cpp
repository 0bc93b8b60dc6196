#include "batchplan.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <algorithm>

namespace
{

/// An empty file, last modified this many seconds after 2020 began.
QString touch(const QTemporaryDir &folder, const QString &name, int seconds)
{
    QFile file(folder.filePath(name));
    const QDateTime time = QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC).addSecs(seconds);
    if (!file.open(QIODevice::WriteOnly) || !file.setFileTime(time, QFileDevice::FileModificationTime))
        qFatal("cannot prepare %s", qUtf8Printable(file.fileName()));
    return file.fileName();
}

} // namespace

class tst_BatchPlan : public QObject
{
    Q_OBJECT

private slots:
    void proposedName_isOvAndTheNameUpToTheFirstDot()
    {
        QCOMPARE(proposedName("/in/planet.v2.png", "jpg"), QString("OV-planet.jpg"));
        QCOMPARE(proposedName("planet", "png"), QString("OV-planet.png"));
        QCOMPARE(proposedName("/in/.hidden.png", "png"), QString("OV-.png"));
        QCOMPARE(proposedName(":planet.png", "png"), QString("OV-:planet.png"));
    }

    void byPath_sortsByCodeUnitsOfTheWholePath_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("nothing") << QStringList{} << QStringList{};
        QTest::newRow("capitals before small letters")
            << QStringList{"/in/a.png", "/in/B.png"} << QStringList{"/in/B.png", "/in/a.png"};
        QTest::newRow("digits as text, not as numbers")
            << QStringList{"/in/img9.png", "/in/img10.png"} << QStringList{"/in/img10.png", "/in/img9.png"};
        QTest::newRow("the folder before the file name")
            << QStringList{"/z/a.png", "/a/z.png"} << QStringList{"/a/z.png", "/z/a.png"};
        QTest::newRow("code units, not code points: a surrogate pair before U+FF21")
            << QStringList{"/in/\uff21.png", "/in/\U00020bb7.png"}
            << QStringList{"/in/\U00020bb7.png", "/in/\uff21.png"};
        QTest::newRow("a path given twice stays twice") << QStringList{"/in/b.png", "/in/a.png", "/in/b.png"}
                                                        << QStringList{"/in/a.png", "/in/b.png", "/in/b.png"};
    }

    void byPath_sortsByCodeUnitsOfTheWholePath()
    {
        QFETCH(QStringList, paths);
        QFETCH(QStringList, expected);

        QCOMPARE(orderedInputs(paths, SortByPath), expected);
    }

    void byModification_newestFirst()
    {
        QTemporaryDir folder;
        const QString oldest = touch(folder, "c.png", 0);
        const QString middle = touch(folder, "a.png", 10);
        const QString newest = touch(folder, "b.png", 20);

        QCOMPARE(orderedInputs({middle, oldest, newest}, SortByModified),
                 (QStringList{newest, middle, oldest}));
    }

    void byModification_equalTimesKeepEveryPath_andNewerOnesPrecede()
    {
        QTemporaryDir folder;
        QStringList same;
        for (int i = 0; i < 50; ++i)
            same.append(touch(folder, QString::number(i), 10));
        const QString newest = touch(folder, "new", 20);
        const QString oldest = touch(folder, "old", 0);

        QStringList sorted = orderedInputs(QStringList{oldest} + same + QStringList{newest}, SortByModified);
        QCOMPARE(sorted.takeFirst(), newest);
        QCOMPARE(sorted.takeLast(), oldest);
        std::sort(sorted.begin(), sorted.end());
        std::sort(same.begin(), same.end());
        QCOMPARE(sorted, same);
    }

    void byModification_missingFilesComeLast()
    {
        QTemporaryDir folder;
        const QString old = touch(folder, "old.png", 0);
        const QString recent = touch(folder, "recent.png", 10);
        QStringList paths;
        for (int i = 0; i < 40; ++i)
            paths += {folder.filePath(QStringLiteral("missing%1").arg(i)), i % 2 ? old : recent};
        paths += QString();

        const QStringList sorted = orderedInputs(paths, SortByModified);
        QCOMPARE(sorted.size(), paths.size());
        QCOMPARE(sorted.mid(0, 20), QVector<QString>(20, recent).toList());
        QCOMPARE(sorted.mid(20, 20), QVector<QString>(20, old).toList());
        QCOMPARE(QSet<QString>(sorted.begin() + 40, sorted.end()).size(), 41);
    }

    void byModification_timesBefore1970ComeAfterLaterOnes()
    {
        QTemporaryDir folder;
        const QString ancient = touch(folder, "ancient.png", -60 * 365 * 24 * 3600);
        const QString old = touch(folder, "old.png", 0);

        QCOMPARE(orderedInputs({folder.filePath("missing"), ancient, old}, SortByModified),
                 (QStringList{old, ancient, folder.filePath("missing")}));
    }

    void byModified_colonInFrontIsPartOfAName()
    {
        const QTemporaryDir folder;
        touch(folder, "old.png", 1);
        touch(folder, "new.png", 2);
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder.path()));
        QVERIFY(QFile::rename("old.png", "./:old.png") && QFile::rename("new.png", "./:new.png"));
        const QStringList sorted = orderedInputs({":old.png", ":new.png"}, SortByModified);
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(sorted, (QStringList{":new.png", ":old.png"}));
    }

    void anyOtherSortType_leavesTheList_data()
    {
        QTest::addColumn<int>("sortType");

        QTest::newRow("2") << 2;
        QTest::newRow("-1") << -1;
        QTest::newRow("largest int") << 2147483647;
    }

    void anyOtherSortType_leavesTheList()
    {
        QFETCH(int, sortType);
        const QStringList paths{"/in/b.png", "/in/a.png"};

        QCOMPARE(orderedInputs(paths, sortType), paths);
    }

    void outputPath_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("nameType");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("expected");

        QTest::newRow("named after the input") << "/out"
                                               << "/in/photo.gif" << 0 << 7 << "/out/photo.png";
        QTest::newRow("up to the first dot") << "/out"
                                             << "/in/img.2020.png" << 0 << 0 << "/out/img.png";
        QTest::newRow("a leading dot leaves no name") << "/out"
                                                      << "/in/.dot.png" << 0 << 0 << "/out/.png";
        QTest::newRow("a dot in the folder is no end of the name") << "/out"
                                                                   << "/in.1/b.jpg" << 0 << 0 << "/out/b.png";
        QTest::newRow("blanks and Japanese stay")
            << QStringLiteral("/出力 先") << QStringLiteral("/in/\u6708 1.jpg") << 0 << 0
            << QStringLiteral("/出力 先/\u6708 1.png");
        QTest::newRow("first of a numbered series") << "/out"
                                                    << "/in/photo.gif" << 1 << 0 << "/out/map_0.png";
        QTest::newRow("position ten of a numbered series") << "/out"
                                                           << "/in/photo.gif" << 1 << 10 << "/out/map_10.png";
        QTest::newRow("any other name type numbers too") << "/out"
                                                         << "/in/photo.gif" << -5 << 3 << "/out/map_3.png";
        QTest::newRow("a colon in front of the input is part of its name")
            << "/out"
            << ":photo.gif" << 0 << 0 << "/out/:photo.png";
        QTest::newRow("a folder with a colon in front is no compiled-in resource")
            << ":out"
            << "/in/photo.gif" << 0 << 0 << "./:out/photo.png";
        QTest::newRow("no folder: directly under the root") << ""
                                                            << "/in/photo.gif" << 0 << 0 << "/photo.png";
    }

    void outputPath()
    {
        QFETCH(QString, folder);
        QFETCH(QString, input);
        QFETCH(int, nameType);
        QFETCH(int, index);
        QFETCH(QString, expected);

        QCOMPARE(::outputPath(folder, input, nameType, index, QStringLiteral("png")), expected);
    }

    void sameNameWithOtherExtension_givesTheSameOutput()
    {
        QCOMPARE(::outputPath("/out", "/in/a.png", 0, 0, "jpg"),
                 ::outputPath("/out", "/in/a.jpg", 0, 1, "jpg"));
    }
};

QTEST_GUILESS_MAIN(tst_BatchPlan)
#include "tst_batchplan.moc"
