"""What people look at: the help of each command, its completion in the shells, the manual."""

import os
import pathlib
import pty
import re
import shutil
import subprocess
import tempfile
import unittest

from scenario import BUILD, ROOT, Scenario

CTL = BUILD / "quivordctl"


def said(*words, status=0):
    run = subprocess.run([CTL, *words], capture_output=True, text=True, check=False)
    if run.returncode != status:
        raise AssertionError(f"quivordctl {' '.join(words)}: {run.returncode} {run.stdout}{run.stderr}")
    return run.stdout


COMMANDS = [line.split() for line in said("commands").splitlines()]
FAMILIES = sorted({tuple(words[:1]) for words in COMMANDS} | {tuple(words) for words in COMMANDS})


class Help(unittest.TestCase):
    def test_each_command_and_part_shows_examples_of_its_own(self):
        self.assertIn(("wall", "show"), FAMILIES)
        for words in FAMILIES:
            with self.subTest(" ".join(words)):
                text = said(*words, "--help")
                examples = text.split("Examples:\n")[1]
                called = re.compile(r"^  quivordctl (--?\w+ (\S+ )?)*" + " ".join(words) + r"\b", re.MULTILINE)
                self.assertRegex(examples, called)

    def test_examples_are_no_wrong_use(self):
        """With a board that isn't there, all that may be wrong is that nobody answers, or a file."""
        nowhere = "/nonexistent/board"
        for words in FAMILIES:
            for line in said(*words, "--help").split("Examples:\n")[1].splitlines():
                if not line.startswith("  quivordctl ") or "reset" in line:
                    continue
                example = line.split(" && ")[0].split()[1:]
                with self.subTest(line), tempfile.TemporaryDirectory() as folder:
                    run = subprocess.run([CTL, *example], cwd=folder, capture_output=True, text=True, check=False,
                                         env={**os.environ, "QUIVORD_BOARD": nowhere})
                    if "can't be read" not in run.stderr:
                        self.assertNotRegex(run.stderr, r"see quivordctl .*--help")
                    self.assertNotIn("Segmentation", run.stderr)

    def test_versions(self):
        header = (ROOT / "client/include/quivord/interface_version.h").read_text()
        number = re.search(r"kInterfaceVersion = (\d+);", header).group(1)
        self.assertRegex(said("--version"), rf"^quivordctl \d+\.\d+\.\d+, interface {number}\n$")


def on_a_terminal(*words, **environment):
    """What quivordctl prints on a terminal."""
    terminal, end = pty.openpty()
    kept = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
    with subprocess.Popen([CTL, *words], stdout=end, stderr=end, env={**kept, "TERM": "xterm", **environment}):
        os.close(end)
        text = b""
        try:
            while piece := os.read(terminal, 4096):
                text += piece
        except OSError:  # read to its end
            pass
    os.close(terminal)
    return text.decode().replace("\r\n", "\n")


class Colours(unittest.TestCase):
    def doctor(self, **environment):
        return on_a_terminal("--board", "/nonexistent/board", "doctor", **environment)

    def test_only_on_a_terminal_and_never_with_no_color(self):
        plain = said("--board", "/nonexistent/board", "doctor", status=3)
        self.assertNotIn("\033", plain)
        coloured = self.doctor()
        self.assertIn("\033[1;31mWRONG\033[0m", coloured)
        self.assertEqual(re.sub("\033\\[[0-9;]*m", "", coloured), plain)
        self.assertEqual(self.doctor(NO_COLOR="1"), plain)
        self.assertEqual(self.doctor(TERM="dumb"), plain)


class Progress(unittest.TestCase):
    def setUp(self):
        self.on = Scenario()
        self.addCleanup(self.on.close)
        self.on.start_daemon()
        self.addCleanup(self.on.stop_daemon)

    def test_is_a_bar_that_goes_away_and_only_on_a_terminal(self):
        words = ["--board", self.on.board, "gamma", "upload", "--exponent", "2.4"]
        said = on_a_terminal(*words)
        steps = re.findall(r"\r\033\[Ksent \[(#*)(\.*)\] (\d+) %", said)
        self.assertEqual([int(step[2]) for step in steps], sorted({int(step[2]) for step in steps}))
        self.assertEqual(steps[-1], ("#" * 30, "", "100"))
        self.assertEqual({len(full + rest) for full, rest, _ in steps}, {30})
        self.assertNotIn("sent [", said.rsplit("\r\033[K", 1)[1])
        plain = subprocess.run([CTL, *words], capture_output=True, text=True, check=True)
        self.assertEqual((plain.stderr, plain.stdout), ("", said.rsplit("\r\033[K", 1)[1]))
        self.assertNotIn("sent [", on_a_terminal("--json", *words))


