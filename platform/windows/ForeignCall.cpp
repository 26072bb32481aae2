// Visual C++ throws C++ exceptions as structured exceptions with a code of its own. callCatchingForeign has a handler
// for that code only, so that access violations and this compiler's exceptions pass through. The handler unwinds the
// library's frames, which runs their destructors, and continues in callCatchingForeign, which throws an exception of
// this compiler. The foreign exception object is leaked: only the other runtime knows its destructor.

#include "platform/ForeignCall.h"

#include "platform/win32.h"

#include <stdexcept>

extern "C" {

/// Where callCatchingForeign continues after a foreign exception.
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

// Shifts each argument down by one position and calls the first. A nop follows each call, because the system ignores
// the handler if the return address is in an epilogue.
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
