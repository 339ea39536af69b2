#!/usr/bin/env python3
"""Measures Tessel beside its rivals: whole processes, in turn, in one run; prints medians, ratios and growth.

The documents are made here: the sample manual repeated to 100, 1,000 and 10,000 pages, and any file given with --manual (a
real manual of over 1,000 pages). Rivals are left out when their programs aren't there.

The job "keep" is "nup" for documents of many links and of many fields, which the rival keeps too.
The jobs "opened" and "sealed" are "nup" with a source under AES-256, to a plain output and to one under AES-256; their times are
told as multiples of those of "nup" too. --ciphers measures ciphers and hashes alone, beside "openssl speed".
"""

import argparse
import os
import statistics
import subprocess
import sys
import tempfile
import time

SIZES = (100, 1000, 10000)
PASSWORD = "use"
PROTECTED_JOBS = ("opened", "sealed")
OPENSSL_NAMES = ("aes-128-cbc", "aes-256-cbc", "md5", "sha256", "sha512")
ANNOTATIONS = (2500, 5000, 10000, 20000)
PER_PAGE = 50


def measure(command):
    """(wall seconds, peak memory in KiB)"""
    start = time.monotonic()
    child = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    _, status, usage = os.wait4(child.pid, 0)
    seconds = time.monotonic() - start
    child.returncode = os.waitstatus_to_exitcode(status)
    if child.returncode != 0:
        raise RuntimeError(f"{' '.join(command)} ended with {child.returncode}")
    return seconds, usage.ru_maxrss


def repeated_sample(sample, pages, folder):
    out = os.path.join(folder, f"sample-{pages}.pdf")
    own = int(subprocess.check_output(["qpdf", "--show-npages", sample]))
    whole, rest = divmod(pages, own)
    parts = [sample] * whole
    if rest:
        parts += [sample, f"1-{rest}"]
    subprocess.check_call(["qpdf", "--empty", "--pages", *parts, "--", out])
    return out


def protected_copy(file, folder):
    out = os.path.join(folder, "protected-" + os.path.basename(file))
    if not os.path.exists(out):
        status = subprocess.call(["qpdf", "--no-warn", "--encrypt", PASSWORD, "own", "256", "--", file, out])
        if status not in (0, 3):  # 3: with warnings
            raise RuntimeError(f"qpdf can't protect {file}")
    return out


def write_pdf(path, objects):
    """A file of these objects, {number: body}; 1 is the catalog."""
    out, offsets = bytearray(b"%PDF-1.7\n"), {}
    for number, body in objects.items():
        offsets[number] = len(out)
        out += f"{number} 0 obj\n{body}\nendobj\n".encode("latin-1")
    start, size = len(out), max(objects) + 1
    out += f"xref\n0 {size}\n0000000000 65535 f \n".encode()
    for number in range(1, size):
        out += (f"{offsets[number]:010} 00000 n \n" if number in offsets else "0000000000 65535 f \n").encode()
    out += f"trailer\n<</Size {size}/Root 1 0 R>>\nstartxref\n{start}\n%%EOF\n".encode()
    with open(path, "wb") as file:
        file.write(out)


