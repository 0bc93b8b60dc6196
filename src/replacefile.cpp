#include "replacefile.h"

#include <QByteArray>
#include <QFileInfo>
#include <QSaveFile>
#include <QString>

namespace
{

/// The file behind a link, or behind a whole chain of them; the path itself if it is no link.
QString linkTarget(const QString &path)
{
    constexpr int longestChain = 40; // a ring of links has no end
    QFileInfo file(path);
    for (int links = 0; links < longestChain && file.isSymLink(); ++links)
        file.setFile(file.symLinkTarget());
    return file.filePath();
}

} // namespace

bool replaceFile(const QString &path, const QByteArray &contents, ReadOnlyFolder readOnlyFolder)
{
    const QFileInfo target(linkTarget(path));
    if (target.isSymLink() || (target.exists() && !target.isFile()))
        return false;
    QSaveFile file(target.filePath());
    file.setDirectWriteFallback(readOnlyFolder == ReadOnlyFolder::WriteInPlace);
    // The explicit flush matters: on a full disk commit() alone reports success and leaves a cut file.
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush() &&
           file.commit();
}
