// Test bodies in processes of their own, with fewer rights or failing system calls.
#pragma once

#include "plat/test/inChild.h"

#include <cstddef>
#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace os {

constexpr uid_t otherUser = 65534; // "nobody"

/// Runs `body` in a child that is no root, whoever we are.
template <class Body>
void asOrdinaryUser(Body body) {
    plat::inChild([&body] {
        if (geteuid() == 0) {
            ASSERT_EQ(setgroups(0, nullptr), 0);
            ASSERT_EQ(setresgid(otherUser, otherUser, otherUser), 0);
            ASSERT_EQ(setresuid(otherUser, otherUser, otherUser), 0);
            prctl(PR_SET_DUMPABLE, 1); // so that /proc/self is ours again
        }
        body();
    });
}

/// From here on a system call gives that error, in this process and its children, for good.
inline void failSystemCall(long number, int errNo) {
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(errNo)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{sizeof program / sizeof *program, program};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

} // namespace os
