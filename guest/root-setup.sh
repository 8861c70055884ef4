#!/bin/sh
# Settings of the cached Debian root: run once per package list, as mmdebstrap's customize hook ($1 is
# the root). Anything that differs between images (accounts, host keys, KOVO) is done per build.
set -eu
root=$1

# The console sets en_US.UTF-8 itself, so the locale must exist; it is also the system default.
sed -i 's/^# *\(en_US\.UTF-8 UTF-8\)/\1/' "$root/etc/locale.gen"
chroot "$root" locale-gen >/dev/null
echo 'LANG=en_US.UTF-8' >"$root/etc/default/locale"

# The lab has no way out: apt's daily runs would only spend the emulated CPUs on failing downloads.
for timer in apt-daily.timer apt-daily-upgrade.timer; do
  ln -sf /dev/null "$root/etc/systemd/system/$timer"
done
