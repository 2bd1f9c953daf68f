#!/usr/bin/env python3
"""Checks the documents: the C and C++ code in them stands word for word in samples/, and links lead somewhere.

check_documents.py ROOT
"""

import pathlib
import re
import sys
import textwrap

root = pathlib.Path(sys.argv[1])
documents = [*root.glob("*.md"), *root.glob("docs/**/*.md")]
samples = [path.read_text() for path in root.glob("samples/*.c*")]
faults = []


def anchors(document):
    """The anchors of a document's headings, as they are derived from their texts."""
    text = re.sub(r"^```.*?^```", "", document.read_text(), flags=re.M | re.S)
    for heading in re.findall(r"^#+ (.*)$", text, flags=re.M):
        words = re.sub(r"[^\w\- ]", "", heading.lower())
        yield words.replace(" ", "-")


for document in documents:
    name = document.relative_to(root)
    text = document.read_text()
    for code in re.findall(r"^```(?:cpp|c)\n(.*?)^```", text, flags=re.M | re.S):
        if not any(code in sample or textwrap.dedent(code) in sample for sample in samples):
            faults.append(f"{name}: not in samples/:\n{code}")
    for link in re.findall(r"\]\(([^)\s]+)\)", text):
        if re.match(r"[a-z]+:", link):
            continue
        path, _, anchor = link.partition("#")
        target = (document.parent / path).resolve() if path else document
        if not target.exists():
            faults.append(f"{name}: no file {link}")
        elif anchor and target.suffix == ".md" and anchor not in anchors(target):
            faults.append(f"{name}: no heading {link}")

if not documents or not samples:
    faults.append("no documents or no samples")
print("\n".join(faults))
sys.exit(1 if faults else 0)
