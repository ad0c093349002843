// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/CCommandLineTool.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <ios>
#include <istream>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <ostream>
#include <set>
#include <stdexcept>

#include "audio/INotifyTarget.h"
#include "audio/WaveAudio.h"
#include "cli/CCopyCommands.h"
#include "cli/CSendCommands.h"
#include "model/CCrtRandom.h"
#include "model/CMorseAlphabet.h"
#include "model/CProfileSettings.h"
#include "model/CRandomText.h"
#include "model/CodePatterns.h"
#include "model/CompletionEstimate.h"
#include "sound/CCodeSoundGen.h"
#include "sound/CCodeWaveGen.h"
#include "training/CKochCourse.h"

namespace {

constexpr std::string_view kProgram = "tonwerk-cli";
constexpr std::string_view kVersion = TONWERK_VERSION;

// Bounds of what the trainer itself accepts, so the tool never does more than a practice text.
constexpr long long kMaxWordsPerMinute = 1000;
constexpr long long kMaxFarnsworth = 99;
constexpr long long kMaxGroups = 100000;
constexpr long long kMaxGroupSize = 1000;
constexpr long long kMaxCallSigns = 10000;
constexpr long long kSeedLimit = 1LL << 62;
constexpr long long kMaxPitch = 20000;
constexpr int kExitInterrupted = 130;

}  // namespace

struct CCommandLineTool::Command {
    std::string_view name;
    std::string_view usage;
    std::string_view summary;
    std::vector<std::string_view> valueOptions;
    std::vector<std::string_view> flags;
    int (CCommandLineTool::*handler)(Options&);
};

// The subcommands, in the order the help lists them.
const std::vector<CCommandLineTool::Command>& CCommandLineTool::Commands() {
    static const std::vector<Command> commands = {
        {"encode",
         "encode [--double-space|--no-double-space] [TEXT]",
         "Print the code text of TEXT. Without a flag the profile's Double Space setting decides.",
         {},
         {"--double-space", "--no-double-space"},
         &CCommandLineTool::Encode},
        {"decode",
         "decode [CODE]",
         "Print the text of a code text; \"/\" is a blank, unknown patterns vanish.",
         {},
         {},
         &CCommandLineTool::Decode},
        {"estimate",
         "estimate --wpm N [--farnsworth F] [TEXT]",
         "Print how long sending TEXT takes: the clock text HH:MM:SS, then seconds.",
         {"--wpm", "--farnsworth"},
         {},
         &CCommandLineTool::Estimate},
        {"random",
         "random --count N --size N --chars SET [--seed S]",
         "Print COUNT random groups of SIZE characters taken from SET.",
         {"--count", "--size", "--chars", "--seed"},
         {},
         &CCommandLineTool::Random},
        {"callsigns",
         "callsigns --count N [--seed S]",
         "Print COUNT random US call signs; S is the start time in seconds.",
         {"--count", "--seed"},
         {},
         &CCommandLineTool::CallSigns},
        {"wav",
         "wav --wpm N [--farnsworth F] -o FILE [TEXT]",
         "Write TEXT as a WAV file of Morse code (PCM 11025 Hz, 16-bit, mono); FILE is\n"
         "      replaced. Needs no sound device.",
         {"--wpm", "--farnsworth", "-o", "--output"},
         {},
         &CCommandLineTool::Wav},
        {"render",
         "render --wpm N [--farnsworth F] -o FILE [--format TYPE] [--quality Q] [TEXT]",
         "Write TEXT as a sound file of Morse code: wav, mp3, ogg (Vorbis), opus or flac,\n"
         "      from --format or FILE's extension. Q is the MP3 bit rate in kbit/s (8 to 320)\n"
         "      or the Vorbis and Opus quality (0 to 10); without it the profile's. A file\n"
         "      that cannot be written is not left behind. Needs no sound device.",
         {"--wpm", "--farnsworth", "-o", "--output", "--format", "--quality"},
         {},
         &CCommandLineTool::Render},
        {"play",
         "play --wpm N [--farnsworth F] [--pitch HZ] [TEXT]",
         "Key TEXT live through the default sound output, printing each character as it is\n"
         "      sent; Ctrl+C stops after the current character. Without a device the timing\n"
         "      runs silently. The pitch defaults to the profile's.",
         {"--wpm", "--farnsworth", "--pitch"},
         {},
         &CCommandLineTool::Play},
        {"score",
         "score --sent TEXT --copy TEXT",
         "Check a copy against the text sent: the two aligned lines ('.' right, '-' missed,\n"
         "      '+' over an extra character, a wrong one as typed), then the accuracy.",
         {"--sent", "--copy"},
         {},
         &CCommandLineTool::Score},
        {"koch",
         "koch --lesson N [--count N] [--size N] [--seed S]",
         "Print Koch lesson groups (lesson 1 to 39), the newest character drawn twice as often.",
         {"--lesson", "--count", "--size", "--seed"},
         {},
         &CCommandLineTool::Koch},
        {"history",
         "history [--csv] [--database FILE]",
         "List the stored copy-practice sessions, newest first, or all of them as CSV.",
         {"--database"},
         {"--csv"},
         &CCommandLineTool::History},
        {"decode-audio",
         "decode-audio FILE.wav",
         "Decode on/off-keyed Morse from a PCM WAV file at its strongest tone; print the text,\n"
         "      then the estimated speed.",
         {},
         {},
         &CCommandLineTool::DecodeAudio},
    };
    return commands;
}

