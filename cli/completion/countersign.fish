# SPDX-License-Identifier: Apache-2.0
# fish completion for countersign. Commands and options come from the program's own help, with what that says of them.

# The command that has been typed; nothing before it is there.
function __countersign_command
    set -l words (commandline -opc)
    for word in $words[2..-1]
        if not string match -q -- '-*' $word
            echo $word
            return
        end
    end
end

function __countersign_has_command
    contains -- (__countersign_command) $argv
end

function __countersign_has_no_command
    test -z (__countersign_command)
end

# The lines of the help of a command, those joined that are one.
function __countersign_help
    set -l text (command countersign help $argv 2>/dev/null | string collect)
    string replace -ar '\n {11,}' ' ' -- "$text" | string split \n
end

# Offers the options that the help of the first word tells of, behind any of the words.
function __countersign_add_options
    set -l condition "__countersign_has_command $argv"
    for line in (__countersign_help $argv[1])
        if string match -q -- '  FILE*' $line
            complete -c countersign -n $condition -F
            continue
        end
        string match -q -r -- '^  (-(?<short>[A-Za-z0-9]),)?--(?<long>[a-z0-9-]+)( (?<value>[A-Z]+))?( [ .A-Z]*)?(  +(?<description>.*))?$' $line
        or continue
        set -l names -l $long
        test -n "$short"
        and set -a names -s $short
        switch "$long $value"
            case '* ' '* REQUIRED'
            case '* PEM'
                set -a names -x -a '(__fish_complete_suffix .pem)'
            case '* DIR'
                set -a names -x -a '(__fish_complete_directories)'
            case 'signature *'
                set -a names -x -a '(__fish_complete_suffix .sig)'
            case '* PATH' '* NAME'
                set -a names -r -F
            case '*'
                set -a names -x
        end
        complete -c countersign -n $condition $names -d "$description"
    end
end

# Without the program there is nothing to tell.
command -q countersign
or return

complete -c countersign -f
complete -c countersign -n __countersign_has_no_command -s h -l help -d 'Print the help and end'
complete -c countersign -n __countersign_has_no_command -s V -l version -d 'Print the version and end'
for line in (__countersign_help)
    set -l parts (string match -r -- '^  ([a-z]+)  +([A-Z].*)$' $line)
    or continue
    complete -c countersign -n '__countersign_has_no_command; or __countersign_has_command help' -a $parts[2] -d $parts[3]
    if test $parts[2] = test
        __countersign_add_options test verify
    else
        __countersign_add_options $parts[2]
    end
end
complete -c countersign -n __countersign_has_no_command -a verify -d 'The same as test'
complete -c countersign -n __countersign_has_no_command -a help -d 'Print the help of a command'
