"""Writes reference.csv: values of the elementary functions from Python's own implementation of complex functions.
Usage: reference.py > reference.csv. A line: function, real and imaginary part of x, real and imaginary part of f(x)."""

import cmath

FUNCTIONS = {
    "sin": cmath.sin, "cos": cmath.cos, "tan": cmath.tan, "asin": cmath.asin, "acos": cmath.acos, "atan": cmath.atan,
    "sinh": cmath.sinh, "cosh": cmath.cosh, "tanh": cmath.tanh, "asinh": cmath.asinh, "acosh": cmath.acosh,
    "atanh": cmath.atanh, "exp": cmath.exp, "ln": cmath.log, "log": cmath.log10, "sqrt": cmath.sqrt,
}
POINTS = [0.25, -0.75, 2.5, -3.0, 1 + 2j, -0.3 + 0.4j, 3 - 1j]  # real ones within and outside of the domains

for name, function in FUNCTIONS.items():
    for point in map(complex, POINTS):
        value = function(point)
        print(name, point.real, point.imag, value.real, value.imag, sep=",")
