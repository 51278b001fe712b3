"""Runs every command of appletctl in every way in which it can be run, and holds its documents against the schemas.

    json_test.py APPLETCTL FOLDER_OF_SCHEMAS

The commands are those that the program lists by itself. One that has no row below is run with the examples of its help;
one that has no schema fails the test.
"""

import json
import os
import pathlib
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import jsonschema

LONGEST = 600  # seconds: only a command that hangs takes so long, under a sanitizer too

APPLETCTL, SCHEMAS = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()

SCENARIO = "# first\nset FG_WIDTH=2048\nexpect value FG_WIDTH == 2048\nset FG_WIDTH=3\n"

# Of each command the words of several runs; the first one is run in every way, the others in the shell.
RUNS = {
    "list": ["linetrigger", "--changed -f name,role", "FG_OVERFLOW"],
    "get": ["FG_WIDTH FG_VANTAGEPOINT", "'FG_LUT_VALUE_RED[1]' 'FG_LUT_VALUE_RED[2..4]' FG_LUT_VALUE_RED",
            "-g roi"],
    "set": ["FG_SENSORWIDTH=8192 FG_WIDTH=2044 FG_VANTAGEPOINT=Top-Right FG_WIDTH=20000 FG_HEIGHT=8",
            "--any-order --verify FG_VANTAGEPOINT=1 FG_SENSORWIDTH=4096 FG_WIDTH=4096",
            "--any-order FG_WIDTH=3 FG_HEIGHT=512", "'FG_LUT_VALUE_RED[0..3]=7' FG_DEBUGFILE="],
    "reset": ["FG_WIDTH FG_VANTAGEPOINT FG_VANTAGEPOINT=2 FG_WIDTH=2048", "", "FG_WIDTH=3",
              "'FG_LUT_VALUE_RED[1]' 'FG_LUT_VALUE_RED[0..3]=7'"],
    "limits": ["FG_CAMERASIMULATOR_LINERATE FG_VANTAGEPOINT", "FG_LINEPERIODE 'FG_LUT_VALUE_RED[3]' FG_CAMSTATUS --with FG_XOFFSET=64",
               "FG_DEBUGFILE FG_CAMERASIMULATOR_PIXEL_FREQUENCY", "FG_WIDTH --with FG_WIDTH=3",
               "--offline FG_SYSTEMMONITOR_FPGA_TEMPERATURE 'FG_LUT_VALUE_RED[3..5]'"],
    "why": ["FG_LINETRIGGERINSRC FG_WIDTH=1022", "FG_VANTAGEPOINT=1 FG_WIDTH=20000 FG_CAMSTATUS FG_WIDTH=512",
            "'FG_LUT_VALUE_RED[0]' 'FG_LUT_VALUE_RED[3]=70000'", "--offline FG_SYSTEMMONITOR_FPGA_TEMPERATURE"],
    "deps": ["FG_VANTAGEPOINT", "FG_LINEPERIODE --dot"],
    "plan": ["FG_LINETRIGGERMODE=ASYNC_TRIGGER 'FG_LUT_VALUE_RED[0..3]=7' FG_LUT_SAVE_FILE=x.lut FG_WIDTH=3", "a.mcf"],
    "apply": ["--yes FG_LINETRIGGERMODE=ASYNC_TRIGGER FG_LINEPERIODE=100", "--yes a.mcf", "--yes FG_WIDTH=3"],
    "describe": ["FG_WIDTH FG_VANTAGEPOINT", "FG_DEBUGFILE FG_LUT_VALUE_RED FG_CAMSTATUS"],
    "xml": ["--check", "", "-o x.xml", "--portable"],
    "watch": ["FG_WIDTH FG_VANTAGEPOINT --count 2 --interval 5",
              "FG_WIDTH --count 2 --interval 1 --fail-if 'FG_HEIGHT >= 1'"],
    "route": ["--dot FG_TRIGGERCAMERA_POLARITY=FG_LOW FG_WIDTH=2048", "", "FG_WIDTH=3"],
    "lint": ["FG_LINEEXPOSURE=150 FG_LINEPERIODE=100.003", "a.mcf", "missing.mcf",
             "FG_LINEPERIODE=200 'FG_LUT_VALUE_RED[3]=5'"],
    "timing": ["FG_LINEEXPOSURE=60 FG_LINETRIGGERDELAY=40", "--svg t.svg --vcd t.vcd",
               "--measured FG_CAMERASIMULATOR_ENABLE=1 --wave GPI_1=square:100us --svg m.svg --window 1ms..2ms"],
    "grab": ["2 -o g-%d.png --hash FG_CAMERASIMULATOR_ENABLE=1 FG_HEIGHT=8", "--lines 9 --stats --events e.jsonl FG_CAMERASIMULATOR_ENABLE=1 FG_HEIGHT=8",
             "--stats --timeout 1ms", "--frames 1 FG_WIDTH=3",
             "FG_CAMERASIMULATOR_ENABLE=1 FG_HEIGHT=4 --wave GPI_0=squire"],
    "docs": ["--html d.html"],
    "report": ["FG_WIDTH=2048 FG_HEIGHT=8", "-o r.txt", "FG_WIDTH=3"],
    "save": ["b.mcf FG_WIDTH=2048 FG_LINEPERIODE=150.4", "b.txt", "b.mcf FG_WIDTH=3"],
    "load": ["a.mcf FG_WIDTH=2048 FG_HEIGHT=8", "--strict broken.mcf", "broken.mcf"],
    "check": ["broken.mcf", "missing.mcf"],
    "diff": ["a.mcf FG_WIDTH=1024 FG_VANTAGEPOINT=2", "a.mcf broken.mcf --live"],
    "trace": ["set FG_WIDTH=2048 FG_HEIGHT=8", "diff a.trace b.trace", "diff a.trace --color never b.trace"],
    "run": ["station.scenario"],
    "shell": [""],
    "serve": ["../name FG_WIDTH=3"],
    "station list": [""],
    "station stop": ["none"],
    "station log": ["none"],
    "station address": ["none"],
    "help": ["", "set", "lut show"],
    "__complete": ["-- get FG_WID"],
    "lut show": ["FG_PROCESSING_GAIN=2 FG_LUT_ENABLE=ON"],
    "lut plot": ["l.svg FG_PROCESSING_GAIN=2 FG_PROCESSING_OFFSET=1"],
    "lut save": ["l.lut FG_PROCESSING_GAIN=2 FG_PROCESSING_OFFSET=1"],
    "lut load": ["a.lut FG_PROCESSING_GAIN=2 FG_PROCESSING_OFFSET=1", "missing.lut"],
}
OF_THE_SHELL = ["set FG_WIDTH=2048", "undo", "undo", "set FG_CAMERASIMULATOR_WIDTH=4096", "undo", "nonsense", "get 'open",
                "help undo", "exit"]
