#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>
#include <QVector>

#include <functional>

/// What a screen reader knows of the programs on its desktop: session bus and accessibility bus of its own, which
/// programs that are started while it lives connect to.
class ScreenReader
{
public:
    ScreenReader();
    ~ScreenReader();
    ScreenReader(const ScreenReader &) = delete;
    ScreenReader &operator=(const ScreenReader &) = delete;

    /// Whether both buses answer; false where at-spi2-core is not installed.
    bool isReady() const { return m_bus.isConnected(); }

    struct Widget {
        QString role; ///< as AT-SPI spells it: "text", "push button"
        QString name;
        QString service;
        QDBusObjectPath path;
    };
    /// Every widget of every program, parents first.
    QVector<Widget> widgets() const;
    /// The names of all widgets of a role.
    QStringList names(const QString &role) const;
    /// The name of the label that a widget says it has; empty without one.
    QString labelOf(const QString &role, const QString &name) const;
    /// Waits for a widget and does what it does when it is clicked. @return whether it came
    bool activate(const QString &role, const QString &name) const;

private:
    void collect(const QString &service, const QDBusObjectPath &path, QVector<Widget> &found) const;

    QTemporaryDir m_folder;
    QProcess m_sessionBus;
    QDBusConnection m_bus;
};
