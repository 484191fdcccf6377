# Completion of tembrakey for fish.
function __tembrakey_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l lines ($words[1] __complete $words[2..-1] 2>/dev/null)
    if test "$lines[1]" = :files
        set -l option (string match -r -- '^--[^=]+=' $words[-1])
        printf '%s\n' "$option"(__fish_complete_path (string replace -- "$option" '' $words[-1]))
    else
        printf '%s\n' $lines
    end
end
complete -c tembrakey -f -a '(__tembrakey_complete)'
