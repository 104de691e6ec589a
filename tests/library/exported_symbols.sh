#!/bin/sh
# Compares what a shared library exports with what its header declares.
# usage: exported_symbols.sh LIBRARY HEADER
set -eu
library=$1
header=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Declarations as nm prints them: one line each, types only, no parameter names.
sed 's,//.*,,' "$header" | tr '\n' ' ' | tr ';' '\n' |
  sed -n 's/.*CVT_EXPORT .*CVT_CALL \([A-Za-z0-9]*(.*)\) *$/\1/p' |
  sed -e 's/std::uint8_t/unsigned char/g' -e 's/std::uint16_t/unsigned short/g' \
      -e 's/std::int16_t/short/g' -e 's/std::int32_t/int/g' \
      -e 's/\([*a-z]\) [A-Za-z0-9]*\([,)]\)/\1\2/g' -e 's/  */ /g' -e 's/^Cvtr2r(.*/Cvtr2r/' |
  sort > "$work/declared"
nm -D --defined-only -C "$library" | sed 's/^[^ ]* [A-Za-z] //' | sort > "$work/exported"

test -s "$work/declared"
diff "$work/declared" "$work/exported" || {
  echo "declared in $(basename "$header"): <   exported by $(basename "$library"): >"
  exit 1
}
