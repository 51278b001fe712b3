// Completion of words in a shell: a script for it, and the words that the script asks for.

#include "applet_tools/base/text.h"
#include "appletctl/cli/shell/candidates.h"
#include "appletctl/commands/Command.h"

#include <CLI/CLI.hpp>

namespace appletctl {
namespace {

/** Each script passes the words up to the cursor to "appletctl __complete --" and gets one line per
 *  candidate, with its help after a tab. If there are no candidates, the shell offers files. */
struct Script {
    const char* shell;
    const char* text;
};

constexpr Script scripts[] = {
    {"bash", R"(# bash completion of appletctl: source <(appletctl completion bash)
_appletctl() {
    # Bash parts words at = and : too; here they are put together again.
    local words=() word i joins=
    for ((i = 1; i <= COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if [[ ${#words[@]} -gt 0 && ( -n $joins || $word == [=:]* ) ]]; then
            words[-1]+=$word
        else
            words+=("$word")
        fi
        [[ $word == [=:] ]] && joins=1 || joins=
    done
    local current=${words[-1]} known=
    # What is in quotes is not parted.
    [[ $current != [\"\']* && $current == *=* && $COMP_WORDBREAKS == *=* ]] && known=${current%=*}=
    local typed=${current#"$known"}
    COMPREPLY=()
    local line
    while IFS= read -r line; do
        line=${line%%$'\t'*}
        line=${line#"$known"}
        [[ $typed == [\"\']* ]] || line=${line// /\\ }
        COMPREPLY+=("$line")
    done < <("${COMP_WORDS[0]}" __complete -- "${words[@]}" 2>/dev/null)
    [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[=/[] ]] && compopt -o nospace
}
complete -o bashdefault -o default -F _appletctl appletctl
)"},
    {"zsh", R"(#compdef appletctl
# zsh completion of appletctl: source <(appletctl completion zsh), after compinit
_appletctl() {
    local -a texts shown
    local line
    while IFS= read -r line; do
        texts+=("${line%%$'\t'*}")
        shown+=("${line/$'\t'/  -- }")
    done < <("${words[1]}" __complete -- "${(@)words[2,CURRENT]}" 2>/dev/null)
    if (( ${#texts} == 0 )); then
        _files
    elif [[ ${texts[1]} == *[=/[] ]]; then
        compadd -U -S '' -l -d shown -a texts
    else
        compadd -U -l -d shown -a texts
    fi
}
# From a folder of fpath, this file is the function itself at its first call.
if [[ $funcstack[1] == _appletctl ]]; then
    _appletctl "$@"
else
    compdef _appletctl appletctl
fi
)"},
    {"fish", R"(# fish completion of appletctl: appletctl completion fish | source
function __appletctl_complete
    set -l words (commandline -opc) (commandline -ct)
    set -l found ($words[1] __complete -- $words[2..-1] 2>/dev/null)
    if test (count $found) -gt 0
        printf '%s\n' $found
    else
        __fish_complete_path (commandline -ct)
    end
end
complete -c appletctl -f -a '(__appletctl_complete)'
)"},
};

void addShells(CLI::App& command, Options&) {
    command.get_option("SHELL")->check(CLI::IsMember({"bash", "zsh", "fish"}));
}

Report showCompletionScript(Context&, const Words& shell) {
    Report report;
    for (const Script& script : scripts)
        if (shell.front() == script.shell) report.text = script.text;
    report.isVerbatim = true;
    report.document = {{"shell", shell.front()}, {"script", report.text}};
    return report;
}

} // namespace

extern const Command completionCommand;
const Command completionCommand = {
    .name = "completion",
    .help = "Print a shell completion script",
    .argument = "SHELL",
    .argumentHelp = "The shell that the script is for",
    .examples = {{"completion bash", "load it with: source <(appletctl completion bash)"},
                 {"completion fish", "load it with: appletctl completion fish | source"}},
    .fewest = 1,
    .most = 1,
    .run = showCompletionScript,
    .addOptions = addShells,
    .kind = Command::Kind::local,
    .withoutBoard = "",
};

namespace {

/** Removes the quotes of the last word, which a shell passes as it was typed: an open quote at its beginning or
 *  after an equals sign, and backslashes before blanks. */
Words withoutQuotes(Words words) {
    if (words.empty() || words.back().empty()) return words;
    std::string& last = words.back();
    const auto isMark = [](char c) { return c == '"' || c == '\''; };
    std::size_t quote = 0;
    while (quote < last.size() && !(isMark(last[quote]) && (quote == 0 || last[quote - 1] == '=')))
        ++quote;
    if (quote < last.size() && last.find(last[quote], quote + 1) == std::string::npos) {
        last.erase(quote, 1);
        return words;
    }
    for (std::size_t at = last.find("\\ "); at != std::string::npos; at = last.find("\\ ", at))
        last.erase(at++, 1);
    return words;
}

Report completeWords(Context& context, const Words& words) {
    Options options = context.options();
    options.offline = true;
    Context offline(options);
    Report report;
    report.isVerbatim = true;
    auto& rows = report.document["candidates"] = nlohmann::ordered_json::array();
    for (const Candidate& candidate : candidatesFor(
             withoutQuotes(words), [&]() -> const ParameterList& { return offline.parameters(); })) {
        const std::string help = printable(candidate.help);
        report.text += candidate.text + (help.empty() ? "" : '\t' + help) + '\n';
        rows.push_back({{"text", candidate.text}, {"help", help}});
    }
    return report;
}

} // namespace

extern const Command completeCommand;
const Command completeCommand = {
    .name = "__complete",
    .help = "Print the candidates for the last word, for the scripts of 'completion'",
    .argument = "WORD",
    .argumentHelp = "Words of a command line, after --",
    .fewest = 1,
    .most = -1,
    .run = completeWords,
    .kind = Command::Kind::local,
    .withoutBoard = "",
};

} // namespace appletctl
