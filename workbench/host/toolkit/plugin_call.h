// The one gate through which the host calls code of the plug-in. With misalignment on, every call of a 32-bit host is
// made with the stack 4, 8 and 12 bytes past a 16-byte boundary in turn, which is all that it guarantees. In a 64-bit
// host stacks are always aligned, and misalignment changes nothing.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace workbench {

void setMisalignment(bool on);
bool isMisalignmentOn();

#ifdef _WIN64
template <typename Result, typename... Parameters, typename... Arguments>
Result callPlugin(Result (*function)(Parameters...), Arguments... arguments) {
    // A notification handler is declared without the arguments that it gets.
    return reinterpret_cast<Result (*)(Arguments...)>(reinterpret_cast<void*>(function))(arguments...);
}
#else
// Calls a function with 32-bit arguments on the stack, as the next offset in turn has it. Suits cdecl and stdcall.
std::uint32_t callOnOffsetStack(const void* function, const std::uint32_t* arguments, std::uint32_t count);

template <typename T>
std::uint32_t asWord(T value) {
    static_assert(sizeof(T) == sizeof(std::uint32_t), "arguments are 32-bit words");
    std::uint32_t word = 0;
    std::memcpy(&word, &value, sizeof word);
    return word;
}

template <typename Result, typename... Parameters, typename... Arguments>
Result callPlugin(Result (*function)(Parameters...), Arguments... arguments) {
    static_assert(sizeof(Result) == sizeof(std::uint32_t), "results are 32-bit words");
    const std::uint32_t words[] = {asWord(arguments)..., 0};
    const std::uint32_t result =
        callOnOffsetStack(reinterpret_cast<const void*>(function), words, sizeof...(arguments));
    return static_cast<Result>(result);
}

#endif

}  // namespace workbench
