// Replays a corpus without libFuzzer: every file under the given folders (or the given files) goes
// through LLVMFuzzerTestOneInput once, so a normal or sanitizer build checks every seed.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    int replayed = 0;
    for (int a = 1; a < argc; ++a) {
        std::vector<fs::path> files;
        if (fs::is_directory(argv[a])) {
            for (const auto& entry : fs::recursive_directory_iterator(argv[a]))
                if (entry.is_regular_file()) files.push_back(entry.path());
        } else {
            files.emplace_back(argv[a]);
        }
        for (const fs::path& file : files) {
            std::ifstream in(file, std::ios::binary);
            if (!in) {
                std::fprintf(stderr, "cannot read %s\n", file.c_str());
                return 1;
            }
            const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(in), {}};
            std::printf("%s\n", file.c_str());
            std::fflush(stdout); // names the seed if the next call crashes
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1; // an empty or missing corpus is a mistake, not a pass
}
