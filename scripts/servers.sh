# Shared by scripts/databases and scripts/cluster, which source it: scratch servers on loopback.
# The including script sets PROGRAM, its own name, and SCRATCH, the folder of the servers' data.

# Servers refuse to run as root; root runs them as this user.
readonly SERVER_USER=zel-databases

fail() {
  echo "$PROGRAM: $*" >&2
  exit 1
}

fail_with_log() { # TEXT FILE: what went wrong, and the end of its log, which is removed after
  tail -n 20 "$2" >&2 || true
  fail "$1"
}

as_server_user() {
  if [[ $EUID -eq 0 ]]; then
    runuser -u "$SERVER_USER" -- "$@"
  else
    "$@"
  fi
}

# A file below /usr/lib that a Debian package brought; its folder depends on version and machine.
only_match() {
  local found
  found=$(compgen -G "$1" | sort -V | tail -n 1) || true
  [[ -n $found ]] || fail "nothing matches $1; run scripts/setup"
  echo "$found"
}

free_ports() { # COUNT: that many free ports of 127.0.0.1, below the range of outgoing connections
  python3 - "$1" <<'PYTHON'
import random, socket, sys
held = []
while len(held) < int(sys.argv[1]):
    s = socket.socket()
    try:
        s.bind(("127.0.0.1", random.randrange(20000, 32000)))
        held.append(s)
    except OSError:
        s.close()
print(*(s.getsockname()[1] for s in held))
PYTHON
}

make_scratch() { # NAME: a folder for the servers' data
  if [[ $EUID -eq 0 ]] && ! id "$SERVER_USER" >/dev/null 2>&1; then
    useradd --system --no-create-home --shell /usr/sbin/nologin "$SERVER_USER"
  fi
  # Not below the repository: the server's user may not be allowed to enter its parents.
  SCRATCH=$(mktemp -d "/var/tmp/$1.XXXXXX")
  if [[ $EUID -eq 0 ]]; then
    chown "$SERVER_USER" "$SCRATCH"
  fi
}

# The process that wrote the pid file, if it still runs and is ours: its command line names the
# scratch folder.
server_pid() { # PID_FILE
  local pid
  pid=$(head -n 1 "$1" 2>/dev/null) || return 1
  [[ -n $pid && -r /proc/$pid/cmdline ]] &&
    tr '\0' ' ' <"/proc/$pid/cmdline" 2>/dev/null | grep -qF "$SCRATCH" &&
    echo "$pid"
}

stop_server() { # PID_FILE SIGNAL
  local pid tries
  pid=$(server_pid "$1") || return 0
  kill "-$2" "$pid"
  for ((tries = 0; tries < 300; ++tries)); do
    [[ -d /proc/$pid ]] || return 0
    sleep 0.1
  done
  fail "process $pid does not end"
}
