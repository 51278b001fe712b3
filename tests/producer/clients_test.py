#!/usr/bin/env python3
"""The producer with real clients: Harvesters, and the reference implementation of GenApi under it.

producer_clients_test.py PRODUCER VENV [APPLETCTL]

Makes a virtual environment in the folder VENV with the packages harvesters and genicam, unless it is there. Where the
package index is not reachable it says so and answers 77: skipped."""
import ctypes
import hashlib
import json
import os
import pathlib
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import urllib.request

PACKAGES = ["harvesters>=1.4,<2", "genicam>=1.5,<2"]
SKIPPED = 77
CTI = pathlib.Path(sys.argv[1]).resolve()
APPLETCTL = pathlib.Path(sys.argv[3]).resolve() if len(sys.argv) > 3 else None
LONGEST = 60  # seconds: only what hangs takes so long


def run_in_environment():
    folder = pathlib.Path(sys.argv[2])
    python = folder / "bin" / "python"
    ready = [python, "-c", "import harvesters.core"]
    if not python.exists() or subprocess.run(ready, capture_output=True).returncode != 0:
        for what, command in (
                ("no virtual environment can be made (Debian: python3-venv)",
                 [sys.executable, "-m", "venv", "--clear", folder]),
                ("the packages harvesters and genicam cannot be had from the package index",
                 [python, "-m", "pip", "install", "--quiet", "--disable-pip-version-check", "--timeout", "20",
                  "--retries", "1", *PACKAGES])):
            done = subprocess.run(command, capture_output=True, text=True)
            if done.returncode != 0:
                print(f"skipped: {what}:\n{done.stderr}")
                sys.exit(SKIPPED)
    # Each board of the tests is a device; time moves with the pictures that are taken. Stations of the user are none.
    environment = {**os.environ, "VBOARD_CLOCK": "stepped", "VBOARD_COUNT": "2", "PRODUCER_CLIENT": "1",
                   "XDG_RUNTIME_DIR": str(folder.absolute() / "without-stations")}
    os.execve(python, [str(python), __file__, *sys.argv[1:]], environment)


if "PRODUCER_CLIENT" not in os.environ:
    run_in_environment()

from genicam.genapi import AccessException, EAccessMode, EVisibility, NodeMap, OutOfRangeException  # noqa: E402
from genicam.gentl import (AccessDeniedException, EVENT_TYPE_LIST, EventManagerError,  # noqa: E402
                           EventManagerRemoteDevice, InvalidValueException, IoException)
from harvesters.core import Harvester  # noqa: E402


class Record(ctypes.Structure):
    """The first fields of a vboard_record."""
    _fields_ = [("data", ctypes.c_void_p), ("size", ctypes.c_uint64), ("rest", ctypes.c_uint64 * 32)]


class Station:
    """The applet on a virtual board without the producer: its frames are what clients must get."""

    def __init__(self, **parameters):
        folder = CTI.parent
        for name in ("libvexo_hw.so", "libtslrt.so", "libgrabcore5.so"):
            library = ctypes.CDLL(str(folder / "virtual-board" / name), mode=ctypes.RTLD_LOCAL)
            self.board = library if name == "libvexo_hw.so" else self.board
        self.applet = ctypes.CDLL(str(folder / "libGrab_TwinLaneLineColor.so"), mode=ctypes.RTLD_LOCAL)
        pointer, number = ctypes.c_void_p, ctypes.c_int64
        self.board.vboard_open.restype = self.board.vboard_memory.restype = self.applet.Std_entry.restype = pointer
        self.applet.Fg_getLastPicNumberBlockingEx.restype = number
        device = pointer(self.board.vboard_open())
        self.handle = pointer(self.applet.Std_entry(device, None, 0))
        parameters = {"FG_CAMERASIMULATOR_ENABLE": 1, "FG_CAMERASIMULATOR_TRIGGER_MODE": 8, **parameters}
        for name, value in parameters.items():
            number_of = self.applet.Fg_getParameterIdByName(ctypes.byref(self.handle), name.encode())
            value = ctypes.c_double(value) if isinstance(value, float) else ctypes.c_int32(value)
            code = self.applet.Fg_setParameterWithType(ctypes.byref(self.handle), number_of, ctypes.byref(value), 0, 1)
            assert code == 0, (name, code)
        self.memory = pointer(self.board.vboard_memory(device, ctypes.c_size_t(4), ctypes.c_uint64(1 << 30), 0))
        assert self.applet.Fg_AcquireEx(ctypes.byref(self.handle), 0, number(0), 0, self.memory) == 0

    def hash(self, picture):
        last = self.applet.Fg_getLastPicNumberBlockingEx(ctypes.byref(self.handle), ctypes.c_int64(picture), 0, 10,
                                                         self.memory)
        assert last == picture, last
        record = Record()
        assert self.board.vboard_frame(self.memory, ctypes.c_int64(picture), ctypes.byref(record)) == 0
        return hashlib.sha256(ctypes.string_at(record.data, record.size)).hexdigest()


