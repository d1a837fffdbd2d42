#!/usr/bin/env python3
"""Hosts that are built with the installed package, by what build systems have for that."""

import concurrent.futures
import shutil
import unittest

from support import (BUILD, CONSUMER, CXX, LIBDIR, MAJOR, MINOR, PATCH, PREFIX, ROOT, SCRATCH, VERSION, PackageTest,
                     run)

# What a consumer prints when all went well.
TOLD = "42 DatabaseError\n"
WARNINGS = ("-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow", "-Werror")


class FoundTest(PackageTest):
    """Through find_package."""

    def consume(self, name, *options, prefix=PREFIX):
        build = self.empty(name)
        told = self.build_and_run(CONSUMER, build, "-DCONSUMER_WAY=found", f"-DCMAKE_PREFIX_PATH={prefix}", *options)
        self.assertEqual(told, TOLD)
        return build / "consumer"

    def test_a_host_links_the_shared_library(self):
        program = self.consume("shared")
        self.assertRegex(self.libraries_of(program), r"\blibtalm_flow\.so\.")
        self.assertNotIn("sqlite", self.libraries_of(program))

    def test_a_host_links_the_static_library(self):
        program = self.consume("static", "-DBUILD_SHARED_LIBS=OFF")
        self.assertNotIn("talm_flow", self.libraries_of(program))
        self.assertIn("sqlite", self.libraries_of(program))

    def test_an_installation_may_be_moved(self):
        folder = self.empty("moved")
        shutil.copytree(PREFIX, folder / "first", symlinks=True)
        (folder / "first").rename(folder / "second place")
        told = self.build_and_run(CONSUMER, folder / "build", "-DCONSUMER_WAY=found",
                                  f"-DCMAKE_PREFIX_PATH={folder / 'second place'}")
        self.assertEqual(told, TOLD)
        self.assertEqual(self.succeed(folder / "second place/bin/talmflow", "--version").split()[0], "talmflow")

    def test_the_example_host_is_built_with_the_package(self):
        build, source = self.empty("own_host"), PREFIX / "share/doc/TALM_Flow/examples/own_host"
        told = self.build_and_run(source, build, f"-DCMAKE_PREFIX_PATH={PREFIX}", program="own_host",
                                  arguments=[source / "leave.flow"])
        self.assertEqual(told, (source / "expected.txt").read_text(encoding="utf-8"))


class LoaderTest(PackageTest):
    """The example host in C, which no C++ compiler sees."""

    SOURCE = PREFIX / "share/doc/TALM_Flow/examples/component_from_c"

    def run_it(self, program, folder, **environment):
        told = self.succeed(program, PREFIX / LIBDIR / "libtalm_flow.so", folder / "office.db",
                            environment={"XDG_DATA_HOME": str(folder / "data"), **environment})
        self.assertEqual(told, (self.SOURCE / "expected.txt").read_text(encoding="utf-8"))

    def test_a_host_in_c_finds_the_loader(self):
        folder = self.empty("loader")
        self.succeed("cmake", "-S", self.SOURCE, "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={PREFIX}")
        self.succeed("cmake", "--build", folder / "build")
        self.run_it(folder / "build/component_from_c", folder)
        self.assertIn("libtalm_flow_loader.so", self.libraries_of(folder / "build/component_from_c"))

    def test_a_host_in_c_is_built_with_pkg_config(self):
        folder = self.empty("loader_pkg_config")
        where = {"PKG_CONFIG_PATH": str(PREFIX / LIBDIR / "pkgconfig")}
        flags = self.succeed("pkg-config", "--cflags", "--libs", "talm_flow_loader", environment=where).split()
        self.succeed("cc", "-std=c11", "-Wall", "-Wextra", "-Werror", self.SOURCE / "main.c", "-o", folder / "host",
                     *flags, "-ldl", f"-Wl,-rpath,{PREFIX / LIBDIR}")
        self.run_it(folder / "host", folder)
        self.run_beside_another_server(folder)

    def run_beside_another_server(self, folder):
        """A process may hold more than one component server, and all have the same entry points."""
        names = ("DllGetClassObject", "DllCanUnloadNow", "DllRegisterServer", "DllUnregisterServer")
        (folder / "other.c").write_text("".join(f"int {name}(void) {{ return -1; }}\n" for name in names))
        self.succeed("cc", "-shared", "-fPIC", folder / "other.c", "-o", folder / "other.so")
        (folder / "office.db").unlink()
        self.run_it(folder / "host", folder, LD_PRELOAD=str(folder / "other.so"))


