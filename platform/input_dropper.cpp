#include "platform/input_dropper.h"

#include "platform/ui_activity.h"

#include <QGuiApplication>

namespace marvolen {
namespace {

constexpr qint64 kTurnMilliseconds = 15;  // between two turns: a repaint of most screens

}  // namespace

InputDropper::InputDropper() {
    QCoreApplication::instance()->installEventFilter(this);
}

InputDropper::~InputDropper() {
    // What the window system still has for us; not everywhere does the first fetch it.
    QGuiApplication::sync();
    QCoreApplication::processEvents();
}

void InputDropper::GiveTurn() {
    if (sinceTurn.isValid() && sinceTurn.elapsed() < kTurnMilliseconds) return;
    QCoreApplication::processEvents();
    sinceTurn.start();
}

bool InputDropper::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
        case QEvent::Shortcut:
        case QEvent::ShortcutOverride:
        case QEvent::InputMethod:
        case QEvent::ContextMenu:
        case QEvent::NativeGesture:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
            return true;
        default:
            return IsInput(event->type());
    }
}

}  // namespace marvolen
