#!/usr/bin/env python3
"""Has the archive service encrypt zips with the longest passwords that its prompt takes, and opens them with 7z.

The prompt's limit is 7-Zip's own. So 7z must open every encrypted zip with a password of exactly 99 bytes, and
must still refuse one of 100: if it no longer does, the limit can go.
"""
import argparse
import os
import subprocess
import sys
import tempfile

LIMIT = 99  # bytes
TEXT = b"Only for those who were meant to read it.\n" * 50
ENCRYPTED = ["aes128.zip", "aes256.zip", "aes256.zipx"]
PASSWORDS = {
    "ascii": ("tW4!mQz9#Lk2-" * LIMIT)[:LIMIT],
    "accents": "\u00e4" * (LIMIT // 2) + "7",
}
ENV = dict(os.environ, LC_ALL="C.UTF-8")

failures = []


def check(condition, text):
    print(f"{'ok' if condition else 'FAILED'}: {text}", flush=True)
    if not condition:
        failures.append(text)


def run(*command):
    return subprocess.run(command, env=ENV, stdin=subprocess.DEVNULL, capture_output=True, check=False)


def make_zips(options, work, name, password):
    kept = os.path.join(work, f"{name}-kept")
    done = run(options.wine_run, "--timeout", "60", "--stage", os.path.join(work, "in"), "--stage", options.service,
               "--env", f"OB_PASSWORD={password}", "--keep", kept, "--", options.maker)
    sys.stderr.write(done.stderr.decode(errors="replace"))
    check(done.returncode == 0, f"{name}: the service wrote every zip")
    return os.path.join(kept, "out")


def content(archive, password):
    """What 7z unpacks with the password, or None when it refuses."""
    done = run("7z", "x", "-so", f"-p{password}", archive, "in.txt")
    return done.stdout if done.returncode == 0 else None


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--service", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-passwords-") as work:
        os.makedirs(os.path.join(work, "in"))
        with open(os.path.join(work, "in", "in.txt"), "wb") as file:
            file.write(TEXT)
        for name, password in PASSWORDS.items():
            assert len(password.encode()) == LIMIT
            out = make_zips(options, work, name, password)
            for zip_name in ENCRYPTED:
                archive = os.path.join(out, zip_name)
                check(content(archive, password) == TEXT, f"{name}, {zip_name}: 7z opens it with {LIMIT} bytes")
                check(content(archive, password[:-1]) != TEXT, f"{name}, {zip_name}: 7z refuses one byte less")
        longer = PASSWORDS["ascii"] + "x"
        archive = os.path.join(make_zips(options, work, "longer", longer), "aes256.zip")
        check(content(archive, longer) is None, f"7z refuses {LIMIT + 1} bytes, also the right ones")
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
