#pragma once

class QByteArray;
class QImage;
class QString;

/// Format and extension of the maps by the number that the settings have for it: 1 is "png", any other "jpg".
const char *mapFormat(int outputFormat);

/// The bytes of the file that a map is written as.
/// @param format   "jpg" or "png"
/// @param quality  1 .. 100 for both formats, as QImage::save takes it; larger values count as 100
/// @return empty for a null image and a failed encoding; without enough memory std::bad_alloc is thrown too
QByteArray encodedMap(const QImage &map, const char *format, int quality);

/// Writes a finished map so that an older file of that name is never lost: the image is encoded in memory,
/// and only a complete encoding replaces the file.
/// @param format   as above; the extension of the path is not looked at
/// @return false for a null image, a failed encoding, too little memory and a failed write; the old file is then as it was,
///         except where a writable file in a read-only folder had to be overwritten in place
bool saveMap(const QImage &map, const QString &path, const char *format, int quality);
