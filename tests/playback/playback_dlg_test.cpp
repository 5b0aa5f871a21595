// The Playback dialog under a hand: its slider, its buttons, its export.

#include "playback/playback_dlg.h"

#include "platform/termination.h"
#include "platform/text_field.h"
#include "playback/slider_ticks.h"
#include "res/resource_ids.h"
#include "tests/playback/picture_recording.h"
#include "tests/support/event_loop.h"
#include "tools/record_file/record_commands.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QScreen>
#include <QThread>
#include <QTimer>

#include <csignal>
#include <random>
#include <set>
#include <sstream>

namespace marvolen::test {
namespace {

class PlaybackDlg : public PictureRecording {
protected:
    PlaybackDlg() {
        apart = 1000;
        SetFieldText(g_channelInfo[2].recordPath, path);
        SetFieldText(g_channelInfo[2].netName, "Gate");
    }
    ~PlaybackDlg() override {
        dialog.reset();
        g_channelInfo = FactoryChannelTable();
    }
    // Opens a file of so many records. A wrapped one has given up 600 before them.
    void Open(int count, int givenUp = 0) {
        dialog.reset();
        pictures.clear();
        const std::uint64_t chunk =
            kBlock + 600 * (ReadWholeFile(JPEG_CORPUS "/flat.jpg").size() + 8);
        const std::uint64_t chunks = 1 + std::uint64_t(count) / 600;
        ASSERT_TRUE(Create(givenUp > 0 ? 24 + chunks * chunk + 50 : 8 * kMiB));
        Record("flat", givenUp + count);
        Close();
        Open();
    }
    void Open() {
        dialog = std::make_unique<CPlaybackDlg>(nullptr, 2);
        dialog->CreateModeless();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog.get()));
    }
    template <typename Control = QWidget>
    Control& Item(int id) {
        return *dialog->GetDlgItem<Control>(id);
    }
    CRangeSlider& Slider() { return Item<CRangeSlider>(IDC_PLAYER_SLIDER); }
    std::string Output() { return Item<QLineEdit>(IDC_PLAYER_OUTPUT).text().toStdString(); }
    void Click(int id) { QTest::mouseClick(&Item(id), Qt::LeftButton); }
    void Key(Qt::Key key, int id = IDC_PLAYER_SLIDER) { QTest::keyClick(&Item(id), key); }
    // How many of the seven that need a file are enabled.
    int Enabled() {
        return static_cast<int>(std::count_if(kPlaying.begin(), kPlaying.end(),
                                              [this](int id) { return Item(id).isEnabled(); }));
    }
    // The slider stands at a position, and the pane shows this record.
    bool At(int position, int record) {
        return Slider().value() == position &&
               Item<PreviewPane>(IDC_PLAYER_PANE).GetTimeText() ==
                   FormatTime(TimeOf(static_cast<std::size_t>(record)));
    }
    // Has act deal with the box or chooser that comes up over the dialog.
    template <typename Window, typename Act>
    void When(Act act) {
        poll.disconnect();
        poll.callOnTimeout(&poll, [this, act] {
            auto* const window = qobject_cast<Window*>(QApplication::activeModalWidget());
            if (!window) return;
            poll.stop();
            act(*window);
        });
        poll.start(1);
    }
    void Enter(const char* name) {
        When<QFileDialog>([name](QFileDialog& chooser) {
            if (!name) return chooser.reject();
            chooser.findChild<QLineEdit*>()->setText(QString::fromUtf8(name));
            QTest::keyClick(chooser.findChild<QLineEdit*>(), Qt::Key_Return);
        });
    }
    template <typename Act>
    void Render(const char* name, Act onMove) {
        Item<QLineEdit>(IDC_PLAYER_OUTPUT).setText(QString::fromUtf8(name));
        const auto moves = QObject::connect(&Slider(), &QSlider::valueChanged, &Slider(), onMove);
        Click(IDC_PLAYER_RENDER);
        QObject::disconnect(moves);
    }

