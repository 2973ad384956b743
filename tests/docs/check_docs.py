#!/usr/bin/python3
"""Checks what the documents say against the tree and against the hosted console.

Usage: check_docs.py ROOT PROGRAM CHECK, where CHECK is one of the functions below without its `check_`, or `all`.
"""
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile

from PIL import Image

ROOT = PROGRAM = ""
FAULTS = []

# Named without their build folder.
BUILT = {"artwork/artwork.pack", "artwork/sheet.png"}

# Commands of others that the documents show; their own options aren't ours to check.
FOREIGN_COMMANDS = {"cmake", "ctest", "cpack", "dpkg", "sudo", "sha256sum", "lsblk", "sync", "git", "python3", "cp",
                    "mkdir", "man", "apt", "apt-get", "grep", "jq", "bash", "cd", "clang++", "g++"}


def fault(document, text):
    FAULTS.append(f"{document}: {text}")


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def documents():
    for folder, folders, files in os.walk(ROOT):
        folders[:] = [name for name in folders if name not in ("build", ".git")]
        for name in files:
            if name.endswith(".md"):
                yield os.path.relpath(os.path.join(folder, name), ROOT)


def blocks(text):
    """(info string, lines) of each fenced block."""
    for match in re.finditer(r"^```([^\n]*)\n(.*?)^```$", text, re.MULTILINE | re.DOTALL):
        yield match[1].strip(), match[2].splitlines()


def without_blocks(text):
    return re.sub(r"^```.*?^```$", "", text, flags=re.MULTILINE | re.DOTALL)


def run(*arguments, folder=None):
    return subprocess.run(arguments, cwd=folder or ROOT, capture_output=True, text=True, timeout=300, check=False)


def anchors(text):
    """The anchors of a document's headings, as they are made of them on the web."""
    for heading in re.findall(r"^#+ (.*)$", without_blocks(text), re.MULTILINE):
        yield re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def check_links():
    """Every link and picture leads to a file, and to a heading where it names one."""
    for document in documents():
        text = read(document)
        for target in re.findall(r"\]\(([^)\s]+)\)", without_blocks(text)):
            if "://" in target:
                continue
            path, _, anchor = target.partition("#")
            full = os.path.normpath(os.path.join(os.path.dirname(document), path)) if path else document
            if not os.path.exists(os.path.join(ROOT, full)):
                fault(document, f"the link {target} leads nowhere")
            elif anchor and anchor not in anchors(read(full)):
                fault(document, f"the link {target} names a heading that isn't there")


def check_paths():
    """Every file and folder of the tree that is named exists."""
    tops = "src|platform|tests|docs|tools|artwork|bench|fuzz|cmake|packaging"
    for document in documents():
        if document == "CHANGELOG.md":
            continue
        for path in re.findall(rf"`((?:{tops})/[\w./-]*)`", read(document)):
            if path not in BUILT and not os.path.exists(os.path.join(ROOT, path)):
                fault(document, f"{path} isn't there")


def options_of(help_text):
    return set(re.findall(r"--[a-z][a-z0-9-]*", help_text))


def front_door_commands():
    return set(re.findall(r"^  ([a-z]+)\b", run("./ventara", "--help").stdout, re.MULTILINE))


def check_command(document, words, commands, hosted):
    if words[0] == "./ventara":
        if len(words) < 2:
            return
        if words[1] not in commands and words[1] != "--help":
            fault(document, f"./ventara has no command {words[1]}")
            return
        known = hosted if words[1] == "run" else options_of(run("./ventara", words[1], "--help").stdout)
        rest = words[2:]
    elif os.path.basename(words[0]) == "ventara":
        known, rest = hosted, words[1:]
    elif words[0] in FOREIGN_COMMANDS or words[0].endswith(".py") or words[0].startswith("build/"):
        return
    else:
        fault(document, f"unknown command {words[0]}")
        return
    for word in rest:
        if word == "--":
            return
        if word.startswith("--") and word.split("=")[0] not in known | {"--help"}:
            fault(document, f"{words[0]} {words[1]} has no option {word}")


def check_commands():
    """Every command in a block of shell lines, and every `./ventara ...` in the text, takes the options it is given."""
    commands, hosted = front_door_commands(), options_of(run(PROGRAM, "--help").stdout)
    for document in documents():
        text = read(document)
        lines = [line for info, body in blocks(text) if info == "sh" for line in body]
        lines += re.findall(r"`(\./ventara[^`]*)`", without_blocks(text))
        for line in lines:
            words = shlex.split(line, comments=True)
            if words:
                check_command(document, words, commands, hosted)


def check_help():
    """Every command of ./ventara answers --help, and does nothing else then."""
    for command in sorted(front_door_commands() - {"run"}):
        answer = run("./ventara", command, "--help")
        if answer.returncode != 0 or not re.search(rf"^(usage: .*ventara | *){command}\b", answer.stdout, re.MULTILINE):
            fault("ventara", f"'./ventara {command} --help' doesn't say how {command} is used")


