#!/usr/bin/env python3
"""Asks the program for more than 2 GB of address space hold: it must refuse with the file and the reason, and never end by a signal.

    tests/hammer/memory_limit.py PROGRAM
"""
import os
import pathlib
import plistlib
import re
import resource
import subprocess
import sys
import tempfile

two_gigabytes = 2_000_000_000
program = str(pathlib.Path(sys.argv[1]).resolve())
mebibyte = 1 << 20
done, failed, wrong_usage = 0, 1, 2  # exit statuses of the program


def use_own_font_cache(folder):
    """What lists fonts without memory finds none, and would leave that to all programs of this user."""
    configuration = folder / "fonts.conf"
    configuration.write_text(
        '<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "fonts.dtd"><fontconfig>'
        f"<dir>/usr/share/fonts</dir><cachedir>{folder}/fonts</cachedir></fontconfig>"
    )
    os.environ["FONTCONFIG_FILE"] = str(configuration)


def run(arguments, limit=two_gigabytes):
    def lower_limit():
        resource.setrlimit(resource.RLIMIT_AS, (limit, limit))

    return subprocess.run([program, *arguments], preexec_fn=lower_limit, capture_output=True, text=True, timeout=300)


def check(name, arguments, status, reason=""):
    """`reason` is a regular expression; standard error holds it in one line, or nothing when all went well."""
    end = run(arguments)
    line = rf"velquin: {reason}[^\n]*\n" if reason else ""
    assert end.returncode == status and re.fullmatch(line, end.stderr), \
        f"{name}: exit status {end.returncode}, {end.stderr[-500:]!r}"
    print(f"{name}: {end.stderr.strip()[-120:] or 'done'}")


def binary_list(objects):
    """A binary property list of encoded objects, the first one its root, with 8-byte references."""
    body, places = b"bplist00", []
    for encoded in objects:
        places.append(len(body).to_bytes(8, "big"))
        body += encoded
    counts = (len(objects), 0, len(body))
    return body + b"".join(places) + bytes(6) + b"\x08\x08" + b"".join(n.to_bytes(8, "big") for n in counts)


def texts():
    comma = ["--delimiter", "comma", "--y", "1", "--table", "-"]
    numbers = ["--y", "1", "--table", "-"]
    header = ["--header", *comma]
    field = r"\S*/data.csv: line {}: a field is longer than 64 MiB"
    table = r"\S*/data.csv: line {}: the table would need \d+ MB, more than the \d+ MB it may take"
    wide_row = b",".join(b"%d" % i for i in range(10_000)) + b"\n"
    return [
        ("a field of 70 MiB", b"1,2\n" + b"7" * (70 * mebibyte), comma, failed, field.format(2)),
        ("a number of 70 MiB", b"7" * (70 * mebibyte), numbers, failed, field.format(1)),
        ("a quote that is not closed", b'1,"' + b"x" * (70 * mebibyte), comma, failed, field.format(1)),
        ("a field of 60 MiB", b"1," + b"x" * (60 * mebibyte) + b"\n", comma, done, ""),
        ("10,000 columns", wide_row * 100, comma, done, ""),
        ("10,000 columns after 200,000 rows", b"1\n" * 200_000 + wide_row, comma, failed, table.format(200001)),
        ("200 million rows", b"\n" * 200_000_000, comma, failed, table.format(r"\d+")),
        ("30 million names", b"," * 30_000_000 + b"\n1,2\n", header, failed, table.format(1)),
        ("names of 400 MB", (b"x" * (50 * mebibyte) + b",") * 8 + b"\n1,2\n", header, failed, table.format(1)),
    ]


def expressions():
    too_large = r"\S*data.csv: expression \".*\": .*"
    return [
        ("an array without bounds", b"1,2\n", "zeros(100000,100000)", too_large + "an array of more than"),
        ("a text without bounds", b"1,2\n", "+".join(["1"] * 20_000), too_large),
        ("a result beside 90 million rows", b"\n" * 90_000_000, "row*2", too_large),
    ]


