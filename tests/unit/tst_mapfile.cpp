#include "mapfile.h"

#include "faults.h"
#include "files.h"
#include "memorylimit.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace
{

/// A map as the engine makes it: colours on a transparent premultiplied canvas.
QImage map(int width, int height, uint seed = 1)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    Rng rng(seed);
    for (int y = 0; y < height; ++y) {
        for (int x = y % 3; x < width; x += 2)
            image.setPixelColor(x, y, QColor::fromRgb(qRgb(x * 3 % 256, y * 5 % 256, rng.between(0, 255))));
    }
    return image;
}

} // namespace

class tst_MapFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void bytesAreThoseOfImageSave_data();
    void bytesAreThoseOfImageSave();
    void formatDecidesNotTheExtension_data();
    void formatDecidesNotTheExtension();
    void unfilledAreasAreTransparentInPngAndBlackInJpeg();
    void whatCannotBeEncodedTouchesNothing_data();
    void whatCannotBeEncodedTouchesNothing();
    void fullDiskLeavesOldMap_data();
    void fullDiskLeavesOldMap();
    void fullSmallDiskLeavesOldMap();
    void littleMemoryLeavesOldMap();
    void missingFolderAndFolderAsTarget();
    void writableMapInReadOnlyFolderIsReplaced();
    void killedProcessLeavesWholeMap();

private:
    QString in(const char *name) const { return m_folder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_MapFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_MapFile::cleanup()
{
    m_folder.reset();
}

void tst_MapFile::bytesAreThoseOfImageSave_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<int>("quality");
    for (const char *format : {"jpg", "png"}) {
        for (const int quality : {-5, -1, 0, 1, 50, 85, 99, 100, 101, 2147483647})
            QTest::addRow("map, %s, quality %d", format, quality)
                << map(200, 100) << QByteArray(format) << quality;
        QTest::addRow("one pixel, %s", format) << map(1, 1) << QByteArray(format) << 85;
        QTest::addRow("without alpha, %s", format)
            << map(64, 32).convertToFormat(QImage::Format_RGB32) << QByteArray(format) << 85;
    }
}

void tst_MapFile::bytesAreThoseOfImageSave()
{
    QFETCH(QImage, image);
    QFETCH(QByteArray, format);
    QFETCH(int, quality);
    QVERIFY(image.save(in("expected"), format.constData(), quality));
    QVERIFY(saveMap(image, in("actual"), format.constData(), quality));
    QVERIFY(contentsOf(in("expected")).size() > 60);
    QCOMPARE(contentsOf(in("actual")), contentsOf(in("expected")));
}

void tst_MapFile::formatDecidesNotTheExtension_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("signature");
    QTest::newRow("PNG under a name ending in .jpg")
        << QByteArray("png") << "map.jpg" << QByteArray("\x89PNG");
    QTest::newRow("JPEG under a name ending in .png")
        << QByteArray("jpg") << "map.png" << QByteArray("\xff\xd8\xff");
    QTest::newRow("JPEG under a name without an ending")
        << QByteArray("jpg") << "map" << QByteArray("\xff\xd8\xff");
    QTest::newRow("PNG under an unknown ending") << QByteArray("png") << "map.txt" << QByteArray("\x89PNG");
}

void tst_MapFile::formatDecidesNotTheExtension()
{
    QFETCH(QByteArray, format);
    QFETCH(QString, name);
    QFETCH(QByteArray, signature);
    QVERIFY(saveMap(map(20, 10), m_folder->filePath(name), format.constData(), 85));
    QVERIFY(contentsOf(m_folder->filePath(name)).startsWith(signature));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{name});
}

void tst_MapFile::unfilledAreasAreTransparentInPngAndBlackInJpeg()
{
    QImage empty(16, 16, QImage::Format_ARGB32_Premultiplied);
    empty.fill(Qt::transparent);
    QVERIFY(saveMap(empty, in("map.png"), "png", 85));
    QVERIFY(saveMap(empty, in("map.jpg"), "jpg", 85));
    QCOMPARE(QImage(in("map.png")).pixel(7, 7), qRgba(0, 0, 0, 0));
    QCOMPARE(QImage(in("map.jpg")).pixel(7, 7), qRgb(0, 0, 0));
}

void tst_MapFile::whatCannotBeEncodedTouchesNothing_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("null image, JPEG") << QImage() << QByteArray("jpg");
    QTest::newRow("null image, PNG") << QImage() << QByteArray("png");
    QTest::newRow("wider than a JPEG can be") << map(65536, 1) << QByteArray("jpg");
    QTest::newRow("unknown format") << map(8, 4) << QByteArray("no such format");
}

void tst_MapFile::whatCannotBeEncodedTouchesNothing()
{
    QFETCH(QImage, image);
    QFETCH(QByteArray, format);
    writeFile(in("old"), "old map");
    QVERIFY(!saveMap(image, in("old"), format.constData(), 85));
    QVERIFY(!saveMap(image, in("new"), format.constData(), 85));
    QCOMPARE(contentsOf(in("old")), QByteArray("old map"));
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"old"});
}

