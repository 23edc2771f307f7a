# bash completion for tql, the tql70 command-line program: the command,
# its sub-command, the options of each, and file names elsewhere.
_tql()
{
    local cur prev command
    cur="${COMP_WORDS[COMP_CWORD]}"
    prev="${COMP_WORDS[COMP_CWORD-1]}"
    command="${COMP_WORDS[1]}"
    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W "env version getenv errors expand name parse num cp rm du df math path grep crypt hash msg prj help --help --version" -- "$cur"))
        return
    fi
    case "$prev" in
        --level) COMPREPLY=($(compgen -W "site custom home local" -- "$cur")); return ;;
    esac
    case "$command" in
        env)
            if [ "$COMP_CWORD" -eq 2 ]; then
                COMPREPLY=($(compgen -W "get set rm files check --help" -- "$cur"))
            else
                COMPREPLY=($(compgen -W "--level --save --help" -- "$cur"))
            fi ;;
        help) [ "$COMP_CWORD" -eq 2 ] && COMPREPLY=($(compgen -W "env version getenv errors expand name parse num cp rm du df math path grep crypt hash msg prj" -- "$cur")) ;;
        hash)
            if [ "$COMP_CWORD" -eq 2 ]; then
                COMPREPLY=($(compgen -W "dump get put stat --help" -- "$cur"))
            else
                COMPREPLY=($(compgen -f -- "$cur"))
            fi ;;
        msg) COMPREPLY=($(compgen -W "list --lang --help" -- "$cur")) ;;
        prj)
            if [ "$COMP_CWORD" -eq 2 ]; then
                COMPREPLY=($(compgen -W "new test copy rm info --help" -- "$cur"))
            else
                COMPREPLY=($(compgen -W "--subdirs --copy --overwrite" -d -- "$cur"))
            fi ;;
        name)
            case "$COMP_CWORD" in
                2) COMPREPLY=($(compgen -W "check fix" -- "$cur")) ;;
                3) COMPREPLY=($(compgen -W "identifier indexed workspace design node component" -- "$cur")) ;;
                *) COMPREPLY=($(compgen -W "--allow-dot" -- "$cur")) ;;
            esac ;;
        path) [ "$COMP_CWORD" -eq 2 ] && COMPREPLY=($(compgen -W "native canon" -- "$cur")) ;;
        num) [ "$COMP_CWORD" -eq 2 ] && COMPREPLY=($(compgen -W "fmt" -- "$cur")) ;;
        crypt) [ "$COMP_CWORD" -eq 2 ] && COMPREPLY=($(compgen -W "encrypt decrypt header" -- "$cur")) ;;
        math)
            [ "$COMP_CWORD" -eq 2 ] && COMPREPLY=($(compgen -W "cdnolog snopwr eeround" -- "$cur")) ;;
        parse) COMPREPLY=($(compgen -W "--seps --marks --end --help" -f -- "$cur")) ;;
        grep) COMPREPLY=($(compgen -W "-o -s --help" -f -- "$cur")) ;;
        cp|rm) COMPREPLY=($(compgen -W "-r --help" -f -- "$cur")) ;;
        du|df) COMPREPLY=($(compgen -d -- "$cur")) ;;
    esac
}
complete -o default -F _tql tql
