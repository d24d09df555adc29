"""A relay before the test servers that breaks what passes through it, by script.

    relay.py PORT CONTROL-PORT NAME=UPSTREAM-PORT...

A connection to the control port carries one command in a line and gets lines back, ended by the connection's end:

    begin NAME             forgets all rules and requests; NAME is the server from now on
    on METHOD SKIP TIMES ACTION [ARGUMENT]
                           a rule for requests of this method ("*": any), after the first SKIP of them, so many
                           TIMES; rules that were made first count first
    release                lets go on what a rule "hold" keeps
    waiting                how many requests a rule "hold" keeps now
    logins                 how many requests since "begin" had an Authorization header
    nonzero                how many bytes other than 0 the last body had that "holes" has stored
    requests               the requests since "begin": method, path, length of the body that came, status that the
                           server gave ("-": none)

    ACTION          what happens to the request
    refuse          the connection ends before anything is passed on
    cutbody N       N bytes of the body get to the server, then both connections end
    keepbody N      the server gets a whole request with the first N bytes of the body, then the connection ends
    swallow         the server gets and answers it; the connection ends without the reply
    cutreply N      the reply ends after N bytes of its body
    hold            waits for "release", then passes it on
    holdreply       passes it on, keeps the reply until "release"
    instead CODE[|...]                       the server gets and answers it; this reply takes the place of the server's
    status CODE[|Header: value]...[|=BODY]   this reply; the server gets nothing, the body is read
    early CODE[|...]                         this reply at once; what still comes is read and forgotten
    deny CODE[|...]                          this reply after 5,000 bytes of the body, then the connection ends
    stall CODE[|...]                         the same, but nothing is read and the connection stays until "release"
    later N CODE[|...]                       this reply at once; the server gets the request once N more have come
    twice           the server gets it two times, as from a client that repeats it; the second reply counts
    holes FOLDER    the relay itself stores the body, or the part of the file that it is, in the file that the server
                    has in this folder, without room for zeros: for files of gigabytes
    sink            201, the body is read and forgotten
    drip N          200 at once, then a body of N bytes, one every DRIP seconds; the body of the request is read
    dripchunks N    the same with a chunk for each byte
    driphead N      the same for a head: a header of N bytes in it comes in that way; the body is empty
                    All count as kept until they end: after N bytes, with the client, or at "release". Their
                    request has the status 200 only after N bytes
"""
import contextlib
import os
import re
import socket
import socketserver
import sys
import threading
from urllib.parse import unquote

BLOCK = 1 << 18
EARLY = 5000  # bytes of a body that a server has read when it refuses the body
ZEROS = bytes(BLOCK)
DRIP = 0.02  # seconds between two bytes
KEEPING = ("hold", "stall", "drip")  # how actions begin that "release" ends


class Broken(Exception):
    """A connection ended too early."""


class Script:
    """Rules and what was seen; used by all threads."""

    def __init__(self, upstreams):
        self.lock = threading.Condition()
        self.upstreams = upstreams
        self.run = 0  # one more with each "begin"
        self.begin(next(iter(upstreams), ""))

    def begin(self, name):
        with self.lock:
            self.upstream = self.upstreams.get(name)
            self.run += 1
            self.rules = []
            self.seen = []
            self.logins = 0
            self.nonzero = 0
            self.late = []  # for the server: how many requests have to come first, and what to send then
            self.held = 0
            self.released = True
            self.lock.notify_all()

    def add(self, method, skip, times, action, argument):
        with self.lock:
            self.rules.append([method, int(skip), int(times), action, argument])
            if action.startswith(KEEPING):
                self.released = False

    def take(self, method):
        with self.lock:
            for rule in self.rules:
                if rule[0] not in ("*", method):
                    continue
                if rule[1] > 0:
                    rule[1] -= 1
                elif rule[2] > 0:
                    rule[2] -= 1
                    return rule[3], rule[4]
        return "pass", ""

    def note(self, line, has_login):
        with self.lock:
            self.logins += has_login
            self.seen.append(line)
            return len(self.seen) - 1

    def change(self, number, line):
        with self.lock:
            if number < len(self.seen):
                self.seen[number] = line

    def put_off(self, requests, data):
        with self.lock:
            self.late.append([int(requests), data])

    def due(self):
        """Counts a request that has come; what the server is to get before it."""
        with self.lock:
            for late in self.late:
                late[0] -= 1
            due = [data for left, data in self.late if left <= 0]
            self.late = [late for late in self.late if late[0] > 0]
            return due

    def keep(self, run, seconds=None):
        """Waits for "release", but no longer than that; whether it came. One that is kept from before the last
        "begin" is released, and not counted any more: neither may be missed when rules are made at once after."""
        with self.lock:
            return self.lock.wait_for(lambda: self.released or self.run != run, seconds)

    @contextlib.contextmanager
    def kept(self):
        with self.lock:
            run = self.run
            self.held += 1
        try:
            yield run
        finally:
            with self.lock:
                self.held -= self.run == run

    def hold(self):
        with self.kept() as run:
            self.keep(run)

    def drip(self, connection, pieces):
        """Sends piece by piece, unless it is released meanwhile; whether all of them were sent."""
        with self.kept() as run:
            for piece in pieces:
                connection.sendall(piece)
                if self.keep(run, DRIP):
                    return False
        return True

    def release(self):
        with self.lock:
            self.released = True
            self.lock.notify_all()

    def command(self, line):
        words = line.split(" ", 5)
        if words[0] == "begin":
            self.begin(words[1])
        elif words[0] == "on":
            self.add(*words[1:5], words[5] if len(words) > 5 else "")
        elif words[0] == "release":
            self.release()
        elif words[0] == "waiting":
            return [str(self.held)]
        elif words[0] == "logins":
            return [str(self.logins)]
        elif words[0] == "nonzero":
            return [str(self.nonzero)]
        elif words[0] == "requests":
            with self.lock:
                return list(self.seen)
        else:
            return ["unknown command"]
        return ["done"]


