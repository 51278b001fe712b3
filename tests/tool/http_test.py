"""The HTTP interface of a station, held against its own description.

    http_test.py APPLETCTL
"""

import concurrent.futures
import contextlib
import gzip
import http.client
import json
import os
import pathlib
import re
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.parse

import jsonschema

LONGEST = 300  # seconds: only a station that hangs takes so long, under a sanitizer too
APPLETCTL = pathlib.Path(sys.argv[1]).resolve()
# The address sanitizer keeps freed memory for a while: little of it, so that growth can be seen.
os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1:thread_local_quarantine_size_kb=16"


def run(*words):
    done = subprocess.run([APPLETCTL, *words], capture_output=True, timeout=LONGEST, text=True)
    return done.returncode, done.stdout, done.stderr


def wait_for(condition):
    end = time.monotonic() + LONGEST
    while not (found := condition()):
        assert time.monotonic() < end, "it did not come"
        time.sleep(0.02)
    return found


class Answer:
    def __init__(self, response):
        self.status, self.headers, self.body = response.status, response.headers, response.read()

    @property
    def json(self):
        return json.loads(self.body)

    @property
    def picture(self):
        return int(self.headers["X-Picture"])


class Client:
    """Keeps a connection to a station."""

    def __init__(self, address):
        parts = urllib.parse.urlsplit(address)
        self.host, self.port, self.netloc = parts.hostname, parts.port, parts.netloc
        self.token = urllib.parse.parse_qs(parts.query)["token"][0]
        self.connection = http.client.HTTPConnection(self.host, self.port, timeout=LONGEST)

    def ask(self, method, path, body=None, **headers):
        sent = {"Authorization": "Bearer " + self.token, **{name.replace("_", "-"): it for name, it in headers.items()}}
        sent = {name: it for name, it in sent.items() if it is not None}
        body = json.dumps(body) if isinstance(body, (dict, list)) else body
        self.connection.request(method, path, body, sent)
        return Answer(self.connection.getresponse())

    def get(self, path):
        return self.ask("GET", path)

    def raw(self, data=b""):
        """A connection with these bytes sent."""
        made = socket.create_connection((self.host, self.port), timeout=LONGEST)
        made.sendall(data)
        return made


