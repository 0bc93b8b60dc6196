#pragma once

#include "initext.h"

#include <QPair>
#include <QString>
#include <QVariant>
#include <QVector>

#include <functional>

/// Bytes. No ini file that anybody uses is larger; a larger one would only fill the memory.
constexpr qint64 largestIniFile = qint64{32} * 1024 * 1024;

/// Reads an ini file. One that is missing, no regular file, larger than that or cannot be read behaves as an
/// empty one.
IniText openIniFile(const QString &path);

/// Writes values into the [General] section of an ini file and keeps everything else in it, byte for byte. The
/// file is afterwards the whole new one or, after any failure, the whole old one. Text is stored as UTF-8. A
/// missing folder is made; a file that exists and cannot be read is left alone.
/// @return whether the new file is complete on the disk
bool writeIniFile(const QString &path, const QVector<QPair<QString, QVariant>> &values);

/// One value of the settings file: its key, its default, and how it gets into and out of the program.
struct Setting {
    QString key;
    QVariant defaultValue;           ///< its type is the type of the value
    std::function<QVariant()> value; ///< the current value, for saving
    /// Receives the file's value, or the default if the key is absent.
    std::function<void(const QVariant &)> set;
};

/// A setting that is one variable of type T (bool, int, double, QString): converted as QVariant converts.
template <typename T>
Setting boundSetting(const char *key, const T &defaultValue, T &variable)
{
    return {QString::fromLatin1(key), QVariant::fromValue(defaultValue),
            [&variable] { return QVariant::fromValue(variable); },
            [&variable](const QVariant &value) { variable = value.value<T>(); }};
}

/// Reads every setting in order. No value is range-checked; a present key with an empty value is 0, false or
/// the empty text.
void loadSettings(const QString &path, const QVector<Setting> &settings);

/// Writes every setting in order; see writeIniFile.
bool saveSettings(const QString &path, const QVector<Setting> &settings);
