#include "platform/dialog.h"

#include "platform/control.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>
#include <vector>

namespace marvolen {
namespace {

class ProbeDialog : public CDialog {
public:
    ProbeDialog() : button(new QPushButton(this)), field(new CStatic(this)) {
        AddControl(button, 1000, QStringLiteral("Start"));
        AddControl(field, 1008, QStringLiteral("NET.1"));
        field->setGeometry(0, 40, 50, 50);
    }

    QPushButton* const button;
    CStatic* const field;
    std::vector<WPARAM> commands;
    std::vector<int> systemCommands;
    int initialisations = 0;

protected:
    void OnInitDialog() override { ++initialisations; }
    void OnCommand(WPARAM wParam, LPARAM lParam) override {
        commands.push_back(wParam);
        CDialog::OnCommand(wParam, lParam);
    }
    void OnSysCommand(int command) override { systemCommands.push_back(command); }
};

TEST(Dialog, ControlsAreFoundByIdAndType) {
    const ProbeDialog dialog;
    EXPECT_EQ(dialog.GetDlgItem(1000), dialog.button);
    EXPECT_EQ(dialog.GetDlgItem<QPushButton>(1000), dialog.button);
    EXPECT_EQ(dialog.GetDlgItem<QLabel>(1000), nullptr);
    EXPECT_EQ(dialog.GetDlgItem(7), nullptr);
    EXPECT_EQ(dialog.button->accessibleName(), QStringLiteral("Start"));
    EXPECT_EQ(dialog.field->GetDlgCtrlID(), 1008);
    EXPECT_EQ(dialog.field->GetParentWnd(), static_cast<const CWnd*>(&dialog));
}

TEST(Dialog, ControlsOfDialogsAndWindowsInsideAreNotItsOwn) {
    ProbeDialog dialog;
    CDialog panel(&dialog);
    panel.setWindowFlags(Qt::Widget);
    QWidget group(&dialog);
    QLabel ofPanel(&panel), ofGroup(&group);
    CDialog popUp(&dialog);
    QLabel ofPopUp(&popUp);
    panel.AddControl(&ofPanel, 2000, QString());
    dialog.AddControl(&ofGroup, 2001, QString());
    popUp.AddControl(&ofPopUp, 2002, QString());
    dialog.AddControl(&panel, 2003, QString());

    EXPECT_EQ(dialog.GetDlgItem(2000), nullptr);
    EXPECT_EQ(panel.GetDlgItem(2000), &ofPanel);
    EXPECT_EQ(dialog.GetDlgItem(2001), &ofGroup);
    EXPECT_EQ(dialog.GetDlgItem(2002), nullptr);
    EXPECT_EQ(popUp.GetDlgItem(2002), &ofPopUp);
    EXPECT_EQ(dialog.GetDlgItem(2003), &panel);
}

TEST(Dialog, NotificationsCarryIdAndCode) {
    ProbeDialog dialog;
    dialog.CreateModeless();
    QTest::mouseClick(dialog.button, Qt::LeftButton);
    QTest::mouseClick(dialog.field, Qt::LeftButton);
    QTest::mouseClick(dialog.field, Qt::RightButton);
    QTest::mouseDClick(dialog.field, Qt::LeftButton);
    ASSERT_GE(dialog.commands.size(), 3U);
    EXPECT_EQ(dialog.commands[0], MakeCommand(1000, BN_CLICKED));
    EXPECT_EQ(dialog.commands[1], MakeCommand(1008, STN_CLICKED));
    EXPECT_EQ(dialog.commands.back(), MakeCommand(1008, STN_DBLCLK));
}

TEST(Dialog, PostedCommandsArriveLater) {
    ProbeDialog dialog;
    dialog.PostMessage(WM_COMMAND, MakeCommand(1000, BN_CLICKED), 0);
    dialog.PostMessage(WM_SYSCOMMAND, 0x13, 0);
    EXPECT_TRUE(dialog.commands.empty());
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog.commands, std::vector<WPARAM>{1000});
    EXPECT_EQ(dialog.systemCommands, std::vector<int>{0x10});
}

TEST(Dialog, EscapeAndCloseBoxEndAModalRun) {
    ProbeDialog dialog;
    QTimer::singleShot(0, &dialog, [&] { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    QTimer::singleShot(0, &dialog, [&] { dialog.close(); });
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_EQ(dialog.initialisations, 1);
}

TEST(Dialog, EndingFromOnInitDialogShowsNothing) {
    class Refusing : public CDialog {
    public:
        bool shown = false;

    protected:
        void OnInitDialog() override { EndDialog(77); }
        void showEvent(QShowEvent*) override { shown = true; }
    };
    Refusing modal;
    QTimer::singleShot(0, &modal, [&] { modal.EndDialog(-1); });  // should it run all the same
    EXPECT_EQ(modal.DoModal(), 77);
    EXPECT_FALSE(modal.shown);

    Refusing modeless;
    modeless.CreateModeless();
    EXPECT_FALSE(modeless.shown);
}

}  // namespace
}  // namespace marvolen
