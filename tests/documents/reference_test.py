#!/usr/bin/env python3
"""The reference is complete, and the check that says so notices what is missing."""

import pathlib
import shutil
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def generate(folder: pathlib.Path, headers: pathlib.Path):
    return subprocess.run([ROOT / "tools" / "reference", folder / "pages", headers], capture_output=True,
                          encoding="utf-8", timeout=300, check=False)


class ReferenceTest(unittest.TestCase):
    def setUp(self):
        kept = tempfile.TemporaryDirectory()
        self.addCleanup(kept.cleanup)
        self.folder = pathlib.Path(kept.name)

    def changed(self, header: str, old: str, new: str) -> subprocess.CompletedProcess:
        """Generates the reference of headers of which one is changed."""
        headers = self.folder / "include"
        shutil.copytree(ROOT / "include", headers)
        path = headers / "talm_flow" / header
        text = path.read_text(encoding="utf-8")
        self.assertIn(old, text)
        path.write_text(text.replace(old, new, 1), encoding="utf-8")
        return generate(self.folder, headers)

    def assert_complains(self, run: subprocess.CompletedProcess, *words: str):
        self.assertNotEqual(run.returncode, 0, run.stdout)
        for word in words:
            self.assertIn(word, run.stderr)

    def test_tells_every_public_symbol(self):
        run = generate(self.folder, ROOT / "include")
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 0)
        pages = "".join(page.read_text(encoding="utf-8") for page in (self.folder / "pages").glob("class*.html"))
        for operation in ("FlowExecuteAfter", "DisplayInputParameter", "MakeConstructionBak", "FlowSelect", "C_98"):
            self.assertIn(operation, pages)

    def test_an_undocumented_operation_fails(self):
        run = self.changed("name.h", " private:", "  void Forgotten();\n\n private:")
        self.assert_complains(run, "name.h", "Forgotten", "not documented")

    def test_an_undocumented_class_fails(self):
        run = self.changed("text.h", "namespace talm_flow {", "namespace talm_flow {\n\nclass Forgotten {};\n")
        self.assert_complains(run, "text.h", "Forgotten", "not documented")

    def test_an_undocumented_member_fails(self):
        run = self.changed("definition_check.h", "struct TALM_FLOW_API Finding {",
                           "struct TALM_FLOW_API Finding {\n  int forgotten = 0;")
        self.assert_complains(run, "definition_check.h", "forgotten", "not documented")

    def test_an_undocumented_enumerator_fails(self):
        run = self.changed("command_catalogue.h", "enum class CommandEffect {",
                           "enum class CommandEffect {\n  kForgotten,")
        self.assert_complains(run, "command_catalogue.h", "kForgotten", "not documented")

    def test_an_undocumented_function_fails(self):
        run = self.changed("conversion.h", "/// `yyyy/M/d`.\n", "")
        self.assert_complains(run, "conversion.h", "ShortDateText", "not documented")

    def test_a_documented_parameter_that_does_not_exist_fails(self):
        run = self.changed("name.h", "@param JavaScriptStr", "@param Script")
        self.assert_complains(run, "name.h", "Script", "not found in the argument list")


if __name__ == "__main__":
    unittest.main()
