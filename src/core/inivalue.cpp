#include "inivalue.h"

#include <QString>
#include <QStringList>
#include <QTextCodec>

#include <algorithm>

namespace
{

bool isBlank(QChar c)
{
    return c == ' ' || c == '\t';
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

int octalDigit(char c)
{
    return c >= '0' && c <= '7' ? c - '0' : -1;
}

/// A byte order mark is a character like any other; a sequence that breaks off gives U+FFFD.
QString fromUtf8(const char *bytes, int length)
{
    static const QTextCodec *codec = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QString text = codec->toUnicode(bytes, length, &state);
    if (state.remainingChars > 0)
        text += QChar::ReplacementCharacter;
    return text;
}

/// Takes a value's text apart: one string, or a list where a comma stands outside of quotes.
class ValueReader
{
public:
    explicit ValueReader(const QByteArray &raw) : m_raw(raw)
    {
        skipBlanks();
        while (m_at < m_raw.size())
            readPiece();
        endElement();
    }

    bool isList() const { return m_elements.size() > 1; }
    const QStringList &elements() const { return m_elements; }

private:
    void skipBlanks()
    {
        while (m_at < m_raw.size() && isBlank(QLatin1Char(m_raw[m_at])))
            ++m_at;
    }

    void readPiece()
    {
        const char c = m_raw[m_at];
        if (c == '\\') {
            ++m_at;
            readEscape();
            m_chopLimit = m_text.size();
        } else if (c == '"') {
            ++m_at;
            m_quoted = true;
            m_inQuotes = !m_inQuotes;
            if (!m_inQuotes) {
                skipBlanks();
                m_chopLimit = m_text.size();
            }
        } else if (c == ',' && !m_inQuotes) {
            ++m_at;
            endElement();
            skipBlanks();
        } else {
            readRun();
        }
    }

    void readRun()
    {
        int end = m_at + 1;
        while (end < m_raw.size() && m_raw[end] != '\\' && m_raw[end] != '"' && m_raw[end] != ',')
            ++end;
        m_text += fromUtf8(m_raw.constData() + m_at, end - m_at);
        m_at = end;
    }

    void readEscape()
    {
        if (m_at == m_raw.size())
            return;
        static const char codes[] = "abfnrtv\"?'\\";
        static const char meanings[] = "\a\b\f\n\r\t\v\"?'\\";
        const char c = m_raw[m_at++];
        const char *code = std::find(codes, codes + sizeof codes - 1, c);
        if (code != codes + sizeof codes - 1)
            m_text += QLatin1Char(meanings[code - codes]);
        else if (c == 'x')
            readHexNumber();
        else if (octalDigit(c) >= 0)
            readNumber(octalDigit, 8, uint(octalDigit(c)));
        else if (c == '\n' || c == '\r')
            skipOtherHalfOfLineEnd(c);
        // Any other character is left out.
    }

    void readHexNumber()
    {
        if (m_at < m_raw.size() && hexDigit(m_raw[m_at]) >= 0)
            readNumber(hexDigit, 16, 0);
    }

    void readNumber(int (*digit)(char), uint base, uint number)
    {
        for (; m_at < m_raw.size() && digit(m_raw[m_at]) >= 0; ++m_at)
            number = number * base + uint(digit(m_raw[m_at]));
        m_text += QChar(ushort(number));
    }

    void skipOtherHalfOfLineEnd(char first)
    {
        if (m_at < m_raw.size() && (m_raw[m_at] == '\n' || m_raw[m_at] == '\r') && m_raw[m_at] != first)
            ++m_at;
    }

    void endElement()
    {
        int length = m_text.size();
        while (!m_quoted && length > m_chopLimit && isBlank(m_text[length - 1]))
            --length;
        m_elements.append(m_text.left(length));
        m_text.clear();
        m_quoted = false;
        m_chopLimit = 0;
    }

    const QByteArray &m_raw;
    int m_at = 0;
    QString m_text;        // of the element at work
    int m_chopLimit = 0;   // trailing blanks go only from here on
    bool m_quoted = false; // the element has a quote, so that its blanks stay
    bool m_inQuotes = false;
    QStringList m_elements;
};

/// Whether the toolkit would take the text for an object to be decoded.
bool isSerialized(const QString &text)
{
    return text.endsWith(')') &&
           (text.startsWith(QLatin1String("@Variant(")) || text.startsWith(QLatin1String("@DateTime(")));
}

/// Whether the text is one of the toolkit's small geometric types: none of ours, and not text either.
bool isNumbers(const QString &text, const char *type, int count)
{
    return text.startsWith(QLatin1String(type)) && text.count(' ') == count - 1;
}

/// Text whose first character may mark its type: "@ByteArray(...)", "@String(...)", "@@" for a single one.
QVariant markedValue(const QString &text)
{
    if (!text.startsWith('@'))
        return text;
    if (text.endsWith(')')) {
        const auto inside = [&](int prefix) { return text.mid(prefix, text.size() - prefix - 1); };
        if (text.startsWith(QLatin1String("@ByteArray(")))
            return inside(11).toLatin1();
        if (text.startsWith(QLatin1String("@String(")))
            return inside(8);
        if (text == QLatin1String("@Invalid()") || isNumbers(text, "@Rect(", 4) ||
            isNumbers(text, "@Size(", 2) || isNumbers(text, "@Point(", 2))
            return {};
    }
    return text.startsWith(QLatin1String("@@")) ? text.mid(1) : text;
}

/// Appends text as UTF-8 or, for bytes, as one escaped character for each byte.
class ValueWriter
{
public:
    explicit ValueWriter(bool bytes) : m_bytes(bytes) {}

    void append(const QString &text)
    {
        for (int i = 0; i < text.size(); ++i) {
            const bool pair =
                text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
            if (pair && !m_bytes)
                appendCharacters(text.mid(i++, 2));
            else
                appendUnit(text[i]);
        }
    }

    QByteArray result() const
    {
        const bool quoted = m_needsQuotes || m_result.startsWith(' ') || m_result.endsWith(' ');
        return quoted ? '"' + m_result + '"' : m_result;
    }

private:
    void appendUnit(QChar unit)
    {
        if (unit.isSurrogate()) // half of a pair: it leaves no trace, whatever comes before and next
            return;
        static const char meanings[] = "\a\b\f\n\r\t\v\"\\";
        static const char codes[] = "abfnrtv\"\\";
        const ushort code = unit.unicode();
        const char c = code < 0x80 ? char(code) : char(0);
        if (c == ';' || c == ',' || c == '=')
            m_needsQuotes = true;
        // A digit after an escape would be taken for a part of it.
        if (m_afterNumber && c != 0 && hexDigit(c) >= 0) {
            appendNumber(code);
            return;
        }
        m_afterNumber = false;
        const char *special = c == 0 ? nullptr : std::find(meanings, meanings + sizeof meanings - 1, c);
        if (code == 0) {
            m_result += "\\0";
            m_afterNumber = true;
        } else if (special && special != meanings + sizeof meanings - 1) {
            m_result += '\\';
            m_result += codes[special - meanings];
        } else if (code <= 0x1f || (code >= 0x7f && m_bytes)) {
            appendNumber(code);
        } else {
            appendCharacters(unit);
        }
    }

    void appendNumber(ushort code)
    {
        m_result += "\\x" + QByteArray::number(code, 16);
        m_afterNumber = true;
    }

    void appendCharacters(const QString &text)
    {
        m_afterNumber = false;
        m_result += text.toUtf8();
    }

    bool m_bytes;
    bool m_needsQuotes = false;
    bool m_afterNumber = false;
    QByteArray m_result;
};

} // namespace

std::optional<QVariant> iniValue(const QByteArray &text)
{
    const ValueReader reader(text);
    if (std::any_of(reader.elements().begin(), reader.elements().end(), isSerialized))
        return std::nullopt;
    if (!reader.isList())
        return markedValue(reader.elements().first());
    QStringList list;
    for (const QString &element : reader.elements())
        list.append(element.startsWith('@') ? markedValue(element).toString() : element);
    return list;
}

QByteArray iniValueText(const QVariant &value)
{
    const bool bytes = value.type() == QVariant::ByteArray;
    QString text;
    if (bytes) {
        const QByteArray raw = value.toByteArray();
        text = QLatin1String("@ByteArray(") + QString::fromLatin1(raw.constData(), raw.size()) + ')';
    } else {
        text = value.toString();
        if (text.contains(QChar::Null))
            text = QLatin1String("@String(") + text + ')';
        else if (text.startsWith('@'))
            text.prepend('@');
    }
    ValueWriter writer(bytes);
    writer.append(text);
    return writer.result();
}
