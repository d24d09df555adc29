"""Documents become PDFs by this distribution's office suite, and other people's tools read them.

    check_suite.py --wine-run tools/wine-run --converter PROGRAM --work-process PROGRAM --suite PROGRAM
"""
import argparse
import html
import os
import subprocess
import sys
import tempfile
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
FAKE = os.path.normpath(os.path.join(HERE, *[os.pardir] * 4, "fakes", "suite"))
ENV = dict(os.environ, LC_ALL="C.UTF-8")
SECRET = "SecretOfAnotherFile"

W = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
S = "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
R = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006"

failures = []


def check(condition, text):
    if not condition:
        failures.append(text)
    print(f"{'ok' if condition else 'FAILED'}: {text}", flush=True)


def package(path, parts):
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in parts.items():
            kind = zipfile.ZIP_STORED if name == "mimetype" else zipfile.ZIP_DEFLATED
            archive.writestr(name, text, kind)


def relations(**targets):
    """Each id with the last word of its type and its target."""
    rows = "".join(f'<Relationship Id="{key}" Type="{R}/{kind}" Target="{target}"/>'
                   for key, (kind, target) in targets.items())
    return f'<Relationships xmlns="{PACKAGE}/relationships">{rows}</Relationships>'


def types(**parts):
    rows = "".join(f'<Override PartName="{part}" ContentType="application/vnd.openxmlformats-officedocument.{kind}+xml"/>'
                   for part, kind in parts.items())
    return (f'<Types xmlns="{PACKAGE}/content-types"><Default Extension="rels" '
            f'ContentType="application/vnd.openxmlformats-package.relationships+xml"/>{rows}</Types>')


def make_docx(path):
    package(path, {
        "[Content_Types].xml": types(**{"/word/document.xml": "wordprocessingml.document.main"}),
        "_rels/.rels": relations(r1=("officeDocument", "word/document.xml")),
        "word/document.xml": f'<w:document xmlns:w="{W}"><w:body><w:p><w:r><w:t>Dear Ann, this is a letter.</w:t></w:r>'
                             "</w:p></w:body></w:document>"})


def make_xlsx(path):
    package(path, {
        "[Content_Types].xml": types(**{"/xl/workbook.xml": "spreadsheetml.sheet.main",
                                        "/xl/worksheets/sheet1.xml": "spreadsheetml.worksheet"}),
        "_rels/.rels": relations(r1=("officeDocument", "xl/workbook.xml")),
        "xl/_rels/workbook.xml.rels": relations(r1=("worksheet", "worksheets/sheet1.xml")),
        "xl/workbook.xml": f'<workbook xmlns="{S}" xmlns:r="{R}"><sheets><sheet name="One" sheetId="1" r:id="r1"/>'
                           "</sheets></workbook>",
        "xl/worksheets/sheet1.xml": f'<worksheet xmlns="{S}"><sheetData><row r="1"><c r="A1" t="inlineStr"><is><t>A table'
                                    '</t></is></c><c r="B1"><v>4711</v></c></row></sheetData></worksheet>'})


def spaces(names):
    return " ".join(f'xmlns:{key}="urn:oasis:names:tc:opendocument:xmlns:{name}:1.0"' for key, name in names.items())


def manifest(kind):
    return ('<m:manifest xmlns:m="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0" m:version="1.2"><m:file-entry '
            f'm:full-path="/" m:media-type="{kind}"/><m:file-entry m:full-path="content.xml" m:media-type="text/xml"/>'
            "</m:manifest>")


def make_odt(path, linked):
    """Text with a picture and a section of other files, which nothing may load."""
    picture, text = linked
    names = {"office": "office", "text": "text", "draw": "drawing", "svg": "svg-compatible"}
    kind = "application/vnd.oasis.opendocument.text"
    package(path, {
        "mimetype": kind,
        "META-INF/manifest.xml": manifest(kind),
        "content.xml":
            f'<office:document-content {spaces(names)} xmlns:xlink="http://www.w3.org/1999/xlink" office:version="1.2">'
            "<office:body><office:text><text:p>Dear Bob, a text.</text:p><text:p><draw:frame text:anchor-type=\"as-char\" "
            f'svg:width="5cm" svg:height="5cm"><draw:image xlink:href="file://{picture}" xlink:type="simple"/></draw:frame>'
            f'</text:p><text:section text:name="S"><text:section-source xlink:href="file://{text}" '
            'text:filter-name="Text"/><text:p>Kept.</text:p></text:section></office:text></office:body>'
            "</office:document-content>"})


