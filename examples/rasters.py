"""Rasters and parameter pools of resample, with numpy alone.

    python3 rasters.py slave.ras insar.pool     # describes the files

    from rasters import *
    slave = read_raster("slave.ras")            # pixels[line, sample], mapped and not read yet
    slc = to_complex(slave[100:200])
    write_raster("copy.ras", from_complex(slc, C_INT_16))

    pool = read_pool("insar.pool")              # a dict
    lines = pool["n_lines"]
    write_pool("insar.pool", {"n_lines": ("INT_32", 400)})
"""
import re
import sys

import numpy as np

MAGIC = 0x59A66A95

# Pairs that numpy has no complex number for have the fields re and im.
C_U_INT_8 = np.dtype([("re", "u1"), ("im", "u1")])
C_INT_16 = np.dtype([("re", "<i2"), ("im", "<i2")])
C_FLT_2 = np.dtype([("re", "<f2"), ("im", "<f2")])
RGB = np.dtype([("red", "u1"), ("green", "u1"), ("blue", "u1")])

# Header words (type, depth) that are written for each type of pixel.
TYPE_WORDS = {np.dtype(dtype): words for dtype, words in [
    ("u1", (1, 8)), ("<i2", (1, 16)), ("<i4", (1, 32)), ("<f2", (93, 16)), ("<f4", (99, 32)),
    ("<f8", (98, 64)), (C_U_INT_8, (94, 16)), (C_INT_16, (97, 32)), (C_FLT_2, (92, 32)),
    ("<c8", (96, 64)), ("<c16", (95, 128)), (RGB, (3, 24))]}
# Others that are read: types 100 to 103 are integers of 8 or 16 bits, 199 and 200 binary32.
DTYPES = {words: dtype for dtype, words in TYPE_WORDS.items()}
DTYPES.update({(kind, depth): DTYPES[1, depth] for kind in range(100, 104) for depth in (8, 16)})
DTYPES.update({(kind, 32): np.dtype("<f4") for kind in (199, 200)})


def read_raster(path, mode="r"):
    """The pixels by [line, sample], mapped; with mode "r+" assignments go into the file."""
    header = np.fromfile(path, ">u4", 8)
    if header.size < 8:
        raise ValueError(f"{path}: no header")
    width, height, depth, _, kind, _, map_length = header[1:].tolist()
    if (kind, depth) not in DTYPES:
        raise ValueError(f"{path}: unknown type of pixels: {kind} with {depth} bits")
    return np.memmap(path, DTYPES[kind, depth], mode, 32 + map_length, (height, width))


def create_raster(path, shape, dtype):
    """A new raster of zeros, (lines, samples), mapped: assign to it line by line."""
    dtype = np.dtype(dtype)
    kind, depth = TYPE_WORDS[dtype]
    length = shape[0] * shape[1] * dtype.itemsize
    header = [MAGIC, shape[1], shape[0], depth, length % 2**32, kind, 0, 0]
    with open(path, "wb") as file:
        file.write(np.array(header, ">u4").tobytes())
        file.truncate(32 + length)
    return np.memmap(path, dtype, "r+", 32, shape)


def write_raster(path, pixels):
    """A raster of an array [line, sample] of one of the types in TYPE_WORDS."""
    create_raster(path, pixels.shape, pixels.dtype)[:] = pixels


def to_complex(pixels):
    """Pairs as complex numbers of single precision, which holds them all."""
    values = np.empty(pixels.shape, "c8")
    values.real, values.imag = pixels["re"], pixels["im"]
    return values


def from_complex(values, dtype):
    """Complex numbers as pairs of the type, clipped to its range; integers are rounded."""
    pixels = np.empty(values.shape, dtype)
    for name, part in (("re", values.real), ("im", values.imag)):
        if dtype == C_FLT_2:  # resample knows no subnormal numbers
            pixels[name] = np.where(np.abs(part) < 2.0**-14, 0, np.clip(part, -65504, 65504))
        else:
            limits = np.iinfo(dtype[name])
            pixels[name] = np.clip(np.rint(np.nan_to_num(part)), limits.min, limits.max)
    return pixels


# What the words of a value are, by the type word of the entry. Values of one word become a
# scalar, others a tuple; texts are another matter.
INTEGERS = ("BYT", "INT_8", "INT_16", "INT_32", "INT_64")
WORDS = {"BOL": [lambda word: word == "TRUE"], "FLT_6": [float], "FLT_15": [float]}
WORDS.update({kind: [int] for kind in INTEGERS})
WORDS.update({f"{kind}_{kind}": 2 * WORDS[kind]
              for kind in ("INT_32", "INT_64", "FLT_6", "FLT_15")})
WORDS.update({f"IDX_{kind}": [int] + WORDS[kind] for kind in ("INT_32", "FLT_6", "FLT_15")})