def annotated(path, count, annotation, catalog="", more=None):
    """A document of `count` annotations, PER_PAGE on a page; annotation(i, own number, page number, all page numbers) is one's
    dictionary, without its rectangle."""
    pages = list(range(10, 10 + count // PER_PAGE))
    first = 10 + len(pages)
    objects = {1: f"<</Type/Catalog/Pages 2 0 R{catalog}>>",
               2: f"<</Type/Pages/Count {len(pages)}/Kids[{' '.join(f'{page} 0 R' for page in pages)}]>>",
               **(more(first) if more else {})}
    for at, page in enumerate(pages):
        own = range(first + at * PER_PAGE, first + (at + 1) * PER_PAGE)
        objects[page] = (f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]/Resources<<>>"
                         f"/Annots[{' '.join(f'{number} 0 R' for number in own)}]>>")
        for place, number in enumerate(own):
            rect = f"/Rect[50 {20 + 16 * place} 250 {34 + 16 * place}]"
            objects[number] = f"<</Type/Annot/P {page} 0 R{rect}{annotation(number - first, number, page, pages)}>>"
    write_pdf(path, objects)


def linked_document(path, count):
    def link(i, _, __, pages):
        target = f"[{pages[i * 7 % len(pages)]} 0 R/XYZ 50 {i % 800} null]"
        return "/Subtype/Link/Border[0 0 0]" + (f"/Dest{target}" if i % 2 else f"/A<</S/GoTo/D{target}>>")
    annotated(path, count, link)


def form_document(path, count):
    """Every second field has a widget of its own; the others share one field, which has one on each page."""
    def field(i, number, _, __):
        return "/Subtype/Widget/F 4" + ("/Parent 4 0 R" if i % 2 else f"/FT/Tx/T(field {i})/V(value)/DA(/Helv 9 Tf 0 g)")

    def form(first):
        own = " ".join(f"{first + i} 0 R" for i in range(0, count, 2))
        shared = " ".join(f"{first + i} 0 R" for i in range(1, count, 2))
        return {3: f"<</Fields[4 0 R {own}]/DA(/Helv 9 Tf 0 g)/DR<</Font<</Helv 5 0 R>>>>>>",
                4: f"<</FT/Tx/T(shared)/V(value)/DA(/Helv 9 Tf 0 g)/Kids[{shared}]>>",
                5: "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>"}
    annotated(path, count, field, "/AcroForm 3 0 R", form)


def commands(job, file, out, tools):
    """{who: command} of one job; ours first."""
    tessel, bench = tools["tessel"], tools["bench"]
    place = [tessel, "nup", file, "-o", out, "--quiet"]
    # The rivals place what a page paints; only the job "keep" takes more along.
    painted = ["--annotations", "none", "--forms", "none"]
    ours = {
        "open": [bench, "open", file],
        "boxes": [bench, "boxes", file],
        "middle": place + painted + ["--grid", "1x1", "--paper", "auto", "--pages", str(tools["pages"] // 2 + 1)],
        "nup": place + painted + ["--grid", "2x1", "--paper", "A4"],
        "keep": place + ["--grid", "2x1", "--paper", "A4"],
    }
    ours["opened"] = ours["nup"] + ["--password", PASSWORD]
    ours["sealed"] = ours["opened"] + ["--encrypt", "aes-256", "--user-password", PASSWORD]
    found = {"tessel": ours[job]}
    # One of the rivals can't keep annotations.
    for rival in ("qpdf",) if job == "keep" else ("qpdf", "mupdf"):
        program = tools.get(rival)
        if program and os.path.exists(program):
            found[rival] = [program, job, file] + ([] if job in ("open", "boxes") else [out])
            if job in PROTECTED_JOBS:
                found[rival] = [program, "nup", file, out, PASSWORD] + (["sealed"] if job == "sealed" else [])
    return found


def measure_job(job, file, folder, tools, runs):
    """{who: (median seconds, greatest memory in KiB, size of the output)}"""
    out = os.path.join(folder, "out.pdf")
    if job in PROTECTED_JOBS:
        # In the same turns, as other work on the machine would count otherwise.
        plain = commands("nup", file, out, tools)["tessel"]
        candidates = {**commands(job, protected_copy(file, folder), out, tools), "plain": plain}
    else:
        candidates = commands(job, file, out, tools)
    times = {who: [] for who in candidates}
    memory = dict.fromkeys(candidates, 0)
    written = dict.fromkeys(candidates, 0)
    for turn in range(runs + 1):  # the first turn only warms up
        for who, command in candidates.items():
            seconds, peak = measure(command)
            if turn:
                times[who].append(seconds)
            memory[who] = max(memory[who], peak)
            written[who] = os.path.getsize(out) if os.path.exists(out) else 0
            if os.path.exists(out):
                os.remove(out)
    return {who: (statistics.median(times[who]), memory[who], written[who]) for who in candidates}


def report(name, job, results):
    ours = results["tessel"][0]
    line = f"{name:14} {job:7}"
    if plain := results.pop("plain", None):
        line += f"  x{ours / plain[0]:.2f} of nup with nothing encrypted"
    for who, (seconds, peak, written) in results.items():
        line += f"  {who} {seconds * 1000:9.1f} ms {peak / 1024:6.0f} MiB"
        if written:
            line += f" {written / 1048576:6.1f} MiB out"
        if who != "tessel":
            line += f" (x{ours / seconds:.2f})"
    print(line, flush=True)


def measure_ciphers(binaries):
    subprocess.check_call([os.path.join(binaries, "bench_ciphers")])
    for name in OPENSSL_NAMES:
        text = subprocess.check_output(["openssl", "speed", "-bytes", "16384", "-seconds", "1", "-evp", name],
                                       stderr=subprocess.DEVNULL).decode()
        print(f"openssl {name:24} {float(text.split()[-1].rstrip('k')) / 1000:8.0f} MB/s")


def report_growth(what, times):
    for (fewer, before), (more, after) in zip(times, times[1:]):
        print(f"growth: {more / fewer:.1f} times the {what}, {after / before:.1f} times the time")


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default="build/bench", help="build folder with the programs")
    parser.add_argument("--sample", default="Samples/host-guide.pdf")
    parser.add_argument("--manual", default="", help="a real manual of over 1,000 pages")
    parser.add_argument("--jobs", default="open,boxes,middle,nup,opened,sealed")
    parser.add_argument("--sizes", default=",".join(map(str, SIZES)))
    parser.add_argument("--annotations", default=",".join(map(str, ANNOTATIONS)),
                        help="numbers of links and of fields of the documents that are placed with them")
    parser.add_argument("--runs", type=int, default=5)
    parser.add_argument("--ciphers", action="store_true", help="measure the ciphers, and nothing else")
    return parser.parse_args()


def main():
    options = parse()
    binaries = os.path.join(options.build, "bin")
    if options.ciphers:
        measure_ciphers(binaries)
        return 0
    tools = {"tessel": os.path.join(options.build, "tessel"), "bench": os.path.join(binaries, "bench_tessel"),
             "qpdf": os.path.join(binaries, "rival_qpdf"), "mupdf": os.path.join(binaries, "rival_mupdf"),
             "pages": 0}
    with tempfile.TemporaryDirectory() as folder:
        files = [(f"sample {size}", repeated_sample(options.sample, size, folder))
                 for size in map(int, filter(None, options.sizes.split(",")))]
        if options.manual:
            files.append(("manual", options.manual))
        nup_times = []
        for name, file in files:
            tools["pages"] = int(subprocess.check_output(["qpdf", "--show-npages", file]))
            print(f"{name}: {tools['pages']} pages, {os.path.getsize(file) / 1048576:.1f} MiB")
            for job in options.jobs.split(","):
                results = measure_job(job, file, folder, tools, options.runs)
                report(name, job, results)
                if job == "nup" and name.startswith("sample"):
                    nup_times.append((tools["pages"], results["tessel"][0]))
        report_growth("pages", nup_times)
        for what, make in (("links", linked_document), ("fields", form_document)):
            times = []
            for count in map(int, filter(None, options.annotations.split(","))):
                file = os.path.join(folder, f"{what}-{count}.pdf")
                make(file, count)
                results = measure_job("keep", file, folder, tools, options.runs)
                report(f"{what} {count}", "keep", results)
                times.append((count, results["tessel"][0]))
            report_growth(what, times)
    return 0


if __name__ == "__main__":
    sys.exit(main())
