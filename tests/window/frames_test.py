"""The frames of windows: moving, sizing, collapsing, closing."""
from driver import run
from screen import TEXT

TITLE = "ACTIVE scene.ppm"


def open_scene(desk):
    return desk.start(desk.sample("scene.ppm"))


def shrink(kestrel, width, height):
    """Drags the lower right corner until the window is that much smaller."""
    frame = kestrel.frame(TITLE)
    x, y = frame.outer[2] - 1, frame.outer[3] - 1
    kestrel.drag(x, y, x - width, y - height)
    kestrel.wait(lambda: kestrel.frame(TITLE).outer[2] == frame.outer[2] - width
                 and kestrel.frame(TITLE).outer[3] == frame.outer[3] - height, "a window smaller by %d, %d" % (width, height))
    kestrel.settle()
    return kestrel.frame(TITLE)


def has_picture(kestrel, area):
    return len(kestrel.screen.colours(area)) > 200


def a_corner_sizes_the_window_and_the_picture_is_painted_anew(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        frame = shrink(kestrel, 240, 160)
        kestrel.wait(lambda: has_picture(kestrel, frame.inside), "the picture in the smaller window")
        x0, y0, x1, y1 = frame.outer
        kestrel.check(desk.screen.colours((x1 + 1, y0, x1 + 100, y1)) == {0}, "black beside the window")
        kestrel.picture("smaller")
        kestrel.drag(x0 + 1, (y0 + y1) // 2, x0 + 101, (y0 + y1) // 2)
        kestrel.wait(lambda: kestrel.frame(TITLE).outer == (x0 + 100, y0, x1, y1), "the left border to follow")


def the_caption_moves_the_window_with_its_pixels(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        frame = shrink(kestrel, 300, 200)
        picture = desk.screen.pixels(frame.inside)
        x, y = frame.caption
        kestrel.drag(x, y, x + 150, y + 90)
        kestrel.wait(lambda: kestrel.frame(TITLE).inside == tuple(a + d for a, d in zip(frame.inside, (150, 90, 150, 90))), "the move")
        kestrel.wait(lambda: desk.screen.pixels(kestrel.frame(TITLE).inside) == picture, "the same pixels at the new place")
        kestrel.picture("moved")


def esc_during_a_drag_puts_the_window_back(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        frame = shrink(kestrel, 200, 100)
        x, y = frame.caption
        kestrel.slow_press(x, y)
        kestrel.move(x + 80, y + 40)
        kestrel.wait(lambda: kestrel.frame(TITLE).outer[0] == frame.outer[0] + 80, "the window under the hand")
        kestrel.key("Escape")
        kestrel.wait(lambda: kestrel.frame(TITLE) == frame, "the window at its old place")
        kestrel.release(x + 80, y + 40)
        kestrel.check(kestrel.says(3, "Ready"), "nothing else has happened")


def collapsing_leaves_an_icon_that_restores(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.settle()
        frame = kestrel.frame(TITLE)
        picture = desk.screen.pixels(frame.inside)
        kestrel.click(*frame.collapse)
        kestrel.wait(lambda: not kestrel.captions(TITLE), "the window to collapse")
        area = (0, desk.height - 120, desk.width - 1, desk.height - 40)
        icon = kestrel.wait(lambda: desk.screen.find_text(TITLE, kestrel.fonts["strip"], TEXT, area), "the icon above the strip")[0]
        kestrel.picture("collapsed")
        kestrel.click((icon[0] + icon[2]) // 2, (icon[1] + icon[3]) // 2)
        kestrel.wait_caption(TITLE)
        kestrel.wait(lambda: kestrel.frame(TITLE) == frame, "the window where it was")
        kestrel.wait(lambda: desk.screen.pixels(frame.inside) == picture, "the picture painted again")
        kestrel.check(not desk.screen.find_text(TITLE, kestrel.fonts["strip"], TEXT, area), "the icon is gone")


def an_icon_can_be_dragged(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.click(*kestrel.frame(TITLE).collapse)
        icon = kestrel.wait(lambda: desk.screen.find_text(TITLE, kestrel.fonts["strip"], TEXT), "the icon")[0]
        x, y = icon[0] + 20, icon[1] + 5
        kestrel.drag(x, y, x + 300, y - 200)
        moved = tuple(a + d for a, d in zip(icon, (300, -200, 300, -200)))
        kestrel.wait(lambda: desk.screen.find_text(TITLE, kestrel.fonts["strip"], TEXT) == [moved], "the icon at its new place")


def a_very_small_window_still_shows_its_frame(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        frame = kestrel.frame(TITLE)
        x, y = frame.outer[2] - 1, frame.outer[3] - 1
        kestrel.drag(x, y, 3, 40)
        kestrel.settle()
        kestrel.picture("smallest")
        kestrel.check(not kestrel.captions(TITLE), "the title is cut")


def closing_an_unchanged_picture_asks_nothing(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.click(*kestrel.frame(TITLE).close)
        kestrel.wait(lambda: not kestrel.captions(TITLE), "the window to go")
        kestrel.wait(lambda: desk.screen.colours((0, 30, desk.width - 1, desk.height - 60)) == {0}, "an empty frame")
        kestrel.check(kestrel.says(3, "Ready"), "Ready")
        kestrel.menu("View", "Zoom In")          # without a picture nothing is asked
        kestrel.menu("File", "Open...")
        kestrel.wait_form("Read Image", title=True)


def a_press_that_leaves_a_button_does_nothing(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        frame = kestrel.frame(TITLE)
        kestrel.drag(*frame.close, frame.close[0] - 100, frame.close[1])
        kestrel.settle()
        kestrel.check(kestrel.frame(TITLE) == frame, "the window is still there")


run([a_corner_sizes_the_window_and_the_picture_is_painted_anew, the_caption_moves_the_window_with_its_pixels,
     esc_during_a_drag_puts_the_window_back, collapsing_leaves_an_icon_that_restores, an_icon_can_be_dragged,
     a_very_small_window_still_shows_its_frame, closing_an_unchanged_picture_asks_nothing, a_press_that_leaves_a_button_does_nothing])
