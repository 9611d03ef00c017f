#include "workbench/host/toolkit/plugin_call.h"

#include <atomic>

namespace workbench {
namespace {

std::atomic<bool> misaligns{false};

}  // namespace

void setMisalignment(bool on) { misaligns = on; }
bool isMisalignmentOn() { return misaligns; }

}  // namespace workbench

#ifndef _WIN64
// std::uint32_t callWithStackAt(const void* function, const std::uint32_t* arguments, std::uint32_t count,
//                               std::uint32_t offset): at the call the stack pointer is `offset` past a 16-byte
//                               boundary.
asm(R"(
    .text
    .globl _callWithStackAt
_callWithStackAt:
    pushl %ebp
    movl %esp, %ebp
    pushl %esi
    pushl %edi
    pushl %ebx
    movl 12(%ebp), %esi
    movl 16(%ebp), %ecx
    leal 16(,%ecx,4), %eax
    subl %eax, %esp
    andl $-16, %esp
    addl 20(%ebp), %esp
    movl %esp, %edi
    cld
    rep movsl
    call *8(%ebp)
    leal -12(%ebp), %esp
    popl %ebx
    popl %edi
    popl %esi
    popl %ebp
    ret
)");

extern "C" std::uint32_t callWithStackAt(const void* function, const std::uint32_t* arguments, std::uint32_t count,
                                         std::uint32_t offset);

namespace workbench {
namespace {

std::atomic<std::uint32_t> callsMade{0};

}  // namespace

std::uint32_t callOnOffsetStack(const void* function, const std::uint32_t* arguments, std::uint32_t count) {
    constexpr std::uint32_t OFFSETS[] = {4, 8, 12};
    const std::uint32_t offset = misaligns ? OFFSETS[callsMade++ % 3] : 0;
    return callWithStackAt(function, arguments, count, offset);
}

}  // namespace workbench
#endif
