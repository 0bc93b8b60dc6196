#pragma once

#include "freshwindow.h"
#include "rng.h"

#include <QStringList>

#include <vector>

/// Small photographs and files that are none. Actions may overwrite them, so every sequence has its own.
class GestureFiles
{
public:
    GestureFiles();

    /// Paths of photographs that load, then of files that do not.
    const QStringList &photographs() const { return m_photographs; }
    const QStringList &noPhotographs() const { return m_noPhotographs; }
    QString filePath(const QString &name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
    QStringList m_photographs;
    QStringList m_noPhotographs;
};

/// Answers every modal window at random, from outside; after a few tries on the same one it is closed.
class RandomAnswers : public QObject
{
    Q_OBJECT

public:
    RandomAnswers(const GestureFiles &files, unsigned seed);

private:
    void poll();
    void answer(QWidget *window);
    int upTo(int last) { return m_rng.between(0, last); }

    const GestureFiles &m_files;
    Rng m_rng;
    QTimer m_timer;
    QVector<QWidget *> m_answering; // windows whose answer has not returned; it may have opened the next one
    QPointer<QWidget> m_last;
    int m_tries = 0; // for the last window
    int m_answers = 0;
};

/// Does something to a window, at random but the same for the same seed.
class RandomGestures : public QObject
{
    Q_OBJECT

public:
    RandomGestures(FreshWindow &window, const GestureFiles &files, unsigned seed);

    /// @return what was done
    QString performOne();

    /// Whether the photograph must still be the one in its file: no batch run, and no dialog in which a random
    /// answer may have saved something over it.
    bool leftTheFileAlone() const { return m_leftTheFileAlone; }

private:
    struct Action {
        const char *name;
        int weight;
        void (RandomGestures::*perform)();
    };

    bool oneIn(int n) { return m_rng.oneIn(n); }
    int upTo(int last) { return between(0, last); }
    int between(int first, int last) { return m_rng.between(first, last); }
    template <typename List>
    typename List::value_type oneOf(const List &list)
    {
        return m_rng.of(list);
    }
    int anyNumber();
    QPoint anyPosition();
    Qt::MouseButtons anyButtons();
    QPushButton *stepButton();
    void sendMouse(QEvent::Type type, QWidget *widget, QPoint position, Qt::MouseButton button,
                   Qt::MouseButtons held);

    void mousePress();
    void mouseMove();
    void mouseRelease();
    void wholeDrag();
    void previewMouse();
    void pictureSignal();
    void type();
    void pressButton();
    void releaseButton();
    void clickButton();
    void tick();
    void openPhotograph();
    void openNoPhotograph();
    void drop();
    void toggleView();
    void reset();
    void modalAction();
    void batch();
    void windows();
    void values();
    void convert();
    void eventsLater();
    void handleEvents();

    FreshWindow &m_window;
    const GestureFiles &m_files;
    Rng m_rng;
    std::vector<Action> m_actions;
    int m_later = 0; // actions that wait for the event loop
    int m_nested = 0;
    bool m_leftTheFileAlone = true;
};
