#include "photographfile.h"

#include "faults.h"
#include "files.h"
#include "hostilepictures.h"
#include "imagecompare.h"
#include "memorylimit.h"
#include "photographs.h"
#include "rng.h"

#include <QColorSpace>
#include <QImageReader>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <sys/stat.h>

class tst_PhotographFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void loadsAsThePictureClassDoes_data();
    void loadsAsThePictureClassDoes();
    void everythingOfAFileIsAsThePictureClassHasIt_data();
    void everythingOfAFileIsAsThePictureClassHasIt();
    void suffixIsLeftOutAsThePictureClassAllows_data();
    void suffixIsLeftOutAsThePictureClassAllows();
    void loadsDamagedFilesAsThePictureClassDoes();
    void memoryOfAnotherPhotographChangesNothing();
    void memoryCarriesNoTexts();
    void missingPixelsOfABitmapAreBlack_data();
    void missingPixelsOfABitmapAreBlack();
    void saysWhyNot_data();
    void saysWhyNot();
    void neverWaitsForAPipe();
    void leadingColonHasNoMeaning();
#ifdef Q_OS_LINUX
    void limitIsAQuarterOfTheMemory();
#endif
    void tooLargeAPictureIsNotTried_data();
    void tooLargeAPictureIsNotTried();
    void textsBeyondTheMemoryAreAReason();

private:
    QString in(const QString &name) const
    {
        return m_folder->filePath(name);
    }

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

void tst_PhotographFile::everythingOfAFileIsAsThePictureClassHasIt_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QImage::Format>("depth");
    QTest::addColumn<QString>("name");
    const QList<QPair<const char *, QImage::Format>> depths{
        {"RGB", QImage::Format_RGB32},           {"alpha", QImage::Format_ARGB32},
        {"grey", QImage::Format_Grayscale8},     {"16-bit grey", QImage::Format_Grayscale16},
        {"16-bit", QImage::Format_RGBA64},       {"palette", QImage::Format_Indexed8},
        {"black and white", QImage::Format_Mono}};
    for (const auto &depth : depths) {
        for (const char *format : {"png", "jpg", "bmp", "ppm", "xpm", "xbm"}) {
            for (const QString &name : {"photo." + QString(format), QString("photo.gif"), QString("photo"),
                                        QString("photo@2x.png"), QString("photo@2x"), QString("photo.svg")})
                QTest::addRow("%s %s as %s", depth.first, format, qPrintable(name))
                    << QByteArray(format) << depth.second << name;
        }
    }
}

void tst_PhotographFile::everythingOfAFileIsAsThePictureClassHasIt()
{
    QFETCH(QByteArray, format);
    QFETCH(QImage::Format, depth);
    QFETCH(QString, name);
    Rng rng(21);
    QImage picture(40, 30, QImage::Format_ARGB32);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            picture.setPixel(x, y, rng.word());
    picture = picture.convertToFormat(depth);
    picture.setText("Title", "a globe");
    picture.setDotsPerMeterX(1234);
    QVERIFY(picture.save(in(name), format));
    const LoadedPhotograph photograph = loadPhotograph(in(name));
    QImage expected;
    QVERIFY(expected.load(in(name)));
    QCOMPARE(photograph.image, expected);
    QCOMPARE(photograph.image.format(), expected.format());
    QCOMPARE(photograph.image.colorTable(), expected.colorTable());
    QCOMPARE(photograph.image.textKeys(), expected.textKeys());
    QCOMPARE(photograph.image.text("Title"), expected.text("Title"));
    QCOMPARE(photograph.image.dotsPerMeterX(), expected.dotsPerMeterX());
    QCOMPARE(photograph.image.devicePixelRatio(), expected.devicePixelRatio());
}

