// SPDX-License-Identifier: GPL-3.0-or-later
// The practice view's sound files: Generate File and the session recording.
#include "app/CTonwerkView.h"

#include <QDir>
#include <cstdint>
#include <span>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "app/CWaitCursor.h"
#include "app/CWaveFileDlg.h"
#include "audio/CWave.h"
#include "audio/CWaveIn.h"
#include "audio/CWaveOut.h"
#include "model/WaveFileNames.h"
#include "res/TonwerkResources.h"
#include "sound/CSoundFileWriter.h"
#include "widgets/CImageButton.h"
#include "widgets/CStatusProgress.h"

namespace {

constexpr std::uint16_t kRecordChannels = 1;
constexpr std::uint32_t kRecordSamplesPerSec = 44100;
constexpr std::uint16_t kRecordBitsPerSample = 16;
constexpr std::uint32_t kRecordBufferBytes = 4096;
constexpr char kDefaultRecordingName[] = "Test01.wav";

/// The folder offered before any was remembered: the system drive where there is one.
QString DefaultRecordingFolder() {
#ifdef _WIN32
    return QStringLiteral("C:\\");
#else
    return QDir::homePath();
#endif
}

/// A recording in the type chosen: Wave by the recording's own writer, as always, the others
/// encoded from the same samples.
bool SaveRecording(const CWave& recording, const std::string& path, SoundFileType type,
                   const SoundFileQuality& quality) {
    if (type == SoundFileType::kWave) {
        return recording.Save(path);
    }
    const WaveFormat& format = recording.GetFormat();
    CSoundFileWriter writer;
    return writer.Open(path, type, static_cast<int>(format.samplesPerSec), format.channels,
                       quality) &&
           writer.WriteLittleEndian(
               std::as_bytes(std::span(recording.GetBuffer(), recording.GetBufferLength()))) &&
           writer.Close();
}

}  // namespace

void CTonwerkView::OnGenerateFile() {
    // A refused field has been reported; generation goes on with the values last accepted.
    UpdateData(true);
    const QString defaultName =
        QString::fromStdString(DefaultWaveFileName(m_doc->PathName().toStdString()));
    const QString chosen =
        CModalSeam::SaveFileName(this, defaultName, CWaveFileDlg::FileFilter(), "wav");
    QString fileName;
    if (!chosen.isEmpty()) {
        const auto [folder, name] = SplitFolderAndName(chosen.toStdString());
        fileName = QString::fromStdString(name);
        m_waveGen.SetFileName(name);
        m_waveGen.SetFolder(folder);
    }
    // The type follows the extension, which the save dialog adds from the chosen file type.
    if (!fileName.isEmpty()) {
        if (const auto type = SoundFileTypeFromPath(fileName.toStdString())) {
            m_waveGen.SetFileType(*type);
            m_waveGen.SetQuality(ReadSoundFileQuality(m_doc->Settings().Profile()));
        } else {
            CModalSeam::Message(this, tr("%1 is not a file type Tonwerk writes: choose Wave, MP3, "
                                         "Ogg Vorbis, Opus or FLAC.")
                                          .arg(fileName));
            fileName.clear();
        }
    }

    // The bar is set up even when nothing is generated.
    CStatusProgress* progress = m_frame ? m_frame->ResetProgress() : nullptr;
    const QByteArray text = KeyedText();
    if (progress) {
        progress->SetStep(1);
        progress->SetRange(0, static_cast<std::int16_t>(text.size()));
        progress->SetBarImage(QString::fromLatin1(tonwerk::res::kBarSession));
    }
    m_waveGenProgress.Attach(progress);

    m_waveGen.SetWordsPerMinute(m_wordRate);
    m_waveGen.SetPitch(m_pitch);
    m_waveGen.SetText(std::string_view(text.constData(), static_cast<size_t>(text.size())));
    m_waveGen.SetProgressCtrl(&m_waveGenProgress);
    m_waveGen.SetFarnsworthFactor(m_farnsworth);
    m_waveGen.SetNotifyWindow(&m_notifyTarget);
    m_waveGen.SetRecordingGate(&m_waveGenGate);
    if (!fileName.isEmpty()) {
        m_waveGen.GenerateFile();
        if (!m_waveGen.LastError().empty()) {
            CModalSeam::Message(this, tr("The wave file was not generated: %1")
                                          .arg(QString::fromStdString(m_waveGen.LastError())));
        }
    }
}

