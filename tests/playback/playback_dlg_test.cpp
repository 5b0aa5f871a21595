// The Playback dialog under a hand: its slider, its buttons, its export.

#include "playback/playback_dlg.h"

#include "platform/termination.h"
#include "platform/text_field.h"
#include "playback/slider_ticks.h"
#include "res/resource_ids.h"
#include "tests/playback/picture_recording.h"
#include "tests/support/event_loop.h"
#include "tools/record_file/record_commands.h"

#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QThread>
#include <QTimer>

#include <csignal>
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
    void RecordFlat(int count) {
        dialog.reset();
        pictures.clear();
        ASSERT_TRUE(Create(8 * kMiB));
        Record("flat", count);
        Close();
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
    QString Output() { return Item<QLineEdit>(IDC_PLAYER_OUTPUT).text(); }
    void Click(int id) { QTest::mouseClick(&Item(id), Qt::LeftButton); }
    void Key(int key) { QTest::keyClick(&Slider(), static_cast<Qt::Key>(key)); }
    void GoTo(int position) {
        Key(Qt::Key_Home);
        while (position-- > 0) Key(Qt::Key_Right);
    }

    // What needs a file, and is enabled.
    std::set<int> Enabled() {
        std::set<int> enabled = kPlaying;
        std::erase_if(enabled, [this](int id) { return !Item(id).isEnabled(); });
        return enabled;
    }
    // The slider stands at a position, and the pane shows this record.
    ::testing::AssertionResult At(int position, std::size_t record) {
        const std::string& seen = Item<PreviewPane>(IDC_PLAYER_PANE).GetTimeText();
        if (Slider().value() == position && seen == FormatTime(TimeOf(record))) {
            return ::testing::AssertionSuccess();
        }
        return ::testing::AssertionFailure() << Slider().value() << ", " << seen;
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
    void Render(const char* name) {
        Item<QLineEdit>(IDC_PLAYER_OUTPUT).setText(QString::fromUtf8(name));
        Click(IDC_PLAYER_RENDER);
    }

    const std::set<int> kPlaying{IDC_PLAYER_STOP,  IDC_PLAYER_PAUSE, IDC_PLAYER_PLAY,
                                 IDC_PLAYER_PREV,  IDC_PLAYER_NEXT,  IDC_PLAYER_SLIDER,
                                 IDC_PLAYER_RENDER};
    QTimer poll;
    std::unique_ptr<CPlaybackDlg> dialog;
};

TEST_F(PlaybackDlg, PlaysFilesOfTwoRecordsAndMore) {
    for (const int count : {0, 1, 2, 599, 600, 601, 5000}) {
        SCOPED_TRACE(count);
        RecordFlat(count);
        Open();
        EXPECT_EQ(Output(), QStringLiteral("C:\\chl03.avi"));
        EXPECT_EQ(Enabled(), count < 2 ? std::set<int>() : kPlaying);
        if (count < 2) continue;
        const int last = count - 1;
        EXPECT_EQ(Slider().maximum(), last);
        EXPECT_TRUE(Slider().SelectionStart() == 0 && Slider().SelectionEnd() == last);
        EXPECT_TRUE(At(0, 1));
        for (int press = 0; press < 2; ++press) {
            Click(IDC_PLAYER_PREV);
            EXPECT_TRUE(At(0, 0)) << "the player steps back, the slider doesn't";
        }
        Click(IDC_PLAYER_NEXT);
        EXPECT_TRUE(At(1, 1));
        Click(IDC_PLAYER_PREV);
        EXPECT_TRUE(At(1, 1)) << "does nothing at 1";
        Click(IDC_PLAYER_STOP);
        EXPECT_TRUE(At(0, 1));
        Key(Qt::Key_End);
        EXPECT_TRUE(At(last, 1)) << "nothing new is shown at the end";
        if (count == 2) continue;
        Key(Qt::Key_Left);
        EXPECT_TRUE(At(last - 1, last));
        EXPECT_TRUE(Slider().toolTip().endsWith(QString::fromStdString(FormatTime(TimeOf(last)))));
        for (int press = 0; press < 2; ++press) {
            Click(IDC_PLAYER_NEXT);
            EXPECT_TRUE(At(last, last));
        }
        Key(Qt::Key_Home);
        const int y = Slider().height() / 2;
        QTest::mousePress(&Slider(), Qt::LeftButton, {}, {Slider().PlaceOf(0), y});
        for (int x = Slider().PlaceOf(last) / 2; x > Slider().PlaceOf(0) + 20; x -= 40) {
            QMouseEvent move(QEvent::MouseMove, {qreal(x), qreal(y)},
                             Slider().mapToGlobal(QPoint(x, y)), Qt::NoButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(&Slider(), &move);
            EXPECT_GT(Slider().value(), 0);
            EXPECT_TRUE(At(Slider().value(), Slider().value() + 1)) << "while the thumb is dragged";
        }
        QTest::mouseRelease(&Slider(), Qt::LeftButton, {}, {Slider().PlaceOf(0), y});
    }
    SetFieldText(g_channelInfo[1].recordPath, "missing.dbt");
    auto& channel = Item<QComboBox>(IDC_PLAYER_CHANNEL);
    EXPECT_EQ(channel.itemText(2), QStringLiteral("(03)Gate"));
    QTest::keyClick(&channel, Qt::Key_Up);
    EXPECT_EQ(Enabled(), std::set<int>());
    EXPECT_EQ(Output(), QStringLiteral("C:\\chl02.avi"));
    EXPECT_EQ(Slider().value(), 0);
    RecordFile other;
    ASSERT_TRUE(other.OpenForRead(path)) << "not held any more";
    QTest::keyClick(&channel, Qt::Key_Down);
    EXPECT_EQ(Enabled(), std::set<int>()) << "in use";
    other.CloseReader();
    QTest::keyClick(&channel, Qt::Key_Up);
    QTest::keyClick(&channel, Qt::Key_Down);
    EXPECT_EQ(Enabled(), kPlaying);
}

TEST_F(PlaybackDlg, PlaysAtEverySpeedUntilPausedOrStopped) {
    RecordFlat(40);
    Open();
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
        QTest::keyClick(&speed, Qt::Key_Down);
    }
}

// What a user does while it renders does nothing, then or later; the play timer waits.
TEST_F(PlaybackDlg, RendersTheSelection) {
    RecordFlat(40);
    Open();
    GoTo(12);
    Click(IDC_PLAYER_SELECT_END);
    GoTo(10);
    Click(IDC_PLAYER_SELECT_START);
    EXPECT_TRUE(Slider().SelectionStart() == 10 && Slider().SelectionEnd() == 12);
    When<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.text(), QStringLiteral("Error Creating AVI"));
        box.accept();
    });
    Render("missing/out.avi");
    EXPECT_EQ(Enabled(), kPlaying);
    Click(IDC_PLAYER_PLAY);
    Click(IDC_PLAYER_STOP);
    Click(IDC_PLAYER_PLAY);
    std::vector<int> stops;
    const auto slow =
        QObject::connect(&Slider(), &QSlider::valueChanged, &Slider(), [&](int position) {
            stops.push_back(position);
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                QCoreApplication::postEvent(
                    &Item(IDC_PLAYER_NEXT),
                    new QMouseEvent(type, {5, 5}, {5, 5}, Qt::LeftButton, Qt::LeftButton, {}));
            }
            EXPECT_EQ(Enabled(), std::set<int>());
            QThread::msleep(2 * kPlayMilliseconds);
        });
    Render("out.avi");
    QObject::disconnect(slow);
    EXPECT_EQ(stops, (std::vector{10, 11, 12}));
    EXPECT_TRUE(At(12, 13));
    EXPECT_EQ(Enabled(), kPlaying);
    EXPECT_EQ(dialog->focusWidget(), &Item(IDC_PLAYER_RENDER));
    EXPECT_TRUE(WaitUntil([&] { return Slider().value() > 12; })) << "plays on";
    Click(IDC_PLAYER_PAUSE);
    EXPECT_EQ(CheckAvi("out.avi").samples[0],
              std::vector(pictures.begin() + 11, pictures.begin() + 14));
}