class AskedTest(PackageTest):
    """What a project asks of the package, and is told."""

    @classmethod
    def setUpClass(cls):
        cls().empty("asked")

    def ask(self, request: str, *lines: str, options=()):
        """Configures a project of these lines. What CMake has found out about the compiler is kept between them."""
        folder = SCRATCH / "asked"
        text = ("cmake_minimum_required(VERSION 3.22)\nproject(asked LANGUAGES CXX)\n" + request + "\n" +
                "\n".join(lines) + "\n")
        (folder / "CMakeLists.txt").write_text(text, encoding="utf-8")
        forgotten = [f"-U{name}*" for name in ("BUILD_", "CMAKE_DISABLE_", "TALM_", "SQLite3_", "LIBPQ_", "ODBC_")]
        return run("cmake", "-S", folder, "-B", folder / "build", f"-DCMAKE_CXX_COMPILER={CXX}",
                   f"-DCMAKE_PREFIX_PATH={PREFIX}", *forgotten, *options)

    def assert_refused(self, request: str, *words: str, options=()):
        done = self.ask(request, options=options)
        self.assertNotEqual(done.returncode, 0, done.stdout)
        told = " ".join(done.stdout.split())
        for word in words:
            self.assertIn(word, told)

    def test_all_components_together_are_found(self):
        names = "sqlite postgresql odbc static shared loader program"
        done = self.ask(f"find_package(TALM_Flow REQUIRED COMPONENTS {names})",
                        "foreach(target static shared TALM_Flow Loader program)",
                        "  if(NOT TARGET TALM_Flow::${target})",
                        '    message(FATAL_ERROR "no ${target}")',
                        "  endif()", "endforeach()",
                        'message(STATUS "adapters: ${TALM_Flow_ADAPTERS}")')
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("adapters: sqlite;postgresql;odbc\n", done.stdout)

    def test_the_kind_of_library_may_be_asked_for(self):
        for components, options, kind in (("", [], "shared"), ("static", [], "static"), ("shared", [], "shared"),
                                          ("", ["-DBUILD_SHARED_LIBS=OFF"], "static"),
                                          ("", ["-DBUILD_SHARED_LIBS=ON"], "shared"),
                                          ("static", ["-DBUILD_SHARED_LIBS=ON"], "static")):
            done = self.ask(f"find_package(TALM_Flow REQUIRED COMPONENTS {components})",
                            "get_target_property(kind TALM_Flow::TALM_Flow INTERFACE_LINK_LIBRARIES)",
                            'message(STATUS "kind: ${kind}")', options=options)
            self.assertIn(f"kind: TALM_Flow::{kind}\n", done.stdout)

    def test_a_component_that_does_not_exist_is_named(self):
        self.assert_refused("find_package(TALM_Flow REQUIRED COMPONENTS sqlite oracle)", 'no component "oracle"',
                            "the components are sqlite, postgresql, odbc, static, shared, loader, program")

    def test_a_component_that_may_be_missing_is_no_fault(self):
        done = self.ask("find_package(TALM_Flow REQUIRED OPTIONAL_COMPONENTS oracle)",
                        'message(STATUS "oracle: ${TALM_Flow_oracle_FOUND}")')
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertIn("oracle: FALSE\n", done.stdout)

    def test_versions_that_do_not_fit_are_refused(self):
        for version in (f"{MAJOR}.{MINOR + 1}", f"{MAJOR + 1}.0", f"{MAJOR}.{MINOR}.{PATCH + 1}"):
            self.assert_refused(f"find_package(TALM_Flow {version} REQUIRED)", f"version: {VERSION}")
        self.assertEqual(self.ask(f"find_package(TALM_Flow {VERSION} EXACT REQUIRED)").returncode, 0)

    def test_before_version_1_an_older_minor_version_is_not_enough(self):
        self.assertEqual(MAJOR, 0, "from version 1 on an older MINOR is enough: tell that here")
        self.assert_refused(f"find_package(TALM_Flow 0.{MINOR - 1}.9 REQUIRED)", f"version: {VERSION}")

    def test_a_driver_that_the_static_library_needs_is_named(self):
        self.assert_refused("find_package(TALM_Flow REQUIRED COMPONENTS static)",
                            "the static library needs these, which were not found: SQLite3",
                            options=["-DCMAKE_DISABLE_FIND_PACKAGE_SQLite3=ON"])
        done = self.ask("find_package(TALM_Flow REQUIRED COMPONENTS shared)",
                        options=["-DCMAKE_DISABLE_FIND_PACKAGE_SQLite3=ON"])
        self.assertEqual(done.returncode, 0, done.stdout)


