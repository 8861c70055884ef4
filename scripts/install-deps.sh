#!/usr/bin/env bash
# Installs the Debian packages KOVO needs to build, run on the simulated host and test.
# Runs apt-get as root, through sudo otherwise; does nothing when everything is present.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  libncurses-dev ncurses-term libpam0g-dev
  # Boost.Regex is header-only from 1.76: no shared library and no ICU to load at start-up
  libboost1.81-dev nlohmann-json3-dev
  libmnl-dev libsystemd-dev libvirt-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  libvterm-dev libfaketime faketime
  clang libclang-rt-dev clang-format-14
  util-linux iproute2 dnsmasq-base less openssl openssh-client procps locales
  # the start-up benchmark's yardsticks (bench/)
  whiptail dialog
  # the Debian package (scripts/package.sh) and the check of its manual page (tests/package)
  dpkg-dev groff-base man-db
  # the Debian 12 guest (guest/kovo-vm): its root, the x86 emulator alone, overlays, the guest agent client
  mmdebstrap qemu-system-x86 qemu-utils e2fsprogs python3
  # the network lab (tests/lab/nm-lab): a bus and a host-name service of its own, and what Debian's
  # NetworkManager and nmcli link (the package itself is unpacked below, never installed)
  dbus systemd iputils-ping libndp0 libnm0 libjansson4 libteamdctl0 libcurl3-gnutls libpsl5 libreadline8 libglib2.0-0
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done

as_root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  as_root apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

# NetworkManager, ifupdown and its DHCP client for the network lab, unpacked from Debian's packages into
# build/nm-root: installed, they would start on a machine that runs systemd and take over its network.
nm_root="$(cd "$(dirname "$0")/.." && pwd)/build/nm-root"
if [ ! -x "$nm_root/usr/sbin/NetworkManager" ] || [ ! -x "$nm_root/sbin/dhclient" ]; then
  download=$(mktemp -d)
  # apt downloads as its own user where it can
  if [ "$(id -u)" -eq 0 ] && id _apt >/dev/null 2>&1; then chown _apt "$download"; fi
  # A machine that had every package already may have no package lists yet.
  (cd "$download" && apt-get download -qq network-manager ifupdown isc-dhcp-client) ||
    { as_root apt-get update -qq && (cd "$download" && apt-get download -qq network-manager ifupdown isc-dhcp-client); }
  rm -rf "$nm_root"
  mkdir -p "$nm_root"
  for package in "$download"/*.deb; do dpkg-deb -x "$package" "$nm_root"; done
  rm -rf "$download"
fi

# The console sets the en_US.UTF-8 locale; make sure it exists.
if ! locale -a 2>/dev/null | grep -qi '^en_US\.utf-\?8$'; then
  as_root sed -i 's/^# *en_US.UTF-8 UTF-8/en_US.UTF-8 UTF-8/' /etc/locale.gen
  grep -q '^en_US.UTF-8 UTF-8' /etc/locale.gen || echo 'en_US.UTF-8 UTF-8' | as_root tee -a /etc/locale.gen >/dev/null
  as_root locale-gen >/dev/null
fi
