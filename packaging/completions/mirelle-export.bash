# Completion of mirelle-export for bash.

_mirelle_export() {
    local current=${COMP_WORDS[COMP_CWORD]}
    local previous=${COMP_WORDS[COMP_CWORD-1]}
    local command=${COMP_WORDS[1]}
    local words=
    COMPREPLY=()

    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W "frames info --help --version" -- "$current")
        return
    fi

    # bash takes "--format=exr" apart at the equals sign.
    if [ "$current" = "=" ]; then
        current=
    elif [ "$previous" = "=" ]; then
        previous=${COMP_WORDS[COMP_CWORD-2]}
    fi
    if [ "$command" = frames ]; then
        case $previous in
            --format) words="png exr" ;;
            --layers) words="all visible active" ;;
            --frames) words="all range" ;;
            --clones) words="exclude hold sequence" ;;
            --name) return ;;
        esac
    fi
    if [ -z "$words" ] && [[ $current == -* ]]; then
        case $command in
            frames)
                words="--name --format --layers --frames --clones --combine --black --no-alpha --verbose --help --version" ;;
            info)
                words="--json --verbose --help --version" ;;
        esac
    fi
    if [ -n "$words" ]; then
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
        return
    fi
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -d -- "$current"; compgen -f -X '!*.mr' -- "$current")
}

complete -F _mirelle_export mirelle-export
