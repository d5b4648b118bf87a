"""Where the data of a case may lie: in files of several kinds, or in tables of several databases."""

import os
import zlib

import datafiles
import loading
from casefile import CaseError
from parquet import ParquetWriter

DICTIONARY = "data.schema.json"

# Cases whose outcome is another one where the data lie in a database: by kind, with the reason.
COUNTED = "counted there"  # every kind, unless the rows are fetched
EXCEPTIONS = {
    "isoDatesAreInferred": {"sqlite": "SQLite has no dates: what its texts mean, only a dictionary says",
                            "clickhouse": "kept as texts there, for its dates begin in 1970"},
    "newValueOnTheLastCaseIsKept": {COUNTED: "the rows of a table have no order, so none of them is the last"},
}


class Place:
    """Where the data of a case lie. `arguments` name them to the program; `shown` are the texts of these that a report or a
    message may hold, with what stands for them in the case file."""

    def __init__(self, arguments, shown):
        self.arguments = arguments
        self.shown = shown


class Files:
    """Data files, written anew for each case. The folder and the ending of a file are of no account."""

    def __init__(self, duckdb):
        self.parquet = ParquetWriter(duckdb) if duckdb else None

    def kinds(self, case):
        possible = datafiles.ALL if self.parquet else datafiles.WITHOUT_DUCKDB
        wanted = case.sources() or possible
        unknown = set(wanted) - set(datafiles.ALL)
        if unknown:
            raise CaseError(f"{case.path}: there is no source {', '.join(sorted(unknown))}; sources: {' '.join(datafiles.ALL)}")
        return [kind for kind in wanted if kind in possible]

    def place(self, kind, case, folder):
        data = datafiles.write_data(kind, folder, case.rows(), self.parquet)
        return Place([data], {os.path.basename(data): "DATAFILE"})

    def settings(self, possible, kind, case):
        return possible

    def environment(self):
        return {}


class Tables:
    """Tables of databases, of the cases that make sense for data with types. The dictionary is named, for it lies beside
    nothing. The table's name stands for the file's, the address for its folder."""

    def __init__(self, kinds, cases):
        self.databases = loading.Databases(kinds)
        self.tables = [loading.Table(table_name(case), case.rows(), datafiles.column_types(case.rows())) for case in cases if is_typed(case)]

    def __enter__(self):
        self.databases.__enter__()
        self.databases.load(self.tables)
        return self

    def __exit__(self, *_):
        self.databases.__exit__()

    def kinds(self, case):
        if not is_typed(case):
            return []
        exceptions = EXCEPTIONS.get(case.name, {})
        return [kind for kind in self.databases.kinds if not {kind, kind.removesuffix(loading.ROWS), COUNTED} & set(exceptions)
                or COUNTED in exceptions and kind.endswith(loading.ROWS)]

    def place(self, kind, case, folder):
        arguments = self.databases.source(kind, table_name(case))
        address, table = self.databases.addresses(kind)[0], self.databases.table_name(kind, table_name(case))
        shown = {f"{address}: {table}": "FOLDER/DATAFILE", table: "DATAFILE", address: "FOLDER"}
        if case.dictionary() is not None:
            arguments = arguments + ["-d", os.path.join(folder, DICTIONARY)]
        return Place(arguments, shown)

    def settings(self, possible, kind, case):
        """They take turns: connecting takes longer than everything else."""
        return [possible[zlib.crc32(f"{kind} {case.name}".encode()) % len(possible)]]

    def environment(self):
        return self.databases.environment()


def table_name(case):
    return "case " + case.name


def is_typed(case):
    return case.sources() is None or "parquet" in case.sources()
