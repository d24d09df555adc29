#!/usr/bin/env python3
"""Has other tools judge the one PDF that became of several.

Makes PDFs by rsvg-convert and by hand, and variants of them by qpdf (packed objects, ordered for the web),
with a link by name, a link to a page, a bookmark and a form field of the same name each. Puts them together
under Wine. Then
  - qpdf finds no error, and pdfinfo as many pages as all parts have;
  - pdftotext reads the parts' texts, one after the other;
  - pdftoppm draws the same pages;
  - each link and bookmark leads to the page of its own part, each part has a bookmark, and each form field its
    own name and value.
"""
import argparse
import json
import os
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from cleaning_judge import ENV, check, failures, run


def write_pdf(path, title):
    def words(page):
        data = f"BT /F1 24 Tf 60 700 Td ({title} on page {page}) Tj ET"
        return f"<</Length {len(data)}>>\nstream\n{data}\nendstream"
    objects = ["<</Type /Catalog /Pages 2 0 R /Outlines 10 0 R /Names <</Dests <</Names [(last) [5 0 R /Fit]]>>>> "
               "/AcroForm <</Fields [12 0 R] /DA (/Helv 12 Tf 0 g)>>>>",
               "<</Type /Pages /Kids [3 0 R 4 0 R 5 0 R] /Count 3 /MediaBox [0 0 595 842] /Resources "
               "<</Font <</F1 <</Type /Font /Subtype /Type1 /BaseFont /Helvetica>>>>>>>>",
               "<</Type /Page /Parent 2 0 R /Contents 6 0 R /Annots [9 0 R]>>",
               "<</Type /Page /Parent 2 0 R /Contents 7 0 R /Annots [13 0 R] /Rotate 90>>",
               "<</Type /Page /Parent 2 0 R /Contents 8 0 R /Annots [14 0 R]>>",
               words(1), words(2), words(3),
               "<</Type /Annot /Subtype /Link /Rect [60 600 200 620] /Dest (last)>>",
               "<</Type /Outlines /First 11 0 R /Last 11 0 R /Count 1>>",
               f"<</Title ({title} in detail) /Parent 10 0 R /A <</S /GoTo /D [4 0 R /Fit]>>>>",
               f"<</FT /Tx /T (name) /V ({title}) /Kids [13 0 R 14 0 R]>>",
               "<</Type /Annot /Subtype /Widget /Rect [60 500 300 520] /P 4 0 R /Parent 12 0 R>>",
               "<</Type /Annot /Subtype /Widget /Rect [60 500 300 520] /P 5 0 R /Parent 12 0 R>>"]
    file, table = b"%PDF-1.6\n", b"0000000000 65535 f \n"
    for number, text in enumerate(objects, 1):
        table += b"%010d 00000 n \n" % len(file)
        file += f"{number} 0 obj\n{text}\nendobj\n".encode()
    count = len(objects) + 1
    with open(path, "wb") as pdf:
        pdf.write(file + b"xref\n0 %d\n%strailer\n<</Size %d /Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n"
                  % (count, table, count, len(file)))


def make_parts(folder):
    """Name -> path, in the order in which they become one."""
    def at(name):
        return os.path.join(folder, name)
    write_pdf(at("plain.pdf"), "Plain")
    write_pdf(at("more.pdf"), "Packed")
    run("qpdf", "--object-streams=generate", at("more.pdf"), at("packed.pdf"))
    write_pdf(at("more.pdf"), "Ordered")
    run("qpdf", "--linearize", at("more.pdf"), at("ordered.pdf"))
    with open(at("drawing.svg"), "w", encoding="utf-8") as svg:
        svg.write('<svg xmlns="http://www.w3.org/2000/svg" width="300" height="200"><rect width="150" height="90" '
                  'fill="teal" opacity="0.5"/><text x="20" y="150">A drawing</text></svg>')
    run("rsvg-convert", "-f", "pdf", "-o", at("drawing.pdf"), at("drawing.svg"))
    return [(name, at(name)) for name in ("plain.pdf", "drawing.pdf", "packed.pdf", "ordered.pdf")]


def combine(options, parts, work):
    target = os.path.join(work, "combined.pdf")
    windows = [f"Z:{path}".replace("/", "\\") for path in (target, *(path for _, path in parts))]
    done = subprocess.run([options.wine_run, "--timeout", "120", "--", options.combiner, *windows], env=ENV,
                          stdin=subprocess.DEVNULL, capture_output=True, check=False)
    sys.stderr.write(done.stderr.decode(errors="replace"))
    check(done.returncode == 0, "all parts were read and one file was written")
    return target


def pages_of(path):
    return int(run("qpdf", "--show-npages", path))


def looks_of(path, folder):
    os.makedirs(folder)
    run("pdftoppm", "-r", "30", path, os.path.join(folder, "page"))
    looks = []
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), "rb") as file:
            looks.append(file.read())
    return looks


def links_of(shown):
    """Pairs of a link's page and the page to which it leads."""
    objects = shown["objects"]
    pages = {page["object"]: page["pageposfrom1"] for page in shown["pages"]}

    def resolved(value):
        return objects.get(value, value) if isinstance(value, str) else value
    links = []
    for page, number in pages.items():
        for annotation in map(resolved, resolved(objects[page].get("/Annots", []))):
            if annotation["/Subtype"] == "/Link":
                links.append((number, pages.get(resolved(annotation["/Dest"])[0])))
    return links


def judge_places(shown, parts, first):
    outlines = shown["outlines"]
    check([row["title"] for row in outlines] == [name for name, _ in parts], "each part has its bookmark")
    check([row["destpageposfrom1"] for row in outlines] == [first[name] for name, _ in parts],
          "it leads to the part's first page")
    made = [first[name] for name, _ in parts if name != "drawing.pdf"]
    below = [kid["destpageposfrom1"] for row in outlines for kid in row["kids"]]
    check(below == [page + 1 for page in made], f"the parts' own bookmarks lead to the same pages {below}")
    links = links_of(shown)
    check(links == [(page, page + 2) for page in made], f"links lead to the same pages {links}")
    fields = [(field["fullname"], field["pageposfrom1"], field["value"]) for field in shown["acroform"]["fields"]]
    expected = [(name, page + widget, value) for name, page, value in
                zip(("name", "name (2)", "name (3)"), made, ("Plain", "Packed", "Ordered")) for widget in (1, 2)]
    check(sorted(fields) == sorted(expected), f"each form field has its own name, value and pages {fields}")


def check_all(options, work):
    parts = make_parts(work)
    target = combine(options, parts, work)
    done = subprocess.run(["qpdf", "--check", target], env=ENV, capture_output=True, check=False)
    check(done.returncode == 0, f"qpdf finds no error {done.stderr.decode()[-300:]}")
    first, pages = {}, 0
    for name, path in parts:
        first[name] = pages + 1
        pages += pages_of(path)
    info = run("pdfinfo", target).decode()
    check(f"Pages:           {pages}" in info and "Form:            AcroForm" in info, "pdfinfo finds all pages and a form")
    texts = [run("pdftotext", path, "-") for _, path in parts]
    check(b"".join(texts) == run("pdftotext", target, "-"), "pdftotext reads the same texts")
    looks = [look for name, path in parts for look in looks_of(path, os.path.join(work, "looks of " + name))]
    check(looks == looks_of(target, os.path.join(work, "looks of all")), "pdftoppm draws the same pages")
    judge_places(json.loads(run("qpdf", "--json=1", target)), parts, first)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--combiner", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-combining-") as work:
        check_all(options, work)
    print(f"{len(failures)} failures")
    for failure in failures:
        print(f"  {failure}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
