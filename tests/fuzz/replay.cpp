// replay FOLDER: runs a fuzzer's function without the fuzzer, over the files of a folder and over random inputs.
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "fuzz.h"

namespace {

std::string current;  // input

void Run(const std::string& name, const std::string& bytes) {
    current = "replay: failed on " + name + "\n";
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

/// Of few different bytes, so that patterns meet, and mostly short.
std::string RandomInput(unsigned seed) {
    std::mt19937 random(seed);
    std::string alphabet;
    for (int i = 0; i < 6; ++i)
        alphabet +=
            random() % 2 == 0 ? static_cast<char>(0xF0 + random() % 12) : "\r\v\t\n \\n-/\":hRE1.e"[random() % 17];
    std::string bytes;
    for (std::size_t count = random() % (seed % 50 == 0 ? 301 : 17); count > 0; --count)
        bytes += alphabet[random() % alphabet.size()];
    return bytes;
}

}  // namespace

int main(int count, char** arguments) {
    std::signal(SIGABRT, [](int) { std::fputs(current.c_str(), stderr); });
    int files = 0;
    for (int i = 1; i < count; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            Run(entry.path().string(), {std::istreambuf_iterator<char>(file), {}});
            ++files;
        }
    for (unsigned seed = 0; seed < 30000; ++seed) Run("random input " + std::to_string(seed), RandomInput(seed));
    return files > 0 ? 0 : 1;
}
