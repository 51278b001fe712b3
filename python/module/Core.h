/** An open station as Python sees it: calls of vexo.h with Python's values, errors and interpreter lock. */
#ifndef PYTHON_MODULE_CORE_H
#define PYTHON_MODULE_CORE_H

#include "host/vexo.h"

#include <pybind11/pybind11.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace python {

namespace py = pybind11;

/** Raises the exception of vexo._errors for the last failed call of this thread, if the result is negative. */
void check(int result);

/** Raises Closed. */
[[noreturn]] void throwClosed();
/** Raises InvalidArgument. */
[[noreturn]] void throwInvalid(const std::string& words);

/** A text for a C function: UTF-8, or the bytes of the name of a file, which may be any. */
struct Text {
    std::string bytes;

    const char* words() const { return bytes.c_str(); }
};

/** The text of a `str` or `bytes`. Raises InvalidArgument for one that no C function takes: with a NUL, where it would
 *  end, or with a half of a character. */
Text textFrom(const py::handle& given);

/** The interpreter lock is released for a scope. */
class Unlocked {
public:
    Unlocked() : m_state(PyEval_SaveThread()) {}
    ~Unlocked();
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;

private:
    PyThreadState* const m_state;
};

/** A parameter, with what does not change while the station is open. */
struct Row {
    int id = 0;
    int kind = 0;
    std::uint32_t elements = 0;
    std::string name;
    py::dict entries; /**< value -> vexo._values.Entry */
};

/**
 * The base of vexo.Station. Only reads of numbers keep the interpreter lock; every other call releases it, and
 * keeps the station open: it is closed when the last call has returned.
 */
class Core {
public:
    /** Opens a station. The interpreter lock is kept, since opening changes the environment of the process. */
    Core(int board, std::uint32_t flags, const std::optional<Text>& libraryDir,
         const std::optional<Text>& applet, const std::optional<Text>& bridge,
         const std::optional<Text>& station);

    /** Ends waits of other threads for pictures, and closes the station; a second time, does nothing. */
    void close();
    bool isOpen() const { return m_station != nullptr; }

    /** The names of all parameters, each with its index in the table of rows. */
    const py::dict& names() const { return m_names; }
    /** Raises IndexError. */
    const Row& row(std::size_t index) const;
    /** The index of the row for any name that vexo_id knows. */
    std::size_t find(const Text& name) const;

    py::object read(const Row& row) const;
    void write(const Row& row, const py::handle& value) const;
    void readElements(const Row& row, std::uint32_t first, const py::buffer& values) const;
    void writeElements(const Row& row, std::uint32_t first, const py::buffer& values) const;

    /** Calls without the interpreter lock, and raises an exception for a negative result. */
    template <typename Call> void run(const Call& call) const { check(resultOf(call)); }
    /** The same, and the result. */
    template <typename Call> int resultOf(const Call& call) const {
        const std::shared_ptr<vexo_station> held = station();
        const Unlocked unlocked;
        return call(held.get());
    }
    /** The text that a call gives. */
    template <typename Call> std::string textOf(const Call& call) const {
        char* text = nullptr;
        run([&](vexo_station* handle) { return call(handle, &text); });
        const std::unique_ptr<char, decltype(&vexo_free)> owner(text, vexo_free);
        return text;
    }
    /** The words and the JSON of the answer that a call gives. */
    template <typename Call> py::tuple answerOf(const Call& call) const {
        vexo_answer* answer = nullptr;
        const int result = resultOf([&](vexo_station* handle) { return call(handle, &answer); });
        const std::unique_ptr<vexo_answer, decltype(&vexo_answer_free)> owner(answer, vexo_answer_free);
        if (answer == nullptr) check(result);
        return py::make_tuple(vexo_answer_text(answer), vexo_answer_json(answer));
    }

    /**
     * Waits in slices of the wall clock, so that a signal such as Ctrl-C ends it. `call` gets the station and both
     * time-outs of the slice. Returns its result.
     */
    template <typename Call> int wait(double seconds, double wall, const Call& call) const {
        constexpr double slice = 0.1; // seconds
        const auto begin = std::chrono::steady_clock::now();
        std::uint64_t tick = 0;
        run([&](vexo_station* handle) { return vexo_now(handle, &tick); });
        const double end = static_cast<double>(tick) + seconds * VEXO_TICKS_PER_SECOND;
        for (;;) {
            const std::chrono::duration<double> gone = std::chrono::steady_clock::now() - begin;
            const double wallLeft = wall < 0 ? slice : std::max(0.0, wall - gone.count());
            const double left = (end - static_cast<double>(tick)) / VEXO_TICKS_PER_SECOND;
            const int code = resultOf([&](vexo_station* handle) {
                const int result = call(handle, left, std::min(slice, wallLeft));
                if (result == VEXO_TIMEOUT) vexo_now(handle, &tick);
                return result;
            });
            const bool isLastSlice = wall >= 0 && wallLeft <= slice;
            if (code != VEXO_TIMEOUT || isLastSlice || static_cast<double>(tick) >= end) return code;
            if (PyErr_CheckSignals() != 0) throw py::error_already_set();
        }
    }

private:
    /** Raises Closed if the station is closed. */
    const std::shared_ptr<vexo_station>& station() const;
    std::string readText(const Row& row) const;
    void readRows();

    std::shared_ptr<vexo_station> m_station;
    std::vector<Row> m_rows;
    std::unordered_map<int, std::size_t> m_indices; // of rows, by id
    py::dict m_names;
};

/** Advances stepped time in pieces, between which a signal such as Ctrl-C ends it. */
void advance(const Core& core, std::uint64_t ticks);

/** The object of a class of this module; null if its constructor has not run, or has failed. */
void* constructed(PyObject* object);
inline Core* constructedCore(PyObject* object) { return static_cast<Core*>(constructed(object)); }

/** Lets `station.NAME` read and set parameters. */
void giveAttributes(PyHeapTypeObject* type);

} // namespace python

template <> struct pybind11::detail::type_caster<python::Text> {
    PYBIND11_TYPE_CASTER(python::Text, const_name("str"));

    bool load(handle source, bool) {
        if (!PyUnicode_Check(source.ptr()) && !PyBytes_Check(source.ptr())) return false;
        value = python::textFrom(source);
        return true;
    }
};

/** Functions of a station whose constructor has not run raise Closed; pybind11 would give them raw memory. */
template <> struct pybind11::detail::type_caster<python::Core> : type_caster_base<python::Core> {
    bool load(handle source, bool convert) {
        if (isinstance<python::Core>(source) && python::constructedCore(source.ptr()) == nullptr)
            python::throwClosed();
        return type_caster_base<python::Core>::load(source, convert);
    }
};

/** The same for a Record, which raises TypeError. */
template <> struct pybind11::detail::type_caster<vexo_picture> : type_caster_base<vexo_picture> {
    bool load(handle source, bool convert) {
        if (isinstance<vexo_picture>(source) && python::constructed(source.ptr()) == nullptr)
            throw type_error("a Record comes with a picture, and this one is empty");
        return type_caster_base<vexo_picture>::load(source, convert);
    }
};

#endif
