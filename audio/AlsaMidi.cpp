// SPDX-License-Identifier: GPL-3.0-or-later
// MIDI outputs from the ALSA sequencer. Machines without a sequencer device count none.
#include "audio/MidiAudio.h"

#include <alsa/asoundlib.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr unsigned kWritable = SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE;

void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

class AlsaMidiEnumerator final : public IMidiOutputEnumerator {
public:
    unsigned Count() override { return static_cast<unsigned>(Ports().size()); }
    MmResult Capabilities(unsigned device, MidiOutCaps& caps) override {
        const std::vector<std::string> ports = Ports();
        if (device >= ports.size()) {
            return kMmBadDeviceId;
        }
        caps = MidiOutCaps{};
        std::strncpy(caps.productName, ports[device].c_str(), kWaveNameLength - 1);
        caps.channelMask = 0xFFFF;
        return kMmNoError;
    }

private:
    static std::vector<std::string> Ports() {
        std::vector<std::string> names;
        snd_lib_error_set_handler(&QuietAlsa);
        snd_seq_t* sequencer = nullptr;
        if (snd_seq_open(&sequencer, "default", SND_SEQ_OPEN_OUTPUT, SND_SEQ_NONBLOCK) < 0) {
            return names;
        }
        const int self = snd_seq_client_id(sequencer);
        snd_seq_client_info_t* client = nullptr;
        snd_seq_port_info_t* port = nullptr;
        snd_seq_client_info_alloca(&client);
        snd_seq_port_info_alloca(&port);
        snd_seq_client_info_set_client(client, -1);
        while (snd_seq_query_next_client(sequencer, client) >= 0) {
            const int id = snd_seq_client_info_get_client(client);
            if (id == self || id == SND_SEQ_CLIENT_SYSTEM) {
                continue;
            }
            snd_seq_port_info_set_client(port, id);
            snd_seq_port_info_set_port(port, -1);
            while (snd_seq_query_next_port(sequencer, port) >= 0) {
                const unsigned capability = snd_seq_port_info_get_capability(port);
                const unsigned type = snd_seq_port_info_get_type(port);
                if ((capability & kWritable) == kWritable &&
                    (type & SND_SEQ_PORT_TYPE_MIDI_GENERIC) != 0) {
                    names.emplace_back(snd_seq_port_info_get_name(port));
                }
            }
        }
        snd_seq_close(sequencer);
        return names;
    }
};

} // namespace

std::unique_ptr<IMidiOutputEnumerator> MakeSystemMidiEnumerator() {
    return std::make_unique<AlsaMidiEnumerator>();
}
