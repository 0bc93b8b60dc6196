#include "replacefile.h"

#include "faults.h"
#include "files.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

Q_DECLARE_METATYPE(ReadOnlyFolder)

namespace
{

const QByteArray oldContents = "the old contents";

mode_t modeOf(const QString &path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
}

void bothModes()
{
    QTest::addColumn<ReadOnlyFolder>("mode");
    QTest::newRow("refuse") << ReadOnlyFolder::Refuse;
    QTest::newRow("write in place") << ReadOnlyFolder::WriteInPlace;
}

} // namespace

class tst_ReplaceFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void contentsArrive_data();
    void contentsArrive();
    void permissionsAreKept_data();
    void permissionsAreKept();
    void ownerAndGroupAreKept_data();
    void ownerAndGroupAreKept();
    void groupOfOnesOwnIsKept();
    void newFileFollowsUmask();
    void linkIsFollowed_data();
    void linkIsFollowed();
    void ringOfLinksIsRefused();
    void impossibleTargetIsRefused_data();
    void impossibleTargetIsRefused();
    void pipeIsRefused();
    void longestFileNameIsReplaced_data();
    void longestFileNameIsReplaced();
    void longestFileNameIsRefusedWithoutRights();
    void fullDiskLeavesOldFile_data();
    void fullDiskLeavesOldFile();
    void fullSmallDiskLeavesOldFile();
    void readOnlyFolderIsRefusedOrWrittenInPlace_data();
    void readOnlyFolderIsRefusedOrWrittenInPlace();
    void readOnlyFolderWithoutFile_data();
    void readOnlyFolderWithoutFile();
    void readOnlyFileIsRefused_data();
    void readOnlyFileIsRefused();
    void killedProcessLeavesWholeFile();

private:
    QString in(const char *name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_ReplaceFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_ReplaceFile::cleanup()
{
    m_folder.reset();
}

void tst_ReplaceFile::contentsArrive_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QByteArray>("contents");
    QByteArray large(3000000, '\0');
    for (int i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>(i * 7);
    QTest::newRow("new file") << false << QByteArray("abc");
    QTest::newRow("new empty file") << false << QByteArray();
    QTest::newRow("shorter than the old file") << true << QByteArray("abc");
    QTest::newRow("empty over the old file") << true << QByteArray();
    QTest::newRow("3 MB with zero bytes") << true << large;
}

void tst_ReplaceFile::contentsArrive()
{
    QFETCH(bool, exists);
    QFETCH(QByteArray, contents);
    const QString path = in("地図 𠮷.jpg");
    if (exists)
        writeFile(path, oldContents);
    QVERIFY(replaceFile(path, contents, ReadOnlyFolder::Refuse));
    QCOMPARE(contentsOf(path), contents);
    QCOMPARE(namesIn(m_folder->path()), QStringList{QString::fromUtf8("地図 𠮷.jpg")});
}

void tst_ReplaceFile::permissionsAreKept_data()
{
    QTest::addColumn<uint>("mode");
    for (const uint mode : {0600U, 0640U, 0644U, 0666U, 0755U})
        QTest::addRow("%o", mode) << mode;
}

void tst_ReplaceFile::permissionsAreKept()
{
    QFETCH(uint, mode);
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), mode), 0);
    QVERIFY(replaceFile(path, "new", ReadOnlyFolder::Refuse));
    QCOMPARE(modeOf(path), mode);
}

void tst_ReplaceFile::ownerAndGroupAreKept_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<uint>("mode");
    QTest::newRow("somebody else's file") << "map.jpg" << 0640U;
    QTest::newRow("one that only he may read") << "map.jpg" << 0600U;
    QTest::newRow("with a long name") << QString(255, 'x') << 0640U;
}

void tst_ReplaceFile::ownerAndGroupAreKept()
{
    QFETCH(QString, name);
    QFETCH(uint, mode);
    // Only root can give a file to somebody else.
    const uid_t owner = geteuid() == 0 ? 1234 : geteuid();
    const gid_t group = geteuid() == 0 ? 4321 : getegid();
    const QString path = m_folder->filePath(name);
    writeFile(path, oldContents);
    const QByteArray encoded = QFile::encodeName(path);
    QCOMPARE(chown(encoded.constData(), owner, group), 0);
    QCOMPARE(chmod(encoded.constData(), mode), 0);
    for (const auto readOnlyFolder : {ReadOnlyFolder::Refuse, ReadOnlyFolder::WriteInPlace}) {
        QVERIFY(replaceFile(path, "new", readOnlyFolder));
        QCOMPARE(QFileInfo(path).ownerId(), owner);
        QCOMPARE(QFileInfo(path).groupId(), group);
        QCOMPARE(modeOf(path), mode_t(mode));
    }
}

