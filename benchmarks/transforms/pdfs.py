#!/usr/bin/env python3
"""A hundred PDFs that become one, beside the qpdf program: a part of the table of the transforms.

Both take turns on the same files, which are generated once: ten different ones, ten times each, of twenty
pages with text and photographs, half of them with packed objects. Ours is the time of the work in a process
under Wine; that of qpdf is the time of its native process. Run alone it prints this table only.
"""
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
import zlib

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
from measure import BUILD, built, machine, median, run_program, say, table, verdict  # noqa: E402

GOAL = 1.3
KINDS, FILES, PAGES = 10, 100, 20
FOLDER = os.path.join(BUILD, "bench", "pdfs")


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL)


def stream(keys, data):
    return b"<<%s /Length %d>>\nstream\n%s\nendstream" % (keys, len(data), data)


def page_text(source):
    lines = [b"".join(b"%c" % source.randrange(97, 123) for _ in range(70)) for _ in range(45)]
    return b"BT /F1 11 Tf 14 TL 50 780 Td " + b" ".join(b"(%s) Tj T*" % line for line in lines) + \
        b" ET q 200 0 0 150 200 50 cm /P Do Q"


def make_pdf(path, number, photo):
    source = random.Random(number)
    kids = b" ".join(b"%d 0 R" % (6 + 2 * page) for page in range(PAGES))
    objects = [b"<</Type /Catalog /Pages 2 0 R>>",
               b"<</Type /Pages /Kids [%s] /Count %d /MediaBox [0 0 595 842] /Resources 3 0 R>>" % (kids, PAGES),
               b"<</Font <</F1 4 0 R>> /XObject <</P 5 0 R>>>>",
               b"<</Type /Font /Subtype /Type1 /BaseFont /Helvetica>>",
               stream(b"/Type /XObject /Subtype /Image /Width 800 /Height 600 /ColorSpace /DeviceRGB "
                      b"/BitsPerComponent 8 /Filter /DCTDecode", photo)]
    for page in range(PAGES):
        objects.append(b"<</Type /Page /Parent 2 0 R /Contents %d 0 R /Annots [<</Type /Annot /Subtype /Link "
                       b"/Rect [0 0 9 9] /Dest [6 0 R /Fit]>>]>>" % (7 + 2 * page))
        objects.append(stream(b"/Filter /FlateDecode", zlib.compress(page_text(source))))
    file, rows = b"%PDF-1.5\n", b"0000000000 65535 f \n"
    for index, content in enumerate(objects, 1):
        rows += b"%010d 00000 n \n" % len(file)
        file += b"%d 0 obj\n%s\nendobj\n" % (index, content)
    count = len(objects) + 1
    with open(path, "wb") as pdf:
        pdf.write(file + b"xref\n0 %d\n%strailer\n<</Size %d /Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n"
                  % (count, rows, count, len(file)))


def make_pdfs():
    """Paths in their order."""
    os.makedirs(FOLDER, exist_ok=True)
    paths = [os.path.join(FOLDER, f"{number:03d}.pdf") for number in range(FILES)]
    if os.path.exists(paths[-1]):
        return paths
    say("transforms: making the PDFs")
    photo_path, plain = os.path.join(FOLDER, "photo.jpg"), os.path.join(FOLDER, "plain.pdf")
    for number in range(KINDS):
        run("convert", "-seed", str(number + 1), "-size", "800x600", "plasma:tan-navy", "-quality", "90", photo_path)
        with open(photo_path, "rb") as photo:
            make_pdf(plain, number, photo.read())
        if number % 2:
            run("qpdf", "--object-streams=generate", plain, paths[number])
        else:
            shutil.copyfile(plain, paths[number])
    for number in range(KINDS, FILES):
        shutil.copyfile(paths[number % KINDS], paths[number])
    return paths


def windows(path):
    return "Z:" + path.replace("/", "\\")


def ours(paths, target):
    program = built("tests/unit/services/transforms/combine/combine_files.exe")
    return run_program(program, windows(target), *map(windows, paths))["seconds"][0]


def qpdf(paths, target):
    before = time.perf_counter()
    run("qpdf", "--empty", "--pages", *paths, "--", target)
    return time.perf_counter() - before


def pdf_table(turns):
    paths, seconds, sizes = make_pdfs(), {"ours": [], "qpdf": []}, {}
    with tempfile.TemporaryDirectory(prefix="webvellant-pdfs-", dir=BUILD) as work:
        for turn in range(turns):
            say(f"transforms: PDFs, turn {turn + 1} of {turns}")
            for name, maker in (("ours", ours), ("qpdf", qpdf)):
                target = os.path.join(work, name + ".pdf")
                seconds[name].append(maker(paths, target))
                pages = int(subprocess.run(["qpdf", "--show-npages", target], check=True, capture_output=True).stdout)
                if pages != FILES * PAGES:
                    sys.exit(f"bench: {name} made {pages} pages")
                sizes[name] = os.path.getsize(target) / 1e6
    ratio = median([own / other for own, other in zip(seconds["ours"], seconds["qpdf"])])
    rows = [["ours", f"{median(seconds['ours']):.2f}", f"{ratio:.2f}", f"{GOAL:g}: {verdict(ratio, GOAL)}", f"{sizes['ours']:.1f}"],
            ["qpdf", f"{median(seconds['qpdf']):.2f}", "", "", f"{sizes['qpdf']:.1f}"]]
    return table([f"{FILES} PDFs of {PAGES} pages become one", "seconds", "ours over qpdf", "goal", "MB"], rows)


if __name__ == "__main__":
    print(pdf_table(int(os.environ.get("OB_BENCH_TURNS", "5"))))
    print(f"\n{machine()}")
