"""Opening pictures through the Read Image form."""
import os

from driver import run


def start_in_a_directory_of_pictures(desk):
    for name in ("scene_grey.pgm", "sheet.pbm", "scene.ppm"):
        desk.copy_sample(name)
    return desk.start()


def accept_by_mouse(kestrel, title):
    """The check mark button: 419 units below the title's middle and 40 left of it."""
    scale = kestrel.form_scale()
    kestrel.click(int((title[0] + title[2]) / 2 - 40 * scale), int((title[1] + title[3]) / 2 + 419 * scale))


def a_typed_name_opens(desk):
    with desk.start() as kestrel:
        kestrel.wait_form("Read Image", title=True)
        kestrel.type(desk.sample("scene_grey.pgm"))
        kestrel.key("Return")
        kestrel.wait_caption("ACTIVE scene_grey.pgm")
        kestrel.wait_ready()


def a_wrong_name_says_so_and_the_form_stays(desk):
    desk.copy_sample("scene_grey.pgm")
    with desk.start() as kestrel:
        kestrel.wait_form("Read Image", title=True)
        kestrel.type("nosuch.ppm")
        kestrel.key("Return")
        kestrel.wait_message("Unable to open file nosuch.ppm", 2)
        kestrel.check(kestrel.form_texts("Read Image", title=True), "the form stays")
        kestrel.picture("wrong-name")
        kestrel.key(*["BackSpace"] * 10)
        kestrel.type("scene_grey.pgm")
        kestrel.wait_form("scene_grey.pgm")
        kestrel.key("Return")
        kestrel.wait_caption("ACTIVE scene_grey.pgm")
        kestrel.wait_ready()


def a_click_in_the_list_fills_the_name(desk):
    with start_in_a_directory_of_pictures(desk) as kestrel:
        title = kestrel.wait_form("Read Image", title=True)
        x0, y0, x1, y1 = kestrel.wait_form("sheet.pbm")
        kestrel.click((x0 + x1) // 2, (y0 + y1) // 2)
        kestrel.wait(lambda: len(kestrel.form_texts("sheet.pbm")) == 1 and kestrel.form_texts("sheet.pbm")[0][1] < y0 - 50,
                     "the name in its field")
        kestrel.picture("chosen")
        accept_by_mouse(kestrel, title)
        kestrel.wait_caption("ACTIVE sheet.pbm")
        kestrel.wait_ready()


def a_double_click_opens_at_once(desk):
    with start_in_a_directory_of_pictures(desk) as kestrel:
        x0, y0, x1, y1 = kestrel.wait_form("scene_grey.pgm")
        kestrel.double_click((x0 + x1) // 2, (y0 + y1) // 2)
        kestrel.wait_caption("ACTIVE scene_grey.pgm")
        kestrel.wait_ready()


def a_directory_opens_in_the_list(desk):
    os.mkdir(os.path.join(desk.work, "pictures"))
    os.rename(desk.copy_sample("scene_grey.pgm"), os.path.join(desk.work, "pictures", "inner.pgm"))
    with desk.start() as kestrel:
        x0, y0, x1, y1 = kestrel.wait_form("pictures\\")
        kestrel.click((x0 + x1) // 2, (y0 + y1) // 2)
        x0, y0, x1, y1 = kestrel.wait_form("inner.pgm")
        kestrel.double_click((x0 + x1) // 2, (y0 + y1) // 2)
        kestrel.wait_caption("ACTIVE inner.pgm")
        kestrel.wait_ready()


def cancelling_keeps_the_picture(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("File", "Open...")
        kestrel.wait_form("Read Image", title=True)
        kestrel.picture("read-image-over-picture")
        kestrel.key("Escape")
        kestrel.wait_ready()
        kestrel.wait_caption("ACTIVE scene.ppm")
        kestrel.check(not kestrel.form_texts("Read Image", title=True), "the form is gone")


def pictures_follow_each_other(desk):
    """Colour, grey, one bit: each takes the place of the one before."""
    with start_in_a_directory_of_pictures(desk) as kestrel:
        kestrel.wait_form("Read Image", title=True)
        last = None
        for name in ("scene.ppm", "scene_grey.pgm", "sheet.pbm"):
            if last:
                kestrel.menu("File", "Open...")
                kestrel.wait_form("Read Image", title=True)
            kestrel.type(name)
            kestrel.key("Return")
            kestrel.wait_caption("ACTIVE " + name)
            kestrel.wait_ready()
            kestrel.check(not last or not kestrel.captions("ACTIVE " + last), "the picture before is gone")
            kestrel.picture("opened-" + name)
            last = name


def what_is_no_picture_is_refused_and_the_old_one_stays(desk):
    with open(os.path.join(desk.work, "words.txt"), "w") as file:
        file.write("these are only words\n" * 40)
    with open(os.path.join(desk.work, "cut.ppm"), "wb") as file:
        file.write(b"P6 400 300 255\n" + bytes(range(256)) * 3)
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("File", "Open...")
        kestrel.wait_form("Read Image", title=True)
        kestrel.type("words.txt")
        kestrel.key("Return")
        kestrel.wait_message("Unable to open file words.txt", 2)
        kestrel.key("Escape")
        kestrel.wait_ready()
        kestrel.wait_caption("ACTIVE scene.ppm")


run([a_typed_name_opens, a_wrong_name_says_so_and_the_form_stays, a_click_in_the_list_fills_the_name, a_double_click_opens_at_once,
     a_directory_opens_in_the_list, cancelling_keeps_the_picture, pictures_follow_each_other,
     what_is_no_picture_is_refused_and_the_old_one_stays])
