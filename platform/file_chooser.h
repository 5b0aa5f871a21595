#pragma once

// The toolkit's dialogs for choosing a file, asked in the terms of the program's dialogs. Interface
// thread only. Events go on being handled while the user chooses.

#include <QString>
#include <QStringList>

#include <optional>
#include <string>

class QWidget;

namespace marvolen {

struct FileChooserOptions {
    QString title;  // empty: the toolkit's own

    // What is listed: pairs of a text and its patterns, each followed by a bar, and another bar at
    // the end: "DBT Files (*.dbt)|*.dbt|All Files (*.*)|*.*||". Patterns are separated by
    // semicolons; "*.*" is every file, with or without a dot. The first pair counts at first.
    QString filters;

    // What a name that is typed without a dot is completed by ("dbt"; empty: nothing).
    QString defaultExtension;

    // Saving only: the name proposed, and whether the user is asked before he takes a file that
    // exists.
    QString initialName;
    bool asksBeforeOverwriting = true;
};

// The name filters of the toolkit that FileChooserOptions::filters stands for.
QStringList NameFilters(const QString& filters);

// Each asks the user for a file and returns its native path (UTF-8, absolute), or nothing when he
// cancels. The file to open exists; of the file to save only its name is chosen, nothing is made or
// changed. parent may be null.
std::optional<std::string> ChooseFileToOpen(QWidget* parent, const FileChooserOptions& options);
std::optional<std::string> ChooseFileToSave(QWidget* parent, const FileChooserOptions& options);

}  // namespace marvolen
