#!/bin/sh
# Checks that scripts end with a message when a download fails.
set -eu
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
# Without a network every download fails.
mkdir "$work/bin"
printf '#!/bin/sh\necho "E: no network" >&2\nexit 100\n' >"$work/bin/apt-get"
printf '#!/bin/sh\nexec "$@"\n' >"$work/bin/sudo"
chmod 755 "$work"/bin/*
PATH=$work/bin:$PATH
export PATH

# says TEXT COMMAND...: the command fails and names what it lacks.
says() {
    text=$1
    shift
    if "$@" >"$work/out" 2>&1; then echo "$* succeeds without a network"; exit 1; fi
    grep -q "$text" "$work/out" && return
    echo "$* doesn't say: $text"
    cat "$work/out"
    exit 1
}

says 'Could not download or install: no-such-package' cmake/install-packages.sh no-such-package
says 'linux-image-amd64 could not be downloaded' Tests/Machine/kernel.sh "$work/kernel" amd64
says 'Could not download linux-image-arm64 for arm64' Tests/Machine/kernel.sh "$work/kernel" arm64
says 'prometheus could not be downloaded' Tests/Metrics/run.sh "$work" "$work/tools"
