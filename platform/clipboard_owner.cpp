#include "platform/clipboard_owner.h"

#include <QAbstractNativeEventFilter>
#include <QEventLoop>
#include <QGuiApplication>
#include <QLibrary>
#include <QTimer>
#include <QWindow>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace marvolen {
namespace {

// The X protocol's library is in the process with the toolkit's X platform, and isn't linked by us.
struct Xcb {
    explicit Xcb(QLibrary& library)
        : internAtom(Function<decltype(&xcb_intern_atom)>(library, "xcb_intern_atom")),
          internAtomReply(
              Function<decltype(&xcb_intern_atom_reply)>(library, "xcb_intern_atom_reply")),
          convertSelection(
              Function<decltype(&xcb_convert_selection)>(library, "xcb_convert_selection")),
          flush(Function<decltype(&xcb_flush)>(library, "xcb_flush")) {}

    bool IsThere() const { return internAtom && internAtomReply && convertSelection && flush; }

    xcb_atom_t Atom(xcb_connection_t* display, std::string_view name) const {
        const auto cookie =
            internAtom(display, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            internAtomReply(display, cookie, nullptr), &std::free);
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    const decltype(&xcb_intern_atom) internAtom;
    const decltype(&xcb_intern_atom_reply) internAtomReply;
    const decltype(&xcb_convert_selection) convertSelection;
    const decltype(&xcb_flush) flush;

private:
    template <typename Pointer>
    static Pointer Function(QLibrary& library, const char* name) {
        return reinterpret_cast<Pointer>(library.resolve(name));
    }
};

// Takes the answer that was asked for in the name of window out of the toolkit's events.
class AnswerFilter final : public QAbstractNativeEventFilter {
public:
    AnswerFilter(xcb_window_t itsWindow, QEventLoop& itsLoop) : window(itsWindow), loop(itsLoop) {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    ~AnswerFilter() override { QCoreApplication::instance()->removeNativeEventFilter(this); }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        if (type != "xcb_generic_event_t") return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        if ((event->response_type & 0x7F) != XCB_SELECTION_NOTIFY) return false;
        const auto* answer = static_cast<const xcb_selection_notify_event_t*>(message);
        if (answer->requestor != window) return false;
        loop.exit(1);
        return true;
    }

private:
    const xcb_window_t window;
    QEventLoop& loop;
};

}  // namespace

bool ClipboardOwnerAnswers(int patience) {
    const auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11) return true;
    xcb_connection_t* const display = x11->connection();
    if (!display) return true;  // a platform without a screen has the interface, but no server
    QLibrary library(QStringLiteral("xcb"), 1);
    const Xcb xcb(library);
    if (!xcb.IsThere()) return true;

    QWindow asker;
    asker.create();
    const auto window = static_cast<xcb_window_t>(asker.winId());
    const xcb_atom_t targets = xcb.Atom(display, "TARGETS");  // what it could give: a short list
    QEventLoop loop;
    const AnswerFilter filter(window, loop);
    QTimer::singleShot(patience, &loop, [&loop] { loop.exit(0); });
    xcb.convertSelection(display, window, xcb.Atom(display, "CLIPBOARD"), targets, targets,
                         XCB_CURRENT_TIME);
    xcb.flush(display);
    return loop.exec(QEventLoop::ExcludeUserInputEvents) == 1;
}

}  // namespace marvolen
