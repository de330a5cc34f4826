#!/usr/bin/env bash
# Downloads firmware through the automation interface with busctl (Debian package systemd).
#
#   download.sh PORT FILE...        for example: download.sh COM1: radio.srec dsp.srec
#
# Each busctl is a client of its own that leaves when its call is answered, and objects go with their
# client. So the script uses the global object, which waits 10 s for the next client, and the
# synchronous operations: a task would be taken back when busctl leaves.
set -euo pipefail
[ $# -ge 2 ] || {
    sed -n '2,8s/^# \{0,1\}//p' "$0"
    exit 2
}

service=com.kelvane.RV4100_FLDC_EXE
manager=/com/kelvane/RV4100_FLDC_EXE/clsDLManager
# A call may take 25 s unless it is told otherwise.
call() { busctl --user --timeout=3600 call "$service" "$manager" "$service._clsDLManager" "$@"; }
# "n 0" or "ns 0 ..." -> 0
number() { awk '{ print $2 }'; }
# The last text of an answer: ns 0 "a\tb" -> a, a tab, b
text() {
    local answer
    answer=$(cat)
    answer=${answer#*\"}
    printf '%b' "${answer%\"}"
}
check() {
    [ "$1" -eq 0 ] || {
        echo "Error $1: $(call FormatMessage i "$1" | text)" >&2
        exit 1
    }
}

port=$1
shift
files=$(realpath -- "$@" | paste -sd '|')

check "$(call SetPort sb "$port" false | number)"
call LoadFilesByPath ss "$files" '|'
check "$(call GetLastError | number)"
outcome=$(call DownLoad s "")
check "$(number <<<"$outcome")"
text <<<"$outcome" | tr '\t' '\n'
echo
