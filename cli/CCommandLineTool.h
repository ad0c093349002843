// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <iosfwd>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class IProfile;

/// tonwerk-cli: the trainer's conversions, estimate and generators for scripts and terminals.
class CCommandLineTool {
public:
    static constexpr int kExitOk = 0;
    static constexpr int kExitFailure = 1;
    static constexpr int kExitUsage = 2;

    /// @param clock  seconds since the epoch, the generators' default seed
    CCommandLineTool(IProfile& profile, std::istream& in, std::ostream& out, std::ostream& err,
                     long long (*clock)());

    /// Runs one command line (without the program name) and returns the exit status.
    int Run(const std::vector<std::string>& args);

    struct Command;
    /// One command line taken apart; subcommands in files of their own read it too.
    struct Options {
        const Command* command = nullptr;
        std::map<std::string, std::string, std::less<>> values;
        std::set<std::string, std::less<>> flags;
        std::vector<std::string> text;

        bool Has(std::string_view flag) const { return flags.contains(flag); }
    };

private:
    static const std::vector<Command>& Commands();

    int Encode(Options& options);
    int Decode(Options& options);
    int Estimate(Options& options);
    int Random(Options& options);
    int CallSigns(Options& options);
    int Wav(Options& options);
    int Render(Options& options);  // CCommandLineToolRender.cpp
    int Play(Options& options);
    int Score(Options& options);
    int Koch(Options& options);
    int History(Options& options);
    int DecodeAudio(Options& options);

    int Usage(std::string_view message);
    std::string TextArgument(const Options& options);

    IProfile& m_profile;
    std::istream& m_in;
    std::ostream& m_out;
    std::ostream& m_err;
    long long (*m_clock)();
};
