#pragma once

#include "GLTrace.h"

#include <concepts>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <type_traits>

// How the tests take the place of GL: entry points that are replaced, and who hears of their calls.

namespace test
{

struct GLArgument
{
    template <std::integral T>
    explicit GLArgument(T value)
        : integer(static_cast<long long>(value))
    {
    }
    explicit GLArgument(float value)
        : real(value)
    {
    }
    explicit GLArgument(const void* value)
        : pointer(value)
    {
    }

    unsigned int name() const { return static_cast<unsigned int>(integer); }
    template <typename T>
    const T* data() const
    {
        return static_cast<const T*>(pointer);
    }
    template <typename T>
    T* result() const
    {
        return static_cast<T*>(const_cast<void*>(pointer));
    }

    long long integer = 0;
    double real = 0;
    const void* pointer = nullptr;
};

using GLArguments = std::span<const GLArgument>;

/// One GL entry point that a trace replaces.
struct GLEntry
{
    enum class Role
    {
        Plain,
        Generate, ///< (count, names)
        Create,   ///< returns the name
        Delete    ///< (count, names) or (name)
    };

    const char* function;
    /// One letter for each parameter. e: enumeration, bits or name; i: integer; f: float; p: data, result or offset;
    /// s: text; n: names, as many as the parameter before says; otherwise vectors or matrices, as many as the second
    /// parameter says, of 1, 2, 3, 4, 9 or (m) 16 numbers, floats for a function that ends in "fv".
    const char* parameters;
    GLEntry::Role role;
    GLTrace::Kind kind;
    void (*install)(const GLEntry&);
    void (*restore)();
};

/// The entry points that the library may use, and those that it must not but a trace should show.
std::span<const GLEntry> glEntries();

/// Hears of every GL call between start and stop. One at a time.
class GLListener
{
public:
    GLListener() = default;
    virtual ~GLListener() = default;
    GLListener(const GLListener&) = delete;
    GLListener& operator=(const GLListener&) = delete;

    /// True when the call is answered here, false when the driver has to answer it.
    virtual bool answer(const GLEntry& entry, GLArguments arguments, long long& result) = 0;

    virtual void note(const GLEntry& entry, GLArguments arguments, long long result) = 0;

    void startListening();
    void stopListening();

    /// Which names were made and not deleted, as far as noteNames heard of it.
    std::map<GLTrace::Kind, std::set<unsigned int>> alive;

protected:
    /// @return a name that was deleted without being alive; 0 when there was none
    unsigned int noteNames(const GLEntry& entry, GLArguments arguments, long long result);
};

/// The names of a call that generates or deletes some, also of those that take just one.
std::span<const unsigned int> namesOf(GLArguments arguments, const unsigned int& single);

struct GLTrace::State : GLListener
{
    bool answer(const GLEntry& entry, GLArguments arguments, long long& result) override;
    void note(const GLEntry& entry, GLArguments arguments, long long result) override;

    Mode mode;
    std::vector<std::string> calls;
    std::map<std::string, std::vector<unsigned int>, std::less<>> failures; ///< how many calls on each function fails
    std::map<Kind, unsigned int> lastNames;
    std::map<unsigned int, unsigned int> stages; ///< of each shader
    std::map<unsigned int, std::string> compileLogs;
    std::optional<std::string> linkLog;
    std::map<std::string, int> uniformLocations;
    std::map<unsigned int, int> limits;
    std::vector<unsigned int> errors;
    std::map<unsigned int, std::string> sources;
    std::map<unsigned int, std::vector<unsigned char>> bufferData;
    std::vector<unsigned char> lastImage;

private:
    bool mustFail(const GLEntry& entry);
    long long nullResult(std::string_view function, GLArguments arguments);
    long long handOutNames(const GLEntry& entry, GLArguments arguments);
    void keepData(std::string_view function, GLArguments arguments);
};

extern GLListener* s_pGLListener;

/// Takes the place of an entry point. Slot: the address of the loader's pointer to it.
template <auto Slot>
struct GLHook;

template <typename Result, typename... Parameters, Result (**Slot)(Parameters...)>
struct GLHook<Slot>
{
    static inline Result (*s_loaded)(Parameters...) = nullptr;
    static inline const GLEntry* s_pEntry = nullptr;

    static void install(const GLEntry& entry)
    {
        s_pEntry = &entry;
        s_loaded = *Slot;
        *Slot = call;
    }

    static void restore() { *Slot = s_loaded; }

    static Result call(Parameters... parameters)
    {
        const GLArgument values[sizeof...(Parameters) + 1] = {GLArgument(parameters)..., GLArgument(0)};
        const GLArguments arguments(values, sizeof...(Parameters));
        long long result = 0;
        if (!s_pGLListener->answer(*s_pEntry, arguments, result))
        {
            // On its first call the loader's pointer replaces itself and calls on through itself: it has to be back in
            // its place meanwhile, or it would call this function again, for ever.
            *Slot = s_loaded;
            if constexpr (std::is_void_v<Result>)
                (*Slot)(parameters...);
            else
                result = static_cast<long long>((*Slot)(parameters...));
            s_loaded = *Slot;
            *Slot = call;
        }
        s_pGLListener->note(*s_pEntry, arguments, result);
        if constexpr (!std::is_void_v<Result>)
            return static_cast<Result>(result);
    }
};

} // namespace test