    const std::array<int, 7> kPlaying{IDC_PLAYER_STOP,  IDC_PLAYER_PAUSE, IDC_PLAYER_PLAY,
                                      IDC_PLAYER_PREV,  IDC_PLAYER_NEXT,  IDC_PLAYER_SLIDER,
                                      IDC_PLAYER_RENDER};
    QTimer poll;
    std::unique_ptr<CPlaybackDlg> dialog;
};

TEST_F(PlaybackDlg, PlaysFilesOfTwoRecordsAndMore) {
    for (const auto& [count, first] : std::vector<std::pair<int, int>>{
             {0, 0}, {1, 0}, {2, 0}, {599, 0}, {600, 0}, {601, 600}, {5000, 600}}) {
        SCOPED_TRACE(count);
        Open(count, first);
        EXPECT_EQ(Output(), "C:\\chl03.avi");
        ASSERT_EQ(Enabled(), count < 2 ? 0 : 7);
        if (count < 2) continue;
        const int last = count - 1;
        EXPECT_TRUE(Slider().SelectionStart() == 0 && Slider().SelectionEnd() == last);
        EXPECT_TRUE(Slider().maximum() == last && At(0, first + 1));
        for (int press = 0; press < 2; ++press) {
            Click(IDC_PLAYER_PREV);
            EXPECT_TRUE(At(0, first)) << "the player steps back, the slider doesn't";
        }
        Click(IDC_PLAYER_NEXT);
        Click(IDC_PLAYER_PREV);
        EXPECT_TRUE(At(1, first + 1)) << "does nothing at 1";
        for (int p = 2; p < last; p += count / 37 + 1) {
            Slider().setSliderPosition(p);
            ASSERT_TRUE(At(p, first + p + 1)) << p;
            Click(IDC_PLAYER_PREV);
            ASSERT_TRUE(At(p - 1, first + p)) << p;
            Click(IDC_PLAYER_NEXT);
            ASSERT_TRUE(At(p, first + p + 1)) << p;
        }
        Click(IDC_PLAYER_STOP);
        if (last > 1) {
            QAccessible::queryAccessibleInterface(&Slider())->valueInterface()->setCurrentValue(1);
            EXPECT_TRUE(At(1, first + 2));
            Click(IDC_PLAYER_STOP);
        }
        Key(Qt::Key_End);
        EXPECT_TRUE(At(last, first + 1)) << "nothing new is shown at the end";
        Key(Qt::Key_Left);
        EXPECT_TRUE(At(last - 1, first + last));
        EXPECT_TRUE(Slider().toolTip().endsWith(
            QString::fromStdString(FormatTime(TimeOf(static_cast<std::size_t>(first + last))))));
        for (int press = 0; press < 2; ++press) {
            Click(IDC_PLAYER_NEXT);
            EXPECT_TRUE(At(last, first + last));
        }
    }
}

TEST_F(PlaybackDlg, SurvivesARecordingThatIsDamagedAndCutUnderIt) {
    Open(700);
    std::mt19937 random(1);
    const std::uint64_t size = Size();
    const std::uint64_t second =
        size - 100 * ReadWholeFile(JPEG_CORPUS "/flat.jpg").size() - kBlock;
    for (int round = 0; round < 400; ++round) {
        const std::uint64_t block = round % 2 == 0 ? 24 : second;
        Patch(block + random() % (round % 8 < 2 ? 40 : kBlock), static_cast<char>(random()));
        if (round == 300) Cut(size / 2);
        if (round == 350) Cut(100);
        Slider().setSliderPosition(static_cast<int>(random() % 700));
        Click(round % 3 == 0 ? IDC_PLAYER_NEXT : IDC_PLAYER_PREV);
    }
    EXPECT_EQ(Enabled(), 7);
    Render("damaged.avi", [] {});
    EXPECT_EQ(Enabled(), 7);
}

