"""Tables of test cases in databases: the same cells as in the data files, held as a database would hold them.

Kinds of source:

    sqlite      a table of one SQLite file
    postgres    a table of one PostgreSQL server
    shards      a table of a PostgreSQL server, partitioned by hash; the partitions are foreign tables on three workers. The
                key is the row (its first columns), so the bounds of the partitions hold for every row
    inherited   an empty table with three foreign children on the workers, rows dealt out in turn: equal rows on all workers
    workers     the tables of those workers, named one behind the other
    clickhouse  a table of a ClickHouse server, for the program that reaches it over HTTP

With `+rows` behind it the program is told to fetch the rows and count them itself."""

import os
import re
import shutil
import sqlite3
import struct
import sys
import tempfile

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "golden"))

import datafiles  # noqa: E402
from clickhouse import ClickHouseServer  # noqa: E402
from postgres import COORDINATOR, PostgresServers, require_driver  # noqa: E402

SQLITE, POSTGRES, SHARDS, INHERITED, WORKERS = ALL = ("sqlite", "postgres", "shards", "inherited", "workers")
CLICKHOUSE = "clickhouse"
ROWS = "+rows"
WORKER_COUNT = 3
MOST_KEY_COLUMNS = 32  # of a partitioned table of PostgreSQL
PLAIN_SCHEMA, INHERITED_SCHEMA = "plain", "inherited"

TEXT = "text"
SQLITE_TYPES = {"integer": "INTEGER", "number": "REAL", "boolean": "INTEGER"}  # others are kept as texts
# Others are kept as texts, for dates begin in 1970 there.
CLICKHOUSE_TYPES = {"integer": "Nullable(Int64)", "number": "Nullable(Float64)", "boolean": "Nullable(UInt8)"}
POSTGRES_TYPES = {"integer": "bigint", "number": "double precision", "boolean": "boolean", "date": "date", "datetime": "timestamp",
                  "time": "time", TEXT: "text"}

WHOLE = re.compile(r"(0|-?[1-9][0-9]{0,17})\Z")
DATETIME = re.compile(r"[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\Z")
TIME = re.compile(r"([01][0-9]|2[0-3]):[0-9]{2}:[0-9]{2}\Z")


class Table:
    """Cells as texts. `types` are words of POSTGRES_TYPES, or ("decimal", DIGITS BEHIND THE POINT)."""

    def __init__(self, name, rows, types):
        self.name = name
        self.columns = rows[0]
        self.types = types
        self.rows = rows[1:]


def exact_type(cells):
    """A type that gives back every cell as it is written, however the database writes values of that type."""
    written = [cell for cell in cells if cell != ""]
    if not written:
        return TEXT
    if all(WHOLE.match(cell) for cell in written):
        return "integer"
    if all(DATETIME.match(cell) for cell in written):
        return "datetime"
    if all(TIME.match(cell) for cell in written):
        return "time"
    kind = datafiles.column_type(cells)
    if kind in ("boolean", "date"):
        return kind
    if kind not in ("integer", "number") or any(float(cell) == 0 and cell[0] == "-" for cell in written):
        return TEXT
    if all(repr(float(cell)) in (cell, cell + ".0") for cell in written):
        return "number"
    decimals = {len(cell.partition(".")[2]) for cell in written}
    return ("decimal", decimals.pop()) if len(decimals) == 1 else TEXT


def exact_types(rows):
    return [exact_type([row[i] for row in rows[1:]]) for i in range(len(rows[0]))]


