// How a page of the Channel Setting dialog is built.

#include "display/pane_geometry.h"
#include "platform/dialog_layout.h"
#include "res/resource_ids.h"
#include "settings/channel_page_dlg.h"
#include "settings/field_edit.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>
#include <vector>

namespace marvolen {
namespace {

constexpr QSize kPreviewUnits(205, 170);  // dialog units
constexpr QSize kUsualPicture(704, 480);  // pixels; the pane has its shape
constexpr int kMaxSizeLength = 20;        // characters; more digits than 32 bits have

// The fields of all groups begin at one left edge.
void AlignLabels(const QWidget& page) {
    std::vector<QWidget*> labels;
    int width = 0;
    for (const QFormLayout* form : page.findChildren<QFormLayout*>()) {
        for (int row = 0; row < form->rowCount(); ++row) {
            labels.push_back(form->itemAt(row, QFormLayout::LabelRole)->widget());
            width = std::max(width, labels.back()->sizeHint().width());
        }
    }
    for (QWidget* label : labels) label->setMinimumWidth(width);
}

class PagePane final : public PreviewPane {
public:
    PagePane(QWidget* parent, QSize wanted) : PreviewPane(parent), size(wanted) {
        setMinimumSize(2 * kFrameWidth + 234, kStripHeight + kFrameWidth + 132);
    }
    QSize sizeHint() const override { return size; }

private:
    const QSize size;
};

}  // namespace

void CChannelPageDlg::MakeControls() {
    auto* columns = MakeDialogLayout<QHBoxLayout>(this);
    columns->setSpacing(2 * kDialogSpacing);
    auto* left = new QVBoxLayout;
    left->setSpacing(kDialogSpacing);
    left->addWidget(MakeNetworkGroup());
    left->addWidget(MakeDisplayGroup());
    left->addWidget(MakeRecordGroup());
    left->addStretch();
    AlignLabels(*this);
    columns->addLayout(left);
    columns->addWidget(MakePreviewGroup(), 1);
}

QWidget* CChannelPageDlg::MakeNetworkGroup() {
    auto* group = new QGroupBox(QStringLiteral("Network"), this);
    auto* form = MakeDialogLayout<QFormLayout>(group);
    host = MakeFieldEdit(IDC_PAGE_HOST, QStringLiteral("Host Address"));
    port = MakeFieldEdit(IDC_PAGE_PORT, QStringLiteral("Host Port"));
    userName = MakeFieldEdit(IDC_PAGE_USER_NAME, QStringLiteral("Username"));
    password = MakeFieldEdit(IDC_PAGE_PASSWORD, QStringLiteral("Password"));
    password->setEchoMode(QLineEdit::Password);
    for (CFieldEdit* edit : {host, port, userName, password}) {
        form->addRow(edit->accessibleName(), edit);
    }
    return group;
}

QWidget* CChannelPageDlg::MakeDisplayGroup() {
    auto* group = new QGroupBox(QStringLiteral("Display/Record"), this);
    auto* form = MakeDialogLayout<QFormLayout>(group);
    netName = MakeFieldEdit(IDC_PAGE_NET_NAME, QStringLiteral("NET Name"));
    cameraBox = MakeComboBox(IDC_PAGE_CAMERA, QStringLiteral("Camera"));
    sizeBox = MakeComboBox(IDC_PAGE_SIZE, QStringLiteral("Picture size"));
    rateBox = MakeComboBox(IDC_PAGE_RATE, QStringLiteral("Update Frequency"));
    form->addRow(netName->accessibleName(), netName);
    form->addRow(QStringLiteral("RESERVE"), cameraBox);
    form->addRow(QStringLiteral("RESERVE"), sizeBox);
    form->addRow(rateBox->accessibleName(), rateBox);
    return group;
}

QWidget* CChannelPageDlg::MakeRecordGroup() {
    auto* group = new QGroupBox(QStringLiteral("Record"), this);
    auto* form = MakeDialogLayout<QFormLayout>(group);
    maxSize = new QLineEdit(this);
    maxSize->setMaxLength(kMaxSizeLength);
    maxSize->setAlignment(Qt::AlignRight);
    AddControl(maxSize, IDC_PAGE_MAX_SIZE, QStringLiteral("Max size, MB"));
    auto* sizeRow = new QHBoxLayout;
    sizeRow->addWidget(maxSize);
    sizeRow->addWidget(new QLabel(QStringLiteral("MB"), this));
    form->addRow(QStringLiteral("Max size"), sizeRow);

    recordPath = MakeFieldEdit(IDC_PAGE_RECORD_PATH, QStringLiteral("File Path"));
    connect(recordPath, &QLineEdit::textChanged, this, &CChannelPageDlg::ShowPathPlace);
    auto* choose = new QPushButton(QStringLiteral(".."), this);
    choose->setAutoDefault(false);
    choose->setFixedWidth(choose->fontMetrics().horizontalAdvance(QStringLiteral("......")));
    AddControl(choose, IDC_PAGE_CHOOSE_PATH, QStringLiteral(".. to choose the File Path"));
    connect(choose, &QPushButton::clicked, this, &CChannelPageDlg::ChoosePath);
    auto* pathRow = new QHBoxLayout;
    pathRow->setSpacing(kDialogSpacing);
    pathRow->addWidget(recordPath, 1);
    pathRow->addWidget(choose);
    form->addRow(QStringLiteral("File Path"), pathRow);
    return group;
}

QWidget* CChannelPageDlg::MakePreviewGroup() {
    auto* group = new QGroupBox(QStringLiteral("Preview"), this);
    auto* layout = MakeDialogLayout<QVBoxLayout>(group);
    const QSize units = MapDialogUnits(kPreviewUnits);
    const int wide = units.height() * kUsualPicture.width() / kUsualPicture.height();
    preview = new PagePane(this, units.expandedTo(QSize(wide, 0)));
    AddControl(preview, IDC_PAGE_PREVIEW, QString());
    layout->addWidget(preview, 1);
    auto* connectButton = new QPushButton(QStringLiteral("Connect"), this);
    connectButton->setDefault(true);
    AddControl(connectButton, IDC_PAGE_CONNECT,
               QStringLiteral("Connect: preview with these settings"));
    connect(connectButton, &QPushButton::clicked, this, &CChannelPageDlg::Connect);
    layout->addWidget(connectButton, 0, Qt::AlignRight);
    return group;
}

CFieldEdit* CChannelPageDlg::MakeFieldEdit(int id, const QString& accessibleName) {
    auto* edit = new CFieldEdit(this);
    AddControl(edit, id, accessibleName);
    return edit;
}

QComboBox* CChannelPageDlg::MakeComboBox(int id, const QString& accessibleName) {
    auto* box = new QComboBox(this);
    AddControl(box, id, accessibleName);
    return box;
}

}  // namespace marvolen
