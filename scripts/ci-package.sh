#!/usr/bin/env bash
# CI: builds the Debian package from the default build (build/), checks it with lintian, installs it
# with apt-get as a user would, runs the installed programs from /usr/bin with HOME in a scratch
# folder, validates the installed menu entry, metainfo and manual pages, then removes the package.
# Run after `cmake --build --preset default`; needs root or sudo for apt-get.
set -euo pipefail
cd "$(dirname "$0")/.."

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/CMakeCache.txt)
deb="$PWD/build/mms-composer_${version}_$(dpkg --print-architecture).deb"
app_id=org.morvane.MmsComposer
scratch=$(mktemp -d)
mkdir -m 700 "$scratch/run"

step() { echo "== $*"; }
# Pipes end in `grep PATTERN >/dev/null`, not `grep -q`: grep -q stops reading at the first match, and
# under pipefail the writer's SIGPIPE would fail the check now and then.
removePackage() {
  $sudo env DEBIAN_FRONTEND=noninteractive apt-get remove -y -qq mms-composer >/dev/null || true
  rm -rf "$scratch"
}

step "cpack -G DEB"
rm -f "$deb"
(cd build && cpack -G DEB >/dev/null)
dpkg-deb -f "$deb" Depends | grep "fluid-soundfont-gm" >/dev/null || { echo "fluid-soundfont-gm is not a dependency"; exit 1; }

step "lintian"
lintian --allow-root --fail-on error "$deb"

step "apt-get install $deb"
trap removePackage EXIT
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$deb" >/dev/null

step "installed programs"
# A user's session: no workspace override, the data folder under the scratch HOME.
run() {
  env -u MMS_COMPOSER_HOME -u XDG_DATA_HOME -u DISPLAY -u WAYLAND_DISPLAY HOME="$scratch" \
    XDG_RUNTIME_DIR="$scratch/run" "$@"
}
[ "$(run /usr/bin/mmsc --version)" = "mmsc $version" ]
[ "$(run /usr/bin/mms-composer --version)" = "mms-composer $version" ]
run /usr/bin/mmsc --help | grep "^Commands:" >/dev/null
run QT_QPA_PLATFORM=offscreen /usr/bin/mms-composer --quit-after 1
workspace="$scratch/.local/share/Morvane/mms-composer"
for folder in UserData/MMS UserData/Picture UserData/Sound Temp/tmpJPG Temp/tmpMID; do
  [ -d "$workspace/$folder" ] || { echo "the composer made no $workspace/$folder"; exit 1; }
done
run /usr/bin/mmsc build --slide --text Hi --save greeting
[ "$(run /usr/bin/mmsc list | cut -f1)" = "greeting" ]
[ -f "$workspace/UserData/MMS/greeting.mmt" ]

step "desktop entry, metainfo, icons, manual pages"
desktop-file-validate "/usr/share/applications/$app_id.desktop"
appstreamcli validate --no-net "/usr/share/metainfo/$app_id.metainfo.xml"
for size in scalable/apps/$app_id.svg 48x48/apps/$app_id.png 128x128/apps/$app_id.png 256x256/apps/$app_id.png; do
  [ -f "/usr/share/icons/hicolor/$size" ] || { echo "missing icon $size"; exit 1; }
done
for page in mms-composer mmsc; do
  warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "/usr/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
  [ -z "$warnings" ] || { echo "$page.1: $warnings"; exit 1; }
done

step "apt-get remove mms-composer"
trap - EXIT
removePackage
[ ! -e /usr/bin/mms-composer ] && [ ! -e /usr/share/mms-composer ]
echo "package check passed: $deb"
