"""The package vexo, on virtual and offline boards."""
import copy
import gc
import os
import pickle
import re
import signal
import subprocess
import sys
import threading
import weakref

import numpy
import pytest
import vexo


@pytest.fixture
def station():
    with vexo.Station.virtual() as opened:
        yield opened


@pytest.fixture
def small(station):
    station.set(FG_WIDTH=64, FG_HEIGHT=16)
    return station


def test_attributes_have_the_type_of_the_parameter(station):
    station.FG_WIDTH = 2048
    assert (station.FG_WIDTH, station.width, station["Width"].value) == (2048, 2048, 2048)
    station.FG_LINEPERIODE = 150.4
    assert station.FG_LINEPERIODE == 150.4
    station.FG_FORMAT = "Color 48bit"
    assert (station.FG_FORMAT.symbol, station.FG_FORMAT) == ("FG_COL48", 6)
    station.FG_FORMAT = vexo.Entry(5)
    assert copy.copy(station.FG_FORMAT).symbol == pickle.loads(pickle.dumps(station.FG_FORMAT)).symbol == "FG_COL30"
    assert isinstance(station.FG_LUT_CUSTOM_FILE, str)
    station.FG_WIDTH = numpy.uint16(512)
    station.FG_LINEPERIODE = numpy.float32(160)
    assert (station.FG_WIDTH, station.FG_LINEPERIODE) == (512, 160)


def test_a_wrong_name_is_an_error_with_the_nearest_one(station):
    for wrong in (lambda: station.FG_WITH, lambda: setattr(station, "FG_WITH", 1), lambda: station.set(FG_WITH=1),
                  lambda: station["FG_WITH"]):
        with pytest.raises(AttributeError, match="did you mean FG_WIDTH") as caught:
            wrong()
        assert isinstance(caught.value, KeyError) and caught.value.suggestions == ["FG_WIDTH"]
    assert "width" in station and "FG_WITH" not in station and 5 not in station
    with pytest.raises(AttributeError, match="limit"):
        station["FG_WIDTH"].limit = 5
    assert not hasattr(station, "FG_WITH") and not hasattr(station, "_repr_svg_")
    for name in ("grab", "now"):
        with pytest.raises(AttributeError, match=name):
            setattr(station, name, 3)


def test_a_refusal_says_what_is_accepted(station):
    with pytest.raises(ValueError, match="present limits") as caught:
        station.FG_XOFFSET = 16384
    refused = caught.value
    assert isinstance(refused, vexo.Refused) and refused.symbol == "FG_ERR_OUT_OF_RANGE"
    assert (refused.name, refused.requested, refused.nearest) == ("FG_XOFFSET", 16384, refused.limit["maximum"])
    assert [cause["parameter"] for cause in refused.set_by] == ["FG_WIDTH"]
    assert str(pickle.loads(pickle.dumps(refused))) == str(refused)
    assert station.FG_XOFFSET == 0


@pytest.mark.parametrize("value, error", [(2**70, vexo.Refused), (-1, vexo.Refused), (8.5, vexo.Refused), ("x", vexo.Refused),
                                          (None, TypeError), ([8], TypeError), (1j, TypeError)])
def test_a_value_of_another_kind_is_refused(station, value, error):
    with pytest.raises(error, match="FG_WIDTH") as caught:
        station.FG_WIDTH = value
    assert not isinstance(value, int) or str(value) in str(caught.value)
    assert station.FG_WIDTH == 1024


def test_nan_is_refused_with_the_same_words_in_every_way(station):
    nan = float("nan")
    for name in ("FG_LINEPERIODE", "FG_WIDTH"):
        words = set()
        for call in (lambda: setattr(station, name, nan), lambda: setattr(station[name], "value", numpy.float32(nan)),
                     lambda: station.set({name: nan}), lambda: station.limits("FG_HEIGHT", **{name: nan})):
            with pytest.raises(vexo.Refused, match=f"{name}=nan: 'nan' is not a") as caught:
                call()
            words.add(str(caught.value))
        assert len(words) == 1
    assert (station.FG_LINEPERIODE, station.FG_WIDTH) == (200, 1024)


