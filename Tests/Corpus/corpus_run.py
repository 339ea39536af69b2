#!/usr/bin/env python3
"""Runs `tessel` over a folder of real PDF files and has others judge what comes out.

robust   each file through `dump` and `nup`: ends in time, exit status 0 or 1, no sanitizer report
render   each file of the classes named, through `nup --grid 1x1 --paper auto`: the output passes `qpdf --check`, and each page
         looks like the source's in poppler and in mupdf
merge    groups of 2 to 20 sound files through the merging example, whole and by ranges (--tool names that program): the output
         passes `qpdf --check`, and its pages are those of the sources, in number and in looks
encrypted  each file of the class of that name, with each of its passwords and with none: what pdfinfo opens opens, all else ends with
         exit status 1 and one line, or with 0
claims   each file's claims, tags and output intents as `info --json` tells them, against what pdfinfo and qpdf tell; profiles as
         `info --profile` writes them are those that qpdf decodes

Passwords are those of the manifest. Prints the figures and the misses; exits with 1 when a bar isn't met.
"""

import argparse
import collections
import csv
import hashlib
import json
import multiprocessing
import os
import shutil
import subprocess
import sys
import tempfile
import time

import corpus_claims

MEAN_LIMIT = 2.0        # of 255
FAR_LIMIT = 0.01        # share of pixels off by more than 64
TIME_LIMIT = 10         # seconds for one run
MERGE_GROUP = (2, 20)   # fewest and most files of one merge
RENDER_TIME_LIMIT = 120
SOUND_OPEN_SHARE = 0.99
SOUND_PAGE_SHARE = 0.98
DEFAULT_CLASSES = {"robust": "", "render": "sound", "merge": "sound", "encrypted": "encrypted", "claims": "sound"}
# What pdfinfo opens and tessel doesn't; Docs/corpus.md tells why.
KNOWN_MISSES = {"encrypted/" + name for name in (
    "js-auth-event-ef-open.pdf", "js-encrypted-attachment.pdf", "js-issue15893_reduced.pdf", "js-issue19484_1.pdf",
    "js-PDFBOX-4352-0.pdf", "js-poppler-742-0-fuzzed.pdf",
    "qt-enc-XI-R6_V5_U_attachment_encrypted-attachments.pdf", "qt-nontrivial-crypt-filter.pdf")}
SANITIZER_MARKS = ("AddressSanitizer", "runtime error:", "LeakSanitizer", "UndefinedBehaviorSanitizer")

Task = collections.namedtuple("Task", "path name kind pages password owner_password")


def read_manifest(corpus):
    with open(os.path.join(corpus, "MANIFEST.tsv"), newline="") as file:
        for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE):
            passwords = [row[key] if row[key] != "-" else "" for key in ("user_password", "owner_password")]
            pages = int(row["pages"]) if row["pages"].isdigit() else None
            yield Task(os.path.join(corpus, row["file"]), row["file"], row["file"].split("/")[0], pages, *passwords)


def run(command, limit, cwd=None):
    """(exit status or None when it ran out of time, stdout, stderr, seconds)"""
    start = time.monotonic()
    try:
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=limit, cwd=cwd)
        return done.returncode, done.stdout, done.stderr.decode("utf-8", "replace"), time.monotonic() - start
    except subprocess.TimeoutExpired:
        return None, b"", "", time.monotonic() - start


def password_options(task):
    return ["--password", task.password] if task.password else []


def robust_one(task):
    """Trouble of one file, as lines."""
    trouble = []
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.pdf")
        for command in (["dump", task.path, "--summary"],
                        ["nup", task.path, "-o", out, "--grid", "2x2", "--quiet", "--ignore-permissions"]):
            status, _, stderr, seconds = run([options.tool] + command + password_options(task), TIME_LIMIT)
            if status is None:
                trouble.append(f"{task.name}: {command[0]} still ran after {TIME_LIMIT} s")
            elif status not in (0, 1) or any(mark in stderr for mark in SANITIZER_MARKS):
                trouble.append(f"{task.name}: {command[0]} ended with {status}: {stderr.strip()[-2000:]}")
            elif status == 1 and len(stderr.strip().splitlines()) != 1:
                trouble.append(f"{task.name}: {command[0]} failed with {len(stderr.splitlines())} lines of explanation")
            elif status == 1 and os.path.exists(out):
                trouble.append(f"{task.name}: a failed nup left its output")
        left = os.listdir(folder)
        if len(left) > 1:
            trouble.append(f"{task.name}: left behind {left}")
    return trouble


