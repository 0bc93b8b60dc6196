#include "mapoptions.h"

#include "mapfile.h"
#include "optiontable.h"
#include "parameterfile.h"

#include <QCommandLineParser>
#include <QFile>
#include <QRegularExpression>
#include <QThread>

namespace
{

/// Takes the options one by one, until the first that is wrong.
class OptionReader
{
public:
    OptionReader(const QCommandLineParser &parser, MapOptions &options, QString &problem)
        : m_parser(parser), m_options(options), m_problem(problem)
    {
    }

    void read()
    {
        readSettings();
        readCircle();
        readValues();
        readOutput();
        readRun();
        readPhotographs();
    }

private:
    bool isSet(const char *name) const { return m_problem.isEmpty() && m_parser.isSet(QLatin1String(name)); }
    QString value(const char *name) const { return m_parser.value(QLatin1String(name)); }

    void refuse(const char *name, const QString &need)
    {
        m_problem = QStringLiteral("--%1 %2: %3").arg(QLatin1String(name), value(name), need);
    }

    template <typename T>
    void readNumber(const char *name, const MapValue<T> &range, T &variable)
    {
        if (!isSet(name))
            return;
        constexpr bool whole = std::is_same_v<T, int>;
        bool isNumber = false;
        T number = 0;
        if constexpr (whole)
            number = value(name).toInt(&isNumber);
        else
            number = value(name).toDouble(&isNumber);
        if (isNumber && range.allows(number))
            variable = number;
        else
            refuse(name, QStringLiteral("a %1 from %2 to %3 is needed")
                             .arg(whole ? QStringLiteral("whole number") : QStringLiteral("number"))
                             .arg(range.lowest)
                             .arg(range.highest));
    }

    /// @return the position of the option's value among the words; -1 if the option is not there or wrong
    int readWord(const char *name, const QStringList &words)
    {
        if (!isSet(name))
            return -1;
        const int position = words.indexOf(value(name));
        if (position < 0)
            refuse(name, words.join(QStringLiteral(" or ")) + QStringLiteral(" is needed"));
        return position;
    }

    void readSettings()
    {
        if (!isSet("settings"))
            return;
        const MapSettings settings = readMapSettings(value("settings"));
        const MapParameters &p = settings.parameters;
        constexpr int largestSide = 32767; // beyond it the engine leaves parts of a map out
        if (!settings.problem.isEmpty())
            refuse("settings", settings.problem);
        else if (p.outputSizeX < 1 || p.outputSizeX > largestSide || p.outputSizeY < 1 ||
                 p.outputSizeY > largestSide)
            refuse("settings", QStringLiteral("a map of %1 x %2 pixels cannot be made; 1 to %3 are possible")
                                   .arg(p.outputSizeX)
                                   .arg(p.outputSizeY)
                                   .arg(largestSide));
        m_options.parameters = p;
        m_options.quality = settings.quality;
        if (settings.namesFormat)
            m_options.format = QString::fromLatin1(mapFormat(settings.format));
        // As when the window loads a photograph.
        if (p.centerX != 0 && p.centerY != 0 && p.radius != 0)
            m_options.circle = SelectionCircle{p.centerX, p.centerY, p.radius};
        else
            m_options.circle = FittedCircle{};
    }

    void readCircle()
    {
        if (isSet("circle") && isSet("circle-file")) {
            m_problem = QStringLiteral("--circle and --circle-file: only one of them can be given");
        } else if (isSet("circle")) {
            static const QRegularExpression numbers(QStringLiteral("^([+-]?\\d+),([+-]?\\d+),([+-]?\\d+)$"));
            const QRegularExpressionMatch match = numbers.match(value("circle"));
            bool fits[3] = {};
            const SelectionCircle circle{match.captured(1).toInt(&fits[0]), match.captured(2).toInt(&fits[1]),
                                         match.captured(3).toInt(&fits[2])};
            if (value("circle") == QLatin1String("fit"))
                m_options.circle = FittedCircle{};
            else if (value("circle") == QLatin1String("find"))
                m_options.circle = SoughtCircle{};
            else if (value("circle") == QLatin1String("find-once"))
                m_options.circle = SoughtCircle{true};
            else if (fits[0] && fits[1] && fits[2])
                m_options.circle = circle;
            else
                refuse("circle",
                       QStringLiteral(
                           "\"find\", \"find-once\", \"fit\" or three whole numbers X,Y,RADIUS from %1 "
                           "to %2 are needed")
                           .arg(mapvalues::anyLowest)
                           .arg(mapvalues::anyHighest));
        } else if (isSet("circle-file")) {
            const CircleFile file = readCircleFile(value("circle-file"));
            if (!file.problem.isEmpty())
                refuse("circle-file", file.problem);
            m_options.circle = file.circle;
        }
        readNumber("least-confidence", leastConfidenceOption, m_options.leastConfidence);
        readSearch();
    }

    void readSearch()
    {
        m_options.printCircles = isSet("print-circle");
        if (isSet("save-circle")) {
            m_options.circleFile = value("save-circle");
            if (m_options.circleFile.isEmpty())
                refuse("save-circle", QStringLiteral("a path is needed"));
        }
        if (m_options.printCircles || !m_options.circleFile.isEmpty())
            m_options.action = MapOptions::Action::FindCircles;
    }

