"""The recipe for Conan 2: `conan create packaging/conan` in the source folder."""

import pathlib
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy

# The folders and files that a build reads.
SOURCES = ("CMakeLists.txt", "README.md", "CHANGELOG.md", "ARCHITECTURE.md", "CONTRIBUTING.md", "SECURITY.md", "apps/*",
           "cmake/*", "docs/*", "examples/*", "include/*", "src/*")


class TalmFlowRecipe(ConanFile):
    name = "talm-flow"
    description = "Embeddable workflow component"
    topics = ("workflow", "embedded", "database")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False], "sqlite": [True, False], "postgresql": [True, False],
               "odbc": [True, False], "program": [True, False]}
    default_options = {"shared": False, "fPIC": True, "sqlite": True, "postgresql": False, "odbc": False,
                       "program": False}

    def set_version(self):
        """The version is told in one place."""
        text = (self._sources() / "CMakeLists.txt").read_text(encoding="utf-8")
        self.version = re.search(r"^project\(TALM_Flow VERSION ([0-9.]+) ", text, re.M).group(1)

    def export_sources(self):
        for pattern in SOURCES:
            copy(self, pattern, src=str(self._sources()), dst=self.export_sources_folder)

    def _sources(self):
        return pathlib.Path(self.recipe_folder).parent.parent

    def config_options(self):
        if self.settings.os == "Windows":
            del self.options.fPIC

    def configure(self):
        if self.options.shared:
            self.options.rm_safe("fPIC")

    def validate(self):
        check_min_cppstd(self, 20)
        if not (self.options.sqlite or self.options.postgresql or self.options.odbc):
            raise ConanInvalidConfiguration("the library needs an adapter at least: sqlite, postgresql or odbc")

    def layout(self):
        cmake_layout(self)

    def requirements(self):
        if self.options.sqlite:
            self.requires("sqlite3/[>=3.35]")
        if self.options.postgresql:
            self.requires("libpq/[>=13]")
        if self.options.odbc and self.settings.os != "Windows":
            self.requires("odbc/[>=2.3.9]")
        if self.options.program:
            self.requires("cli11/[>=2.1]")
            self.requires("nlohmann_json/[>=3.11]")
            self.requires("openssl/[>=3]")

    def generate(self):
        toolchain = CMakeToolchain(self)
        shared = bool(self.options.shared)
        variables = {"TALM_FLOW_STATIC": not shared, "TALM_FLOW_SHARED": shared,
                     "TALM_FLOW_SQLITE": bool(self.options.sqlite), "TALM_FLOW_POSTGRESQL": bool(self.options.postgresql),
                     "TALM_FLOW_ODBC": bool(self.options.odbc), "TALM_FLOW_PROGRAM": bool(self.options.program),
                     "TALM_FLOW_INSTALL": True, "TALM_FLOW_TESTS": False, "TALM_FLOW_BENCHMARKS": False,
                     "TALM_FLOW_STRICT": False}
        for name, value in variables.items():
            toolchain.cache_variables[name] = value
        toolchain.cache_variables["CMAKE_INSTALL_LIBDIR"] = "lib"
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # The package's own files for CMake and pkg-config tell more than generated ones would.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.set_property("pkg_config_name", "none")
        self.cpp_info.builddirs.append("lib/cmake/TALM_Flow")
        self.cpp_info.libs = ["talm_flow"]
