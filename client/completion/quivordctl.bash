# Completion of quivordctl in bash: the program itself says what may stand next.
_quivordctl() {
  local line word
  COMPREPLY=()
  while IFS= read -r line; do
    case $line in
      :files) compopt -o filenames; mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}") ;;
      :folders) compopt -o filenames; mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -d -- "${COMP_WORDS[COMP_CWORD]}") ;;
      *) word=${line%%$'\t'*}; COMPREPLY+=("$word") ;;
    esac
  done < <("${COMP_WORDS[0]}" complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _quivordctl quivordctl