CCommandLineTool::CCommandLineTool(IProfile& profile, std::istream& in, std::ostream& out,
                                   std::ostream& err, long long (*clock)())
    : m_profile(profile), m_in(in), m_out(out), m_err(err), m_clock(clock) {}

int CCommandLineTool::Usage(std::string_view message) {
    m_err << kProgram << ": " << message << " (see '" << kProgram << " --help')\n";
    return kExitUsage;
}

int CCommandLineTool::Run(const std::vector<std::string>& args) {
    if (args.empty() || args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
        if (args.size() > 1) {
            return Run({args[1], "--help"});
        }
        m_out << "Usage: " << kProgram << " COMMAND [OPTIONS] [TEXT]\n"
              << "Morse code practice text from the command line. TEXT is the last argument;\n"
              << "without it the text is read from standard input, byte for byte.\n\nCommands:\n";
        for (const Command& command : Commands()) {
            m_out << "  " << command.usage << "\n      " << command.summary << '\n';
        }
        m_out << "\n  " << kProgram << " COMMAND --help   help on one command\n  " << kProgram
              << " --version        the version\n";
        return args.empty() ? kExitUsage : kExitOk;
    }
    if (args[0] == "--version") {
        m_out << kProgram << ' ' << kVersion << '\n';
        return kExitOk;
    }

    Options options;
    for (const Command& command : Commands()) {
        if (command.name == args[0]) {
            options.command = &command;
        }
    }
    if (options.command == nullptr) {
        return Usage("unknown command '" + args[0] + "'");
    }
    const Command& command = *options.command;
    bool optionsEnded = false;
    for (std::size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        // Short value options such as "-o" are options only where the command knows them.
        const bool known =
            std::ranges::find(command.valueOptions, arg) != command.valueOptions.end() ||
            std::ranges::find(command.flags, arg) != command.flags.end();
        if (optionsEnded || arg.size() < 2 || (arg.compare(0, 2, "--") != 0 && !known)) {
            if (arg != "-h") {
                options.text.push_back(arg);
                continue;
            }
        }
        if (!optionsEnded && arg == "--") {
            optionsEnded = true;
        } else if (arg == "--help" || arg == "-h") {
            m_out << "Usage: " << kProgram << ' ' << command.usage << '\n'
                  << command.summary << '\n';
            return kExitOk;
        } else if (std::ranges::find(command.flags, arg) != command.flags.end()) {
            options.flags.insert(arg);
        } else if (std::ranges::find(command.valueOptions, arg) != command.valueOptions.end()) {
            if (i + 1 >= args.size()) {
                return Usage(std::string(command.name) + ": " + arg + " needs a value");
            }
            options.values[arg] = args[++i];
        } else {
            return Usage(std::string(command.name) + ": unknown option '" + arg + "'");
        }
    }
    // A failure met inside a command (standard input that cannot be read, memory) ends it with
    // one line, never an abort; so does output that could not be written.
    int status = kExitOk;
    try {
        status = (this->*command.handler)(options);
    } catch (const std::exception& error) {
        m_err << kProgram << ' ' << command.name << ": " << error.what() << '\n';
        return kExitFailure;
    }
    errno = 0;
    m_out.flush();
    if (!m_out) {
        const int reason = errno;
        m_err << kProgram << ' ' << command.name << ": cannot write the output"
              << (reason != 0 ? std::string(": ") + std::strerror(reason) : std::string()) << '\n';
        return kExitFailure;
    }
    return status;
}

