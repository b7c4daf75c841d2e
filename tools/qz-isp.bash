# Bash completion of qz-isp.
_qz_isp()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local words='' files=''
    case "${COMP_WORDS[1]} $COMP_CWORD" in
    *' 1')
        words='run get report sweep diff tuning sample record makernote help --version'
        ;;
    'run '*)
        case $previous in
        --tuning | --scene | --raw | --makernote) files=yes ;;
        --frame) words=all ;;
        *) words='--tuning --scene --frame --set --json --all --raw --explain --makernote' ;;
        esac
        ;;
    'get '*)
        case $previous in
        --tuning | --scene) files=yes ;;
        --frame) ;;
        *) words='--tuning --scene --frame --set' ;;
        esac
        ;;
    'report '*)
        case $previous in
        --tuning | --scene) files=yes ;;
        --frame) words=all ;;
        *) words='--tuning --scene --frame --set' files=yes ;;
        esac
        ;;
    'sweep '*)
        case $previous in
        --tuning | --scene | --output) files=yes ;;
        --frame) words=all ;;
        --format) words='csv jsonl' ;;
        *) words='--over --fields --tuning --scene --frame --set --format --no-header --shard --jobs --output' ;;
        esac
        ;;
    'tuning 2')
        words='pack show'
        ;;
    'sample '*)
        [ "$COMP_CWORD" = 2 ] && words='scene tuning' || files=yes
        ;;
    'help '*)
        words='run get report sweep diff tuning sample record makernote'
        ;;
    'record 2' | 'makernote 2')
        words=show
        ;;
    'record '* | 'makernote '* | 'diff '*)
        files=yes
        words='--json --all'
        [ "${COMP_WORDS[1]}" = diff ] && words+=' --set'
        ;;
    'tuning '*)
        files=yes
        case ${COMP_WORDS[2]} in
        pack) words=--force ;;
        show) words=--json ;;
        esac
        ;;
    esac
    [[ $current == -* || -z $files ]] && words+=' --help --quiet --verbose'
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current"; [ -z "$files" ] || compgen -f -- "$current")
}
complete -o filenames -F _qz_isp qz-isp
