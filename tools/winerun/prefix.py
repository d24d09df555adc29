"""A Wine prefix for one run: a registry and folders of its own, and hard links to the template's files."""
import os
import time
from fcntl import LOCK_EX, LOCK_NB, flock

from winerun.files import copy_file, copy_tree, link_or_copy, link_tree, remove_tree, same_names
from winerun.processes import end_prefix

SCRATCH = "webvellant-wine-"
JUST_MADE = 60  # seconds
SCREEN_SIZE = "1600x1200"
# The folder of the links to the template's files. Hundreds of links are most of a prefix, and no run changes them.
WINDOWS = "drive_c/windows"
# Such folders that runs have left, in the template, so that they go when it goes.
SPARE = "spare"
SPARE_LIMIT = 8
# The server of the shell's file dialog, tests/shelldialog: Wine's dialog with what it lacks.
DIALOG_SERVER = "tests/shelldialog/shell_dialog.dll"
DIALOG_CLASS = "{DC1C5A9C-E88A-4DDE-A5A1-60F82A20AEF7}"


def scratch_folder(template):
    """A new folder on the template's file system, as a hard link can't leave it."""
    temp = os.environ.get("TMPDIR") or "/tmp"
    if os.stat(temp).st_dev != os.stat(template).st_dev:
        temp = os.path.join(os.path.dirname(template), "runs")
        os.makedirs(temp, exist_ok=True)
    sweep(temp)
    while True:
        scratch = os.path.join(temp, SCRATCH + os.urandom(6).hex())
        try:
            os.mkdir(scratch, 0o700)
            return scratch
        except FileExistsError:
            continue


def lock_scratch(scratch):
    """Marks a scratch folder as in use for as long as this process lives."""
    lock = open(os.path.join(scratch, "lock"), "w", encoding="ascii")
    flock(lock, LOCK_EX)
    return lock


def sweep(temp):
    """Removes the folders of runs that were killed: no process has their lock."""
    for name in os.listdir(temp):
        scratch = os.path.join(temp, name)
        if not name.startswith(SCRATCH):
            continue
        try:
            # A run that is just starting has its folder before it has its lock.
            if time.time() - os.stat(scratch).st_mtime < JUST_MADE:
                continue
            with open(os.path.join(scratch, "lock"), encoding="ascii") as lock:
                flock(lock, LOCK_EX | LOCK_NB)
                end_prefix(os.path.join(scratch, "prefix"))
                remove_tree(scratch)
        except OSError:
            continue  # in use, just being made, or swept by another run


def make_prefix(scratch, template, options):
    """The template's files stay shared: nothing writes into drive_c/windows. The registry is the
    run's own, as the server rewrites it."""
    prefix = os.path.join(scratch, "prefix")
    os.makedirs(os.path.join(prefix, "drive_c"))
    for name in os.listdir(template):
        if name.endswith(".reg") or name == ".update-timestamp":
            copy_file(os.path.join(template, name), os.path.join(prefix, name))
    link_tree(os.path.join(template, "dosdevices"), os.path.join(prefix, "dosdevices"))
    for name in os.listdir(os.path.join(template, "drive_c")):
        if name != os.path.basename(WINDOWS):
            link_tree(os.path.join(template, "drive_c", name), os.path.join(prefix, "drive_c", name))
    take_windows(template, prefix)
    if options.services:
        boot_program(prefix)
    with open(os.path.join(prefix, "user.reg"), "a", encoding="utf-8") as file:
        file.write(user_registry(options))
    enter_dialog_server(prefix, options.command[0])
    return prefix


def take_windows(template, prefix):
    """A folder that another run has left as it was, or a new one."""
    spare = os.path.join(template, SPARE)
    for name in os.listdir(spare) if os.path.isdir(spare) else ():
        try:
            os.rename(os.path.join(spare, name), os.path.join(prefix, WINDOWS))
            return
        except OSError:
            continue  # another run has taken it
    link_tree(os.path.join(template, WINDOWS), os.path.join(prefix, WINDOWS))


