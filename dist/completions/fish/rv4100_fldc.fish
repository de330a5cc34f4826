# fish completion for rv4100_fldc(1).

function __rv4100_fldc_complete
    set -l words (commandline -opc)
    switch $words[-1]
        case /f
            __fish_complete_path (commandline -ct) | string match -r "(?i)^[^\t]*(?:/|\.srec)(?=\t|\$)"
        case /p
            fldc --json ports 2>/dev/null | string match -rg '"name":"COM(\d+)"'
        case /r
            printf '%s\t%s\n' 1 RV4100 2 RV4200 3 RV6100 4 RH6100
        case '*'
            printf '%s\n' /f /g /p /r '/?' --automation
    end
end

complete -c rv4100_fldc -f -a '(__rv4100_fldc_complete)'
