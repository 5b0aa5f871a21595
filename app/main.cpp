#include "app/marvolen_app.h"

#include <QApplication>

int main(int, char** argv) {
    // The program takes no options, the toolkit's included.
    int argc = 1;
    QApplication toolkit(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Marvolen"));
    // By it a Wayland desktop finds the window's icon.
    QApplication::setDesktopFileName(QStringLiteral("marvolen"));
    marvolen::CMarvolenApp app;
    return app.Run();
}
