// Makes an image of a disk with one large NTFS volume and prints what a script needs to know of it.

#include "BenchVolume.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>

using namespace thntfs::bench;

namespace {

void AddOptions(CLI::App& app, VolumeOptions& options) {
    static const std::map<std::string, Layout> kLayouts = {
        {"random", Layout::Random}, {"grouped", Layout::Grouped}, {"alternating", Layout::Alternating}};
    options.Plan.DeletedPercent = 20;
    options.Plan.Children = 200'000;
    app.add_option("IMAGE", options.Path, "image file to make")->required();
    app.add_option("--records", options.Records, "records of the table, all in all")->capture_default_str();
    app.add_option("--folders", options.Folders, "how many of them are folders")->capture_default_str();
    app.add_option("--deleted", options.Plan.DeletedPercent, "percent of the files that are deleted")
        ->capture_default_str()
        ->check(CLI::Range(0, 100));
    app.add_option("--layout", options.Plan.Order, "order of the files: random, grouped or alternating")
        ->transform(CLI::CheckedTransformer(kLayouts));
    app.add_option("--children", options.Plan.Children, "alternating: files in each of the two folders")
        ->capture_default_str();
    app.add_option("--extents", options.Extents, "extents of the table")
        ->capture_default_str()
        ->check(CLI::Range(1, 64));
    app.add_option("--seed", options.Plan.Seed, "of all that looks random")->capture_default_str();
    app.add_flag("--wide-names", options.WideNames, "some names in Cyrillic and Chinese");
    app.add_option("--size", options.SizeBytes, "volume size, e.g. 64GB")->transform(CLI::AsSizeValue(false));
    app.add_option("--big-file", options.BigFileBytes, "adds /big.bin of this size in one run")
        ->transform(CLI::AsSizeValue(false));
    app.add_option("--text-file", options.TextBytes, "adds compressed text of this size in files of 4 MiB")
        ->transform(CLI::AsSizeValue(false));
    app.add_option("--random-data", options.RandomBytes, "random bytes in free clusters")
        ->transform(CLI::AsSizeValue(false));
    app.add_option("--lookalikes", options.Lookalikes, "copies of the table's first record in free clusters");
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Makes an image of a disk with one large NTFS volume");
    VolumeOptions options;
    AddOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    if (options.Plan.Order == Layout::Alternating && options.Folders < 2) {
        std::fputs("make-bench-volume: the alternating layout needs two folders\n", stderr);
        return 2;
    }
    try {
        BenchVolume volume(options);
        volume.Write();
        std::fputs(volume.Facts().c_str(), stdout);
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "make-bench-volume: %s\n", failure.what());
        return 1;
    }
}