def render_with_poppler(path, folder, annotations, password):
    hide = [] if annotations else ["-hide-annotations"]
    # The crop box is what a reader shows; poppler takes the media box unless told.
    opened = ["-upw", password] if password else []
    run(["pdftoppm", "-r", "50", "-cropbox"] + opened + hide + [path, os.path.join(folder, "p")], RENDER_TIME_LIMIT)


def render_with_mupdf(path, folder, annotations, password):
    script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "render_pages.js")
    shown = "annotations" if annotations else "page"
    run(["mutool", "run", script, path, os.path.join(folder, "p"), "50", shown, password], RENDER_TIME_LIMIT)


def page_verdict(line):
    parts = line.split()
    if parts[1] != "same":
        return "size" if parts[1] == "other" else parts[1]
    if float(parts[2]) >= MEAN_LIMIT or float(parts[3]) > FAR_LIMIT:
        return f"mean {parts[2]} far {parts[3]}"
    return None


def compare_renderings(task, out, renderer, folder):
    """(pages compared, misses)"""
    rendered = [rendering(renderer, path, os.path.join(folder, renderer.__name__ + "-" + name), password)
                for path, name, password in ((task.path, "source", task.password), (out, "output", ""))]
    result = page_misses(*rendered)
    for target in rendered:
        shutil.rmtree(target)
    return result


def rendering(renderer, path, target, password=""):
    """Renders all pages into a new folder; the folder"""
    os.mkdir(target)
    renderer(path, target, options.annotations, password)
    return target


def page_misses(source, output):
    """(pages compared, misses) of two folders"""
    _, stdout, _, _ = run([options.compare, source, output], RENDER_TIME_LIMIT)
    lines = stdout.decode().splitlines()
    misses = []
    for line in lines:
        verdict = page_verdict(line)
        if verdict:
            misses.append((int(line.split()[0]), verdict))
    return len(lines), misses


def render_one(task):
    """(opened, check trouble or None, {renderer: (pages, misses)}, trouble text)"""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.pdf")
        command = [options.tool, "nup", task.path, "-o", out, "--grid", "1x1", "--paper", "auto", "--quiet",
                   "--ignore-permissions"]
        status, _, stderr, _ = run(command + password_options(task) + options.extra.split(), RENDER_TIME_LIMIT)
        if status != 0:
            return False, None, {}, f"nup: {status} {stderr.strip()[:300]}"
        checked, stdout, stderr, _ = run(["qpdf", "--check", out], RENDER_TIME_LIMIT)
        check = None if checked == 0 else (stdout.decode("utf-8", "replace") + stderr).strip()[-300:]
        results = {}
        for renderer in (render_with_poppler, render_with_mupdf):
            results[renderer.__name__[12:]] = compare_renderings(task, out, renderer, folder)
        return True, check, results, None


def opens_elsewhere(path, password):
    """Whether pdfinfo opens the file, the password being the user's or the owner's."""
    return any(run(["pdfinfo", kind, password, path], TIME_LIMIT)[0] == 0 for kind in ("-upw", "-opw"))