class Head:
    """First line and headers of a request or reply; what was read past them is in `rest`."""

    def __init__(self, connection):
        data = b""
        while b"\r\n\r\n" not in data:
            block = connection.recv(BLOCK)
            if not block:
                raise Broken("in the head")
            data += block
        head, _, self.rest = data.partition(b"\r\n\r\n")
        self.first, *self.lines = head.split(b"\r\n")

    def value(self, name):
        for line in self.lines:
            key, _, value = line.partition(b":")
            if key.strip().lower() == name:
                return value.strip()
        return None

    def length(self):
        return int(self.value(b"content-length") or 0)

    def set(self, name, value):
        self.lines = [line for line in self.lines if line.partition(b":")[0].strip().lower() != name.lower()]
        self.lines.append(name + b": " + value)

    def data(self):
        return b"\r\n".join([self.first, *self.lines, b"", b""])


def pass_body(head, source, target, limit):
    """Passes on at most `limit` bytes of a body, and returns how many came."""
    left = min(head.length(), limit)
    passed = 0
    block = head.rest[:left]
    while left > 0:
        if not block:
            block = source.recv(min(BLOCK, left))
            if not block:
                raise Broken("in the body")
        if target:
            target.sendall(block)
        left -= len(block)
        passed += len(block)
        block = b""
    return passed


def made_reply(argument):
    parts, _, body = argument.partition("|=")
    code, *headers = parts.split("|")
    # A script may have bytes that are no UTF-8.
    size = len(body.encode(errors="surrogateescape"))
    lines = [f"HTTP/1.1 {code} Made", *headers, f"Content-Length: {size}", "Connection: close", "", body]
    return "\r\n".join(lines).encode(errors="surrogateescape")


