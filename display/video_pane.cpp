#include "display/video_pane.h"

#include "display/popup_info_dlg.h"
#include "display/qt_rect.h"

#include <QMouseEvent>
#include <QScreen>

#include <utility>

namespace marvolen {

VideoPane::VideoPane(QWidget* parent, DecodeFunction decode)
    : PicturePane(parent),
      drawThread([this] { Q_EMIT imageFinished(QPrivateSignal()); }, std::move(decode)) {
    setFocusPolicy(Qt::NoFocus);  // a pane is selected by its window, which then gives it the focus
    setMouseTracking(true);
    connect(this, &CStatic::clicked, this, [this] { Q_EMIT clicked(this); });
    connect(this, &VideoPane::imageFinished, this, &VideoPane::AcceptImage, Qt::QueuedConnection);
}

VideoPane::~VideoPane() {
    const std::unique_ptr<CPopupInfoDlg> ownedPopup(popup);
}

bool VideoPane::Open(std::string_view newName, std::uint32_t newMinInterval) {
    update();
    if (!drawThread.Open()) return false;
    OpenTitle(newName, newMinInterval);
    return true;
}

void VideoPane::Close() {
    drawThread.Close();
    CloseTitle();
    update();
}

void VideoPane::Deliver(FramePtr frame) {
    PassTime(frame->Time());
    PublishView();
    drawThread.QueuePicture(frame->Picture());
    Forward(std::move(frame));
}

void VideoPane::AcceptImage() {
    if (!drawThread.AcceptImage()) return;
    ++shownCount;
    RedrawPicture();
}

// Tells the drawing thread what the pane looks like now. Where that is news, the picture on the
// screen is none any more.
void VideoPane::PublishView() {
    const QSize image = ImageSize();
    if (drawThread.SetView({IsShown(), image.width(), image.height()})) {
        update(VideoRect());
    }
}

bool VideoPane::PaintPicture(QPainter& painter) {
    bool painted = false;
    drawThread.DrawImage([&](const ScreenImage& image) { painted = PaintImage(painter, image); });
    return painted;
}

QString VideoPane::AccessibleTitle() const {
    const QString channel = QStringLiteral("NET.%1").arg(index + 1);
    const bool named = !GetName().isEmpty() && GetName() != channel;
    return named ? channel + QLatin1Char(' ') + GetName() : channel;
}

void VideoPane::resizeEvent(QResizeEvent* event) {
    PicturePane::resizeEvent(event);
    PublishView();
}

void VideoPane::showEvent(QShowEvent* event) {
    PicturePane::showEvent(event);
    if (topLevel != window()) {
        if (topLevel) topLevel->removeEventFilter(this);
        topLevel = window();
        topLevel->installEventFilter(this);
    }
    PublishView();
}

void VideoPane::hideEvent(QHideEvent* event) {
    PicturePane::hideEvent(event);
    PublishView();
}

bool VideoPane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == topLevel && event->type() == QEvent::WindowStateChange) PublishView();
    return PicturePane::eventFilter(watched, event);
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
