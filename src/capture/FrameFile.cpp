#include "FrameFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

namespace gui::gl
{

namespace
{

constexpr std::string_view cMagic = "GUIGLFRM";
constexpr std::array<std::string_view, 5> cChunks{"INFO", "CALL", "OBJS", "STAT", "FRAM"};
constexpr std::uint32_t cMostPixels = 16384; // in a direction
constexpr std::uint32_t cMostSamples = 32;
constexpr std::size_t cMostBytes = std::size_t(1) << 31;

// The CRC-32 of PNG and zip.
std::uint32_t checksum(ByteSpan bytes)
{
    static const auto cTable = []
    {
        std::array<std::uint32_t, 256> table{};
        for (std::uint32_t i = 0; i < table.size(); ++i)
        {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 1) != 0 ? 0xEDB88320U ^ value >> 1 : value >> 1;
            table[i] = value;
        }
        return table;
    }();
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const unsigned char byte : bytes)
        sum = cTable[(sum ^ byte) & 0xFFU] ^ sum >> 8;
    return ~sum;
}

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string reason() { return std::strerror(errno); }

ByteSpan bytesOf(const std::string& text) { return {reinterpret_cast<const unsigned char*>(text.data()), text.size()}; }

bool writeChunk(std::FILE* pFile, std::string_view name, const std::string& content)
{
    ByteWriter head;
    head.number(checksum(bytesOf(content)));
    head.number(static_cast<std::uint64_t>(content.size()));
    constexpr char cZeros[8]{};
    const std::size_t nZeros = (8 - content.size() % 8) % 8;
    return std::fwrite(name.data(), 1, name.size(), pFile) == name.size() &&
           std::fwrite(head.bytes().data(), 1, head.bytes().size(), pFile) == head.bytes().size() &&
           std::fwrite(content.data(), 1, content.size(), pFile) == content.size() &&
           std::fwrite(cZeros, 1, nZeros, pFile) == nZeros;
}

std::string infoText(const FrameFile::Info& info)
{
    ByteWriter writer;
    for (const std::string* pText : {&info.program, &info.renderer, &info.glVersion})
        writer.text(*pText);
    for (const std::uint32_t number :
         {info.frame, info.width, info.height, info.samples, info.framebuffer, info.depthBits, info.stencilBits})
        writer.number(number);
    return writer.bytes();
}

std::string callsText()
{
    ByteWriter writer;
    for (const GLCall& call : GLCall::all())
    {
        if (call.role == GLCall::Role::Heard)
            break; // the last of all
        writer.text(call.name);
        writer.text(call.signature);
    }
    return writer.bytes();
}

} // namespace

bool FrameFile::write(std::FILE* pFile, const Info& info, const std::array<std::string, 3>& parts)
{
    ByteWriter head;
    head.number(cVersion);
    head.number(std::uint32_t(0));
    return std::fwrite(cMagic.data(), 1, cMagic.size(), pFile) == cMagic.size() &&
           std::fwrite(head.bytes().data(), 1, head.bytes().size(), pFile) == head.bytes().size() &&
           writeChunk(pFile, cChunks[0], infoText(info)) && writeChunk(pFile, cChunks[1], callsText()) &&
           writeChunk(pFile, cChunks[2], parts[0]) && writeChunk(pFile, cChunks[3], parts[1]) &&
           writeChunk(pFile, cChunks[4], parts[2]) && std::fflush(pFile) == 0;
}

std::string FrameFile::write(const std::string& path, const Info& info, const std::array<std::string, 3>& parts)
{
    const File file(std::fopen(path.c_str(), "wb"), std::fclose);
    if (!file)
        return reason();
    if (write(file.get(), info, parts))
        return {};
    std::string error = reason();
    // Half a file helps nobody; a device or a pipe is somebody else's.
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored))
        std::filesystem::remove(path, ignored);
    return error;
}

