"""Saying on standard error what is under way."""

import sys
import time


class Teller:
    """One line on standard error that says what is under way; on a terminal it is written over itself."""

    def __init__(self):
        self.started = time.monotonic()
        self.terminal = sys.stderr.isatty()
        self.last = ""

    def __call__(self, words: str) -> None:
        if not self.terminal:
            # A line a setting, not one a run.
            words = words.split(": ")[0] if not words.startswith("answers: ") else words
            if words == self.last:
                return
            self.last = words
        passed = int(time.monotonic() - self.started)
        line = f"{passed // 60:3d}:{passed % 60:02d}  {words}"
        print(f"\r\033[K{line}" if self.terminal else line, end="" if self.terminal else "\n", file=sys.stderr, flush=True)

    def clear(self) -> None:
        if self.terminal:
            print("\r\033[K", end="", file=sys.stderr, flush=True)
