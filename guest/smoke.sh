#!/usr/bin/env bash
# Smoke test of the Debian 12 guest: builds the image (from the cache when it can), boots the guest with
# its serial console on a pseudo-terminal, and checks through the guest agent and the console that it
# is the machine KOVO is meant to run on. Exits non-zero at the first failure and leaves its directory
# for a look; prints the time of each stage.
#
#   guest/smoke.sh [--deb PATH]        (as root; KOVO_VM_CACHE chooses the root cache)
set -euo pipefail

here=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")" && pwd)
vm=$here/kovo-vm
image_args=()
[ "${1:-}" != --deb ] || image_args=(--deb "${2:?--deb needs a path}")

work=$(mktemp -d "${TMPDIR:-/tmp}/kovo-vm-smoke.XXXXXX")
dir=$work/vm
console=$work/console.typescript
runner=""
ok=0

now_ms() { echo $(($(date +%s%N) / 1000000)); }
since() { printf '%.1f' "$(($(now_ms) - $1))e-3"; }
say() { echo "smoke: $*"; }
fail() {
  echo "smoke: FAIL: $*" >&2
  exit 1
}

finish() {
  local status=$?
  exec 3>&- 2>/dev/null || true
  if [ -n "$runner" ] && kill -0 "$runner" 2>/dev/null; then
    "$vm" stop "$dir" || true
    wait "$runner" 2>/dev/null || true
  fi
  if [ "$ok" = 1 ]; then
    rm -rf "$work"
  else
    echo "smoke: kept $work (console: $console, lab: $dir/dnsmasq.log)" >&2
  fi
  exit "$status"
}
trap finish EXIT

# until SECONDS COMMAND...: retries the command until it succeeds or the time is up.
until_ok() {
  local deadline=$(($(now_ms) + $1 * 1000))
  shift
  until "$@" >/dev/null 2>&1; do
    [ "$(now_ms)" -lt "$deadline" ] || return 1
    sleep 1
  done
}
on_console() { grep -aq -- "$1" "$console"; }
type_line() { printf '%s\r' "$1" >&3; }
guest() { "$vm" exec "$dir" -- "$@"; }

t=$(now_ms)
"$vm" image "${image_args[@]}"
say "image ready in $(since "$t") s"
kovo=$(sed -n 's/^kovo=//p' "$here/../build/guest/kovo-guest.info")

# The console's keyboard is a fifo held open here, so the guest sees no end of input.
mkfifo "$work/keys"
exec 3<>"$work/keys"
boot=$(now_ms)
script -qfc "$(printf '%q ' "$vm" run --dir "$dir")" "$console" <"$work/keys" >/dev/null 2>&1 &
runner=$!

"$vm" wait "$dir" --timeout 300 || fail "the guest agent did not answer"
say "guest agent answers $(since "$boot") s after start"

if [ -z "$kovo" ]; then
  until_ok 120 on_console "kovo-guest login:" || fail "no login prompt on the serial console"
  say "login prompt on the serial console $(since "$boot") s after start"
else
  until_ok 120 guest systemctl is-active --quiet "kovo@ttyS0.service" || fail "kovo@ttyS0 is not active"
  # The serial line's login prompt is masked, so the host name in what the serial line printed (qemu's
  # log of it, without this script's banner) is KOVO's welcome screen.
  until_ok 60 grep -aq kovo-guest "$dir/console.log" || fail "KOVO drew nothing on the serial console"
  say "kovo $kovo on the serial console $(since "$boot") s after start"
fi

vendor=$(guest cat /sys/class/dmi/id/sys_vendor)
[ "$vendor" = QEMU ] || fail "DMI vendor is '$vendor', not QEMU"
say "DMI sys_vendor: $vendor"

# exec relays the command's output streams and exit status.
out=$(guest sh -c 'echo out; echo err >&2; exit 3' 2>"$work/err") && fail "exit status 3 came back as 0" ||
  status=$?
