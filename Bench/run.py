#!/usr/bin/env python3
"""Measures Tessel beside its rivals: whole processes, in turn, in one run; prints medians, ratios and growth.

The documents are made here: the sample manual repeated to 100, 1,000 and 10,000 pages, and any file given with --manual (a
real manual of over 1,000 pages). Rivals are left out when their programs aren't there.

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


def commands(job, file, out, tools):
    """{who: command} of one job; ours first."""
    tessel, bench = tools["tessel"], tools["bench"]
    ours = {
        "open": [bench, "open", file],
        "boxes": [bench, "boxes", file],
        "middle": [tessel, "nup", file, "-o", out, "--grid", "1x1", "--paper", "auto", "--quiet",
                   "--pages", str(tools["pages"] // 2 + 1)],
        "nup": [tessel, "nup", file, "-o", out, "--grid", "2x1", "--paper", "A4", "--quiet"],
    }
    ours["opened"] = ours["nup"] + ["--password", PASSWORD]
    ours["sealed"] = ours["opened"] + ["--encrypt", "aes-256", "--user-password", PASSWORD]
    found = {"tessel": ours[job]}
    for rival in ("qpdf", "mupdf"):
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
        file = protected_copy(file, folder)
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


def report(name, job, results, plain):
    """`plain` is our time for the same job with nothing encrypted; None when that isn't known."""
    ours = results["tessel"][0]
    line = f"{name:14} {job:7}"
    if job in PROTECTED_JOBS and plain:
        line += f"  x{ours / plain:.2f} of nup"
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


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default="build/bench", help="build folder with the programs")
    parser.add_argument("--sample", default="Samples/host-guide.pdf")
    parser.add_argument("--manual", default="", help="a real manual of over 1,000 pages")
    parser.add_argument("--jobs", default="open,boxes,middle,nup,opened,sealed")
    parser.add_argument("--sizes", default=",".join(map(str, SIZES)))
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
             "qpdf": os.path.join(binaries, "rival_qpdf"), "mupdf": os.path.join(binaries, "rival_mupdf")}
    with tempfile.TemporaryDirectory() as folder:
        files = [(f"sample {size}", repeated_sample(options.sample, size, folder))
                 for size in map(int, options.sizes.split(","))]
        if options.manual:
            files.append(("manual", options.manual))
        nup_times = []
        for name, file in files:
            tools["pages"] = int(subprocess.check_output(["qpdf", "--show-npages", file]))
            print(f"{name}: {tools['pages']} pages, {os.path.getsize(file) / 1048576:.1f} MiB")
            plain = None
            for job in options.jobs.split(","):
                results = measure_job(job, file, folder, tools, options.runs)
                report(name, job, results, plain)
                if job == "nup":
                    plain = results["tessel"][0]
                if job == "nup" and name.startswith("sample"):
                    nup_times.append((tools["pages"], results["tessel"][0]))
        for (fewer, before), (more, after) in zip(nup_times, nup_times[1:]):
            print(f"growth: {more / fewer:.1f} times the pages, {after / before:.1f} times the time")
    return 0


if __name__ == "__main__":
    sys.exit(main())
