#include "inifile.h"

#include "replacefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <new>

namespace
{

/// @return whether the path is a file of a reasonable size and all of it could be read
bool readFile(const QString &path, QByteArray &contents)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const qint64 size = file.size();
    if (size > largestIniFile)
        return false;
    contents = file.read(size + 1); // memory for as much is taken beforehand
    return file.error() == QFile::NoError && contents.size() == size;
}

} // namespace

IniText openIniFile(const QString &path)
{
    QByteArray contents;
    return readFile(path, contents) ? IniText(contents) : IniText();
}

namespace
{

bool writeValues(const QString &path, const QVector<QPair<QString, QVariant>> &values)
{
    QByteArray contents;
    if (QFileInfo::exists(path) && !readFile(path, contents))
        return false;
    IniText text(contents);
    for (const auto &[key, value] : values)
        text.setValue(key, value);
    return QDir().mkpath(QFileInfo(path).absolutePath()) &&
           replaceFile(path, text.contents(), ReadOnlyFolder::Refuse);
}

} // namespace

bool writeIniFile(const QString &path, const QVector<QPair<QString, QVariant>> &values)
{
    try {
        return writeValues(path, values);
    } catch (const std::bad_alloc &) {
        return false;
    }
}

void loadSettings(const QString &path, const QVector<Setting> &settings)
{
    const IniText file = openIniFile(path);
    for (const Setting &setting : settings)
        setting.set(file.value(setting.key, setting.defaultValue));
}

bool saveSettings(const QString &path, const QVector<Setting> &settings)
{
    QVector<QPair<QString, QVariant>> values;
    for (const Setting &setting : settings)
        values.append({setting.key, setting.value()});
    return writeIniFile(path, values);
}
