#pragma once

// "Save as..." of the message log. Interface thread only.

#include "app/sort_list_ctrl.h"

#include <QString>

#include <string>

namespace marvolen {

// Writes the list's rows, in the order in which they are displayed, as log_text.h describes. path:
// native, UTF-8. False when the file can't be made or written.
bool ExportRows(const CSortListCtrl& list, const std::string& path);

// Asks the user for a file, "message.csv" at first, and exports the list to it. An existing file is
// overwritten only when the user agrees. A message box tells of a failure. Returns when the user
// has answered; events go on being handled meanwhile, and rows they add are exported as well.
void SaveLogAs(QWidget* parent, const CSortListCtrl& list);

}  // namespace marvolen
