// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "app/CMainFrame.h"
#include "app/CModalSeam.h"
#include "app/CTonwerkDoc.h"
#include "app/CTonwerkView.h"
#include "profile/CQtProfile.h"

/// A fresh INI profile in a temporary folder (never the user's), a frame on it, and modal
/// questions answered from a script.
class AppTestFixture {
public:
    AppTestFixture() {
        CModalSeam::SetScripted(true);
        CModalSeam::Reset();
        CTonwerkView::SetDefaultAudioHooks(Hooks(1));
    }

    /// No test touches the machine's sequencer or mixer: a MIDI count and a quiet mixer.
    static CTonwerkView::AudioHooks Hooks(int midiOutputs) {
        return {[midiOutputs] { return midiOutputs; }, [] { return 32768; }, [](int) {}, {}, {}};
    }

    void NewProfile() {
        m_frame.reset();
        m_profile = std::make_unique<CQtProfile>(
            m_dir.filePath(QStringLiteral("profile-%1.conf").arg(++m_profileCount)));
    }

    CMainFrame& NewFrame() {
        m_frame.reset();
        CModalSeam::Reset();
        m_frame = std::make_unique<CMainFrame>(*m_profile);
        return *m_frame;
    }

    void CloseFrame() { m_frame.reset(); }

    CQtProfile& Profile() { return *m_profile; }
    CMainFrame& Frame() { return *m_frame; }
    CTonwerkDoc& Doc() { return *m_frame->Document(); }
    CTonwerkView& View() { return *m_frame->View(); }
    QString TempPath(const QString& name) const { return m_dir.filePath(name); }

    template <typename T>
    T* Control(int id) {
        auto* control = qobject_cast<T*>(View().Control(id));
        if (!control) {
            qFatal("control %d missing or of another kind", id);
        }
        return control;
    }

private:
    QTemporaryDir m_dir;
    int m_profileCount = 0;
    std::unique_ptr<CQtProfile> m_profile;
    std::unique_ptr<CMainFrame> m_frame;
};
