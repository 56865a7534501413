#!/usr/bin/env python3
"""Mutation testing: changes one operator, constant, guard or statement order at a time and checks whether a test fails.

    scripts/mutants.py [--room ROOM ...] [--count N] [--seed S] [--folder FOLDER] [--results FILE]

Not part of CI: a mutant takes ten to sixty seconds. Works in a copy of the work tree (build/mutants), the tree itself is
not touched. Rooms whose tests open windows need an X server (DISPLAY). Results go to FILE, one JSON line per mutant;
mutants already listed there are not run again, so that an interrupted run can be resumed. Prints the share of mutants
killed and the survivors, each with its change. A mutant that does not compile does not count.
"""

import argparse
import json
import os
import random
import re
import subprocess
import sys
import time
from collections import Counter
from pathlib import Path

SOURCE = Path(__file__).resolve().parent.parent

# The test programs of each room, fastest first.
ROOMS = {
    "sim/synth": ["simSynthTest"],
    "sim/camera": ["simCameraTest", "simCameraManagerTest"],
    "host/picture": ["pictureTest"],
    "host/core": ["hostCoreBaseTest", "hostCoreChainTest", "hostCorePluginTest"],
    "host/coregui": ["zuCoreGuiTests"],
    "host/recording": ["hostRecordingTest"],
    "host/viewer/base": ["viewerPartsTest", "viewerWindowTest"],
    "host/viewer/picture": ["viewerPartsTest"],
    "host/viewer/area": ["viewerPartsTest", "viewerWindowTest"],
    "host/viewer/panels": ["viewerPartsTest", "viewerWindowTest"],
    "host/viewer/playback": ["viewerRecordingTest"],
    "host/viewer/plugins": ["viewerPluginCheckerTest"],
    "host/viewer/session": ["viewerWindowTest", "viewerRecordingTest"],
    "host/viewer/shell": ["viewerPartsTest", "viewerWindowTest"],
    "tools/tof": ["tofTest"],
    "plugins/zplToF/pic": ["tstToFPic"],
    "plugins/zplToF/cloud": ["tstToFCloud", "tstToFCloudMemory", "ToFView3dPartsTest"],
    "plugins/zplToF/transform": ["zplToFTransformTest", "zplToFChainTest"],
    "plugins/zplToF/chain": ["zplToFChainTest", "zplToFChainWidgetTest"],
    "plugins/zplToF/opticalpath": ["zplToFOpticalPathTests", "zplToFViewAndDialogTests"],
    "plugins/zplToF/calibration": ["zplToFCalibrationTests"],
    "plugins/zplToF/integration": ["ToFIntegrationTest"],
    "plugins/zplToF/view3d": ["ToFView3dPartsTest", "ToFView3dStateTest", "ToFView3dPictureTest",
                              "ToFView3dActionTest", "ToFView3dLifeTest", "ToFView3dFailureTest",
                              "ToFView3dSequenceTest"],
}

# clang-format puts blanks around binary operators, which distinguishes them from template brackets, pointers and signs.
OPERATORS = {
    "<": ["<=", ">"], "<=": ["<", ">="], ">": [">=", "<"], ">=": [">", "<="], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "&": ["|"], "|": ["&"], "<<": [">>"], ">>": ["<<"],
}
OPERATOR = re.compile(r"(?<=\s)(<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=|[<>+\-*/%&|])(?=\s)")
NUMBER = re.compile(r"(?<![\w.])(\d+)(?=[uUlL]*(?![\w.]))|(?<![\w.])(\d+\.\d+)(?=[fF]?\b)")
BOOLEAN = re.compile(r"\b(true|false)\b")
NEGATION = re.compile(r"(?<![\w!=])!(?=[\w(])(?!=)")
GUARD = re.compile(r"^(\s*)(?:\} else )?if \((.*)\)( \{)?$")
STATEMENT = re.compile(r"^\s+[\w:\->.\[\]*()]+(?: [-+*/|&]?= .*|\(.*\)|\+\+|--);$")
CALL = re.compile(r"^\s+(?!return |connect\()[\w:\->.\[\]*]+\(.*\);$")
NAME = re.compile(r"[A-Za-z_]\w*")
DECLARATION = re.compile(r"^\s*(static_assert|using|return|case|break|continue|template|typedef|namespace|class|struct)\b")


