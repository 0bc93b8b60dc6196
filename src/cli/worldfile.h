#pragma once

#include "mapconversion.h"

#include <QByteArray>
#include <QString>

/// The six lines that tell a GIS where a map lies, in degrees: width of a pixel, 0, 0, minus its height,
/// longitude and latitude of the centre of the upper left one. Derivation: docs/projection.md, "Place of a pixel".
QByteArray worldFile(const MapParameters &parameters);

/// Its path beside a map: the extension is the first and last letter of the format's, and a "w".
/// @param format  "jpg" or "png"
QString worldFilePath(const QString &mapPath, const QString &format);
