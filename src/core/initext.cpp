#include "initext.h"

#include "inivalue.h"

#include <algorithm>

namespace
{

const char *const byteOrderMark = "\xef\xbb\xbf";

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

bool isLineEnd(char c)
{
    return c == '\n' || c == '\r';
}

/// One entry of the file: spaces in front of it, then a key and its value, a header, a comment, or neither.
struct Line {
    int begin = 0;   // of the entry itself
    int equals = -1; // of the first equals sign outside of quotes
    int end = 0;
    QByteArray closing; // what has to come next, so that the line after it is one of its own
};

/// @param at  an escaped line end. @return whether an entry ends behind it that a line feed would go on with
bool endsWithHalf(const QByteArray &text, int at)
{
    const int next = at + 1;
    return next == text.size() || (text[at] == '\r' && (isLineEnd(text[next]) || text[next] == ';'));
}

/// @param from  where the entry before it ended
Line lineAt(const QByteArray &text, int from)
{
    Line line;
    int at = from;
    while (at < text.size() && isSpace(text[at]))
        ++at;
    line.begin = at;
    if (at < text.size() && text[at] == ';') { // a comment takes the whole line
        while (at < text.size() && !isLineEnd(text[at]))
            ++at;
        line.end = at;
        return line;
    }
    bool inQuotes = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') {
            inQuotes = !inQuotes;
        } else if (c == '=') {
            if (!inQuotes && line.equals < 0)
                line.equals = at;
        } else if (c ==
                   '\\') { // whatever comes next, it ends nothing; both halves of a line end count as one
            ++at;
            const bool lineEnd = at < text.size() && isLineEnd(text[at]);
            if (lineEnd && at + 1 < text.size() && isLineEnd(text[at + 1]) && text[at] != text[at + 1])
                ++at;
            else if (at >= text.size() || (lineEnd && !inQuotes && endsWithHalf(text, at)))
                line.closing = "\n"; // otherwise the line end that comes next would belong to this
        } else if (!inQuotes && (isLineEnd(c) || c == ';')) {
            break;
        }
    }
    if (inQuotes)
        line.closing += '"';
    line.end = std::min(at, text.size());
    return line;
}

/// Keys and section names: bytes are characters, "%41" and "%U0041" are numbers of characters, "\" is "/".
QString unescapedKey(const QByteArray &raw)
{
    QString key;
    for (int at = 0; at < raw.size(); ++at) {
        const char c = raw[at];
        if (c == '%' && at + 1 < raw.size()) {
            const bool wide = raw[at + 1] == 'U';
            const int digits = wide ? 4 : 2;
            const int first = at + (wide ? 2 : 1);
            bool isNumber = false;
            const int code = first + digits <= raw.size() ? raw.mid(first, digits).toInt(&isNumber, 16) : 0;
            if (isNumber) {
                key += QChar(ushort(code));
                at = first + digits - 1;
                continue;
            }
        }
        key += c == '\\' ? QLatin1Char('/') : QLatin1Char(c);
    }
    return key;
}

/// The section that a header opens, as it stands in front of keys.
QString sectionOf(const QByteArray &header)
{
    const int close = header.indexOf(']');
    const QByteArray name = (close < 0 ? header.mid(1) : header.mid(1, close - 1)).trimmed();
    if (name.compare("general", Qt::CaseInsensitive) == 0)
        return {};
    if (name.compare("%general", Qt::CaseInsensitive) == 0)
        return QString::fromLatin1(name.mid(1)) + '/';
    return unescapedKey(name) + '/';
}

} // namespace

IniText::IniText(const QByteArray &contents)
{
    QString section;
    int from = 0;
    if (contents.startsWith(byteOrderMark)) {
        Entry mark;
        mark.bytes = byteOrderMark;
        m_entries.append(mark);
        from = m_entries.first().bytes.size();
    }
    while (from < contents.size()) {
        const Line line = lineAt(contents, from);
        append(contents.mid(from, line.end - from), line.begin - from,
               line.equals < 0 ? -1 : line.equals - from, section);
        m_entries.last().closing = line.closing;
        from = line.end;
    }
}

