// The input is a command line of ovmic-map, one argument a line. Below an empty line stand the contents of the one file
// that it can name: FILE. Files outside are left alone.

#include "batchplan.h"
#include "fuzzinput.h"
#include "mapoptions.h"
#include "memoryfile.h"
#include "optiontable.h"

#include <QCommandLineParser>

namespace
{

/// Whether an option names a file to be read that is not the input's.
bool namesOtherFile(const QStringList &arguments, const QString &path)
{
    QCommandLineParser parser;
    for (const OptionGroup &group : optionGroups())
        for (const QCommandLineOption &option : group.options)
            parser.addOption(option);
    if (!parser.parse(arguments))
        return false;
    for (const char *option : {"settings", "circle-file", "files-from"})
        for (const QString &file : parser.values(QLatin1String(option)))
            if (file != path)
                return true;
    return false;
}

template <typename T>
bool isAllowed(T value, const MapValue<T> &range)
{
    return range.allows(value);
}

/// What a settings file says is not checked; what an option says is.
void checkValues(const MapOptions &options)
{
    const MapParameters &p = options.parameters;
    require(isAllowed(p.distance, mapvalues::distance), "the distance is in its range");
    require(isAllowed(p.latitude, mapvalues::latitude), "the latitude is in its range");
    require(isAllowed(p.longitude, mapvalues::longitude), "the longitude is in its range");
    require(isAllowed(p.azimuth, mapvalues::azimuth), "the azimuth is in its range");
    require(isAllowed(p.outputSizeX, mapvalues::outputSizeX), "the width is in its range");
    require(isAllowed(p.outputSizeY, mapvalues::outputSizeY), "the height is in its range");
    require(isAllowed(options.quality, mapvalues::quality), "the quality is in its range");
}

void checkNames(const NameTemplate &name)
{
    for (const char *photograph : {"a.jpg", "folder/b.c.png", ".hidden", ""}) {
        const QString path = QString::fromLatin1(photograph);
        const QString map = name.nameOf(path, 7, QStringLiteral("png"));
        require(map == name.nameOf(path, 7, QStringLiteral("png")), "a name is always the same");
        require(map.endsWith(QLatin1String(".png"), Qt::CaseInsensitive), "a name has its extension");
        require(!map.contains('/'), "a name stays in its folder");
    }
}

void checkOptions(const MapOptions &options, bool hasSettings)
{
    if (!hasSettings)
        checkValues(options);
    require(options.parameters.outputSizeX > 0 && options.parameters.outputSizeX <= 32767 &&
                options.parameters.outputSizeY > 0 && options.parameters.outputSizeY <= 32767,
            "a map of that size can be made");
    require(isAllowed(options.leastConfidence, leastConfidenceOption), "the confidence is in its range");
    require(options.jobs >= 1 && options.jobs <= mostJobs, "the jobs are in their range");
    require(options.share.index >= 0 && options.share.index < options.share.count,
            "the share is one of them");
    require(options.format.isEmpty() || options.format == "jpg" || options.format == "png",
            "a format is known");
    for (int i = 0; i < options.photographs.size(); ++i)
        require(!options.photographs.at(i).contains(QChar::Null), "no path holds a zero");
    checkNames(options.name);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    FuzzInput input(data, size);
    QStringList arguments{QStringLiteral("ovmic-map")};
    while (!input.atEnd()) {
        const QByteArray line = input.takeLine();
        if (line.isEmpty())
            break;
        if (line.contains('\0')) // no argument of a process can hold one
            return 0;
        arguments.append(QString::fromUtf8(line));
    }
    const MemoryFile file(input.rest());
    arguments.replaceInStrings(QStringLiteral("FILE"), file.path());
    if (namesOtherFile(arguments, file.path()))
        return 0;

    QString problem;
    const std::optional<MapOptions> options = readOptions(arguments, problem);
    require(options.has_value() == problem.isEmpty(), "there are options or a problem");
    QString again;
    require(readOptions(arguments, again).has_value() == options.has_value() && again == problem,
            "the answer is always the same");
    if (options && options->action != MapOptions::Action::Help &&
        options->action != MapOptions::Action::Version)
        checkOptions(*options, arguments.join('\n').contains("--settings"));

    for (const QString &text : arguments.mid(1)) { // each of them as a template too
        problem.clear();
        const NameTemplate name = NameTemplate::parsed(text, problem);
        if (problem.isEmpty())
            checkNames(name);
    }
    require(NameTemplate().nameOf("x/a.b.jpg", 1, "png") == proposedName("x/a.b.jpg", "png"),
            "the default is the window's name");
    return 0;
}
