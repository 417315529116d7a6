# What the checks of the plug-in's images share. $image is the one that is checked.

fail() { echo "$image: $*" >&2; exit 1; }

# check_imports LIBPLATFORM NAME…: the names are calls of the platform, as the
# stand-in supplies them, or plain C functions.
check_imports() {
  local allowed name
  allowed=$(nm -D --defined-only "$1" | awk '$2 == "T" && $3 !~ /^_/ {print $3}')
  allowed+=$'\n'$(printf '%s\n' calloc free malloc memcmp memcpy memmove memset strlen)
  shift
  for name; do
    grep -qxF "$name" <<<"$allowed" || fail "imports $name"
  done
}

# expect WHAT WANTED FOUND: both are the same.
expect() {
  [[ $2 == "$3" ]] || fail "$1:"$'\n'"$(diff <(echo "$2") <(echo "$3"))"
}
