# fish completion for fldc(1). Commands, options and their values are what the program's own help says.

function __fldc_ports
    fldc --json ports 2>/dev/null | string match '*"type":"port"*' | string match -rga '"(?:name|device)":"([^"]*)"'
end

function __fldc_files --argument-names ending
    __fish_complete_path (commandline -ct) | string match -r "(?i)^[^\t]*(?:/|\.$ending)(?=\t|\$)"
end

function __fldc_complete
    set -l current (commandline -ct)
    set -l words (commandline -opc)
    set -l help (fldc --help 2>/dev/null)
    set -l command
    set -l option
    set -l arguments 0
    for word in $words[2..]
        if test -n "$option"
            set option
        else if string match -q -- '-?*' $word
            set option (string match -r -- "^  $word [A-Za-z].*" $help)
        else if test -z "$command"
            set command $word
            set help (fldc $command --help 2>/dev/null)
        else
            set arguments (math $arguments + 1)
        end
    end

    if test -n "$option"
        switch $option
            case '*:{*'
                string match -rg ':\{([^}]*)\}' $option | string split ,
            case '* DIR*'
                __fish_complete_directories $current
            case '* FILE*'
                __fish_complete_path $current
            case '* PORT*'
                __fldc_ports
        end
    else if string match -q -- '-*' $current
        string match -rg '^  (?:-h,)?(--[a-z-]+)' $help
    else if test -z "$command"
        set -l at (contains -i -- Subcommands: $help)
        and string match -r '^  [a-z-]+ +.*' $help[$at..] | string replace -r '^  ([a-z-]+) +' '$1\t'
    else if test $arguments = 0; and string match -q '  PORT *' $help
        __fldc_ports
    else if test "$command" = certificate
        __fldc_files json
    else if string match -q '  FILE *' $help
        __fldc_files srec
    end
end

complete -c fldc -f -a '(__fldc_complete)'
