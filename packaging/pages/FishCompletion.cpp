#include "pages/Pages.h"
#include "pages/ProgramWords.h"

namespace thntfs {

namespace {

constexpr const char* kFishHead = R"sh(# Completion of th-ntfs-cli for fish.

function __th_ntfs_cli_command --argument-names name
    set --local words (commandline --tokenize --current-process --cut-at-cursor)
    test (count $words) -ge 2; and test "$words[2]" = "$name"
end

# Whether the word at the cursor is at a place, counted from 1; options that the third word lists take a word with them.
function __th_ntfs_cli_at --argument-names name place
    __th_ntfs_cli_command $name; or return
    set --local valued (string split ' ' -- $argv[3])
    set --local words (commandline --tokenize --current-process --cut-at-cursor)
    set --local found 1
    set --local skip no
    for word in $words[3..]
        if test $skip = yes
            set skip no
        else if contains -- $word $valued
            set skip yes
        else if not string match --quiet -- '-?*' $word
            set found (math $found + 1)
        end
    end
    test $found -eq $place
end

function __th_ntfs_cli_disks
    lsblk --noheadings --paths --list --output NAME 2>/dev/null
end

complete --command th-ntfs-cli --no-files
)sh";

std::string Quoted(const std::string& text) {
    return "'" + Replaced(Replaced(Replaced(text, "\\", "\\\\"), "'", "\\'"), "\n", " ") + "'";
}

std::string FishAction(Offer offered) {
    switch (offered) {
    case Offer::Media:
        return " --force-files --arguments '(__th_ntfs_cli_disks)'";
    case Offer::Files:
        return " --force-files";
    case Offer::Folders:
        return " --no-files --arguments '(__fish_complete_directories)'";
    case Offer::Words:
    case Offer::Nothing:
        break;
    }
    return " --no-files";
}

std::string OptionLine(const std::string& condition, const OptionWords& option) {
    std::string line = "complete --command th-ntfs-cli --condition " + Quoted(condition);
    for (const std::string& name : option.Names) {
        line +=
            name.starts_with("--") ? " --long-option " + name.substr(2) : " --short-option " + name.substr(1);
    }
    if (!option.Value.empty()) {
        line += " --require-parameter" + FishAction(option.Offered());
    }
    if (option.Offered() == Offer::Words) {
        line += " --arguments " + Quoted(Joined(option.Choices(), " "));
    }
    return line + " --description " + Quoted(option.Text) + "\n";
}

// Names of all options that take the next word with them.
std::string ValuedNames(const CommandWords& command) {
    std::vector<std::string> names;
    for (const OptionWords& option : command.Options) {
        if (!option.Value.empty()) {
            names.insert(names.end(), option.Names.begin(), option.Names.end());
        }
    }
    return Joined(names, " ");
}

std::string CommandLines(const CommandWords& command) {
    std::string text = "complete --command th-ntfs-cli --condition __fish_use_subcommand --arguments " +
                       command.Name + " --description " + Quoted(command.Text) + "\n";
    for (const OptionWords& option : command.Options) {
        text += OptionLine("__th_ntfs_cli_command " + command.Name, option);
    }
    for (std::size_t place = 0; place < command.Places.size(); ++place) {
        if (const Offer offered = command.Places[place].Offered(); offered != Offer::Nothing) {
            text += "complete --command th-ntfs-cli --condition \"__th_ntfs_cli_at " + command.Name + " " +
                    std::to_string(place + 1) + " '" + ValuedNames(command) + "'\"" + FishAction(offered) +
                    "\n";
        }
    }
    return text;
}

} // namespace

std::string FishCompletion(const ProgramWords& program) {
    std::string text = kFishHead;
    for (const OptionWords& option : program.Options) {
        text += OptionLine("__fish_use_subcommand", option);
    }
    for (const CommandWords& command : program.Commands) {
        text += CommandLines(command);
    }
    return text;
}

} // namespace thntfs
