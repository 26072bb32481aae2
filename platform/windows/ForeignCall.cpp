// A C++ exception of Visual C++ is a structured exception. The frame below has a handler for those alone, so that
// access violations and this compiler's own exceptions pass. The handler unwinds the library's frames, whose
// destructors run, and goes on in the frame itself, where an exception of this compiler begins. The foreign exception
// object is not destroyed: its destructor is known to the other runtime only.

#include "platform/ForeignCall.h"

#include "platform/win32.h"

#include <stdexcept>

extern "C" {

/// Where callCatchingForeign goes on after a foreign exception.
extern const char afterForeignException;

[[noreturn, gnu::used]] void throwForForeignException() {
    throw std::runtime_error("C++ exception of another compiler");
}

[[gnu::used]] EXCEPTION_DISPOSITION handleForeignException(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                                           DISPATCHER_CONTEXT* dispatcher) {
    constexpr DWORD visualCppException = 0xE06D7363;
    if (record->ExceptionCode == visualCppException) {
        auto* const target = const_cast<char*>(&afterForeignException); // NOLINT(*-const-cast): the system's signature
        RtlUnwindEx(frame, target, record, nullptr, context, dispatcher->HistoryTable);
    }
    return ExceptionContinueSearch;
}
}

// Moves each argument into the place of the one before it. The address behind a call must not be that of an epilogue,
// since the system looks for no handler there: thence the two nops.
asm(R"(
    .text
    .globl callCatchingForeign
    .seh_proc callCatchingForeign
callCatchingForeign:
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    .seh_handler handleForeignException, @except
    movq %rcx, %rax
    movq %rdx, %rcx
    movq %r8, %rdx
    movq %r9, %r8
    movq 80(%rsp), %r9
    call *%rax
    nop
    addq $40, %rsp
    ret
    .globl afterForeignException
afterForeignException:
    call throwForForeignException
    nop
    .seh_endproc
)");
