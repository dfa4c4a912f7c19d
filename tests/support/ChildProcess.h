// For tests of what a user without rights meets: permissions mean nothing to root.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace quill::testing {

// Runs Work in a process of its own, which may lose its rights, and expects its answer to contain Part.
inline void ExpectInChild(const std::function<std::string()>& Work, const std::string& Part) {
    const pid_t Child = ::fork();
    ASSERT_NE(Child, -1);
    if (Child == 0) {
        const std::string Text = Work();
        const bool Good = Text.find(Part) != std::string::npos;
        if (!Good) std::fprintf(stderr, "got: %s\n", Text.c_str());
        ::_exit(Good ? 0 : 1);
    }
    int Status = 0;
    ASSERT_EQ(::waitpid(Child, &Status, 0), Child);
    EXPECT_TRUE(WIFEXITED(Status) && WEXITSTATUS(Status) == 0) << "expected: " << Part;
}

// In such a process: gives up root's rights.
inline void BecomeNobody() {
    constexpr uid_t Nobody = 65534;
    if (::geteuid() == 0 && ::setresuid(Nobody, Nobody, Nobody) != 0) ::_exit(2);
}

} // namespace quill::testing
