#include "CallFilter.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace zelto::confinement {
namespace {

using Terms = AllowedCall::Terms;

constexpr std::array basic{
    AllowedCall{ZELTO_CALL(read)},
    AllowedCall{ZELTO_CALL(write)},
    AllowedCall{ZELTO_CALL(close)},
    AllowedCall{ZELTO_CALL(dup)},
    AllowedCall{ZELTO_CALL(fstat)},
    AllowedCall{ZELTO_CALL(newfstatat)},
    AllowedCall{ZELTO_CALL(lseek)},
    AllowedCall{ZELTO_CALL(pread64)},
    AllowedCall{ZELTO_CALL(poll)},
    AllowedCall{ZELTO_CALL(ppoll)},
    AllowedCall{ZELTO_CALL(fcntl), Terms::flagsOnly},
    AllowedCall{ZELTO_CALL(mmap), Terms::dataOnly},
    AllowedCall{ZELTO_CALL(mprotect), Terms::dataOnly},
    AllowedCall{ZELTO_CALL(munmap)},
    AllowedCall{ZELTO_CALL(mremap)},
    AllowedCall{ZELTO_CALL(madvise)},
    AllowedCall{ZELTO_CALL(brk)},
    AllowedCall{ZELTO_CALL(futex)},
    AllowedCall{ZELTO_CALL(clock_gettime)},
    AllowedCall{ZELTO_CALL(gettimeofday)},
    AllowedCall{ZELTO_CALL(getrandom)},
    AllowedCall{ZELTO_CALL(getpid)},
    AllowedCall{ZELTO_CALL(gettid)},
    AllowedCall{ZELTO_CALL(tgkill), Terms::ownProcess},
    AllowedCall{ZELTO_CALL(rt_sigprocmask)},
    AllowedCall{ZELTO_CALL(rt_sigaction)},
    AllowedCall{ZELTO_CALL(rt_sigreturn)},
    AllowedCall{ZELTO_CALL(restart_syscall)},
    AllowedCall{ZELTO_CALL(exit)},
    AllowedCall{ZELTO_CALL(exit_group)},
};

/// What `clone` makes anew for what it starts, instead of sharing it with all others.
constexpr std::uint32_t namespaces =
    CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;

/// Calls whose very attempt ends the process, where they are not allowed.
constexpr std::array<std::uint32_t, 24> fatal{
    SYS_execve,
    SYS_execveat,
    SYS_ptrace,
    SYS_socket,
    SYS_connect,
    SYS_bind,
    SYS_listen,
    SYS_accept4,
    SYS_socketpair,
    SYS_kill,
    SYS_tkill,
    SYS_process_vm_readv,
    SYS_mount,
    SYS_process_vm_writev,
    SYS_bpf,
    SYS_keyctl,
    SYS_unshare,
    SYS_io_uring_setup,
    SYS_setns,
    SYS_userfaultfd,
    SYS_perf_event_open,
    SYS_init_module,
    SYS_finit_module,
    SYS_pidfd_send_signal,
};

#if defined(__x86_64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr std::uint32_t architecture = AUDIT_ARCH_AARCH64;
#endif

/// The filter as the kernel runs it before each call: what has been decided returns, everything else goes on
/// to the next rule. A library that makes such programs takes a tenth of the extension's start for it.
class Program {
  public:
    Program() {
        load(offsetof(seccomp_data, arch));
        require(architecture, SECCOMP_RET_KILL_PROCESS);
        load(offsetof(seccomp_data, nr));
    }

