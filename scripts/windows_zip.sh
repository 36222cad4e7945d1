# shellcheck shell=sh
# The zip for Windows: the library, both programs, what hosts are built with, and the licences of all that
# is linked in. To be sourced, after common.sh, from the project's root.

# The packages whose code ends up in the programs; where a licence asks for the source of a file, that
# goes along.
linked_packages="libcli11-dev nlohmann-json3-dev libcsv-dev libminizip-dev libutf8proc-dev libxlsxwriter-dev
  libz-mingw-w64-dev mingw-w64-common g++-mingw-w64-x86-64-posix"
linked_licences="GPL-3 LGPL-2.1 MPL-2.0"
linked_sources="libcsv/libcsv.c libcsv/csv.h libxlsxwriter/third_party/tmpfileplus/tmpfileplus.c
  libxlsxwriter/include/xlsxwriter/third_party/tmpfileplus.h"

copy_licences() {
  mkdir -p "$1/sources"
  for package in $linked_packages; do
    zcat -f "/usr/share/doc/$package/copyright" >"$1/$package.txt"
  done
  for licence in $linked_licences; do
    cp "/usr/share/common-licenses/$licence" "$1/$licence.txt"
  done
  for file in $linked_sources; do
    cp "build/sources/$file" "$1/sources"
  done
  cat >"$1/README.txt" <<'END'
The programs and the library hold code of others. The licence of each stands here under the name of the
Debian package that it came from: the compiler's and the system's runtime (g++-mingw-w64-x86-64-posix,
with GCC's exception for its runtime, and mingw-w64-common), and in the programs the others.

libcsv is under the LGPL 2.1. Its source is in the folder sources; with it, or one that was changed, the
programs can be linked anew by scripts/build_windows.sh of kivstore's source. tmpfileplus, under the
MPL 2.0, is there too.
END
}

# zip_windows BITS TREE NAME: of what was built in TREE to NAME.zip in $output.
# shellcheck disable=SC2154
zip_windows() {
  built=$2/build/windows$1
  folder=$output/$3
  rm -rf "$folder" "$folder.zip"
  mkdir -p "$folder/bin" "$folder/lib" "$folder/include/kivstore" "$folder/docs"
  cp "$built/bin/kivstore.dll" "$built/bin/kivreport.exe" "$built/bin/kivadmin.exe" "$folder/bin"
  cp "$built/lib/libkivstore.dll.a" "$folder/lib"
  cp "$2/app/exports.def" "$folder/lib/kivstore.def"
  cp "$2/include/kivstore/general_proc.h" "$folder/include/kivstore"
  cp "$2/README.md" "$2/CHANGELOG.md" "$folder"
  cp "$2/LICENSE" "$folder/LICENSE.txt"
  cp -R "$2"/docs/*.md "$2/docs/pictures" "$folder/docs"
  cp -R "$2/examples" "$folder"
  copy_licences "$folder/licenses"
  # A host can be built of what is in it.
  [ "$1" = 64 ] && kind=x86_64 || kind=i686
  "$kind-w64-mingw32-gcc-posix" -o "$built/print_store.exe" "$folder/examples/print_store.c" \
    -I"$folder/include" -L"$folder/lib" -lkivstore
  chmod -R u=rwX,go=rX "$folder"
  find "$folder" -exec touch -d "@$SOURCE_DATE_EPOCH" {} +
  (cd "$output" && find "$3" | LC_ALL=C sort | TZ=UTC zip -qX "$3.zip" -@)
  rm -rf "$folder"
  echo "$folder.zip"
}

# From the packed source, so that what is released is one thing.
# shellcheck disable=SC2154
pack_windows() {
  need zip zip
  need_build_tools
  need_windows_tools
  area=$output/windows-build
  rm -rf "$area"
  mkdir -p "$area"
  tar xf "$output/$name.tar.gz" -C "$area"
  mkdir "$area/$name/build"
  ln -s "$PWD/build/sources" "$area/$name/build/sources"
  flags=-ffile-prefix-map=$area/$name=.
  build_options="-DCMAKE_C_FLAGS=$flags -DCMAKE_CXX_FLAGS=$flags
    -DCMAKE_EXE_LINKER_FLAGS_RELEASE=-s -DCMAKE_SHARED_LINKER_FLAGS_RELEASE=-s" \
    "$area/$name/scripts/build_windows.sh" 64 32
  for bits in 64 32; do
    zip_windows "$bits" "$area/$name" "$name-windows$bits"
  done
  rm -rf "$area"
}
