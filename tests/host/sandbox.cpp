// sandbox FOLDER PROGRAM [ARGUMENT]...
// Runs a program under the restrictions of packaging/zarn-host.service, as far as that is possible without systemd: no
// capabilities and no way to gain any, no code generated at run time, four address families. When run as root, the
// program also runs as an unprivileged account to which everything except FOLDER is read-only. Exits with status 77
// when the kernel refuses the sandbox.
#include <fcntl.h>
#include <grp.h>
#include <linux/filter.h>
#include <linux/mount.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int Refused = 77;
constexpr unsigned Nobody = 65534;
constexpr int LastCapability = 63;

void Check(char const* what, long result) {
    if (result >= 0) return;
    std::perror(what);
    std::exit(Refused);
}

void SetReadOnly(char const* path, bool readOnly) {
    mount_attr attributes{};
    (readOnly ? attributes.attr_set : attributes.attr_clr) = MOUNT_ATTR_RDONLY;
    Check("mount_setattr", syscall(SYS_mount_setattr, AT_FDCWD, path, AT_RECURSIVE, &attributes, sizeof(attributes)));
}

void LeaveOnlyOneFolderWritable(char const* folder) {
    Check("unshare", unshare(CLONE_NEWNS));
    Check("mount", mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr));
    Check("mount", mount(folder, folder, nullptr, MS_BIND, nullptr));
    SetReadOnly("/", true);
    SetReadOnly(folder, false);
}

void GiveUpRoot(char const* folder) {
    Check("chown", chown(folder, Nobody, Nobody));
    for (int capability = 0; capability <= LastCapability; ++capability) {
        if (prctl(PR_CAPBSET_READ, capability) == 1) Check("prctl", prctl(PR_CAPBSET_DROP, capability));
    }
    Check("setgroups", setgroups(0, nullptr));
    Check("setresgid", setresgid(Nobody, Nobody, Nobody));
    Check("setresuid", setresuid(Nobody, Nobody, Nobody));
}

constexpr sock_filter Load(std::size_t offset) {
    return {BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<std::uint32_t>(offset)};
}

constexpr sock_filter Load(int argument) {
    return Load(offsetof(seccomp_data, args) + static_cast<std::size_t>(argument) * sizeof(std::uint64_t));
}

constexpr sock_filter IfEqual(std::uint32_t value, std::uint8_t yes, std::uint8_t no) {
    return {BPF_JMP | BPF_JEQ | BPF_K, yes, no, value};
}

constexpr sock_filter IfAnyBit(std::uint32_t bits, std::uint8_t yes, std::uint8_t no) {
    return {BPF_JMP | BPF_JSET | BPF_K, yes, no, bits};
}

constexpr sock_filter Keep(std::uint32_t bits) { return {BPF_ALU | BPF_AND | BPF_K, 0, 0, bits}; }

constexpr sock_filter Return(std::uint32_t value) { return {BPF_RET | BPF_K, 0, 0, value}; }

/// Equivalent to MemoryDenyWriteExecute= and RestrictAddressFamilies= in the unit.
void RestrictCalls() {
    constexpr std::uint32_t Allow = SECCOMP_RET_ALLOW;
    // The numbers are jump offsets for a match and for no match.
    std::array program{
        Load(offsetof(seccomp_data, nr)),
        IfEqual(SYS_mmap, 3, 0),
        IfEqual(SYS_mprotect, 5, 0),
        IfEqual(SYS_socket, 6, 0),
        Return(Allow),
        Load(2), // mmap: protection
        Keep(PROT_WRITE | PROT_EXEC),
        IfEqual(PROT_WRITE | PROT_EXEC, 9, 8),
        Load(2), // mprotect: protection
        IfAnyBit(PROT_EXEC, 7, 6),
        Load(0), // socket: family
        IfEqual(AF_INET, 4, 0),
        IfEqual(AF_INET6, 3, 0),
        IfEqual(AF_NETLINK, 2, 0),
        IfEqual(AF_UNIX, 1, 0),
        Return(SECCOMP_RET_ERRNO | EAFNOSUPPORT),
        Return(Allow),
        Return(SECCOMP_RET_ERRNO | EPERM),
    };
    sock_fprog const filter{program.size(), program.data()};
    Check("no_new_privs", prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0));
    Check("seccomp", prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter));
}

} // namespace

int main(int count, char** arguments) {
    if (count < 3) return 2;
    if (geteuid() == 0) {
        LeaveOnlyOneFolderWritable(arguments[1]);
        GiveUpRoot(arguments[1]);
    }
    RestrictCalls();
    execv(arguments[2], arguments + 2);
    std::perror(arguments[2]);
    return Refused;
}
