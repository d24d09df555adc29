"""Real servers for tests of cloud accounts, on free loopback ports: Apache with mod_dav, sabre/dav under PHP's
own web server, and a relay that breaks what passes through it. None of them makes links: a small server of the
tests' own does, before a sabre/dav of its own.

    cloud_servers.py FOLDER [NAME]...     starts them by hand, prints their addresses, ends with Ctrl+C

Names: apache, tls (Apache with one port for each certificate), sabre, ocs (the open collaboration share interface),
relay (before those that were started).
Each server keeps to the folder that it is given and ends with the process that started it, however that ends.
User and password are those below.
"""
import base64
import hashlib
import os
import pwd
import random
import shutil
import signal
import socket
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
import certificates  # noqa: E402  (the folder isn't on the path of an isolated interpreter)

USER = "änn"
PASSWORD = "päss:word €"
MODULES = "/usr/lib/apache2/modules"
NEEDED = ("mpm_event", "authn_core", "authn_file", "authz_core", "authz_user", "auth_basic", "dav", "dav_fs",
          "dir", "alias", "setenvif", "reqtimeout")
NOBODY = "nobody"
START_LIMIT = 20  # seconds
# Below the ports that the system gives to outgoing connections.
PORTS = range(20000, 32000)


class NotStarted(Exception):
    """A server didn't answer in time."""


def free_port():
    while True:
        port = random.choice(PORTS)
        with socket.socket() as probe:
            try:
                probe.bind(("127.0.0.1", port))
                return port
            except OSError:
                continue


def answers(port):
    with socket.socket() as probe:
        probe.settimeout(1)
        return probe.connect_ex(("127.0.0.1", port)) == 0


def start(command, ports, log):
    """A process that ends with this one, once it listens on its ports. None when it ends instead, as when
    somebody else has taken a port meanwhile."""
    with open(log, "ab") as output:
        process = subprocess.Popen(["setpriv", "--pdeathsig", "KILL", *command], stdin=subprocess.DEVNULL,
                                   stdout=output, stderr=subprocess.STDOUT)
    limit = time.monotonic() + START_LIMIT
    while time.monotonic() < limit and process.poll() is None:
        if all(answers(port) for port in ports):
            return process
        time.sleep(0.01)
    process.kill()
    process.wait()
    return None


def started(make_command, count, log):
    """Tries other ports when those that were free are taken by the time the server wants them."""
    for _ in range(5):
        ports = [free_port() for _ in range(count)]
        process = start(make_command(ports), ports, log)
        if process:
            return process, ports
    with open(log, encoding="utf-8", errors="replace") as file:
        raise NotStarted(f"{os.path.basename(log)}: {file.read()[-2000:]}")


def own_folder(folder, name):
    path = os.path.join(folder, name)
    os.mkdir(path)
    return path


def as_nobody(folder):
    """Apache never serves as root: there it starts as another user, to whom its folder is given. (Were it to
    change its user itself, it would no longer end with its starter.) Returns the options of setpriv."""
    if os.geteuid() != 0:
        return []
    user = pwd.getpwnam(NOBODY)
    for path, _, names in os.walk(folder):
        for item in (path, *(os.path.join(path, name) for name in names)):
            os.chown(item, user.pw_uid, user.pw_gid)
    return [f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}", "--clear-groups"]


def write_users(path):
    digest = base64.b64encode(hashlib.sha1(PASSWORD.encode()).digest()).decode()
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"{USER}:{{SHA}}{digest}\n")


def apache_settings(folder, plain, tls):
    modules = [*NEEDED, *(["ssl", "socache_shmcb"] if tls else [])]
    lines = [f"LoadModule {name}_module {MODULES}/mod_{name}.so" for name in modules]
    lines += [f'ServerRoot "{folder}"', f'PidFile "{folder}/pid"', f'DefaultRuntimeDir "{folder}"',
              "ServerName 127.0.0.1", f'ErrorLog "{folder}/error.log"', "LogLevel warn", "Timeout 600",
              "RequestReadTimeout header=0 body=0", "LimitRequestBody 0", "KeepAlive On", "ThreadsPerChild 16",
              "ServerLimit 1", "MaxRequestWorkers 16", f'DavLockDB "{folder}/locks/db"',
              f'Alias /dav "{folder}/files"', f'DocumentRoot "{folder}/empty"',
              "<Location /dav>", "Dav On", "DirectoryIndex disabled", "AuthType Basic", 'AuthName "files"',
              f'AuthUserFile "{folder}/users"', "Require valid-user", "</Location>",
              f"Redirect 302 /tohttp http://localhost:{plain}/dav/"]
    lines += [f"Listen 127.0.0.1:{plain}"]
    for name, port in tls.items():
        lines += [f"Listen 127.0.0.1:{port}", f"<VirtualHost 127.0.0.1:{port}>", "SSLEngine on",
                  f'SSLCertificateFile "{folder}/tls/{name}.pem"', f'SSLCertificateKeyFile "{folder}/tls/{name}.key"',
                  "</VirtualHost>"]
    path = os.path.join(folder, "apache.conf")
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")
    return path


