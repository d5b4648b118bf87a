#!/usr/bin/env python3
"""A second, naive reader of the rules: the report of a data file, a dictionary and a command text.

usage: oracle.py DATA DICTIONARY COMMANDFILE [WEIGHT]

Prints the report that the program should give with `-F json`. A null text stands for one that is not foretold."""

import json
import sys

from commandtext import CommandError, parse_command, split_commands
from dictionary import read_dataset
from procedure import InternalCheckFailed, Run
from report import Messages
from settings import CommandStopped, interpret
from showing import ANY_TEXT

DONE, COMMAND_STOPPED, CHECK_FAILED = 0, 1, 70


def report_for(dataset, text):
    """The report (None when nothing is printed) and the exit status."""
    messages = Messages()
    procedures = []
    status = DONE
    for tokens in split_commands(text):
        tables = []
        try:
            command = parse_command(tokens)
        except CommandError as error:
            for _ in range(error.count):
                messages.syntax_error()
            status = COMMAND_STOPPED
            if error.opens_procedure:
                procedures.append({"title": "Codebook", "tables": tables})
            continue
        procedures.append({"title": "Codebook", "tables": tables})
        try:
            run = Run(interpret(command, dataset, messages), dataset, messages)
            run.output = tables
            if not run.run():
                status = COMMAND_STOPPED
        except CommandStopped:
            status = COMMAND_STOPPED
        except InternalCheckFailed:
            return None, CHECK_FAILED
    return {"format": "codebook-report/1", "messages": messages.entries, "procedures": procedures}, status


def main():
    data, dictionary, command = sys.argv[1:4]
    dataset = read_dataset(data, dictionary, *sys.argv[4:5])
    with open(command, encoding="utf-8", newline="") as file:
        report, status = report_for(dataset, file.read())
    if report is not None:
        print(json.dumps(report, indent=1, ensure_ascii=False, default=lambda o: None if o is ANY_TEXT else str(o)))
    sys.exit(status)


if __name__ == "__main__":
    main()
