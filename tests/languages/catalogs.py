"""The catalogs of po/ as they stand in their files, and as an independent reader sees them compiled."""

import ast
import gettext
import io
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
TEMPLATE = ROOT / "po" / "codebook.pot"
CATALOGS = sorted((ROOT / "po").glob("*.po"))


class Entry:
    def __init__(self, places, flags, text, translation):
        self.places = places
        self.flags = flags
        self.text = text
        self.translation = translation


def read_entries(path):
    """The entries of a catalog without its header. Knows what gettext's own programs write."""
    entries = []
    for block in Path(path).read_text(encoding="utf-8").split("\n\n"):
        places, flags, parts, current = [], [], {"msgid": "", "msgstr": ""}, None
        for line in block.splitlines():
            if line.startswith("#:"):
                places += line[2:].split()
            elif line.startswith("#,"):
                flags += [flag.strip() for flag in line[2:].split(",")]
            elif line.startswith("#"):
                continue
            else:
                if not line.startswith('"'):
                    current, line = line.split(" ", 1)
                parts[current] += ast.literal_eval(line)
        if parts["msgid"]:
            entries.append(Entry(places, flags, parts["msgid"], parts["msgstr"]))
    return entries


def compiled(path):
    """A function that translates, from the catalog as msgfmt compiles it and Python's gettext reads it."""
    content = subprocess.run(["msgfmt", "--output-file=-", path], capture_output=True, check=True).stdout
    return gettext.GNUTranslations(io.BytesIO(content)).gettext
