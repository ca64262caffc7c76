"""From start to first frame: an empty window, Kestrel's Read Image form, and the sample scene; least of several runs.

    start_time.py BUILD [RUNS]      exit status 1 when the scene takes more than 8 times as long as an empty window
"""
import os
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/window"))
from driver import Desk  # noqa: E402

LIMIT = 8


def first_frame(desk, command, seen):
    """Milliseconds until seen() holds."""
    surroundings = dict(os.environ, DISPLAY=desk.display, KESTREL_FRAME="1280x1024", SDL_AUDIODRIVER="dummy")
    start = time.monotonic()
    process = subprocess.Popen(command, env=surroundings, cwd=desk.work)
    while not seen():
        if process.poll() is not None or time.monotonic() - start > 20:
            sys.exit("no first frame of " + command[0])
        time.sleep(0.0005)
    taken = time.monotonic() - start
    process.kill()
    process.wait()
    while desk.screen.pixel(640, 512):       # the server clears what the window has left
        time.sleep(0.01)
    return 1000 * taken


def main(build, runs):
    with Desk(build, 1280, 1024) as desk:
        shows = lambda: desk.screen.pixel(640, 512) and desk.screen.pixel(1100, 900)
        form = lambda: desk.screen.pixel(640, 300)
        programs = {
            "empty window": ([os.path.join(build, "bin/empty_window")], shows),
            "Read Image form": ([os.path.join(build, "bin/kestrel")], form),
            "scene.ppm": ([os.path.join(build, "bin/kestrel"), desk.sample("scene.ppm")], shows),
        }
        times = {name: [] for name in programs}
        for _ in range(runs):
            for name, (command, seen) in programs.items():
                times[name].append(first_frame(desk, command, seen))
    least = {name: min(taken) for name, taken in times.items()}
    for name, taken in least.items():
        print("%-16s %6.1f ms  %5.2f empty windows" % (name, taken, taken / least["empty window"]))
    return 0 if least["scene.ppm"] <= LIMIT * least["empty window"] else 1


sys.exit(main(os.path.abspath(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) > 2 else 15))
