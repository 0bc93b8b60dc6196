// The input is a batch, a line each: the order, the way of naming and a number; the folder; the extension; the
// photographs.

#include "batchplan.h"
#include "fuzzinput.h"

#include <QFileInfo>

#include <limits>

namespace
{

void checkOrder(const QStringList &paths, int sortType)
{
    const QStringList ordered = orderedInputs(paths, sortType);
    QStringList all = paths;
    QStringList allOrdered = ordered;
    all.sort();
    allOrdered.sort();
    require(all == allOrdered, "no path is lost or new");
    if (sortType == SortByPath)
        require(std::is_sorted(ordered.begin(), ordered.end()), "paths are in order");
    else if (sortType != SortByModified)
        require(ordered == paths, "an unknown order leaves them as they are");
    if (sortType != SortByModified) // a folder such as "." may change meanwhile
        require(orderedInputs(ordered, sortType) == ordered, "what is in order stays so");
}

void checkName(const QString &folder, const QString &path, int nameType, int index, const QString &extension)
{
    const QString map = outputPath(folder, path, nameType, index, extension);
    require(map == outputPath(folder, path, nameType, index, extension), "a name is always the same");
    require(map.startsWith(folder + '/') || (folder.startsWith(':') && map.startsWith("./" + folder + '/')),
            "a map is in its folder");
    require(map.endsWith('.' + extension), "a map has its extension");
    const QString name = map.mid(map.indexOf(folder + '/') + folder.size() + 1);
    require(!name.left(name.size() - extension.size() - 1).contains('/'), "a map is in no other folder");
    if (nameType != 0) {
        const int next = index < std::numeric_limits<int>::max() ? index + 1 : 0;
        require(map != outputPath(folder, path, nameType, next, extension), "numbers tell maps apart");
    }
    const QString proposed = proposedName(path, extension);
    require(proposed.startsWith("OV-") && proposed.endsWith('.' + extension), "the proposal has its parts");
    require(!proposed.left(proposed.size() - extension.size()).contains('/'), "the proposal is one name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    FuzzInput input(data, size);
    const QList<QByteArray> numbers = input.takeLine().split(' ');
    const int sortType = numbers.value(0).toInt();
    const int nameType = numbers.value(1).toInt();
    const int index = numbers.value(2).toInt();
    const QString folder = QString::fromUtf8(input.takeLine());
    const QString extension = QString::fromUtf8(input.takeLine());
    QStringList paths;
    while (!input.atEnd())
        paths.append(QString::fromUtf8(input.takeLine()));

    checkOrder(paths, sortType);
    for (const QString &path : qAsConst(paths))
        checkName(folder, path, nameType, index, extension);
    return 0;
}