    void readValues()
    {
        MapParameters &parameters = m_options.parameters;
        readNumber("distance", mapvalues::distance, parameters.distance);
        readNumber("latitude", mapvalues::latitude, parameters.latitude);
        readNumber("longitude", mapvalues::longitude, parameters.longitude);
        readNumber("azimuth", mapvalues::azimuth, parameters.azimuth);
        readNumber("quality", mapvalues::quality, m_options.quality);
        readSize();
        const QStringList formats = {QString::fromLatin1(mapFormat(0)), QString::fromLatin1(mapFormat(1))};
        const int format = readWord("format", formats);
        if (format >= 0)
            m_options.format = formats.at(format);
        const int lens = readWord("lens", {QStringLiteral("corrected"), QStringLiteral("none")});
        parameters.lens = lens == 1 ? projection::Lens::None : projection::Lens::Corrected;
    }

    void readSize()
    {
        if (!isSet("size"))
            return;
        const QStringList sides = value("size").split(QLatin1Char('x'));
        bool isNumber[2] = {};
        const int width = sides.first().toInt(&isNumber[0]);
        const int height = sides.last().toInt(&isNumber[1]);
        if (sides.size() == 2 && isNumber[0] && isNumber[1] && mapvalues::outputSizeX.allows(width) &&
            mapvalues::outputSizeY.allows(height)) {
            m_options.parameters.outputSizeX = width;
            m_options.parameters.outputSizeY = height;
            return;
        }
        refuse("size", QStringLiteral("WIDTHxHEIGHT, each from %1 to %2, is needed")
                           .arg(mapvalues::outputSizeX.lowest)
                           .arg(mapvalues::outputSizeX.highest));
    }

    void readOutput()
    {
        if (isSet("output") && value("output").isEmpty())
            refuse("output", QStringLiteral("a path is needed"));
        m_options.output = value("output");
        if (isSet("name")) {
            QString problem;
            m_options.name = NameTemplate::parsed(value("name"), problem);
            m_options.hasName = true;
            if (!problem.isEmpty())
                refuse("name", problem);
        }
        if (isSet("overwrite") && isSet("skip-existing"))
            m_problem = QStringLiteral("--overwrite and --skip-existing: only one of them can be given");
        m_options.existing = isSet("overwrite")       ? ExistingMap::IsReplaced
                             : isSet("skip-existing") ? ExistingMap::IsDone
                                                      : ExistingMap::Fails;
        m_options.worldFile = isSet("world-file");
    }

    void readRun()
    {
        constexpr MapValue<int> jobs = {"", 1, 1, mostJobs};
        m_options.jobs = qBound(jobs.lowest, QThread::idealThreadCount(), jobs.highest);
        readNumber("jobs", jobs, m_options.jobs);
        m_options.quiet = isSet("quiet");
        m_options.progressAlways =
            readWord("progress", {QStringLiteral("auto"), QStringLiteral("always")}) == 1;
        if (isSet("dry-run") && m_options.action == MapOptions::Action::Convert)
            m_options.action = MapOptions::Action::DryRun;
        if (isSet("part"))
            readPart();
    }

    void readPart()
    {
        const QStringList numbers = value("part").split(QLatin1Char('/'));
        bool isNumber[2] = {};
        const int index = numbers.first().toInt(&isNumber[0]);
        const int count = numbers.last().toInt(&isNumber[1]);
        if (numbers.size() == 2 && isNumber[0] && isNumber[1] && index >= 1 && index <= count)
            m_options.share = {index - 1, count};
        else
            refuse("part", QStringLiteral("I/N, two whole numbers with 1 <= I <= N, is needed"));
    }

    void readPhotographs()
    {
        if (isSet("null"))
            m_options.separator = Separator::Null;
        for (const QString &path : m_parser.positionalArguments())
            m_options.photographs.append(QFile::encodeName(path));
        if (!isSet("files-from")) {
            if (m_problem.isEmpty() && m_options.photographs.size() == 0)
                m_problem = QStringLiteral("no photograph is named; --help shows the use");
            return;
        }
        m_options.hasListFile = true;
        for (const QString &file : m_parser.values(QStringLiteral("files-from"))) {
            const QString problem = appendListFile(m_options.photographs, file, m_options.separator);
            if (m_problem.isEmpty() && !problem.isEmpty())
                m_problem = QStringLiteral("--files-from %1: %2").arg(file, problem);
        }
    }

    const QCommandLineParser &m_parser;
    MapOptions &m_options;
    QString &m_problem;
};

} // namespace

std::optional<MapOptions> readOptions(const QStringList &arguments, QString &problem)
{
    QCommandLineParser parser;
    for (const OptionGroup &group : optionGroups())
        for (const QCommandLineOption &option : group.options)
            parser.addOption(option);
    MapOptions options;
    if (!parser.parse(arguments)) {
        problem = parser.errorText();
        return {};
    }
    if (parser.isSet(QStringLiteral("help")) || parser.isSet(QStringLiteral("version"))) {
        options.action =
            parser.isSet(QStringLiteral("help")) ? MapOptions::Action::Help : MapOptions::Action::Version;
        return options;
    }
    OptionReader(parser, options, problem).read();
    if (!problem.isEmpty())
        return {};
    return options;
}
