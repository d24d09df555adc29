#!/usr/bin/env python3
"""Has other tools judge documents before and after the personal data remover.

Makes PDFs (rsvg-convert, with properties by exiftool, variants by qpdf) and office documents (as zips) with a
canary in their properties, comments and pictures, and cleans them under Wine. Then
  - no part of a cleaned file has the canary, every stream and entry unpacked;
  - exiftool and mat2 find canaries before, and afterwards no property;
  - qpdf finds no error in a cleaned PDF, and pdftotext reads the same text;
  - Python's own readers open every package and every part of XML;
  - an office suite, LibreOffice, opens a cleaned document of each kind, three of which it wrote itself, and
    pdftotext reads the same text in its PDFs of before and after.
"""
import io
import json
import os
import subprocess
import sys
import xml.etree.ElementTree as ElementTree
import zipfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
from cleaning_judge import CANARY, ENV, check, clean, main, run

OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"
ODF = "urn:oasis:names:tc:opendocument:xmlns:"
# What exiftool may find in a cleaned file, by group.
ALLOWED = {"ExifTool", "System", "File", "ZIP"}
ALLOWED_OF_PDF = {"PDFVersion", "Linearized", "PageCount", "HasXFA", "PageMode"}
# That files need whose names begin with it.
PASSWORD = "secret"
# Its embedded file stays as it is, and is named.
WITH_FILE = "with a file.pdf"
READ = "What is read stays"
# The documents that have a text which an office suite shows.
SHOWN = ["letter.odt", "table.ods", "talk.odp", "drawing.odg", "text.docx", "template.dotx", "written text.docx",
         "written table.xlsx", "written slides.pptx"]
# mat2 doesn't read it.
TEMPLATE = "template.dotx"
# What the suite writes one of them from, and the name of its filter.
WRITTEN = {"written text.docx": ("text.html", "docx:MS Word 2007 XML"),
           "written table.xlsx": ("table.csv", "xlsx:Calc MS Excel 2007 XML"),
           "written slides.pptx": ("talk.odp", "pptx:Impress MS PowerPoint 2007 XML")}
# In the profile of an earlier version, or a new one, the suite begins with tests of its drawing, which take
# several times as long as a document.
OF_THIS_VERSION = ('<oor:items xmlns:oor="http://openoffice.org/2001/registry"><item oor:path="/org.openoffice.Setup/Product">'
                   '<prop oor:name="ooSetupLastVersion" oor:op="fuse"><value>9999.0</value></prop></item></oor:items>')
# Where the name of an author is put in.
CORE = "docProps/core.xml"
# What mat2 prints of any file: headings, a PDF's form and missing times, and packages that name another system
# than its own.
OF_MAT2 = ["Metadata for ", "No metadata found", "format: PDF-", "-date: -1", "create_system: Weird"]


