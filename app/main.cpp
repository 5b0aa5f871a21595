#include "app/marvolen_app.h"

#include <QApplication>

int main(int argc, char** argv) {
    QApplication toolkit(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Marvolen"));
    marvolen::CMarvolenApp app;
    return app.Run();
}
