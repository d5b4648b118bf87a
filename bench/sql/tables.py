"""What the benchmark of databases found, as Markdown."""

from typing import List, Tuple

from bench.sql.comparison import COPYING, COUNTING, FETCHING, Setting
from bench.sql.servers import ONE_SERVER, SHARDS
from bench.tables import markdown, significant

MOST_BYTES = 1 / 50
MOST_TIME = {ONE_SERVER: 1 / 2, SHARDS: 1 / 4}
WORDS = {COUNTING: "counting there", FETCHING: "fetching the rows", COPYING: "bare COPY"}
LONGEST_STATEMENT = 200


def _weighted(setting: Setting) -> str:
    return "yes" if setting.weighted else "no"


def _megabytes(number: int) -> str:
    return significant(number / 1e6)


def comparison(settings: List[Setting]) -> str:
    rows = []
    for setting in settings:
        for name in setting.runs:
            between_servers = _megabytes(setting.moved[name][1]) if setting.form == SHARDS else "–"
            rows.append([setting.form, _weighted(setting), WORDS[name], f"{setting.median_of(name, 'wall'):.2f}",
                         f"{setting.median_of(name, 'cpu'):.2f}", f"{max(run.measured.memory for run in setting.runs[name]) / 1e6:,.0f}",
                         _megabytes(setting.moved[name][0]), between_servers])
    header = ["table", "weighted", "", "wall s", "CPU s of program and servers", "program's peak MB", "MB program – server",
              "MB coordinator – workers"]
    return markdown(header, rows, left=3)


def goals(settings: List[Setting]) -> str:
    rows = []

    def add(setting: Setting, words: str, found: float, most: float) -> None:
        kept = "kept" if found <= most else "**missed**"
        rows.append([setting.form, _weighted(setting), words, significant(found), significant(most), kept])

    for setting in settings:
        if not {COUNTING, FETCHING} <= set(setting.runs):
            continue
        add(setting, "bytes against fetching", setting.bytes_ratio(FETCHING), MOST_BYTES)
        add(setting, "wall time against fetching", setting.ratio(FETCHING), MOST_TIME[setting.form])
    return markdown(["table", "weighted", "ratio", "measured", "at most", ""], rows, left=3)


def statements(told: List[Tuple[float, str]]) -> str:
    """Those that take longest first."""
    whole = sum(seconds for seconds, _ in told)
    text = f"{len(told)} statements, {whole:.2f} s\n\n"
    for seconds, words in sorted(told, reverse=True):
        if seconds < 0.01 * whole:
            break
        shown = words if len(words) <= LONGEST_STATEMENT else words[:LONGEST_STATEMENT] + f"… ({len(words):,} characters)"
        text += f"{seconds:8.2f} s  {shown}\n"
    return text