class Samples:
    def __init__(self, folder, work):
        self.folder, self.work, self.names = folder, work, []
        picture = os.path.join(work, "photo.ppm")
        with open(picture, "wb") as file:
            file.write(b"P6\n16 16\n255\n" + bytes(range(256)) * 3)
        self.photo = os.path.join(work, "photo.jpg")
        run("cjpeg", "-outfile", self.photo, picture)
        run("exiftool", "-q", "-overwrite_original", f"-Artist={CANARY}", f"-XMP:Creator={CANARY}", self.photo)

    def path(self, name):
        self.names.append(name)
        return os.path.join(self.folder, name)

    def pdfs(self):
        drawing = os.path.join(self.work, "drawing.svg")
        with open(drawing, "w", encoding="utf-8") as file:
            file.write('<svg xmlns="http://www.w3.org/2000/svg" width="200" height="100">'
                       '<text x="9" y="40">What is read stays</text></svg>')
        base = os.path.join(self.work, "base.pdf")
        run("rsvg-convert", "-f", "pdf", "-o", base, drawing)
        # Written as a version after the first one.
        run("exiftool", "-q", "-overwrite_original", f"-Author={CANARY}", f"-Title={CANARY}",
            f"-XMP:Creator={CANARY}", base)
        with open(base, "rb") as source, open(self.path("two versions.pdf"), "wb") as file:
            file.write(source.read())
        run("qpdf", "--object-streams=generate", base, self.path("object streams.pdf"))
        run("qpdf", "--linearize", base, self.path("for the web.pdf"))
        run("qpdf", "--qdf", base, self.path("for people.pdf"))
        run("qpdf", base, "--add-attachment", self.photo, "--filename=photo.jpg",
            "--creationdate=D:20260102030405Z", "--", self.path(WITH_FILE))
        run("qpdf", "--encrypt", "secret", "owner", "256", "--", base, os.path.join(self.folder, "locked.pdf"))
        for bits, more in {"40": [], "128": ["--use-aes=n"], "128 aes": ["--use-aes=y"], "256": []}.items():
            run("qpdf", "--allow-weak-crypto", "--encrypt", PASSWORD, "owner", bits.split()[0], *more, "--", base,
                self.path(f"{PASSWORD} {bits}.pdf"))

    def package(self, name, parts):
        with zipfile.ZipFile(self.path(name), "w", zipfile.ZIP_DEFLATED) as file:
            for part, content in parts.items():
                kind = zipfile.ZIP_STORED if part == "mimetype" else zipfile.ZIP_DEFLATED
                file.writestr(zipfile.ZipInfo(part, (2026, 1, 2, 3, 4, 5)), content, kind)

    def ooxml(self, name, main, kind, content):
        folder = main.rpartition("/")[0]
        with open(self.photo, "rb") as file:
            photo = file.read()
        self.package(name, {
            "[Content_Types].xml": f'<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" ContentType='
            '"application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="jpeg" ContentType='
            f'"image/jpeg"/><Override PartName="/{main}" ContentType="application/vnd.openxmlformats-officedocument.'
            f'{kind}.main+xml"/><Override PartName="/docProps/core.xml" ContentType='
            '"application/vnd.openxmlformats-package.core-properties+xml"/></Types>',
            "_rels/.rels": f'<Relationships xmlns="{PACKAGE}/relationships"><Relationship Id="rId1" Type="{OFFICE}/'
            f'relationships/officeDocument" Target="{main}"/><Relationship Id="rId2" Type="{PACKAGE}/relationships/'
            'metadata/core-properties" Target="docProps/core.xml"/></Relationships>',
            "docProps/core.xml": f'<cp:coreProperties xmlns:cp="{PACKAGE}/metadata/core-properties" '
            f'xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:creator>{CANARY}</dc:creator></cp:coreProperties>',
            main: content,
            f"{folder}/_rels/{main.rpartition('/')[2]}.rels": f'<Relationships xmlns="{PACKAGE}/relationships">'
            f'<Relationship Id="rId1" Type="{OFFICE}/relationships/image" Target="media/image1.jpeg"/></Relationships>',
            f"{folder}/media/image1.jpeg": photo,
        })

    def ooxmls(self):
        word = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
        for name, kind in (("text.docx", "document"), (TEMPLATE, "template")):
            self.ooxml(name, "word/document.xml", f"wordprocessingml.{kind}",
                       f'<w:document xmlns:w="{word}"><w:body><w:p w:rsidR="{CANARY}"><w:ins w:author="{CANARY}" '
                       f'w:date="{CANARY}"><w:r><w:t>{READ}</w:t></w:r></w:ins></w:p></w:body></w:document>')
        self.ooxml("workbook.xlsx", "xl/workbook.xml", "spreadsheetml.sheet",
                   '<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">'
                   f'<fileSharing userName="{CANARY}"/><sheets/></workbook>')
        self.ooxml("slides.pptx", "ppt/presentation.xml", "presentationml.presentation",
                   '<p:presentation xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main"/>')

    def odfs(self):
        with open(self.photo, "rb") as file:
            photo = file.read()
        names = "".join(f' xmlns:{name}="{ODF}{name}:1.0"' for name in ("office", "text", "meta", "table"))
        names += f' xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:draw="{ODF}drawing:1.0"'
        names += f' xmlns:svg="{ODF}svg-compatible:1.0" office:version="1.2"'
        note = (f"<office:annotation><dc:creator>{CANARY}</dc:creator><dc:date>{CANARY}</dc:date>"
                "<text:p>A note</text:p></office:annotation>")
        bodies = {
            "text": f"<office:text><text:p>{READ}{note}</text:p></office:text>",
            "spreadsheet": '<office:spreadsheet><table:table table:name="One"><table:table-row><table:table-cell '
                           f'office:value-type="string">{note}<text:p>{READ}</text:p></table:table-cell>'
                           "</table:table-row></table:table></office:spreadsheet>",
            "presentation": '<office:presentation><draw:page draw:name="p1"><draw:frame svg:x="1cm" svg:y="1cm" '
                            f'svg:width="9cm" svg:height="2cm"><draw:text-box><text:p>{READ}</text:p></draw:text-box>'
                            f"</draw:frame>{note}</draw:page></office:presentation>",
        }
        bodies["graphics"] = bodies["presentation"].replace("office:presentation", "office:drawing")
        for name, kind in {"letter.odt": "text", "table.ods": "spreadsheet", "talk.odp": "presentation",
                           "drawing.odg": "graphics"}.items():
            listed = {"content.xml": "text/xml", "meta.xml": "text/xml", "Pictures/photo.jpg": "image/jpeg"}
            rows = "".join(f'<manifest:file-entry manifest:full-path="{path}" manifest:media-type="{of}"/>'
                           for path, of in {"/": f"application/vnd.oasis.opendocument.{kind}", **listed}.items())
            self.package(name, {
                "mimetype": f"application/vnd.oasis.opendocument.{kind}",
                "content.xml": f"<office:document-content{names}><office:body>{bodies[kind]}</office:body>"
                               "</office:document-content>",
                "meta.xml": f"<office:document-meta{names}><office:meta><dc:creator>{CANARY}</dc:creator>"
                            f"<meta:generator>{CANARY}</meta:generator></office:meta></office:document-meta>",
                "Pictures/photo.jpg": photo,
                "META-INF/manifest.xml": f'<manifest:manifest xmlns:manifest="{ODF}manifest:1.0" '
                                         f'manifest:version="1.2">{rows}</manifest:manifest>',
            })

    def written_by_suite(self):
        with open(os.path.join(self.work, "text.html"), "w", encoding="utf-8") as file:
            file.write(f"<html><body><p>{READ}</p><table><tr><td>4711</td></tr></table></body></html>")
        with open(os.path.join(self.work, "table.csv"), "w", encoding="utf-8") as file:
            file.write(f"Name,Number\n{READ},4711\n")
        for name, (source, kind) in WRITTEN.items():
            folder = self.folder if source in self.names else self.work
            suite(self.work, kind, self.work, os.path.join(folder, source))
            with zipfile.ZipFile(os.path.join(self.work, source.split(".")[0] + "." + kind.split(":")[0])) as package:
                parts = {part: package.read(part) for part in package.namelist()}
            check(CORE in parts, f"{name}: the suite wrote its properties")
            parts[CORE] = parts[CORE].replace(b"</cp:coreProperties>", f"<dc:creator>{CANARY}</dc:creator><dc:subject>"
                                              f"{CANARY}</dc:subject></cp:coreProperties>".encode())
            self.package(name, parts)


