#include "inifile.h"

#include "replacefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextCodec>

#include <algorithm>
#include <new>

namespace
{

/// UTF-8 for QSettings, which hands a text over in pieces without any state: when writing, one UTF-16 unit at
/// a time. The toolkit's own codec would drop both halves of a character beyond the basic plane, and would
/// take a U+FEFF at the start of a piece for a byte order mark.
class IniCodec : public QTextCodec
{
public:
    QByteArray name() const override { return "ovmic-ini-text"; }
    int mibEnum() const override { return -20102; } // nobody else's number

protected:
    QString convertToUnicode(const char *bytes, int length, ConverterState *) const override
    {
        ConverterState state(IgnoreHeader);
        return m_utf8->toUnicode(bytes, length, &state);
    }

    /// Keeps the first half of a surrogate pair until the second one arrives. A half that stands alone has no
    /// UTF-8 form and is left out.
    QByteArray convertFromUnicode(const QChar *units, int length, ConverterState *) const override
    {
        QString text;
        for (int i = 0; i < length; ++i) {
            if (units[i].isLowSurrogate() && !m_firstHalf.isNull())
                text.append(m_firstHalf).append(units[i]);
            else if (!units[i].isSurrogate())
                text.append(units[i]);
            m_firstHalf = units[i].isHighSurrogate() ? units[i] : QChar();
        }
        return text.toUtf8();
    }

private:
    const QTextCodec *m_utf8 = QTextCodec::codecForName("UTF-8");
    mutable QChar m_firstHalf;
};

QTextCodec *iniCodec()
{
    static auto *codec = new IniCodec; // belongs to the toolkit from now on
    return codec;
}

std::unique_ptr<QSettings> settingsAt(const QString &path)
{
    auto settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    settings->setIniCodec(iniCodec());
    return settings;
}

/// @return whether the path is a file and all of it could be read
bool readFile(const QString &path, QByteArray &contents)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    contents = file.readAll();
    return file.error() == QFile::NoError;
}

/// Opens QSettings on an ini file of these contents in the folder, under a name that QSettings has never
/// seen: for a known name it answers from its cache, with the values as they were written, or with old ones
/// when size and time are still the same.
/// @return null when there is no room for the file
std::unique_ptr<QSettings> openFresh(const QTemporaryDir &folder, const QByteArray &contents)
{
    QFile file(folder.filePath(QStringLiteral("fresh.ini")));
    const bool written = folder.isValid() && file.open(QIODevice::WriteOnly) &&
                         file.write(contents) == contents.size() && file.flush();
    return written ? settingsAt(file.fileName()) : nullptr;
}

/// Makes QSettings take every value apart.
/// @return false if one of them asks for more memory than there is, which a damaged "@Variant(...)" can do
bool isReadable(const QSettings &settings)
{
    try {
        settings.allKeys();
        return true;
    } catch (const std::bad_alloc &) {
        return false;
    }
}

/// What the ini file keeps of a value, whatever type it comes back as.
QByteArray storedForm(const QVariant &value)
{
    if (value.type() == QVariant::ByteArray)
        return value.toByteArray();
    const bool list = value.type() == QVariant::StringList || value.type() == QVariant::List;
    return iniCodec()->fromUnicode(list ? value.toStringList().join(QChar::Null) : value.toString());
}

/// A damaged file can hold keys that QSettings lists but cannot look up: those with an empty part between
/// slashes. It writes them under other names.
bool canBeLookedUp(const QString &key)
{
    return !key.split(u'/').contains(QString());
}

/// @return whether everything that is in the one is in the other, with the same value
bool holdsAll(const QSettings &file, const QSettings &meant)
{
    const QStringList keys = meant.allKeys();
    return std::all_of(keys.cbegin(), keys.cend(), [&](const QString &key) {
        return !canBeLookedUp(key) ||
               (file.contains(key) && storedForm(file.value(key)) == storedForm(meant.value(key)));
    });
}

/// The ini file's contents with the values written into them. QSettings writes into a folder made in the
/// given one, and the result is read back and compared: on a nearly full disk it leaves a cut file and
/// reports success.
/// @return nothing unless every value is there
QByteArray withValues(const QByteArray &contents, const QVector<QPair<QString, QVariant>> &values,
                      const QString &workFolder)
{
    const QString folderTemplate = QDir(workFolder).filePath(QStringLiteral("ovmic-XXXXXX"));
    const QTemporaryDir folder(folderTemplate);
    const auto settings = openFresh(folder, contents);
    if (!settings || !isReadable(*settings))
        return {};
    for (const auto &[key, value] : values)
        settings->setValue(key, value);
    settings->sync();
    QByteArray written;
    if (!readFile(settings->fileName(), written))
        return {};
    const QTemporaryDir secondFolder(folderTemplate);
    const auto readBack = openFresh(secondFolder, written);
    const bool complete = readBack && written.endsWith('\n') && holdsAll(*readBack, *settings);
    return complete ? written : QByteArray();
}

} // namespace

std::unique_ptr<QSettings> openIniFile(const QString &path)
{
    QByteArray contents;
    if (!readFile(path, contents))
        contents.clear();
    const QTemporaryDir folder; // QSettings reads the whole file at once: the copy need not last
    auto settings = openFresh(folder, contents);
    if (!settings)
        settings = settingsAt(path);
    return isReadable(*settings) ? std::move(settings) : settingsAt(QString());
}

bool writeIniFile(const QString &path, const QVector<QPair<QString, QVariant>> &values)
{
    QByteArray contents;
    if (QFileInfo::exists(path) && !readFile(path, contents))
        return false;
    const QString folder = QFileInfo(path).absolutePath();
    QByteArray updated = withValues(contents, values, QDir::tempPath());
    if (updated.isEmpty()) // perhaps only the folder for temporary files is missing or full
        updated = withValues(contents, values, folder);
    // A missing folder is made, as QSettings makes it.
    return !updated.isEmpty() && QDir().mkpath(folder) && replaceFile(path, updated, ReadOnlyFolder::Refuse);
}

void loadSettings(const QString &path, const QVector<Setting> &settings)
{
    const auto file = openIniFile(path);
    for (const Setting &setting : settings)
        setting.set(file->value(setting.key, setting.defaultValue));
}

bool saveSettings(const QString &path, const QVector<Setting> &settings)
{
    QVector<QPair<QString, QVariant>> values;
    for (const Setting &setting : settings)
        values.append({setting.key, setting.value()});
    return writeIniFile(path, values);
}