    void add(const AllowedCall& call) {
        if (call.number < 0) return;
        const auto number = static_cast<std::uint32_t>(call.number);
        switch (call.terms) {
            case Terms::always: decide(number, SECCOMP_RET_ALLOW); break;
            case Terms::readOnly: allowMasked(number, 2, O_ACCMODE | O_CREAT | O_TRUNC, {O_RDONLY}); break;
            case Terms::flagsOnly: allowMasked(number, 1, ~0U, {F_GETFL, F_SETFL, F_GETFD, F_SETFD}); break;
            case Terms::threadsOnly:
                allowMasked(number, 0, CLONE_THREAD, {CLONE_THREAD});
                // The flags of its successor are in memory, where no filter sees them: the C library is told
                // that there is none and takes this one.
                decide(SYS_clone3, SECCOMP_RET_ERRNO | ENOSYS);
                break;
            case Terms::noNamespace:
                allowMasked(number, 0, namespaces, {0});
                decide(SYS_clone3, SECCOMP_RET_ERRNO | ENOSYS);
                break;
            case Terms::askingOnly: allowNull(number, 2); break;
            case Terms::connected: allowNull(number, 4); break;
            case Terms::deadlyOnly: allowMasked(number, 1, ~0U, {SIGKILL}); break;
            case Terms::ownProcess:
                allowMasked(number, 0, ~0U, {static_cast<std::uint32_t>(getpid())});
                break;
            case Terms::dataOnly: allowMasked(number, 2, PROT_EXEC, {0}); break;
        }
    }
    /// What becomes of a call, whatever its arguments are.
    void decide(std::uint32_t number, std::uint32_t action) {
        put(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1);
        put(BPF_RET | BPF_K, action);
    }

    bool install() {
        put(BPF_RET | BPF_K, refusal);
        const sock_fprog program{static_cast<unsigned short>(steps_.size()), steps_.data()};
        return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    }

  private:
    static constexpr std::uint32_t refusal = SECCOMP_RET_ERRNO | EPERM;

    void put(int code, std::uint32_t value, std::size_t ifTrue = 0, std::size_t ifFalse = 0) {
        steps_.push_back(
            {static_cast<std::uint16_t>(code),
             static_cast<std::uint8_t>(ifTrue),
             static_cast<std::uint8_t>(ifFalse),
             value});
    }
    void load(std::size_t offset) { put(BPF_LD | BPF_W | BPF_ABS, static_cast<std::uint32_t>(offset)); }
    /// Ends in `action` unless what was loaded is `value`.
    void require(std::uint32_t value, std::uint32_t action) {
        put(BPF_JMP | BPF_JEQ | BPF_K, value, 1, 0);
        put(BPF_RET | BPF_K, action);
    }
    /// Of an argument, which has eight bytes; the lower half is first on the machines that this knows.
    void loadArgument(std::size_t argument, bool isUpper) {
        load(offsetof(seccomp_data, args) + argument * 8 + (isUpper ? 4 : 0));
    }

    /// By the lower half of an argument, of which the kernel takes an int.
    void allowMasked(
        std::uint32_t number, std::size_t argument, std::uint32_t mask,
        std::initializer_list<std::uint32_t> values) {
        put(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 3 + 2 * values.size());
        loadArgument(argument, false);
        put(BPF_ALU | BPF_AND | BPF_K, mask);
        for (const std::uint32_t value : values) decide(value, SECCOMP_RET_ALLOW);
        put(BPF_RET | BPF_K, refusal);
    }
    /// By an argument that is a pointer to nothing.
    void allowNull(std::uint32_t number, std::size_t argument) {
        put(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 7);
        loadArgument(argument, false);
        require(0, refusal);
        loadArgument(argument, true);
        require(0, refusal);
        put(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    }

    std::vector<sock_filter> steps_;
};

}  // namespace

std::span<const AllowedCall> basicCalls() {
    return basic;
}

bool restrictCalls(std::span<const AllowedCall> calls) {
    Program program;
    for (const AllowedCall& call : basic) program.add(call);
    for (const AllowedCall& call : calls) program.add(call);
    // Those that are allowed, on whatever terms, have been decided.
    for (const std::uint32_t call : fatal) program.decide(call, SECCOMP_RET_KILL_PROCESS);
    return program.install();
}

}  // namespace zelto::confinement