NOT_IN_THE_SHELL = {"shell", "run", "apply", "completion", "help", "serve", "station list", "station stop", "station log",
                    "station address"}
NOT_TRACED = {"shell", "trace", "run"}
PRINTS_DOCUMENTS = {"xml", "completion", "report"}
USES_SCRATCH_BOARD = {"list", "set", "reset", "limits", "why", "deps", "plan", "apply", "describe", "route", "lint", "docs",
                      "report", "save", "load", "check", "diff", "shell"}
NO_NOTES_ON_THE_BOARD = {"run", "serve", "trace", "__complete"}
# What a person must not see: texts of libraries and of uncaught exceptions.
CRASH = re.compile(r"terminate called|internal error|json\.exception|what\(\)|std::|basic_string|ended unexpectedly|core dumped")


def run(words, text="", **settings):
    """Exit code, standard output and error output of a run."""
    done = subprocess.run([APPLETCTL, *words], input=text.encode(), capture_output=True, timeout=LONGEST, **settings)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def documents(text):
    """The JSON documents in the text, which are concatenated."""
    found, decoder = [], json.JSONDecoder()
    text = text.strip()
    while text:
        document, end = decoder.raw_decode(text)
        found.append(document)
        text = text[end:].lstrip()
    return found


def listed(*words):
    """The commands that completion offers after these words."""
    code, out, _ = run(["__complete", "--", *words, ""])
    assert code == 0, words
    return {line.split("\t")[0] for line in out.splitlines()}


