"""What an optimised plug-in file must be, and that no password gets out.

    hardening.py BUILD_FOLDER LOADS

Needs the environment of `scripts/databases run`. Prints a line; ends with 1 when it found anything.
"""

import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

EXPORTED = re.compile(r"FactoryDriver|DataTypes::(?:(?:Timestamp|Date|BigDateTime)ToString|"
                      r"(?:Timestamp|Date|Time|BigDateTime)FromString|longdivmod128|longdivmod|"
                      r"mul1|divmod1)\(.*\)")
PLUGIN_FOLDERS = ("datatypes", "odbc", "driver", "driver2")
WRONG = "Vb7-wrong-q2Lx"


def output(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


class Findings(list):
    tried = 0

    def expect(self, holds, what):
        self.tried += 1
        if not holds:
            self.append(what)


def check_file(library, found):
    dynamic = output("readelf", "-dW", library)
    segments = output("readelf", "-lW", library)
    symbols = output("readelf", "-W", "--dyn-syms", "--demangle", library)
    found.expect("GNU_RELRO" in segments, "no RELRO")
    found.expect("BIND_NOW" in dynamic and re.search(r"Flags:.*NOW", dynamic), "no BIND_NOW")
    found.expect(re.search(r"GNU_STACK.*\sRW\s", segments), "executable stack")
    found.expect(not re.search(r"LOAD.*\sRWE\s", segments), "writable code")
    found.expect("TEXTREL" not in dynamic, "text relocations")
    found.expect("__stack_chk_fail" in symbols, "no stack protector")
    found.expect(" UNIQUE " not in symbols, "symbols that keep the library loaded")
    for line in symbols.splitlines():
        parts = line.split(maxsplit=7)
        if len(parts) == 8 and parts[4] in ("GLOBAL", "WEAK") and parts[6] != "UND":
            found.expect(EXPORTED.fullmatch(parts[7]), f"exports {parts[7]}")


def check_compiled(build, found):
    """What leaves no trace in the file."""
    commands = json.loads((build / "compile_commands.json").read_text(encoding="utf-8"))
    root = pathlib.Path(__file__).parents[2]
    for row in commands:
        source = pathlib.Path(row["file"]).relative_to(root)
        if source.parts[0] in PLUGIN_FOLDERS:
            words = row["command"].split()
            found.expect(re.search(r"-D_FORTIFY_SOURCE=[23]( |$)", row["command"]) and
                         "-fstack-protector-strong" in words and "-O2" in words,
                         f"{source} is not hardened")


def is_shown(process, text):
    """Whether a process's command line has the text."""
    try:
        return text in pathlib.Path(f"/proc/{process.pid}/cmdline").read_bytes()
    except OSError:
        return False


def check_passwords(build, found):
    """Everything that the tool says of services whose password is right or wrong."""
    right = os.environ["ZEL_TEST_PASSWORD"]
    with tempfile.TemporaryDirectory() as folder:
        services = pathlib.Path(folder) / "services.toml"
        services.write_text("".join(
            f'[{name}{kind}]\nDSN = "{name}"\nUser = "app"\nPassword = "{password}"\n'
            for name in ("PostgreSQL", "MariaDB")
            for kind, password in (("Right", right), ("Wrong", WRONG))), encoding="utf-8")
        for service in re.findall(r"\[(\w+)\]", services.read_text(encoding="utf-8")):
            for verb in (("check",), ("doctor",), ("tables",),
                         ("query", "select nothing from nowhere"),
                         ("query", "select 1", "--generation", "2"),
                         ("dump", "nowhere", "-", "--generation", "2")):
                command = [build / "bin" / "zeldb", "--services", services, "--log-level", "debug",
                           verb[0], service, *verb[1:]]
                with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                      cwd=folder) as process:
                    shown = False
                    said = b""
                    while process.poll() is None and not shown:
                        shown = is_shown(process, WRONG.encode()) or is_shown(process,
                                                                              right.encode())
                        time.sleep(0.005)
                    said = process.stdout.read()
                found.expect(not shown, f"{verb[0]} shows a password in its command line")
                found.expect(WRONG.encode() not in said and right.encode() not in said and said,
                             f"{verb[0]} says a password of {service}, or nothing: {said}")


def main(build, loads):
    library = build / "lib" / "libzel_db_odbc_lib.so"
    found = Findings()
    check_file(library, found)
    check_compiled(build, found)
    bare = subprocess.run([build / "tests" / "bare_load", library, str(loads)], text=True,
                          check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    print(f"  {bare.stdout.strip()}")
    found.expect(bare.returncode == 0, f"{loads} loads: {bare.stdout}")
    found.tried += loads - 1
    check_passwords(build, found)
    for text in found[:20]:
        print(f"  {text}")
    print(f"{'hardening':24} {found.tried:12} tried {len(found):8} findings")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve(), int(sys.argv[2])))
