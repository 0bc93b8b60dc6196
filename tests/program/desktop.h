#pragma once

#include "programfolder.h"

#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>

/// The program on a real desktop, used as a person would: a process of its own on an X server with a window
/// manager, driven by mouse and keyboard from outside. Its debug lines tell what it did.
/// Nothing is slept through: every operation waits for what it needs, and gives up after a time limit with
/// false (or a null id), so that a broken program fails the test instead of hanging it.
class Desktop
{
public:
    Desktop() = default;
    ~Desktop();
    Desktop(const Desktop &) = delete;
    Desktop &operator=(const Desktop &) = delete;

    /// The folder of the program, its settings and whatever the walk needs.
    const ProgramFolder &folder() const { return m_folder; }

    void start(const QStringList &arguments = {});
    bool isRunning() const;
    /// Asks the window manager to close the window, and waits for the end of the program.
    bool closeMainWindow();

    /// Waits for a visible window of exactly this title and gives it the focus. @return its id, empty if none
    QString window(const QString &title);
    /// Waits until no visible window has this title any more.
    bool waitUntilGone(const QString &title);
    /// Waits for such a window, presses a key in it and waits until it is gone.
    bool answer(const QString &title, const QString &key);
    /// Waits for a debug line that contains the text, after the last one that was waited for.
    bool waitForLine(const QString &text);
    /// The next debug line that starts with the text, after the last one that was waited for.
    QString lineStarting(const QString &text);
    /// Whether such a line has come so far, without waiting.
    bool hasLine(const QString &text);

    /// Mouse, at a position in the window that window() found last.
    void click(QPoint position, int button = 1);
    void drag(QPoint from, QPoint to);
    void move(QPoint position);
    void buttonDown(QPoint position);
    void buttonUp();
    /// Keyboard, to whatever has the focus. Keys as xdotool names them.
    void keys(const QStringList &keys);
    /// Types a text; ASCII only.
    void type(const QString &text);

private:
    static bool isVisible(const QString &title);
    static QString run(const QStringList &arguments);
    void readLines();

    ProgramFolder m_folder;
    QProcess m_process;
    QByteArray m_unfinished;
    QStringList m_lines;
    int m_nextLine = 0; // the first line that no wait has passed yet
    QString m_window;
};
