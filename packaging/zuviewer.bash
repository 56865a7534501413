# Completion of zuviewer for bash. The options are the ones that the installed program knows.
_zuviewer() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    COMPREPLY=()
    case $prev in
    --camera)
        COMPREPLY=($(compgen -W "$("$1" --list-cameras 2>/dev/null | sed -nE 's/^ *([0-9]+).*/\1/p')" -- "$cur"))
        return
        ;;
    --frames | --size | --trigger) return ;;
    --plugin-path) COMPREPLY=($(compgen -d -- "$cur") $(compgen -f -X '!*.so' -- "$cur")); return ;;
    --settings | --screenshot | --screenshot-3d | --export-ply) COMPREPLY=($(compgen -f -- "$cur")); return ;;
    esac
    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$("$1" --help 2>/dev/null | grep -oE '^  (-[a-z], )?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+')" -- "$cur"))
        return
    fi
    COMPREPLY=($(compgen -d -- "$cur") $(compgen -f -X '!*.@(zuchain|tif|tiff|png)' -- "$cur"))
}
complete -o filenames -F _zuviewer zuviewer
