#include "parameterfile.h"

#include "inifile.h"

#include <QFileInfo>

namespace
{

/// The numbers of an ini file, and the first thing that is wrong with them.
class NumberReader
{
public:
    explicit NumberReader(const QString &path) : m_problem(reasonAgainst(path))
    {
        if (m_problem.isEmpty())
            m_file = openIniFile(path);
    }

    bool has(const char *key) const { return m_file.contains(QLatin1String(key)); }
    int count() const { return m_count; }
    QString problem() const { return m_problem; }

    void read(const MapValue<int> &value, int &variable)
    {
        if (!has(value.key))
            return;
        const QVariant text = take(value.key);
        variable = text.toInt(); // its low 32 bits
        bool isNumber = false;
        const qlonglong number = text.toLongLong(&isNumber);
        note(isNumber && number == variable, value.key, "whole number");
    }
    void read(const MapValue<double> &value, double &variable)
    {
        if (!has(value.key))
            return;
        bool isNumber = false;
        variable = take(value.key).toDouble(&isNumber);
        note(isNumber, value.key, "number");
    }
    void require(const char *key)
    {
        if (m_problem.isEmpty() && !has(key))
            m_problem = QStringLiteral("%1 is missing").arg(QLatin1String(key));
    }
    void requireAny()
    {
        if (m_problem.isEmpty() && m_count == 0)
            m_problem = QStringLiteral("holds no settings of a map");
    }

private:
    static QString reasonAgainst(const QString &path)
    {
        const QFileInfo file(path);
        if (!file.exists())
            return QStringLiteral("No such file or directory");
        if (!file.isFile())
            return QStringLiteral("Not a regular file");
        if (!file.isReadable())
            return QStringLiteral("Permission denied");
        return file.size() > largestIniFile ? QStringLiteral("Too large") : QString();
    }

    QVariant take(const char *key)
    {
        ++m_count;
        return m_file.value(QLatin1String(key));
    }

    void note(bool isNumber, const char *key, const char *kind)
    {
        if (isNumber || !m_problem.isEmpty())
            return;
        const QString text = m_file.value(QLatin1String(key)).toStringList().join(QLatin1Char(','));
        m_problem = QStringLiteral("%1=%2 is no %3").arg(QLatin1String(key), text, QLatin1String(kind));
    }

    IniText m_file;
    int m_count = 0;
    QString m_problem;
};

} // namespace

CircleFile readCircleFile(const QString &path)
{
    CircleFile result;
    NumberReader reader(path);
    reader.read(mapvalues::centerX, result.circle.centerX);
    reader.read(mapvalues::centerY, result.circle.centerY);
    reader.read(mapvalues::radius, result.circle.radius);
    for (const MapValue<int> &value : {mapvalues::centerX, mapvalues::centerY, mapvalues::radius})
        reader.require(value.key);
    result.problem = reader.problem();
    return result;
}

bool writeCircleFile(const QString &path, const SelectionCircle &circle)
{
    return writeIniFile(path, {{mapvalues::centerX.key, circle.centerX},
                               {mapvalues::centerY.key, circle.centerY},
                               {mapvalues::radius.key, circle.radius}});
}

MapSettings readMapSettings(const QString &path)
{
    MapSettings result;
    MapParameters &parameters = result.parameters;
    NumberReader reader(path);
    reader.read(mapvalues::centerX, parameters.centerX);
    reader.read(mapvalues::centerY, parameters.centerY);
    reader.read(mapvalues::radius, parameters.radius);
    reader.read(mapvalues::distance, parameters.distance);
    reader.read(mapvalues::outputSizeX, parameters.outputSizeX);
    reader.read(mapvalues::outputSizeY, parameters.outputSizeY);
    reader.read(mapvalues::format, result.format);
    reader.read(mapvalues::quality, result.quality);
    reader.read(mapvalues::latitude, parameters.latitude);
    reader.read(mapvalues::longitude, parameters.longitude);
    reader.read(mapvalues::azimuth, parameters.azimuth);
    reader.requireAny();
    result.namesFormat = reader.has(mapvalues::format.key);
    result.problem = reader.problem();
    return result;
}