void tst_PhotographFile::suffixIsLeftOutAsThePictureClassAllows_data()
{
    QTest::addColumn<QStringList>("there");
    QTest::addColumn<QString>("path");
    QTest::newRow("one picture") << QStringList{"photo.png"} << "photo";
    QTest::newRow("several pictures") << QStringList{"photo.png", "photo.jpg", "photo.svg"} << "photo";
    QTest::newRow("the name itself is there") << QStringList{"photo", "photo.jpg"} << "photo";
    QTest::newRow("a folder of that name") << QStringList{"photo/inside.png", "photo.png"} << "photo";
    QTest::newRow("another suffix added") << QStringList{"photo.png.jpg"} << "photo.png";
    QTest::newRow("in capitals") << QStringList{"photo.PNG"} << "photo";
    QTest::newRow("nothing at all") << QStringList{"picture.png"} << "photo";
}

void tst_PhotographFile::suffixIsLeftOutAsThePictureClassAllows()
{
    QFETCH(QStringList, there);
    QFETCH(QString, path);
    if (there.contains("photo/inside.png"))
        QVERIFY(QDir(m_folder->path()).mkdir("photo"));
    for (int i = 0; i < there.size(); ++i)
        QVERIFY(QImage(10 + i, 10, QImage::Format_RGB32).save(in(there.at(i)), "png"));
    const QImage expected(in(path));
    QCOMPARE(loadPhotograph(fileWithSuffix(in(path))).image.size(), expected.size());
    if (expected.isNull())
        QCOMPARE(fileWithSuffix(in(path)), in(path));
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
    PixelMemory memory;
    const auto fillWithMagenta = [&memory] {
        memory.image({1280, 960}, QImage::Format_RGB32).fill(Qt::magenta);
    };
    fillWithMagenta();
    const uchar *pixels = memory.image({1280, 960}, QImage::Format_RGB32).constBits();
    QCOMPARE(loadPhotograph(in("whole.jpg"), memory).image.constBits(), pixels);
    const QImage other(1280, 960, QImage::Format_RGB32); // has the pixels if they were given back meanwhile
    QVERIFY(other.constBits() != pixels);
    QImage first = loadPhotograph(in("whole.jpg"), memory).image;
    QCOMPARE(first.constBits(), pixels); // it was taken
    COMPARE_IMAGES(first, QImage(in("whole.jpg")));
    const QImage second = loadPhotograph(in("whole.jpg"), memory).image;
    COMPARE_IMAGES(first, second); // somebody has the first one still
    QVERIFY(second.constBits() != first.constBits());
    for (int i = 0; i < 60; ++i) {
        QByteArray bytes = whole.left(i % 2 == 0 ? whole.size() : rng.between(0, whole.size() - 1));
        for (int change = 0; change < i % 5 && !bytes.isEmpty(); ++change)
            bytes[rng.between(0, bytes.size() - 1)] = char(rng.word());
        writeFile(in("damaged.jpg"), bytes);
        fillWithMagenta();
        const LoadedPhotograph photograph = loadPhotograph(in("damaged.jpg"), memory);
        COMPARE_IMAGES(photograph.image, QImage(in("damaged.jpg")));
    }
    fillWithMagenta();
    COMPARE_IMAGES(loadPhotograph(in("whole.png"), memory).image, QImage(in("whole.png")));
}

// What a file says beside its pixels is its own: nothing of the photograph before stays in the memory.
void tst_PhotographFile::memoryCarriesNoTexts()
{
    QImage photograph = colourfulPhotograph({64, 48}).convertToFormat(QImage::Format_RGB32);
    QVERIFY(photograph.save(in("plain.jpg")));
    photograph.setText("Author", "somebody");
    photograph.setDotsPerMeterX(1000);
    photograph.setDotsPerMeterY(2000);
    QVERIFY(photograph.save(in("texts@2x.jpg")));
    PixelMemory memory;
    for (const char *name : {"texts@2x.jpg", "plain.jpg", "texts@2x.jpg"}) {
        const QImage expected(in(name));
        const QImage image = loadPhotograph(in(name), memory).image;
        COMPARE_IMAGES(image, expected);
        QCOMPARE(image.textKeys(), expected.textKeys());
        QCOMPARE(image.text("Author"), expected.text("Author"));
        QCOMPARE(image.dotsPerMeterX(), expected.dotsPerMeterX());
        QCOMPARE(image.dotsPerMeterY(), expected.dotsPerMeterY());
        QCOMPARE(image.devicePixelRatio(), expected.devicePixelRatio());
        QCOMPARE(image.colorSpace(), expected.colorSpace());
    }
    QVERIFY(!QImage(in("texts@2x.jpg")).textKeys().isEmpty());
}

