"""A small server of the tests' own with the open collaboration share interface: WebDAV passes through to a server
beside it, links download the files.

    shares.py PORT CONTROL-PORT UPSTREAM-PORT FILES

Below /cloud/ it has /remote.php/webdav/ (passed on as it is), /ocs/v2.php/cloud/capabilities and
/ocs/v2.php/apps/files_sharing/api/v1/shares; /s/TOKEN is the file itself, for anybody who knows the link's password
(Basic, any user), until it ends. User and password come from OB_USER and OB_PASSWORD.

A connection to the control port carries one command in a line and gets lines back:

    begin              forgets all shares and settings
    set NAME [VALUE]   a setting, see SETTINGS
    shares             the shares: id, path, "password" or "-", last day or "-", label or "-"
"""
import base64
import datetime
import os
import secrets
import socket
import sys
import threading
from urllib.parse import parse_qs, unquote
from xml.sax.saxutils import escape

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import relay  # noqa: E402

CLOUD = "/cloud/"
SHARES = CLOUD + "ocs/v2.php/apps/files_sharing/api/v1/shares"
CAPABILITIES = CLOUD + "ocs/v2.php/cloud/capabilities"
LONGEST_FORM = 1 << 16
SETTINGS = {
    "interface": "1",        # 0: there is none
    "public": "1",           # 0: no links
    "password": "",          # 1: each link needs one
    "shortest": "0",         # characters of a password
    "digit": "",             # 1: a password needs one
    "expiry": "",            # 1: each link ends
    "days": "",              # after so many at most
    "labels": "1",           # 0: this server knows none
    "clock": "0",            # days that this server's clock is ahead
    "forget": "",            # the password of a new link ("new"), of every link ("all")
    "link": "",              # given in place of each link
    "status": "",            # 200: that of HTTP, whatever that of the interface is
}


class Refused(Exception):
    """A status of the interface and its message."""


class Shares:
    """All shares and settings; used by all threads."""

    def __init__(self, files):
        self.lock = threading.Lock()
        self.files = os.path.realpath(files)
        self.begin()

    def begin(self):
        self.settings = dict(SETTINGS)
        self.shares = {}
        self.last_id = 0

    def is_on(self, name):
        return self.settings[name] not in ("", "0")

    def today(self):
        return datetime.datetime.now() + datetime.timedelta(days=int(self.settings["clock"]))

    def local_path(self, path):
        local = os.path.realpath(os.path.join(self.files, path.lstrip("/")))
        if not local.startswith(self.files + os.sep) or not os.path.isfile(local):
            raise Refused(404, "Wrong path, file/folder doesn't exist")
        return local

    def check_password(self, password):
        if not password and self.is_on("password"):
            raise Refused(403, "Passwords are enforced for link shares")
        if password and len(password) < int(self.settings["shortest"]):
            raise Refused(400, f"Password needs to be at least {self.settings['shortest']} characters long.")
        if password and self.is_on("digit") and not any(c.isdigit() for c in password):
            raise Refused(400, "Password needs to contain at least one number.")

    def checked_day(self, text):
        limit = self.today().date() + datetime.timedelta(days=int(self.settings["days"])) if self.settings["days"] else None
        if not text:
            return limit if self.is_on("expiry") else None
        try:
            day = datetime.datetime.strptime(text, "%Y-%m-%d").date()
        except ValueError:
            raise Refused(404, 'Invalid date, date format must be YYYY-MM-DD') from None
        if day < self.today().date():
            raise Refused(404, "Expiration date is in the past")
        if limit and self.is_on("expiry") and day > limit:
            raise Refused(404, f"Cannot set expiration date more than {self.settings['days']} days in the future")
        return day

    def create(self, form):
        if not self.is_on("public"):
            raise Refused(403, "Public link sharing is disabled by the administrator")
        if form.get("shareType") != "3":
            raise Refused(400, "Unknown share type")
        path = form.get("path", "")
        self.local_path(path)
        self.check_password(form.get("password", ""))
        self.last_id += 1
        share = {"id": str(self.last_id), "path": path, "token": secrets.token_urlsafe(11),
                 "password": "" if self.settings["forget"] else form.get("password", ""), "day": self.checked_day(form.get("expireDate", "")),
                 "label": form.get("label", "") if self.is_on("labels") else ""}
        self.shares[share["id"]] = share
        return share

    def change(self, number, form):
        share = self.found(number)
        if "password" in form:
            self.check_password(form["password"])
            share["password"] = "" if self.settings["forget"] == "all" else form["password"]
        if "expireDate" in form:
            share["day"] = self.checked_day(form["expireDate"])
        return share

    def found(self, number):
        if number not in self.shares:
            raise Refused(404, "Wrong share ID, share doesn't exist")
        return self.shares[number]

    def of_path(self, path):
        self.local_path(path)
        return [share for share in self.shares.values() if share["path"] == path]

    def download(self, token, password):
        for share in self.shares.values():
            if share["token"] != token or (share["day"] and share["day"] < self.today().date()):
                continue
            if share["password"] and share["password"] != password:
                raise Refused(401, "password")
            return self.local_path(share["path"])
        raise Refused(404, "no such link")

    def command(self, line):
        with self.lock:
            words = line.split(" ", 2)
            if words[0] == "begin":
                self.begin()
            elif words[0] == "set" and words[1] in SETTINGS:
                self.settings[words[1]] = words[2] if len(words) > 2 else ""
            elif words[0] == "shares":
                return [" ".join((share["id"], share["path"], "password" if share["password"] else "-",
                                  str(share["day"] or "-"), share["label"] or "-"))
                        for share in self.shares.values()]
            else:
                return ["unknown command"]
            return ["done"]


def element(name, content):
    return f"<{name}>{content}</{name}>"


