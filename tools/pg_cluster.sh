#!/bin/sh
# A throwaway PostgreSQL cluster for tests.
#   tools/pg_cluster.sh start [DIR]   initdb into DIR (default build/pg), start it listening
#                                     only on a socket in DIR, print its connection URL
#                                     (also written to DIR/url)
#   tools/pg_cluster.sh stop [DIR]    stop it and remove DIR
#   tools/pg_cluster.sh run [DIR] -- CMD...
#                                     start, run CMD with KXREF_DB_URL set, stop whatever
#                                     happens; exits with CMD's status
# The server refuses to run as root: under root it runs as the system user kxpg (created
# when missing). Nothing listens on TCP, so parallel runs never fight over a port.
set -eu

cmd=${1:-}
[ $# -gt 0 ] && shift
dir=build/pg
if [ $# -gt 0 ] && [ "$1" != "--" ]; then dir=$1; shift; fi

find_bin() {
  for d in "${PG_BIN:-}" /usr/lib/postgresql/*/bin; do
    if [ -n "$d" ] && [ -x "$d/pg_ctl" ]; then echo "$d"; return 0; fi
  done
  command -v pg_ctl >/dev/null 2>&1 && { dirname "$(command -v pg_ctl)"; return 0; }
  echo "pg_cluster: no PostgreSQL server found (install postgresql-15)" >&2
  return 1
}

# Runs a server program as the cluster's owner.
as_owner() {
  if [ "$(id -u)" = 0 ]; then runuser -u kxpg -- "$@"; else "$@"; fi
}

start() {
  bin=$(find_bin)
  stop_quietly
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  data=$dir/data
  # Unix socket paths are limited to ~100 bytes; a deep checkout gets a short one in /tmp.
  sock=$dir/sock
  if [ ${#sock} -gt 80 ]; then sock=$(mktemp -d /tmp/kxpg.XXXXXX); fi
  mkdir -p "$data" "$sock"
  if [ "$(id -u)" = 0 ]; then
    id kxpg >/dev/null 2>&1 || useradd --system --no-create-home --shell /usr/sbin/nologin kxpg
    chown kxpg "$data" "$sock"
    # A checkout under a private home is out of the server's reach: use /tmp instead.
    if ! runuser -u kxpg -- test -w "$data" || ! runuser -u kxpg -- test -w "$sock"; then
      rm -rf "$data"
      data=$(mktemp -d /tmp/kxpg.XXXXXX)
      case $sock in /tmp/kxpg.*) ;; *) rm -rf "$sock"; sock=$(mktemp -d /tmp/kxpg.XXXXXX) ;; esac
      chown kxpg "$data" "$sock"
    fi
  fi
  echo "$data" >"$dir/datadir"
  echo "$sock" >"$dir/sockdir"
  as_owner "$bin/initdb" -D "$data" -U kxref --auth=trust -E UTF8 --locale=C.UTF-8 \
    --no-sync >"$dir/initdb.log" 2>&1 || { cat "$dir/initdb.log" >&2; exit 1; }
  # Durability buys nothing for a cluster thrown away after the run.
  as_owner "$bin/pg_ctl" -D "$data" -l "$data/server.log" -w -t 30 \
    -o "-c listen_addresses='' -k $sock -c fsync=off -c synchronous_commit=off \
        -c full_page_writes=off -c max_connections=200" start >/dev/null ||
    { cat "$data/server.log" >&2; exit 1; }
  url="postgresql://host=$sock dbname=postgres user=kxref"
  echo "$url" >"$dir/url"
  echo "$url"
}

stop_quietly() {
  [ -f "$dir/datadir" ] || { rm -rf "$dir"; return 0; }
  bin=$(find_bin)
  data=$(cat "$dir/datadir")
  if [ -f "$data/postmaster.pid" ]; then
    as_owner "$bin/pg_ctl" -D "$data" -m immediate -w stop >/dev/null 2>&1 || true
  fi
  sock=$(cat "$dir/sockdir" 2>/dev/null || true)
  for d in "$data" "$sock"; do
    case $d in /tmp/kxpg.*) rm -rf "$d" ;; esac
  done
  rm -rf "$dir"
}

case $cmd in
  start) start ;;
  stop) stop_quietly ;;
  run)
    [ "${1:-}" = "--" ] && shift
    [ $# -gt 0 ] || { echo "usage: $0 run [DIR] -- CMD..." >&2; exit 2; }
    child=
    trap 'stop_quietly' EXIT
    # A signal stops the command and then the cluster (through the EXIT trap).
    trap '[ -n "$child" ] && kill "$child" 2>/dev/null; exit 130' INT TERM HUP
    KXREF_DB_URL=$(start)
    export KXREF_DB_URL
    "$@" &
    child=$!
    status=0
    wait "$child" || status=$?
    exit $status
    ;;
  *)
    echo "usage: $0 start|stop [DIR] | run [DIR] -- CMD..." >&2
    exit 2
    ;;
esac
