import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import numpy as np

import resample as rs

PROGRAMS = pathlib.Path(os.environ["PROGRAMS"])


def coherence(a, b):
    return abs(np.vdot(a, b)) / np.sqrt(np.vdot(a, a).real * np.vdot(b, b).real)


class Scene:
    """A scene of slctool, resampled by the program."""

    def __init__(self, test, *options):
        folder = tempfile.TemporaryDirectory()
        test.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for command in (["slctool", "scene", ".", "--samples", "200", "--lines", "150", *options],
                        ["resample"]):
            subprocess.run([PROGRAMS / command[0], *command[1:]], cwd=folder.name, check=True,
                           stdout=subprocess.DEVNULL)
        self.insar, self.slave = rs.Pool(self.folder / "insar.pool"), rs.Pool(self.folder / "slave.pool")

    def raster(self, name):
        return rs.read_raster(self.folder / f"{name}.ras")

    def mapping(self):
        if self.insar["mapping_format"] == "polynomial":
            return rs.Mapping.polynomial(self.insar["respl_poly_rg"], self.insar["respl_poly_az"])
        axes = ("rg", "az")
        return rs.Mapping.matrix(*(self.raster(f"{axis}_map") for axis in axes),
                                 [self.insar[f"shift_matrices_subsampling_{a}"] for a in axes])

    def resample(self, slave=None, **options):
        return rs.resample(self.raster("slave") if slave is None else slave,
                           options.pop("mapping", None) or self.mapping(),
                           rs.Kernel("truncated_sinc_kaiser_weight", 16, 4096, 2.5),
                           rs.doppler_from_pools(self.slave, self.insar),
                           (self.insar["n_lines"], self.insar["n_samples"]),
                           mask=self.raster("slave_mask"),
                           imaging_mode=self.slave["imaging_mode"], **options)


class Resample(unittest.TestCase):
    def test_gives_the_bytes_of_the_program(self):
        for options in ((), ("--pixel-type", "cfloat16", "--imaging-mode", "TOPS",
                             "--doppler-azimuth", "900", "--mapping-format", "polynomial")):
            scene = Scene(self, *options)
            for threads in (1, 3, None):
                result = scene.resample(threads=threads)
                self.assertEqual(result.image.tobytes(), scene.raster("resampled").tobytes())
                self.assertEqual(result.valid.tobytes(), scene.raster("resampled_mask").tobytes())

    def test_takes_complex_numbers_and_mappings_that_are_functions(self):
        scene = Scene(self, "--mapping-format", "polynomial")
        exact = scene.mapping()
        result = scene.resample(
            1e-3 * rs.to_complex(scene.raster("slave")),
            mapping=rs.mapping_from_function(exact.positions, (150, 200)))
        self.assertEqual(result.image.dtype, np.complex64)
        valid = result.valid == 1
        self.assertGreater(valid.mean(), 0.5)
        master = rs.to_complex(scene.raster("master"))
        self.assertGreater(coherence(result.image[valid], master[valid]), 0.999)
        self.assertAlmostEqual(np.abs(result.image[valid]).mean() / np.abs(master[valid]).mean(),
                               1e-3, places=4)

    def test_logs_to_its_caller_alone(self):
        scene = Scene(self)
        logs = [], []
        with concurrent.futures.ThreadPoolExecutor() as pool:
            runs = [pool.submit(scene.resample, threads=2, log=lambda *line, log=log: log.append(line))
                    for log in logs]
            images = [run.result().image.tobytes() for run in runs]
        self.assertEqual(images[0], images[1])
        for log in logs:
            self.assertEqual(sum("  - Setup threads" in text for _, text in log), 1)
            self.assertLessEqual({level for level, _ in log}, {"TRACE", "DEBUG", "INFO", "PARAM"})
        with self.assertRaises(ZeroDivisionError):
            scene.resample(log=lambda level, text: 1 / 0)

    def test_prints_nothing_and_tells_the_reason_of_failures(self):
        failures = """
import resample as rs, numpy as np
good = dict(prf=1.0, range_sampling_frequency=1.0, azimuth_times=[0.0], reference_times=[0.0], coefficients=[[0.0]])
slave = np.zeros((20, 20), rs.C_INT_16)
mapping, kernel, doppler = rs.Mapping.matrix(*np.zeros((2, 2, 2))), rs.Kernel(), rs.Doppler(**good)
for fail, reason in (
    (lambda: rs.Kernel("x"), "Valid values are: 'cubic"),
    (lambda: rs.Kernel(subpixels=0), "sub"),
    (lambda: rs.Doppler(**good | dict(prf=-1.0)), "must be positive"),
    (lambda: rs.Pool("missing.pool"), "missing.pool"),
    (lambda: rs.resample(slave, mapping, kernel, doppler, (5, 5), imaging_mode="foo"), "'TOPS'"),
    (lambda: rs.resample(slave, rs.Mapping.matrix(*np.zeros((2, 2, 2)), (0, 1)), kernel, doppler, (5, 5)), "subsampling"),
):
    try:
        fail()
    except rs.Error as error:
        assert reason in str(error), (reason, str(error))
    else:
        raise AssertionError(reason)
for fail in (lambda: rs.resample(slave, mapping, kernel, doppler, (5, 0)),
             lambda: rs.resample(slave, mapping, kernel, doppler, (5, 5), mask=np.ones((5, 5))),
             lambda: rs.Mapping.matrix(np.zeros((2, 2)), np.zeros((3, 2)))):
    try:
        fail()
    except ValueError:
        pass
    else:
        raise AssertionError("no ValueError")
"""
        with tempfile.TemporaryDirectory() as folder:
            done = subprocess.run([sys.executable, "-c", failures], cwd=folder, text=True,
                                  capture_output=True)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))


class Pools(unittest.TestCase):
    def test_hold_what_is_set_and_keep_the_rest(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "a.pool"
            path.write_text('# comment\nn INT_32 3\nx FLT_6 0.5\nnames STR_V 0 1\n{\n  "a"\n}\n')
            pool = rs.Pool(path)
            values = {"n": 4, "x": 0.25, "names": ["b c", "d"], "flag": True, "text": 'q "q"',
                      "big": 2**40, "wave": 1.5 - 2j, "v": np.array([1.5, np.pi]),
                      "m": np.array([[1, 2], [3, 4]])}
            for key, value in values.items():
                pool[key] = value
            pool.set("pair", (3, 0.5), "IDX_FLT_6")
            for key, value in values.items():
                np.testing.assert_array_equal(pool[key], value)
            self.assertEqual(pool["pair"], (3, 0.5))
            self.assertEqual([pool.type(key) for key in ("n", "x", "big", "v", "m")],
                             ["INT_32", "FLT_6", "INT_64", "FLT_15_V", "INT_32_M"])
            self.assertEqual(list(pool), [*values, "pair"])
            self.assertTrue(path.read_text().startswith("# comment\nn "))
            with self.assertRaises(ValueError):
                pool["n"] = "three"
            with self.assertRaises(KeyError):
                pool["missing"]


if __name__ == "__main__":
    unittest.main()
