// The input is a conversion: the circle, the distance, the size of the map, its latitude, longitude and azimuth, and
// two flags, in the machine's own numbers; then the file of the photograph.

#include "fuzzinput.h"
#include "memoryfile.h"
#include "photographfile.h"
#include "referencemap.h"

#include <QBuffer>
#include <QImageReader>

#include <cmath>

namespace
{

MapParameters takeParameters(FuzzInput &input)
{
    MapParameters p;
    p.centerX = input.take<qint32>();
    p.centerY = input.take<qint32>();
    p.radius = input.take<qint32>();
    p.distance = input.take<double>();
    p.outputSizeX = input.takeBetween(-1, 160);
    p.outputSizeY = input.takeBetween(-1, 160);
    p.latitude = input.take<double>();
    p.longitude = input.take<double>();
    p.azimuth = input.take<double>();
    p.lens = input.take<quint8>() % 2 == 0 ? projection::Lens::Corrected : projection::Lens::None;
    return p;
}

/// Whether the toolkit's decoders would need more memory or time than one of many inputs may. What is beyond the
/// program's own limit is not decoded.
bool isLarge(QByteArray contents)
{
    constexpr qint64 fewPixels = 1000000;
    QBuffer buffer(&contents);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer).size();
    const qint64 pixels = qint64{size.width()} * size.height();
    return size.isValid() && pixels > fewPixels && pixels * 4 <= largestPhotographBytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    FuzzInput input(data, size);
    const MapParameters parameters = takeParameters(input);
    const AzimuthStep azimuthStep =
        input.take<quint8>() % 2 == 0 ? AzimuthStep::Rotates : AzimuthStep::EmptiesMap;
    if (isLarge(input.rest()))
        return 0;

    const MemoryFile file(input.rest());
    const LoadedPhotograph photograph = loadPhotograph(file.path());
    require(photograph.image.isNull() != photograph.reason.isEmpty(), "there is a photograph or a reason");
    PixelMemory memory;
    for (int i = 0; i < 2; ++i) {
        const LoadedPhotograph again = loadPhotograph(file.path(), memory);
        require(again.image == photograph.image && again.reason == photograph.reason,
                "a photograph is always the same");
    }

    const QImage map = convertToMap(photograph.image, parameters, azimuthStep, {});
    const QImage expected = referenceMap(photograph.image, parameters, azimuthStep);
    require(map.size() == expected.size(),
            "a map is there and has its size, exactly where the reference has one");
    require(map == expected, "a map is that of the reference, to the pixel");
    return 0;
}
