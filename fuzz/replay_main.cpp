// NAME_replay MUTATIONS SEED_FOLDER LAST_INPUT: runs a fuzz target, without libFuzzer, over every
// file of a folder and over MUTATIONS mutations of each. They are the same at every run.
//
// Each input is written to the file LAST_INPUT before it runs: what ended the program is left
// there, for `NAME LAST_INPUT` or a debugger.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Changes inputs, by a generator whose numbers are the same everywhere.
class Mutator {
public:
    explicit Mutator(unsigned seed) : random(seed) {}

    Bytes Mutate(Bytes bytes, const std::vector<Bytes>& seeds) {
        for (std::size_t changes = 1 + Below(4); changes > 0; --changes) {
            if (bytes.empty()) bytes.push_back(0);
            Change(bytes, seeds);
        }
        return bytes;
    }

private:
    std::size_t Below(std::size_t limit) { return random() % limit; }

    // A place in the input; every other time near its beginning, where headers are.
    std::size_t Place(const Bytes& bytes) {
        return Below(Below(2) == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 700));
    }

    void Change(Bytes& bytes, const std::vector<Bytes>& seeds) {
        static constexpr std::uint8_t kTelling[] = {0, 1, 0x7F, 0x80, 0xD0, 0xD9, 0xFE, 0xFF};
        const std::size_t place = Place(bytes);
        const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(place);
        const std::size_t room = std::min<std::size_t>(bytes.size() - place, 32);
        const auto length = static_cast<std::ptrdiff_t>(1 + Below(room));
        switch (Below(8)) {
            case 0:
            case 1:
                *at = static_cast<std::uint8_t>(*at ^ 1U << Below(8));
                break;
            case 2:
                *at = static_cast<std::uint8_t>(random());
                break;
            case 3:
                *at = kTelling[Below(std::size(kTelling))];
                break;
            case 4:
                bytes.erase(at, at + length);
                break;
            case 5: {
                const Bytes copy(at, at + length);
                const auto to = bytes.begin() + static_cast<std::ptrdiff_t>(Place(bytes));
                bytes.insert(to, copy.begin(), copy.end());
                break;
            }
            case 6:
                bytes.erase(at, bytes.end());
                break;
            default: {
                // Goes on as another seed does.
                const Bytes& other = seeds[Below(seeds.size())];
                bytes.erase(at, bytes.end());
                if (other.size() > place) {
                    bytes.insert(bytes.end(), other.begin() + static_cast<std::ptrdiff_t>(place),
                                 other.end());
                }
            }
        }
    }

    std::mt19937 random;
};

void Run(const Bytes& input, const char* lastInput) {
    std::ofstream(lastInput, std::ios::binary)
        .write(reinterpret_cast<const char*>(input.data()),
               static_cast<std::streamsize>(input.size()));
    // Alone on the heap, so that a sanitizer sees the first byte read beyond it.
    const auto alone = std::make_unique<std::uint8_t[]>(input.size());
    std::copy(input.begin(), input.end(), alone.get());
    LLVMFuzzerTestOneInput(alone.get(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: %s MUTATIONS SEED_FOLDER LAST_INPUT\n", argv[0]);
        return 2;
    }
    const int mutations = std::atoi(argv[1]);
    std::vector<std::filesystem::path> paths;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(argv[2], error)) {
        paths.push_back(entry.path());
    }
    if (paths.empty()) {
        std::fprintf(stderr, "%s: no seeds in %s\n", argv[0], argv[2]);
        return 1;
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> seeds;
    for (const auto& path : paths) seeds.push_back(ReadFile(path));
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        std::fprintf(stderr, "%s\n", paths[i].filename().c_str());
        Run(seeds[i], argv[3]);
        Mutator mutator(static_cast<unsigned>(i));
        for (int k = 0; k < mutations; ++k) Run(mutator.Mutate(seeds[i], seeds), argv[3]);
    }
    std::filesystem::remove(argv[3], error);
    return 0;
}
