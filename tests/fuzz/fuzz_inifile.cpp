// The input is an ini file. It is read as settings, as a language file and as a parameter file; then values are
// written into it.

#include "fuzzinput.h"
#include "inifile.h"
#include "inivalue.h"
#include "memoryfile.h"
#include "parameterfile.h"
#include "uitexts.h"

#include <QMap>

#include <cmath>

namespace
{

/// Whether all bytes of the first text stand in the second one, in their order.
bool isWithin(const QByteArray &part, const QByteArray &whole)
{
    int found = 0;
    for (int at = 0; at < whole.size() && found < part.size(); ++at)
        found += whole[at] == part[found] ? 1 : 0;
    return found == part.size();
}

/// Whether nothing but a key and what it needs around it was put in.
bool isInserted(const QByteArray &before, const QByteArray &after, const QByteArray &line)
{
    const int around = QByteArray("[General]\n\n\n\n\"\n\"\n").size();
    return isWithin(before, after) && after.size() - before.size() <= line.size() + around;
}

/// Whether nothing but one value has another text.
/// @param text  the new one, of digits
bool isReplaced(const QByteArray &before, const QByteArray &after, const QByteArray &text)
{
    const auto difference = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const int valueBegin = 1 + after.lastIndexOf('=', int(difference.second - after.begin()) - 1);
    if (valueBegin == 0 || after.mid(valueBegin, text.size()) != text)
        return false;
    QByteArray behind = after.mid(valueBegin + text.size());
    for (const char *closing : {"", "\n", "\n\n", "\"\n", "\n\"\n"}) { // what the end of the file may get
        if (!behind.endsWith(closing) || !before.endsWith(behind.left(behind.size() - int(qstrlen(closing)))))
            continue;
        const int oldSize = before.size() - (behind.size() - int(qstrlen(closing))) - valueBegin;
        IniText old("K=" + before.mid(valueBegin, oldSize));
        old.setValue("K", 1);
        if (oldSize >= 0 && old.contents() == "K=1\n") // it was one value and nothing more
            return true;
    }
    return false;
}

void writeNumber(const QByteArray &before, const QString &key, int number)
{
    IniText text(before);
    text.setValue(key, number);
    const QByteArray after = text.contents();
    const QByteArray digits = QByteArray::number(number);
    require(isInserted(before, after, key.toLatin1() + '=' + digits) || isReplaced(before, after, digits),
            "a number changes nothing else");
    const IniText again(after);
    require(again.value(key).toInt() == number, "a number that is written is read");
    const IniText old(before);
    for (const QString &other : old.allKeys())
        require(other == key || again.value(other) == old.value(other), "other values stay");
    text.setValue(key, number);
    require(text.contents() == after, "writing once more changes nothing");
}

QString withoutHalfPairs(const QString &text)
{
    QString whole;
    for (int i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate())
            whole += text[i];
        else if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            whole += text.mid(i++, 2);
    }
    return whole;
}

/// The values of the file are put under keys of ours.
void writeTextAndBytes(const QByteArray &contents)
{
    const IniText text(contents);
    for (const QString &key : text.allKeys()) {
        const QString value = text.value(key).toString();
        const QString units(reinterpret_cast<const QChar *>(contents.constData()), contents.size() / 2);
        for (const QString &any : {value, units.left(1000)}) {
            IniText changed(contents);
            changed.setValue("OutputFolder", any);
            changed.setValue("WindowState", contents.left(1000));
            const IniText again(changed.contents());
            require(again.value("OutputFolder").toString() == withoutHalfPairs(any),
                    "text that is written is read");
            require(again.value("WindowState").toByteArray() == contents.left(1000),
                    "bytes that are written are read");
        }
        return; // one is enough for one input
    }
}

void readAsSettings(const QString &path, const IniText &text)
{
    bool flag = false;
    int number = 0;
    double real = 0;
    QString folder;
    loadSettings(path, {boundSetting("AutoSize", true, flag), boundSetting("CenterX", 7, number),
                        boundSetting("Distance", 100.0, real),
                        boundSetting("OutputFolder", QStringLiteral("default"), folder)});
    require(flag == text.value("AutoSize", true).toBool(), "a flag is read");
    require(number == text.value("CenterX", 7).toInt(), "a number is read");
    require(real == text.value("Distance", 100.0).toDouble() || std::isnan(real), "a real number is read");
    require(folder == text.value("OutputFolder", "default").toString(), "text is read");
}

void readAsParameters(const QString &path, const IniText &text)
{
    const CircleFile file = readCircleFile(path);
    require(file.circle.centerX == text.value("CenterX").toInt(), "the circle is read");
    require(file.circle.radius == text.value("Radius").toInt(), "the circle is read");
    const bool whole = text.contains("CenterX") && text.contains("CenterY") && text.contains("Radius");
    require(whole || !file.problem.isEmpty(), "a missing value is named");
    const MapSettings settings = readMapSettings(path);
    require(settings.namesFormat == text.contains("OutputFormat"), "a format is noticed");
    require(settings.parameters.centerX == file.circle.centerX, "both readers see one circle");
    require(settings.parameters.outputSizeX == text.value("OutputSizeX", 2048).toInt(), "a size is read");
}

struct Label {
    QString text;
    void setText(const QString &t) { text = t; }
};

void readAsTexts(const QString &path, const IniText &file)
{
    QMap<QString, QString> messages;
    UiTexts texts(path, QStringLiteral("main"), messages);
    Label label{QStringLiteral("built in")};
    texts.caption("btn_open", &label, &Label::setText);
    texts.message("str_error", "built in");
    const auto expected = [&](const char *key) {
        const QString text = file.value(QLatin1String(key)).toString();
        return text.isEmpty() ? QStringLiteral("built in") : text;
    };
    require(label.text == expected("main/btn_open"), "a caption is that of the file, or its own");
    require(messages["str_error"] == expected("main/str_error"),
            "a message is that of the file, or built in");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    const QByteArray contents = FuzzInput(data, size).rest();
    const IniText text(contents);
    require(text.contents() == contents, "reading changes nothing");
    for (const QString &key : text.allKeys())
        require(text.contains(key), "each key has a value");

    const MemoryFile file(contents);
    readAsSettings(file.path(), text);
    readAsParameters(file.path(), text);
    readAsTexts(file.path(), text);

    writeNumber(contents, QStringLiteral("Radius"), int(qHash(contents) % 100000));
    writeNumber(contents, QStringLiteral("A"), 1);
    writeTextAndBytes(contents);
    return 0;
}
