#include "platform/dialog.h"

#include <QAbstractButton>
#include <QContextMenuEvent>
#include <QEventLoop>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMenu>
#include <QMessageBox>

namespace marvolen {
namespace {

// Doesn't look into dialogs and windows below parent: their controls are theirs.
QWidget* FindControl(const QWidget& parent, const QString& name) {
    for (QObject* const child : parent.children()) {
        auto* const widget = qobject_cast<QWidget*>(child);
        if (!widget || widget->isWindow()) continue;
        if (widget->objectName() == name) return widget;
        if (qobject_cast<CDialog*>(widget)) continue;
        if (QWidget* const found = FindControl(*widget, name)) return found;
    }
    return nullptr;
}

}  // namespace

int ControlId(const QWidget& control) {
    return control.objectName().toInt();
}

CDialog::CDialog(QWidget* parent) : QDialog(parent) {}

int CDialog::DoModal() {
    const int ending = Initialise() ? RunLoop() : result();
    OnModalEnd(ending);
    return ending;
}

// The toolkit makes a dialog that it runs modal to its program, and says so to the window manager.
// Without a window to be modal over it is an ordinary window with a loop of its own.
int CDialog::RunLoop() {
    if (parentWidget()) return exec();
    QEventLoop loop;
    connect(this, &QDialog::finished, &loop, &QEventLoop::quit);
    setResult(0);
    show();
    loop.exec();
    return result();
}

void CDialog::CreateModeless() {
    if (Initialise()) show();
}

void CDialog::CreateChild() {
    setWindowFlags(Qt::Widget);
    CreateModeless();
}

// False when OnInitDialog has ended the dialog already.
bool CDialog::Initialise() {
    if (initialised) return true;
    initialised = true;
    ended = false;
    OnInitDialog();
    return !ended;
}

void CDialog::EndDialog(int result) {
    ended = true;
    done(result);
}

void CDialog::AddControl(QWidget* control, int id, const QString& accessibleName) {
    control->setObjectName(QString::number(id));
    control->setAccessibleName(accessibleName);
}

QWidget* CDialog::GetDlgItem(int id) const {
    return FindControl(*this, QString::number(id));
}

QSize CDialog::MapDialogUnits(QSize units) const {
    const QFontMetrics metrics(font());
    return {units.width() * metrics.averageCharWidth() / 4, units.height() * metrics.height() / 8};
}

void CDialog::MessageBox(const QString& text) {
    ShowMessageBox(this, window()->windowTitle(), text);
}

void CDialog::AppendSystemMenu(int command, const QString& text) {
    systemMenu.push_back({command, text});
}

void CDialog::AppendSystemMenuSeparator() {
    systemMenu.push_back({});
}

void CDialog::ShowSystemMenu(const QPoint& globalPosition) {
    QMenu menu(this);
    QAction* restore = menu.addAction(tr("&Restore"), this, &QWidget::showNormal);
    restore->setEnabled(isMaximized() || isMinimized());
    menu.addAction(tr("Mi&nimize"), this, &QWidget::showMinimized);
    QAction* maximise = menu.addAction(tr("Ma&ximize"), this, &QWidget::showMaximized);
    maximise->setEnabled(!isMaximized());
    menu.addSeparator();
    menu.addAction(tr("&Close"), this, &QWidget::close);
    for (const SystemMenuItem& item : systemMenu) {
        if (item.command == 0) {
            menu.addSeparator();
        } else {
            menu.addAction(item.text)->setData(item.command);
        }
    }
    const QAction* chosen = menu.exec(globalPosition);
    const int command = chosen ? chosen->data().toInt() & ~0xF : 0;
    if (command != 0) Q_EMIT systemCommand(command);
}

void CDialog::contextMenuEvent(QContextMenuEvent* event) {
    if (systemMenu.empty()) {
        event->ignore();  // the window around this one may have a menu
    } else {
        ShowSystemMenu(event->globalPos());
    }
}

void CDialog::keyPressEvent(QKeyEvent* event) {
    if (!isWindow() && event->matches(QKeySequence::Cancel)) return event->ignore();
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* button = qobject_cast<QAbstractButton*>(focusWidget());
    if (enter && button && button->isEnabled()) {
        if (!event->isAutoRepeat()) button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

void CDialog::accept() {
    OnOK();
}

void CDialog::reject() {
    OnCancel();
}

void CDialog::OnInitDialog() {}

void CDialog::OnOK() {
    EndDialog(IDOK);
}

void CDialog::OnCancel() {
    EndDialog(IDCANCEL);
}

void CDialog::OnModalEnd(int) {}

void ShowMessageBox(QWidget* parent, const QString& title, const QString& text) {
    QMessageBox box(QMessageBox::NoIcon, title, text, QMessageBox::Ok, parent);
    box.exec();
}

}  // namespace marvolen
