#!/usr/bin/env bash
# Fails when a source file includes a layer above its own, when the platform's interfaces include its
# implementations, or when anything above the platform but start-up reaches the Halvor implementations
# or their store.
#   platform <- app/terminal <- text <- app/frames <- access, system, network, recovery <- app/startup
set -euo pipefail
cd "$(dirname "$0")/.."

rank() {
    case "$1" in
        platform/*) echo 0 ;;
        app/terminal/*) echo 1 ;;
        text/*) echo 2 ;;
        app/frames/*) echo 3 ;;
        access/* | system/* | network/* | recovery/*) echo 4 ;;
        app/startup/*) echo 5 ;;
        *) echo 9 ;;
    esac
}

faults=0
fault() {
    echo "$1" >&2
    faults=$((faults + 1))
}

while IFS= read -r file; do
    own="${file#src/}"
    ownRank=$(rank "$own")
    while IFS=: read -r line included; do
        [ -n "$included" ] || continue
        if [ "$(rank "$included")" -gt "$ownRank" ]; then
            fault "$file:$line: includes \"$included\" from a higher layer"
        fi
        case "$own:$included" in
            platform/hostctl/*:platform/zenkctl/* | platform/hostctl/*:platform/store/*)
                fault "$file:$line: an interface includes the implementation \"$included\"" ;;
            platform/* | app/startup/*:*) ;;
            *:platform/zenkctl/* | *:platform/store/*)
                fault "$file:$line: includes the Halvor platform \"$included\"; only the platform and start-up may" ;;
        esac
    done < <(grep -no '^#include "[^"]*"' "$file" | sed -E 's/^([0-9]+):#include "(.*)"$/\1:\2/')
done < <(find src -name '*.h' -o -name '*.cpp' -o -name '*.inc' | sort)

# Above the platform only start-up names an implementation or the store: everything else reaches the
# host through the HostCtl interfaces that HostAccess hands out.
while IFS= read -r hit; do
    fault "$hit: names the Halvor platform; ask HostAccess (or the installed platform) instead"
done < <(grep -rnE 'ZenkCtl::|HostStore' src --include='*.h' --include='*.cpp' --include='*.inc' |
    grep -vE '^src/(platform|app/startup)/' || true)

if [ "$faults" -ne 0 ]; then
    echo "$faults layer fault(s)" >&2
    exit 1
fi
echo "layers: every include points down"
