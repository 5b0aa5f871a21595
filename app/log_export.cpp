#include "app/log_export.h"

#include "app/log_text.h"
#include "platform/dialog.h"

#include <QFile>
#include <QFileDialog>

#include <optional>
#include <span>

namespace marvolen {
namespace {

// The file the user chose, nothing when he cancelled.
std::optional<std::string> ChooseLogFile(QWidget* parent) {
    QFileDialog dialog(parent);
    dialog.setWindowTitle(QStringLiteral("Save as"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // The last parentheses are the patterns and stay hidden: "*.*" would be taken at its word, and
    // leave out the files without a dot.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilters(
        {QStringLiteral("CVS Files (*.csv)(*.csv)"), QStringLiteral("All Files (*.*)(*)")});
    dialog.setDefaultSuffix(QStringLiteral("csv"));
    dialog.selectFile(QStringLiteral("message.csv"));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return QFile::encodeName(dialog.selectedFiles().first()).toStdString();
}

}  // namespace

bool ExportRows(const CSortListCtrl& list, const std::string& path) {
    return WriteLogFile(path, list.GetItemCount(), [&](int row) {
        return std::span<const std::string>(list.GetRowData(row)->texts);
    });
}

void SaveLogAs(QWidget* parent, const CSortListCtrl& list) {
    const std::optional<std::string> path = ChooseLogFile(parent);
    if (!path || ExportRows(list, *path)) return;
    ShowMessageBox(parent, parent ? parent->window()->windowTitle() : QString(),
                   QStringLiteral("Unable To Save!"));
}

}  // namespace marvolen