def pictures(acquirer, count, timeout=20):
    """Numbers, hashes and times of this many pictures."""
    found = []
    for _ in range(count):
        with acquirer.fetch(timeout=timeout) as buffer:
            module = buffer.module  # its bytes are as they came; Harvesters unpacks them
            found.append((module.frame_id, hashlib.sha256(module.raw_buffer[:module.size_filled]).hexdigest(),
                          buffer.timestamp_ns))
    return found


class Clients(unittest.TestCase):
    def setUp(self):
        self.harvester = Harvester()
        self.harvester.add_file(str(CTI))
        self.harvester.update()
        self.acquirer = self.harvester.create({"id_": "virtual-0-process-0"})
        self.nodes = self.acquirer.remote_device.node_map

    def tearDown(self):
        self.acquirer.destroy()
        self.harvester.reset()

    def test_discovery(self):
        infos = [(info.id_, info.vendor, info.model, info.tl_type) for info in self.harvester.device_info_list]
        self.assertEqual(infos, [(f"virtual-{i}-process-0", "NorvaneImaging", "Grab_TwinLaneLineColor", "CLHS")
                                 for i in range(2)])

    def test_every_feature_is_readable(self):
        modules = [self.acquirer.system, self.acquirer.interface, self.acquirer.device, self.acquirer.remote_device,
                   *self.acquirer.data_streams]
        counts = []
        for module in modules:
            read = 0
            for node in module.node_map.nodes:
                name, mode = node.node.name, node.node.get_access_mode()
                if node.node.visibility == EVisibility.Invisible or not hasattr(node, "to_string"):
                    continue
                if name.startswith("Event") and mode == EAccessMode.NA:
                    continue  # comes with its event
                self.assertIn(mode, (EAccessMode.RO, EAccessMode.RW), name)
                node.to_string()
                read += 1
            counts.append(read)
        self.assertGreater(min(counts), 5)
        self.assertGreater(counts[3], 200)

    def test_sets_and_changing_limits(self):
        nodes = self.nodes
        for name, value in {"Width": 2048, "OffsetX": 512, "ExposureTime": 50.0, "AcquisitionLineRate": 8000.0,
                            "PixelFormat": "BGR12p", "TestPattern": "GreyVerticalRamp", "GainSelector": "Blue",
                            "Gain": 1.5, "LUTIndex": 7, "LUTValue": 99, "FG_DEBUGFILE": "text"}.items():
            getattr(nodes, name).value = value
            self.assertEqual(getattr(nodes, name).value, value, name)
        self.assertEqual(nodes.FG_LINEPERIODE.value, 125.0)
        self.assertEqual(nodes.PayloadSize.value, 2048 * 1024 * 36 // 8)
        self.assertEqual((nodes.Width.max, nodes.OffsetX.max), (16384 - 512, 16384 - 2048))
        self.assertEqual(nodes.ExposureTime.max, 125.0)
        for name, value, refusal in (("OffsetX", 2, OutOfRangeException), ("ExposureTime", 126.0, OutOfRangeException),
                                     ("PayloadSize", 1, AccessException), ("FG_VANTAGEPOINT", "FG_VANTAGEPOINT_TOP_RIGHT",
                                                                           InvalidValueException)):
            with self.assertRaises(refusal, msg=name) as raised:
                getattr(nodes, name).value = value
        self.assertIn("FG_VANTAGEPOINT = 1 was refused: -6000", str(raised.exception))
        nodes.OffsetX.value, nodes.Width.value = 0, 16384
        self.assertEqual((nodes.OffsetX.min, nodes.OffsetX.max), (0, 0))  # no other value is left

    def test_pictures_are_those_of_the_station(self):
        for settings in ({"FG_WIDTH": 256, "FG_HEIGHT": 64, "FG_FORMAT": 2},
                         {"FG_WIDTH": 260, "FG_HEIGHT": 33, "FG_FORMAT": 7, "FG_XOFFSET": 8,
                          "FG_SCALINGFACTOR_RED": 0.5}):
            for name, value in settings.items():
                node = getattr(self.nodes, name)
                node.set_int_value(value) if name == "FG_FORMAT" else node.from_string(str(value))
            self.acquirer.start()
            found = pictures(self.acquirer, 100)
            self.acquirer.stop()
            own = Station(**settings)
            self.assertEqual([number for number, _, _ in found], list(range(1, 101)))
            self.assertEqual([digest for _, digest, _ in found], [own.hash(i) for i in range(1, 101)])
            self.acquirer.destroy()  # time has moved: the next comparison needs a board at its start
            self.acquirer = self.harvester.create({"id_": "virtual-0-process-0"})
            self.nodes = self.acquirer.remote_device.node_map

    def test_triggers(self):
        nodes = self.nodes
        nodes.Width.value, nodes.Height.value = 64, 16
        nodes.TriggerSelector.value = "FrameStart"
        nodes.TriggerMode.value, nodes.TriggerSource.value = "On", "Software"
        self.acquirer.start()
        self.assertIsNone(self.acquirer.try_fetch(timeout=0.2))
        for _ in range(3):
            nodes.TriggerSoftware.execute()
            self.assertEqual(len(pictures(self.acquirer, 1)), 1)
        self.assertIsNone(self.acquirer.try_fetch(timeout=0.2))
        self.acquirer.stop()
        # Now parts on the belt start the images, and the encoder the lines: 5,000 a second.
        nodes.TriggerSource.value = "Line0"
        nodes.TriggerSelector.value = "LineStart"
        nodes.TriggerMode.value = "On"
        nodes.FG_SHAFTENCODERON.value = "FG_ON"
        self.acquirer.start()
        times = [time_ns for _, _, time_ns in pictures(self.acquirer, 4)]
        self.acquirer.stop()
        # The change of the source may have been an edge, too.
        for before, after in zip(times[1:], times[2:]):
            self.assertAlmostEqual(after - before, 500_000_000, delta=250_000)
        nodes.TriggerSelector.value = "FrameStart"
        nodes.TriggerMode.value = "Off"
        self.acquirer.start()
        times = [time_ns for _, _, time_ns in pictures(self.acquirer, 3)]
        self.acquirer.stop()
        self.assertEqual([after - before for before, after in zip(times, times[1:])], [3_200_000] * 2)

    def test_events(self):
        nodes = self.nodes
        nodes.Width.value, nodes.Height.value = 64, 16
        nodes.EventSelector.value = "START_OF_FRAME_CAM_PORT_0"
        mask = 1 << (int(nodes.EventSelector.get_int_value()) - 1)
        nodes.EventNotification.value = "On"
        self.assertEqual(nodes.EventSTART_OF_FRAME_CAM_PORT_0.node.get_access_mode(), EAccessMode.NA)
        self.acquirer.start()
        end = time.monotonic() + 20
        while nodes.EventSTART_OF_FRAME_CAM_PORT_0.node.get_access_mode() == EAccessMode.NA:
            self.assertLess(time.monotonic(), end)
            pictures(self.acquirer, 1)
            # What the client's monitor does in a thread. An event that is delivered there while this thread uses a node
            # stops both: one has the node map and waits for the interpreter, the other has that and waits for the map.
            self.acquirer._worker_module_event()
        self.acquirer.stop()
        self.assertEqual(nodes.EventSTART_OF_FRAME_CAM_PORT_0.value, mask)
        self.assertLess(nodes.EventSTART_OF_FRAME_CAM_PORT_0Timestamp.value, nodes.Timestamp.value)

    def test_disconnect_and_reconnect(self):
        self.nodes.Width.value = 64
        for _ in range(5):
            self.acquirer.start()
            pictures(self.acquirer, 2)
            self.acquirer.destroy()  # while it runs
            self.acquirer = self.harvester.create({"id_": "virtual-0-process-0"})
            self.assertEqual(self.acquirer.remote_device.node_map.Width.value, 1024)  # another board
            self.assertEqual(self.acquirer.remote_device.node_map.TLParamsLocked.value, 0)

    def test_two_devices_at_once(self):
        with self.harvester.create({"id_": "virtual-1-process-0"}) as other:
            found = {}
            acquirers = {128: self.acquirer, 64: other}

            def take(width):
                acquirers[width].remote_device.node_map.Width.value = width
                acquirers[width].start()
                found[width] = [number for number, _, _ in pictures(acquirers[width], 50)]
                acquirers[width].stop()

            threads = [threading.Thread(target=take, args=(width,)) for width in acquirers]
            for thread in threads:
                thread.start()
            for thread in threads:
                thread.join()
            self.assertEqual(found, {width: list(range(1, 51)) for width in acquirers})

    def test_the_script_of_the_page(self):
        page = (pathlib.Path(__file__).parent.parent.parent / "docs" / "producer.md").read_text(encoding="utf-8")
        script = page.split("```python\n")[1].split("```")[0]
        environment = {**os.environ, "GENICAM_GENTL64_PATH": str(CTI.parent)}
        printed = subprocess.run([sys.executable, "-c", script], env=environment, check=True, capture_output=True,
                                 text=True).stdout.splitlines()
        self.assertEqual(printed[0], "exposure can be 0.512 to 100.0 µs")
        self.assertEqual([line.split()[0] for line in printed[1:]], [str(i) for i in range(1, 11)])
        self.assertIn("(512, 2048, 3)", printed[1])

    @unittest.skipUnless(APPLETCTL, "there is no appletctl")
    def test_portable_document(self):
        document = subprocess.run([APPLETCTL, "xml", "--portable"], check=True, capture_output=True, text=True).stdout
        nodes = NodeMap()
        nodes.load_xml_from_string(document)
        self.assertTrue(nodes.has_node("FG_WIDTH"))


@unittest.skipUnless(APPLETCTL, "there is no appletctl")
class ServedStation(unittest.TestCase):
    """A client of a station that appletctl serves: they look at the same machine."""
    SIMULATOR = ["FG_CAMERASIMULATOR_ENABLE=1", "FG_CAMERASIMULATOR_TRIGGER_MODE=8", "FG_WIDTH=256", "FG_HEIGHT=64"]

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(dir="/tmp")  # the path of a socket is short
        self.addCleanup(self.folder.cleanup)
        self.addCleanup(os.environ.update, XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"])
        os.environ["XDG_RUNTIME_DIR"] = self.folder.name

    def run_on(self, *words):
        done = subprocess.run([APPLETCTL, "--json", *words], capture_output=True, text=True, timeout=LONGEST)
        return json.loads(done.stdout) if done.stdout else {}

    def serve(self, *words, name="line"):
        served = self.run_on("serve", name, "--detach", *words)
        self.addCleanup(subprocess.run, [APPLETCTL, "station", "stop", name], capture_output=True)
        return served

    def connect(self, name="line", **settings):
        self.harvester = Harvester()
        self.addCleanup(self.harvester.reset)
        self.harvester.add_file(str(CTI))
        self.harvester.update()
        acquirer = self.harvester.create({"id_": f"station-{name}-process-0"}, **settings)
        self.addCleanup(acquirer.destroy)
        return acquirer

    def test_sets_and_limits_are_those_of_the_command_line(self):
        self.serve("--clock", "stepped", "--no-http", "--allow-set", *self.SIMULATOR)
        nodes = self.connect().remote_device.node_map
        self.assertEqual([info.id_ for info in self.harvester.device_info_list][-1], "station-line-process-0")
        self.assertGreater(len([node for node in nodes.nodes if node.node.name.startswith("FG_")]), 150)
        nodes.Width.value = 2048
        value = self.run_on("--station", "line", "get", "FG_WIDTH")["parameters"][0]["value"]
        self.assertEqual(value, 2048)
        self.assertEqual(nodes.OffsetX.max, 16384 - 2048)
        self.run_on("--station", "line", "set", "FG_WIDTH=1024", "FG_LUT_VALUE_RED[7]=99", "FG_DEBUGFILE=text")
        self.assertEqual((nodes.Width.value, nodes.OffsetX.max), (1024, 16384 - 1024))
        nodes.LUTIndex.value, nodes.OffsetX.value = 7, 512
        self.assertEqual((nodes.LUTValue.value, nodes.FG_DEBUGFILE.value), (99, "text"))
        with self.assertRaises(InvalidValueException) as raised:
            nodes.FG_VANTAGEPOINT.value = "FG_VANTAGEPOINT_TOP_RIGHT"
        self.assertIn("FG_VANTAGEPOINT = 1 was refused: -6000", str(raised.exception))
        log = [entry["command"] for entry in self.run_on("station", "log", "line")["commands"]]
        self.assertIn("set FG_WIDTH=2048", log)

    def test_pictures_are_those_of_grab(self):
        for name in ("line", "other"):
            self.serve("--clock", "stepped", "--no-http", *self.SIMULATOR, name=name)
        acquirer = self.connect()
        acquirer.start()
        found = pictures(acquirer, 100)
        acquirer.stop()
        grabbed = self.run_on("--station", "other", "grab", "100", "--hash")["pictures"]
        self.assertEqual([(number, digest) for number, digest, _ in found],
                         [(picture["picture"], picture["sha256"]) for picture in grabbed])
        self.assertEqual([time_ns for _, _, time_ns in found], [8 * picture["firstLine"] for picture in grabbed])
        nodes = acquirer.remote_device.node_map
        with self.assertRaises(AccessDeniedException) as raised:
            nodes.Height.value = 32
        self.assertIn("--allow-set", str(raised.exception))
        # A command takes the pictures meanwhile; then they come back.
        acquirer.start()
        self.assertEqual(len(self.run_on("--station", "line", "grab", "3")["pictures"]), 3)
        self.assertEqual([number for number, _, _ in pictures(acquirer, 3)][0] > 100, True)
        acquirer.stop()

    def test_triggers_and_events(self):
        self.serve("--clock", "stepped", "--no-http", "--allow-set", *self.SIMULATOR)
        acquirer = self.connect()
        nodes = acquirer.remote_device.node_map
        # Without the monitor's thread, as above.
        events = next(one for one in acquirer._module_event_monitor_dict.values()
                      if isinstance(one, EventManagerRemoteDevice))
        nodes.EventSelector.value = "START_OF_FRAME_CAM_PORT_0"
        number = int(nodes.EventSelector.get_int_value())
        nodes.EventNotification.value = "On"
        before = nodes.Timestamp.value
        acquirer.start()
        pictures(acquirer, 3)
        events.update_event_data(1000 * LONGEST)
        acquirer.stop()
        mask, time_ns = struct.unpack("<QQ", bytes(events.optional_data)[:16])
        self.assertEqual((int(str(events.event_id), 16), mask), (number, 1 << (number - 1)))
        self.assertLessEqual(before, time_ns)
        self.assertLess(time_ns, nodes.Timestamp.value)
        nodes.TriggerMode.value, nodes.TriggerSource.value = "On", "Software"
        acquirer.start()
        self.assertIsNone(acquirer.try_fetch(timeout=0.2))
        nodes.TriggerSoftware.execute()
        self.assertEqual(len(pictures(acquirer, 1)), 1)
        acquirer.stop()

    def test_a_browser_sees_the_same_picture(self):
        address = self.serve("--port", "0", "--factor", "0.1", *self.SIMULATOR)["address"]
        if address is None:
            self.skipTest("appletctl is built without HTTP")
        acquirer = self.connect()
        acquirer.start()
        seen, last = {}, 0
        end = time.monotonic() + LONGEST
        while last not in seen:  # this client may have missed the one that the browser got
            self.assertLess(time.monotonic(), end)
            seen.update({number: digest for number, digest, _ in pictures(acquirer, 20)})
            request = address.replace("?", "api/frame?") + "&format=raw&timeout=10000"
            with urllib.request.urlopen(request, timeout=LONGEST) as answer:
                last, content = int(answer.headers["X-Picture"]), answer.read()
            seen.update({number: digest for number, digest, _ in pictures(acquirer, 20)})
        acquirer.stop()
        self.assertEqual(seen[last], hashlib.sha256(content).hexdigest())

    def test_the_station_ends(self):
        for _ in range(2):
            process = self.serve("--clock", "stepped", "--no-http", *self.SIMULATOR)["process"]
            acquirer = self.connect()
            errors = EventManagerError(acquirer.device.module.register_event(EVENT_TYPE_LIST.EVENT_ERROR))
            acquirer.start()
            pictures(acquirer, 2)
            os.kill(process, signal.SIGKILL)
            errors.update_event_data(1000 * LONGEST)
            end = time.monotonic() + LONGEST
            with self.assertRaises(IoException) as raised:
                while time.monotonic() < end:
                    acquirer.remote_device.node_map.Height.value
            self.assertIn("'line' has ended", str(raised.exception))
            acquirer.destroy()
            self.harvester.update()
            self.assertEqual([info.id_ for info in self.harvester.device_info_list],
                             [f"virtual-{i}-process-0" for i in range(2)])
            self.harvester.reset()

    def test_the_script_of_the_cookbook(self):
        page = (pathlib.Path(__file__).parent.parent.parent / "docs" / "cookbook.md").read_text(encoding="utf-8")
        script = page.split("```python\n")[-1].split("```")[0]
        self.serve("--demo", "--allow-set", "--port", "0", name="line3")
        environment = {**os.environ, "GENICAM_GENTL64_PATH": str(CTI.parent)}
        printed = subprocess.run([sys.executable, "-c", script], env=environment, check=True, capture_output=True,
                                 text=True, timeout=LONGEST).stdout.splitlines()
        self.assertEqual((len(printed), printed[1].split()[0]), (11, "picture"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=2)
