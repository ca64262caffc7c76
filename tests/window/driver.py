"""Runs the real program on a screen of its own and plays the operator: mouse, keys, and looking.

    with Desk(build, 1280, 1024) as desk, desk.start(desk.sample("scene.ppm")) as kestrel:
        kestrel.menu("View", "Zoom In")
        kestrel.wait_message("Ready")

Every wait polls and fails with a picture of the screen after some seconds. What was started is ended, and nothing else.
"""
import collections
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

from screen import ACCENT, BLACK, DARK, FACE, SHADE, TEXT, TEXT_GREY, TEXT_IDLE, TEXT_WHITE, Font, Screen

HERE = os.path.dirname(os.path.abspath(__file__))
PATIENCE = 20        # seconds; a loaded machine takes its time
POLL = 0.015
SLOW_PRESS = 0.3     # longer than the time in which a press may still become a click
LARGE_FRAME = 720    # rows of the frame from which the larger fonts are used


MENU_REACH, MENU_HEIGHT = 720, 330   # pixels below the bar in which menus open
BORDER = 4           # pixels of a window's frame, but for the caption

Frame = collections.namedtuple("Frame", "outer caption collapse close inside")


class Failed(Exception):
    pass


def menu_tree():
    """(level, label, identifier) of each row, as the program's own table has it; label None for a dash."""
    rows = []
    with open(os.path.join(HERE, "../../src/shell/menu.cpp")) as source:
        for line in source:
            row = re.match(r'\s*\{ (\d), (?:"([^"]*)"|nullptr), (\d+), ', line)
            if row:
                rows.append((int(row[1]), row[2] and row[2].replace("&", ""), int(row[3])))
    return rows


def symbol_codes():
    """Names of the symbols and their characters; the codes run on from 33."""
    with open(os.path.join(HERE, "../../src/services/symbols.h")) as source:
        return {name: chr(33 + i) for i, name in enumerate(re.findall(r"^    SYMBOL\((\w+)\)", source.read(), re.M))}


class Desk:
    """A screen in memory, a directory to work in, and what the programs there share."""

    def __init__(self, build, width, height):
        self.build, self.width, self.height = os.path.abspath(build), width, height
        self.samples = os.path.join(self.build, "share/tarn/samples")

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="kestrel-window-")
        self.work = os.path.join(self.folder, "work")
        os.mkdir(self.work)
        told, tells = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(tells), "-screen", "0", "%dx%dx24" % (self.width, self.height), "-fbdir", self.folder,
             "-nolisten", "tcp", "-nocursor", "-noreset"], pass_fds=[tells], stderr=subprocess.DEVNULL)
        os.close(tells)
        with os.fdopen(told) as answer:
            number = answer.readline().strip()
        if not number:
            raise SystemExit("Xvfb does not start")
        self.display = ":" + number
        self.screen = Screen(os.path.join(self.folder, "Xvfb_screen0"))
        self.fonts = self.load_fonts()
        return self

    def __exit__(self, *_):
        self.server.terminate()
        self.server.wait()
        shutil.rmtree(self.folder)

    def load_fonts(self):
        built_in, files = os.path.join(self.build, "generated"), os.path.join(self.build, "share/tarn/fonts")
        large = self.height >= LARGE_FRAME
        return {
            "menu": Font(os.path.join(built_in, "sans.16")),
            "bold": Font(os.path.join(built_in, "sansb.16")),
            "strip": Font(os.path.join(built_in, "sans.18" if large else "sans.16")),
            "caption": Font(os.path.join(built_in, "sansb.18" if large else "sansb.16")),
            "form": Font(os.path.join(files, "mono821.22" if large else "mono821.14")),
            "symbols": Font(os.path.join(self.build, "share/tarn/Kestrel/kestrel.sym")),
            "form title": Font(os.path.join(files, "mono821b.30" if large else "mono821b.22")),
        }

    def xdotool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], check=True, env=dict(os.environ, DISPLAY=self.display))

    def copy_sample(self, name):
        """The sample of that name in the working directory, free to be changed; its path."""
        return shutil.copy(os.path.join(self.samples, name), self.work)

    def sample(self, name):
        return os.path.join(self.samples, name)

    def start(self, *arguments, **env):
        return Kestrel(self, arguments, env)


