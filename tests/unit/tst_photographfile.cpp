#include "photographfile.h"

#include "faults.h"
#include "files.h"
#include "imagecompare.h"
#include "rng.h"

#include <QBuffer>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/stat.h>

namespace
{

/// The smallest JPEG header that claims a size.
QByteArray jpegOfSize(quint16 width, quint16 height)
{
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    dot.save(&buffer, "jpg");
    QByteArray bytes = buffer.data();
    const int frame = bytes.indexOf("\xff\xc0");
    const char size[] = {char(height >> 8), char(height & 0xff), char(width >> 8), char(width & 0xff)};
    return bytes.replace(frame + 5, 4, QByteArray(size, 4));
}

} // namespace

class tst_PhotographFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void loadsAsThePictureClassDoes_data();
    void loadsAsThePictureClassDoes();
    void loadsDamagedFilesAsThePictureClassDoes();
    void memoryOfAnotherPhotographChangesNothing();
    void saysWhyNot_data();
    void saysWhyNot();
    void neverWaitsForAPipe();
    void leadingColonHasNoMeaning();
    void tooLittleMemoryIsAReason();

private:
    QString in(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_PhotographFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

void tst_PhotographFile::loadsAsThePictureClassDoes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("copiedAs");
    QTest::newRow("JPEG") << "earth-140e.jpg"
                          << "photo.jpg";
    QTest::newRow("PNG") << "earth-000e.png"
                         << "photo.png";
    QTest::newRow("GIF") << "earth-tokyo.gif"
                         << "photo.gif";
    QTest::newRow("PNG that is called a JPEG") << "earth-000e.png"
                                               << "photo.jpg";
    QTest::newRow("without a suffix") << "earth-tokyo.gif"
                                      << "photo";
}

void tst_PhotographFile::loadsAsThePictureClassDoes()
{
    QFETCH(QString, name);
    QFETCH(QString, copiedAs);
    QVERIFY(QFile::copy(OVMIC_SAMPLES "/" + name, in(copiedAs)));
    const LoadedPhotograph photograph = loadPhotograph(in(copiedAs));
    QCOMPARE(photograph.reason, QString());
    QCOMPARE(photograph.image.format(), QImage(in(copiedAs)).format());
    COMPARE_IMAGES(photograph.image, QImage(in(copiedAs)));
    QVERIFY(!photograph.image.isNull());
}

void tst_PhotographFile::loadsDamagedFilesAsThePictureClassDoes()
{
    Rng rng(7);
    int loaded = 0;
    int refused = 0;
    QImage picture(40, 30, QImage::Format_RGB32);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            picture.setPixel(x, y, rng.word());
    for (const char *format : {"jpg", "png"}) {
        QVERIFY(picture.save(in("whole"), format));
        const QByteArray whole = contentsOf(in("whole"));
        for (int i = 0; i < 300; ++i) {
            QByteArray bytes = whole;
            if (i % 3 == 0)
                bytes.truncate(rng.between(1, bytes.size() - 1));
            for (int change = 0; change < i % 5; ++change)
                bytes[rng.between(0, bytes.size() - 1)] = char(rng.word());
            writeFile(in("damaged"), bytes);
            const LoadedPhotograph photograph = loadPhotograph(in("damaged"));
            QCOMPARE(photograph.reason.isEmpty(), !photograph.image.isNull());
            const bool tooLarge = photograph.reason.contains("need more memory");
            if (!tooLarge)
                COMPARE_IMAGES(photograph.image, QImage(in("damaged")));
            ++(photograph.image.isNull() ? refused : loaded);
        }
    }
    QVERIFY2(loaded > 100 && refused > 100, qPrintable(QString::number(loaded)));
}