def check_names():
    """Every function, type and field that is named in code style exists in the sources."""
    words = set()
    for top in ("src", "platform", "tests", "tools", "artwork", "docs/examples", "fuzz"):
        for folder, _, files in os.walk(os.path.join(ROOT, top)):
            for name in files:
                if name.endswith((".h", ".cpp", ".py", ".S", ".txt", ".cmake")):
                    words.update(re.findall(r"\w+", read(os.path.join(folder, name))))
                    words.add(name.rsplit(".", 1)[0])
    for document in ("docs/architecture.md", "docs/board-services.md", "docs/reliability.md", "docs/trace.md"):
        for code in re.findall(r"`([^`\n]+)`", without_blocks(read(document))):
            for word in re.findall(r"\b_?[A-Za-z]\w*[A-Z]\w*\b", code):
                is_name = "_" in word or re.search("[a-z]", word)
                if is_name and word not in words:
                    fault(document, f"the sources don't know {word}")


def check_tests():
    """Every test that docs/reliability.md names is there. `.Name` is of the suite named before it."""
    tests = set()
    for folder, _, files in os.walk(os.path.join(ROOT, "tests")):
        for name in files:
            if name.endswith(".cpp"):
                found = re.findall(r"^TEST(?:_[FP])?\((\w+), (\w+)\)", read(os.path.join(folder, name)), re.MULTILINE)
                tests.update(found)
            elif name.endswith(".py"):
                text = read(os.path.join(folder, name))
                for suite, body in re.findall(r"^class (\w+)\(.*?\n(.*?)(?=^\S|\Z)", text, re.MULTILINE | re.DOTALL):
                    tests.update((suite, test) for test in re.findall(r"def (test_\w+)", body))
    suites = {suite for suite, _ in tests}
    suite = ""
    for code in re.findall(r"`([A-Z]?\w*\.?\w*)`", without_blocks(read("docs/reliability.md"))):
        named, dot, test = code.partition(".")
        if named in suites:
            suite = named
        if (not named or named in suites) and dot and (suite, test) not in tests:
            fault("docs/reliability.md", f"there is no test {suite}.{test}")


def includes(*folders):
    """The folders that the sources of these include, by folder."""
    found = {}
    for top in folders:
        for folder, _, names in sorted(os.walk(os.path.join(ROOT, top))):
            for name in names:
                path = os.path.relpath(os.path.join(folder, name), ROOT)
                for header in re.findall(r'^#include "(?:src/)?([^"]+)/[^"/]+"', read(path), re.MULTILINE):
                    found.setdefault(os.path.dirname(path), set()).add(header)
                found.setdefault(os.path.dirname(path), set())
    return found


def check_rooms():
    """What rooms include is what the table of docs/architecture.md says of them, and stands above them there."""
    table = read("docs/architecture.md").split("## Rooms")[1]
    rows = re.findall(r"^\| `src/([\w/]+)` \|.*\|([^|]*)\|$", table, re.MULTILINE)
    order = [room for room, _ in rows]
    told = {room: set(re.findall(r"[\w/]+", names)) for room, names in rows}
    found = {folder[len("src/"):]: others - {folder[len("src/"):]} for folder, others in includes("src").items()}
    for room in sorted(set(found) | set(told)):
        if found.get(room) != told.get(room):
            fault("docs/architecture.md", f"src/{room} includes {sorted(found.get(room, []))}")
        for other in found.get(room, ()):
            if room in order and (other not in order or order.index(other) > order.index(room)):
                fault(f"src/{room}", f"includes {other}")
    for folder, others in includes("platform/board", "platform/display").items():
        for other in sorted(others & set(order) - {"uefi", "shell/contract"}):
            fault(folder, f"includes src/{other}")


def record(text):
    return json.loads(text)


def matches(wanted, line):
    return all(name in line and line[name] == value for name, value in wanted.items())


def play(script, options, exit_status, wanted):
    """Plays a script and looks for the wanted trace lines in their order. Says what is wrong, or nothing."""
    with tempfile.TemporaryDirectory(prefix="ventara-docs-") as folder:
        with open(os.path.join(folder, "script.txt"), "w", encoding="utf-8") as file:
            file.write("\n".join(script) + "\n")
        done = run(PROGRAM, "--script", "script.txt", "--trace", "trace.jsonl", *options, folder=folder)
        if done.returncode != exit_status:
            return f"ended with {done.returncode}: {done.stderr.strip()}"
        for line in script:
            words = line.split()
            if words and words[0] == "screenshot" and not os.path.isfile(os.path.join(folder, words[1])):
                return f"left no {words[1]}"
        with open(os.path.join(folder, "trace.jsonl"), encoding="utf-8") as file:
            lines = iter([record(line) for line in file])
        for text in wanted:
            if not any(matches(record(text), line) for line in lines):
                return f"its trace has no line (any more) with {text}"
    return None