class Relay(socketserver.BaseRequestHandler):
    def handle(self):
        try:
            self.serve(Head(self.request))
        except (Broken, OSError):
            pass

    def serve(self, head):
        script = self.server.script
        method, path = head.first.decode("latin-1").split(" ")[:2]
        if head.value(b"transfer-encoding"):
            self.request.sendall(made_reply("411"))  # none of the tests' programs sends a body in chunks
            return
        for data in script.due():
            with socket.create_connection(("127.0.0.1", script.upstream)) as upstream:
                upstream.sendall(data)
                while upstream.recv(BLOCK):  # until the server has acted
                    pass
        action, argument = script.take(method)
        number = script.note(f"{method} {path} 0 -", head.value(b"authorization") is not None)
        if action == "refuse":
            return
        if action == "early":
            self.request.sendall(made_reply(argument))
            self.request.shutdown(socket.SHUT_WR)
            while self.request.recv(BLOCK):
                pass
            return
        if action in ("deny", "stall"):
            pass_body(head, self.request, None, min(head.length(), EARLY))
            self.request.sendall(made_reply(argument))
            if action == "stall":
                script.hold()
            return
        if action in ("status", "sink"):
            came = pass_body(head, self.request, None, head.length())
            self.request.sendall(made_reply(argument or "201"))
            script.change(number, f"{method} {path} {came} {argument.partition('|')[0] or 201}")
            return
        if action == "holes":
            came = self.store(head, os.path.join(argument, unquote(path).removeprefix("/dav/")))
            self.request.sendall(made_reply("204"))
            script.change(number, f"{method} {path} {came} 204")
            return
        if action == "later":
            requests, _, argument = argument.partition(" ")
            head.set(b"Connection", b"close")
            script.put_off(requests, head.data() + self.body(head))
            self.request.sendall(made_reply(argument))
            return
        if action in ("drip", "dripchunks", "driphead"):
            came = pass_body(head, self.request, None, head.length())
            slow = [b"x"] * int(argument)
            quick = f"HTTP/1.1 200 Made\r\nContent-Length: {len(slow)}\r\n\r\n".encode()
            if action == "dripchunks":
                quick = b"HTTP/1.1 200 Made\r\nTransfer-Encoding: chunked\r\n\r\n"
                slow = [b"1\r\nx\r\n"] * len(slow) + [b"0\r\n\r\n"]
            elif action == "driphead":
                quick = b"HTTP/1.1 200 Made\r\nContent-Length: 0\r\nX-Slow: "
                slow += [b"\r\n\r\n"]
            self.request.sendall(quick)
            if script.drip(self.request, slow):
                script.change(number, f"{method} {path} {came} 200")
            return
        if action == "hold":
            script.hold()
        if action == "twice":
            with socket.create_connection(("127.0.0.1", script.upstream)) as upstream:
                self.ask(upstream, head, "", "")
        with socket.create_connection(("127.0.0.1", script.upstream)) as upstream:
            came, reply = self.ask(upstream, head, action, argument)
            status = reply.first.split(b" ")[1].decode() if reply else "-"
            script.change(number, f"{method} {path} {came} {status}")
            if action == "holdreply":
                script.hold()
            if reply and action == "instead":
                self.request.sendall(made_reply(argument))
            elif reply and action not in ("swallow", "keepbody"):
                limit = int(argument) if action == "cutreply" else None
                self.reply(upstream, reply, method, limit)

    def store(self, head, path):
        """Stores the body in a file that is there, and returns its length."""
        start = re.match(rb"bytes (\d+)-", head.value(b"content-range") or b"bytes 0-")
        place = int(start[1])
        left, nonzero = head.length(), 0
        with open(path, "r+b") as file:
            block = head.rest
            while left > 0:
                block = block or self.request.recv(BLOCK)
                if not block:
                    raise Broken("in the body")
                if block != ZEROS[:len(block)]:
                    file.seek(place)
                    file.write(block)
                    nonzero += len(block) - block.count(0)
                place += len(block)
                left -= len(block)
                block = b""
            file.truncate(place)
        self.server.script.nonzero = nonzero
        return head.length()

    def body(self, head):
        data = head.rest
        while len(data) < head.length():
            block = self.request.recv(BLOCK)
            if not block:
                raise Broken("in the body")
            data += block
        return data

    def ask(self, upstream, head, action, argument):
        limit = head.length()
        if action in ("cutbody", "keepbody"):
            limit = min(limit, int(argument))
        if action == "keepbody":
            head.set(b"Content-Length", str(limit).encode())
            # A range that ends where the body ends.
            shorter = re.sub(rb"bytes (\d+)-\d+", lambda m: b"bytes %s-%d" % (m[1], int(m[1]) + limit - 1),
                             head.value(b"content-range") or b"")
            if shorter:
                head.set(b"Content-Range", shorter)
        head.set(b"Connection", b"close")
        upstream.sendall(head.data())
        came = pass_body(head, self.request, upstream, limit)
        if action == "cutbody":
            upstream.shutdown(socket.SHUT_WR)
            while upstream.recv(BLOCK):  # until the server has noticed
                pass
            return came, None
        return came, Head(upstream)

    def reply(self, upstream, head, method, limit):
        head.set(b"Connection", b"close")
        self.request.sendall(head.data())
        bodiless = method == "HEAD" or head.first.split(b" ")[1] in (b"204", b"304")
        block = b"" if bodiless else head.rest or upstream.recv(BLOCK)
        while block:
            if limit is not None and len(block) >= limit:
                self.request.sendall(block[:limit])
                return
            self.request.sendall(block)
            limit = limit if limit is None else limit - len(block)
            block = upstream.recv(BLOCK)


class Control(socketserver.StreamRequestHandler):
    def handle(self):
        line = self.rfile.readline().decode(errors="surrogateescape").strip()
        self.wfile.write(("\n".join(self.server.script.command(line)) + "\n").encode())


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True
    request_queue_size = 64

    def __init__(self, port, handler, script):
        self.script = script
        super().__init__(("127.0.0.1", port), handler)


def main():
    upstreams = {name: int(port) for name, _, port in (item.partition("=") for item in sys.argv[3:])}
    script = Script(upstreams)
    control = Server(int(sys.argv[2]), Control, script)
    threading.Thread(target=control.serve_forever, daemon=True).start()
    Server(int(sys.argv[1]), Relay, script).serve_forever()


if __name__ == "__main__":
    main()
