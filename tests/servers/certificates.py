"""Certificates for tests of TLS, made by openssl: an authority that the test machine trusts, one that it
doesn't, and certificates of servers. Nothing is kept: each run makes its own."""
import datetime
import hashlib
import os
import ssl
import struct
import subprocess

# Name: (authority, name of the server, days from which and until which it is valid).
SERVERS = {
    "good": ("authority", "localhost", -1, 30),
    "expired": ("authority", "localhost", -30, -1),
    "early": ("authority", "localhost", 1, 30),
    "otherhost": ("authority", "other.example", -1, 30),
    "unknown": ("stranger", "localhost", -1, 30),
}
SETTINGS = """[ca]
default_ca = made
[made]
new_certs_dir = {folder}
database = {folder}/index
default_md = sha256
policy = any
rand_serial = yes
unique_subject = no
[any]
commonName = supplied
"""


def openssl(folder, *arguments):
    done = subprocess.run(["openssl", *arguments], cwd=folder, stdin=subprocess.DEVNULL,
                          capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"openssl {arguments[0]} failed: {done.stderr}")


def make_authority(folder, name):
    openssl(folder, "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
            "-keyout", f"{name}.key", "-out", f"{name}.pem", "-days", "30", "-subj", f"/CN=Test {name}",
            "-addext", "keyUsage=critical,keyCertSign")


def make_server(folder, name, authority, host, first, last):
    now = datetime.datetime.utcnow()
    start, end = ((now + datetime.timedelta(days=days)).strftime("%Y%m%d%H%M%SZ") for days in (first, last))
    with open(os.path.join(folder, f"{name}.ext"), "w", encoding="ascii") as file:
        file.write(f"subjectAltName = DNS:{host}\nextendedKeyUsage = serverAuth\n")
    openssl(folder, "req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
            "-keyout", f"{name}.key", "-out", f"{name}.csr", "-subj", f"/CN={host}")
    openssl(folder, "ca", "-batch", "-notext", "-config", "settings", "-cert", f"{authority}.pem",
            "-keyfile", f"{authority}.key", "-in", f"{name}.csr", "-out", f"{name}.pem",
            "-startdate", start, "-enddate", end, "-extfile", f"{name}.ext")


def make(folder):
    """All of them, as NAME.pem with NAME.key; "authority.pem" is the one to trust."""
    with open(os.path.join(folder, "settings"), "w", encoding="ascii") as file:
        file.write(SETTINGS.format(folder=folder))
    open(os.path.join(folder, "index"), "w", encoding="ascii").close()
    for authority in ("authority", "stranger"):
        make_authority(folder, authority)
    for name, (authority, host, first, last) in SERVERS.items():
        make_server(folder, name, authority, host, first, last)


def trusted_root(folder):
    """The authority as a section of a prefix's system.reg, in the form of that file: an entry of the
    machine's root store."""
    with open(os.path.join(folder, "authority.pem"), encoding="ascii") as file:
        der = ssl.PEM_cert_to_DER_cert(file.read())
    # CERT_CERT_PROP_ID, a reserved 1, length, certificate.
    blob = struct.pack("<III", 32, 1, len(der)) + der
    key = "Software\\Microsoft\\SystemCertificates\\Root\\Certificates\\" + hashlib.sha1(der).hexdigest().upper()
    return "\n[" + key.replace("\\", "\\\\") + ']\n"Blob"=hex:' + ",".join(f"{byte:02x}" for byte in blob) + "\n"
