"""The machine and the state of the project, in words for a table."""

import os
import platform
import subprocess
from datetime import date
from pathlib import Path


def machine(root: Path) -> str:
    """What it was measured on; `root` is the project's folder."""
    model = platform.machine()
    cpuinfo = Path("/proc/cpuinfo")
    if cpuinfo.exists():
        names = [line.split(":", 1)[1].strip() for line in cpuinfo.read_text().splitlines() if line.startswith("model name")]
        model = names[0] if names else model
    revision = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=root, capture_output=True, text=True, check=False)
    load = os.getloadavg()
    return (
        f"{date.today()}, revision {revision.stdout.strip() or 'unknown'}, {os.cpu_count()} cores ({model}), "
        f"load {load[0]:.1f} at the beginning"
    )
