#!/usr/bin/env bash
# check_install.sh BUILD SOURCE: installs the build into a throw-away folder as a distribution would (prefix /usr) and
# checks what desktops and software centres read, that the installed program starts from the install tree alone, and
# that the Debian package made from the build depends on the package of every QML module the program imports.
set -euo pipefail
build=$1
source=$2
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT

DESTDIR=$stage/root cmake --install "$build" --prefix /usr >/dev/null
usr=$stage/root/usr
desktop-file-validate "$usr/share/applications/org.telverra.Telverra.desktop"
appstreamcli validate --no-net "$usr/share/metainfo/org.telverra.Telverra.metainfo.xml" >/dev/null
test -s "$usr/share/icons/hicolor/scalable/apps/org.telverra.Telverra.svg"
test -s "$usr/share/icons/hicolor/symbolic/apps/org.telverra.Telverra-symbolic.svg"
grep -qx 'Exec=/usr/bin/telverra --gapplication-service' "$usr/share/dbus-1/services/org.telverra.Telverra.service"
test -s "$usr/share/telverra/Info.ini.example"
echo "installed files: valid"

home=$stage/home
mkdir -p "$home"
HOME=$home XDG_DATA_HOME=$home/.local/share XDG_CONFIG_HOME=$home/.config QT_QPA_PLATFORM=offscreen \
    "$usr/bin/telverra" --self-test | tee "$stage/self-test.out"
grep -q ', 0 failed' "$stage/self-test.out"

(cd "$build" && cpack -G DEB -B "$stage/package" >/dev/null)
depends=$(dpkg-deb -f "$stage"/package/telverra_*.deb Depends)
echo "Depends: $depends"
# The QML modules' packages, and the Wayland platform plugin, without which a Wayland session gets no window.
for package in $("$source/scripts/qml-depends" "$source/Telverra") qt6-wayland; do
    grep -Eq "(^|, )$package( |,|$)" <<<"$depends" || { echo "the package does not depend on $package" >&2; exit 1; }
done
echo "every QML import's package and the Wayland platform are in Depends"
# The offline city database is linked; the position service and the sayings are recommended, not required.
grep -Eq '(^|, )libgeonames0( |,|$)' <<<"$depends" || { echo "the package does not depend on libgeonames0" >&2; exit 1; }
recommends=$(dpkg-deb -f "$stage"/package/telverra_*.deb Recommends)
for package in geoclue-2.0 fortunes-min fortunes-es; do
    grep -Eq "(^|, )$package( |,|$)" <<<"$recommends" || { echo "the package does not recommend $package" >&2; exit 1; }
done
# Evolution Data Server's services are recommended; only the library its module links is depended on.
if compgen -G "$usr/lib/telverra/telverra-eds.so" >/dev/null || compgen -G "$usr/lib/*/telverra/telverra-eds.so" >/dev/null; then
    grep -Eq "(^|, )evolution-data-server( |,|$)" <<<"$recommends" || { echo "evolution-data-server is not recommended" >&2; exit 1; }
    grep -Eq "(^|, )libebook-1\.2-21( |,|$)" <<<"$depends" || { echo "the package does not depend on libebook" >&2; exit 1; }
    ! grep -Eq "(^|, )evolution-data-server( |,|$)" <<<"$depends" || { echo "evolution-data-server is a dependency" >&2; exit 1; }
fi
echo "Recommends: $recommends"
