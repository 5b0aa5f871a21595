#include "playback/playback_dlg.h"

#include "platform/dialog_layout.h"
#include "platform/file_chooser.h"
#include "platform/text_field.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace marvolen {
namespace {

// "Other File ...": the file chosen last stays in its recordPath for the rest of the run.
ChannelInfo g_otherFile = [] {
    ChannelInfo record{};
    SetFieldText(record.netName, "Other File");
    return record;
}();

}  // namespace

CPlaybackDlg::CPlaybackDlg(QWidget* parent, int channelToBeginWith)
    : CDialog(parent), initialChannel(channelToBeginWith), renderer(*this) {
    setWindowTitle(QStringLiteral("Playback"));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    MakeControls();
}

CPlaybackDlg::~CPlaybackDlg() {
    ClosePlayback();
}

void CPlaybackDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    FillBoxes();
    SetSpeed();
    FitScreen(*this, sizeHint());
    ChangeChannel();
}

void CPlaybackDlg::OnModalEnd(int result) {
    ClosePlayback();
    CDialog::OnModalEnd(result);
}

// Nothing ends the dialog under an export; a request to end the program is kept until it is over.
void CPlaybackDlg::OnOK() {
    if (!isRendering) CDialog::OnOK();
}

void CPlaybackDlg::OnCancel() {
    if (!isRendering) CDialog::OnCancel();
}

ChannelInfo& CPlaybackDlg::SelectedRecord() const {
    const auto k = static_cast<std::size_t>(channelBox->currentIndex());
    return k < g_channelInfo.size() ? g_channelInfo[k] : g_otherFile;
}

// "chl01" for the first item of the channel box.
QString CPlaybackDlg::ChannelFileName() const {
    return QStringLiteral("chl%1").arg(channelBox->currentIndex() + 1, 2, 10, QLatin1Char('0'));
}

void CPlaybackDlg::ChangeChannel() {
    ClosePlayback();
    EnablePlaying(false);
    if (&SelectedRecord() == &g_otherFile && !ChooseOtherFile()) return;
    EnablePlaying(OpenRecord(SelectedRecord()));
    output->setText(QStringLiteral("C:\\%1.avi").arg(ChannelFileName()));
}

// False when the user chooses none.
bool CPlaybackDlg::ChooseOtherFile() {
    FileChooserOptions options;
    options.filters = QStringLiteral("DBT Files (*.dbt)|*.dbt|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("dbt");
    const std::optional<std::string> path = ChooseFileToOpen(this, options);
    if (path) SetFieldText(g_otherFile.recordPath, *path);
    return path.has_value();
}

bool CPlaybackDlg::OpenRecord(const ChannelInfo& record) {
    if (!pane->Open(FieldText(record.netName), 0, PreviewPane::WhenBusy::kDecode) ||
        !source.Open(record, pane) || !source.StepForward()) {
        ClosePlayback();
        return false;
    }
    positions.Open(source.RecordCount());
    slider->SetMaximum(positions.Maximum());
    ShowSelection();
    ShowPlace(true);
    return true;
}

void CPlaybackDlg::ClosePlayback() {
    KillTimer(kPlayTimer);
    positions.Close();
    slider->SetPosition(positions.Position());
    source.Close();
    pane->Close();
}

void CPlaybackDlg::EnablePlaying(bool enabled) {
    for (QWidget* control : {static_cast<QWidget*>(stopButton), static_cast<QWidget*>(pauseButton),
                             static_cast<QWidget*>(playButton), static_cast<QWidget*>(prevButton),
                             static_cast<QWidget*>(nextButton), static_cast<QWidget*>(slider),
                             static_cast<QWidget*>(renderNow)}) {
        control->setEnabled(enabled);
    }
}

void CPlaybackDlg::Play() {
    SetTimer(kPlayTimer, kPlayMilliseconds);
}

void CPlaybackDlg::Pause() {
    KillTimer(kPlayTimer);
}

void CPlaybackDlg::Stop() {
    KillTimer(kPlayTimer);
    CarryOut(positions.Stop());
}

void CPlaybackDlg::Prev() {
    CarryOut(positions.Prev());
}

void CPlaybackDlg::Next() {
    CarryOut(positions.Next());
}

void CPlaybackDlg::OnTimer(std::uint32_t) {
    if (!isRendering) CarryOut(positions.Tick(speed));
}

void CPlaybackDlg::SetSpeed() {
    speed = speedBox->currentData().toUInt();
}

void CPlaybackDlg::CarryOut(const PlaybackStep& step) {
    slider->SetPosition(positions.Position());
    switch (step.kind) {
        case PlaybackStep::Kind::kNone:
            return;
        case PlaybackStep::Kind::kShow:
            return ShowPlace(source.ShowPosition(static_cast<std::uint32_t>(step.position)));
        case PlaybackStep::Kind::kForward:
            return ShowPlace(source.StepForward());
        case PlaybackStep::Kind::kBack:
            return ShowPlace(source.StepBack());
    }
}

void CPlaybackDlg::SelectStart() {
    positions.MarkStart();
    ShowSelection();
}

void CPlaybackDlg::SelectEnd() {
    positions.MarkEnd();
    ShowSelection();
}

void CPlaybackDlg::ShowSelection() {
    const PlaybackSelection selection = positions.Selection();
    slider->SetSelection(selection.start, selection.end);
    slider->setAccessibleDescription(
        QStringLiteral("Selected from %1 to %2").arg(selection.start).arg(selection.end));
}

// isNew: the pane shows what stands at the position, and its time is therefore known.
void CPlaybackDlg::ShowPlace(bool isNew) {
    QString text =
        QStringLiteral("Position %1 of %2").arg(positions.Position()).arg(positions.Maximum());
    const std::string& time = source.Captured().timeText;
    if (isNew && !time.empty()) text += QLatin1Char('\n') + QString::fromStdString(time);
    slider->ShowTip(text);
}

}  // namespace marvolen
