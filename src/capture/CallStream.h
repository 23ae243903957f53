#pragma once

#include "Bytes.h"
#include "GLCalls.h"

#include <array>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <vector>

namespace gui::gl
{

/// Calls as bytes, one after the other.
class CallWriter
{
public:
    /// @return false, and nothing is written, when what an argument points to has no size that is known
    bool write(const GLCall& call, CallArguments arguments);

    /// A call of one's own: `writer.call(&glViewport, 0, 0, 640, 480)`.
    template <typename... Parameters, typename... Values>
    void call(void (**slot)(Parameters...), Values... values)
    {
        const std::array<CallArgument, sizeof...(Values) + 1> arguments{toArgument<Parameters>(values)...,
                                                                        CallArgument{}};
        write(GLCall::of(slot), {arguments.data(), sizeof...(Values)});
    }
    /// A note with numbers, and bytes behind them.
    void note(const char* name, std::initializer_list<std::uint32_t> numbers, const std::string& bytes = {});

    PixelStore& store() { return _store; }
    const std::string& bytes() const { return _bytes.bytes(); }

private:
    template <typename Parameter, typename Value>
    static CallArgument toArgument(Value value)
    {
        CallArgument argument;
        if constexpr (std::is_pointer_v<Parameter>)
            argument.pointer = value;
        else if constexpr (std::is_floating_point_v<Parameter>)
            argument.real = static_cast<double>(static_cast<Parameter>(value));
        else
            argument.integer = static_cast<std::int64_t>(static_cast<Parameter>(value));
        return argument;
    }

    ByteWriter _bytes;
    PixelStore _store;
};

/// Reads what a CallWriter wrote, or finds out that nobody did.
class CallReader
{
public:
    /// @param calls  by their numbers in the file  @param store  of the calls before
    CallReader(ByteSpan bytes, std::span<const GLCall* const> calls, PixelStore& store)
        : _bytes(bytes)
        , _calls(calls)
        , _store(store)
    {
    }

    /// The next call. @return false at the end, and where something is wrong
    bool next();
    const GLCall& call() const { return *_pCall; }
    CallArguments arguments() const { return {_arguments.data(), _nArguments}; }

    /// What is wrong, in words; empty when nothing is.
    const std::string& error() const { return _error; }

private:
    bool fail(const std::string& error);
    void readArgument(std::size_t i);

    ByteReader _bytes;
    std::span<const GLCall* const> _calls;
    PixelStore& _store;
    const GLCall* _pCall = nullptr;
    std::array<CallArgument, GLCall::cMostArguments> _arguments;
    std::size_t _nArguments = 0;
    std::string _error;
};

} // namespace gui::gl
