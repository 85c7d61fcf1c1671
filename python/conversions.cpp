#include "conversions.h"

#include <string_view>

#include "document/plist_value.h"

namespace {

std::string typeName(py::handle value) {
  return py::str(py::type::handle_of(value).attr("__name__"));
}

std::string shapeText(const py::array& a) {
  std::string text = "(";
  for (py::ssize_t i = 0; i < a.ndim(); ++i) {
    text += std::to_string(a.shape(i));
    text += a.ndim() == 1 ? "," : (i + 1 < a.ndim() ? ", " : "");
  }
  return text + ")";
}

}  // namespace

double toDouble(py::handle value, const char* what) {
  if (PyUnicode_Check(value.ptr()) || PyBytes_Check(value.ptr())) {
    throw py::type_error(std::string(what) + " must be a real number, not " + typeName(value));
  }
  const double d = PyFloat_AsDouble(value.ptr());
  if (d == -1.0 && PyErr_Occurred() != nullptr) {
    if (PyErr_ExceptionMatches(PyExc_TypeError) != 0) {
      PyErr_Clear();
      throw py::type_error(std::string(what) + " must be a real number, not " + typeName(value));
    }
    throw py::error_already_set();
  }
  return d;
}

bool isBool(py::handle value) {
  return PyBool_Check(value.ptr()) ||
         py::isinstance(value, py::module_::import("numpy").attr("bool_"));
}

int32_t toInt32(py::handle value, const char* what) {
  // Integers and objects that are integers (NumPy's), but not floats or bools.
  if (isBool(value) || PyFloat_Check(value.ptr()) ||
      PyObject_HasAttrString(value.ptr(), "__index__") == 0) {
    throw py::type_error(std::string(what) + " must be an integer, not " + typeName(value));
  }
  const py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(value.ptr()));
  if (!index) {
    throw py::error_already_set();
  }
  int overflow = 0;
  const long long n = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (overflow != 0 || n < INT32_MIN || n > INT32_MAX) {
    throw py::value_error(std::string(what) +
                          " must lie between -2147483648 and 2147483647, the range of the field");
  }
  return static_cast<int32_t>(n);
}

bool toBool(py::handle value, const char* what) {
  if (isBool(value)) {
    return PyObject_IsTrue(value.ptr()) == 1;
  }
  throw py::type_error(std::string(what) + " must be True or False, not " + typeName(value));
}

std::string toName(py::handle value, const char* what) {
  if (!PyUnicode_Check(value.ptr())) {
    throw py::type_error(std::string(what) + " must be a str, not " + typeName(value));
  }
  Py_ssize_t size = 0;
  const char* utf8 = PyUnicode_AsUTF8AndSize(value.ptr(), &size);
  if (utf8 == nullptr) {
    throw py::error_already_set();
  }
  std::string name(utf8, static_cast<std::size_t>(size));
  if (name.find('\0') != std::string::npos) {
    throw py::value_error(std::string(what) + " must not contain a NUL character");
  }
  return name;
}

py::str fromUtf8(std::string_view bytes) {
  PyObject* text =
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
  if (text == nullptr) {
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::str>(text);
}

py::array_t<double> toRealArray(py::handle value, const char* what, py::ssize_t rows,
                                py::ssize_t cols) {
  const py::array a = py::array::ensure(value);
  if (!a) {
    throw py::type_error(std::string(what) + " must be an array of real numbers, not " +
                         typeName(value));
  }
  const py::dtype dtype = a.dtype();
  const char kind = dtype.kind();
  if (!(kind == 'i' || kind == 'u' || (kind == 'f' && dtype.itemsize() <= 8))) {
    throw py::type_error(std::string(what) + " must hold real numbers, not " +
                         std::string(py::str(dtype.attr("name"))));
  }
  const bool shaped = cols == 0 ? a.ndim() == 1 && a.shape(0) == rows
                                : a.ndim() == 2 && a.shape(0) == rows && a.shape(1) == cols;
  if (!shaped) {
    const std::string wanted = cols == 0
                                   ? "(" + std::to_string(rows) + ",)"
                                   : "(" + std::to_string(rows) + ", " + std::to_string(cols) + ")";
    throw py::value_error(std::string(what) + " must have shape " + wanted + ", not " +
                          shapeText(a));
  }
  return py::array_t<double, py::array::c_style | py::array::forcecast>::ensure(a);
}

Vector toVector(py::handle value, const char* what) {
  const py::array_t<double> a = toRealArray(value, what, 3, 0);
  return Vector::of(a.at(0), a.at(1), a.at(2));
}

std::array<float, 3> toColor(py::handle value, const char* what) {
  const py::array_t<double> a = toRealArray(value, what, 3, 0);
  return {narrowToFloat(a.at(0)), narrowToFloat(a.at(1)), narrowToFloat(a.at(2))};
}

namespace {
template <typename T>
py::array readOnlyTriple(T x, T y, T z) {
  py::array_t<T> a(3);
  T* m = a.mutable_data();
  m[0] = x;
  m[1] = y;
  m[2] = z;
  a.attr("setflags")(py::arg("write") = false);
  return a;
}
}  // namespace

py::array fromVector(const Vector& v) {
  return readOnlyTriple(v.x, v.y, v.z);
}

py::array fromColor(const float (&color)[3]) {
  return readOnlyTriple(color[0], color[1], color[2]);
}
