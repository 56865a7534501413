# Completion of tof for bash.
_tof() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W "info record process cloud image accuracy --help --version" -- "$cur"))
        return
    fi
    case $prev in
    --transform) COMPREPLY=($(compgen -W "depth amplitude intensity concat aminb ab hybrid" -- "$cur")); return ;;
    --camera)
        local cameras="wave hybrid grey"
        [ "$command" = accuracy ] && cameras="wave hybrid wave,hybrid"
        COMPREPLY=($(compgen -W "$cameras" -- "$cur"))
        return
        ;;
    --phases) COMPREPLY=($(compgen -W "2 4 8 2,4,8" -- "$cur")); return ;;
    --bits) COMPREPLY=($(compgen -W "8 12 16 8,12" -- "$cur")); return ;;
    --format) COMPREPLY=($(compgen -W "png png16 tiff" -- "$cur")); return ;;
    --frames)
        # A number for record and accuracy, no value for info.
        [ "$command" != info ] && return ;;
    --frame | --set | --channel | --map | --range | --memory | --max-pages | --max-expansion | --focal-length | --cell-size | --center-offset | \
        --frequency | --confidence | --offset | --z-zoom | --max-width | --pulse | --distance | --reflectivity | \
        --ambient | --exposure | --size | --seed | --max-bias | --max-std | --max-ratio | --min-valid) return ;;
    esac
    if [[ $cur == -* ]]; then
        local options=--help limits="--memory --max-pages --max-expansion"
        case $command in
        info) options+=" --json --frames --chain $limits" ;;
        record) options+=" --camera --frames --set --compress --list" ;;
        process) options+=" --transform --compress $limits" ;;
        cloud) options+=" --frame --from-settings --settings-file --lens --no-lens --focal-length --cell-size
            --center-offset --frequency --confidence --offset --ortho --no-ortho --z-zoom --max-width $limits" ;;
        image) options+=" --frame --format --channel --map --range $limits" ;;
        accuracy) options+=" --camera --frequency --pulse --distance --reflectivity --ambient --phases --bits
            --exposure --frames --size --seed --no-noise --confidence --csv --max-bias --max-std --max-ratio
            --min-valid" ;;
        esac
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi
    COMPREPLY=($(compgen -f -- "$cur"))
}
complete -o filenames -F _tof tof