void CTonwerkView::OnRecordSession() {
    m_recordSession = !m_recordSession;
    m_record->setChecked(m_recordSession);
    if (m_recordSession) {
        m_record->SetImage(QString::fromLatin1(tonwerk::res::kButtonRecordOn), QSize(40, 32));
    } else {
        m_record->SetImage(QString::fromLatin1(tonwerk::res::kButtonRecordOff), QSize(32, 32));
    }
    m_record->repaint();
    if (m_frame) {
        m_frame->SetMessageText(m_recordSession ? tr("Session Recording is ON")
                                                : tr("Session Recording is OFF"));
    }
}

void CTonwerkView::StartSessionRecording() {
    m_wave = std::make_unique<CWave>();
    m_waveIn = std::make_unique<CWaveIn>();
    m_waveOut = std::make_unique<CWaveOut>();
    m_wave->BuildFormat(kRecordChannels, kRecordSamplesPerSec, kRecordBitsPerSample);
    if (!m_waveInDevice.IsInputFormat(*m_wave)) {
        CModalSeam::Message(this, tr("Format not supported"));
        return;
    }
    m_waveIn->SetWaveFormat(m_wave->GetFormat());
    m_waveIn->SetDevice(m_waveInDevice);
    if (!m_waveIn->Open()) {
        CModalSeam::Message(this, QString::fromStdString(m_waveIn->GetError()));
        return;
    }
    if (!m_waveIn->Record(kRecordBufferBytes)) {
        CModalSeam::Message(this, QString::fromStdString(m_waveIn->GetError()));
        return;
    }
    m_wave.reset();
    m_record->setEnabled(false);
}

void CTonwerkView::FinishSessionRecording() {
    // Taken over before any dialog opens: a finish handled while it is shown finds nothing.
    std::unique_ptr<CWaveIn> waveIn = std::move(m_waveIn);
    m_waveOut.reset();
    m_wave.reset();
    if (waveIn) {
        if (!waveIn->Close()) {
            // The recorder stays, and with it the disabled button: the device is still busy.
            const QString error = QString::fromStdString(waveIn->GetError());
            m_waveIn = std::move(waveIn);
            CModalSeam::Message(this, error);
            return;
        }
        const CWave& recording = waveIn->GetWave();

        IProfile& profile = m_doc->Settings().Profile();
        const char* section = CWaveFileDlg::kSection;
        CWaveFileDlg dialog(profile);
        dialog.m_fileName =
            QString::fromStdString(profile.GetString(section, "Name", kDefaultRecordingName));
        dialog.m_folder = QString::fromStdString(
            profile.GetString(section, "Path", DefaultRecordingFolder().toStdString()));
        dialog.m_remember = profile.GetInt(section, "Remember", 0);
        dialog.m_quality = ReadSoundFileQuality(profile);
        // Shown every time: the remember box only decides whether the entries are stored. A
        // recording that could not be written (a full disk, a folder that is gone) is offered
        // again rather than lost; only Cancel lets it go.
        while (CWaveFileDlg::Run(dialog) == QDialog::Accepted) {
            const std::string path =
                JoinFolderAndName(dialog.m_folder.toStdString(), dialog.m_fileName.toStdString());
            if (dialog.m_remember != 0) {
                profile.WriteString(section, "Name", dialog.m_fileName.toStdString());
                profile.WriteString(section, "Path", dialog.m_folder.toStdString());
                profile.WriteInt(section, "Remember", 1);
            }
            WriteSoundFileQuality(profile, dialog.m_quality);
            const bool saved = [&] {
                const CWaitCursor wait;
                return SaveRecording(recording, path, dialog.m_fileType, dialog.m_quality);
            }();
            if (saved) {
                break;
            }
            CModalSeam::Message(
                this,
                tr("The recording could not be written to %1.").arg(QString::fromStdString(path)));
        }
    }
    m_record->setEnabled(true);
}
