// Writes the terminal program's manual page and completions, from its own description of its words.

#include "cli/Options.h"
#include "pages/Pages.h"
#include "pages/ProgramWords.h"

#include <CLI/CLI.hpp>
#include <fstream>
#include <iostream>

namespace {

bool WritePage(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    return file.flush().good();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "Usage: write-pages FOLDER\n";
        return 2;
    }
    const std::string folder = std::string(argv[1]) + "/";
    thntfs::Options options;
    CLI::App app;
    thntfs::DescribeProgram(app, options);
    const thntfs::ProgramWords words = thntfs::WordsOf(app);
    const bool written = WritePage(folder + "th-ntfs-cli.1", thntfs::ManualPage(words)) &&
                         WritePage(folder + "th-ntfs-cli.bash", thntfs::BashCompletion(words)) &&
                         WritePage(folder + "th-ntfs-cli.zsh", thntfs::ZshCompletion(words)) &&
                         WritePage(folder + "th-ntfs-cli.fish", thntfs::FishCompletion(words));
    return written ? 0 : 1;
}
