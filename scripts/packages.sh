# Sourced by the other scripts: installs what is missing.

# install_missing LIST...: the packages named in the lists, one a line, '#' for comments. The
# network is asked only if something is missing.
install_missing() {
  local missing=() package
  while read -r package; do
    if ! dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$'; then
      missing+=("$package")
    fi
  done < <(sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$@")
  if [ "${#missing[@]}" -eq 0 ]; then
    return 0
  fi

  echo "Installing: ${missing[*]}" >&2
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
      echo "These packages are missing, and installing them needs root or sudo." >&2
      return 1
    fi
    as_root=(sudo)
  fi
  # Through env, since sudo starts with an environment of its own.
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${missing[@]}" >&2
}
