#!/usr/bin/env bash
# Proves that a machine with nothing but Debian 12's base system comes from a clone to a tested game by the README's two
# commands: fresh_machine.sh makes such systems in folders, runs ./play and ./check in one as root and in another as an
# ordinary user with sudo, without a display, and tries what goes wrong on machines. Needs root and debootstrap. Ends
# with "N passed, N failed"; status 1 when anything failed. Run it when a dependency changes.
set -u
usage="usage: fresh_machine.sh [--only refusals|play|check|package]... [--user root|player]... [--package]
                        [--cache FOLDER] [--keep]
  --only      these steps only; play, check and refusals are taken without it
  --user      as this user only
  --package   installs what scripts/package.sh made, in a system without a compiler: the same as --only package
  --cache     keeps the base system and the packages in FOLDER: later runs are quicker
  --keep      leaves the systems standing, to look around in"
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
release=bookworm
steps=() users=() cache='' keep=

while [ $# != 0 ]; do
    case $1 in
    --only) steps+=("${2:-}") && shift ;;
    --user) users+=("${2:-}") && shift ;;
    --package) steps+=(package) ;;
    --cache) mkdir -p "${2:?}" && cache=$(cd "$2" && pwd) && shift ;;
    --keep) keep=1 ;;
    *)
        echo "$usage"
        [ "$1" = --help ]
        exit
        ;;
    esac
    shift
