# Shared by the scripts/build-<name>-mingw.sh scripts: fetches a Debian source
# package and keeps the cross-built result in a per-user cache outside the
# clone, one folder per library and Debian source version:
#   ${XDG_CACHE_HOME:-$HOME/.cache}/tarni-cross/<name>-<version>/{include,lib,bin}
# A folder counts as built only once it holds the .complete stamp, so an
# interrupted build is redone rather than reused.
# Source packages are enabled for the same archive the machine already uses:
# the deb-src entries are derived from the machine's own apt sources, so no
# host name is written into the repository.

tarni_cross_root=${XDG_CACHE_HOME:-$HOME/.cache}/tarni-cross
tarni_cross_here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
tarni_cross_toolchain=$tarni_cross_here/cmake/mingw-w64-x86_64.cmake
tarni_cross_start=$(date +%s)

# Prints how long the calling script has run so far.
tarni_cross_elapsed() {
  local s=$(( $(date +%s) - tarni_cross_start ))
  printf '%dm%02ds' $((s / 60)) $((s % 60))
}

tarni_cross_enable_deb_src() {
  local pkg=$1 sudo="" src_list=/etc/apt/sources.list.d/tarni-deb-src.sources tmp f
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  apt-cache showsrc "$pkg" 2>/dev/null | grep -q '^Version:' && return 0
  tmp=$(mktemp)
  for f in /etc/apt/sources.list.d/*.sources; do
    [ "$f" = "$src_list" ] && continue
    # Only Debian's own archive: stanzas signed by the Debian archive keyring.
    awk 'BEGIN{RS=""; ORS="\n\n"} /debian-archive-keyring/ { sub(/Types: deb\n/, "Types: deb-src\n"); print }' "$f" >>"$tmp"
  done
  if [ -f /etc/apt/sources.list ]; then
    grep -E '^deb .*debian' /etc/apt/sources.list | sed 's/^deb /deb-src /' >"$tmp.list" || true
    [ -s "$tmp.list" ] && $sudo cp "$tmp.list" /etc/apt/sources.list.d/tarni-deb-src.list
  fi
  [ -s "$tmp" ] && $sudo cp "$tmp" "$src_list"
  rm -f "$tmp" "$tmp.list"
  $sudo apt-get update -qq
}

# tarni_cross_prepare NAME SOURCE-PACKAGE [BUILT-AGAINST]
# Sets tarni_cross_prefix to the cache folder. Returns 0 when a complete build
# of one of the archive's versions is cached already (newest first); otherwise
# fetches the newest version whose source can be downloaded (the newest may
# exist only as a binary in the security archive), unpacks it with Debian's
# patches applied, sets tarni_cross_src and tarni_cross_work and returns 1.
# BUILT-AGAINST (such as openssl-3.0.20-1~deb12u2) names what the build links
# and becomes part of the folder name (<name>-<version>+<built-against>), so
# that a new version of it makes a new build instead of reusing the old one.
tarni_cross_prepare() {
  local name=$1 pkg=$2 suffix=${3:++$3} v work
  tarni_cross_enable_deb_src "$pkg"
  local versions
  versions=$(apt-cache showsrc "$pkg" | awk '/^Version:/ {print $2}' | sort -uVr)
  [ -n "$versions" ] || { echo "build-$name-mingw: no source package $pkg in the archive" >&2; exit 1; }
  for v in $versions; do
    if [ -f "$tarni_cross_root/$name-$v$suffix/.complete" ]; then
      tarni_cross_prefix=$tarni_cross_root/$name-$v$suffix
      return 0
    fi
  done
  mkdir -p "$tarni_cross_root/.work"
  for v in $versions; do
    work=$tarni_cross_root/.work/$name-$v$suffix
    rm -rf "$work"; mkdir -p "$work"
    if (cd "$work" && apt-get source --download-only "$pkg=$v" >/dev/null 2>&1); then
      (cd "$work" && dpkg-source -x --no-check "${pkg}_${v#*:}.dsc" src >/dev/null)
      tarni_cross_prefix=$tarni_cross_root/$name-$v$suffix
      tarni_cross_src=$work/src
      tarni_cross_work=$work
      rm -rf "$tarni_cross_prefix"
      mkdir -p "$tarni_cross_prefix"
      echo "build-$name-mingw: building $pkg $v into $tarni_cross_prefix"
      return 1
    fi
    rm -rf "$work"
  done
  echo "build-$name-mingw: no source of $pkg could be fetched" >&2
  exit 1
}

# Prints the newest complete cache folder of NAME (empty when there is none).
tarni_cross_cached() {
  local d
  # A version starts with a digit: openssl-* must not match openssl-static-*.
  for d in $(ls -d "$tarni_cross_root/$1"-[0-9]* 2>/dev/null | sort -Vr); do
    [ -f "$d/.complete" ] && { echo "$d"; return 0; }
  done
}

# Marks the cache folder complete, removes the sources and reports the time.
tarni_cross_finish() {
  local name=$1
  touch "$tarni_cross_prefix/.complete"
  rm -rf "$tarni_cross_work"
  echo "build-$name-mingw: installed into $tarni_cross_prefix in $(tarni_cross_elapsed)"
}
