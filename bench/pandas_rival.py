"""What pandas does with the CSV file that our program describes: pandas_rival.py FILE [--answers]

read_csv, describe() of the columns of numbers, value_counts() of the others. A column of whole numbers is one of codes
(with blanks pandas keeps it as doubles, so the values decide). Standard output gets {"rows": N, "answers": {...}}.
"""

import json
import sys

import pandas


def text_of(value) -> str:
    """A code as its digits, whatever type it has here."""
    return value if isinstance(value, str) else str(int(value))


def main() -> None:
    data = pandas.read_csv(sys.argv[1], na_values=[""], keep_default_na=False)
    answers = {}
    for name in data.columns:
        column = data[name]
        if column.dtype == object or (column.dropna() % 1 == 0).all():
            counts = column.value_counts()
            answers[name] = {
                "counts": {text_of(value): int(count) for value, count in counts.items()},
                "blank": int(column.isna().sum()),
            }
            continue
        described = column.describe()
        answers[name] = {
            "count": int(described["count"]),
            "mean": float(described["mean"]),
            "sd": float(described["std"]),
            "quartiles": [float(described[share]) for share in ("25%", "50%", "75%")],
        }
    result = {"rows": len(data)}
    if "--answers" in sys.argv:
        result["answers"] = answers
    json.dump(result, sys.stdout)


if __name__ == "__main__":
    main()
