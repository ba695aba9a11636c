#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

namespace thntfs {

/// What a shell offers where a word is to be typed.
enum class Offer { Nothing, Words, Files, Folders, Media };

struct OptionWords {
    std::vector<std::string> Names; ///< with their hyphens, long ones first
    std::string Value;              ///< what its value is called, empty for a flag
    std::string Text;

    [[nodiscard]] Offer Offered() const;

    /// For Offer::Words.
    [[nodiscard]] std::vector<std::string> Choices() const;
};

/// A word without a name of its own, by its place.
struct PlaceWords {
    std::string Name;
    std::string Text;
    bool Required = false;
    bool Repeated = false;

    [[nodiscard]] Offer Offered() const;
};

struct CommandWords {
    std::string Name;
    std::string Text;
    std::vector<OptionWords> Options;
    std::vector<PlaceWords> Places;
};

/// All that can be said to the terminal program, as its own description of itself has it.
struct ProgramWords {
    std::string Name;
    std::string Text;
    std::string Footer;
    std::vector<OptionWords> Options;
    std::vector<CommandWords> Commands;
};

ProgramWords WordsOf(const CLI::App& app);

/// The text with `by` in place of each `what`.
std::string Replaced(std::string text, const std::string& what, const std::string& by);

/// The words with `between` between them.
std::string Joined(const std::vector<std::string>& words, const std::string& between);

} // namespace thntfs
