#pragma once

#include <QByteArray>
#include <cmath>

extern "C" {
#include <opencore-amrnb/interf_enc.h>
}

namespace mms::test {

// An AMR narrow band file of `frames` 20 ms frames of a tone, made with opencore-amr's encoder.
inline QByteArray amrTone(int frames, double hz = 440.0) {
    void* encoder = Encoder_Interface_init(0);
    QByteArray file("#!AMR\n");
    short pcm[160];
    unsigned char frame[64];
    for (int f = 0; f < frames; ++f) {
        for (int i = 0; i < 160; ++i)
            pcm[i] = short(8000 * std::sin(2 * M_PI * hz * (f * 160 + i) / 8000.0));
        file.append(reinterpret_cast<const char*>(frame),
                    Encoder_Interface_Encode(encoder, MR122, pcm, frame, 0));
    }
    Encoder_Interface_exit(encoder);
    return file;
}

} // namespace mms::test
