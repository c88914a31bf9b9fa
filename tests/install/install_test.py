"""The Debian packages, installed below a scratch root and used from there, and the completion of
command lines that comes with them.

The environment names the source folder (ZEL_SOURCE).
"""

import glob
import os
import pathlib
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["ZEL_SOURCE"])
# A server in small: it brings the libraries that the plug-in needs, loads it and makes a driver.
SERVER = """
#include <dlfcn.h>
#include <host/host.h>
#include <cstdio>
int main(int, char** argv) {
  void* const plugIn = dlopen(argv[1], RTLD_NOW);
  if (plugIn == nullptr) return std::puts(dlerror()), 1;
  const auto factory = reinterpret_cast<KORVEX::Zel::DB::Driver* (*)(const char*)>(
      dlsym(plugIn, "FactoryDriver"));
  return factory != nullptr && factory("odbc")->initialize() == 1 ? 0 : 1;
}
"""
CMAKE_LISTS = """
cmake_minimum_required(VERSION 3.25)
project(server CXX)
find_package(zel_db_odbc 0.1 REQUIRED)
add_executable(server server.cpp)
target_link_libraries(server zel::host)
file(GENERATE OUTPUT plugin CONTENT $<TARGET_FILE:zel::db_odbc>)
"""


def run(*command, **options):
    done = subprocess.run(command, text=True, capture_output=True, check=False,
                          stdin=subprocess.DEVNULL, timeout=600, **options)
    assert done.returncode == 0, f"{command}: {done.returncode}\n{done.stdout}{done.stderr}"
    return done.stdout


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.folder = pathlib.Path(cls.scratch.name)
        cls.root = cls.folder / "root"
        packages = run(SOURCE / "scripts/package", cls.folder / "packages").split()
        for part in ("info", "updates", "triggers"):
            (cls.root / "var/lib/dpkg" / part).mkdir(parents=True)
        (cls.root / "var/lib/dpkg/status").touch()
        (cls.root / "var/log").mkdir()
        # What they depend on is on this machine, not below the scratch root.
        run("fakeroot", "dpkg", f"--root={cls.root}", f"--log={cls.folder}/dpkg.log",
            "--force-depends", "--force-script-chrootless", "--install", *packages)
        cls.tool = cls.root / "usr/bin/zeldb"

    def test_the_tool_moves_data(self):
        driver = glob.glob("/usr/lib/*/odbc/libsqlite3odbc.so")[0]
        (self.folder / "odbcinst.ini").write_text("")
        (self.folder / "odbc.ini").write_text(
            f"[db]\nDriver={driver}\nDatabase={self.folder}/t.db\n")
        (self.folder / "zeldb.toml").write_text('[s]\nDSN = "db"\nUser = "u"\n')
        (self.folder / "f.csv").write_text("a,b\n1,é\n2,\n")
        environment = dict(os.environ, ODBCSYSINI=str(self.folder),
                           ODBCINI=str(self.folder / "odbc.ini"))

        def zeldb(*arguments):
            return run(self.tool, *arguments, cwd=self.folder, env=environment)

        self.assertEqual(zeldb("--version"), "0.1.0\n")
        self.assertIn(f"{self.root}/usr/lib/zel/libzel_db_odbc_lib.so", zeldb("check", "s"))
        zeldb("query", "s", "create table t (a integer, b varchar(5))")
        zeldb("load", "s", "t", "f.csv")
        self.assertEqual(zeldb("dump", "s", "t"), "a,b\n1,é\n2,\n")

    def test_every_verb_has_a_manual_page(self):
        verbs = run(self.tool, "complete", "--", "zeldb", "").splitlines()
        self.assertGreaterEqual(len(verbs), 7)
        for verb in ["zeldb"] + ["zeldb-" + line.split("\t")[0] for line in verbs]:
            page = run("man", "--warnings", "-l", self.root / f"usr/share/man/man1/{verb}.1.gz",
                       env=dict(os.environ, MANWIDTH="100"))
            self.assertRegex(page, rf"{verb} - \w")

    def test_a_server_is_compiled_and_loads_the_plug_in(self):
        project = self.folder / "server"
        project.mkdir()
        (project / "server.cpp").write_text(SERVER)
        (project / "CMakeLists.txt").write_text(CMAKE_LISTS)
        environment = dict(os.environ, PKG_CONFIG_PATH=str(self.root / "usr/share/pkgconfig"),
                           LD_LIBRARY_PATH=str(self.root / "usr/lib/zeldb"))
        run("cmake", "-S", project, "-B", project / "build",
            f"-DCMAKE_PREFIX_PATH={self.root}/usr")
        run("cmake", "--build", project / "build")
        plug_in = (project / "build/plugin").read_text()
        run(project / "build/server", plug_in, env=environment)

        flags = run("pkg-config", "--cflags", "zel_db_odbc", env=environment).split()
        run("c++", "-std=c++20", *flags, project / "server.cpp", "-o", project / "plain")
        named = run("pkg-config", "--variable=plugin", "zel_db_odbc", env=environment).strip()
        self.assertTrue(os.path.samefile(named, plug_in))
        run(project / "plain", named, env=environment)

    def test_shells_complete_command_lines(self):
        (self.folder / "zeldb.toml").write_text('[orders]\nDSN = "a"\n[old]\nDSN = "b"\n')
        share = self.root / "usr/share"
        bash = ("source /usr/share/bash-completion/bash_completion; source {share}/"
                "bash-completion/completions/zeldb; COMP_WORDS=({words}); "
                "COMP_CWORD=$((${{#COMP_WORDS[@]}} - 1)); COMP_LINE='{line}'; "
                "COMP_POINT=${{#COMP_LINE}}; _zeldb; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        zsh = ("_files() {{ print -l *(N) }}; _describe() {{ print -l -- ${{(P)2%%:*}} }}; "
               "words=({words}); CURRENT=$#words; source {share}/zsh/vendor-completions/_zeldb")
        cases = [
            (["lo"], ["load"]),
            (["query", "orders", "select 1", "--format", "js"], ["json", "jsonl"]),
            (["describe", "o"], ["old", "orders"]),
            (["copy", "or"], ["orders."]),
            (["load", "--serv"], ["--services"]),
            (["--services", "none.toml", "check", "o"], []),
        ]
        for words, expected in cases:
            line = " ".join(f"'{word}'" if " " in word else word for word in ["zeldb", *words])
            for shell, script in (("bash", bash), ("zsh", zsh)):
                with self.subTest(shell=shell, words=words):
                    command = script.format(share=share, line=line.replace("'", ""),
                                            words=line.replace("zeldb", str(self.tool), 1))
                    done = subprocess.run([shell, "-c", command], text=True, cwd=self.folder,
                                          capture_output=True, check=False, timeout=60)
                    self.assertEqual(done.stderr, "")
                    self.assertEqual(sorted(done.stdout.split()), expected)


if __name__ == "__main__":
    unittest.main()