def encrypted_one(task):
    """(passwords tried, opened elsewhere, opened here, known misses, trouble as lines)"""
    trouble = []
    passwords = sorted({"", task.password, task.owner_password})
    elsewhere = here = known = 0
    for password in passwords:
        theirs = opens_elsewhere(task.path, password)
        status, _, stderr, _ = run([options.tool, "info", "--password", password, task.path], TIME_LIMIT)
        elsewhere += theirs
        here += status == 0
        if status not in (0, 1) or any(mark in stderr for mark in SANITIZER_MARKS):
            trouble.append(f"{task.name} '{password}': ended with {status}: {stderr.strip()[-2000:]}")
        elif status == 1 and len(stderr.strip().splitlines()) != 1:
            trouble.append(f"{task.name} '{password}': failed with {len(stderr.splitlines())} lines of explanation")
        elif theirs and status == 1 and task.name in KNOWN_MISSES:
            known += 1
        elif theirs and status == 1:
            trouble.append(f"{task.name} '{password}': opens elsewhere; {stderr.strip()}")
    return len(passwords), elsewhere, here, known, trouble


def groups_of(tasks):
    """The files in groups of 2 to 20. Those that don't open at all are named and left out."""
    opened = []
    for task, (status, stderr, pages) in in_parallel(opens_alone, tasks):
        if status != 0:
            print(f"  {task.name}: {status} {stderr.strip()[:200]}")
            continue
        if pages != task.pages:
            print(f"  {task.name}: {pages} pages instead of {task.pages}")
        opened.append(task._replace(pages=pages))
    groups = []
    at = 0
    while len(opened) - at >= MERGE_GROUP[0]:
        size = MERGE_GROUP[0] + len(groups) % (MERGE_GROUP[1] - MERGE_GROUP[0] + 1)
        groups.append(opened[at:at + size])
        at += size
    if at < len(opened) and groups:
        groups[-1] += opened[at:]
    return len(opened), groups


def opens_alone(task):
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.pdf")
        status, _, stderr, _ = run([options.tool, out, "1:0", task.path], TIME_LIMIT)
        return status, stderr, page_count(out) if status == 0 else 0


def page_count(path):
    status, stdout, _, _ = run(["qpdf", "--show-npages", path], RENDER_TIME_LIMIT)
    return int(stdout) if status in (0, 3) else 0


def whole_selection(group):
    """(selection text, expected pages as pairs of task and page)"""
    text = " ".join(f"{number}:0" for number in range(1, len(group) + 1))
    return text, [(task, page) for task in group for page in range(1, task.pages + 1)]


def range_selection(group):
    """Ranges of the files from the last to the first: single pages whole, else without the second page."""
    parts, pages = [], []
    for number in range(len(group), 0, -1):
        task = group[number - 1]
        wanted = [1] + list(range(3, task.pages + 1))
        parts.append(f"{number}:1" + (f",3~{task.pages}" if task.pages > 3 else ",3" if task.pages == 3 else ""))
        pages += [(task, page) for page in wanted]
    return " ".join(parts), pages


def merge_one(group):
    """Lines of trouble, Counter of pages by renderer, list of misses"""
    trouble, misses, pages = [], [], collections.Counter()
    with tempfile.TemporaryDirectory() as folder:
        sources = {(renderer, task): rendering(renderer, task.path, os.path.join(folder, f"{renderer.__name__}-{number}"))
                   for renderer in RENDERERS for number, task in enumerate(group)}
        for select in (whole_selection, range_selection):
            text, expected = select(group)
            out = os.path.join(folder, select.__name__ + ".pdf")
            name = f"{group[0].name} and {len(group) - 1} more, {text}"
            command = [options.tool, out, text] + [task.path for task in group]
            status, _, stderr, _ = run(command, TIME_LIMIT * len(group))
            if status != 0:
                trouble.append(f"{name}: {status} {stderr.strip()[-2000:]}")
                continue
            checked, stdout, stderr, _ = run(["qpdf", "--check", out], RENDER_TIME_LIMIT)
            if checked != 0:
                trouble.append(f"{name}: qpdf --check: {(stdout.decode('utf-8', 'replace') + stderr).strip()[-400:]}")
            if page_count(out) != len(expected):
                trouble.append(f"{name}: {page_count(out)} pages instead of {len(expected)}")
            for renderer in RENDERERS:
                target = rendering(renderer, out, os.path.join(folder, renderer.__name__ + select.__name__))
                wanted = in_order(expected, renderer, sources, target + "-expected")
                count, missed = page_misses(wanted, target)
                pages[renderer.__name__] += count
                misses += [(expected[page - 1] if page <= len(expected) else (group[-1], 0), renderer.__name__,
                            select.__name__, verdict) for page, verdict in missed]
    return trouble, pages, misses


