"""Learns the deflection of a cantilever from 100 computed designs, by ctypes alone, and asks how far to trust it.

    python3 cantilever.py [path of libzor_api.so]
"""

import ctypes
import sys

zor = ctypes.CDLL(sys.argv[1] if len(sys.argv) > 1 else "libzor_api.so.21")
zor.zor_get_last_error.restype = ctypes.c_char_p
zor.zor_release.restype = None

INPUTS = {"force": (100.0, 500.0), "length": (0.5, 1.5), "height": (0.02, 0.05)}  # N, m, m
DESIGNS = 100


def deflection(force, length, height):
    """Deflection in mm of the free end: 4 F L^3 / (E b h^3), of steel, 30 mm wide."""
    return 1000 * 4 * force * length**3 / (210e9 * 0.03 * height**3)


def radical_inverse(index, base):
    """The digits of index in a base, mirrored at the point: points that fill 0 to 1 evenly (Halton 1960)."""
    value, digit = 0.0, 1.0 / base
    while index:
        index, remainder = divmod(index, base)
        value += digit * remainder
        digit /= base
    return value


def doubles(rows):
    """A table, row by row, as the flat array that the library takes."""
    values = [value for row in rows for value in row]
    return (ctypes.c_double * len(values))(*values)


def texts(names):
    return (ctypes.c_char_p * len(names))(*[name.encode() for name in names])


def check(code):
    if code:
        raise RuntimeError(zor.zor_get_last_error(handle).decode())


def design(index):
    inputs = [low + (high - low) * radical_inverse(index, base)
              for (low, high), base in zip(INPUTS.values(), (2, 3, 5))]
    return inputs + [deflection(*inputs)]


handle = ctypes.c_void_p()
if zor.zor_create(ctypes.byref(handle)):
    raise MemoryError("no handle")
check(zor.zor_set_input_count(handle, len(INPUTS)))
check(zor.zor_set_output_count(handle, 1))
check(zor.zor_set_input_names(handle, texts(list(INPUTS)), len(INPUTS)))
check(zor.zor_set_output_names(handle, texts(["deflection"]), 1))
check(zor.zor_build(handle, doubles(design(i) for i in range(1, DESIGNS + 1)), DESIGNS))

cop = ctypes.c_double()
check(zor.zor_get_cop_per_output(handle, 0, ctypes.byref(cop)))
print(f"CoP {cop.value:.4f}")

beams = [[300.0, 1.2, 0.04], [150.0, 0.7, 0.03]]
predicted = (ctypes.c_double * len(beams))()
errors = (ctypes.c_double * (4 * len(beams)))()
check(zor.zor_solve(handle, doubles(beams), predicted, len(beams)))
check(zor.zor_calculate_errors_per_output(handle, 0, doubles(beams), len(beams), errors))
for i, beam in enumerate(beams):
    print(f"{beam}: predicted {predicted[i]:.2f} mm, around it +/- {errors[4 * i + 1]:.2f} mm, "
          f"exact {deflection(*beam):.2f} mm")

try:
    check(zor.zor_solve(handle, doubles([[300.0, 2.0, 0.04]]), predicted, 1))
    sys.exit("a beam outside the bounds was not refused")
except RuntimeError as refusal:
    print(f"refused: {refusal}")
zor.zor_release(handle)