// Who is not root may not give a file away, but may give it to a group that he is in.
void tst_ReplaceFile::groupOfOnesOwnIsKept()
{
    const bool isRoot = geteuid() == 0; // who can become a member of any group
    const gid_t group = isRoot ? 4321 : getegid();
    const uid_t oldOwner = isRoot ? 1234 : geteuid();
    const uid_t newOwner = isRoot ? 65534 : geteuid();
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    handOver({m_folder->path()});
    const QByteArray encoded = QFile::encodeName(path);
    QCOMPARE(chown(encoded.constData(), oldOwner, group), 0);
    QCOMPARE(chmod(encoded.constData(), 0664), 0);
    const auto replaceAsMember = [&] {
        if (isRoot && (setgroups(1, &group) != 0 || setresgid(65534, 65534, 65534) != 0 ||
                       setresuid(65534, 65534, 65534) != 0))
            return false;
        return replaceFile(path, "new", ReadOnlyFolder::Refuse);
    };
    QCOMPARE(inChild(replaceAsMember), Answer::Yes);
    QCOMPARE(contentsOf(path), QByteArray("new"));
    QCOMPARE(QFileInfo(path).ownerId(), newOwner);
    QCOMPARE(QFileInfo(path).groupId(), group);
}

void tst_ReplaceFile::newFileFollowsUmask()
{
    const mode_t before = umask(027);
    const bool replaced = replaceFile(in("map.jpg"), "new", ReadOnlyFolder::Refuse);
    umask(before);
    QVERIFY(replaced);
    QCOMPARE(modeOf(in("map.jpg")), mode_t(0640));
}

void tst_ReplaceFile::linkIsFollowed_data()
{
    QTest::addColumn<QStringList>("links"); // each one points at the next, the last one at the file
    QTest::addColumn<bool>("exists");
    const QString folder = QStringLiteral("folder/");
    QTest::newRow("one link") << QStringList{"first", folder + "file"} << true;
    QTest::newRow("a chain of links") << QStringList{"first", "second", "third", folder + "file"} << true;
    QTest::newRow("a link to a file that is not there yet") << QStringList{"first", folder + "file"} << false;
    QTest::newRow("a chain to a file that is not there yet")
        << QStringList{"first", "second", folder + "file"} << false;
}

void tst_ReplaceFile::linkIsFollowed()
{
    QFETCH(QStringList, links);
    QFETCH(bool, exists);
    const QDir folder(m_folder->path());
    QVERIFY(folder.mkdir(QStringLiteral("folder")));
    const QString file = folder.filePath(links.last());
    if (exists)
        writeFile(file, oldContents);
    for (int i = 0; i + 1 < links.size(); ++i) // relative links, as people make them
        QCOMPARE(symlink(QFile::encodeName(links[i + 1]).constData(),
                         QFile::encodeName(folder.filePath(links[i])).constData()),
                 0);
    QVERIFY(replaceFile(folder.filePath(links.first()), "new", ReadOnlyFolder::Refuse));
    for (int i = 0; i + 1 < links.size(); ++i)
        QVERIFY(QFileInfo(folder.filePath(links[i])).isSymLink());
    QVERIFY(!QFileInfo(file).isSymLink());
    QCOMPARE(contentsOf(file), QByteArray("new"));
    QCOMPARE(namesIn(folder.filePath("folder")), QStringList{"file"});
}

void tst_ReplaceFile::ringOfLinksIsRefused()
{
    QCOMPARE(symlink("b", QFile::encodeName(in("a")).constData()), 0);
    QCOMPARE(symlink("a", QFile::encodeName(in("b")).constData()), 0);
    QVERIFY(!replaceFile(in("a"), "new", ReadOnlyFolder::WriteInPlace));
    QCOMPARE(namesIn(m_folder->path()), (QStringList{"a", "b"}));
    QVERIFY(QFileInfo(in("a")).isSymLink());
}

