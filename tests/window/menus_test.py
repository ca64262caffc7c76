"""The menu bar by mouse and by keys."""
from driver import menu_tree, run


def all_menus_open_whole(desk):
    """Every row of every menu and submenu stands on the screen, by mouse."""
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        tree = menu_tree()
        for menu in [label for level, label, _ in tree if level == 0]:
            kestrel.open_menu(menu)
            rows = rows_under(tree, menu)
            for label, children in rows:
                kestrel.wait_row(label)
            kestrel.picture("menu-" + menu)
            for label, children in rows:
                if children:
                    place, _ = kestrel.wait_row(label)
                    kestrel.move((place[0] + place[2]) // 2, (place[1] + place[3]) // 2)
                    for child in children:
                        kestrel.wait_row(child, place[2])
                    kestrel.picture("menu-%s-%s" % (menu, label.replace(" ", "-")))
            kestrel.click(desk.width // 2, desk.height - 100)
            kestrel.wait(lambda: not kestrel.menu_row(rows[0][0]), "the menu to close")


def rows_under(tree, menu):
    """[(label, [labels of its submenu])] of a menu."""
    rows, inside = [], False
    for level, label, _ in tree:
        if level == 0:
            inside = label == menu
        elif inside and label and level == 1:
            rows.append((label, []))
        elif inside and label:
            rows[-1][1].append(label)
    return rows


def press_drag_release_chooses(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        place = kestrel.wait(lambda: kestrel.menu_texts("View", 0x1B1E22, kestrel.bar_area()), "the menu View")[0]
        kestrel.slow_press(place[0] + 5, 12)
        row, _ = kestrel.wait_row("Zoom In")
        kestrel.release(row[0] + 5, row[1] + 5)
        kestrel.wait_message("Select zoom center point", 3)


def alt_and_a_letter_open_and_choose(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.key("alt+v")
        kestrel.wait_row("Original Size")
        kestrel.key("o")
        kestrel.wait_message("Zoom out", 1)
        kestrel.key("Escape")
        kestrel.wait_ready()
        kestrel.key("alt+f")
        kestrel.wait_row("Exit")
        kestrel.key("x")
        kestrel.wait_end(0)


def f10_and_arrows_walk_the_menus(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.key("F10")
        kestrel.wait_row("Exit")
        kestrel.key("Right", "Right", "Right")
        kestrel.wait_row("Hue Replacement...")
        kestrel.key("Right")
        kestrel.wait_row("RGB to IHS")
        kestrel.key("Escape")
        kestrel.wait(lambda: not kestrel.menu_row("RGB to IHS"), "the submenu to close")
        kestrel.key("Left")
        kestrel.wait_row("Zoom In")
        kestrel.key("Up")                # around the top to the last row that is not grey
        kestrel.key("Down", "Down", "Down", "Down", "Return")
        kestrel.wait_message("Select zoom center point", 3)
        kestrel.key("F10")
        kestrel.wait_row("Exit")
        kestrel.key("F10")
        kestrel.wait(lambda: not kestrel.menu_row("Exit"), "the menu to close")
        kestrel.wait_message("Select zoom center point", 3)


def marks_show_what_is_on_and_grey_rows_do_nothing(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.open_menu("Options")
        undo, enabled = kestrel.wait_row("Undo")
        kestrel.check(enabled and kestrel.is_checked(undo), "undo is on at first")
        color, _ = kestrel.wait_row("Grid Color...")
        kestrel.check(not kestrel.is_checked(color), "a row that is no switch has no mark")
        mask, enabled = kestrel.wait_row("Cut Mask...")
        kestrel.check(not enabled, "there is no cut whose mask could be set")
        kestrel.click(mask[0] + 5, mask[1] + 5)
        kestrel.check(kestrel.wait_row("Cut Mask..."), "a grey row leaves the menu open")
        kestrel.key("Escape")
        kestrel.wait(lambda: not kestrel.menu_row("Cut Mask..."), "the menu to close")
        kestrel.check(kestrel.says(3, "Ready"), "nothing has run")


def a_mnemonic_is_not_typed_into_the_keyin_line(desk):
    with desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.wait_ready()
        kestrel.menu("View", "Center")
        kestrel.wait_message("Select center point", 3)
        kestrel.type("1")
        kestrel.wait_message("1", 4)
        kestrel.settle()
        before = desk.screen.pixels(kestrel.strip_area(4))
        for letter in "vtq":             # q opens no menu
            kestrel.key("alt+" + letter)
            kestrel.settle()
            kestrel.check(desk.screen.pixels(kestrel.strip_area(4)) == before, "Alt+%s has typed into the line" % letter)
            kestrel.key("Escape") if letter != "q" else None
        kestrel.wait(lambda: not kestrel.menu_row("Zoom In") and not kestrel.menu_row("Swap"), "the menus to close")
        kestrel.type("2")
        kestrel.wait_message("12", 4)


run([all_menus_open_whole, press_drag_release_chooses, alt_and_a_letter_open_and_choose, f10_and_arrows_walk_the_menus,
     marks_show_what_is_on_and_grey_rows_do_nothing, a_mnemonic_is_not_typed_into_the_keyin_line])