std::string CCommandLineTool::TextArgument(const Options& options) {
    if (options.text.empty()) {
        std::string text;
        errno = 0;
        try {
            text.assign(std::istreambuf_iterator<char>(m_in), std::istreambuf_iterator<char>());
        } catch (const std::ios_base::failure&) {
            m_in.setstate(std::ios_base::badbit);
        }
        if (m_in.bad()) {
            const int reason = errno;
            throw std::runtime_error(
                "cannot read standard input" +
                (reason != 0 ? std::string(": ") + std::strerror(reason) : std::string()));
        }
        return text;
    }
    std::string text;
    for (const std::string& word : options.text) {
        if (!text.empty()) {
            text += ' ';
        }
        text += word;
    }
    return text;
}

namespace {

/// A whole number option within bounds; nullopt after reporting what is wrong.
class CNumber {
public:
    CNumber(const CCommandLineTool::Options& options, std::ostream& err)
        : m_options(options), m_err(err) {}

    std::optional<long long> Get(std::string_view name, long long lowest, long long highest,
                                 std::optional<long long> fallback = std::nullopt) {
        const auto it = m_options.values.find(name);
        if (it == m_options.values.end()) {
            if (!fallback) {
                Fail(std::string(name) + " is required");
            }
            return fallback;
        }
        const std::string& text = it->second;
        long long value = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc{} || end != text.data() + text.size() || value < lowest ||
            value > highest) {
            Fail(std::string(name) + " takes a whole number from " + std::to_string(lowest) +
                 " to " + std::to_string(highest) + ", not '" + text + "'");
            return std::nullopt;
        }
        return value;
    }

    bool Failed() const { return m_failed; }

private:
    void Fail(const std::string& message) {
        if (!m_failed) {
            m_err << kProgram << ' ' << m_options.command->name << ": " << message << '\n';
        }
        m_failed = true;
    }

    const CCommandLineTool::Options& m_options;
    std::ostream& m_err;
    bool m_failed = false;
};

}  // namespace

int CCommandLineTool::Encode(Options& options) {
    bool doubleSpace = CProfileSettings(m_profile).GetDblSpace() != 0;
    if (options.Has("--double-space") && options.Has("--no-double-space")) {
        return Usage("encode: --double-space and --no-double-space exclude each other");
    }
    if (options.Has("--double-space")) {
        doubleSpace = true;
    } else if (options.Has("--no-double-space")) {
        doubleSpace = false;
    }
    m_out << CMorseAlphabet::TextToCode(TextArgument(options), doubleSpace) << '\n';
    return kExitOk;
}

int CCommandLineTool::Decode(Options& options) {
    m_out << CMorseAlphabet::CodeToText(TextArgument(options)) << '\n';
    return kExitOk;
}

int CCommandLineTool::Estimate(Options& options) {
    CNumber number(options, m_err);
    const auto wpm = number.Get("--wpm", 1, kMaxWordsPerMinute);
    const auto farnsworth = number.Get("--farnsworth", 0, kMaxFarnsworth, 0);
    if (number.Failed()) {
        return kExitUsage;
    }
    const double seconds = EstimateSeconds(TextArgument(options), static_cast<int>(*wpm),
                                           static_cast<int>(*farnsworth));
    char figure[64];
    std::snprintf(figure, sizeof figure, "%.3f", seconds);
    m_out << FormatCompletionTime(seconds) << '\n' << figure << '\n';
    return kExitOk;
}

