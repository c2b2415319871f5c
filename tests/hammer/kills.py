#!/usr/bin/env python3
"""Kills the program with SIGKILL at random moments of saving: the file must be the old or the new document, whole.

    tests/hammer/kill_saves.py PROGRAM [ROUNDS]
"""
import pathlib
import random
import subprocess
import sys
import tempfile
import time

program, rounds = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 500
chance = random.Random(1)
with tempfile.TemporaryDirectory() as scratch:
    folder = pathlib.Path(scratch)
    (folder / "data.csv").write_text("1,2\n2,3\n")
    # Two documents of some length, so that a write takes its time.
    versions = []
    for title in ("one", "two"):
        curves = [word for i in range(400) for word in ("--y", "2", "--curve-title", f"{title} {i}")]
        source = folder / f"{title}.mox"
        subprocess.run([program, folder / "data.csv", "--delimiter", "comma", *curves, "--save", source], check=True)
        versions.append(source)
    contents = [version.read_bytes() for version in versions]
    target = folder / "saved" / "target.mox"
    target.parent.mkdir()
    target.write_bytes(contents[0])
    begin = time.monotonic()
    subprocess.run([program, versions[1], "--save", target], check=True)
    usual = time.monotonic() - begin
    assert target.read_bytes() == contents[1], "a save gives the same bytes again"
    counts = {"old": 0, "new": 0, "left over": 0}
    for i in range(rounds):
        before, after = contents[(i + 1) % 2], contents[i % 2]
        target.write_bytes(before)
        run = subprocess.Popen([program, versions[i % 2], "--save", target])
        time.sleep(chance.uniform(0.3, 1.05) * usual)
        run.kill()
        run.wait()
        now = target.read_bytes()
        if now not in (before, after):
            sys.exit(f"round {i}: the file is neither the old nor the new document ({len(now)} bytes)")
        counts["new" if now == after else "old"] += 1
        for stray in target.parent.iterdir():  # what a killed process could not take away
            if stray != target:
                counts["left over"] += 1
                stray.unlink()
    print(f"{rounds} kills: {counts}")
