#pragma once

#include "previewwindow.h"
#include "testwindow.h"

#include <QStringList>

#include <cstring>

/// A double as its bits, so that two texts are equal exactly when two values are.
inline QString bits(double value)
{
    quint64 pattern = 0;
    std::memcpy(&pattern, &value, sizeof pattern);
    return QString::number(pattern, 16);
}

inline QString placeOf(const QWidget &widget)
{
    return QStringLiteral("%1 x %2 at %3, %4")
        .arg(widget.width())
        .arg(widget.height())
        .arg(widget.x())
        .arg(widget.y());
}

/// What a window holds of each of the 26 settings, "Key=value", in the order of the settings file's table.
/// Line breaks are escaped: one line is one setting.
inline QStringList settingsOf(const TestWindow &window)
{
    const auto flag = [](bool value) { return QString(value ? "true" : "false"); };
    const auto text = [](QString value) { return value.replace('\\', "\\\\").replace('\n', "\\n"); };
    return {
        "Geometry=" + placeOf(window),
        "PreviewGeometry=" + placeOf(*window.previewWindow),
        "PreviewWindow=" + flag(window.previewShow),
        "AutoPreview=" + flag(window.autoPreview),
        "AutoSize=" + flag(window.autoSize),
        "PenSize=" + QString::number(window.penSize),
        "PenColor=" + (window.penColor.isValid() ? window.penColor.name(QColor::HexArgb) : "invalid"),
        "CenterX=" + QString::number(window.centerX),
        "CenterY=" + QString::number(window.centerY),
        "Radius=" + QString::number(window.radius),
        "Distance=" + bits(window.distance),
        "OutputSizeX=" + QString::number(window.outputSizeX),
        "OutputSizeY=" + QString::number(window.outputSizeY),
        "LoadFileName=" + text(window.loadFileName),
        "SaveFileName=" + text(window.saveFileName),
        "InputFolder=" + text(window.inputFolder),
        "OutputFolder=" + text(window.outputFolder),
        "InputFileSortType=" + QString::number(window.sortType),
        "OutputFileNameType=" + QString::number(window.nameType),
        "OutputFormat=" + QString::number(window.format),
        "OutputQuality=" + QString::number(window.quality),
        "Latitude=" + bits(window.latitude),
        "Longitude=" + bits(window.longitude),
        "Azimuth=" + bits(window.azimuth),
        "Overwrite=" + flag(window.overwrite),
        "OpenFiler=" + flag(window.openFiler),
    };
}

/// The value that a list made by settingsOf() has for a key.
inline QString settingIn(const QStringList &settings, const QString &key)
{
    const QStringList found = settings.filter(QRegularExpression('^' + key + '='));
    return found.size() == 1 ? found.first().mid(key.size() + 1) : QString();
}

/// What a key is when the file does not have it. Doubles by their values, see settingsOf().
inline const QStringList defaultSettings{
    "Geometry=655 x 606 at 0, 0",
    "PreviewGeometry=640 x 480 at 0, 0",
    "PreviewWindow=false",
    "AutoPreview=false",
    "AutoSize=true",
    "PenSize=3",
    "PenColor=#ffff0000",
    "CenterX=0",
    "CenterY=0",
    "Radius=0",
    "Distance=" + bits(100.0),
    "OutputSizeX=2048",
    "OutputSizeY=1024",
    "LoadFileName=",
    "SaveFileName=",
    "InputFolder=",
    "OutputFolder=",
    "InputFileSortType=0",
    "OutputFileNameType=0",
    "OutputFormat=0",
    "OutputQuality=85",
    "Latitude=" + bits(0.0),
    "Longitude=" + bits(0.0),
    "Azimuth=" + bits(0.0),
    "Overwrite=true",
    "OpenFiler=true",
};
