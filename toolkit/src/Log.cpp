#include <vo/Log.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace vo
{

namespace
{

struct FileCloser
{
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};

struct Log
{
    std::function<void(const char*)> sink;
    std::unique_ptr<std::FILE, FileCloser> file;
};

Log& theLog()
{
    // Never destroyed: destructors of static objects may still write to it.
    static Log* const pLog = new Log;
    return *pLog;
}

void writeToSink(const char* text)
{
    // The copy keeps the sink alive if it replaces itself.
    if (const auto sink = theLog().sink)
        sink(text);
    else
        std::fprintf(stderr, "%s\n", text);
}

void writeToFile(const char* text)
{
    std::FILE* const pFile = theLog().file.get();
    if (pFile == nullptr)
        return;
    std::fprintf(pFile, "%s\n", text);
    std::fflush(pFile);
}

void writeFormatted(const char* format, std::va_list args)
{
    std::va_list again;
    va_copy(again, args);
    std::array<char, 2048> shortText{};
    const int length = std::vsnprintf(shortText.data(), shortText.size(), format, args);
    if (length >= 0 && std::size_t(length) >= shortText.size())
    {
        std::string text(std::size_t(length), '\0');
        std::vsnprintf(text.data(), text.size() + 1, format, again);
        writeToSink(text.c_str());
    }
    else
        writeToSink(length < 0 ? format : shortText.data());
    va_end(again);
    writeToFile(length < 0 ? format : shortText.data());
}

} // namespace

void dbgLog(const char* format, ...)
{
    if (format == nullptr)
        return;
    if (std::strchr(format, '%') == nullptr)
    {
        writeToSink(format);
        writeToFile(format);
        return;
    }
    std::va_list args;
    va_start(args, format);
    writeFormatted(format, args);
    va_end(args);
}

void setLogSink(std::function<void(const char*)> sink) { theLog().sink = std::move(sink); }

bool setLogFile(const char* path)
{
    if (path == nullptr)
    {
        theLog().file.reset();
        return true;
    }
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path, "a"));
    if (file == nullptr)
        return false;
    theLog().file = std::move(file);
    return true;
}

} // namespace vo
