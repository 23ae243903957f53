#include "CallStream.h"

#include <epoxy/gl.h>

#include <cstdint>
#include <initializer_list>
#include <optional>

namespace gui::gl
{

namespace
{

constexpr std::uint64_t cNull = UINT64_MAX; // as many bytes has data that isn't there

bool isData(char letter) { return letter == 'n' || letter == 'p' || letter == 'q'; }

bool isPixelStore(const GLCall& call) { return call.slot == &glPixelStorei; }

} // namespace

bool CallWriter::write(const GLCall& call, CallArguments arguments)
{
    std::array<std::uint64_t, GLCall::cMostArguments> sizes{};
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        if (!isData(call.signature[i]))
            continue;
        const std::optional<std::uint64_t> n = call.bytes(arguments, i, _store);
        const bool isNull = arguments[i].pointer == nullptr;
        if (!n || (isNull && *n > 0 && call.signature[i] != 'q'))
            return false;
        sizes[i] = isNull && *n > 0 ? cNull : *n;
    }
    if (isPixelStore(call) && !_store.set(arguments[0].integer, arguments[1].integer))
        return false;
    _bytes.number(static_cast<std::uint16_t>(call.index()));
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const CallArgument& argument = arguments[i];
        switch (call.signature[i])
        {
        case 'b':
            _bytes.number(static_cast<std::uint8_t>(argument.integer != 0));
            break;
        case 'f':
        case 'd':
            _bytes.real(argument.real);
            break;
        case 'z':
            _bytes.number(argument.integer);
            break;
        case 'o':
            _bytes.number(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(argument.pointer)));
            break;
        case 'n':
        case 'p':
        case 'q':
            _bytes.number(sizes[i]);
            if (sizes[i] != cNull)
                _bytes.data(argument.pointer, sizes[i]);
            break;
        default:
            _bytes.number(static_cast<std::uint32_t>(argument.integer));
            break;
        }
    }
    return true;
}

void CallWriter::note(const char* name, std::initializer_list<std::uint32_t> numbers, const std::string& bytes)
{
    const GLCall* const pCall = GLCall::find(name);
    std::array<CallArgument, GLCall::cMostArguments> arguments;
    std::size_t n = 0;
    for (const std::uint32_t number : numbers)
        arguments[n++].integer = number;
    if (n < pCall->nArguments())
    {
        arguments[n].pointer = bytes.data();
        arguments[n++].nBytes = bytes.size();
    }
    write(*pCall, {arguments.data(), n});
}

bool CallReader::fail(const std::string& error)
{
    _error = error;
    return false;
}

void CallReader::readArgument(std::size_t i)
{
    CallArgument& argument = _arguments[i] = {};
    switch (_pCall->signature[i])
    {
    case 'b':
        argument.integer = _bytes.number<std::uint8_t>() != 0;
        break;
    case 'f':
    case 'd':
        argument.real = _bytes.real();
        break;
    case 'z':
        argument.integer = _bytes.number<std::int64_t>();
        break;
    case 'o':
        argument.integer = _bytes.number<std::int64_t>();
        argument.pointer = reinterpret_cast<const void*>(static_cast<std::uintptr_t>(argument.integer));
        break;
    case 'n':
    case 'p':
    case 'q':
        argument.nBytes = _bytes.number<std::uint64_t>();
        if (argument.nBytes != cNull)
            argument.pointer = _bytes.data(argument.nBytes).data();
        break;
    case 'i':
    case 'l':
        argument.integer = _bytes.number<std::int32_t>();
        break;
    default:
        argument.integer = _bytes.number<std::uint32_t>();
        break;
    }
}

bool CallReader::next()
{
    if (!_error.empty() || _bytes.isAtEnd())
        return false;
    const auto index = _bytes.number<std::uint16_t>();
    if (!_bytes.isOk() || index >= _calls.size())
        return fail("a call is none of those that it names");
    _pCall = _calls[index];
    _nArguments = _pCall->nArguments();
    for (std::size_t i = 0; i < _nArguments; ++i)
        readArgument(i);
    if (!_bytes.isOk())
        return fail(std::string(_pCall->name) + " ends too soon");
    for (std::size_t i = 0; i < _nArguments; ++i)
    {
        const char letter = _pCall->signature[i];
        if (!isData(letter) || (letter == 'q' && _arguments[i].nBytes == cNull))
            continue;
        const std::optional<std::uint64_t> n = _pCall->bytes(arguments(), i, _store);
        if (!n || *n != _arguments[i].nBytes)
            return fail(std::string(_pCall->name) + " has data of another size than it says");
    }
    if (isPixelStore(*_pCall) && !_store.set(_arguments[0].integer, _arguments[1].integer))
        return fail("glPixelStorei has a value that captured frames don't have");
    return true;
}

} // namespace gui::gl