def read_pool(path):
    """All entries of a pool, by key.

    Numbers, booleans and texts become those of Python, vectors and matrices of numbers arrays of
    numpy, those of texts lists. A value of two numbers is a tuple; STR_STR is left as it stands.
    """
    pool = {}
    for key, lines in _entries(path):
        if key is not None and key not in pool:  # of several entries the first counts
            pool[key] = _entry_value(lines)
    return pool


def write_pool(path, entries):
    """Puts {key: (type word, value)} into a pool, in place of entries of the same keys.

    A vector is a sequence, a matrix a sequence of rows. Programs that change the pool at the same
    time are not waited for.
    """
    kept = [line for key, lines in _entries(path) if key not in entries for line in lines]
    if kept and not kept[-1].endswith(("\n", "\r")):
        kept.append("\n")
    new = [_entry_text(key, kind, value) for key, (kind, value) in entries.items()]
    with open(path, "w", newline="", **TEXT) as file:
        file.writelines(kept + new)


TEXT = {"encoding": "utf-8", "errors": "surrogateescape"}


def _entries(path):
    """(key, lines) of each entry with its block, (None, [line]) of any other line."""
    with open(path, newline="", **TEXT) as file:
        lines = iter(re.findall(r"[^\r\n]*(?:\r\n|\r|\n)|[^\r\n]+", file.read()))
    for line in lines:
        words = line.split()
        if line[0] in "# \t\r\n" or len(words) < 2:
            yield None, [line]
            continue
        entry, depth = [line], 0
        if words[1].endswith(("_V", "_M")):
            for line in lines:
                entry.append(line)
                depth += {"{": 1, "}": -1}.get(line.strip(), 0)
                if depth == 0:
                    break
        yield words[0], entry


def _entry_value(lines):
    _, kind, value = (lines[0].split(None, 2) + [""])[:3]
    if not kind.endswith(("_V", "_M")):
        return _scalar(kind, value)
    ranges = [int(word) for word in value.split()[: 2 if kind.endswith("_V") else 4]]
    elements = [_scalar(kind[:-2], line.strip()) for line in lines[1:] if line.strip() not in "{}"]
    values = np.array(elements, object if kind.startswith("STR") else None)
    if kind.endswith("_M"):
        values = values.reshape(ranges[1], ranges[3])
    # First indices are offsets: elements before them are 0 or empty.
    offsets = [(first, 0) for first in ranges[::2]] + (values.ndim - len(ranges) // 2) * [(0, 0)]
    if values.dtype == object:
        return np.pad(values, offsets, constant_values="").tolist()
    return np.pad(values, offsets)


def _scalar(kind, text):
    if kind == "STR":
        quoted = re.match(r'"((?:\\.|[^"\\])*)', text)
        return re.sub(r"\\(.)", r"\1", quoted[1]) if quoted else text.rstrip("\r\n")
    if kind in ("CPL_6", "CPL_15"):
        return complex(*map(float, text.split()[:2]))
    if kind not in WORDS:
        return text.strip()
    values = tuple(convert(word) for convert, word in zip(WORDS[kind], text.split()))
    return values if len(WORDS[kind]) > 1 else values[0]


def _entry_text(key, kind, value):
    head = f"{key:<31} {kind:<15} "
    if kind.endswith("_V"):
        return f"{head}0 {len(value)}\n" + _block(kind[:-2], value, "  ")
    if kind.endswith("_M"):
        rows = "".join(_block(kind[:-2], row, "    ") for row in value)
        return f"{head}0 {len(value)} 0 {len(value[0])}\n  {{\n{rows}  }}\n"
    return f"{head}{_words(kind, value)}\n"


def _block(kind, values, indent):
    lines = "".join(f"{indent}  {_words(kind, value)}\n" for value in values)
    return f"{indent}{{\n{lines}{indent}}}\n"


def _words(kind, value):
    if kind == "STR":
        if "\n" in value or "\r" in value:
            raise ValueError("a text of a pool has no line ends")
        return '"' + re.sub(r'(["\\])', r"\\\1", value) + '"'
    if kind == "BOL":
        return "TRUE" if value else "FALSE"
    if kind in ("CPL_6", "CPL_15"):
        value = (value.real, value.imag)
    parts = value if isinstance(value, tuple) else (value,)
    is_real = kind.startswith(("FLT", "CPL"))
    return " ".join(f"{part:.17E}" if is_real else f"{part}" for part in parts)


if __name__ == "__main__":
    for name in sys.argv[1:]:
        if np.fromfile(name, ">u4", 1).tolist() == [MAGIC]:
            image = read_raster(name)
            print(f"{name}: {image.shape[1]} x {image.shape[0]} pixels of {image.dtype}")
        else:
            for key, value in read_pool(name).items():
                print(f"{name}: {key} = {value}")
