#include "filenamecodec.h"

#include <QTextCodec>

namespace
{

constexpr ushort firstEscape = 0xdc00; // plus the byte, 0x80 .. 0xff

/// The length in bytes of the character that begins here; 0 if none does.
int characterLength(const char *bytes, int left)
{
    const auto lead = static_cast<uchar>(*bytes);
    const int length = lead < 0x80 ? 1 : lead < 0xc0 ? 0 : lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    if (length <= 1 || length > left)
        return length == 1 ? 1 : 0;
    // What the toolkit does not take for one character does not come back as the same bytes.
    const QByteArray sequence(bytes, length);
    return QString::fromUtf8(sequence).toUtf8() == sequence ? length : 0;
}

bool isEscape(QChar unit)
{
    return unit.unicode() >= firstEscape + 0x80 && unit.unicode() <= firstEscape + 0xff;
}

class FileNameCodec : public QTextCodec
{
public:
    QByteArray name() const override { return "ovmic-file-name"; }
    int mibEnum() const override { return -20103; } // nobody else's number

protected:
    QString convertToUnicode(const char *bytes, int count, ConverterState *) const override
    {
        QString text;
        text.reserve(count);
        for (int i = 0; i < count;) {
            const int length = characterLength(bytes + i, count - i);
            if (length == 0)
                text.append(QChar(ushort(firstEscape + static_cast<uchar>(bytes[i]))));
            else if (length == 1)
                text.append(QLatin1Char(bytes[i]));
            else
                text.append(QString::fromUtf8(bytes + i, length));
            i += qMax(length, 1);
        }
        return text;
    }

    QByteArray convertFromUnicode(const QChar *units, int count, ConverterState *) const override
    {
        QByteArray bytes;
        int begin = 0; // of the text that is not converted yet
        for (int i = 0; i < count; ++i) {
            if (!isEscape(units[i]) || (i > 0 && units[i - 1].isHighSurrogate()))
                continue;
            bytes += QString::fromRawData(units + begin, i - begin).toUtf8();
            bytes += char(units[i].unicode() - firstEscape);
            begin = i + 1;
        }
        return bytes + QString::fromRawData(units + begin, count - begin).toUtf8();
    }
};

} // namespace

void useFileNameCodec()
{
    static auto *codec = new FileNameCodec; // belongs to the toolkit from now on
    QTextCodec::setCodecForLocale(codec);
}
