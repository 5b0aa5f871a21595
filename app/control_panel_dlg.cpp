#include "app/control_panel_dlg.h"

#include "platform/dialog_layout.h"
#include "res/resource_ids.h"
#include "res/resources.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyleOptionFocusRect>

#include <algorithm>

namespace marvolen {
namespace {

constexpr QSize kTemplateUnits(135, 421);  // dialog units
constexpr QSize kLogoSize(90, 90);

struct ViewButton {
    ViewMode view;
    int id;
    const char* text;
};
constexpr ViewButton kViewButtons[] = {{ViewMode::One, IDC_VIEW_1, "1"},
                                       {ViewMode::Four, IDC_VIEW_4, "4"},
                                       {ViewMode::Sixteen, IDC_VIEW_16, "16"}};

}  // namespace

CLogoBox::CLogoBox(QWidget* parent) : CStatic(parent) {
    setFixedSize(kLogoSize);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(QStringLiteral("About Marvolen"));
}

QSize CLogoBox::sizeHint() const {
    return kLogoSize;
}

void CLogoBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, LoadImage(IDB_LOGO, kLogoSize, devicePixelRatioF()));
    if (!hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.backgroundColor = palette().color(QPalette::Window);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

void CLogoBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return ||
        event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) Press();
    } else {
        CStatic::keyPressEvent(event);
    }
}

void CLogoBox::focusInEvent(QFocusEvent* event) {
    CStatic::focusInEvent(event);
    update();
}

void CLogoBox::focusOutEvent(QFocusEvent* event) {
    CStatic::focusOutEvent(event);
    update();
}

CControlPanelDlg::CControlPanelDlg(CDialog* itsMainWindow)
    : CDialog(itsMainWindow), mainWindow(*itsMainWindow) {
    setMouseTracking(true);
    auto* groups = MakeDialogLayout<QVBoxLayout>(this);
    groups->addWidget(MakeRecordingGroup());
    groups->addWidget(MakeManagementGroup());
    groups->addWidget(MakeMessageGroup(), 1);
    groups->addWidget(MakePageGroup());
    groups->addWidget(MakeButton(IDC_EXIT, QStringLiteral("Exit"), QStringLiteral("Exit"),
                                 &CControlPanelDlg::exitRequested));
}

QPushButton* CControlPanelDlg::MakeButton(int id, const QString& text,
                                          const QString& accessibleName,
                                          void (CControlPanelDlg::*command)()) {
    QPushButton* button = MakePlainButton(id, text, accessibleName);
    connect(button, &QPushButton::clicked, this, command);
    return button;
}

QPushButton* CControlPanelDlg::MakePlainButton(int id, const QString& text,
                                               const QString& accessibleName) {
    auto* button = new QPushButton(text, this);
    // Enter must never start a recording that nobody aimed at.
    button->setAutoDefault(false);
    AddControl(button, id, accessibleName);
    return button;
}

QGroupBox* CControlPanelDlg::MakeRecordingGroup() {
    auto* group = new QGroupBox(QStringLiteral("Recording"), this);
    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(kDialogSpacing);
    recordToggle = MakeButton(IDC_RECORD_TOGGLE, QStringLiteral("Start"), QString(),
                              &CControlPanelDlg::toggleRecordingRequested);
    ShowRecording(false);
    buttons->addWidget(recordToggle);
    buttons->addWidget(MakeButton(IDC_STOP_ALL, QStringLiteral("Stop All"),
                                  QStringLiteral("Stop All: stop recording all channels"),
                                  &CControlPanelDlg::stopAllRequested));
    buttons->addWidget(MakeButton(IDC_START_ALL, QStringLiteral("Start All"),
                                  QStringLiteral("Start All: record all channels"),
                                  &CControlPanelDlg::startAllRequested));
    buttons->addStretch();
    auto* logo = new CLogoBox(this);
    AddControl(logo, IDC_LOGO, QStringLiteral("About Marvolen"));
    connect(logo, &CLogoBox::clicked, this, &CControlPanelDlg::aboutRequested);
    auto* layout = MakeDialogLayout<QHBoxLayout>(group);
    layout->setSpacing(2 * kDialogSpacing);
    layout->addLayout(buttons, 1);
    layout->addWidget(logo, 0, Qt::AlignTop);
    return group;
}

