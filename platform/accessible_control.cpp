#include "platform/accessible_control.h"

#include "platform/control.h"

#include <QAccessibleWidget>
#include <QApplication>

namespace marvolen {
namespace {

// Whether a modal window that the control isn't part of keeps its clicks away.
bool IsBlocked(const QWidget& control) {
    const QWidget* const modal = QApplication::activeModalWidget();
    if (!modal) return false;
    for (const QWidget* around = &control; around; around = around->parentWidget()) {
        if (around == modal) return false;
    }
    return true;
}

// Name, description and value come from the widget's properties; here come role, state and press.
// What is asked while the control is being destroyed is answered as for any widget.
class AccessibleControl final : public QAccessibleWidget {
public:
    explicit AccessibleControl(CStatic& described) : QAccessibleWidget(&described) {}

    QAccessible::Role role() const override {
        const CStatic* const control = Control();
        return control ? control->AccessibleRole() : QAccessibleWidget::role();
    }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        if (const CStatic* const control = Control()) control->AddAccessibleState(state);
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        const CStatic* const control = Control();
        if (control && control->IsPressable()) names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (name != pressAction()) return QAccessibleWidget::doAction(name);
        CStatic* const control = Control();
        if (!control || !control->IsPressable()) return;
        if (control->isEnabled() && !IsBlocked(*control)) control->Press();
    }

private:
    CStatic* Control() const { return qobject_cast<CStatic*>(object()); }
};

QAccessibleInterface* Describe(const QString&, QObject* object) {
    auto* control = qobject_cast<CStatic*>(object);
    return control ? new AccessibleControl(*control) : nullptr;
}

}  // namespace

void DescribeControlsToAssistiveTools() {
    static const bool installed = [] {
        QAccessible::installFactory(Describe);
        return true;
    }();
    static_cast<void>(installed);
}

}  // namespace marvolen