TEST_F(PlaybackDlg, PlaysAtEverySpeedUntilPausedOrStopped) {
    Open(40);
    auto& speed = Item<QComboBox>(IDC_PLAYER_SPEED);
    for (int factor = 1; factor <= 16; factor *= 2) {
        EXPECT_EQ(speed.currentText(), QStringLiteral("%1 X").arg(factor));
        std::vector<int> stops;
        const auto note = QObject::connect(&Slider(), &QSlider::valueChanged, &Slider(),
                                           [&](int position) { stops.push_back(position); });
        Click(IDC_PLAYER_PLAY);
        EXPECT_TRUE(WaitUntil([&] { return stops.size() == 3; }));
        Click(IDC_PLAYER_PAUSE);
        QObject::disconnect(note);
        EXPECT_EQ(stops, (std::vector{factor, 2 * factor, std::min(3 * factor, 39)}));
        EXPECT_TRUE(At(stops[2], factor < 16 ? 3 * factor + 1 : 33));
        Click(IDC_PLAYER_STOP);
        EXPECT_TRUE(At(0, 1));
        Key(Qt::Key_Down, IDC_PLAYER_SPEED);
    }
}

// Of records that no camera sends, too: those that don't decode, and those that can't be read. What
// a user does meanwhile does nothing, then or later; the play timer waits.
TEST_F(PlaybackDlg, RendersTheBytesThatTheToolExports) {
    ASSERT_TRUE(Create(8 * kMiB));
    for (const std::string& picture : Corpus()) ASSERT_TRUE(AppendPicture(picture));
    Record("large_2x2", 20);
    Close();
    Patch(24 + 40 + 5 * 32 + 8, std::uint64_t{kFrameCapacity + 1});  // record 5's length
    Patch(24 + 40 + 7 * 32, std::uint64_t{3});                       // record 7's position
    Open();
    const int end = Slider().maximum() - 1;
    Key(Qt::Key_End);
    Key(Qt::Key_Left);
    Click(IDC_PLAYER_SELECT_END);
    Click(IDC_PLAYER_STOP);
    Key(Qt::Key_Right);
    Click(IDC_PLAYER_SELECT_START);
    When<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.text(), QStringLiteral("Error Creating AVI"));
        box.accept();
    });
    std::filesystem::copy(path, "copy.dbt");
    Render("copy.dbt", [](int) {});
    EXPECT_EQ(std::filesystem::file_size("copy.dbt"), Size()) << "a recording is not replaced";
    EXPECT_EQ(Enabled(), 7);
    Click(IDC_PLAYER_STOP);
    Click(IDC_PLAYER_PLAY);
    int expected = 0;
    Render("out.avi", [&](int position) {
        EXPECT_EQ(position, ++expected);
        EXPECT_EQ(Enabled(), 0);
        for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QCoreApplication::postEvent(
                &Item(IDC_PLAYER_PREV),
                new QMouseEvent(type, {5, 5}, {5, 5}, Qt::LeftButton, Qt::LeftButton, {}));
        }
        if (position < 4) QThread::msleep(2 * kPlayMilliseconds);
    });
    EXPECT_EQ(dialog->focusWidget(), &Item(IDC_PLAYER_RENDER));
    EXPECT_TRUE(At(end, end + 1));
    EXPECT_TRUE(WaitUntil([&] { return Slider().value() == end + 1; })) << "plays on";
    dialog.reset();
    std::ostringstream said;
    EXPECT_EQ(RunRecordTool({"export", path, "tool.avi", "--first", "2"}, said, said), 1);
    EXPECT_NE(said.str().find("2 records can't be read"), std::string::npos);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        const std::string name = entry.path().filename();
        if (!name.starts_with("out")) continue;
        ++files;
        EXPECT_TRUE(CheckAvi(name).sound) << name;
        EXPECT_TRUE(ReadWholeFile(name) == ReadWholeFile("tool" + name.substr(3))) << name;
    }
    EXPECT_GT(files, 10);
}

TEST_F(PlaybackDlg, EndsARenderWithAWholeFileWhenTheProgramIsToEnd) {
    Open(5);
    const TerminationWatcher watcher([] { QApplication::closeAllWindows(); });
    Render("out.avi", [](int position) {
        if (position == 2) raise(SIGTERM);
        QThread::msleep(20);
    });
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(CheckAvi("out.avi").samples[0].size(), 3U);
    EXPECT_TRUE(CheckAvi("out.avi").sound);
    EXPECT_TRUE(WaitUntil([&] { return !dialog->isVisible(); }));
}

