#include "pages/ProgramWords.h"

#include <CLI/CLI.hpp>

namespace thntfs {

namespace {

OptionWords WordsOfOption(const CLI::App& command, const CLI::Option& option) {
    OptionWords words;
    for (const std::string& name : option.get_lnames()) {
        words.Names.push_back("--" + name);
    }
    for (const std::string& name : option.get_snames()) {
        words.Names.push_back("-" + name);
    }
    if (option.get_items_expected_max() != 0) {
        words.Value = command.get_formatter()->get_label(option.get_type_name());
    }
    words.Text = option.get_description();
    return words;
}

void AddOptionsOf(const CLI::App& command, std::vector<OptionWords>& options,
                  std::vector<PlaceWords>& places) {
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            places.push_back({option->get_name(true), option->get_description(), option->get_required(),
                              option->get_expected_max() == CLI::detail::expected_max_vector_size});
        } else {
            options.push_back(WordsOfOption(command, *option));
        }
    }
    // Groups of options are commands without a name.
    for (const CLI::App* group : command.get_subcommands(std::function<bool(const CLI::App*)>())) {
        if (group->get_name().empty()) {
            AddOptionsOf(*group, options, places);
        }
    }
}

} // namespace

Offer OptionWords::Offered() const {
    if (Value.find('|') != std::string::npos) {
        return Offer::Words;
    }
    return Value == "FILE" ? Offer::Files : Value == "DIR" ? Offer::Folders : Offer::Nothing;
}

std::vector<std::string> OptionWords::Choices() const {
    std::vector<std::string> choices;
    for (std::size_t at = 0; at <= Value.size();) {
        const std::size_t end = std::min(Value.find('|', at), Value.size());
        choices.push_back(Value.substr(at, end - at));
        at = end + 1;
    }
    return choices;
}

Offer PlaceWords::Offered() const {
    if (Name == "MEDIUM" || Name == "SOURCE" || Name == "TARGET") {
        return Offer::Media;
    }
    return Name == "FILE" ? Offer::Files : Name == "DIR" ? Offer::Folders : Offer::Nothing;
}

ProgramWords WordsOf(const CLI::App& app) {
    ProgramWords words;
    words.Name = app.get_name();
    words.Text = app.get_description();
    words.Footer = app.get_footer();
    std::vector<PlaceWords> none;
    AddOptionsOf(app, words.Options, none);
    for (const CLI::App* command : app.get_subcommands(std::function<bool(const CLI::App*)>())) {
        CommandWords& added = words.Commands.emplace_back();
        added.Name = command->get_name();
        added.Text = command->get_description();
        AddOptionsOf(*command, added.Options, added.Places);
    }
    return words;
}

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string Joined(const std::vector<std::string>& words, const std::string& between) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : between) + word;
    }
    return text;
}

} // namespace thntfs
