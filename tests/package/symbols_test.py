#!/usr/bin/env python3
"""The shared libraries show what the public headers declare, and the check that says so notices what is too much and what is
missing."""

import os
import pathlib
import subprocess
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

HEADER = """#pragma once
#include <stdexcept>
#define API __attribute__((visibility("default")))
namespace shop {
class API ClosedError : public std::runtime_error { public: using runtime_error::runtime_error; };
class API Till {
 public:
  Till();
  ~Till();
  void Pay(int amount);
  int Balance() const { return balance_; }
 private:
  int balance_ = 0;
};
API void Open();
}
"""
SOURCE = """#include "shop.h"
namespace shop {
Till::Till() = default;
Till::~Till() = default;
void Till::Pay(int amount) { balance_ += amount; }
void Open() { throw ClosedError("closed"); }
}
"""


def check(library, headers, *arguments):
    return subprocess.run([ROOT / "tools/check_symbols.py", library, headers, *arguments], capture_output=True,
                          encoding="utf-8", timeout=120, check=False)


class SymbolsTest(unittest.TestCase):
    def test_the_library_shows_what_the_headers_declare(self):
        run = check(os.environ["TALM_FLOW_SHARED"], ROOT / "include", "--namespace", "talm_flow",
                    "--c-header", "talm_flow/component.h")
        print(run.stdout, end="")
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 0)

    def test_the_loader_shows_what_its_hosts_call(self):
        run = check(os.environ["TALM_FLOW_LOADER"], ROOT / "include", "--c-header", "talm_flow/component.h",
                    "--c-only", "Talm", "--c-without", "TalmRegisterClasses")
        print(run.stdout, end="")
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 0)

    def checked(self, header=HEADER, source=SOURCE):
        """Checks a library that is made of these texts."""
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "include").mkdir()
            (folder / "include/shop.h").write_text(header, encoding="utf-8")
            (folder / "shop.cpp").write_text(source, encoding="utf-8")
            subprocess.run(["c++", "-std=c++20", "-fPIC", "-shared", "-fvisibility=hidden",
                            "-fvisibility-inlines-hidden", "-Iinclude", "shop.cpp", "-o", "libshop.so"],
                           cwd=folder, check=True, timeout=120)
            return check(folder / "libshop.so", folder / "include", "--namespace", "shop")

    def assert_complains(self, run, *words):
        self.assertEqual(run.returncode, 1, run.stdout)
        for word in words:
            self.assertIn(word, run.stderr)
        self.assertEqual(len(run.stderr.splitlines()), 1, run.stderr)

    def test_a_library_that_fits_passes(self):
        run = self.checked()
        self.assertEqual(run.stderr, "")
        self.assertEqual(run.returncode, 0)

    def test_a_function_that_is_not_marked_fails(self):
        run = self.checked(header=HEADER.replace("API void Open", "void Open"))
        self.assert_complains(run, "shop::Open() is declared and not shown")

    def test_an_operation_that_is_declared_only_fails(self):
        run = self.checked(source=SOURCE.replace("void Till::Pay(int amount) { balance_ += amount; }", ""))
        self.assert_complains(run, "shop::Till::Pay(int) is declared and not shown")

    def test_an_error_that_nobody_could_catch_fails(self):
        run = self.checked(header=HEADER.replace("class API ClosedError", "class ClosedError"))
        self.assertEqual(run.returncode, 1)
        self.assertIn("typeinfo for shop::ClosedError is declared and not shown", run.stderr)

    def test_what_no_header_declares_fails(self):
        run = self.checked(source=SOURCE.replace("void Open()", "API void Inner() {}\nvoid Open()"))
        self.assert_complains(run, "shop::Inner() is shown and in no public header")

    def test_what_belongs_to_nobody_fails(self):
        run = self.checked(source=SOURCE + 'extern "C" API void helper() {}\n')
        self.assert_complains(run, "helper is shown and in no public header")


if __name__ == "__main__":
    unittest.main()