QGroupBox* CControlPanelDlg::MakeManagementGroup() {
    auto* group = new QGroupBox(QStringLiteral("Management"), this);
    auto* layout = MakeDialogLayout<QHBoxLayout>(group);
    QPushButton* setting = MakeButton(IDC_SETTING, QStringLiteral("Setting ..."),
                                      QStringLiteral("Setting ... for the channels"),
                                      &CControlPanelDlg::settingRequested);
    QPushButton* playback = MakeButton(IDC_PLAYBACK, QStringLiteral("Playback ..."),
                                       QStringLiteral("Playback ... of recordings"),
                                       &CControlPanelDlg::playbackRequested);
    layout->addWidget(setting);
    layout->addWidget(playback);
    return group;
}

QGroupBox* CControlPanelDlg::MakeMessageGroup() {
    auto* group = new QGroupBox(QStringLiteral("Message"), this);
    messageList = new CSortListCtrl(this);
    AddControl(messageList, IDC_LOG_LIST, QStringLiteral("Message log"));
    messageList->setMinimumHeight(fontMetrics().height() * 5);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(kDialogSpacing);
    buttons->addWidget(MakeButton(IDC_LOG_CLEAN, QStringLiteral("Clean"),
                                  QStringLiteral("Clean the message log"),
                                  &CControlPanelDlg::cleanLogRequested));
    buttons->addWidget(MakeButton(IDC_LOG_SAVE, QStringLiteral("Save as..."),
                                  QStringLiteral("Save as... a file: the message log"),
                                  &CControlPanelDlg::saveLogRequested));
    auto* layout = MakeDialogLayout<QVBoxLayout>(group);
    layout->setContentsMargins(0, kDialogSpacing, 0, 0);  // every pixel is the texts'
    buttons->setContentsMargins(2 * kDialogSpacing, 0, 2 * kDialogSpacing, 2 * kDialogSpacing);
    layout->addWidget(messageList, 1);
    layout->addLayout(buttons);
    return group;
}

QHBoxLayout* CControlPanelDlg::MakePageRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kDialogSpacing);
    previousPage = MakePlainButton(IDC_PREVIOUS_PAGE, QString(), QStringLiteral("Previous page"));
    nextPage = MakePlainButton(IDC_NEXT_PAGE, QString(), QStringLiteral("Next page"));
    connect(previousPage, &QPushButton::clicked, this, [this] { Q_EMIT turnPageRequested(-1); });
    connect(nextPage, &QPushButton::clicked, this, [this] { Q_EMIT turnPageRequested(+1); });
    pageText = new QLabel(QStringLiteral("P/P"), this);
    pageText->setAlignment(Qt::AlignCenter);
    AddControl(pageText, IDC_PAGE_TEXT, QStringLiteral("Page"));
    row->addWidget(previousPage);
    row->addWidget(pageText, 1);
    row->addWidget(nextPage);
    return row;
}

QHBoxLayout* CControlPanelDlg::MakeViewRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kDialogSpacing);
    for (std::size_t k = 0; k < std::size(kViewButtons); ++k) {
        const ViewButton& description = kViewButtons[k];
        const QString text = QLatin1String(description.text);
        QPushButton* button = MakePlainButton(description.id, text,
                                              QStringLiteral("%1: panes seen at once").arg(text));
        button->setCheckable(true);
        button->setAutoExclusive(true);
        // The Tab key leads to the checked one, the arrow keys from there to the others.
        button->setFocusPolicy(Qt::ClickFocus);
        connect(button, &QPushButton::toggled, button, [button](bool checked) {
            button->setFocusPolicy(checked ? Qt::StrongFocus : Qt::ClickFocus);
        });
        connect(button, &QPushButton::clicked, this,
                [this, view = description.view] { Q_EMIT viewRequested(view); });
        viewButtons[k] = button;
        row->addWidget(button);
    }
    return row;
}

