"""Looks for the status item in a picture of the screen: in the right end of the panel at the top."""

GREEN = (0x2C, 0xBD, 0x84)
RED = (0xF6, 0x46, 0x5D)
WHITE = (255, 255, 255)
NEAR_WHITE = (0xF2, 0xF2, 0xF2)
PANEL_HEIGHT = 29
TRAY_WIDTH = 200


def is_near(one, other, tolerance=40):
    return all(abs(a - b) <= tolerance for a, b in zip(one, other))


def coloured(color):
    return lambda pixel: is_near(pixel, color)


def box_of(picture, matches):
    """Left, top, width and height of the tray's pixels that match, or None."""
    columns = range(picture.width - TRAY_WIDTH, picture.width)
    places = [(x, y) for y in range(PANEL_HEIGHT) for x in columns if matches(picture.at(x, y))]
    if not places:
        return None
    left, top = min(x for x, _ in places), min(y for _, y in places)
    return left, top, max(x for x, _ in places) - left + 1, max(y for _, y in places) - top + 1


def middle(box):
    left, top, width, height = box
    return left + width // 2, top + height // 2


def wait_for_box(desktop, color, accepts=lambda box: True):
    """The box of that colour in the tray, once there is one that is accepted."""
    def accepted():
        box = box_of(desktop.picture(), coloured(color))
        return box if box and accepts(box) else None
    return desktop.wait_for(accepted, what=f"{color} in the panel")
