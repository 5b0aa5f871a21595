#include "settings/channel_setting_dlg.h"

#include "config/settings_file.h"
#include "platform/clipboard.h"
#include "platform/descriptor.h"
#include "platform/dialog_layout.h"
#include "platform/file_chooser.h"
#include "platform/ui_activity.h"
#include "res/resource_ids.h"
#include "settings/channel_page_dlg.h"
#include "settings/machine_property.h"

#include <QBoxLayout>
#include <QPushButton>

#include <algorithm>
#include <fcntl.h>
#include <new>
#include <optional>

namespace marvolen {
namespace {

constexpr QSize kDialogUnits(438, 263);

// A settings file, to load or to save.
FileChooserOptions SettingsFiles() {
    FileChooserOptions options;
    options.filters = QStringLiteral("Setting Files (*.rsf)|*.rsf|All Files|*.*||");
    options.defaultExtension = QStringLiteral("rsf");
    options.initialName = QStringLiteral("ChanInfo");
    options.asksBeforeOverwriting = false;
    return options;
}

// Asked without waiting, as a pipe that nobody writes to would have it.
bool CanBeRead(const std::string& path) {
    return Descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)).IsOpen();
}

}  // namespace

CChannelSettingDlg::CChannelSettingDlg(QWidget* parent) : CDialog(parent), channels(g_channelInfo) {
    setWindowTitle(QStringLiteral("Channel Setting"));
    MakeControls();
}

CChannelSettingDlg::~CChannelSettingDlg() {
    DestroyPages();
}

void CChannelSettingDlg::MakeControls() {
    auto* layout = MakeDialogLayout<QVBoxLayout>(this);
    layout->setSpacing(2 * kDialogSpacing);
    tabs = new CChannelTabCtrl(this);
    AddControl(tabs, IDC_SETTING_TABS, QStringLiteral("Channels"));
    connect(tabs, &CTabCtrl::selectionChanged, this, &CChannelSettingDlg::ShowPage);
    layout->addWidget(tabs, 1);

    auto* row = new QHBoxLayout;
    row->addWidget(MakeButton(IDC_SETTING_PASTE, QStringLiteral("Paste"),
                              QStringLiteral("Paste addresses from the clipboard"),
                              &CChannelSettingDlg::Paste));
    row->addWidget(MakeButton(IDC_SETTING_LOAD, QStringLiteral("Load..."),
                              QStringLiteral("Load... all settings from a file"),
                              &CChannelSettingDlg::Load));
    row->addWidget(MakeButton(IDC_SETTING_SAVE, QStringLiteral("Save..."),
                              QStringLiteral("Save... all settings to a file"),
                              &CChannelSettingDlg::Save));
    row->addStretch();
    row->addWidget(
        MakeButton(IDOK, QStringLiteral("OK"), QStringLiteral("OK"), &CChannelSettingDlg::accept));
    row->addWidget(MakeButton(IDCANCEL, QStringLiteral("Cancel"), QStringLiteral("Cancel"),
                              &CChannelSettingDlg::reject));
    layout->addLayout(row);
}

QPushButton* CChannelSettingDlg::MakeButton(int id, const QString& text,
                                            const QString& accessibleName,
                                            void (CChannelSettingDlg::*command)()) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false);
    AddControl(button, id, accessibleName);
    connect(button, &QPushButton::clicked, this, command);
    return button;
}

void CChannelSettingDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    channels = g_channelInfo;
    const bool complete = MakePages();
    FitScreen(*this, sizeHint().expandedTo(MapDialogUnits(kDialogUnits)));
    if (!complete) {
        return PostCommand(
            *this, [this] { MessageBox(QStringLiteral("A page can't be made: out of memory.")); });
    }
    tabs->SetCurSel(initialTab);
    ShowPage(initialTab);
}

// False when there is no memory for all of them.
bool CChannelSettingDlg::MakePages() {
    for (ChannelInfo& record : channels) {
        auto* page = new (std::nothrow) CChannelPageDlg(tabs, record, previewLink);
        if (!page) return false;
        page->CreateChild();
        page->hide();
        tabs->InsertItem(QStringLiteral("NET.%1").arg(tabs->GetItemCount() + 1), page);
    }
    return true;
}

// The pages commit here, before the caller looks at the table.
void CChannelSettingDlg::OnModalEnd(int result) {
    DestroyPages();
    CDialog::OnModalEnd(result);
}

void CChannelSettingDlg::DestroyPages() {
    previewLink.Close();
    for (int k = 0; k < tabs->GetItemCount(); ++k) {
        CChannelPageDlg* const page = tabs->GetPage(k);
        if (!page) continue;
        page->CommitToRecord();
        delete page;
    }
}

void CChannelSettingDlg::ShowPage(int sel) {
    previewLink.Close();
    for (int k = 0; k < tabs->GetItemCount(); ++k) {
        if (k == sel) continue;
        tabs->GetPage(k)->ClosePreview();
        tabs->GetPage(k)->hide();
    }
    CChannelPageDlg* const page = tabs->GetPage(sel);
    if (!page) return;
    page->setGeometry(tabs->DisplayRect());
    page->show();
    page->OpenPreview(*this);
}

void CChannelSettingDlg::Save() {
    const std::optional<std::string> path = ChooseFileToSave(this, SettingsFiles());
    if (!path) return;
    for (int k = 0; k < tabs->GetItemCount(); ++k) tabs->GetPage(k)->CommitToRecord();
    if (!WriteSettingsFile(*path, channels)) MessageBox(QStringLiteral("Unable To Save!"));
}

void CChannelSettingDlg::Load() {
    const std::optional<std::string> path = ChooseFileToOpen(this, SettingsFiles());
    if (!path || !CanBeRead(*path)) return;
    if (!ReadSettingsFile(*path, channels)) return MessageBox(QStringLiteral("Invalid File"));
    for (int k = 0; k < tabs->GetItemCount(); ++k) tabs->GetPage(k)->FillFromRecord();
}

void CChannelSettingDlg::Paste() {
    std::string text;
    const ClipboardRead read = GetClipboardText(text);
    if (!isVisible()) return;  // ended meanwhile: a message box would keep the program from its end
    if (read == ClipboardRead::CannotOpen) {
        return MessageBox(QStringLiteral("Open Clipboard Failed"));
    }
    if (read == ClipboardRead::NoText) return MessageBox(QStringLiteral("No data in clipboard"));
    text.resize(std::min(text.size(), text.find('\0')));  // the first NUL ends a clipboard's text
    if (!text.starts_with(kMachinePropertyHeader)) {
        return MessageBox(QStringLiteral("Clipboard data invalid"));
    }
    ApplyMachineProperties(std::string_view(text).substr(kMachinePropertyHeader.size()));
}

void CChannelSettingDlg::ApplyMachineProperties(std::string_view text) {
    const int first = tabs->GetCurSel();
    for (int k = first; k < tabs->GetItemCount() && !IsMachinePropertyEnd(text); ++k) {
        MachineProperty property;
        if (!TranslateBlock(property, text)) return MessageBox(QStringLiteral("Translate Failed!"));
        ShowPage(k);
        tabs->GetPage(k)->SetAddress(property.IPAddress, property.Port);
    }
}

}  // namespace marvolen
