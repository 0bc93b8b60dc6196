#include "replacefile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QString>
#include <QUuid>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

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

bool failed(QString *reason, const QString &text)
{
    if (reason)
        *reason = text;
    return false;
}

/// Gives a new file the owner and the group of the old one, as far as the system lets this process: root may give
/// a file to anybody, others only to a group that they are in.
void keepOwner(const QFileDevice &file, const QFileInfo &old)
{
#ifdef Q_OS_UNIX
    constexpr auto unchanged = static_cast<uid_t>(-1);
    const bool kept = !old.exists() || fchown(file.handle(), old.ownerId(), old.groupId()) == 0 ||
                      fchown(file.handle(), unchanged, old.groupId()) == 0;
    Q_UNUSED(kept)
#else
    Q_UNUSED(file)
    Q_UNUSED(old)
#endif
}

bool writeWhole(const QString &path, const QByteArray &contents, const QFileInfo &old, bool inPlaceIfNeeded,
                QString *reason)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(inPlaceIfNeeded);
    // The explicit flush matters: on a full disk commit() alone reports success and leaves a cut file.
    if (file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush()) {
        keepOwner(file, old);
        if (file.commit())
            return true;
    }
    // Of a write that was cut short QSaveFile only says that the error is unknown; the system knows it.
    const QString systemReason = qt_error_string(errno);
    return failed(reason,
                  file.errorString() == QLatin1String("Unknown error") ? systemReason : file.errorString());
}

/// QSaveFile first writes a file whose name is 7 bytes longer, and no file system here takes more than 255.
bool isTooLongForQSaveFile(const QString &fileName)
{
    return QFile::encodeName(fileName).size() > 255 - 7;
}

/// The same under a short name in the same folder, which then takes the place of the long one.
bool replaceLongNamed(const QFileInfo &target, const QByteArray &contents, QString *reason)
{
    if (target.exists() && !target.isWritable())
        return failed(reason, qt_error_string(EACCES));
    const QString id = QUuid::createUuid().toString(QUuid::Id128);
    const QString shortNamed = target.dir().filePath(QStringLiteral("ovmic-") + id);
    if (!writeWhole(shortNamed, contents, target, false, reason))
        return false;
    const bool replaced =
        (!target.exists() || QFile::setPermissions(shortNamed, target.permissions())) &&
        std::rename(QFile::encodeName(shortNamed).constData(),
                    QFile::encodeName(target.filePath()).constData()) == 0; // QFile::rename never overwrites
    if (replaced)
        return true;
    failed(reason, qt_error_string(errno));
    QFile::remove(shortNamed);
    return false;
}

} // namespace

bool replaceFile(const QString &path, const QByteArray &contents, ReadOnlyFolder readOnlyFolder,
                 QString *reason)
{
    const QFileInfo target(linkTarget(path));
    if (target.isSymLink())
        return failed(reason, QStringLiteral("The link leads nowhere"));
    if (target.exists() && !target.isFile())
        return failed(reason, target.isDir() ? QStringLiteral("Is a directory")
                                             : QStringLiteral("Not a regular file"));
    if (isTooLongForQSaveFile(target.fileName()))
        return replaceLongNamed(target, contents, reason);
    return writeWhole(target.filePath(), contents, target, readOnlyFolder == ReadOnlyFolder::WriteInPlace,
                      reason);
}
