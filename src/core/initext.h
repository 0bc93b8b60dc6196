#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

#include <optional>

/// The text of an ini file as the toolkit's QSettings understands it with the codec UTF-8: sections, keys, quotes,
/// escapes, lists, comments. Unlike QSettings it decodes no serialized object, since the toolkit crashes or hangs
/// over damaged ones, and it leaves every byte alone that it is not asked to change. Reading takes linear time.
class IniText
{
public:
    explicit IniText(const QByteArray &contents = {});

    /// Keys in the order of the file, with their section and a slash in front; those of [General] have none.
    /// A key whose value is a serialized object is not among them.
    QStringList allKeys() const;
    bool contains(const QString &key) const;

    /// Text as QString, a list as QStringList, "@ByteArray(...)" as QByteArray; other marked types, which are none
    /// of ours, as an invalid value. Of several values of one key the last one counts.
    /// @return the default when the key is absent or its value is a serialized object
    QVariant value(const QString &key, const QVariant &defaultValue = {}) const;

    /// Sets a key of [General]: in the place of its old value, otherwise where it belongs in the order of the
    /// keys there.
    /// @param key    letters and digits
    /// @param value  a type that turns into text (bool, numbers, text), or a QByteArray
    void setValue(const QString &key, const QVariant &value);

    QByteArray contents() const;

private:
    enum class Kind { Blank, Header, Key, Other };
    struct Entry {
        Kind kind = Kind::Other;
        QByteArray bytes;       // from the end of the entry before it
        int valueBegin = 0;     // of a key, in bytes
        QString key;            // of a key, with its section
        bool inGeneral = false; // the header of [General], or an entry below it or above all headers
        QByteArray closing;     // what has to follow, so that the line after it is one of its own
    };

    void append(const QByteArray &bytes, int spaces, int equals, QString &section);
    std::optional<QVariant> lastValue(const QString &key) const;
    bool hasGeneral() const;
    void addGeneral();
    void insertEntry(int position, const Entry &entry);
    void insertKey(const QString &key, const QByteArray &text);
    int positionInGeneral(const QString &key) const;

    QVector<Entry> m_entries;
    QHash<QString, int> m_lastOfKey; // index of the entry that counts
    bool m_changed = false;
};
