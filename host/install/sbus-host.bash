# Completion of sbus-host for bash.
#
# Sub-commands, options and the choices of an option come from the help of the very program on the line, so
# they are always its own. What this file knows itself is what stands in the places in between: site files,
# links, and the actions of ctl.

# Prints the help's sub-commands.
_sbus_host_commands() {
    local line inside=
    while IFS= read -r line; do
        if [[ $line == [Ss]ubcommands: || $line == SUBCOMMANDS: ]]; then
            inside=yes
        elif [[ -z $line ]]; then
            inside=
        elif [[ $inside && $line =~ ^\ \ ([a-z][a-z-]*) ]]; then
            printf '%s\n' "${BASH_REMATCH[1]}"
        fi
    done <<<"$1"
}

# Prints the help's long options, one a line. With `--with-value` only those that take a value; with the name
# of an option instead, the choices that the help lists for it: "--format FORMAT:{table,lines}".
_sbus_host_options() {
    local line name rest pattern='^ +(-[a-zA-Z], *)?(--[a-z][a-z-]*)(.*)$' choices='^[^{]*\{([^}]*)\}'
    while IFS= read -r line; do
        [[ $line =~ $pattern ]] || continue
        name=${BASH_REMATCH[2]} rest=${BASH_REMATCH[3]}
        if [[ -z ${2-} ]]; then
            printf '%s\n' "$name"
        elif [[ $2 == --with-value ]]; then
            # A value's name stands one blank behind the option, a description further off.
            [[ $rest == \ [A-Z]* ]] && printf '%s\n' "$name"
        elif [[ $2 == "$name" && $rest =~ $choices ]]; then
            printf '%s\n' "${BASH_REMATCH[1]//,/$'\n'}"
        fi
    done <<<"$1"
}

# Puts the words up to the cursor, as the program will get them, into the caller's `words`: readline takes
# "udp://host" and "--format=json" apart at each colon and equals sign.
_sbus_host_join_words() {
    local word joining=
    words=()
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        if [[ ${#words[@]} -gt 0 && ($joining || $word =~ ^[:=]+$) ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
        [[ $word =~ ^[:=]+$ ]] && joining=yes || joining=
    done
}

_sbus_host_offer_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current"); }

# Offers files (-f, with a pattern for those to leave out) or directories (-d). They are told to readline as
# file names, so that it quotes blanks and ends directories with a slash.
_sbus_host_offer_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$@" -- "$current")
}

_sbus_host_offer_sites() {
    local directories
    mapfile -t directories < <(compgen -d -- "$current")
    _sbus_host_offer_files -f -X '!*.toml'
    COMPREPLY+=("${directories[@]}")
}

# The value of option $1, whose choices are in help $2.
_sbus_host_offer_value() {
    case $1 in
    --log-dir | --state-dir) _sbus_host_offer_files -d ;;
    --plugin | --control | --capture | --output | --plot) _sbus_host_offer_files -f ;;
    *) _sbus_host_offer_words "$(_sbus_host_options "$2" "$1")" ;;
    esac
}

# The argument number $2, counted from 0, of sub-command $1; $3 is the whole word at the cursor, $4 the help.
_sbus_host_offer_argument() {
    local actions
    case $1:$2 in
    import:*) _sbus_host_offer_files -f ;;
    run:0 | check:0 | ctl:0 | history:0) _sbus_host_offer_sites ;;
    ctl:1)
        actions=$(_sbus_host_commands "$4")
        _sbus_host_offer_words "${actions:-write poll time-sync status watch trace}"
        ;;
    read:0 | write:0 | time-sync:0 | scan:0)
        if [[ $3 == serial:* ]]; then
            _sbus_host_offer_files -f
        elif [[ $3 != *:* ]]; then
            _sbus_host_offer_words "udp:// serial:"
            compopt -o nospace 2>/dev/null
        fi
        ;;
    esac
}

# Whether $1 is a line of $2.
_sbus_host_has_line() { [[ $'\n'$2$'\n' == *$'\n'$1$'\n'* ]]; }

_sbus_host() {
    local program=${1/#\~\//$HOME/} current=$2
    local words word help option='' arguments=0 commands=()
    COMPREPLY=()
    _sbus_host_join_words
    help=$("$program" --help 2>/dev/null </dev/null)
    for word in "${words[@]:0:${#words[@]}-1}"; do
        if [[ $option ]]; then
            option= # this word is its value
        elif [[ $word == -* ]]; then
            _sbus_host_has_line "$word" "$(_sbus_host_options "$help" --with-value)" && option=$word
        elif _sbus_host_has_line "$word" "$(_sbus_host_commands "$help")"; then
            commands+=("$word")
            help=$("$program" "${commands[@]}" --help 2>/dev/null </dev/null)
        else
            arguments=$((arguments + 1))
        fi
    done

    word=${words[-1]}
    if [[ $option ]]; then
        _sbus_host_offer_value "$option" "$help"
    elif [[ $word == --*=* ]]; then
        _sbus_host_offer_value "${word%%=*}" "$help"
    elif [[ $word == -* ]]; then
        _sbus_host_offer_words "$(_sbus_host_options "$help")"
    elif [[ ${#commands[@]} -eq 0 ]]; then
        _sbus_host_offer_words "$(_sbus_host_commands "$help")"
    else
        _sbus_host_offer_argument "${commands[0]}" "$arguments" "$word" "$help"
    fi
}

complete -F _sbus_host sbus-host
