#include <td/StringBase.h>

#include <td/Assert.h>

#include <cstring>
#include <new>
#include <string_view>

namespace td
{

StringBase::StringBase(const char* text)
    : StringBase(text, text != nullptr ? std::strlen(text) : 0)
{
}

StringBase::StringBase(const char* text, std::size_t length)
{
    if (text == nullptr || length == 0)
        return;
    *this = allocate(length);
    std::memcpy(_pBuffer->text(), text, length);
}

StringBase& StringBase::operator=(const StringBase& other)
{
    // The copy comes first: it may fail, and `other` may be this string.
    return *this = StringBase(other);
}

StringBase& StringBase::operator=(StringBase&& other) noexcept
{
    if (this != &other)
    {
        drop();
        _pBuffer = std::exchange(other._pBuffer, nullptr);
    }
    return *this;
}

StringBase StringBase::trim() const
{
    constexpr std::string_view cWhiteSpace = " \t\n\v\f\r";
    const std::string_view text(c_str(), length());
    const std::size_t first = text.find_first_not_of(cWhiteSpace);
    if (first == std::string_view::npos)
        return {};
    const std::size_t end = text.find_last_not_of(cWhiteSpace) + 1;
    if (end - first == text.size())
        return *this;
    return {text.data() + first, end - first};
}

bool operator==(const StringBase& a, const StringBase& b)
{
    return std::string_view(a.c_str(), a.length()) == std::string_view(b.c_str(), b.length());
}

StringBase StringBase::allocate(std::size_t length)
{
    StringBase string;
    if (length == 0)
        return string;
    void* const pMemory = ::operator new(sizeof(_buffer) + length + 1);
    string._pBuffer = new (pMemory) _buffer{1, length};
    string._pBuffer->text()[length] = '\0';
    return string;
}

StringBase::_buffer* StringBase::share() const
{
    constexpr unsigned int cMaxRefs = 15;
    if (_pBuffer == nullptr)
        return nullptr;
    if (_pBuffer->nRefs == cMaxRefs)
    {
        StringBase copy(_pBuffer->text(), _pBuffer->length);
        return std::exchange(copy._pBuffer, nullptr);
    }
    const unsigned int nRefs = _pBuffer->nRefs + 1;
    TD_ASSERT(nRefs <= 15, nullptr);
    _pBuffer->nRefs = nRefs;
    return _pBuffer;
}

void StringBase::drop() noexcept
{
    if (_pBuffer != nullptr && --_pBuffer->nRefs == 0)
        ::operator delete(_pBuffer);
    _pBuffer = nullptr;
}

} // namespace td
