// The main of a fuzz harness in the normal build: runs every file named on the command line, or
// found in a directory named there, once through LLVMFuzzerTestOneInput. A harness aborts on a
// finding, so a corpus that replays without a crash exits 0. Exit codes: 0 all replayed; 1 a path
// could not be read or no input was found.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool Replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        std::fprintf(stderr, "replay: cannot read %s\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    // A copy of exactly the input's size, so that a read behind it is caught as in the fuzzer.
    const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(path)) {
            for (const auto& item : std::filesystem::directory_iterator(path)) {
                if (item.is_regular_file()) {
                    files.push_back(item.path());
                }
            }
        } else {
            files.push_back(path);
        }
        for (const auto& file : files) {
            if (!Replay(file)) {
                return 1;
            }
            ++replayed;
        }
    }
    std::printf("replay: %zu inputs ran clean\n", replayed);
    return replayed > 0 ? 0 : 1;
}
