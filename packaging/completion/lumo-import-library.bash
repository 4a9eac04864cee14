# bash completion for lumo-import-library
# shellcheck shell=bash

_lumo_import_library() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    compopt -o filenames
    case $previous in
    --package | --states | --search)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    --page | --lines | --continue | --from)
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
        return
        ;;
    --shard)
        return
        ;;
    esac
    if [[ $current == --* ]]; then
        compopt +o filenames
        mapfile -t COMPREPLY < <(compgen -W '--package --states --search --page --lines --continue
            --shard --dry-run --from --help --version' -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(
        compgen -d -- "$current"
        compgen -f -- "$current" | grep -iE '\.(exs|aupreset)$'
    )
}

complete -F _lumo_import_library lumo-import-library
