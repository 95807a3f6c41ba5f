# Completion of tzvio for bash. What there is to complete the program itself says, so this file knows
# no command and no option.

_tzvio() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local offered name value values='' arguments=''
  offered=$("${COMP_WORDS[0]}" words -- "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null) || return

  while IFS=$'\t' read -r name value; do
    [ "$name" = "$previous" ] && values=$value
    [ "$name" = = ] && arguments="$arguments $value"
  done <<<"$offered"

  case "${values:-$arguments}" in
    *FILE*) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    *PORT*) mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" ports 2>/dev/null | cut -d' ' -f1) SOCKET:" -- "$current") ;;
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "$(printf %s "${values:-$arguments}" | tr '|' ' ')" -- "$current") ;;
    *) COMPREPLY=() ;;
  esac
  [ -n "$values" ] && return
  mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$(cut -f1 <<<"$offered" | grep -vx =)" -- "$current")
}
complete -F _tzvio tzvio
