#!/usr/bin/env bash
# Prepares the user session of the hosted platform for its applications. Source it:
#
#   . tools/hosted-session/session-env.sh [--print]
#
# Fonts: the platform's UI family "Halcyra Sans Text" is installed as a fontconfig alias in
# $XDG_CONFIG_HOME/fontconfig/conf.d (default ~/.config), where fontconfig reads user
# configuration. With --print the script only shows what it would write.
#
# Exit status: 0 on success, 1 when the configuration can't be written.

hl_session_dir="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
hl_conf_dir="${XDG_CONFIG_HOME:-$HOME/.config}/fontconfig/conf.d"
hl_conf_name="60-halcyra-sans-text.conf"

if [[ "${1:-}" == "--print" ]]; then
  echo "would install ${hl_session_dir}/fontconfig/${hl_conf_name} as ${hl_conf_dir}/${hl_conf_name}"
  return 0 2>/dev/null || exit 0
fi

if ! mkdir -p "${hl_conf_dir}" || ! cp "${hl_session_dir}/fontconfig/${hl_conf_name}" "${hl_conf_dir}/${hl_conf_name}"; then
  echo "hosted-session: can't write ${hl_conf_dir}/${hl_conf_name}" >&2
  return 1 2>/dev/null || exit 1
fi
return 0 2>/dev/null || exit 0