void tst_MapFile::fullDiskLeavesOldMap_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<int>("width");
    for (const char *format : {"jpg", "png"}) {
        QTest::addRow("small map, %s", format) << QByteArray(format) << 16;
        QTest::addRow("large map, %s", format) << QByteArray(format) << 600;
    }
}

void tst_MapFile::fullDiskLeavesOldMap()
{
    QFETCH(QByteArray, format);
    QFETCH(int, width);
    const QImage image = map(width, width / 2);
    QVERIFY(saveMap(image, in("complete"), format.constData(), 90));
    const qint64 size = QFileInfo(in("complete")).size();
    writeFile(in("map"), "old map");
    const auto save = [&] { return saveMap(image, in("map"), format.constData(), 90); };
    for (const qint64 room : {qint64(0), size / 2, size - 1}) {
        QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(room), save), Answer::No);
        QCOMPARE(contentsOf(in("map")), QByteArray("old map"));
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden),
                 (QStringList{"complete", "map"}));
    }
    QCOMPARE(withFileSizeLimit(static_cast<rlim_t>(size), save), Answer::Yes);
    QCOMPARE(contentsOf(in("map")), contentsOf(in("complete")));
}

void tst_MapFile::fullSmallDiskLeavesOldMap()
{
    const SmallDisk disk(m_folder->path(), "64k");
    if (!disk.isMounted()) {
        qInfo("only the file size limit was tested: no small disk can be mounted here");
        return;
    }
    qInfo("tested on a mounted small disk too");
    QVERIFY(saveMap(map(100, 50), in("map.png"), "png", 85));
    const QByteArray old = contentsOf(in("map.png"));
    QVERIFY(!saveMap(map(600, 300), in("map.png"), "png", 85));
    QCOMPARE(contentsOf(in("map.png")), old);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"map.png"});
}

// A PNG of quality 100 is stored without compression; the encoder asks for more memory while it writes.
void tst_MapFile::littleMemoryLeavesOldMap()
{
    QImage image(8192, 8192, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    int refused = 0;
    for (const rlim_t megabytes : std::initializer_list<rlim_t>{1, 20, 100, 300, 500, 700}) {
        writeFile(in("map"), "old map");
        const Answer answer = inChild([&] {
            const MemoryLimit limit(unlessSanitized(megabytes * mebibyte));
            return saveMap(image, in("map"), "png", 100);
        });
        QVERIFY2(answer != Answer::Crashed, qPrintable(QString::number(megabytes)));
        QCOMPARE(contentsOf(in("map")) == "old map", answer == Answer::No);
        QCOMPARE(namesIn(m_folder->path()), QStringList{"map"});
        refused += answer == Answer::No ? 1 : 0;
        if (!addressSpaceCanBeLimited)
            break; // it is the same for all of them
    }
    QCOMPARE(refused > 0, addressSpaceCanBeLimited);
}

void tst_MapFile::missingFolderAndFolderAsTarget()
{
    QVERIFY(!saveMap(map(8, 4), in("missing/map.png"), "png", 85));
    QVERIFY(!saveMap(map(8, 4), m_folder->path(), "png", 85));
    QVERIFY(!saveMap(map(8, 4), QString(), "png", 85));
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void tst_MapFile::writableMapInReadOnlyFolderIsReplaced()
{
    writeFile(in("map.png"), "old map");
    QVERIFY(saveMap(map(8, 4), in("expected.png"), "png", 85));
    handOver({in("map.png"), m_folder->path()});
    const QByteArray folder = QFile::encodeName(m_folder->path());
    QCOMPARE(chmod(folder.constData(), 0555), 0);
    const auto save = [&](const QImage &image) {
        return asOrdinaryUser([&] { return saveMap(image, in("map.png"), "png", 85); });
    };
    const Answer nullAnswer = save(QImage());
    const QByteArray afterNull = contentsOf(in("map.png"));
    const Answer answer = save(map(8, 4));
    QCOMPARE(chmod(folder.constData(), 0700), 0);
    QCOMPARE(nullAnswer, Answer::No);
    QCOMPARE(afterNull, QByteArray("old map"));
    QCOMPARE(answer, Answer::Yes);
    QCOMPARE(contentsOf(in("map.png")), contentsOf(in("expected.png")));
}

void tst_MapFile::killedProcessLeavesWholeMap()
{
    const QString path = in("map.jpg");
    const QImage first = map(400, 200, 1);
    const QImage second = map(300, 150, 2);
    QVERIFY(saveMap(first, in("first"), "jpg", 90));
    QVERIFY(saveMap(second, in("second"), "jpg", 90));
    const QByteArray firstBytes = contentsOf(in("first"));
    const QByteArray secondBytes = contentsOf(in("second"));
    Rng rng(20261121);
    const auto saveTwice = [&] {
        saveMap(first, path, "jpg", 90);
        saveMap(second, path, "jpg", 90);
    };
    const auto within = durationOf(saveTwice);
    for (int i = 0; i < 60; ++i) {
        QVERIFY(killedInTheMiddle(saveTwice, within, rng));
        const QByteArray found = contentsOf(path);
        QVERIFY2(found == firstBytes || found == secondBytes, qPrintable(QString::number(found.size())));
    }
}

QTEST_GUILESS_MAIN(tst_MapFile)
#include "tst_mapfile.moc"
