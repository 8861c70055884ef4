#!/bin/sh
# Settings of the cached Debian root, as mmdebstrap hooks (ROOT is the root being built):
#   root-setup.sh essential ROOT   before the packages beyond the essential set are installed
#   root-setup.sh customize ROOT   after all packages are installed
# Anything that differs between images (accounts, host keys, KOVO) is done per build.
set -eu
stage=$1
root=$2

case $stage in
essential)
  # The guest boots from a virtio disk with ext4 on it. An initramfs with only those drivers unpacks
  # and starts in a fraction of the time of one with most of the kernel's drivers (about 10 s less on
  # emulated CPUs). Set before the kernel's package is installed so its one initramfs build uses it.
  mkdir -p "$root/etc/initramfs-tools/conf.d" "$root/etc/initramfs-tools/hooks"
  echo 'MODULES=list' >"$root/etc/initramfs-tools/conf.d/kovo-guest.conf"
  cat >"$root/etc/initramfs-tools/hooks/kovo-guest" <<'HOOK'
#!/bin/sh
[ "$1" = prereqs ] && exit 0
. /usr/share/initramfs-tools/hook-functions
manual_add_modules virtio_pci virtio_blk ext4
HOOK
  chmod +x "$root/etc/initramfs-tools/hooks/kovo-guest"
  ;;
customize)
  # The console sets en_US.UTF-8 itself, so the locale must exist; it is also the system default.
  sed -i 's/^# *\(en_US\.UTF-8 UTF-8\)/\1/' "$root/etc/locale.gen"
  chroot "$root" locale-gen >/dev/null
  echo 'LANG=en_US.UTF-8' >"$root/etc/default/locale"

  # The lab has no way out: apt's daily runs would only spend the emulated CPUs on failing downloads.
  for timer in apt-daily.timer apt-daily-upgrade.timer; do
    ln -sf /dev/null "$root/etc/systemd/system/$timer"
  done
  ;;
*)
  echo "root-setup.sh: unknown stage $stage" >&2
  exit 2
  ;;
esac
