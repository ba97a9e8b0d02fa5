#!/usr/bin/env bash
# Installs every Debian package that building, testing and running AccessArbiter needs.
# Idempotent: packages already present are left alone. Run as root, or with sudo available.
set -euo pipefail

PACKAGES=(
  # toolchain
  build-essential cmake ninja-build ccache clang-format pkg-config git
  # the fuzz preset: clang and its libFuzzer runtime
  clang-14 libclang-rt-14-dev
  # libraries
  qt6-base-dev qt6-base-dev-tools qt6-declarative-dev qt6-declarative-dev-tools
  qt6-wayland qt6-wayland-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-qpa-plugins
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
  qml6-module-qtquick-window qml6-module-qtquick-templates qml6-module-qtqml-workerscript
  qml6-module-qttest qml6-module-qtqml qml6-module-qtquick-shapes
  libfmt-dev libxkbcommon-dev libwayland-dev libgtest-dev libgmock-dev libbenchmark-dev
  # the keyboard set-up reaches the Wayland connection through Qt's platform native interface
  qt6-base-private-dev
  # hl-appmgr reports to systemd (sd_notify)
  libsystemd-dev
  # hl-settingsd: persistent stores in SQLite, the defaults file in JSON (JSON of hl-settings too)
  libsqlite3-dev nlohmann-json3-dev
  # its tests damage a store with the sqlite3 shell
  sqlite3
  # command lines of the tools (hl-session)
  libcli11-dev
  # runtime of the hosted platform: fonts, X server for real-window tests, image tools
  fontconfig fonts-dejavu-core xvfb xauth librsvg2-bin
  # the headless session of run.sh: real X clicks (xdotool), a screenshot (xwd, convert)
  xdotool x11-apps imagemagick
  # the Wayland session test: a real compositor (its X11 backend on Xvfb gives it a seat)
  weston
  # the JSON checks of the tool tests
  python3
  # the desktop tests: a real window manager and its tools, a terminal to work in, a screen reader's
  # AT-SPI client on a D-Bus session of the tests' own
  openbox wmctrl x11-utils xterm dbus at-spi2-core python3-pyatspi
  # the dialog benchmark: X events and XTEST input (libxcb), the one-shot dialog it is measured against
  libxcb1-dev libxcb-xtest0-dev zenity
  # the package: man pages from --help, the .deb's dependencies and its check, the units' check
  help2man dpkg-dev fakeroot file lintian systemd
)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#PACKAGES[@]} packages present"
  exit 0
fi

echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -q
$SUDO apt-get install -y -q --no-install-recommends "${missing[@]}"
