#include "cli/FindOptions.h"

#include "platform/system/Dates.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

namespace thntfs {

namespace {

constexpr std::array kCriteria{"--name",     "--match-case", "--min-size",
                               "--max-size", "--created",    "--accessed"};

// One day, or two with a colon between them, of which one may be left out.
std::string ReadDays(const std::string& text, std::optional<DosDateRange>& range) {
    const std::size_t colon = text.find(':');
    const std::string from = text.substr(0, colon);
    const std::string to = colon == std::string::npos ? from : text.substr(colon + 1);
    const auto first = from.empty() ? DosDateRange().From : DosDateOfIso(from);
    const auto last = to.empty() ? DosDateRange().To : DosDateOfIso(to);
    if ((from.empty() && to.empty()) || (!from.empty() && first == 0) || (!to.empty() && last == 0)) {
        return "'" + text + "' names no days from 1980 to 2107; give FROM:TO, such as 2025-01-31:2025-03-01";
    }
    range = DosDateRange{first, last};
    return {};
}

void AddSize(CLI::App& command, const char* name, const char* what, std::uint64_t& bytes) {
    command.add_option(name, bytes, what)
        ->type_name("N[KMG]")
        ->transform(CLI::AsSizeValue(false).description(""));
}

void AddDays(CLI::App& command, const char* name, const char* what, std::optional<DosDateRange>& range) {
    command
        .add_option_function<std::string>(
            name, [](const std::string&) {}, what)
        ->type_name("FROM:TO")
        ->check(CLI::Validator([&range](const std::string& text) { return ReadDays(text, range); }, ""));
}

} // namespace

void AddFindCriteria(CLI::App& command, FindCriteria& criteria) {
    command.add_flag("--match-case", criteria.MatchCase, "Capitals and small letters differ");
    AddSize(command, "--min-size", "Of this size or larger", criteria.MinSize);
    AddSize(command, "--max-size", "Of this size or smaller", criteria.MaxSize);
    AddDays(command, "--created",
            "Made on one of these days; either may be left out, and one alone is one day", criteria.Created);
    AddDays(command, "--accessed", "Accessed last on one of these days", criteria.Accessed);
}

void AddNamePattern(CLI::App& command, FindCriteria& criteria) {
    criteria.Pattern = "*";
    command
        .add_option("--name", criteria.Pattern,
                    "Entries whose names match alone, such as '*.jpg', with the folders that they lie in; "
                    "'*' stands for any letters, '?' for any one")
        ->type_name("PATTERN");
}

bool HasFindCriteria(const CLI::App& command) {
    return std::ranges::any_of(kCriteria, [&command](const char* name) { return command.count(name) != 0; });
}

} // namespace thntfs
