"""Commands on a running station: the same answers as without one, a state that lasts, clients that come and go.

    station_commands_test.py APPLETCTL
"""

import json
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

LONGEST = 300  # seconds: only a station that hangs takes so long, under a sanitizer too
APPLETCTL = pathlib.Path(sys.argv[1]).resolve()


def run(*words, **settings):
    """Exit code, standard output and error output of a run."""
    done = subprocess.run([APPLETCTL, *words], capture_output=True, timeout=LONGEST, text=True, **settings)
    return done.returncode, done.stdout, done.stderr


def on(name, *words, **settings):
    return run("--station", name, *words, **settings)


def status(name):
    found = [one for one in json.loads(run("--json", "station", "list")[1])["stations"] if one["name"] == name]
    return found[0] if found else None


def wait_for(condition):
    end = time.monotonic() + LONGEST
    while not condition():
        assert time.monotonic() < end, "it did not come"
        time.sleep(0.01)


class Stations(unittest.TestCase):
    def setUp(self):
        # The path of a socket is short.
        self.folder = tempfile.TemporaryDirectory(dir="/tmp")
        self.addCleanup(self.folder.cleanup)
        os.environ["XDG_RUNTIME_DIR"] = self.folder.name
        os.environ.pop("APPLETCTL_STATION", None)
        os.chdir(self.folder.name)

    def serve(self, name, *words):
        code, _, problems = run("serve", name, "--detach", "--clock", "stepped", *words)
        self.assertEqual((code, problems), (0, ""))
        self.addCleanup(run, "station", "stop", name)
        return status(name)["process"]

    def test_keeps_the_state_between_commands(self):
        self.serve("line", "FG_WIDTH=2048")
        self.assertEqual(on("line", "get", "FG_WIDTH")[1], "FG_WIDTH = 2048 pixel\n")
        self.assertEqual(on("line", "set", "FG_WIDTH=1024")[0], 0)
        self.assertEqual(on("line", "--plain", "get", "FG_WIDTH", cwd="/")[1], "FG_WIDTH\t1024\tpixel\n")
        self.assertEqual(on("line", "shell", input="set FG_WIDTH=512\nundo\nget FG_WIDTH\nexit\n")[1].splitlines()[-1],
                         "FG_WIDTH = 1024 pixel")
        os.mkdir("below")
        self.assertEqual(on("line", "save", "a.mcf", cwd="below")[0], 0)
        self.assertIn("FG_WIDTH=1024", pathlib.Path("below/a.mcf").read_text())
        self.assertEqual(on("line", "check", "a.mcf", cwd="below")[0], 0)
        self.assertEqual(run("station", "stop", "lime"), (3, "", "appletctl: there is no station 'lime' (running: line)\n"))
        for words in (["station", "stop", ""], ["--station", "l"]):
            self.assertEqual(run("__complete", "--", *words)[1], "line\n")
        self.assertEqual(run("get", "FG_WIDTH", env=os.environ | {"APPLETCTL_STATION": "line"})[1],
                         "FG_WIDTH = 1024 pixel\n")

    def test_answers_as_without_a_station(self):
        pathlib.Path("a.scenario").write_text("set FG_WIDTH=2048\nexpect value FG_WIDTH == 2048\nset FG_WIDTH=3\n")
        pathlib.Path("a.mcf").write_text("[Parameter]\nFG_WIDTH=1022;\n")
        for line in ["list width", "--json get FG_WIDTH FG_VANTAGEPOINT", "set FG_WIDTH=1023", "get FG_WIDHT",
                     "--json why FG_WIDTH=20000", "limits FG_WIDTH --with FG_XOFFSET=64", "plan FG_WIDTH=2048 --plain",
                     "info --json", "describe FG_VANTAGEPOINT", "--json check a.mcf", "lint FG_LINEEXPOSURE=150",
                     "trace set FG_WIDTH=2048", "grab --hash FG_CAMERASIMULATOR_ENABLE=1 FG_HEIGHT=8", "list --offline",
                     "--color always list FG_WIDTH", "nonsense", "run a.scenario", "timing FG_LINEEXPOSURE=60"]:
            with self.subTest(line):
                self.serve("same")
                words = line.split()
                alone, there = run(*words), on("same", *words)
                run("station", "stop", "same")
                if "--offline" in words:
                    self.assertEqual(there[0], 2)
                    self.assertIn("'serve'", there[2])
                else:
                    self.assertEqual(alone, there)

    def test_interrupts_and_allows_status_meanwhile(self):
        process = self.serve("line", "FG_CAMERASIMULATOR_ENABLE=1")
        for end, code in [(signal.SIGINT, 130), (signal.SIGTERM, 130), (signal.SIGKILL, -9)]:
            grab = subprocess.Popen([APPLETCTL, "--station", "line", "grab", "100000000", "--hash"],
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            wait_for(lambda: "grab" in (status("line")["command"] or ""))
            self.assertEqual(on("line", "get", "FG_WIDTH")[1], "FG_WIDTH = 1024 pixel\n")
            self.assertIn("grab", status("line")["command"])
            grab.send_signal(end)
            self.assertEqual(grab.wait(LONGEST), code)
            wait_for(lambda: status("line")["command"] is None)
        self.assertEqual(on("line", "set", "FG_WIDTH=2048")[0], 0)
        self.assertEqual(status("line")["process"], process)
        exits = [entry["exitCode"] for entry in json.loads(run("--json", "station", "log", "line")[1])["commands"]]
        self.assertEqual(exits.count(130), 3)

    def test_interrupt_of_a_waiting_command_affects_no_other(self):
        self.serve("line")
        watch = subprocess.Popen([APPLETCTL, "--station", "line", "--plain", "watch", "FG_WIDTH", "--interval", "1000",
                                  "--count", "20"], stdout=subprocess.PIPE, text=True)
        wait_for(lambda: status("line")["command"] is not None)
        self.assertEqual(on("line", "list", "FG_WIDTH")[0], 0)
        waiting = subprocess.Popen([APPLETCTL, "--station", "line", "set", "FG_WIDTH=512"])
        wait_for(lambda: status("line")["waiting"] == 1)
        waiting.send_signal(signal.SIGINT)
        self.assertEqual(waiting.wait(LONGEST), 130)
        self.assertEqual(watch.communicate(timeout=LONGEST)[0].count("FG_WIDTH"), 20)
        self.assertEqual(watch.returncode, 0)
        self.assertEqual(on("line", "get", "FG_WIDTH")[1], "FG_WIDTH = 1024 pixel\n")

    def test_replaces_a_killed_server(self):
        os.kill(self.serve("line", "FG_WIDTH=2048"), signal.SIGKILL)
        wait_for(lambda: status("line") is None)
        code, _, problems = on("line", "get", "FG_WIDTH")
        self.assertEqual(code, 3)
        self.assertIn("appletctl serve line", problems)
        self.serve("line")
        self.assertEqual(on("line", "get", "FG_WIDTH")[1], "FG_WIDTH = 1024 pixel\n")
        self.assertEqual(run("serve", "line")[0], 1)
        folder = pathlib.Path("appletctl")
        self.assertEqual(folder.stat().st_mode & 0o777, 0o700)
        self.assertEqual((folder / "line.socket").stat().st_mode & 0o777, 0o600)
        self.assertEqual(run("station", "stop", "line")[0], 0)
        self.assertIsNone(status("line"))

    def test_leaves_nothing_behind_when_its_terminal_ends(self):
        for end in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with subprocess.Popen([APPLETCTL, "serve", "line", "--no-http"], stdout=subprocess.PIPE) as process:
                process.stdout.readline()  # it is ready
                process.send_signal(end)
                self.assertEqual(process.wait(LONGEST), 0)
            left = {path.name for path in pathlib.Path("appletctl").iterdir()}
            self.assertEqual(left, {"line.lock"}, end)

    def test_survives_invalid_requests(self):
        process = self.serve("line")
        path = str(pathlib.Path("appletctl/line.socket"))
        hold = []
        for text in [b"", b"GET / HTTP/1.0\r\n\r\n", struct.pack("=Q", 2**63), struct.pack("=Q", 3) + b"\xff\xff\xff",
                     struct.pack("=Q", 1) + b"\xf6", struct.pack("=Q", 100) + b"half"]:
            for _ in range(30):
                client = socket.socket(socket.AF_UNIX)
                client.connect(path)
                try:
                    client.sendall(text)
                except OSError:  # it has been given up
                    pass
                hold.append(client)
            while len(hold) > 40:
                hold.pop(0).close()
            self.assertEqual(on("line", "get", "FG_WIDTH")[1], "FG_WIDTH = 1024 pixel\n")
        for client in hold:
            client.close()
        self.assertEqual(status("line")["process"], process)

    def test_refuses_invalid_names_and_options(self):
        for words, part in [(["serve", "../x"], "is not a name"), (["serve", "x" * 33], "is not a name"),
                            (["--station", "", "list"], "name"), (["serve", "--factor", "2", "--clock", "stepped"], "--clock"),
                            (["station", "stop", "none"], "no station 'none'")]:
            code, out, problems = run(*words)
            self.assertEqual((code in (2, 3), out), (True, ""), words)
            self.assertIn(part, problems)
        os.mkdir("appletctl", 0o755)
        self.assertIn("open to other users", run("serve")[2])
        os.environ["XDG_RUNTIME_DIR"] = "/" + "long" * 30
        self.assertIn("XDG_RUNTIME_DIR", run("serve")[2])


unittest.main(argv=sys.argv[:1])
