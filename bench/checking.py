"""Everybody's answers on a file, compared with ours. Done before anything is timed."""

import json
import subprocess
from pathlib import Path
from typing import Callable, Dict, List

from bench import answers, contenders, reference
from bench.measuring import BenchmarkError
from bench.shapes import PATHS, WEIGHT, Shape


class Checker:
    """Compares on one shape after the other. What rivals and reference answer is kept in `folder` and asked again only when
    the data or the program is younger; ours is always worked out anew."""

    def __init__(self, folder: Path, program: Path, tell: Callable[[str], None]):
        self.folder = folder
        self.program = program
        self.tell = tell
        folder.mkdir(parents=True, exist_ok=True)

    def check(self, shape: Shape, path: str, rivals: List[contenders.Contender], threads: List[int]) -> int:
        """Returns how many numbers were compared; throws Mismatch at the first that differs."""
        where = f"{shape.name}, {PATHS[path]}"
        ours = self._ours(shape, path, False, threads, where)
        weighted = self._ours(shape, path, True, threads, where)
        compared = 0
        try:
            compared += self._with_reference(shape, ours, weighted)
            for rival in rivals:
                if rival.takes_part(path, 1) and rival.name != "read":
                    compared += self._with_rival(shape, path, rival, ours, where)
        except answers.Mismatch as mismatch:
            raise answers.Mismatch(f"{where}: {mismatch}") from None
        return compared

    def _ours(self, shape: Shape, path: str, weighted: bool, threads: List[int], where: str) -> Dict[str, dict]:
        """Our answers with each number of threads, which must be the same to the byte."""
        reports = []
        for number in sorted(set(threads)):
            self.tell(f"answers: {where}, codebook{', weighted' if weighted else ''}, {number} thread(s)")
            report = self.folder / f"ours-{number}.json"
            _run(contenders.ours(self.program, report, weighted).command(shape, path, number))
            reports.append(report.read_bytes())
        if len(set(reports)) != 1:
            raise answers.Mismatch(f"{where}: our report is another with another number of threads")
        return answers.of_ours(json.loads(reports[0]))

    def _with_reference(self, shape: Shape, ours: Dict[str, dict], weighted: Dict[str, dict]) -> int:
        types = dict(shape.fields())
        kinds = {name: types[name] for name in answers.columns_of_interest(list(types))}
        compared = 0
        for mine, weight in ((ours, None), (weighted, WEIGHT)):
            kept = self.folder / f"{shape.name}-reference{'-weighted' if weight else ''}.json"
            if not _younger(kept, [shape.csv, Path(reference.__file__)]):
                self.tell(f"answers: {shape.name}, the reference{', weighted' if weight else ''}")
                kept.write_text(json.dumps(reference.answers(shape.csv, kinds, weight)))
            who = "the reference (weighted)" if weight else "the reference"
            compared += answers.compare_exact(mine, json.loads(kept.read_text()), who, True, relative=1e-14)
        return compared

    def _with_rival(
        self, shape: Shape, path: str, rival: contenders.Contender, ours: Dict[str, dict], where: str
    ) -> int:
        command = rival.command(shape, path, 1)
        kept = self.folder / f"{shape.name}-{path}-{rival.name}.json"
        files = [Path(word) for word in map(str, command) if Path(word).is_absolute()]
        if not _younger(kept, files):
            self.tell(f"answers: {where}, {rival.label}")
            kept.write_bytes(_run([*command, "--answers"]))
        answer = json.loads(kept.read_text())
        if answer["rows"] != shape.rows:
            raise answers.Mismatch(f"{rival.label} read {answer['rows']} rows of {shape.rows}")
        if len(answer["answers"]) != shape.columns:
            raise answers.Mismatch(f"{rival.label} answers for {len(answer['answers'])} columns of {shape.columns}")
        if rival.name == "summarize":
            return answers.compare_summary(ours, answer["answers"], rival.label)
        if rival.name == "exact":
            answers.check_survey(answer["answers"])
        return answers.compare_exact(ours, answer["answers"], rival.label, rival.name == "data.table")


def _run(command: List) -> bytes:
    words = [str(word) for word in command]
    done = subprocess.run(words, capture_output=True, check=False)
    if done.returncode != 0:
        raise BenchmarkError(f"ended with status {done.returncode}: {' '.join(words)[:300]}\n{done.stderr.decode()[-2000:]}")
    return done.stdout


def _younger(file: Path, than: List[Path]) -> bool:
    return file.exists() and all(file.stat().st_mtime >= other.stat().st_mtime for other in than)
