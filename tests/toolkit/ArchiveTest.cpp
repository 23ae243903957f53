#include <arch/ArchiveIn.h>
#include <td/Search.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

namespace
{

TEST(ArchiveIn, ReadsValuesUntilTheFileEnds)
{
    const std::string path =
        std::filesystem::temp_directory_path() / ("guigl-archive-test-" + std::to_string(::getpid()));
    std::ofstream(path, std::ios::binary) << std::string("\0\0\xC0\x3F\x04\x03\x02\x81\xFF\xFE"
                                                         "abcd",
                                                         14);
    arch::FileSerializerIn file;
    float real = 0;
    unsigned int word = 0;
    unsigned short half = 0;
    char text[] = "----";
    ASSERT_TRUE(file.open(path.c_str()));
    arch::ArchiveIn archive(file);
    archive >> real >> word >> half;
    EXPECT_EQ(real, 1.5f);
    EXPECT_EQ(word, 0x81020304u);
    EXPECT_EQ(half, 0xFEFF);
    EXPECT_NO_THROW(file.require(4));
    EXPECT_THROW(file.require(5), std::ios_base::failure);
    archive.get(text, 3);
    EXPECT_EQ(std::string(text), "abc-");
    EXPECT_THROW(archive >> half, std::ios_base::failure);
    EXPECT_EQ(archive.getNoOfBytes(), 13u);
    ASSERT_TRUE(file.open(path.c_str())); // again, and it shrinks while it is read
    std::filesystem::resize_file(path, 2);
    EXPECT_THROW(archive >> real, std::ios_base::failure);
    archive.close();
    EXPECT_THROW(file.require(1), std::ios_base::failure);

    // Nobody writes to the pipe: opening it would wait for ever.
    std::filesystem::remove(path);
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(file.open(path.c_str()));
    EXPECT_FALSE(file.open(std::filesystem::temp_directory_path().c_str()));
    std::filesystem::remove(path);
    EXPECT_FALSE(file.open(path.c_str()));
}

TEST(Search, StopsAtTheZeroAndAtTheLength)
{
    const char text[] = "a\nb\n\0\n";
    EXPECT_EQ(td::count(text, 6, '\n'), 3u);
    EXPECT_EQ(td::count(text, 1, '\n'), 0u);
    EXPECT_EQ(td::findFromLeft(text, '\n', 0), 1);
    EXPECT_EQ(td::findFromLeft(text, '\n', 2), 1);
    EXPECT_EQ(td::findFromLeft(text, '\n', 3), 0);
    EXPECT_EQ(td::findFromLeft(text, '\n', 4), -1); // behind the zero
    EXPECT_EQ(td::findFromLeft(text, '\n', 2, 3), -1);
    EXPECT_EQ(td::findFromLeft(text, '\n', 7, 7), -1);
}

} // namespace
