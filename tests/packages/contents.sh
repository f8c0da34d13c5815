#!/usr/bin/env bash
# The Debian packages: which there are, what lies in them, what they need; then callers built against what they unpack to.
#
# usage: contents.sh PACKAGES VERSION SOURCES C_COMPILER C++_COMPILER
set -euo pipefail
packages=$1
version=$2
sources=$3
compilers=("${@:4}")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
complain() {
    printf '%s\n' "$@" >&2
    exit 1
}

# Package, what it must depend on, and files that must lie in it, all as extended regular expressions.
cat >"$scratch/expected" <<EXPECTED
libqrylib1|libc6 |lib/[^/]*/libqrylib\.so\.1 lib/[^/]*/libqryplatform\.so\.[0-9]*
libqrylib-dev|libqrylib1 \(= $version\)|include/qrylib/qrylib\.h include/qrylib/qrylib\.hpp include/qrylib-platform/platform/host/qryhost\.h lib/[^/]*/libqrylib\.so lib/[^/]*/pkgconfig/qrylib\.pc lib/[^/]*/cmake/qrylib/qrylibConfig\.cmake
libqrytext1|libqrylib1 \(>= $version\)|lib/[^/]*/libqrytext\.so\.1
libqrytext-dev|libqrytext1 \(= $version\), libqrylib-dev \(= $version\)|include/qrytext/qrytext\.h include/qrytext/qrytext\.hpp lib/[^/]*/libqrytext\.so lib/[^/]*/pkgconfig/qrytext\.pc lib/[^/]*/cmake/qrylib/qrytextTargets\.cmake share/doc/libqrytext-dev/schemas/run\.json share/doc/libqrytext-dev/examples/companion\.c
libqrylib-doc||share/doc/libqrylib-doc/html/index\.html share/man/man3/qrytext\.3\.gz
python3-qrylib|libqrytext1 |lib/python3/dist-packages/qrylib/__init__\.py
qrylib-field|libqrylib1 |bin/qrylib-snapshot share/man/man1/qrylib-snapshot\.1(\.gz)?
qrysh|libqrylib1 \(>= $version\)|bin/qrysh share/man/man1/qrysh\.1(\.gz)?
EXPECTED

count=0
while IFS='|' read -r package needs files; do
    count=$((count + 1))
    deb=("$packages/${package}_${version}"_*.deb)
    [ -e "${deb[0]}" ] || complain "there is no package $package"
    depends=$(dpkg-deb -f "${deb[0]}" Depends)
    [[ $depends =~ $needs ]] || complain "$package depends on: $depends"
    dpkg-deb -x "${deb[0]}" "$scratch/$package"
    (cd "$scratch/$package" && find . ! -type d | sed 's|^\./||' | sort) >"$scratch/$package.files"
    for file in $files share/doc/"$package"/copyright share/doc/"$package"/changelog.gz; do
        grep -xE "usr/$file" "$scratch/$package.files" >/dev/null || complain "$package has no usr/$file"
    done
    mkdir -p "$scratch/all"
    cp -a "$scratch/$package/usr/." "$scratch/all"
done <"$scratch/expected"
[ "$(find "$packages" -maxdepth 1 -name '*.deb' | wc -l)" -eq "$count" ] || complain "there are other packages: $(ls "$packages")"

outside=$(grep -hv '^usr/' "$scratch"/*.files || true)
[ -z "$outside" ] || complain "outside of /usr: $outside"
twice=$(sort "$scratch"/*.files | uniq -d)
[ -z "$twice" ] || complain "in two packages: $twice"

# The companion runs statements through the library of the other package.
needed=$(readelf -d "$scratch"/libqrytext1/usr/lib/*/libqrytext.so.1)
[[ $needed == *'[libqrytext.so.1]'*  && $needed == *'[libqrylib.so.1]'* ]] || complain "libqrytext.so.1 needs: $needed"

"$sources/tests/c-api/run.sh" "$scratch/all" "$sources" "${compilers[@]}" "" ""
