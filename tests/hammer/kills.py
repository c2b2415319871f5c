#!/usr/bin/env python3
"""Kills a program with SIGKILL at random moments of saving, and another of autosaving: the file must be the old or the new
document, whole; an autosave is offered to the next start. What is left beside it is rare and whole, too, where the file system
knows files without names.

    tests/hammer/kills.py WRITER [ROUNDS each]

VELQUIN_SEED gives the number from which the moments are drawn; a fault says which it was.
"""
import os
import pathlib
import plistlib
import random
import subprocess
import sys
import tempfile
import time

writer, rounds = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 500
seed = int(os.environ.get("VELQUIN_SEED") or random.randrange(1 << 32))
chance = random.Random(seed)


def fail(reason):
    sys.exit(f"{reason} (VELQUIN_SEED={seed})")


def killed_run(kind, target):
    """Starts the writer and kills it a few writes and a random part of one later. Returns the lines that it printed."""
    run = subprocess.Popen([writer, kind, target], stdout=subprocess.PIPE)
    lines, took = [], 0.0
    for _ in range(chance.randint(2, 5)):
        begin = time.monotonic()
        lines.append(run.stdout.readline())
        took = time.monotonic() - begin
    # The next write says nothing before its end, so that only the clock leads into its midst. Nothing is taken for granted of
    # where the kill hits: the old and the new document are both right.
    time.sleep(chance.uniform(0, 1.2 * took))
    run.kill()
    lines += run.stdout.readlines()
    if run.wait() != -9:
        fail(f"{kind}: the writer ended by itself: {run.returncode}")
    return [line.decode().strip() for line in lines if line.endswith(b"\n")]


class Documents:
    """All that were written differ by their number alone."""

    def __init__(self):
        self.text = None

    def number(self, document):
        number = int(document["PlotAreaOptions"]["title"].removeprefix("number "))
        document["PlotAreaOptions"]["title"] = "number"
        text = plistlib.dumps(document)
        self.text = self.text or text
        if len(text) < 300_000 or text != self.text:
            raise ValueError("it is another document")
        return number


def hammer(kind, folder):
    folder.mkdir(mode=0o700)
    target = folder / "target.mox" if kind == "save" else folder
    try:
        os.close(os.open(folder, os.O_TMPFILE | os.O_WRONLY))
        is_nameless = True
    except OSError:
        is_nameless = False
    documents, counts = Documents(), {"old": 0, "new": 0, "beside": 0}
    for i in range(rounds):
        lines = killed_run(kind, target)
        if kind == "autosave" and lines.pop(0) != f"took {min(i, 1)}":
            fail(f"autosave, round {i}: the one that was left is not taken")
        written = int(lines[-1]) if lines else 0
        names = sorted(path for path in folder.iterdir())
        beside = [path for path in names if path.name.startswith(".")]
        try:
            found = []
            for path in names if is_nameless else set(names) - set(beside):
                values = plistlib.loads(path.read_bytes())
                found.append(documents.number(values if kind == "save" else values["Document"]))
                if path not in beside and found[-1] not in (written, written + 1):
                    raise ValueError(f"it is number {found[-1]}, not {written} or the next")
        except Exception as fault:  # whatever it is, it is told with its round
            fail(f"{kind}, round {i}: {path.name} ({path.stat().st_size} bytes): {fault}")
        if written and len(names) - len(beside) != 1:
            fail(f"{kind}, round {i}: {len(names)} files")
        counts["beside"] += len(beside)
        counts["new" if found and found[-1] == written + 1 else "old"] += 1
        for path in beside:
            path.unlink()
    print(f"{rounds} kills while it {kind}s: {counts}", flush=True)
    if is_nameless and 10 * counts["beside"] > rounds + 10:
        fail(f"{kind}: files pile up")


with tempfile.TemporaryDirectory() as scratch:
    hammer("save", pathlib.Path(scratch) / "saves")
    hammer("autosave", pathlib.Path(scratch) / "autosaves")
