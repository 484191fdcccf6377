#compdef tembrakey
# Completion of tembrakey for zsh.
_tembrakey() {
    local -a lines
    lines=("${(@f)$("$words[1]" __complete "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
    if [[ $lines[1] == :files ]]; then
        compset -P '--*='
        _files
    elif [[ -n $lines ]]; then
        lines=("${(@)lines//:/\\:}")
        lines=("${(@)lines/$'\t'/:}")
        _describe tembrakey lines
    fi
}
if [[ $funcstack[1] == _tembrakey ]]; then
    _tembrakey "$@"
else
    compdef _tembrakey tembrakey
fi
