// How soon a typed letter is on the screen while the Channel Setting dialog previews a camera.
//
//   typing_bench      without a screen: QT_QPA_PLATFORM=offscreen
//
// The preview gets 30 pictures of 704 x 480 a second; one camera in the table is a host that never
// answers. Prints the times from a key to the painted field, and the memory before and after a
// thousand changes of the tab.

#include "bench/photograph_camera.h"
#include "platform/text_field.h"
#include "res/resource_ids.h"
#include "settings/channel_page_dlg.h"
#include "settings/channel_setting_dlg.h"
#include "tools/camera_server/camera_server.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace marvolen {
namespace {

// Notes when a widget is painted.
class PaintWatch final : public QObject {
public:
    explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
    bool painted = false;

private:
    bool eventFilter(QObject*, QEvent* event) override {
        painted = painted || event->type() == QEvent::Paint;
        return false;
    }
};

void Type(CChannelPageDlg& page) {
    auto* field = page.GetDlgItem<QLineEdit>(IDC_PAGE_USER_NAME);
    field->setFocus();
    QTest::qWait(50);
    PaintWatch watch(*field);
    std::vector<double> times;
    for (int k = 0; k < 200; ++k) {
        QTest::qWait(7 + k % 13);  // anywhere between two pictures
        watch.painted = false;
        QElapsedTimer timer;
        timer.start();
        QTest::keyClick(field, k % 2 == 0 ? Qt::Key_X : Qt::Key_Backspace);
        while (!watch.painted) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(times.begin(), times.end());
    std::printf("from a key to the field   median %5.1f ms   longest %5.1f ms\n",
                times[times.size() / 2], times.back());
}

void Run() {
    CameraServer server({.checkCredentials = false, .keepSent = false},
                        std::make_shared<bench::PhotographCamera>());
    if (!server.Start()) return;
    g_channelInfo = FactoryChannelTable();
    for (int k = 0; k < kChannelCount; ++k) {
        ChannelInfo& info = g_channelInfo[static_cast<std::size_t>(k)];
        SetFieldText(info.host, k == 1 ? "192.0.2.1" : "127.0.0.1");
        SetFieldText(info.port, std::to_string(server.Port(k)));
        info.sizeIndex = 0;
    }
    CChannelSettingDlg dialog(nullptr);
    dialog.CreateModeless();
    if (!QTest::qWaitForWindowActive(&dialog) || !server.WaitForSent(0, 10)) return;
    auto* tabs = dialog.GetDlgItem<CChannelTabCtrl>(IDC_SETTING_TABS);
    Type(*tabs->GetPage(0));

    const auto change = [&](int times) {
        for (int k = 0; k < times; ++k) {
            QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->GetItemRect(k % 16).center());
            QTest::qWait(5);
        }
    };
    change(100);
    const double before = bench::ResidentMegabytes();
    QElapsedTimer timer;
    timer.start();
    change(1000);
    std::printf("1000 changes of the tab   %5.1f ms each   %5.1f MB before   %5.1f MB after\n",
                double(timer.elapsed()) / 1000, before, bench::ResidentMegabytes());
}

}  // namespace
}  // namespace marvolen

int main(int argc, char** argv) {
    QApplication toolkit(argc, argv);
    marvolen::Run();
}
