"""Draws columns of samples over time as an SVG, a strip for each."""

from xml.sax.saxutils import escape

WIDTH, STRIP, LEFT, RIGHT, TOP = 900, 120, 150, 20, 30


def nice(value):
    return f"{value:.0f}" if abs(value) >= 100 or value == int(value) else f"{value:.2f}"


def strip(index, label, seconds, values):
    low, high = min(0, *values), max(*values, 1e-9)
    top = TOP + index * STRIP
    inner = STRIP - 30
    span = max(seconds[-1] - seconds[0], 1e-9)
    points = " ".join(
        f"{LEFT + (WIDTH - LEFT - RIGHT) * (second - seconds[0]) / span:.1f},"
        f"{top + inner - inner * (value - low) / (high - low):.1f}"
        for second, value in zip(seconds, values))
    return [
        f'<text x="8" y="{top + inner / 2:.0f}">{escape(label)}</text>',
        f'<text x="{LEFT - 6}" y="{top + 10}" text-anchor="end">{nice(high)}</text>',
        f'<text x="{LEFT - 6}" y="{top + inner}" text-anchor="end">{nice(low)}</text>',
        f'<path d="M{LEFT} {top}V{top + inner}H{WIDTH - RIGHT}" fill="none" stroke="#aaa"/>',
        f'<polyline points="{points}" fill="none" stroke="#1560bd" stroke-width="1.3"/>',
    ]


def draw(path, title, seconds, columns):
    """columns: label -> values, as many as there are seconds, at least one."""
    height = TOP + STRIP * len(columns)
    lines = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
        'font-family="sans-serif" font-size="12">',
        f'<rect width="{WIDTH}" height="{height}" fill="white"/>',
        f'<text x="8" y="18" font-weight="bold">{escape(title)}</text>',
    ]
    for index, (label, values) in enumerate(columns.items()):
        lines += strip(index, label, seconds, values)
    path.write_text("\n".join(lines + ["</svg>", ""]))
