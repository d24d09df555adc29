"""Runs this distribution's office suite for the staged soffice.exe, which runs under Wine.

    hand_on.py PORT ARGUMENT...

Connects to the port, translates the paths in the arguments, and sends the suite's exit code at the end. The
suite is ended as soon as the connection is: its Windows process was ended then.
"""
import os
import signal
import socket
import subprocess
import sys
import threading
import urllib.parse

PROFILE = "-env:UserInstallation="


def unix_path(path):
    """Of a full Windows path: Wine keeps a link for each drive."""
    drive, _, rest = path.partition(":")
    return os.path.join(os.environ["WINEPREFIX"], "dosdevices", drive.lower() + ":", rest.lstrip("\\/").replace("\\", "/"))


def translate(argument):
    if argument.startswith(PROFILE + "file:///"):
        path = urllib.parse.unquote(argument[len(PROFILE) + len("file:///"):])
        return PROFILE + "file://" + urllib.parse.quote(unix_path(path))
    return unix_path(argument) if argument[1:3] == ":\\" else argument


def environment(profile):
    """The prefix's name stays in it: a run that is ended ends what has it."""
    kept = {name: os.environ[name] for name in ("PATH", "WINEPREFIX", "HOME") if name in os.environ}
    return dict(kept, LC_ALL="C.UTF-8", TMPDIR=os.path.join(os.path.dirname(profile), "temporary"))


def end_with(connection, suite):
    """Waits for the connection's end."""
    try:
        while connection.recv(64):
            pass
    except OSError:
        pass
    try:
        os.killpg(suite.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass


def main():
    connection = socket.create_connection(("127.0.0.1", int(sys.argv[1])), 60)
    connection.settimeout(None)
    arguments = [translate(argument) for argument in sys.argv[2:]]
    profile = next((item[len(PROFILE) + len("file://"):] for item in arguments if item.startswith(PROFILE)), "/tmp/-")
    suite = subprocess.Popen(["soffice", *arguments], env=environment(urllib.parse.unquote(profile)),
                             stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                             start_new_session=True)
    threading.Thread(target=end_with, args=(connection, suite), daemon=True).start()
    code = suite.wait()
    try:
        connection.sendall(f"{code if code >= 0 else 91}\n".encode())
        connection.shutdown(socket.SHUT_RDWR)
    except OSError:
        pass


main()
