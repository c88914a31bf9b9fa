#compdef zeldb
# zsh completion for zeldb: the tool itself knows what can follow. It prints "WORD", a tab and what
# the word means, or ":files".
local line word
local -a candidates
for line in "${(@f)$("${words[1]}" complete -- "${(@)words[1,CURRENT]}" 2>/dev/null)}"; do
  if [[ $line == :files ]]; then
    _files
  elif [[ -n $line ]]; then
    word=${line%%$'\t'*}
    candidates+=("${word//:/\\:}:${${line#$word}#$'\t'}")
  fi
done
(( $#candidates )) && _describe zeldb candidates
