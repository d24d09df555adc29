#!/usr/bin/env python3
"""Recovers passwords as an administrator does, with other people's tools.

Makes a certificate, sets it as the policy of a machine, has the archive service write encrypted zips
under Wine, opens the message in each zip's comment with openssl by the command that docs/recovery.md
gives, and opens the zip with the password that came out.
"""
import argparse
import os
import subprocess
import sys
import tempfile

PASSWORD = "pässwörd \U0001F511 7"
CONTENT = b"Only for those who were meant to read it.\n" * 50
KEY = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tavi Ren Computing\\Ombrix\\Policies"
ZIPS = ["aes128.zip", "aes256.zip", "aes256.zipx"]
ENV = dict(os.environ, LC_ALL="C.UTF-8")
# (name, options for openssl's new key, further options, whole PEM text or the Base64 alone)
CERTIFICATES = [
    ("pem", ["rsa:2048"], [], True),
    ("base64", ["rsa:4096"], [], False),
    # Its serial number begins with a byte whose top bit is set, after a zero byte in the certificate.
    ("top-bit", ["rsa:2048"], ["-set_serial", "0xF123456789ABCDEF", "-addext", "keyUsage=critical,keyEncipherment"], True),
    ("negative", ["rsa:2048"], ["-set_serial", "-0x123456789ABCDEF0"], True),
]
# The key may only sign: recovery is refused.
SIGNING = ("signing", ["rsa:2048"], ["-addext", "keyUsage=critical,digitalSignature"], True)
UNSUITABLE = "key: result 4,"
NO_KEY = 101  # what the maker returns then

failures = []


def check(condition, text):
    print(f"{'ok' if condition else 'FAILED'}: {text}", flush=True)
    if not condition:
        failures.append(text)


def run(*command, **options):
    return subprocess.run(command, env=ENV, capture_output=True, check=False, **options)


def make_certificate(work, name, algorithm, further=()):
    key, certificate = f"{work}/{name}-key.pem", f"{work}/{name}.pem"
    done = run("openssl", "req", "-x509", "-newkey", *algorithm, "-nodes", "-days", "30", "-subj",
               "/O=Example/CN=Password recovery", "-keyout", key, "-out", certificate, *further)
    if done.returncode != 0:
        sys.exit(f"openssl makes no certificate: {done.stderr.decode(errors='replace')}")
    return key, certificate


def write_policy(path, certificate, whole):
    """The certificate as a REG_SZ, in bytes, as a text in a .reg file can't contain a line break."""
    with open(certificate, encoding="ascii") as file:
        text = file.read()
    if not whole:
        text = "".join(line for line in text.splitlines() if not line.startswith("-"))
    data = ",".join(f"{byte:02x}" for byte in (text + "\0").encode("utf-16-le"))
    with open(path, "w", encoding="utf-16") as file:
        file.write(f'Windows Registry Editor Version 5.00\n\n[{KEY}]\n"EntX509Certificate"=hex(1):{data}\n')


def run_maker(options, work, name, certificate, whole):
    policy, source, kept = f"{work}/{name}.reg", f"{work}/in.txt", f"{work}/{name}-kept"
    write_policy(policy, certificate, whole)
    with open(source, "wb") as file:
        file.write(CONTENT)
    done = run(options.wine_run, "--timeout", "60", "--stage", source, "--stage", options.service, "--reg", policy,
               "--env", f"OB_PASSWORD={PASSWORD}", "--keep", kept, "--", options.maker)
    sys.stdout.write(done.stdout.decode(errors="replace"))
    sys.stderr.write(done.stderr.decode(errors="replace"))
    return done, os.path.join(kept, "out")


def make_zips(options, work, name, certificate, whole):
    done, out = run_maker(options, work, name, certificate, whole)
    check(done.returncode == 0, f"{name}: the zips exist, and the one with a wrong key was refused")
    check(os.path.isdir(out) and sorted(os.listdir(out)) == sorted(ZIPS), f"{name}: there are no files but the zips")
    return out


def recover(archive, key, certificate):
    """The command of docs/recovery.md."""
    comment = run("unzip", "-z", archive)
    return run("openssl", "cms", "-decrypt", "-inform", "PEM", "-recip", certificate, "-inkey", key,
               input=comment.stdout)


def check_refused(options, work):
    name, algorithm, further, whole = SIGNING
    _, certificate = make_certificate(work, name, algorithm, further)
    done, out = run_maker(options, work, name, certificate, whole)
    check(done.returncode == NO_KEY and UNSUITABLE in done.stdout.decode(errors="replace"),
          f"{name}: a certificate whose key may not encipher keys is refused")
    check(not os.path.exists(out), f"{name}: no zip is there")


def check_zip(archive, key, certificate, work, other):
    name = os.path.basename(archive)
    opened = recover(archive, key, certificate)
    check(opened.returncode == 0, f"{name}: openssl opens the message {opened.stderr.decode(errors='replace')}")
    check(opened.stdout == PASSWORD.encode(), f"{name}: the message is the password and nothing else")
    refused = recover(archive, *other)
    check(refused.returncode != 0 or refused.stdout != PASSWORD.encode(), f"{name}: another key does not open it")
    comment = run("unzip", "-z", archive).stdout
    printed = run("openssl", "cms", "-cmsout", "-print", "-noout", "-inform", "PEM", input=comment).stdout
    check(b"aes-256-cbc" in printed and b"rsaEncryption" in printed, f"{name}: AES-256 under RSA")
    with open(archive, "rb") as file:
        check(PASSWORD.encode() not in file.read(), f"{name}: the zip does not contain the password")
    target = f"{work}/{name}-unpacked"
    done = run("7z", "x", "-y", f"-p{opened.stdout.decode(errors='replace')}", f"-o{target}", archive)
    check(done.returncode == 0, f"{name}: 7z unpacks it with the recovered password")
    try:
        with open(f"{target}/in.txt", "rb") as file:
            check(file.read() == CONTENT, f"{name}: the content is whole")
    except OSError as error:
        check(False, f"{name}: {error}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--wine-run", required=True)
    parser.add_argument("--maker", required=True)
    parser.add_argument("--service", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="webvellant-recovery-") as work:
        other = make_certificate(work, "other", ["rsa:2048"])
        check_refused(options, work)
        for name, algorithm, further, whole in CERTIFICATES:
            key, certificate = make_certificate(work, name, algorithm, further)
            folder = os.path.join(work, name)
            os.makedirs(folder)
            out = make_zips(options, work, name, certificate, whole)
            for zip_name in ZIPS:
                if os.path.exists(os.path.join(out, zip_name)):
                    check_zip(os.path.join(out, zip_name), key, certificate, folder, other)
    print(f"{len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