void IniText::append(const QByteArray &bytes, int spaces, int equals, QString &section)
{
    Entry entry;
    entry.bytes = bytes;
    if (spaces == bytes.size()) {
        entry.kind = Kind::Blank;
    } else if (bytes[spaces] == '[') {
        entry.kind = Kind::Header;
        section = sectionOf(bytes.mid(spaces));
    } else if (equals >= 0) {
        int keyEnd = equals;
        while (keyEnd > spaces && isBlank(bytes[keyEnd - 1]))
            --keyEnd;
        entry.kind = Kind::Key;
        entry.key = section + unescapedKey(bytes.mid(spaces, keyEnd - spaces));
        entry.valueBegin = equals + 1;
        m_lastOfKey[entry.key] = m_entries.size();
    }
    entry.inGeneral = section.isEmpty();
    m_entries.append(entry);
}

std::optional<QVariant> IniText::lastValue(const QString &key) const
{
    const auto found = m_lastOfKey.constFind(key);
    if (found == m_lastOfKey.constEnd())
        return std::nullopt;
    const Entry &entry = m_entries.at(*found);
    return iniValue(entry.bytes.mid(entry.valueBegin));
}

QStringList IniText::allKeys() const
{
    QStringList keys;
    for (int i = 0; i < m_entries.size(); ++i) {
        const Entry &entry = m_entries.at(i);
        if (entry.kind == Kind::Key && m_lastOfKey.value(entry.key) == i && lastValue(entry.key))
            keys.append(entry.key);
    }
    return keys;
}

bool IniText::contains(const QString &key) const
{
    return lastValue(key).has_value();
}

QVariant IniText::value(const QString &key, const QVariant &defaultValue) const
{
    return lastValue(key).value_or(defaultValue);
}

void IniText::setValue(const QString &key, const QVariant &value)
{
    m_changed = true;
    const QByteArray text = iniValueText(value);
    const auto found = m_lastOfKey.constFind(key);
    if (found == m_lastOfKey.constEnd()) {
        insertKey(key, text);
        return;
    }
    Entry &entry = m_entries[*found];
    entry.bytes = entry.bytes.left(entry.valueBegin) + text;
    entry.closing.clear();
}

bool IniText::hasGeneral() const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [](const Entry &entry) {
        return entry.inGeneral && (entry.kind == Kind::Header || entry.kind == Kind::Key);
    });
}

// [General] comes first, behind a byte order mark. What stood above all headers, comments only, comes behind it
// and belongs to nothing.
void IniText::addGeneral()
{
    for (Entry &entry : m_entries)
        entry.inGeneral = false;
    const int position = !m_entries.isEmpty() && m_entries.first().bytes == byteOrderMark ? 1 : 0;
    if (position < m_entries.size()) {
        Entry separator;
        separator.kind = Kind::Blank;
        separator.bytes = "\n\n";
        insertEntry(position, separator);
    }
    Entry header;
    header.kind = Kind::Header;
    header.bytes = "[General]";
    header.inGeneral = true;
    insertEntry(position, header);
}

// In front of the first key that is greater, otherwise behind the last line of the section.
int IniText::positionInGeneral(const QString &key) const
{
    int end = 0;
    for (int i = 0; i < m_entries.size(); ++i) {
        const Entry &entry = m_entries.at(i);
        if (!entry.inGeneral)
            continue;
        if (entry.kind == Kind::Key && entry.key > key)
            return i;
        if (entry.kind != Kind::Blank)
            end = i + 1;
    }
    return end;
}

void IniText::insertKey(const QString &key, const QByteArray &text)
{
    if (!hasGeneral())
        addGeneral();
    const int position = positionInGeneral(key);
    Entry entry;
    entry.kind = Kind::Key;
    entry.key = key;
    entry.inGeneral = true;
    entry.bytes = key.toLatin1() + '=';
    const bool first = position == 0 || m_entries.at(position - 1).bytes == byteOrderMark;
    if (first) {
        // What comes next begins at the start of a line, as the first entry of a file.
        m_entries[position].bytes.prepend('\n');
        m_entries[position].valueBegin += 1;
    } else {
        Entry &before = m_entries[position - 1];
        before.bytes += before.closing;
        before.closing.clear();
        entry.bytes.prepend('\n');
    }
    entry.valueBegin = entry.bytes.size();
    entry.bytes += text;
    insertEntry(position, entry);
    m_lastOfKey[key] = position;
}

void IniText::insertEntry(int position, const Entry &entry)
{
    m_entries.insert(position, entry);
    for (int &index : m_lastOfKey)
        index += index >= position ? 1 : 0;
}

QByteArray IniText::contents() const
{
    QByteArray all;
    for (const Entry &entry : m_entries)
        all += entry.bytes;
    if (m_changed && !all.endsWith('\n'))
        all += (m_entries.isEmpty() ? QByteArray() : m_entries.last().closing) + '\n';
    return all;
}
