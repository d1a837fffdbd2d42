#!/usr/bin/env python3
"""`cmake --install` puts everything where it belongs, and nothing of it knows where it was built."""

import re
import shutil
import unittest

from support import BUILD, LIBDIR, PREFIX, ROOT, SOVERSION, VERSION, PackageTest, sizes, tell, words


class InstallTest(PackageTest):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(PREFIX, ignore_errors=True)
        cls().succeed("cmake", "--install", BUILD, "--prefix", PREFIX)

    def test_everything_is_in_its_place(self):
        libraries = [f"{LIBDIR}/lib{name}.so{end}" for name in ("talm_flow", "talm_flow_loader")
                     for end in ("", f".{SOVERSION}", f".{VERSION}")]
        for path in ("bin/talmflow", f"{LIBDIR}/libtalm_flow.a", *libraries, f"{LIBDIR}/pkgconfig/talm_flow.pc",
                     f"{LIBDIR}/cmake/TALM_Flow/TALM_FlowConfig.cmake", "include/talm_flow/command.h",
                     "include/talm_flow/component.h", "include/talm_flow/host/services.h", "share/man/man1/talmflow.1",
                     "share/bash-completion/completions/talmflow",
                     "share/doc/TALM_Flow/README.md", "share/doc/TALM_Flow/docs/hosting.md",
                     "share/doc/TALM_Flow/examples/own_host/CMakeLists.txt"):
            self.assertTrue((PREFIX / path).is_file(), path)

    def test_every_public_header_is_installed_and_no_other(self):
        def headers(folder):
            return sorted(str(path.relative_to(folder)) for path in folder.rglob("*.h"))

        self.assertEqual(headers(PREFIX / "include"), headers(ROOT / "include"))

    def test_programs_ask_for_the_library_by_its_versions_name(self):
        for name in ("talm_flow", "talm_flow_loader"):
            told = self.succeed("objdump", "-p", PREFIX / LIBDIR / f"lib{name}.so")
            self.assertRegex(told, rf"SONAME\s+lib{name}\.so\.{re.escape(SOVERSION)}\n")

    def test_nothing_tells_where_it_was_built_or_installed(self):
        for folder in (ROOT, BUILD, PREFIX):
            self.assertEqual(words(PREFIX, str(folder).encode()), [])

    def test_the_manual_page_tells_every_subcommand_and_option(self):
        program = PREFIX / "bin/talmflow"
        page = (PREFIX / "share/man/man1/talmflow.1").read_text(encoding="utf-8")
        shown = self.succeed("man", "--warnings=w", "-l", PREFIX / "share/man/man1/talmflow.1",
                             environment={"LC_ALL": "C.UTF-8", "MANWIDTH": "100", "MANPAGER": "cat"})
        self.assertNotRegex(shown, r":\d+: (warning|error)")
        pending, paths = [[]], 0
        while pending:
            path = pending.pop()
            help_text = self.succeed(program, *path, "--help")
            subcommands = re.findall(r"^  ([a-z]+)  +\S", help_text.partition("Subcommands:\n")[2], re.M)
            pending += [[*path, name] for name in subcommands]
            if path and not subcommands:
                paths += 1
                self.assertIn("\n.SS talmflow " + " ".join(path) + "\n", page)
            options = help_text.partition("\nOptions:\n")[2].partition("\n\n")[0]
            for option in re.findall(r"^  (?:-\w,)?(--[a-z-]+)", options, re.M):
                self.assertIn(option.replace("-", "\\-"), page, path)
        self.assertGreater(paths, 25)

    def test_the_completion_works_where_the_shell_looks_for_it(self):
        script = PREFIX / "share/bash-completion/completions/talmflow"
        offered = self.succeed("bash", "-c", f"source '{script}'; COMP_WORDS=(talmflow com); COMP_CWORD=1; _talmflow; "
                                             "printf '%s ' ${COMPREPLY[@]}")
        self.assertEqual(offered.split(), ["commands", "completion"])

    def test_the_installed_sizes_are_told(self):
        found = sizes(PREFIX)
        tell("installed", [f"Installed: {len(found)} files, {sum(found.values())} bytes",
                           *(f"{size:10} {path}"
                             for path, size in sorted(found.items(), key=lambda item: -item[1])[:8])])
        shared = found[(PREFIX / LIBDIR / f"libtalm_flow.so.{VERSION}").relative_to(PREFIX)]
        self.assertGreater(shared, 100_000)


if __name__ == "__main__":
    unittest.main()
