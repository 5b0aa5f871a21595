#include "app/log_export.h"

#include "app/log_text.h"
#include "platform/dialog.h"
#include "platform/file_chooser.h"

#include <optional>
#include <span>

namespace marvolen {
namespace {

// The file the user chose, nothing when he cancelled.
std::optional<std::string> ChooseLogFile(QWidget* parent) {
    FileChooserOptions options;
    options.title = QStringLiteral("Save as");
    options.filters = QStringLiteral("CVS Files (*.csv)|*.csv|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("csv");
    options.initialName = QStringLiteral("message.csv");
    return ChooseFileToSave(parent, options);
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
