#!/usr/bin/env python3
"""The Debian packages: what is in them, what they tell of themselves, and a host that is built with them."""

import re
import unittest

from support import BUILD, CONSUMER, LIBDIR, SOVERSION, VERSION, PackageTest, tell

LIBRARY = f"libtalm-flow{SOVERSION}"
NAMES = {LIBRARY, "libtalm-flow-dev", "talmflow"}


class DebianTest(PackageTest):
    @classmethod
    def setUpClass(cls):
        folder = cls().empty("debian")
        # The mask of who makes them must not show in them.
        cls().succeed("bash", "-c", 'umask 077; exec cpack --config CPackConfig.cmake -G DEB -B "$0"', folder, cwd=BUILD)
        cls.packages = {path.name.split("_")[0]: path for path in folder.glob("*.deb")}
        cls.root = folder / "root"
        for package in cls.packages.values():
            cls().succeed("dpkg-deb", "-x", package, cls.root)

    def field(self, package: str, name: str) -> str:
        return self.succeed("dpkg-deb", "-f", self.packages[package], name).strip()

    def files(self, package: str):
        lines = self.succeed("dpkg-deb", "-c", self.packages[package]).splitlines()
        for line in lines:
            self.assertIn(" root/root ", line)
        return {re.split(r" -> ", line.split(None, 5)[5])[0].removeprefix("./") for line in lines
                if not line.startswith("d")}

    def test_there_is_a_library_a_development_and_a_program_package(self):
        self.assertEqual(set(self.packages), NAMES)
        lines = []
        for name in sorted(NAMES):
            self.assertEqual(self.field(name, "Version"), f"{VERSION}-0local1")
            lines.append(f"{self.packages[name].name}: {self.packages[name].stat().st_size} bytes, installed "
                         f"{self.field(name, 'Installed-Size')} KiB")
        tell("packages", lines)

    def test_each_holds_what_belongs_into_it(self):
        library, development, program = (self.files(name) for name in (LIBRARY, "libtalm-flow-dev", "talmflow"))
        self.assertIn(f"usr/{LIBDIR}/libtalm_flow.so.{SOVERSION}", library)
        self.assertIn(f"usr/{LIBDIR}/libtalm_flow_loader.so.{SOVERSION}", library)
        self.assertIn(f"usr/{LIBDIR}/libtalm_flow.so", development)
        self.assertIn(f"usr/{LIBDIR}/libtalm_flow.a", development)
        self.assertIn(f"usr/{LIBDIR}/pkgconfig/talm_flow.pc", development)
        self.assertIn("usr/include/talm_flow/command.h", development)
        self.assertIn("usr/share/doc/libtalm-flow-dev/examples/own_host/main.cpp", development)
        self.assertLessEqual({"usr/bin/talmflow", "usr/share/man/man1/talmflow.1.gz",
                              "usr/share/bash-completion/completions/talmflow"}, program)
        self.assertEqual(library & development | library & program | development & program, set())
        for name in NAMES:
            text = (self.root / f"usr/share/doc/{name}/copyright").read_text(encoding="utf-8")
            self.assertIn("No licence has been granted yet", text)

    def test_they_depend_on_what_they_need(self):
        self.assertEqual(self.field("libtalm-flow-dev", "Depends"), f"{LIBRARY} (= {VERSION}-0local1)")
        for driver in ("libsqlite3-0", "libpq5", "libodbc2", "libstdc++6", "libc6"):
            self.assertIn(driver, self.field(LIBRARY, "Depends"))
            self.assertIn(driver, self.field("talmflow", "Depends"))
        self.assertEqual(self.succeed("dpkg-deb", "-I", self.packages[LIBRARY], "shlibs"),
                         "".join(f"{library} {SOVERSION} {LIBRARY} (>= {VERSION})\n"
                                 for library in ("libtalm_flow", "libtalm_flow_loader")))
        self.assertEqual(self.succeed("dpkg-deb", "-I", self.packages[LIBRARY], "triggers"),
                         "activate-noawait ldconfig\n")

    def test_descriptions_begin_with_a_summary_of_their_own(self):
        for name, summary in ((LIBRARY, "shared libraries"), ("libtalm-flow-dev", "development files"),
                              ("talmflow", "command-line program")):
            lines = self.field(name, "Description").splitlines()
            self.assertEqual(lines[0], f"embeddable workflow component - {summary}")
            self.assertGreater(len(lines), 4)

    def test_a_host_is_built_with_them(self):
        folder = self.empty("debian_consumer")
        told = self.build_and_run(CONSUMER, folder, "-DCONSUMER_WAY=found", f"-DCMAKE_PREFIX_PATH={self.root}/usr")
        self.assertEqual(told, "42 DatabaseError\n")
        self.assertIn(f"libtalm_flow.so.{SOVERSION}", self.libraries_of(folder / "consumer"))
        self.assertEqual(self.succeed(self.root / "usr/bin/talmflow", "--version"), f"talmflow {VERSION}\n")

    def test_they_pass_the_distributions_checker(self):
        told = self.succeed("lintian", "--no-cfg", "--fail-on", "error,warning", *self.packages.values())
        self.assertNotRegex(told, r"(?m)^[EW]: ")


if __name__ == "__main__":
    unittest.main()