def make_odp(path):
    kind = "application/vnd.oasis.opendocument.presentation"
    names = {"office": "office", "text": "text", "draw": "drawing", "svg": "svg-compatible"}
    package(path, {
        "mimetype": kind,
        "META-INF/manifest.xml": manifest(kind),
        "content.xml":
            f'<office:document-content {spaces(names)} office:version="1.2"><office:body><office:presentation><draw:page '
            'draw:name="p1"><draw:frame svg:x="1cm" svg:y="1cm" svg:width="9cm" svg:height="2cm"><draw:text-box>'
            "<text:p>A slide.</text:p></draw:text-box></draw:frame></draw:page></office:presentation></office:body>"
            "</office:document-content>"})


def make_documents(folder, work):
    picture, text = os.path.join(work, "linked.png"), os.path.join(work, "linked.txt")
    subprocess.run(["convert", "-size", "50x50", "xc:red", picture], env=ENV, check=True)
    with open(text, "w", encoding="utf-8") as file:
        file.write(SECRET + "\n")
    make_docx(os.path.join(folder, "Grüße & mehr.docx"))
    make_xlsx(os.path.join(folder, "table.xlsx"))
    make_odt(os.path.join(folder, "text.odt"), (picture, text))
    make_odp(os.path.join(folder, "slides.odp"))
    with open(os.path.join(folder, "broken.docx"), "wb") as file:
        with open(os.path.join(folder, "Grüße & mehr.docx"), "rb") as whole:
            file.write(whole.read()[:300])


def make_protected(folder, work, control):
    """Documents with a password, which the suite stores by a macro of ours, and the text as a PDF with its links updated."""
    profile = os.path.join(work, "profile")
    basic = os.path.join(profile, "user", "basic", "Standard")
    os.makedirs(basic)
    with open(os.path.join(profile, "user", "registrymodifications.xcu"), "w", encoding="utf-8") as file:
        # So that the suite doesn't put its own macros into the new profile, nor begins with tests of its drawing.
        file.write('<oor:items xmlns:oor="http://openoffice.org/2001/registry"><item oor:path="/org.openoffice.Setup/Office">'
                   '<prop oor:name="ooSetupInstCompleted" oor:op="fuse"><value>true</value></prop></item>'
                   '<item oor:path="/org.openoffice.Setup/Product"><prop oor:name="ooSetupLastVersion" oor:op="fuse">'
                   '<value>9999.0</value></prop></item></oor:items>')
    library = 'xmlns:library="http://openoffice.org/2000/library" library:name="Standard"'
    with open(os.path.join(basic, "script.xlb"), "w", encoding="utf-8") as file:
        file.write(f'<library:library {library} library:readonly="false" library:passwordprotected="false">'
                   '<library:element library:name="Module1"/></library:library>')
    with open(os.path.join(basic, os.pardir, "script.xlc"), "w", encoding="utf-8") as file:
        file.write('<library:libraries xmlns:library="http://openoffice.org/2000/library" '
                   'xmlns:xlink="http://www.w3.org/1999/xlink"><library:library library:name="Standard" '
                   'xlink:href="$(USER)/basic/Standard/script.xlb/" xlink:type="simple" library:link="false"/>'
                   "</library:libraries>")
    rows = (("table.xlsx", "locked.xls", "MS Excel 97"), ("text.odt", "locked.doc", "MS Word 97"),
            ("text.odt", "locked.odt", "writer8"))
    calls = "\n".join(f'Store "file://{folder}/{source}", "file://{folder}/{name}", "{kind}"' for source, name, kind in rows)
    macro = f"""Sub Store(source, target, kind)
Dim hidden(0) As New com.sun.star.beans.PropertyValue
hidden(0).Name = "Hidden"
hidden(0).Value = True
document = StarDesktop.loadComponentFromURL(source, "_blank", 0, hidden())
Dim how(1) As New com.sun.star.beans.PropertyValue
how(0).Name = "FilterName"
how(0).Value = kind
how(1).Name = "Password"
how(1).Value = "secret"
document.storeToURL(target, how())
document.close(True)
End Sub
Sub StoreLinked(source, target)
Dim hidden(0) As New com.sun.star.beans.PropertyValue
hidden(0).Name = "Hidden"
hidden(0).Value = True
document = StarDesktop.loadComponentFromURL(source, "_blank", 0, hidden())
document.updateLinks()
Dim how(0) As New com.sun.star.beans.PropertyValue
how(0).Name = "FilterName"
how(0).Value = "writer_pdf_Export"
document.storeToURL(target, how())
document.close(True)
End Sub
Sub Main
{calls}
StoreLinked "file://{folder}/text.odt", "file://{control}"
StarDesktop.terminate
End Sub
"""
    with open(os.path.join(basic, "Module1.xba"), "w", encoding="utf-8") as file:
        file.write('<script:module xmlns:script="http://openoffice.org/2000/script" script:name="Module1" '
                   f'script:language="StarBasic">{html.escape(macro)}</script:module>')
    subprocess.run(["soffice", "--headless", "--norestore", f"-env:UserInstallation=file://{profile}",
                    "macro:///Standard.Module1.Main"], env=ENV, stdin=subprocess.DEVNULL, capture_output=True,
                   check=True, timeout=120)
    return [name for _, name, _ in rows]