// Of records that no camera sends, too: those that don't decode, and those that can't be read.
TEST_F(PlaybackDlg, RendersTheBytesThatTheToolExports) {
    ASSERT_TRUE(Create(8 * kMiB));
    for (const std::string& picture : Corpus()) ASSERT_TRUE(AppendPicture(picture));
    Record("large_2x2", 20);
    Close();
    Patch(24 + 40 + 5 * 32 + 8, std::uint64_t{kFrameCapacity + 1});  // record 5's length
    Patch(24 + 40 + 7 * 32, std::uint64_t{3});                       // record 7's position
    Open();
    Key(Qt::Key_End);
    Key(Qt::Key_Left);
    Click(IDC_PLAYER_SELECT_END);
    Render("out.avi");
    dialog.reset();
    std::ostringstream said;
    EXPECT_EQ(RunRecordTool({"export", path, "tool.avi", "--first", "1"}, said, said), 1);
    EXPECT_NE(said.str().find("2 records can't be read"), std::string::npos);
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        std::string name = entry.path().filename();
        if (!name.starts_with("out")) continue;
        ++files;
        EXPECT_TRUE(CheckAvi(name).sound) << name;
        EXPECT_TRUE(ReadWholeFile(name) == ReadWholeFile("tool" + name.substr(3))) << name;
    }
    EXPECT_GT(files, 10U);
}

