// One photograph file to one map file, as a whole process: to be timed beside other programs.
//
//   bench_file photograph map width height
#include "mapconversion.h"

#include <QCoreApplication>
#include <QStringList>

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5)
        return 2;
    const QImage photograph(arguments[1]);
    MapParameters parameters;
    parameters.centerX = photograph.width() / 2;
    parameters.centerY = photograph.height() / 2;
    parameters.radius = int(photograph.height() * 0.49);
    parameters.distance = 6.6;
    parameters.outputSizeX = arguments[3].toInt();
    parameters.outputSizeY = arguments[4].toInt();
    parameters.latitude = 35;
    parameters.longitude = 139;
    return convertToMap(photograph, parameters).save(arguments[2], nullptr, 90) ? 0 : 1;
}
