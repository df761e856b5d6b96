#!/bin/sh
# Two portal processes on one PostgreSQL database under load, one of them killed midway.
#   tools/scale_load.sh [--users 100] [--seconds 60] [--build build/default]
# Runs kxportal_load twice on a freshly seeded throwaway cluster (build/scale/pg): first
# against one portal, then against two with the first killed halfway; half the users
# approve and receive on the same requisitions and orders. Stops everything it started
# whatever happens; exits non-zero when either run fails its checks.
set -eu

users=100
seconds=60
build=build/default
while [ $# -gt 0 ]; do
  case $1 in
    --users) users=$2; shift 2 ;;
    --seconds) seconds=$2; shift 2 ;;
    --build) build=$2; shift 2 ;;
    *) echo "usage: $0 [--users N] [--seconds N] [--build DIR]" >&2; exit 2 ;;
  esac
done
dir=build/scale
pg=$dir/pg
pids=
mkdir -p "$dir"

cleanup() {
  for p in $pids; do kill "$p" 2>/dev/null || true; done
  for p in $pids; do wait "$p" 2>/dev/null || true; done
  tools/pg_cluster.sh stop "$pg"
}
trap cleanup EXIT
trap 'exit 130' INT TERM HUP

fresh_database() {
  tools/pg_cluster.sh stop "$pg"
  url=$(tools/pg_cluster.sh start "$pg")
  "$build/reference/kxseed" --db "$url" --users-per-borg 17 --parts 300 >/dev/null
}

# Starts a portal on a free port; sets pid and addr.
start_portal() {
  log=$dir/portal$1.log
  : >"$log"  # there before the background portal opens it, so it can be read at once
  "$build/apps/portal/kxportal" --db "$url" --port 0 --threads $((users + 4)) >"$log" 2>&1 &
  pid=$!
  pids="$pids $pid"
  for _ in $(seq 100); do
    addr=$(sed -n 's/^listening on //p' "$log")
    [ -n "$addr" ] && return 0
    kill -0 "$pid" 2>/dev/null || break
    sleep 0.1
  done
  echo "portal $1 did not start:" >&2
  cat "$log" >&2
  exit 1
}

load=$build/apps/portal/kxportal_load
status=0

echo "== one portal process"
fresh_database
start_portal 1
"$load" --db "$url" --users "$users" --seconds "$seconds" --contend --url "$addr" || status=1
kill "$pid"
wait "$pid" 2>/dev/null || true

echo "== two portal processes, the first killed after $((seconds / 2)) s"
fresh_database
start_portal 1
first_pid=$pid first_addr=$addr
start_portal 2
"$load" --db "$url" --users "$users" --seconds "$seconds" --contend \
  --url "$first_addr" --url "$addr" --kill-after $((seconds / 2)) --kill-pid "$first_pid" || status=1
exit $status
