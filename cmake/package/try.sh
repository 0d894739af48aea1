#!/usr/bin/env bash
# try.sh BUILD_FOLDER: installs into an empty folder, builds README's example against the installation as somebody else's
# project, and runs it under Wine, on the current display, against the installed sandbox. Then the installed host.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
# shellcheck source=/dev/null
. "$root/cmake/setup/wine.sh"
work=$(mktemp -d)
sandbox=
clean_up() {
  [ -z "$sandbox" ] || kill "$sandbox" 2> /dev/null || true
  rm -rf "$work"
}
trap clean_up EXIT
fail() { printf 'package: %s\n' "$*"; exit 1; }

prefix="$work/a prefix"
target=x86_64-w64-mingw32
cmake --install "$1" --prefix "$prefix" > "$work/install.log"

# Stripped, with symbols that the link in the file leads to: a place in the sources is found for an exported function.
for image in "$prefix"/*/*.dll "$prefix"/*/*.exe; do
  ! "$target-objdump" -h "$image" | grep -q ' \.debug_info' || fail "$image is not stripped"
  [ -f "$(dirname "$image")/.debug/$(basename "$image").debug" ] || fail "$image has no symbols"
done
service=$prefix/bin/UserAuthService.dll
relative=$("$target-nm" "$prefix/bin/.debug/UserAuthService.dll.debug" | awk '$3 == "FnUserAuthService" { print $1 }')
[ -n "$relative" ] || fail "no address of FnUserAuthService"
place=$("$target-addr2line" -e "$service" "0x$relative")
[[ $place == ./*src/core/UserAuthService.cpp:[0-9]* ]] || fail "FnUserAuthService is at $place"

"$root/cmake/package/bill-of-materials.pl" "$prefix" 1.2.3.4 "$root/cmake/deps/recipes" > "$work/bill.json"
"$root/cmake/package/check-bill.pl" "$work/bill.json" || fail "the bill of materials is wrong"
sed '0,/"SPDXRef-curl"/s//"SPDXRef-nothing"/' "$work/bill.json" > "$work/spoilt.json"
"$root/cmake/package/check-bill.pl" "$work/spoilt.json" > "$work/faults" && fail "the check of the bill finds nothing"

mkdir "$work/consumer"
cp "$root/host/readme_example.cpp" "$work/consumer/client.cpp"
# shellcheck disable=SC2016
sed -n '/^```cmake$/,/^```$/{/^```/d;p}' "$prefix/README.md" > "$work/consumer/CMakeLists.txt"
env -u CXXFLAGS cmake -S "$work/consumer" -B "$work/consumer/build" -G Ninja "-DCMAKE_PREFIX_PATH=$prefix" \
  -DCMAKE_SYSTEM_NAME=Windows "-DCMAKE_CXX_COMPILER=$target-g++-posix" > "$work/configure.log" || fail "no configuration"
cmake --build "$work/consumer/build" || fail "the consumer does not build"

cp "$prefix"/sandbox/* "$work/consumer/build/client.exe" "$prefix/bin/"
cd "$prefix/bin"
mkfifo "$work/keep-open" "$work/keys"
exec 3<> "$work/keep-open" 4<> "$work/keys"
wine sandbox-server.exe --end-with-input < "$work/keep-open" > "$work/address" &
sandbox=$!
for ((tries = 0; tries < 200; ++tries)); do
  url=$(sed -nE 's/.*"http": *"([^"]*)".*/\1/p' "$work/address")
  [ -z "$url" ] || break
  sleep 0.1
done
[ -n "$url" ] || fail "the sandbox does not say where it listens"
printf '{"portalUrl": "%s"}' "$url" > client.json
ZVACCOUNTSDK_PLATFORM_URL=$url wine client.exe < "$work/keys" > "$work/output" &
client=$!
for ((tries = 0; tries < 200; ++tries)); do
  ! grep -q signed "$work/output" || break
  sleep 0.1
done
echo >&4
wait "$client" || fail "the client ended with $?"
grep -q '^signed in' "$work/output" || fail "the client said: $(cat "$work/output")"

# Completion, as bash makes it.
eval "$(wine userauth.exe completion bash | tr -d '\r')"
completes() {
  local expected=$1
  shift
  COMP_WORDS=(userauth "$@") COMP_CWORD=$#
  _userauth
  [ "${COMPREPLY[*]}" = "$expected" ] || fail "\"$*\" completes to \"${COMPREPLY[*]}\" instead of \"$expected\""
}
completes "sign-in sign-out" si
completes "--platform" demo --pl
completes "export" contacts e
completes "client.json" --config client.j

wine suite-conformance.exe --library EventAdmin > "$work/points" || fail "the installed event hub: $(cat "$work/points")"

# What is wrong with the SDK's configuration, the platform and the libraries is found, and nothing with what is right.
wine userauth.exe doctor --platform "$url" > "$work/doctor" || fail "the doctor finds a fault: $(cat "$work/doctor")"
echo '{}' > ZMSCoreConfig.json
cp "$prefix/bin/Logger.dll" "$work/" && rm "$prefix/bin/Logger.dll" && cp "$work/Logger.dll" "$work/consumer/"
! WINEPATH="Z:$work/consumer" wine userauth.exe doctor --platform http://127.0.0.1:9 > "$work/doctor" || fail "no fault found"
for fault in 'Logger.dll comes from' 'has no "client_id"' 'no account platform answers'; do
  grep -q "FAILED .*$fault" "$work/doctor" || fail "the doctor does not find \"$fault\": $(cat "$work/doctor")"
done
echo "package: the installed library signed in; completion, doctor and conformance program answer"
