"""General-purpose resamplers as Debian has them. None of them removes a Doppler centroid or carries
a mask. Those that are not installed are left out with a word."""

import importlib
import shutil
import sys
import time

import numpy as np

from contender import Contender
from scene_files import HEADER_BYTES, smooth_shift
from whole_runs import seconds_of


def _import(module, package):
    try:
        return importlib.import_module(module)
    except ImportError:
        print(f"left out: {package} is not installed", file=sys.stderr)
        return None


def _positions(size):
    """Range and azimuth positions in the slave, binary32, by [line, sample]."""
    sample = np.arange(size, dtype=np.float32)[np.newaxis, :]
    line = np.arange(size, dtype=np.float32)[:, np.newaxis]
    return sample + smooth_shift(sample, line), line + smooth_shift(sample + 1000.0, line)


def _noise(size, dtype):
    return np.random.default_rng(1).integers(-3000, 3001, (size, size, 2)).astype(dtype)


def _in_memory(name, command, size, work):
    """`work` is done once, untimed, so that its memory is there."""
    def measure():
        start = time.perf_counter()
        work()
        return 1e9 * (time.perf_counter() - start) / size**2

    work()
    return Contender(name, command, measure)


def _opencv(size):
    cv2 = _import("cv2", "python3-opencv")
    if not cv2:
        return []
    cv2.setNumThreads(1)
    image = _noise(size, np.float32)
    rg, az = _positions(size)
    output = np.empty_like(image)
    methods = {"INTER_LANCZOS4": "8 x 8 taps", "INTER_CUBIC": "4 x 4 taps"}
    return [_in_memory(f"OpenCV {cv2.__version__} remap, {taps}, binary32",
                       f"cv2.remap(image, rg, az, cv2.{method})", size,
                       lambda method=method: cv2.remap(image, rg, az, getattr(cv2, method), output))
            for method, taps in methods.items()]


def _scipy(size):
    ndimage = _import("scipy.ndimage", "python3-scipy")
    if not ndimage:
        return []
    image = _noise(size, np.float32).view(np.complex64)[..., 0]
    rg, az = _positions(size)
    return [_in_memory("SciPy map_coordinates, cubic spline",
                       "scipy.ndimage.map_coordinates(image, (az, rg), order=3)", size,
                       lambda: ndimage.map_coordinates(image, (az, rg), order=3))]


def in_memory(size):
    return _opencv(size) + _scipy(size)


VRT = """<VRTDataset rasterXSize="{size}" rasterYSize="{size}">
  <GeoTransform>5.3, 1.0001, -0.00007, {size}.7, -0.0001, -1.00007</GeoTransform>
  <VRTRasterBand dataType="CInt16" band="1" subClass="VRTRawRasterBand">
    <SourceFilename relativeToVRT="1">slave.ras</SourceFilename>
    <ImageOffset>{offset}</ImageOffset>
    <PixelOffset>4</PixelOffset>
    <LineOffset>{line_bytes}</LineOffset>
    <ByteOrder>LSB</ByteOrder>
  </VRTRasterBand>
</VRTDataset>
"""


def gdalwarp(scene):
    """gdalwarp with 6 x 6 taps on the same rasters, with an affine mapping of the same slopes."""
    if not shutil.which("gdalwarp"):
        print("left out: gdal-bin is not installed", file=sys.stderr)
        return None
    size = scene.size
    scene.path("slave.vrt").write_text(
        VRT.format(size=size, offset=HEADER_BYTES, line_bytes=4 * size))
    arguments = ["gdalwarp", "-q", "-overwrite", "-r", "lanczos", "-te", "0", "0", str(size),
                 str(size), "-ts", str(size), str(size), "slave.vrt", "warped.tif"]

    def measure():
        scene.path("warped.tif").unlink(missing_ok=True)
        return 1e9 * seconds_of(arguments, scene) / size**2

    return Contender("gdalwarp, Lanczos, 6 x 6 taps", " ".join(arguments), measure)
