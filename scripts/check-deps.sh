#!/usr/bin/env bash
# Checks that every #include "subsystem/..." in src/ points down the layers, never up or sideways:
#   model <- common <- package <- store <- composer;  common <- image, sound <- composer;
#   sound <- video <- composer;
#   store <- send (which the composer may use).
# A widgets/ folder may use what its subsystem may use, its own widgets and common/widgets;
# composer/widgets and app may use everything. Prints each wrong-way include and fails on any.
set -euo pipefail
cd "$(dirname "$0")/../src"

allowed() {
  case "$1" in
    model) echo "model" ;;
    common) echo "common model" ;;
    package) echo "package common model" ;;
    store) echo "store package common model" ;;
    send) echo "send store package common model" ;;
    image | sound) echo "$1 common model" ;;
    video) echo "video sound common model" ;;
    composer) echo "composer send store package image sound video common model" ;;
  esac
}

status=0
for dir in */ */widgets/; do
  dir=${dir%/}
  case "$dir" in app | composer/widgets) continue ;; esac
  subsystem=${dir%%/*}
  ok=" $(allowed "$subsystem") "
  [[ "$dir" == */widgets ]] && ok+=" $subsystem/widgets common/widgets "
  for file in "$dir"/*.h "$dir"/*.cpp; do
    [ -e "$file" ] || continue
    while IFS= read -r target; do
      layer=${target%/*}
      if [[ "$ok" != *" $layer "* ]]; then
        echo "$file: includes $target"
        status=1
      fi
    done < <(sed -n 's/^#include "\([a-z_]*\(\/widgets\)\{0,1\}\/[^"]*\)".*/\1/p' "$file")
  done
done
exit $status