def catches(process, number):
    """True when the process has a handler for the signal."""
    status = pathlib.Path(f"/proc/{process}/status").read_text()
    return int(re.search(r"SigCgt:\s*(\w+)", status)[1], 16) >> (number - 1) & 1


def validator(name):
    """A validator of one schema, with the parts that it shares with others put into it."""
    schema = json.loads((SCHEMAS / f"{name}.schema.json").read_text().replace("common.schema.json#", "#"))
    common = json.loads((SCHEMAS / "common.schema.json").read_text())["$defs"]
    schema["$defs"] = common | schema.get("$defs", {})
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


VALIDATORS = {}


def schema_of(command):
    """The name of the schema of a document of that command."""
    if command != "trace diff":
        command = command.removeprefix("trace ")
    return command.lstrip("_").replace(" ", "-") or "appletctl"


def commands():
    """The full names of all commands."""
    offered = listed() | {"__complete"}
    groups = {command.split()[0] for command in RUNS if " " in command}
    return offered - groups | {f"{group} {name}" for group in groups for name in listed(group)}


def examples(command):
    """The words of the examples in the command's help."""
    text = run([*command.split(), "--help"], env={**os.environ, "COLUMNS": "1000"})[1]
    return re.findall(rf"(?m)^  appletctl {command} ?(.*)$", text)


for added in sorted(commands() - set(RUNS)):
    RUNS[added] = examples(added)

# Command, words and standard input of the runs that are done in every way.
FIRST_RUNS = [(command, shlex.split(f"{command} {runs[0]}"), "\n".join(OF_THE_SHELL) if command == "shell" else "")
              for command, runs in RUNS.items()]


