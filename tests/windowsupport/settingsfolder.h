#pragma once

#include "files.h"
#include "settingsdump.h"

#include <QTemporaryDir>

/// A folder with a settings file, for several windows one after the other.
class SettingsFolder
{
public:
    QString path() const { return m_folder.path(); }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

    /// A window that has read nothing yet; its start-up pass has to be called.
    std::unique_ptr<TestWindow> window() const
    {
        auto window = std::make_unique<TestWindow>();
        window->settingFile = filePath("tool.ini");
        window->langFile = filePath("tool_lang.ini");
        window->startTimer->stop();
        return window;
    }

    /// What a window holds after it has read a settings file with these contents.
    QStringList loaded(const QByteArray &contents) const
    {
        writeFile(filePath("tool.ini"), contents);
        const auto reader = window();
        reader->readShowString();
        return settingsOf(*reader);
    }

private:
    QTemporaryDir m_folder;
};

/// What a window leaves in its settings file.
inline QByteArray saved(TestWindow &window)
{
    window.close();
    return contentsOf(window.settingFile);
}
