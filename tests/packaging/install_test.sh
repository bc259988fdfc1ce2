#!/usr/bin/env bash
# The program as a package installs it: everything in place under a prefix,
# the launcher, metainfo and man pages valid, the installed program started
# from there, its logs saved when SIGTERM stops it, and the Debian package
# holding the same files.
set -euo pipefail
build=$1
work=$(mktemp -d)
bot=0
trap '[ "$bot" != 0 ] && kill "$bot" 2>/dev/null; rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
for file in bin/corvantide bin/corvantide-sandbox \
    share/applications/net.ostrelund.Corvantide.desktop \
    share/metainfo/net.ostrelund.Corvantide.metainfo.xml \
    share/icons/hicolor/scalable/apps/corvantide.svg \
    share/icons/hicolor/48x48/apps/corvantide.png \
    share/man/man1/corvantide.1.gz share/man/man1/corvantide-sandbox.1.gz \
    share/doc/corvantide/copyright share/doc/corvantide/README.md \
    lib/systemd/user/corvantide-headless@.service; do
    [ -f "$prefix/$file" ] || fail "cmake --install did not put $file in place"
done

desktop-file-validate "$prefix/share/applications/net.ostrelund.Corvantide.desktop"
appstreamcli validate --no-net --pedantic \
    "$prefix/share/metainfo/net.ostrelund.Corvantide.metainfo.xml" >/dev/null
for page in corvantide corvantide-sandbox; do
    warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l \
        "$prefix/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "man $page: $warnings"
done
grep -q -- "--no-input" "$prefix/lib/systemd/user/corvantide-headless@.service" ||
    fail "the service does not run the bot without input"

# The installed program, started from its prefix: a profile that cannot reach
# its server still fills its view, which SIGTERM must save as a log.
home=$work/home
run() { "$prefix/bin/corvantide" --home "$home" "$@" >/dev/null; }
run profile new Quiet
run profile set Quiet Server 127.0.0.1:1
run profile set Quiet ServerBNLS 127.0.0.1:1
run profile set Quiet "Load at Startup" on
run config set Settings Logging on
"$prefix/bin/corvantide" --headless --no-input --connect --home "$home" >"$work/out" 2>&1 &
bot=$!
for _ in $(seq 100); do
    grep -q "Completed all startup tasks successfully." "$work/out" && break
    sleep 0.1
done
grep -q "Completed all startup tasks successfully." "$work/out" ||
    fail "the installed program did not start: $(cat "$work/out")"
sleep 1
kill -TERM "$bot"
for _ in $(seq 100); do
    kill -0 "$bot" 2>/dev/null || break
    sleep 0.1
done
kill -0 "$bot" 2>/dev/null && fail "SIGTERM did not end the headless run"
wait "$bot" || fail "the run ended with status $? on SIGTERM"
bot=0
ls "$home"/.config/Ostrelund/Corvantide/Logs/Quiet*.txt >/dev/null 2>&1 ||
    fail "SIGTERM ended the run without saving the log"

(cd "$build" && cpack -G DEB -B "$work/package" >/dev/null)
contents=$(dpkg-deb -c "$work"/package/corvantide_*.deb)
# Under the prefix the build was configured with (scripts/package.sh: /usr).
for file in bin/corvantide share/applications/net.ostrelund.Corvantide.desktop \
    share/man/man1/corvantide.1.gz lib/systemd/user/corvantide-headless@.service; do
    grep -q "\./usr/\(local/\)\?$file\$" <<<"$contents" || fail "the package lacks $file"
done
depends=$(dpkg-deb -f "$work"/package/corvantide_*.deb Depends)
grep -q libqt6widgets6 <<<"$depends" || fail "dependencies not worked out: $depends"
echo "installed, started, stopped and packaged"
