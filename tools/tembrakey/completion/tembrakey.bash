# Completion of tembrakey for bash.
_tembrakey() {
    local current=${COMP_WORDS[COMP_CWORD]//[\\\"\']/} lines
    mapfile -t lines < <("${COMP_WORDS[0]}" __complete "${COMP_WORDS[@]:1:COMP_CWORD-1}" "$current" 2>/dev/null)
    if [[ ${lines[0]} == :files ]]; then
        compopt -o default
    elif [[ ${#lines[@]} -gt 0 ]]; then
        mapfile -t COMPREPLY < <(printf '%q\n' "${lines[@]%%$'\t'*}")
    fi
}
complete -F _tembrakey tembrakey
