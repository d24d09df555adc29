"""Sets of files to zip: real ones out of the distribution's packages, and generated ones.

Packages are downloaded by name and unpacked, not installed. A set is made once and kept. The engine's
constants were fitted to the sets named "tune" only; those named "judge" weren't looked at before. Whoever
looks at a judging set while fitting makes it a tuning set and chooses another.
"""
import os
import re
import shutil
import subprocess
import sys

import generated

VERSION = "real-3"  # counts up when a set changes; a new set is made beside the others
TUNE, JUDGE, GENERATED = "tune", "judge", "generated"


class Choice:
    """Files of some packages whose path matches, in the order of their paths, up to a size."""

    def __init__(self, use, packages, pattern, megabytes=25):
        self.use, self.packages, self.pattern, self.limit = use, packages, re.compile(pattern), megabytes * 1_000_000


REAL = {
    "libraries": Choice(TUNE, ["inkscape", "libqt5core5a", "libqt5gui5", "libqt5widgets5"], r"\.so(\.[0-9.]+)?$", 45),
    "C headers": Choice(TUNE, ["mingw-w64-common"], r"\.h$"),
    "manual in HTML": Choice(TUNE, ["python3.11-doc"], r"\.html$"),
    "documents, translations": Choice(TUNE, ["lyx-common"], r"\.(lyx|mo)$"),
    "tables": Choice(TUNE, ["unicode-data"], r"\.txt$", 40),
    "PDF": Choice(TUNE, ["r-doc-pdf"], r"\.pdf$"),
    "pictures": Choice(TUNE, ["gnome-backgrounds"], r"\.webp$", 40),
    "drawings, icons": Choice(TUNE, ["inkscape"], r"\.(svg|py|png|gif)$"),
    "compiler": Choice(TUNE, ["gcc-12"], r"/(lto1|lto-wrapper|collect2)$", 40),
    "library headers": Choice(TUNE, ["libboost1.74-dev"], r"\.[hi]pp$"),
    "web pages": Choice(TUNE, ["sqlite3-doc", "maxima-doc"], r"\.(html|png|gif|jpg)$"),
    "fonts": Choice(TUNE, ["fonts-noto-core"], r"\.ttf$"),
    "office files": Choice(TUNE, ["libreoffice-common"], r"\.(ott|otp|sdg|zip|xml|sdv|wav|png)$"),
    "clip art": Choice(TUNE, ["openclipart-libreoffice"], r"\.sdg$"),
    "database": Choice(TUNE, ["wordnet-base"], r"/(data|index)\.", 30),
    "interpreter, graphics": Choice(JUDGE, ["libnode108", "libgs10", "libgtk-4-1"], r"\.so(\.[0-9.]+)?$", 60),
    "sources": Choice(JUDGE, ["libpython3.11-stdlib", "perl-doc", "vim-runtime"], r"\.(py|pod|pl|pm|vim|txt)$"),
    "documentation": Choice(JUDGE, ["postgresql-doc-15"], r"\.(html|svg|css)$"),
    "text fonts": Choice(JUDGE, ["fonts-freefont-ttf", "fonts-dejavu-core"], r"\.ttf$"),
    "locale data": Choice(JUDGE, ["unicode-cldr-core"], r"\.xml$", 30),
    "spelling lists": Choice(JUDGE, ["hunspell-de-de", "hunspell-fr-classical", "hunspell-es", "hunspell-it"], r"\.(dic|aff)$"),
    "books in PDF": Choice(JUDGE, ["debian-reference-en", "maint-guide"], r"\.pdf$"),
    "source archives": Choice(JUDGE, ["newlib-source", "glibc-source", "xtables-addons-source"], r"\.(tar\.[gx]z|tar\.bz2|tgz)$", 40),
    "wallpapers": Choice(JUDGE, ["plasma-workspace-wallpapers"], r"\.(png|jpg)$", 40),
}
LOGS = "logs"  # what the system's loader writes down about two programs


def say(text):
    print(f"bench: {text}", file=sys.stderr, flush=True)


def unpack(package, folder):
    """The package's files in a folder of its own."""
    target = os.path.join(folder, package)
    if os.path.isdir(target):
        return target
    say(f"zip: downloading {package}")
    work = target + ".partial"
    shutil.rmtree(work, ignore_errors=True)
    os.makedirs(work)
    if subprocess.run(["apt-get", "-q", "download", package], cwd=work, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode:
        subprocess.run(["apt-get", "-q", "update"], stdout=subprocess.DEVNULL)
        subprocess.run(["apt-get", "-q", "download", package], cwd=work, stdout=subprocess.DEVNULL, check=True)
    archive = [name for name in os.listdir(work) if name.endswith(".deb")][0]
    subprocess.run(["dpkg-deb", "-x", archive, "."], cwd=work, check=True)
    os.unlink(os.path.join(work, archive))
    os.rename(work, target)
    return target


def files_of(root):
    found = (os.path.join(folder, name) for folder, _, names in os.walk(root) for name in names)
    return sorted(path for path in found if not os.path.islink(path))


def fill(choice, packages, target):
    """Flat, as a zip is: a number keeps names apart that are alike."""
    total = number = 0
    for package in choice.packages:
        for path in files_of(unpack(package, packages)):
            size = os.path.getsize(path)
            if not choice.pattern.search(path) or size == 0 or total + size > choice.limit:
                continue
            shutil.copy2(path, os.path.join(target, f"{number:05}-{os.path.basename(path)}"))
            number, total = number + 1, total + size
    if total == 0:
        raise RuntimeError(f"{', '.join(choice.packages)}: no file matches {choice.pattern.pattern}")


def fill_logs(target):
    modules = ("ssl, sqlite3, ctypes", "decimal, json, lzma, bz2", "asyncio, curses, readline, zlib")
    programs = {f"python{number}.log": [sys.executable, "-c", f"import {names}"] for number, names in enumerate(modules)}
    programs |= {"git.log": ["git", "--version"], "cmake.log": ["cmake", "--version"], "perl.log": ["perl", "-MPOSIX", "-MSocket", "-e", "1"]}
    for name, command in programs.items():
        with open(os.path.join(target, name), "wb") as log:
            subprocess.run(command, env=dict(os.environ, LD_DEBUG="all"), stdout=subprocess.DEVNULL, stderr=log, check=True)


def made(target, make):
    """Complete or not at all."""
    if os.path.isdir(target):
        return
    partial = target + ".partial"
    shutil.rmtree(partial, ignore_errors=True)
    os.makedirs(partial)
    make(partial)
    os.rename(partial, target)


def make(folder):
    """(name of the set, what it is for, its folder), the generated ones last."""
    sets = []
    root = os.path.join(folder, VERSION)
    for name, choice in [*REAL.items(), (LOGS, None)]:
        target = os.path.join(root, "sets", re.sub(r"\W+", "-", name))
        made(target, lambda partial: fill(choice, os.path.join(root, "packages"), partial) if choice else fill_logs(partial))
        sets.append((name, choice.use if choice else JUDGE, target))
    sets.sort(key=lambda row: row[1] != TUNE)
    return sets + [(name, GENERATED, path) for name, path in generated.make(folder).items()]
