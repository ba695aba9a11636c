#include "pages/Pages.h"
#include "pages/ProgramWords.h"

#include <functional>
#include <map>

namespace thntfs {

namespace {

constexpr const char* kBashHead = R"sh(# Completion of th-ntfs-cli for bash.

_th_ntfs_cli_media() {
    if [[ $cur == /dev/* ]]; then
        COMPREPLY=($(compgen -W "$(lsblk --noheadings --paths --list --output NAME 2>/dev/null)" -- "$cur"))
    else
        _filedir
    fi
}

_th_ntfs_cli() {
    local cur prev words cword split
    _init_completion -s || return
    local command='' place=0 at
    ((cword > 1)) && command=${words[1]}
    case $command:$prev in
)sh";

constexpr const char* kBashCount = R"sh(    esac
    $split && return
    for ((at = 2; at < cword; at++)); do
        case $command:${words[at]} in
        )sh";

constexpr const char* kBashCountEnd = R"sh() ((at++)) ;;
        *:-?*) ;;
        *) ((place++)) ;;
        esac
    done
    if [[ $cur == -* ]]; then
        case $command in
)sh";

constexpr const char* kBashOptionsEnd = R"sh(        esac
        return
    fi
    case $command:$place in
)sh";

// Patterns of a case, or nothing where there are none.
std::string Branch(const std::vector<std::string>& patterns, const std::string& action) {
    return patterns.empty() ? "" : "    " + Joined(patterns, " | \\\n    ") + ") " + action + " ;;\n";
}

std::string WordList(const std::vector<std::string>& words) {
    return "COMPREPLY=($(compgen -W '" + Joined(words, " ") + "' -- \"$cur\"))";
}

std::string BashAction(Offer offered) {
    return offered == Offer::Media     ? "_th_ntfs_cli_media"
           : offered == Offer::Folders ? "_filedir -d"
                                       : "_filedir";
}

std::vector<std::string> NamesOf(const std::vector<OptionWords>& options) {
    std::vector<std::string> names;
    for (const OptionWords& option : options) {
        names.insert(names.end(), option.Names.begin(), option.Names.end());
    }
    return names;
}

// "command:option" for all options with a value that `wanted` takes.
std::vector<std::string> ValuePatterns(const ProgramWords& program,
                                       const std::function<bool(const OptionWords&)>& wanted) {
    std::vector<std::string> patterns;
    for (const CommandWords& command : program.Commands) {
        for (const OptionWords& option : command.Options) {
            if (!option.Value.empty() && wanted(option)) {
                for (const std::string& name : option.Names) {
                    patterns.push_back(command.Name + ":" + name);
                }
            }
        }
    }
    return patterns;
}

std::string ValueBranches(const ProgramWords& program) {
    std::map<std::string, std::vector<std::string>> choices;
    (void)ValuePatterns(program, [&choices](const OptionWords& option) {
        if (option.Offered() == Offer::Words) {
            choices[option.Value] = option.Choices();
        }
        return false;
    });
    std::string text;
    for (const auto& choice : choices) {
        text += Branch(
            ValuePatterns(program, [&choice](const auto& option) { return option.Value == choice.first; }),
            WordList(choice.second) + "; return");
    }
    for (const Offer offered : {Offer::Files, Offer::Folders}) {
        text += Branch(
            ValuePatterns(program, [offered](const auto& option) { return option.Offered() == offered; }),
            BashAction(offered) + "; return");
    }
    return text + Branch(ValuePatterns(program,
                                       [](const auto& option) { return option.Offered() == Offer::Nothing; }),
                         "return");
}

std::string PlaceBranches(const ProgramWords& program) {
    std::string text;
    for (const Offer offered : {Offer::Media, Offer::Files, Offer::Folders}) {
        std::vector<std::string> patterns;
        for (const CommandWords& command : program.Commands) {
            for (std::size_t place = 0; place < command.Places.size(); ++place) {
                if (command.Places[place].Offered() == offered) {
                    patterns.push_back(command.Name + ":" + std::to_string(place));
                }
            }
        }
        text += Branch(patterns, BashAction(offered));
    }
    return text;
}

} // namespace

std::string BashCompletion(const ProgramWords& program) {
    std::vector<std::string> commands;
    std::string options = "        '') " + WordList(NamesOf(program.Options)) + " ;;\n";
    for (const CommandWords& command : program.Commands) {
        commands.push_back(command.Name);
        options += "        " + command.Name + ") " + WordList(NamesOf(command.Options)) + " ;;\n";
    }
    const std::vector<std::string> valued = ValuePatterns(program, [](const auto&) { return true; });
    return kBashHead + ValueBranches(program) + kBashCount + Joined(valued, " | \\\n        ") +
           kBashCountEnd + options + kBashOptionsEnd + Branch({":0"}, WordList(commands)) +
           PlaceBranches(program) + "    esac\n} &&\n    complete -F _th_ntfs_cli " + program.Name + "\n";
}

} // namespace thntfs
