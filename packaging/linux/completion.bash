# SPDX-License-Identifier: MIT
# Completion of the companion's command line in bash. What there is it asks of the program's own help,
# so that it offers neither more nor less.

_vorn_hotpixel() {
  local program=$1 word=$2 previous=$3
  local -a words=()
  local i help kind=
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; i++)); do
    [[ ${COMP_WORDS[i]} = -* ]] || words+=("${COMP_WORDS[i]}")
  done
  help=$("$program" ${words[0]:+"${words[0]}"} --help 2>/dev/null) || return 0

  if [[ $previous = --* ]]; then
    # The value of an option that takes one, such as "--out <FILE>".
    kind=$(sed -nE "s/^  (-[a-z], )?$previous <([^>]+)>.*/\2/p" <<<"$help")
  fi
  if [[ -z $kind && $word = -* ]]; then
    kind=options
  elif [[ -z $kind && ${#words[@]} = 0 ]]; then
    kind=commands
  elif [[ -z $kind && " ${COMP_WORDS[*]} " = *" --frames "* ]]; then
    kind=FRAMES
  elif [[ -z $kind ]]; then
    # "Usage: PROGRAM COMMAND CAMERA... FILE [options]": from a value with dots on, it may be that
    # one again or the one behind it.
    local -a values=()
    read -ra values < <(sed -nE 's/^Usage: [^ ]+ [^ ]+ //p' <<<"$help")
    kind=${values[${#words[@]} - 1]:-}
    for ((i = 0; i < ${#words[@]} && i < ${#values[@]}; i++)); do
      if [[ ${values[i]} = *...* ]]; then
        kind="${values[i]} ${values[i + 1]:-}"
        break
      fi
    done
  fi

  case $kind in
    options)
      mapfile -t COMPREPLY < <(compgen -W \
        "$(sed -nE 's/^  (-[a-z], )?(--[a-z-]+).*/\2/p' <<<"$help")" -- "$word") ;;
    commands)
      mapfile -t COMPREPLY < <(compgen -W \
        "$(sed -nE '/^Commands.*:$/,/^$/s/^  ([a-z][a-z-]*).*/\1/p' <<<"$help")" -- "$word") ;;
    FORMAT)
      mapfile -t COMPREPLY < <(compgen -W \
        "$("$program" convert --help 2>/dev/null |
          sed -nE '/^Formats:$/,/^$/s/^  ([a-z][a-z0-9]*) .*/\1/p')" -- "$word") ;;
    *)
      if [[ $kind = *CAMERA* ]]; then
        mapfile -t COMPREPLY < <(compgen -W \
          "all $("$program" cameras --json 2>/dev/null |
            grep -oE '"serNo":"[^"]*"' | cut -d '"' -f 4)" -- "$word")
      fi
      # Words to choose from, such as "on|off|test".
      if [[ ${#words[@]} -gt 1 && $kind =~ ([a-z]+(\|[a-z]+)+) ]]; then
        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < \
          <(compgen -W "${BASH_REMATCH[1]//|/ }" -- "$word")
      fi
      if [[ $kind =~ ^IN|^OUT|FILE|FRAME|FOLDER|LIST|DIR && ${#COMPREPLY[@]} = 0 ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
      fi ;;
  esac
}
complete -F _vorn_hotpixel vorn-hotpixel-demo
