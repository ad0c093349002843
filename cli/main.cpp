// SPDX-License-Identifier: GPL-3.0-or-later
#include <chrono>
#include <iostream>

#include "cli/CCommandLineTool.h"
#include "profile/CQtProfile.h"

namespace {

long long SecondsNow() {
    return std::chrono::duration_cast<std::chrono::seconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    CQtProfile profile;
    CCommandLineTool tool(profile, std::cin, std::cout, std::cerr, &SecondsNow);
    const int status = tool.Run(std::vector<std::string>(argv + 1, argv + argc));
    std::cout.flush();
    return std::cout ? status : CCommandLineTool::kExitFailure;
}
