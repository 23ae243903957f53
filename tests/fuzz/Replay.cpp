// All targets in one program without libFuzzer: of each folder that is named, the target of the folder's name gets
// every file, and inputs of random bytes behind them.

#include "Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>

namespace
{

void replay(const fuzz::Target& target, const std::string& name, const std::vector<char>& bytes)
{
    // A crash leaves its input's name as the last line.
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    // In memory of its size, so that the sanitizer sees a read beyond either end.
    target.run(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char* argv[])
{
    namespace fs = std::filesystem;
    std::size_t nFiles = 0;
    for (int i = 1; i < argc; ++i)
    {
        const fs::path folder(argv[i]);
        const fuzz::Target& target = fuzz::Target::get(folder.filename().native());
        std::set<fs::path> files;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            files.insert(entry.path());
        for (const fs::path& file : files)
        {
            std::ifstream stream(file, std::ios::binary);
            replay(target, file, {std::istreambuf_iterator<char>(stream), {}});
        }
        for (unsigned int k = 0; k < 200; ++k)
        {
            std::mt19937 random(k);
            std::vector<char> bytes(random() % 2048);
            std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
            replay(target, "random " + std::to_string(k), bytes);
        }
        nFiles += files.size();
    }
    std::printf("%zu files\n", nFiles);
    return nFiles == 0 ? 1 : 0;
}
