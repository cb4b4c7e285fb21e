#include "CallFilter.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <sched.h>
#include <seccomp.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "foundation/Handle.hpp"

namespace zelto::confinement {
namespace {

using Terms = AllowedCall::Terms;
using Filter = Handle<std::remove_pointer_t<scmp_filter_ctx>, seccomp_release>;

constexpr std::array basic{
    AllowedCall{"read"},
    AllowedCall{"write"},
    AllowedCall{"close"},
    AllowedCall{"dup"},
    AllowedCall{"fstat"},
    AllowedCall{"newfstatat"},
    AllowedCall{"lseek"},
    AllowedCall{"pread64"},
    AllowedCall{"poll"},
    AllowedCall{"ppoll"},
    AllowedCall{"fcntl", Terms::flagsOnly},
    AllowedCall{"mmap", Terms::dataOnly},
    AllowedCall{"mprotect", Terms::dataOnly},
    AllowedCall{"munmap"},
    AllowedCall{"mremap"},
    AllowedCall{"madvise"},
    AllowedCall{"brk"},
    AllowedCall{"futex"},
    AllowedCall{"clock_gettime"},
    AllowedCall{"gettimeofday"},
    AllowedCall{"getrandom"},
    AllowedCall{"getpid"},
    AllowedCall{"gettid"},
    AllowedCall{"tgkill", Terms::ownProcess},
    AllowedCall{"rt_sigprocmask"},
    AllowedCall{"rt_sigaction"},
    AllowedCall{"rt_sigreturn"},
    AllowedCall{"restart_syscall"},
    AllowedCall{"exit"},
    AllowedCall{"exit_group"},
};

constexpr std::array fatal{
    "execve",
    "execveat",
    "ptrace",
    "socket",
    "connect",
    "bind",
    "listen",
    "accept4",
    "socketpair",
    "kill",
    "tkill",
    "process_vm_readv",
    "mount",
    "process_vm_writev",
    "bpf",
    "keyctl",
    "unshare",
    "io_uring_setup",
    "setns",
    "userfaultfd",
    "perf_event_open",
    "init_module",
    "finit_module",
    "pidfd_send_signal",
};

int add(scmp_filter_ctx filter, int call, std::initializer_list<scmp_arg_cmp> conditions) {
    return seccomp_rule_add_array(
        filter, SCMP_ACT_ALLOW, call, static_cast<unsigned>(conditions.size()), conditions.begin());
}

/// An argument that is an int: the kernel does not look at the rest of its register either.
scmp_arg_cmp integer(unsigned argument, int value) {
    return {argument, SCMP_CMP_MASKED_EQ, 0xFFFFFFFF, static_cast<scmp_datum_t>(value)};
}

void allow(scmp_filter_ctx filter, const AllowedCall& allowed) {
    const int call = seccomp_syscall_resolve_name(allowed.name);
    if (call < 0) return;  // this machine's kernel does without it
    switch (allowed.terms) {
        case Terms::always: add(filter, call, {}); break;
        case Terms::readOnly:
            add(filter, call, {scmp_arg_cmp{2, SCMP_CMP_MASKED_EQ, O_ACCMODE | O_CREAT | O_TRUNC, O_RDONLY}});
            break;
        case Terms::flagsOnly:
            for (const int command : {F_GETFL, F_SETFL, F_GETFD, F_SETFD})
                add(filter, call, {integer(1, command)});
            break;
        case Terms::threadsOnly:
            add(filter, call, {scmp_arg_cmp{0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD}});
            // The flags of its successor are in memory, where no filter sees them: the C library is told that
            // there is none and takes this one.
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
            break;
        case Terms::askingOnly: add(filter, call, {scmp_arg_cmp{2, SCMP_CMP_EQ, 0, 0}}); break;
        case Terms::connected: add(filter, call, {scmp_arg_cmp{4, SCMP_CMP_EQ, 0, 0}}); break;
        case Terms::deadlyOnly: add(filter, call, {integer(1, SIGKILL)}); break;
        case Terms::ownProcess: add(filter, call, {integer(0, getpid())}); break;
        case Terms::dataOnly: add(filter, call, {scmp_arg_cmp{2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0}}); break;
    }
}

}  // namespace

std::span<const AllowedCall> basicCalls() {
    return basic;
}

std::span<const char* const> fatalCalls() {
    return fatal;
}

bool restrictCalls(std::span<const AllowedCall> calls) {
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)));
    if (!filter) return false;
    // Searched by halves, not one by one: every call of the process's life goes through it.
    seccomp_attr_set(filter.get(), SCMP_FLTATR_CTL_OPTIMIZE, 2);
    for (const AllowedCall& call : calls) allow(filter.get(), call);
    for (const std::string_view name : fatal) {
        if (std::ranges::find(calls, name, &AllowedCall::name) != calls.end()) continue;
        if (const int call = seccomp_syscall_resolve_name(name.data()); call >= 0)
            seccomp_rule_add(filter.get(), SCMP_ACT_KILL_PROCESS, call, 0);
    }
    return seccomp_load(filter.get()) == 0;
}

}  // namespace zelto::confinement
