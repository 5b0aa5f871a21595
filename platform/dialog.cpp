#include "platform/dialog.h"

#include <QAbstractButton>
#include <QMessageBox>

namespace marvolen {

int ControlId(const QWidget& control) {
    return control.objectName().toInt();
}

CDialog::CDialog(QWidget* parent) : QDialog(parent) {}

int CDialog::DoModal() {
    Initialise();
    return exec();
}

void CDialog::CreateModeless() {
    Initialise();
    show();
}

void CDialog::Initialise() {
    if (initialised) return;
    initialised = true;
    OnInitDialog();
}

void CDialog::EndDialog(int result) {
    done(result);
}

void CDialog::AddControl(QWidget* control, int id, const QString& accessibleName) {
    control->setObjectName(QString::number(id));
    control->setAccessibleName(accessibleName);
    if (auto* button = qobject_cast<QAbstractButton*>(control)) {
        connect(button, &QAbstractButton::clicked, this,
                [this, button] { SendCommand(*button, BN_CLICKED); });
    }
}

QWidget* CDialog::GetDlgItem(int id) const {
    return findChild<QWidget*>(QString::number(id));
}

void CDialog::SendCommand(QWidget& control, std::uint32_t code) {
    OnCommand(MakeCommand(ControlId(control), code), reinterpret_cast<LPARAM>(&control));
}

void CDialog::MessageBox(const QString& text) {
    ShowMessageBox(this, windowTitle(), text);
}

void CDialog::reject() {
    OnCommand(MakeCommand(IDCANCEL, BN_CLICKED), 0);
}

void CDialog::OnInitDialog() {}

void CDialog::OnCommand(WPARAM wParam, LPARAM) {
    const int id = CommandId(wParam);
    if (CommandCode(wParam) == BN_CLICKED && (id == IDOK || id == IDCANCEL)) EndDialog(id);
}

void CDialog::OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COMMAND) OnCommand(wParam, lParam);
}

void ShowMessageBox(QWidget* parent, const QString& title, const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Ok, parent);
    box.exec();
}

}  // namespace marvolen
