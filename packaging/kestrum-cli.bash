# bash completion for kestrum-cli                          -*- shell-script -*-

_kestrum_cli() {
    local cur prev words cword
    if declare -F _init_completion >/dev/null; then
        _init_completion -n : || return
    else
        cur=${COMP_WORDS[COMP_CWORD]}
        prev=${COMP_WORDS[COMP_CWORD - 1]}
        words=("${COMP_WORDS[@]}")
        cword=$COMP_CWORD
    fi

    local steps="load info fill clear sum crc dump save ysm"
    local models="CRC-32/ISO-HDLC CRC-32/MPEG-2 CRC-32/ISCSI CRC-32/BZIP2 CRC-32/JAMCRC
        CRC-16/ARC CRC-16/MODBUS CRC-16/IBM-3740 CRC-16/SPI-FUJITSU CRC-16/XMODEM
        CRC-16/KERMIT CRC-8/SMBUS custom:"

    # The value of an option.
    local values=""
    case $prev in
        --format) values="bin hex s" ;;
        --sum | --kind) values="8-8 8-16 16-16" ;;
        --order) values="be le" ;;
        --complement) values="none ones twos" ;;
        --model) values=$models ;;
        --area | --range | --offset | --record-length | --store) return ;;
    esac
    if [[ -n $values ]]; then
        COMPREPLY=($(compgen -W "$values" -- "$cur"))
        declare -F __ltrim_colon_completions >/dev/null && __ltrim_colon_completions "$cur"
        return
    fi

    # The step the cursor is in and how many words of it come before.
    local step="" n=0 i
    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
            --area | --range | --offset | --record-length | --store | --format | --sum | \
                --kind | --order | --complement | --model)
                ((i++)) ;;
            --*) ;;
            *)
                if [[ " $steps " == *" ${words[i]} "* ]]; then
                    step=${words[i]}
                    n=0
                else
                    ((n++))
                fi
                ;;
        esac
    done

    local options=""
    case $step in
        "") options="--area --strict --verbose --help --version" ;;
        load) options="--range --offset" ;;
        sum) options="--store --kind --order --complement" ;;
        crc) options="--model --store --order" ;;
        save) options="--format --range --record-length" ;;
        ysm) options="--sum --range" ;;
    esac
    [[ -n $step ]] && options+=" --help"

    if [[ $cur == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$cur"))
        return
    fi
    case $step in
        load | save | ysm | info)
            # The file name right after the step; info takes any number.
            if ((n == 0)) || [[ $step == info ]]; then
                if declare -F _filedir >/dev/null; then
                    _filedir
                else
                    COMPREPLY=($(compgen -f -- "$cur"))
                fi
                [[ $step == info && $n -gt 0 ]] && COMPREPLY+=($(compgen -W "$steps" -- "$cur"))
                return
            fi
            ;;
    esac
    COMPREPLY=($(compgen -W "$steps" -- "$cur"))
} &&
    complete -F _kestrum_cli kestrum-cli

# ex: filetype=sh