# Requests that cover the document: method, path with query, body, status.
WIDTH = "/api/parameters/FG_WIDTH"
REQUESTS = [
    ("GET", "/api/station", None, 200),
    ("GET", "/api/station?verbose=1", None, 400),
    ("GET", "/api/parameters", None, 200),
    ("GET", "/api/parameters?names=width,FG_FORMAT&changed=0", None, 200),
    ("GET", "/api/parameters?names=FG_WIDHT", None, 404),
    ("GET", "/api/parameters?changed=perhaps", None, 400),
    ("GET", "/api/parameters/FG_LUT_VALUE_RED%5B0..3%5D", None, 200),
    ("GET", "/api/parameters/FG_WIDHT", None, 404),
    ("PUT", WIDTH, {"value": 1024}, 200),
    ("PUT", WIDTH, {"value": "0x800"}, 200),
    ("PUT", WIDTH, {"value": 1024.0}, 200),
    ("PUT", WIDTH, {"value": 1022}, 409),
    ("PUT", WIDTH, {"value": [1]}, 400),
    ("PUT", WIDTH, {"value": True}, 400),
    ("PUT", "/api/parameters/FG_DEBUGFILE", {"value": "x\0y"}, 400),
    ("POST", "/api/settings", {"settings": [{"name": "FG_WIDTH\0", "value": 2048}]}, 400),
    ("PUT", WIDTH, {"value": 1024, "unit": "pixel"}, 400),
    ("PUT", WIDTH, {}, 400),
    ("PUT", WIDTH, "no json", 400),
    ("PUT", WIDTH, '{"value": ' + "[" * 100000 + "]" * 100000 + "}", 400),
    ("PUT", WIDTH, None, 400),
    ("PUT", "/api/parameters/FG_WIDHT", {"value": 4}, 404),
    ("PUT", "/api/parameters/FG_LUT_SAVE_FILE", {"value": "a.lut"}, 403),
    ("PUT", WIDTH, "x" * 1100000, 413),
    ("POST", "/api/settings", {"settings": [{"name": "FG_WIDTH", "value": 2048}, {"name": "FG_FORMAT", "value": "FG_COL24"}]},
     200),
    ("POST", "/api/settings", {"settings": [{"name": "FG_HEIGHT", "value": 8}, {"name": "FG_WIDTH", "value": 3}]}, 409),
    ("POST", "/api/settings", {"settings": []}, 400),
    ("POST", "/api/settings", {"settings": [{"name": "FG_WIDTH", "value": 2048, "unit": "pixel"}]}, 400),
    ("POST", "/api/settings", {"settings": [{"name": "FG_WIDTH", "value": 2048}], "anyOrder": "yes"}, 400),
    ("GET", "/api/acquisition", None, 200),
    ("POST", "/api/acquisition", {"isRunning": "yes"}, 400),
    ("POST", "/api/acquisition", {"isRunning": True}, 200),
    ("GET", "/api/frame?fit=100x100&timeout=10000", None, 200),
    ("GET", "/api/frame?after=0&format=png&region=8,8,64,64&timeout=10000", None, 200),
    ("GET", "/api/frame?after=0&region=2000,0,100,10&timeout=10000", None, 400),
    ("GET", "/api/frame?quality=101", None, 400),
    ("GET", "/api/frame?qualty=10", None, 400),
    ("GET", "/api/frame?picture=1000000", None, 404),
    ("GET", "/api/pictures", None, 200),
    ("GET", "/api/pixel?x=1&y=2", None, 200),
    ("GET", "/api/pixel?x=1", None, 400),
    ("GET", "/api/histogram?region=0,0,10,10", None, 200),
    ("GET", "/api/histogram?region=0,0,10", None, 400),
    ("GET", "/api/profile?line=3&width=5", None, 200),
    ("GET", "/api/profile?column=3", None, 200),
    ("GET", "/api/profile?line=1&column=1", None, 400),
    ("GET", "/api/record?count=2", None, 200),
    ("GET", "/api/timeline?names=ExSync,GPI_2&most=10", None, 200),
    ("GET", "/api/timeline", None, 200),
    ("GET", "/api/timeline?names=Nothing", None, 400),
    ("GET", "/api/timeline?from=5&to=1", None, 400),
    ("GET", "/api/losses", None, 200),
    ("GET", "/api/configuration", None, 200),
    ("PUT", "/api/configuration", "[Parameter]\nFG_WIDTH=2048;\n", 409),
    ("GET", "/api/lut/red?points=3", None, 200),
    ("GET", "/api/lut/grey", None, 404),
    ("PUT", "/api/lut/red", {"points": [[0, 0], [16383, 65535]]}, 200),
    ("PUT", "/api/lut/red", {"points": [[5, 0], [4, 1]]}, 400),
    ("GET", "/api/belt", None, 200),
    ("PUT", "/api/belt", {"speed": 1000}, 200),
    ("PUT", "/api/belt", {"speed": 1e9}, 400),
    ("GET", "/api/scene", None, 200),
    ("PUT", "/api/scene", {"kind": "chart", "noise": 100}, 200),
    ("PUT", "/api/scene", {"kind": "moon"}, 400),
    ("PUT", "/api/scene", {"kind": None}, 400),
    ("GET", "/metrics", None, 200),
    ("GET", "/api/nothing", None, 404),
    ("GET", "/api/frame?format=raw&format=png", None, 400),
    ("DELETE", WIDTH, None, 405),
]