class CloudServers:
    """The servers of one run. `environment` names their addresses to the program under test."""

    def __init__(self, folder, names):
        self.folder = folder
        self.processes = []
        self.environment = {"OB_SERVER_USER": USER, "OB_SERVER_PASSWORD": PASSWORD}
        self.trusted_root = ""
        self.upstreams = {}
        try:
            os.makedirs(folder, exist_ok=True)
            os.chmod(folder, 0o711)  # one of the servers may be another user, whatever this one's umask
            if "apache" in names or "tls" in names:
                self.start_apache("tls" in names)
            if "sabre" in names:
                self.start_sabre()
            if "ocs" in names:
                self.start_shares()
            if "relay" in names:
                self.start_relay()
        except BaseException:
            self.end()
            raise

    def start_apache(self, with_tls):
        folder = own_folder(self.folder, "apache")
        for name in ("files", "locks", "empty", "tls"):
            own_folder(folder, name)
        write_users(os.path.join(folder, "users"))
        kinds = list(certificates.SERVERS) if with_tls else []
        if with_tls:
            certificates.make(os.path.join(folder, "tls"))
            self.trusted_root = certificates.trusted_root(os.path.join(folder, "tls"))

        def command(ports):
            settings = apache_settings(folder, ports[0], dict(zip(kinds, ports[1:])))
            return [*as_nobody(folder), "/usr/sbin/apache2", "-X", "-f", settings]

        process, ports = started(command, 1 + len(kinds), os.path.join(folder, "output.log"))
        self.processes.append(process)
        self.note("apache", ports[0], os.path.join(folder, "files"))
        for name, port in zip(kinds, ports[1:]):
            self.environment[f"OB_TLS_{name.upper()}_URL"] = f"https://localhost:{port}/dav/"

    def start_sabre(self):
        port, files = self.sabre("sabre", "/dav/")
        self.note("sabre", port, files)

    def sabre(self, name, root):
        """One that has its files below this path; its port and its folder of files."""
        folder = own_folder(self.folder, name)
        files = own_folder(folder, "files")

        def command(ports):
            return ["env", f"OB_FILES={files}", f"OB_USER={USER}", f"OB_PASSWORD={PASSWORD}", f"OB_ROOT={root}", "php",
                    "-d", "display_errors=0", "-d", "memory_limit=-1", "-d", "post_max_size=0", "-S",
                    f"127.0.0.1:{ports[0]}", os.path.join(HERE, "sabre.php")]

        process, ports = started(command, 1, os.path.join(folder, "output.log"))
        self.processes.append(process)
        return ports[0], files

    def start_shares(self):
        root = "/cloud/remote.php/webdav/"
        upstream, files = self.sabre("ocs", root)

        def command(ports):
            return ["env", f"OB_USER={USER}", f"OB_PASSWORD={PASSWORD}", sys.executable, "-IS",
                    os.path.join(HERE, "shares.py"), str(ports[0]), str(ports[1]), str(upstream), files]

        process, ports = started(command, 2, os.path.join(self.folder, "ocs", "shares.log"))
        self.processes.append(process)
        self.note("ocs", ports[0], files, root)
        self.environment["OB_OCS_CONTROL"] = str(ports[1])
        print("cloud_servers: no packaged server has the share interface; the one that makes links here is the "
              "tests' own", file=sys.stderr, flush=True)

    def start_relay(self):
        folder = own_folder(self.folder, "relay")

        def command(ports):
            upstreams = [f"{name}={port}" for name, port in self.upstreams.items()]
            return [sys.executable, "-IS", os.path.join(HERE, "relay.py"), str(ports[0]), str(ports[1]), *upstreams]

        process, ports = started(command, 2, os.path.join(folder, "output.log"))
        self.processes.append(process)
        self.environment["OB_RELAY_URL"] = f"http://127.0.0.1:{ports[0]}/dav/"
        self.environment["OB_RELAY_CONTROL"] = str(ports[1])

    def note(self, name, port, files, root="/dav/"):
        self.upstreams[name] = port
        self.environment[f"OB_{name.upper()}_URL"] = f"http://127.0.0.1:{port}{root}"
        self.environment[f"OB_{name.upper()}_FILES"] = "Z:" + files.replace("/", "\\")

    def end(self):
        for process in self.processes:
            process.kill()
        for process in self.processes:
            process.wait()
        self.processes = []


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    folder = os.path.abspath(sys.argv[1])
    shutil.rmtree(os.path.join(folder, "servers"), ignore_errors=True)
    servers = CloudServers(os.path.join(folder, "servers"), sys.argv[2:] or ["apache", "tls", "sabre", "ocs", "relay"])
    try:
        for name, value in servers.environment.items():
            print(f"{name}={value}")
        sys.stdout.flush()
        signal.pause()
    except KeyboardInterrupt:
        pass
    finally:
        servers.end()


if __name__ == "__main__":
    main()
