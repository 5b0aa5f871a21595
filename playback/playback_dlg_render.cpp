// What the Playback dialog does for its export.

#include "platform/file_chooser.h"
#include "platform/native_path.h"
#include "platform/termination.h"
#include "platform/ui_activity.h"
#include "playback/playback_dlg.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

namespace marvolen {
namespace {

QString ReportText(const RenderReport& report) {
    QStringList lines;
    for (const RenderedFile& file : report.files) {
        lines << QStringLiteral("%1: %2 pictures")
                     .arg(QFile::decodeName(file.path.c_str()))
                     .arg(file.samples);
    }
    if (report.skipped > 0) {
        lines << QStringLiteral("%1 left out: they can't be decoded").arg(report.skipped);
    }
    if (report.writeFailed) lines << QStringLiteral("The disk took no more: pictures are missing");
    return lines.join(QLatin1Char('\n'));
}

}  // namespace

void CPlaybackDlg::ChooseOutput() {
    FileChooserOptions options;
    options.filters = QStringLiteral("AVI Files (*.avi)|*.avi|All Files (*.*)|*.*||");
    options.defaultExtension = QStringLiteral("avi");
    options.initialName = ChannelFileName();
    const std::optional<std::string> path = ChooseFileToSave(this, options);
    if (path) output->setText(QString::fromStdString(*path));
}

void CPlaybackDlg::ShowOutputPlace() {
    const std::string path = MapDrivePath(OutputName());
    output->setToolTip(
        path.empty() ? QString() : QFileInfo(QFile::decodeName(path.c_str())).absoluteFilePath());
}

void CPlaybackDlg::RenderNow() {
    renderer.Render();
    const QString report = ReportText(renderer.Report());
    renderNow->setToolTip(report);
    renderNow->setAccessibleDescription(report);
    // The windows that didn't close then.
    if (TerminationWatcher::IsEndRequested()) {
        PostCommand(*QCoreApplication::instance(), [] { QApplication::closeAllWindows(); });
    }
}

std::string CPlaybackDlg::OutputName() {
    return output->text().toStdString();
}

// An export begins only while all of them are enabled.
void CPlaybackDlg::EnableControls(bool flag) {
    if (!flag) {
        isRendering = true;
        focusBefore = focusWidget();
        setCursor(Qt::BusyCursor);
        inputDropper.emplace();
    } else {
        inputDropper.reset();
        isRendering = false;
        unsetCursor();
    }
    for (QWidget* child : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!child->isWindow()) child->setEnabled(flag);
    }
    if (flag && focusBefore) focusBefore->setFocus();
}

const CapturedFrame& CPlaybackDlg::Show(std::int32_t position) {
    const bool isNew = source.ShowPosition(static_cast<std::uint32_t>(position));
    positions.SetPosition(position);
    slider->SetPosition(positions.Position());
    ShowPlace(isNew);
    return source.Captured();
}

bool CPlaybackDlg::GoesOn(const RenderReport&) {
    inputDropper->GiveTurn();
    return !TerminationWatcher::IsEndRequested();
}

// The user answers the box; what he did before that is dropped.
void CPlaybackDlg::Complain(const char* text) {
    inputDropper.reset();
    MessageBox(QString::fromUtf8(text));
    inputDropper.emplace();
}

}  // namespace marvolen
