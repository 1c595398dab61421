# SPDX-License-Identifier: Apache-2.0
# Prints what zsh offers at the end of a line, one a line; in a zsh of its own on a terminal of its own.
#
#   zsh -f zshCompletion.zsh FOLDER LINE        FOLDER: where _countersign lies
zmodload zsh/zpty || exit 77
zpty shell zsh -f -i
typeset begin=$'\x01' end=$'\x02' line printed=
{
    print -r -- "PROMPT= PS2= RPROMPT=; unsetopt zle_bracketed_paste beep; stty -echo"
    print -r -- "fpath=(${(q)1} \$fpath); autoload -Uz compinit && compinit -D -u"
    print -r -- "bindkey '^I' complete-word; zstyle ':completion:*' list-grouped false"
    # What is offered is printed instead of being inserted; what is stored in arrays is no offer.
    print -r -- 'compadd() {
        if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
            builtin compadd "$@"
            return
        fi
        local -a offered
        builtin compadd -A offered "$@"
        local status_=$?
        builtin compadd "$@"
        (( $#offered )) && print -rl -- "" $offered
        return status_
    }'
    print -r -- "mark() { print -n ${(q)begin} }; over() { print -n ${(q)end}; exit }"
    print -r -- "compprefuncs=(mark) comppostfuncs=(over)"
    print -r -- "print READY"
} | while IFS= read -r line; do
    zpty -w shell "$line"
done
while zpty -r shell line; do
    [[ $line == READY* ]] && break
done
zpty -w -n shell "$2"$'\t'
while zpty -r shell line; do
    printed+=$line
    [[ $line == *$end* ]] && break
done
print -r -- ${${${printed#*$begin}%%$end*}//$'\r'/}
