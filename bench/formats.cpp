// Throughput of the file formats: MIDI decoding (compared with libsmf, an independent parser, on the
// same files) and the picture header probe over a folder of pictures.
#include "image/imageprobe.h"
#include "ratioreporter.h"
#include "sound/mididecoder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <smf.h>

namespace {

QByteArray vlq(quint32 v) {
    QByteArray out(1, char(v & 0x7F));
    for (v >>= 7; v > 0; v >>= 7)
        out.prepend(char((v & 0x7F) | 0x80));
    return out;
}

QByteArray chunk(const char* id, const QByteArray& body) {
    QByteArray out(id, 4);
    for (int k = 3; k >= 0; --k)
        out.append(char((body.size() >> (8 * k)) & 0xFF));
    return out + body;
}

// A tune of `notes` notes spread over `channels` channels in one track each, with running status.
QByteArray tune(int notes, int channels, quint32 seed) {
    QRandomGenerator rng(seed);
    QByteArray file = chunk("MThd", QByteArray("\0\1\0", 3) + char(channels + 1) + QByteArray("\x01\xE0", 2));
    file +=
        chunk("MTrk",
              QByteArray("\x00\xFF\x51\x03\x07\xA1\x20\x00\xFF\x58\x04\x04\x02\x18\x08\x00\xFF\x2F\x00", 19));
    for (int c = 0; c < channels; ++c) {
        QByteArray t;
        t += QByteArray(1, '\0') + char(0xC0 | c) + char(rng.bounded(128));
        t += QByteArray(1, '\0') + char(0x90 | c);
        for (int n = 0; n < notes / channels; ++n) {
            const char pitch = char(48 + rng.bounded(36));
            const int length = 120 << rng.bounded(4);
            t += pitch + QByteArray(1, char(100));
            t += vlq(quint32(length)) + pitch + QByteArray(1, '\0'); // note-on with velocity 0 ends it
            t += vlq(quint32(rng.bounded(2) * 240));
        }
        t += QByteArray("\x00\xFF\x2F\x00", 4).mid(1);
        file += chunk("MTrk", t);
    }
    return file;
}

struct Fixture {
    QTemporaryDir dir;
    QStringList midiFiles;
    QList<QByteArray> midiData;
    QStringList pictures;
    qint64 midiBytes = 0;
    qint64 pictureBytes = 0;

