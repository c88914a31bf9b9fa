# bash completion for zeldb: the tool itself knows what can follow.
_zeldb() {
  local cur prev words cword line
  _init_completion -n := || return
  COMPREPLY=()
  while IFS= read -r line; do
    case $line in
      :files) _filedir ;;
      *) COMPREPLY+=("${line%%$'\t'*}") ;;
    esac
  done < <("${words[0]}" complete -- "${words[@]:0:cword+1}" 2>/dev/null)
  __ltrim_colon_completions "$cur"
} &&
  complete -F _zeldb zeldb
