#include "pages/Pages.h"
#include "pages/ProgramWords.h"

#include <algorithm>
#include <cctype>

namespace thntfs {

namespace {

constexpr const char* kExamples = R"(.SH EXAMPLES
.TP
List the disks, then copy a failing one to an image on another disk:
.EX
th-ntfs-cli disks
th-ntfs-cli image /dev/sdb /media/usb/disk.th2
.EE
.TP
Show what is on the volume of that image, and keep the result:
.EX
th-ntfs-cli scan disk.th2 --files --save-info monday.tht
.EE
.TP
Save all that was deleted, and the photographs alone:
.EX
th-ntfs-cli save monday.tht --deleted --to /media/usb/back
th-ntfs-cli save monday.tht --name \(aq*.jpg\(aq --to /media/usb/pictures
.EE
.TP
Look for a volume that no partition table names any more:
.EX
th-ntfs-cli partitions disk.th2 --search thorough --save-info disk.thd
.EE
.SH ENVIRONMENT
.TP
.B TMPDIR
Folder in whose
.RI th\-ntfs\- UID
a run keeps the catalogue of its scan, in place of
.IR /tmp .
.SH SEE ALSO
.BR th\-ntfs (1),
.BR th\-ntfs\-image (5),
.BR th\-ntfs\-tree\-scan\-info (5),
.BR th\-ntfs\-partition\-scan\-info (5),
.BR th\-ntfs\-conditions (5),
.BR th\-ntfs\-process\-log (5),
.BR th\-ntfs\-catalogue (5)
)";

// What roff would take for its own.
std::string Escaped(const std::string& text) {
    const std::string escaped =
        Replaced(Replaced(Replaced(Replaced(text, "\\", "\\e"), "-", "\\-"), "'", "\\(aq"), "^", "\\(ha");
    return escaped.starts_with('.') ? "\\&" + escaped : escaped;
}

std::string Prose(const std::string& text) { return Escaped(Replaced(text, "\n", " ")) + "\n"; }

std::string Capitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char letter) { return std::toupper(letter); });
    return text;
}

std::string Bold(const std::string& text) { return "\\fB" + Escaped(text) + "\\fR"; }

std::string Italic(const std::string& text) { return "\\fI" + Escaped(text) + "\\fR"; }

std::string OptionEntry(const OptionWords& option) {
    std::string names;
    for (const std::string& name : option.Names) {
        names += (names.empty() ? "" : ", ") + Bold(name);
    }
    return ".TP\n" + names + (option.Value.empty() ? "" : " " + Italic(option.Value)) + "\n" +
           Prose(option.Text);
}

std::string CommandEntry(const CommandWords& command) {
    std::string text = ".SS " + Escaped(command.Name) + "\n" + Prose(command.Text + ".") + ".PP\n" +
                       Bold("th-ntfs-cli " + command.Name) + " [" + Italic("OPTION") + "]...";
    for (const PlaceWords& place : command.Places) {
        const std::string name = Italic(place.Name) + (place.Repeated ? "..." : "");
        text += place.Required ? " " + name : " [" + name + "]";
    }
    text += "\n";
    for (const PlaceWords& place : command.Places) {
        text += ".TP\n" + Italic(place.Name) + "\n" + Prose(place.Text);
    }
    for (const OptionWords& option : command.Options) {
        text += option.Names.front() == "--help" ? "" : OptionEntry(option);
    }
    return text;
}

// The footer's paragraphs are "Heading: text".
std::string FooterSections(const std::string& footer) {
    std::string text;
    for (std::size_t at = 0; at < footer.size();) {
        const std::size_t end = std::min(footer.find("\n\n", at), footer.size());
        const std::size_t colon = std::min(footer.find(": ", at), end);
        std::string prose = footer.substr(std::min(colon + 2, end), end - std::min(colon + 2, end));
        prose.replace(0, 1, Capitals(prose.substr(0, 1)));
        text += ".SH " + Capitals(footer.substr(at, colon - at)) + "\n" + Prose(prose);
        at = std::min(end + 2, footer.size());
    }
    return text;
}

} // namespace

std::string ManualPage(const ProgramWords& program) {
    std::string text =
        ".TH TH\\-NTFS\\-CLI 1 \"\" \"Tarnholt Volume Salvage (NTFS)\" \"User Commands\"\n"
        ".SH NAME\nth\\-ntfs\\-cli \\- get files back from damaged NTFS volumes\n.SH SYNOPSIS\n" +
        Bold(program.Name) + " " + Italic("COMMAND") + " [" + Italic("OPTION") + "]... [" + Italic("WORD") +
        "]...\n.SH DESCRIPTION\n" + Prose(program.Text) + ".SH OPTIONS\n";
    for (const OptionWords& option : program.Options) {
        text += OptionEntry(option);
    }
    text += ".SH COMMANDS\n";
    for (const CommandWords& command : program.Commands) {
        text += CommandEntry(command);
    }
    return text + FooterSections(program.Footer) + kExamples;
}

} // namespace thntfs
