#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/syscall.h>

namespace zelto::confinement {

/// One system call that a confined process may still make, and on what terms.
struct AllowedCall {
    enum class Terms {
        always,
        readOnly,     // an `openat` that neither writes nor makes anything
        flagsOnly,    // an `fcntl` that reads or sets flags
        threadsOnly,  // a `clone` that starts a thread, not a process
        noNamespace,  // a `clone` that leaves what it starts among all others
        askingOnly,   // a `prlimit64` that sets nothing
        connected,    // a `sendto` without an address
        deadlyOnly,   // a `kill` by SIGKILL
        ownProcess,   // a `tgkill` of a thread of its own
        dataOnly,     // memory that cannot be run
    };
    const char* name;
    /// As the kernel counts them; negative where this machine's kernel does without it.
    long number;
    Terms terms = Terms::always;
};

/// What is left to a process that confines itself.
struct Allowance {
    /// Files and folders, with all below them, that stay readable. What is not there is passed over.
    std::vector<std::filesystem::path> readable = {};
    /// The only system calls, beside the basic ones.
    std::vector<AllowedCall> calls = {};
    /// Bytes of address space; open files.
    std::size_t addressSpace = std::size_t{768} << 20;
    std::size_t openFiles = 256;
    /// Of processor time, after which it is killed.
    std::optional<std::size_t> processorSeconds = {};
};

/// What every confined process here needs of the kernel: memory, time, its own end, and the files that it
/// has.
std::span<const AllowedCall> basicCalls();

/// Confines this process for good, and all that it starts: no new privileges; limits; no core, no debugger;
/// death with its parent; only those files readable and none writable (Landlock); only those system calls
/// (seccomp): of the others, those that nothing harmless makes end the process, and the rest fail with EPERM.
/// To be called before there is a second thread. What the kernel does not offer is returned by name, and the
/// rest holds: "landlock", "seccomp", "no_new_privs", "limits". In a build with sanitizers there are neither
/// limits nor a filter, which is returned as lacking.
std::vector<std::string> confine(const Allowance& allowance);

/// Closes all descriptors from `first` on.
void closeDescriptors(unsigned first);

}  // namespace zelto::confinement

// Of the older calls, machines of newer kinds have only the successors.
#ifndef SYS_access
#define SYS_access (-1)
#endif
#ifndef SYS_dup2
#define SYS_dup2 (-1)
#endif
#ifndef SYS_poll
#define SYS_poll (-1)
#endif
#ifndef SYS_readlink
#define SYS_readlink (-1)
#endif
/// A call's name and number.
#define ZELTO_CALL(name) #name, SYS_##name
