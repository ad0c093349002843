// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The test sound server taken away and brought back, for tests that run at its fixture.

#include <gtest/gtest.h>

#include <signal.h>

#include <cstdlib>
#include <fstream>
#include <string>

namespace pulse_server {

inline std::string Env(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

inline void Kill() {
    std::ifstream pidFile(Env("PULSE_RUNTIME_PATH") + "/pid");
    pid_t pid = 0;
    ASSERT_TRUE(pidFile >> pid) << "no server pid file";
    ASSERT_EQ(kill(pid, SIGKILL), 0);
}

inline void Restart() {
    const std::string command = Env("TONWERK_SOURCE_DIR") +
                                "/tests/support/pulse-fixture.sh start " + Env("XDG_RUNTIME_DIR") +
                                " >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
}

}  // namespace pulse_server