# What is typed, the last word as far as it is, and what has to be among the answers, or not.
COMPLETIONS = [
    ("wa", "wall warmup", "status"),
    ("wall ", "configure show", "wall --rows"),
    ("wall configure --ca", "--cables --card", "--rows"),
    ("wall configure --cables top-l", "top-left-rows", "bottom-left-rows"),
    ("--board /tmp/x --dev", "--device", "--port"),
    ("--device ", "sender receiver", "wall"),
    ("store --store ", "live factory tmp", "dump"),
    ("store get scr", "screen-size", "feature"),
    ("feature set byp", "bypass bypass-offset", "role"),
    ("reset --type ", "plain keep-files", ""),
    ("wall draw ", ":files", "configure"),
    ("--board ", ":folders", "wall"),
]


class Completion(unittest.TestCase):
    def test_the_program_says_what_may_stand_next(self):
        for typed, wanted, unwanted in COMPLETIONS:
            with self.subTest(typed):
                words = [line.split("\t")[0] for line in said("complete", *typed.split(" ")).splitlines()]
                self.assertLessEqual(set(wanted.split()), set(words))
                self.assertFalse(set(unwanted.split()) & set(words))

    def shell(self, *command):
        return subprocess.run(command, capture_output=True, text=True, check=True, cwd=ROOT).stdout.split("\n")

    def test_bash(self):
        script = f"""compopt() {{ :; }}; source client/completion/quivordctl.bash
            COMP_WORDS=({CTL} wall configure --ca); COMP_CWORD=3; _quivordctl; printf '%s\\n' "${{COMPREPLY[@]}}"
            COMP_WORDS=({CTL} wall draw READ); COMP_CWORD=3; _quivordctl; printf '%s\\n' "${{COMPREPLY[@]}}" """
        self.assertEqual(self.shell("bash", "-uc", script), ["--cables", "--card", "README.md", ""])

    @unittest.skipUnless(shutil.which("zsh"), "no zsh")
    def test_zsh(self):
        script = f"""_describe() {{ print -l -- $shown }}; _files() {{ print -- files $* }}
            words=({CTL} wall configure --ca); CURRENT=4; source client/completion/_quivordctl
            words=({CTL} wall draw ''); CURRENT=4; source client/completion/_quivordctl"""
        lines = self.shell("zsh", "-fc", script)
        self.assertRegex(lines[0], "^--cables:How cables run")
        self.assertRegex(lines[1], "^--card:Place of the device")
        self.assertEqual(lines[2:], ["files", ""])


@unittest.skipUnless(shutil.which("scdoc") and shutil.which("mandoc"), "no scdoc or no mandoc")
class Manual(unittest.TestCase):
    def test_each_command_has_a_page_without_a_fault(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([ROOT / "scripts/manual", CTL, folder], check=True)
            pages = {path.name for path in pathlib.Path(folder).glob("*.[18]")}
            wanted = {f"quivordctl-{words[0]}.1" for words in COMMANDS}
            self.assertEqual(pages, wanted | {"quivordctl.1", "quivord.8", "quivord-board.1", "quivord-wall.1",
                                               "quivord-platform-check.8"})
            lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", *sorted(pages)], cwd=folder, check=False,
                                  capture_output=True, text=True)
            faults = [line for line in lint.stdout.splitlines() if "paragraph macro: PP" not in line]  # scdoc's own
            self.assertEqual(faults, [])
            page = subprocess.run(["mandoc", "-T", "utf8", "quivordctl-wall.1"], cwd=folder, check=True,
                                  capture_output=True, text=True).stdout
            text = re.sub(".\b", "", page)
            for part in ("--per-cable N", "quivordctl wall draw wall.png", "EXIT STATUS"):
                self.assertIn(part, text)


if __name__ == "__main__":
    unittest.main()