def in_order(expected, renderer, sources, target):
    """A folder with the renderings of these pages of the sources, numbered anew"""
    os.mkdir(target)
    for number, (task, page) in enumerate(expected, 1):
        folder = sources[renderer, task]
        for file in os.listdir(folder):
            stem, extension = os.path.splitext(file)
            if int(stem.rsplit("-", 1)[1]) == page:
                os.symlink(os.path.join(folder, file), os.path.join(target, f"p-{number}{extension}"))
    return target


def merge(tasks):
    opened, groups = groups_of([task for task in tasks if task.pages])
    print(f"merge: {opened} of {len(tasks)} files open, in {len(groups)} groups, each merged whole and by ranges")
    troubles = 0
    pages, missed = collections.Counter(), collections.Counter()
    for group, (trouble, counted, misses) in in_parallel(merge_one, groups):
        troubles += len(trouble)
        pages += counted
        for line in trouble:
            print("  " + line)
        for (task, page), renderer, selection, verdict in misses:
            missed[renderer] += 1
            print(f"  {task.name} page {page} {renderer} {selection}: {verdict}")
    good = troubles == 0 and bool(groups)
    for renderer in pages:
        like = 1 - missed[renderer] / max(1, pages[renderer])
        print(f"merge: {renderer}: {pages[renderer] - missed[renderer]} of {pages[renderer]} pages alike ({like:.2%})")
        good = good and like >= SOUND_PAGE_SHARE
    return good


def written_profile(task, number):
    """SHA-256 of the profile as it is written out; None when there is none"""
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.icc")
        status = run([options.tool, "info", task.path, "--profile", str(number), "-o", out] + password_options(task),
                     TIME_LIMIT)[0]
        if status != 0:
            return None
        with open(out, "rb") as file:
            return hashlib.sha256(file.read()).hexdigest()


def claims_one(task):
    """(opened, claims told, profiles compared, known differences, trouble as lines)"""
    status, stdout, _, _ = run([options.tool, "info", "--json", task.path] + password_options(task), TIME_LIMIT)
    if status != 0:
        return 0, 0, 0, [], []
    told = json.loads(stdout)
    reading = corpus_claims.Reading(task.path, task.password)
    known, trouble, profiles = [], [], 0
    for family, claim, reason_for in (("PDF/A", reading.pdfa(), corpus_claims.reason_for_pdfa),
                                      ("PDF/X", reading.pdfx(), corpus_claims.reason_for_pdfx)):
        ours = "".join(text for text in told["claims"] if text.startswith(family))
        if ours == claim:
            continue
        reason = reason_for(reading, ours)
        (known if reason else trouble).append(f"{task.name}: '{ours}' instead of '{claim}'; {reason}")
    if told["tagged"] != reading.tagged:
        trouble.append(f"{task.name}: tagged {told['tagged']}")
    intents = [("/" + (intent["subtype"] or ""), (intent["profile"] or {}).get("sha256")) for intent in told["outputIntents"]]
    if intents != reading.intents:
        trouble.append(f"{task.name}: output intents {intents} instead of {reading.intents}")
    for number, (_, digest) in enumerate(reading.intents, 1):
        profiles += digest is not None
        if written_profile(task, number) != digest:
            trouble.append(f"{task.name}: profile {number} differs")
    return 1, len(told["claims"]), profiles, known, trouble


def claims(tasks):
    sums = [0, 0, 0]
    known, bad = [], []
    for _, (*counts, differences, trouble) in in_parallel(claims_one, tasks):
        sums = [total + count for total, count in zip(sums, counts)]
        known += differences
        bad += trouble
    reasons = collections.Counter(line.split("; ")[-1] for line in known)
    print(f"claims: {sums[0]} of {len(tasks)} files open, {sums[1]} claims, {sums[2]} profiles, {len(known)} known differences, "
          f"{len(bad)} in trouble")
    for reason, count in reasons.most_common():
        print(f"  {count} known: {reason}")
    for line in bad:
        print("  " + line)
    return not bad


