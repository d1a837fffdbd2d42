# For scripts that run database servers of their own: as an ordinary user, in a temporary folder, on 127.0.0.1.
# shellcheck shell=bash

# Whom servers run as: they refuse to be root.
as_user=()
if [[ $(id -u) -eq 0 ]]; then
  as_user=(setpriv "--reuid=nobody" "--regid=$(id -g nobody)" --clear-groups)
fi

# Complains with the end of a log, if there is one, and ends the script.
fail() {  # MESSAGE [LOG]
  printf '%s: %s\n' "${0##*/}" "$1" >&2
  if [[ -n ${2:-} && -s $2 ]]; then
    echo "The end of its log:" >&2
    tail -n 20 "$2" | sed 's/^/  /' >&2
  fi
  exit 1
}

# The full path of a program, which may stand where no PATH of ordinary users leads.
program() {  # NAME FOLDER...
  local name=$1 folder
  shift
  for folder in "$@"; do
    if [[ -x $folder/$name ]]; then
      echo "$folder/$name"
      return
    fi
  done
  command -v "$name" || fail "$name is missing; tools/setup test installs it"
}

# A new folder for a server's files and socket. The name of a Unix socket has at most 107 bytes, so a long TMPDIR does
# not serve.
server_folder() {
  local under=${TMPDIR:-/tmp} folder
  [[ ${#under} -le 60 ]] || under=/tmp
  folder=$(mktemp -d "$under/talm_flow.XXXXXX")
  [[ ${#as_user[@]} -eq 0 ]] || chown nobody: "$folder"
  echo "$folder"
}

# Ports that nobody listens on, all different.
free_ports() {  # COUNT
  python3 - "$1" <<'END'
import socket, sys
sockets = [socket.socket() for _ in range(int(sys.argv[1]))]
for one in sockets:
    one.bind(("127.0.0.1", 0))
print(*(one.getsockname()[1] for one in sockets))
END
}

# Whether the process is still the server that works in the folder, and not one that got its number later.
runs_in() {  # PID FOLDER
  [[ -n $1 && -r /proc/$1/cmdline ]] && grep -qaF "$2" "/proc/$1/cmdline"
}

# Waits until a command succeeds, for as long as the server just started lives, 60 seconds at most.
answers() {  # PID COMMAND...
  local pid=$1 end=$((SECONDS + 60))
  shift
  while kill -0 "$pid" 2>/dev/null && ((SECONDS < end)); do
    "$@" >/dev/null 2>&1 && return
    sleep 0.05
  done
  return 1
}

# Ends a server and waits for its end: first with the signal given, after 20 seconds with force.
end_server() {  # PID FOLDER SIGNAL
  local end=$((SECONDS + 20))
  ! runs_in "$1" "$2" || kill "-$3" "$1" 2>/dev/null || true
  while runs_in "$1" "$2"; do
    ((SECONDS < end)) || kill -KILL "$1" 2>/dev/null || true
    sleep 0.05
  done
}
