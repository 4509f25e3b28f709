#!/bin/sh
# Holds lies against a machine: its true table, and copies of it with one lie each. Only the rule that knows the truth
# may contradict. Leaves what verify says of each in a new folder.
#
#     lies.sh QUORLIN FOLDER NAMES [OPTION...]      those whose names match a pattern of the list; the options follow
#                                                   each command
set -f
quorlin=$1 folder=$2 names=$3
shift 3
mkdir -p "$folder" && cd "$folder" || exit 1
$quorlin dump true "$@" && $quorlin raw "$@" >raw && $quorlin facts --format csv "$@" >facts || exit 1

# place TYPE.INSTANCE KEY[+BYTES]: where in the dump a fact is; without a key, where the structure is.
place() {
    type=${1%.*} instance=${1#*.} key=${2%+*} more=${2#"${2%+*}"}
    start=$(sed -n "s/^Handle .* type $type .* at offset \(.*\)h\$/\1/p" raw | sed -n "${instance}p")
    offset=$(awk -F, -v type="$type" -v instance="$instance" -v key="$key" '
        $1 == type && $3 == instance && $5 == key { print $(NF - 2) }' facts)  # values may have commas
    echo "$((32 + 0x$start + ${offset:-0} ${more:-+0}))"
}

# Writes bytes in hexadecimal into a file.
write() {
    file=$1 at=$2
    shift 2
    for byte in "$@"; do
        # shellcheck disable=SC2059  # the format is the byte
        printf "\\$(printf %03o "0x$byte")"
    done | dd of="$file" bs=1 seek="$at" conv=notrunc 2>/dev/null
}

is_chosen() {
    for pattern in $names; do
        # shellcheck disable=SC2254
        case $1 in $pattern) return ;; esac
    done
    return 1
}

failed=0 count=0
while read -r name rule structure key bytes; do
    is_chosen "$name" || continue
    cp true "$name"
    count=$((count + 1))
    # shellcheck disable=SC2086  # words are arguments
    write "$name" "$(place "$structure" "$key")" $bytes
    $quorlin verify --image "$name" --format csv "$@" >"$name.csv"
    code=$?
    found=$(awk -F, '$2 == "contradicts" { print $1 }' "$name.csv" | xargs)
    if [ "$rule" = none ]; then
        [ "$code $found" = "0 " ] && mv "$name" true && continue
    else
        [ "$code $found" = "1 $rule" ] && rm "$name" && continue
    fi
    echo "$name should contradict $rule, but exits with $code and contradicts $found:"
    cat "$name.csv"
    failed=1
done <<END
truth         none   4.1   processor_family b3
signature     QV0101 4.1   processor_id b2
features      QV0102 4.1   processor_id+4 fc
family        QV0103 4.1   processor_family 6b
socket        QV0104 126.1 - 04
cores         QV0105 4.1   core_count 04 04
threads       QV0106 4.1   thread_count 01
enabled       QV0107 4.1   core_enabled 01
maximum-speed QV0108 4.1   max_speed 20 4e
current-speed QV0109 4.1   current_speed 20 4e
cache         QV0201 7.4   installed_size 00 30
memory        QV0301 17.1  size 00 01
range         QV0302 19.1  ending_address ff ff ff 3f
slot          QV0401 9.1   device_function_number 18
width         QV0402 9.2   slot_data_bus_width 08
board-device  QV0403 41.1  device_function_number 48
board-class   QV0404 41.2  device_type 83
tpm           QV0502 126.2 - 2b
ipmi          QV0503 38.1  interface_type 03
uefi          QV0501 0.1   firmware_characteristics_extension_byte_2 00
END
[ $count != 0 ] && exit $failed
