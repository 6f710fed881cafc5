#!/usr/bin/env bash
# Builds the two libFuzzer targets with clang (AddressSanitizer + UndefinedBehaviorSanitizer),
# seeds them with every Jet statement of src/ and tests/ and runs each for the given number of
# seconds (default 60). Any finding stops the script with a non-zero exit; the input that found
# it is left in build-fuzz/ (crash-*, timeout-*, oom-*).
set -euo pipefail
cd "$(dirname "$0")/.."
SECONDS_EACH=${1:-60}
bash tools/install-deps.sh
bash tools/install-deps.sh --fuzz
cmake -S . -B build-fuzz -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
      -DSHELVORA_FUZZ=ON > build-fuzz.configure.log 2>&1 || { cat build-fuzz.configure.log; exit 1; }
cmake --build build-fuzz --target fuzz_translate fuzz_execute fuzz_seeds
rm -rf build-fuzz/seeds
build-fuzz/tests/fuzz/fuzz_seeds . build-fuzz/seeds
export ASAN_OPTIONS=detect_leaks=0
status=0
for target in translate execute; do
  mkdir -p "build-fuzz/corpus-$target"
  echo "== fuzz_$target for ${SECONDS_EACH} s =="
  rc=0
  (cd build-fuzz && tests/fuzz/fuzz_$target -max_total_time="$SECONDS_EACH" -max_len=4096 -timeout=10 -rss_limit_mb=4096 \
      -dict=../tests/fuzz/jet.dict -print_final_stats=1 "corpus-$target" seeds) > "build-fuzz/fuzz-$target.log" 2>&1 || rc=$?
  grep -E "INITED|DONE|stat::number_of_executed_units|stat::average_exec_per_sec|stat::new_units_added" "build-fuzz/fuzz-$target.log" || true
  if [ "$rc" -ne 0 ]; then
    echo "fuzz_$target found a problem (exit $rc):"
    tail -n 60 "build-fuzz/fuzz-$target.log"
    status=1
  fi
done
exit $status
