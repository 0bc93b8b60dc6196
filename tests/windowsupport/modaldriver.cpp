#include "modaldriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDebug>
#include <QDialog>
#include <QElapsedTimer>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

namespace
{

constexpr int pollIntervalMs = 5;
constexpr int inactivePollsLimit = 10;

QString describe(const QWidget &window)
{
    const auto *box = qobject_cast<const QMessageBox *>(&window);
    return QStringLiteral("%1 \"%2\"%3")
        .arg(QString::fromLatin1(window.metaObject()->className()), window.windowTitle(),
             box ? QStringLiteral(" (%1)").arg(box->text()) : QString());
}

template <typename Value>
QString printed(const Value &value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

void forceClosed(QWidget *window)
{
    if (auto *dialog = qobject_cast<QDialog *>(window))
        dialog->done(QDialog::Rejected);
    else
        window->close();
}

} // namespace

ModalDriver::ModalDriver(int timeLimitMs) : m_timeLimitMs(timeLimitMs)
{
    connect(&m_timer, &QTimer::timeout, this, &ModalDriver::poll);
    m_timer.start(pollIntervalMs);
}

ModalDriver::~ModalDriver()
{
    if (!m_asked && !done())
        QTest::qFail("modal windows did not come as announced", __FILE__, __LINE__);
}

void ModalDriver::expectMessage(const Message &message)
{
    expect<QMessageBox>([this, message](QMessageBox *box) {
        check(*box, message);
        if (message.press == QMessageBox::NoButton)
            box->close();
        else if (QAbstractButton *button = box->button(message.press))
            QTest::mouseClick(button, Qt::LeftButton);
    });
}

bool ModalDriver::done()
{
    m_asked = true;
    QElapsedTimer waiting;
    waiting.start();
    while ((!m_expected.isEmpty() || m_acting > 0) && !waiting.hasExpired(m_timeLimitMs))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); // the timer ends each wait
    for (const Expectation &missing : m_expected)
        fail(QStringLiteral("no %1 opened").arg(missing.type));
    m_expected.clear();
    for (const QString &failure : m_failures)
        qWarning("%s", qUtf8Printable(failure));
    return m_failures.isEmpty();
}

bool ModalDriver::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Hide) { // the same window may be run again
        watched->removeEventFilter(this);
        m_seen.removeAll(static_cast<QWidget *>(watched));
    }
    return QObject::eventFilter(watched, event);
}

void ModalDriver::poll()
{
    QWidget *window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || m_seen.contains(window))
        return;
    if (!window->isActiveWindow() && m_inactivePolls < inactivePollsLimit) {
        if (++m_inactivePolls == inactivePollsLimit)
            QApplication::setActiveWindow(window); // without a window manager nobody else may do it
        return;
    }
    m_inactivePolls = 0;
    m_seen.append(window);
    window->installEventFilter(this);
    // A timer does not fire inside its own slot, but the action may open a window that must be answered.
    QMetaObject::invokeMethod(
        this,
        [this, window = QPointer<QWidget>(window)] {
            if (window)
                answer(window);
        },
        Qt::QueuedConnection);
}

void ModalDriver::answer(QWidget *window)
{
    const QPointer<QWidget> guard(window);
    const QString name = describe(*window);
    if (m_expected.isEmpty()) {
        fail(QStringLiteral("%1 opened unannounced").arg(name));
    } else {
        const Expectation expected = m_expected.dequeue();
        ++m_acting;
        if (!expected.act(window))
            fail(QStringLiteral("%1 opened instead of a %2").arg(name, expected.type));
        --m_acting;
        if (guard && guard->isVisible())
            fail(QStringLiteral("%1 was left open").arg(name));
    }
    if (guard && guard->isVisible())
        forceClosed(guard);
}

void ModalDriver::check(const QMessageBox &box, const Message &message)
{
    const auto compare = [this](const char *what, const auto &actual, const auto &expected) {
        if (actual != expected)
            fail(QStringLiteral("the message box has the %1 %2, not %3")
                     .arg(QString::fromLatin1(what), printed(actual), printed(expected)));
    };
    compare("title", box.windowTitle(), message.title);
    compare("text", box.text(), message.text);
    compare("icon", box.icon(), message.icon);
    compare("buttons", box.standardButtons(), message.buttons);
    if (message.defaultButton != QMessageBox::NoButton)
        compare("default button", box.standardButton(box.defaultButton()), message.defaultButton);
}

void ModalDriver::fail(const QString &reason)
{
    m_failures.append(reason);
}

void pickPaths(QFileDialog *picker, const QStringList &paths)
{
    auto *edit = picker->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    if (!edit)
        return;
    edit->setText(paths.size() == 1
                      ? paths.first()
                      : QLatin1Char('"') + paths.join(QStringLiteral("\" \"")) + QLatin1Char('"'));
    QTest::keyClick(edit, Qt::Key_Return);
}

void pickPath(QFileDialog *picker, const QString &path)
{
    pickPaths(picker, {path});
}
