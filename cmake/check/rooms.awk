# Reads the project's C++ files and prints every #include that the plan of rooms does not allow, as FILE:LINE: reason.
# A room is a folder; arrows between rooms point downwards only, and a room without a floor is an error.
# Input: -v files="list of all files", then the files.

BEGIN {
  count = split(files, paths, "\n")
  for (i = 1; i <= count; i++) known[paths[i]] = 1
  count = split("include suite/include src", roots, " ")

  # Room -> rooms that it may include besides itself.
  sees["include"] = ""
  sees["suite/include"] = ""
  sees["suite/platform"] = ""
  sees["suite"] = "suite/include suite/platform"
  sees["suite/conformance"] = "suite/include"
  sees["src"] = "include suite/include"
  sees["host"] = "include suite/include"
  sees["sandbox/accountsdk"] = "sandbox"
  sees["sandbox/server"] = "sandbox"

  # Wing -> its rooms from the ground up, one floor a number. A room sees those of the floors beneath it.
  floors("src", "core 1, request 2, token 3, profile 3, sysconf 3, accountsdk 3, synckey 3, contacts 3")
  floors("host", "system 1, text 1, platform 2, commandline 2, session 3, steps 4")
  floors("sandbox/server", "crypto 1, http 2, state 2, checks 3, token 4, profile 4, sysconf 4, synckey 4, contacts 4, page 5")

  # Area, or a room of its own rule -> libraries whose headers it may not include, as the start of a header's name in
  # small letters.
  shuns["include"] = "json/ openssl/ curl/ windows.h"
  shuns["suite/include"] = "json/ openssl/ curl/ spdlog/ windows.h"
  shuns["src"] = "curl/ spdlog/ fmt/ httplib.h cli/"
  shuns["suite"] = "openssl/ httplib.h cli/"
  shuns["suite/http"] = "httplib.h cli/"
  shuns["suite/conformance"] = "cli/ curl/ spdlog/ json/"
  shuns["sandbox"] = "curl/ spdlog/ fmt/"
  shuns["host"] = "curl/ spdlog/ fmt/ httplib.h openssl/"
}

function floors(wing, plan,   rooms, words, i) {
  top[wing] = 99
  for (i = split(plan, rooms, ", "); i > 0; i--) {
    split(rooms[i], words, " ")
    floor[wing "/" words[1]] = words[2]
  }
}

function room_of(path, part) {
  split(path, part, "/")
  if (path ~ /^sandbox\/[^\/]+\/[^\/]+\//) return part[1] "/" part[2] "/" part[3]
  if (path ~ /^(src|suite|host|sandbox)\/[^\/]+\//) return part[1] "/" part[2]
  return part[1]
}

function area_of(room) { return room == "suite/include" ? room : substr(room, 1, index(room "/", "/") - 1) }

# The part of the project that is built from one set of floors.
function wing_of(room) { return room ~ /^sandbox\/server/ ? "sandbox/server" : room ~ /^sandbox\// ? room : area_of(room) }

function floor_of(room) { return room in floor ? floor[room] : room in top ? top[room] : 0 }

function has(list, word) { return index(" " list " ", " " word " ") > 0 }

function ends_with(path, end) { return length(path) > length(end) && substr(path, length(path) - length(end)) == "/" end }

# The project's file that an include names, empty when it is a library's. Looked for beside the including file, in its
# room, in the folders that every room has on its path, and at last anywhere.
function resolve(from, name, quoted,   path, found, i) {
  path = from
  sub(/[^\/]*$/, name, path)
  while (sub(/[^\/]+\/\.\.\//, "", path)) {}
  if (quoted && path in known) return path
  if (quoted) for (path in known) if (room_of(path) == room_of(from) && ends_with(path, name)) return path
  for (i = 1; i <= count; i++) if ((roots[i] "/" name) in known) return roots[i] "/" name
  if (quoted) for (path in known) if (ends_with(path, name)) found = path
  return found
}

function allowed(from, to) {
  if (from == to || from == "tests" || from == "bench" || from == "instruments") return 1
  if (wing_of(from) in top && wing_of(from) == wing_of(to)) return floor_of(to) > 0 && floor_of(to) < floor_of(from)
  if (from in sees) return has(sees[from], to)
  return has(sees[wing_of(from)], to)
}

/^[ \t]*#[ \t]*include[ \t]*[<"]/ {
  name = $0
  sub(/^[ \t]*#[ \t]*include[ \t]*[<"]/, "", name)
  sub(/[>"].*$/, "", name)
  from = room_of(FILENAME)
  target = resolve(FILENAME, name, index($0, "\"") > 0)
  if (target != "") {
    if (!allowed(from, room_of(target))) report(from " may not include from " room_of(target) ": " target)
    next
  }
  split(shuns[from in shuns ? from : area_of(from)], banned, " ")
  for (i in banned) if (index(tolower(name), banned[i]) == 1) report(from " may not include <" name ">")
}

function report(text) {
  printf "%s:%d: %s\n", FILENAME, FNR, text
  failed = 1
}

END { exit failed }
