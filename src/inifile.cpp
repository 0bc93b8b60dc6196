#include "inifile.h"

#include "replacefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QTextCodec>

#include <algorithm>

namespace
{

/// UTF-8 for QSettings, which hands a text over in pieces without any state: when writing, one UTF-16 unit at
/// a time. The toolkit's own UTF-8 codec drops both halves of a character beyond the basic plane there, and
/// when reading it takes a U+FEFF at the start of a piece for a byte order mark.
class IniCodec : public QTextCodec
{
public:
    QByteArray name() const override { return "ovmic-ini-text"; }
    int mibEnum() const override { return -20102; } // of nobody else

protected:
    QString convertToUnicode(const char *bytes, int length, ConverterState *) const override
    {
        ConverterState state(IgnoreHeader);
        return m_utf8->toUnicode(bytes, length, &state);
    }

    /// Keeps the first half of a surrogate pair until the second one arrives.
    QByteArray convertFromUnicode(const QChar *units, int length, ConverterState *) const override
    {
        QString text;
        for (int i = 0; i < length; ++i) {
            if (units[i].isHighSurrogate()) {
                m_firstHalf = units[i];
                continue;
            }
            if (units[i].isLowSurrogate())
                text += m_firstHalf;
            text += units[i];
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

/// Opens a copy of an ini file under a name that QSettings has never seen: it would answer for a known name
/// from its cache, with the values as they were written, or with old ones when only size and time stayed the
/// same.
/// @return null when there is no room for the copy
std::unique_ptr<QSettings> openFreshCopy(const QByteArray &contents)
{
    const QTemporaryDir folder; // QSettings reads the file at once: the copy need not last
    const QString copy = folder.filePath(QStringLiteral("copy.ini"));
    return replaceFile(copy, contents, ReadOnlyFolder::Refuse) ? settingsAt(copy) : nullptr;
}

/// The text as UTF-8 can hold it: a half of a surrogate pair that stands alone becomes U+FFFD.
QString storableText(QString text)
{
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate())
            ++i;
        else if (text.at(i).isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

QVariant storable(const QVariant &value)
{
    return value.type() == QVariant::String ? storableText(value.toString()) : value;
}

bool isList(const QVariant &value)
{
    return value.type() == QVariant::StringList || value.type() == QVariant::List;
}

bool sameValue(const QVariant &meant, const QVariant &read)
{
    if (isList(meant) || isList(read))
        return meant.toStringList() == read.toStringList();
    return meant.toByteArray() == read.toByteArray();
}

bool sameValues(const QSettings &meant, const QSettings &read)
{
    const QStringList keys = meant.allKeys();
    return read.allKeys() == keys && std::all_of(keys.cbegin(), keys.cend(), [&](const QString &key) {
               return sameValue(meant.value(key), read.value(key));
           });
}

/// The ini file's contents with the values written into them.
/// @return nothing when the toolkit did not write every value: on a nearly full disk it leaves a cut file and
///         reports success
QByteArray withValues(const QByteArray &contents, const QVector<QPair<QString, QVariant>> &values)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("new.ini"));
    if (!replaceFile(path, contents, ReadOnlyFolder::Refuse))
        return {};
    const auto settings = settingsAt(path);
    for (const auto &[key, value] : values)
        settings->setValue(key, storable(value));
    settings->sync();
    QByteArray written;
    if (!readFile(path, written))
        return {};
    const auto readBack = openFreshCopy(written);
    return readBack && sameValues(*settings, *readBack) ? written : QByteArray();
}

} // namespace

std::unique_ptr<QSettings> openIniFile(const QString &path)
{
    QByteArray contents;
    if (!readFile(path, contents))
        contents.clear();
    auto copy = openFreshCopy(contents);
    return copy ? std::move(copy) : settingsAt(path);
}

bool writeIniFile(const QString &path, const QVector<QPair<QString, QVariant>> &values)
{
    QByteArray contents;
    if (QFileInfo::exists(path) && !readFile(path, contents))
        return false;
    contents = withValues(contents, values);
    // A missing folder is made, as QSettings makes it.
    return !contents.isEmpty() && QDir().mkpath(QFileInfo(path).absolutePath()) &&
           replaceFile(path, contents, ReadOnlyFolder::Refuse);
}

void loadSettings(const QString &path, const QVector<Setting> &settings)
{
    const auto file = openIniFile(path);
    for (const Setting &setting : settings)
        setting.take(file->value(setting.key, setting.defaultValue));
}

bool saveSettings(const QString &path, const QVector<Setting> &settings)
{
    QVector<QPair<QString, QVariant>> values;
    for (const Setting &setting : settings)
        values.append({setting.key, setting.value()});
    return writeIniFile(path, values);
}
