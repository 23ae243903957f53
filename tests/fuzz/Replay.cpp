// The main function of a target without libFuzzer: gives it every file of the folders and files named.

#include "Fuzz.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

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
        // A crash leaves its file's name as the last line.
        std::printf("%s\n", file.c_str());
        std::fflush(stdout);
        std::ifstream stream(file, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
        // In memory of its size, so that the sanitizer sees a read beyond either end.
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
