"""What the parts of the benchmarks share: the build's files, runs under Wine, medians, tables."""
import os
import statistics
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BUILD = os.path.abspath(os.environ.get("OB_BUILD") or os.path.join(ROOT, "build", "mingw"))
WINE_RUN = os.path.join(ROOT, "tools", "wine-run")


def say(text):
    print(f"bench: {text}", file=sys.stderr, flush=True)


def built(path):
    """A file of the build; ends the run when it isn't there."""
    full = os.path.join(BUILD, path)
    if not os.path.exists(full):
        sys.exit(f"bench: {full} isn't built")
    return full


def undisturbed(cores):
    """What to put before a command so that other work of the machine stays out of what it measures,
    and the words for it: on `cores` only and, where that's allowed, before every ordinary process."""
    prefix, words = ["taskset", "-c", cores], f"on core {cores}" if cores.isdigit() else f"on cores {cores}"
    realtime = ["chrt", "--rr", "1"]
    if subprocess.run([*realtime, "true"], stderr=subprocess.DEVNULL).returncode == 0:
        return prefix + realtime, words + " before all other work"
    return prefix, words + " beside other work"


def run_program(program, *arguments, stage=(), timeout=600, prefix=(), options=()):
    """Runs a bench program in a fresh prefix, with what is staged beside it and with further options of wine-run. It prints one line a
    series: a name, a tab, and numbers with blanks between. Gives name -> numbers."""
    command = [*prefix, WINE_RUN, "--timeout", str(timeout), *options]
    for path in stage:
        command += ["--stage", path]
    result = subprocess.run([*command, "--", program, *arguments], stdout=subprocess.PIPE, text=True)
    if result.returncode != 0:
        print(result.stdout, file=sys.stderr)
        sys.exit(f"bench: {os.path.basename(program)} ended with {result.returncode}")
    series = {}
    for line in result.stdout.splitlines():
        name, tab, numbers = line.partition("\t")
        if tab:
            series[name] = [float(number) for number in numbers.split()]
    return series


median = statistics.median


def spread(values):
    """The middle half of the samples: how far a median can be trusted."""
    quarters = statistics.quantiles(values, n=4)
    return quarters[0], quarters[2]


def verdict(value, goal):
    return "met" if value <= goal else "MISSED"


def table(head, rows):
    """Markdown; the first column has words, the others numbers."""
    lines = ["| " + " | ".join(head) + " |", "|---" + "|---:" * (len(head) - 1) + "|"]
    lines += ["| " + " | ".join(row) + " |" for row in rows]
    return "\n".join(lines)


def machine():
    """The line below a table that names what it was measured on."""
    wine = subprocess.run(["/usr/lib/wine/wine64", "--version"], stdout=subprocess.PIPE, text=True,
                          env=dict(os.environ, WINEDEBUG="-all")).stdout.split()
    one, five, _ = os.getloadavg()
    version = wine[0].replace("wine-", "Wine ") if wine else "Wine"
    return (f"{os.cpu_count()} cores, {version}, null graphics driver; load of the machine around the "
            f"end of the run: {one:.1f}, {five:.1f} (1 and 5 minutes).")
