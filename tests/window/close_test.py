"""Leaving: the save question, File/Exit, the close button of the desktop's window."""
from driver import run

TITLE = "ACTIVE scene.ppm"


def own_scene(desk):
    return desk.start(desk.copy_sample("scene.ppm"))


def change(kestrel):
    """Exchanges the red and the blue band."""
    kestrel.wait_ready()
    kestrel.settle()
    before = kestrel.screen.pixels()
    kestrel.menu("Transforms", "Swap", "Red <--> Blue")
    kestrel.wait(lambda: not kestrel.menu_row("Swap") and kestrel.screen.pixels() != before, "the exchanged bands")
    kestrel.wait_ready()


def wait_question(kestrel):
    kestrel.wait_form("WARNING", title=True)
    kestrel.wait_form("scene.ppm?")
    for answer in ("Yes", "No", "Cancel"):
        kestrel.wait_form(answer)


def press(kestrel, button):
    x0, y0, x1, y1 = kestrel.wait_form(button)
    kestrel.click((x0 + x1) // 2, (y0 + y1) // 2)


def answer(kestrel, button):
    press(kestrel, button)
    kestrel.wait(lambda: not kestrel.form_texts("WARNING", title=True), "the question to go")


def the_close_button_asks_about_changes(desk):
    with own_scene(desk) as kestrel:
        change(kestrel)
        kestrel.click(*kestrel.frame(TITLE).close)
        wait_question(kestrel)
        kestrel.picture("save-question")
        answer(kestrel, "Cancel")
        kestrel.wait_caption(TITLE)
        kestrel.settle()
        kestrel.click(*kestrel.frame(TITLE).close)
        wait_question(kestrel)
        answer(kestrel, "No")
        kestrel.wait(lambda: not kestrel.captions(TITLE), "the window to go")


def yes_asks_for_a_name_and_giving_up_keeps_the_image(desk):
    """A portable pixmap is only read: saving asks for a name and a format, and may still be given up."""
    with own_scene(desk) as kestrel:
        change(kestrel)
        kestrel.click(*kestrel.frame(TITLE).close)
        wait_question(kestrel)
        answer(kestrel, "Yes")
        kestrel.wait_form("Write Image", title=True)
        kestrel.picture("write-image")
        kestrel.key("Escape")
        kestrel.wait(lambda: not kestrel.form_texts("Write Image", title=True), "the form to go")
        kestrel.wait_caption(TITLE)


def esc_means_cancel(desk):
    with own_scene(desk) as kestrel:
        change(kestrel)
        kestrel.click(*kestrel.frame(TITLE).close)
        wait_question(kestrel)
        kestrel.key("Escape")
        kestrel.wait(lambda: not kestrel.form_texts("WARNING", title=True), "the question to go")
        kestrel.wait_caption(TITLE)


def exit_ends_an_unchanged_session(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("File", "Exit")
        kestrel.wait_end(0)


def exit_asks_about_changes(desk):
    with own_scene(desk) as kestrel:
        change(kestrel)
        kestrel.menu("File", "Exit")
        wait_question(kestrel)
        answer(kestrel, "Cancel")
        kestrel.wait_ready()
        kestrel.menu("View", "Zoom In")                 # the session goes on
        kestrel.wait_message("Select zoom center point", 3)
        kestrel.menu("File", "Exit")                    # from within a command
        wait_question(kestrel)
        answer(kestrel, "No")
        kestrel.wait_end(0)


def the_desktop_window_closes(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.close_desktop_window()
        kestrel.wait_end(0)


def the_desktop_window_closes_in_the_middle_of_a_command(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        kestrel.close_desktop_window()
        kestrel.wait_end(0)


def the_desktop_window_closes_over_a_form(desk):
    with desk.start() as kestrel:
        kestrel.wait_form("Read Image", title=True)
        kestrel.close_desktop_window()
        kestrel.wait_end(0)


def the_desktop_window_asks_about_changes(desk):
    with own_scene(desk) as kestrel:
        change(kestrel)
        kestrel.close_desktop_window()
        wait_question(kestrel)
        kestrel.close_desktop_window()                  # a second request while the question is up asks no second one
        kestrel.settle()
        answer(kestrel, "Cancel")
        kestrel.wait_caption(TITLE)
        kestrel.settle()
        kestrel.check(not kestrel.form_texts("WARNING", title=True), "one question only")
        kestrel.close_desktop_window()
        wait_question(kestrel)
        press(kestrel, "No")
        kestrel.wait_end(0)


run([the_close_button_asks_about_changes, yes_asks_for_a_name_and_giving_up_keeps_the_image, esc_means_cancel, exit_ends_an_unchanged_session, exit_asks_about_changes,
     the_desktop_window_closes, the_desktop_window_closes_in_the_middle_of_a_command, the_desktop_window_closes_over_a_form,
     the_desktop_window_asks_about_changes])
