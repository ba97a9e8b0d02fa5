# bash completion for the tools of AccessArbiter (hl-appmgr, hl-settingsd, hl-settings, hl-ask,
# hl-ipc, hl-session): the words are the subcommands and options that the tool's own --help lists.
_hl_tool_words() {
  "$1" --help 2>/dev/null | grep -oE '(^  [a-z][a-z-]+|--[a-z][a-z-]*)' | sed 's/^ *//' | sort -u
}

_hl_tool() {
  local current=${COMP_WORDS[COMP_CWORD]}
  if [[ $COMP_CWORD -ge 2 && ${COMP_WORDS[1]} != -* ]] &&
     "$1" "${COMP_WORDS[1]}" --help > /dev/null 2>&1; then
    mapfile -t COMPREPLY < <(compgen -W "$("$1" "${COMP_WORDS[1]}" --help 2>/dev/null |
                                          grep -oE -- '--[a-z][a-z-]*' | sort -u)" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -W "$(_hl_tool_words "$1")" -- "$current")
  fi
  [[ ${#COMPREPLY[@]} -gt 0 ]] || mapfile -t COMPREPLY < <(compgen -f -- "$current")
}

complete -F _hl_tool hl-appmgr hl-settingsd hl-settings hl-ask hl-ipc hl-session