def blanked(text):
    """The text with comments, strings, characters and preprocessor lines blanked, positions kept."""
    pattern = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^[ \t]*#[^\n]*(?:\\\n[^\n]*)*',
                         re.S | re.M)
    return pattern.sub(lambda m: re.sub(r"[^\n]", "\0", m.group()), text)


def mutants_of(path):
    """All changes to one file: (kind, start, end, replacement)."""
    text = path.read_text()
    code = blanked(text)
    found = []
    for match in OPERATOR.finditer(code):
        line_start = code.rfind("\n", 0, match.start()) + 1
        line = code[line_start:code.find("\n", match.start())]
        if match.group() in "&*" and re.search(r"\boperator\b|\bauto\b", line):
            continue
        found += [("operator", match.start(), match.end(), new) for new in OPERATORS[match.group()]]
    for match in NUMBER.finditer(code):
        value = match.group()
        changed = str(int(value) + 1) if match.group(1) else str(float(value) * 1.5 or 1.5)
        found.append(("constant", match.start(), match.end(), changed))
    for match in BOOLEAN.finditer(code):
        found.append(("constant", match.start(), match.end(), "false" if match.group() == "true" else "true"))
    for match in NEGATION.finditer(code):
        found.append(("guard", match.start(), match.end(), ""))
    position = 0
    lines = text.split("\n")
    plain = code.split("\n")
    for number, line in enumerate(plain):
        guard = GUARD.match(line)
        if guard and "constexpr" not in line and ";" not in guard.group(2):
            start = position + guard.start(2)
            found += [("guard", start, start + len(guard.group(2)), new) for new in ("false", "true")]
        before = next((other for other in reversed(plain[:number]) if other.strip(" \0")), "")
        if STATEMENT.match(line) and not DECLARATION.match(line) and before.rstrip(" \0")[-1:] in tuple(";{}:"):
            found.append(("order", position, position + len(line), ""))
            after = plain[number + 1] if number + 1 < len(plain) else ""
            # Adjacent assignments rarely depend on their order, nor do calls without a common name.
            if CALL.match(line) and CALL.match(after) and set(NAME.findall(line)) & set(NAME.findall(after)):
                end = position + len(line) + 1 + len(after)
                found.append(("order", position, end, lines[number + 1] + "\n" + lines[number]))
        position += len(line) + 1
    return found