void tst_PhotographFile::memoryOfAnotherPhotographChangesNothing()
{
    Rng rng(9);
    QVERIFY(QFile::copy(OVMIC_SAMPLES "/series-1.jpg", in("whole.jpg")));
    QVERIFY(QFile::copy(OVMIC_SAMPLES "/earth-000e.png", in("whole.png")));
    const QByteArray whole = contentsOf(in("whole.jpg"));
    QImage memory(1280, 960, QImage::Format_RGB32);
    const uchar *pixels = memory.constBits();
    memory = loadPhotograph(in("whole.jpg"), std::move(memory)).image;
    QCOMPARE(memory.constBits(), pixels); // it was taken
    COMPARE_IMAGES(memory, QImage(in("whole.jpg")));
    for (int i = 0; i < 60; ++i) {
        QByteArray bytes = whole.left(i % 2 == 0 ? whole.size() : rng.between(0, whole.size() - 1));
        for (int change = 0; change < i % 5 && !bytes.isEmpty(); ++change)
            bytes[rng.between(0, bytes.size() - 1)] = char(rng.word());
        writeFile(in("damaged.jpg"), bytes);
        memory.fill(Qt::magenta);
        const LoadedPhotograph photograph = loadPhotograph(in("damaged.jpg"), std::move(memory));
        COMPARE_IMAGES(photograph.image, QImage(in("damaged.jpg")));
        memory = QImage(1280, 960, QImage::Format_RGB32);
    }
    memory.fill(Qt::magenta);
    COMPARE_IMAGES(loadPhotograph(in("whole.png"), std::move(memory)).image, QImage(in("whole.png")));
}

void tst_PhotographFile::saysWhyNot_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no file") << "missing.png"
                             << "cannot be read: No such file or directory";
    QTest::newRow("no name") << ""
                             << "cannot be read: No file name specified";
    QTest::newRow("a folder") << "."
                              << "cannot be read: Is a directory";
    QTest::newRow("a device without end") << "/dev/zero"
                                          << "cannot be read: Not a regular file";
    QTest::newRow("a file of the system") << "/proc/self/status"
                                          << "not an image: The file is empty";
    QTest::newRow("text") << "text.png"
                          << "not an image: Unsupported image format";
    QTest::newRow("empty") << "empty.jpg"
                           << "not an image: The file is empty";
    QTest::newRow("cut") << "cut.png"
                         << "cannot be read: Unable to read image data";
    QTest::newRow("below a file") << "text.png/photo.jpg"
                                  << "cannot be read: Not a directory";
    QTest::newRow("a suffix left out") << "whole"
                                       << "cannot be read: No such file or directory";
}

void tst_PhotographFile::saysWhyNot()
{
    QFETCH(QString, path);
    QFETCH(QString, reason);
    writeFile(in("text.png"), "no image");
    writeFile(in("empty.jpg"), "");
    QVERIFY(QFile::copy(OVMIC_SAMPLES "/earth-000e.png", in("whole.png")));
    writeFile(in("cut.png"), contentsOf(in("whole.png")).left(5000));
    const bool absolute = path.startsWith('/') || path.isEmpty();
    const LoadedPhotograph photograph = loadPhotograph(absolute ? path : in(path));
    QCOMPARE(photograph.reason, reason);
    QVERIFY(photograph.image.isNull());
}

void tst_PhotographFile::neverWaitsForAPipe()
{
    QCOMPARE(mkfifo(QFile::encodeName(in("pipe.png")).constData(), 0600), 0);
    QCOMPARE(loadPhotograph(in("pipe.png")).reason, QString("cannot be read: Not a regular file"));
}

void tst_PhotographFile::leadingColonHasNoMeaning()
{
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    QVERIFY(QFile::copy(OVMIC_SAMPLES "/series-1.jpg", "./:photo.jpg"));
    const LoadedPhotograph photograph = loadPhotograph(":photo.jpg");
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(photograph.reason, QString());
    QCOMPARE(photograph.image.size(), QSize(1280, 960));
}

void tst_PhotographFile::tooLittleMemoryIsAReason()
{
    writeFile(in("large.jpg"), jpegOfSize(65500, 65500));
    QVERIFY(largestPhotographBytes() >= 1 << 30);
    if (largestPhotographBytes() < 65500LL * 65500 * 4) {
        QVERIFY(loadPhotograph(in("large.jpg"))
                    .reason.startsWith("cannot be read: 65500 x 65500 pixels need more memory than the "));
    }
}

QTEST_GUILESS_MAIN(tst_PhotographFile)
#include "tst_photographfile.moc"
