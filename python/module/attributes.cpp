// station.NAME: parameters as attributes. The names of parameters are looked up first, so a read costs little more than
// that of a plain attribute; a name that is neither a parameter's nor an attribute's raises an error with the nearest names.

#include "python/module/Core.h"

namespace python {

namespace {

/** Null before the station is open, and after it was closed. */
Core* openCore(PyObject* self) {
    Core* core = constructedCore(self);
    return core != nullptr && core->isOpen() ? core : nullptr;
}

/** True after a station was closed: then its parameters have no values. */
bool isClosed(PyObject* self) {
    const Core* core = constructedCore(self);
    return core != nullptr && !core->isOpen();
}

/** The row of a parameter's own name; null if it is none. */
const Row* rowOf(const Core* core, PyObject* name) {
    if (core == nullptr) return nullptr;
    PyObject* index = PyDict_GetItemWithError(core->names().ptr(), name);
    return index != nullptr ? &core->row(PyLong_AsSize_t(index)) : nullptr;
}

bool isPrivate(PyObject* name) {
    return PyUnicode_GET_LENGTH(name) == 0 || PyUnicode_READ_CHAR(name, 0) == '_';
}

/** What `call` returns; after an exception null or -1, with Python's error set. */
template <typename Call> auto guarded(const Call& call, decltype(call()) failed) -> decltype(call()) {
    try {
        return call();
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const py::builtin_exception& error) {
        error.set_error();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    }
    return failed;
}

PyObject* getAttribute(PyObject* self, PyObject* name) {
    const Core* core = openCore(self);
    if (const Row* row = rowOf(core, name))
        return guarded([&] { return core->read(*row).release().ptr(); }, nullptr);
    PyObject* found = PyObject_GenericGetAttr(self, name);
    if (found != nullptr || isPrivate(name) || PyErr_ExceptionMatches(PyExc_AttributeError) == 0)
        return found;
    if (core == nullptr && !isClosed(self)) return nullptr;
    PyErr_Clear();
    return guarded(
        [&] {
            if (core == nullptr) throwClosed();
            const std::size_t index = core->find(py::cast<Text>(name));
            return core->read(core->row(index)).release().ptr();
        },
        nullptr);
}

/** Sets what the class has too, but does not replace a function by what was meant as a value. */
int setOfClass(PyObject* self, PyObject* name, PyObject* value, const py::object& known) {
    if (PyCallable_Check(known.ptr()) == 0) return PyObject_GenericSetAttr(self, name, value);
    PyErr_Format(PyExc_AttributeError, "'%U' is a function of the station, and no parameter", name);
    return -1;
}

int setAttribute(PyObject* self, PyObject* name, PyObject* value) {
    const Core* core = openCore(self);
    const bool isUnopened = core == nullptr && !isClosed(self);
    if (isUnopened || value == nullptr || isPrivate(name)) return PyObject_GenericSetAttr(self, name, value);
    if (const Row* row = rowOf(core, name)) return guarded([&] { return core->write(*row, value), 0; }, -1);
    auto* type = reinterpret_cast<PyObject*>(Py_TYPE(self));
    const auto known = py::reinterpret_steal<py::object>(PyObject_GetAttr(type, name));
    if (known) return setOfClass(self, name, value, known);
    PyErr_Clear();
    return guarded(
        [&] {
            if (core == nullptr) throwClosed();
            core->write(core->row(core->find(py::cast<Text>(name))), value);
            return 0;
        },
        -1);
}

} // namespace

void giveAttributes(PyHeapTypeObject* type) {
    type->ht_type.tp_getattro = getAttribute;
    type->ht_type.tp_setattro = setAttribute;
}

} // namespace python
