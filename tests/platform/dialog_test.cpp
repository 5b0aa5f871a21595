#include "platform/dialog.h"

#include "platform/control.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <string>

namespace marvolen {
namespace {

// Writes down what happens to it.
struct ProbeDialog : CDialog {
    using CDialog::CDialog;
    std::string events;       // s: shown, O: OnOK, C: OnCancel, then the result of a modal run
    int endsAtOnceWith = -1;  // in OnInitDialog

    void OnInitDialog() override {
        if (endsAtOnceWith >= 0) EndDialog(endsAtOnceWith);
    }
    void showEvent(QShowEvent*) override { events += 's'; }
    void OnOK() override {
        events += 'O';
        CDialog::OnOK();
    }
    void OnCancel() override {
        events += 'C';
        CDialog::OnCancel();
    }
    void OnModalEnd(int result) override { events += std::to_string(result); }
};

TEST(Dialog, EveryEndRunsItsHandlerAndThenTheHook) {
    struct {
        void (*end)(CDialog&);
        const char* events;
        int result;
    } const cases[] = {
        {[](CDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }, "sC2", IDCANCEL},
        {[](CDialog& dialog) { dialog.close(); }, "sC2", IDCANCEL},
        {[](CDialog& dialog) { dialog.accept(); }, "sO1", IDOK},
        {[](CDialog& dialog) { dialog.EndDialog(7); }, "s7", 7},
    };
    for (const auto& each : cases) {
        ProbeDialog dialog;
        QTimer::singleShot(0, &dialog, [&] { each.end(dialog); });
        EXPECT_EQ(dialog.DoModal(), each.result);
        EXPECT_EQ(dialog.events, each.events);
    }
    ProbeDialog unseen;
    unseen.endsAtOnceWith = 77;
    QTimer::singleShot(0, &unseen, [&] { unseen.EndDialog(8); });  // should it run all the same
    EXPECT_EQ(unseen.DoModal(), 77);
    EXPECT_EQ(unseen.events, "77");
}

TEST(Dialog, ChildrenLeaveEscapeToItAndKeepTheirControls) {
    ProbeDialog outer;
    QWidget group(&outer);
    QLabel ofOuter(&group);
    outer.CreateModeless();
    ProbeDialog child(&outer), popUp(&outer);
    child.CreateChild();
    QPushButton ofChild(&child);
    QLabel ofPopUp(&popUp);
    child.AddControl(&ofChild, 1000, QStringLiteral("Start"));
    outer.AddControl(&ofOuter, 1001, QString());
    popUp.AddControl(&ofPopUp, 1002, QString());
    EXPECT_EQ(outer.GetDlgItem(1000), nullptr);
    EXPECT_EQ(outer.GetDlgItem(1002), nullptr);
    EXPECT_EQ(outer.GetDlgItem<QLabel>(1001), &ofOuter);
    EXPECT_EQ(outer.GetDlgItem<QPushButton>(1001), nullptr);
    EXPECT_EQ(child.GetDlgItem(1000), &ofChild);
    EXPECT_EQ(ofChild.accessibleName(), QStringLiteral("Start"));

    QTest::keyClick(&ofChild, Qt::Key_Escape);
    EXPECT_EQ(child.events, "s");
    EXPECT_TRUE(child.isVisibleTo(&outer));
    EXPECT_EQ(outer.events, "sC");
    EXPECT_FALSE(outer.isVisible());
}

TEST(Static, IsClickedByMouseOrAssistiveTool) {
    struct Pane : CStatic {
        QAccessible::Role AccessibleRole() const override { return QAccessible::ListItem; }
        void AddAccessibleState(QAccessible::State& state) const override { state.selected = true; }
    } pane;
    pane.setAccessibleName(QStringLiteral("NET.1 Gate"));
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(&pane);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->role(), QAccessible::ListItem);
    EXPECT_TRUE(seen->state().selected);
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("NET.1 Gate"));
    QAccessibleActionInterface& actions = *seen->actionInterface();
    const QString press = QAccessibleActionInterface::pressAction();
    EXPECT_FALSE(actions.actionNames().contains(press)) << "nobody listens";

    std::string heard;
    QObject::connect(&pane, &CStatic::clicked, &pane, [&] { heard += 'c'; });
    QObject::connect(&pane, &CStatic::doubleClicked, &pane, [&] { heard += 'd'; });
    QTest::mouseClick(&pane, Qt::RightButton);
    EXPECT_EQ(heard, "");
    QTest::mouseClick(&pane, Qt::LeftButton);
    EXPECT_EQ(heard, "c");
    EXPECT_TRUE(actions.actionNames().contains(press));
    actions.doAction(press);
    EXPECT_EQ(heard, "cc");
    {
        QDialog modal;
        modal.setModal(true);
        modal.show();
        actions.doAction(press);
        EXPECT_EQ(heard, "cc") << "pressed below a modal dialog";
        pane.setParent(&modal);
        actions.doAction(press);
        EXPECT_EQ(heard, "ccc");
        pane.setParent(nullptr);
    }
    QTest::mouseDClick(&pane, Qt::LeftButton);
    EXPECT_EQ(heard.back(), 'd');
    heard.clear();
    pane.setEnabled(false);
    actions.doAction(press);
    EXPECT_EQ(heard, "");
}

}  // namespace
}  // namespace marvolen
