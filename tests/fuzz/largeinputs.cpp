// Writes the inputs that are too large for the corpus into a folder, below the names of their fuzz targets.

#include "hostilepictures.h"

#include <QDir>
#include <QFile>

namespace
{

void writeInput(const QString &folder, const char *target, const char *name, const QByteArray &contents)
{
    const QDir place(folder + '/' + target);
    QFile file(place.filePath(QString::fromLatin1(name)));
    if (!place.mkpath(QStringLiteral(".")) || !file.open(QIODevice::WriteOnly) ||
        file.write(contents) != contents.size() || !file.flush())
        qFatal("%s cannot be written", qPrintable(file.fileName()));
}

/// A list that holds a list that holds ..., as the toolkit writes it.
QByteArray nestedLists(int depth)
{
    const QByteArray listOfOne = R"(\0\0\0\t\0\0\0\0\x1)";
    return "[General]\nPenColor=@Variant(" + listOfOne.repeated(depth) + ")\nRadius=5\n";
}

/// A conversion of a photograph that is not opened for long: the values do not matter.
QByteArray conversionOf(const QByteArray &photograph)
{
    constexpr int parameterBytes = 3 * 4 + 8 + 2 * 2 + 3 * 8 + 2;
    return QByteArray(parameterBytes, '\1') + photograph;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        qFatal("usage: largeinputs FOLDER");
    const QString folder = QFile::decodeName(argv[1]);
    const QByteArray longLine = "[General]\nText=\"" + QByteArray(R"(,\x41""a b)").repeated(100000) + "\"\n";
    writeInput(folder, "inifile", "lists-nested-200000-deep", nestedLists(200000));
    writeInput(folder, "inifile", "line-of-a-megabyte", longLine);
    writeInput(folder, "maps", "png-with-unfolding-texts", conversionOf(pngWithTexts(16)));
    writeInput(folder, "maps", "png-of-60000-x-60000", conversionOf(pngOfSize(60000, 60000)));
    writeInput(folder, "maps", "jpeg-of-65500-x-65500", conversionOf(jpegOfSize(65500, 65500)));
    QByteArray manyPaths = "0 1 0\nmaps\njpg\n";
    for (int i = 0; i < 20000; ++i)
        manyPaths += "photographs/" + QByteArray::number(i * 7919 % 20000) + ".jpg\n";
    writeInput(folder, "batchplan", "twenty-thousand-photographs", manyPaths);
    writeInput(folder, "mapoptions", "list-of-twenty-thousand", "--files-from\nFILE\n\n" + manyPaths);
    QByteArray line(5 * 2 - 1, '\0');
    writeInput(folder, "discfinder", "noise", line + longLine.left(16384));
    return 0;
}
