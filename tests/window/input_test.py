"""Points, presses, resets and the key-in line, as they arrive from a real mouse and keyboard."""
from driver import run


def looking_at(kestrel, x, y):
    """Whether the position readout of View/Center stands at that pixel."""
    return kestrel.says(2, "Pixel(%4d,%4d)" % (x, y))


def open_scene(desk):
    return desk.start(desk.sample("scene.ppm"))


def middle(kestrel):
    """The window pixel that the view is centred on."""
    x0, y0, x1, y1 = kestrel.frame("ACTIVE scene.ppm").inside
    return x0 + (x1 - x0 + 1) // 2, y0 + (y1 - y0 + 1) // 2


def check_centre(kestrel, x, y):
    """With the Center command up: moves the pointer to the window's middle and reads the position."""
    at_x, at_y = middle(kestrel)
    kestrel.move(at_x - 7, at_y)
    kestrel.move(at_x, at_y)
    kestrel.wait(lambda: looking_at(kestrel, x, y), "the readout of pixel %d, %d" % (x, y))


def original_size_shows_file_pixels(desk):
    """At one to one a run of the screen is a run of a line of the file, its levels brightened by the display's gamma of 2.2."""
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Original Size")
        at_x, at_y = middle(kestrel)
        with open(desk.sample("scene.ppm"), "rb") as file:
            data = file.read()
        body = len(data) - 2048 * 1536 * 3
        gamma = bytes(int(255 * (level / 255) ** (1 / 2.2) + 0.5) for level in range(256))
        lines = [data[body + y * 6144:body + (y + 1) * 6144].translate(gamma) for y in range(1536 // 2 - 2, 1536 // 2 + 3)]

        def one_to_one():
            pixels = desk.screen.pixels((at_x - 100, at_y, at_x + 99, at_y))
            run_of_file = bytearray(600)
            run_of_file[0::3], run_of_file[1::3], run_of_file[2::3] = pixels[2::4], pixels[1::4], pixels[0::4]
            starts = [line.find(run_of_file) for line in lines]
            return any(abs(start / 3 - (1024 - 100)) <= 1 for start in starts if start >= 0)
        kestrel.wait(one_to_one, "pixels of the file's middle on the screen's")


def a_click_zooms_once_and_esc_ends(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Original Size")
        kestrel.menu("View", "Zoom In")
        kestrel.wait_message("Select zoom center point", 3)
        at_x, at_y = middle(kestrel)
        kestrel.click(at_x, at_y)
        kestrel.key("Escape")
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        check_centre(kestrel, 1024, 768)
        kestrel.move(at_x + 100, at_y + 60)     # twice as large: half the way
        kestrel.wait(lambda: looking_at(kestrel, 1074, 798), "pixel 1074, 798 at zoom 2")


def zooming_out_twice_halves_twice(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Original Size")
        kestrel.menu("View", "Zoom Out")
        kestrel.wait_message("Select zoom center point", 3)
        at_x, at_y = middle(kestrel)
        kestrel.click(at_x, at_y)
        kestrel.settle(0.3)                     # so that the next click is no double click
        kestrel.click(at_x, at_y)
        kestrel.click(at_x, at_y, 3)            # the right button is a reset
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        check_centre(kestrel, 1024, 768)
        kestrel.move(at_x + 100, at_y - 100)
        kestrel.wait(lambda: looking_at(kestrel, 1424, 368), "pixel 1424, 368 at zoom 1/4")
        kestrel.picture("zoomed-out")


def a_slow_press_is_no_point(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Zoom In")
        kestrel.wait_message("Select zoom center point", 3)
        kestrel.settle()
        before = desk.screen.pixels()
        kestrel.slow_press(desk.width // 2, desk.height // 2)
        kestrel.release(desk.width // 2, desk.height // 2)
        kestrel.settle(0.3)
        kestrel.check(desk.screen.pixels() == before, "a press and a release have zoomed")
        kestrel.click(desk.width // 2, desk.height // 2)
        kestrel.wait(lambda: desk.screen.pixels() != before, "the zoomed picture")


def an_area_is_dragged_out(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Original Size")
        kestrel.menu("View", "Area")
        kestrel.wait_message("Select window area", 3)
        at_x, at_y = middle(kestrel)
        kestrel.slow_press(at_x - 100, at_y - 80)
        kestrel.move(at_x + 20, at_y + 20)
        kestrel.move(at_x + 60, at_y + 40)
        white = lambda: all(p & 0xFFFFFF == 0xFFFFFF for p in desk.screen.row(at_y - 80, at_x - 100, at_x + 60)) \
            and all(desk.screen.pixel(at_x + 60, y) == 0xFFFFFF for y in range(at_y - 80, at_y + 41))
        kestrel.wait(white, "the rubber band")
        kestrel.picture("rubber-band")
        kestrel.release(at_x + 60, at_y + 40)
        kestrel.wait_message("Accept or reject", 3)
        kestrel.wait(white, "the rectangle to be accepted")
        kestrel.click(at_x, at_y)
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        check_centre(kestrel, 1004, 748)        # the middle of the area, 20 left and above


def a_right_click_gives_an_area_up(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.settle()
        x0, y0, x1, y1 = kestrel.frame("ACTIVE scene.ppm").inside
        picture = desk.screen.pixels((x0, y0, x1, y1))
        kestrel.menu("View", "Area")
        kestrel.wait_message("Select window area", 3)
        kestrel.slow_press(x0 + 200, y0 + 100)
        kestrel.move(x0 + 300, y0 + 200)
        kestrel.release(x0 + 300, y0 + 200)
        kestrel.wait_message("Accept or reject", 3)
        kestrel.click(x0 + 300, y0 + 200, 3)
        kestrel.wait_message("Select window area", 3)
        kestrel.click(x0 + 300, y0 + 200, 3)
        kestrel.wait_ready()
        kestrel.wait(lambda: desk.screen.pixels((x0, y0, x1, y1)) == picture, "the picture as it was, without a rectangle")


def the_keyin_line_is_edited(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        kestrel.wait_message(">", 4)
        kestrel.type("50 76x")
        kestrel.wait_message("50 76x", 4)
        kestrel.picture("key-in")
        kestrel.key("BackSpace")
        kestrel.type("0")
        kestrel.wait_message("50 760", 4)
        kestrel.key("Home")
        kestrel.type("12")
        kestrel.wait_message("1250 760", 4)
        kestrel.key("Right", "Delete")
        kestrel.wait_message("125 760", 4)
        kestrel.type("4")
        kestrel.wait_message("1254 760", 4)
        kestrel.key("End", "Left", "BackSpace", "End")
        kestrel.type("1")
        kestrel.wait_message("1254 701", 4)
        kestrel.key("Return")
        kestrel.wait_message("Select center point", 3)
        check_centre(kestrel, 1254, 701)
        kestrel.click(*middle(kestrel), 3)
        kestrel.wait_ready()
        kestrel.wait(lambda: not kestrel.says(4, ">"), "the key-in line to close")


def a_long_keyin_scrolls_in_its_line(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        kestrel.type("abcdefghijklmnopqrstuvwxyz " * 3)
        kestrel.picture("key-in-long")
        kestrel.key("Home")
        kestrel.wait_message("abcdefghijklmnopqrstuvwxyz", 4)
        kestrel.key("Return")                   # no two numbers: nothing moves, and the question stays
        kestrel.wait_message("Select center point", 3)
        kestrel.wait(lambda: kestrel.says(4, ">") and not kestrel.says(4, "abc"), "an empty line")


def fit_shows_the_whole_again(desk):
    with open_scene(desk) as kestrel:
        kestrel.wait_ready()
        kestrel.settle()
        whole = desk.screen.pixels(kestrel.frame("ACTIVE scene.ppm").inside)
        kestrel.menu("View", "Original Size")
        kestrel.wait(lambda: desk.screen.pixels(kestrel.frame("ACTIVE scene.ppm").inside) != whole, "the picture at its own size")
        kestrel.menu("View", "Fit")
        kestrel.wait(lambda: desk.screen.pixels(kestrel.frame("ACTIVE scene.ppm").inside) == whole, "the first picture")


run([original_size_shows_file_pixels, a_click_zooms_once_and_esc_ends, zooming_out_twice_halves_twice, a_slow_press_is_no_point,
     an_area_is_dragged_out, a_right_click_gives_an_area_up, the_keyin_line_is_edited, a_long_keyin_scrolls_in_its_line,
     fit_shows_the_whole_again])
