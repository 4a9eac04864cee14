# bash completion for lumo-exs-import
# shellcheck shell=bash

_lumo_exs_import() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    compopt -o filenames
    case $previous in
    --package | --states | --search)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return
        ;;
    esac
    if [[ $current == --* ]]; then
        compopt +o filenames
        mapfile -t COMPREPLY < <(compgen -W '--package --states --search' -- "$current")
        return
    fi
    mapfile -t COMPREPLY < <(
        compgen -d -- "$current"
        compgen -f -- "$current" | grep -iE '\.(exs|aupreset)$'
    )
}

complete -F _lumo_exs_import lumo-exs-import
