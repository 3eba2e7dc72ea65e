"""Sample answers in tests/samples, and what has changed since they were stored.

A program that reads quivordctl's JSON relies on members and their types. What joins does it no harm, what
goes or becomes something else does."""

import json
import pathlib

SAMPLES = pathlib.Path(__file__).resolve().parent.parent / "samples"
VERSION = "kInterfaceVersion in client/include/quivord/interface_version.h"


def shape(value):
    """The members of a value with their types; a list has one shape, that of all its entries."""
    if isinstance(value, dict):
        return {key: shape(entry) for key, entry in value.items()}
    if isinstance(value, list):
        merged = None
        for entry in value:
            merged = merge(merged, shape(entry))
        return [merged]
    return {bool: "flag", int: "number", float: "number", str: "text", type(None): "null"}[type(value)]


def merge(one, other):
    if one is None or one == other:
        return other
    if isinstance(one, dict) and isinstance(other, dict):
        return {key: merge(one.get(key), other.get(key, one.get(key))) for key in {**one, **other}}
    if isinstance(one, list) and isinstance(other, list):
        return [merge(one[0], other[0]) if other[0] is not None else one[0]]
    return "null" if one == "null" and other == "null" else one if other == "null" else other


def changes(before, after, place=""):
    """What breaks a reader, and what is new, a line each with its place."""
    broken, new = [], []
    if isinstance(before, dict) and isinstance(after, dict):
        for key in before:
            where = f"{place}.{key}" if place else key
            if key not in after:
                broken.append(f"{where} is gone")
            else:
                more_broken, more_new = changes(before[key], after[key], where)
                broken, new = broken + more_broken, new + more_new
        new += [f"{place}.{key}" if place else key for key in after if key not in before]
    elif isinstance(before, list) and isinstance(after, list):
        if before[0] is not None and after[0] is not None:
            return changes(before[0], after[0], place + "[]")
    elif before != after:
        words = [next(iter(kind)) if isinstance(kind, (dict, list)) and len(kind) == 1 else kind
                 for kind in (before, after)]
        broken.append(f"{place} was {words[0]}, is {words[1]}")
    return broken, new


def short(value):
    """The value with each list cut down to what shows its shape."""
    if isinstance(value, dict):
        return {key: short(entry) for key, entry in value.items()}
    if isinstance(value, list):
        kept, shapes = [], []
        for entry in value:
            if shape(entry) not in shapes:
                shapes.append(shape(entry))
                kept.append(short(entry))
        return kept
    return value


def stored(answer):
    return {"status": answer.status, "answer": [short(line) for line in answer.lines]}


def load(name):
    path = SAMPLES / f"{name}.json"
    return json.loads(path.read_text()) if path.exists() else None


def save(name, answer):
    """Stores the answer where it has another shape than the one that is stored: values alone change each time."""
    if compare(name, answer) == ([], []):
        return
    SAMPLES.mkdir(exist_ok=True)
    (SAMPLES / f"{name}.json").write_text(json.dumps(stored(answer), indent=1, ensure_ascii=False) + "\n")


def version(sample):
    return sample["answer"][0]["interface"] if sample["answer"] else 0


def compare(name, answer):
    """Faults as text: what would break a reader, what isn't stored yet. Both are empty where all is as it was."""
    before, now = load(name), stored(answer)
    if before is None:
        return [], [f"{name}: there is no sample of it"]
    broken, new = changes(shape(before["answer"]), shape(now["answer"]))
    if before["status"] != now["status"]:
        broken.append(f"the exit status was {before['status']}, is {now['status']}")
    if version(now) > version(before):
        return [], [f"{name}: stored for interface {version(before)}"]
    return [f"{name}: {text}" for text in broken], [f"{name}: {text} is new" for text in new]