TEST_F(PlaybackDlg, OpensOtherChannelsAndFiles) {
    WriteWholeFile("foreign.dbt", std::string(100000, 'x'));
    SetFieldText(g_channelInfo[0].recordPath, "foreign.dbt");
    SetFieldText(g_channelInfo[1].recordPath, "missing.dbt");
    Open(3);
    EXPECT_EQ(Item<QComboBox>(IDC_PLAYER_CHANNEL).itemText(2), QStringLiteral("(03)Gate"));
    for (const char* output : {"C:\\chl02.avi", "C:\\chl01.avi"}) {
        Key(Qt::Key_Up, IDC_PLAYER_CHANNEL);
        EXPECT_TRUE(Enabled() == 0 && Output() == output && Slider().value() == 0);
    }
    RecordFile user;
    ASSERT_TRUE(user.OpenForRead(path)) << "not held any more";
    Enter("channel");
    Key(Qt::Key_End, IDC_PLAYER_CHANNEL);
    EXPECT_TRUE(Enabled() == 0 && Output() == "C:\\chl17.avi") << "in use";
    user.CloseReader();
    Enter("channel");
    Q_EMIT Item<QComboBox>(IDC_PLAYER_CHANNEL).activated(16);
    EXPECT_TRUE(Enabled() == 7 && At(0, 1));
    Enter("gate");
    Click(IDC_PLAYER_CHOOSE_OUTPUT);
    EXPECT_EQ(Output(), folder.Path() / "gate.avi");
    Enter(nullptr);
    Q_EMIT Item<QComboBox>(IDC_PLAYER_CHANNEL).activated(16);
    EXPECT_TRUE(Enabled() == 0 && Output() == folder.Path() / "gate.avi") << "nothing was chosen";
}

TEST_F(PlaybackDlg, PaintsTheSelectionAlsoWhenItsEndsAreCrossed) {
    Open(600);
    const QColor filled = Slider().palette().color(QPalette::Highlight);
    const QColor mark = Slider().palette().color(QPalette::WindowText);
    for (const auto& [start, end] : {std::pair{100, 400}, std::pair{400, 100}}) {
        Slider().SetSelection(start, end);
        const QImage seen = Slider().grab().toImage();
        const auto has = [&](int position, int y, const QColor& colour) {
            return seen.pixelColor(Slider().PlaceOf(position), y) == colour;
        };
        for (const int position : {50, 250, 500}) {
            EXPECT_EQ(has(position, seen.height() / 2, filled), position == 250 && start < end);
        }
        EXPECT_TRUE(has(start, 1, mark) && has(end, 1, mark) && !has(250, 1, mark)) << start;
    }
    EXPECT_TRUE(TickInterval(0, 500) == 1 && TickInterval(80, 480) == 1);
    EXPECT_TRUE(TickInterval(81, 480) == 2 && TickInterval(0x7FFFFFFF, 500) == 50000000);
}

TEST_F(PlaybackDlg, IsReachedByKeysAndFitsASmallScreenInALargeFont) {
    const QFont before = QApplication::font();
    QApplication::setFont(QFont(before.family(), 20));
    Open(3);
    EXPECT_LT(dialog->height(), dialog->screen()->availableSize().height());
    const QSize small(1024 - 16, 768 - 48);
    EXPECT_EQ(small.expandedTo(dialog->minimumSizeHint()), small);
    std::set<int> reached;
    for (int k = 0; k < 30; ++k) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        reached.insert(ControlId(*QApplication::focusWidget()));
        EXPECT_FALSE(QApplication::focusWidget()->accessibleName().isEmpty());
    }
    EXPECT_EQ(reached.size(), kPlaying.size() + 7);
    QApplication::setFont(before);
}

}  // namespace
}  // namespace marvolen::test
