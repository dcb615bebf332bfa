// Runs a fuzz target over the files of its seed corpus, for builds without libFuzzer.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* argc, char*** argv); // not every target has one

int main(int argc, char** argv) {
    if (LLVMFuzzerInitialize)
        LLVMFuzzerInitialize(&argc, &argv);
    int files = 0;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (!entry.is_regular_file())
                continue;
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
            ++files;
        }
    std::printf("%d seeds\n", files);
    return files > 0 ? 0 : 1;
}
