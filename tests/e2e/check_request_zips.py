#!/usr/bin/env python3
"""Opens with other tools the zips that whole requests made.

Runs tests/e2e/ZipsForOtherToolsTest.cpp under Wine: a page asks, the UI driver uses the real picker and
the real password prompt, and each zip that the page gets is kept. Then 7z, unzip and bsdtar unpack each
zip on this side and must give back every picked file, and openssl recovers the password of the zip that
was made under a recovery certificate. What a tool can't read is in CANNOT with the reason; the check fails
when the tool can read it after all.
"""
import argparse
import os
import random
import subprocess
import sys
import tempfile

PASSWORD = "Grün 5! 漢"
ZIPS = {  # name: whether it is encrypted
    "plain.zip": False,
    "plain.zipx": False,
    "encrypted.zip": True,
    "encrypted.zipx": True,
    "duplicates.zip": False,
    "encrypted duplicates.zip": True,
    "recovery.zip": True,
    "dialog.zip": False,
}
CANNOT = {
    ("unzip", "plain.zipx"): "knows no xz",
    ("unzip", "encrypted.zip"): "knows no AES",
    ("unzip", "encrypted.zipx"): "knows neither",
    ("unzip", "encrypted duplicates.zip"): "knows no AES",
    ("unzip", "recovery.zip"): "knows no AES",
    ("bsdtar", "encrypted.zipx"): "does not decrypt what is compressed with xz",
}
COMMANDS = {
    "7z": lambda zip_file, target, password: ["7z", "x", "-y", f"-p{password}", f"-o{target}", zip_file],
    "unzip": lambda zip_file, target, password: ["unzip", "-q", "-o", "-P", password, zip_file, "-d", target],
    "bsdtar": lambda zip_file, target, password: ["bsdtar", "-x", "--passphrase", password, "-f", zip_file, "-C",
                                                  target],
}
ENV = dict(os.environ, LC_ALL="C.UTF-8")

failures = []


def check(condition, text):
    print(f"{'ok' if condition else 'FAILED'}: {text}", flush=True)
    if not condition:
        failures.append(text)


def run(*command, **options):
    return subprocess.run(command, env=ENV, stdin=options.pop("stdin", subprocess.DEVNULL), capture_output=True,
                          check=False, **options)


def make_sources(folder):
    """Equal files among different ones: small, empty, incompressible, and longer than one piece of a zip."""
    noise = random.Random(3)
    large = noise.randbytes(2 * 1024 * 1024) + b"and a text that compresses " * 100000
    sources = {
        "one.txt": b"Dear all, " * 500,
        "one again.txt": b"Dear all, " * 500,
        "one more.txt": b"Dear all, " * 500,
        "nearly one.txt": b"Dear all, " * 499 + b"Dear ALL, ",
        "empty.txt": b"",
        "empty too.txt": b"",
        "noise.bin": noise.randbytes(70000),
        "large.bin": large,
        "large again.bin": large,
        "Grüße 漢.txt": "Viele Grüße\r\n".encode(),
    }
    os.makedirs(folder)
    for name, content in sources.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content)
    return sources


def make_certificate(work):
    key, certificate = os.path.join(work, "key.pem"), os.path.join(work, "certificate.pem")
    done = run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "30", "-subj",
               "/O=Example/CN=Password recovery", "-keyout", key, "-out", certificate)
    if done.returncode != 0:
        sys.exit(f"openssl makes no certificate: {done.stderr.decode(errors='replace')}")
    return key, certificate


def make_zips(options, work, certificate):
    kept = os.path.join(work, "kept")
    stage = [part for item in options.stage for part in ("--stage", item)]
    done = run(options.wine_run, "--timeout", "240", *stage, "--stage", os.path.join(work, "in"), "--stage",
               certificate, "--env", "OB_TEST_TIMEOUT=240", "--keep", kept, "--", options.maker)
    sys.stdout.write(done.stdout.decode(errors="replace"))
    sys.stderr.write(done.stderr.decode(errors="replace"))
    check(done.returncode == 0, f"every request was answered (exit code {done.returncode})")
    out = os.path.join(kept, "out")
    found = sorted(os.listdir(out)) if os.path.isdir(out) else []
    check(found == sorted(ZIPS), f"the requests made these zips: {found}")
    return out, found


def tree(folder):
    found = {}
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), "rb") as file:
            found[name] = file.read()
    return found


def unpacks(tool, zip_file, target, password, sources):
    """True when the tool ends with success and gave back exactly the sources."""
    os.makedirs(target)
    done = run(*COMMANDS[tool](zip_file, target, password))
    return done.returncode == 0 and tree(target) == sources


def check_zip(out, name, work, sources):
    zip_file = os.path.join(out, name)
    for tool in COMMANDS:
        whole = unpacks(tool, zip_file, os.path.join(work, f"{tool}-{name}"), PASSWORD, sources)
        if (tool, name) in CANNOT:
            check(not whole, f"{name}: {tool} {CANNOT[tool, name]}, so it is passed over")
            continue
        check(whole, f"{name}: {tool} gives back all {len(sources)} files")
        if ZIPS[name]:
            guessed = unpacks(tool, zip_file, os.path.join(work, f"guess-{tool}-{name}"), "another", sources)
            check(not guessed, f"{name}: {tool} refuses another password")


def check_recovery(zip_file, key, certificate):
    """The commands of docs/recovery.md."""
    comment = run("unzip", "-z", zip_file).stdout
    opened = subprocess.run(["openssl", "cms", "-decrypt", "-inform", "PEM", "-recip", certificate, "-inkey", key],
                            input=comment, capture_output=True, check=False)
    check(opened.stdout == PASSWORD.encode(), "recovery.zip: openssl recovers the password from the comment")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--stage", action="append", default=[])
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-requests-") as work:
        sources = make_sources(os.path.join(work, "in"))
        key, certificate = make_certificate(work)
        out, found = make_zips(options, work, certificate)
        for name in found:
            check_zip(out, name, work, sources)
        if "recovery.zip" in found:
            check_recovery(os.path.join(out, "recovery.zip"), key, certificate)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
