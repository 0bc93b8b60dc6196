#pragma once

#include "pixelmemory.h"

#include <QImage>
#include <QString>

/// A photograph, or the reason why there is none.
struct LoadedPhotograph {
    QImage image;
    QString reason; ///< in English, one line without a full stop; empty if the image is there
};

/// Loads a photograph as QImage::load does, whatever the file is called. Never blocks: only regular files are
/// opened. Never fails otherwise than with a reason: too little memory is one, and so is a picture that would
/// need more than largestPhotographBytes().
/// @param path    as the system takes it; a leading colon has no meaning
LoadedPhotograph loadPhotograph(const QString &path);
/// The same into the pixels of an earlier photograph, if both are JPEGs of one size.
/// @param memory  of all photographs of a series
LoadedPhotograph loadPhotograph(const QString &path, PixelMemory &memory);

/// The file that QImage::load takes for a path. Where none can be opened under it, that is the first one that has a
/// known suffix more; a name typed without its suffix finds its photograph.
/// @return the path itself if there is no such file either
QString fileWithSuffix(const QString &path);

/// A quarter of the machine's memory, at least 1 GB: what a small file may unfold to.
qint64 largestPhotographBytes();
