# Sourced by run and check: makes sure that Debian packages are installed.

# ensure_packages NAME... - installs those that are missing, with sudo when not root.
ensure_packages() {
    missing=()
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

build_packages=(g++ cmake ninja-build ccache pkg-config libsdl2-dev libpng-dev libfreetype-dev libjpeg62-turbo-dev
    fonts-liberation2)
