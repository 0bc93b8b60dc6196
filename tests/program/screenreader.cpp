#include "screenreader.h"
#include "patience.h"

#include <QDBusArgument>
#include <QDBusInterface>
#include <QDBusMetaType>
#include <QDBusReply>
#include <QtTest>

namespace
{

const char *const accessible = "org.a11y.atspi.Accessible";
constexpr int answerMs = 5000;

/// How AT-SPI names an object.
struct Reference {
    QString service;
    QDBusObjectPath path;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Reference &reference)
{
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Reference &reference)
{
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

/// What one object is to others.
struct Relation {
    uint type;
    QVector<Reference> targets;
};
constexpr uint labelledBy = 2;

QDBusArgument &operator<<(QDBusArgument &argument, const Relation &relation)
{
    argument.beginStructure();
    argument << relation.type << relation.targets;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Relation &relation)
{
    argument.beginStructure();
    argument >> relation.type >> relation.targets;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(Reference)
Q_DECLARE_METATYPE(Relation)

ScreenReader::ScreenReader() : m_bus(QString())
{
    qDBusRegisterMetaType<Reference>();
    qDBusRegisterMetaType<QVector<Reference>>();
    qDBusRegisterMetaType<Relation>();
    qDBusRegisterMetaType<QVector<Relation>>();
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    m_sessionBus.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
    if (!m_sessionBus.waitForReadyRead(patienceMs))
        return;
    const QByteArray address = m_sessionBus.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    QDBusConnection session = QDBusConnection::connectToBus(QString::fromUtf8(address), "session");
    const QDBusReply<QString> reply = session.call(
        QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"));
    if (reply.isValid())
        m_bus = QDBusConnection::connectToBus(reply.value(), "accessibility");
}

ScreenReader::~ScreenReader()
{
    QDBusConnection::disconnectFromBus("accessibility");
    QDBusConnection::disconnectFromBus("session");
    m_sessionBus.terminate(); // the other bus and its registry end with it
    m_sessionBus.waitForFinished(patienceMs);
}

void ScreenReader::collect(const QString &service, const QDBusObjectPath &path, QVector<Widget> &found) const
{
    QDBusInterface object(service, path.path(), accessible, m_bus);
    object.setTimeout(answerMs);
    const QDBusReply<QString> role = object.call("GetRoleName");
    if (!role.isValid())
        return;
    found.append({role.value(), object.property("Name").toString(), service, path});
    const QDBusReply<QVector<Reference>> children = object.call("GetChildren");
    for (const Reference &child : children.value())
        collect(child.service, child.path, found);
}

QVector<ScreenReader::Widget> ScreenReader::widgets() const
{
    QVector<Widget> found;
    collect("org.a11y.atspi.Registry", QDBusObjectPath("/org/a11y/atspi/accessible/root"), found);
    return found;
}

QStringList ScreenReader::names(const QString &role) const
{
    QStringList list;
    for (const Widget &widget : widgets()) {
        if (widget.role == role)
            list += widget.name;
    }
    return list;
}

QString ScreenReader::labelOf(const QString &role, const QString &name) const
{
    for (const Widget &widget : widgets()) {
        if (widget.role != role || widget.name != name)
            continue;
        QDBusInterface object(widget.service, widget.path.path(), accessible, m_bus);
        const QDBusReply<QVector<Relation>> relations = object.call("GetRelationSet");
        for (const Relation &relation : relations.value()) {
            if (relation.type != labelledBy || relation.targets.isEmpty())
                continue;
            const Reference &label = relation.targets.first();
            return QDBusInterface(label.service, label.path.path(), accessible, m_bus)
                .property("Name")
                .toString();
        }
    }
    return {};
}

bool ScreenReader::activate(const QString &role, const QString &name) const
{
    return QTest::qWaitFor(
        [&] {
            for (const Widget &widget : widgets()) {
                if (widget.role != role || widget.name != name)
                    continue;
                // Whoever opens a dialog answers when it is closed: not waited for.
                QDBusMessage click = QDBusMessage::createMethodCall(widget.service, widget.path.path(),
                                                                    "org.a11y.atspi.Action", "DoAction");
                click << 0;
                m_bus.send(click);
                return true;
            }
            return false;
        },
        10000);
}
