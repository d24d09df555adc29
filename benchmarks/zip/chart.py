"""One SVG chart of how many times as fast as 7-Zip each set is zipped, plain and encrypted."""
from xml.sax.saxutils import escape

BAR, GAP, GROUP = 9, 2, 34  # pixels
LEFT, RIGHT, TOP, BOTTOM, WIDTH = 190, 50, 56, 40, 760
COLOURS = {"plain": "#2f6fb0", "AES-256": "#e0913a"}
TEXT, GRID = "#333333", "#d8d8d8"


def text(x, y, content, anchor="start", size=12):
    return f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" fill="{TEXT}">{escape(content)}</text>'


def grid(most, height, place):
    """A line for each whole number, fewer when they get many."""
    step = 1 if most <= 12 else 2 if most <= 24 else 5
    parts = []
    for value in range(0, int(most) + 1, step):
        x = place(value)
        parts.append(f'<line x1="{x:.1f}" y1="{TOP - 6}" x2="{x:.1f}" y2="{height - BOTTOM}" stroke="{GRID}"/>')
        parts.append(text(x, height - BOTTOM + 16, str(value), "middle", 11))
    return parts


def legend():
    parts, x = [], LEFT
    for form, colour in COLOURS.items():
        parts.append(f'<rect x="{x}" y="32" width="11" height="11" fill="{colour}"/>')
        parts.append(text(x + 16, 42, form))
        x += 90
    return parts


def draw(rows):
    """rows: (name of the set, form, times as fast), both forms of a set one after the other."""
    names = list(dict.fromkeys(name for name, _, _ in rows))
    ratios = {(name, form): ratio for name, form, ratio in rows}
    most = max(ratios.values()) * 1.02
    height = TOP + GROUP * len(names) + BOTTOM

    def place(value):
        return LEFT + (WIDTH - LEFT - RIGHT) * value / most

    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" font-family="sans-serif">',
             f'<rect width="{WIDTH}" height="{height}" fill="#ffffff"/>',
             text(LEFT, 20, "Zipping: times as fast as 7-Zip with as many threads", size=14), *legend(),
             *grid(most, height, place)]
    for row, name in enumerate(names):
        top = TOP + GROUP * row
        parts.append(text(LEFT - 10, top + BAR + GAP + 3, name, "end"))
        for line, form in enumerate(COLOURS):
            if (name, form) not in ratios:
                continue
            ratio, y = ratios[name, form], top + line * (BAR + GAP)
            parts.append(f'<rect x="{LEFT}" y="{y}" width="{place(ratio) - LEFT:.1f}" height="{BAR}" fill="{COLOURS[form]}"/>')
            parts.append(text(place(ratio) + 4, y + BAR - 1, f"{ratio:.1f}", size=10))
    parts.append("</svg>")
    return "\n".join(parts) + "\n"