RENDERERS = (render_with_poppler, render_with_mupdf)


def in_parallel(function, tasks):
    with multiprocessing.Pool(options.jobs) as pool:
        for done, (task, result) in enumerate(zip(tasks, pool.imap(function, tasks, chunksize=1)), 1):
            if done % 100 == 0:
                print(f"  {done} of {len(tasks)}", file=sys.stderr, flush=True)
            yield task, result


def robust(tasks):
    bad = [line for _, lines in in_parallel(robust_one, tasks) for line in lines]
    print(f"robust: {len(tasks)} files through dump and nup, {len(bad)} in trouble")
    for line in bad:
        print("  " + line)
    return not bad


def encrypted(tasks):
    sums = [0, 0, 0, 0]
    bad = []
    for _, (*counts, trouble) in in_parallel(encrypted_one, tasks):
        sums = [total + count for total, count in zip(sums, counts)]
        bad += trouble
    tried, elsewhere, here, known = sums
    print(f"encrypted: {len(tasks)} files with {tried} passwords, {elsewhere} opened by pdfinfo, {here} by tessel, "
          f"{known} known misses, {len(bad)} in trouble")
    for line in bad:
        print("  " + line)
    return not bad


def render(tasks):
    opened = checks = 0
    pages = collections.Counter()
    missed = collections.Counter()
    for task, (ok, check, results, trouble) in in_parallel(render_one, tasks):
        opened += ok
        if trouble:
            print(f"  {task.name}: {trouble}")
        if check:
            checks += 1
            print(f"  {task.name}: qpdf --check: {check}")
        for renderer, (count, misses) in results.items():
            pages[renderer] += count
            missed[renderer] += len(misses)
            for page, verdict in misses:
                print(f"  {task.name} page {page} {renderer}: {verdict}")
    share = opened / max(1, len(tasks))
    print(f"render: {opened} of {len(tasks)} files opened ({share:.2%}), {checks} outputs with remarks of qpdf")
    good = share >= SOUND_OPEN_SHARE and checks == 0
    for renderer in pages:
        like = 1 - missed[renderer] / max(1, pages[renderer])
        print(f"render: {renderer}: {pages[renderer] - missed[renderer]} of {pages[renderer]} pages alike ({like:.2%})")
        good = good and like >= SOUND_PAGE_SHARE
    return good


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("job", choices=("robust", "render", "merge", "encrypted", "claims"))
    parser.add_argument("--corpus", required=True, help="folder with MANIFEST.tsv")
    parser.add_argument("--tool", required=True, help="the tessel program")
    parser.add_argument("--compare", default="", help="the raster_compare program")
    parser.add_argument("--classes", default="", help="comma-separated; default: sound for render, encrypted for encrypted, all for robust")
    parser.add_argument("--every", type=int, default=1, help="take each n-th file only")
    parser.add_argument("--match", default="", help="take files whose name holds this text only")
    parser.add_argument("--annotations", action="store_true", help="render with annotations shown")
    parser.add_argument("--extra", default="", help="further options of nup")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    return parser.parse_args()


def main():
    if not os.path.isdir(options.corpus):
        print(f"corpus: skipped, {options.corpus} isn't there")
        return 0
    classes = options.classes or DEFAULT_CLASSES[options.job]
    tasks = [task for task in read_manifest(options.corpus)
             if (not classes or task.kind in classes.split(",")) and options.match in task.name]
    tasks = tasks[:: options.every]
    good = {"robust": robust, "render": render, "merge": merge, "encrypted": encrypted, "claims": claims}[options.job](tasks)
    print(f"{options.job}: {'passed' if good else 'FAILED'}")
    return 0 if good else 1


options = parse()
if __name__ == "__main__":
    sys.exit(main())
