"""Looks for the status item in a picture of the screen: in the right end of the panel at the top."""

GREEN = (0x2C, 0xBD, 0x84)
RED = (0xF6, 0x46, 0x5D)
WHITE = (255, 255, 255)
NEAR_WHITE = (0xF2, 0xF2, 0xF2)
PANEL_HEIGHT = 29
TRAY_WIDTH = 200
MENU_WIDTH = 400
MENU_BOTTOM = 400


def is_near(one, other, tolerance=40):
    return all(abs(a - b) <= tolerance for a, b in zip(one, other))


def coloured(color):
    return lambda pixel: is_near(pixel, color)


def box_of(picture, matches):
    """Left, top, width and height of the tray's pixels that match, or None."""
    columns = range(picture.width - TRAY_WIDTH, picture.width)
    return bounds([(x, y) for y in range(PANEL_HEIGHT) for x in columns if matches(picture.at(x, y))])


def bounds(points):
    """Left, top, width and height of the smallest rectangle with all points, or None without any."""
    if not points:
        return None
    left, top = min(x for x, _ in points), min(y for _, y in points)
    return left, top, max(x for x, _ in points) - left + 1, max(y for _, y in points) - top + 1


def changed_box(before, after):
    """The part of the screen's right end below the panel in which two pictures differ, or None."""
    columns = range(before.width - MENU_WIDTH, before.width)
    rows = range(PANEL_HEIGHT, MENU_BOTTOM)
    return bounds([(x, y) for y in rows for x in columns if before.at(x, y) != after.at(x, y)])


def middle(box):
    left, top, width, height = box
    return left + width // 2, top + height // 2


def wait_for_box(desktop, color, accepts=lambda box: True):
    """The box of that color in the tray, once there is one that is accepted and stays."""
    boxes = []

    def accepted():
        boxes.append(box_of(desktop.picture(), coloured(color)))
        box = boxes[-1]
        return box if box and boxes[-2:] == [box, box] and accepts(box) else None
    return desktop.wait_for(accepted, what=f"{color} in the panel")