def check_scripts():
    """Every script of the documents plays, and its trace has the lines that stand below it."""
    count = 0
    for document in documents():
        found = list(blocks(read(document)))
        for at, (info, body) in enumerate(found):
            kind, *extra = shlex.split(info) if info else [""]
            extra = dict(word.split("=", 1) for word in extra)
            if kind == "script-wrong":
                with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
                    file.write("\n".join(body) + "\n")
                    file.flush()
                    done = run(PROGRAM, "--script", file.name)
                if done.returncode != 2 or f":{extra['expects']}: expected" not in done.stderr:
                    fault(document, f"a wrong script gave {done.returncode}: {done.stderr.strip()}")
            elif kind == "script":
                wanted = found[at + 1][1] if at + 1 < len(found) and found[at + 1][0] == "trace" else []
                wrong = play(body, shlex.split(extra.get("options", "")), int(extra.get("exit", 0)), wanted)
                if wrong:
                    fault(document, f"the script that begins '{body[0]}': {wrong}")
                count += 1
    if count < 8:
        fault("docs", f"only {count} scripts were found")


def check_tour():
    """The tour plays, every change reaches its fan, and nothing is left behind."""
    wrong = play(read("docs/tour.txt").splitlines(), [], 0, [
        '{"call":"SetFan4Setting","status":"0x0000000000000000"}',
        '{"call":"SetFan7Setting","status":"0x0000000000000000"}',
        '{"call":"SetAllFansFullSpeed"}', '{"call":"LoadDefaultFanSettings"}', '{"call":"RestoreFanSettings"}',
        '{"call":"CreateMessageBox","y":240}', '{"call":"CreateMessageBox","y":159}',
        '{"call":"Return","status":"0x0000000000000000","blocks":0}'])
    if wrong:
        fault("docs/tour.txt", wrong)


def check_script_commands():
    """The table of script commands names what the player takes, and nothing else."""
    with tempfile.NamedTemporaryFile("w", suffix=".txt") as file:
        file.write("nonsense\n")
        file.flush()
        answer = run(PROGRAM, "--script", file.name).stderr
    known = set(re.search(r"a command \(([^)]*)\)", answer)[1].split(", "))
    table = read("docs/trace.md").split("### Commands")[1].split("### ")[0]
    told = {name for row in re.findall(r"^\| (`.*?) \|", table, re.MULTILINE) for name in re.findall(r"`(\w+)", row)}
    if known != told:
        fault("docs/trace.md", f"script commands differ: {sorted(known ^ told)}")


def check_options():
    """The manual page has every option of the command, and the README every board."""
    answer = run(PROGRAM, "--help").stdout
    page = read("docs/ventara.1").replace("\\-", "-")
    told = set(re.findall(r"^\.(?:BR?|TP) .*?(--[a-z-]+)", page, re.MULTILINE))
    if told != options_of(answer):
        fault("docs/ventara.1", f"options differ: {sorted(told ^ options_of(answer))}")
    readme = read("README.md")
    for board in re.search(r"^Boards: (.*)$", answer, re.MULTILINE)[1].split(", "):
        for name, text in (("README.md", readme), ("docs/ventara.1", page)):
            if not re.search(rf"[`\\fB]{board}\b", text):
                fault(name, f"the board {board} isn't named")


def check_versions():
    """One version everywhere."""
    version = re.search(r"project\(Ventara VERSION ([\d.]+)", read("CMakeLists.txt"))[1]
    said = {"the command": run(PROGRAM, "--version").stdout.split()[-1],
            "CHANGELOG.md": re.search(r"^## ([\d.]+)", read("CHANGELOG.md"), re.MULTILINE)[1],
            "docs/ventara.1": re.search(r'^\.TH .*"ventara ([\d.]+)"', read("docs/ventara.1"), re.MULTILINE)[1]}
    for place, other in said.items():
        if other != version:
            fault(place, f"says {other} where the project says {version}")


def check_pictures():
    """The animation is whole and small enough to be loaded with a page; every picture is used."""
    folder = os.path.join(ROOT, "docs", "pictures")
    used = "".join(read(document) for document in documents())
    for name in sorted(os.listdir(folder)):
        if f"pictures/{name}" not in used:
            fault(f"docs/pictures/{name}", "no document shows it")
    path = os.path.join(folder, "tour.png")
    if os.path.getsize(path) > 1_500_000:
        fault("docs/pictures/tour.png", f"has {os.path.getsize(path)} bytes")
    with Image.open(path) as animation:
        for frame in range(animation.n_frames):
            animation.seek(frame)
            animation.load()  # fails if it isn't whole
        if animation.n_frames < 20:
            fault("docs/pictures/tour.png", f"has {animation.n_frames} pictures")


def main():
    global ROOT, PROGRAM
    ROOT, PROGRAM, wanted = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]), sys.argv[3]
    checks = {name[6:]: check for name, check in globals().items() if name.startswith("check_") and check.__doc__
              and check.__code__.co_argcount == 0}
    if wanted == "list":
        print("\n".join(checks))
        return
    for name in checks if wanted == "all" else [wanted]:
        checks[name]()
    for text in FAULTS:
        print(text)
    sys.exit(1 if FAULTS else 0)


if __name__ == "__main__":
    main()
