"""Files dropped on the window."""
import os

from driver import run


def a_dropped_file_opens(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.drop(desk.sample("scene_grey.pgm"))
        kestrel.wait_caption("ACTIVE scene_grey.pgm")
        kestrel.wait_ready()
        kestrel.check(not kestrel.captions("ACTIVE scene.ppm"), "the picture before is gone")


def a_name_with_blanks_opens(desk):
    path = os.path.join(desk.work, "My Scene.pgm")
    os.rename(desk.copy_sample("scene_grey.pgm"), path)
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.drop(path)
        kestrel.wait(lambda: kestrel.captions("ACTIVE my scene.pgm") or kestrel.captions("ACTIVE My Scene.pgm"), "the dropped picture")


def what_is_no_picture_is_refused_in_words(desk):
    path = os.path.join(desk.work, "words.txt")
    with open(path, "w") as file:
        file.write("no picture at all\n" * 50)
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.drop(path)
        kestrel.wait_message("Unable to open file", 2)
        kestrel.picture("drop-refused")
        kestrel.check(kestrel.captions("ACTIVE scene.ppm"), "the picture stays")


run([a_dropped_file_opens, a_name_with_blanks_opens, what_is_no_picture_is_refused_in_words])
