#include "platform/accessible_control.h"

#include "platform/control.h"

#include <QAccessibleWidget>

namespace marvolen {
namespace {

// Name, description and value come from the widget's properties; here come role, state and press.
class AccessibleControl final : public QAccessibleWidget {
public:
    explicit AccessibleControl(CStatic& described) : QAccessibleWidget(&described) {}

    QAccessible::Role role() const override { return Control().AccessibleRole(); }

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        Control().AddAccessibleState(state);
        return state;
    }

    QStringList actionNames() const override {
        QStringList names = QAccessibleWidget::actionNames();
        if (Control().IsPressable()) names.prepend(pressAction());
        return names;
    }

    void doAction(const QString& name) override {
        if (name != pressAction()) return QAccessibleWidget::doAction(name);
        if (Control().IsPressable() && widget()->isEnabled()) Control().Press();
    }

private:
    CStatic& Control() const { return *qobject_cast<CStatic*>(widget()); }
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