int CCommandLineTool::Random(Options& options) {
    CNumber number(options, m_err);
    const auto count = number.Get("--count", 0, kMaxGroups);
    const auto size = number.Get("--size", 0, kMaxGroupSize);
    const auto seed = number.Get("--seed", 0, kSeedLimit, m_clock());
    if (number.Failed()) {
        return kExitUsage;
    }
    const auto chars = options.values.find("--chars");
    if (chars == options.values.end()) {
        return Usage("random: --chars is required");
    }
    const std::string_view selectable = CMorseAlphabet::SelectableCharacters();
    const std::string set = ToUpperAscii(chars->second);
    for (const char c : set) {
        if (selectable.find(c) == std::string_view::npos) {
            return Usage(std::string("random: '") + c + "' is not a practice character");
        }
    }
    const std::string selection =
        CRandomText::BuildSelection([&](char c) { return set.find(c) != std::string::npos; });
    if (selection.empty()) {
        m_err << kProgram << " random: Please select some characters to use in the generation.\n";
        return kExitUsage;
    }
    CCrtRandom rng(static_cast<std::uint32_t>(*seed));
    m_out << CRandomText::Groups(selection, static_cast<int>(*count), static_cast<int>(*size), rng)
          << '\n';
    return kExitOk;
}

int CCommandLineTool::CallSigns(Options& options) {
    CNumber number(options, m_err);
    const auto count = number.Get("--count", 0, kMaxCallSigns);
    const auto seed = number.Get("--seed", 0, kSeedLimit, m_clock());
    if (number.Failed()) {
        return kExitUsage;
    }
    m_out << CRandomText::CallSigns(static_cast<int>(*count), *seed) << '\n';
    return kExitOk;
}

int CCommandLineTool::Wav(Options& options) {
    CNumber number(options, m_err);
    const auto wpm = number.Get("--wpm", 1, kMaxWordsPerMinute);
    const auto farnsworth = number.Get("--farnsworth", 0, kMaxFarnsworth, 0);
    if (number.Failed()) {
        return kExitUsage;
    }
    auto output = options.values.find("-o");
    if (output == options.values.end()) {
        output = options.values.find("--output");
    }
    if (output == options.values.end() || output->second.empty()) {
        return Usage("wav: -o FILE is required");
    }
    CCodeWaveGen generator;
    generator.SetWordsPerMinute(static_cast<int>(*wpm));
    generator.SetFarnsworthFactor(static_cast<int>(*farnsworth));
    generator.SetText(TextArgument(options));
    generator.SetFolder("");
    generator.SetFileName(output->second);
    generator.GenerateFile();
    if (!generator.LastError().empty()) {
        m_err << kProgram << " wav: " << generator.LastError() << '\n';
        return kExitFailure;
    }
    return kExitOk;
}

namespace {

volatile std::sig_atomic_t s_interrupted = 0;

extern "C" void OnInterrupt(int) {
    s_interrupted = 1;
}

/// The worker's posts, handed to the thread that waits for them.
class CMessageQueue : public INotifyTarget {
public:
    void PostMessage(unsigned message, std::uintptr_t, std::intptr_t) override {
        std::lock_guard lock(m_mutex);
        m_messages.push_back(message);
        m_posted.notify_one();
    }

