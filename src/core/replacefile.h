#pragma once

class QByteArray;
class QString;

/// What to do about a file that is writable in a folder that is not: no file can be put beside it there.
enum class ReadOnlyFolder {
    Refuse,       ///< leave the old file as it is
    WriteInPlace, ///< overwrite it directly; the one case in which a failed write can damage it
};

/// Replaces the contents of a file as a whole: a failure of any kind (no room, no permission, the path is a
/// folder or a device, the process killed) leaves the old file untouched. A link is followed; permissions are
/// kept, and owner and group where the system lets this process give the file to them.
/// @param reason  receives the system's reason for a failure, one line in English
/// @return whether the new contents are on the disk
bool replaceFile(const QString &path, const QByteArray &contents, ReadOnlyFolder readOnlyFolder,
                 QString *reason = nullptr);
