// SPDX-License-Identifier: GPL-3.0-or-later
#include "profile/CQtProfile.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "model/CProfileSettings.h"

namespace {

class QtProfileTest : public ::testing::Test {
protected:
    QTemporaryDir m_dir;
    QString File() const { return m_dir.filePath("profile.conf"); }
};

TEST_F(QtProfileTest, ValuesSurviveInTheFileAsTheirTypes) {
    {
        CQtProfile profile(File());
        EXPECT_TRUE(profile.WriteInt("Settings", "WordRate", 22));
        EXPECT_TRUE(profile.WriteString("WaveFile", "Path", "/home/ham/wave files"));
        EXPECT_EQ(profile.GetInt("Settings", "WordRate", 15), 22);
    }
    QFile file(File());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.contains("[Settings]\nWordRate=22")) << text.constData();
    EXPECT_TRUE(text.contains("[WaveFile]")) << text.constData();

    CQtProfile again(File());
    EXPECT_EQ(again.GetInt("Settings", "WordRate", 15), 22);
    EXPECT_EQ(again.GetString("WaveFile", "Path", ""), "/home/ham/wave files");
    EXPECT_EQ(again.GetInt("Settings", "Missing", 7), 7);
    EXPECT_EQ(again.GetString("WaveFile", "Missing", "C:\\"), "C:\\");
}

TEST_F(QtProfileTest, EveryReadSeesTheLastWriteOfAnotherInstance) {
    CQtProfile reader(File());
    CQtProfile writer(File());
    CProfileSettings settings(reader);
    EXPECT_EQ(settings.GetToneMHz(), 1000);
    writer.WriteInt("UserSettings", "ToneMHz", 600);
    EXPECT_EQ(settings.GetToneMHz(), 600);
    writer.WriteInt("UserSettings", "ToneMHz", 650);
    EXPECT_EQ(settings.GetToneMHz(), 650);
}

TEST_F(QtProfileTest, UnreadableValuesGiveTheDefault) {
    QFile file(File());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Settings]\nWordRate=fast\nRandomWordCount=99999999999999\n");
    file.close();
    CQtProfile profile(File());
    CProfileSettings settings(profile);
    EXPECT_EQ(settings.GetWordRate(), 15);
    EXPECT_EQ(settings.GetRandomWordCount(), 20);
}

TEST_F(QtProfileTest, WriteToAnUnwritableFileReportsFailure) {
    CQtProfile profile(m_dir.filePath("no/such/folder/profile.conf"));
    const QString blocker = m_dir.filePath("no");
    QFile block(blocker);  // a file where the folder should be
    ASSERT_TRUE(block.open(QIODevice::WriteOnly));
    block.close();
    EXPECT_FALSE(profile.WriteInt("Settings", "WordRate", 20));
}

TEST_F(QtProfileTest, UserProfileLivesUnderTheCompanyKey) {
    qputenv("XDG_CONFIG_HOME", m_dir.path().toUtf8());
    CQtProfile profile;
    EXPECT_EQ(profile.FileName(),
              m_dir.filePath("Vantrel Signal Applications/Tonwerk.conf"));
    EXPECT_TRUE(profile.WriteInt("UserSettings", "Actor", 3));
    EXPECT_TRUE(QFile::exists(m_dir.filePath("Vantrel Signal Applications/Tonwerk.conf")));
}

}  // namespace