def suite(work, kind, target, *sources):
    """Has the office suite, with a profile of this run, convert files into a folder."""
    settings = os.path.join(work, "profile", "user", "registrymodifications.xcu")
    if not os.path.exists(settings):
        os.makedirs(os.path.dirname(settings))
        with open(settings, "w", encoding="utf-8") as file:
            file.write(OF_THIS_VERSION)
    run("soffice", "--headless", "--norestore", f"-env:UserInstallation=file://{os.path.join(work, 'profile')}",
        "--convert-to", kind, "--outdir", target, *sources)


def password_of(path):
    return [f"--password={PASSWORD}"] if os.path.basename(path).startswith(PASSWORD) else []


def encryption(path):
    """What qpdf prints of a PDF's encryption."""
    return run("qpdf", *password_of(path), "--show-encryption", path)


def unpacked(path):
    """Everything in the file, streams and entries unpacked."""
    with open(path, "rb") as file:
        content = file.read()
    if path.endswith(".pdf"):
        return content + run("qpdf", *password_of(path), "--decrypt", "--qdf", "--no-original-object-ids", path, "-",
                             accepted=(0, 3))
    with zipfile.ZipFile(io.BytesIO(content)) as package:
        return content + b"".join(name.encode() + package.read(name) for name in package.namelist())


def properties(folder):
    """For each file what exiftool lists, without what it reports of the file on the disk and of the format."""
    listed = json.loads(run("exiftool", "-a", "-G1", "-s", "-j", folder, accepted=(0, 1)))
    return {os.path.basename(tags["SourceFile"]): {
        tag: value for tag, value in tags.items() if ":" in tag and tag.split(":")[0] not in ALLOWED
        and not (tag.startswith("PDF:") and tag[4:] in ALLOWED_OF_PDF)} for tags in listed}