    Fixture() {
        const QDir d(dir.path());
        d.mkpath(QStringLiteral("midi"));
        d.mkpath(QStringLiteral("pictures"));
        for (int k = 0; k < 24; ++k) {
            const QByteArray bytes = tune(100 + 150 * k, 1 + k % 4, quint32(k));
            const QString path = d.filePath(QStringLiteral("midi/tune%1.mid").arg(k));
            QFile f(path);
            f.open(QIODevice::WriteOnly);
            f.write(bytes);
            midiFiles << path;
            midiData << bytes;
            midiBytes += bytes.size();
        }
        const char* formats[] = {"png", "jpg", "bmp"};
        for (int k = 0; k < 60; ++k) {
            QImage image(40 + 23 * k, 30 + 17 * k, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(k * 6 % 360, 200, 200));
            const char* format = formats[k % 3];
            const QString path =
                d.filePath(QStringLiteral("pictures/p%1.%2").arg(k).arg(QLatin1String(format)));
            image.save(path, format);
            pictures << path;
        }
        for (int k = 0; k < 20; ++k) { // GIF headers: Qt writes no GIF, and only the header is read
            const QString path = d.filePath(QStringLiteral("pictures/g%1.gif").arg(k));
            QFile f(path);
            f.open(QIODevice::WriteOnly);
            f.write(QByteArray("GIF89a\x40\x01\xF0\x00\xF7\x00\x00", 13) + QByteArray(2000 * k, 'x'));
            pictures << path;
        }
        for (const QString& p : pictures)
            pictureBytes += std::min<qint64>(QFileInfo(p).size(), mms::kImageProbeBytes);
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

// Note-on events with a velocity, as both parsers see them.
int notesOf(const mms::MidiDecoder& d) {
    int n = 0;
    for (int c = 0; c < 16; ++c)
        for (const auto& e : d.noteEvents(c))
            n += e.isNoteOn && e.velocity > 0;
    return n;
}

int notesOf(smf_t* smf) {
    int n = 0;
    smf_rewind(smf);
    while (smf_event_t* e = smf_get_next_event(smf))
        n += e->midi_buffer_length == 3 && (e->midi_buffer[0] & 0xF0) == 0x90 && e->midi_buffer[2] > 0;
    return n;
}

void BM_MidiDecoderFiles(benchmark::State& state) {
    auto& f = fixture();
    mms::MidiDecoder decoder;
    for (auto _ : state) {
        for (const QString& path : f.midiFiles) {
            decoder.resetMidiTables();
            decoder.decodeMidiFile(path);
            if (!decoder.midiDecoded()) state.SkipWithError("a generated tune did not decode");
            benchmark::DoNotOptimize(decoder.noteTable(0, 0));
        }
    }
    state.SetBytesProcessed(state.iterations() * f.midiBytes);
    state.SetItemsProcessed(state.iterations() * f.midiFiles.size());
}

void BM_LibsmfFiles(benchmark::State& state) {
    auto& f = fixture();
    for (auto _ : state) {
        for (const QString& path : f.midiFiles) {
            smf_t* smf = smf_load(QFile::encodeName(path).constData());
            if (!smf) state.SkipWithError("libsmf could not load a generated tune");
            benchmark::DoNotOptimize(notesOf(smf));
            smf_delete(smf);
        }
    }
    state.SetBytesProcessed(state.iterations() * f.midiBytes);
    state.SetItemsProcessed(state.iterations() * f.midiFiles.size());
}

// In memory, without file access: the parsers alone. Also checks that both count the same notes.
void BM_MidiDecoderMemory(benchmark::State& state) {
    auto& f = fixture();
    mms::MidiDecoder decoder;
    for (const QByteArray& bytes : f.midiData) {
        decoder.resetMidiTables();
        decoder.decodeMidiData(bytes);
        smf_t* smf = smf_load_from_memory(bytes.constData(), int(bytes.size()));
        const bool same = smf && notesOf(smf) == notesOf(decoder);
        smf_delete(smf);
        if (!same) state.SkipWithError("the decoder and libsmf disagree on the number of notes");
    }
    for (auto _ : state) {
        for (const QByteArray& bytes : f.midiData) {
            decoder.resetMidiTables();
            decoder.decodeMidiData(bytes);
            benchmark::DoNotOptimize(decoder.noteTable(0, 0));
        }
    }
    state.SetBytesProcessed(state.iterations() * f.midiBytes);
    state.SetItemsProcessed(state.iterations() * f.midiData.size());
}

void BM_LibsmfMemory(benchmark::State& state) {
    auto& f = fixture();
    for (auto _ : state) {
        for (const QByteArray& bytes : f.midiData) {
            smf_t* smf = smf_load_from_memory(bytes.constData(), int(bytes.size()));
            benchmark::DoNotOptimize(notesOf(smf));
            smf_delete(smf);
        }
    }
    state.SetBytesProcessed(state.iterations() * f.midiBytes);
    state.SetItemsProcessed(state.iterations() * f.midiData.size());
}

void BM_ProbePictureFolder(benchmark::State& state) {
    auto& f = fixture();
    for (auto _ : state) {
        int recognised = 0;
        for (const QString& path : f.pictures) {
            mms::ImageProbe r;
            if (!mms::checkValidImg(path, r)) state.SkipWithError("a picture could not be read");
            recognised += r.answer;
        }
        if (recognised != f.pictures.size()) state.SkipWithError("a generated picture was not recognised");
    }
    state.SetBytesProcessed(state.iterations() * f.pictureBytes);
    state.SetItemsProcessed(state.iterations() * f.pictures.size());
}

} // namespace

BENCHMARK(BM_MidiDecoderFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LibsmfFiles)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MidiDecoderMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LibsmfMemory)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ProbePictureFolder)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    g_log_set_default_handler([](const gchar*, GLogLevelFlags, const gchar*, gpointer) {},
                              nullptr); // libsmf chatter
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    // How many times faster the decoder reads the same files than libsmf (CPU time: the machine may
    // be busy with other work).
    reporter.printRatio("ratio decoder/libsmf", "BM_LibsmfFiles", "BM_MidiDecoderFiles", true);
    benchmark::Shutdown();
    return 0;
}
