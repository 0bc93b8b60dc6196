#pragma once

#include "patience.h"
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QQueue>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <functional>

class QFileDialog;

/// Answers the modal windows that a test is about to open, from outside, as a user would.
///
///     ModalDriver driver;
///     driver.expect<QFileDialog>([&](QFileDialog *picker) { pickPath(picker, path); });
///     driver.expectMessage({"title", "text"});
///     QTest::mouseClick(button, Qt::LeftButton); // opens both, one after the other
///     QVERIFY(driver.done());
///
/// The modal windows must come in the announced order; one may open inside another. As long as the driver
/// lives, a window that nobody announced, one of another type, and one that its action leaves open is a
/// failure and is closed at once, so that a broken program fails the test instead of hanging it. Without any
/// announcement the driver proves that no modal window opens.
class ModalDriver : public QObject
{
    Q_OBJECT

public:
    /// What a message box must look like, and the answer it gets.
    struct Message {
        QString title;
        QString text;
        QMessageBox::Icon icon = QMessageBox::Information;
        QMessageBox::StandardButtons buttons = QMessageBox::Ok;
        QMessageBox::StandardButton press = QMessageBox::Ok; ///< NoButton: closed by its title bar
        QMessageBox::StandardButton defaultButton = QMessageBox::NoButton; ///< NoButton: whichever
    };

    /// @param timeLimitMs  how long done() waits for announced windows, milliseconds
    explicit ModalDriver(int timeLimitMs = patienceMs);
    /// Fails the running test unless done() was asked or all is well.
    ~ModalDriver() override;

    /// Announces a window of type Dialog.
    /// @param act  called with the open window; checks what it likes and has to close it. It runs in the
    /// window's
    ///             own event loop and may open further announced windows.
    template <typename Dialog>
    void expect(std::function<void(Dialog *)> act)
    {
        m_expected.enqueue({Dialog::staticMetaObject.className(), [act](QWidget *window) {
                                auto *dialog = qobject_cast<Dialog *>(window);
                                if (dialog)
                                    act(dialog);
                                return dialog != nullptr;
                            }});
    }

    /// Announces a message box, checks it and presses one of its buttons.
    void expectMessage(const Message &message);

    /// Waits for the announced windows that have not come yet.
    /// @return whether all came and nothing went wrong; otherwise prints the reasons
    bool done();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Expectation {
        QString type;
        std::function<bool(QWidget *)> act; // false: of another type
    };

    void poll();
    void answer(QWidget *window);
    void check(const QMessageBox &box, const Message &message);
    void fail(const QString &reason);

    QTimer m_timer;
    QQueue<Expectation> m_expected;
    QVector<QPointer<QWidget>> m_seen; // open windows that have been answered or are about to be
    QStringList m_failures;
    int m_timeLimitMs;
    int m_inactivePolls = 0; // how often the newest window was found waiting for its activation
    int m_acting = 0;
    bool m_asked = false;
};

/// Types paths into an open file dialog of the toolkit's own kind and presses Return. One that cannot be
/// picked leaves the dialog open. In save mode the path need not exist.
void pickPaths(QFileDialog *picker, const QStringList &paths);
void pickPath(QFileDialog *picker, const QString &path);
