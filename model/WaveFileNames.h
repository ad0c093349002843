// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>
#include <utility>

/// The path separator of this platform.
#ifdef _WIN32
constexpr char kPathSeparator = '\\';
#else
constexpr char kPathSeparator = '/';
#endif

/// The WAV file proposed for a document: its path with every "code" replaced by "wav", so
/// codes/x.code proposes wavs/x.wav and an untitled document proposes nothing.
std::string DefaultWaveFileName(std::string_view documentPath);

/// A path split at its last separator: the folder up to and including it, and the file name.
/// A path without a separator is all file name.
std::pair<std::string, std::string> SplitFolderAndName(std::string_view path);

/// The folder and the file name joined with one separator, which is always added.
std::string JoinFolderAndName(std::string_view folder, std::string_view name);
