# SPDX-License-Identifier: MIT
#
# What bash offers behind "glyphward-fonts".
_glyphward_fonts() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' words='' offered
    for offered in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $offered in
        -*) ;;
        *)
            if [ -z "$command" ]; then
                command=$offered
            elif [ "$command" = path ]; then
                command="path $offered"
            fi
            ;;
        esac
    done
    COMPREPLY=()
    case $before in
    --format) mapfile -t COMPREPLY < <(compgen -W 'type1 truetype opentype bitmap alias' -- "$word") && return ;;
    --scope) mapfile -t COMPREPLY < <(compgen -W 'mine everyone' -- "$word") && return ;;
    --of) mapfile -t COMPREPLY < <(compgen -W 'me host installation session' -- "$word") && return ;;
    --owner) mapfile -t COMPREPLY < <(compgen -u -- "$word") && return ;;
    --root | --to | --from) mapfile -t COMPREPLY < <(compgen -d -- "$word") && return ;;
    esac
    local common='--json --dry-run --quiet --null --root --help'
    case $command in
    '') words='list verify why fontset doctor install delete undo trash apply export path --help --version' ;;
    list) words="$common --long --format --scope --charset --owner --unusable" ;;
    why) words="$common --cure --server" ;;
    fontset | doctor) words="$common --server" ;;
    install) words="$common --to --me --everyone --replace --keep" ;;
    delete) words="$common --yes --force" ;;
    trash) words="$common --empty" ;;
    apply) words="$common --check" ;;
    export) words="$common --from --me --everyone" ;;
    path) words='show add remove move apply save --help' ;;
    'path show') words="$common --of --all --server" ;;
    'path add' | 'path remove' | 'path move') words="$common --of --front --server" ;;
    'path apply' | 'path save') words="$common --server" ;;
    *) words=$common ;;
    esac
    case $command in
    '' | path) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word") && return ;;
    esac
    case $word in
    -*) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word") ;;
    *)
        case $command in
        verify | install | apply | export | 'path '*) mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        fontset) mapfile -t COMPREPLY < <(compgen -W "$(locale -a)" -- "$word") ;;
        esac
        ;;
    esac
}
complete -o filenames -F _glyphward_fonts glyphward-fonts
