// How the Playback dialog is built.

#include "display/pane_geometry.h"
#include "platform/dialog_layout.h"
#include "platform/text_field.h"
#include "playback/playback_dlg.h"
#include "res/resource_ids.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace marvolen {
namespace {

constexpr int kSpeeds = 5;  // 1 X to 16 X

// A pane for a picture of this size, or a smaller one at least.
constexpr QSize PaneSize(int width, int height) {
    return {width + 2 * kFrameWidth, height + kStripHeight + kFrameWidth};
}
constexpr QSize kWantedPane = PaneSize(704, 480);
constexpr QSize kLeastPane = PaneSize(234, 132);  // name and time have room

class PlaybackPane final : public PreviewPane {
public:
    explicit PlaybackPane(QWidget* parent) : PreviewPane(parent) { setMinimumSize(kLeastPane); }
    QSize sizeHint() const override { return kWantedPane; }
};

void MakeEquallyWide(std::initializer_list<QPushButton*> buttons) {
    int width = 0;
    for (const QPushButton* button : buttons) width = std::max(width, button->sizeHint().width());
    for (QPushButton* button : buttons) button->setMinimumWidth(width);
}

}  // namespace

QPushButton* CPlaybackDlg::MakeButton(int id, const QString& text, const QString& accessibleName,
                                      void (CPlaybackDlg::*command)()) {
    auto* button = new QPushButton(text, this);
    button->setAutoDefault(false);
    AddControl(button, id, accessibleName);
    connect(button, &QPushButton::clicked, this, command);
    return button;
}

void CPlaybackDlg::MakeControls() {
    auto* groups = MakeDialogLayout<QVBoxLayout>(this);
    groups->addWidget(MakeChannelGroup());
    groups->addWidget(MakeImageGroup(), 1);
    groups->addLayout(MakeButtonRow());
    slider = new CRangeSlider(this);
    AddControl(slider, IDC_PLAYER_SLIDER, QStringLiteral("Position"));
    connect(slider, &CRangeSlider::scrolled, this,
            [this](int position) { CarryOut(positions.Scroll(position)); });
    groups->addWidget(slider);
    groups->addWidget(MakeRenderingGroup());
    auto* bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(MakeButton(IDCANCEL, QStringLiteral("Close"), QStringLiteral("Close"),
                                 &CPlaybackDlg::reject));
    groups->addLayout(bottom);
}

QWidget* CPlaybackDlg::MakeChannelGroup() {
    auto* group = new QGroupBox(QStringLiteral("Channel"), this);
    channelBox = new QComboBox(this);
    channelBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    AddControl(channelBox, IDC_PLAYER_CHANNEL, QStringLiteral("Channel"));
    // Whatever the user chooses, the chosen item too: "Other File ..." may be another one now.
    connect(channelBox, &QComboBox::activated, this, &CPlaybackDlg::ChangeChannel);
    MakeDialogLayout<QHBoxLayout>(group)->addWidget(channelBox);
    return group;
}

QWidget* CPlaybackDlg::MakeImageGroup() {
    auto* group = new QGroupBox(QStringLiteral("Image"), this);
    pane = new PlaybackPane(this);
    AddControl(pane, IDC_PLAYER_PANE, QString());
    MakeDialogLayout<QHBoxLayout>(group)->addWidget(pane);
    return group;
}

