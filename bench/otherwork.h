#pragma once

#include "contest.h"

#include "mapconversion.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QString>

#include <algorithm>
#include <cmath>
#include <vector>

/// What the processor calls itself.
inline QString machineName()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (file.open(QIODevice::ReadOnly))
        for (const QByteArray &line : file.readAll().split('\n'))
            if (line.startsWith("model name"))
                return QString::fromLatin1(line.mid(line.indexOf(':') + 1).trimmed());
    return QSysInfo::currentCpuArchitecture();
}

/// Medians in milliseconds of what a batch run does for one file.
struct BatchTimes {
    double decode = 0;
    double between = 0; ///< all that the engine does
    double encode = 0;
};

/// A photograph of 4000 x 3000 pixels with a textured globe, as a JPEG file.
inline QByteArray jpegPhotograph()
{
    QImage image(4000, 3000, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const double r = std::hypot(x - 2000, y - 1500) / 1450;
            const double light =
                r < 1 ? std::sqrt(1 - r * r) * (160 + 60 * std::sin(x * 0.031) * std::cos(y * 0.043)) : 4;
            const int grain = (x * 7919 + y * 104729) % 13;
            reinterpret_cast<QRgb *>(image.scanLine(y))[x] =
                qRgb(int(light) + grain, int(light * 0.9) + grain, int(light * 0.7) + grain);
        }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpg", 90);
    return bytes;
}

inline BatchTimes timeBatch(QSize size, const char *format, int rounds)
{
    static const QByteArray photograph = jpegPhotograph();
    const MapParameters parameters = {2000, 1500, 1450, 6.6, size.width(), size.height(), 35, 139, 0};
    std::vector<double> decode;
    std::vector<double> between;
    std::vector<double> encode;
    for (int round = 0; round < rounds; ++round) {
        ProcessorTime start;
        const QImage image = QImage::fromData(photograph);
        decode.push_back(start.elapsedMs());
        start = ProcessorTime();
        const QImage map = convertToMap(image, parameters);
        between.push_back(start.elapsedMs());
        start = ProcessorTime();
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        map.save(&buffer, format, 90);
        encode.push_back(start.elapsedMs());
    }
    const auto median = [](std::vector<double> &times) {
        std::sort(times.begin(), times.end());
        return times[times.size() / 2];
    };
    return {median(decode), median(between), median(encode)};
}