done
[ ${#steps[@]} = 0 ] && steps=(refusals play check)
[ ${#users[@]} = 0 ] && users=(root player)
if [ "$(id -u)" != 0 ]; then
    echo "fresh_machine.sh: making a system in a folder needs root; run it with sudo" >&2
    exit 1
fi
"$root/scripts/packages.sh" fresh || exit 1

work=$(mktemp -d "${TMPDIR:-/tmp}/tarnwick-fresh.XXXXXX")
cache=${cache:-$work/cache}
mkdir -p "$cache/packages/partial"
child=
finish() {
    # Ending the first process of a system ends all others.
    [ -z "$child" ] || kill -KILL $(<"/proc/$child/task/$child/children") 2>/dev/null
    if [ -n "$keep" ]; then
        echo "The systems are in $work"
    else
        rm -rf "$work"
    fi
}
trap finish EXIT
trap 'exit 130' INT TERM HUP

# Where the clone lies below a user's home: one has a name such as browsers and people give.
clone_of() {
    if [ "$1" = root ]; then echo tarnwick; else echo "Meine Spiele für später/tarnwick (1)"; fi
}

passed=0 failed=0
wants() {
    local word
    for word in "${steps[@]}"; do [ "$word" = "$1" ] && return; done
    return 1
}

# step NAME COMMAND...: what it says goes to a log, whose end is shown when it fails.
step() {
    local name=$1 started=$SECONDS log=$work/log
    shift
    printf '%-60s ' "$name"
    if "$@" >"$log" 2>&1; then
        passed=$((passed + 1))
        echo "ok    $((SECONDS - started)) s"
    else
        failed=$((failed + 1))
        echo "FAILED $((SECONDS - started)) s"
        tail -n 40 "$log"
        return 1
    fi
}

# inside SYSTEM USER COMMAND...: with processes, mounts and (network=none) a network of its own, which all end with it.
network=
inside() {
    local system=$1 user=$2 home
    shift 2
    home=/home/$user
    [ "$user" = root ] && home=/root
    unshare --mount --pid --fork ${network:+--net} -- sh -c '
        system=$1 user=$2 home=$3 fetched=$4 clone=$5
        shift 5
        mount --rbind /dev "$system/dev" && mount -t proc proc "$system/proc" &&
            mount --bind "$fetched" "$system/var/cache/apt/archives" || exit 1
        [ -z "${disk:-}" ] || mount -t tmpfs -o "size=$disk,mode=777" tmpfs "$system$home/$clone/build" || exit 1
        exec chroot "$system" setpriv --reuid="$user" --regid="$user" --init-groups \
            env -i HOME="$home" USER="$user" TERM=dumb PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
            sh -c "cd && exec \"\$@\"" sh "$@"
    ' sh "$system" "$user" "$home" "${fetched:-$cache/packages}" "$(clone_of "$user")" "$@" &
    child=$!
    wait $child
    local status=$?
    child=
    return $status
}

# Gives a system in a folder this machine's package sources, keys and proxy.
copy_sources() {
    local system=$1
    rm -f "$system"/etc/apt/sources.list
    cp -r /etc/apt/sources.list /etc/apt/sources.list.d /etc/apt/trusted.gpg.d /etc/apt/auth.conf.d "$system/etc/apt/" 2>/dev/null
    [ -d /etc/apt/keyrings ] && cp -r /etc/apt/keyrings "$system/etc/apt/"
    cp -r /usr/share/keyrings/. "$system/usr/share/keyrings/"
    apt-config dump | grep -E '^Acquire::' | grep -v IndexTargets >"$system/etc/apt/apt.conf.d/90this-machine"
    # Keeps all packages that are fetched here.
    echo 'Binary::apt-get::APT::Keep-Downloaded-Packages "true"; APT::Install-Recommends "true";' \
        >>"$system/etc/apt/apt.conf.d/90this-machine"
    cp /etc/resolv.conf /etc/hosts "$system/etc/"
}

make_base() {
    local mirror system=$work/base
    mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' "Codename: $release" | head -n 1)
    [ -n "$mirror" ] || mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | head -n 1)
    debootstrap --variant=minbase "$release" "$system" "$mirror" || {
        echo "Debian's base system could not be fetched: is the network there, and $release among apt's sources?"
        return 1
    }
    copy_sources "$system"
    tar -C "$system" -cf "$cache/base.part" . && mv "$cache/base.part" "$cache/base.tar"
    rm -rf "$system"
}

# new_system NAME USER: the base system, and in the user's home a clone of the last commit. A user may use sudo.
new_system() {
    local system=$work/$1 user=$2 home=/root
    mkdir "$system" && tar -C "$system" -xf "$cache/base.tar" || return
    copy_sources "$system"
    if [ "$user" != root ]; then
        home=/home/$user
        chroot "$system" useradd --create-home "$user" || return
        if [ "${sudo:-yes}" = yes ]; then
            inside "$system" root sh -c 'apt-get update && apt-get install -y --no-install-recommends sudo' || return
            echo "$user ALL=(ALL) NOPASSWD: ALL" >"$system/etc/sudoers.d/$user"
        fi
    fi
    git clone --quiet --no-hardlinks "$root" "$system$home/$(clone_of "$user")" || return
    chroot "$system" chown -R "$user:" "$home"
    installed "$system" | sort >"$work/$1.packages"
}

installed() {
    dpkg-query --admindir="$1/var/lib/dpkg" -W -f '${Package} ${Version}\n'
}

# Lists the packages that the step before brought.
new_packages() {
    local before=$work/$1.packages
    installed "$work/$1" | sort >"$before.now"
    comm -13 "$before" "$before.now" | awk '{ print $1 }' | tr '\n' ' ' | fold -s -w 116 | sed 's/^/    /'
    printf '\n    %d packages more\n' "$(comm -13 "$before" "$before.now" | wc -l)"
    mv "$before.now" "$before"
}

# play SYSTEM USER: without a display, so the game tours a level and says where its pictures are.
play() {
    inside "$work/$1" "$2" "$(clone_of "$2")/play" && [ "$(find "$work/$1"/{root,home} -path '*/tour/*.png' | wc -l)" = 6 ]
}

two_commands() {
    local user=$1
    wants play || wants check || return
    step "a base system for $user" new_system "$user" "$user" || return
    if wants play; then
        step "./play as $user" play "$user" "$user"
        new_packages "$user"
        step "./play as $user, again" play "$user" "$user"
        disk=4m step "./play on a full disk" says 'is full' 200 inside "$work/$user" "$user" "$(clone_of "$user")/play"
    fi
    if wants check; then
        step "./check as $user" inside "$work/$user" "$user" "$(clone_of "$user")/check"
        grep -E '^[0-9]+ passed, [0-9]+ failed' "$work/log"
        new_packages "$user"
    fi
    [ -n "$keep" ] || rm -rf "${work:?}/$user"
}

# says PATTERN LINES COMMAND...: it fails, and what it says ends with a line like PATTERN, LINES lines in all at most.
says() {
    local pattern=$1 lines=$2 status
    shift 2
    "$@" >"$work/said" 2>&1
    status=$?
    cat "$work/said"
    [ $status != 0 ] && [ "$(wc -l <"$work/said")" -le "$lines" ] && tail -n 1 "$work/said" | grep -qE "$pattern"
}

# Tries what goes wrong on machines: each time one line must say what to do.
refusals() {
    wants refusals || return
    local clone fetched=$work/nothing  # packages that are here already need no network
    clone=$(clone_of player)
    mkdir -p "$fetched/partial"
    sudo=no step "a base system for a user who may not use sudo" new_system refusals player || return
    step "without sudo: which packages to ask for" \
        says 'sudo apt-get install' 3 inside "$work/refusals" player "$clone/play"
    network=none step "without a network" \
        says 'network' 8 inside "$work/refusals" root "/home/player/$clone/play"
    find "$work"/refusals/etc/apt/sources.list* -type f -exec sed -i -E 's,https?://[^ ]*,http://127.0.0.1:9/,' {} +
    step "with a mirror that does not answer" \
        says 'mirror' 8 inside "$work/refusals" root "/home/player/$clone/play"
    chroot "$work/refusals" chown -R root: "/home/player/$clone"
    step "in a folder of another user" \
        says 'may not be written' 2 inside "$work/refusals" player "$clone/play"
    [ -n "$keep" ] || rm -rf "$work/refusals"
}

packages() {
    wants package || return
    step "a base system for the packages" new_system package root || return
    mkdir "$work/package/packages"
    cp "$root"/build-package/packages/* "$work/package/packages/" || exit 1
    step "no compiler is there" sh -c "! ls '$work/package'/usr/bin/*g++* '$work/package'/usr/bin/*clang* '$work/package'/usr/bin/cmake"
    step "the tarball's game, from a folder with blanks and letters" tarball_tour
    new_packages package
    step "the .deb" inside "$work/package" root sh -c \
        'apt-get update && apt-get install -y --no-install-recommends /packages/tarnwick_*.deb'
    new_packages package
    step "its game, from another folder" tour /tmp tarnwick
    step "the .deb with the tools" inside "$work/package" root sh -c \
        'apt-get install -y --no-install-recommends /packages/tarnwick-tools_*.deb'
    new_packages package
    step "its tools" inside "$work/package" root sh -c \
        'for tool in $(dpkg -L tarnwick-tools | grep ^/usr/bin/); do $tool --help || exit; done && datacheck /usr/share/tarnwick'
}

# Plays the headless tour: its trace must be the same as the build's own.
tour() {
    cp "$root/scripts/tour.txt" "$work/package/tmp/"
    inside "$work/package" root sh -c "cd '$1' && '$2' --headless --level 3 --script /tmp/tour.txt --trace /tmp/tour.jsonl" &&
        [ "$(wc -l <"$work/package/tmp/tour.jsonl")" -ge 400 ]
}

tarball_tour() {
    # Installs the libraries that a desktop has; the archive holds the game alone.
    inside "$work/package" root sh -c 'apt-get update && apt-get install -y --no-install-recommends libsdl2-2.0-0 libpng16-16 libsndfile1' || return
    mkdir -p "$work/package/opt/Spiele für später" && tar -C "$work/package/opt/Spiele für später" -xf "$work"/package/packages/*.tar.* &&
        tour "/opt" "$(cd "$work/package" && ls -d "opt/Spiele für später"/*/bin/tarnwick | sed 's,^,/,')"
}

if [ ! -f "$cache/base.tar" ]; then step "Debian 12's base system" make_base || exit 1; fi
refusals
for user in "${users[@]}"; do two_commands "$user"; done
packages

echo
echo "$passed passed, $failed failed"
[ $failed = 0 ]
