#pragma once

// CRangeSlider: a slider of positions with a range marked on it.
//
// The range is filled on the groove, and each of its ends has a mark above: a flag that points into
// the range. Where the start lies beyond the end the flags point away from each other, and nothing
// is filled. Ticks below the groove keep their distance however many positions there are.
//
// Interface thread only.

#include <QSlider>

class QStyleOptionSlider;

namespace marvolen {

class CRangeSlider final : public QSlider {
    Q_OBJECT

public:
    // Positions 0 to 0, all of them in the range. The parent owns it.
    explicit CRangeSlider(QWidget* parent);

    // Positions 0 to maximum.
    void SetMaximum(int maximum);

    // Moves the thumb without telling of it.
    void SetPosition(int position);

    // Marks the range from start to end, in any order. Both are positions.
    void SetSelection(int start, int end);
    int SelectionStart() const { return selectionStart; }
    int SelectionEnd() const { return selectionEnd; }

    // Where the middle of the thumb stands at a position; in the widget's pixels.
    int PlaceOf(int position) const;

    // The tool tip; one that is seen, or that dragging shows, changes at once.
    void ShowTip(const QString& text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    // The user has moved the thumb here, or let go of it: each key, click, turn of the wheel, and
    // every step of dragging, and what an assistive tool sets.
    void scrolled(int position);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRect Thumb(const QStyleOptionSlider& option) const;
    void PaintTicks(QPainter& painter, int top) const;
    void PaintRange(QPainter& painter, int top) const;
    void PaintFlag(QPainter& painter, int place, int direction, int bottom) const;

    bool settingPosition = false;
    int selectionStart = 0;
    int selectionEnd = 0;
};

}  // namespace marvolen