class Databases:
    """A context manager that has tables in databases of several kinds, and starts those servers alone that these need."""

    def __init__(self, kinds):
        self.kinds = list(kinds)
        self.places = {kind.removesuffix(ROWS) for kind in kinds}
        self.folder = None
        self.server = None
        self.clickhouse = None

    def __enter__(self):
        self.folder = os.path.realpath(tempfile.mkdtemp(prefix="tables."))
        try:
            unknown = self.places - {*ALL, CLICKHOUSE}
            if unknown:
                raise ValueError(f"there is no kind of source {', '.join(sorted(unknown))}")
            if CLICKHOUSE in self.places:
                server = ClickHouseServer()
                self.clickhouse = server.__enter__()
            if self.places - {SQLITE, CLICKHOUSE}:
                require_driver()
                self.server = PostgresServers(WORKER_COUNT if self.places & {SHARDS, INHERITED, WORKERS} else 0, is_small=True)
                self.server.__enter__()
                self.server.coordinator.run("".join(f"CREATE SCHEMA {schema};" for schema in [PLAIN_SCHEMA, INHERITED_SCHEMA, *all_leaf_schemas()]))
                for worker in self.server.workers:
                    worker.run(f"CREATE SCHEMA {INHERITED_SCHEMA};")
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for server in (self.server, self.clickhouse):
            if server:
                server.__exit__()
        shutil.rmtree(self.folder, ignore_errors=True)

    def environment(self):
        return self.server.environment() if self.server else {}

    def load(self, tables, kinds=None):
        """Makes the tables in the databases of these kinds; absent: of all."""
        tables = list(tables)
        kinds = {kind.removesuffix(ROWS) for kind in kinds or self.kinds}
        if SQLITE in kinds:
            load_sqlite(self.sqlite_file(), tables)
        if CLICKHOUSE in kinds:
            load_clickhouse(self.clickhouse, tables)
        if POSTGRES in kinds:
            self.server.coordinator.run("".join(table_script(PLAIN_SCHEMA, table) for table in tables))
        if SHARDS in kinds:
            for worker in self.server.workers:
                worker.run("".join(definition("public", table) + ";\n" for table in tables))
            self.server.coordinator.run("".join(partitioned_script(table) for table in tables))
        if {INHERITED, WORKERS} & kinds:
            for i, worker in enumerate(self.server.workers):
                worker.run("".join(table_script(INHERITED_SCHEMA, table, table.rows[i::WORKER_COUNT]) for table in tables))
            self.server.coordinator.run("".join(inherited_script(table) for table in tables))

    def sqlite_file(self):
        return os.path.join(self.folder, "tables.sqlite")

    def addresses(self, kind):
        """Of the databases that hold the rows."""
        kind = kind.removesuffix(ROWS)
        if kind == SQLITE:
            return ["sqlite:" + self.sqlite_file()]
        if kind == CLICKHOUSE:
            return [self.clickhouse.url]
        if kind == WORKERS:
            return [f"odbc:DSN=codebook_{worker.name}" for worker in self.server.workers]
        return [f"odbc:DSN={COORDINATOR}"]

    def table_name(self, kind, name):
        """How the program is told of the table."""
        schemas = {POSTGRES: PLAIN_SCHEMA, SHARDS: "public", INHERITED: INHERITED_SCHEMA, WORKERS: INHERITED_SCHEMA}
        schema = schemas.get(kind.removesuffix(ROWS))
        return f'{schema}."{name}"' if schema else name

    def source(self, kind, name):
        """The arguments that name a table to the program."""
        fetched = ["--fetch-rows"] if kind.endswith(ROWS) else []
        return [*self.addresses(kind), *fetched, "--table", self.table_name(kind, name)]


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def literal(text):
    return "'" + text.replace("'", "''") + "'"


def value_of(text, type_):
    if text == "" and type_ != TEXT:
        return None
    if type_ == "integer":
        return int(text)
    if type_ == "number":
        return float(text)
    if type_ == "boolean":
        return int(text == "true")
    return text


# SQLite.


def load_sqlite(path, tables):
    with sqlite3.connect(path) as database:
        database.execute("PRAGMA synchronous = OFF")
        for table in tables:
            columns = ", ".join(f"{quoted(name)} {SQLITE_TYPES.get(type_, 'TEXT')}" for name, type_ in zip(table.columns, table.types))
            database.execute(f"CREATE TABLE {quoted(table.name)} ({columns})")
            places = ", ".join("?" * len(table.columns))
            database.executemany(f"INSERT INTO {quoted(table.name)} VALUES ({places})",
                                 ([value_of(text, type_) for text, type_ in zip(row, table.types)] for row in table.rows))
    database.close()


