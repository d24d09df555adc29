"""Generated files to zip, made from a seed so that everybody measures the same ones. Made once and kept."""
import gzip
import os
import random
import shutil
import struct

MEBIBYTE = 1024 * 1024


class Writer:
    """Texts and records of a seed, with the repetitions that real files have."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        syllables = [a + b for a in "b c d f g h l m n p r s t v w st tr ch".split() for b in "a e i o u ai en or".split()]
        self.words = ["".join(self.random.choices(syllables, k=self.random.randint(1, 4))) for _ in range(12000)]
        # The first words are used most, as in a language.
        self.weights = [1 / (rank + 3) for rank in range(len(self.words))]
        self.phrases = [" ".join(self.pick(self.random.randint(2, 6))) for _ in range(3000)]

    def pick(self, count):
        return self.random.choices(self.words, weights=self.weights, k=count)

    def prose(self, size):
        parts, length = [], 0
        while length < size:
            sentence = " ".join(self.pick(self.random.randint(4, 14)) + self.random.choices(self.phrases, k=2))
            parts.append(sentence.capitalize() + self.random.choice([". ", ".\n", "! ", ", and then "]))
            length += len(parts[-1])
        return "".join(parts).encode()[:size]

    def log(self, size):
        lines, length, clock = [], 0, 1_600_000_000
        while length < size:
            clock += self.random.randint(0, 90)
            lines.append(f"{clock} [{self.random.choice(['INFO', 'WARN', 'DEBUG'])}] worker-{self.random.randint(1, 16)} "
                         f"{self.random.choice(self.phrases)} id={self.random.getrandbits(32):08x} took {self.random.randint(1, 900)} ms\n")
            length += len(lines[-1])
        return "".join(lines).encode()[:size]

    def table(self, size):
        lines, length = ["id;name;amount;date;note\n"], 0
        while length < size:
            lines.append(f"{len(lines)};{self.random.choice(self.words)};{self.random.randint(0, 99999) / 100:.2f};"
                         f"20{self.random.randint(10, 25)}-{self.random.randint(1, 12):02}-{self.random.randint(1, 28):02};"
                         f"{self.random.choice(self.phrases)}\n")
            length += len(lines[-1])
        return "".join(lines).encode()[:size]

    def records(self, size):
        """Binary: counters, floats of a slow walk, flags, short names."""
        parts, length, value = [], 0, 0.0
        while length < size:
            value += self.random.gauss(0, 1)
            parts.append(struct.pack("<IfHBB12s", len(parts), value, self.random.randint(0, 300), self.random.randint(0, 3), 0,
                                     self.random.choice(self.words).encode()[:12]))
            length += len(parts[-1])
        return b"".join(parts)[:size]

    def packed(self, size):
        """What pictures and films look like to a compressor."""
        return b"\x1f\x8b" + self.random.randbytes(size - 2)


def make_mixed(writer, add):
    for number in range(12):
        add(f"letter{number}.txt", writer.prose(300_000 + 90_000 * number))
        add(f"picture{number}.jpg", writer.packed(700_000 + 50_000 * number))
    for number in range(5):
        add(f"log{number}.log", writer.log(900_000))
        add(f"table{number}.csv", writer.table(1_200_000))
        add(f"data{number}.bin", writer.records(1_500_000))
    for number in range(120):
        add(f"note{number}.txt", writer.prose(writer.random.randint(200, 20_000)))


def make_text(writer, add):
    add("text.txt", writer.prose(40 * MEBIBYTE))


def make_compressed(writer, add):
    for number in range(8):
        add(f"film{number}.mp4", writer.packed(3 * MEBIBYTE + number))
    add("archive.gz", gzip.compress(writer.prose(12 * MEBIBYTE), 6, mtime=0))


def make_small(writer, add):
    for number in range(2000):
        kind = writer.random.choice([writer.prose, writer.prose, writer.table, writer.log, writer.records])
        add(f"small{number}.dat", kind(int(writer.random.lognormvariate(8.3, 0.9)) + 50))


SETS = {
    "mixed folder": make_mixed,
    "one big text": make_text,
    "already compressed": make_compressed,
    "2,000 small files": make_small,
}
VERSION = "1"  # counts up when what is made changes


def make(folder):
    """name of the set -> its folder."""
    folders = {name: os.path.join(folder, VERSION, name.replace(",", "").replace(" ", "-")) for name in SETS}
    for seed, (name, fill) in enumerate(SETS.items()):
        target = folders[name]
        if os.path.isdir(target):
            continue
        partial = target + ".partial"
        shutil.rmtree(partial, ignore_errors=True)
        os.makedirs(partial)

        def add(file, content):
            with open(os.path.join(partial, file), "wb") as out:
                out.write(content)

        fill(Writer(seed), add)
        os.rename(partial, target)
    return folders