def found_by_mat2(paths):
    """What mat2 finds in all of the files."""
    lines = run("mat2", "--show", *paths, accepted=(0, 1)).decode().splitlines()
    return [line for line in lines if line.strip() and not any(part in line for part in OF_MAT2)]


def judge_package(path, name):
    with zipfile.ZipFile(path) as package:
        check(package.testzip() is None, f"{name}: every entry is whole")
        for part in package.namelist():
            if part.endswith((".xml", ".rels")):
                ElementTree.fromstring(package.read(part))
        first = package.infolist()[0]
        is_odf = name.endswith((".odt", ".ods", ".odp", ".odg"))
        check(not is_odf or (first.filename, first.compress_type) == ("mimetype", zipfile.ZIP_STORED),
              f"{name}: the kind comes first, if it is for it")
        check(all(entry.date_time == (1980, 1, 1, 0, 0, 0) for entry in package.infolist()), f"{name}: no times")


def judge_pdf(before, path, name):
    done = subprocess.run(["qpdf", *password_of(path), "--check", path], env=ENV, capture_output=True, check=False)
    complaint = done.stderr.decode()[-200:]
    check(done.returncode == 0, f"{name}: qpdf finds no error {complaint}")
    word = ["-upw", PASSWORD] if password_of(path) else []
    texts = [run("pdftotext", *word, one, "-") for one in (os.path.join(before, name), path)]
    check(encryption(os.path.join(before, name)) == encryption(path), f"{name}: it is encrypted as before")
    check(texts[0] == texts[1] and b"What is read stays" in texts[1], f"{name}: pdftotext reads the same")


def judge(before, after, name):
    path = os.path.join(after, name)
    check(CANARY.encode() in unpacked(os.path.join(before, name)), f"{name}: there was a canary")
    check((CANARY.encode() in unpacked(path)) == (name == WITH_FILE),
          f"{name}: now there is none but in an embedded file")
    if name.endswith(".pdf"):
        judge_pdf(before, path, name)
    else:
        judge_package(path, name)


def judge_properties(before, after, names):
    first, second = properties(before), properties(after)
    # exiftool reads the packages only with a part of Perl that needn't be there; mat2 judges those.
    for name in (name for name in names if name.endswith(".pdf")):
        check(CANARY in json.dumps(first[name]), f"{name}: exiftool found a canary before")
        check(not second[name], f"{name}: exiftool finds no property {second[name]}")
    others = [name for name in names if name not in (WITH_FILE, TEMPLATE)]
    for name in others:
        check(bool(found_by_mat2([os.path.join(before, name)])), f"{name}: mat2 found something before")
    found = found_by_mat2([os.path.join(after, name) for name in others])
    check(not found, f"mat2 finds nothing {found}")


def judge_text(before, after, work):
    """What an office suite shows of the documents is the same before and after."""
    texts = []
    for number, folder in enumerate((before, after)):
        shown = os.path.join(work, f"shown {number}")
        suite(work, "pdf", shown, *(os.path.join(folder, name) for name in SHOWN))
        texts.append({name: run("pdftotext", "-layout", pdf, "-").decode() if os.path.exists(pdf) else None
                      for name in SHOWN for pdf in [os.path.join(shown, name.rpartition(".")[0] + ".pdf")]})
    for name in SHOWN:
        check(texts[0][name] is not None and READ in texts[0][name], f"{name}: the suite showed its text before")
        check(texts[0][name] == texts[1][name], f"{name}: the suite opens it and shows the same text")


def check_all(options, work):
    before = os.path.join(work, "in")
    os.makedirs(before)
    samples = Samples(before, work)
    for make in (samples.pdfs, samples.ooxmls, samples.odfs, samples.written_by_suite):
        make()
    after, report = clean(options, before, work)
    for name in samples.names:
        check(report[name][0] == "cleaned", f"{name}: {' '.join(report[name])}")
        judge(before, after, name)
    judge_text(before, after, work)
    # exiftool and mat2 don't decrypt.
    judge_properties(before, after, [name for name in samples.names if not password_of(name)])
    check(report["locked.pdf"] == ["encrypted"], "a document with a password is refused")
    check("stays.embedded-files=1" in report[WITH_FILE], "an embedded file is named")


if __name__ == "__main__":
    sys.exit(main(check_all))
