#include "helptext.h"

#include "optiontable.h"

#include <QStringList>

namespace
{

constexpr int lineLength = 80;
constexpr int descriptionColumn = 8;

QString wrapped(const QString &text, int indent)
{
    const QString margin(indent, QLatin1Char(' '));
    QString result;
    QString line;
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (!line.isEmpty() && indent + line.size() + 1 + word.size() > lineLength) {
            result += margin + line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return result + margin + line + QLatin1Char('\n');
}

/// "-s, --size WIDTHxHEIGHT"
QString synopsis(const QCommandLineOption &option)
{
    QStringList names;
    for (const QString &name : option.names())
        names.append((name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name);
    const QString value = option.valueName();
    return names.join(QStringLiteral(", ")) + (value.isEmpty() ? QString() : QLatin1Char(' ') + value);
}

const char *const introduction =
    "Usage: ovmic-map [options] PHOTOGRAPH...\n"
    "\n"
    "Turns photographs of a planet's disc into equirectangular maps: the same maps\n"
    "as ovmic, without a window.\n";

const char *const notes = "\n"
                          "Memory: each photograph in work needs 4 bytes for each of its pixels, 8 for each\n"
                          "pixel of its map, and what its files have; 12 megapixels to 2048x1024 need\n"
                          "70 MB in all. --jobs multiplies that.\n"
                          "\n"
                          "Standard output has the path of each map as it is finished, standard error one\n"
                          "line for each failure. A first SIGINT or SIGTERM lets the photographs in work\n"
                          "come to their end, a second one ends at once.\n"
                          "\n"
                          "Exit status: 0 all maps are there; 1 some failed, the others are there; 2 wrong\n"
                          "use, nothing was done; 130 and 143 after SIGINT and SIGTERM.\n"
                          "\n"
                          "Examples:\n"
                          "  ovmic-map --circle 640,480,440 --distance 6.6 photograph.jpg\n"
                          "  ovmic-map --settings ovmic.ini --output maps --world-file photographs/*.jpg\n"
                          "  find photographs -name '*.jpg' -print0 |\n"
                          "      ovmic-map --files-from - --null --jobs 2 --output maps --skip-existing\n";

} // namespace

QString helpText()
{
    QString text = QString::fromLatin1(introduction);
    for (const OptionGroup &group : optionGroups()) {
        text += QLatin1Char('\n') + group.title + QStringLiteral(":\n");
        for (const QCommandLineOption &option : group.options)
            text += QStringLiteral("  ") + synopsis(option) + QLatin1Char('\n') +
                    wrapped(option.description(), descriptionColumn);
    }
    return text + QString::fromLatin1(notes);
}

QString versionText()
{
    return QStringLiteral("ovmic-map " OVMIC_VERSION "\n");
}
