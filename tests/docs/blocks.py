#!/usr/bin/env python3
"""Compiles every program and fragment that the pages show, and runs the programs.

blocks.py --room NAME... says nothing when all is well; otherwise FILE:LINE: what is wrong.

- A program (it has a main) is compiled and linked.  A text block behind a paragraph that
  begins with "It prints" is what it must print; with "in front of the first line" in that
  paragraph, each line only has to end so.
- Anything else in C, C++ or Objective-C is a fragment: its includes are hoisted and the rest
  stands in a function.  A comment <!-- before: CODE --> above it declares what it uses.
- The commands of sh blocks must parse, and a script or example that they name must exist.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

FENCE = re.compile(r"^```(\w*)\n(.*?)^```$", re.S | re.M)
SUFFIX = {"c": ".c", "cpp": ".cpp", "objc": ".m"}


def blocks(page):
    """Yields (line, language, code, the paragraph above)."""
    text = page.read_text(encoding="utf-8")
    for match in FENCE.finditer(text):
        above = text[: match.start()].rstrip().rsplit("\n\n", 1)[-1]
        yield text.count("\n", 0, match.start()) + 1, match[1], match[2], above


def as_program(code, above):
    """A fragment inside a function, under its own includes."""
    lines = code.splitlines()
    includes = [line for line in lines if line.startswith(("#include", "#import"))]
    rest = [line for line in lines if line not in includes]
    before = re.findall(r"<!-- before: (.*?) -->", above, re.S)
    return "\n".join(includes + before + ["void fragment(void);", "void fragment(void) {"] + rest + ["}", ""])


class Checker:
    def __init__(self, options):
        self.options = options
        self.problems = 0

    def problem(self, where, text):
        self.problems += 1
        print(f"{where}: {text}")

    def compile(self, where, language, code, output, link):
        command = self.options[language]
        if command is None:
            return False
        source = Path(output).with_suffix(SUFFIX[language])
        source.write_text(code, encoding="utf-8")
        command = command.split("|") + [str(source), "-o", str(output)]
        command += self.options["link_" + language].split("|") if link else ["-c"]
        done = subprocess.run([part for part in command if part], capture_output=True, text=True)
        if done.returncode != 0:
            self.problem(where, "does not compile\n" + done.stderr)
        return done.returncode == 0

    def run(self, where, program, wanted, ends):
        own = str(Path(__file__).parent.parent / "support" / "own-ipc")
        done = subprocess.run([own, program], capture_output=True, text=True, timeout=60)
        shown = done.stdout
        if ends:
            pairs = list(zip(shown.splitlines(), wanted.splitlines()))
            same = len(pairs) == wanted.count("\n") == shown.count("\n") and all(a.endswith(b) for a, b in pairs)
        else:
            same = shown == wanted
        if not same:
            self.problem(where, f"the page says\n{wanted}and the program\n{shown}{done.stderr}")

    def shell(self, where, code):
        done = subprocess.run(["sh", "-n"], input=code, capture_output=True, text=True)
        if done.returncode != 0:
            self.problem(where, done.stderr.strip())
        for name in re.findall(r"(?:^|\s)((?:scripts|examples|docs|demo)/[\w./-]+)", code):
            if not (Path(self.options["source"]) / name).exists():
                self.problem(where, f"there is no {name}")

    def page(self, page, folder):
        program = None
        for line, language, code, above in blocks(page):
            where = f"{page.relative_to(self.options['source'])}:{line}"
            if language in SUFFIX:
                complete = re.search(r"\bmain\(", code) is not None
                output = os.path.join(folder, f"{page.stem}-{line}")
                code = code if complete else as_program(code, above)
                program = output if self.compile(where, language, code, output, complete) and complete else None
            elif language == "text" and above.startswith("It prints") and program is not None:
                self.run(where, program, code, "in front of the first line" in above)
            elif language == "sh":
                self.shell(where, code)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--source", required=True)
    for language in SUFFIX:
        parser.add_argument(f"--{language}", help="compiler and flags, separated by |")
        parser.add_argument(f"--link-{language}", default="")
    checker = Checker(vars(parser.parse_args()))
    source = Path(checker.options["source"])
    with tempfile.TemporaryDirectory() as folder:
        for page in [source / "README.md", *sorted((source / "docs").rglob("*.md"))]:
            checker.page(page, folder)
    return 1 if checker.problems else 0


if __name__ == "__main__":
    sys.exit(main())