# ClickHouse.


def load_clickhouse(server, tables):
    for table in tables:
        name = backquoted(table.name)
        columns = ", ".join(f"{backquoted(column)} {CLICKHOUSE_TYPES.get(type_, 'String')}" for column, type_ in zip(table.columns, table.types))
        server.ask(f"CREATE TABLE {name} ({columns}) ENGINE = MergeTree ORDER BY tuple()")
        server.ask(b"INSERT INTO " + name.encode() + b" FORMAT RowBinary\n" + b"".join(binary_cells(table)))


def binary_cells(table):
    """Its reader of texts rounds numbers as it pleases, so they are handed over as they are."""
    for row in table.rows:
        for text, type_ in zip(row, table.types):
            if type_ not in CLICKHOUSE_TYPES:
                cell = text.encode()
                yield length_of(cell) + cell
            elif text == "":
                yield b"\1"
            else:
                yield b"\0" + struct.pack({"integer": "<q", "number": "<d", "boolean": "<B"}[type_], value_of(text, type_))


def length_of(cell):
    """Seven bits a byte, the lowest first."""
    rest, found = len(cell), []
    while rest >= 128:
        found.append(rest & 127 | 128)
        rest >>= 7
    return bytes([*found, rest])


def backquoted(name):
    return "`" + name.replace("\\", "\\\\").replace("`", "\\`") + "`"


# PostgreSQL.


def columns_of(table):
    def sql(type_):
        return POSTGRES_TYPES[type_] if isinstance(type_, str) else f"numeric(38, {type_[1]})"

    return ", ".join(f"{quoted(name)} {sql(type_)}" for name, type_ in zip(table.columns, table.types))


def definition(schema, table):
    return f"CREATE TABLE {schema}.{quoted(table.name)} ({columns_of(table)})"


def copy_block(schema, table, rows):
    return f"COPY {schema}.{quoted(table.name)} FROM STDIN;\n" + "".join(lines_of(table, rows)) + "\\.\n"


def lines_of(table, rows):
    """The rows as COPY reads them; an empty cell is no value unless the column is of texts."""
    for row in rows:
        yield "\t".join("\\N" if text == "" and type_ != TEXT else escaped(text) for text, type_ in zip(row, table.types)) + "\n"


def escaped(text):
    return text.replace("\\", "\\\\").replace("\t", "\\t").replace("\n", "\\n").replace("\r", "\\r")


def table_script(schema, table, rows=None):
    return f"{definition(schema, table)};\n" + copy_block(schema, table, table.rows if rows is None else rows)


def leaf_schema(kind, number):
    """The leaves of a table have its name, in a schema of each worker."""
    return f"{kind}_leaf{number + 1}"


def all_leaf_schemas():
    return [leaf_schema(kind, i) for kind in (SHARDS, INHERITED) for i in range(WORKER_COUNT)]


def partitioned_script(table):
    key = ", ".join(quoted(name) for name in table.columns[:MOST_KEY_COLUMNS])
    script = f"{definition('public', table)} PARTITION BY HASH ({key});\n"
    for i in range(WORKER_COUNT):
        script += f"CREATE FOREIGN TABLE {leaf_schema(SHARDS, i)}.{quoted(table.name)} PARTITION OF public.{quoted(table.name)} " \
                  f"FOR VALUES WITH (MODULUS {WORKER_COUNT}, REMAINDER {i}) SERVER worker{i + 1} " \
                  f"OPTIONS (schema_name 'public', table_name {literal(table.name)});\n"
    return script + copy_block("public", table, table.rows)


def inherited_script(table):
    script = definition(INHERITED_SCHEMA, table) + ";\n"
    for i in range(WORKER_COUNT):
        script += f"CREATE FOREIGN TABLE {leaf_schema(INHERITED, i)}.{quoted(table.name)} () INHERITS ({INHERITED_SCHEMA}.{quoted(table.name)}) " \
                  f"SERVER worker{i + 1} OPTIONS (schema_name '{INHERITED_SCHEMA}', table_name {literal(table.name)});\n"
    return script
