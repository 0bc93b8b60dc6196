#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

/// Does something in one of the events that a conversion handles.
/// @param context     gone, nothing is done
/// @param conversion  converts before it returns
/// @return whether the action was through before the conversion was
inline bool duringConversion(QObject *context, const std::function<void()> &conversion,
                             const std::function<void()> &action)
{
    struct State {
        bool converting = true;
        bool done = false;
    };
    const auto state = std::make_shared<State>();
    QTimer::singleShot(0, context, [state, action] {
        if (!state->converting)
            return;
        action();
        state->done = true;
    });
    conversion();
    state->converting = false;
    return state->done;
}
