"""The contrast of texts on a picture of the screen, found where the accessibility tree says that something has a name.

Graphics, disabled controls and what has the color of a price are left out: a text is what differs from the ground of its box,
and prices have saturated colors."""

ENOUGH = 4.5
_GROUND_TOLERANCE = 24   # of a channel: what is closer to the ground is its gradient
_SATURATED = 0.3         # prices, logos
_WORD_GAP = 12           # pixels; words that are closer are one text
_SMALLEST = (8, 6)       # pixels; what is smaller is a point or a line
_FRAME = 3               # pixels of a control's edge
_ICON_BUTTON = 40        # pixels; narrower buttons have a symbol and no text
_TITLE_HEIGHT = 18       # pixels at the top of a group, where its title is
_GRAPHICS = {"application", "frame", "window", "scroll bar", "scroll pane", "slider", "list", "page tab list", "separator", "icon"}


class Area:
    """A part of the screen that the tree does not have, as a node."""

    role = "area"

    def __init__(self, name, box):
        self.name = self.key = name
        self._box = box

    def has_state(self, _):
        return True

    def extents(self):
        return self._box


def contrast(first, second):
    """From 1 to 21, as the Web Content Accessibility Guidelines compute it."""
    lighter, darker = sorted((_luminance(first), _luminance(second)), reverse=True)
    return (lighter + 0.05) / (darker + 0.05)


def text_contrasts(picture, nodes):
    """Triples of contrast, name and role of the texts that the nodes show: pairs of a node and those that contain it."""
    found = []
    for node, box, inner in _boxes(nodes):
        if node.role in _GRAPHICS or not node.name or not node.has_state("sensitive"):
            continue
        if node.role == "push button" and box[2] < _ICON_BUTTON:
            continue
        if node.role == "panel" and inner:
            box = (box[0], box[1], box[2], min(box[3], _TITLE_HEIGHT))
        found += [(value, node.name, node.role) for value in _contrasts_in(picture, box, inner)]
    return found


def _boxes(nodes):
    """Each node of those shown, the part of it that is in sight, and the boxes of what it contains."""
    shown = []
    for node, ancestors in nodes:
        box = node.extents()
        for ancestor in ancestors:
            if ancestor.role != "application":
                box = _common(box, ancestor.extents())
        if box[2] > 0 and box[3] > 0:
            shown.append((node, box, [ancestor.key for ancestor in ancestors]))
    for node, box, _ in shown:
        yield node, box, [inside for _, inside, ancestors in shown if node.key in ancestors]


def _common(first, second):
    left, top = max(first[0], second[0]), max(first[1], second[1])
    right = min(first[0] + first[2], second[0] + second[2])
    bottom = min(first[1] + first[3], second[1] + second[3])
    return left, top, right - left, bottom - top


def _contrasts_in(picture, box, inner):
    left, top, width, height = box
    frame = _FRAME if height > 16 else 0
    columns = range(max(left + frame, 0), min(left + width - frame, picture.width))
    rows = range(max(top + frame, 0), min(top + height - frame, picture.height))
    pixels = {(x, y): picture.at(x, y) for y in rows for x in columns
              if not any(a <= x < a + c and b <= y < b + d for a, b, c, d in inner)}
    if not pixels:
        return
    counts = {}
    for color in pixels.values():
        counts[color] = counts.get(color, 0) + 1
    ground = max(counts, key=counts.get)
    ink = {place: color for place, color in pixels.items() if _distance(color, ground) > _GROUND_TOLERANCE}
    for line in _runs(sorted({y for _, y in ink}), 1):
        lines = {place: color for place, color in ink.items() if line[0] <= place[1] <= line[-1]}
        for word in _runs(sorted({x for x, _ in lines}), _WORD_GAP):
            if word[-1] - word[0] < _SMALLEST[0] or line[-1] - line[0] < _SMALLEST[1]:
                continue
            colors = [color for place, color in lines.items() if word[0] <= place[0] <= word[-1]]
            strongest = max(colors, key=lambda color: contrast(color, ground))
            if _saturation(strongest) < _SATURATED:
                yield contrast(strongest, ground)


def _runs(numbers, gap):
    """The numbers in groups whose neighbors are no more than `gap` apart."""
    groups = []
    for number in numbers:
        if groups and number - groups[-1][-1] <= gap:
            groups[-1].append(number)
        else:
            groups.append([number])
    return groups


def _distance(first, second):
    return max(abs(a - b) for a, b in zip(first, second))


def _saturation(color):
    return (max(color) - min(color)) / max(max(color), 1)


def _luminance(color):
    channels = [value / 255 for value in color]
    red, green, blue = (c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in channels)
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue
