"""Writing Parquet files through DuckDB's C interface."""

import ctypes
import threading

RESULT_BYTES = 256  # more than a duckdb_result needs


class ParquetWriter:
    def __init__(self, library):
        """`library` is the path of libduckdb.so."""
        self.duckdb = ctypes.CDLL(library)
        self.duckdb.duckdb_result_error.restype = ctypes.c_char_p
        self.lock = threading.Lock()
        self.database = ctypes.c_void_p()
        self.connection = ctypes.c_void_p()
        if self.duckdb.duckdb_open(None, ctypes.byref(self.database)) != 0:
            raise OSError("DuckDB could not be opened")
        if self.duckdb.duckdb_connect(self.database, ctypes.byref(self.connection)) != 0:
            raise OSError("DuckDB gave no connection")

    def write(self, path, names, types, rows):
        """`types` are SQL types, `rows` lists of texts and None; each text is cast to its column's type."""
        columns = ", ".join(f"{identifier(name)} {type_}" for name, type_ in zip(names, types))
        with self.lock:
            self._run(f"CREATE OR REPLACE TABLE cases ({columns})")
            if rows:
                values = ", ".join("(" + ", ".join(map(literal, row)) + ")" for row in rows)
                self._run(f"INSERT INTO cases VALUES {values}")
            self._run(f"COPY cases TO {literal(path)} (FORMAT parquet)")

    def _run(self, sql):
        result = (ctypes.c_char * RESULT_BYTES)()
        failed = self.duckdb.duckdb_query(self.connection, sql.encode(), result) != 0
        message = self.duckdb.duckdb_result_error(result) if failed else None
        self.duckdb.duckdb_destroy_result(result)
        if failed:
            raise OSError((message or b"unknown error").decode())


def identifier(name):
    return '"' + name.replace('"', '""') + '"'


def literal(text):
    return "NULL" if text is None else "'" + text.replace("'", "''") + "'"