QGroupBox* CControlPanelDlg::MakePageGroup() {
    auto* group = new QGroupBox(QStringLiteral("Page/View Option"), this);
    enablePopup = new QCheckBox(QStringLiteral("Enable Pop Up"), this);
    AddControl(enablePopup, IDC_ENABLE_POPUP, QStringLiteral("Enable Pop Up"));
    connect(enablePopup, &QCheckBox::clicked, this, &CControlPanelDlg::enablePopupRequested);
    auto* layout = MakeDialogLayout<QVBoxLayout>(group);
    layout->addLayout(MakePageRow());
    layout->addLayout(MakeViewRow());
    layout->addWidget(enablePopup);
    return group;
}

void CControlPanelDlg::LoadPageIcons() {
    nextPage->setIcon(LoadTintedIcon(IDI_NEXT_PAGE, palette()));
    previousPage->setIcon(LoadTintedIcon(IDI_PREVIOUS_PAGE, palette()));
    const int edge = fontMetrics().height();
    for (QPushButton* button : {nextPage, previousPage}) button->setIconSize(QSize(edge, edge));
}

void CControlPanelDlg::changeEvent(QEvent* event) {
    CDialog::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type == QEvent::PaletteChange || type == QEvent::FontChange) LoadPageIcons();
}

ViewMode CControlPanelDlg::GetViewMode() const {
    for (std::size_t k = 0; k < std::size(kViewButtons); ++k) {
        if (viewButtons[k]->isChecked()) return kViewButtons[k].view;
    }
    return ViewMode::None;
}

void CControlPanelDlg::CheckViewButton(ViewMode view) {
    for (std::size_t k = 0; k < std::size(kViewButtons); ++k) {
        if (kViewButtons[k].view == view) viewButtons[k]->setChecked(true);
    }
}

void CControlPanelDlg::ShowPaging(const Paging& paging) {
    // A focused button that is disabled would give the focus to whatever comes next.
    if (nextPage->hasFocus() && !paging.HasNext()) previousPage->setFocus();
    if (previousPage->hasFocus() && !paging.HasPrevious()) nextPage->setFocus();
    previousPage->setEnabled(paging.HasPrevious());
    nextPage->setEnabled(paging.HasNext());
    pageText->setText(QString::fromStdString(paging.Text()));
    pageText->setAccessibleName(QStringLiteral("Page %1").arg(pageText->text()));
}

void CControlPanelDlg::ShowRecording(bool recording) {
    const QString text = recording ? QStringLiteral("Stop") : QStringLiteral("Start");
    recordToggle->setText(text);
    recordToggle->setAccessibleName(text + QStringLiteral(" recording the selected channel"));
}

bool CControlPanelDlg::IsPopupEnabled() const {
    return enablePopup->isChecked();
}

QSize CControlPanelDlg::PanelSize(int maxHeight) const {
    const QSize least = minimumSizeHint();
    const QSize wanted = MapDialogUnits(kTemplateUnits);
    return {std::max(wanted.width(), least.width()),
            std::max(std::min(wanted.height(), maxHeight), least.height())};
}

void CControlPanelDlg::mouseMoveEvent(QMouseEvent* event) {
    CDialog::mouseMoveEvent(event);
    mainWindow.PostMessage(WM_POPUPPANE, static_cast<WPARAM>(-1), 0);
}

// The pointer may come onto a control without ever moving over the panel itself.
void CControlPanelDlg::enterEvent(QEnterEvent* event) {
    CDialog::enterEvent(event);
    mainWindow.PostMessage(WM_POPUPPANE, static_cast<WPARAM>(-1), 0);
}

}  // namespace marvolen