def convert(options, folder, work):
    """The folder with the results, and the outcome of each name."""
    kept = os.path.join(work, "kept")
    done = subprocess.run(
        [options.wine_run, "--timeout", "480", "--stage", f"documents={folder}", "--stage", options.work_process,
         "--install", f"LibreOffice/program/soffice.exe={options.suite}",
         "--install", "LibreOffice/program/hand_on.py=" + os.path.join(FAKE, "hand_on.py"),
         "--reg", os.path.join(FAKE, "suite.reg"), "--keep", kept, "--", options.converter],
        env=ENV, stdin=subprocess.DEVNULL, check=False)
    check(done.returncode == 0, "the suite's folder is empty at the end")
    after = os.path.join(kept, "out")
    with open(os.path.join(after, "report.txt"), encoding="utf-8") as file:
        return after, dict(line.rstrip("\n").split("\t") for line in file)


def tool(*command):
    done = subprocess.run(command, env=ENV, stdin=subprocess.DEVNULL, capture_output=True, check=False)
    return done.returncode, done.stdout.decode(errors="replace")


def check_pdf(path, text):
    name = os.path.basename(path)
    check(tool("qpdf", "--check", path)[0] == 0, f"{name} is a sound PDF (qpdf)")
    check(text in tool("pdftotext", "-layout", path, "-")[1], f"{name} contains its text (pdftotext)")


def check_equal(path, again):
    """The second conversion came seconds later."""
    with open(path, "rb") as one, open(again, "rb") as other:
        check(one.read() == other.read(), f"{os.path.basename(path)}: the same document gives the same bytes")
    dates = [line for line in tool("pdfinfo", "-isodates", path)[1].splitlines() if "Date" in line]
    check(not dates, f"{os.path.basename(path)} has no date {dates}")


def has_secret(path):
    return SECRET in tool("pdftotext", path, "-")[1]


def has_picture(path):
    """Besides the two lines of the table's head."""
    return len(tool("pdfimages", "-list", path)[1].splitlines()) > 2


def check_all(options, work):
    folder = os.path.join(work, "documents")
    os.mkdir(folder)
    make_documents(folder, work)
    control = os.path.join(work, "control.pdf")
    protected = make_protected(folder, work, control)
    after, outcomes = convert(options, folder, work)
    texts = {"Grüße & mehr.docx": "Dear Ann, this is a letter.", "table.xlsx": "4711", "text.odt": "Dear Bob, a text.",
             "slides.odp": "A slide."}
    for name, text in texts.items():
        check(outcomes.get(name) == "converted", f"{name} is converted ({outcomes.get(name)})")
        check_pdf(os.path.join(after, name + ".pdf"), text)
        check_equal(os.path.join(after, name + ".pdf"), os.path.join(after, os.pardir, "again", name + ".pdf"))
    check(outcomes.get("broken.docx") == "failed", f"a broken document fails ({outcomes.get('broken.docx')})")
    check(os.path.getsize(os.path.join(after, "broken.docx.pdf")) == 0, "its result is empty")
    for name in protected:
        check(outcomes.get(name) == "protected", f"{name} needs its password ({outcomes.get(name)})")
    check(has_secret(control), "the text of another file comes where links are updated")
    check(has_picture(control), "the picture of another file comes where links are updated")
    linked = os.path.join(after, "text.odt.pdf")
    check(not has_secret(linked), "no text of another file is loaded")
    check(not has_picture(linked), "no picture of another file is loaded")


def main():
    parser = argparse.ArgumentParser()
    for name in ("wine-run", "converter", "work-process", "suite"):
        parser.add_argument(f"--{name}", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-suite-") as work:
        check_all(options, work)
    print("The suite is this distribution's own, which a staged soffice.exe hands the command on to.")
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
