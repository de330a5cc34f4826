# fish completion for radio_simulator(1), by what the program's own help says.

function __radio_simulator_complete
    set -l words (commandline -opc)
    set -l help (radio_simulator --help 2>/dev/null)
    set -l option (string match -r -- "^  $words[-1] .*" $help)
    switch "$option"
        case '*--fault*'
            set -l at (contains -i -- (string match 'Faults*' $help)[1] $help)
            string match -rg '^  ([a-z0-9][a-z0-9-]*[=@]?)' $help[$at..]
        case '*:{*'
            string match -rg ':\{([^}]*)\}' $option | string split ,
        case '* FILE*' '* PATH*' '* LOG*'
            __fish_complete_path (commandline -ct)
        case '* SECONDS*'
        case '*'
            string match -rg '^  (?:-h,)?(--[a-z-]+)' $help
    end
end

complete -c radio_simulator -f -a '(__radio_simulator_complete)'
