#!/usr/bin/env bash
# Installs the build tree given as $1 into a scratch DESTDIR with the host's prefix and checks what a
# host needs: exactly the console's files, with their modes, a unit systemd accepts that can never give
# up, the PAM service that counts failures, and a manual page that renders without warnings.
set -uo pipefail
build=$(cd "$1" && pwd)
dest=$(mktemp -d "$build/package-test.XXXXXX")
trap 'rm -rf "$dest"' EXIT
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

DESTDIR="$dest" cmake --install "$build" --prefix /usr >"$dest.log" 2>&1 || {
  cat "$dest.log"
  rm -f "$dest.log"
  exit 1
}
rm -f "$dest.log"

# Exactly these files: nothing of the simulated host or the tests.
expected="/etc/pam.d/kovo 644
/usr/lib/systemd/journald.conf.d/kovo.conf 644
/usr/lib/systemd/system/kovo@.service 644
/usr/libexec/kovo/kovo-host 755
/usr/sbin/kovo 755
/usr/share/man/man8/kovo.8.gz 644"
actual=$(cd "$dest" && find . -type f -printf '/%P %m\n' | sort)
[ "$actual" = "$expected" ] || fail "installed files and modes differ:"$'\n'"$actual"

unit="$dest/usr/lib/systemd/system/kovo@.service"
unit_section=$(sed -n '/^\[Unit\]/,/^\[/p' "$unit")
grep -qx 'StartLimitIntervalSec=0' <<<"$unit_section" || fail "no StartLimitIntervalSec=0 in [Unit]"
grep -Eq '^Conflicts=(.* )?getty@%i\.service( |$)' <<<"$unit_section" || fail "no Conflicts= with getty@%i"
grep -Eq '^Conflicts=(.* )?serial-getty@%i\.service( |$)' <<<"$unit_section" ||
  fail "no Conflicts= with serial-getty@%i"
grep -qx 'Restart=always' "$unit" || fail "no Restart=always"
if command -v systemd-analyze >/dev/null; then
  # verify reads an instance from a file of the instance's name; it prints every doubtful setting.
  mkdir "$dest/verify" && cp "$unit" "$dest/verify/kovo@ttyS0.service"
  report=$(systemd-analyze verify --man=no "$dest/verify/kovo@ttyS0.service" 2>&1) ||
    fail "systemd-analyze verify refused the unit"
  [ -z "$report" ] || fail "systemd-analyze verify: $report"
fi
# The console's argument for each terminal: the program stands in as echo, systemd's $$ as $.
argument() {
  local line
  line=$(sed -n 's/^ExecStart=//p' "$unit")
  line=${line//\$\$/\$}
  line=${line//%I/$1}
  line=${line//\/usr\/sbin\/kovo/echo}
  eval "$line"
}
for case in tty1=1 tty12=12 tty63=63 tty64= ttyS0= ttyUSB1= tty0=; do
  got=$(argument "${case%%=*}")
  [ "$got" = "${case#*=}" ] || fail "ExecStart for ${case%%=*} gives the console '$got'"
done

pam="$dest/etc/pam.d/kovo"
grep -Eq '^auth +substack +common-auth$' "$pam" || fail "common-auth is not a substack (authfail would never run)"
for phase in preauth authfail; do
  grep -Eq "^auth .*pam_faillock\.so $phase( |$)" "$pam" || fail "no pam_faillock $phase"
done
for stack in common-account common-password common-session; do
  grep -qx "@include $stack" "$pam" || fail "$stack not included"
done

grep -qx 'ForwardToWall=no' "$dest/usr/lib/systemd/journald.conf.d/kovo.conf" || fail "journald still forwards to wall"

page="$dest/usr/share/man/man8/kovo.8.gz"
if command -v man >/dev/null; then
  warnings=$(MANWIDTH=80 man --warnings -l "$page" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "man page warnings: $warnings"
  MANWIDTH=80 man -l "$page" 2>/dev/null | grep -q 'systemctl enable --now kovo@tty1.service' ||
    fail "man page does not render"
else
  echo "man is missing: the manual page was not rendered"
fi

[ "$failures" -eq 0 ] && echo "PASS: the console installs as a host needs it"
exit $((failures > 0))
