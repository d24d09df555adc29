"""Starts the processes of a prefix and ends them."""
import os
import time

# The module "signal" loads ten others for names of its numbers.
import _signal as signal


class TimeIsUp(Exception):
    pass


def time_is_up(_number, _frame):
    raise TimeIsUp


def run(command, folder, env, seconds):
    """Runs a process to its end and returns its status; None when the time was up first. Raises what a
    handler of another signal raises."""
    os.chdir(folder)
    process = os.posix_spawn(command[0], command, env, setsigdef=(signal.SIGPIPE, signal.SIGXFSZ),
                             file_actions=((os.POSIX_SPAWN_OPEN, 0, os.devnull, os.O_RDONLY, 0),))
    signal.signal(signal.SIGALRM, time_is_up)
    try:
        signal.setitimer(signal.ITIMER_REAL, max(0.1, seconds))
        try:
            return os.waitstatus_to_exitcode(os.waitpid(process, 0)[1])
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
    except TimeIsUp:
        return None


def all_processes():
    return {name for name in os.listdir("/proc") if name.isdigit()}


def processes_of(prefix, others):
    """The server and every process of this prefix: they carry its path in their environment. Those that are
    known to be others aren't looked at."""
    mark = b"WINEPREFIX=" + os.fsencode(prefix)
    for name in all_processes() - others:
        try:
            with open(f"/proc/{name}/environ", "rb", buffering=0) as file:
                if mark in file.readall().split(b"\0"):
                    yield int(name)
        except OSError:
            continue  # it ended meanwhile, or it is another user's


def states_of(prefix, others):
    """A line for each process of the prefix: its number, its name and the states of its threads. D is a thread that
    waits for the disk and can't be ended before that."""
    for pid in processes_of(prefix, others):
        try:
            with open(f"/proc/{pid}/comm", encoding="utf-8", errors="replace") as file:
                name = file.read().strip()
            states = [state_of(f"/proc/{pid}/task/{thread}") for thread in os.listdir(f"/proc/{pid}/task")]
        except OSError:
            continue  # it ended meanwhile
        yield f"{pid} {name}: {''.join(sorted(states))}"


def state_of(thread):
    """The letter after the name, which is in brackets and may contain any."""
    with open(f"{thread}/stat", encoding="utf-8", errors="replace") as file:
        return file.read().rpartition(") ")[2][:1]


def end_prefix(prefix, others=frozenset()):
    """Ends what still runs, and returns what can't be ended within ten seconds, as states_of does. The orderly way
    waits half a second for the registry to be written, and the prefix is thrown away; the server's end alone would
    leave its services running."""
    limit = time.monotonic() + 10
    while left := list(processes_of(prefix, others)):
        if time.monotonic() >= limit:
            break
        for pid in left:
            try:
                os.kill(pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
        time.sleep(0.002)
    remove_server_folder(prefix)
    return list(states_of(prefix, others)) if left else []


def remove_server_folder(prefix):
    """This distribution's server notes the name of its folder in /tmp in the prefix."""
    try:
        with open(os.path.join(prefix, "wineserver"), encoding="ascii") as file:
            name = file.read().strip()
    except OSError:
        return
    if name.startswith("wine-") and "/" not in name:
        from winerun.files import remove_tree
        remove_tree(os.path.join("/tmp", name))
