#include "display/video_pane.h"

#include "display/pane_geometry.h"
#include "display/popup_info_dlg.h"
#include "display/title_strip.h"

#include <QImage>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

#include <utility>

namespace marvolen {
namespace {

// Drawing thread -> its pane: there is an image to accept.
constexpr std::uint32_t WM_PANEIMAGE = WM_USER + 202;

QRect ToQRect(const PixelRect& rect) {
    return QRect(rect.left, rect.top, rect.Width(), rect.Height());
}

PixelRect ToPixelRect(const QRect& rect) {
    return {rect.left(), rect.top(), rect.left() + rect.width(), rect.top() + rect.height()};
}

}  // namespace

VideoPane::VideoPane(QWidget* parent, DecodeFunction decode)
    : CStatic(parent),
      stripFont(StripFont(font())),
      marks(StatusMarks::Shared()),
      drawThread([this] { PostMessage(WM_PANEIMAGE, 0, 0); }, std::move(decode)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);  // a pane is selected by its window, which then gives it the focus
    setMouseTracking(true);
}

VideoPane::~VideoPane() {
    const std::unique_ptr<CPopupInfoDlg> ownedPopup(popup);
}

bool VideoPane::Open(std::string_view newName, std::uint32_t newMinInterval) {
    update();
    if (!drawThread.Open()) return false;
    timeGate.Open(newMinInterval);
    name = QString::fromUtf8(newName.data(), static_cast<qsizetype>(newName.size()));
    RedrawTitle();
    return true;
}

void VideoPane::Close() {
    drawThread.Close();
    timeGate.Close();
    update();
}

void VideoPane::SetStatus(std::uint32_t set, std::uint32_t clear) {
    status = (status | set) & ~clear;
    RedrawTitle();
}

void VideoPane::Deliver(FramePtr frame) {
    timeGate.Pass(frame->Time());
    PublishView();
    drawThread.QueuePicture(frame->Picture());
    Forward(std::move(frame));
}

void VideoPane::OnMessage(std::uint32_t message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_PANEIMAGE) return CStatic::OnMessage(message, wParam, lParam);
    if (!drawThread.AcceptImage()) return;
    update(ToQRect(VideoArea(width(), height())));
    RedrawTime();
}

// Tells the drawing thread what the pane looks like now. Where that is news, the picture on the
// screen is none any more.
void VideoPane::PublishView() {
    const QPoint origin = mapTo(window(), QPoint(0, 0));
    const PixelRect video = VideoArea(width(), height());
    const PixelRect device = ToDevicePixels(video, origin.x(), origin.y(), devicePixelRatioF());
    const bool shown = isVisible() && !window()->isMinimized();
    if (drawThread.SetView({shown, device.Width(), device.Height()})) update(ToQRect(video));
}

void VideoPane::RedrawTitle() {
    update(TitleStripRegion(size()));
    RedrawTime();
}

// While there is no time, the text drawn last stays until the strip is redrawn.
void VideoPane::RedrawTime() {
    if (RefreshTimeText()) update(ToQRect(kTimeRect));
}

// Brings time text and pop-up up to date. Returns whether there is a time to show.
bool VideoPane::RefreshTimeText() {
    const SYSTEMTIME* time = timeGate.Time();
    if (time) FormatTimeInto(*time, timeText);
    if (popup && popup->isVisible()) popup->RefreshPopup();
    return time != nullptr;
}

void VideoPane::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const PixelRect video = VideoArea(width(), height());
    if (event->region().intersects(ToQRect(video)) && !PaintPicture(painter, video)) {
        painter.fillRect(ToQRect(video), Qt::black);
    }
    if (!event->region().intersects(TitleStripRegion(size()))) return;
    const std::string* time = RefreshTimeText() ? &timeText : nullptr;
    PaintTitleStrip(painter, size(), stripFont, {name, time, status}, *marks);
}

// Copies the current image pixel by pixel onto the video area; false when there is none that fits.
bool VideoPane::PaintPicture(QPainter& painter, const PixelRect& video) {
    const qreal ratio = devicePixelRatioF();
    const QPoint origin = mapTo(window(), QPoint(0, 0));
    const PixelRect device = ToDevicePixels(video, origin.x(), origin.y(), ratio);
    bool painted = false;
    drawThread.DrawImage([&](const ScreenImage& image) {
        if (image.width != device.Width() || image.height != device.Height()) return;
        const QImage pixels(reinterpret_cast<const uchar*>(image.pixels.data()), image.width,
                            image.height, image.width * 4, QImage::Format_RGB32);
        painter.save();
        painter.scale(1 / ratio, 1 / ratio);
        painter.drawImage(
            QPointF(device.left - origin.x() * ratio, device.top - origin.y() * ratio), pixels);
        painter.restore();
        painted = true;
    });
    return painted;
}

void VideoPane::resizeEvent(QResizeEvent* event) {
    CStatic::resizeEvent(event);
    PublishView();
    update();
}

void VideoPane::showEvent(QShowEvent* event) {
    CStatic::showEvent(event);
    if (topLevel != window()) {
        if (topLevel) topLevel->removeEventFilter(this);
        topLevel = window();
        topLevel->installEventFilter(this);
    }
    PublishView();
}

void VideoPane::hideEvent(QHideEvent* event) {
    CStatic::hideEvent(event);
    PublishView();
}

bool VideoPane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == topLevel && event->type() == QEvent::WindowStateChange) PublishView();
    return CStatic::eventFilter(watched, event);
}

void VideoPane::changeEvent(QEvent* event) {
    CStatic::changeEvent(event);
    if (event->type() != QEvent::FontChange) return;
    stripFont = StripFont(font());
    RedrawTitle();
}

void VideoPane::focusInEvent(QFocusEvent*) {
    SetStatus(PANE_SELECTED, 0);
}

void VideoPane::focusOutEvent(QFocusEvent*) {
    RedrawTitle();
}

// Not passed on to the parent, which takes a mouse move over itself for one outside every pane.
void VideoPane::mouseMoveEvent(QMouseEvent* event) {
    CWnd* parent = GetParentWnd();
    if (!parent || !rect().contains(event->position().toPoint())) return;
    parent->PostMessage(WM_POPUPPANE, static_cast<WPARAM>(index), 0);
}

void VideoPane::CreatePopup() {
    if (!popup) popup = new CPopupInfoDlg(*this, parentWidget());
}

void VideoPane::ShowPopup() {
    if (!popup) return;
    popup->RefreshPopup();
    const QRect pane(mapToGlobal(QPoint(0, 0)), size());
    // From its natural size each time: from its current one it would grow with every showing at the
    // bottom of the desktop.
    const QSize wanted = popup->sizeHint();
    popup->setGeometry(ToQRect(PlacePopup(ToPixelRect(pane), wanted.width(), wanted.height(),
                                          ToPixelRect(screen()->geometry()))));
    popup->show();
}

void VideoPane::HidePopup() {
    if (popup) popup->hide();
}

}  // namespace marvolen
