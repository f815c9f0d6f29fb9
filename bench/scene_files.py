"""Files of a scene for whole runs: noise as slave, a smooth mapping, a centroid of 5 x 4
coefficients, a kernel of 8 taps at 64 sub-pixel positions."""

import numpy as np

HEADER_BYTES = 32
C_INT_16, FLT_6 = (32, 97), (32, 99)  # depth and type word
SUBSAMPLING = 32
ROWS_AT_ONCE = 512

CONFIGURATION = """INSAR_PARAMETER_POOL insar.pool
log_pp insar.pool
SLAVE_PARAMETER_POOL slave.pool
SlaveIn slave.ras
MAPPING_FORMAT matrix
RG_MAPPING_FILE rg_map.ras
AZ_MAPPING_FILE az_map.ras
KERNEL_TYPE truncated_sinc_kaiser_weight
KERNEL_COEFFICIENT 2.5
KERNEL_LENGTH 8
KERNEL_SUBPIX_POS 64
SlaveOut resampled.ras
MaskOut resampled_mask.ras
"""

INSAR_POOL = """n_samples INT_32 {size}
n_lines INT_32 {size}
shift_matrices_subsampling INT_32 {subsampling}
slave_first_rg_time FLT_15 0.0053
slave_first_az_time FLT_15 0
"""


def smooth_shift(sample, line):
    """Pixels from master to slave, with slopes of 1e-4."""
    return (5.3 + 1e-4 * (sample - 0.7 * line)
            + 0.04 * np.sin(sample / 900.0) * np.cos(line / 1100.0)).astype(np.float32)


class Scene:
    def __init__(self, directory, size):
        self.directory = directory
        self.size = size

    def path(self, name):
        return self.directory / name


def _header(width, height, pixel_type):
    depth, kind = pixel_type
    length = width * height * depth // 8 & 0xFFFFFFFF
    return np.array([0x59A66A95, width, height, depth, length, kind, 0, 0], ">u4").tobytes()


def _write_slave(path, size):
    """The same block of noise over and over: the core's work does not depend on it."""
    noise = np.random.default_rng(1).integers(-3000, 3001, (ROWS_AT_ONCE, 2 * size), np.int16)
    with open(path, "wb") as file:
        file.write(_header(size, size, C_INT_16))
        for first in range(0, size, ROWS_AT_ONCE):
            file.write(noise[:size - first].tobytes())


def _write_shifts(path, size, origin):
    nodes = np.arange(size // SUBSAMPLING + 2) * SUBSAMPLING
    shifts = smooth_shift(nodes[np.newaxis, :] + origin, nodes[:, np.newaxis])
    path.write_bytes(_header(len(nodes), len(nodes), FLT_6) + shifts.tobytes())


def _vector(values):
    return "{\n" + "".join(f"{value!r}\n" for value in values) + "}\n"


def _slave_pool(size):
    duration = size / 1700.0
    times = [duration * (i + 0.3) / 5 for i in range(5)]
    references = [0.0054 + 1e-5 * i for i in range(5)]
    polynomials = [[310.0 + 12.0 * i, -2.1e5 + 3e3 * i, 4e8, -7e10] for i in range(5)]
    return ("imaging_mode STR \"SM\"\nprf FLT_15 1700\nrange_sampling_frequency FLT_15 1.9e7\n"
            "oversampling FLT_15 1\n"
            f"fdc_poly_az_time FLT_15_V 0 5\n{_vector(times)}"
            f"fdc_poly_rg_ref_time FLT_15_V 0 5\n{_vector(references)}"
            "fdc_poly_coeff FLT_15_M 0 5 0 4\n{\n" + "".join(map(_vector, polynomials)) + "}\n")


def write(directory, size):
    """Makes the scene; its pages are then in the page cache."""
    scene = Scene(directory, size)
    _write_slave(scene.path("slave.ras"), size)
    _write_shifts(scene.path("rg_map.ras"), size, 0)
    _write_shifts(scene.path("az_map.ras"), size, 1000)
    scene.path("pcf.resample").write_text(CONFIGURATION)
    scene.path("insar.pool").write_text(INSAR_POOL.format(size=size, subsampling=SUBSAMPLING))
    scene.path("slave.pool").write_text(_slave_pool(size))
    return scene
