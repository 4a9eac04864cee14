// lumo_thread_variable for x86_64: a Mac program expects it to preserve every register except the
// result and rdi.

asm(R"(
    .globl lumo_thread_variable
lumo_thread_variable:
    push %rbp
    mov %rsp, %rbp
    and $-64, %rsp
    sub $576, %rsp
    fxsave (%rsp)
    mov %rcx, 512(%rsp)
    mov %rdx, 520(%rsp)
    mov %rsi, 528(%rsp)
    mov %r8, 536(%rsp)
    mov %r9, 544(%rsp)
    mov %r10, 552(%rsp)
    mov %r11, 560(%rsp)
    mov %rdi, 568(%rsp)
    mov 8(%rdi), %rdi
    call lumo_thread_block
    mov 568(%rsp), %rdi
    add 16(%rdi), %rax
    mov 512(%rsp), %rcx
    mov 520(%rsp), %rdx
    mov 528(%rsp), %rsi
    mov 536(%rsp), %r8
    mov 544(%rsp), %r9
    mov 552(%rsp), %r10
    mov 560(%rsp), %r11
    fxrstor (%rsp)
    leave
    ret
)");
