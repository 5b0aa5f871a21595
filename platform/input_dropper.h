#pragma once

// For work that keeps the interface thread for longer than a user waits.

#include <QElapsedTimer>
#include <QObject>

namespace marvolen {

// While one lives, keys, mouse, wheel and touch do nothing: what the user does meanwhile is
// dropped, instead of reaching the windows when the work is over. Interface thread.
class InputDropper final : public QObject {
public:
    InputDropper();

    // Takes what the user has done up to now, so that it isn't delivered behind.
    ~InputDropper() override;

    // To be called now and then within the work: windows are repainted, timers tick, messages and
    // signals are handled. Costs next to nothing when the last turn was just now.
    void GiveTurn();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    QElapsedTimer sinceTurn;
};

}  // namespace marvolen
