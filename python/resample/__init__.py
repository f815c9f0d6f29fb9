"""Resampling of SLC images on arrays of numpy, with the library of the program `resample`.

Images are arrays [line, sample]: complex64, or pairs of 16-bit numbers as rasters hold them (see
C_INT_16 and C_FLT_2). Failures are `Error`, with the reason; nothing is printed.
"""
from __future__ import annotations

import json
import os
from collections.abc import Callable, Iterator, Mapping as _Mapping
from typing import Any, NamedTuple, Optional, Union

import numpy as np

from . import _core
from ._core import Doppler, Error, Kernel, Mapping
from .rasters import (C_FLT_2, C_INT_16, create_raster, from_complex, read_raster, to_complex,
                      write_raster)

__all__ = ["C_FLT_2", "C_INT_16", "Doppler", "Error", "Kernel", "Mapping", "Pool", "Resampled",
           "create_raster", "doppler_from_pools", "from_complex", "mapping_from_function",
           "read_raster", "resample", "to_complex", "write_raster"]

Log = Callable[[str, str], object]


class Resampled(NamedTuple):
    """The slave on the master's grid; `valid` is 1 where a pixel is computed from valid ones."""
    image: np.ndarray
    valid: np.ndarray


def resample(slave: np.ndarray, mapping: Mapping, kernel: Kernel, doppler: Doppler,
             shape: tuple[int, int], *, mask: Optional[np.ndarray] = None,
             imaging_mode: str = "SM", ps_mode: bool = False, threads: Optional[int] = None,
             log: Optional[Log] = None) -> Resampled:
    """Moves a slave image onto the grid of its master, of (lines, samples) `shape`.

    `mask` is 0 where the slave is not valid. The imaging mode tells whether the centroid's phase has
    a quadratic term ("TOPS", "SL", ...) or not ("SM"); `ps_mode` leaves it out. `log(level, text)`
    gets every line that a run would log, from any thread. The result does not depend on `threads`;
    without it PARALLEL in the environment counts, or the number of processors.

    Images of C_INT_16 and C_FLT_2 give the bytes of the program. Others are complex numbers, which
    are carried as pairs of binary16: scaled by a power of two, they keep 11 bits. Pixels that are not
    computed are 0.
    """
    slave = np.asarray(slave)
    if slave.ndim != 2:
        raise ValueError("the slave is an image [line, sample]")
    if mask is not None:
        mask = np.ascontiguousarray(np.asarray(mask) != 0, "u1")
        if mask.shape != slave.shape:
            raise ValueError(f"the mask is {mask.shape} and the slave {slave.shape}")
    dtype, scale = slave.dtype, 1.0
    if dtype not in _PIXEL_TYPES:
        scale = _scale(slave)
        slave = from_complex(np.asarray(slave, "c8") * np.float32(scale), C_FLT_2)
    pixels = np.ascontiguousarray(slave)
    pairs = pixels.view("i2").reshape(pixels.shape + (2,))
    image, valid = _core.resample_pairs(pairs, _PIXEL_TYPES[pixels.dtype], mask, mapping, kernel,
                                        doppler, shape, imaging_mode, ps_mode, threads, log)
    image = image.view(pixels.dtype)
    if dtype not in _PIXEL_TYPES:
        image = to_complex(image) / np.float32(scale)
    return Resampled(image, valid)


# What is resampled as it is, by the names of the library.
_PIXEL_TYPES = {C_INT_16: "c_int_16", C_FLT_2: "c_flt_2"}


def _scale(image: np.ndarray) -> float:
    """The power of two that brings the largest component to between 2**13 and 2**14."""
    parts = [np.abs(part[np.isfinite(part)]) for part in (image.real, image.imag)]
    largest = max((float(part.max()) for part in parts if part.size), default=0.0)
    return 2.0 ** (14 - np.frexp(largest)[1]) if largest > 0.0 else 1.0


