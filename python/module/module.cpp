// The module vexo._vexo: what the package vexo is made of.

#include "python/module/Core.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <type_traits>

namespace python {

namespace {

using Texts = std::vector<Text>;

std::vector<const char*> pointersTo(const Texts& texts) {
    std::vector<const char*> pointers;
    for (const Text& text : texts)
        pointers.push_back(text.words());
    return pointers;
}

/** The bytes of a picture. Raises ValueError if the array is smaller or has gaps, TypeError if it has objects. */
py::buffer_info bytesOf(const vexo_picture& picture, const py::buffer& buffer, bool written) {
    py::buffer_info info = buffer.request(written);
    if (info.format.find('O') != std::string::npos)
        throw py::type_error("the picture needs an array of numbers; the given one has objects");
    const auto bytes = static_cast<std::uint64_t>(info.size * info.itemsize);
    if (!PyBuffer_IsContiguous(info.view(), 'C') || bytes < picture.size)
        throw py::value_error("the picture needs a contiguous array of " + std::to_string(picture.size) +
                              " bytes; the given one has " + std::to_string(bytes));
    return info;
}

/** A field of vexo_picture. */
template <typename Member> struct RecordField {
    constexpr RecordField(const char* called, Member vexo_picture::*of, const char* words)
        : name(called)
        , member(of)
        , about(words) {}
    const char* name;
    Member vexo_picture::*member;
    const char* about;
};

constexpr std::tuple recordFields{
    RecordField{"number", &vexo_picture::number, "from 1, in an acquisition"},
    RecordField{"size", &vexo_picture::size, "bytes"},
    RecordField{"width", &vexo_picture::width, "pixels of a line"},
    RecordField{"height", &vexo_picture::height, "lines"},
    RecordField{"stride", &vexo_picture::stride, "bytes from line to line"},
    RecordField{"bits", &vexo_picture::bits, "of a component: 8, 10, 12, 14 or 16"},
    RecordField{"first_line", &vexo_picture::first_line,
                "tick at which the transfer of the first line started"},
    RecordField{"last_line", &vexo_picture::last_line, "tick at which the transfer of the last line started"},
    RecordField{"arrival", &vexo_picture::arrival, "tick at which the picture was complete"},
    RecordField{"lost_before", &vexo_picture::lost_before, "images lost since the previous picture"},
    RecordField{"trigger", &vexo_picture::trigger, "number of the start that it belongs to, from 1"},
    RecordField{"encoder", &vexo_picture::encoder,
                "position of the encoder at the first line, quarter steps"},
    RecordField{"is_short", &vexo_picture::is_short, "fewer lines than an image has"},
    RecordField{"is_narrow", &vexo_picture::is_narrow, "the source's lines were narrower than the width"},
};

/** "Record(number=1, size=3072, ...)". */
std::string shownRecord(const vexo_picture& picture) {
    std::string text;
    const auto add = [&](const auto& field) {
        text += std::string(text.empty() ? "" : ", ") + field.name + "=" +
                std::string(py::str(py::cast(picture.*field.member)));
    };
    std::apply([&](const auto&... fields) { (add(fields), ...); }, recordFields);
    return "Record(" + text + ")";
}

/** The fields in their order, to be pickled. */
py::tuple stateOf(const vexo_picture& picture) {
    return std::apply([&](const auto&... fields) { return py::make_tuple(picture.*fields.member...); },
                      recordFields);
}

vexo_picture pictureFrom(const py::tuple& state) {
    if (state.size() != std::tuple_size_v<decltype(recordFields)>)
        throwInvalid("this is not the state of a Record");
    vexo_picture picture{};
    std::size_t index = 0;
    const auto take = [&](const auto& field) {
        picture.*field.member = state[index++].cast<std::decay_t<decltype(picture.*field.member)>>();
    };
    std::apply([&](const auto&... fields) { (take(fields), ...); }, recordFields);
    return picture;
}

void bindRecord(py::module_& module) {
    py::class_<vexo_picture> record(module, "Record", "How a picture was taken. Times are ticks of 8 ns.");
    std::apply(
        [&](const auto&... fields) { (record.def_readonly(fields.name, fields.member, fields.about), ...); },
        recordFields);
    record.def("__repr__", shownRecord)
        .def(py::pickle([](const vexo_picture& picture) { return stateOf(picture); },
                        [](const py::tuple& state) { return pictureFrom(state); }));
}

py::tuple describe(const Core& core, std::size_t index) {
    const Row& row = core.row(index);
    vexo_parameter known{};
    core.run([&](vexo_station* station) { return vexo_describe(station, row.id, &known); });
    return py::make_tuple(row.id, row.kind, row.elements, row.name, known.label, known.unit,
                          known.description, known.group, known.read_effect, known.set_effect, row.entries);
}

py::tuple rangeOf(const Core& core, std::size_t index) {
    vexo_range range{};
    core.run([&](vexo_station* station) { return vexo_get_range(station, core.row(index).id, &range); });
    return py::make_tuple(range.minimum, range.maximum, range.step);
}

std::uint32_t accessOf(const Core& core, std::size_t index) {
    std::uint32_t access = 0;
    core.run([&](vexo_station* station) { return vexo_get_access(station, core.row(index).id, &access); });
    return access;
}

void setAll(const Core& core, const Texts& assignments, bool anyOrder) {
    const auto pointers = pointersTo(assignments);
    core.run([&](vexo_station* station) {
        return vexo_set_all(station, pointers.data(), pointers.size(),
                            anyOrder ? VEXO_ANY_ORDER : VEXO_GIVEN_ORDER);
    });
}

/** The opposite of vexo_unpack, for blue, green and red in this order. Raises InvalidArgument for a component that has
 *  more bits than the picture. */
void pack(const vexo_picture& picture, const std::uint16_t* component, std::uint8_t* line) {
    for (std::uint32_t y = 0; y < picture.height; ++y, line += picture.stride) {
        std::fill_n(line, picture.stride, std::uint8_t{0});
        std::uint64_t bit = 0; // of the line
        for (std::uint32_t i = 0; i < 3 * picture.width; ++i, ++component, bit += picture.bits) {
            if (*component >> picture.bits != 0)
                throwInvalid("a component of the picture is " + std::to_string(*component) + ", and its " +
                             std::to_string(picture.bits) + " bits end at " +
                             std::to_string((1U << picture.bits) - 1));
            std::uint32_t left = std::uint32_t{*component} << bit % 8;
            for (std::uint8_t* byte = line + bit / 8; left != 0; left >>= 8)
                *byte++ |= static_cast<std::uint8_t>(left);
        }
    }
}

void bindParameters(py::class_<Core>& core) {
    core.def("_names", &Core::names)
        .def("_find", &Core::find)
        .def("_describe", describe)
        .def("_range", rangeOf)
        .def("_access", accessOf)
        .def("_read", [](const Core& self, std::size_t index) { return self.read(self.row(index)); })
        .def("_write", [](const Core& self, std::size_t index,
                          const py::object& value) { self.write(self.row(index), value); })
        .def("_read_elements",
             [](const Core& self, std::size_t index, std::uint32_t first, const py::buffer& values) {
                 self.readElements(self.row(index), first, values);
             })
        .def("_write_elements",
             [](const Core& self, std::size_t index, std::uint32_t first, const py::buffer& values) {
                 self.writeElements(self.row(index), first, values);
             })
        .def("_set_all", setAll);
}

void bindFiles(py::class_<Core>& core) {
    const auto withFile = [](auto* call) {
        return [call](const Core& self, const Text& file) {
            self.run([&](vexo_station* station) { return call(station, file.words()); });
        };
    };
    core.def("_save", withFile(vexo_save))
        .def("_load", withFile(vexo_load))
        .def("_set_up", withFile(vexo_set_up))
        .def("_wave", withFile(vexo_wave))
        .def("_set_up_text",
             [](const Core& self, const Text& json, const std::optional<Text>& folder) {
                 const char* const start = folder ? folder->words() : nullptr;
                 self.run(
                     [&](vexo_station* station) { return vexo_set_up_text(station, json.words(), start); });
             })
        .def("_info", [](const Core& self) { return self.textOf(vexo_info); })
        .def("_document", [](const Core& self) { return self.textOf(vexo_document); });
}

void bindQuestions(py::class_<Core>& core) {
    const auto aboutName = [](auto call) {
        return [call](const Core& self, const Text& name, const Text& with) {
            const char* const assumed = with.bytes.empty() ? nullptr : with.words();
            return self.answerOf([&](vexo_station* station, vexo_answer** answer) {
                return call(station, name.words(), assumed, answer);
            });
        };
    };
    core.def("_limits",
             aboutName([](vexo_station* station, const char* name, const char* with, vexo_answer** answer) {
                 return vexo_ask_limits(station, name, with, nullptr, answer);
             }))
        .def("_why", aboutName(vexo_ask_why))
        .def("_plan",
             [](const Core& self, const Texts& assignments) {
                 const auto pointers = pointersTo(assignments);
                 return self.answerOf([&](vexo_station* station, vexo_answer** answer) {
                     return vexo_ask_plan(station, pointers.data(), pointers.size(), answer);
                 });
             })
        .def("_check",
             [](const Core& self, const Text& file) {
                 return self.answerOf([&](vexo_station* station, vexo_answer** answer) {
                     return vexo_ask_check(station, file.words(), answer);
                 });
             })
        .def("_lint", [](const Core& self) { return self.answerOf(vexo_ask_lint); });
}

std::vector<py::tuple> eventsOf(const Core& core) {
    std::vector<py::tuple> all;
    const char* name = nullptr;
    std::uint64_t mask = 0;
    const auto isThere = [&](vexo_station* station) {
        return vexo_event_at(station, static_cast<std::uint32_t>(all.size()), &name, &mask);
    };
    while (core.resultOf(isThere) == VEXO_OK)
        all.push_back(py::make_tuple(name, mask));
    return all;
}

py::object waitEvent(const Core& core, std::uint64_t mask, double seconds, double wall) {
    vexo_event event{};
    const int code = core.wait(seconds, wall, [&](vexo_station* station, double left, double wallLeft) {
        return vexo_wait_event(station, mask, left, wallLeft, &event, nullptr);
    });
    if (code == VEXO_TIMEOUT) return py::none();
    check(code);
    return py::make_tuple(event.name, event.tick, event.mask);
}

void bindTime(py::class_<Core>& core) {
    core.def("_clock",
             [](const Core& self, double factor) {
                 self.run([&](vexo_station* station) { return vexo_clock(station, factor); });
             })
        .def("_now",
             [](const Core& self) {
                 std::uint64_t tick = 0;
                 self.run([&](vexo_station* station) { return vexo_now(station, &tick); });
                 return tick;
             })
        .def("_advance", advance)
        .def("_events", eventsOf)
        .def("_event_mask",
             [](const Core& self, const Text& name) {
                 std::uint64_t mask = 0;
                 self.run(
                     [&](vexo_station* station) { return vexo_event_mask(station, name.words(), &mask); });
                 return mask;
             })
        .def("_wait_event", waitEvent);
}

vexo_picture waitPicture(const Core& core, std::int64_t number, double seconds, double wall) {
    vexo_picture picture{};
    check(core.wait(seconds, wall, [&](vexo_station* station, double left, double wallLeft) {
        return vexo_wait_picture(station, number, left, wallLeft, &picture);
    }));
    return picture;
}

void bindPictures(py::module_& module, py::class_<Core>& core) {
    core.def("_start",
             [](const Core& self, std::uint32_t frames, bool ring) {
                 self.run([&](vexo_station* station) {
                     return vexo_start(station, frames, ring ? VEXO_RING : VEXO_KEEP);
                 });
             })
        .def("_stop", [](const Core& self) { self.run(vexo_stop); })
        .def("_wait_picture", waitPicture)
        .def("_render",
             [](const Core& self, const vexo_picture& picture, const py::buffer& destination) {
                 const py::buffer_info bytes = bytesOf(picture, destination, true);
                 self.run([&](vexo_station* station) {
                     return vexo_render(station, picture.number, bytes.ptr, picture.size);
                 });
             })
        .def("_release", [](const Core& self, std::int64_t number) {
            self.run([&](vexo_station* station) { return vexo_release(station, number); });
        });
    module.def("unpack", [](const vexo_picture& picture, const py::buffer& data, const py::buffer& pixels) {
        const py::buffer_info bytes = bytesOf(picture, data, false);
        vexo_picture unpacked = picture;
        unpacked.size = std::uint64_t{6} * picture.width * picture.height;
        const py::buffer_info destination = bytesOf(unpacked, pixels, true);
        check(vexo_unpack(&picture, bytes.ptr, static_cast<std::uint16_t*>(destination.ptr)));
    });
    module.def("pack", [](const vexo_picture& picture, const py::buffer& pixels, const py::buffer& data) {
        vexo_picture unpacked = picture;
        unpacked.size = std::uint64_t{6} * picture.width * picture.height;
        const py::buffer_info components = bytesOf(unpacked, pixels, false);
        const py::buffer_info bytes = bytesOf(picture, data, true);
        pack(picture, static_cast<const std::uint16_t*>(components.ptr),
             static_cast<std::uint8_t*>(bytes.ptr));
    });
    module.def("write_picture", [](const vexo_picture& picture, const py::buffer& data, const Text& file) {
        check(vexo_write_picture(&picture, bytesOf(picture, data, false).ptr, file.words()));
    });
}

} // namespace

} // namespace python

PYBIND11_MODULE(_vexo, module) {
    using namespace python;
    module.doc() = "Calls of libvexo for the package vexo";
    module.def("version", vexo_version);
    module.attr("TICKS_PER_SECOND") = VEXO_TICKS_PER_SECOND;
    module.attr("MOST_FRAMES") = VEXO_MOST_FRAMES;
    bindRecord(module);
    using Name = std::optional<Text>;
    py::class_<Core> core(module, "Core", py::custom_type_setup(giveAttributes));
    core.def(py::init<int, std::uint32_t, const Name&, const Name&, const Name&, const Name&>())
        .def(
            "close",
            [](const py::handle& self) {
                if (Core* station = constructedCore(self.ptr())) station->close();
            },
            "Closes the station. A second time, it does nothing.")
        .def_property_readonly(
            "is_open",
            [](const py::handle& self) {
                const Core* station = constructedCore(self.ptr());
                return station != nullptr && station->isOpen();
            },
            "False after close().");
    bindParameters(core);
    bindFiles(core);
    bindQuestions(core);
    bindTime(core);
    bindPictures(module, core);
}