def leaves(values):
    """Elements with texts, from a dictionary that may have dictionaries."""
    return "".join(element(name, leaves(value) if isinstance(value, dict) else escape(value))
                   for name, value in values.items())


class Site(relay.Relay):
    """One request a connection."""

    def serve(self, head):
        method, target = head.first.decode("latin-1").split(" ")[:2]
        path, _, query = target.partition("?")
        if path.startswith(CLOUD + "remote.php/webdav/"):
            self.pass_on(head, method)
            return
        form = {name: values[-1] for name, values in parse_qs(query, keep_blank_values=True).items()}
        if method in ("POST", "PUT"):
            form.update(self.read_form(head))
        with self.server.script.lock:
            if path.startswith("/s/") and method == "GET":
                self.download(head, path[3:])
            else:
                self.answer(head, method, path, form)

    def pass_on(self, head, method):
        with socket.create_connection(("127.0.0.1", self.server.upstream)) as upstream:
            _, reply = self.ask(upstream, head, "", "")
            self.reply(upstream, reply, method, None)

    def read_form(self, head):
        size = min(head.length(), LONGEST_FORM)
        body = head.rest[:size]
        while len(body) < size:
            block = self.request.recv(size - len(body))
            if not block:
                raise relay.Broken("in the form")
            body += block
        return {name: values[-1] for name, values in parse_qs(body.decode(), keep_blank_values=True).items()}

    def login(self, head):
        value = (head.value(b"authorization") or b"").decode("latin-1")
        if not value.startswith("Basic "):
            return None, ""
        user, _, password = base64.b64decode(value[6:]).decode().partition(":")
        return user, password

    def send(self, status, body, kind="text/xml; charset=utf-8", more=()):
        date = (datetime.datetime.utcnow() + datetime.timedelta(
            days=int(self.server.script.settings["clock"]))).strftime("%a, %d %b %Y %H:%M:%S GMT")
        lines = [f"HTTP/1.1 {status} Made", f"Content-Type: {kind}", f"Content-Length: {len(body)}", f"Date: {date}",
                 "Connection: close", *more, "", ""]
        self.request.sendall("\r\n".join(lines).encode() + body)

    def answer(self, head, method, path, form):
        script = self.server.script
        is_ours = path.startswith((SHARES, CAPABILITIES))
        if not is_ours or not script.is_on("interface"):
            self.send(404, b"<html>Nothing here</html>", "text/html")
            return
        try:
            if head.value(b"ocs-apirequest") != b"true":
                raise Refused(412, "CSRF check failed")
            if self.login(head) != (os.environ["OB_USER"], os.environ["OB_PASSWORD"]):
                raise Refused(401, "Current user is not logged in")
            code, message, data = 200, "OK", self.data(head, method, path, form)
        except Refused as refused:
            (code, message), data = refused.args, ""
        is_ok = code == 200
        meta = leaves({"status": "ok" if is_ok else "failure", "statuscode": str(code), "message": message})
        body = '<?xml version="1.0"?>\n' + element("ocs", element("meta", meta) + element("data", data)) + "\n"
        self.send(script.settings["status"] or code, body.encode())

    def data(self, head, method, path, form):
        script = self.server.script
        if path == CAPABILITIES:
            return self.capabilities()
        number = path[len(SHARES):].strip("/")
        if method == "POST" and not number:
            return self.fields(head, script.create(form))
        if method == "PUT":
            return self.fields(head, script.change(number, form))
        if method == "DELETE":
            del script.shares[script.found(number)["id"]]
            return ""
        if method == "GET":
            found = [script.found(number)] if number else script.of_path(form.get("path", ""))
            return "".join(element("element", self.fields(head, share)) for share in found)
        raise Refused(405, "Method not allowed")

    def capabilities(self):
        settings = self.server.script.settings
        public = {"enabled": settings["public"].replace("0", "")}
        if public["enabled"]:
            public["password"] = {"enforced": settings["password"]}
            public["expire_date"] = {"enabled": "1" if settings["days"] else ""}
            if settings["days"]:
                public["expire_date"].update({"days": settings["days"], "enforced": settings["expiry"]})
        return leaves({"capabilities": {
            "files_sharing": {"api_enabled": "1", "public": public, "resharing": "1"},
            "password_policy": {"minLength": settings["shortest"], "enforceNumericCharacters": settings["digit"]}}})

    def fields(self, head, share):
        script = self.server.script
        host = (head.value(b"host") or b"").decode("latin-1")
        fields = {"id": share["id"], "share_type": "3", "uid_owner": os.environ["OB_USER"], "permissions": "1",
                  "path": share["path"], "item_type": "file", "token": share["token"],
                  "share_with": "***" if share["password"] else "", "password": "***" if share["password"] else "",
                  "expiration": f"{share['day']} 00:00:00" if share["day"] else "",
                  "url": script.settings["link"] or f"http://{host}/s/{share['token']}"}
        if script.is_on("labels"):
            fields["label"] = share["label"]
        return leaves(fields)

    def download(self, head, token):
        try:
            path = self.server.script.download(unquote(token), self.login(head)[1])
        except Refused as refused:
            self.send(refused.args[0], b"", "text/plain", ['WWW-Authenticate: Basic realm="link"'])
            return
        with open(path, "rb") as file:
            self.send(200, file.read(), "application/octet-stream")


def main():
    shares = Shares(sys.argv[4])
    control = relay.Server(int(sys.argv[2]), relay.Control, shares)
    threading.Thread(target=control.serve_forever, daemon=True).start()
    site = relay.Server(int(sys.argv[1]), Site, shares)
    site.upstream = int(sys.argv[3])
    site.serve_forever()


if __name__ == "__main__":
    main()
