"""What the tests of the package have in common. The environment tells them:

  TALM_FLOW_BUILD     the build that is installed
  TALM_FLOW_PREFIX    where `package_install` has installed it
  TALM_FLOW_SCRATCH   a folder of the tests' own
  TALM_FLOW_LIBDIR    the libraries' folder below a prefix
  TALM_FLOW_CXX       the compiler
"""

import os
import pathlib
import re
import shutil
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ["TALM_FLOW_BUILD"])
PREFIX = pathlib.Path(os.environ["TALM_FLOW_PREFIX"])
SCRATCH = pathlib.Path(os.environ["TALM_FLOW_SCRATCH"])
LIBDIR = os.environ["TALM_FLOW_LIBDIR"]
CXX = os.environ["TALM_FLOW_CXX"]
VERSION = re.search(r"^project\(TALM_Flow VERSION ([0-9.]+) ", (ROOT / "CMakeLists.txt").read_text(encoding="utf-8"),
                    re.M).group(1)
MAJOR, MINOR, PATCH = (int(number) for number in VERSION.split("."))
# Before version 1 another MINOR is another library.
SOVERSION = f"0.{MINOR}" if MAJOR == 0 else f"{MAJOR}"
CONSUMER = ROOT / "tests/package/consumer"

# What may lead to another installation than the tested one.
ELSEWHERE = ("CMAKE_PREFIX_PATH", "TALM_Flow_DIR", "TALM_Flow_ROOT", "PKG_CONFIG_PATH", "PKG_CONFIG_LIBDIR",
             "LD_LIBRARY_PATH", "CXXFLAGS", "LDFLAGS", "DESTDIR")


def run(*command, cwd=None, environment=None):
    kept = {name: value for name, value in os.environ.items() if name not in ELSEWHERE}
    return subprocess.run([str(word) for word in command], cwd=cwd, env=kept | (environment or {}), timeout=900,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8", check=False)


def sizes(folder: pathlib.Path) -> dict:
    """Bytes of each file below a folder; links count nothing."""
    return {path.relative_to(folder): path.stat().st_size for path in sorted(folder.rglob("*"))
            if path.is_file() and not path.is_symlink()}


def words(folder: pathlib.Path, name: bytes):
    """The files below a folder that hold these bytes."""
    return [path for path in sorted(folder.rglob("*"))
            if path.is_file() and not path.is_symlink() and name in path.read_bytes()]


def tell(what: str, lines):
    """Prints sizes, and keeps them where the test command looks for what to print at its end."""
    text = "".join(line + "\n" for line in lines)
    print(text, end="")
    (SCRATCH / f"{what}_sizes.txt").write_text(text, encoding="utf-8")


class PackageTest(unittest.TestCase):
    maxDiff = None

    def succeed(self, *command, cwd=None, environment=None) -> str:
        done = run(*command, cwd=cwd, environment=environment)
        self.assertEqual(done.returncode, 0, f"{command}\n{done.stdout}")
        return done.stdout

    def empty(self, name: str) -> pathlib.Path:
        folder = SCRATCH / name
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)
        return folder

    def configure(self, source, build, *options) -> str:
        return self.succeed("cmake", "-S", source, "-B", build, f"-DCMAKE_CXX_COMPILER={CXX}",
                            "-DCMAKE_CXX_FLAGS=-O0", *options)

    def build_and_run(self, source, build, *options, program="consumer", arguments=()) -> str:
        """Configures a project, builds its program and runs that."""
        self.configure(source, build, *options)
        self.succeed("cmake", "--build", build, "--target", program, "--parallel", "2")
        return self.succeed(build / program, *arguments)

    def libraries_of(self, program) -> str:
        """What the program loads, by the names that it asks for."""
        lines = self.succeed("objdump", "-p", program).splitlines()
        return " ".join(line.split()[1] for line in lines if line.split()[:1] == ["NEEDED"])
