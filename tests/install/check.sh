#!/bin/sh
# Installs a build tree, moves what was installed elsewhere, and builds and runs the examples against it: through
# the CMake package, linked to the static and to the shared library, and through pkg-config.
# usage: check.sh BUILD SOURCE LIBDIR WORK    environment: CMAKE, CXX
set -eu
build=$1
source=$2
libdir=$3
work=$4

fail() { echo "check.sh: $*" >&2; exit 1; }

rm -rf "$work"
mkdir -p "$work"
cd "$work"
"$CMAKE" --install "$build" --prefix "$work/first" > install.log
mv first moved
prefix=$work/moved

# Other compilers read ordinary object code only.
for archive in "$prefix/$libdir"/*.a; do
  if objdump -h "$archive" | grep -q 'gnu\.lto'; then fail "$archive holds code for link-time optimisation"; fi
done
nm -C "$prefix/$libdir/libcvtr2r.a" 2> nm.log | grep -q ' T Cvtr2r$' || fail "libcvtr2r.a holds no object code"

# The picture of the reference host is the measure for the example that is a host of its own.
"$CMAKE" -S "$source/examples" -B examples -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Debug > configure.log
"$CMAKE" --build examples > build.log || { cat build.log; fail "the examples cannot be built"; }
examples/dither_memory > picture.txt
[ "$(grep -c '^[.#]\{64\}$' picture.txt)" -eq 16 ] && sed -n 9p picture.txt | grep -q '^\.\.\..*####.*\.\.\.$' ||
  fail "dither_memory shows no dark spot on white: $(cat picture.txt)"
for example in own_host own_host_shared; do
  "examples/$example" | diff picture.txt - || fail "$example shows another picture"
done

if command -v pkg-config > /dev/null; then
  export PKG_CONFIG_PATH="$prefix/$libdir/pkgconfig"
  $CXX -std=c++20 "$source/examples/dither_memory.cpp" $(pkg-config --cflags --libs cvtr2r-pipeline) -o with_host
  ./with_host | diff picture.txt -
  $CXX -std=c++20 "$source"/examples/own_host/*.cpp $(pkg-config --cflags --libs cvtr2r) -o with_library
  LD_LIBRARY_PATH="$prefix/$libdir" ./with_library | diff picture.txt -
fi

# The tool, and the texts that are made from its tables.
[ -x "$prefix/bin/r2r" ] || exit 0
"$prefix/bin/r2r" --version > /dev/null
manual=$prefix/share/man/man1/r2r.1
"$prefix/bin/r2r" convert --help | sed -n 's/^  \(-[-a-z0-9]*\).*/\1/p' > options.txt
[ "$(wc -l < options.txt)" -gt 20 ] || fail "r2r convert --help lists no options"
while read -r option; do
  sed 's/\\-/-/g' "$manual" | grep -q -e "^.fB$option.fR" || fail "the manual page leaves out $option"
done < options.txt
if command -v mandoc > /dev/null; then mandoc -T lint -W error "$manual"; fi
if command -v bash > /dev/null; then
  bash "$source/tests/install/completion.bash" "$prefix/share/bash-completion/completions/r2r"
fi