QBoxLayout* CPlaybackDlg::MakeButtonRow() {
    stopButton = MakeButton(IDC_PLAYER_STOP, QStringLiteral("Stop"),
                            QStringLiteral("Stop and go to the start"), &CPlaybackDlg::Stop);
    playButton = MakeButton(IDC_PLAYER_PLAY, QStringLiteral("Play"), QStringLiteral("Play"),
                            &CPlaybackDlg::Play);
    pauseButton = MakeButton(IDC_PLAYER_PAUSE, QStringLiteral("Pause"), QStringLiteral("Pause"),
                             &CPlaybackDlg::Pause);
    prevButton = MakeButton(IDC_PLAYER_PREV, QStringLiteral("Prev"),
                            QStringLiteral("Prev: one picture back"), &CPlaybackDlg::Prev);
    nextButton = MakeButton(IDC_PLAYER_NEXT, QStringLiteral("Next"),
                            QStringLiteral("Next: one picture forward"), &CPlaybackDlg::Next);
    MakeEquallyWide({stopButton, playButton, pauseButton, prevButton, nextButton});
    auto* label = new QLabel(QStringLiteral("Playback Speed :"), this);
    speedBox = new QComboBox(this);
    label->setBuddy(speedBox);
    AddControl(speedBox, IDC_PLAYER_SPEED, QStringLiteral("Playback Speed"));
    connect(speedBox, &QComboBox::activated, this, &CPlaybackDlg::SetSpeed);
    auto* row = new QHBoxLayout;
    row->setSpacing(kDialogSpacing);
    for (QPushButton* button : {stopButton, playButton, pauseButton, prevButton, nextButton}) {
        row->addWidget(button);
    }
    row->addStretch();
    row->addWidget(label);
    row->addWidget(speedBox);
    return row;
}

QWidget* CPlaybackDlg::MakeRenderingGroup() {
    auto* group = new QGroupBox(QStringLiteral("Rendering To AVI "), this);
    auto* layout = MakeDialogLayout<QVBoxLayout>(group);
    layout->addLayout(MakeSelectionRow());
    layout->addLayout(MakeOutputRow());
    return group;
}

QBoxLayout* CPlaybackDlg::MakeSelectionRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kDialogSpacing);
    QPushButton* start =
        MakeButton(IDC_PLAYER_SELECT_START, QStringLiteral("SelStart"),
                   QStringLiteral("SelStart: select from here"), &CPlaybackDlg::SelectStart);
    QPushButton* end =
        MakeButton(IDC_PLAYER_SELECT_END, QStringLiteral("SelEnd"),
                   QStringLiteral("SelEnd: select up to here"), &CPlaybackDlg::SelectEnd);
    MakeEquallyWide({start, end});
    row->addWidget(start);
    row->addWidget(end);
    row->addStretch();
    return row;
}

QBoxLayout* CPlaybackDlg::MakeOutputRow() {
    auto* row = new QHBoxLayout;
    row->setSpacing(kDialogSpacing);
    row->addWidget(MakeButton(IDC_PLAYER_CHOOSE_OUTPUT, QStringLiteral("Output File..."),
                              QStringLiteral("Output File... to render to"),
                              &CPlaybackDlg::ChooseOutput));
    output = new QLineEdit(this);
    AddControl(output, IDC_PLAYER_OUTPUT, QStringLiteral("Output file"));
    connect(output, &QLineEdit::textChanged, this, &CPlaybackDlg::ShowOutputPlace);
    row->addWidget(output, 1);
    renderNow = MakeButton(IDC_PLAYER_RENDER, QStringLiteral("Render Now"),
                           QStringLiteral("Render Now: write the selection to the output file"),
                           &CPlaybackDlg::RenderNow);
    row->addWidget(renderNow);
    return row;
}

void CPlaybackDlg::FillBoxes() {
    for (std::size_t k = 0; k < g_channelInfo.size(); ++k) {
        const QString number = QStringLiteral("%1").arg(k + 1, 2, 10, QLatin1Char('0'));
        const std::string_view name = FieldText(g_channelInfo[k].netName);
        channelBox->addItem(QStringLiteral("(%1)%2").arg(
            number, QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()))));
    }
    channelBox->addItem(QStringLiteral("Other File ..."));
    channelBox->setCurrentIndex(initialChannel);
    for (int k = 0; k < kSpeeds; ++k) {
        speedBox->addItem(QStringLiteral("%1 X").arg(1 << k), static_cast<uint>(1 << k));
    }
    speedBox->setCurrentIndex(0);
}

}  // namespace marvolen
