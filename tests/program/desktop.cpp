#include "desktop.h"
#include "patience.h"

#include <QtTest>

#include <functional>

namespace
{

/// Waits for a condition, handling events meanwhile. @return whether it came true in time
bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, patienceMs);
}

/// Presses a key, and again as long as nothing comes of it. A key can be lost: to a window manager that reads the
/// keyboard's map anew, as the first key of all makes it do, and with the focus, when a window opens while another
/// one goes. @return whether the condition came true in time
bool persist(const std::function<void()> &press, const std::function<bool()> &condition)
{
    constexpr int pauseMs = 10000;
    for (int pressed = 0; pressed < patienceMs / pauseMs; ++pressed) {
        press();
        if (QTest::qWaitFor(condition, pauseMs))
            return true;
    }
    return false;
}

} // namespace

Desktop::~Desktop()
{
    m_process.kill();
    m_process.waitForFinished(patienceMs);
}

void Desktop::start(const QStringList &arguments)
{
    m_lines.clear();
    m_unfinished.clear();
    m_nextLine = 0;
    m_folder.start(m_process, arguments);
    m_process.waitForStarted(patienceMs);
}

bool Desktop::isRunning() const
{
    return m_process.state() == QProcess::Running;
}

bool Desktop::closeMainWindow()
{
    return persist([&] { keys({"alt+F4"}); }, [&] { return !isRunning(); });
}

QString Desktop::window(const QString &title)
{
    const QString pattern = '^' + QRegularExpression::escape(title) + '$';
    m_window.clear();
    waitFor([&] {
        m_window = run({"search", "--onlyvisible", "--name", pattern}).section('\n', -1);
        return !m_window.isEmpty() || !isRunning();
    });
    if (!m_window.isEmpty())
        run({"windowfocus", "--sync", m_window});
    return m_window;
}

bool Desktop::waitUntilGone(const QString &title)
{
    return waitFor([&] { return !isVisible(title); });
}

bool Desktop::isVisible(const QString &title)
{
    const QString pattern = '^' + QRegularExpression::escape(title) + '$';
    return !run({"search", "--onlyvisible", "--name", pattern}).isEmpty();
}

bool Desktop::answer(const QString &title, const QString &key)
{
    const auto press = [&] {
        run({"windowfocus", "--sync", m_window});
        keys({key});
    };
    return !window(title).isEmpty() && persist(press, [&] { return !isVisible(title); });
}

QString Desktop::lineStarting(const QString &text)
{
    QString found;
    waitFor([&] {
        readLines();
        while (found.isEmpty() && m_nextLine < m_lines.size()) {
            if (m_lines.at(m_nextLine).startsWith(text))
                found = m_lines.at(m_nextLine);
            ++m_nextLine;
        }
        return !found.isEmpty();
    });
    return found;
}

bool Desktop::waitForLine(const QString &text)
{
    return !lineStarting(text).isEmpty();
}

bool Desktop::hasLine(const QString &text)
{
    readLines();
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [&](const QString &line) { return line.contains(text); });
}

void Desktop::readLines()
{
    m_unfinished += m_process.readAllStandardError();
    const int end = m_unfinished.lastIndexOf('\n') + 1;
    const QString finished = QString::fromUtf8(m_unfinished.left(end));
    m_unfinished.remove(0, end);
    m_lines += finished.split('\n', Qt::SkipEmptyParts);
}

void Desktop::move(QPoint position)
{
    run({"mousemove", "--window", m_window, QString::number(position.x()), QString::number(position.y())});
}

void Desktop::click(QPoint position, int button)
{
    move(position);
    run({"click", QString::number(button)});
}

void Desktop::buttonDown(QPoint position)
{
    move(position);
    run({"mousedown", "1"});
}

void Desktop::buttonUp()
{
    run({"mouseup", "1"});
}

void Desktop::drag(QPoint from, QPoint to)
{
    buttonDown(from);
    move((from + to) / 2);
    move(to);
    buttonUp();
}

void Desktop::keys(const QStringList &keys)
{
    run(QStringList{"key", "--delay", "30"} + keys);
}

void Desktop::type(const QString &text)
{
    run({"type", "--delay", "3", text});
}

QString Desktop::run(const QStringList &arguments)
{

    QProcess xdotool;
    xdotool.start("xdotool", arguments);
    xdotool.waitForFinished(patienceMs);
    return QString::fromUtf8(xdotool.readAllStandardOutput()).trimmed();
}
