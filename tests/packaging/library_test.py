import os
import unittest

import installed


class Library(installed.SceneTest):
    def test_resamples_in_another_program_as_resample_does(self):
        build = self.folder / "build"
        flags = "-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror " + os.environ["FLAGS"]
        if os.environ["SANITIZE"]:
            flags += " -fsanitize=" + os.environ["SANITIZE"]
        source = installed.PREFIX / "share/doc/resample/examples/cpp"
        installed.run("cmake", "-G", "Ninja", "-S", source, "-B", build,
                      f"-DCMAKE_PREFIX_PATH={installed.PREFIX}", f"-DCMAKE_CXX_FLAGS={flags}")
        installed.run("cmake", "--build", build)
        output = self.folder / "by_library.ras"
        installed.run(build / "resample_scene", self.folder, output)
        self.assertEqual(output.read_bytes(), (self.folder / "resampled.ras").read_bytes())


if __name__ == "__main__":
    unittest.main()
