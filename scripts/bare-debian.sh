# Bare Debian systems in folders, for scripts that must not depend on what this machine has. To be sourced;
# its functions want root.

# make_bare_debian SUITE FOLDER: nothing but the base system, with this machine's sources of packages. What
# stands there already is kept.
make_bare_debian() {
    command -v debootstrap >/dev/null || apt-get install -y -qq --no-install-recommends debootstrap
    if [ ! -f "$2/.complete" ]; then
        mkdir -p "$2"
        mirror=$(sources_of_packages)
        debootstrap --variant=minbase --include=ca-certificates,git "$1" "$2" "$mirror" || return 1
        follow_this_machine "$1" "$2"
        : >"$2/.complete"
    fi
}

# Where this machine takes Debian's packages from.
sources_of_packages() {
    { grep -hE '^URIs:' /etc/apt/sources.list.d/*.sources 2>/dev/null
      sed -nE 's/^deb (\[[^]]*\] )?/URIs: /p' /etc/apt/sources.list 2>/dev/null; } |
        awk '{ print $2; exit }'
}

# follow_this_machine SUITE FOLDER: the same mirrors, proxies and trusted certificates.
follow_this_machine() {
    if [ -f /etc/apt/sources.list.d/debian.sources ]; then
        sed -E "s/\b(bookworm|trixie)\b/$1/g" /etc/apt/sources.list.d/debian.sources \
            >"$2/etc/apt/sources.list.d/debian.sources"
        : >"$2/etc/apt/sources.list"
    fi
    for file in /etc/apt/apt.conf.d/*proxy* /etc/apt/apt.conf.d/99* /etc/resolv.conf /etc/hosts; do
        [ ! -f "$file" ] || cp "$file" "$2$file"
    done
    mkdir -p "$2/usr/local/share/ca-certificates"
    cp -a /usr/local/share/ca-certificates/. "$2/usr/local/share/ca-certificates/"
    cp -a /etc/ssl/certs/. "$2/etc/ssl/certs/"
}

# put_checkout REPOSITORY FOLDER: its newest commit in /root/zorvan of the system; what was built there stays.
put_checkout() {
    if [ -d "$2/root/zorvan/.git" ]; then
        git -C "$2/root/zorvan" fetch -q "$1" HEAD
        git -C "$2/root/zorvan" checkout -q --detach FETCH_HEAD
    else
        git clone -q "$1" "$2/root/zorvan"
    fi
}

# run_in FOLDER COMMAND...: in /root/zorvan of the system, with an environment and mounts of its own, which end
# with the command. The folder is mounted on itself because tests of full and read-only disks want a root that is.
run_in() {
    unshare --mount --propagation private sh -ec '
        folder=$1
        shift
        mount --bind "$folder" "$folder"
        mount -t proc proc "$folder/proc"
        mount --rbind /dev "$folder/dev"
        exec chroot "$folder" env -i --chdir=/root/zorvan PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
            LANG=C.UTF-8 ${http_proxy:+http_proxy="$http_proxy"} ${https_proxy:+https_proxy="$https_proxy"} "$@"
    ' sh "$@"
}
