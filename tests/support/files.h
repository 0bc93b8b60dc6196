#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Files that a test writes beforehand, and looks at afterwards.

/// All of a file. One that cannot be read is not an empty one: then a text that no test writes.
QByteArray contentsOf(const QString &path);

/// Makes or replaces a file; ends the test program if that cannot be done.
void writeFile(const QString &path, const QByteArray &contents);

/// The names of everything in a folder, hidden files too, sorted.
QStringList namesIn(const QString &folder);

/// The text that an ini file's contents have for a key, as it stands there, whatever its group.
QByteArray valueIn(const QByteArray &iniFile, const QByteArray &key);
