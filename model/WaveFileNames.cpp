// SPDX-License-Identifier: GPL-3.0-or-later
#include "model/WaveFileNames.h"

std::string DefaultWaveFileName(std::string_view documentPath) {
    constexpr std::string_view kFrom = "code";
    std::string name;
    for (std::size_t i = 0; i < documentPath.size();) {
        if (documentPath.substr(i, kFrom.size()) == kFrom) {
            name += "wav";
            i += kFrom.size();
        } else {
            name += documentPath[i++];
        }
    }
    return name;
}

std::pair<std::string, std::string> SplitFolderAndName(std::string_view path) {
    const std::size_t last = path.rfind(kPathSeparator);
    if (last == std::string_view::npos) {
        return {std::string(), std::string(path)};
    }
    return {std::string(path.substr(0, last + 1)), std::string(path.substr(last + 1))};
}

std::string JoinFolderAndName(std::string_view folder, std::string_view name) {
    std::string path(folder);
    path += kPathSeparator;
    path += name;
    return path;
}
