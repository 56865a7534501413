"""Drives the viewer for random-use.sh: random-use.py VIEWER FOLDER SECONDS SEED."""

import collections
import glob
import os
import random
import signal
import subprocess
import sys
import time

# The viewer counts as hung when its user-interface thread does not respond for this long; sanitizers are slow.
HANG_SECONDS = 90
CLOSE_SECONDS = 300

KEYS = ["Tab", "shift+Tab", "Return", "space", "Up", "Down", "Left", "Right", "Home", "End", "Prior", "Next", "Delete",
        "BackSpace", "F1", "F5", "F6", "F10", "F11", "plus", "minus", "comma", "period", "o", "a", "Menu", "F2"]
SHORTCUTS = ["ctrl+o", "ctrl+s", "ctrl+w", "ctrl+z", "ctrl+c", "ctrl+v", "ctrl+a", "ctrl+f", "ctrl+r", "ctrl+t",
             "ctrl+n", "ctrl+0", "ctrl+1", "ctrl+2", "ctrl+plus", "ctrl+minus", "ctrl+Tab", "ctrl+shift+s",
             "ctrl+shift+o", "ctrl+e", "ctrl+d", "ctrl+l", "ctrl+k", "ctrl+p", "alt+c", "alt+f", "alt+v", "alt+p",
             "alt+r", "alt+h", "alt+w", "alt+i", "ctrl+F4", "F11", "shift+F5", "ctrl+Home", "ctrl+End"]
TYPED = ["0", "1", "-1", "3", "17", "255", "1e9", "-1e38", "1e999", "nan", "inf", "0.001", "1,5", "2.5", "abc", "%n%1",
         "99999999999999999999", "wave.tif", "grey.tif", "out.tif", "out.png", "cloud.ply", "new", "#ff0000"]


class Failure(Exception):
    """Ends the run."""


class Viewer:
    """The viewer's process."""

    def __init__(self, program, folder, arguments):
        self.log = open(os.path.join(folder, "viewer.log"), "ab")
        self.process = subprocess.Popen(
            ["setpriv", "--reuid=nobody", "--regid=nogroup", "--clear-groups", "env",
             "LD_PRELOAD=" + os.environ["RANDOM_USE_PRELOAD"], program] + arguments,
            cwd=os.environ["HOME"], stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log)
        self.switches = -1
        self.answered = time.monotonic()

    def ended(self):
        return self.process.poll() is not None

    def stop(self):
        """Lets the sanitizer say where it is."""
        if not self.ended():
            self.process.send_signal(signal.SIGABRT)
            try:
                self.process.wait(60)
            except subprocess.TimeoutExpired:
                self.process.kill()

    def check(self):
        """Every event that the user-interface thread waits for makes it sleep at least once."""
        try:
            with open(f"/proc/{self.process.pid}/status", encoding="ascii") as status:
                lines = [line for line in status if line.startswith("voluntary_ctxt_switches")]
        except OSError:
            return
        switches = int(lines[0].split()[1])
        if switches != self.switches:
            self.switches = switches
            self.answered = time.monotonic()
        elif time.monotonic() - self.answered > HANG_SECONDS:
            raise Failure(f"no answer for {HANG_SECONDS} s")


