#include "playback/range_slider.h"

#include "playback/slider_ticks.h"

#include <QStyleOptionSlider>
#include <QStylePainter>
#include <QToolTip>

#include <algorithm>
#include <cstdlib>

namespace marvolen {
namespace {

constexpr int kTickGap = 3;  // below the thumb
constexpr int kTickLength = 4;
constexpr int kFlagWidth = 7;
constexpr int kFlagHeight = 8;
constexpr int kRangeHeight = 4;
constexpr int kMargin = kFlagHeight + 2;  // above and below the thumb
constexpr QSize kLeastSize(160, 0);
constexpr int kPages = 5;  // the whole way

}  // namespace

CRangeSlider::CRangeSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    SetMaximum(0);
    // Within the action the slider's position is the new one and its value the former one.
    connect(this, &QSlider::actionTriggered, this, [this] { Q_EMIT scrolled(sliderPosition()); });
    connect(this, &QSlider::sliderReleased, this, [this] { Q_EMIT scrolled(value()); });
    // Assistive tools set the value without an action.
    connect(this, &QSlider::valueChanged, this, [this](int position) {
        if (!settingPosition) Q_EMIT scrolled(position);
    });
}

void CRangeSlider::SetMaximum(int maximum) {
    settingPosition = true;
    setRange(0, maximum);
    settingPosition = false;
    setPageStep(std::max(1, maximum / kPages));
    update();
}

void CRangeSlider::SetPosition(int position) {
    settingPosition = true;
    setValue(position);
    settingPosition = false;
}

void CRangeSlider::SetSelection(int start, int end) {
    selectionStart = start;
    selectionEnd = end;
    update();
}

void CRangeSlider::ShowTip(const QString& text) {
    if (text == toolTip()) return;
    const bool isSeen = QToolTip::isVisible() && QToolTip::text() == toolTip();
    setToolTip(text);
    if (!isSeen && !isSliderDown()) return;
    QToolTip::showText(mapToGlobal(QPoint(PlaceOf(sliderPosition()), height())), text, this);
}

QSize CRangeSlider::sizeHint() const {
    return QSlider::sizeHint() + QSize(0, 2 * kMargin);
}

QSize CRangeSlider::minimumSizeHint() const {
    return QSlider::minimumSizeHint().expandedTo(kLeastSize) + QSize(0, 2 * kMargin);
}

int CRangeSlider::PlaceOf(int position) const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect groove =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderGroove, this);
    const int thumb = style()->pixelMetric(QStyle::PM_SliderLength, &option, this);
    return groove.left() + thumb / 2 +
           QStyle::sliderPositionFromValue(minimum(), maximum(), position, groove.width() - thumb,
                                           option.upsideDown);
}

QRect CRangeSlider::Thumb(const QStyleOptionSlider& option) const {
    return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
}

// The thumb above everything, the groove without the part that styles fill up to the thumb.
void CRangeSlider::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QStyle::SubControls pressed = option.activeSubControls;
    QStyleOptionSlider groove = option;
    groove.subControls = QStyle::SC_SliderGroove;
    groove.sliderPosition = option.minimum;
    painter.drawComplexControl(QStyle::CC_Slider, groove);
    if (maximum() > 0) {
        PaintTicks(painter, Thumb(option).bottom() + kTickGap);
        PaintRange(painter, Thumb(option).center().y() - kRangeHeight / 2);
    }
    option.subControls = QStyle::SC_SliderHandle;
    option.activeSubControls = pressed;
    painter.drawComplexControl(QStyle::CC_Slider, option);
}

void CRangeSlider::PaintTicks(QPainter& painter, int top) const {
    QColor colour = palette().color(QPalette::WindowText);
    colour.setAlphaF(0.5F);
    painter.setPen(colour);
    const int length = std::abs(PlaceOf(maximum()) - PlaceOf(0));
    const std::int64_t interval = TickInterval(maximum(), length);
    const auto tick = [&](int position) {
        painter.drawLine(PlaceOf(position), top, PlaceOf(position), top + kTickLength - 1);
    };
    for (std::int64_t k = 0; k + interval <= maximum(); k += interval) tick(static_cast<int>(k));
    tick(maximum());
}

void CRangeSlider::PaintRange(QPainter& painter, int top) const {
    const int first = PlaceOf(selectionStart);
    const int last = PlaceOf(selectionEnd);
    if (selectionStart <= selectionEnd) {
        painter.fillRect(std::min(first, last), top, std::abs(last - first) + 1, kRangeHeight,
                         palette().color(QPalette::Highlight));
    }
    const int inwards = layoutDirection() == Qt::RightToLeft ? -1 : +1;
    PaintFlag(painter, first, inwards, top);
    PaintFlag(painter, last, -inwards, top);
}

// A pole at an end of the range, from the top edge down to the groove, with a flag on it.
void CRangeSlider::PaintFlag(QPainter& painter, int place, int direction, int bottom) const {
    const QColor colour = palette().color(QPalette::WindowText);
    painter.setPen(colour);
    painter.drawLine(place, 0, place, bottom);
    const QPointF pole(place + 0.5, 0);
    const QPointF flag[] = {pole, pole + QPointF(direction * kFlagWidth, kFlagHeight / 2.0),
                            pole + QPointF(0, kFlagHeight)};
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawPolygon(flag, 3);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

}  // namespace marvolen
