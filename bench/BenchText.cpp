#include "BenchText.h"

#include "BenchLayout.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace thntfs::bench {

namespace {

constexpr std::size_t kWords = 4000;

std::vector<std::string> MakeWords(std::uint64_t seed) {
    constexpr std::string_view kLetters = "eeeeeetttttaaaaooooiiiinnnnsssshhhrrrdddlllccuummwwffggyyppbbvk";
    std::vector<std::string> words(kWords);
    std::uint64_t number = 0;
    for (std::string& word : words) {
        const std::size_t length = 2 + Mix(seed, ++number) % 9;
        while (word.size() < length) {
            word.push_back(kLetters[Mix(seed, ++number) % kLetters.size()]);
        }
    }
    return words;
}

// A few words come often and most seldom, as in prose.
std::size_t PickWord(std::uint64_t random) {
    const double even = static_cast<double>(random >> 11) * 0x1p-53;
    return std::min(static_cast<std::size_t>(std::pow(static_cast<double>(kWords), even)), kWords - 1);
}

} // namespace

std::vector<std::uint8_t> MakeText(std::size_t length, std::uint64_t seed) {
    const std::vector<std::string> words = MakeWords(1);
    std::vector<std::uint8_t> text;
    text.reserve(length + 16);
    for (std::uint64_t number = 0; text.size() < length; ++number) {
        const std::uint64_t random = Mix(seed, number);
        const std::string& word = words[PickWord(random)];
        text.insert(text.end(), word.begin(), word.end());
        text.push_back(number % 14 == 13 ? '\n' : ' ');
    }
    text.resize(length);
    return text;
}

} // namespace thntfs::bench
