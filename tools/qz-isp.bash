# Bash completion of qz-isp.

# The names of a kind that the program lists for the tuning and the scene on the line.
_qz_isp_names()
{
    local i inputs=()
    [[ ${line[1]} == compare && ${line[2]} != -* ]] && inputs=(--tuning "${line[2]/#\~/$HOME}")
    for ((i = 2; i + 1 < ${#line[@]}; ++i)); do
        [[ ${line[i]} == --tuning || ${line[i]} == --scene ]] && inputs+=("${line[i]}" "${line[i + 1]/#\~/$HOME}")
    done
    "${line[0]/#\~/$HOME}" sweep --list "${inputs[@]}" 2> /dev/null < /dev/null |
        sed -nE "s/^($1) +([^ ]+).*/\\2/; t kind; b; :kind; ${2:-}; p"
}

# Names of inputs and of values of the tuning, each with what follows it.
_qz_isp_settings()
{
    [[ $current == *=* ]] && return
    words=$(_qz_isp_names 'input|tuning' 's/$/=/')
    compopt -o nospace 2> /dev/null
}

# Names of fields with commas between: those that are there stay.
_qz_isp_fields()
{
    local before=''
    [[ $current == *,* ]] && before=${current%,*},
    words=$(_qz_isp_names field "s|^|$before|")
}

_qz_isp()
{
    # The words as a shell has them: Bash takes those with a colon or an equals sign apart.
    local line=("${COMP_WORDS[@]}") cursor=$COMP_CWORD
    if [[ -n ${COMP_LINE-} ]]; then
        read -ra line <<< "${COMP_LINE:0:COMP_POINT}"
        [[ ${COMP_LINE:0:COMP_POINT} == *[[:space:]] ]] && line+=('')
        cursor=$((${#line[@]} - 1))
    fi
    local current=${line[cursor]} previous=${line[cursor - 1]}
    local words='' files=''
    case "${line[1]} $cursor" in
    *' 1')
        words='run get report sweep compare diff tuning sample record makernote help --version'
        ;;
    'run '*)
        case $previous in
        --tuning | --scene | --raw | --makernote) files=yes ;;
        --frame) words="all $(_qz_isp_names frame)" ;;
        --set) _qz_isp_settings ;;
        *) words='--tuning --scene --frame --set --json --all --raw --explain --makernote' ;;
        esac
        ;;
    'get '*)
        case $previous in
        --tuning | --scene) files=yes ;;
        --frame) words=$(_qz_isp_names frame) ;;
        --set) _qz_isp_settings ;;
        *)
            [[ $current == -* ]] || _qz_isp_fields
            words+=' --tuning --scene --frame --set'
            ;;
        esac
        ;;
    'report '*)
        case $previous in
        --tuning | --scene | --against) files=yes ;;
        --frame) words="all $(_qz_isp_names frame)" ;;
        --set) _qz_isp_settings ;;
        *) words='--tuning --scene --frame --set --against --static --open' files=yes ;;
        esac
        ;;
    'sweep '*)
        case $previous in
        --tuning | --scene | --output | --plot) files=yes ;;
        --frame) words="all $(_qz_isp_names frame)" ;;
        --set | --over) _qz_isp_settings ;;
        --fields) _qz_isp_fields ;;
        --format) words='csv jsonl' ;;
        *) words='--over --fields --tuning --scene --frame --set --format --no-header --shard --jobs --output --plot --list' ;;
        esac
        ;;
    'compare '*)
        case $previous in
        --scene) files=yes ;;
        --frame) words=$(_qz_isp_names frame) ;;
        --set | --change | --over) _qz_isp_settings ;;
        *) words='--scene --frame --set --change --over --jobs --json --all' files=yes ;;
        esac
        ;;
    'tuning 2')
        words='pack show check'
        ;;
    'sample '*)
        [ "$cursor" = 2 ] && words='scene tuning' || files=yes
        ;;
    'help '*)
        words='run get report sweep compare diff tuning sample record makernote'
        ;;
    'record 2' | 'makernote 2')
        words=show
        ;;
    'record '* | 'makernote '* | 'diff '*)
        files=yes
        words='--json --all'
        [ "${line[1]}" = diff ] && words+=' --set'
        ;;
    'tuning '*)
        files=yes
        case ${line[2]} in
        pack) words=--force ;;
        show)
            words='--json --values'
            if [[ $previous != show && $previous != -* && $current != -* ]]; then
                files=''
                words+=" $("${line[0]/#\~/$HOME}" tuning show --values "${previous/#\~/$HOME}" 2> /dev/null < /dev/null |
                    sed -n 's/^\([^ ][^:]*\): offset .*/\1/p')"
            fi
            ;;
        check)
            case $previous in
            --fail-on | --severity) words='note warning error' files='' ;;
            *) words='--json --all --fail-on --severity' ;;
            esac
            ;;
        esac
        ;;
    esac
    [[ $current == -* || -z $files ]] && words+=' --help --quiet --verbose'
    [[ -n $files ]] && compopt -o filenames 2> /dev/null
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current"; [ -z "$files" ] || compgen -f -- "$current")
    # Of a word with a colon Bash replaces what is behind it.
    [[ -z ${COMP_LINE-} || $current != *:* ]] || COMPREPLY=("${COMPREPLY[@]#"${current%"${current##*:}"}"}")
}
complete -F _qz_isp qz-isp