def mapping_from_function(positions: Callable[[np.ndarray, np.ndarray], tuple[Any, Any]],
                          shape: tuple[int, int], subsampling: int = 8) -> Mapping:
    """The mapping of a function of master (samples, lines) that gives slave (range, azimuth).

    It is asked for a grid of every `subsampling`th pixel, beyond the last ones of `shape`, and
    shifts are interpolated bilinearly in between.
    """
    lines, samples = (np.arange(-(-length // subsampling) + 1) * float(subsampling)
                      for length in shape)
    sample, line = np.meshgrid(samples, lines)
    slave_range, slave_azimuth = positions(sample, line)
    return Mapping.matrix(np.asarray(slave_range) - sample, np.asarray(slave_azimuth) - line,
                          (subsampling, subsampling))


def doppler_from_pools(slave_pool: _Mapping[str, Any], insar_pool: _Mapping[str, Any]) -> Doppler:
    """What the two pools of a run say about the slave's timing and centroid."""
    return Doppler(slave_pool["prf"], slave_pool["range_sampling_frequency"],
                   slave_pool["fdc_poly_az_time"], slave_pool["fdc_poly_rg_ref_time"],
                   slave_pool["fdc_poly_coeff"], oversampling=slave_pool["oversampling"],
                   first_azimuth_time=insar_pool["slave_first_az_time"],
                   first_range_time=insar_pool["slave_first_rg_time"])


class Pool(_Mapping[str, Any]):
    """A parameter pool, read anew at each access and locked while it is changed.

    Numbers, booleans and texts are those of Python, vectors and matrices of numbers arrays, those of
    texts lists, pairs tuples. `pool[key] = value` keeps the type of an entry; that of a new one
    follows from the value: BOL, INT_32, INT_64, FLT_15, CPL_15, STR and their vectors and matrices.
    """

    def __init__(self, path: Union[str, os.PathLike[str]]) -> None:
        self.path = os.fspath(path)
        self._entries()

    def _entries(self) -> dict[str, tuple[str, Any]]:
        return {entry["key"]: (entry["type"], entry["value"])
                for entry in json.loads(_core.pool_entries(self.path))}

    def __getitem__(self, key: str) -> Any:
        kind, value = self._entries()[key]
        if value is None:
            raise Error(f"{self.path}: {key} can not be read as {kind}")
        return _from_json(kind, value)

    def __iter__(self) -> Iterator[str]:
        return iter(self._entries())

    def __len__(self) -> int:
        return len(self._entries())

    def type(self, key: str) -> str:
        """The type word of an entry."""
        return self._entries()[key][0]

    def __setitem__(self, key: str, value: Any) -> None:
        self.set(key, value)

    def set(self, key: str, value: Any, type: Optional[str] = None) -> None:
        """Changes an entry or adds one, of the given type word."""
        if type is None:
            entries = self._entries()
            type = entries[key][0] if key in entries else _type_of(value)
        elements = np.asarray(value, object if "STR" in type else None)
        if type.endswith("_V") or type.endswith("_M"):
            columns = elements.shape[1] if type.endswith("_M") else 0
            words = [word for element in elements.reshape(-1).tolist() for word in _words(element)]
        else:
            columns, words = 0, _words(value)
        _core.set_pool_entry(self.path, key, type, words, columns)


def _type_of(value: Any) -> str:
    if isinstance(value, str):
        return "STR"
    array = np.asarray(value)
    kinds = {"b": "BOL", "i": "INT_32", "u": "INT_32", "f": "FLT_15", "c": "CPL_15", "U": "STR"}
    if array.dtype.kind not in kinds or array.ndim > 2:
        raise TypeError(f"no type of a pool holds {value!r}")
    kind = kinds[array.dtype.kind]
    if kind == "INT_32" and array.size and np.abs(array.astype("f8")).max() > 2**31 - 1:
        kind = "INT_64"
    return kind + ("", "_V", "_M")[array.ndim]


def _words(value: Any) -> list[str]:
    if isinstance(value, (tuple, list)):
        return [word for part in value for word in _words(part)]
    if isinstance(value, (bool, np.bool_)):
        return ["TRUE" if value else "FALSE"]
    if isinstance(value, (complex, np.complexfloating)):
        return [repr(float(value.real)), repr(float(value.imag))]
    if isinstance(value, (float, np.floating)):
        return [repr(float(value))]
    return [str(value)]


def _from_json(kind: str, value: Any) -> Any:
    """A value of the listing, where complex numbers are pairs and NaN is a text."""
    element = kind[:-2] if kind[-2:] in ("_V", "_M") else kind
    if element == kind:
        return _scalar(element, value)
    if "STR" in element or element.startswith("IDX"):
        return [_scalar(element, part) for part in value] if kind.endswith("_V") else value
    if element in ("CPL_6", "CPL_15"):
        pairs = np.asarray(value, "f8")
        return pairs[..., 0] + 1j * pairs[..., 1]
    dtypes = {"BOL": "?", "FLT_6": "f8", "FLT_15": "f8", "FLT_6_FLT_6": "f8",
              "FLT_15_FLT_15": "f8"}
    return np.asarray(value, dtypes.get(element, "i8"))


def _scalar(kind: str, value: Any) -> Any:
    if kind in ("CPL_6", "CPL_15"):
        return complex(float(value[0]), float(value[1]))
    if isinstance(value, list):
        return tuple(value)
    return float(value) if kind.startswith("FLT") else value