[ "$status" = 3 ] && [ "$out" = out ] && [ "$(cat "$work/err")" = err ] ||
  fail "exec relayed status $status, stdout '$out', stderr '$(cat "$work/err")'"
guest /nonexistent/program 2>/dev/null && fail "a missing program ran" || status=$?
[ "$status" = 127 ] || fail "a missing program gave status $status, not 127"
say "exec relays stdout, stderr and the exit status"

t=$(now_ms)
for _ in 1 2 3 4 5; do guest true; done
say "exec of true: $(printf '%.2f' "$((($(now_ms) - t) / 5))e-3") s each (mean of 5)"

# NetworkManager configures both NICs by DHCP from the lab by default.
for nic in ens3 ens4; do
  until_ok 90 sh -c "'$vm' exec '$dir' -- ip -4 -o addr show dev $nic | grep -q 'inet 192\.168\.77\.'" ||
    fail "$nic has no DHCPv4 address from the lab: $(guest ip -4 -o addr show dev $nic)"
  until_ok 60 sh -c "'$vm' exec '$dir' -- ip -6 -o addr show dev $nic scope global | grep -q 'inet6 fd77:6b6f:766f:77:'" ||
    fail "$nic has no address on the lab's IPv6 prefix: $(guest ip -6 -o addr show dev $nic)"
done
guest ip -4 -o addr | grep -o 'ens[34] *inet 192\.168\.77\.[0-9]*' | sed 's/^/smoke: /'
grep -qi '52:54:00:77:00:03' "$dir/dnsmasq.leases" && grep -qi '52:54:00:77:00:04' "$dir/dnsmasq.leases" ||
  fail "the lab's lease file lacks a NIC: $(cat "$dir/dnsmasq.leases")"
say "ens3 and ens4 hold DHCPv4 leases and IPv6 addresses from the lab $(since "$boot") s after start"
resolved=$(guest getent ahostsv4 gateway.lab | awk 'NR == 1 { print $1 }')
[ "$resolved" = 192.168.77.1 ] || fail "gateway.lab resolved to '$resolved' through the lab's DNS"
say "the lab's DNS answers the guest: gateway.lab is $resolved"

if [ -z "$kovo" ]; then
  # The serial console is this pseudo-terminal: log in there as the second account.
  type_line operator
  until_ok 30 on_console "Password:" || fail "no password prompt on the serial console"
  type_line Kovo-Demo1
  marker="serial-$RANDOM"
  sleep 2
  type_line "echo $marker-\$(id -un)-\$(tty)"
  until_ok 30 on_console "$marker-operator-/dev/ttyS0" || fail "logging in as operator on the serial console failed"
  say "operator logged in on the serial console (ttyS0)"
fi

ns=$(cat "$dir/ns")
qemu_pid=$(cat "$dir/qemu.pid")
dnsmasq_pid=$(cat "$dir/dnsmasq.pid")
t=$(now_ms)
# The agent may end with the guest before it reports poweroff's status.
guest poweroff 2>/dev/null || true
for _ in $(seq 120); do
  kill -0 "$runner" 2>/dev/null || break
  sleep 0.5
done
kill -0 "$runner" 2>/dev/null && fail "run did not end after poweroff"
wait "$runner" || fail "run ended with status $?"
runner=""
say "poweroff ended run in $(since "$t") s"
ip netns list | grep -q -- "^$ns\b" && fail "the lab namespace $ns is still there"
kill -0 "$qemu_pid" 2>/dev/null && fail "qemu ($qemu_pid) still runs"
kill -0 "$dnsmasq_pid" 2>/dev/null && fail "dnsmasq ($dnsmasq_pid) still runs"
[ ! -e "$dir/ns" ] && [ ! -e "$dir/qemu.pid" ] || fail "run left its state files behind"
say "the lab namespace, qemu and dnsmasq are gone"

ok=1
say "passed in $(since "$boot") s from start of the guest"
