#!/usr/bin/env bash
# Fails when a source file includes a layer above its own, when the platform's interfaces include its
# implementations, or when a screen reaches the configuration store itself.
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
            access/*:platform/store/* | system/*:platform/store/* | network/*:platform/store/* | recovery/*:platform/store/*)
                fault "$file:$line: a screen reaches the store; ask HostAccess instead" ;;
        esac
    done < <(grep -no '^#include "[^"]*"' "$file" | sed -E 's/^([0-9]+):#include "(.*)"$/\1:\2/')
done < <(find src -name '*.h' -o -name '*.cpp' -o -name '*.inc' | sort)

# A screen gets its platform objects from HostAccess, never by constructing an implementation.
while IFS= read -r hit; do
    fault "$hit: a screen constructs a platform implementation; ask HostAccess instead"
done < <(grep -rnE 'ZenkCtl::[A-Za-z]+::[A-Za-z]+Impl *(\(|\{| +[a-z_]+[;({])' src/access src/system src/network src/recovery 2>/dev/null || true)

if [ "$faults" -ne 0 ]; then
    echo "$faults layer fault(s)" >&2
    exit 1
fi
echo "layers: every include points down"
