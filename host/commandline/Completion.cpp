#include "commandline/Completion.h"

namespace host {
namespace {

// Files where a file is asked for, with a backslash before a blank and a slash behind a folder. The rest needs no more
// than its first letters.
constexpr char kBash[] = R"(# In ~/.bashrc: source <(userauth completion bash)
_userauth() {
    local word=${COMP_WORDS[COMP_CWORD]}
    case ${COMP_WORDS[COMP_CWORD-1]} in
        --config|--certificate-authority|--cookie-file|--log|export)
            compopt -o filenames 2> /dev/null || true
            mapfile -t COMPREPLY < <(compgen -f -- "$word") ;;
        contacts) mapfile -t COMPREPLY < <(compgen -W export -- "$word") ;;
        completion) mapfile -t COMPREPLY < <(compgen -W 'bash powershell' -- "$word") ;;
        *) mapfile -t COMPREPLY < <(compgen -W '{words}' -- "$word") ;;
    esac
}
complete -F _userauth userauth userauth.exe
)";

constexpr char kPowerShell[] = R"(# In the profile: userauth completion powershell | Out-String | Invoke-Expression
Register-ArgumentCompleter -Native -CommandName userauth, userauth.exe -ScriptBlock {
    param($word)
    '{words}'.Split(' ') | Where-Object { $_ -like "$word*" } |
        ForEach-Object { [System.Management.Automation.CompletionResult]::new($_) }
}
)";

}  // namespace

std::string CompletionScript(const std::string& shell, const CommandForms& forms,
                             const std::vector<std::string>& options) {
    std::string words;
    for (const CommandForm& form : forms) {
        words += (words.empty() ? "" : " ") + std::string(form.name);
    }
    for (const std::string& option : options) {
        words += " " + option;
    }
    constexpr char kMark[] = "{words}";
    std::string script = shell == "bash" ? kBash : kPowerShell;
    return script.replace(script.find(kMark), sizeof(kMark) - 1, words);
}

}  // namespace host
