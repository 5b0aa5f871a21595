#include "platform/file_chooser.h"

#include <QFile>
#include <QFileDialog>

namespace marvolen {
namespace {

void SetUp(QFileDialog& dialog, const FileChooserOptions& options) {
    if (!options.title.isEmpty()) dialog.setWindowTitle(options.title);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilters(NameFilters(options.filters));
    dialog.setDefaultSuffix(options.defaultExtension);
}

std::optional<std::string> Run(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return QFile::encodeName(dialog.selectedFiles().first()).toStdString();
}

}  // namespace

// The toolkit takes the patterns from a filter's last parentheses, which stay hidden. "*.*" would
// be taken at its word, and leave out the files without a dot.
QStringList NameFilters(const QString& filters) {
    const QStringList pieces = filters.split(QLatin1Char('|'));
    QStringList names;
    for (qsizetype k = 0; k + 1 < pieces.size() && !pieces[k].isEmpty(); k += 2) {
        QStringList patterns = pieces[k + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts);
        patterns.replaceInStrings(QStringLiteral("*.*"), QStringLiteral("*"));
        names.append(QStringLiteral("%1(%2)").arg(pieces[k], patterns.join(QLatin1Char(' '))));
    }
    return names;
}

std::optional<std::string> ChooseFileToOpen(QWidget* parent, const FileChooserOptions& options) {
    QFileDialog dialog(parent);
    SetUp(dialog, options);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    return Run(dialog);
}

std::optional<std::string> ChooseFileToSave(QWidget* parent, const FileChooserOptions& options) {
    QFileDialog dialog(parent);
    SetUp(dialog, options);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !options.asksBeforeOverwriting);
    dialog.selectFile(options.initialName);
    return Run(dialog);
}

}  // namespace marvolen
