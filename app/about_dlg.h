#pragma once

#include "platform/dialog.h"

namespace marvolen {

// The About box: the program's icon, name, version and date, and a "Close" button.
class CAboutDlg final : public CDialog {
public:
    explicit CAboutDlg(QWidget* parent);
};

}  // namespace marvolen
