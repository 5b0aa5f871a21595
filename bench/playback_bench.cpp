// How quickly the Playback dialog answers over a full recording of 704 x 480.
//
//   playback_bench [MiB]     in the current folder, which needs as much; 1024 if left out.
//                            Without a screen: QT_QPA_PLATFORM=offscreen
//
// Prints the time from the choice of a channel to its first picture, the longest of many; the time
// from a place under the dragged thumb to its picture on the pane; and, while it plays at 16 X, how
// far apart the ticks of its timer come.

#include "bench/photograph.h"
#include "net/frame_pool.h"
#include "platform/text_field.h"
#include "playback/playback_dlg.h"
#include "record/record_file.h"
#include "res/resource_ids.h"

#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QSlider>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace marvolen {
namespace {

constexpr const char* kPath = "playback_bench.dbt";
constexpr int kChannel = 6;

void Require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "playback_bench: %s\n", what);
    std::exit(1);
}

// A ring of this size that has begun its second turn.
void Record(std::uint64_t maxSize) {
    std::vector<std::vector<std::uint8_t>> pictures;
    for (unsigned seed = 0; seed < 16; ++seed) {
        pictures.push_back(bench::EncodeJpeg(bench::MakePhotograph(704, 480, 6, seed), 80));
    }
    FramePool pool;
    RecordFile file;
    Require(pool.Init(kFrameCapacity, 1) && file.CreateNew(kPath, maxSize), "can't record");
    const FramePtr frame = pool.Acquire();
    frame->SetTime(LocalTimeNow());
    std::uint64_t written = 0;
    for (std::size_t k = 0; written < maxSize + maxSize / 8; ++k) {
        const std::vector<std::uint8_t>& picture = pictures[k % pictures.size()];
        std::memcpy(frame->Data(), picture.data(), picture.size());
        frame->SetLength(static_cast<std::uint32_t>(picture.size()));
        Require(file.WriteFrame(*frame), "can't record");
        written += picture.size();
    }
}

void PrintTimes(const char* what, std::vector<double> milliseconds) {
    std::sort(milliseconds.begin(), milliseconds.end());
    std::printf("%-32s median %6.1f ms   longest %6.1f ms   of %zu\n", what,
                milliseconds[milliseconds.size() / 2], milliseconds.back(), milliseconds.size());
}

template <typename Work>
double Milliseconds(Work work) {
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

void ChooseTheChannel(CPlaybackDlg& dialog) {
    auto* box = dialog.GetDlgItem<QComboBox>(IDC_PLAYER_CHANNEL);
    std::vector<double> times;
    for (int k = 0; k < 20; ++k) {
        times.push_back(Milliseconds([&] { Q_EMIT box->activated(kChannel); }));
    }
    PrintTimes("from a channel to its picture", times);
}

void DragTheThumb(CPlaybackDlg& dialog) {
    auto* slider = dialog.GetDlgItem<QSlider>(IDC_PLAYER_SLIDER);
    const int y = slider->height() / 2;
    QTest::mousePress(slider, Qt::LeftButton, {}, {8, y});
    std::vector<double> times;
    for (int x = 9; x < slider->width() - 8; ++x) {
        const int before = slider->value();
        const double time = Milliseconds([&] { QTest::mouseMove(slider, {x, y}, 0); });
        if (slider->value() != before) times.push_back(time);
    }
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {slider->width() - 8, y});
    Require(times.size() > 100, "the thumb doesn't follow");
    PrintTimes("from a dragged place to its picture", times);
}

void PlayAtSixteen(CPlaybackDlg& dialog) {
    auto* slider = dialog.GetDlgItem<QSlider>(IDC_PLAYER_SLIDER);
    auto* speed = dialog.GetDlgItem<QComboBox>(IDC_PLAYER_SPEED);
    speed->setCurrentIndex(4);
    Q_EMIT speed->activated(4);
    QTest::mouseClick(dialog.GetDlgItem(IDC_PLAYER_STOP), Qt::LeftButton);
    QTest::mouseClick(dialog.GetDlgItem(IDC_PLAYER_PLAY), Qt::LeftButton);
    std::vector<double> gaps;
    QElapsedTimer sinceTick;
    QObject::connect(slider, &QSlider::valueChanged, &dialog, [&](int) {
        if (sinceTick.isValid()) gaps.push_back(double(sinceTick.nsecsElapsed()) / 1e6);
        sinceTick.start();
    });
    QElapsedTimer total;
    total.start();
    while (slider->value() < slider->maximum()) QTest::qWait(1);
    const double mean = double(total.elapsed()) / double(gaps.size() + 1);
    PrintTimes("from a tick at 16 X to the next", gaps);
    std::printf("%-32s %6.1f ms a tick, to the end of %d records\n", "", mean,
                slider->maximum() + 1);
}

void Run(std::uint64_t megabytes) {
    Record(megabytes * 1048576);
    g_channelInfo = FactoryChannelTable();
    SetFieldText(g_channelInfo[kChannel].recordPath, kPath);
    CPlaybackDlg dialog(nullptr, kChannel);
    dialog.CreateModeless();
    Require(QTest::qWaitForWindowActive(&dialog), "no window");
    ChooseTheChannel(dialog);
    DragTheThumb(dialog);
    PlayAtSixteen(dialog);
    std::filesystem::remove(kPath);
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    QApplication toolkit(argc, argv);
    marvolen::Run(argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1024);
}
