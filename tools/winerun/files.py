"""Copies, links and removes trees. The standard library's shutil takes as long to load as a run does all this."""
import os


def copy_file(source, target):
    """Contents, mode and times."""
    with open(source, "rb", buffering=0) as reader, open(target, "wb", buffering=0) as writer:
        of = os.fstat(reader.fileno())
        left = of.st_size
        while left > 0 and (sent := os.sendfile(writer.fileno(), reader.fileno(), None, left)):
            left -= sent
        os.fchmod(writer.fileno(), of.st_mode & 0o7777)
        os.utime(writer.fileno(), ns=(of.st_atime_ns, of.st_mtime_ns))


def link_or_copy(source, target):
    """For a file that nobody can change in place, such as a program that runs."""
    try:
        os.link(os.path.realpath(source), target)
    except OSError:  # another file system
        copy_file(source, target)


def copy_tree(source, target):
    """A file or a folder, into a folder that is there as well."""
    if not os.path.isdir(source):
        copy_file(source, target)
        return
    os.makedirs(target, exist_ok=True)
    for name in os.listdir(source):
        copy_tree(os.path.join(source, name), os.path.join(target, name))
    keep_times(source, target)


def link_tree(source, target):
    """Folders of its own with hard links to the source's files. Folders have the source's times at the end."""
    os.mkdir(target)
    with os.scandir(source) as entries:
        for entry in entries:
            path = f"{target}/{entry.name}"
            if entry.is_symlink():
                os.symlink(os.readlink(entry.path), path)
            elif entry.is_dir():
                link_tree(entry.path, path)
            else:
                os.link(entry.path, path)
    keep_times(source, target)


def keep_times(source, target):
    of = os.stat(source)
    os.utime(target, ns=(of.st_atime_ns, of.st_mtime_ns))


def same_names(source, target):
    """Whether every folder of a tree that link_tree made has the entries that it was made with: the system
    sets a folder's time when an entry is added, removed or renamed."""
    if os.stat(source).st_mtime_ns != os.lstat(target).st_mtime_ns:
        return False
    with os.scandir(target) as entries:
        return all(same_names(f"{source}/{entry.name}", entry.path)
                   for entry in entries if entry.is_dir(follow_symlinks=False))


def remove_tree(path):
    """Removes what can be removed, as another process may still write there."""
    try:
        with os.scandir(path) as entries:
            for entry in entries:
                if entry.is_dir(follow_symlinks=False):
                    remove_tree(entry.path)
                else:
                    os.unlink(entry.path)
        os.rmdir(path)
    except OSError:
        # Paths that are too long to be named as a whole.
        import shutil
        shutil.rmtree(path, ignore_errors=True)
