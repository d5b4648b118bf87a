"""The files that everybody reads: their shapes, and how they are made (once, under build/bench)."""

import json
import os
import subprocess
from dataclasses import dataclass
from pathlib import Path
from typing import List, Tuple

from bench.measuring import BenchmarkError

# What a column takes in memory, by the kind of its values, in the most compact form that keeps every value.
BYTES_OF_A_CELL = {"integer": 1, "number": 8, "string": 4}
DUCKDB_TYPES = {"integer": "TINYINT", "number": "DOUBLE", "string": "VARCHAR"}
WEIGHT = "weight12"

PATHS = {"csv": "CSV, dictionary", "plain": "CSV, no dictionary", "parquet": "Parquet"}


@dataclass(frozen=True)
class Shape:
    """A synthetic survey of so many rows and columns, as files in `folder`."""

    name: str
    rows: int
    columns: int
    folder: Path

    @property
    def cells(self) -> int:
        return self.rows * self.columns

    @property
    def csv(self) -> Path:
        return self.folder / f"{self.name}.csv"

    @property
    def plain(self) -> Path:
        """The same CSV file by another name (a hard link), where no dictionary lies beside it."""
        return self.folder / "plain" / f"{self.name}.csv"

    @property
    def parquet(self) -> Path:
        return self.folder / f"{self.name}.parquet"

    @property
    def dictionary(self) -> Path:
        return self.folder / f"{self.name}.schema.json"

    @property
    def declared(self) -> Path:
        """The columns and their types for DuckDB, a line each."""
        return self.folder / f"{self.name}.columns"

    def data(self, path: str) -> Path:
        return {"csv": self.csv, "plain": self.plain, "parquet": self.parquet}[path]

    def fields(self) -> List[Tuple[str, str]]:
        """Name and type (integer, number or string) of each column, in the file's order."""
        return [(field["name"], field["type"]) for field in json.loads(self.dictionary.read_text())["fields"]]

    def compact_bytes(self) -> int:
        return self.rows * sum(BYTES_OF_A_CELL[type_] for _, type_ in self.fields())


def shapes(folder: Path, quick: bool = False) -> List[Shape]:
    """W, L and X; for a quick trial a twentieth of their rows."""
    part = 20 if quick else 1
    sizes = {"W": (100_000, 500), "L": (5_000_000, 20), "X": (10_000, 5_000)}
    return [
        Shape(name + ("-quick" if quick else ""), rows // part, columns, folder) for name, (rows, columns) in sizes.items()
    ]


def make(shape: Shape, generator: Path, duckdb: Path) -> None:
    """Makes the shape's files unless they are there and younger than the generator. A file is made under another name
    first, so that one that is there is whole."""
    if not generator.exists():
        raise BenchmarkError(f"{generator} is not built; make bench builds it")
    shape.plain.parent.mkdir(parents=True, exist_ok=True)
    if not _younger(shape.csv, generator):
        subprocess.run([generator, str(shape.rows), str(shape.columns), shape.folder, "unfinished"], check=True)
        (shape.folder / "unfinished.schema.json").replace(shape.dictionary)
        (shape.folder / "unfinished.csv").replace(shape.csv)
        shape.declared.write_text("".join(f"{name} {DUCKDB_TYPES[type_]}\n" for name, type_ in shape.fields()))
    if not shape.plain.exists() or not shape.plain.samefile(shape.csv):
        shape.plain.unlink(missing_ok=True)
        os.link(shape.csv, shape.plain)
    if duckdb.exists() and not _younger(shape.parquet, shape.csv):
        unfinished = shape.folder / "unfinished.parquet"
        command = [duckdb, "write-parquet", shape.csv, "--columns", shape.declared, "--output", unfinished]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
        unfinished.replace(shape.parquet)


def _younger(file: Path, than: Path) -> bool:
    return file.exists() and file.stat().st_mtime >= than.stat().st_mtime
