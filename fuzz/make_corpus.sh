#!/usr/bin/env bash
# Regenerates the small seed corpus of the fuzz targets (ImageMagick and python3-mido).
set -euo pipefail
cd "$(dirname "$0")"
# Inputs that once crashed a reader (crash-*) stay as named seeds.
for t in imageprobe mididecoder mmsencoder tempomap; do
  mkdir -p "corpus/$t" && find "corpus/$t" -type f ! -name 'crash-*' -delete
done

img=corpus/imageprobe
convert -size 7x5 xc:red "$img/rgb.png"
convert -size 7x5 xc:gray50 -colorspace Gray "$img/grey.png"
convert -size 7x5 xc:'rgba(10,20,30,0.5)' "$img/rgba.png"
convert -size 7x5 xc:red -type Palette "PNG8:$img/palette.png"
convert -size 9x4 xc:blue "$img/a.gif"
convert -size 9x4 xc:blue "BMP3:$img/a.bmp"
convert -size 16x8 xc:green -quality 50 "$img/baseline.jpg"
convert -size 16x8 xc:green -interlace Plane "$img/progressive.jpg"
convert -size 16x8 xc:green -colorspace Gray "$img/grey.jpg"
printf 'plain text, not a picture\n' > "$img/text.txt"

/usr/bin/python3 - <<'PY'
import mido, os
out = "corpus/mididecoder"

def save(name, tracks, tpb=96):
    m = mido.MidiFile(type=1, ticks_per_beat=tpb)
    for msgs in tracks:
        t = mido.MidiTrack(msgs)
        m.tracks.append(t)
    m.save(os.path.join(out, name))

meta = lambda tempo, num, den: [mido.MetaMessage("set_tempo", tempo=tempo),
                                mido.MetaMessage("time_signature", numerator=num, denominator=den)]
def melody(channel, program, notes, length):
    msgs = [mido.Message("program_change", channel=channel, program=program)]
    for n in notes:
        msgs += [mido.Message("note_on", channel=channel, note=n, velocity=90, time=0),
                 mido.Message("note_off", channel=channel, note=n, velocity=0, time=length)]
    return msgs

save("scale.mid", [meta(500000, 4, 4), melody(0, 0, range(60, 72), 96)])
save("waltz.mid", [meta(600000, 3, 4), melody(1, 40, [60, 64, 67] * 4, 48), melody(9, 0, [36, 38] * 6, 24)])
save("eighths.mid", [meta(400000, 6, 8), melody(2, 73, [72, 74, 76, 77], 48)], tpb=480)
chord = [mido.MetaMessage("track_name", name="chord"), mido.Message("note_on", note=60, velocity=80),
         mido.Message("note_on", note=64, velocity=80), mido.Message("note_on", note=60, velocity=0, time=192),
         mido.Message("note_off", note=64), mido.Message("control_change", control=7, value=100),
         mido.Message("pitchwheel", pitch=100), mido.Message("aftertouch", value=3),
         mido.Message("polytouch", note=60, value=3), mido.Message("sysex", data=[1, 2, 3]),
         mido.Message("note_on", note=62, velocity=70, time=96), mido.Message("note_off", note=62, time=96)]
save("chord.mid", [meta(500000, 2, 4), chord])
PY
# A header-only file and one with a bad second chunk.
printf 'MThd\0\0\0\6\0\1\0\0\0\140' > corpus/mididecoder/empty.mid
{ cat corpus/mididecoder/scale.mid; printf 'MTrx\0\0\0\0'; } > corpus/mididecoder/badchunk.mid

# MMS inputs: subject length and bytes, SMIL length and bytes, slide count, then per slide a flags
# byte and the lengths and contents of its parts, then a trailing part name.
/usr/bin/python3 - <<'PY'
import random
random.seed(6)
for k in range(8):
    b = bytearray()
    subject = "Hi" * k if k % 3 else "Grüße aus Köln".encode("utf-8").decode("latin-1")
    sb = subject.encode("latin-1")
    b += bytes([len(sb)]) + sb
    b += bytes([20]) + b"<smil></smil>       "
    b += bytes([k % 5])
    for n in range(k % 5):
        flags = random.randrange(256)
        b += bytes([flags])
        for bit, scale in ((1, 3), (2, 1), (4, 2)):
            if flags & bit:
                size = random.randrange(1, 40)
                b += bytes([size]) + bytes(random.randrange(256) for _ in range(size * scale))
    name = b"n" * (k * 20)
    b += bytes([len(name)]) + name
    open(f"corpus/mmsencoder/seed{k}", "wb").write(b)
PY

# Tempo maps: the decoder's tunes, and files built byte by byte for what mido will not write: tempo
# changes spread over tracks, SMPTE time, running status, unknown chunks, a tempo of zero, cut files.
cp corpus/mididecoder/*.mid corpus/tempomap/
/usr/bin/python3 - <<'PY'
import struct
out = "corpus/tempomap/"
def vlq(v):
    b = [v & 0x7F]
    v >>= 7
    while v:
        b.insert(0, (v & 0x7F) | 0x80)
        v >>= 7
    return bytes(b)
def tempo(us, delta=0): return vlq(delta) + b"\xff\x51\x03" + us.to_bytes(3, "big")
def note(gap, length, key): return vlq(gap) + bytes([0x90, key, 100]) + vlq(length) + bytes([0x80, key, 64])
end = b"\x00\xff\x2f\x00"
def smf(fmt, division, tracks, extra=b""):
    f = b"MThd" + struct.pack(">IHHH", 6, fmt, len(tracks), division) + extra
    return f + b"".join(b"MTrk" + struct.pack(">I", len(t)) + t for t in tracks)
def save(name, data): open(out + name, "wb").write(data)

three = smf(1, 96, [tempo(500000) + tempo(250000, 192) + tempo(1000000, 192) + end,
                    b"".join(note(0, 96, 60 + i) for i in range(8)) + end])
save("three_tempos.mid", three)
save("format0.mid", smf(0, 96, [b"\x00\xff\x01\x02hi\x00\x90\x3c\x64\x30\x40\x00" + tempo(250000) +
                                b"\x30\xf0\x03\x7e\x7f\xf7" + note(48, 96, 60) + tempo(1000000) + end]))
save("spread.mid", smf(1, 96, [tempo(250000, 96) + end, tempo(1000000, 48) + tempo(500000, 96) + vlq(200) + b"\xff\x2f\x00"]))
save("smpte.mid", smf(1, 0xE728, [tempo(1000000) + note(0, 1500, 60) + end]))
save("tolerated.mid", smf(1, 96, [tempo(0) + note(96, 1, 60) + end + b"\x00\x90\x3c"],
                          b"XFIH\x00\x00\x00\x04junk") + b"\x00\x00")
save("cut_header.mid", three[:11])
save("cut_event.mid", three[:-3])
save("long_delta.mid", smf(0, 96, [b"\x81\x82\x83\x84\x05\x90\x3c\x40"]))
PY
