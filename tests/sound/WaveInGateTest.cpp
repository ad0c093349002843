// SPDX-License-Identifier: GPL-3.0-or-later
#include "sound/CWaveInGate.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <vector>

#include "audio/INotifyTarget.h"
#include "sound/CCodeWaveGen.h"

namespace {

namespace fs = std::filesystem;

class CountingTarget : public INotifyTarget {
public:
    void PostMessage(unsigned message, std::uintptr_t, std::intptr_t) override {
        messages.push_back(message);
    }
    std::vector<unsigned> messages;
};

fs::path Folder() {
    const fs::path folder =
        fs::temp_directory_path() / ("tonwerk-gate-" + std::to_string(getpid()));
    fs::create_directories(folder);
    return folder;
}

// The test server's monitor source is a default input that takes the file format.
TEST(WaveInGate, GenerationGoesAheadWithARecordingDevice) {
    const fs::path folder = Folder();
    CWaveInGate gate;
    CountingTarget target;
    CCodeWaveGen gen;
    gen.SetRecordingGate(&gate);
    gen.SetNotifyWindow(&target);
    gen.SetFolder(folder.string() + "/");
    gen.SetFileName("gate.wav");
    gen.SetText("E");
    gen.GenerateFile();
    EXPECT_EQ(gen.LastError(), "");
    EXPECT_EQ(fs::file_size(folder / "gate.wav"), 5422U);
    EXPECT_EQ(target.messages, std::vector<unsigned>{kAppMessage + 1});
    EXPECT_FALSE(gate.IsOpen());
    // And again: nothing was left behind on the device.
    gen.GenerateFile();
    EXPECT_EQ(gen.LastError(), "");
    EXPECT_EQ(target.messages.size(), 2U);
    fs::remove_all(folder);
}

TEST(WaveInGate, AFormatTheInputRefusesStopsGenerationSilently) {
    const fs::path folder = Folder();
    CWaveInGate gate;
    CountingTarget target;
    CCodeWaveGen gen;
    gen.SetRecordingGate(&gate);
    gen.SetNotifyWindow(&target);
    gen.SetFolder(folder.string() + "/");
    gen.SetFileName("refused.wav");
    gen.SetText("E");
    gen.SetBitsPerSample(12);
    gen.GenerateFile();
    EXPECT_FALSE(fs::exists(folder / "refused.wav"));
    EXPECT_TRUE(target.messages.empty());
    EXPECT_NE(gen.LastError().find("32"), std::string::npos) << gen.LastError();
    fs::remove_all(folder);
}

}  // namespace
