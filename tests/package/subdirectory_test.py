#!/usr/bin/env python3
"""The library as a part of another project's build, and what is installed of a build that leaves parts out. All share one
build folder, so that the library is compiled once, a folder at a time."""

import unittest

from support import CONSUMER, CXX, ROOT, PackageTest, sizes

TOLD = "42 DatabaseError\n"


class SubdirectoryTest(PackageTest):
    @classmethod
    def setUpClass(cls):
        cls.build = cls().empty("subdirectory")

    def consume(self, way: str, *options: str):
        """@returns what CMake and the compiler tell of it."""
        told = self.configure(CONSUMER, self.build, f"-DCONSUMER_WAY={way}", f"-DTALM_FLOW_FOLDER={ROOT}",
                              "-DCMAKE_UNITY_BUILD=ON", "-DCMAKE_UNITY_BUILD_BATCH_SIZE=0", *options)
        told += self.succeed("cmake", "--build", self.build, "--target", "consumer", "--parallel", "2")
        self.assertEqual(self.succeed(self.build / "consumer"), TOLD)
        return told

    def test_1_a_host_adds_the_library_as_a_subdirectory(self):
        told = self.consume("subdirectory")
        self.assertNotIn("warning", told.lower())
        self.assertNotIn("talm_flow", self.libraries_of(self.build / "consumer"))
        self.assertIn("No tests were found", self.succeed("ctest", "--test-dir", self.build))
        self.assertEqual([path for path in (self.build / "talm_flow").rglob("*gtest*")], [])

    def test_2_none_of_it_is_installed_with_the_host(self):
        folder = self.empty("subdirectory_installed")
        self.succeed("cmake", "--install", self.build, "--prefix", folder)
        self.assertEqual(sizes(folder), {})

    def test_3_a_host_fetches_the_library(self):
        told = self.consume("fetched")
        self.assertNotIn("warning", told.lower())

    def test_4_an_installation_may_hold_the_static_library_alone_in_any_folder(self):
        prefix = self.empty("static_alone")
        self.configure(CONSUMER, self.build, "-DCONSUMER_WAY=subdirectory", f"-DTALM_FLOW_FOLDER={ROOT}",
                       "-DTALM_FLOW_INSTALL=ON", "-DTALM_FLOW_SHARED=OFF", "-DCMAKE_INSTALL_LIBDIR=lib/of/its/own",
                       f"-DCMAKE_INSTALL_PREFIX={prefix}")
        self.succeed("cmake", "--install", self.build / "talm_flow")
        self.assertEqual([str(path) for path in sizes(prefix) if path.name.startswith("libtalm_flow")],
                         ["lib/of/its/own/libtalm_flow.a"])

        # pkg-config
        where = {"PKG_CONFIG_PATH": str(prefix / "lib/of/its/own/pkgconfig")}
        flags = self.succeed("pkg-config", "--static", "--cflags", "--libs", "talm_flow", environment=where).split()
        self.succeed(CXX, "-std=c++20", "-O0", CONSUMER / "main.cpp", "-o", prefix / "consumer", *flags)
        self.assertEqual(self.succeed(prefix / "consumer"), TOLD)

        # find_package, and what it has not
        folder = self.empty("static_alone_asked")
        (folder / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.22)\nproject(asked LANGUAGES CXX)\n"
            "find_package(TALM_Flow COMPONENTS sqlite)\n"
            "get_target_property(kind TALM_Flow::TALM_Flow INTERFACE_LINK_LIBRARIES)\n"
            'message(STATUS "kind: ${kind}")\n'
            "foreach(component postgresql shared loader program)\n"
            "  find_package(TALM_Flow QUIET COMPONENTS ${component})\n"
            '  message(STATUS "${TALM_Flow_NOT_FOUND_MESSAGE}")\n'
            "endforeach()\n", encoding="utf-8")
        told = self.configure(folder, folder / "build", f"-DTALM_Flow_DIR={prefix}/lib/of/its/own/cmake/TALM_Flow")
        self.assertIn("kind: TALM_Flow::static\n", told)
        for sentence in ('built without the adapter "postgresql" and has these: sqlite.',
                         "the shared library is not installed.", "built without the component server's loader.",
                         "the program talmflow is not beside it."):
            self.assertIn(sentence, told)


if __name__ == "__main__":
    unittest.main()
