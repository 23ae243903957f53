// The main function of a target without libFuzzer: gives it every file of the folders and files named, and inputs of
// random bytes behind them.

#include "Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace
{

void replay(const std::string& name, const std::vector<char>& bytes)
{
    // A crash leaves its input's name as the last line.
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    // In memory of its size, so that the sanitizer sees a read beyond either end.
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char* argv[])
{
    namespace fs = std::filesystem;
    std::vector<fs::path> files;
    for (int i = 1; i < argc; ++i)
    {
        if (!fs::is_directory(argv[i]))
            files.emplace_back(argv[i]);
        else
            for (const fs::directory_entry& entry : fs::directory_iterator(argv[i]))
                files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files)
    {
        std::ifstream stream(file, std::ios::binary);
        replay(file, {std::istreambuf_iterator<char>(stream), {}});
    }
    for (unsigned int i = 0; i < 200; ++i)
    {
        std::mt19937 random(i);
        std::vector<char> bytes(random() % 2048);
        std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<char>(random()); });
        replay("random " + std::to_string(i), bytes);
    }
    std::printf("%zu files\n", files.size());
    return files.empty() ? 1 : 0;
}
