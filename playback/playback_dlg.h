#pragma once

// CPlaybackDlg: plays a record file and exports a stretch of it.
//
// The file is a channel's, or any other that the user chooses. Its records go from the player
// through the pane that shows them to the capture that the export writes from (PlaybackSource);
// where slider and buttons lead is decided by PlaybackPositions. The file is held from the choice
// of its channel to the next choice or the dialog's end, so every recorder must be closed while the
// dialog is open.
//
// An export runs within the click on "Render Now". Its pictures and the slider are seen as they go
// by; what the user does meanwhile is dropped, playing pauses, and a request to end the program
// ends it behind the present picture. Interface thread only.

#include "config/channel_info.h"
#include "display/preview_pane.h"
#include "platform/dialog.h"
#include "platform/input_dropper.h"
#include "playback/avi_renderer.h"
#include "playback/playback_positions.h"
#include "playback/playback_source.h"
#include "playback/range_slider.h"

#include <QPointer>

#include <cstdint>
#include <optional>
#include <string>

class QBoxLayout;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace marvolen {

// The play timer, and its period: the speed is the number of records it goes on by with each tick.
inline constexpr std::uint32_t kPlayTimer = 100;
inline constexpr std::uint32_t kPlayMilliseconds = 33;

class CPlaybackDlg final : public CDialog, private RenderHost {
    Q_OBJECT

public:
    // Opens with this item of the channel box, 0 to 15, chosen.
    explicit CPlaybackDlg(QWidget* parent, int channelToBeginWith = 0);
    ~CPlaybackDlg() override;

    // Ends an export where it is, with a whole file. Nothing is shown: there may be no display.
    void AbandonRender() { renderer.Abandon(); }

protected:
    void OnInitDialog() override;
    void OnTimer(std::uint32_t id) override;
    void OnOK() override;
    void OnCancel() override;
    void OnModalEnd(int result) override;

private:
    // The dialog's looks: playback_dlg_controls.cpp.
    void MakeControls();
    QPushButton* MakeButton(int id, const QString& text, const QString& accessibleName,
                            void (CPlaybackDlg::*command)());
    QWidget* MakeChannelGroup();
    QWidget* MakeImageGroup();
    QBoxLayout* MakeButtonRow();
    QWidget* MakeRenderingGroup();
    QBoxLayout* MakeSelectionRow();
    QBoxLayout* MakeOutputRow();
    void FillBoxes();

    // The file that is played.
    ChannelInfo& SelectedRecord() const;
    QString ChannelFileName() const;
    void ChangeChannel();
    bool ChooseOtherFile();
    bool OpenRecord(const ChannelInfo& record);
    void ClosePlayback();
    void EnablePlaying(bool enabled);

    // Where it is played.
    void Play();
    void Pause();
    void Stop();
    void Prev();
    void Next();
    void SetSpeed();
    void CarryOut(const PlaybackStep& step);
    void SelectStart();
    void SelectEnd();
    void ShowSelection();
    void ShowPlace(bool isNew);

    // The export: playback_dlg_render.cpp.
    void ChooseOutput();
    void ShowOutputPlace();
    void RenderNow();
    std::string OutputName() override;
    PlaybackSelection Selection() override { return positions.Selection(); }
    void EnableControls(bool flag) override;
    const CapturedFrame& Show(std::int32_t position) override;
    bool GoesOn(const RenderReport& report) override;
    void Complain(const char* text) override;

    QPushButton* renderNow = nullptr;
    QLineEdit* output = nullptr;
    QComboBox* speedBox = nullptr;
    QPushButton* prevButton = nullptr;
    QPushButton* pauseButton = nullptr;
    QPushButton* stopButton = nullptr;
    QPushButton* playButton = nullptr;
    QPushButton* nextButton = nullptr;
    QComboBox* channelBox = nullptr;
    CRangeSlider* slider = nullptr;
    PreviewPane* pane = nullptr;
    PlaybackSource source;
    PlaybackPositions positions;  // which the slider shows
    std::uint32_t speed = 1;      // records a tick
    const int initialChannel;
    AviRenderer renderer;

    // An export runs.
    bool isRendering = false;
    std::optional<InputDropper> inputDropper;  // not while it complains
    QPointer<QWidget> focusBefore;
};

}  // namespace marvolen
