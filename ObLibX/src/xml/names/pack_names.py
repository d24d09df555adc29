#!/usr/bin/env python3
"""Packs the readable name lists beside this file into the bucket tables of NameTables.h.

    pack_names.py OUT.cpp

Each table is an array of bucket pointers. Each bucket is one text in which each row follows the
one before directly. The bucket of a name is the sum of its units modulo the number of buckets. Rows keep
the order of the lists, so the same lists always give the same source.
"""

import pathlib
import re
import sys

CHARSET_BUCKETS = 155
ENTITY_BUCKETS = 130
MOST_NAME_LENGTH = {"charset": 99, "entity": 8}


class ListError(Exception):
    pass


def lines_of(path):
    for number, line in enumerate(path.read_text(encoding="ascii").splitlines(), 1):
        if line and not line.startswith("#"):
            yield f"{path.name}:{number}", line


def checked_name(where, kind, name):
    if name != name.lower() or not 0 < len(name) <= MOST_NAME_LENGTH[kind] or name[0].isdigit():
        raise ListError(f"{where}: {name!r} can't be a name of this table")
    return name


def bucket_of(text, count):
    return sum(map(ord, text)) % count


def charset_rows(path):
    """Yields (bucket, row): two digits of length, five of the page, the name."""
    for where, line in lines_of(path):
        page, _, names = line.partition(": ")
        for quoted, plain in re.findall(r'"([^"]*)"|([^ "]+)', names):
            name, _, misplaced = plain.partition("@") if plain else (quoted, "", "")
            checked_name(where, "charset", name)
            bucket = bucket_of(misplaced or name, CHARSET_BUCKETS)
            yield bucket, f"{len(name):02}{int(page):05}{name}"


def entity_rows(path):
    """Yields (bucket, row): '0' plus the length, four digits of the code point, the name."""
    for where, line in lines_of(path):
        name, *values = line.split()
        checked_name(where, "entity", name)
        if not 1 <= len(values) <= 2:
            raise ListError(f"{where}: one value or two")
        for value in values:
            yield bucket_of(name, ENTITY_BUCKETS), f"{len(name)}{int(value):04}{name}"


def table(name, count_name, count, rows):
    buckets = [[] for _ in range(count)]
    for bucket, row in rows:
        buckets[bucket].append(row)
    texts = "\n".join(f'    L"{"".join(rows)}",' for rows in buckets)
    return f"const wchar_t* const {name}[{count_name}] = {{\n{texts}\n}};\n"


def main():
    here = pathlib.Path(__file__).resolve().parent
    source = "\n".join([
        "// Made by pack_names.py from charsets.txt and entities.txt.",
        '#include "ObLibX/src/xml/names/NameTables.h"',
        "",
        "namespace ObLibX {",
        "",
        f"static_assert(kCharsetBucketCount == {CHARSET_BUCKETS});",
        f"static_assert(kEntityBucketCount == {ENTITY_BUCKETS});",
        "",
        table("kCharsetBuckets", "kCharsetBucketCount", CHARSET_BUCKETS,
              charset_rows(here / "charsets.txt")),
        table("kEntityBuckets", "kEntityBucketCount", ENTITY_BUCKETS,
              entity_rows(here / "entities.txt")),
        "} // namespace ObLibX",
        "",
    ])
    pathlib.Path(sys.argv[1]).write_text(source, encoding="ascii")


if __name__ == "__main__":
    try:
        main()
    except ListError as error:
        sys.exit(f"pack_names.py: {error}")
