#!/usr/bin/env bash
# Builds the Debian packages from this build (no recompilation: cpack only
# installs what is built), unpacks them into a scratch root with dpkg -x,
# checks their contents and dependencies, then builds the GLFW example
# and the minimal host against the unpacked package alone and runs a frame
# of each.
#   package_test.sh BUILD_DIR SOURCE_DIR VERSION INSTALL_PREFIX LIBDIR
set -euo pipefail
build=$1 src=$2 version=$3 prefix=$4 libdir=$5
work="$build/package-test"
rm -rf "$work"
mkdir -p "$work/root"
fail() { echo "package test: $*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/debs" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; fail "cpack failed"; }
arch=$(dpkg --print-architecture)
rt="$work/debs/kxrender_${version}-1_${arch}.deb"
dev="$work/debs/kxrender-dev_${version}-1_${arch}.deb"
[ -f "$rt" ] && [ -f "$dev" ] || { ls "$work/debs"; fail "expected kxrender and kxrender-dev packages"; }

# Dependencies: the runtime's come from the library's own needs, the dev
# package pins the runtime of the same version.
[ "$(dpkg-deb -f "$rt" Version)" = "${version}-1" ] || fail "runtime package version"
for d in libepoxy0 libegl1 libgl1 libglu1-mesa libx11-6 libpng16-16 libstdc++6 libegl-mesa0; do
  dpkg-deb -f "$rt" Depends | grep -q "\b$d\b" || fail "kxrender does not depend on $d: $(dpkg-deb -f "$rt" Depends)"
done
dpkg-deb -f "$dev" Depends | grep -qx "kxrender (= ${version}-1)" || fail "kxrender-dev Depends: $(dpkg-deb -f "$dev" Depends)"

# Each file in the package it belongs to.
# Listings are read whole into variables: with pipefail, `grep -q` closing a
# pipe early would fail the writer with SIGPIPE now and then.
listing() { dpkg-deb -c "$1" | awk '{print $6}'; }
rt_files=$(listing "$rt") dev_files=$(listing "$dev")
files_of() { if [ "$1" = "$rt" ]; then echo "$rt_files"; else echo "$dev_files"; fi; }
has() { grep -qx ".${prefix}/$2" <<<"$(files_of "$1")" || fail "$(basename "$1") lacks $2"; }
lacks() { ! grep -qx ".${prefix}/$2" <<<"$(files_of "$1")" || fail "$(basename "$1") has $2"; }
has "$rt" "$libdir/libkxrender.so.0"
has "$rt" "$libdir/libkxrender.so.$version"
has "$rt" "share/kxrender/unicode.cxf.NOTICE"
has "$rt" "share/kxrender/unicode.cxf"
has "$rt" "share/doc/kxrender/LICENSE"
has "$rt" "bin/kxdemo"
has "$rt" "bin/kxtrace"
lacks "$rt" "$libdir/libkxrender.so"
lacks "$rt" "include/kxrender/CSceneMgr.h"
has "$dev" "$libdir/libkxrender.so"
has "$dev" "include/kxrender/CSceneMgr.h"
has "$dev" "include/kxrender/Version.h"
has "$dev" "$libdir/cmake/kxrender/kxrenderConfig.cmake"
has "$dev" "$libdir/pkgconfig/kxrender.pc"

dpkg -x "$rt" "$work/root"
dpkg -x "$dev" "$work/root"
root="$work/root$prefix"
soname=$(objdump -p "$root/$libdir/libkxrender.so.$version" | awk '$1 == "SONAME" {print $2}')
[ "$soname" = "libkxrender.so.0" ] || fail "SONAME is '$soname', not libkxrender.so.0"
pc=$(PKG_CONFIG_PATH="$root/$libdir/pkgconfig" pkg-config --modversion kxrender)
[ "$pc" = "$version" ] || fail "pkg-config version $pc"

# The example sees only the unpacked package, never the build tree.
cmake -S "$src/examples" -B "$work/example" -DCMAKE_PREFIX_PATH="$root" \
  -DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF >"$work/example.log" 2>&1 || { cat "$work/example.log"; fail "configure"; }
grep -qx "kxrender_DIR:PATH=$root/$libdir/cmake/kxrender" "$work/example/CMakeCache.txt" || fail "found another kxrender"
cmake --build "$work/example" >>"$work/example.log" 2>&1 || { cat "$work/example.log"; fail "example build"; }
out=$(LD_LIBRARY_PATH="$root/$libdir" "$work/example/glfw_host" --once) || fail "example run: $out"
[ "$out" = "kxrender $version" ] || fail "example printed '$out'"
LD_LIBRARY_PATH="$root/$libdir" "$work/example/minimal_host" || fail "minimal host drew nothing"
echo "package test: kxrender $version packages install and build the examples"
