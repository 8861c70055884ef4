// Runs a fuzz target over the inputs kept from fuzzing (files, or every file of the folders given), so a
// build without libFuzzer replays them as regression inputs. A target that finds a fault aborts.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) __attribute__((weak));

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        if (!std::filesystem::exists(path)) {
            std::fprintf(stderr, "%s: no such corpus\n", argv[i]);
            return 1;
        }
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::directory_iterator(path))
                if (entry.is_regular_file()) inputs.push_back(entry.path());
        } else {
            inputs.push_back(path);
        }
    }
    std::sort(inputs.begin(), inputs.end());
    for (const auto& input : inputs) {
        std::ifstream in(input, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs replayed\n", inputs.size());
    // No input at all means the corpus went missing, not that everything passed.
    return inputs.empty() ? 1 : 0;
}
