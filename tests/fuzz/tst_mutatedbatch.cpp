// A thousand damaged photographs in one batch: nothing crashes, and each is counted as an independent load and
// save of it would be.

#include "modaldriver.h"
#include "photographs.h"
#include "rng.h"
#include "testwindow.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace
{

int numberFrom(const char *variable, int otherwise)
{
    bool ok = false;
    const int value = qEnvironmentVariableIntValue(variable, &ok);
    return ok ? value : otherwise;
}

/// Flips, overwrites, cuts out, repeats or cuts off a few bytes.
QByteArray mutated(QByteArray bytes, Rng &rng)
{
    const auto below = [&rng](int limit) { return rng.between(0, limit - 1); };
    const int changes = 1 + below(6);
    for (int i = 0; i < changes && bytes.size() > 4; ++i) {
        // Half of the changes hit the headers, where sizes and tables stand.
        const int at = below(below(2) == 0 ? qMin(bytes.size(), 200) : bytes.size());
        switch (below(5)) {
        case 0:
            bytes[at] = static_cast<char>(bytes.at(at) ^ (1 << below(8)));
            break;
        case 1:
            bytes[at] = static_cast<char>(below(256));
            break;
        case 2:
            bytes.remove(at, 1 + below(30));
            break;
        case 3:
            bytes.insert(at, bytes.mid(below(bytes.size()), 1 + below(30)));
            break;
        case 4:
            bytes.truncate(qMax(1, at));
            break;
        }
    }
    return bytes;
}

QByteArray encoded(const QImage &image, const char *format)
{
    QBuffer buffer;
    if (!buffer.open(QIODevice::WriteOnly) || !image.save(&buffer, format))
        qFatal("cannot encode %s", format);
    return buffer.data();
}

} // namespace

class tst_MutatedBatch : public QObject
{
    Q_OBJECT

private slots:
    void everyVerdictIsThatOfAnIndependentLoad();
};

void tst_MutatedBatch::everyVerdictIsThatOfAnIndependentLoad()
{
    const int count = numberFrom("OVMIC_MUTATED_COUNT", 1000);
    const int seed = numberFrom("OVMIC_MUTATED_SEED", 20261120);
    qInfo("seed %d, %d files", seed, count);
    Rng rng(static_cast<quint32>(seed));

    const QImage photograph = colourfulPhotograph({90, 70});
    QFile gif(QStringLiteral(OVMIC_SAMPLES "/earth-tokyo.gif"));
    QVERIFY(gif.open(QIODevice::ReadOnly));
    const QByteArray originals[] = {encoded(photograph, "png"), encoded(photograph, "jpg"), gif.read(20000)};

    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("out"));
    TestWindow window;
    window.settingFile = folder.filePath("tool.ini");
    window.langFile = folder.filePath("tool_lang.ini");
    window.readShowString();
    window.unattended = 0;
    window.outputSizeX = 32;
    window.outputSizeY = 16;
    window.centerX = 45;
    window.centerY = 35;
    window.radius = 30;
    window.outputFolder = folder.filePath("out");
    window.nameType = 1;
    window.sortType = 2; // the numbers of the maps are those of the files
    for (int i = 0; i < count; ++i) {
        QFile file(folder.filePath(QString::number(i)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(mutated(originals[i % 3], rng));
        window.fileList.append(file.fileName());
    }

    QString message;
    ModalDriver driver(600000);
    driver.expect<QMessageBox>([&](QMessageBox *box) {
        message = box->text();
        box->accept();
    });
    window.batchConvert();
    QVERIFY(driver.done());

    int loadable = 0;
    for (int i = 0; i < count; ++i) {
        const bool loads = QImage().load(folder.filePath(QString::number(i)));
        loadable += loads ? 1 : 0;
        const QImage map(folder.filePath(QStringLiteral("out/map_%1.jpg").arg(i)));
        QVERIFY2(map.size() == (loads ? QSize(32, 16) : QSize(0, 0)), qPrintable(QString::number(i)));
    }
    QCOMPARE(QDir(folder.filePath("out")).entryList(QDir::Files | QDir::Hidden).size(), loadable);
    QVERIFY(loadable > count / 10 && loadable < count); // both verdicts must occur
    QCOMPARE(message, QStringLiteral("複数画像ファイル変換は失敗しました\n(%1個成功, %2個失敗)")
                          .arg(loadable)
                          .arg(count - loadable));
}

WINDOW_TEST_MAIN(tst_MutatedBatch)
#include "tst_mutatedbatch.moc"
