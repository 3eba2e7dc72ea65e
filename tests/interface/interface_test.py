"""What quivordctl answers with --json: as docs/schema says, and as tests/samples has it."""

import json
import pathlib
import unittest

import jsonschema
import samples
import scenario

SCHEMA = scenario.ROOT / "docs/schema"


def schema_of(name):
    """The schema of a command, as those read it who have docs/schema alone."""
    family = name.split("-")[0]
    whole = json.loads((SCHEMA / f"{family}.json").read_text())
    return {**whole, "$ref": f"#/$defs/{name}"}


def validate(line, name):
    schema = schema_of(name)
    jsonschema.Draft202012Validator.check_schema(schema)
    jsonschema.validate(line, schema, jsonschema.Draft202012Validator)


def of_one_board(line, name):
    """An object that came with --all as it is without."""
    validate(line, "all")
    rest = {key: value for key, value in line.items() if key not in ("board", "folder")}
    own = schema_of(name)["$defs"][name]["properties"]
    return {**rest, "board": line["folder"]} if "board" in own else rest


class Interface(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.answers = scenario.answers()

    def test_each_command_has_a_sample_and_a_schema(self):
        shown = {name.split(".")[0] for name in self.answers}
        self.assertEqual([name for name in scenario.commands() if name not in shown], [],
                         "add these to tests/interface/scenario.py, then describe what they answer in docs/schema")

    def test_answers_are_as_docs_schema_says(self):
        for name, answer in self.answers.items():
            with self.subTest(answer.command):
                self.assertTrue(answer.lines, "it printed nothing")
                for line in answer.lines:
                    described = "error" if "error" in line else name.split(".")[0]
                    all_boards = "--all" in answer.command.split()
                    validate(of_one_board(line, described) if all_boards else line, described)

    def test_nothing_is_gone_since_the_samples_were_stored(self):
        broken, new = [], []
        for name, answer in self.answers.items():
            more_broken, more_new = samples.compare(name, answer)
            broken, new = broken + more_broken, new + more_new
        self.assertEqual(broken, [], "\n".join(
            ["programs that read this break:", *broken,
             f"If that has to be: raise {samples.VERSION}, then run scripts/samples."]))
        self.assertEqual(new, [], "\n".join(
            ["not stored yet:", *new, "Describe it in docs/schema, then run scripts/samples."]))

    def test_a_gone_and_a_changed_member_are_noticed(self):
        answer = scenario.Answer(["status"], 0, '{"interface": 1, "ports": [{"port": 1, "link": null}]}')
        kept = samples.load
        self.addCleanup(setattr, samples, "load", kept)
        cases = [
            ({"interface": 1, "ports": [{"port": 1, "link": None}]}, [], []),
            ({"interface": 1, "ports": [{"port": 1}]}, [], ["x: [].ports[].link is new"]),
            ({"interface": 1, "ports": [{"port": "1", "link": None}]}, ["x: [].ports[].port was text, is number"], []),
            ({"interface": 1, "time": "", "ports": []}, ["x: [].time is gone"], []),
            ({"interface": 0, "time": ""}, [], ["x: stored for interface 0"]),
        ]
        for before, broken, new in cases:
            samples.load = lambda name, before=before: {"status": 0, "answer": [before]}
            self.assertEqual(samples.compare("x", answer), (broken, new))


if __name__ == "__main__":
    unittest.main()
