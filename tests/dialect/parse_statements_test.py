#!/usr/bin/env python3
"""The parser of statements takes the component's dialect, refuses others, and notices what was not collected."""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

PARSER = pathlib.Path(__file__).resolve().parent / "parse_statements.py"

TEXT = "Select Top 1 ID From DataApp Where ExecuteID=17 And Appover='Ann''s'"


def statement(text, operation="Command.C_1", ran=True, shape=None):
    return {"place": "Suite.Test", "operation": operation, "ran": ran, "shape": shape or text, "text": text}


class ParseStatementsTest(unittest.TestCase):
    def setUp(self):
        kept = tempfile.TemporaryDirectory()
        self.addCleanup(kept.cleanup)
        self.folder = pathlib.Path(kept.name)

    def run_parser(self, *files):
        return subprocess.run([sys.executable, PARSER, self.folder, *files], capture_output=True, encoding="utf-8",
                              timeout=300, check=False)

    def parse(self, *entries):
        """Parses one file, in which C_1 is expected."""
        lines = [{"expected": "Command.C_1"}, *entries]
        (self.folder / "file").write_text("".join(json.dumps(line) + "\n" for line in lines), encoding="utf-8")
        return self.run_parser("file")

    def assert_refused(self, result, *told):
        self.assertEqual(result.returncode, 1, result.stdout + result.stderr)
        for part in told:
            self.assertIn(part, result.stdout)

    def test_texts_of_the_dialect_pass(self):
        result = self.parse(
            statement(TEXT),
            statement("SELECT @@IDENTITY AS ExecuteID"),
            statement("insert into WorkFlowExecute (ExecuteID,Interval) values (1,-2)"),
            statement("delete from DataApp where ExecuteID in (select Top 3 ExecuteID From WorkFlowExecuteID)"))
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)
        self.assertIn("4 shapes of statements from 1 files, 1 operations; 0 more shapes", result.stdout)

    def test_a_text_of_another_dialect_is_told_with_its_place(self):
        texts = ("Select ID From DataApp Limit 1",
                 "Insert Into DataApp (Status) Values (0) Returning DataAppID",
                 "Insert Or Ignore Into DataApp (Status) Values (0)",
                 "Select `ID` From DataApp",
                 "Select Top 1 ID From DataApp Where Appover='a",
                 "Select Top 1 ID Form DataApp Where ID=1",
                 "delete from DataApp where ID=",
                 "begin immediate")
        result = self.parse(statement(TEXT), *map(statement, texts))
        self.assert_refused(result, f"{len(texts)} faults")
        for text in texts:
            self.assertIn(f"file: Suite.Test\n  {text}\n", result.stdout)

    def test_one_text_is_one_statement(self):
        self.assert_refused(self.parse(statement(TEXT), statement("delete from DataApp; delete from DataAtt")),
                            "2 statements")

    def test_a_shape_is_parsed_once(self):
        result = self.parse(statement(TEXT, shape="s"), statement("no such thing", shape="s"))
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertIn("1 shapes", result.stdout)

    def test_a_text_that_no_database_took_is_counted_only(self):
        result = self.parse(statement(TEXT), statement("delete from DataApp where ID=", ran=False))
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertIn("1 more shapes were refused", result.stdout)

    def test_a_text_that_some_database_took_is_parsed(self):
        self.assert_refused(self.parse(statement(TEXT), statement("delete from", ran=False), statement("delete from")),
                            "delete from")

    def test_an_operation_without_any_statement_is_missed(self):
        self.assert_refused(self.parse({"expected": "Command.C_2"}, statement(TEXT)),
                            "Command.C_2: no statement of it was seen")
        self.assert_refused(self.parse(statement(TEXT, ran=False), statement(TEXT, operation="Command.C_3")),
                            "Command.C_1: no statement of it was seen")

    def test_a_file_that_is_missing_or_empty_is_missed(self):
        self.parse(statement(TEXT))
        self.assert_refused(self.run_parser("file", "other"), "other: No such file")
        (self.folder / "other").write_text("", encoding="utf-8")
        self.assert_refused(self.run_parser("file", "other"), "other: holds no statement")

    def test_expectations_are_missed(self):
        (self.folder / "file").write_text(json.dumps(statement(TEXT)) + "\n", encoding="utf-8")
        self.assert_refused(self.run_parser("file"), "no operation is expected to have statements")


if __name__ == "__main__":
    unittest.main()