class Bench:
    """The copy of the work tree and its build."""

    def __init__(self, folder, jobs):
        self.tree, self.jobs = folder / "tree", jobs
        self.build = folder / "build"
        folder.mkdir(parents=True, exist_ok=True)
        self.tree.mkdir(exist_ok=True)
        names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=SOURCE, check=True,
                               capture_output=True, text=True).stdout.split("\n")
        listed = set(filter(None, names))
        for name in sorted(listed):
            source, target = SOURCE / name, self.tree / name
            if not source.is_file():
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.exists() or target.read_bytes() != source.read_bytes():
                target.write_bytes(source.read_bytes())
                target.chmod(source.stat().st_mode)
        for target in self.tree.rglob("*"):
            if target.is_file() and str(target.relative_to(self.tree)) not in listed:
                target.unlink()

    def configure(self):
        # No relinking of the programs that use a changed shared library.
        subprocess.run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build, "-DCMAKE_BUILD_TYPE=Release",
                        "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                        "-DZU_BUILD_BENCHMARKS=OFF"], check=True, stdout=subprocess.DEVNULL)

    def make(self, targets):
        return subprocess.run(["ninja", "-C", self.build, "-j", str(self.jobs), *targets],
                              capture_output=True, text=True)

    def test(self, names, limits):
        """The name of the first test program that fails, or None."""
        for name in names:
            # A session of its own, so that a hanging test is killed with its children.
            run = subprocess.Popen(["ctest", "--test-dir", self.build, "-R", f"^{name}$"], start_new_session=True,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            try:
                if run.wait(limits[name]) != 0:
                    return name
            except subprocess.TimeoutExpired:
                subprocess.run(["pkill", "-KILL", "-s", str(run.pid)], check=False)
                run.wait()
                return name + " (time)"
        return None


def chosen(rooms, count, seed):
    """The same mutants for the same seed and tree, distributed over the rooms by the square root of their number."""
    chooser = random.Random(seed)
    by_room = {}
    for room in rooms:
        files = sorted(p for p in (SOURCE / room).rglob("*") if p.suffix in (".cpp", ".h"))
        by_room[room] = [(room, str(p.relative_to(SOURCE)), *m) for p in files for m in mutants_of(p)]
    weights = {room: len(found) ** 0.5 for room, found in by_room.items()}
    total = sum(weights.values())
    # All of them, since some will not compile.
    result = []
    for room, found in by_room.items():
        chooser.shuffle(found)
        result.append((max(1, round(count * weights[room] / total)), found))
    return result


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--room", action="append", choices=sorted(ROOMS), help="only this room (may be given again)")
    parser.add_argument("--count", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--folder", type=Path, default=SOURCE / "build/mutants",
                        help="the copy and its build; one of its own for each run at a time")
    parser.add_argument("--results", type=Path, help="FOLDER/results.jsonl without it")
    options = parser.parse_args()
    options.folder = options.folder.resolve()
    options.results = options.results or options.folder / "results.jsonl"
    rooms = options.room or list(ROOMS)
    # The first failing test is enough.
    os.environ["GTEST_FAIL_FAST"] = "1"

    bench = Bench(options.folder, options.jobs)
    bench.configure()
    programs = [program for room in rooms for program in ROOMS[room]]
    unchanged = bench.make(programs)
    if unchanged.returncode != 0:
        sys.exit("The unchanged tree does not build:\n" + unchanged.stdout[-3000:])
    limits = {}
    for program in programs:
        start = time.monotonic()
        if bench.test([program], {program: 600}):
            sys.exit(f"{program} fails on the unchanged tree.")
        limits[program] = int(3 * (time.monotonic() - start)) + 20

    known = {}
    if options.results.exists():
        for line in options.results.read_text().splitlines():
            entry = json.loads(line)
            known[entry["file"], entry["start"], entry["old"], entry["new"]] = entry
    entries = []
    with options.results.open("a") as results:
        for wanted, offered in chosen(rooms, options.count, options.seed):
            tried = 0
            for room, name, kind, start, end, new in offered:
                if tried >= wanted:
                    break
                text = (SOURCE / name).read_text()
                old = text[start:end]
                key = (name, start, old, new)
                entry = known.get(key)
                if not entry:
                    target = bench.tree / name
                    target.write_text(text[:start] + new + text[end:])
                    made = bench.make(ROOMS[room])
                    outcome = "no mutant"
                    if made.returncode == 0:
                        outcome = "no mutant" if "no work to do" in made.stdout else \
                            bench.test(ROOMS[room], limits) or "survived"
                    target.write_text(text)
                    entry = {"room": room, "file": name, "line": text.count("\n", 0, start) + 1, "kind": kind,
                             "start": start, "old": old, "new": new, "outcome": outcome}
                    results.write(json.dumps(entry) + "\n")
                    results.flush()
                if entry["outcome"] == "no mutant":
                    continue
                tried += 1
                entries.append(entry)
                print(f'{entry["outcome"]:28} {name}:{entry["line"]} {old.strip()!r} -> {new.strip()!r}', flush=True)
    bench.make(programs)

    for room in rooms:
        outcomes = Counter(e["outcome"] == "survived" for e in entries if e["room"] == room)
        print(f"{room}: {outcomes[False]} of {sum(outcomes.values())} killed")
    survivors = [e for e in entries if e["outcome"] == "survived"]
    print(f"All: {len(entries) - len(survivors)} of {len(entries)} killed "
          f"({100 * (1 - len(survivors) / max(1, len(entries))):.1f} %)\n\nSurvivors:")
    for e in survivors:
        print(f'{e["file"]}:{e["line"]}: {e["kind"]}: {e["old"].strip()!r} -> {e["new"].strip()!r}')


if __name__ == "__main__":
    main()
