#!/usr/bin/env bash
# Run by check-packages.sh in a fresh tree: installs the packages beside this file, runs the lines of their page, purges them.
set -euo pipefail
cd "$(dirname "$0")"
export DEBIAN_FRONTEND=noninteractive

say() { printf '\n==> %s\n' "$*"; }

# need WHAT COMMAND...: the command must succeed.
need() {
    local what=$1
    shift
    "$@" || {
        echo "FAILED: $what" >&2
        exit 1
    }
}

# What a package may leave or change are the records of apt and dpkg, and the caches of the system.
files() {
    find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /run -o -path /var/lib/apt -o -path /var/lib/dpkg \
        -o -path /var/cache -o -path /var/log \) -prune -o -print | sort
}

say "Installing"
files >before
apt-get install -q -y ./*.deb
mapfile -t names < <(for file in *.deb; do dpkg-deb --field "$file" Package; done)

say "The lines of the page"
# shellcheck disable=SC2016 # backquotes of the page
sed -n '/^## Try it/,/^## Check/p' packages.md | sed -n '/^```sh/,/^```/p' | sed '/^```/d' >lines.sh
need "10 lines of the page" [ "$(wc -l <lines.sh)" -ge 10 ]
mkdir work
(cd work && HOME=$PWD XDG_RUNTIME_DIR=$PWD bash -eux ../lines.sh)
need "a picture of the host in C" [ "$(head -c 15 work/c.ppm | tr '\n' ' ')" = "P6 640 480 255 " ]
need "a picture of the host in Python" [ "$(head -c 4 work/python.png | tail -c 3)" = PNG ]
need "the page of a station" grep -q '<link rel="stylesheet"' work/page.html

say "The rest"
need "a program without debug information" [ "$(stat -c %s "$(command -v appletctl)")" -lt 8000000 ]
for file in bash-completion/completions/appletctl zsh/vendor-completions/_appletctl \
    fish/vendor_completions.d/appletctl.fish man/man1/appletctl.1.gz man/man7/appletctl-parameters.7.gz \
    vexo/stations/demo.json doc/vexo/docs/packages.md icons/hicolor/scalable/apps/appletctl.svg; do
    need "$file" [ -s "/usr/share/$file" ]
done
python3 - <<'PYTHON'
import ctypes
import glob

[file] = glob.glob("/usr/lib/*/vexo/libvexo_producer.cti")
producer = ctypes.CDLL(file)
system, interface, device = ctypes.c_void_p(), ctypes.c_void_p(), ctypes.c_void_p()
no_wait, exclusive = ctypes.c_uint64(0), 4
for call, *arguments in [("GCInitLib",), ("TLOpen", ctypes.byref(system)), ("TLUpdateInterfaceList", system, None, no_wait),
                         ("TLOpenInterface", system, b"virtual-0", ctypes.byref(interface)),
                         ("IFUpdateDeviceList", interface, None, no_wait),
                         ("IFOpenDevice", interface, b"virtual-0-process-0", exclusive, ctypes.byref(device))]:
    code = getattr(producer, call)(*arguments)
    assert code == 0, f"{call} of the producer: {code}"
PYTHON

say "Purging"
apt-get purge -q -y --autoremove "${names[@]}"
files >after
if ! diff before after; then
    echo "The packages left files behind" >&2
    exit 1
fi
