#!/usr/bin/env bash
# Fails when a source file includes a layer above its own, when the platform's interfaces include anything
# but themselves, or when anything above the platform but start-up reaches the Halvor implementations or
# their store. The build refuses an upward include too (each layer's include root holds only itself);
# this says which line, and covers headers no source happens to include.
#   platform/hostctl <- platform/{faults,store,events} <- platform/{zenkctl,linux}
#   <- terminal <- text <- frames <- screens/system <- screens/{access,network} <- screens/recovery
#   <- screens/session <- main
set -euo pipefail
cd "$(dirname "$0")/.."

# A folder's rank (by its path under src/) or an include's (by the name it is included as).
rank() {
    case "$1" in
        platform/hostctl/*) echo 0 ;;
        platform/faults/* | platform/store/* | platform/events/*) echo 1 ;;
        platform/zenkctl/* | platform/linux/*) echo 2 ;;
        terminal/*) echo 3 ;;
        text/*) echo 4 ;;
        frames/*) echo 5 ;;
        screens/system/* | system/*) echo 6 ;;
        screens/access/* | access/* | screens/network/* | network/*) echo 7 ;;
        screens/recovery/* | recovery/*) echo 8 ;;
        screens/session/* | session/*) echo 9 ;;
        main/*) echo 10 ;;
        *) echo 99 ;;
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
        includedRank=$(rank "$included")
        if [ "$includedRank" -gt "$ownRank" ]; then
            fault "$file:$line: includes \"$included\" from a higher layer"
        fi
        case "$own:$included" in
            platform/hostctl/*:platform/hostctl/*) ;;
            platform/hostctl/*:*)
                fault "$file:$line: an interface includes \"$included\"" ;;
            screens/access/*:network/* | screens/network/*:access/*)
                fault "$file:$line: access and network screens stay apart" ;;
            platform/linux/*:platform/zenkctl/* | platform/linux/*:platform/store/* | \
                platform/zenkctl/*:platform/linux/*)
                fault "$file:$line: the two platforms stay apart" ;;
            platform/* | main/*:*) ;;
            *:platform/zenkctl/* | *:platform/store/* | *:platform/linux/*)
                fault "$file:$line: includes a platform implementation \"$included\"; only the platform and start-up may" ;;
        esac
    done < <(grep -no '^#include "[^"]*"' "$file" | sed -E 's/^([0-9]+):#include "(.*)"$/\1:\2/')
done < <(find src -name '*.h' -o -name '*.cpp' -o -name '*.inc' | sort)

# Above the platform only start-up names an implementation or the store: everything else reaches the
# host through the HostCtl interfaces that HostAccess hands out.
while IFS= read -r hit; do
    fault "$hit: names a platform implementation; ask HostAccess (or the installed platform) instead"
done < <(grep -rnE 'ZenkCtl::|HostStore|LinuxHost::' src --include='*.h' --include='*.cpp' --include='*.inc' |
    grep -vE '^src/(platform|main)/' || true)

if [ "$faults" -ne 0 ]; then
    echo "$faults layer fault(s)" >&2
    exit 1
fi
echo "layers: every include points down"
