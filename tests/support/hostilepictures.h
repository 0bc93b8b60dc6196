#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QImage>

/// Small files that unfold to a lot.

/// One pixel, as a file of a format.
inline QByteArray dotAs(const char *format)
{
    QImage dot(1, 1, QImage::Format_RGB32);
    dot.fill(Qt::red);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!dot.save(&buffer, format))
        qFatal("cannot encode a pixel as %s", format);
    return buffer.data();
}

/// The smallest JPEG that claims a size.
inline QByteArray jpegOfSize(quint16 width, quint16 height)
{
    QByteArray bytes = dotAs("jpg");
    const int frame = bytes.indexOf("\xff\xc0");
    const char size[] = {char(height >> 8), char(height & 0xff), char(width >> 8), char(width & 0xff)};
    return bytes.replace(frame + 5, 4, QByteArray(size, 4));
}

inline QByteArray bigEndian(quint32 value)
{
    const char bytes[] = {char(value >> 24), char(value >> 16 & 0xff), char(value >> 8 & 0xff),
                          char(value & 0xff)};
    return {bytes, 4};
}

inline QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    const QByteArray chunk = type + data;
    quint32 crc = 0xffffffffU;
    for (const char byte : chunk) {
        crc ^= static_cast<uchar>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xedb88320U : crc >> 1;
    }
    return bigEndian(quint32(data.size())) + chunk + bigEndian(~crc);
}

/// The head of a PNG that claims a size.
inline QByteArray pngOfSize(int width, int height)
{
    const char colour[] = {8, 2, 0, 0, 0};
    return "\x89PNG\r\n\x1a\n" +
           pngChunk("IHDR", bigEndian(quint32(width)) + bigEndian(quint32(height)) + QByteArray(colour, 5)) +
           pngChunk("IDAT", qCompress(QByteArray(1000, '\0')).mid(4));
}

/// A PNG of one pixel with compressed texts beside it, each of 7.9 million letters; 136 of them are 2 GB.
inline QByteArray pngWithTexts(int count)
{
    const QByteArray text = qCompress(QByteArray(7900000, 'x'), 9).mid(4);
    const QByteArray chunk = pngChunk("zTXt", QByteArray("key") + '\0' + '\0' + text);
    constexpr int endChunk = 12;
    QByteArray bytes = dotAs("png");
    return bytes.insert(bytes.size() - endChunk, chunk.repeated(count));
}
