import sys
import tempfile
import unittest

import numpy as np

import installed

sys.path.insert(0, str(installed.PREFIX / "share/doc/resample/examples"))
import rasters


class Rasters(installed.SceneTest):
    def slctool(self, *arguments, separator):
        """The figures that it prints."""
        text = installed.run("slctool", *arguments, cwd=self.folder)
        return dict(line.split(separator) for line in text.splitlines() if separator in line)

    def test_are_read_and_written_with_equal_values(self):
        for kind, dtype in (("cint16", rasters.C_INT_16), ("cfloat16", rasters.C_FLT_2)):
            installed.run("slctool", "scene", kind, "--samples", "70", "--lines", "50",
                          "--pixel-type", kind, cwd=self.folder)
            path = self.folder / kind / "master.ras"
            values = rasters.to_complex(rasters.read_raster(path))
            self.assertEqual(values.shape, (50, 70))
            info = self.slctool("info", path, separator=": ")
            for part, name in ((values.real, "real"), (values.imag, "imaginary")):
                for figure in ("min", "max", "mean"):
                    self.assertAlmostEqual(float(info[f"{name} {figure}"]),
                                           float(getattr(part.astype("f8"), figure)()), places=4)

            copy = self.folder / "copy.ras"
            rasters.write_raster(copy, rasters.from_complex(values, dtype))
            self.assertEqual(copy.read_bytes(), path.read_bytes())
            figures = self.slctool("compare", copy, path, separator="=")
            self.assertEqual((figures["complex_error"], figures["gain"]), ("0.000000", "1.000000"))

    def test_of_every_type_are_what_slctool_takes_them_for(self):
        for dtype, (kind, depth) in rasters.TYPE_WORDS.items():
            pixels = np.zeros((3, 4), dtype)
            pixels[2, 1] = 7
            rasters.write_raster(self.folder / "any.ras", pixels)
            info = self.slctool("info", "any.ras", separator=": ")
            self.assertEqual((info["type"], info["depth"]), (str(kind), str(depth)))
            self.assertEqual(int(info["bytes per pixel"]), dtype.itemsize)
            read = rasters.read_raster(self.folder / "any.ras")
            self.assertEqual(read.dtype, dtype)
            self.assertEqual(read.tolist(), pixels.tolist())

    def test_of_a_scene_agree_once_they_are_resampled(self):
        for options in ("--oversampling 1.2 --doppler-range 400",
                        "--imaging-mode TOPS --doppler-azimuth 900 --mapping-format polynomial"):
            with tempfile.TemporaryDirectory() as scene:
                installed.run("slctool", "scene", scene, "--samples", "150", "--lines", "120",
                              *options.split())
                installed.run("resample", cwd=scene)
                figures = self.slctool("compare", f"{scene}/resampled.ras", f"{scene}/master.ras",
                                       "--mask", f"{scene}/resampled_mask.ras", separator="=")
            self.assertGreater(float(figures["coherence"]), 0.999, options)
            self.assertLess(abs(float(figures["phase_mean"])), 0.01, options)

    def test_clip_what_a_type_can_not_hold(self):
        values = np.array([[4e4 - 4e4j, 1e-5 + 1e9j, np.nan]], "c16")
        read = lambda dtype: rasters.to_complex(rasters.from_complex(values, dtype)).tolist()[0]
        self.assertEqual(read(rasters.C_INT_16)[:2], [32767 - 32768j, 32767j])
        self.assertEqual(read(rasters.C_INT_16)[2], 0)
        self.assertEqual(read(rasters.C_FLT_2)[:2], [40000 - 40000j, 65504j])


class Failures(installed.SceneTest):
    def test_are_told_by_slctool(self):
        for command in (("info", "missing.ras"), ("pool", "get", "missing.pool", "key")):
            with self.assertRaisesRegex(AssertionError, "status 1\n(.*\n)?slctool: "):
                installed.run("slctool", *command, cwd=self.folder)


class Pools(installed.SceneTest):
    def test_have_the_entries_that_resample_reads_and_writes(self):
        insar = rasters.read_pool(self.folder / "insar.pool")
        slave = rasters.read_pool(self.folder / "slave.pool")
        self.assertEqual((insar["n_samples"], insar["mapping_format"]), (100, "matrix"))
        self.assertEqual(insar["software_names"], ["Resample"])
        self.assertEqual(slave["fdc_poly_coeff"].shape[:1], slave["fdc_poly_az_time"].shape)

    def test_that_are_written_are_read_by_resample(self):
        coefficients = [1.5, 0.0, 0.0, 0.0, 0.0, 0.0]
        path = self.folder / "insar.pool"
        rasters.write_pool(path, {
            "n_samples": ("INT_32", 60), "mapping_format": ("STR", "polynomial"),
            "respl_poly_rg": ("FLT_15_V", coefficients),
            "respl_poly_az": ("FLT_15_V", coefficients)})
        frequencies = np.full((1, 2), 100.0)
        rasters.write_pool(self.folder / "slave.pool", {
            "fdc_poly_az_time": ("FLT_15_V", [0.0]), "fdc_poly_rg_ref_time": ("FLT_15_V", [0.0]),
            "fdc_poly_coeff": ("FLT_15_M", frequencies)})
        configuration = self.folder / "pcf.resample"
        kept = [line for line in configuration.read_text().splitlines()
                if not line.startswith("MAPPING_FORMAT")]
        configuration.write_text("\n".join(kept))
        installed.run("resample", cwd=self.folder)
        self.assertEqual(rasters.read_raster(self.folder / "resampled.ras").shape, (80, 60))

    def test_hold_every_kind_of_value(self):
        path = self.folder / "kinds.pool"
        path.write_bytes(b'# comment\r\ntext STR plain text \r\ntext STR "second"\r\n'
                         b"offset INT_32_V 2 1\r\n{\r\n5\r\n}\r\nfrom STR_V 1 1\n  {\n    \"a\"\n  }\nlast FLT_6 2.5")
        entries = {"quoted": ("STR", 'a "b" \\ c'), "flag": ("BOL", True),
                   "pair": ("IDX_FLT_6", (3, 0.25)), "wave": ("CPL_15", 1.5 - 2j),
                   "names": ("STR_M", [["a", "{"], ["", "d"]]), "last": ("INT_64", 2**40)}
        rasters.write_pool(path, entries)
        content = path.read_bytes()
        rasters.write_pool(path, entries)
        self.assertEqual(path.read_bytes(), content)
        pool = rasters.read_pool(path)
        for key, (_, value) in entries.items():
            self.assertEqual(pool[key], value)
        self.assertEqual((pool["text"], pool["from"]), ("plain text ", ["", "a"]))
        self.assertEqual(pool["offset"].tolist(), [0, 0, 5])
        self.assertTrue(content.startswith(b"# comment\r\n"))
        with self.assertRaises(ValueError):
            rasters.write_pool(path, {"quoted": ("STR", "two\nlines")})
        self.assertEqual(path.read_bytes(), content)


if __name__ == "__main__":
    unittest.main()