class Person:
    """Sends events to the windows of a viewer."""

    def __init__(self, rng, pid, actions):
        self.rng = rng
        self.pid = str(pid)
        self.actions = actions
        self.windows = []  # number, x, y, width, height; the newest last

    def tool(self, *arguments):
        done = subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True, timeout=60,
                              check=False)
        return done.stdout

    def act(self, *arguments):
        self.actions.append(" ".join(map(str, arguments)))
        self.tool(*arguments)

    def look(self):
        self.windows = []
        questions = []
        for number in self.tool("search", "--onlyvisible", "--pid", self.pid).split():
            questions += ["getwindowgeometry", "--shell", number]
        values = {}
        for line in self.tool(*questions).splitlines() if questions else []:
            key, _, value = line.partition("=")
            values[key] = value
            if key == "HEIGHT" and int(values["WIDTH"]) > 5 and int(value) > 5:
                self.windows.append((values["WINDOW"], *(int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))))

    def place(self):
        """Somewhere in a window; dialogs and menus, which are newer and smaller, most of the time."""
        smallest = min(self.windows, key=lambda window: window[3] * window[4])
        window = smallest if self.rng.random() < 0.6 else self.rng.choice(self.windows)
        _, x, y, width, height = window
        row = self.rng.randrange(height)
        # Menus, tool bars and tabs are at the top, buttons of dialogs at the bottom.
        if self.rng.random() < 0.25:
            row = self.rng.randrange(min(70, height))
        elif self.rng.random() < 0.15:
            row = height - 1 - self.rng.randrange(min(50, height))
        return x + self.rng.randrange(width), y + row

    def click(self):
        self.act("mousemove", *self.place(), "click", 1)

    def context_menu(self):
        self.act("mousemove", *self.place(), "click", 3)

    def double_click(self):
        self.act("mousemove", *self.place(), "click", "--repeat", 2, "--delay", 30, 1)

    def drag(self):
        button = self.rng.choice([1, 1, 1, 2, 3])
        modifier = self.rng.choice(["", "", "ctrl", "shift"])
        keys = ["keydown", modifier] if modifier else []
        move = ["mousemove", *self.place(), "mousedown", button]
        for _ in range(self.rng.randrange(1, 6)):
            move += ["mousemove", *self.place(), "sleep", 0.02]
        self.act(*keys, *move, "mouseup", button, *(["keyup", modifier] if modifier else []))

    def wheel(self):
        modifier = self.rng.choice(["", "", "ctrl", "shift"])
        keys = (["keydown", modifier], ["keyup", modifier]) if modifier else ([], [])
        self.act(*keys[0], "mousemove", *self.place(), "click", "--repeat", self.rng.randrange(1, 8), "--delay", 10,
                 self.rng.choice([4, 5]), *keys[1])

    def key(self):
        self.act("key", *(self.rng.choice(KEYS) for _ in range(self.rng.randrange(1, 5))))

    def shortcut(self):
        self.act("key", self.rng.choice(SHORTCUTS))

    def type(self):
        before = ["key", "ctrl+a"] if self.rng.random() < 0.6 else []
        after = ["key", self.rng.choice(["Return", "Tab"])] if self.rng.random() < 0.7 else []
        if before:
            self.act(*before)
        self.act("type", "--delay", 5, "--", self.rng.choice(TYPED))
        if after:
            self.act(*after)

    def escape(self):
        self.act("key", "Escape")

    def menu(self):
        steps = ["Right"] * self.rng.randrange(8) + ["Down"] * self.rng.randrange(1, 15)
        if self.rng.random() < 0.3:
            steps += ["Right"] + ["Down"] * self.rng.randrange(4)
        self.act("key", "--delay", 15, "F10", *steps, "Return")

    def resize(self):
        largest = max(self.windows, key=lambda window: window[3] * window[4])
        self.act("windowsize", largest[0], self.rng.randrange(300, 1900), self.rng.randrange(200, 1150))
        self.act("windowmove", largest[0], self.rng.randrange(0, 100), self.rng.randrange(0, 60))

    def do_something(self):
        self.look()
        if not self.windows:
            time.sleep(0.3)  # not there yet
            return
        kinds = [self.click, self.context_menu, self.double_click, self.drag, self.wheel, self.key, self.shortcut,
                 self.type, self.escape, self.menu, self.resize]
        self.rng.choices(kinds, [40, 6, 5, 10, 7, 7, 5, 7, 5, 7, 1])[0]()

    def leave(self):
        self.look()
        # One key at a time: a viewer with many views under a sanitizer cannot keep up.
        for window in self.windows:
            self.tool("windowactivate", window[0])
        self.act("key", "Escape")
        self.act("key", self.rng.choice(["Escape", "ctrl+q", "ctrl+q", "Return"]))

    def focus(self):
        """The focused window and all others."""
        lines = [f"focus: {self.tool('getwindowfocus', 'getwindowname').strip()}",
                 f"active: {self.tool('getactivewindow', 'getwindowname').strip()}"]
        self.look()
        return lines + [f"{window}: {self.tool('getwindowname', window[0]).strip()}" for window in self.windows]


def reports(folder):
    return sorted(glob.glob(os.path.join(folder, "report.*")))


def start(program, folder, rng):
    arguments = ["--settings", os.path.join(os.environ["HOME"], "settings.ini"), "--size", "1500x1000"]
    for camera in [0] + rng.sample([1, 2], rng.randrange(3)):
        arguments += ["--camera", str(camera)]
    if rng.random() < 0.6:
        arguments += ["--3d"]
    if rng.random() < 0.5:
        arguments += ["--trigger", rng.choice(["btnToFAllViews", "btnToF3D"])]
    if rng.random() < 0.3:
        arguments += ["--language", rng.choice(["de", "en"])]
    if rng.random() < 0.3:
        arguments += ["--clean"]
    return Viewer(program, folder, arguments + [file for file in ("wave.tif", "grey.tif") if rng.random() < 0.4
                                                and os.path.exists(os.path.join(os.environ["HOME"], file))])


def use_once(viewer, folder, end, rng, actions):
    """Uses one viewer until the time is over or it was closed."""
    person = Person(rng, viewer.process.pid, actions)
    try:
        while time.monotonic() < end and not viewer.ended():
            person.do_something()
            viewer.check()
            time.sleep(rng.choice([0.0, 0.02, 0.1, 0.3]))
        deadline = time.monotonic() + CLOSE_SECONDS
        while not viewer.ended():
            if time.monotonic() > deadline:
                raise Failure("the viewer could not be left")
            person.leave()
            viewer.check()
            time.sleep(0.5)
    except Failure:
        actions.extend(person.focus())
        subprocess.run(["import", "-window", "root", os.path.join(folder, "screen.png")], check=False)
        raise
    finally:
        viewer.stop()
    if viewer.process.returncode != 0 or reports(folder):
        raise Failure(f"the viewer ended with code {viewer.process.returncode}")


def use(program, folder, seconds, rng, actions):
    """Uses viewers until the time is over; returns their number."""
    end = time.monotonic() + seconds
    starts = 0
    while time.monotonic() < end:
        viewer = start(program, folder, rng)
        starts += 1
        actions.append("start: " + " ".join(viewer.process.args))
        use_once(viewer, folder, end, rng, actions)
    return starts


def main():
    program, folder, seconds, seed = sys.argv[1], sys.argv[2], float(sys.argv[3]), int(sys.argv[4])
    actions = collections.deque(maxlen=5000)
    try:
        starts = use(program, folder, seconds, random.Random(seed), actions)
    except Failure as failure:
        with open(os.path.join(folder, "events.log"), "w", encoding="utf-8") as log:
            log.write("\n".join(actions) + "\n")
        print(f"seed {seed}: {failure}; {len(actions)} events, the last of them:", *list(actions)[-15:], sep="\n  ")
        for name in reports(folder)[:1]:
            with open(name, encoding="utf-8", errors="replace") as report:
                print(report.read(6000))
        return 1
    print(f"seed {seed}: {seconds:.0f} s, {starts} start(s), {len(actions)} events, no report")
    return 0


if __name__ == "__main__":
    sys.exit(main())
