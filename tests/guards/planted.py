"""A small tree of sources for a test, with what the test plants in it."""

import tempfile
from pathlib import Path

# Sound by every guard; a test adds the one file that is not.
SOUND = {
    "host/common/api.h": "#pragma once\n#define HOST_API\n",
    "host/data/names.h": '#pragma once\n#include <string>\n#include "host/common/api.h"\nHOST_API std::string Name();\n',
    "host/parser/token.h": '#pragma once\n#include "host/common/api.h"\nHOST_API int Kind();\n',
    "codebook/cbkorder.cpp": '#include "host/data/names.h"\nint Order() { return static_cast<int>(Name().size()); }\n',
    "runtime/data/names.cpp": '#include "host/data/names.h"\nstd::string Name() { return "n"; }\n',
    "runtime/data/dataset.h": "#pragma once\nnamespace runtime::data {\nclass Dataset;\n}\n",
    "runtime/common/session.h": '#pragma once\n#include "runtime/data/dataset.h"\n',
    "app/main.cpp": '#include <iostream>\n#include "runtime/common/session.h"\nint main() { std::cout << 1; }\n',
}


class Tree:
    """The sound tree with some files added or replaced, in a folder that goes away with the `with` block."""

    def __init__(self, files: dict[str, str] | None = None) -> None:
        self._folder = tempfile.TemporaryDirectory()
        self.root = Path(self._folder.name)
        for name, text in (SOUND | (files or {})).items():
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")

    def __enter__(self) -> Path:
        return self.root

    def __exit__(self, *_: object) -> None:
        self._folder.cleanup()