std::string FrameFile::load(const std::string& path)
{
    const File file(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!file)
        return reason();
    std::vector<unsigned char> bytes;
    constexpr std::size_t cStep = std::size_t(1) << 20;
    for (;;)
    {
        const std::size_t nBefore = bytes.size();
        bytes.resize(nBefore + cStep);
        const std::size_t n = std::fread(bytes.data() + nBefore, 1, cStep, file.get());
        bytes.resize(nBefore + n);
        // What is no captured frame may be endless.
        if (nBefore == 0 && std::memcmp(bytes.data(), cMagic.data(), std::min(n, cMagic.size())) != 0)
            break;
        if (n < cStep)
            break;
        if (bytes.size() > cMostBytes)
            return "it is larger than 2 GiB";
    }
    if (std::ferror(file.get()) != 0)
        return reason();
    return read(std::move(bytes));
}

std::string FrameFile::read(std::vector<unsigned char> bytes)
{
    *this = {};
    _bytes = std::move(bytes);
    if (_bytes.size() < cMagic.size() || std::memcmp(_bytes.data(), cMagic.data(), cMagic.size()) != 0)
        return "no captured frame";
    ByteReader reader(ByteSpan(_bytes).subspan(cMagic.size()));
    const auto version = reader.number<std::uint32_t>();
    if (reader.isOk() && version != cVersion)
        return "of version " + std::to_string(version) + ", where this program reads version " +
               std::to_string(cVersion);
    if (reader.number<std::uint32_t>() != 0)
        return "damaged: its head is another";
    std::array<ByteSpan, cChunks.size()> chunks;
    for (std::size_t i = 0; i < chunks.size(); ++i)
    {
        std::array<char, 4> name{};
        for (char& letter : name)
            letter = reader.number<char>();
        const auto sum = reader.number<std::uint32_t>();
        const auto size = reader.number<std::uint64_t>();
        chunks[i] = reader.data(size);
        reader.align();
        if (!reader.isOk())
            return "it ends too soon";
        if (std::string_view(name.data(), name.size()) != cChunks[i])
            return "damaged: chunk " + std::string(cChunks[i]) + " is not where it should be";
        if (checksum(chunks[i]) != sum)
            return "damaged: the checksum of chunk " + std::string(cChunks[i]) + " is another";
    }
    if (!reader.isAtEnd())
        return "damaged: there is something behind its end";
    _parts = {chunks[2], chunks[3], chunks[4]};
    const std::string error = readInfo(chunks[0]);
    return error.empty() ? readCalls(chunks[1]) : error;
}

std::string FrameFile::readInfo(ByteSpan bytes)
{
    ByteReader reader(bytes);
    for (std::string* pText : {&_info.program, &_info.renderer, &_info.glVersion})
    {
        *pText = reader.text();
        for (char& letter : *pText)
            if (static_cast<unsigned char>(letter) < ' ')
                letter = '?';
    }
    for (std::uint32_t* pNumber : {&_info.frame, &_info.width, &_info.height, &_info.samples, &_info.framebuffer,
                                   &_info.depthBits, &_info.stencilBits})
        *pNumber = reader.number<std::uint32_t>();
    if (!reader.isOk() || !reader.isAtEnd())
        return "damaged: chunk INFO has another size";
    if (_info.width == 0 || _info.height == 0 || _info.width > cMostPixels || _info.height > cMostPixels ||
        _info.samples > cMostSamples || _info.depthBits > 32 || _info.stencilBits > 8)
        return "a frame of " + std::to_string(_info.width) + " x " + std::to_string(_info.height) + " pixels with " +
               std::to_string(_info.samples) + " samples, " + std::to_string(_info.depthBits) + " bits of depth and " +
               std::to_string(_info.stencilBits) + " of stencil is none";
    return {};
}

std::string FrameFile::readCalls(ByteSpan bytes)
{
    for (ByteReader reader(bytes); !reader.isAtEnd();)
    {
        const std::string name(reader.text()), signature(reader.text());
        if (!reader.isOk())
            return "damaged: chunk CALL has another size";
        const GLCall* const pCall = GLCall::find(name.c_str());
        if (pCall == nullptr || pCall->role == GLCall::Role::Heard || signature != pCall->signature)
            return "it names a call that captured frames don't have";
        _calls.push_back(pCall);
    }
    return {};
}

} // namespace gui::gl
