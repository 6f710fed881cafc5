# Sourced by tools/test.sh and tools/bench.sh: starts a private PostgreSQL cluster for the run
# (initdb into a temporary folder as an unprivileged user, listening on 127.0.0.1 on a free port)
# and stops it when the calling script ends. The tests' cluster skips flushing to disk (nothing in it
# outlives the run); with SHELVORA_PG_DURABLE=1 (the benchmarks) it flushes every commit as a school's
# server would. Exports SHELVORA_TEST_POSTGRESQL, the server's
# admin address; leaves it unset when no server is installed (the server tests then say so).
shelvora_pg_start() {
  local bin
  bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
  if [ -z "$bin" ] || [ ! -x "$bin/initdb" ]; then
    echo "skipped: no PostgreSQL (the server package is not installed)"
    return 0
  fi
  SHELVORA_PG_DIR=$(mktemp -d /tmp/shelvora-pg.XXXXXX)
  SHELVORA_PG_AS=()
  if [ "$(id -u)" -eq 0 ]; then
    # The server refuses to run as root.
    local user=postgres
    id -u "$user" >/dev/null 2>&1 || user=nobody
    chown "$user" "$SHELVORA_PG_DIR"
    chmod 755 "$SHELVORA_PG_DIR"
    SHELVORA_PG_AS=(runuser -u "$user" --)
  fi
  local port
  for port in $(shuf -i 20000-60000 -n 50); do
    (echo >/dev/tcp/127.0.0.1/"$port") 2>/dev/null || break
  done
  "${SHELVORA_PG_AS[@]}" "$bin/initdb" -D "$SHELVORA_PG_DIR/data" -U shelvora --auth=trust -E UTF8 --locale=C.UTF-8 >"$SHELVORA_PG_DIR/initdb.log" 2>&1 \
    || { cat "$SHELVORA_PG_DIR/initdb.log"; return 1; }
  # One role must give a password, as a school's server asks of its desks; the tests of what a desk
  # says without one connect as it. Everyone else is trusted.
  "${SHELVORA_PG_AS[@]}" sed -i '1i host all shelvora_password 127.0.0.1/32 scram-sha-256' "$SHELVORA_PG_DIR/data/pg_hba.conf"
  local flush="-c fsync=off -c synchronous_commit=off -c full_page_writes=off"
  [ "${SHELVORA_PG_DURABLE:-0}" = 1 ] && flush=""
  "${SHELVORA_PG_AS[@]}" "$bin/pg_ctl" -D "$SHELVORA_PG_DIR/data" -l "$SHELVORA_PG_DIR/server.log" -w \
    -o "-h 127.0.0.1 -p $port -k $SHELVORA_PG_DIR $flush -c max_connections=200" start >/dev/null \
    || { cat "$SHELVORA_PG_DIR/server.log"; return 1; }
  SHELVORA_PG_BIN=$bin
  export SHELVORA_TEST_POSTGRESQL="postgresql://shelvora@127.0.0.1:$port/postgres"
  trap shelvora_pg_stop EXIT
  echo "PostgreSQL for this run: $SHELVORA_TEST_POSTGRESQL"
}

shelvora_pg_stop() {
  [ -n "${SHELVORA_PG_DIR:-}" ] || return 0
  "${SHELVORA_PG_AS[@]}" "$SHELVORA_PG_BIN/pg_ctl" -D "$SHELVORA_PG_DIR/data" -m fast stop >/dev/null 2>&1 || true
  rm -rf "$SHELVORA_PG_DIR"
  SHELVORA_PG_DIR=
}
