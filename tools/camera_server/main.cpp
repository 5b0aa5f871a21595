// The camera_server program: serves until it is told to end.

#include "config/settings_file.h"
#include "platform/descriptor.h"
#include "platform/thread_annotations.h"
#include "tools/camera_server/camera_server.h"
#include "tools/camera_server/command_line.h"
#include "tools/camera_server/control.h"
#include "tools/camera_server/folder_pictures.h"
#include "tools/camera_server/settings_writer.h"
#include "tools/camera_server/still_pictures.h"

#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <iterator>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/signalfd.h>
#include <vector>

namespace {

using namespace marvolen;

// Whole lines, at once, from any thread.
void Print(const std::string& line) {
    static Mutex lock;
    const MutexLock guard(lock);
    std::fputs(line.c_str(), stdout);
    std::fflush(stdout);
}

int Fail(const std::string& text) {
    std::fprintf(stderr, "camera_server: %s\n", text.c_str());
    return 1;
}

// Blocks SIGTERM and SIGINT in this thread and those it starts, and makes them readable instead.
// Where that isn't to be had they end the program as they end any.
Descriptor CatchSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    Descriptor readable(::signalfd(-1, &signals, SFD_CLOEXEC));
    if (readable.IsOpen()) pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return readable;
}

// Carries out commands until one of them, or a signal, says to end. Without standard input only a
// signal does.
void RunUntilTold(CameraServer& server, int channelCount, const Descriptor& signals) {
    pollfd polls[2] = {{signals.Get(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    std::string pending;
    for (;;) {
        if (::poll(polls, 2, -1) < 0) continue;
        if (polls[0].revents != 0) return;
        if (polls[1].revents == 0) continue;
        char bytes[512];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof bytes);
        if (count <= 0) {
            polls[1].fd = -1;
            continue;
        }
        pending.append(bytes, static_cast<std::size_t>(count));
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
            const ControlReply reply = RunCommand(pending.substr(0, end), server, channelCount);
            pending.erase(0, end + 1);
            Print(reply.text);
            if (reply.quit) return;
        }
    }
}

std::shared_ptr<PictureSource> MakePictures(const CommandLine& commandLine) {
    if (commandLine.folder.empty()) {
        return std::make_shared<StillPictures>(commandLine.loopLength, commandLine.names);
    }
    auto folder = std::make_shared<FolderPictures>();
    if (!folder->Load(commandLine.folder)) return nullptr;
    return folder;
}

int Serve(CommandLine& commandLine) {
    const Descriptor signals = CatchSignals();
    const int channelCount = commandLine.server.channelCount;
    const auto pictures = MakePictures(commandLine);
    if (!pictures) return Fail("no JPEG files in " + commandLine.folder);
    commandLine.server.log = [](const std::string& line) { Print(line + '\n'); };
    CameraServer server(commandLine.server, pictures);
    if (!server.Start()) return Fail(server.Error());
    for (int k = 0; k < channelCount; ++k) {
        const auto at = static_cast<std::size_t>(k);
        const std::string name = at < commandLine.names.size() ? ' ' + commandLine.names[at] : "";
        Print("NET." + std::to_string(k + 1) + ' ' + commandLine.server.address + ':' +
              std::to_string(server.Port(k)) + name + '\n');
    }
    Print("ready\n");
    RunUntilTold(server, channelCount, signals);
    server.Stop();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CommandLine commandLine;
    std::string error;
    if (!ParseCommandLine({std::next(argv), std::next(argv, argc)}, commandLine, error)) {
        return Fail(error + " (--help tells more)");
    }
    if (commandLine.help) {
        Print(HelpText());
        return 0;
    }
    if (!commandLine.settingsFile.empty() &&
        !WriteSettingsFile(commandLine.settingsFile, MakeChannelTable(commandLine))) {
        return Fail("can't write " + commandLine.settingsFile);
    }
    if (!commandLine.serve) return 0;

    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    return Serve(commandLine);
}
