// Runs a fuzz target over every file of the folders named on the command line, and over small mutations of
// each: the same ones in every run. What was run last stands in the file named by FUZZ_LAST_INPUT, if it is
// set.

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMutations = 5000; ///< of all files together
constexpr std::chrono::seconds kMostTime{4};

std::vector<Input> ReadInputs(int argc, char** argv) {
    std::vector<std::filesystem::path> paths;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Input> inputs;
    for (const auto& path : paths) {
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
        inputs.emplace_back(bytes.begin(), bytes.end());
    }
    return inputs;
}

void Run(const Input& input) {
    if (const char* last = std::getenv("FUZZ_LAST_INPUT"); last != nullptr) {
        std::ofstream(last, std::ios::binary)
            .write(reinterpret_cast<const char*>(input.data()), static_cast<std::streamsize>(input.size()));
    }
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

/// Makes small changes of the kinds that break readers of structures: numbers at their limits, bits, pieces
/// moved or taken from another input, ends cut off.
class Mutator {
public:
    explicit Mutator(std::size_t seed)
        : random_(seed) {}

    void Change(Input& input, const Input& other) {
        for (std::size_t left = 1 + Below(4); left > 0 && !input.empty(); --left) {
            ChangeOnce(input, other);
        }
    }

private:
    std::size_t Below(std::size_t end) { return end == 0 ? 0 : static_cast<std::size_t>(random_() % end); }

    void ChangeOnce(Input& input, const Input& other) {
        const std::size_t at = Below(input.size());
        const std::size_t kind = Below(8);
        if (kind < 2) {
            input[at] ^= static_cast<std::uint8_t>(kind == 0 ? 1U << Below(8) : random_());
        } else if (kind == 2) {
            input.resize(at);
        } else if (kind < 5) {
            CopyPiece(input, at, kind == 3 ? other : Input(input));
        } else {
            PutNumber(input, at);
        }
    }

    void CopyPiece(Input& input, std::size_t at, const Input& source) {
        const std::size_t from = Below(source.size());
        const std::size_t bytes = std::min({1 + Below(64), input.size() - at, source.size() - from});
        std::copy_n(source.begin() + static_cast<std::ptrdiff_t>(from), bytes,
                    input.begin() + static_cast<std::ptrdiff_t>(at));
    }

    // Little-endian, where a number of its width may stand.
    void PutNumber(Input& input, std::size_t at) {
        const std::size_t width = std::size_t{1} << Below(4);
        const std::uint64_t power = std::uint64_t{1} << Below(8 * width);
        const std::uint64_t limits[] = {0, power, power - 1, ~power, ~std::uint64_t{0}, input.size()};
        const std::uint64_t number = limits[Below(std::size(limits))] + Below(3) - 1;
        at -= at % width;
        for (std::size_t i = 0; i < width && at + i < input.size(); ++i) {
            input[at + i] = static_cast<std::uint8_t>(number >> (8 * i));
        }
    }

    std::mt19937_64 random_;
};

// A slow machine leaves some of them out, so that the tests come to their end.
std::size_t RunMutations(const std::vector<Input>& inputs) {
    const Clock::time_point end = Clock::now() + kMostTime;
    std::size_t count = 0;
    for (; count < kMutations && Clock::now() < end; ++count) {
        Mutator mutator(count);
        Input input = inputs[count % inputs.size()];
        mutator.Change(input, inputs[(count / 7) % inputs.size()]);
        Run(input);
    }
    return count;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<Input> inputs = ReadInputs(argc, argv);
    if (inputs.empty()) {
        return 1;
    }
    for (const Input& input : inputs) {
        Run(input);
    }
    std::printf("%zu inputs and %zu mutations replayed\n", inputs.size(), RunMutations(inputs));
    return 0;
}
