#!/bin/sh
# Runs the README's two commands on a minimal Debian 12, made from this machine's own package sources, with /proc, /sys
# and the basic device files. The tree is an unpacked archive of the last commit. Root runs ./run and ./test; then a
# user with sudo, and without make, runs ./run.
#
# Needs root or sudo, the right to mount and to create device files (most containers refuse both), the network, and 2 GB
# in the temporary folder. With CCACHE_DIR the compiler takes objects from that cache, and the machine has ccache too.
# The tree lies where it lies here, as objects depend on its path.
set -eu
case ${1:-} in
'')
    cd "$(dirname "$0")/.."
    cmake/install-packages.sh mmdebstrap git
    sudo=
    [ "$(id -u)" = 0 ] || sudo='sudo --preserve-env=http_proxy,https_proxy,no_proxy,CCACHE_DIR'
    $sudo unshare --mount --pid --fork true || { echo "bare-machine: no right to mount here" >&2; exit 1; }
    work=$(mktemp -d)
    trap '$sudo rm -rf "$work"' EXIT
    trap 'exit 1' HUP INT TERM
    chmod 755 "$work"
    git archive -o "$work/tree.tar" HEAD
    # With namespaces of its own, its mounts and processes disappear however it ends.
    $sudo unshare --mount --pid --fork --kill-child "$0" inside "$work"
    ;;
inside)
    root=$2/root
    [ -n "${http_proxy:-}" ] || eval "$(apt-config shell http_proxy Acquire::http::Proxy)"
    [ -z "${http_proxy:-}" ] || export http_proxy
    tree=$PWD
    "$(dirname "$0")/debian-root.sh" bookworm "$root" ${CCACHE_DIR:+ccache}
    # Lets apt use the same sources.
    rm "$root/etc/apt/sources.list"
    for item in sources.list sources.list.d auth.conf auth.conf.d trusted.gpg trusted.gpg.d keyrings; do
        [ ! -e "/etc/apt/$item" ] || cp -r "/etc/apt/$item" "$root/etc/apt"
    done
    cp -r /usr/share/keyrings "$root/usr/share"
    apt-config dump | grep -i '^Acquire::[a-z]*::\(.*::\)\?Proxy ' >"$root/etc/apt/apt.conf.d/machine" || true
    authorities=/etc/ssl/certs/ca-certificates.crt
    [ ! -e $authorities ] || install -D $authorities "$root$authorities"
    cp /etc/resolv.conf /etc/hosts "$root/etc"

    mount --bind "$root" "$root"
    mount -t proc proc "$root/proc"
    mount --rbind /sys "$root/sys"
    mount -t devpts devpts "$root/dev/pts"
    mkdir -p "$root$tree"
    tar -x -C "$root$tree" -f "$2/tree.tar"
    # The user reaches the tree, wherever it is.
    folder=$tree
    while [ "$folder" != / ]; do
        chmod a+rx "$root$folder"
        folder=$(dirname "$folder")
    done
    cache=
    if [ -n "${CCACHE_DIR:-}" ]; then
        mkdir "$root/ccache"
        mount --bind "$CCACHE_DIR" "$root/ccache"
        cache="CCACHE_DIR=/ccache CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache"
    fi
    cp "$0" "$root/bare-machine"
    # In a chroot the kernel would refuse new user namespaces and private mounts.
    cd "$root"
    pivot_root . .
    umount -l .
    cd /
    # shellcheck disable=SC2086  # nothing, or words
    exec env -i HOME=/root LANG=C.UTF-8 PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        ${http_proxy:+"http_proxy=$http_proxy"} $cache sh /bare-machine commands "$tree"
    ;;
commands)
    ! command -v make git g++ || { echo "bare-machine: this machine isn't bare" >&2; exit 1; }
    # shows_items COMMAND...: fails unless the output has a system's items, of this machine or of the sample.
    shows_items() {
        "$@" >/output && grep -q '{Type 1}' /output && return
        echo "bare-machine: $* shows no items" >&2
        return 1
    }
    cd "$2"
    shows_items ./run
    ./test

    apt-get install -y -qq sudo >/dev/null
    apt-get remove -y -qq make >/dev/null
    useradd --create-home user
    echo 'user ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/user
    chown -R user .
    shows_items su user -c ./run
    ;;
esac
