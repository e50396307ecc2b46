"""Pictures of a screen, as the tests compare them."""


class Picture:
    """The pixels of a binary PPM file: 8-bit red, green and blue, top row first."""

    def __init__(self, ppm):
        magic, width, height, depth, pixels = _split_header(ppm)
        if magic != b"P6" or depth != 255:
            raise ValueError(f"not an 8-bit binary PPM: {magic!r}, depth {depth}")
        self.width = width
        self.height = height
        self._pixels = pixels

    def same(self, other):
        """Whether every pixel is equal."""
        return self._pixels == other._pixels

    def at(self, x, y):
        """The colour (red, green, blue) of one pixel."""
        start = 3 * (y * self.width + x)
        return tuple(self._pixels[start:start + 3])

    def colours(self, x=0, y=0, width=None, height=None):
        """How often each colour occurs in a rectangle; without numbers, in the whole picture."""
        right = self.width if width is None else min(self.width, x + width)
        bottom = self.height if height is None else min(self.height, y + height)
        counts = {}
        for row in range(max(y, 0), bottom):
            for column in range(max(x, 0), right):
                colour = self.at(column, row)
                counts[colour] = counts.get(colour, 0) + 1
        return counts


def _split_header(ppm):
    fields = []
    position = 0
    while len(fields) < 4:
        while ppm[position:position + 1].isspace():
            position += 1
        if ppm[position:position + 1] == b"#":
            position = ppm.index(b"\n", position)
            continue
        end = position
        while not ppm[end:end + 1].isspace():
            end += 1
        fields.append(ppm[position:end])
        position = end
    return fields[0], int(fields[1]), int(fields[2]), int(fields[3]), ppm[position + 1:]