def documents(document):
    open_list = b'<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">'
    long_title = {**document, "PlotAreaOptions": {**document["PlotAreaOptions"], "title": "T" * mebibyte}}
    many_curves = {**document, "Curves": document["Curves"] * 2_000, "DatasourcesMap": [0] * 2_000}
    doubling = [b"\xa2" + (i + 1).to_bytes(8, "big") * 2 for i in range(40)] + [b"\x50"]
    no_document = r"\S*d.mox: it is not a document: "
    return [
        ("two million open arrays", open_list + b"<array>" * 2_000_000, failed, no_document),
        ("a text of 300 MB", open_list + b"<string>" + b"x" * 300_000_000, failed, r"\S*d.mox: it is too large"),
        ("20 million texts", open_list + b"<array>" + b"<string/>" * 20_000_000, failed, no_document),
        ("an array said to hold 2^60", binary_list([b"\xaf\x13" + (1 << 60).to_bytes(8, "big")]), failed, no_document),
        ("data said to be 2^63 bytes", binary_list([b"\x4f\x13" + b"\x7f" + b"\xff" * 7]), failed, no_document),
        ("2^40 shared arrays", binary_list(doubling), failed, no_document),
        ("2,000 curves", plistlib.dumps(many_curves), done, ""),
        ("a title of a million letters", plistlib.dumps(long_title), done, ""),
    ]


def pictures():
    no_memory = r"\S*p.{}: There is no memory for a picture of this size"
    return [
        ("16384x16384", "png", failed, no_memory.format("png")),
        ("16384x16384", "jpg", failed, no_memory.format("jpg")),
        ("16384x16384", "svg", done, ""),
        ("16384x16384", "pdf", done, ""),
        ("16385x16", "png", wrong_usage, "--size takes"),
        ("999999999999x9", "png", wrong_usage, "--size takes"),
    ]


def check_every_limit(data):
    """Whatever allocation or thread is the first to fail, the program ends by itself. Below where the toolkit itself starts
    there is nothing to promise."""
    tiny, picture = data.with_name("tiny.csv"), data.with_name("p.png")
    draw = ["--delimiter", "comma", "--x", "1", "--y", "2", "--y", "sin(c1)+c2", "--title", "T", "--snapshot", picture]
    megabyte, step = 1_000_000, 2
    enough = next(mb for mb in range(40, 1000, step) if run([tiny, *draw], mb * megabyte).returncode == done)
    seen = set()
    for mb in range(enough - 8 * step, enough + 30 * step, step):
        end = run([data, *draw], mb * megabyte)
        assert end.returncode in (done, failed), f"{mb} MB: {end.returncode}, {end.stderr[-500:]!r}"
        assert end.returncode == done or end.stderr.startswith("velquin: "), f"{mb} MB: {end.stderr!r}"
        seen.add(end.stderr)
    assert len(seen) > 2 and "" in seen, "the limits were too low or too high to try anything"
    print(f"every limit from {enough - 8 * step} MB on: {len(seen) - 1} reasons")


def main():
    with tempfile.TemporaryDirectory() as scratch:
        folder = pathlib.Path(scratch)
        use_own_font_cache(folder)
        data, saved, picture = folder / "data.csv", folder / "d.mox", folder / "p.png"
        for name, text, options, status, reason in texts():
            data.write_bytes(text)
            check(name, [data, *options], status, reason)
            # A document with the same settings reads the same file.
            columns = [word for word in options if word not in ("--table", "-")]
            if status == failed:
                tiny = folder / "tiny.csv"
                tiny.write_text("1,2\n2,3\n")
                made = run([tiny, *columns, "--save", saved])
                assert made.returncode == done, made.stderr
                saved.write_bytes(saved.read_bytes().replace(b"tiny.csv", b"data.csv"))
                check(name + ", of a document", [saved, "--table", "-"], status, reason)
        for name, text, expression, reason in expressions():
            data.write_bytes(text)
            check(name, [data, "--delimiter", "comma", "--y", expression, "--snapshot", picture], failed, reason)
        data.write_text("1,2\n2,3\n")
        data.with_name("tiny.csv").write_text("1,2\n2,3\n")
        run([data, "--delimiter", "comma", "--y", "2", "--save", saved])
        for name, content, status, reason in documents(plistlib.loads(saved.read_bytes())):
            saved.write_bytes(content)
            check(name, [saved, "--snapshot", picture], status, reason)
        for size, ending, status, reason in pictures():
            options = ["--y", "1", "--y", "2", "--size", size, "--snapshot", folder / f"p.{ending}"]
            check(f"a {ending} of {size}", [data, *options], status, reason)
        data.write_text("".join(f"{i},{i % 7}\n" for i in range(300_000)))
        check_every_limit(data)


main()