class Kestrel:
    def __init__(self, desk, arguments, env):
        self.desk, self.screen, self.fonts = desk, desk.screen, desk.fonts
        surroundings = {k: v for k, v in os.environ.items() if k not in ("TARN", "KESTREL", "WAYLAND_DISPLAY", "SDL_VIDEODRIVER")}
        surroundings.update(DISPLAY=desk.display, KESTREL_FRAME="%dx%d" % (desk.width, desk.height), SDL_AUDIODRIVER="dummy", **env)
        self.errors = tempfile.TemporaryFile()
        self.started = time.monotonic()
        self.process = subprocess.Popen([os.path.join(desk.build, "bin/kestrel"), *arguments], env=surroundings, cwd=desk.work,
                                        stdout=self.errors, stderr=self.errors)

    def __enter__(self):
        self.wait(lambda: self.screen.pixel(self.screen.width - 2, 4) == FACE, "the menu bar of the first frame")
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()          # a polite signal would be answered by the save question
        self.process.wait()
        self.errors.close()

    def printed(self):
        self.errors.seek(0)
        return self.errors.read().decode()

    # --- waiting ---------------------------------------------------------------------------------------------------

    def wait(self, question, wanted, seconds=PATIENCE):
        end = time.monotonic() + seconds
        while True:
            answer = question()
            if answer:
                return answer
            if self.process.poll() is not None or time.monotonic() > end:
                # The last thing that a program drew before its end still counts.
                answer = question()
                if answer:
                    return answer
                self.fail("waited in vain for " + wanted)
            time.sleep(POLL)

    def fail(self, words):
        picture = os.path.join(os.environ.get("KESTREL_PICTURES", tempfile.gettempdir()), "kestrel-window-failed.png")
        self.screen.write_png(picture)
        state = self.process.poll()
        raise Failed("%s; the screen is in %s; the program %s and has printed %r"
                     % (words, picture, "runs" if state is None else "has ended with %d" % state, self.printed()))

    def check(self, good, words):
        if not good:
            self.fail(words)

    def wait_end(self, status=0):
        try:
            ended = self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.fail("the program does not end")
        if ended != status:
            self.fail("wanted exit status %d" % status)

    def settle(self, quiet=0.12):
        """Until nothing has changed for a moment. For looking only: a check waits for what it wants to see."""
        seen, since = self.screen.pixels(), time.monotonic()
        while time.monotonic() - since < quiet:
            time.sleep(POLL)
            now = self.screen.pixels()
            if now != seen:
                seen, since = now, time.monotonic()

    def picture(self, name):
        """Keeps the screen as NAME.png in the directory KESTREL_PICTURES, when that is set."""
        folder = os.environ.get("KESTREL_PICTURES")
        if folder:
            self.settle()
            self.screen.write_png(os.path.join(folder, "%s-%d.png" % (name, self.screen.width)))

    # --- looking ---------------------------------------------------------------------------------------------------

    def strip_area(self, field):
        """A field of the strip, 1 to 4: two columns, two rows along the lower edge."""
        height = self.fonts["strip"].height + 2
        x = 0 if field in (1, 3) else self.screen.width // 2
        y = self.screen.height - (2 if field in (1, 2) else 1) * height
        return x, y, x + self.screen.width // 2 - 1, y + height - 1

    def says(self, field, text):
        return bool(self.screen.find_text(text, self.fonts["strip"], TEXT, self.strip_area(field)))

    def wait_message(self, text, field):
        self.wait(lambda: self.says(field, text), "%r in field %d" % (text, field))

    def wait_ready(self):
        self.wait_message("Ready", 3)

    def form_texts(self, text, title=False):
        font = self.fonts["form title" if title else "form"]
        for colour in (BLACK, TEXT, TEXT_WHITE):
            found = self.screen.find_text(text, font, colour)
            if found:
                return found
        return []

    def wait_form(self, text, title=False):
        return self.wait(lambda: self.form_texts(text, title), "%r in a form" % text)[0]

    def captions(self, title):
        """Places of the windows' titles that read so, active or not."""
        return [place for colour in (TEXT_WHITE, TEXT_IDLE) for place in self.screen.find_text(title, self.fonts["caption"], colour)]

    def wait_caption(self, title, count=1):
        return self.wait(lambda: len(self.captions(title)) == count and self.captions(title), "%d times the caption %r" % (count, title))

    def form_scale(self):
        return 1.5 if self.screen.height >= LARGE_FRAME else 1.0

    def frame(self, title):
        """The frame of the window with that title: its buttons, caption and the area inside."""
        x0, y0, x1, y1 = self.wait_caption(title)[0]
        y, ground = (y0 + y1) // 2, self.screen.pixel(x0 - 3, y0 - 1)
        buttons = []
        x = x1 + 2
        while len(buttons) < 2:
            while self.screen.pixel(x, y) == ground:
                x += 1
            left = x
            while self.screen.pixel(x, y) != ground:
                x += 1
            buttons.append(((left + x - 1) // 2, y))
        right = next(r for r in range(x, self.screen.width) if self.screen.pixel(r, y) == DARK)
        left = next(r for r in range(x0, -1, -1) if self.screen.pixel(r, y) == DARK)
        top = next(r for r in range(y0, 0, -1) if self.screen.pixel(x0 - 3, r) == DARK)
        bottom = top
        while bottom < self.screen.height - 1 and self.screen.pixel(left, bottom + 1) == DARK:
            bottom += 1
        lower = next(r for r in range(y1, bottom) if self.screen.pixel(x0 - 3, r) not in (ground, FACE, SHADE))
        return Frame((left, top, right, bottom), ((left + x0) // 2 + 30, y), buttons[0], buttons[1],
                     (left + BORDER, lower, right - BORDER, bottom - BORDER))

    # --- hand ------------------------------------------------------------------------------------------------------

    def move(self, x, y):
        self.desk.xdotool("mousemove", x, y)

    def click(self, x, y, button=1):
        self.desk.xdotool("mousemove", x, y, "click", button)

    def double_click(self, x, y):
        self.desk.xdotool("mousemove", x, y, "click", 1, "click", 1)

    def slow_press(self, x, y, button=1):
        self.desk.xdotool("mousemove", x, y, "mousedown", button, "sleep", SLOW_PRESS)

    def release(self, x, y, button=1):
        self.desk.xdotool("mousemove", x, y, "mouseup", button)

    def drag(self, x0, y0, x1, y1, button=1):
        """Press, a stop half way, release: what a hand on a frame does."""
        self.desk.xdotool("mousemove", x0, y0, "mousedown", button, "mousemove", (x0 + x1) // 2, (y0 + y1) // 2,
                          "mousemove", x1, y1, "mouseup", button)

    def key(self, *names):
        self.desk.xdotool("key", "--delay", 2, *names)

    def type(self, text):
        self.desk.xdotool("type", "--delay", 2, text)

    def desktop_window(self):
        found = self.wait(lambda: subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "kestrel"], stdout=subprocess.PIPE,
                                                 env=dict(os.environ, DISPLAY=self.desk.display), text=True).stdout, "the desktop's window")
        return int(found.split()[0])

    def desktop(self, what, *words):
        done = subprocess.run([sys.executable, os.path.join(HERE, "desktop.py"), what, str(self.desktop_window()), *map(str, words)],
                              env=dict(os.environ, DISPLAY=self.desk.display))
        self.check(done.returncode == 0, "the desktop's %s" % what)

    def close_desktop_window(self):
        """What the close button does that a window manager puts on the desktop's window."""
        self.desktop("close")

    def drop(self, path):
        self.desktop("drop", self.screen.width // 2, self.screen.height // 2, path)

    # --- menus -----------------------------------------------------------------------------------------------------

    def menu_texts(self, label, colour, area=None):
        return self.screen.find_text(label, self.fonts["menu"], colour, area)

    def bar_area(self):
        return 0, 0, self.screen.width - 1, 22

    def menu_row(self, label, right_of=0):
        """The row of that label in an open menu and whether it can be chosen: (place, enabled); None when there is none."""
        area = (right_of, 24, min(right_of + MENU_REACH, self.screen.width - 1), 24 + MENU_HEIGHT)
        for colour, enabled in ((TEXT, True), (TEXT_WHITE, True), (TEXT_GREY, False)):
            for place in self.menu_texts(label, colour, area):
                left = place[0] - 8
                ground = self.screen.pixel(left, (place[1] + place[3]) // 2)
                if ground == (ACCENT if colour == TEXT_WHITE else FACE):
                    return place, enabled
        return None

    def is_checked(self, place):
        """Whether a check mark stands left of a row's label."""
        x0, y0, _, y1 = place
        return bool(self.screen.colours((x0 - 22, y0, x0 - 4, y1)) & {TEXT, TEXT_GREY, TEXT_WHITE} - {self.screen.pixel(x0 - 3, y0)})

    def open_menu(self, name):
        found = self.wait(lambda: self.menu_texts(name, TEXT, self.bar_area()), "the menu %r in the bar" % name)[0]
        self.click((found[0] + found[2]) // 2, 12)
        self.wait(lambda: self.menu_texts(name, TEXT_WHITE, self.bar_area()), "the open menu %r" % name)

    def wait_row(self, label, right_of=0):
        return self.wait(lambda: self.menu_row(label, right_of), "the row %r" % label)

    def menu(self, *path):
        """Chooses by mouse: menu, submenus, row."""
        self.open_menu(path[0])
        edge = 0
        for depth, label in enumerate(path[1:]):
            place, enabled = self.wait_row(label, edge)
            self.check(enabled, "the row %r is grey" % label)
            x, y = (place[0] + place[2]) // 2, (place[1] + place[3]) // 2
            if depth == len(path) - 2:
                self.click(x, y)
            else:
                self.move(x, y)
                edge = 0


def sizes():
    return [(1280, 1024), (800, 600)]


def run(tests):
    """The main program of a test: BUILD [WIDTHxHEIGHT [NAME...]]. Each test gets a desk of its own."""
    build = sys.argv[1]
    width, height = map(int, (sys.argv[2] if len(sys.argv) > 2 else "1280x1024").split("x"))
    failures = 0
    for test in tests:
        if len(sys.argv) > 3 and test.__name__ not in sys.argv[3:]:
            continue
        started = time.monotonic()
        try:
            with Desk(build, width, height) as desk:
                test(desk)
            print("ok    %s, %.1f s" % (test.__name__, time.monotonic() - started))
        except Failed as failure:
            failures += 1
            print("FAIL  %s: %s" % (test.__name__, failure))
        sys.stdout.flush()
    sys.exit(1 if failures else 0)
