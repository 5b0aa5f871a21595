#include "res/resources.h"

#include "res/resource_ids.h"

#include <QGuiApplication>
#include <QPainter>
#include <QSvgRenderer>

#include <array>

// Resources of a static library are registered by hand; the macro must stand outside namespaces.
static void RegisterResources() {
    Q_INIT_RESOURCE(marvolen);
}

namespace marvolen {
namespace {

// Sizes in device-independent pixels, and the device pixel ratios at which they are drawn.
constexpr std::array kIconEdges = {16, 20, 24, 32, 48, 64, 128, 256};
constexpr std::array<qreal, 3> kIconRatios = {1, 2, 3};

QString ImageFile(int id) {
    switch (id) {
        case IDR_MAIN_ICON:
            return QStringLiteral(":/marvolen.svg");
        case IDB_LOGO:
            return QStringLiteral(":/logo.svg");
        case IDI_NEXT_PAGE:
            return QStringLiteral(":/next_page.svg");
        case IDI_PREVIOUS_PAGE:
            return QStringLiteral(":/previous_page.svg");
        case IDC_DROP_CURSOR:
            return QStringLiteral(":/drop_cursor.svg");
        case IDC_CLEAR_CURSOR:
            return QStringLiteral(":/clear_cursor.svg");
        default:
            return QString();
    }
}

QPixmap Draw(const QString& file, QSize size, qreal devicePixelRatio) {
    if (file.isEmpty()) return {};
    RegisterResources();
    QSvgRenderer renderer(file);
    if (!renderer.isValid()) return {};
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPixmap pixmap(size * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    return pixmap;
}

// The shape in one colour.
QPixmap Tinted(QPixmap shape, const QColor& colour) {
    if (shape.isNull()) return shape;
    QPainter painter(&shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(QRectF(QPointF(0, 0), shape.deviceIndependentSize()), colour);
    return shape;
}

constexpr QSize kCursorSize(24, 24);
constexpr QPoint kCursorHotSpot(8, 8);

}  // namespace

QString LoadString(int id) {
    switch (id) {
        case IDS_ABOUT_MENU:
            return QStringLiteral("About Marvolen(&A)...");
        case IDS_SOCKETS_FAILED:
            return QStringLiteral("Windows sockets ?????");
        default:
            return {};
    }
}

QPixmap LoadImage(int id, QSize size, qreal devicePixelRatio) {
    return Draw(ImageFile(id), size, devicePixelRatio);
}

QPixmap LoadStatusMark(int mark, QSize size, qreal devicePixelRatio) {
    static const std::array<QString, 2> files = {QStringLiteral(":/recording_mark.svg"),
                                                 QStringLiteral(":/connected_mark.svg")};
    if (mark < 0 || mark >= static_cast<int>(files.size())) return {};
    return Draw(files[static_cast<std::size_t>(mark)], size, devicePixelRatio);
}

QIcon LoadIcon(int id) {
    QIcon icon;
    for (const qreal ratio : kIconRatios) {
        for (const int edge : kIconEdges) {
            icon.addPixmap(LoadImage(id, QSize(edge, edge), ratio));
        }
    }
    return icon;
}

QIcon LoadTintedIcon(int id, const QPalette& palette) {
    const QColor enabled = palette.color(QPalette::Active, QPalette::ButtonText);
    const QColor disabled = palette.color(QPalette::Disabled, QPalette::ButtonText);
    QIcon icon;
    for (const qreal ratio : kIconRatios) {
        for (const int edge : kIconEdges) {
            const QPixmap shape = LoadImage(id, QSize(edge, edge), ratio);
            icon.addPixmap(Tinted(shape, enabled), QIcon::Normal);
            icon.addPixmap(Tinted(shape, disabled), QIcon::Disabled);
        }
    }
    return icon;
}

QCursor LoadCursor(int id) {
    const QPixmap shape = LoadImage(id, kCursorSize, qGuiApp->devicePixelRatio());
    if (shape.isNull()) return QCursor(Qt::ArrowCursor);
    return QCursor(shape, kCursorHotSpot.x(), kCursorHotSpot.y());
}

}  // namespace marvolen
