"""Checks who includes what.

    include_check.py ROOT

A part of the house sees only what stands beside it in VISIBLE, a library of somebody else's only who has it in LIBRARIES.
Prints one line a violation (file:line: what) and ends with status 1 when there is any.
"""

import re
import sys
from pathlib import Path

from sources import run_check, sources

# The first line that matches a file's path holds. A folder stands for everything below it.
VISIBLE = [
    ("host/common", ["host/common"]),
    ("host/aggregation", ["host/aggregation", "host/data", "host/common"]),
    ("host/output", ["host/output", "host/data", "host/common"]),
    ("host/parser", ["host/parser", "host/common"]),
    ("host/data", ["host/data", "host/common"]),
    ("codebook", ["host", "codebook"]),
    ("runtime/common", ["host", "runtime"]),
    ("runtime/machine", ["runtime/machine"]),
    ("runtime/aggregation", ["runtime/aggregation", "runtime/machine", "host/aggregation", "host/data", "host/common"]),
    (
        "runtime/output/render/xlsx",
        ["runtime/output", "runtime/machine", "host/output", "host/data", "host/common"],
    ),
    ("runtime/output", ["runtime/output", "host/output", "host/data", "host/common"]),
    ("runtime/parser", ["runtime/parser", "host/parser", "host/common"]),
    ("runtime/data", ["runtime/data", "runtime/machine", "host/data", "host/common"]),
    ("app", ["app", "host", "runtime"]),
    ("tests", ["tests", "app", "host", "codebook", "runtime"]),
    ("bench", ["bench", "app", "host", "codebook", "runtime"]),
]

# A header of somebody else's by the beginning of its name, and who may include it.
LIBRARIES = [
    ("nlohmann/", ["runtime/data/dictionary", "runtime/output/render", "app", "tests"]),
    ("fmt/", ["runtime", "app", "tests", "bench"]),
    ("unicode/", ["runtime/parser", "runtime/data", "runtime/output", "tests"]),
    ("gmp.h", ["runtime/aggregation/exact", "tests"]),
    ("gmpxx.h", ["runtime/aggregation/exact", "runtime/data/source/sql", "tests"]),
    ("duckdb.h", ["runtime/data/source", "tests/cells", "bench"]),
    ("hwy/", ["runtime/data/csv"]),
    ("pugixml.hpp", ["runtime/data/dictionary/ddi"]),
    ("zlib.h", ["runtime/data/compression", "tests/unit/data/compression"]),
    ("zstd.h", ["runtime/data/compression", "tests/unit/data/compression"]),
    ("sqlite3.h", ["runtime/data/source/sqlite", "tests/unit/data/source"]),
    ("sql.h", ["runtime/data/source/odbc"]),
    ("sqlext.h", ["runtime/data/source/odbc"]),
    ("sqlucode.h", ["runtime/data/source/odbc"]),
    ("arpa/inet.h", ["tests/databases/clickhouse", "bench/sql"]),
    ("netinet/in.h", ["tests/databases/clickhouse", "bench/sql"]),
    ("netinet/tcp.h", ["bench/sql"]),
    ("sys/socket.h", ["tests/databases/clickhouse", "bench/sql"]),
    ("xlsxwriter.h", ["runtime/output/render/xlsx"]),
    ("CLI/", ["app"]),
    ("gtest/", ["tests"]),
    ("gmock/", ["tests"]),
    ("benchmark/", ["bench"]),
]

# The operating system: files, memory, threads and the loading of libraries, for who talks to it.
SYSTEM_FOLDERS = """runtime/machine runtime/data runtime/aggregation runtime/output/render/xlsx runtime/common app tests
    bench""".split()
SYSTEM = """dirent.h dlfcn.h fcntl.h glob.h langinfo.h malloc.h poll.h pthread.h sched.h signal.h spawn.h termios.h time.h unistd.h
    sys/ioctl.h sys/mman.h sys/resource.h sys/stat.h sys/statvfs.h sys/time.h sys/types.h sys/uio.h sys/wait.h
    immintrin.h""".split()

STANDARD = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
    functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore
    set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view syncstream
    system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray variant vector
    version""".split()
)

_INCLUDE = re.compile(r"""^[ \t]*\#[ \t]*include[ \t]*(?:<([^>\n]+)>|"([^"\n]+)")""", re.MULTILINE)
_COMMENT = re.compile(r"/\*.*?\*/", re.DOTALL)


def below(path: str, folders: list[str]) -> bool:
    return any(path == folder or path.startswith(folder + "/") for folder in folders)


def seen_by(file: str) -> list[str]:
    for folder, visible in VISIBLE:
        if below(file, [folder]):
            return visible
    return []


def own_header_violation(root: Path, file: str, name: str) -> str | None:
    if not (root / name).is_file():
        return f'"{name}" is no file from the root of the sources'
    if not below(name, seen_by(file)):
        return f'"{name}" is out of its sight; it sees {", ".join(seen_by(file)) or "nothing"}'
    return None


def library_violation(file: str, name: str) -> str | None:
    if name in STANDARD:
        return None
    if name in SYSTEM:
        return None if below(file, SYSTEM_FOLDERS) else f"<{name}> is for {', '.join(SYSTEM_FOLDERS)}"
    for beginning, folders in LIBRARIES:
        if name.startswith(beginning):
            return None if below(file, folders) else f"<{name}> is for {', '.join(folders)}"
    return f"<{name}> is neither of the standard library nor of one that is known here"


def violations(root: Path) -> list[str]:
    found = []
    for path in sources(root, ["host", "codebook", "runtime", "app", "tests", "bench"]):
        file = path.as_posix()
        # A comment must not hide an include, nor show one; a text must stay, for it names the header.
        text = _COMMENT.sub(lambda match: "\n" * match.group().count("\n"), (root / path).read_text(encoding="utf-8"))
        for match in _INCLUDE.finditer(text):
            library, own = match.groups()
            wrong = library_violation(file, library) if library else own_header_violation(root, file, own)
            if wrong:
                found.append(f"{file}:{text.count(chr(10), 0, match.start()) + 1}: {wrong}")
    return found


def main(arguments: list[str]) -> int:
    return run_check("include_check.py", violations, arguments)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