TEST_F(PlaybackDlg, EndsARenderWithAWholeFileWhenTheProgramIsToEnd) {
    RecordFlat(5);
    Open();
    const TerminationWatcher watcher([] { QApplication::closeAllWindows(); });
    QObject::connect(&Slider(), &QSlider::valueChanged, &Slider(), [](int position) {
        if (position == 2) raise(SIGTERM);
        QThread::msleep(20);
    });
    Render("out.avi");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(CheckAvi("out.avi").samples[0].size(), 3U);
    EXPECT_TRUE(CheckAvi("out.avi").sound);
    EXPECT_TRUE(WaitUntil([&] { return !dialog->isVisible(); }));
}

TEST_F(PlaybackDlg, AsksForOtherFiles) {
    RecordFlat(3);
    Open();
    auto& channel = Item<QComboBox>(IDC_PLAYER_CHANNEL);
    When<QFileDialog>([](QFileDialog& chooser) { chooser.reject(); });
    QTest::keyClick(&channel, Qt::Key_End);
    EXPECT_EQ(Enabled(), std::set<int>());
    EXPECT_EQ(Output(), QStringLiteral("C:\\chl03.avi")) << "nothing was chosen";
    When<QFileDialog>([](QFileDialog& chooser) {
        EXPECT_EQ(chooser.nameFilters()[0], QStringLiteral("DBT Files (*.dbt)(*.dbt)"));
        chooser.findChild<QLineEdit*>()->setText(QStringLiteral("channel"));
        QTest::keyClick(chooser.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    Q_EMIT channel.activated(16);
    EXPECT_EQ(Enabled(), kPlaying);
    EXPECT_EQ(Output(), QStringLiteral("C:\\chl17.avi"));
    When<QFileDialog>([](QFileDialog& chooser) {
        EXPECT_TRUE(chooser.selectedFiles()[0].endsWith(QStringLiteral("/chl17.avi")));
        chooser.findChild<QLineEdit*>()->setText(QStringLiteral("gate"));
        QTest::keyClick(chooser.findChild<QLineEdit*>(), Qt::Key_Return);
    });
    Click(IDC_PLAYER_CHOOSE_OUTPUT);
    EXPECT_EQ(Output(), QString::fromStdString(folder.Path() / "gate.avi"));
}

TEST_F(PlaybackDlg, PaintsTheSelectionAlsoWhenItsEndsAreCrossed) {
    RecordFlat(600);
    Open();
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
    for (const auto& [maximum, pixels, interval] : {std::tuple{0, 500, 1},
                                                    {1, 0, 1},
                                                    {80, 500, 1},
                                                    {599, 700, 10},
                                                    {0x7FFFFFFF, 500, 50000000}}) {
        EXPECT_EQ(TickInterval(maximum, pixels), interval) << maximum;
    }
}

TEST_F(PlaybackDlg, IsReachedByKeysAndFitsASmallScreenInALargeFont) {
    RecordFlat(3);
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(20);
    QApplication::setFont(large);
    Open();
    EXPECT_LT(dialog->height(), dialog->screen()->availableSize().height());
    EXPECT_LE(dialog->minimumSizeHint().width(), 1024 - 16);
    EXPECT_LE(dialog->minimumSizeHint().height(), 768 - 48);
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
