#!/bin/sh
# Checks that built files are hardened: check-hardening.sh FILE...
# ELF files: position-independent code, read-only relocations that are bound at once, no memory that is writable and
# executable; shared libraries also: stack protector, checked functions, marks for indirect jumps and, on x86, stack
# probes. Windows files: ASLR with high entropy, DEP.
failures=0

# has FILE TEXT PATTERN WHAT
has() {
  printf '%s\n' "$2" | grep -Eq "$3" && return
  echo "$1: no $4"
  failures=$((failures + 1))
}

# hasnt FILE TEXT PATTERN WHAT
hasnt() {
  printf '%s\n' "$2" | grep -Eq "$3" || return 0
  echo "$1: has $4"
  failures=$((failures + 1))
}

check_elf() {
  facts=$(readelf -hlWd "$1")
  has "$1" "$facts" 'Type: +DYN' 'position-independent code'
  has "$1" "$facts" 'GNU_RELRO' 'read-only relocations'
  has "$1" "$facts" 'BIND_NOW|Flags: NOW' 'binding at once'
  has "$1" "$facts" 'GNU_STACK .* RW +0x' 'stack without execution'
  hasnt "$1" "$facts" ' RWE ' 'writable and executable memory'
  hasnt "$1" "$facts" 'TEXTREL' 'relocations in its code'
  case "$1" in
    *.so*)
      symbols=$(readelf -sW "$1")
      has "$1" "$symbols" '__stack_chk_fail' 'stack protector'
      has "$1" "$symbols" '__v?snprintf_chk' 'checked functions'
      case "$facts" in
        *X86-64*) check_x86_library "$1" ;;
        *AArch64*) check_arm64_library "$1" ;;
      esac
      ;;
  esac
}

check_x86_library() {
  code=$(objdump -d --no-show-raw-insn "$1")
  entry=$(printf '%s\n' "$code" | grep -A1 '<CreateSmbiosPackage@*[A-Z_0-9]*>:')
  has "$1" "$entry" 'endbr64' 'landing marks for indirect jumps'
  # Large frames probe each of their pages.
  has "$1" "$code" ':[[:space:]]+or[a-z]* +\$0x0,\(%rsp\)' 'stack-clash protection'
}

check_arm64_library() {
  entry=$(aarch64-linux-gnu-objdump -d --no-show-raw-insn "$1" | grep -A1 '<CreateSmbiosPackage@*[A-Z_0-9]*>:')
  has "$1" "$entry" 'bti[[:space:]]+c|paciasp' 'landing marks for indirect jumps'
}

check_windows() {
  facts=$("${OBJDUMP:-x86_64-w64-mingw32-objdump}" -p "$1")
  has "$1" "$facts" 'DYNAMIC_BASE' 'ASLR'
  has "$1" "$facts" 'HIGH_ENTROPY_VA' 'high entropy'
  has "$1" "$facts" 'NX_COMPAT' 'DEP'
  has "$1" "$facts" '^Entry 5 [0-9a-f]*[1-9a-f][0-9a-f]* .*Base Relocation' 'relocations for ASLR'
}

[ $# -gt 0 ] || exit 2
for file; do
  case "$file" in
    *.exe | *.dll) check_windows "$file" ;;
    *) check_elf "$file" ;;
  esac
done
[ "$failures" -eq 0 ]