class EveryCommand(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        os.chdir(cls.folder.name)
        state = "save a.mcf FG_WIDTH=2048\nlut save a.lut\nexit\n"
        assert run(["shell"], state)[0] == 0
        text = pathlib.Path("a.mcf").read_text()
        text = re.sub(r"(?m)^FG_HEIGHT=.*\n", "", text)
        pathlib.Path("broken.mcf").write_text(re.sub(r"(?m)^FG_WIDTH=.*", "FG_WIDTH=1022;", text))
        pathlib.Path("station.scenario").write_text(SCENARIO)
        pathlib.Path("a.trace").write_text(run(["trace", "set", "FG_WIDTH=2048", "--json"])[1])
        pathlib.Path("b.trace").write_text(run(["trace", "set", "FG_WIDTH=2044"])[1])

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        cls.folder.cleanup()

    def check(self, document):
        name = schema_of(document.get("command", ""))
        if name not in VALIDATORS:
            VALIDATORS[name] = validator(name)
        errors = sorted(VALIDATORS[name].iter_errors(document), key=jsonschema.exceptions.relevance)
        if errors:
            worst = jsonschema.exceptions.best_match(errors)
            self.fail(f"{document['command']}: {worst.json_path}: {worst.message[:600]}")

    def check_no_crash(self, code, out, err, codes=(0, 1, 2, 3)):
        self.assertIn(code, codes, err)
        self.assertIsNone(CRASH.search(err), err)
        self.assertIsNone(CRASH.search(out), out[-400:])

    def test_has_a_run_and_a_schema(self):
        self.assertEqual(commands(), set(RUNS))
        self.assertTrue(all(RUNS.values()), RUNS)
        for command in set(RUNS) - {"trace"}:
            self.assertTrue((SCHEMAS / f"{schema_of(command)}.schema.json").exists(), command)

    def test_station_files(self):
        page = (SCHEMAS.parent / "station-file.md").read_text()
        examples = re.findall(r"^```json file=.*\n((?:.*\n)*?)```$", page, flags=re.MULTILINE)
        self.assertEqual(len(examples), 2)
        schema = jsonschema.Draft202012Validator(json.loads((SCHEMAS / "station-file.schema.json").read_text()))
        for example in map(json.loads, examples):
            schema.validate(example)
            for path in (["camera"], ["belt", "profile", 0], ["belt", "encoder"], []):
                part = example
                for key in path:
                    part = part[key]
                part["unknown"] = 1
                self.assertFalse(schema.is_valid(example), path)
                del part["unknown"]

    def test_as_json_and_as_plain_text(self):
        for command, words, text in FIRST_RUNS:
            with self.subTest(" ".join(words)):
                code, out, err = run(["--json", "-v", *words], text)
                self.check_no_crash(code, out, err)
                found = documents(out)
                if command not in ("watch", "shell"):
                    self.assertEqual(len(found), 1)
                    self.assertEqual(found[0]["done"], code == 0)
                    self.assertEqual(found[0]["command"], "trace set" if command == "trace" else command)
                for document in found:
                    self.check(document)
                self.check_notes(command, err)
                plain, out, err = run(["--plain", *words], text)
                self.check_no_crash(plain, out, err)
                self.assertEqual(plain, code)
                self.assertTrue(out or err)
                self.assertNotIn("\033", out + err)
                if command not in PRINTS_DOCUMENTS:
                    self.check_numbers(out)

    def check_notes(self, command, notes):
        """-v says what was done, and what the scratch board was asked where the command uses it."""
        self.assertRegex(notes, r"' took \d+\.\d ms\n")
        asks = "appletctl: scratch board: asked " in notes
        self.assertEqual(asks, command in USES_SCRATCH_BOARD, notes)

    def check_numbers(self, text):
        """A person reads twelve significant digits, and no exponent where there need be none."""
        for number in re.findall(r"(?<![\w.])\d+\.\d+", text):
            self.assertLessEqual(len(number.replace(".", "").lstrip("0")), 12, number)
        self.assertNotRegex(text, r"\de\+0\d\b")

    def test_help_says_what_opens_the_board_of_the_system(self):
        folder = pathlib.Path(documents(run(["info", "--json"])[1])[0]["boardLibrary"]).parent
        for command, words, text in FIRST_RUNS:
            if command in NO_NOTES_ON_THE_BOARD:
                continue
            with self.subTest(" ".join(words)):
                page = run([*command.split(), "--help"], env={**os.environ, "COLUMNS": "1000"})[1]
                yes = ["--yes"] if "--yes" in page else []
                code, out, err = run(["-v", "--board", "system", *words, *yes], text,
                                     env={**os.environ, "LD_LIBRARY_PATH": str(folder)})
                self.check_no_crash(code, out, err)
                self.assertEqual("brought up in" in err, "It opens no board." not in page, page[-400:] + err)

    def test_the_log_is_that_of_the_live_board(self):
        log = run(["set", "FG_CAMSTATUS=1"], env={**os.environ, "VBOARD_LOG_LEVEL": "4"})[2]
        self.assertEqual(len(re.findall(r"(?m)^\[\d\] ", log)), 1, log[:400])

    def test_wrong_arguments(self):
        for command in set(RUNS) - {"__complete"}:  # which offers nothing for them
            with self.subTest(command):
                for line in ("FG_WIDHT FG_HIEGHT=1", "'' =", "FG_WIDTH[5] FG_LUT_VALUE_RED[9..2]=1"):
                    code, out, err = run([*command.split(), "--json", *shlex.split(line)])
                    self.check_no_crash(code, out, err)
                    for document in documents(out):
                        self.check(document)

    def test_help_and_usage_need_no_library(self):
        settings = {"env": {**os.environ, "APPLET_UNDER_TEST": "/nowhere/libx.so"}}
        for command in set(RUNS) - {"__complete"}:
            with self.subTest(command):
                code, out, err = run([*command.split(), "--help"], **settings)
                self.assertEqual((code, err), (0, ""))
                self.assertIn("Usage: ", out)
                code, out, err = run(["--json", *command.split(), "--jsno"], **settings)
                self.assertEqual(code, 2)
                document, = documents(out)
                self.check(document)
                self.assertEqual(document["command"], command)
                self.assertIn("there is no option '--jsno'; did you mean '--json'?", err)
        for words in (["--version"], ["completion", "zsh"], ["__complete", "--", "lut", "s"]):
            code, out, err = run(words, **settings)
            self.assertEqual((code, err), (0, ""))
            self.assertTrue(out, words)

    def test_errors_are_documents(self):
        rows = [(["info", "--applet", "/nowhere/libx.so"], 3), (["limits", "FG_WIDTH", "--applet", "/nowhere/libx.so"], 3),
                (["get", b"\xff\xfe"], 2), (["bogus"], 2), ([], 2), (["events", "--offline"], 2), (["route", "--offline"], 0),
                (["describe", "FG_LINETRIGGERMODE", "--offline"], 0), (["--help"], 0), (["set", "--help"], 0), (["lut"], 2), (["trace"], 2), (["trace", "lut", "shw"], 2), (["trace", "trace", "x"], 2),
                (["watch", "FG_WIDTH", "--count", "0"], 2), (["get", "FG_WIDTH", "--look"], 0), (["report", "--look"], 0),
                (["watch", "FG_WIDTH", "--count", "1", "--look"], 0), (["why", "FG_LUT_CUSTOM_FILE=x.lut"], 0),
                (["set", "FG_LUT_CUSTOM_FILE=x.lut"], 0)]
        for words, expected in rows:
            code, out, err = run([*words, "--json"])
            self.check_no_crash(code, out, err, (expected,))
            document, = documents(out)
            self.check(document)
            self.assertEqual((document["done"], err == ""), (code == 0, code == 0), err)

    def test_into_a_closed_pipe_and_interrupted(self):
        for command, words, text in FIRST_RUNS:
            with self.subTest(" ".join(words)):
                reader, writer = os.pipe()
                os.close(reader)
                with subprocess.Popen([APPLETCTL, *words], stdin=subprocess.PIPE, stdout=writer,
                                      stderr=subprocess.PIPE) as closed:
                    os.close(writer)
                    _, err = closed.communicate(text.encode(), timeout=LONGEST)
                self.check_no_crash(closed.returncode, "", err.decode(), (0, 1, 2, 3, -signal.SIGPIPE, 128 + signal.SIGPIPE))
                with subprocess.Popen([APPLETCTL, *words, "--json"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE) as interrupted:
                    try:
                        interrupted.wait(0.02)
                    except subprocess.TimeoutExpired:
                        interrupted.send_signal(signal.SIGINT)
                    out, err = interrupted.communicate(text.encode(), timeout=LONGEST)
                self.check_no_crash(interrupted.returncode, out.decode(), err.decode(),
                                    (0, 1, 2, 3, 130, -signal.SIGINT))
                if interrupted.returncode == 130:
                    for document in documents(out.decode()):
                        self.check(document)

    def test_watch_ends_on_ctrl_c_with_whole_documents(self):
        for words in (["watch"], ["trace", "watch"]):
            with subprocess.Popen([APPLETCTL, *words, "FG_WIDTH", "--json", "--interval", "1"],
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE) as watch:
                while not catches(watch.pid, signal.SIGINT):
                    time.sleep(0.01)
                watch.send_signal(signal.SIGINT)
                out, err = watch.communicate(timeout=LONGEST)
            self.assertEqual((watch.returncode, err), (130, b""))
            found = documents(out.decode())
            self.assertTrue(found)
            for document in found:
                self.check(document)

    def test_in_the_shell(self):
        lines = [f"{command} {words}" for command, runs in RUNS.items() for words in runs
                 if command not in NOT_IN_THE_SHELL]
        lines += [f"trace {command} {runs[0]}" for command, runs in RUNS.items()
                  if command not in NOT_IN_THE_SHELL | NOT_TRACED]
        lines += [f"apply {words}" for words in RUNS["apply"]] + OF_THE_SHELL
        code, out, err = run(["shell", "-k", "--json"], "\n".join(lines))
        self.check_no_crash(code, out, err)
        found = documents(out)
        rounds = sum(document["command"] == "watch" for document in found)
        self.assertEqual(len(found) - rounds, len(lines) - len(RUNS["watch"]))
        for document in found:
            with self.subTest(document["command"]):
                self.check(document)
        code, out, err = run(["shell", "-k", "--plain"], "\n".join(lines))
        self.check_no_crash(code, out, err)
        self.assertNotIn("{\"schema\"", re.sub(r"(?m)^\{\"schema\".*\"command\":\"watch\".*\n", "", out))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
