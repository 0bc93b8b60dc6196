#include "filenamecodec.h"
#include "rng.h"

#include <QFile>
#include <QtTest>

class tst_FileNameCodec : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { useFileNameCodec(); }
    void charactersAreThemselves();
    void everyNameComesBack_data();
    void everyNameComesBack();
    void randomNamesComeBack();
};

void tst_FileNameCodec::charactersAreThemselves()
{
    const QString text = QStringLiteral("a/地球 𠮷é.png");
    QCOMPARE(QFile::decodeName(text.toUtf8()), text);
    QCOMPARE(QFile::encodeName(text), text.toUtf8());
}

void tst_FileNameCodec::everyNameComesBack_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("plain") << QByteArray("photo.jpg");
    QTest::newRow("Latin-1") << QByteArray("caf\xe9.jpg");
    QTest::newRow("Shift JIS") << QByteArray("\x92\x6e\x8b\x85.jpg");
    QTest::newRow("a character that is cut off") << QByteArray("a\xe5\x9c");
    QTest::newRow("a surrogate in UTF-8") << QByteArray("\xed\xa0\x80\xed\xb0\x80");
    QTest::newRow("an escape in UTF-8") << QByteArray("\xed\xb2\x80");
    QTest::newRow("overlong") << QByteArray("\xc0\xaf\xe0\x80\xaf");
    QTest::newRow("beyond the last character") << QByteArray("\xf4\x90\x80\x80\xf8\xff");
    QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbfphoto.jpg");
    QTest::newRow("a wrong byte after a character of four") << QByteArray("\xf0\xa0\xae\xb7\xff");
    QTest::newRow("line break") << QByteArray("a\nb\r");
}

void tst_FileNameCodec::everyNameComesBack()
{
    QFETCH(QByteArray, name);
    QCOMPARE(QFile::encodeName(QFile::decodeName(name)), name);
}

void tst_FileNameCodec::randomNamesComeBack()
{
    Rng rng(5);
    for (int i = 0; i < 20000; ++i) {
        QByteArray name;
        for (int length = rng.between(0, 11); length >= 0; --length)
            name += char(rng.oneIn(2) ? rng.between(0x80, 0xff) : rng.between(1, 0xff));
        QCOMPARE(QFile::encodeName(QFile::decodeName(name)), name);
    }
}

QTEST_GUILESS_MAIN(tst_FileNameCodec)
#include "tst_filenamecodec.moc"