void tst_ReplaceFile::impossibleTargetIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expectedReason");
    QTest::newRow("a folder") << "folder"
                              << "Is a directory";
    QTest::newRow("a folder, with a slash") << "folder/"
                                            << "Is a directory";
    QTest::newRow("a link to a folder") << "link"
                                        << "Is a directory";
    QTest::newRow("in a folder that is not there") << "missing/map.jpg"
                                                   << "No such file or directory";
    QTest::newRow("below a file") << "file/map.jpg"
                                  << "Not a directory";
    QTest::newRow("a name that is too long") << QString(256, 'x') << "File name too long";
}

void tst_ReplaceFile::impossibleTargetIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, expectedReason);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    writeFile(in("folder/inside"), oldContents);
    writeFile(in("file"), oldContents);
    QVERIFY(QFile::link(in("folder"), in("link")));
    for (const auto mode : {ReadOnlyFolder::Refuse, ReadOnlyFolder::WriteInPlace}) {
        QString reason;
        QVERIFY(!replaceFile(m_folder->filePath(name), "new", mode, &reason));
        QCOMPARE(reason, expectedReason);
    }
    QCOMPARE(namesIn(m_folder->path()), (QStringList{"file", "folder", "link"}));
    QCOMPARE(namesIn(in("folder")), QStringList{"inside"});
    QCOMPARE(contentsOf(in("file")), oldContents);
    QVERIFY(!replaceFile(QString(), "new", ReadOnlyFolder::WriteInPlace));
}

void tst_ReplaceFile::pipeIsRefused()
{
    QCOMPARE(mkfifo(QFile::encodeName(in("pipe")).constData(), 0600), 0);
    for (const auto mode : {ReadOnlyFolder::Refuse, ReadOnlyFolder::WriteInPlace})
        QVERIFY(!replaceFile(in("pipe"), "new", mode));
    struct stat status = {};
    QCOMPARE(stat(QFile::encodeName(in("pipe")).constData(), &status), 0);
    QVERIFY(S_ISFIFO(status.st_mode));
}

void tst_ReplaceFile::longestFileNameIsReplaced_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("248 bytes") << QString(248, 'x');
    QTest::newRow("249 bytes") << QString(249, 'x');
    QTest::newRow("255 bytes") << QString(255, 'x');
    QTest::newRow("85 kana of 3 bytes") << QString(85, QChar(0x3042));
}

void tst_ReplaceFile::longestFileNameIsReplaced()
{
    QFETCH(QString, name);
    const QString path = m_folder->filePath(name);
    writeFile(path, oldContents);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0640), 0);
    QVERIFY(replaceFile(path, "new", ReadOnlyFolder::Refuse));
    QCOMPARE(contentsOf(path), QByteArray("new"));
    QCOMPARE(modeOf(path), mode_t(0640));
    QCOMPARE(namesIn(m_folder->path()), QStringList{name});
    QCOMPARE(withFileSizeLimit(2, [&] { return replaceFile(path, "newer", ReadOnlyFolder::Refuse); }),
             Answer::No);
    QCOMPARE(contentsOf(path), QByteArray("new"));
    QCOMPARE(namesIn(m_folder->path()), QStringList{name});
}

/// The folder would let anybody put another file in its place.
void tst_ReplaceFile::longestFileNameIsRefusedWithoutRights()
{
    const QString name(255, 'x');
    const QString path = m_folder->filePath(name);
    writeFile(path, oldContents);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0444), 0);
    handOver({path, m_folder->path()});
    const auto isDenied = [&] {
        QString reason;
        return !replaceFile(path, "new", ReadOnlyFolder::Refuse, &reason) &&
               reason == QLatin1String("Permission denied");
    };
    QCOMPARE(asOrdinaryUser(isDenied), Answer::Yes);
    QCOMPARE(contentsOf(path), QByteArray(oldContents));
    QCOMPARE(namesIn(m_folder->path()), QStringList{name});
}

void tst_ReplaceFile::fullDiskLeavesOldFile_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("room");
    QTest::newRow("no room for a small file") << 100 << 0;
    QTest::newRow("one byte short of a small file") << 100 << 99;
    QTest::newRow("one byte short of the write buffer") << 16384 << 16383;
    QTest::newRow("no room for a large file") << 1000000 << 0;
    QTest::newRow("half the room for a large file") << 1000000 << 500000;
    QTest::newRow("one byte short of a large file") << 1000000 << 999999;
}