class Http(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(dir="/tmp")  # the path of a socket is short
        self.addCleanup(self.folder.cleanup)
        os.environ["XDG_RUNTIME_DIR"] = self.folder.name
        os.environ.pop("APPLETCTL_STATION", None)
        os.chdir(self.folder.name)

    def serve(self, *words, port="0"):
        code, _, problems = run("serve", "--detach", "--port", port, *words)
        self.assertEqual((code, problems), (0, ""))
        self.addCleanup(run, "station", "stop")
        self.process = json.loads(run("--json", "station", "list")[1])["stations"][0]["process"]
        return Client(run("station", "address")[1].strip())

    def memory(self, kind="VmRSS"):
        """Resident megabytes of the station."""
        status = pathlib.Path(f"/proc/{self.process}/status").read_text()
        return int(re.search(kind + r":\s+(\d+)", status)[1]) / 1024

    def peak(self):
        return self.memory("VmHWM")

    def test_answers_match_the_description(self):
        client = self.serve("--demo", "--allow-set")
        document = client.ask("GET", "/api/openapi.json", Authorization=None).json
        paths = document["paths"]
        routes = re.findall(r"/[a-z/{}]+", client.get("/api/nothing").json["error"]["message"].split("; ")[1])
        self.assertEqual(sorted(routes), sorted(paths))

        def check(schema, value):
            jsonschema.Draft202012Validator({**schema, "components": document["components"]}).validate(value)

        covered = set()
        for method, target, body, status in REQUESTS:
            with self.subTest(f"{method} {target} {str(body)[:60]}"):
                client.connection.close()
                answer = client.ask(method, target, body)
                self.assertEqual(answer.status, status, answer.body[:500])
                path = urllib.parse.urlsplit(target).path
                path = next((known for known in paths if re.fullmatch(known.replace("{name}", "[^/]+"), path)), None)
                operation = (paths.get(path) or {}).get(method.lower())
                if operation is None:
                    check({"$ref": "#/components/schemas/Error"}, answer.json)
                    continue
                covered.add((method, path))
                content = operation["responses"][str(status)]["content"]
                kind = answer.headers["Content-Type"].split(";")[0]
                self.assertIn(kind, content)
                if kind == "application/json":
                    check(content[kind]["schema"], answer.json)
        described = {(method.upper(), path) for path, operations in paths.items() for method in operations}
        self.assertEqual(described - covered, {("GET", "/api/stream")})  # which has a test of its own

    def test_serves_its_own_page_only(self):
        client = self.serve("--demo")
        evil, own = "http://evil.example", f"http://{client.netloc}"
        rows = [
            ("GET", "/api/station", {"Authorization": None}, 401),
            ("GET", "/metrics", {"Authorization": None}, 401),
            ("GET", "/api/station", {"Authorization": "Bearer " + client.token[:-1] + "x"}, 401),
            ("GET", "/api/station", {"Authorization": "Bearer " + client.token[:-1]}, 401),
            ("GET", "/api/station?token=", {"Authorization": None}, 401),
            ("GET", f"/api/station?token={client.token}", {"Authorization": None}, 200),
            ("GET", "/api/station", {"Origin": evil}, 403),
            ("GET", "/api/station", {"Origin": "null"}, 403),
            ("GET", "/api/station", {"Origin": own}, 200),
            ("GET", "/api/station", {"Origin": f"https://{client.netloc}"}, 403),
            ("GET", "/api/station", {"Authorization": "bearer " + client.token}, 200),
            ("GET", "/api/station", {"Host": "evil.example"}, 403),
            ("GET", "/", {"Host": "evil.example", "Authorization": None}, 403),
            ("GET", "/api/station", {"Host": "192.168.1.1"}, 403),
            ("GET", "/api/station", {"Host": "localhost:9000", "Origin": "http://localhost:9000"}, 200),  # a tunnel
            ("GET", "/", {"Authorization": None}, 200),
            ("GET", "/assets/icon.svg", {"Authorization": None}, 200),
            ("GET", "/assets/../../etc/passwd", {"Authorization": None}, 401),
            ("GET", "/assets/%2e%2e/index.html", {}, 404),
            ("GET", "/api/parameters?names=" + "x" * 8000, {}, 404),
            ("GET", "/" + "x" * 2000, {}, 414),
            ("GET", "/" + "x" * 20000, {}, 414),
            ("GET", "/", {"X": "x" * 20000}, 431),
            ("PUT", WIDTH, {}, 403),  # it was started without --allow-set
            ("POST", "/api/settings", {}, 403),
            ("PUT", "/api/configuration", {}, 403),
            ("PUT", "/api/belt", {}, 403),
            ("POST", "/api/acquisition", {}, 403),
        ]
        bodies = {"PUT": {"value": 8, "speed": 1}, "POST": {"settings": [{"name": "FG_WIDTH", "value": 8}], "isRunning": False}}
        for method, path, headers, status in rows:
            with self.subTest(f"{method} {path[:60]} {headers}"):
                client.connection.close()
                answer = client.ask(method, path, bodies.get(method), **headers)
                self.assertEqual(answer.status, status, answer.body[:300])
                self.assertIn("default-src 'none'", answer.headers["Content-Security-Policy"])
                self.assertEqual(answer.headers["X-Content-Type-Options"], "nosniff")
        self.assertEqual(client.ask("DELETE", WIDTH).headers["Allow"], "GET, PUT")
        tag = client.get("/").headers["ETag"]
        self.assertEqual(client.ask("GET", "/", If_None_Match=tag).status, 304)
        self.assertNotIn(client.token, run("station", "list", "--json")[1])
        with open(f"/proc/{self.process}/cmdline", "rb") as line:
            self.assertNotIn(client.token.encode(), line.read())
        sockets = subprocess.run(["ss", "-ltnH"], capture_output=True, text=True) if os.path.exists("/bin/ss") else None
        if sockets:
            self.assertIn(f"127.0.0.1:{client.port}", sockets.stdout)

    def test_sends_the_pictures_of_grab(self):
        client = self.serve("--demo", "--allow-set", "FG_FORMAT=FG_COL30")
        first = client.get("/api/frame?format=raw&timeout=10000")
        head = {name: int(first.headers["X-" + name]) for name in ("Width", "Height", "Bits")}
        self.assertEqual(head, {"Width": 2048, "Height": 512, "Bits": 10})
        self.assertEqual(first.headers["X-Format"], "BGR10p")
        bits = int.from_bytes(first.body, "little")
        number, x, y = first.picture, 1001, 77
        packed = bits >> 30 * (y * 2048 + x)
        rgb = [packed >> 20 & 1023, packed >> 10 & 1023, packed & 1023]
        self.assertEqual(client.get(f"/api/pixel?picture={number}&x={x}&y={y}").json["components"], rgb)
        part = client.get(f"/api/frame?picture={number}&format=raw&region={x},{y},1,1")
        self.assertEqual((part.headers["X-Format"], list(struct.unpack("<3H", part.body))),
                         ("BGR16", [value << 6 | value >> 4 for value in reversed(rgb)]))
        line = client.get(f"/api/profile?picture={number}&line={y}").json["values"]
        column = client.get(f"/api/profile?picture={number}&column={x}").json["values"]
        self.assertEqual([[colour[x] for colour in line], [colour[y] for colour in column]], [rgb, rgb])
        histogram = client.get(f"/api/histogram?picture={number}").json
        self.assertEqual([sum(colour) for colour in histogram["bins"]], [2048 * 512] * 3)
        own = client.get(f"/api/histogram?picture={number}&region={x},{y},1,1").json
        self.assertEqual([colour.index(1) for colour in own["bins"]], [value >> 2 for value in rgb])
        self.assertEqual(own["mean"], rgb)
        small = client.get(f"/api/frame?picture={number}&fit=500x500").body
        self.assertTrue(small.startswith(b"\xff\xd8") and small.endswith(b"\xff\xd9"))
        frame = small.index(b"\xff\xc0")
        self.assertEqual(struct.unpack(">2H", small[frame + 5:frame + 9]), (125, 500))
        self.assertEqual(client.get("/api/record?count=3").body[:4], b"II*\0")
        # Numbers go on after an acquisition of somebody else's.
        self.assertEqual(run("--station", "main", "grab", "2", "--hash")[0], 0)
        self.assertIn("grab 2 --hash", [entry["command"] for entry in json.loads(run("--json", "station", "log")[1])["commands"]])
        self.assertGreater(client.get(f"/api/frame?after={number}&timeout=10000").picture, number)
        self.assertEqual(client.get("/api/frame?after=99999999&timeout=1").status, 204)  # they do come
        self.assertEqual(client.ask("POST", "/api/acquisition", {"isRunning": False}).json["isPaused"], True)
        latest = client.get("/api/pictures").json["pictures"][-1]["picture"]
        self.assertIn("paused", client.get(f"/api/frame?after={latest}&timeout=1").json["error"]["message"])

    def test_names_the_reason_of_a_missing_picture(self):
        client = self.serve("--demo", "--allow-set")

        def wait_for_reason(text):
            reasons = []

            def is_reason():
                answer = client.get("/api/frame?after=99999999")
                reasons.append(answer.json["error"]["message"] if answer.status == 503 else "")
                return text in reasons[-1] or len(reasons) > 20

            wait_for(is_reason)
            self.assertIn(text, reasons[-1])

        def put(path, body):
            self.assertEqual(client.ask("PUT", path, body).status, 200)

        source, height, belt = "/api/parameters/FG_LINETRIGGERINSRC", "/api/parameters/FG_HEIGHT", "/api/belt"
        self.assertEqual(client.get("/api/frame?timeout=10000").status, 200)
        # Steps forward give no line until those backwards are made up for.
        put(belt, {"speed": -10000})
        wait_for_reason("runs backwards")
        put(belt, {"speed": 100})
        wait_for_reason("the encoder went backwards")
        way = client.get("/api/frame?after=99999999").json["error"]["waysOut"][0]
        self.assertEqual(way["text"], "FG_SHAFTENCODER_COMPENSATION_COUNT=0")
        self.assertEqual(client.ask("POST", "/api/settings", {"settings": way["settings"]}).status, 200)
        put(belt, {"speed": 1000})
        # Lines came before each of these.
        for path, bad, good, reason in [
                (source, {"value": "TRGINSRC_GPI_7"}, {"value": "TRGINSRC_GPI_2"}, "no edge came at FG_LINETRIGGERINSRC"),
                (belt, {"speed": 0}, {"speed": 1000}, "does not run"),
                (belt, {"speed": -500}, {"speed": 1000}, "runs backwards"),
                (height, {"value": 1000000}, {"value": 512}, "an image takes FG_HEIGHT = 1000000")]:
            self.assertEqual(client.get("/api/frame?timeout=10000").status, 200)
            put(path, bad)
            with self.subTest(reason):
                wait_for_reason(reason)
            put(path, good)
        put("/api/parameters/FG_EXSYNCON", {"value": "FG_OFF"})
        wait_for_reason("set FG_EXSYNCON=FG_ON")
        signal = wait_for(lambda: (it := client.get("/api/acquisition").json["signal"])["state"] == "none" and it)
        for ways in (signal["waysOut"], client.get("/api/frame?after=99999999").json["error"]["waysOut"]):
            self.assertEqual([way["text"] for way in ways], ["FG_EXSYNCON=FG_ON"])
        self.assertEqual(client.ask("POST", "/api/settings", {"settings": signal["waysOut"][0]["settings"]}).status, 200)
        wait_for_reason("began with another height than FG_HEIGHT = 512")
        for is_running in (False, True):
            client.ask("POST", "/api/acquisition", {"isRunning": is_running})
        self.assertEqual(client.get("/api/frame?timeout=10000").status, 200)

    def test_time_passes_while_no_command_runs(self):
        self.serve("--demo", "--factor", "1000")  # faster than the machine can

        def seconds():
            fields = pathlib.Path(f"/proc/{self.process}/stat").read_text().rsplit(")", 1)[1].split()
            return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

        before = seconds()
        time.sleep(4)
        self.assertGreater(seconds() - before, 0.2)
        start = time.monotonic()
        self.assertEqual(run("--station", "main", "get", "FG_HEIGHT")[0], 0)
        self.assertLess(time.monotonic() - start, 8)  # not the work of more than an hour

    def test_undo_leaves_a_count_that_the_board_continues(self):
        client = self.serve("--demo", "--allow-set", "--factor", "1000")
        count = "/api/parameters/FG_SHAFTENCODER_COMPENSATION_COUNT"
        self.assertEqual(run("--station", "main", "set", "FG_HEIGHT=500")[0], 0)
        self.assertEqual(client.ask("PUT", "/api/belt", {"speed": -100}).status, 200)
        wait_for(lambda: client.get(count).json["value"] > 0)
        self.assertEqual(run("--station", "main", "get", "FG_WIDTH")[0], 0)
        done = subprocess.run([APPLETCTL, "--station", "main", "shell"], input="undo\n", capture_output=True, text=True,
                              timeout=LONGEST)
        self.assertEqual(done.stdout.splitlines()[0], "Undone: --station main set FG_HEIGHT=500", done)
        self.assertGreater(client.get(count).json["value"], 0)

    def test_takes_the_clock_of_the_station_file(self):
        for clock, words, kind in [(50, [], "wall"), (0, [], "stepped"), (0, ["--clock", "wall"], "wall"),
                                   (0, ["--factor", "2"], "wall"), (50, ["--clock", "stepped"], "stepped")]:
            with self.subTest(f"{clock} {words}"):
                pathlib.Path("station.json").write_text(json.dumps({"station": 1, "clock": clock}))
                client = self.serve("--station-file", "station.json", *words)
                self.assertEqual(client.get("/api/station").json["clock"]["kind"], kind)

                def moved():
                    """Simulated seconds in a second of the machine."""
                    begin, tick = time.monotonic(), client.get("/api/station").json["activity"]["tick"]
                    time.sleep(0.2)
                    ticks = client.get("/api/station").json["activity"]["tick"] - tick
                    return ticks * 8e-9 / (time.monotonic() - begin)

                if kind == "stepped":
                    self.assertEqual(moved(), 0)
                elif not words:
                    wait_for(lambda: moved() > 5)
                run("station", "stop")

    def test_renders_once_for_all_viewers(self):
        client = self.serve("--demo")
        address = run("station", "address")[1].strip()
        stop = threading.Event()

        def view(_):
            viewer, seen = Client(address), {}
            while not stop.is_set():
                answer = viewer.get(f"/api/frame?after={max(seen, default=0)}&fit=512x512")
                if answer.status == 200:
                    seen[answer.picture] = hash(answer.body)
            return seen

        with concurrent.futures.ThreadPoolExecutor(20) as pool:
            viewers = [pool.submit(view, i) for i in range(20)]
            wait_for(lambda: client.get("/api/acquisition").json["rendered"] >= 20)
            stop.set()
            seen = [viewer.result() for viewer in viewers]
        pictures = {number for own in seen for number in own}
        for number in pictures:
            self.assertEqual(len({own[number] for own in seen if number in own}), 1)
        self.assertLessEqual(len(pictures), client.get("/api/acquisition").json["rendered"])
        self.assertEqual([loss["count"] for loss in client.get("/api/losses").json["losses"]], [0] * 6)
        wait_for(lambda: not client.get("/api/acquisition").json["isRunning"])  # nobody looks

    def test_sets_as_the_command_line_does(self):
        client = self.serve("--demo", "--allow-set", "--clock", "stepped")
        self.assertIn("stepped", client.get("/api/frame").json["error"]["message"])
        words = "FG_XOFFSET=14340"
        refused = client.ask("PUT", "/api/parameters/FG_XOFFSET", {"value": 14340})
        self.assertEqual(refused.status, 409)
        error = refused.json["error"]
        self.assertIn(run("--station", "main", "set", words)[2].split("appletctl: ")[1].strip(), error["message"])
        self.assertEqual("; ".join(error["clauses"]), error["message"])
        self.assertIn("the nearest accepted value is 14336 pixel", error["clauses"])
        self.assertEqual(error["limit"]["maximum"], 14336)
        self.assertGreaterEqual(len(error["waysOut"]), 2)
        for way in error["waysOut"]:
            with self.subTest(way["text"]):
                taken = client.ask("POST", "/api/settings", {"settings": way["settings"]})
                self.assertEqual(taken.status, 200, taken.body)
                self.assertIn("FG_XOFFSET", [change["name"] for change in taken.json["changes"]])
                self.assertEqual(run("--station", "main", "shell")[0], 0)
                subprocess.run([APPLETCTL, "--station", "main", "shell"], input="undo\n", text=True, capture_output=True)
                self.assertEqual(client.get("/api/parameters/FG_XOFFSET").json["value"], 0)
        # All or none, in the given order and in any.
        settings = [{"name": "FG_HEIGHT", "value": 64}, {"name": "FG_WIDTH", "value": 3}]
        self.assertEqual(client.ask("POST", "/api/settings", {"settings": settings}).status, 409)
        self.assertEqual(client.get("/api/parameters/FG_HEIGHT").json["value"], 512)
        log = json.loads(run("--json", "station", "log")[1])["commands"]
        self.assertIn(("set FG_HEIGHT=64 FG_WIDTH=3", 1), [(entry["command"], entry["exitCode"]) for entry in log])
        # A whole state, and a table.
        saved = client.get("/api/configuration").body
        form = "application/x-www-form-urlencoded"  # as curl -d declares its body
        self.assertEqual(client.ask("PUT", WIDTH, '{"value": 512}' + " " * 20000, Content_Type=form).status, 200)
        loaded = client.ask("PUT", "/api/configuration", saved)
        self.assertEqual((loaded.status, client.get(WIDTH).json["value"]), (200, 2048))
        # Settings that are read from the board; values that it measures are left out.
        for name, value, others in (("FG_DEBUGFILE", "zz", set()), ("FG_DEBUGINENABLE", 1, set()),
                                    ("FG_CAMERASIMULATOR_LINERATE", 500, {"FG_CAMERASIMULATOR_FRAMERATE"})):
            changes = client.ask("PUT", f"/api/parameters/{name}", {"value": value}).json["changes"]
            self.assertEqual({change["name"] for change in changes}, {name} | others)
        # A number that is none, as a load may store, has not changed by itself.
        undefined = re.sub(rb"(FG_LINEPERIODE)=.*", rb"\1=nan;", saved)
        self.assertEqual(client.ask("PUT", "/api/configuration", undefined).status, 200)
        changes = client.ask("PUT", WIDTH, {"value": 1024}).json["changes"]
        self.assertNotIn("FG_LINEPERIODE", [change["name"] for change in changes])
        points = [[0, 100], [8000, 100], [16383, 65535]]
        self.assertEqual(client.ask("PUT", "/api/lut/green", {"points": points}).status, 200)
        shown = dict(client.get("/api/lut/green?points=16384").json["points"])
        self.assertEqual([shown[0], shown[8000], shown[16383], shown[12192]], [100, 100, 65535, 32821])
        metrics = client.get("/metrics").body.decode()
        refusals = re.search(r"^appletctl_refused_sets_total (\d+)$", metrics, re.M)
        self.assertEqual(int(refusals[1]), 2)
        for line in metrics.splitlines():
            self.assertRegex(line, r'^(# (HELP|TYPE) .+|[a-z_]+(\{[a-z]+="[^"]*"(,[a-z]+="[^"]*")*\})? [-+.0-9e]+)$')

    def test_streams_events(self):
        client = self.serve("--demo", "--allow-set")
        stream = client.raw(f"GET /api/stream?token={client.token} HTTP/1.1\r\nHost: localhost\r\n\r\n".encode())
        lines = stream.makefile("rb")
        wait_for(lambda: b"event: station" in lines.readline())
        self.assertEqual(run("--station", "main", "set", "FG_WIDTH=1024")[0], 0)

        def next_event(name):
            while lines.readline().strip() != f"event: {name}".encode():
                pass
            return json.loads(lines.readline().removeprefix(b"data: "))

        while not any(change["name"] == "FG_WIDTH" and change["after"] == 1024
                      for change in next_event("parameter")["changes"]):
            pass
        pool = concurrent.futures.ThreadPoolExecutor(1)
        frame = pool.submit(Client(run("station", "address")[1].strip()).get, "/api/frame?timeout=10000")
        self.assertEqual(next_event("picture")["number"], frame.result().picture)
        pool.shutdown()
        # Events and edges, however many: the latest ones of the span, 10,000 lines a second.
        now = client.get("/api/station").json["activity"]["tick"]
        timeline = wait_for(lambda: (found := client.get(f"/api/timeline?from={now}&to={now + 1250000}"))
                            .json["now"] > now + 1250000 and found).json
        starts = [event["tick"] for event in timeline["events"] if event["name"].endswith("Cam0LineStart")]
        edges = [tick for tick, level in next(
            signal for signal in timeline["signals"] if signal["name"] == "LineStart")["edges"] if level]
        self.assertEqual(starts, edges)
        self.assertIn(len(starts), (99, 100, 101))
        self.assertEqual({b - a for a, b in zip(starts, starts[1:])} - set(range(12480, 12521)), set())
        self.assertFalse(timeline["areEventsCut"])
        stream.close()

    def test_survives_invalid_requests(self):
        client = self.serve("--demo", "--allow-set")
        self.assertEqual(client.get("/api/frame?timeout=10000").status, 200)
        good = f"Host: localhost\r\nAuthorization: Bearer {client.token}\r\n"
        garbage = [b"\0" * 5000, b"GET", b"GET / HTTP/1.1\r\n", b"\r\n" * 100, b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n",
                   b"\x16\x03\x01\x02\x00" * 100, b"GET /%zz%00 HTTP/1.1\r\nHost: localhost\r\n\r\n",
                   f"PUT {WIDTH} HTTP/1.1\r\n{good}Content-Length: 100\r\n\r\n{{".encode(),
                   f"PUT {WIDTH} HTTP/1.1\r\n{good}Content-Length: -1\r\n\r\n{{}}".encode(),
                   f"PUT {WIDTH} HTTP/1.1\r\n{good}Transfer-Encoding: chunked\r\n\r\nfffffffffffffff\r\n".encode(),
                   b"GET / HTTP/1.1\r\nHost: localhost\r\nRange: bytes=" + b"0-1," * 1500 + b"\r\n\r\n",
                   b"GET / HTTP/1.1\r\n" + b"A: b\r\n" * 20000]

        def drop(count):
            for i in range(count):
                made = client.raw()
                try:
                    made.sendall(garbage[i % len(garbage)])
                except OSError:  # refused before all was sent
                    pass
                if i % 2:
                    made.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
                made.close()

        # Without a length there is no body; a wrong method is refused before its body.
        for request, length, status in [("POST /api/acquisition", "", b"400"), ("PATCH /api/belt", "", b"405"),
                                        (f"POST {WIDTH}", "", b"405"), (f"POST {WIDTH}", "Content-Length: 9\r\n", b"405")]:
            def answered():
                """Seconds until the answer: more than five if the station waits for a body."""
                start = time.monotonic()
                with client.raw(f"{request} HTTP/1.1\r\n{good}{length}\r\n".encode()) as asked:
                    self.assertEqual(asked.recv(12)[-3:], status)
                return time.monotonic() - start

            with self.subTest(request):
                self.assertTrue(any(answered() < 4 for _ in range(5)))  # a busy machine may be late now and then
        # A body in chunks has the limit of a body; one that is packed is not unpacked, nor read.
        chunks = (b"10000\r\n" + b" " * 0x10000 + b"\r\n") * 320 + b"0\r\n\r\n"
        packed = gzip.compress(b" " * 50_000_000)
        before = self.peak()
        for path, coding, body, status in [
                (WIDTH, "Transfer-Encoding: chunked", chunks, b"413"), ("/api/x", "Transfer-Encoding: chunked", chunks, b"404"),
                (WIDTH, f"Content-Encoding: gzip\r\nContent-Length: {len(packed)}", packed, b"415")]:
            with self.subTest(path=path, coding=coding), client.raw(
                    f"PUT {path} HTTP/1.1\r\n{good}{coding}\r\n\r\n".encode()) as asked:
                with contextlib.suppress(OSError):  # it is refused before all is sent
                    asked.sendall(body)
                self.assertEqual(asked.recv(12)[-3:], status)
        self.assertLess(self.peak() - before, 16)
        # Clients that ask for much and never read.
        deaf = [client.raw(f"GET /api/frame?after=0&format=raw HTTP/1.1\r\n{good}\r\n".encode() * 20) for _ in range(5)]
        deaf += [client.raw(f"GET /api/stream HTTP/1.1\r\n{good}\r\n".encode()) for _ in range(5)]
        drop(1000)
        wait_for(lambda: client.get("/api/station").status == 200)
        before = self.memory()
        start = time.monotonic()
        drop(9000)
        self.assertLess(time.monotonic() - start, LONGEST)
        client.connection.close()
        wait_for(lambda: client.get("/api/station").status == 200)
        self.assertLess(self.memory() - before, 16)
        self.assertEqual(client.ask("PUT", WIDTH, {"value": 1024}).status, 200)
        # More connections than are served: the others go on.
        many = [client.raw() for _ in range(300)]
        self.assertEqual(client.get("/api/frame?timeout=10000").status, 200)
        for one in [*deaf, *many]:
            one.close()
        self.assertEqual([loss["count"] for loss in client.get("/api/losses").json["losses"]], [0] * 6)
        self.assertEqual(run("station", "stop")[0], 0)

    def test_replaces_a_killed_server(self):
        pathlib.Path("token").write_text("0123456789abcdef-_XY\n")
        client = self.serve("--demo", "--token-file", "token")
        self.assertEqual(client.token, "0123456789abcdef-_XY")
        taken = run("serve", "other", "--detach", "--port", str(client.port))
        self.assertEqual(taken[0], 1)
        self.assertIn("Address already in use", taken[2])
        client.get("/api/frame?timeout=10000")
        os.kill(self.process, signal.SIGKILL)
        wait_for(lambda: json.loads(run("--json", "station", "list")[1])["stations"] == [])
        again = self.serve("--demo", "--token-file", "token", port=str(client.port))
        self.assertEqual(again.get("/api/frame?timeout=10000").status, 200)
        for line, problem in [(["--listen", "everywhere"], "IP address"), (["--token-file", "missing"], "missing"),
                              (["--no-http", "--port", "0"], "--no-http")]:
            code, _, problems = run("serve", "other", *line)
            self.assertEqual(code, 2, problems)
            self.assertIn(problem, problems)
        self.addCleanup(run, "station", "stop", "open")  # if a check fails first
        self.assertIn("not encrypted", run("serve", "open", "--detach", "--port", "0", "--listen", "0.0.0.0")[1])
        self.assertEqual(run("station", "stop", "open")[0], 0)


unittest.main(argv=[sys.argv[0], *sys.argv[2:]], warnings="ignore")
