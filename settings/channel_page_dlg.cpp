#include "settings/channel_page_dlg.h"

#include "config/channel_options.h"
#include "net/net_channel.h"
#include "platform/file_chooser.h"
#include "platform/native_path.h"
#include "platform/text_field.h"
#include "settings/field_edit.h"

#include <QComboBox>
#include <QFile>
#include <QFileInfo>

namespace marvolen {
namespace {

template <typename Options>
void FillBox(QComboBox& box, const Options& options) {
    box.clear();
    for (const auto& option : options) {
        box.addItem(QString::fromUtf8(option.label.data(), qsizetype(option.label.size())));
    }
}

void Choose(QComboBox& box, std::int32_t row) {
    box.setCurrentIndex(row >= 0 && row < box.count() ? row : -1);
}

std::int32_t Chosen(const QComboBox& box, std::int32_t foreign) {
    return box.currentIndex() < 0 ? foreign : box.currentIndex();
}

}  // namespace

CChannelPageDlg::CChannelPageDlg(QWidget* parent, ChannelInfo& itsRecord, NetChannel& link)
    : CDialog(parent), record(itsRecord), sharedLink(link) {
    MakeControls();
    FillFromRecord();
}

void CChannelPageDlg::FillFromRecord() {
    FillBox(*cameraBox, g_cameraOptions);
    FillBox(*sizeBox, g_sizeOptions);
    FillBox(*rateBox, g_rateOptions);
    SetFields(FieldsOf(record));
}

void CChannelPageDlg::CommitToRecord() {
    DefaultNetName();
    Commit(Fields(), record);
}

PageFields CChannelPageDlg::Fields() const {
    PageFields fields;
    fields.host = host->Bytes();
    fields.port = port->Bytes();
    fields.userName = userName->Bytes();
    fields.password = password->Bytes();
    fields.netName = netName->Bytes();
    fields.maxSize = maxSize->text().toStdString();
    fields.recordPath = recordPath->Bytes();
    fields.cameraIndex = Chosen(*cameraBox, foreignCamera);
    fields.sizeIndex = Chosen(*sizeBox, foreignSize);
    fields.rateIndex = Chosen(*rateBox, foreignRate);
    return fields;
}

void CChannelPageDlg::SetFields(const PageFields& fields) {
    host->SetBytes(fields.host);
    port->SetBytes(fields.port);
    userName->SetBytes(fields.userName);
    password->SetBytes(fields.password);
    netName->SetBytes(fields.netName);
    maxSize->setText(QString::fromStdString(fields.maxSize));
    recordPath->SetBytes(fields.recordPath);
    Choose(*cameraBox, foreignCamera = fields.cameraIndex);
    Choose(*sizeBox, foreignSize = fields.sizeIndex);
    Choose(*rateBox, foreignRate = fields.rateIndex);
}

void CChannelPageDlg::DefaultNetName() {
    PageFields fields = Fields();
    if (!fields.netName.empty()) return;
    marvolen::DefaultNetName(fields);
    netName->SetBytes(fields.netName);
}

void CChannelPageDlg::SetAddress(std::string_view newHost, std::string_view newPort) {
    host->SetBytes(newHost);
    port->SetBytes(newPort);
    netName->SetBytes({});
}

void CChannelPageDlg::OpenPreview(NetEventOwner& owner) {
    preview->Open(FieldText(record.netName), 0, PreviewPane::WhenBusy::kSkip);
    sharedLink.Open(&record, preview, &owner);
}

void CChannelPageDlg::Connect() {
    DefaultNetName();
    ClosePreview();
    sharedLink.Close();
    CommitToRecord();
    OpenPreview(*this);
}

void CChannelPageDlg::ChoosePath() {
    FileChooserOptions options;
    options.filters = QStringLiteral("DBT Files (*.dbt)|*.dbt|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("dbt");
    options.initialName = QString::asprintf("chl%.2lld", record.channelIndex + 1LL);
    const std::optional<std::string> path = ChooseFileToSave(this, options);
    if (!path) return;
    if (CFieldEdit::Fits(*path)) {
        recordPath->SetBytes(*path);
    } else {
        MessageBox(QStringLiteral("The path is too long."));
    }
}

void CChannelPageDlg::ShowPathPlace() {
    const std::string path = MapDrivePath(recordPath->Bytes());
    recordPath->setToolTip(
        path.empty() ? QString() : QFileInfo(QFile::decodeName(path.c_str())).absoluteFilePath());
}

}  // namespace marvolen
