#include "display/picture_pane.h"

#include "display/pane_geometry.h"
#include "display/qt_rect.h"
#include "display/title_strip.h"

#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QStringList>

#include <utility>

namespace marvolen {

PicturePane::PicturePane(QWidget* parent)
    : CStatic(parent), stripFont(StripFont(font())), marks(StatusMarks::Shared()) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PicturePane::OpenTitle(std::string_view newName, std::uint32_t newMinInterval) {
    timeGate.Open(newMinInterval);
    name = QString::fromUtf8(newName.data(), static_cast<qsizetype>(newName.size()));
    RedrawTitle();
    DescribeToAssistiveTools();
}

void PicturePane::SetStatus(std::uint32_t set, std::uint32_t clear) {
    const std::uint32_t before = std::exchange(status, (status | set) & ~clear);
    RedrawTitle();
    if (status == before) return;
    DescribeToAssistiveTools();
    if (((status ^ before) & PANE_SELECTED) == 0) return;
    QAccessible::State changed;
    changed.selected = true;
    NotifyAccessibleState(changed);
}

void PicturePane::SetTrouble(const QString& text) {
    trouble = text;
    setToolTip(text);
    DescribeToAssistiveTools();
}

// Setting either announces it, so only what is new is set.
void PicturePane::DescribeToAssistiveTools() {
    const QString title = AccessibleTitle();
    if (accessibleName() != title) setAccessibleName(title);
    QStringList facts;
    if ((status & PANE_CONNECTED) != 0) facts << QStringLiteral("Connected");
    if ((status & PANE_RECORDING) != 0) facts << QStringLiteral("Recording");
    if (!trouble.isEmpty()) facts << trouble;
    const QString description = facts.join(QStringLiteral(". "));
    if (accessibleDescription() != description) setAccessibleDescription(description);
}

void PicturePane::AddAccessibleState(QAccessible::State& state) const {
    state.selectable = true;
    state.selected = (status & PANE_SELECTED) != 0;
}

bool PicturePane::IsShown() const {
    return isVisible() && !window()->isMinimized();
}

QRect PicturePane::VideoRect() const {
    return ToQRect(VideoArea(width(), height()));
}

// The video area in device pixels of the window.
QRect PicturePane::ImageRect() const {
    const QPoint origin = mapTo(window(), QPoint(0, 0));
    return ToQRect(
        ToDevicePixels(VideoArea(width(), height()), origin.x(), origin.y(), devicePixelRatioF()));
}

QSize PicturePane::ImageSize() const {
    return ImageRect().size();
}

void PicturePane::RedrawTitle() {
    update(TitleStripRegion(size()));
    RefreshTimeText();
}

void PicturePane::RedrawPicture() {
    update(VideoRect());
    const std::string* text = RefreshTimeText();
    if (!text || *text == shownTime) return;
    shownTime = *text;
    update(ToQRect(kTimeRect));
}

// Returns the text to show, null when there is no time.
const std::string* PicturePane::FormatTime() {
    const SYSTEMTIME* time = timeGate.Time();
    if (!time) return nullptr;
    FormatTimeInto(*time, timeText);
    return &timeText;
}

// The same for all who show it.
const std::string* PicturePane::RefreshTimeText() {
    const std::string* text = FormatTime();
    if (!text) shownTime.clear();
    Q_EMIT titleChanged();
    return text;
}

void PicturePane::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect video = VideoRect();
    if (event->region().intersects(video) && !PaintPicture(painter)) {
        painter.fillRect(video, Qt::black);
    }
    if (!event->region().intersects(TitleStripRegion(size()))) return;
    PaintTitleStrip(painter, size(), stripFont, {name, FormatTime(), status}, *marks);
}

bool PicturePane::PaintImage(QPainter& painter, const ScreenImage& image) const {
    const QRect place = ImageRect();
    if (place.size() != QSize(image.width, image.height)) return false;
    const QImage pixels(reinterpret_cast<const uchar*>(image.pixels.data()), image.width,
                        image.height, image.width * 4, QImage::Format_RGB32);
    const qreal ratio = devicePixelRatioF();
    painter.save();
    painter.scale(1 / ratio, 1 / ratio);
    painter.drawImage(place.topLeft() - QPointF(mapTo(window(), QPoint(0, 0))) * ratio, pixels);
    painter.restore();
    return true;
}

void PicturePane::resizeEvent(QResizeEvent* event) {
    CStatic::resizeEvent(event);
    update();
}

void PicturePane::changeEvent(QEvent* event) {
    CStatic::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    stripFont = StripFont(font());
    RedrawTitle();
}

void PicturePane::focusInEvent(QFocusEvent*) {
    SetStatus(PANE_SELECTED, 0);
}

void PicturePane::focusOutEvent(QFocusEvent*) {
    RedrawTitle();
}

}  // namespace marvolen