    /// The next message, or 0 when none came within the time.
    unsigned Next(std::chrono::milliseconds timeout) {
        std::unique_lock lock(m_mutex);
        if (!m_posted.wait_for(lock, timeout, [this] { return !m_messages.empty(); })) {
            return 0;
        }
        const unsigned message = m_messages.front();
        m_messages.pop_front();
        return message;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_posted;
    std::deque<unsigned> m_messages;
};

}  // namespace

int CCommandLineTool::Play(Options& options) {
    CNumber number(options, m_err);
    const auto wpm = number.Get("--wpm", 1, kMaxWordsPerMinute);
    const auto farnsworth = number.Get("--farnsworth", 0, kMaxFarnsworth, 0);
    const auto pitch =
        number.Get("--pitch", 0, kMaxPitch, CProfileSettings(m_profile).GetToneMHz());
    if (number.Failed()) {
        return kExitUsage;
    }
    const std::string text = ToUpperAscii(TextArgument(options));
    if (text.empty()) {
        return kExitOk;
    }

    bool silent = false;  // said so already
    if (*pitch > 0) {
        WaveFormat format;
        format.channels = 1;
        format.samplesPerSec = 96000;
        format.avgBytesPerSec = 96000;
        format.blockAlign = 1;
        format.bitsPerSample = 8;
        const MmResult probe =
            WaveOutOpen(nullptr, kWaveMapper, &format, nullptr, 0, kWaveFormatQuery);
        if (probe != kMmNoError) {
            const std::string reason = WaveGetErrorText(probe);
            m_err << kProgram << " play: no sound output ("
                  << (reason.empty() ? "error " + std::to_string(probe) : reason)
                  << "); keying silently\n";
            silent = true;
        }
    }

    CMessageQueue queue;
    CCodeSoundGen generator;
    generator.SetWordsPerMinute(static_cast<int>(*wpm));
    generator.SetPitch(static_cast<int>(*pitch));
    generator.SetText(text);
    generator.SetFarnsworthFactor(static_cast<int>(*farnsworth));
    generator.SetNotifyWindow(&queue);

    s_interrupted = 0;
    const auto previous = std::signal(SIGINT, OnInterrupt);
    if (generator.StartStop() == 0) {
        std::signal(SIGINT, previous);
        m_err << kProgram << " play: cannot start the keying thread\n";
        return kExitFailure;
    }
    bool stopped = false;
    std::size_t next = 0;
    for (;;) {
        const unsigned message = queue.Next(std::chrono::milliseconds(20));
        if (s_interrupted != 0 && !stopped) {
            // As the Stop button: the character being sent ends, then the run.
            generator.StartStop();
            stopped = true;
        }
        if (message == kAppMessage + 2) {
            while (next < text.size() && text[next] == ' ') {
                m_out << ' ';
                ++next;
            }
            if (next < text.size()) {
                m_out << text[next++];
            }
            m_out.flush();
        } else if (message == CCodeSoundGen::kOutputLost && !silent) {
            m_err << kProgram << " play: the sound output was lost; keying silently\n";
            silent = true;
        } else if (message == CCodeSoundGen::kOutputBack) {
            m_err << kProgram << " play: the sound output is back\n";
            silent = false;
        } else if (message == kAppMessage + 1 || (stopped && message == 0)) {
            // A stopped run posts nothing more: its characters shown, the run is over.
            break;
        }
    }
    std::signal(SIGINT, previous);
    m_out << '\n';
    return stopped ? kExitInterrupted : kExitOk;
}

int CCommandLineTool::Score(Options& options) {
    return CopyCommands::Score(options.values, m_out, m_err);
}

int CCommandLineTool::Koch(Options& options) {
    constexpr long long kDefaultGroups = 20;
    constexpr long long kDefaultGroupSize = 5;
    CNumber number(options, m_err);
    const auto lesson = number.Get("--lesson", CKochCourse::kFirstLesson, CKochCourse::kLastLesson);
    const auto count = number.Get("--count", 0, kMaxGroups, kDefaultGroups);
    const auto size = number.Get("--size", 1, kMaxGroupSize, kDefaultGroupSize);
    const auto seed = number.Get("--seed", 0, kSeedLimit, m_clock());
    if (number.Failed()) {
        return kExitUsage;
    }
    CCrtRandom rng(static_cast<std::uint32_t>(*seed));
    m_out << CKochCourse::Groups(static_cast<int>(*lesson), static_cast<int>(*count),
                                 static_cast<int>(*size), rng)
          << '\n';
    return kExitOk;
}

int CCommandLineTool::History(Options& options) {
    return CopyCommands::History(options.values, options.Has("--csv"), m_out, m_err);
}

int CCommandLineTool::DecodeAudio(Options& options) {
    return SendCommands::DecodeAudio(options.text, m_out, m_err);
}