def give_windows(template, prefix):
    """Leaves the folder to another run if it has the names that it had. What its files contain is the
    template's in any case."""
    spare = os.path.join(template, SPARE)
    try:
        if not same_names(os.path.join(template, WINDOWS), os.path.join(prefix, WINDOWS)):
            return
        os.makedirs(spare, exist_ok=True)
        if len(os.listdir(spare)) < SPARE_LIMIT:
            os.rename(os.path.join(prefix, WINDOWS), os.path.join(spare, os.urandom(6).hex()))
    except OSError:
        pass  # the run has removed it, or the template is another user's


def boot_program(prefix):
    """Puts the program back that starts the services. Without services a file without a program is in its
    place: what the program enters into the registry is in the template's."""
    place = os.path.join(prefix, WINDOWS, "system32", "wineboot.exe")
    os.remove(place)
    os.link(os.path.join(prefix, "drive_c", "ob", "wineboot.exe"), place)


def built_beside(program, path):
    """A file of the build that the program belongs to; None when it isn't built."""
    folder = os.path.dirname(os.path.abspath(program))
    while not os.path.exists(os.path.join(folder, path)):
        if folder == os.path.dirname(folder):
            return None
        folder = os.path.dirname(folder)
    return os.path.join(folder, path)


def enter_dialog_server(prefix, program):
    """For every process of the prefix. Programs that show the dialog depend on the module in the build."""
    server = built_beside(program, DIALOG_SERVER)
    if not server:
        return
    name = os.path.basename(server)
    copy_file(server, os.path.join(prefix, "drive_c", "ob", name))
    key = f"Software\\Classes\\CLSID\\{DIALOG_CLASS}\\InprocServer32".replace("\\", "\\\\")
    with open(os.path.join(prefix, "system.reg"), "a", encoding="utf-8") as file:
        file.write(f'\n[{key}]\n@="C:\\\\ob\\\\{name}"\n"ThreadingModel"="Apartment"\n')


def user_registry(options):
    """Sections in the registry file's own form; a later one adds to an earlier one."""
    text = "\n[Software\\\\Wine\\\\Drivers]\n"
    if options.display:
        size = SCREEN_SIZE if options.screen else "1280x1024"
        text += '"Graphics"="x11"\n'
        text += '\n[Software\\\\Wine\\\\Explorer]\n"Desktop"="Default"\n'
        text += f'\n[Software\\\\Wine\\\\Explorer\\\\Desktops]\n"Default"="{size}"\n'
    else:
        text += '"Graphics"="null"\n'
    if options.screen or options.pictures:
        # Greyscale smoothing, as people have it: the bare default draws letters without.
        text += '\n[Control Panel\\\\Desktop]\n"FontSmoothing"="2"\n"FontSmoothingType"=dword:00000001\n'
    if options.dpi:
        text += f'\n[Control Panel\\\\Desktop]\n"LogPixels"=dword:{options.dpi:08x}\n'
    return text


def copy_into(app, source, name):
    target = os.path.normpath(os.path.join(app, name))
    if not target.startswith(app + os.sep):
        raise ValueError(f"{name} leaves the program's folder")
    os.makedirs(os.path.dirname(target), exist_ok=True)
    copy_tree(source, target)


def stage(prefix, options):
    """A program that runs can't be written to, so its file is shared; a run may change what is staged."""
    app = os.path.join(prefix, "drive_c", "app")
    os.makedirs(app)
    program = options.command[0]
    link_or_copy(program, os.path.join(app, os.path.basename(program)))
    for item in options.stage:
        name, equals, source = item.partition("=")
        if not equals:
            name, source = os.path.basename(item.rstrip("/")), item
        copy_into(app, source, name)
    for item in options.install:
        name, _, source = item.partition("=")
        copy_into(os.path.join(prefix, "drive_c", "Program Files"), source, name)
    return app
