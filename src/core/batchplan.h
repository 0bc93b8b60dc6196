#pragma once

#include <QString>
#include <QStringList>

/// Order of a batch.
enum BatchSortType {
    SortByPath = 0,     ///< whole path, by UTF-16 code units: B.png before a.png, img10 before img9
    SortByModified = 1, ///< last-modified time, newest first; equal times in any order
};

/// The file name that is proposed for the map of a single photograph, beside it: "OV-", the photograph's name up
/// to its first dot, and the extension.
QString proposedName(const QString &inputPath, const QString &extension);

/// The inputs in processing order. Any sort type but the two above leaves the list as it is.
QStringList orderedInputs(const QStringList &paths, int sortType);

/// Path of the map of one input: folder + "/" + name + "." + extension.
/// @param nameType  0: named after the input, up to the first dot of its file name; otherwise "map_" + index
/// @param index     position in processing order, counted from 0; failed inputs use up their number
QString outputPath(const QString &outputFolder, const QString &inputPath, int nameType, int index,
                   const QString &extension);