class PkgConfigTest(PackageTest):
    def test_a_host_is_built_with_pkg_config(self):
        folder = self.empty("pkg_config")
        where = {"PKG_CONFIG_PATH": str(PREFIX / LIBDIR / "pkgconfig")}
        flags = self.succeed("pkg-config", "--cflags", "--libs", f"talm_flow >= {VERSION}", environment=where).split()
        self.succeed(CXX, "-std=c++20", "-O0", *WARNINGS, CONSUMER / "main.cpp", "-o", folder / "consumer", *flags,
                     f"-Wl,-rpath,{PREFIX / LIBDIR}")
        self.assertEqual(self.succeed(folder / "consumer"), TOLD)
        self.assertRegex(self.libraries_of(folder / "consumer"), r"\blibtalm_flow\.so\.")

    def test_it_tells_the_drivers_to_those_alone_who_link_statically(self):
        where = {"PKG_CONFIG_PATH": str(PREFIX / LIBDIR / "pkgconfig")}
        shared = self.succeed("pkg-config", "--libs", "talm_flow", environment=where).split()
        static = self.succeed("pkg-config", "--static", "--libs", "talm_flow", environment=where).split()
        self.assertEqual(set(static) - set(shared), {"-lsqlite3", "-lpq", "-lodbc"})


class HeadersTest(PackageTest):
    def test_each_header_compiles_by_itself(self):
        headers = sorted(path.relative_to(PREFIX / "include") for path in (PREFIX / "include").rglob("*.h"))
        self.assertGreater(len(headers), 20)
        folder = self.empty("headers")
        names = []
        for number, header in enumerate(headers):
            names.append(folder / f"header_{number}.cpp")
            # Twice: a header guards itself.
            names[-1].write_text(f"#include <{header}>\n#include <{header}>\n", encoding="utf-8")
        with concurrent.futures.ThreadPoolExecutor(max_workers=2) as pool:
            runs = pool.map(lambda name: run(CXX, "-std=c++20", "-fsyntax-only", *WARNINGS, "-I", PREFIX / "include",
                                             name), names)
            self.assertEqual([(done.returncode, done.stdout) for done in runs], [(0, "")] * len(names))

    def test_the_component_servers_header_is_plain_c(self):
        folder = self.empty("c_header")
        (folder / "main.c").write_text("#include <talm_flow/component.h>\n", encoding="utf-8")
        told = self.succeed("cc", "-std=c11", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Werror", "-I",
                            PREFIX / "include", folder / "main.c")
        self.assertEqual(told, "")


class ReadmeTest(PackageTest):
    def test_what_the_readme_shows_runs(self):
        """Its commands are run where the build is, with a home of their own."""
        text = (ROOT / "README.md").read_text(encoding="utf-8")
        commands = text.split("<!-- run: install -->\n```sh\n")[1].split("```\n")[0]
        home = self.empty("home")
        (home / "build").symlink_to(BUILD)
        told = self.succeed("bash", "-euc", commands, cwd=home, environment={"HOME": str(home)})
        self.assertIn(f"talmflow {VERSION}\n", told)
        self.assertTrue((home / "talm_flow" / LIBDIR / "libtalm_flow.a").is_file())


if __name__ == "__main__":
    unittest.main()
