// Writes one file of each kind that the window writes: `filewriter settings|parameters|map PATH`. The exit status is 0
// exactly if the unit says that the file is complete.

#include "inifile.h"
#include "mapfile.h"

#include <QCoreApplication>
#include <QImage>

namespace
{

bool written(const QString &what, const QString &path)
{
    if (what == QLatin1String("map")) {
        QImage map(300, 150, QImage::Format_ARGB32_Premultiplied);
        map.fill(Qt::darkCyan);
        return saveMap(map, path, "png", 100);
    }
    if (what == QLatin1String("parameters"))
        return writeIniFile(path, {{"CenterX", 7}, {"CenterY", 8}, {"Radius", 9}});
    QByteArray geometry(2000, 'g');
    QString folder = QStringLiteral("/maps");
    return saveSettings(path, {boundSetting("Geometry", QByteArray(), geometry),
                               boundSetting("OutputFolder", QString(), folder)});
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.size() == 3 && written(arguments.at(1), arguments.at(2)) ? 0 : 1;
}
