#!/usr/bin/env python3
"""The test servers themselves: each answers, the relay breaks what it is asked to break, and all of them end
with the process that started them, also when it is killed."""
import base64
import http.client
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time
import unittest
from urllib.parse import urlencode, urlsplit

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
import cloud_servers  # noqa: E402

LIMIT = 20  # seconds
LOGIN = {"Authorization": "Basic " + base64.b64encode(
    f"{cloud_servers.USER}:{cloud_servers.PASSWORD}".encode()).decode()}


def ask(url, method, name="", body=None, headers=None, login=LOGIN):
    """Status and body; None when the connection ends without a whole reply."""
    parts = urlsplit(url)
    connection = http.client.HTTPConnection(parts.hostname, parts.port, timeout=LIMIT)
    try:
        connection.request(method, parts.path + name, body, {**login, **(headers or {})})
        reply = connection.getresponse()
        return reply.status, reply.read()
    except (http.client.HTTPException, ConnectionError):
        return None
    finally:
        connection.close()


class CloudServersTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        os.chmod(cls.folder.name, 0o711)
        cls.servers = cloud_servers.CloudServers(os.path.join(cls.folder.name, "s"), ["apache", "sabre", "ocs", "relay"])
        cls.urls = cls.servers.environment

    @classmethod
    def tearDownClass(cls):
        cls.servers.end()
        cls.folder.cleanup()

    def control(self, line, port="OB_RELAY_CONTROL"):
        with socket.create_connection(("127.0.0.1", int(self.urls[port])), LIMIT) as connection:
            connection.sendall(line.encode() + b"\n")
            return connection.makefile(encoding="utf-8").read().splitlines()

    def stored(self, server, name):
        path = os.path.join(self.folder.name, "s", server, "files", name)
        if not os.path.exists(path):
            return None
        with open(path, "rb") as file:
            return file.read()

    def test_each_server_knows_its_user_and_stores_files(self):
        for server in ("apache", "sabre"):
            url = self.urls[f"OB_{server.upper()}_URL"]
            self.assertEqual(ask(url, "PROPFIND", login={})[0], 401)
            self.assertEqual(ask(url, "PUT", "a", b"12345")[0], 201)
            self.assertEqual(self.stored(server, "a"), b"12345")

    def test_the_relay_passes_on_and_counts(self):
        for server in ("apache", "sabre"):
            self.control(f"begin {server}")
            self.assertEqual(ask(self.urls["OB_RELAY_URL"], "PUT", "b", b"123")[0], 201)
            self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "b"), (200, b"123"))
            self.assertEqual(self.control("requests"), ["PUT /dav/b 3 201", "GET /dav/b 0 200"])

    def test_the_relay_keeps_a_reply_back(self):
        self.control("begin apache")
        self.control("on PUT 0 1 swallow")
        self.assertIsNone(ask(self.urls["OB_RELAY_URL"], "PUT", "c", b"123"))
        self.assertEqual(self.stored("apache", "c"), b"123")

    def test_the_relay_cuts_bodies(self):
        self.control("begin apache")
        self.control("on PUT 0 1 cutbody 100")
        self.control("on PUT 0 1 keepbody 200")
        self.control("on GET 0 1 cutreply 50")
        self.assertIsNone(ask(self.urls["OB_RELAY_URL"], "PUT", "d", b"x" * 1000))
        self.assertIsNone(self.stored("apache", "d"))
        self.assertIsNone(ask(self.urls["OB_RELAY_URL"], "PUT", "d", b"x" * 1000))
        self.assertEqual(self.stored("apache", "d"), b"x" * 200)
        self.assertIsNone(ask(self.urls["OB_RELAY_URL"], "GET", "d"))

    def test_the_relay_replies_itself_after_others_have_passed(self):
        self.control("begin apache")
        self.control("on GET 1 1 status 503|Retry-After: 7|=later")
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "none")[0], 404)
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "none"), (503, b"later"))
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "none")[0], 404)

    def test_what_the_relay_drips_ends_by_itself_or_when_it_is_released(self):
        self.control("begin apache")
        self.control("on GET 0 1 dripchunks 3")
        self.control("on GET 0 2 drip 3")
        self.control("on GET 0 1 driphead 3")
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET"), (200, b"xxx"))
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET"), (200, b"xxx"))
        with socket.create_connection(("127.0.0.1", urlsplit(self.urls["OB_RELAY_URL"]).port), LIMIT) as late:
            late.sendall(b"GET /dav/ HTTP/1.1\r\n\r\n")
            self.assertTrue(late.recv(1))
            self.control("release")
            while late.recv(100):
                pass
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET"), (200, b""))
        self.assertEqual(self.control("waiting"), ["0"])

    def test_the_relay_stores_holes_in_the_servers_file(self):
        self.control("begin apache")
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "PUT", "h%20ole", b"x")[0], 201)
        folder = os.path.join(self.folder.name, "s", "apache", "files")
        self.control(f"on PUT 0 1 holes {folder}")
        body = bytes(1_000_000) + b"y" * 3
        part = {"Content-Range": "bytes 1-1000003/1000004"}
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "PUT", "h%20ole", body, part)[0], 204)
        self.assertEqual(self.stored("apache", "h ole"), b"x" + body)
        self.assertEqual(self.control("nonzero"), ["3"])

    def test_the_relay_lets_the_server_act_late(self):
        self.control("begin apache")
        self.control("on PUT 0 1 later 2 504")
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "PUT", "late", b"x" * 100_000)[0], 504)
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "late")[0], 404)
        self.assertEqual(ask(self.urls["OB_RELAY_URL"], "GET", "late"), (200, b"x" * 100_000))

    def test_the_relay_keeps_nothing_of_an_earlier_script(self):
        self.control("begin apache")
        self.control("on GET 0 1 hold")
        with socket.create_connection(("127.0.0.1", urlsplit(self.urls["OB_RELAY_URL"]).port), LIMIT) as old:
            old.sendall(b"GET /dav/ HTTP/1.1\r\n\r\n")
            limit = time.monotonic() + LIMIT
            while self.control("waiting") != ["1"]:
                self.assertLess(time.monotonic(), limit)
            self.control("begin apache")
            self.control("on PUT 0 1 hold")
            self.assertTrue(old.recv(100))
            self.assertEqual(self.control("waiting"), ["0"])

    def share(self, **fields):
        """Status and reply of a wish for a link."""
        url = self.urls["OB_OCS_URL"].replace("remote.php/webdav/", "ocs/v2.php/apps/files_sharing/api/v1/shares")
        return ask(url, "POST", "", urlencode({"shareType": "3", **fields}), {"OCS-APIRequest": "true"})

    def test_links_download_the_file_with_their_password_until_they_end(self):
        self.control("begin", "OB_OCS_CONTROL")
        self.assertEqual(ask(self.urls["OB_OCS_URL"], "PUT", "e", b"123")[0], 201)
        status, reply = self.share(path="/e", password="word", expireDate="2999-01-01")
        self.assertEqual(status, 200)
        link = re.search(b"<url>(.*)</url>", reply)[1].decode()
        known = {"Authorization": "Basic " + base64.b64encode(b"x:word").decode()}
        self.assertEqual(ask(link, "GET", login=known), (200, b"123"))
        self.assertEqual(ask(link, "GET", login={})[0], 401)
        self.assertEqual(ask(link + "x", "GET", login=known)[0], 404)
        self.control("set clock 400000", "OB_OCS_CONTROL")
        self.assertEqual(ask(link, "GET", login=known)[0], 404)

    def test_nothing_outside_of_its_folder_is_shared(self):
        self.control("begin", "OB_OCS_CONTROL")
        for path in ("/../shares.log", "/none", "/", "", "/../../../etc/passwd"):
            self.assertEqual(self.share(path=path)[0], 404, path)
        self.assertEqual(self.control("shares", "OB_OCS_CONTROL"), [""])

    def test_all_end_when_their_starter_is_killed(self):
        with tempfile.TemporaryDirectory() as folder:
            os.chmod(folder, 0o711)
            starter = subprocess.Popen([sys.executable, "-IS", os.path.join(HERE, "cloud_servers.py"), folder,
                                        "apache", "sabre", "ocs", "relay"], stdout=subprocess.PIPE, text=True)
            ports = []
            for line in starter.stdout:
                if "_URL=" in line:
                    ports.append(urlsplit(line.partition("=")[2]).port)
                if len(ports) == 4:
                    break
            self.assertTrue(all(cloud_servers.answers(port) for port in ports))
            starter.send_signal(signal.SIGKILL)
            starter.wait()
            starter.stdout.close()
            limit = time.monotonic() + LIMIT
            while any(cloud_servers.answers(port) for port in ports) and time.monotonic() < limit:
                time.sleep(0.01)
            self.assertFalse(any(cloud_servers.answers(port) for port in ports))


if __name__ == "__main__":
    unittest.main()
