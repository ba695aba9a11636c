#include "pages/Pages.h"
#include "pages/ProgramWords.h"

namespace thntfs {

namespace {

constexpr const char* kZshHead = R"sh(#compdef th-ntfs-cli

_th_ntfs_cli_media() {
  local -a disks=(${(f)"$(lsblk --noheadings --paths --list --output NAME 2>/dev/null)"})
  _alternative 'files:image or saved scan:_files' 'disks:disk:compadd -a disks'
}

_th_ntfs_cli() {
  local curcontext=$curcontext state line
  local -A opt_args
  local -a commands=(
)sh";

constexpr const char* kZshMiddle = R"sh(    '*:: :->words' && return
  [[ $state == commands ]] && _describe command commands && return
  curcontext=${curcontext%:*}-$line[1]:
  case $line[1] in
)sh";

constexpr const char* kZshTail = R"sh(  esac
}

_th_ntfs_cli "$@"
)sh";

// Within apostrophes, in a description between brackets or behind a colon.
std::string ZshText(const std::string& text) {
    std::string escaped = Replaced(text, "\n", " ");
    for (const char* letter : {"\\", "[", "]", ":"}) {
        escaped = Replaced(escaped, letter, std::string("\\") + letter);
    }
    return Replaced(escaped, "'", "'\\''");
}

std::string ZshAction(Offer offered) {
    switch (offered) {
    case Offer::Media:
        return "_th_ntfs_cli_media";
    case Offer::Files:
        return "_files";
    case Offer::Folders:
        return "_files -/";
    case Offer::Words:
    case Offer::Nothing:
        break;
    }
    return " ";
}

// One rule for all names, so that one of them leaves out the others.
std::string OptionSpec(const OptionWords& option) {
    std::vector<std::string> names = option.Names;
    if (!option.Value.empty()) {
        for (std::string& name : names) {
            name += name.starts_with("--") ? "=" : "+"; // the value may follow without a blank
        }
    }
    std::string spec = "'(" + Joined(option.Names, " ") + ")'";
    spec += names.size() == 1 ? names.front() : "{" + Joined(names, ",") + "}";
    spec += "'[" + ZshText(option.Text) + "]";
    if (option.Offered() == Offer::Words) {
        spec += ":word:(" + Joined(option.Choices(), " ") + ")";
    } else if (!option.Value.empty()) {
        spec += ":" + ZshText(option.Value) + ":" + ZshAction(option.Offered());
    }
    return spec + "'";
}

std::string PlaceSpec(const PlaceWords& place, std::size_t number) {
    return "'" + (place.Repeated ? "*" : std::to_string(number)) + ":" + ZshText(place.Name) + ":" +
           ZshAction(place.Offered()) + "'";
}

std::string CommandBranch(const CommandWords& command) {
    std::string text = "  " + command.Name + ")\n    _arguments -s";
    for (const OptionWords& option : command.Options) {
        text += " \\\n      " + OptionSpec(option);
    }
    for (std::size_t place = 0; place < command.Places.size(); ++place) {
        text += " \\\n      " + PlaceSpec(command.Places[place], place + 1);
    }
    return text + " ;;\n";
}

} // namespace

std::string ZshCompletion(const ProgramWords& program) {
    std::string text = kZshHead;
    std::string branches;
    for (const CommandWords& command : program.Commands) {
        text += "    '" + command.Name + ":" + ZshText(command.Text) + "'\n";
        branches += CommandBranch(command);
    }
    text += "  )\n  _arguments -C \\\n";
    for (const OptionWords& option : program.Options) {
        text += "    " + OptionSpec(option) + " \\\n";
    }
    return text + "    '1: :->commands' \\\n" + kZshMiddle + branches + kZshTail;
}

} // namespace thntfs
