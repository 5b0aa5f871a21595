#include "platform/dialog.h"

#include "platform/control.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace marvolen {
namespace {

// Writes down how it ends.
class ProbeDialog : public CDialog {
public:
    using CDialog::CDialog;
    std::string ends;  // O: OnOK, C: OnCancel, m: the end of a modal run
    int modalResult = 0;

protected:
    void OnOK() override {
        ends += 'O';
        CDialog::OnOK();
    }
    void OnCancel() override {
        ends += 'C';
        CDialog::OnCancel();
    }
    void OnModalEnd(int result) override {
        ends += 'm';
        modalResult = result;
    }
};

TEST(Dialog, ControlsOfDialogsAndWindowsInsideAreNotItsOwn) {
    CDialog dialog;
    CDialog panel(&dialog);
    panel.setWindowFlags(Qt::Widget);
    QWidget group(&dialog);
    QLabel ofPanel(&panel);
    CStatic ofGroup(&group);
    CDialog popUp(&dialog);
    QLabel ofPopUp(&popUp);
    panel.AddControl(&ofPanel, 2000, QString());
    dialog.AddControl(&ofGroup, 2001, QStringLiteral("NET.1"));
    popUp.AddControl(&ofPopUp, 2002, QString());
    dialog.AddControl(&panel, 2003, QString());

    EXPECT_EQ(dialog.GetDlgItem(2000), nullptr);
    EXPECT_EQ(panel.GetDlgItem(2000), &ofPanel);
    EXPECT_EQ(dialog.GetDlgItem<CStatic>(2001), &ofGroup);
    EXPECT_EQ(dialog.GetDlgItem<QLabel>(2001), nullptr);
    EXPECT_EQ(ofGroup.GetDlgCtrlID(), 2001);
    EXPECT_EQ(ofGroup.accessibleName(), QStringLiteral("NET.1"));
    EXPECT_EQ(ofGroup.GetParentWnd(), static_cast<const CWnd*>(&dialog));
    EXPECT_EQ(dialog.GetDlgItem(2002), nullptr);
    EXPECT_EQ(popUp.GetDlgItem(2002), &ofPopUp);
    EXPECT_EQ(dialog.GetDlgItem(2003), &panel);
}

TEST(Dialog, EveryEndRunsItsHandlerAndThenTheHook) {
    struct {
        void (*end)(CDialog&);
        const char* ends;
        int result;
    } const cases[] = {
        {[](CDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, "Cm", IDCANCEL},
        {[](CDialog& dialog) { dialog.close(); }, "Cm", IDCANCEL},
        {[](CDialog& dialog) { dialog.accept(); }, "Om", IDOK},
        {[](CDialog& dialog) { dialog.EndDialog(7); }, "m", 7},
    };
    for (const auto& each : cases) {
        ProbeDialog dialog;
        QTimer::singleShot(0, &dialog, [&] { each.end(dialog); });
        EXPECT_EQ(dialog.DoModal(), each.result);
        EXPECT_EQ(dialog.ends, each.ends);
        EXPECT_EQ(dialog.modalResult, each.result);
    }
}

TEST(Dialog, EndingFromOnInitDialogShowsNothing) {
    class Refusing : public ProbeDialog {
    public:
        bool shown = false;

    protected:
        void OnInitDialog() override { EndDialog(77); }
        void showEvent(QShowEvent*) override { shown = true; }
    };
    Refusing modal;
    QTimer::singleShot(0, &modal, [&] { modal.EndDialog(-1); });  // should it run all the same
    EXPECT_EQ(modal.DoModal(), 77);
    EXPECT_EQ(modal.modalResult, 77);
    EXPECT_FALSE(modal.shown);

    Refusing modeless;
    modeless.CreateModeless();
    EXPECT_FALSE(modeless.shown);
}

TEST(Dialog, EscapeInAChildIsForTheDialogAround) {
    ProbeDialog outer;
    outer.CreateModeless();
    ProbeDialog child(&outer);
    child.CreateChild();
    QPushButton button(&child);
    EXPECT_FALSE(child.isWindow());
    QTest::keyClick(&button, Qt::Key_Escape);
    EXPECT_EQ(child.ends, "");
    EXPECT_TRUE(child.isVisibleTo(&outer));
    EXPECT_EQ(outer.ends, "C");
    EXPECT_FALSE(outer.isVisible());
}

TEST(Static, SaysWhenItIsClickedByMouseOrAssistiveTool) {
    CDialog dialog;
    CStatic control(&dialog);
    control.resize(50, 50);
    dialog.CreateModeless();
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&control);
    ASSERT_NE(seen, nullptr);
    const QString press = QAccessibleActionInterface::pressAction();
    EXPECT_FALSE(seen->actionInterface()->actionNames().contains(press)) << "nobody listens";

    std::string heard;
    QObject::connect(&control, &CStatic::clicked, &dialog, [&] { heard += 'c'; });
    QObject::connect(&control, &CStatic::doubleClicked, &dialog, [&] { heard += 'd'; });
    QTest::mouseClick(&control, Qt::RightButton);
    EXPECT_EQ(heard, "");
    QTest::mouseClick(&control, Qt::LeftButton);
    EXPECT_EQ(heard, "c");
    QTest::mouseDClick(&control, Qt::LeftButton);
    EXPECT_EQ(heard.back(), 'd');
    heard.clear();
    ASSERT_TRUE(seen->actionInterface()->actionNames().contains(press));
    seen->actionInterface()->doAction(press);
    EXPECT_EQ(heard, "c");
    control.setEnabled(false);
    seen->actionInterface()->doAction(press);
    EXPECT_EQ(heard, "c");
}

TEST(Static, DescribesItselfToAssistiveTools) {
    class Pane : public CStatic {
        QAccessible::Role AccessibleRole() const override { return QAccessible::ListItem; }
        void AddAccessibleState(QAccessible::State& state) const override { state.selected = true; }
    };
    Pane pane;
    pane.setAccessibleName(QStringLiteral("NET.1 Gate"));
    const QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&pane);
    EXPECT_EQ(seen->role(), QAccessible::ListItem);
    EXPECT_TRUE(seen->state().selected);
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("NET.1 Gate"));
}

}  // namespace
}  // namespace marvolen