def test_a_file_may_have_any_name(station, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    name = "\udcff.lut"
    station.FG_LUT_SAVE_FILE = name
    assert os.listdir(b".") == [os.fsencode(name)]
    station["FG_LUT_VALUE_RED"][0] = 77
    station.FG_LUT_TYPE = "LUT_TYPE_CUSTOM"
    station.set(FG_LUT_CUSTOM_FILE=name)
    assert station["FG_LUT_VALUE_RED"][0] == 0
    for wrong in ("\udcff", "\ud800"):
        assert wrong not in station
        for call in (lambda s: s[wrong], lambda s: getattr(s, wrong), lambda s: s.why(wrong), lambda s: s.wave(wrong),
                     lambda s: s.set({wrong: 1}), lambda s: setattr(s, "FG_WIDTH", wrong), lambda s: s.wait_event(wrong)):
            with pytest.raises(vexo.Error, match="ÿ|surrogate"):
                call(station)


@pytest.mark.parametrize("length", [0, 3, 255, 256, 1000])
def test_a_text_is_read_as_it_was_set(station, length):
    station.FG_DEBUGFILE = "x" * length
    assert station.FG_DEBUGFILE == "x" * length


WRONG_CALLS = [
    (lambda s: s.advance(-1), "seconds is -1"), (lambda s: s.advance(ticks=1.5), "ticks is a whole number"),
    (lambda s: s.clock(None), "factor is a number"), (lambda s: s[5], "name of a parameter is a text"),
    (lambda s: s.wait_event(timeout=None), "timeout is a number"), (lambda s: s.wait_event(5), "name of an event"),
    (lambda s: s.pictures(count=-1), "count is -1"), (lambda s: s.pictures(count=1.5), "count is a whole number"),
    (lambda s: s.pictures(frames=0), "frames is 0"), (lambda s: s.grab(timeout="3"), "timeout is a number"),
    (lambda s: s.set(FG_WIDTH=None), "FG_WIDTH takes a number or a text"), (lambda s: s.limits(5), "name is a text"),
    (lambda s: s.wave(None), "wave is a text"), (lambda s: setattr(s, "FG_WIDTH", "512\0"), "NUL"),
    (lambda s: s.set({"FG_WIDTH": "512\0"}), "NUL"), (lambda s: s.save("a\0.mcf"), "NUL"),
    (lambda s: vexo.Station(7), "board is 7")]


def test_a_wrong_argument_is_named(station):
    for call, words in WRONG_CALLS:
        with pytest.raises((vexo.InvalidArgument, TypeError), match=words):
            call(station)
    assert station.FG_WIDTH == 1024


def test_many_are_set_in_any_order_or_not_at_all(station):
    station.FG_VANTAGEPOINT = "Bottom-Right"
    values = {"FG_HEIGHT": 512, "FG_WIDTH": 8192, "FG_SENSORWIDTH": 8192}
    with pytest.raises(vexo.Refused):
        station.set(values)
    assert (station.FG_HEIGHT, station.FG_WIDTH) == (1024, 1024)
    station.set(values, any_order=True)
    assert (station.FG_HEIGHT, station.FG_WIDTH, station.FG_SENSORWIDTH) == (512, 8192, 8192)
    with pytest.raises(TypeError, match="FG_LUT_VALUE_RED"):
        station.set(FG_LUT_VALUE_RED=[1, 2])


def test_elements_of_a_field(station):
    field = station["FG_LUT_VALUE_RED"]
    field[4:8] = [9, 8, 7, 6]
    field[-1] = 5
    assert list(field[3:9]) == [*station.FG_LUT_VALUE_RED[3:4], 9, 8, 7, 6, *field.value[8:9]]
    assert (field[4], field[field.elements - 1]) == (9, 5)
    station.FG_LUT_VALUE_RED = numpy.arange(field.elements)
    assert field[1000] == 1000
    for wrong in ([1, 2, 3], [0, 0, 0, -1], [1, 2, 3, 2**32], [1.5] * 4):
        with pytest.raises((ValueError, TypeError)):
            field[4:8] = wrong
    for index in (field.elements, -field.elements - 1):
        with pytest.raises(IndexError, match=f"FG_LUT_VALUE_RED has the elements 0 to 16383, and no {index}"):
            field[index] = 3
    field[5:2] = 3
    with pytest.raises(ValueError, match="3 elements are set, and 0 were given"):
        field[0:3] = []
    with pytest.raises(ValueError, match="step"):
        field[0:8:2]
    assert list(field[4:8]) == [4, 5, 6, 7]


def test_a_parameter_describes_itself(station):
    width, line, mode = (station[name] for name in ("FG_WIDTH", "FG_LINE_DOWNSCALE", "FG_FORMAT"))
    assert (width.unit, width.group, width.kind, width.access) == ("pixel", "ROI", "uint32", "rw")
    assert width.range == (4, 16384, 4) and width.description
    assert [entry.symbol for entry in mode.entries][:2] == ["FG_COL24", "FG_COL30"]
    assert not line.is_writable
    assert repr(width) == "<FG_WIDTH = 1024 pixel; 4 to 16384 in steps of 4, rw>"
    assert {"FG_WIDTH", "grab"} <= set(dir(station)) and len(list(station)) == len(station) > 100


def test_every_parameter_can_be_shown(small):
    shown = [repr(parameter) + parameter._repr_html_() for parameter in small]
    assert len(shown) == len(small)
    width = small["FG_WIDTH"]
    small.close()
    assert "closed" in repr(width) and "closed" in width._repr_html_()


def test_what_a_notebook_shows(small):
    assert "<td" in small["FG_WIDTH"]._repr_html_() and "64 pixel" in small["FG_WIDTH"]._repr_html_()
    assert small["FG_LUT_VALUE_RED"]._repr_html_().count(",") > 200, "a curve"
    assert "FG_WIDTH = 64 pixel" in small._repr_html_() and "virtual" in repr(small)
    image = small.grab()
    assert image._repr_png_().startswith(b"\x89PNG") and image[2:]._repr_png_() is None


def test_a_side_effect_of_a_read_is_left_to_reads(station):
    named = [parameter for parameter in station if parameter.read_effect]
    assert named and all("not read" in repr(parameter) for parameter in named)


def test_questions_change_nothing(station):
    limits = station["FG_XOFFSET"].limits
    assert limits.accepted == (0, 15360, 4) == (limits.minimum, limits.maximum, limits.step)
    assert [cause["parameter"] for cause in limits.set_by] == ["FG_WIDTH"] and limits.fixed == ["minimum"]
    assert station.limits("FG_XOFFSET", FG_WIDTH=2048).maximum == 14336
    assert station.limits("FG_XOFFSET", FG_FORMAT="Color 48bit", FG_WIDTH=512).maximum == 15872
    assert station["FG_XOFFSET"].why(20000, FG_FORMAT="Color 48bit").nearest == 15360
    with pytest.raises(vexo.Refused, match="512 FG_HEIGHT=3"):
        station.limits("FG_XOFFSET", FG_WIDTH="512 FG_HEIGHT=3")
    with pytest.raises(vexo.Refused, match="FG_WIDTH=20000") as caught:
        station.limits("FG_XOFFSET", FG_WIDTH=20000)
    assert (caught.value.name, caught.value.nearest, caught.value.limit["maximum"]) == ("FG_WIDTH", 16384, 16384)
    assert all(entry["accepted"] for entry in station["FG_FORMAT"].limits.entries)
    assert station.why("FG_WIDTH", 20000).nearest == 16384
    assert "FG_LINETRIGGERMODE=ASYNC_TRIGGER" in station["FG_LINE_DOWNSCALE"].why().accepted_with
    assert station["FG_LINE_DOWNSCALE"].why(FG_LINETRIGGERMODE="ASYNC_TRIGGER").accepted
    plan = station.plan(FG_WIDTH=2048, FG_XOFFSET=16384)
    assert plan.writes and plan.changes and plan.moves and plan.refused["code"] == -6000
    assert "16384" in plan.text and not station.lint()
    assert (station.FG_WIDTH, station.FG_XOFFSET) == (1024, 0)


def test_files(station, tmp_path):
    file = tmp_path / "settings.mcf"
    station.FG_WIDTH = 2048
    station.save(file)
    station.FG_WIDTH = 512
    assert not station.losses(file)
    station.load(file)
    assert station.FG_WIDTH == 2048
    file.write_text(file.read_text().replace("FG_WIDTH=2048", "FG_WIDTH=2047"))
    assert "FG_WIDTH" in str(station.losses(file).findings)
    file.write_text(re.sub("(FRAMERATE=).*", r"\g<1>7;", re.sub("FG_HEIGHT=.*\n", "", file.read_text())))
    with pytest.raises(vexo.Error, match="FG_HEIGHT is missing") as caught:
        station.load(file)
    assert "FRAMERATE" not in str(caught.value)  # a rate that is computed is not lost
    with pytest.raises(vexo.FileError) as caught:
        station.load(tmp_path / "missing.mcf")
    assert isinstance(caught.value, OSError)
    (tmp_path / "folder.mcf").mkdir()
    for call in (station.load, station.losses, station.set_up):
        with pytest.raises(vexo.FileError, match="folder.mcf.* it is a folder"):
            call(tmp_path / "folder.mcf")
    assert "<RegisterDescription" in station.document() and station.info()["board"] == "virtual"


@pytest.mark.parametrize("form, dtype, bits", [("FG_COL24", "u1", 8), ("FG_COL30", "u2", 10), ("FG_COL36", "u2", 12),
                                               ("FG_COL42", "u2", 14), ("FG_COL48", "u2", 16)])
def test_a_picture_has_shape_and_type_of_the_format(small, tmp_path, form, dtype, bits):
    small.set(FG_FORMAT=form, FG_SCALINGFACTOR_BLUE=0.5)
    image = small.grab()
    record = image.record
    assert (image.shape, image.dtype, record.bits) == ((16, 64, 3), numpy.dtype(dtype), bits)
    assert (record.width, record.height, record.number, image.tick) == (64, 16, 1, record.arrival)
    assert record.first_line < record.last_line <= record.arrival and image[1:].record is image[1:].tick is None
    before = image.copy()
    for change in (0, 1, 2**bits - 1):
        image[5, 3:60, 1] = change or image[5, 3:60, 1]
        image.write(tmp_path / "picture.ppm")
        header, _, rest = (tmp_path / "picture.ppm").read_bytes().partition(b"\n")
        size, most, data = rest.split(b"\n", 2)
        assert (header, size, int(most)) == (b"P6", b"64 16", 2**bits - 1)
        written = numpy.frombuffer(data, numpy.uint8 if bits == 8 else ">u2").reshape(image.shape)
        assert (written == image.rgb).all()
    assert (image != before).any() and type(image.max()) is image.dtype.type and image.mean() > 0
    if bits not in (8, 16):
        image[15, 63, 2] = 2**bits
        for show in (image._repr_png_, lambda: image.write(tmp_path / "picture.ppm")):
            with pytest.raises(vexo.InvalidArgument, match=f"{2**bits}, and its {bits} bits"):
                show()
    image = before
    assert image[0, 0, 0] == image[0, 0, 2] // 2 > 0 == image[0, -1].max(), "blue is halved; a white bar, a black one"


def test_a_picture_is_rendered_where_it_is_wanted(small):
    out = numpy.zeros(64 * 16 * 3, numpy.uint8)
    image = small.grab(out=out)
    assert numpy.shares_memory(image, out) and numpy.shares_memory(image.rgb, out) and out.any()
    assert not small.grab().flags.owndata, "a view of what was rendered"
    for wrong in (out[:-1], numpy.zeros(6144, numpy.uint8)[::2], numpy.frombuffer(bytes(3072), numpy.uint8)):
        with pytest.raises(ValueError):
            small.grab(out=wrong)


def test_pictures_follow_each_other(small):
    with small.pictures(20) as pictures:
        images = list(pictures)
    assert [image.record.number for image in images] == list(range(1, 21))
    assert all(a.tick < b.tick for a, b in zip(images, images[1:])) and not any(i.record.lost_before for i in images)
    with small.pictures() as pictures, pytest.raises(vexo.NotNow, match="runs already"):
        next(pictures)
        small.grab()
    kept = small.pictures(ring=True, frames=2)
    next(kept)
    del kept
    assert small.grab().record.number == 1, "an acquisition ends with its object"


def test_a_missing_picture_has_a_reason():
    with vexo.Station() as bare:
        for times in ({"timeout": 0.1}, {"timeout": 1e6, "wall": 0.01}):
            with pytest.raises(TimeoutError, match="no line came"):
                bare.grab(**times)


def test_time_waves_and_events(station):
    station.advance(0.005)
    station.advance(ticks=3)
    assert station.now == 625_003
    rising = "FG_TRIGGER_INPUT2_RISING"
    assert station.events[rising]
    station.wave("GPI_2=square:10ms,2ms")
    events = [station.wait_event(rising) for _ in range(3)]
    assert {event.name for event in events} == {rising}
    assert events[2].tick - events[1].tick == vexo.TICKS_PER_SECOND // 100
    station.wave("GPI_2=low")
    begin = station.now
    assert station.wait_event(rising, timeout=0.05) is None
    assert station.now - begin == vexo.TICKS_PER_SECOND // 20
    assert station.wait_event(rising, timeout=1e6, wall=0.01) is None
    station.clock(1000)
    with pytest.raises(vexo.NotNow, match="clock"):
        station.advance(1)


def test_a_station_file_sets_it_up(tmp_path, monkeypatch):
    contents = '{"station": 1, "camera": {"width": 64}, "parameters": {"FG_WIDTH": 64, "FG_HEIGHT": 8}}'
    file = tmp_path / "station.json"
    file.write_text(contents)
    with vexo.Station.virtual(file) as station:
        assert station.grab().shape == (8, 64, 3)
        station.set_up({"station": 1, "parameters": {"FG_HEIGHT": 4}})
        assert station.FG_HEIGHT == 4
        with pytest.raises(vexo.Refused, match="camera.width"):
            station.set_up({"station": 1, "camera": {"width": "wide"}})
    monkeypatch.setenv("VBOARD_STATION", str(file))
    with vexo.Station.virtual() as station:
        assert station.FG_HEIGHT == 8
    with pytest.raises(vexo.FileError, match="missing.json"):
        vexo.Station.virtual(tmp_path / "missing.json")


def test_offline_has_limits_and_no_pictures():
    with vexo.Station.offline() as station:
        station.FG_WIDTH = 2048
        assert station["FG_XOFFSET"].limits.maximum == 14336
        with pytest.raises(vexo.NotNow):
            station.grab()


def test_a_closed_station_says_so():
    station = vexo.Station.virtual()
    width = station["FG_WIDTH"]
    station.close()
    station.close()
    for use in (lambda: width.value, lambda: station["FG_HEIGHT"], station.grab, station.info, lambda: station.FG_WIDTH,
                lambda: station.width, lambda: station.now, lambda: setattr(station, "FG_WIDTH", 4),
                lambda: setattr(station, "FG_WITH", 4), lambda: station.limits("FG_WIDTH")):
        with pytest.raises(vexo.Closed, match="closed") as caught:
            use()
        assert isinstance(caught.value, (vexo.NotNow, ValueError)) and caught.value.symbol == "VEXO_ERR_STATE"
    del caught
    assert "FG_WITH" not in vars(station) and not station and "closed" in repr(station)
    gone = weakref.ref(station)
    del station, width, use
    gc.collect()
    assert gone() is None


def test_a_station_that_was_never_opened_is_closed():
    class ClosesFirst(vexo.Station):
        def __init__(self):
            self.close()
            super().__init__(advice=False)

    with ClosesFirst() as station:
        assert station.FG_WIDTH == 1024
    station = vexo.Station.__new__(vexo.Station)
    assert not station and "closed" in repr(station)
    for use in (station.grab, lambda: station["FG_WIDTH"], lambda: len(station), super(vexo.Station, station)._info):
        with pytest.raises(vexo.Closed):
            use()


@pytest.mark.parametrize("ring, frames", [(False, 1000), (True, 1000), (False, 1)])
def test_threads_share_pictures(small, ring, frames):
    taken, lock = [], threading.Lock()

    def take(pictures):
        for image in pictures:
            with lock:
                taken.append((image.record.number, image.shape))

    with small.pictures(60, ring=ring, frames=frames) as pictures:
        threads = [threading.Thread(target=take, args=(pictures,)) for _ in range(3)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert sorted(taken) == [(number, (16, 64, 3)) for number in range(1, 61)]


def test_each_thread_waits_its_own_time_for_a_picture(small):
    small.FG_HEIGHT = 512  # a picture takes 102 ms, so the second one of two comes after 204
    taken = []
    with small.pictures(6, timeout=0.15) as pictures:
        threads = [threading.Thread(target=lambda: taken.extend(pictures)) for _ in range(3)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert sorted(image.record.number for image in taken) == [1, 2, 3, 4, 5, 6]


def test_an_acquisition_ends_with_its_last_picture_and_can_be_stopped(small):
    pictures = small.pictures(1)
    next(pictures)
    small.grab()
    none = small.pictures(0)
    assert list(none) == []
    small.grab()
    small.FG_HEIGHT = 4096
    running = small.pictures(timeout=0.001)
    with pytest.raises(vexo.Timeout):
        next(running)
    with pytest.raises(vexo.NotNow, match="stop"):
        small.grab()
    small.stop()
    small.stop()
    assert small.grab().record.number == 1


def test_copies_of_a_picture_are_pictures(small, tmp_path):
    for form in ("FG_COL24", "FG_COL36"):
        small.FG_FORMAT = form
        image = small.grab()
        image[0, 0] = 3
        for again in (image.copy(), copy.copy(image), copy.deepcopy(image), pickle.loads(pickle.dumps(image))):
            assert numpy.array_equal(again, image) and not numpy.shares_memory(again, image)
            assert (again.tick, repr(again.record)) == (image.tick, repr(image.record))
            again.write(tmp_path / "copy.raw")
            image.write(tmp_path / "image.raw")
            assert (tmp_path / "copy.raw").read_bytes() == (tmp_path / "image.raw").read_bytes()
    part = image[2:4]
    assert part.copy().record is None and pickle.loads(pickle.dumps(part)).tolist() == part.tolist()
    assert repr(image.record).startswith("Record(number=1, size=")
    for other, words in ((part, "part of a picture"), (image / 2, "array of float64"),
                         (image.astype(numpy.uint32), "array of uint32")):
        with pytest.raises(ValueError, match=words):
            other.write("picture.png")


def test_what_is_not_a_picture_or_parameter_is_refused(small):
    for out, error in (([None] * 500, TypeError), (bytearray(5000), TypeError), (numpy.array([None] * 500), TypeError),
                       (numpy.empty(8, numpy.uint8), ValueError)):
        with pytest.raises(error, match="out|array"):
            small.grab(out=out)
        small.stop()
    with pytest.raises(TypeError, match="empty"):
        vexo.Record.__new__(vexo.Record).number
    with pytest.raises(IndexError, match="99999"):
        vexo.Parameter(small, 99999)
    with pytest.raises(TypeError, match="any_order"):
        small.set({}, any_order="no")
    with pytest.raises(ValueError, match="read-only"):
        small.FG_LUT_VALUE_RED[4] = 7
    with pytest.raises(vexo.FileError):
        small.save("nowhere/\udcff.mcf")


BUSY = ["while True: s.wait_event('FG_TRIGGER_INPUT2_RISING', timeout=0.01)", "while True: s.FG_WIDTH = 64",
        "[image for image in s.pictures(ring=True)]", "while True: s.FG_WIDTH", "while True: s['FG_WIDTH'].limits"]


@pytest.mark.parametrize("work", BUSY)
def test_a_daemon_thread_does_not_disturb_the_end(work):
    program = f"""
import threading, vexo
s = vexo.Station.virtual()
s.set(FG_WIDTH=64, FG_HEIGHT=16)
running = threading.Event()
def run():
    running.set()
    {work}
threading.Thread(target=run, daemon=True).start()
running.wait()
while s.now < 1000: s.advance(ticks=1000)
"""
    for _ in range(3):
        done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True)
        assert (done.returncode, done.stderr) == (0, "")


def test_another_interpreter_is_refused():
    interpreters = pytest.importorskip("_xxsubinterpreters")
    for before in ("", "import vexo"):
        program = f"import _xxsubinterpreters as i\n{before}\ni.run_string(i.create(), 'import vexo')"
        done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True)
        assert interpreters and done.returncode == 1 and "main interpreter" in done.stderr, done


def test_waits_and_renders_let_other_threads_run(small):
    failures = []

    def wait():
        try:
            with small.pictures(timeout=1e9, ring=True) as pictures:
                for _ in pictures:
                    pass
        except (vexo.NotNow, ValueError) as error:
            failures.append(error)

    waiting = threading.Thread(target=wait)
    waiting.start()
    while small.now < vexo.TICKS_PER_SECOND // 10:
        assert small.FG_WIDTH == 64
    small.FG_LINEPERIODE = 100
    small.close()
    waiting.join()
    assert len(failures) == 1, "the close has ended the wait"


@pytest.mark.parametrize("wait", [lambda s: s.wait_event("FG_TRIGGER_INPUT2_RISING", timeout=1e9), lambda s: s.advance(1e9)])
def test_an_interrupt_ends_a_wait(small, wait):
    def interrupt():
        while small.now == 0:
            pass
        signal.raise_signal(signal.SIGINT)

    thread = threading.Thread(target=interrupt)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        wait(small)
    thread.join()
    reached = small.now
    small.advance(ticks=5)
    assert small.now == reached + 5


def test_threads_share_a_station(small):
    seen = []

    def change(name):
        for value in range(1, 100):
            small[name].value = value
            seen.append(small[name].value == value)

    threads = [threading.Thread(target=change, args=(name,)) for name in ("FG_HEIGHT", "FG_LINE_DOWNSCALE")]
    for thread in threads:
        thread.start()
    assert all(small.plan(FG_WIDTH=2048).writes for _ in range(3))
    for thread in threads:
        thread.join()
    assert len(seen) == 198 and all(seen)
