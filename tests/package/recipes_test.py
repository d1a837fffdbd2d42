#!/usr/bin/env python3
"""The recipes for package managers that this distribution lacks say what the project says: they are read, not run."""

import ast
import json
import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD_TEXT = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
VERSION = re.search(r"^project\(TALM_Flow VERSION ([0-9.]+) ", BUILD_TEXT, re.M).group(1)
ADAPTERS = {name.lower() for name in
            re.search(r"^foreach\(adapter ([A-Z ]+)\)", BUILD_TEXT, re.M).group(1).split()}
# The project's own options; fuzzers and counters are nothing for a package.
OPTIONS = (set(re.findall(r"^option\((\w+) ", BUILD_TEXT, re.M)) - {"TALM_FLOW_FUZZERS", "TALM_FLOW_COVERAGE"}
           | {f"TALM_FLOW_{name.upper()}" for name in ADAPTERS})


class VcpkgTest(unittest.TestCase):
    PORT = ROOT / "packaging/vcpkg/talm-flow"
    manifest = json.loads((PORT / "vcpkg.json").read_text(encoding="utf-8"))
    portfile = (PORT / "portfile.cmake").read_text(encoding="utf-8")

    def test_the_manifest_has_known_fields_of_their_types(self):
        fields = {"name": str, "version-semver": str, "description": str, "license": type(None), "supports": str,
                  "dependencies": list, "default-features": list, "features": dict}
        for name, value in self.manifest.items():
            self.assertIsInstance(value, fields[name], name)
        for feature in self.manifest["features"].values():
            self.assertEqual(set(feature), {"description", "dependencies"})
        entries = [*self.manifest["dependencies"],
                   *(entry for feature in self.manifest["features"].values() for entry in feature["dependencies"])]
        for entry in entries:
            name = entry if isinstance(entry, str) else entry["name"]
            self.assertRegex(name, r"^[a-z0-9]+(-[a-z0-9]+)*$")
            if not isinstance(entry, str):
                self.assertLessEqual(set(entry), {"name", "host", "default-features", "platform"})
        self.assertEqual(self.manifest["name"], self.PORT.name)

    def test_the_version_is_the_projects(self):
        self.assertEqual(self.manifest["version-semver"], VERSION)

    def test_every_adapter_and_the_program_is_a_feature(self):
        self.assertEqual(set(self.manifest["features"]), ADAPTERS | {"program"})
        self.assertLessEqual(set(self.manifest["default-features"]), set(self.manifest["features"]))

    def test_the_port_sets_every_option_of_the_project_and_no_other(self):
        chosen = dict(re.findall(r"^    (\w+) (TALM_FLOW_\w+)$", self.portfile, re.M))
        self.assertEqual(set(chosen), set(self.manifest["features"]))
        fixed = re.findall(r"-D(TALM_FLOW_\w+)=", self.portfile)
        self.assertEqual(set(chosen.values()) | set(fixed), OPTIONS)
        self.assertEqual(len(chosen) + len(fixed), len(OPTIONS))

    def test_the_port_finds_the_sources(self):
        relative = re.search(r'"\$\{CURRENT_PORT_DIR\}/([./]+)"', self.portfile).group(1)
        self.assertEqual((self.PORT / relative).resolve(), ROOT)


class ConanTest(unittest.TestCase):
    text = (ROOT / "packaging/conan/conanfile.py").read_text(encoding="utf-8")
    tree = ast.parse(text)
    recipe = next(node for node in tree.body if isinstance(node, ast.ClassDef))

    def value(self, name: str):
        for node in [*self.tree.body, *self.recipe.body]:
            if isinstance(node, ast.Assign) and node.targets[0].id == name:
                return ast.literal_eval(node.value)
        return self.fail(f"the recipe tells no {name}")

    def test_the_version_is_read_where_the_project_tells_it(self):
        pattern = re.search(r're\.search\(r"(.+)", text', self.text).group(1)
        self.assertEqual(re.search(pattern, BUILD_TEXT, re.M).group(1), VERSION)

    def test_every_adapter_and_the_program_is_an_option_with_a_default(self):
        self.assertEqual(set(self.value("options")), ADAPTERS | {"program", "shared", "fPIC"})
        self.assertEqual(set(self.value("default_options")), set(self.value("options")))

    def test_the_recipe_sets_every_option_of_the_project_and_no_other(self):
        self.assertEqual(set(re.findall(r'"(TALM_FLOW_\w+)"', self.text)), OPTIONS)

    def test_the_recipe_takes_along_what_a_build_reads(self):
        patterns = self.value("SOURCES")
        for pattern in patterns:
            self.assertTrue(list(ROOT.glob(pattern)), pattern)
        read = set(re.findall(r"add_subdirectory\((\w+)", BUILD_TEXT)) - {"tests", "bench", "fuzz", "examples"}
        read |= {path.split("/")[0] for path in re.findall(r"include\((\w+/\w+\.cmake)\)", BUILD_TEXT)}
        install = (ROOT / "cmake/install.cmake").read_text(encoding="utf-8")
        read |= set(re.findall(r"\{PROJECT_SOURCE_DIR\}/([\w.]+)", install))
        self.assertEqual(read - {pattern.removesuffix("/*") for pattern in patterns}, set())


if __name__ == "__main__":
    unittest.main()
