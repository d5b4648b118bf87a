"""What a case has left behind in each format."""

import json
import os


class Outputs:
    def __init__(self, folder):
        self.folder = folder
        self.name = os.path.basename(folder)

    def path(self, format_):
        return os.path.join(self.folder, "report." + format_)

    def bytes(self, format_):
        with open(self.path(format_), "rb") as file:
            return file.read()

    def text(self, format_):
        """The report as UTF-8, which it must be."""
        return self.bytes(format_).decode("utf-8")

    def status(self, format_):
        with open(os.path.join(self.folder, "status." + format_), encoding="ascii") as file:
            return int(file.read())

    def report(self):
        """The JSON report; None where the program ended without one."""
        text = self.text("json")
        return json.loads(text) if text else None
