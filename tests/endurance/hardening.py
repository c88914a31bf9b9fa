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
# Long: what is freed loses its first bytes at once, the rest may stay for hours.
WRONG = "Vb7-wrong-q2Lx-and-a-tail-that-is-left-in-freed-memory"
TAIL = WRONG[-20:].encode()
IN_FILE = "Kq4-wrong-in-odbc.ini"


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
    """Whether a process's command line or environment has the text."""
    try:
        return any(text in pathlib.Path(f"/proc/{process.pid}/{file}").read_bytes()
                   for file in ("cmdline", "environ"))
    except OSError:
        return False


def copies(process, text):
    """How often the text is in what a process has written to its memory."""
    count = 0
    maps = pathlib.Path(f"/proc/{process.pid}/maps").read_text(encoding="utf-8")
    with open(f"/proc/{process.pid}/mem", "rb", 0) as memory:
        for begin, end in re.findall(r"^(\w+)-(\w+) \S*w", maps, re.MULTILINE):
            memory.seek(int(begin, 16))
            count += memory.read(int(end, 16) - int(begin, 16)).count(text)
    return count


def data_sources(folder):
    """Data sources that fail in several ways; some repeat the password."""
    text = pathlib.Path(os.environ["ODBCINI"]).read_text(encoding="utf-8")
    sources = {}
    for name, keys in re.findall(r"^\[(SQLite|PostgreSQL|MariaDB)\]\n((?:.+\n)*)", text,
                                 re.MULTILINE):
        sources |= {name: keys, f"{name}InFile": f"{keys}Password={IN_FILE}\nPWD={IN_FILE}\n",
                    f"{name}NoHost": re.sub(r"(?mi)^port=.*", "Port=1", keys),
                    f"{name}NoDriver": re.sub(r"(?m)^Driver=.*", "Driver=/nowhere.so", keys)}
    sections = (f"[{name}]\n{keys}\n" for name, keys in sources.items())
    (folder / "odbc.ini").write_text("".join(sections), encoding="utf-8")
    (folder / "odbcinst.ini").touch()
    return [*sources, f"PostgreSQL;PWD={WRONG}", f"Driver=SQLite;PWD={WRONG}"]


def check_logins(build, found):
    """What the plug-in says of logins that fail, and keeps of them when they are over."""
    with tempfile.TemporaryDirectory() as folder:
        sources = data_sources(pathlib.Path(folder))
        env = dict(os.environ, ODBCSYSINI=folder, ODBCINI=f"{folder}/odbc.ini")
        del env["ZEL_TEST_PASSWORD"]
        for source, generation in ((s, g) for s in sources for g in "12"):
            what = f"login {generation} {source}".replace(WRONG, "...")
            with subprocess.Popen([build / "tests" / "login", generation, source], env=env,
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT) as login:
                login.stdin.write(f"{WRONG}\n".encode())
                login.stdin.flush()
                said = b""
                while not said.endswith(b"released\n") and (line := login.stdout.readline()):
                    said += line
                found.expect(len(said) > len("released\n") and not any(
                    text.encode() in said.replace(source.encode(), b"")
                    for text in (WRONG, IN_FILE)), f"{what} says a password, or nothing: {said}")
                found.expect(WRONG in source or not is_shown(login, WRONG.encode()),
                             f"{what} shows a password")
                # This driver keeps no copy, so that every copy would be the plug-in's.
                found.expect(source != "SQLite" or copies(login, TAIL) == 0,
                             f"{what} leaves a password in memory")


def check_passwords(build, found):
    """Everything that the tool says of services whose password is right or wrong."""
    right = os.environ["ZEL_TEST_PASSWORD"]
    with tempfile.TemporaryDirectory() as folder:
        services = pathlib.Path(folder) / "services.toml"
        services.write_text("".join(
            f'[{name}{kind}]\nDSN = "{name}"\nUser = "app"\nPassword = "{password}"\n'
            for name in ("PostgreSQL", "MariaDB")
            for kind, password in (("Right", right), ("Wrong", WRONG))), encoding="utf-8")
        env = dict(os.environ)
        del env["ZEL_TEST_PASSWORD"]
        for service in re.findall(r"\[(\w+)\]", services.read_text(encoding="utf-8")):
            for verb in (("check",), ("doctor",), ("tables",),
                         ("query", "select nothing from nowhere"),
                         ("query", "select 1", "--generation", "2"),
                         ("dump", "nowhere", "-", "--generation", "2")):
                command = [build / "bin" / "zeldb", "--services", services, "--log-level", "debug",
                           verb[0], service, *verb[1:]]
                with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                      cwd=folder, env=env) as process:
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
    check_logins(build, found)
    for text in found[:20]:
        print(f"  {text}")
    print(f"{'hardening':24} {found.tried:12} tried {len(found):8} findings")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]).resolve(), int(sys.argv[2])))
