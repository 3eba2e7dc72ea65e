"""Runs the commands that a page shows and compares what they print with what the page says they
print:

  examples_test.py BUILD_FOLDER PAGE.md...

A block, fenced or indented, is run when its lines begin with "$ " (what stands below a command is
its output) or when it is fenced as `sh` (commands alone). A page is one session: it has a folder of
its own in place of /tmp, and a board that runs, which the page may replace by one that it makes. In
an output a line of "..." stands for any lines; times, dates and durations may differ. A command
whose output begins with a program's complaint has to fail, any other to succeed. A block behind
<!-- not run: WHY --> is left out."""

import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LIMIT_S = 120
COMPLAINT = re.compile(r"^(quivordctl|quivord-board|quivord-wall|quivord): ")
VARYING = [(re.compile(pattern), word) for pattern, word in (
    (r"\d{4}-\d\d-\d\d", "DATE"), (r"\b\d?\d:\d\d(:\d\d)?\b", "TIME"),
    (r"\b\d+(\.\d+)? (us|ms|s|µs)\b", "DURATION"), (r"^\d{6,}(?= \w)", "MOMENT"))]


class Wrong(Exception):
    """What a page says isn't so."""


def blocks(text):
    """Yields (line number, language, lines) of each block; None as language of an indented one."""
    lines = text.splitlines()
    skip, at = False, 0
    while at < len(lines):
        line = lines[at]
        if line.strip():
            is_note = line.startswith("<!-- not run:")
            fence = re.match(r"```(\w*)$", line)
            begin = at + 1 if fence else at
            if fence:
                at = next(i for i in range(begin, len(lines)) if lines[i] == "```")
                block = lines[begin:at]
            elif line.startswith("    "):
                while at < len(lines) and (lines[at].startswith("    ") or not lines[at].strip()):
                    at += 1
                block = [one[4:] for one in lines[begin:at]]
                at -= 1
            if (fence or line.startswith("    ")) and not skip:
                yield begin + 1, fence.group(1) if fence else None, block
            skip = is_note
        at += 1


def steps(number, language, lines):
    """The commands of a block: (line number, command, expected lines or None)."""
    found = []
    for offset, line in enumerate(lines):
        if line.startswith("$ "):
            found.append((number + offset, line[2:], []))
        elif language == "sh" and line.strip():
            found.append((number + offset, line, None))
        elif found and found[-1][2] is not None:
            found[-1][2].append(line)
    return found


def plain(line):
    line = line.rstrip()
    for pattern, word in VARYING:
        line = pattern.sub(word, line)
    return line


def matches(expected, printed):
    """Whether the printed lines are the expected ones, where "..." stands for any."""
    if not expected:
        return not printed
    if expected[0].strip() == "...":
        return any(matches(expected[1:], printed[i:]) for i in range(len(printed) + 1))
    return bool(printed) and plain(expected[0]) == plain(printed[0]) and matches(expected[1:], printed[1:])


class Stuck(Exception):
    """A command doesn't end."""


class Session:
    """A shell in a folder that looks like the top of the source tree, with a board that runs."""

    def __init__(self, build):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quivord-docs-"))
        for name in ("examples", "scripts", "docs", "python", "tools"):
            if (ROOT / name).exists():
                shutil.copytree(ROOT / name, self.folder / name)
        (self.folder / "build").mkdir()
        (self.folder / "build/release").symlink_to(build)
        (self.folder / "tmp").mkdir()
        environment = os.environ | {"PATH": f"{build}:{os.environ['PATH']}", "NO_COLOR": "1",
                                    "QUIVORD_BOARD": str(self.folder / "tmp/board")}
        self.shell = subprocess.Popen(
            ["bash"], cwd=self.folder, env=environment, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, start_new_session=True)
        self.run("quivord-board run $QUIVORD_BOARD &")

    def run(self, command):
        """Runs a command; its status and the lines that it printed."""
        mine = command.replace("/tmp/", f"{self.folder}/tmp/")
        done = self.shell_run(re.sub(r"\s&(\s*#.*)?$", " >/dev/null 2>&1 &", mine))
        begun = re.search(r"quivord-board (?:run|fleet (\d+)) (\S+).*&", mine)
        if begun:
            self.shell_run(f"until [ $(ls -d {begun[2]}{'/*' if begun[1] else ''}/etc/init.d/flag_fpgaload "
                           f"| wc -l) = {begun[1] or 1} ] && quivordctl --board {begun[2]} "
                           f"{'--all' if begun[1] else ''} ping; do sleep 0.05; done")
        return done

    def shell_run(self, command):
        self.shell.stdin.write(f"{{\n{command}\n}} </dev/null\nprintf '\\n=== %d ===\\n' $?\n")
        self.shell.stdin.flush()
        signal.alarm(LIMIT_S)
        printed = []
        while True:
            line = self.shell.stdout.readline()
            if not line:
                raise Stuck("the shell has ended")
            end = re.match(r"=== (\d+) ===$", line)
            if end:
                break
            printed.append(line.rstrip("\n").replace(f"{self.folder}/tmp/", "/tmp/"))
        signal.alarm(0)
        while printed and not printed[-1].strip():
            printed.pop()
        return int(end[1]), printed

    def close(self):
        try:
            os.killpg(self.shell.pid, signal.SIGTERM)
            self.shell.stdin.close()
            self.shell.wait(10)
        except (OSError, subprocess.TimeoutExpired):
            os.killpg(self.shell.pid, signal.SIGKILL)
        time.sleep(0.2)  # a board that still ends may write into its folder
        shutil.rmtree(self.folder, ignore_errors=True)


def check(session, command, expected):
    status, printed = session.run(command)
    while expected and not expected[-1].strip():
        expected.pop()
    said = "\n".join(printed)
    fails = bool(expected) and COMPLAINT.match(expected[0]) is not None
    if fails == (status == 0):
        raise Wrong(f"ended with status {status}\n{said}")
    if expected is not None and not command.rstrip().endswith("&") and not matches(expected, printed):
        raise Wrong("printed\n" + said)


def check_page(page, build):
    """Prints what is wrong; gives the number of commands run and of those that were wrong."""
    todo = [step for block in blocks(page.read_text()) for step in steps(*block)]
    if not todo:
        return 0, 0
    session, wrong = Session(build), 0
    try:
        for number, command, expected in todo:
            try:
                check(session, command, expected)
            except (Wrong, Stuck) as fault:
                wrong += 1
                print(f"{page.name}:{number}: {command}\n  {fault}".replace("\n", "\n  "))
                if isinstance(fault, Stuck):
                    break
    finally:
        session.close()
    return len(todo), wrong


def too_long(*_):
    raise Stuck(f"takes longer than {LIMIT_S} s")


def main():
    signal.signal(signal.SIGALRM, too_long)
    build = pathlib.Path(sys.argv[1]).resolve()
    wrong = 0
    for page in sys.argv[2:]:
        done, failed = check_page(pathlib.Path(page), build)
        print(f"{page}: {done} commands, {failed} wrong", flush=True)
        wrong += failed
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