void tst_PhotographFile::missingPixelsOfABitmapAreBlack_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("true colours") << QImage::Format_RGB32;
    QTest::newRow("two colours") << QImage::Format_Mono;
}

// Such a file "loads"; what it does not say must not be what lay in the memory before.
void tst_PhotographFile::missingPixelsOfABitmapAreBlack()
{
    QFETCH(QImage::Format, format);
    QImage photograph(16, 16, format);
    photograph.fill(Qt::white);
    QVERIFY(photograph.save(in("whole.bmp")));
    QCOMPARE(loadPhotograph(in("whole.bmp")).image, photograph);
    const QByteArray whole = contentsOf(in("whole.bmp"));
    constexpr int lastLine = 4; // bytes, of the two colours; the file begins with the lowest line
    writeFile(in("cut.bmp"), whole.left(whole.size() - lastLine));
    for (int i = 0; i < 50; ++i) {
        { // memory that was used for something else
            QVector<QImage> earlier(20, QImage(16, 16, format));
            for (QImage &image : earlier)
                image.fill(Qt::white);
        }
        const LoadedPhotograph cut = loadPhotograph(in("cut.bmp"));
        QVERIFY2(!cut.image.isNull(), qPrintable(cut.reason));
        QCOMPARE(cut.image.pixel(15, 0) & RGB_MASK, 0U);
    }
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

#ifdef Q_OS_LINUX
void tst_PhotographFile::limitIsAQuarterOfTheMemory()
{
    const QByteArray memory =
        contentsOf("/proc/meminfo").split('\n').first().simplified(); // "MemTotal: 123 kB"
    QVERIFY(memory.startsWith("MemTotal: ") && memory.endsWith(" kB"));
    const double quarter = memory.split(' ').at(1).toDouble() * 1024 / 4;
    const double expected = std::max(quarter, double(1 << 30));
    // The system keeps some of it to itself, and does not always count that.
    QVERIFY(std::abs(double(largestPhotographBytes()) - expected) < 0.1 * expected);
}
#endif

void tst_PhotographFile::tooLargeAPictureIsNotTried_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("size");
    const auto row = [](const char *name, const QByteArray &bytes, QSize size) {
        if (qint64(size.width()) * size.height() * 4 >
            largestPhotographBytes()) // or a machine has room for it
            QTest::newRow(name) << bytes << size;
    };
    const auto side = static_cast<int>(std::sqrt(double(largestPhotographBytes()) / 4)) + 1;
    row("just beyond", pngOfSize(side, side), {side, side});
    row("PNG", pngOfSize(200000, 100000), {200000, 100000});
    row("JPEG", jpegOfSize(65500, 65500), {65500, 65500});
    if (QImageReader::supportedImageFormats().contains("svg"))
        row("SVG", R"(<svg xmlns="http://www.w3.org/2000/svg" width="65500" height="65500"/>)",
            {65500, 65500});
}

void tst_PhotographFile::tooLargeAPictureIsNotTried()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QSize, size);
    QVERIFY(largestPhotographBytes() >= 1 << 30);
    writeFile(in("large"), bytes);
    const QString reason = loadPhotograph(in("large")).reason;
    const QString expected = QStringLiteral("cannot be read: %1 x %2 pixels need more memory than the ");
    QVERIFY2(reason.startsWith(expected.arg(size.width()).arg(size.height())), qPrintable(reason));
}

void tst_PhotographFile::textsBeyondTheMemoryAreAReason()
{
    writeFile(in("texts.png"), pngWithTexts(addressSpaceCanBeLimited ? 136 : 10));
    const auto load = [&] {
        const MemoryLimit limit(unlessSanitized(200 * mebibyte));
        return loadPhotograph(in("texts.png")).reason == "cannot be read: Not enough memory";
    };
    QCOMPARE(inChild(load), addressSpaceCanBeLimited ? Answer::Yes : Answer::No);
}

QTEST_GUILESS_MAIN(tst_PhotographFile)
#include "tst_photographfile.moc"