void tst_ReplaceFile::fullDiskLeavesOldFile()
{
    QFETCH(int, size);
    QFETCH(int, room);
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    const QByteArray contents(size, 'n');
    for (const auto mode : {ReadOnlyFolder::Refuse, ReadOnlyFolder::WriteInPlace}) {
        const auto replace = [&] { return replaceFile(path, contents, mode); };
        QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(room), replace), Answer::No);
        QCOMPARE(contentsOf(path), oldContents);
        QCOMPARE(namesIn(m_folder->path()), QStringList{"map.jpg"});
    }
    const auto replace = [&] { return replaceFile(path, contents, ReadOnlyFolder::Refuse); };
    QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(size), replace), Answer::Yes);
    QCOMPARE(contentsOf(path), contents);
}

void tst_ReplaceFile::fullSmallDiskLeavesOldFile()
{
    const SmallDisk disk(m_folder->path(), "64k");
    if (!disk.isMounted()) {
        qInfo("only the file size limit was tested: no small disk can be mounted here");
        return;
    }
    qInfo("tested on a mounted small disk too");
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    for (const int size : {61441, 65536, 1000000}) {
        QVERIFY(!replaceFile(path, QByteArray(size, 'n'), ReadOnlyFolder::WriteInPlace));
        QCOMPARE(contentsOf(path), oldContents);
        QCOMPARE(namesIn(m_folder->path()), QStringList{"map.jpg"});
    }
    QVERIFY(replaceFile(path, QByteArray(40000, 'n'), ReadOnlyFolder::WriteInPlace));
    QCOMPARE(contentsOf(path), QByteArray(40000, 'n'));
}

void tst_ReplaceFile::readOnlyFolderIsRefusedOrWrittenInPlace_data()
{
    bothModes();
}

void tst_ReplaceFile::readOnlyFolderIsRefusedOrWrittenInPlace()
{
    QFETCH(ReadOnlyFolder, mode);
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    handOver({path, m_folder->path()});
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0555), 0);
    const Answer answer = asOrdinaryUser([&] { return replaceFile(path, "new", mode); });
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0700), 0);
    const bool written = mode == ReadOnlyFolder::WriteInPlace;
    QCOMPARE(answer, written ? Answer::Yes : Answer::No);
    QCOMPARE(contentsOf(path), written ? QByteArray("new") : oldContents);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"map.jpg"});
}

void tst_ReplaceFile::readOnlyFolderWithoutFile_data()
{
    bothModes();
}

void tst_ReplaceFile::readOnlyFolderWithoutFile()
{
    QFETCH(ReadOnlyFolder, mode);
    handOver({m_folder->path()});
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0555), 0);
    const Answer answer = asOrdinaryUser([&] { return replaceFile(in("map.jpg"), "new", mode); });
    QCOMPARE(chmod(QFile::encodeName(m_folder->path()).constData(), 0700), 0);
    QCOMPARE(answer, Answer::No);
    QCOMPARE(namesIn(m_folder->path()), QStringList());
}

void tst_ReplaceFile::readOnlyFileIsRefused_data()
{
    bothModes();
}

void tst_ReplaceFile::readOnlyFileIsRefused()
{
    QFETCH(ReadOnlyFolder, mode);
    const QString path = in("map.jpg");
    writeFile(path, oldContents);
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0444), 0);
    handOver({path, m_folder->path()});
    QCOMPARE(asOrdinaryUser([&] { return replaceFile(path, "new", mode); }), Answer::No);
    QCOMPARE(contentsOf(path), oldContents);
    QCOMPARE(namesIn(m_folder->path()), QStringList{"map.jpg"});
}

void tst_ReplaceFile::killedProcessLeavesWholeFile()
{
    const QString path = in("map.jpg");
    const QByteArray first(500000, 'a');
    const QByteArray second(300000, 'b');
    writeFile(path, oldContents);
    Rng rng(20261120);
    const auto replaceTwice = [&] {
        replaceFile(path, first, ReadOnlyFolder::WriteInPlace);
        replaceFile(path, second, ReadOnlyFolder::WriteInPlace);
    };
    const auto within = durationOf(replaceTwice);
    for (int i = 0; i < 60; ++i) {
        QVERIFY(killedInTheMiddle(replaceTwice, within, rng));
        const QByteArray found = contentsOf(path);
        QVERIFY2(found == first || found == second, qPrintable(QString::number(found.size())));
    }
}

QTEST_GUILESS_MAIN(tst_ReplaceFile)
#include "tst_replacefile.moc"
