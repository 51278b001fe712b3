#include "python/module/Core.h"

#include <unistd.h>

#include <algorithm>

namespace python {

namespace {

[[noreturn]] void throwError(const py::object& error) {
    PyErr_SetObject(py::type::handle_of(error).ptr(), error.ptr());
    throw py::error_already_set();
}

const char* orNull(const std::optional<Text>& text) { return text ? text->words() : nullptr; }

/** "the text 'a'", with the beginning of a long one. */
std::string beginningOf(const py::handle& text) {
    const auto shown = py::reinterpret_steal<py::object>(PySequence_GetSlice(text.ptr(), 0, 60));
    return "the text " + std::string(py::repr(shown));
}

py::object function(const char* module, const char* name) { return py::module_::import(module).attr(name); }

/** The 32-bit numbers of a buffer. Raises ValueError for another one. */
py::buffer_info numbersOf(const py::buffer& buffer, bool written) {
    py::buffer_info info = buffer.request(written);
    if (info.ndim != 1 || info.itemsize != sizeof(std::uint32_t) ||
        (info.size > 1 && info.strides[0] != info.itemsize))
        throw py::value_error("elements are a contiguous array of unsigned 32-bit numbers");
    return info;
}

} // namespace

void check(int result) {
    if (result >= 0) return;
    throwError(function("vexo._errors", "error_of")(vexo_last_details()));
}

void throwClosed() { throwError(function("vexo._errors", "closed")()); }

void throwInvalid(const std::string& words) { throwError(function("vexo._errors", "invalid")(words)); }

Text textFrom(const py::handle& given) {
    py::object bytes = py::reinterpret_borrow<py::object>(given);
    // As os.fsencode: a name of a file that is not UTF-8 is a text with one escape for each of its other bytes.
    if (PyUnicode_Check(given.ptr()))
        bytes = py::reinterpret_steal<py::object>(
            PyUnicode_AsEncodedString(given.ptr(), "utf-8", "surrogateescape"));
    if (!bytes) {
        PyErr_Clear();
        throwInvalid(beginningOf(given) +
                     " has a half of a character (a surrogate), which UTF-8 cannot hold");
    }
    Text text{bytes.cast<std::string>()};
    if (text.bytes.find('\0') != std::string::npos)
        throwInvalid(beginningOf(given) + " has a NUL character, where it would end");
    return text;
}

// At shutdown the interpreter terminates threads that wait for its lock, by an exception that must not leave a
// destructor. Such a thread waits here for the end of the process.
Unlocked::~Unlocked() {
    try {
        PyEval_RestoreThread(m_state);
    } catch (...) {
        for (;;)
            pause();
    }
}

void* constructed(PyObject* object) {
    auto holder = reinterpret_cast<py::detail::instance*>(object)->get_value_and_holder();
    return holder.holder_constructed() ? holder.value_ptr<void>() : nullptr;
}

void advance(const Core& core, std::uint64_t ticks) {
    using namespace std::chrono_literals;
    std::uint64_t piece = VEXO_TICKS_PER_SECOND / 100;
    do {
        const std::uint64_t step = std::min(piece, ticks);
        const auto begin = std::chrono::steady_clock::now();
        core.run([&](vexo_station* handle) { return vexo_advance(handle, step); });
        const auto took = std::chrono::steady_clock::now() - begin;
        if (took < 20ms) piece *= 2;
        if (took > 100ms) piece = std::max<std::uint64_t>(1, piece / 2);
        ticks -= step;
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    } while (ticks > 0);
}

Core::Core(int board, std::uint32_t flags, const std::optional<Text>& libraryDir,
           const std::optional<Text>& applet, const std::optional<Text>& bridge,
           const std::optional<Text>& station) {
    vexo_options options{};
    options.size = sizeof options;
    options.board = board;
    options.flags = flags;
    options.library_dir = orNull(libraryDir);
    options.applet = orNull(applet);
    options.bridge = orNull(bridge);
    options.station = orNull(station);
    vexo_station* opened = nullptr;
    check(vexo_open(&options, &opened));
    m_station = {opened, vexo_close};
    readRows();
}

void Core::readRows() {
    vexo_station* handle = m_station.get();
    const std::uint32_t count = vexo_count(handle);
    m_rows.reserve(count);
    const py::object makeEntry = function("vexo._values", "Entry");
    for (std::uint32_t i = 0; i < count; ++i) {
        vexo_parameter known{};
        check(vexo_parameter_at(handle, i, &known));
        Row row{.id = known.id,
                .kind = known.kind,
                .elements = known.elements,
                .name = known.name,
                .entries = {}};
        for (std::uint32_t k = 0; k < known.entries; ++k) {
            vexo_entry entry{};
            check(vexo_entry_at(handle, row.id, k, &entry));
            row.entries[py::int_(entry.value)] = makeEntry(entry.value, entry.symbol, entry.label);
        }
        m_indices[row.id] = m_rows.size();
        m_names[py::str(row.name)] = m_rows.size();
        m_rows.push_back(std::move(row));
    }
}

const std::shared_ptr<vexo_station>& Core::station() const {
    if (m_station == nullptr) throwClosed();
    return m_station;
}

void Core::close() {
    const std::shared_ptr<vexo_station> held = std::move(m_station);
    if (held == nullptr) return;
    const Unlocked unlocked;
    vexo_stop(held.get());
}

const Row& Core::row(std::size_t index) const {
    if (index >= m_rows.size())
        throw py::index_error("there is no parameter " + std::to_string(index) + " of " +
                              std::to_string(m_rows.size()));
    return m_rows[index];
}

std::size_t Core::find(const Text& name) const {
    int id = 0;
    run([&](vexo_station* handle) { return id = vexo_id(handle, name.words()); });
    return m_indices.at(id);
}

std::string Core::readText(const Row& row) const {
    std::string text(256, '\0');
    for (;;) {
        std::size_t size = text.size();
        const int code =
            resultOf([&](vexo_station* handle) { return vexo_get_text(handle, row.id, text.data(), &size); });
        if (code != VEXO_ERR_SPACE) check(code);
        text.resize(code == VEXO_OK ? size - 1 : size);
        if (code == VEXO_OK) return text;
    }
}

py::object Core::read(const Row& row) const {
    vexo_station* handle = station().get();
    switch (row.kind) {
    case VEXO_DOUBLE: {
        double value = 0;
        check(vexo_get_double(handle, row.id, &value));
        return py::float_(value);
    }
    case VEXO_TEXT:
        return py::str(readText(row));
    case VEXO_FIELD: {
        py::object values = function("numpy", "empty")(row.elements, "uint32");
        readElements(row, 0, values.cast<py::buffer>());
        values.attr("setflags")(false); // a change of it would not reach the station
        return values;
    }
    case VEXO_UINT64: {
        std::uint64_t value = 0;
        check(vexo_get_uint(handle, row.id, &value));
        return py::int_(value);
    }
    default: {
        std::int64_t value = 0;
        check(vexo_get_int(handle, row.id, &value));
        py::int_ number(value);
        if (row.kind != VEXO_ENUM) return number;
        PyObject* entry = PyDict_GetItemWithError(row.entries.ptr(), number.ptr());
        return entry != nullptr ? py::reinterpret_borrow<py::object>(entry) : py::object(number);
    }
    }
}

void Core::write(const Row& row, const py::handle& value) const {
    PyObject* given = value.ptr();
    if (PyUnicode_Check(given)) {
        const Text text = textFrom(value);
        run([&](vexo_station* handle) { return vexo_set_text(handle, row.id, text.words()); });
        return;
    }
    if (PyFloat_Check(given)) {
        const double number = PyFloat_AS_DOUBLE(given);
        run([&](vexo_station* handle) { return vexo_set_double(handle, row.id, number); });
        return;
    }
    if (PyIndex_Check(given) && !PyObject_HasAttrString(given, "__len__")) {
        const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(given));
        if (!whole) throw py::error_already_set();
        int overflow = 0;
        const long long number = PyLong_AsLongLongAndOverflow(whole.ptr(), &overflow);
        if (overflow != 0 || row.kind == VEXO_FIELD) return write(row, py::str(whole));
        run([&](vexo_station* handle) { return vexo_set_int(handle, row.id, number); });
        return;
    }
    if (row.kind == VEXO_FIELD) {
        const py::object values = function("vexo._values", "elements_of")(value, row.name, row.elements);
        return writeElements(row, 0, values.cast<py::buffer>());
    }
    const auto number = py::reinterpret_steal<py::object>(PyNumber_Float(given));
    if (!number) {
        PyErr_Clear();
        throw py::type_error(row.name + " takes a number or a text, not " +
                             std::string(py::str(py::type::handle_of(value).attr("__name__"))));
    }
    write(row, number);
}

void Core::readElements(const Row& row, std::uint32_t first, const py::buffer& values) const {
    const py::buffer_info info = numbersOf(values, true);
    run([&](vexo_station* handle) {
        return vexo_get_field(handle, row.id, first, static_cast<std::uint32_t>(info.size),
                              static_cast<std::uint32_t*>(info.ptr));
    });
}

void Core::writeElements(const Row& row, std::uint32_t first, const py::buffer& values) const {
    const py::buffer_info info = numbersOf(values, false);
    run([&](vexo_station* handle) {
        return vexo_set_field(handle, row.id, first, static_cast<std::uint32_t>(info.size),
                              static_cast<const std::uint32_t*>(info.ptr));
    });
}

} // namespace python
