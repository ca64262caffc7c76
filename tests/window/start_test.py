"""Starting with and without pictures, with no display, with no data."""
import os
import subprocess

from driver import run
from screen import BLACK, TEXT_WHITE


def opens_the_sample_scene(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.wait_caption("ACTIVE scene.ppm")
        middle_x, middle_y = desk.width // 2, desk.height // 2
        colours = desk.screen.colours((middle_x - 150, middle_y - 100, middle_x + 150, middle_y + 100))
        kestrel.check(len(colours) > 1000, "a scene has many colours, and here are %d" % len(colours))
        kestrel.check(kestrel.says(1, "kestrel"), "the title field names the program")
        kestrel.picture("start")


def asks_for_a_picture_when_none_is_named(desk):
    with desk.start() as kestrel:
        kestrel.wait_form("Read Image", title=True)
        kestrel.picture("read-image")
        kestrel.key("Escape")
        kestrel.wait_ready()
        kestrel.check(not kestrel.form_texts("Read Image", title=True), "the form is gone")


def says_on_the_terminal_why_a_named_file_does_not_open(desk):
    with desk.start("nosuch.ppm") as kestrel:
        kestrel.wait_form("Read Image", title=True)
        kestrel.check("nosuch.ppm: No such file or directory" in kestrel.printed(), "the reason on standard error")


def says_in_a_box_that_its_data_are_missing(desk):
    with desk.start(desk.sample("scene.ppm"), TARN="/nowhere") as kestrel:
        words = "unable to load symbol file /nowhere\\Kestrel\\kestrel.sym"
        kestrel.wait(lambda: desk.screen.find_text(words, kestrel.fonts["menu"], BLACK), words)
        kestrel.check(desk.screen.find_text("Error", kestrel.fonts["bold"], TEXT_WHITE), "the box is titled Error")
        kestrel.picture("no-data")
        kestrel.key("Return")
        kestrel.wait_end(0)


def draws_the_first_screen_into_a_file_without_a_display(desk):
    surroundings = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "TARN", "KESTREL", "SDL_VIDEODRIVER")}
    surroundings["KESTREL_FRAME"] = "%dx%d" % (desk.width, desk.height)
    program, picture = os.path.join(desk.build, "bin/kestrel"), os.path.join(desk.work, "first.png")
    done = subprocess.run([program, "--first-screen", picture, desk.sample("scene.ppm")], env=surroundings, capture_output=True, text=True)
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.check(done.returncode == 0, "exit status %d without a display" % done.returncode)
        lines = done.stderr.splitlines()
        kestrel.check(len(lines) == 1 and picture in lines[0], "one line that names the picture, not %r" % done.stderr)
        kestrel.check(not done.stdout, "nothing on standard output")
        kestrel.settle()
        drawn = subprocess.run(["convert", picture, "-depth", "8", "bgra:-"], stdout=subprocess.PIPE, check=True).stdout
        shown = desk.screen.pixels()
        strip = 4 * desk.width * (desk.height - 80)        # its texts may come and go
        kestrel.check(len(drawn) == len(shown), "the picture has the frame's size")
        kestrel.check([drawn[i:strip:4] for i in range(3)] == [shown[i:strip:4] for i in range(3)], "the same pixels as in the window")


def shows_its_window_when_there_is_a_display_and_a_first_screen_is_asked_for(desk):
    picture = os.path.join(desk.work, "first.png")
    with desk.start("--first-screen", picture, desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.check(not os.path.exists(picture), "no picture is written")


def ends_in_words_when_there_is_no_display(desk):
    surroundings = {k: v for k, v in os.environ.items() if k not in ("DISPLAY", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER")}
    done = subprocess.run([os.path.join(desk.build, "bin/kestrel")], env=surroundings, capture_output=True, text=True, timeout=20)
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.check("no display" in done.stderr and len(done.stderr.splitlines()) == 1, "one line of words, not %r" % done.stderr)


run([opens_the_sample_scene, asks_for_a_picture_when_none_is_named, says_on_the_terminal_why_a_named_file_does_not_open,
     says_in_a_box_that_its_data_are_missing, draws_the_first_screen_into_a_file_without_a_display,
     shows_its_window_when_there_is_a_display_and_a_first_screen_is_asked_for, ends_in_words_when_there_is_no_display])
